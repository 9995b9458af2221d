#include <Host/FrameQuestion.h>

#include <Quelm/Error.h>
#include <Questions/Explanation.h>
#include <Story/InputError.h>
#include <Story/Wording.h>

namespace Host {

using Traffic::ArrivingFrame;
using Traffic::SentFrame;

FrameQuestion::FrameQuestion( Traffic::FrameAsked asked, bool isAfterTheSteps,
                              Environment & environment )
      : asked_( std::move( asked ) ),
        isAfterTheSteps_( isAfterTheSteps ),
        environment_( environment ) {
   if ( std::holds_alternative< SentFrame >( asked_ ) ) {
      environment_.traffic().watch( *this );
   }
}

void FrameQuestion::look( U64 number, ArrivingFrame const & frame ) {
   if ( number != std::get< SentFrame >( asked_ ).number ) {
      return;
   }
   if ( isAfterTheSteps_ ) {
      sent_ = frame;
   } else {
      answer( frame );
   }
}

void FrameQuestion::stepsAreOver() {
   if ( isAnswered_ ) {
      return;
   }
   try {
      if ( auto const * const sent = std::get_if< SentFrame >( &asked_ ) ) {
         if ( !sent_ ) {
            throw Quelm::Error(
               "frame " + std::to_string( sent->number ) + " is not sent: the scenario has sent " +
               Story::counted( environment_.traffic().frames(), "frame" ) +
               " up to this step; give the number of one of these, or ask after the step that "
               "sends it" );
         }
         answer( *sent_ );
      } else {
         answer( environment_.traffic().arriving( asked_ ) );
      }
   } catch ( Quelm::Error const & error ) {
      throw Story::InputError( error.what() );
   }
}

void FrameQuestion::answer( ArrivingFrame const & frame ) {
   isAnswered_ = true;
   environment_.observer().onEvent( Story::FrameExplained{ Questions::explanationOf(
      Questions::Grounds( environment_.forQuestions() ),
      environment_.traffic().explain( frame, Questions::kNearMisses ) ) } );
}

}  // namespace Host
