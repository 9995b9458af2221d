// From the agent's port bitmaps to the SDK's.
#pragma once

#include <Brum/PerUnitBitmap.h>
#include <Shim/Sdk.h>

namespace Vornal {

// Adds the ports of `bitmap` to `pbmp`; start from a cleared one.
void unitBitmapToPbm( Brum::PerUnitBitmap const & bitmap, _shr_pbmp & pbmp );

}  // namespace Vornal
