#include <Story/Outcome.h>

#include <signal.h>

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
                           [ & ]( Interrupted const & interrupted ) { interrupted_ = interrupted; },
                           []( auto const & ) {} },
               event );
}

ExitCode exitCodeOf( int signal ) {
   switch ( signal ) {
   case SIGHUP: return ExitCode::HungUp;
   case SIGTERM: return ExitCode::Terminated;
   default: return ExitCode::Interrupted;
   }
}

ExitCode Outcome::exitCodeOfAnswer() const {
   if ( interrupted_ ) {
      return exitCodeOf( interrupted_->signal );
   }
   if ( stopped_ ) {
      return ExitCode::Stopped;
   }
   return badInput_.empty() ? ExitCode::Held : ExitCode::BadInput;
}

// Where a stop was expected, the expectation judges it.
ExitCode Outcome::exitCode() const {
   ExitCode const code = exitCodeOfAnswer();
   bool const isJudged = code == ExitCode::Stopped && stopped_->isAsExpected;
   if ( code != ExitCode::Held && !isJudged ) {
      return code;
   }
   return failedExpectations_ == 0 ? ExitCode::Held : ExitCode::ExpectationFailed;
}

std::string_view Outcome::endName() const {
   if ( interrupted_ ) {
      return "interrupted";
   }
   if ( stopped_ ) {
      return "stopped";
   }
   if ( !badInput_.empty() ) {
      return "failed";
   }
   return failedExpectations_ == 0 ? "completed" : "expectation-failed";
}

}  // namespace Story
