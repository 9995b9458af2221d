// Faults: calls of the chip that fail on purpose, each with its result.
//
// A call that fails is not made; its caller gets the code given. A process can also end in place of
// a call, as by a fault of the processor or by a kill. A shim (Decorators/FailingSdk.h) and the
// entry managers (Tcam/SoftTcamEntryManager.h) ask here before every call, so that one list of
// faults holds for all that reaches the chip. getEntry has no result code: a request for an entry
// can be refused, as by a group without room.
//
// Cost: nothing while no fault is pending. Threads: those of the calls, one at a time.
#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <Quelm/Integers.h>
#include <Shim/OneCallSdk.h>

namespace Chip {

struct Fault {
   U64 nth;   // which of the calls, from 1
   S32 code;  // negative for a failure, positive for a success of a call that did nothing; not 0
   std::string operation{};  // counts and fails calls of this operation only; empty for any
   bool isLasting = false;   // the calls behind the nth fail, too
};

// The operations whose calls can fail: all field calls, and all operations of the entry managers
// but getEntry.
inline constexpr auto kFallibleOperations = [] {
   constexpr std::array< std::string_view, 7 > managers{
      "installEntry",
      "reinstallEntry",
      "releaseEntry",
      "setPriorityForEntry",
      "addEgressMaskAction",
      "updateEgressMaskAction",
      "getEgressMaskActionPbmp",
   };
   std::array< std::string_view, Shim::kFieldOperations.size() + managers.size() > names;
   auto * const next =
      std::transform( Shim::kFieldOperations.begin(), Shim::kFieldOperations.end(), names.begin(),
                      []( Shim::FieldOperationRow const & row ) { return row.name; } );
   std::copy( managers.begin(), managers.end(), next );
   return names;
}();

class Faults {
 public:
   // The nth call from now on fails. Faults do not know of each other: each counts every call that
   // it is about, and of two that are due at once the first one's code holds.
   void faultNew( Fault fault );

   // The process ends by SIGKILL in place of the nth call from now on of the operation; an empty
   // one means any call, and requests for an entry as well.
   void endNew( U64 nth, std::string operation );

   // The result that the next call of the operation has instead of being made; none if it is made.
   // Counts the call.
   std::optional< S32 > nextResult( std::string_view operation );

   // The nth request for an entry from now on finds no room.
   void refusalNew( U64 nth );
   // Whether the next request finds none. Counts the request.
   bool isNextRefused();

 private:
   struct End {
      U64 nth;
      std::string operation;
   };
   void countForEnds( std::string_view operation );

   std::vector< Fault > pending_;  // `nth` counts down; that of a lasting fault to 1
   std::vector< End > ends_;       // their `nth` count down in the same way
   std::vector< U64 > refusals_;   // so do these
};

}  // namespace Chip
