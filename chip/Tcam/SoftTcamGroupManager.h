// The entry managers of all groups of the software chip.
#pragma once

#include <Tcam/SoftTcamEntryManager.h>

namespace Chip {

class SoftTcamGroupManager : public Vornal::VornalTcamGroupManager {
   KIV_ENTITY( SoftTcamGroupManager, Vornal::VornalTcamGroupManager )

   // One entry manager for each group that exists on any of the units. Units, observer and faults
   // are not owned and outlive the managers; the latter two may be nullptr.
   SoftTcamGroupManager( std::string name, Units & units, CallObserver * observer,
                         Faults * faults = nullptr );
};

}  // namespace Chip
