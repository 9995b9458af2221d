// Why a frame, or one copy of it, went no further.
#pragma once

#include <array>
#include <string_view>

#include <Quelm/Integers.h>

namespace Chip {

// Why a whole frame was dropped, by the part of the pipeline that asks.
enum class DropReason : U8 {
   // --- Arrival
   UnknownPort,       // no interface of this switch
   FrameTooShort,     // shorter than its Ethernet header
   UnderlayNotIp,     // an outer EtherType other than IPv4 and IPv6, as of ARP and VLAN tags
   OuterTruncated,    // ends before its outer headers say so, or within them
   OuterBadHeader,    // an outer IP header of the wrong version or length
   OuterBadChecksum,  // of the outer IPv4 header
   NotForThisVtep,    // the outer destination is not one of the own VTEP addresses
   OuterFragment,     // RFC 7348, section 4.3: VTEPs do not fragment
   NotVxlan,          // not UDP to port 4789
   BadUdpLength,      // shorter than its header, or longer than the packet
   BadVxlanFlags,     // the I flag is not set (RFC 7348, section 5)
   UnknownVtep,       // no tunnel to the outer source
   UnknownVni,        // no VLAN is mapped to it
   InnerTooShort,     // no whole Ethernet header inside
   InnerVlanTag,      // RFC 7348, section 6.1
   // --- Access
   UnknownVlan,  // the interface does not carry the frame's VLAN, or nothing untagged
   // --- Forwarding decision
   FrameTooLong,     // longer than Pipeline::kLargestFrame, without outer headers
   ReservedAddress,  // a destination that bridges do not forward
   SameInterface,    // the destination is where the frame came from
   TunnelToTunnel,   // the destination is behind another tunnel (RFC 8365, section 8.3.1)
   // --- Routing, of frames to the router's MAC address
   ForRouter,        // not IP: the router's own business
   BadIpHeader,      // of the wrong version or length, or not whole
   BadIpChecksum,    // of the IPv4 header
   NotRoutable,      // an address that is not forwarded: multicast, link-local, loopback
   TimeToLiveEnded,  // TTL or hop limit of 0 or 1
   NoRoute,          // no host route
   UnknownHost,      // the MAC address of the host has not been learned
};
inline constexpr std::size_t kDropReasons =
   static_cast< std::size_t >( DropReason::UnknownHost ) + 1;

// The fate of one copy. The first that applies, in the order of the pipeline.
enum class Verdict : U8 {
   Sent,
   Arrival,        // the frame came from there
   NoPort,         // a port channel without members, or no underlay interface
   NoVtep,         // this switch has no VTEP address of the remote one's family
   Masked,         // the ingress rule's egress mask has the port
   Dropped,        // an egress rule with a drop action
   NotDesignated,  // designated-forwarder state of the interface
};
inline constexpr std::size_t kVerdicts = static_cast< std::size_t >( Verdict::NotDesignated ) + 1;

// The names in lower case with hyphens: "unknown-vni", "not-designated".
std::string_view nameOf( DropReason reason );
std::string_view nameOf( Verdict verdict );

}  // namespace Chip
