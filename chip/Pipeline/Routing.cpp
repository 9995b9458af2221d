#include <Pipeline/Routing.h>

namespace Chip {

InnerIp readInnerIp( EthernetHeader const & ethernet, Bytes frame ) {
   InnerIp ip;
   ip.isIp = ethernet.isIp();
   if ( ip.isIp ) {
      ip.packet = frame.subspan( ethernet.size() );
      ip.fault = readIp( ethernet.etherType, ip.packet, ip.header );
   }
   return ip;
}

bool isRoutedMulticast( Tables const & tables, InnerIp const & ip, Vlan vlan ) {
   if ( !ip.isSound() || ip.header.timeToLive <= 1 || !isRoutable( ip.header.destination ) ) {
      return false;
   }
   auto const * const vlans = valueIn( tables.multicastRoutes, ip.header.destination );
   bool const hasRoute = vlans && ( ( *vlans )->empty() || ( *vlans )->contains( vlan ) );
   return hasRoute && isChecksumRight( ip.header, ip.packet );
}

std::optional< DropReason > findRoute( Tables const & tables, InnerIp const & ip, Route & route ) {
   if ( !ip.isIp ) {
      return DropReason::ForRouter;
   }
   if ( !ip.isSound() ) {
      return DropReason::BadIpHeader;
   }
   IpHeader const & header = ip.header;
   if ( !isChecksumRight( header, ip.packet ) ) {
      return DropReason::BadIpChecksum;
   }
   if ( isMulticast( header.destination ) || !isRoutable( header.destination ) ||
        !isRoutable( header.source ) ) {
      return DropReason::NotRoutable;
   }
   if ( header.timeToLive <= 1 ) {
      return DropReason::TimeToLiveEnded;
   }
   Route const * const found = valueIn( tables.hostRoutes, header.destination );
   if ( !found ) {
      return DropReason::NoRoute;
   }
   route = *found;
   return std::nullopt;
}

void rewriteRouted( MacAddress ownMac, Route const & route, EthernetHeader const & ethernet,
                    MutableBytes frame ) {
   putMac( frame, 0, route.mac );
   putMac( frame, MacAddress::kBytes, ownMac );
   MutableBytes const ip = frame.subspan( ethernet.size() );
   if ( ethernet.etherType == EtherType::kIpv6 ) {
      putU8( ip, kIpv6HopLimit, static_cast< U8 >( u8At( ip, kIpv6HopLimit ) - 1 ) );
      return;
   }
   std::size_t const size = ( u8At( ip, 0 ) & 0xfU ) * std::size_t{ 4 };
   putU8( ip, kIpv4TimeToLive, static_cast< U8 >( u8At( ip, kIpv4TimeToLive ) - 1 ) );
   putU16( ip, kIpv4Checksum, 0 );
   putU16( ip, kIpv4Checksum, internetChecksum( Bytes( ip ).first( size ) ) );
}

}  // namespace Chip
