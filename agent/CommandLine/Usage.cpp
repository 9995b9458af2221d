#include <CommandLine/Usage.h>

#include <algorithm>

#include <CLI/CLI.hpp>

#include <CommandLine/Table.h>
#include <Text/Words.h>

namespace CommandLine {

namespace {

// "the scenario's file, a pipe, or '-' for standard input": the first line of the description.
std::string purposeOf( CLI::App const & command, std::string const & option ) {
   CLI::Option const * const found = command.get_option_no_throw( option );
   std::string text = found ? found->get_description() : "";
   text = text.substr( 0, text.find( '\n' ) );
   if ( !text.empty() ) {
      text.front() = static_cast< char >( std::tolower( text.front() ) );
   }
   return text;
}

std::string hintOf( CLI::App const & command, std::string const & word ) {
   std::vector< std::string > names;
   for ( CLI::Option const * const option : command.get_options() ) {
      names.push_back( option->get_name() );
   }
   std::string_view const near = Text::nearest( word, { names.begin(), names.end() } );
   return near.empty() ? "" : "; did you mean '" + std::string( near ) + "'?";
}

std::string unknownWord( CLI::App const & command, std::string const & word ) {
   return "unknown word '" + word + "'" + hintOf( command, word );
}

std::string missing( CLI::App const & command, std::string const & error ) {
   std::string const word = error.substr( 0, error.find( " is required" ) );
   return word + " is missing: " + purposeOf( command, word );
}

std::string wrongCount( CLI::App const & command, std::string const & error ) {
   if ( error.ends_with( " flag override" ) ) {
      return "--" + error.substr( 0, error.find( ' ' ) ) + " takes no value; give it alone";
   }
   std::string const option = error.substr( 0, error.find( ':' ) );
   return error.ends_with( " missing" ) ? option + " needs a value: " + purposeOf( command, option )
                                        : option + " is given more than once; give it once";
}

// CLI11 says "Could not convert: --after = -1".
std::string noNumber( CLI::App const & command, std::string const & error ) {
   std::size_t const begin = error.find( ": " ) + 2;
   std::size_t const middle = error.find( " = ", begin );
   std::string const option = error.substr( begin, middle - begin );
   return option + ": '" + error.substr( middle + 3 ) +
          "' is no whole number from 0 on: " + purposeOf( command, option );
}

}  // namespace

std::string mistakeIn( CLI::App const & command, CLI::Error const & error ) {
   auto const unknown = command.remaining( true );
   if ( dynamic_cast< CLI::ConversionError const * >( &error ) ) {
      return noNumber( command, error.what() );
   }
   if ( dynamic_cast< CLI::RequiredError const * >( &error ) ) {
      return missing( command, error.what() );
   }
   if ( dynamic_cast< CLI::ArgumentMismatch const * >( &error ) ) {
      return wrongCount( command, error.what() );
   }
   return dynamic_cast< CLI::ExtrasError const * >( &error ) && !unknown.empty()
             ? unknownWord( command, unknown.front() )
             : error.what();
}

std::string usageText( CLI::App const & app, CLI::Error const & error ) {
   auto const parsed = app.get_subcommands();
   CLI::App const & command = parsed.empty() ? app : *parsed.front();
   std::string const name = parsed.empty() ? "vornal" : "vornal " + command.get_name();
   bool const isWithout =
      parsed.empty() && dynamic_cast< CLI::RequiredError const * >( &error ) != nullptr;
   auto const unknown = app.remaining();
   std::string const mistake = !isWithout         ? mistakeIn( command, error )
                               : !unknown.empty() ? unknownWord( app, unknown.front() )
                                                  : "a command is missing; the commands are " +
                                                       Text::listed( commandNames(), "and" );
   return name + ": " + mistake + "\n'" + name + " --help' lists the words that it takes\n";
}

std::string problemOfCommand( std::string const & word ) {
   bool const isCommand = std::any_of( table().begin(), table().end(),
                                       [ & ]( Row const & row ) { return row.name == word; } );
   if ( isCommand ) {
      return "";
   }
   std::vector< std::string_view > const known = commandNames();
   std::string_view const near = Text::nearest( word, known );
   return "no command '" + word + "'; " +
          ( near.empty() ? "the commands are " + Text::listed( known, "and" )
                         : "did you mean '" + std::string( near ) + "'?" );
}

std::string problemOfName( std::string const & text ) {
   return text.empty() ? "an empty text names nothing; give a name" : "";
}

}  // namespace CommandLine
