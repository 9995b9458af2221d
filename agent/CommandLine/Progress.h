// One line on a terminal that shows the progress of a long step. It disappears before anything else
// is printed there.
#pragma once

#include <CommandLine/ProgressLine.h>
#include <Story/Observer.h>

namespace CommandLine {

class Progress final : public Story::Observer {
 public:
   using Clock = ProgressLine::Clock;
   using Now = ProgressLine::Now;

   static constexpr std::chrono::milliseconds kPatience = ProgressLine::kPatience;
   static constexpr std::chrono::milliseconds kInterval = ProgressLine::kInterval;

   // Must be told events before observers that print on the same terminal. The stream must outlive
   // it.
   explicit Progress( std::ostream & terminal, Now now = &Clock::now )
         : line_( terminal, std::move( now ) ) {}

   void onEvent( Story::Event const & event ) override;

 private:
   void begin( Story::StepBegins const & step );
   void advance( std::string const & how );
   std::string frameBar() const;

   ProgressLine line_;
   U32 steps_ = 0;  // of the scenario
   U32 step_ = 0;
   U64 calls_ = 0;   // hardware calls in this step
   U64 frames_ = 0;  // frames of this step so far
   U64 framesInAll_ = 0;
};

}  // namespace CommandLine
