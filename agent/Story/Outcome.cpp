#include <Story/Outcome.h>

namespace Story {

void Outcome::onEvent( Event const & event ) {
   stopEvents_.onEvent( event );
   std::visit( Overloaded{ [ & ]( StepBegins const & step ) { step_ = step; },
                           [ & ]( ExpectationChecked const & expectation ) {
                              ++expectations_;
                              failedExpectations_ += expectation.held ? 0 : 1;
                           },
                           [ & ]( BadInput const & input ) { badInput_ = input.text; },
                           [ & ]( Stopped const & stopped ) {
                              stopped_ = stopped;
                              limits_ = limitIndex().limitsAt( stopped, stopEvents_.cause() );
                           },
                           []( auto const & ) {} },
               event );
}

ExitCode Outcome::exitCode() const {
   if ( stopped_ ) {
      return ExitCode::Stopped;
   }
   if ( !badInput_.empty() ) {
      return ExitCode::BadInput;
   }
   return failedExpectations_ == 0 ? ExitCode::Held : ExitCode::ExpectationFailed;
}

std::string_view Outcome::endName() const {
   if ( stopped_ ) {
      return "stopped";
   }
   return failedExpectations_ == 0 ? "completed" : "expectation-failed";
}

}  // namespace Story
