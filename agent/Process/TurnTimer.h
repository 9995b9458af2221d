// How long the turn that a process is in has taken.
//
// What counts is the time for which its parent has nothing to do but wait for it, and the time for
// which the parent works on what it tells. What does not count is the time for which the parent
// itself is held up, by a slow reader of its output or by being suspended: the process then waits
// for its parent.
#pragma once

#include <algorithm>
#include <chrono>

#include <Process/Pulse.h>

namespace Process {

class TurnTimer {
 public:
   using Duration = std::chrono::nanoseconds;

   // The parent looks at least this often; a longer wait was not its own.
   static constexpr std::chrono::milliseconds kInterval{ 100 };

   // No limit when it is 0. The pulse beats once for every turn.
   TurnTimer( Pulse const & pulse, Duration limit ) : pulse_( pulse ), limit_( limit ) {}

   Duration limit() const { return limit_; }

   // The parent has waited for so long.
   void waited( Duration time ) { spend( std::min< Duration >( time, kInterval ) ); }
   // The parent has been busy for so long.
   void worked( Duration time ) { spend( time ); }

   bool isOver() const { return limit_.count() != 0 && spent_ >= limit_; }

 private:
   void spend( Duration time ) {
      U64 const beats = pulse_.beats();
      spent_ = beats == beats_ ? spent_ + time : Duration( 0 );
      beats_ = beats;
   }

   Pulse const & pulse_;
   Duration limit_;
   Duration spent_{ 0 };
   U64 beats_ = 0;
};

}  // namespace Process
