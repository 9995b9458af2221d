// The headers of a frame, as far as the pipeline reads them: Ethernet, IPv4, IPv6, UDP and VXLAN.
//
// A reader takes the bytes from the first of its header to the end of the enclosing packet, and
// looks no further. Its result is a copy and can outlive the frame.
#pragma once

#include <optional>

#include <Frames/Bytes.h>
#include <Shim/Sdk.h>

namespace Chip {

// --- Ethernet (IEEE 802.3), with at most one tag (IEEE 802.1Q)

namespace EtherType {
inline constexpr U16 kIpv4 = 0x0800;
inline constexpr U16 kArp = 0x0806;
inline constexpr U16 kVlanTag = 0x8100;
inline constexpr U16 kIpv6 = 0x86dd;
}  // namespace EtherType

struct EthernetHeader {
   static constexpr std::size_t kAddresses = 12;  // bytes of the two addresses
   static constexpr std::size_t kTag = 4;
   static constexpr std::size_t kUntagged = 14;  // bytes of a header without tag

   MacAddress destination{};
   MacAddress source{};
   std::optional< U16 > tag{};  // priority and VLAN
   U16 etherType = 0;           // behind the tag

   // The VLAN of the tag; 0, "priority only", without one.
   U16 vlan() const { return tag.value_or( 0 ) & 0xfff; }
   std::size_t size() const { return tag ? kUntagged + kTag : kUntagged; }
   bool isIp() const { return etherType == EtherType::kIpv4 || etherType == EtherType::kIpv6; }
};

// None when the frame ends within its header.
std::optional< EthernetHeader > readEthernet( Bytes frame );

bcm_field_IpType_t ipTypeOf( U16 etherType );

// --- IP (RFC 791, RFC 8200)

inline constexpr std::size_t kIpv4Size = 20;  // without options
inline constexpr std::size_t kIpv6Size = 40;  // without extension headers

namespace IpProtocol {
inline constexpr U8 kTcp = 6;
inline constexpr U8 kUdp = 17;
inline constexpr U8 kSctp = 132;
inline constexpr U8 kIpv6Fragment = 44;
}  // namespace IpProtocol

struct IpHeader {
   Pelk::IpGenAddr source{};
   Pelk::IpGenAddr destination{};
   U8 protocol = 0;    // of the payload; an IPv6 extension header counts
   U8 timeToLive = 0;  // or hop limit
   bool isFragment = false;
   std::size_t size = 0;         // of the header, with IPv4 options
   std::size_t payloadSize = 0;  // in bytes

   bool isIpv4() const { return source.family() == Pelk::IpGenAddr::Family::ipv4; }
   Bytes payloadOf( Bytes packet ) const { return packet.subspan( size, payloadSize ); }
};

enum class IpFault : U8 {
   None,
   Truncated,  // the bytes end before the packet does
   BadHeader,  // a version or length that cannot be
};

// The EtherType is that of IPv4 or IPv6. On a fault, `header` has the addresses if there are any.
// The checksum is not looked at.
IpFault readIp( U16 etherType, Bytes packet, IpHeader & header );

// Whether the IPv4 header is as it was sent; IPv6 has no checksum and is always.
bool isChecksumRight( IpHeader const & header, Bytes packet );

// Where in a header these are.
inline constexpr std::size_t kIpv4TimeToLive = 8;
inline constexpr std::size_t kIpv4Checksum = 10;
inline constexpr std::size_t kIpv6HopLimit = 7;

// The Internet checksum (RFC 1071) of an even number of bytes.
U16 internetChecksum( Bytes bytes );

// 224.0.0.0/4, ff00::/8
bool isMulticast( Pelk::IpGenAddr const & address );
// Whether routers forward packets to or from the address: not unspecified, loopback or link-local,
// for IPv6 multicast of a wider scope than the link, for IPv4 not of 224.0.0.0/24 (RFC 5771, RFC
// 4291).
bool isRoutable( Pelk::IpGenAddr const & address );

// --- UDP (RFC 768) and VXLAN (RFC 7348, section 5)

inline constexpr std::size_t kUdpSize = 8;
inline constexpr std::size_t kVxlanSize = 8;
inline constexpr U16 kVxlanPort = 4789;
inline constexpr U8 kVxlanFlags = 0x08;  // the I flag: the VNI is valid

// Whether the payload of that packet begins with two ports. Only the first of several fragments
// does, so none of them counts.
bool hasPorts( IpHeader const & ip, Bytes payload );

// --- Flows

// The same number for all frames of one flow: of addresses, and of ports where there are any.
U32 flowHashOf( EthernetHeader const & ethernet, IpHeader const * ip, Bytes ipPayload );

}  // namespace Chip
