// A frame's headers, each as far as it can be read.
//
// The pipeline stops at the first header that is wrong. A person who asks why wants to see that
// header and what stands behind it, so this reads on as long as there are bytes: the inner frame of
// an unknown VNI, the ports of a packet that was cut short. Nothing is read past the frame's end.
#pragma once

#include <Frames/Headers.h>

namespace Chip {

struct IpFields {
   Pelk::IpGenAddr source{};
   Pelk::IpGenAddr destination{};
   U8 protocol = 0;
   U8 timeToLive = 0;  // or hop limit
   bool isFragment = false;
   IpFault fault = IpFault::None;
   // IPv6 has none, which is right. Not right where the header is not whole or cannot be.
   bool isChecksumRight = true;

   friend bool operator==( IpFields const &, IpFields const & ) = default;
};

// Of TCP, UDP or SCTP.
struct PortFields {
   U16 source = 0;
   U16 destination = 0;

   friend bool operator==( PortFields const &, PortFields const & ) = default;
};

// Of IPv4 over Ethernet (RFC 826).
struct ArpFields {
   U16 operation = 0;  // 1: request, 2: reply
   MacAddress senderMac{};
   Pelk::IpGenAddr senderIp{};
   MacAddress targetMac{};
   Pelk::IpGenAddr targetIp{};

   friend bool operator==( ArpFields const &, ArpFields const & ) = default;
};

struct HeaderFields {
   MacAddress source{};
   MacAddress destination{};
   std::optional< U16 > tag{};  // priority and VLAN
   U16 etherType = 0;           // behind the tag
   std::optional< IpFields > ip{};
   std::optional< PortFields > ports{};
   std::optional< ArpFields > arp{};

   friend bool operator==( HeaderFields const &, HeaderFields const & ) = default;
};

struct VxlanFields {
   U8 flags = 0;
   U32 vni = 0;

   friend bool operator==( VxlanFields const &, VxlanFields const & ) = default;
};

struct DecodedFrame {
   // Underlay only.
   std::optional< HeaderFields > outer{};
   std::optional< VxlanFields > vxlan{};
   // The frame as a host has sent it.
   std::optional< HeaderFields > inner{};

   friend bool operator==( DecodedFrame const &, DecodedFrame const & ) = default;
};

// A frame that came in by an underlay interface, or by any other.
DecodedFrame decode( Bytes frame, bool isUnderlay );

}  // namespace Chip
