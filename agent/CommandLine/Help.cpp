#include <CommandLine/Help.h>

#include <CLI/CLI.hpp>

#include <CommandLine/Declared.h>
#include <CommandLine/Usage.h>
#include <CommandLine/Words.h>

namespace CommandLine {

void Help::declare( CLI::App & app ) {
   value( app, "COMMAND", command_, "The command; without one, the help of the program" )
      .check( problemOfCommand );
}

std::vector< std::string_view > Help::choicesOf( std::string_view ) const {
   return commandNames();
}

Story::ExitCode Help::perform( std::ostream & out ) {
   Declared declared;
   std::vector< std::string > words{ "--help" };  // CLI11 takes them from the end
   if ( !command_.empty() ) {
      words.push_back( command_ );
   }
   try {
      declared.app().parse( std::move( words ) );
   } catch ( CLI::ParseError const & help ) {
      declared.app().exit( help, out, out );
   }
   return Story::ExitCode::Held;
}

}  // namespace CommandLine
