#include <Calls/Faults.h>

#include <Quelm/Assert.h>

namespace Chip {

void Faults::faultNew( Fault fault ) {
   QUELM_ASSERT( fault.nth > 0 && fault.code != 0 );
   pending_.push_back( std::move( fault ) );
}

std::optional< S32 > Faults::nextResult( std::string_view operation ) {
   std::optional< S32 > result;
   for ( Fault & fault : pending_ ) {
      bool const isMeant = fault.operation.empty() || fault.operation == operation;
      if ( isMeant && --fault.nth == 0 && !result ) {
         result = fault.code;
      }
   }
   std::erase_if( pending_, []( Fault const & fault ) { return fault.nth == 0; } );
   return result;
}

}  // namespace Chip
