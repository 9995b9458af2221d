#include <Steps/ClassIdAllocatorStep.h>

#include <Scenario/Shape.h>
#include <Scenario/Values.h>
#include <Steps/Context.h>

namespace Steps {

namespace {

namespace Shape = Scenario::Shape;

Scenario::Choices< bool > const & states() {
   static Scenario::Choices< bool > const choices{
      { "class-id-allocator", "Whether the allocator of class ids serves requests." },
      { { "paused", true }, { "serving", false } }
   };
   return choices;
}

}  // namespace

std::vector< WordList > ClassIdAllocatorStep::vocabulary() {
   return { states().list() };
}

void ClassIdAllocatorStep::read( Reading & reading, Value const & value ) {
   isPaused = choiceOf( reading, value, states() ).value_or( false );
}

std::string ClassIdAllocatorStep::description() const {
   return isPaused ? "the class-id allocator pauses" : "the class-id allocator serves";
}

void ClassIdAllocatorStep::queue( Context const & context, int line ) const {
   context.turnNew( line,
                    [ this, &context ] { context.published.allocator().pausedIs( isPaused ); } );
}

}  // namespace Steps
