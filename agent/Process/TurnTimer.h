// Measures how long a process has spent on its present turn.
//
// It counts the time in which the parent only waits for the process, and the time in which the
// parent works on the process's events. It does not count the time in which a slow reader or a
// suspension holds up the parent, because the process then waits for its parent.
#pragma once

#include <algorithm>
#include <chrono>

#include <Process/Pulse.h>

namespace Process {

class TurnTimer {
 public:
   using Duration = std::chrono::nanoseconds;

   // The parent looks at least this often. When it waits longer, it was held up itself.
   static constexpr std::chrono::milliseconds kInterval{ 100 };

   // A limit of 0 means no limit. The pulse beats once for every turn.
   TurnTimer( Pulse const & pulse, Duration limit ) : pulse_( pulse ), limit_( limit ) {}

   Duration limit() const { return limit_; }

   // The parent has waited for this long.
   void waited( Duration time ) { spend( std::min< Duration >( time, kInterval ) ); }
   // The parent has been busy for this long.
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
