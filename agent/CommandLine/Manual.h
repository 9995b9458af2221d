// `vornal manual`: prints the manual page vornal(1), in the man macros of roff.
//
// The commands, their words and examples come from the declarations.
#pragma once

#include <CommandLine/Command.h>

namespace CommandLine {

class Manual final : public Command {
 public:
   void declare( CLI::App & ) override {}
   Story::ExitCode perform( std::ostream & out ) override;
};

}  // namespace CommandLine
