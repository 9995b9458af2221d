#include <CommandLine/Declared.h>

#include <iterator>
#include <set>
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

// CLI11 lists the options that an option excludes in the order of their addresses.
class Formatter final : public CLI::Formatter {
 public:
   std::string make_option_opts( CLI::Option const * option ) const override {
      std::string const text = CLI::Formatter::make_option_opts( option );
      std::string const heading = " Excludes:";
      std::size_t const begin = text.find( heading );
      if ( begin == std::string::npos ) {
         return text;
      }
      std::istringstream words( text.substr( begin + heading.size() ) );
      std::set< std::string > const names{ std::istream_iterator< std::string >( words ), {} };
      std::string result = text.substr( 0, begin ) + heading;
      for ( std::string const & name : names ) {
         result += ' ' + name;
      }
      return result;
   }
};

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
   app.formatter( std::make_shared< Formatter >() );
   app.require_subcommand( 1 );
   app.failure_message( []( CLI::App const * failed, CLI::Error const & error ) {
      return usageText( *failed, error );
   } );
   app.footer( std::string( table().front().exitCodes ) );
   app.set_version_flag( "--version", versions(),
                         "Print the version and the commit of the program, and the versions of its "
                         "formats" );
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
