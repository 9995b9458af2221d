#include <CommandLine/Progress.h>

#include <fmt/format.h>

namespace CommandLine {

void Progress::onEvent( Story::Event const & event ) {
   std::visit( Story::Overloaded{ [ & ]( Story::RunBegins const & run ) { steps_ = run.steps; },
                                  [ & ]( Story::StepBegins const & step ) { begin( step ); },
                                  [ & ]( Story::CallMade const & ) {
                                     ++calls_;
                                     advance( fmt::format( "{} hardware calls", calls_ ) );
                                  },
                                  [ & ]( Story::FramesBegin const & begins ) {
                                     frames_ = 0;
                                     framesInAll_ = begins.frames;
                                  },
                                  [ & ]( Story::FrameForwarded const & ) {
                                     ++frames_;
                                     advance( frameBar() );
                                  },
                                  []( Story::RuleIs const & ) {}, []( Story::RuleGone const & ) {},
                                  [ & ]( auto const & ) { clear(); } },
               event );
}

void Progress::begin( Story::StepBegins const & step ) {
   clear();
   step_ = step.number;
   calls_ = 0;
   next_ = now_() + kPatience;
}

std::string Progress::frameBar() const {
   constexpr U64 kWidth = 30;
   U64 const done = framesInAll_ == 0 ? kWidth : kWidth * frames_ / framesInAll_;
   return fmt::format( "[{:#<{}}{:.<{}}] {} of {} frames", "", done, "", kWidth - done, frames_,
                       framesInAll_ );
}

void Progress::advance( std::string const & how ) {
   if ( Clock::time_point const now = now_(); now >= next_ ) {
      next_ = now + kInterval;
      isDrawn_ = true;
      terminal_ << fmt::format( "\r   step {} of {}: {}\x1b[K", step_, steps_, how ) << std::flush;
   }
}

void Progress::clear() {
   if ( isDrawn_ ) {
      isDrawn_ = false;
      terminal_ << "\r\x1b[K" << std::flush;
   }
}

}  // namespace CommandLine
