// A frame's headers as far as they can be read, of whole frames and of everything less.
#include <Explanation/DecodedFrame.h>

#include "../Pipeline/Leaf.h"

namespace DecodedFrameTest {

using namespace PipelineTest;
using Chip::decode;
using Chip::DecodedFrame;
using Chip::HeaderFields;
using Chip::IpFault;
using Chip::IpFields;
using Chip::PortFields;

constexpr std::size_t kVxlanHeaders = 50;  // Ethernet, IPv4, UDP and VXLAN

HeaderFields broadcastOfHost2() {
   return { .source = kHost2,
            .destination = MacAddress::broadcast(),
            .etherType = 0x0800,
            .ip = IpFields{ .source = ip( "192.0.2.2" ),
                            .destination = ip( "192.0.2.255" ),
                            .protocol = 17,
                            .timeToLive = 64 },
            .ports = PortFields{ 10000, 10001 } };
}

TEST( DecodedFrame, FromATunnelHasOuterAndInnerHeaders ) {
   FrameFields frame = fromLeaf2();
   frame.outer->timeToLive = 7;
   DecodedFrame const decoded = decode( bytesOf( frame ), true );
   EXPECT_EQ( decoded.outer, ( HeaderFields{ .source = MacAddress( 0x020000000002 ),
                                             .destination = MacAddress( 0x020000000001 ),
                                             .etherType = 0x0800,
                                             .ip = IpFields{ .source = kLeaf2,
                                                             .destination = kLeaf1,
                                                             .protocol = 17,
                                                             .timeToLive = 7 },
                                             .ports = PortFields{ 49152, 4789 } } ) );
   EXPECT_EQ( decoded.vxlan, ( Chip::VxlanFields{ 0x08, 10100 } ) );
   EXPECT_EQ( decoded.inner, broadcastOfHost2() );
}

TEST( DecodedFrame, OfOtherUdpFromUnderlayHasOuterHeadersOnly ) {
   std::vector< U8 > bytes = bytesOf( fromLeaf2() );
   bytes[ 14 + 20 + 3 ] = 0xb6;
   DecodedFrame const decoded = decode( bytes, true );
   EXPECT_EQ( decoded.outer->ports, ( PortFields{ 49152, 4790 } ) );
   EXPECT_EQ( decoded.vxlan, std::nullopt );
   EXPECT_EQ( decoded.inner, std::nullopt );
}

TEST( DecodedFrame, FromAccessHasItsOwnHeadersOnly ) {
   FrameFields frame = fromLeaf2();
   frame.outer.reset();
   frame.vlan = 10;
   std::vector< U8 > bytes = bytesOf( frame );
   bytes[ 14 ] = 0xa0;  // with a priority
   HeaderFields tagged = broadcastOfHost2();
   tagged.tag = 0xa00a;
   EXPECT_EQ( decode( bytes, false ), ( DecodedFrame{ .inner = tagged } ) );
   DecodedFrame const vxlan = decode( bytesOf( fromLeaf2() ), false );
   EXPECT_EQ( vxlan.outer, std::nullopt );
   EXPECT_EQ( vxlan.inner->ports, ( PortFields{ 49152, 4789 } ) ) << "a host's own VXLAN";
}

TEST( DecodedFrame, OverIpv6 ) {
   FrameFields frame = fromLeaf2();
   frame.outer->sourceVtep = kLeaf2v6;
   frame.outer->destinationVtep = kLeaf1v6;
   DecodedFrame const decoded = decode( bytesOf( frame ), true );
   EXPECT_EQ( decoded.outer->ip, ( IpFields{ .source = kLeaf2v6,
                                             .destination = kLeaf1v6,
                                             .protocol = 17,
                                             .timeToLive = 64 } ) );
   EXPECT_EQ( decoded.inner, broadcastOfHost2() );
}

TEST( DecodedFrame, ArpHasItsAddresses ) {
   FrameFields frame = fromHost1();
   frame.content = FrameContent::Arp;
   frame.destinationIp = ip( "192.0.2.2" );
   std::vector< U8 > bytes = bytesOf( frame );
   EXPECT_EQ( decode( bytes, false ).inner->arp,
              ( Chip::ArpFields{ 1, kHost1, ip( "192.0.2.1" ), MacAddress(),
                                 ip( "192.0.2.2" ) } ) );
   bytes[ 14 + 5 ] = 16;  // addresses of another length
   EXPECT_EQ( decode( bytes, false ).inner->arp, std::nullopt );
}

TEST( DecodedFrame, GoesOnBehindAHeaderThatIsWrong ) {
   std::vector< U8 > bytes = bytesOf( fromLeaf2() );
   bytes[ 14 + 8 ] = 9;             // the TTL, and so the checksum
   bytes[ kVxlanHeaders - 8 ] = 0;  // the VXLAN flags
   bytes[ 14 + 20 + 4 ] = 0xff;     // a UDP length beyond the packet
   DecodedFrame const decoded = decode( bytes, true );
   EXPECT_FALSE( decoded.outer->ip->isChecksumRight );
   EXPECT_EQ( decoded.outer->ip->fault, IpFault::None );
   EXPECT_EQ( decoded.vxlan, ( Chip::VxlanFields{ 0, 10100 } ) );
   EXPECT_EQ( decoded.inner, broadcastOfHost2() );
}

TEST( DecodedFrame, EndsWhereTheOuterUdpEnds ) {
   std::vector< U8 > bytes = bytesOf( fromLeaf2() );
   Chip::putU16( bytes, 14 + 20 + 4, 8 + 8 + 13 );  // one byte less than an Ethernet header
   EXPECT_EQ( decode( bytes, true ).inner, std::nullopt );
   EXPECT_TRUE( decode( bytes, true ).vxlan );
}

TEST( DecodedFrame, OfABadIpHeaderShowsItsFieldsAndNothingBehind ) {
   std::vector< U8 > bytes = bytesOf( fromHost1() );
   bytes[ 14 ] = 0x4f;  // a header longer than the packet
   bytes[ 14 + 3 ] = 30;
   HeaderFields const inner = *decode( bytes, false ).inner;
   EXPECT_EQ( inner.ip->fault, IpFault::BadHeader );
   EXPECT_EQ( inner.ip->source, ip( "192.0.2.1" ) );
   EXPECT_FALSE( inner.ip->isChecksumRight );
   EXPECT_EQ( inner.ports, std::nullopt );
}

TEST( DecodedFrame, WhoseIpOptionsAreCutOffHasNothingBehindThem ) {
   std::vector< U8 > bytes = bytesOf( fromHost1() );
   bytes.resize( 14 + 40 );
   bytes[ 14 ] = 0x4f;  // 60 bytes of header
   bytes[ 14 + 3 ] = 255;
   HeaderFields const inner = *decode( bytes, false ).inner;
   EXPECT_EQ( inner.ip->fault, IpFault::Truncated );
   EXPECT_EQ( inner.ip->destination, ip( "192.0.2.255" ) );
   EXPECT_FALSE( inner.ip->isChecksumRight );
   EXPECT_EQ( inner.ports, std::nullopt );
}

TEST( DecodedFrame, HasNoPortsInThePaddingBehindThePacket ) {
   std::vector< U8 > bytes = bytesOf( fromHost1() );
   bytes[ 14 + 3 ] = 20 + 3;
   EXPECT_EQ( decode( bytes, false ).inner->ip->fault, IpFault::None );
   EXPECT_EQ( decode( bytes, false ).inner->ports, std::nullopt );
}

TEST( DecodedFrame, OfAFragmentHasNoPorts ) {
   std::vector< U8 > bytes = bytesOf( fromHost1() );
   bytes[ 14 + 6 ] = 0x20;
   EXPECT_TRUE( decode( bytes, false ).inner->ip->isFragment );
   EXPECT_EQ( decode( bytes, false ).inner->ports, std::nullopt );
}

// Each length of a frame shows what the whole frame shows, or less of it.
TEST( DecodedFrame, OfATruncatedFrameIsTheBeginning ) {
   std::vector< U8 > const whole = bytesOf( fromLeaf2() );
   for ( std::size_t size = 0; size < whole.size(); ++size ) {
      std::vector< U8 > const bytes( whole.begin(),
                                     whole.begin() + static_cast< std::ptrdiff_t >( size ) );
      DecodedFrame const decoded = decode( bytes, true );
      EXPECT_EQ( decoded.outer.has_value(), size >= 14 ) << size;
      EXPECT_EQ( decoded.outer && decoded.outer->ip, size >= 34 ) << size;
      EXPECT_EQ( decoded.outer && decoded.outer->ports, size >= 38 ) << size;
      EXPECT_EQ( decoded.vxlan.has_value(), size >= kVxlanHeaders ) << size;
      EXPECT_EQ( decoded.inner.has_value(), size >= kVxlanHeaders + 14 ) << size;
      EXPECT_EQ( decoded.inner && decoded.inner->ip, size >= kVxlanHeaders + 34 ) << size;
      EXPECT_EQ( decoded.inner && decoded.inner->ports, size >= kVxlanHeaders + 38 ) << size;
      EXPECT_TRUE( !decoded.outer || !decoded.outer->ip ||
                   decoded.outer->ip->fault == IpFault::Truncated )
         << size;
   }
}

}  // namespace DecodedFrameTest
