// What a step does, as the language sees it.
//
// Fields, words and deeds of each kind stand together in the folder Steps/. The language asks an
// action what it says of itself and what it does to the published state; the agent has it queued.
#pragma once

#include <string>

namespace Steps {
struct Context;
}

namespace Scenario {

class Course;

class Action {
 public:
   virtual ~Action() = default;

   // In one line for people, the same line in every form of the output: "ready subagents::l2Ready".
   virtual std::string description() const = 0;

   // Whether it needs a switch that is told how to forward.
   virtual bool isAboutFrames() const { return false; }

   // Tells the course what changes of the published state.
   virtual void follow( Course & ) const {}

   // Queues turns of the activity, and does nothing else. The action and the context must outlive
   // them. `line` is where the step stands.
   virtual void queue( Steps::Context const & context, int line ) const = 0;
};

}  // namespace Scenario
