// Names one entry of a field-processor group, on one unit of the switch.
#pragma once

#include <compare>

#include <Quelm/Integers.h>
#include <VornalTcam/EntryManager.h>

namespace Chip {

// Ordered by unit, group and id.
struct RuleKey {
   U16 unit = 0;
   Vornal::TcamGroupAssignment group = 0;
   U32 id = 0;  // of the entry

   friend auto operator<=>( RuleKey const &, RuleKey const & ) = default;
};

}  // namespace Chip
