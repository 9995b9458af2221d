#include <Story/StopCheck.h>

#include <fmt/format.h>

namespace Story {

namespace {

bool isIt( Stopped const & stopped, StopExpected const & expected ) {
   if ( expected.function.empty() ) {
      return stopped.isByException( expected.expression );
   }
   return stopped.assertion && stopped.assertion->expression == expected.expression &&
          stopped.assertion->isIn( expected.function );
}

std::string foundText( Stopped const & stopped ) {
   if ( stopped.assertion ) {
      return fmt::format( "it stopped at assertion {} in {}", stopped.assertion->expression,
                          stopped.assertion->function );
   }
   return fmt::format( "it ended with {}{}", stopped.reason,
                       stopped.output.empty() ? ""
                                              : ", and printed last: " + stopped.output.back() );
}

}  // namespace

void StopCheck::onEvent( Event const & event ) {
   std::visit( Overloaded{ [ & ]( StopExpected const & expected ) { expected_ = expected; },
                           [ & ]( StepBegins const & step ) { begin( step ); },
                           [ & ]( StepEnds const & ) { end(); }, []( auto const & ) {} },
               event );
   if ( auto const * const stopped = std::get_if< Stopped >( &event ) ) {
      stop( *stopped );
   } else {
      observer_.onEvent( event );
   }
}

// A run that ends with an earlier step than the scenario carries out no such step.
void StopCheck::begin( StepBegins const & step ) {
   isStepUnderWay_ = expected_ && step.kind == StepKind::Scenario;
   if ( !isStepUnderWay_ ) {
      expected_.reset();
   }
}

void StopCheck::end() {
   if ( isStepUnderWay_ ) {
      tell( false, "it went on" );
   }
}

void StopCheck::stop( Stopped stopped ) {
   if ( isStepUnderWay_ ) {
      stopped.isAsExpected = isIt( stopped, *expected_ );
      tell( *stopped.isAsExpected, *stopped.isAsExpected ? "" : foundText( stopped ) );
   }
   observer_.onEvent( stopped );
}

void StopCheck::tell( bool isAsExpected, std::string const & found ) {
   observer_.onEvent(
      ExpectationChecked{ expected_->text, expected_->place, isAsExpected, found } );
   isStepUnderWay_ = false;
   expected_.reset();
}

}  // namespace Story
