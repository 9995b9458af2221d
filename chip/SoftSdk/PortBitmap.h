// Port bitmaps: the way between the SDK's and the agent's, and a walk over the ports of one.
#pragma once

#include <bit>
#include <vector>

#include <Brum/PerUnitBitmap.h>
#include <Shim/Sdk.h>

namespace Chip {

Brum::PerUnitBitmap bitmapOf( _shr_pbmp const & pbmp );
_shr_pbmp pbmpOf( Brum::PerUnitBitmap const & bitmap );

// Calls `visit( port )` for each logical port of the bitmap, in ascending order.
template< typename Visit > void forEachPort( Brum::PerUnitBitmap const & ports, Visit visit ) {
   constexpr U32 bitsPerWord = 32;
   for ( U32 index = 0; index < Brum::PerUnitBitmap::kWords; ++index ) {
      for ( U32 word = ports.word( index ); word != 0; word &= word - 1 ) {
         visit( bitsPerWord * index + static_cast< U32 >( std::countr_zero( word ) ) );
      }
   }
}

// The logical ports of the bitmap, in ascending order.
std::vector< U32 > portsOf( Brum::PerUnitBitmap const & ports );

}  // namespace Chip
