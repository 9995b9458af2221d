// What forward() would do with a frame, and what it would do it by; Explanation/ asks for it.
//
// A copy of the pipeline's engine forwards the frame, so the story is forward()'s own and the
// pipeline itself does not change. The tables stay as they are for as long as anyone holds them.
#pragma once

#include <memory>

#include <FieldProcessor/Fields.h>
#include <Pipeline/LearnedMac.h>
#include <Pipeline/Story.h>
#include <Pipeline/Tables.h>

namespace Chip {

// The address that the forwarding decision looked for.
struct DestinationLookup {
   Vlan vlan = 0;
   MacAddress address{};
   std::optional< LearnedMac > found{};

   friend bool operator==( DestinationLookup const &, DestinationLookup const & ) = default;
};

struct Rehearsal {
   U64 number = 0;  // that the frame would have
   FrameStory story{};
   // None for a frame that was dropped before anything was learned.
   std::optional< Learning > learning{};
   // The entry of the source address before this frame.
   std::optional< LearnedMac > source{};
   // None for a frame that was for several anyway, or dropped before anything was looked up.
   std::optional< DestinationLookup > destination{};
   // As each unit compares them; what they hold is of use only if the story has met a unit.
   IngressFields ingress{};
   std::shared_ptr< Tables const > tables{};
};

}  // namespace Chip
