#include <SoftSdk/PortBitmap.h>

#include <VornalTcam/UnitBitmap.h>

namespace Chip {

Brum::PerUnitBitmap bitmapOf( _shr_pbmp const & pbmp ) {
   Brum::PerUnitBitmap bitmap;
   for ( U32 port = 0; port < Brum::PerUnitBitmap::kBits; ++port ) {
      if ( ( pbmp.words[ port >> 5 ] >> ( port & 31 ) & 1U ) != 0 ) {
         bitmap.bitSet( port );
      }
   }
   return bitmap;
}

_shr_pbmp pbmpOf( Brum::PerUnitBitmap const & bitmap ) {
   _shr_pbmp pbmp{};
   Vornal::unitBitmapToPbm( bitmap, pbmp );
   return pbmp;
}

std::vector< U32 > portsOf( Brum::PerUnitBitmap const & ports ) {
   std::vector< U32 > numbers;
   numbers.reserve( ports.count() );
   forEachPort( ports, [ & ]( U32 port ) { numbers.push_back( port ); } );
   return numbers;
}

}  // namespace Chip
