// Time, and reactors to it.
//
// Time is counted in nanoseconds since the agent started. The clock does not tick: the activity
// moves it on (Kiv/Activity.h), to the next armed wake-up once nothing else is left to do, so that
// a run that waits an hour takes no time and ends the same every time.
//
// A ClockReactor is armed with timeMinIs(): it fires once, in a turn of its own, when the clock has
// reached that time. Arming it again moves the time; arming it with a time that has been reached
// makes it fire at the next turn. Reactors armed for the same time fire in the order of arming.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <utility>

#include <Kiv/Entity.h>

namespace Kiv {

using Time = std::chrono::nanoseconds;

class ClockReactor;

class Clock : public Entity {
   KIV_ENTITY( Clock, Kiv::Entity )

   Time now() const { return now_; }
   // Moves the clock to `time`. It never goes back: an earlier time is a failed assertion.
   void nowIs( Time time );

   // When the earliest armed reactor fires; empty when none is armed.
   std::optional< Time > nextWakeUp() const;
   // Fires the earliest armed reactor whose time has been reached; false when there is none.
   bool fireOne();

 private:
   friend class ClockReactor;
   using Due = std::pair< Time, U64 >;  // time, order of arming

   Time now_{};
   U64 armings_ = 0;
   std::map< Due, ClockReactor * > armed_;
};

// Calls a function when its time has come. A time that comes while its notifications are inactive,
// or while it is out of service, passes without a call.
class ClockReactor {
 public:
   ClockReactor( Quelm::Ptr< Clock > clock, std::function< void() > handler );
   ClockReactor( ClockReactor const & ) = delete;
   ClockReactor & operator=( ClockReactor const & ) = delete;
   ~ClockReactor();

   // Fire at `time`, or at the next turn if that is over. Without effect when there is no clock.
   void timeMinIs( Time time );
   // Not to fire any more until armed again.
   void disarm();
   bool isArmed() const { return isArmed_; }

   void hasNotificationActiveIs( bool active ) { isActive_ = active; }
   void isZombieIs( bool zombie ) { isZombie_ = zombie; }
   bool isZombie() const { return isZombie_; }

 private:
   friend class Clock;
   void fire();

   Quelm::Ptr< Clock > clock_;
   std::function< void() > handler_;
   Clock::Due due_;
   bool isArmed_ = false;
   bool isActive_ = false;
   bool isZombie_ = false;
};

}  // namespace Kiv
