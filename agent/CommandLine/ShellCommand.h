// `vornal shell`: the words of a scenario at a prompt, or from a script on standard input.
#pragma once

#include <CommandLine/ScenarioWords.h>

namespace CommandLine {

class ShellCommand final : public ScenarioCommand {
 public:
   void declare( CLI::App & app ) override;
   void readWords() override;
   Story::ExitCode perform( std::ostream & out ) override;
};

}  // namespace CommandLine
