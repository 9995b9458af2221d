#include <Frames/FrameFields.h>

#include <array>
#include <cstring>
#include <memory>

#include <Frames/Headers.h>
#include <Quelm/Error.h>
#include <tins/arp.h>
#include <tins/dot1q.h>
#include <tins/ethernetII.h>
#include <tins/icmpv6.h>
#include <tins/ip.h>
#include <tins/ipv6.h>
#include <tins/rawpdu.h>
#include <tins/udp.h>

namespace Chip {

namespace {

using Pelk::IpGenAddr;
using Packet = std::unique_ptr< Tins::PDU >;

constexpr U16 kExperimental = 0x88b5;
// Of an IP packet, with room for all headers that come in front of a payload.
constexpr std::size_t kLargestPayload = 65535 - 200;
constexpr U8 kNeighbourDiscoveryHopLimit = 255;

[[noreturn]] void refuse( std::string const & reason ) {
   throw Quelm::Error( "frame: " + reason );
}

Tins::HWAddress< 6 > tinsOf( MacAddress address ) {
   std::array< U8, MacAddress::kBytes > bytes{};
   for ( std::size_t n = 0; n < bytes.size(); ++n ) {
      bytes[ n ] = static_cast< U8 >( address.value() >> ( 40 - 8 * n ) );
   }
   return { bytes.data() };
}

// Of the family that the address has.
Tins::IPv4Address tinsIpv4( IpGenAddr const & address ) {
   U32 inNetworkOrder = 0;
   std::memcpy( &inNetworkOrder, address.bytes().data(), sizeof( inNetworkOrder ) );
   return Tins::IPv4Address( inNetworkOrder );
}

Tins::IPv6Address tinsIpv6( IpGenAddr const & address ) {
   return { address.bytes().data() };
}

bool isIpv4( IpGenAddr const & address ) {
   return address.family() == IpGenAddr::Family::ipv4;
}

void sameFamily( IpGenAddr const & a, IpGenAddr const & b ) {
   if ( a.family() != b.family() ) {
      refuse( a.stringValue() + " and " + b.stringValue() + " are of different families" );
   }
}

// The IP header for addresses of one family.
Packet ipOf( IpGenAddr const & source, IpGenAddr const & destination, U8 timeToLive ) {
   sameFamily( source, destination );
   if ( isIpv4( source ) ) {
      auto ip = std::make_unique< Tins::IP >( tinsIpv4( destination ), tinsIpv4( source ) );
      ip->ttl( timeToLive );
      ip->flags( Tins::IP::DONT_FRAGMENT );
      return ip;
   }
   auto ip = std::make_unique< Tins::IPv6 >( tinsIpv6( destination ), tinsIpv6( source ) );
   ip->hop_limit( timeToLive );
   return ip;
}

std::vector< U8 > payloadOf( std::size_t size ) {
   if ( size > kLargestPayload ) {
      refuse( "a payload of " + std::to_string( size ) + " bytes is too long; at most " +
              std::to_string( kLargestPayload ) + " fit" );
   }
   std::vector< U8 > payload( size );
   for ( std::size_t n = 0; n < size; ++n ) {
      payload[ n ] = static_cast< U8 >( n );
   }
   return payload;
}

struct Addresses {
   IpGenAddr source;
   IpGenAddr destination;
};

Addresses addressesOf( FrameFields const & fields ) {
   if ( !fields.sourceIp || !fields.destinationIp ) {
      refuse( "its IP addresses are missing" );
   }
   sameFamily( *fields.sourceIp, *fields.destinationIp );
   return { *fields.sourceIp, *fields.destinationIp };
}

Packet arpOf( FrameFields const & fields ) {
   auto const [ source, destination ] = addressesOf( fields );
   if ( !isIpv4( source ) ) {
      refuse( "ARP is for IPv4 addresses; of IPv6 addresses it is neighbour solicitation" );
   }
   auto arp = std::make_unique< Tins::ARP >( tinsIpv4( destination ), tinsIpv4( source ),
                                             Tins::ARP::hwaddress_type(), tinsOf( fields.source ) );
   arp->opcode( Tins::ARP::REQUEST );
   return arp;
}

Packet solicitationOf( FrameFields const & fields ) {
   auto const [ source, target ] = addressesOf( fields );
   if ( isIpv4( source ) ) {
      refuse( "neighbour solicitation is for IPv6 addresses; of IPv4 addresses it is ARP" );
   }
   // The solicited-node address (RFC 4291, section 2.7.1).
   std::array< U8, 16 > group{ 0xff, 0x02, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0xff };
   std::copy_n( target.bytes().begin() + 13, 3, group.begin() + 13 );
   Packet ip = ipOf( source, IpGenAddr::ipv6( group ), kNeighbourDiscoveryHopLimit );
   Tins::ICMPv6 icmp( Tins::ICMPv6::NEIGHBOUR_SOLICIT );
   icmp.target_addr( tinsIpv6( target ) );
   icmp.source_link_layer_addr( tinsOf( fields.source ) );
   ip->inner_pdu( icmp );
   return ip;
}

Packet udpOf( FrameFields const & fields ) {
   auto const [ source, destination ] = addressesOf( fields );
   Packet ip = ipOf( source, destination, fields.timeToLive );
   ip->inner_pdu( Tins::UDP( fields.destinationPort, fields.sourcePort ) /
                  Tins::RawPDU( payloadOf( fields.payloadSize ) ) );
   return ip;
}

Packet contentOf( FrameFields const & fields ) {
   switch ( fields.content ) {
   case FrameContent::Arp: return arpOf( fields );
   case FrameContent::NeighbourSolicitation: return solicitationOf( fields );
   case FrameContent::Udp: return udpOf( fields );
   case FrameContent::Bare: break;
   }
   return std::make_unique< Tins::RawPDU >( payloadOf( fields.payloadSize ) );
}

// The frame without its outer headers.
std::vector< U8 > innerBytes( FrameFields const & fields ) {
   Tins::EthernetII frame( tinsOf( fields.destination ), tinsOf( fields.source ) );
   U16 const bareType = fields.content == FrameContent::Bare ? kExperimental : U16{ 0 };
   Packet content = contentOf( fields );
   if ( fields.vlan ) {
      Tins::Dot1Q tag( *fields.vlan );
      tag.payload_type( bareType );
      tag.inner_pdu( content.release() );
      frame.inner_pdu( tag );
   } else {
      frame.payload_type( bareType );
      frame.inner_pdu( content.release() );
   }
   return frame.serialize();
}

std::vector< U8 > enveloped( OuterFields const & outer, std::vector< U8 > const & inner ) {
   std::vector< U8 > vxlan( kVxlanSize );
   putU8( vxlan, 0, kVxlanFlags );
   putU24( vxlan, 4, outer.vni );
   vxlan.insert( vxlan.end(), inner.begin(), inner.end() );

   Packet ip = ipOf( outer.sourceVtep, outer.destinationVtep, outer.timeToLive );
   ip->inner_pdu( Tins::UDP( kVxlanPort, outer.sourcePort ) / Tins::RawPDU( vxlan ) );
   Tins::EthernetII frame( tinsOf( outer.destination ), tinsOf( outer.source ) );
   frame.inner_pdu( ip.release() );
   return frame.serialize();
}

}  // namespace

std::vector< U8 > bytesOf( FrameFields const & fields ) {
   std::vector< U8 > inner = innerBytes( fields );
   return fields.outer ? enveloped( *fields.outer, inner ) : inner;
}

}  // namespace Chip
