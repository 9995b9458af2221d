// One line on a terminal that shows the progress of a long step. It disappears before anything else
// is printed there.
#pragma once

#include <chrono>
#include <functional>
#include <ostream>

#include <Story/Observer.h>

namespace CommandLine {

class Progress final : public Story::Observer {
 public:
   using Clock = std::chrono::steady_clock;
   using Now = std::function< Clock::time_point() >;

   // How long a step runs before the line appears, and how often the line is drawn again.
   static constexpr std::chrono::milliseconds kPatience{ 500 };
   static constexpr std::chrono::milliseconds kInterval{ 100 };

   // Must be told events before observers that print on the same terminal. The stream must outlive
   // it.
   explicit Progress( std::ostream & terminal, Now now = &Clock::now )
         : terminal_( terminal ), now_( std::move( now ) ) {}

   void onEvent( Story::Event const & event ) override;

 private:
   void begin( Story::StepBegins const & step );
   void advance( std::string const & how );
   std::string frameBar() const;
   void clear();

   std::ostream & terminal_;
   Now now_;
   U32 steps_ = 0;  // of the scenario
   U32 step_ = 0;
   U64 calls_ = 0;   // hardware calls in this step
   U64 frames_ = 0;  // frames of this step so far
   U64 framesInAll_ = 0;
   Clock::time_point next_;  // when to draw the line
   bool isDrawn_ = false;
};

}  // namespace CommandLine
