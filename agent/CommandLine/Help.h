// `vornal help`: prints the help of the program, or of a command, as `--help` does.
#pragma once

#include <string>

#include <CommandLine/Command.h>

namespace CommandLine {

class Help final : public Command {
 public:
   void declare( CLI::App & app ) override;
   std::vector< std::string_view > choicesOf( std::string_view word ) const override;
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   std::string command_;  // empty: the program
};

}  // namespace CommandLine
