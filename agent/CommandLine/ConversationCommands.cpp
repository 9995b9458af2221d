// The commands of the conversation.
#include <CommandLine/Conversation.h>

#include <algorithm>
#include <optional>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <CommandLine/Comparison.h>
#include <CommandLine/OutputFile.h>
#include <CommandLine/Table.h>
#include <CommandLine/Usage.h>
#include <CommandLine/Words.h>
#include <Scenario/File.h>
#include <Shell/Line.h>
#include <Shell/StepGrammar.h>
#include <Story/InputError.h>
#include <Story/Wording.h>
#include <Text/Numbers.h>
#include <Text/Words.h>

namespace CommandLine {

namespace fs = std::filesystem;

namespace {

void refuseWords( std::string_view text, std::string const & command ) {
   if ( !Shell::wordsOf( text ).empty() ) {
      throw Story::InputError( command + " takes no words, and '" + std::string( text ) +
                               "' stands behind it; leave that out" );
   }
}

std::size_t stepIn( std::string const & word ) {
   auto const number = Text::numberIn< std::size_t >( word );
   if ( !number ) {
      throw Story::InputError( "'" + word + "' is no number of a step" );
   }
   return *number;
}

}  // namespace

// --- Steps of the scenario

void Conversation::next( std::string_view text ) {
   refuseWords( text, "next" );
   if ( session_.ownDone() == session_.own() ) {
      throw Story::InputError( "the scenario has no further step; type one, or undo" );
   }
   play( session_.ownUpTo( session_.ownDone() + 1 ) );
}

void Conversation::run( std::string_view text ) {
   auto const words = Shell::wordsOf( text );
   bool const isTo = words.size() == 2 && words[ 0 ] == "to";
   if ( !words.empty() && !isTo ) {
      throw Story::InputError( "'" + std::string( text ) +
                               "' stands behind run; give nothing, or 'to' and the number of one "
                               "of the scenario's own steps" );
   }
   std::size_t const to = isTo ? stepIn( words[ 1 ] ) : session_.own();
   if ( to > session_.own() ) {
      throw Story::InputError(
         fmt::format( "the scenario ends with its step {}", session_.own() ) );
   }
   if ( to <= session_.ownDone() ) {
      throw Story::InputError(
         fmt::format( "{} of the scenario's {} are done already; undo goes back",
                      session_.ownDone(), Story::counted( session_.own(), "step" ) ) );
   }
   play( session_.ownUpTo( to ) );
}

void Conversation::undo( std::string_view text ) {
   refuseWords( text, "undo" );
   session_.undo();
   out_ << "undone; " << Story::counted( session_.done(), "step" ) << " done\n";
}

// --- Questions

// Reads the words behind a command. False when they ask for its help, which is then told.
bool Conversation::parse( CLI::App & app, std::string_view text,
                          std::function< void() > const & readWords ) {
   std::vector< std::string > words = Shell::wordsOf( text );
   std::reverse( words.begin(), words.end() );
   try {
      app.parse( std::move( words ) );
      readWords();
      return true;
   } catch ( CLI::CallForHelp const & ) {
      out_ << app.help();
      return false;
   } catch ( CLI::ParseError const & error ) {
      throw Story::InputError( mistakeIn( app, error ) + "; 'help " + app.get_name() +
                               "' lists the words that it takes" );
   }
}

Story::ExitCode Conversation::ask( std::string const & name, std::string_view text ) {
   Row const & row = *find( name );
   auto const command = row.create();
   dynamic_cast< ScenarioCommand & >( *command ).sourceIs( source_ );
   CLI::App app( std::string( row.purpose ), name );
   command->declare( app );
   return parse( app, text, [ & ] { command->readWords(); } ) ? command->perform( out_ )
                                                              : Story::ExitCode::Held;
}

void Conversation::verify( std::string_view text ) {
   isAnyDifference_ =
      ask( "verify", text ) == Story::ExitCode::ExpectationFailed || isAnyDifference_;
}

void Conversation::diff( std::string_view text ) {
   std::vector< std::string > steps;
   DifferencesShown how;
   CLI::App app( "Show what has changed between two steps", "diff" );
   value( app, "STEP", steps,
          "The step before and the step after, 0 for start-up; the last step if one is "
          "left out" )
      .count( 0, 2 );
   declareOnly( app, how.only );
   flag( app, "--json", how.asJson, "Print one JSON document instead of text" );
   if ( !parse( app, text ) ) {
      return;
   }
   std::size_t const last = session_.done();
   if ( steps.empty() && last == 0 ) {
      throw Story::InputError( "no step is done yet; type one, or 'next'" );
   }
   std::size_t const from = steps.empty() ? last - 1 : stepIn( steps[ 0 ] );
   std::size_t const to = steps.size() < 2 ? last : stepIn( steps[ 1 ] );
   if ( from > last || to > last ) {
      throw Story::InputError(
         fmt::format( "step {} is not done; the last one is {}", std::max( from, to ), last ) );
   }
   auto const before = session_.scenarioAfter( from );
   auto const after = session_.scenarioAfter( to );
   printChange( runOf( before ), runOf( after ), how, out_ );
}

void Conversation::whatIf( std::string_view text ) {
   if ( !Shell::isStep( text ) ) {
      throw Story::InputError(
         "what-if takes a step, as in what-if withdraw: { vteps: [ 10.0.0.2 ] }" );
   }
   auto const now = session_.scenario();
   auto const then = session_.typed( std::string( text ), line_ );
   printChange( runOf( now ), runOf( then.scenario ), {}, out_ );
}

// --- The rest

std::string Conversation::textToSave( fs::path const & file ) const {
   std::string saved = session_.saved( file );
   try {
      Steps::readScenarioText( saved, file );
   } catch ( Scenario::ReadError const & error ) {
      throw Story::InputError( "what was carried out is no scenario yet, so nothing is saved: " +
                               error.problems().front().message );
   }
   return saved;
}

void Conversation::save( std::string_view text ) {
   auto words = Shell::wordsOf( text );
   bool const isForced = std::erase( words, "--force" ) != 0;
   if ( words.size() != 1 || words[ 0 ].empty() ) {
      throw Story::InputError( "save takes the name of a file, as in save mine.yaml" );
   }
   fs::path const file = words[ 0 ];
   std::error_code error;
   fs::path const whole = fs::weakly_canonical( file, error );
   auto const before = saved_.find( whole );
   bool const isOurs = before != saved_.end();
   if ( isThereToReplace( file ) && !isForced &&
        !( isOurs && Scenario::textIn( file ) == before->second ) ) {
      throw Story::InputError(
         file.string() + ( isOurs ? " has changed since it was saved" : " is there already" ) +
         "; name another file, or add --force" );
   }
   std::string const saved = textToSave( file );
   replaceFile( file, saved );
   saved_.insert_or_assign( whole, saved );
   out_ << fmt::format( "{} has what was carried out: {}\n", file.string(),
                        Story::counted( session_.done(), "step" ) );
}

void Conversation::help( std::string_view text ) {
   auto const words = Shell::wordsOf( text );
   if ( words.empty() ) {
      for ( ShellWord const & word : Conversation::words() ) {
         out_ << fmt::format( "{:<28} {}\n", word.form, word.purpose );
      }
      out_ << "A step of a scenario is typed as it stands there; an empty line ends one of several "
              "lines.\nSteps: "
           << Text::listed( Shell::stepNames(), "and" ) << ".\n";
      return;
   }
   std::string const & name = words.front();
   auto const all = Conversation::words();
   auto const word = std::find_if( all.begin(), all.end(),
                                   [ & ]( ShellWord const & one ) { return one.name == name; } );
   bool const isCommand = word != all.end();
   auto const step = Shell::purposeOfStep( name );
   if ( !isCommand && !step ) {
      throw Story::InputError( "there is nothing to type by the name of '" + name + "'" );
   }
   if ( isCommand ) {
      out_ << word->form << ": " << word->purpose << '\n';
   }
   if ( step ) {
      out_ << name << ": (a step) " << *step << '\n';
   }
   if ( name == "diff" ) {
      diff( "--help" );
   } else if ( name == "show" || name == "explain" || name == "verify" ) {
      ask( name, "--help" );
   }
}

void Conversation::quit( std::string_view text ) {
   refuseWords( text, "quit" );
   isOver_ = true;
}

}  // namespace CommandLine
