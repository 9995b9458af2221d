// One thing in which published state, records and chip do not agree.
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
   missingRule,        // the state calls for it, the chip does not have it
   unexpectedRule,     // the chip has it, and nothing calls for it
   stagedOnly,         // it is staged, and not in the hardware
   wrongQualifier,     // it compares with another value, or lacks a field, or has one too many
   wrongMask,          // it compares under another mask, or masks other ports
   wrongAction,        // it does something else
   wrongPriority,      // it stands elsewhere among the rules
   stagedDiffers,      // it is right in the hardware, and something else is staged for it
   notRetried,         // it was refused while the group was full, and is not asked for again
   ruleWithoutRecord,  // the chip has it, the plug-in does not know
   recordWithoutRule,  // the plug-in has a record of it, the chip does not have it
   recordDiffers,      // a record says something else than the state does
   unneededRequest,    // a class id is asked for, for a VTEP that needs no rules
   noRoom,             // the group has no room for the rule
   queued,             // there was no room for the rule, and the plug-in will ask again
   waitingForClassId,  // the allocator has not granted the class id that the rule needs
   classIdWithdrawn,   // the rules live on with the class id that they had
   leftBehind,         // only the end of Vxlan1 takes per-VNI rules, and their queue, with it
};

struct DifferenceRow {
   DifferenceKind kind;
   std::string_view name;  // "missing-rule"
   // Not as the state alone says, and all right.
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
   std::optional< U32 > unit;  // nothing: it concerns all of them
   // Nothing: it is about a record that belongs to no group.
   std::optional< Vornal::TcamGroupAssignment > group;
   U32 entry = 0;     // 0: there is none
   std::string rule;  // its name; empty where it is about no single rule
   // The qualifier or action, or the place of the record below the state machine; empty where it is
   // about the rule as a whole.
   std::string field;
   std::string is;
   std::string shouldBe;
   std::string because;  // the state behind it, in words

   static void fields( auto & difference, auto && field ) {
      field( "kind", difference.kind );
      field( "unit", difference.unit );
      field( "group", difference.group );
      field( "entry", difference.entry, kOrNull );
      field( "rule", difference.rule, kOrNull );
      field( "field", difference.field, kOrNull );
      field( "is", difference.is );
      field( "shouldBe", difference.shouldBe );
      field( "because", difference.because );
   }

   friend bool operator==( Difference const &, Difference const & ) = default;
};

}  // namespace Story
