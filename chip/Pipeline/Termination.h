// The end of a VXLAN tunnel (RFC 7348, sections 4 and 5): from the outer headers of a frame to the
// frame inside, its source VTEP and its bridge domain.
//
// Not looked at: the outer MAC addresses, TTL, the reserved bits of the VXLAN header (ignored on
// receipt), and the UDP checksum, which a VTEP may verify but which network cards often fill in
// behind the place where frames are captured.
#pragma once

#include <Pipeline/Reasons.h>
#include <Pipeline/Story.h>
#include <Pipeline/Tables.h>

namespace Chip {

struct Terminated {
   Bytes inner{};
   EthernetHeader ethernet{};  // of the inner frame
   Index tunnel = kNone;
   Index domain = kNone;
};

// None when the tunnel ends here, or why the frame goes no further. The story gets the fields read
// on the way.
std::optional< DropReason > terminate( Tables const & tables, Bytes frame, Terminated & result,
                                       std::optional< TunnelStory > & story );

}  // namespace Chip
