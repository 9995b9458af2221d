// `vornal schema`: prints the JSON Schema of scenarios.
#pragma once

#include <CommandLine/Command.h>

namespace CommandLine {

class Schema final : public Command {
 public:
   void declare( CLI::App & ) override {}
   Story::ExitCode perform( std::ostream & out ) override;
};

}  // namespace CommandLine
