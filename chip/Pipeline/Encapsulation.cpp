#include <Pipeline/Encapsulation.h>

namespace Chip {

namespace {

constexpr std::size_t kIp = EthernetHeader::kUntagged;  // where the IP header begins
constexpr U8 kTimeToLive = 64;

// Of the VTEPs' dynamic port numbers (RFC 7348, section 5).
U16 sourcePortOf( U32 flowHash ) {
   constexpr U32 first = 49152;
   constexpr U32 count = 16384;
   return static_cast< U16 >( first + flowHash % count );
}

}  // namespace

OuterHeaders::OuterHeaders( MacAddress ownMac, Pelk::IpGenAddr const & source,
                            Pelk::IpGenAddr const & destination )
      : isIpv4_( source.family() == Pelk::IpGenAddr::Family::ipv4 ) {
   QUELM_ASSERT( source.family() == destination.family() );
   MutableBytes const all( bytes_ );
   putMac( all, MacAddress::kBytes, ownMac );
   putU16( all, EthernetHeader::kAddresses, isIpv4_ ? EtherType::kIpv4 : EtherType::kIpv6 );
   MutableBytes const ip = all.subspan( kIp );
   if ( isIpv4_ ) {
      constexpr U16 doNotFragment = 0x4000;
      putU8( ip, 0, 0x45 );
      putU16( ip, 6, doNotFragment );
      putU8( ip, kIpv4TimeToLive, kTimeToLive );
      putU8( ip, 9, IpProtocol::kUdp );
      putIp( ip, 12, source );
      putIp( ip, 16, destination );
   } else {
      putU8( ip, 0, 0x60 );
      putU8( ip, 6, IpProtocol::kUdp );
      putU8( ip, kIpv6HopLimit, kTimeToLive );
      putIp( ip, 8, source );
      putIp( ip, 24, destination );
   }
   std::size_t const udp = kIp + ( isIpv4_ ? kIpv4Size : kIpv6Size );
   putU16( all, udp + 2, kVxlanPort );
   putU8( all, udp + kUdpSize, kVxlanFlags );
   size_ = udp + kUdpSize + kVxlanSize;
}

void OuterHeaders::write( PerFrame const & frame, MutableBytes room ) const {
   QUELM_ASSERT( room.size() == size_ );
   std::copy_n( bytes_.begin(), size_, room.begin() );
   putMac( room, 0, frame.neighbour );
   MutableBytes const ip = room.subspan( kIp );
   std::size_t const udpSize = kUdpSize + kVxlanSize + frame.innerSize;
   if ( isIpv4_ ) {
      putU16( ip, 2, kIpv4Size + udpSize );
      putU16( ip, kIpv4Checksum, internetChecksum( ip.first( kIpv4Size ) ) );
   } else {
      putU16( ip, 4, udpSize );
   }
   MutableBytes const udp = room.last( kUdpSize + kVxlanSize );
   putU16( udp, 0, sourcePortOf( frame.flowHash ) );
   putU16( udp, 4, udpSize );
   putU24( udp, kUdpSize + 4, frame.vni );
}

}  // namespace Chip
