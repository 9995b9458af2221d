#include <CommandLine/Progress.h>

#include <fmt/format.h>

namespace CommandLine {

void Progress::onEvent( Story::Event const & event ) {
   std::visit( Story::Overloaded{ [ & ]( Story::RunBegins const & run ) { steps_ = run.steps; },
                                  [ & ]( Story::StepBegins const & step ) { begin( step ); },
                                  [ & ]( Story::HardwareCall const & ) { advance(); },
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

void Progress::advance() {
   ++calls_;
   if ( Clock::time_point const now = now_(); now >= next_ ) {
      next_ = now + kInterval;
      isDrawn_ = true;
      terminal_ << fmt::format( "\r   step {} of {}: {} hardware calls", step_, steps_, calls_ )
                << std::flush;
   }
}

void Progress::clear() {
   if ( isDrawn_ ) {
      isDrawn_ = false;
      terminal_ << "\r\x1b[K" << std::flush;
   }
}

}  // namespace CommandLine
