// A frame as a person writes it down, field by field. bytesOf() makes the
// frame, with all lengths and checksums right.
//
//    FrameFields const ping{ .source = MacAddress( 0x00005e005302 ),
//                            .content = FrameContent::Udp,
//                            .sourceIp = IpGenAddr::fromString( "192.0.2.2" ),
//                            .destinationIp = IpGenAddr::fromString( "192.0.2.255" ) };
//    pipeline.forward( port, bytesOf( ping ), transmitter );
#pragma once

#include <optional>
#include <vector>

#include <Frames/MacAddress.h>
#include <Pelk/IpGenAddr.h>

namespace Chip {

// What the frame carries.
enum class FrameContent : U8 {
   Bare,                   // EtherType 0x88b5 (IEEE 802, local experiments) and the payload
   Arp,                    // a request for destinationIp (RFC 826)
   NeighbourSolicitation,  // the same for IPv6 (RFC 4861, section 4.3)
   Udp,                    // over the family of the addresses
};

// The tunnel through which a frame comes: VXLAN around it (RFC 7348).
struct OuterFields {
   Pelk::IpGenAddr sourceVtep{};
   Pelk::IpGenAddr destinationVtep{};  // of the same family
   U32 vni = 0;
   U16 sourcePort = 49152;
   U8 timeToLive = 64;
   MacAddress source{ 0x020000000002 };
   MacAddress destination{ 0x020000000001 };

   friend bool operator==( OuterFields const &, OuterFields const & ) = default;
};

struct FrameFields {
   std::optional< OuterFields > outer{};
   MacAddress source{};
   MacAddress destination = MacAddress::broadcast();
   std::optional< U16 > vlan{};  // the tag's; none: untagged
   FrameContent content = FrameContent::Bare;
   // All but Bare: the addresses, of one family.
   std::optional< Pelk::IpGenAddr > sourceIp{};
   std::optional< Pelk::IpGenAddr > destinationIp{};
   // Udp only
   U8 timeToLive = 64;
   U16 sourcePort = 10000;
   U16 destinationPort = 10001;
   // Bare and Udp: bytes of payload, which count up from 0.
   std::size_t payloadSize = 32;

   friend bool operator==( FrameFields const &, FrameFields const & ) = default;
};

// Throws Quelm::Error, which names the mistake, when addresses are missing, of a family that the
// content does not have, or of two families; and when it would be too long for an IP packet.
std::vector< U8 > bytesOf( FrameFields const & fields );

}  // namespace Chip
