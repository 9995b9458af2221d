#include <Frames/Headers.h>

namespace Chip {

namespace {

IpFault readIpv4( Bytes packet, IpHeader & header ) {
   if ( packet.size() < kIpv4Size ) {
      return IpFault::Truncated;
   }
   std::size_t const total = u16At( packet, 2 );
   constexpr U16 moreFragmentsAndOffset = 0x3fff;
   header = { .source = ipv4At( packet, 12 ),
              .destination = ipv4At( packet, 16 ),
              .protocol = u8At( packet, 9 ),
              .timeToLive = u8At( packet, kIpv4TimeToLive ),
              .isFragment = ( u16At( packet, 6 ) & moreFragmentsAndOffset ) != 0,
              .size = ( u8At( packet, 0 ) & 0xfU ) * std::size_t{ 4 } };
   if ( u8At( packet, 0 ) >> 4 != 4 || header.size < kIpv4Size || total < header.size ) {
      return IpFault::BadHeader;
   }
   header.payloadSize = total - header.size;
   return total <= packet.size() ? IpFault::None : IpFault::Truncated;
}

IpFault readIpv6( Bytes packet, IpHeader & header ) {
   if ( packet.size() < kIpv6Size ) {
      return IpFault::Truncated;
   }
   header = { .source = ipv6At( packet, 8 ),
              .destination = ipv6At( packet, 24 ),
              .protocol = u8At( packet, 6 ),
              .timeToLive = u8At( packet, kIpv6HopLimit ),
              .isFragment = u8At( packet, 6 ) == IpProtocol::kIpv6Fragment,
              .size = kIpv6Size,
              .payloadSize = u16At( packet, 4 ) };
   if ( u8At( packet, 0 ) >> 4 != 6 ) {
      return IpFault::BadHeader;
   }
   return header.size + header.payloadSize <= packet.size() ? IpFault::None : IpFault::Truncated;
}

bool isRoutableIpv4( std::array< U8, 16 > const & address ) {
   bool const isLinkLocal = address[ 0 ] == 169 && address[ 1 ] == 254;
   bool const isLocalControl = address[ 0 ] == 224 && address[ 1 ] == 0 && address[ 2 ] == 0;
   bool const isOther = address[ 0 ] == 0 || address[ 0 ] == 127 || address[ 0 ] >= 240;
   return !isLinkLocal && !isLocalControl && !isOther;
}

bool isRoutableIpv6( Pelk::IpGenAddr const & address ) {
   std::array< U8, 16 > const bytes = address.bytes();
   constexpr int linkLocalScope = 2;
   if ( bytes[ 0 ] == 0xff ) {
      return ( bytes[ 1 ] & 0xf ) > linkLocalScope;
   }
   bool const isLinkLocal = bytes[ 0 ] == 0xfe && ( bytes[ 1 ] & 0xc0 ) == 0x80;
   bool const isUnspecifiedOrLoopback =
      std::all_of( bytes.begin(), bytes.end() - 1, []( U8 byte ) { return byte == 0; } ) &&
      bytes.back() <= 1;
   return !isLinkLocal && !isUnspecifiedOrLoopback;
}

}  // namespace

IpFault readIp( U16 etherType, Bytes packet, IpHeader & header ) {
   return etherType == EtherType::kIpv4 ? readIpv4( packet, header ) : readIpv6( packet, header );
}

bool isChecksumRight( IpHeader const & header, Bytes packet ) {
   // A header with its right checksum in it sums up to all ones.
   return !header.isIpv4() || internetChecksum( packet.first( header.size ) ) == 0;
}

U16 internetChecksum( Bytes bytes ) {
   U32 sum = 0;
   for ( std::size_t at = 0; at < bytes.size(); at += 2 ) {
      sum += u16At( bytes, at );
   }
   while ( sum >> 16 != 0 ) {
      sum = ( sum & 0xffff ) + ( sum >> 16 );
   }
   return static_cast< U16 >( ~sum );
}

bool isMulticast( Pelk::IpGenAddr const & address ) {
   U8 const first = address.bytes()[ 0 ];
   return address.family() == Pelk::IpGenAddr::Family::ipv4 ? first >> 4 == 0xe : first == 0xff;
}

bool isRoutable( Pelk::IpGenAddr const & address ) {
   return address.family() == Pelk::IpGenAddr::Family::ipv4 ? isRoutableIpv4( address.bytes() )
                                                            : isRoutableIpv6( address );
}

}  // namespace Chip
