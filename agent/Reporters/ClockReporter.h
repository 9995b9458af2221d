// Tells the observer the time of the agent's clock, before the first event of each new time, and
// passes all events on.
//
// Threads: those of the events. The clock moves only when none of them can come.
#pragma once

#include <Kiv/Clock.h>
#include <Story/Observer.h>

namespace Reporters {

class ClockReporter final : public Story::Observer {
 public:
   // Both must outlive it.
   ClockReporter( Kiv::Clock const & clock, Story::Observer & observer )
         : clock_( clock ), observer_( observer ) {}

   void onEvent( Story::Event const & event ) override;

 private:
   Kiv::Clock const & clock_;
   Story::Observer & observer_;
   Kiv::Time told_{};
};

}  // namespace Reporters
