// Makes recorded calls again, on a chip without an agent.
//
//    Chip::CallReplay replay( board.units() );
//    for ( Chip::HardwareCall const & call : calls ) {
//       replay.make( call );
//    }
//
// The chip then holds what it held after these calls: installed entries, staged ones, and the ids
// that are used up. So a chip can outlive the process of an agent: another one comes up on it.
//
// A call is made as it was: calls that read make no difference and are left out, and so are those
// that the chip has refused or that a fault has kept from it.
//
// Invariant: the calls begin on a fresh chip and are all that were made on it, so that entries get
// the ids that they had. Failure: a call that has another result than the recorded one is
// Quelm::Error; the chip then holds what the calls before it have made.
//
// Others' entries of a group are no calls; whoever needs them sets them behind the replay.
//
// Cost: that of the calls. Threads: one, while no call is under way. Neighbours: HardwareCall.h has
// the calls, Decorators/RecordingSdk.h and the entry managers (Tcam/) report them.
#pragma once

#include <optional>

#include <Calls/HardwareCall.h>
#include <SoftSdk/SoftSdk.h>

namespace Chip {

// The recorded field call as a shim takes it; none when it is an operation of an entry manager.
std::optional< Shim::Call > fieldCallOf( HardwareCall const & recorded );
// A value of a recorded call, by its name. Quelm::Error when there is none, or one of another kind.
template< typename Value > Value const & valueOf( HardwareCall const & call, char const * name );

class CallReplay {
 public:
   // The units are fresh, and outlive the replay.
   explicit CallReplay( Units & units ) : units_( units ), sdk_( units ) {}

   void make( HardwareCall const & call );

 private:
   S32 makeManagerCall( HardwareCall const & recorded );

   Units & units_;
   SoftSdk sdk_;
};

}  // namespace Chip
