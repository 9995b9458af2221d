// The board: all forwarding chips of one switch, with the SDK and the entry managers over them.
//
// The agent builds it from a description, hands out what a plug-in needs (`Shim::sdk_ =
// &board.sdk()`, the group manager by reference), and outlives every user of it. A board has no
// state outside itself, so a test can have several.
#pragma once

#include <map>
#include <vector>

#include <SoftSdk/SoftSdk.h>
#include <Tcam/SoftTcamGroupManager.h>

namespace Chip {

struct UnitConfig {
   U16 number = 0;
   U16 modId = 0;
   // The unit's groups and how many entries each has room for. Known are 157 (ingress) and 45
   // (egress); one that is left out does not exist on the unit.
   std::map< Vornal::TcamGroupAssignment, U32 > capacities{
      { Vornal::kIfpLocalBiasGroup, 256 },
      { Vornal::kEfpLocalBiasGroup, 256 },
   };
};

struct BoardConfig {
   std::vector< UnitConfig > units;
   LookupEngine lookup = LookupEngine::TupleSpace;
};

class Board {
 public:
   // Throws Quelm::Error, naming the unit, when a unit comes twice or has a group that is not
   // known. The observer is told of the entry managers' operations, and the faults say which of
   // them fail; neither is owned, both outlive the board and may be nullptr. For field calls, give
   // them to a RecordingSdk and a FailingSdk in front of sdk().
   explicit Board( BoardConfig const & config, CallObserver * observer = nullptr,
                   Faults * faults = nullptr );
   Board( Board const & ) = delete;
   Board & operator=( Board const & ) = delete;
   ~Board() = default;

   Units & units() { return units_; }
   Units const & units() const { return units_; }
   SoftSdk & sdk() { return sdk_; }
   Quelm::Ptr< SoftTcamGroupManager > const & groupManager() const { return groupManager_; }
   // The entry manager of that group, or an empty reference.
   Quelm::Ptr< SoftTcamEntryManager > entryManager( Vornal::TcamGroupAssignment group ) const;

 private:
   Units units_;
   SoftSdk sdk_;
   Quelm::Ptr< SoftTcamGroupManager > groupManager_;
};

}  // namespace Chip
