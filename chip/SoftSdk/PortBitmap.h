// Between the SDK's port bitmaps and the agent's.
#pragma once

#include <Brum/PerUnitBitmap.h>
#include <Shim/Sdk.h>

namespace Chip {

Brum::PerUnitBitmap bitmapOf( _shr_pbmp const & pbmp );
_shr_pbmp pbmpOf( Brum::PerUnitBitmap const & bitmap );

}  // namespace Chip
