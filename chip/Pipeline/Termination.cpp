#include <Pipeline/Termination.h>

namespace Chip {

namespace {

using Failure = std::optional< DropReason >;

Failure readOuterIp( EthernetHeader const & ethernet, Bytes packet, IpHeader & ip ) {
   switch ( readIp( ethernet.etherType, packet, ip ) ) {
   case IpFault::Truncated: return DropReason::OuterTruncated;
   case IpFault::BadHeader: return DropReason::OuterBadHeader;
   case IpFault::None: break;
   }
   if ( !isChecksumRight( ip, packet ) ) {
      return DropReason::OuterBadChecksum;
   }
   return std::nullopt;
}

bool isOwnVtep( Tables const & tables, Pelk::IpGenAddr const & address ) {
   return address == tables.config.vtepIpv4 || address == tables.config.vtepIpv6;
}

// The payload of UDP, without the bytes behind its end. No port but VXLAN's is accepted.
Failure readUdp( IpHeader const & ip, Bytes datagram, Bytes & payload ) {
   if ( ip.isFragment ) {
      return DropReason::OuterFragment;
   }
   if ( ip.protocol != IpProtocol::kUdp ) {
      return DropReason::NotVxlan;
   }
   if ( datagram.size() < kUdpSize ) {
      return DropReason::BadUdpLength;
   }
   if ( u16At( datagram, 2 ) != kVxlanPort ) {
      return DropReason::NotVxlan;
   }
   std::size_t const length = u16At( datagram, 4 );
   if ( length < kUdpSize + kVxlanSize || length > datagram.size() ) {
      return DropReason::BadUdpLength;
   }
   payload = datagram.subspan( kUdpSize, length - kUdpSize );
   return std::nullopt;
}

// VTEP and VNI say where the frame belongs.
Failure findDomain( Tables const & tables, Bytes vxlan, TunnelStory & story, Terminated & result ) {
   if ( ( u8At( vxlan, 0 ) & kVxlanFlags ) == 0 ) {
      return DropReason::BadVxlanFlags;
   }
   story.vni = u24At( vxlan, 4 );
   Index const * const tunnel = valueIn( tables.tunnelOfVtep, story.source );
   if ( !tunnel || tables.tunnels[ *tunnel ].gport == 0 ) {
      return DropReason::UnknownVtep;
   }
   story.sourceGport = tables.tunnels[ *tunnel ].gport;
   Index const * const domain = valueIn( tables.domainOfVni, *story.vni );
   if ( !domain ) {
      return DropReason::UnknownVni;
   }
   result.tunnel = *tunnel;
   result.domain = *domain;
   return std::nullopt;
}

Failure readInner( Bytes vxlan, Terminated & result ) {
   result.inner = vxlan.subspan( kVxlanSize );
   std::optional< EthernetHeader > const inner = readEthernet( result.inner );
   if ( !inner ) {
      return DropReason::InnerTooShort;
   }
   if ( inner->tag ) {
      return DropReason::InnerVlanTag;
   }
   result.ethernet = *inner;
   return std::nullopt;
}

}  // namespace

std::optional< DropReason > terminate( Tables const & tables, Bytes frame, Terminated & result,
                                       std::optional< TunnelStory > & story ) {
   std::optional< EthernetHeader > const outer = readEthernet( frame );
   if ( !outer ) {
      return DropReason::FrameTooShort;
   }
   if ( outer->tag || !outer->isIp() ) {
      return DropReason::UnderlayNotIp;
   }
   Bytes const packet = frame.subspan( outer->size() );
   IpHeader ip;
   if ( Failure const failure = readOuterIp( *outer, packet, ip ) ) {
      return failure;
   }
   story = TunnelStory{ .source = ip.source, .destination = ip.destination };
   if ( !isOwnVtep( tables, ip.destination ) ) {
      return DropReason::NotForThisVtep;
   }
   Bytes vxlan;
   if ( Failure const failure = readUdp( ip, ip.payloadOf( packet ), vxlan ) ) {
      return failure;
   }
   if ( Failure const failure = findDomain( tables, vxlan, *story, result ) ) {
      return failure;
   }
   return readInner( vxlan, result );
}

}  // namespace Chip
