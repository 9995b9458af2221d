#include <Host/Particulars.h>

#include <Questions/Explanation.h>
#include <Questions/Table.h>

namespace Host {

Particulars::Particulars( What what, Environment & environment )
      : what_( std::move( what ) ), environment_( environment ) {
   if ( what_.frames != 0 ) {
      environment_.traffic().watch( *this );
   }
}

void Particulars::stepIsOver() {
   for ( std::string const & name : what_.tables ) {
      environment_.observer().onEvent( Story::TableShown{
         Questions::answer( *Questions::find( name ), environment_.forQuestions() ) } );
   }
}

void Particulars::look( U64 number, Traffic::ArrivingFrame const & frame ) {
   if ( number > what_.frames ) {
      return;
   }
   if ( !grounds_ ) {
      grounds_.emplace( environment_.forQuestions() );
   }
   environment_.observer().onEvent( Story::FrameExplained{ Questions::explanationOf(
      *grounds_, environment_.traffic().explain( frame, Questions::kNearMisses ) ) } );
}

}  // namespace Host
