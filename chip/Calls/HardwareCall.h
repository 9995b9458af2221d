// One thing that reached the hardware, as a typed event: a field call, or an operation of an entry
// manager.
//
// Field calls are seen by a recording shim (Decorators/RecordingSdk.h), operations of the entry
// managers by the managers themselves (Tcam/). Given the same observer, both make up one list in
// the order in which things happened: each call is reported when it has come back, before anything
// that it causes (a notification, the stop of the process).
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <Brum/PerUnitBitmap.h>
#include <Quelm/Integers.h>

namespace Chip {

// A value that was passed or read back, by the name it has in the operation's declaration.
struct NamedValue {
   std::string name;
   std::variant< U32, std::string, Brum::PerUnitBitmap > value;

   friend bool operator==( NamedValue const &, NamedValue const & ) = default;
};

struct HardwareCall {
   std::string operation;  // "bcm_field_qualify_PacketRes", "getEntry"
   // The call as its caller wrote it, when it is a guarded field call; else empty.
   std::string callText;
   U32 unit = 0;
   // For getEntry the id given out, 0 when there was no room.
   U32 entry = 0;
   // An entry manager's values begin with its "group". Read-back values are there only on success.
   std::vector< NamedValue > values;
   // How the chip judged it, also where the operation does not tell its caller. None for getEntry.
   std::optional< S32 > returnCode;

   friend bool operator==( HardwareCall const &, HardwareCall const & ) = default;
};

// Learns of every call.
//
// Field calls are reported on the thread that makes them, with the activity lock given up; the
// operations of the managers are reported with the lock held. An observer touches no entity and no
// counted reference, and guards what it shares with other threads.
class CallObserver {
 public:
   virtual ~CallObserver() = default;
   virtual void callMade( HardwareCall const & call ) = 0;
};

}  // namespace Chip
