// Runs a scenario in a process of its own, for whoever observes it.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <vector>

#include <Host/Agent.h>
#include <Steps/Reader.h>
#include <Story/Outcome.h>

namespace CommandLine {

struct ScenarioRun {
   Scenario::Model const & scenario;
   Host::AgentConfig config;
   std::optional< std::filesystem::path > ring;  // the trace ring's file
   std::chrono::milliseconds turnLimit;          // how long a turn may take; 0: as long as it likes
};

// The observers are told everything, in the order given, and the outcome last; what was wrong with
// the input is printed on standard error.
void runScenario( ScenarioRun const & what, std::vector< Story::Observer * > observers,
                  Story::Outcome & outcome );

// Says on standard error in which step the run was interrupted, if it was.
void tellInterruption( Story::Outcome const & outcome );

}  // namespace CommandLine
