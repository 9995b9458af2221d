#include <CommandLine/Declared.h>

#include <sstream>

#include <CLI/CLI.hpp>

#include <CommandLine/Usage.h>
#include <CommandLine/Version.h>

namespace CommandLine {

namespace {

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
   if ( row.isHidden ) {
      subcommand.group( "" );
   }
   auto command = row.create();
   command->declare( subcommand );
   refuseValuesOfFlags( subcommand );
   return command;
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

Declared::Declared()
      : app_( std::make_unique< CLI::App >(
           "An off-switch agent: loads a forwarding plug-in, plays the other agents of a "
           "switch, and shows what the plug-in does.",
           "vornal" ) ) {
   describe( *app_ );
   for ( Row const & row : table() ) {
      commands_.push_back( declared( *app_, row ) );
   }
}

Declared::~Declared() = default;

}  // namespace CommandLine
