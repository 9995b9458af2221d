// A switch on which steps are tried: it comes up, carries them out, and its rules are judged.
//
// It belongs in a process of its own (Processes.h): the plug-in can stop the process, and so does
// SIGALRM when the start-up or a step takes longer than its time.
#pragma once

#include <chrono>
#include <vector>

#include <Host/Agent.h>

namespace Exploring {

struct Setting {
   Scenario::Model const & scenario;
   Host::AgentConfig const & config;
   std::chrono::milliseconds longestStep;  // 0: none
};

class Trial {
 public:
   // What the setting refers to, and the observer, outlive the trial.
   Trial( Setting const & setting, Story::Observer & observer );

   // Once, before anything else happens to the switch. Story::InputError.
   void comeUp( Host::Agent::Past const & past = {} );

   // Story::InputError, of a step that no scenario can have here.
   void carryOut( Scenario::Step const & step );
   // False for such a step, which is then left out.
   bool tried( Scenario::Step const & step );

   Audit::Report audit() const { return agent_.audit(); }
   Audit::State state() const { return agent_.state(); }
   Chip::Units & units() { return agent_.units(); }

 private:
   std::chrono::milliseconds longestStep_;
   std::vector< std::byte > ring_;
   Host::Agent agent_;
};

}  // namespace Exploring
