// A step's action, as the language sees it.
//
// The folder Steps/ holds the fields, the words and the work of each kind together. The language
// asks an action for its description and for its effect on the published state; the agent lets it
// queue its turns.
#pragma once

#include <string>

namespace Steps {
struct Context;
}

namespace Scenario {

class Course;

// What becomes of an action when the agent's process ends and another one comes up on the switch.
enum class AfterRestart {
   over,      // nothing is left of it
   lasts,     // others publish it, or hold it in the chip: it is there when the agent comes up
   repeated,  // it belongs to the agent's own start, and happens again
};

class Action {
 public:
   virtual ~Action() = default;

   // One line for people, the same in every form of the output: "ready subagents::l2Ready".
   virtual std::string description() const = 0;

   // It needs a switch with a forwarding configuration.
   virtual bool isAboutFrames() const { return false; }

   virtual AfterRestart afterRestart() const { return AfterRestart::over; }

   // Tells the course how the step changes the published state.
   virtual void follow( Course & ) const {}

   // Queues turns of the activity, and does nothing else. The action and the context must outlive
   // these turns. `line` is the step's line in the scenario.
   virtual void queue( Steps::Context const & context, int line ) const = 0;
};

}  // namespace Scenario
