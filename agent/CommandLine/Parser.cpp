#include <CommandLine/Parser.h>

#include <algorithm>
#include <iostream>
#include <sstream>

#include <CLI/CLI.hpp>

#include <CommandLine/Table.h>
#include <CommandLine/Usage.h>
#include <CommandLine/Version.h>
#include <Scenario/Characters.h>
#include <Text/Printable.h>
#include <Text/Words.h>

namespace CommandLine {

namespace {

// A message that holds words of the command line.
std::string shown( std::string const & message ) {
   return Text::printableLines( Scenario::shortened( message ) );
}

std::string footerOf( Row const & row ) {
   std::string text = "Examples:\n";
   std::istringstream lines{ std::string( row.examples ) };
   for ( std::string line; std::getline( lines, line ); ) {
      text += "  " + line + '\n';
   }
   return text + '\n' + std::string( row.exitCodes );
}

// A flag says all that it has to say by being there.
void refuseValuesOfFlags( CLI::App & command ) {
   for ( CLI::Option * const option : command.get_options() ) {
      if ( option->get_expected_max() == 0 ) {
         option->disable_flag_override();
      }
   }
}

// The subcommand that was declared by a row.
std::unique_ptr< Command > declared( CLI::App & app, Row const & row ) {
   CLI::App & subcommand =
      *app.add_subcommand( std::string( row.name ), std::string( row.purpose ) );
   subcommand.footer( footerOf( row ) );
   auto command = row.create();
   command->declare( subcommand );
   refuseValuesOfFlags( subcommand );
   return command;
}

// A subcommand or an option, as the first word is.
bool isKnown( std::string_view word ) {
   return word.starts_with( '-' ) ||
          std::any_of( table().begin(), table().end(),
                       [ & ]( Row const & row ) { return row.name == word; } );
}

std::string noCommand( std::string const & word ) {
   std::vector< std::string_view > const known = commandNames();
   std::string_view const near = Text::nearest( word, known );
   std::string const hint = near.empty() ? "the commands are " + Text::listed( known, "and" )
                                         : "did you mean '" + std::string( near ) + "'?";
   return shown( "no command '" + word + "'; " + hint );
}

void describe( CLI::App & app ) {
   app.require_subcommand( 1 );
   app.failure_message( []( CLI::App const * failed, CLI::Error const & error ) {
      return usageText( *failed, error );
   } );
   app.footer( std::string( table().front().exitCodes ) );
   app.set_version_flag( "--version", "vornal " + std::string( version() ),
                         "Print the version of the program" );
   refuseValuesOfFlags( app );
}

}  // namespace

std::variant< std::unique_ptr< Command >, Done > parse( int argc, char const * const * argv,
                                                        std::ostream & out ) {
   CLI::App app(
      "An off-switch agent: loads a forwarding plug-in, plays the other agents of a "
      "switch, and shows what the plug-in does.",
      "vornal" );
   describe( app );
   if ( argc > 1 && !isKnown( argv[ 1 ] ) ) {
      std::cerr << noCommand( argv[ 1 ] ) << '\n';
      return Done{ static_cast< int >( Story::ExitCode::BadInput ) };
   }
   std::vector< std::unique_ptr< Command > > commands;
   for ( Row const & row : table() ) {
      commands.push_back( declared( app, row ) );
   }
   try {
      app.parse( argc, argv );
      auto const chosen = std::find_if( table().begin(), table().end(), [ & ]( Row const & row ) {
         return app.got_subcommand( std::string( row.name ) );
      } );
      auto command =
         std::move( commands[ static_cast< std::size_t >( chosen - table().begin() ) ] );
      command->readWords();
      return command;
   } catch ( CLI::ParseError const & error ) {
      std::ostringstream message;
      bool const isHelp = app.exit( error, out, message ) == 0;
      std::cerr << shown( message.str() );
      return Done{ isHelp ? 0 : static_cast< int >( Story::ExitCode::BadInput ) };
   }
}

}  // namespace CommandLine
