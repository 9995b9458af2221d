// Calls of the chip that are to fail: which, and with what result.
//
// A call that fails is not made; its caller gets the code given. A shim (Decorators/FailingSdk.h)
// and the entry managers (Tcam/SoftTcamEntryManager.h) ask here before every call, so that one list
// of faults holds for all that reaches the chip. getEntry has no result code and cannot fail so; a
// group without room is what refuses an entry.
//
// Cost: nothing while no fault is pending. Threads: those of the calls, one at a time.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <Quelm/Integers.h>

namespace Chip {

struct Fault {
   U64 nth;   // which of the calls, from 1
   S32 code;  // negative for a failure, positive for a success of a call that did nothing; not 0
   std::string operation{};  // counts and fails calls of this operation only; empty for any
};

// The operations whose calls can fail.
inline constexpr std::array< std::string_view, 23 > kFallibleOperations{
   "bcm_field_qualify_SrcVxlanGport",
   "bcm_field_qualify_PacketRes",
   "bcm_field_qualify_TunnelTerminated",
   "bcm_field_qualify_VxlanNetworkId",
   "bcm_field_qualify_DstPort",
   "bcm_field_qualify_IpType",
   "bcm_field_qualify_IngressClassField",
   "bcm_field_action_add",
   "bcm_field_qualify_SrcVxlanGport_get",
   "bcm_field_qualify_PacketRes_get",
   "bcm_field_qualify_TunnelTerminated_get",
   "bcm_field_qualify_VxlanNetworkId_get",
   "bcm_field_qualify_DstPort_get",
   "bcm_field_qualify_IpType_get",
   "bcm_field_qualify_IngressClassField_get",
   "bcm_field_action_get",
   "installEntry",
   "reinstallEntry",
   "releaseEntry",
   "setPriorityForEntry",
   "addEgressMaskAction",
   "updateEgressMaskAction",
   "getEgressMaskActionPbmp",
};

class Faults {
 public:
   // The nth call from now on fails. Faults do not know of each other: each counts every call that
   // it is about, and of two that are due at once the first one's code holds.
   void faultNew( Fault fault );

   // A call of the operation is about to be made: its result if it is to fail. Counts the call.
   std::optional< S32 > resultInsteadOf( std::string_view operation );

 private:
   std::vector< Fault > pending_;  // `nth` counts down
};

}  // namespace Chip
