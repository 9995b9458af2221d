// `vornal verify`: runs a scenario, and compares the rules with the state that they serve.
#pragma once

#include <CommandLine/Moment.h>
#include <CommandLine/ScenarioWords.h>

namespace CommandLine {

class Verify final : public ScenarioCommand {
 public:
   void declare( CLI::App & app ) override;
   void readWords() override;
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   Moment after_{ "--after" };
   bool isAfterEachStep_ = false;
};

}  // namespace CommandLine
