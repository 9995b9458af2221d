#include <Reporters/ClockReporter.h>

namespace Reporters {

void ClockReporter::onEvent( Story::Event const & event ) {
   if ( Kiv::Time const now = clock_.now(); now != told_ ) {
      told_ = now;
      observer_.onEvent( Story::ClockMoved{ static_cast< U64 >( now.count() ) } );
   }
   observer_.onEvent( event );
}

}  // namespace Reporters
