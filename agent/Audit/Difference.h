// One thing in which published state, records and chip do not agree.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <Quelm/Integers.h>

namespace Audit {

enum class Kind : U8 {
   // --- Differences
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
   // --- Known: not as the state alone says, and all right
   noRoom,             // the group has no room for the rule
   queued,             // there was no room for the rule, and the plug-in will ask again
   waitingForClassId,  // the allocator has not granted the class id that the rule needs
   classIdWithdrawn,   // the rules live on with the class id that they had
   leftBehind,         // only the end of Vxlan1 takes per-VNI rules, and their queue, with it
};

inline constexpr std::array kKinds{ Kind::missingRule,
                                    Kind::unexpectedRule,
                                    Kind::stagedOnly,
                                    Kind::wrongQualifier,
                                    Kind::wrongMask,
                                    Kind::wrongAction,
                                    Kind::wrongPriority,
                                    Kind::stagedDiffers,
                                    Kind::notRetried,
                                    Kind::ruleWithoutRecord,
                                    Kind::recordWithoutRule,
                                    Kind::recordDiffers,
                                    Kind::unneededRequest,
                                    Kind::noRoom,
                                    Kind::queued,
                                    Kind::waitingForClassId,
                                    Kind::classIdWithdrawn,
                                    Kind::leftBehind };

// "missing-rule"
std::string_view nameOf( Kind kind );
// The inverse of nameOf(); std::out_of_range for any other text.
Kind kindNamed( std::string_view name );

constexpr bool isKnown( Kind kind ) {
   return kind >= Kind::noRoom;
}

struct Difference {
   Kind kind = Kind::missingRule;
   std::optional< U32 > unit;   // nothing: it concerns all of them
   std::optional< U32 > group;  // nothing: it is about a record that belongs to no group
   U32 entry = 0;               // 0: there is none
   std::string rule;            // its name; empty where it is about no single rule
   // The qualifier or action, or the place of the record below the state machine; empty where it is
   // about the rule as a whole.
   std::string field;
   std::string is;
   std::string shouldBe;
   std::string because;  // the state behind it, in words

   friend bool operator==( Difference const &, Difference const & ) = default;
};

}  // namespace Audit
