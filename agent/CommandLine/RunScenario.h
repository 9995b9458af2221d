// Runs a scenario in a process of its own, for its observers.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <vector>

#include <Host/Agent.h>
#include <Steps/Reader.h>
#include <Story/Outcome.h>

namespace CommandLine {

class RecordedRun;

struct ScenarioRun {
   Scenario::Model const & scenario;
   Host::AgentConfig config;
   std::optional< std::filesystem::path > ring;  // the trace ring's file
   std::chrono::milliseconds turnLimit;          // 0: no limit
   RecordedRun const * record = nullptr;         // that the run repeats; nullptr: none
};

// The observer is told every event.
void runScenario( ScenarioRun const & what, Story::Observer & observer );

// The observers are told every event, in the order given; the outcome is told last. Throws
// Story::InputError when the run repeats a record and does not do the same.
void runScenario( ScenarioRun const & what, std::vector< Story::Observer * > observers,
                  Story::Outcome & outcome );

// Runs it for an answer that an observer waits for, and tells the story only when the plug-in
// stops, on standard error. The result is Held when the answer is there: expectations do not count.
// Throws Story::InputError for wrong input that only the run has found.
Story::ExitCode runForAnswer( ScenarioRun const & what, Story::Observer & observer );

// Throws Story::InputError, which names the option, for a step behind the last one, which is that
// of the scenario's own unless given.
void checkStep( std::string const & option, std::optional< U32 > const & step,
                Scenario::Model const & scenario, std::optional< std::size_t > last = {} );

// Prints on standard error what input was wrong, if any was.
void tellBadInput( Story::Outcome const & outcome );

// Leaves out the scenario's own steps behind this one; 0 is start-up.
void endWith( Scenario::Model & scenario, U32 step );

// Prints on standard error in which step the run was interrupted, if it was.
void tellInterruption( Story::Outcome const & outcome );

}  // namespace CommandLine
