// `vornal run`: runs a scenario and tells its story.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <CommandLine/Command.h>
#include <CommandLine/Comparison.h>
#include <CommandLine/ScenarioWords.h>
#include <Record/Items.h>

namespace CommandLine {

class Run final : public Command {
 public:
   void declare( CLI::App & app ) override;
   void readWords() override;
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   // The scenario up to the step of --until, and the steps of --then and of --what-if.
   Scenario::Model read( std::vector< std::string > const & whatIf = {} ) const;
   // The words of this command that decide the run.
   Record::Setup setup() const;
   // Runs the scenario, and tells of it as the words ask.
   Story::ExitCode tell( ScenarioRun const & what, std::vector< Story::Observer * > observers,
                         std::ostream & out ) const;
   // The differences that the steps of --what-if make.
   Story::ExitCode compare( std::ostream & out ) const;

   ScenarioWords scenario_;
   bool isEvents_ = false;
   std::vector< std::string > traceTexts_;
   std::vector< Scenario::TraceLevels > trace_;
   std::optional< U32 > until_;
   std::vector< std::string > then_;
   std::vector< std::string > whatIf_;
   Parts only_;                      // that --what-if compares
   std::optional< U32 > step_;       // the one to tell; nothing: all of them
   std::filesystem::path record_;    // the file that keeps the run; empty: none
   std::filesystem::path ring_;      // the trace ring's file; empty: none
   std::filesystem::path captures_;  // the folder for the frames that leave each port; empty: none
   std::filesystem::path report_;    // the file of the page; empty: none
};

}  // namespace CommandLine
