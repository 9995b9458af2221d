// A difference between published state, records and chip.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include <Quelm/Integers.h>
#include <Story/Fields.h>
#include <VornalTcam/EntryManager.h>

namespace Story {

enum class DifferenceKind : U8 {
   missingRule,        // expected, and not in the chip
   unexpectedRule,     // in the chip, and not expected
   stagedOnly,         // staged, and not in the hardware
   wrongQualifier,     // another value, a field missing, or one too many
   wrongMask,          // another mask, or other ports
   wrongAction,        // another action
   wrongPriority,      // another place among the rules
   stagedDiffers,      // right in the hardware, and staged with other content
   notRetried,         // refused while the group was full, and not requested again
   ruleWithoutRecord,  // in the chip, and unknown to the plug-in
   recordWithoutRule,  // in the plug-in's records, and not in the chip
   recordDiffers,      // a record contradicts the state
   unneededRequest,    // a request of a class id for a VTEP that needs no rules
   noRoom,             // the group is full, or the unit has none
   queued,             // there was no room for the rule; the plug-in will try again
   waitingForClassId,  // the allocator has not granted the rule's class id
   classIdWithdrawn,   // the class id was withdrawn; the rules keep it
   leftBehind,         // rules of a VNI that stayed when its tunnel interface went, or went with it
};

struct DifferenceRow {
   DifferenceKind kind;
   std::string_view name;  // "missing-rule"
   // The difference has a known cause and is no fault.
   bool isKnown;
};

// Every kind once, in the order of reports.
std::span< DifferenceRow const > differenceRows();

std::string_view nameOf( DifferenceKind kind );
// The inverse of nameOf(); std::out_of_range for any other text.
DifferenceKind differenceKindNamed( std::string_view name );
bool isKnown( DifferenceKind kind );

struct Difference {
   DifferenceKind kind = DifferenceKind::missingRule;
   std::optional< U32 > unit;  // nothing: all units
   // Nothing for a record that belongs to no group.
   std::optional< Vornal::TcamGroupAssignment > group;
   U32 entry = 0;     // 0: no entry
   std::string rule;  // its name; empty for no single rule
   // The qualifier or action, or the place of the record below the state machine; empty for the
   // rule as a whole.
   std::string field;
   std::string actual;
   std::string expected;
   std::string because;  // the reason in the state, in words

   static void fields( auto & difference, auto && field ) {
      field( "kind", difference.kind );
      field( "unit", difference.unit );
      field( "group", difference.group );
      field( "entry", difference.entry, kOrNull );
      field( "rule", difference.rule, kOrNull );
      field( "field", difference.field, kOrNull );
      field( "is", difference.actual );
      field( "shouldBe", difference.expected );
      field( "because", difference.because );
   }

   friend bool operator==( Difference const &, Difference const & ) = default;
};

}  // namespace Story
