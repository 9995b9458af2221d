// Checks expected stops. The process of the plug-in is gone at a stop, so the one that tells the
// story compares it.
#pragma once

#include <optional>
#include <string>

#include <Story/Observer.h>

namespace Story {

// Passes every event on. In the step behind a StopExpected it also tells an ExpectationChecked, and
// the Stopped of that step says whether it is as expected.
class StopCheck final : public Observer {
 public:
   // The observer must outlive it.
   explicit StopCheck( Observer & observer ) : observer_( observer ) {}

   void onEvent( Event const & event ) override;
   void onPause() override { observer_.onPause(); }

 private:
   void begin( StepBegins const & step );
   void end();
   void stop( Stopped stopped );
   void tell( bool isAsExpected, std::string const & found );

   Observer & observer_;
   std::optional< StopExpected > expected_;
   bool isStepUnderWay_ = false;  // the one that is to stop the process
};

}  // namespace Story
