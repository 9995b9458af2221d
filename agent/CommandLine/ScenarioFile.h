// The file that a command takes in place of a scenario: a scenario, or the record of a run.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include <CommandLine/RecordedRun.h>
#include <Host/Agent.h>

namespace CommandLine {

using AddedSteps = std::vector< Scenario::AddedStep >;

class ScenarioFile {
 public:
   // "-" is standard input. Story::InputError for a record that cannot be played.
   explicit ScenarioFile( std::filesystem::path file );

   std::filesystem::path const & file() const { return file_; }
   // nullptr: it is no record.
   RecordedRun const * record() const { return record_.get(); }

   // The scenario, with more steps at its end. Scenario::ReadError.
   Scenario::Model read( AddedSteps const & more = {} ) const;
   // Those of the scenario, without a plug-in.
   Host::AgentConfig config() const;

 private:
   std::filesystem::path file_;
   std::shared_ptr< RecordedRun const > record_;
};

}  // namespace CommandLine
