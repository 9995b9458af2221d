#include <VornalTcam/UnitBitmap.h>

namespace Vornal {

void unitBitmapToPbm( Brum::PerUnitBitmap const & bitmap, _shr_pbmp & pbmp ) {
   for ( U32 word = 0; word < Brum::PerUnitBitmap::kWords; ++word ) {
      pbmp.words[ word ] |= bitmap.word( word );
   }
}

}  // namespace Vornal
