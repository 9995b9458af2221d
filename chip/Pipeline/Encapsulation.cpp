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
   macAtIs( all, MacAddress::kBytes, ownMac );
   u16AtIs( all, EthernetHeader::kAddresses, isIpv4_ ? EtherType::kIpv4 : EtherType::kIpv6 );
   MutableBytes const ip = all.subspan( kIp );
   if ( isIpv4_ ) {
      constexpr U16 doNotFragment = 0x4000;
      u8AtIs( ip, 0, 0x45 );
      u16AtIs( ip, 6, doNotFragment );
      u8AtIs( ip, kIpv4TimeToLive, kTimeToLive );
      u8AtIs( ip, 9, IpProtocol::kUdp );
      ipAtIs( ip, 12, source );
      ipAtIs( ip, 16, destination );
   } else {
      u8AtIs( ip, 0, 0x60 );
      u8AtIs( ip, 6, IpProtocol::kUdp );
      u8AtIs( ip, kIpv6HopLimit, kTimeToLive );
      ipAtIs( ip, 8, source );
      ipAtIs( ip, 24, destination );
   }
   std::size_t const udp = kIp + ( isIpv4_ ? kIpv4Size : kIpv6Size );
   u16AtIs( all, udp + 2, kVxlanPort );
   u8AtIs( all, udp + kUdpSize, kVxlanFlags );
   size_ = udp + kUdpSize + kVxlanSize;
}

void OuterHeaders::write( PerFrame const & frame, MutableBytes room ) const {
   QUELM_ASSERT( room.size() == size_ );
   std::copy_n( bytes_.begin(), size_, room.begin() );
   macAtIs( room, 0, frame.neighbour );
   MutableBytes const ip = room.subspan( kIp );
   std::size_t const udpSize = kUdpSize + kVxlanSize + frame.innerSize;
   if ( isIpv4_ ) {
      u16AtIs( ip, 2, kIpv4Size + udpSize );
      u16AtIs( ip, kIpv4Checksum, internetChecksum( ip.first( kIpv4Size ) ) );
   } else {
      u16AtIs( ip, 4, udpSize );
   }
   MutableBytes const udp = room.last( kUdpSize + kVxlanSize );
   u16AtIs( udp, 0, sourcePortOf( frame.flowHash ) );
   u16AtIs( udp, 4, udpSize );
   u24AtIs( udp, kUdpSize + 4, frame.vni );
}

}  // namespace Chip
