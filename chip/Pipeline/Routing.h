// Routing of a unicast frame that was sent to the router's MAC address (RFC 1812, section 5.2; RFC
// 8200): the router finds the host's bridge domain and MAC address, and counts the frame down.
#pragma once

#include <Frames/Headers.h>
#include <Pipeline/Reasons.h>
#include <Pipeline/Tables.h>

namespace Chip {

// The IP header of a frame, as far as there is one.
struct InnerIp {
   IpFault fault = IpFault::None;
   IpHeader header{};
   Bytes packet{};
   bool isIp = false;

   // Whole, and of a version and length that can be.
   bool isSound() const { return isIp && fault == IpFault::None; }
};

InnerIp readInnerIp( EthernetHeader const & ethernet, Bytes frame );

// Whether the group has a route for that VLAN and the packet may be routed.
bool isRoutedMulticast( Tables const & tables, InnerIp const & ip, Vlan vlan );

// Finds the route, or tells why the packet is not routed.
std::optional< DropReason > findRoute( Tables const & tables, InnerIp const & ip, Route & route );

// Gives the frame, which starts with `ethernet` and has a sound IP header behind it, the addresses
// of its last hop and one less of TTL or hop limit.
void rewriteRouted( MacAddress ownMac, Route const & route, EthernetHeader const & ethernet,
                    MutableBytes frame );

}  // namespace Chip
