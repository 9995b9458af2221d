// `vornal verify`: runs a scenario, and compares the rules with the state that they serve.
#pragma once

#include <CommandLine/Command.h>
#include <CommandLine/ScenarioWords.h>

namespace CommandLine {

class Verify final : public Command {
 public:
   void declare( CLI::App & app ) override;
   void readWords() override { scenario_.readWords(); }
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   ScenarioWords scenario_;
   bool isAfterEachStep_ = false;
};

}  // namespace CommandLine
