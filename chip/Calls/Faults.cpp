#include <Calls/Faults.h>

#include <csignal>

#include <Quelm/Assert.h>

namespace Chip {

void Faults::faultNew( Fault fault ) {
   QUELM_ASSERT( fault.nth > 0 && fault.code != 0 );
   pending_.push_back( std::move( fault ) );
}

void Faults::endNew( U64 nth, std::string operation ) {
   QUELM_ASSERT( nth > 0 );
   ends_.push_back( { nth, std::move( operation ) } );
}

void Faults::countForEnds( std::string_view operation ) {
   for ( End & end : ends_ ) {
      bool const isMeant = end.operation.empty() || end.operation == operation;
      if ( isMeant && --end.nth == 0 ) {
         std::raise( SIGKILL );
      }
   }
}

std::optional< S32 > Faults::nextResult( std::string_view operation ) {
   countForEnds( operation );
   std::optional< S32 > result;
   for ( Fault & fault : pending_ ) {
      bool const isMeant = fault.operation.empty() || fault.operation == operation;
      bool const isDue = isMeant && --fault.nth == 0;
      if ( isDue && !result ) {
         result = fault.code;
      }
      fault.nth += isDue && fault.isLasting ? 1 : 0;
   }
   std::erase_if( pending_, []( Fault const & fault ) { return fault.nth == 0; } );
   return result;
}

void Faults::refusalNew( U64 nth ) {
   QUELM_ASSERT( nth > 0 );
   refusals_.push_back( nth );
}

bool Faults::isNextRefused() {
   constexpr std::string_view kRequest = "getEntry";
   countForEnds( kRequest );
   for ( U64 & nth : refusals_ ) {
      --nth;
   }
   return std::erase( refusals_, U64{ 0 } ) != 0;
}

}  // namespace Chip
