// One line on a terminal that shows how far something long has come. It appears only after some
// time, and must be cleared before anything else is printed there.
#pragma once

#include <chrono>
#include <functional>
#include <ostream>
#include <string>

#include <Quelm/Integers.h>

namespace CommandLine {

class ProgressLine {
 public:
   using Clock = std::chrono::steady_clock;
   using Now = std::function< Clock::time_point() >;

   // The time before the line appears, and between two drawings.
   static constexpr std::chrono::milliseconds kPatience{ 500 };
   static constexpr std::chrono::milliseconds kInterval{ 100 };

   // The stream must outlive it.
   explicit ProgressLine( std::ostream & terminal, Now now = &Clock::now )
         : terminal_( terminal ), now_( std::move( now ) ), next_( now_() + kPatience ) {}

   // Something new begins.
   void begin();
   // Draws the line with this text, unless it is too early for that.
   void advance( std::string const & text );
   void clear();

   // "[######........................]", filled in proportion.
   static std::string bar( U64 done, U64 all );

 private:
   std::ostream & terminal_;
   Now now_;
   Clock::time_point next_;  // when to draw the line
   bool isDrawn_ = false;
};

}  // namespace CommandLine
