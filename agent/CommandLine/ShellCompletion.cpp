#include <CommandLine/ShellCompletion.h>

#include <algorithm>

#include <CLI/CLI.hpp>

#include <CommandLine/Show.h>
#include <CommandLine/Table.h>
#include <Shell/Line.h>
#include <Shell/StepGrammar.h>

namespace CommandLine {

namespace {

namespace fs = std::filesystem;

using Texts = std::vector< std::string >;

void append( Texts & all, Texts const & more ) {
   all.insert( all.end(), more.begin(), more.end() );
}

Texts withBlank( Texts words ) {
   for ( std::string & word : words ) {
      word += ' ';
   }
   return words;
}

// The steps, as they begin.
Texts stepWords() {
   Texts words;
   for ( std::string_view const name : Shell::stepNames() ) {
      words.push_back( std::string( name ) + ": " );
   }
   return words;
}

Texts commandWords() {
   Texts words;
   for ( ShellWord const & word : Conversation::words() ) {
      words.push_back( std::string( word.name ) + ' ' );
   }
   return words;
}

// The files and folders in the folder of the path that is begun.
Texts files( std::string const & begun ) {
   std::string const folder = begun.substr( 0, begun.rfind( '/' ) + 1 );
   Texts all;
   std::error_code error;
   for ( auto const & entry : fs::directory_iterator( folder.empty() ? "." : folder, error ) ) {
      all.push_back( folder + entry.path().filename().string() +
                     ( entry.is_directory( error ) ? "/" : "" ) );
   }
   return all;
}

// Of the words those that begin so, sorted, each once.
Texts beginningWith( std::string_view begun, Texts words ) {
   std::erase_if( words, [ & ]( std::string const & word ) { return !word.starts_with( begun ); } );
   std::sort( words.begin(), words.end() );
   words.erase( std::unique( words.begin(), words.end() ), words.end() );
   return words;
}

// Within brackets, YAML takes a text with brackets only in quotes.
Texts quoted( Texts words ) {
   bool const isAny = std::any_of( words.begin(), words.end(), []( std::string const & word ) {
      return word.find( '[' ) != std::string::npos && word != "[ ";
   } );
   for ( std::string & word : words ) {
      word = isAny ? '"' + word : word;
   }
   return words;
}

}  // namespace

Candidates ShellCompletion::of( std::string const & before, std::string_view line ) {
   if ( before.empty() && !Shell::isStep( line ) ) {
      return ofCommand( line );
   }
   std::string const lines = before.empty() ? "" : before + '\n';
   Candidates candidates = ofStep( lines + std::string( line ) );
   if ( candidates.begin < lines.size() ) {
      return {};
   }
   candidates.begin -= lines.size();
   return candidates;
}

Candidates ShellCompletion::ofStep( std::string_view step ) {
   using Shell::Named;
   Shell::Expected const expected = Shell::expectedAt( step );
   std::string const begun( step.substr( expected.begin ) );
   Texts words = expected.words;
   for ( Named const name : expected.names ) {
      switch ( name ) {
      case Named::ethernet: append( words, names_.interfaces( "Ethernet" ) ); break;
      case Named::portChannel: append( words, names_.interfaces( "Port-Channel" ) ); break;
      case Named::vxlan: append( words, names_.interfaces( "Vxlan" ) ); break;
      case Named::vtep: append( words, names_.vteps() ); break;
      case Named::path: append( words, names_.paths( begun ) ); break;
      case Named::attribute: append( words, names_.attributes( expected.entity ) ); break;
      case Named::file: append( words, files( begun ) ); break;
      }
   }
   words = beginningWith( begun, std::move( words ) );
   return { expected.begin, expected.isInFlow ? quoted( std::move( words ) ) : words };
}

Candidates ShellCompletion::ofCommand( std::string_view line ) {
   std::string const command( Shell::firstWord( line ) );
   std::size_t const blank = line.find_last_of( " \t" );
   std::size_t const begin = blank == std::string_view::npos ? 0 : blank + 1;
   std::string const begun( line.substr( begin ) );
   auto const rest = static_cast< std::size_t >( Shell::firstWord( line ).end() - line.begin() );
   if ( rest == line.size() ) {
      Texts words = commandWords();
      append( words, stepWords() );
      return { begin, beginningWith( begun, std::move( words ) ) };
   }
   std::size_t const next = std::min( line.find_first_not_of( " \t", rest ), line.size() );
   if ( command == "what-if" ) {
      Candidates candidates = ofStep( line.substr( next ) );
      candidates.begin += next;
      return candidates;
   }
   if ( command == "explain" && line.substr( next ).starts_with( '{' ) ) {
      constexpr std::string_view kFrame = "frame: ";
      Candidates candidates = ofStep( std::string( kFrame ) + std::string( line.substr( next ) ) );
      candidates.begin = candidates.begin + next - kFrame.size();
      return candidates;
   }
   Texts const words = Shell::wordsOf( line.substr( rest, begin - rest ) );
   return { begin, beginningWith( begun, namesFor( command, words, begun ) ) };
}

// What can follow an option with a value; nothing for any other word.
Texts ShellCompletion::valuesOf( std::string const & option ) {
   if ( option == "--after" ) {
      return numbers( conversation_.session().done() );
   }
   if ( option == "--vtep" ) {
      return withBlank( names_.vteps() );
   }
   bool const isOfInterface = option == "--segment" || option == "--interface" || option == "--on";
   return isOfInterface ? withBlank( interfaces() ) : Texts{};
}

// What can follow these words of a command.
Texts ShellCompletion::namesFor( std::string const & command, Texts const & words,
                                 std::string const & begun ) {
   std::string const before = words.empty() ? "" : words.back();
   if ( begun.starts_with( '-' ) ) {
      return withBlank( optionsOf( command ) );
   }
   if ( Texts values = valuesOf( before ); !values.empty() ) {
      return values;
   }
   if ( command == "diff" ) {
      return numbers( conversation_.session().done() );
   }
   if ( command == "run" ) {
      return before == "to" ? numbers( conversation_.session().own() ) : Texts{ "to " };
   }
   if ( command == "show" && words.empty() ) {
      auto const subjects = Show::subjects();
      return withBlank( { subjects.begin(), subjects.end() } );
   }
   if ( command == "show" && before == "entities" ) {
      return names_.paths( begun );
   }
   if ( command == "save" ) {
      return files( begun );
   }
   if ( command == "help" ) {
      Texts all( commandWords() );
      auto const steps = Shell::stepNames();
      all.insert( all.end(), steps.begin(), steps.end() );
      return all;
   }
   return {};
}

Texts ShellCompletion::optionsOf( std::string const & command ) const {
   Row const * const row = find( command );
   if ( !row || command == "run" || command == "diff" ) {
      return command == "save" ? Texts{ "--force" } : Texts{};
   }
   auto const declared = row->create();
   dynamic_cast< ScenarioCommand & >( *declared ).sourceIs( conversation_.source() );
   CLI::App app;
   declared->declare( app );
   Texts names;
   for ( CLI::Option const * const option : app.get_options() ) {
      if ( !option->get_lnames().empty() ) {
         names.push_back( "--" + option->get_lnames().front() );
      }
   }
   return names;
}

Texts ShellCompletion::interfaces() {
   Texts all = names_.interfaces( "Ethernet" );
   append( all, names_.interfaces( "Port-Channel" ) );
   return all;
}

Texts ShellCompletion::numbers( std::size_t last ) const {
   Texts all;
   for ( std::size_t n = 0; n <= last; ++n ) {
      all.push_back( std::to_string( n ) );
   }
   return all;
}

}  // namespace CommandLine
