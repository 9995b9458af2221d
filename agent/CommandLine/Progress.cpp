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
                                  []( Story::ClockMoved const & ) {},
                                  [ & ]( auto const & ) { line_.clear(); } },
               event );
}

void Progress::begin( Story::StepBegins const & step ) {
   line_.begin();
   step_ = step.number;
   calls_ = 0;
}

std::string Progress::frameBar() const {
   return fmt::format( "{} {} of {} frames", ProgressLine::bar( frames_, framesInAll_ ), frames_,
                       framesInAll_ );
}

void Progress::advance( std::string const & how ) {
   line_.advance( fmt::format( "step {} of {}: {}", step_, steps_, how ) );
}

}  // namespace CommandLine
