// `vornal run`: runs a scenario and tells its story.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <CommandLine/Command.h>
#include <CommandLine/ScenarioWords.h>

namespace CommandLine {

class Run final : public Command {
 public:
   void declare( CLI::App & app ) override;
   void readWords() override;
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   // The scenario up to the step of --until, and the steps of --then.
   Scenario::Model read() const;

   ScenarioWords scenario_;
   std::vector< std::string > traceTexts_;
   std::vector< Scenario::TraceLevels > trace_;
   std::optional< U32 > until_;
   std::vector< std::string > then_;
   std::filesystem::path ring_;      // the trace ring's file; empty: none
   std::filesystem::path captures_;  // the folder for the frames that leave each port; empty: none
};

}  // namespace CommandLine
