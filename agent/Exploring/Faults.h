// Every fault of the chip in the run of a scenario, one at a time.
//
// A fault is a call that fails, or a request for an entry that finds no room. Each has a run of its
// own, in which it happens. A failed call must end the process. A request without room must not;
// once the scenario is over, all groups have room, and the rules are judged then. An end that the
// scenario has without faults is none of theirs.
//
// Cost: a process for each fault, a copy of one in which the switch has come up.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>

#include <Exploring/Findings.h>
#include <Host/Agent.h>

namespace Exploring {

// The number of calls of a run that can fail, and of requests for an entry.
struct Calls {
   U32 made = 0;
   U32 requests = 0;
};

class Faults {
 public:
   // Runs the scenario without a fault. std::runtime_error when it cannot be run, or has more
   // faults than have room in a Sequence; Scenario::ReadError.
   Faults( std::filesystem::path const & file, Host::AgentConfig config,
           std::chrono::milliseconds longestStep );

   std::string const & name() const { return model_.name; }
   std::size_t count() const { return calls_.made + calls_.requests; }
   // Tries the faults from `first` on, each `every`-th.
   Findings tried( std::size_t first, std::size_t every ) const;
   // The step, in front of the scenario's own, that lets the fault happen.
   static std::string text( Sequence const & fault );

 private:
   Sequence faultAt( std::size_t number ) const;
   // The scenario's steps, and those that make room.
   void carryOut( Host::Agent & agent ) const;

   Host::AgentConfig config_;
   std::chrono::milliseconds longestStep_;
   Scenario::Model model_;  // behind its own steps those that make room, then the faults
   Calls calls_;
   Findings without_;  // how the scenario ends without a fault
};

}  // namespace Exploring
