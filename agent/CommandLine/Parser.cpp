#include <CommandLine/Parser.h>

#include <algorithm>
#include <iostream>
#include <sstream>

#include <CLI/CLI.hpp>

#include <CommandLine/Declared.h>
#include <CommandLine/Usage.h>
#include <Scenario/Characters.h>
#include <Text/Printable.h>
#include <Text/Words.h>

namespace CommandLine {

namespace {

// A message that holds words of the command line.
std::string shown( std::string const & message ) {
   return Text::printableLines( Scenario::shortened( message ) );
}

}  // namespace

std::variant< std::unique_ptr< Command >, Done > parse( int argc, char const * const * argv,
                                                        std::ostream & out ) {
   std::string_view const first = argc > 1 ? argv[ 1 ] : "-";
   std::string const problem =
      first.starts_with( '-' ) ? "" : problemOfCommand( std::string( first ) );
   if ( !problem.empty() ) {
      std::cerr << shown( problem ) << '\n';
      return Done{ static_cast< int >( Story::ExitCode::BadInput ) };
   }
   Declared declared;
   CLI::App & app = declared.app();
   try {
      app.parse( argc, argv );
      auto const chosen = std::find_if( table().begin(), table().end(), [ & ]( Row const & row ) {
         return app.got_subcommand( std::string( row.name ) );
      } );
      auto command =
         std::move( declared.commands()[ static_cast< std::size_t >( chosen - table().begin() ) ] );
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
