// Every fault in the run of a scenario, one at a time.
//
// A fault is one of these, and each has a run of its own, in which it happens:
//
//    a call that fails          The process must stop at it, and tell it once, with its line. Where
//                               it goes on, the finding is "unnoticed", whether the plug-in could
//                               have known or not, and however the run ends.
//    a request without room     The process must go on. All groups have room once the scenario is
//                               over, and the rules are judged then.
//    the end of the process     Another process comes up on the same chips, with the state that is
//    in place of a call, or     published then, and carries out the rest of the scenario. It finds
//    behind the last one        the rules of the first one, staged ones among them. It must make
//                               its own beside them, and leave those alone.
//
// An end that the scenario has without faults is none of theirs.
//
// The chips of the second process get the calls of a run without faults again, up to the one that
// is not made. So a scenario must make the same calls in each run.
//
// Cost: a process for each fault; of the first two kinds a copy of one in which the switch has come
// up.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>

#include <Exploring/CallLog.h>
#include <Exploring/Findings.h>
#include <Exploring/Processes.h>
#include <Exploring/SharedFindings.h>
#include <Exploring/Trial.h>

namespace Exploring {

class Faults {
 public:
   // Runs the scenario without a fault. std::runtime_error when it cannot be run, or has more
   // faults than have room in a Sequence; Scenario::ReadError.
   Faults( std::filesystem::path const & file, Host::AgentConfig config,
           std::chrono::milliseconds longestStep );

   std::size_t count() const;
   // Tries the faults from `first` on, each `every`-th.
   Findings tried( std::size_t first, std::size_t every ) const;
   // The step, in front of the scenario's own, that lets the fault happen.
   static std::string text( Sequence const & fault );
   // It is a call that fails.
   static bool isFailure( Sequence const & fault );

 private:
   // Without a fault.
   void run();
   void take( std::vector< LoggedCall > const & calls );
   Setting setting() const { return { model_, config_, longestStep_ }; }
   std::size_t ownSteps() const;
   std::size_t ends() const;
   std::size_t before( U16 kind ) const;
   Sequence faultAt( std::size_t number ) const;
   Scenario::Step const & stepOf( Sequence const & fault ) const;
   void tryCalls( std::vector< Sequence > const & faults, SharedFindings & findings ) const;
   void noteEnd( Sequence const & fault, int status, bool hasGoneOn, Output const & output,
                 SharedFindings & findings ) const;
   void tryEnd( Sequence const & fault, SharedFindings & findings ) const;
   void comeUpBehind( Sequence const & fault, SharedFindings & findings ) const;
   // The scenario's steps from that one on, and those that make room.
   void carryOut( Trial & trial, std::size_t first ) const;

   Host::AgentConfig config_;
   std::chrono::milliseconds longestStep_;
   Scenario::Model model_;  // behind its own steps those that make room, then the faults
   // Of the run without a fault: all calls, how many of them belong to the start-up, how many
   // steps had begun at each, the places of those behind the start-up that can fail, the requests
   // there, and how it ends.
   std::vector< Chip::HardwareCall > calls_;
   std::size_t atStart_ = 0;
   std::vector< U32 > stepsAt_;
   std::vector< std::size_t > fallible_;
   std::size_t requests_ = 0;
   Findings without_;
};

}  // namespace Exploring
