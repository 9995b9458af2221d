#include <Questions/ExplanationParts.h>

#include <array>

namespace Questions {

namespace {

// By Chip::DropReason.
constexpr std::array< std::string_view, Chip::kDropReasons > kSentences{
   "no interface of this switch has that port",
   "it is shorter than its Ethernet header",
   "a frame from the underlay is neither IPv4 nor IPv6",
   "it ends within its outer headers, or before they say so",
   "its outer IP header has the wrong version or length",
   "the checksum of its outer IPv4 header is wrong",
   "its outer destination is no VTEP address of this switch",
   "its outer packet is a fragment, and VTEPs do not fragment",
   "it is not UDP to port 4789",
   "the length in its outer UDP header is wrong",
   "its VXLAN header has no valid VNI",
   "this switch has no tunnel to the sender, because the sender has no virtual port",
   "no VLAN of this switch has that VNI",
   "it holds no whole Ethernet frame",
   "the frame within the tunnel has a VLAN tag",
   "the interface that it came in on does not carry its VLAN",
   "it is longer than the switch can forward",
   "bridges do not forward its destination address",
   "its destination is where it came from",
   "its destination is behind another tunnel, and a frame from a tunnel enters no other one",
   "it is for the router itself and not IP",
   "its IP header has the wrong version or length, or is not whole",
   "the checksum of its IPv4 header is wrong",
   "one of its IP addresses is not routed: multicast, link-local or loopback",
   "its TTL or hop limit has ended",
   "no route leads to its IP destination",
   "the MAC address of its IP destination has not been learned"
};
static_assert( !kSentences.back().empty(), "every reason has a sentence" );

}  // namespace

std::string dropText( Chip::DropReason reason ) {
   return std::string( nameOf( reason ) ) + ": " +
          std::string( kSentences.at( static_cast< std::size_t >( reason ) ) );
}

}  // namespace Questions
