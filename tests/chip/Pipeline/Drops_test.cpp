// Every reason for which a whole frame is dropped, each by a frame that has nothing else wrong.
#include <functional>

#include <Frames/Headers.h>

#include "Leaf.h"

namespace DropsTest {

using namespace PipelineTest;

using ByteList = std::vector< U8 >;

constexpr std::size_t kIp = 14;    // where the outer IP header begins
constexpr std::size_t kUdp4 = 34;  // and the outer UDP header, over IPv4
constexpr std::size_t kUdp6 = 54;  // and over IPv6
constexpr std::size_t kVxlan4 = 42;

struct Change {
   std::size_t at;
   U8 value;
};

ByteList with( ByteList bytes, std::vector< Change > const & changes ) {
   for ( Change const & change : changes ) {
      bytes.at( change.at ) = change.value;
   }
   return bytes;
}

// Changes in an IPv4 header that starts at `header`, whose checksum is made right again.
ByteList withIpv4( ByteList bytes, std::size_t header, std::vector< Change > const & changes ) {
   bytes = with( std::move( bytes ), changes );
   Chip::MutableBytes const ip = Chip::MutableBytes( bytes ).subspan( header, 20 );
   Chip::putU16( ip, 10, 0 );
   Chip::putU16( ip, 10, Chip::internetChecksum( ip ) );
   return bytes;
}

ByteList overIpv4() {
   return bytesOf( fromLeaf2() );
}
ByteList overIpv6() {
   FrameFields frame = fromLeaf2();
   frame.outer->sourceVtep = kLeaf2v6;
   frame.outer->destinationVtep = kLeaf1v6;
   return bytesOf( frame );
}
// A frame from host 1, tagged where there is a VLAN to tag it with.
ByteList fromAccess( MacAddress destination, IpGenAddr const & to,
                     std::optional< U16 > vlan = std::nullopt ) {
   FrameFields frame = unicast( fromHost1(), destination, to );
   frame.vlan = vlan;
   if ( to.family() == IpGenAddr::Family::ipv6 ) {
      frame.sourceIp = ip( "2001:db8:100::1" );
   }
   return bytesOf( frame );
}
ByteList outerChanged( std::function< void( FrameFields & ) > const & change ) {
   FrameFields frame = fromLeaf2();
   change( frame );
   return bytesOf( frame );
}

struct Case {
   DropReason reason;
   std::string what;
   VornalPort port;
   ByteList bytes;
};

std::vector< Case > arrivals() {
   ByteList const whole = fromAccess( kHost2, ip( "192.0.2.2" ) );
   return {
      { DropReason::UnknownPort, "noInterface", { 0, 9 }, whole },
      { DropReason::UnknownPort, "noUnit", { 7, 1 }, whole },
      { DropReason::UnknownPort, "noSuchPort", { 0, 1000 }, whole },
      { DropReason::FrameTooShort, "empty", kPort1, {} },
      { DropReason::FrameTooShort, "withinItsAddresses", kPort1, ByteList( 13 ) },
      { DropReason::FrameTooShort,
        "withinItsTag",
        kPort2,
        { 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 2, 0x81, 0, 0 } },
      { DropReason::FrameTooShort, "onUnderlay", kUnderlay, ByteList( 13 ) },
      { DropReason::UnknownVlan, "notOfTheInterface", kPort1,
        fromAccess( kHost2, ip( "192.0.2.2" ), 20 ) },
      { DropReason::UnknownVlan, "ofNoInterface", kPort1,
        fromAccess( kHost2, ip( "192.0.2.2" ), 11 ) },
      { DropReason::UnknownVlan, "reserved", kPort1,
        fromAccess( kHost2, ip( "192.0.2.2" ), 4095 ) },
      { DropReason::UnknownVlan, "nothingUntagged", kPort4, whole },
      { DropReason::UnknownVlan, "priorityOnlyIsUntagged", kPort4,
        fromAccess( kHost2, ip( "192.0.2.2" ), 0 ) },
   };
}

std::vector< Case > outerHeaders() {
   ByteList const v4 = overIpv4();
   ByteList const v6 = overIpv6();
   ByteList const shortPacket( v4.begin(), v4.begin() + kUdp4 );
   U8 const noUdp = 20 + 4;
   std::vector< Case > cases{
      { DropReason::UnderlayNotIp, "arp", {}, with( v4, { { 12, 0x08 }, { 13, 0x06 } } ) },
      { DropReason::UnderlayNotIp, "tagged", {}, with( v4, { { 12, 0x81 }, { 13, 0x00 } } ) },
      { DropReason::OuterTruncated, "ipv4", {}, ByteList( v4.begin(), v4.end() - 1 ) },
      { DropReason::OuterTruncated, "ipv6", {}, ByteList( v6.begin(), v6.end() - 1 ) },
      { DropReason::OuterTruncated,
        "withinIpv4Header",
        {},
        ByteList( v4.begin(), v4.begin() + 33 ) },
      { DropReason::OuterTruncated,
        "withinIpv6Header",
        {},
        ByteList( v6.begin(), v6.begin() + 53 ) },
      { DropReason::OuterBadHeader, "ipv4Version", {}, withIpv4( v4, kIp, { { kIp, 0x55 } } ) },
      { DropReason::OuterBadHeader,
        "ipv4HeaderLength",
        {},
        withIpv4( v4, kIp, { { kIp, 0x44 } } ) },
      { DropReason::OuterBadHeader,
        "ipv4TotalLength",
        {},
        withIpv4( v4, kIp, { { kIp + 2, 0 }, { kIp + 3, 19 } } ) },
      { DropReason::OuterBadHeader, "ipv6Version", {}, with( v6, { { kIp, 0x40 } } ) },
      { DropReason::OuterBadChecksum, "changedOnTheWay", {}, with( v4, { { kIp + 8, 63 } } ) },
      { DropReason::NotForThisVtep, "ipv4", {}, outerChanged( []( FrameFields & frame ) {
           frame.outer->destinationVtep = kLeaf3;
        } ) },
      { DropReason::NotForThisVtep, "ipv6", {}, with( v6, { { kIp + 39, 9 } } ) },
      { DropReason::OuterFragment, "first", {}, withIpv4( v4, kIp, { { kIp + 6, 0x20 } } ) },
      { DropReason::OuterFragment, "later", {}, withIpv4( v4, kIp, { { kIp + 7, 0x01 } } ) },
      { DropReason::OuterFragment, "ipv6", {}, with( v6, { { kIp + 6, 44 } } ) },
      { DropReason::NotVxlan, "tcp", {}, withIpv4( v4, kIp, { { kIp + 9, 6 } } ) },
      { DropReason::NotVxlan, "otherPort", {}, with( v4, { { kUdp4 + 3, 0xb6 } } ) },
      { DropReason::NotVxlan, "ipv6HopByHop", {}, with( v6, { { kIp + 6, 0 } } ) },
      { DropReason::BadUdpLength,
        "noHeader",
        {},
        withIpv4( v4, kIp, { { kIp + 2, 0 }, { kIp + 3, noUdp } } ) },
      { DropReason::BadUdpLength,
        "tooShortForVxlan",
        {},
        with( v4, { { kUdp4 + 4, 0 }, { kUdp4 + 5, 15 } } ) },
      { DropReason::BadUdpLength, "longerThanThePacket", {}, with( v4, { { kUdp4 + 4, 0xff } } ) },
      { DropReason::BadUdpLength,
        "longerThanTheIpv6Packet",
        {},
        with( v6, { { kUdp6 + 4, 0xff } } ) },
      { DropReason::BadVxlanFlags, "noValidVni", {}, with( v4, { { kVxlan4, 0xf7 } } ) },
      { DropReason::UnknownVtep, "noTunnel", {}, outerChanged( []( FrameFields & frame ) {
           frame.outer->sourceVtep = ip( "10.0.0.9" );
        } ) },
      { DropReason::UnknownVtep, "floodedToOnly", {}, outerChanged( []( FrameFields & frame ) {
           frame.outer->sourceVtep = ip( "10.0.0.4" );
        } ) },
      { DropReason::UnknownVni, "noVlan", {}, outerChanged( []( FrameFields & frame ) {
           frame.outer->vni = 10300;
        } ) },
      { DropReason::InnerTooShort,
        "nothingInside",
        {},
        with( v4, { { kUdp4 + 4, 0 }, { kUdp4 + 5, 16 } } ) },
      { DropReason::InnerVlanTag, "tagged", {}, outerChanged( []( FrameFields & frame ) {
           frame.vlan = 10;
        } ) },
   };
   for ( Case & one : cases ) {
      one.port = kUnderlay;
   }
   return cases;
}

std::vector< Case > decisions() {
   FrameFields large = fromHost1();
   large.payloadSize = 9600;
   FrameFields largeInside = fromLeaf2();
   largeInside.payloadSize = 9600;
   FrameFields const toHost2 = unicast( fromLeaf2(), kHost2, ip( "192.0.2.2" ) );
   FrameFields fromLeaf3ToHost2 = toHost2;
   fromLeaf3ToHost2.outer->sourceVtep = kLeaf3;
   fromLeaf3ToHost2.source = kHost3;
   return {
      { DropReason::FrameTooLong, "fromAccess", kPort1, bytesOf( large ) },
      { DropReason::FrameTooLong, "inside", kUnderlay, bytesOf( largeInside ) },
      { DropReason::ReservedAddress, "lldp", kPort1,
        fromAccess( MacAddress( 0x0180c200000e ), ip( "192.0.2.2" ) ) },
      { DropReason::SameInterface, "hostBehindTheSamePort", kPort1,
        fromAccess( kHost1, ip( "192.0.2.1" ) ) },
      { DropReason::TunnelToTunnel, "bridged", kUnderlay, bytesOf( fromLeaf3ToHost2 ) },
      { DropReason::TunnelToTunnel, "routed", kUnderlay,
        bytesOf( unicast( fromLeaf2(), kRouter, ip( "192.0.2.2" ) ) ) },
   };
}

std::vector< Case > routed() {
   ByteList const v4 = fromAccess( kRouter, ip( "192.0.2.2" ) );
   ByteList const v6 = fromAccess( kRouter, ip( "2001:db8:100::2" ) );
   FrameFields arp = fromHost1();
   arp.destination = kRouter;
   arp.content = FrameContent::Arp;
   std::vector< Case > cases{
      { DropReason::ForRouter, "arp", {}, bytesOf( arp ) },
      { DropReason::BadIpHeader, "ipv4Version", {}, withIpv4( v4, kIp, { { kIp, 0x65 } } ) },
      { DropReason::BadIpHeader, "ipv6Version", {}, with( v6, { { kIp, 0x40 } } ) },
      { DropReason::BadIpHeader, "notWhole", {}, ByteList( v4.begin(), v4.end() - 1 ) },
      { DropReason::BadIpChecksum, "changedOnTheWay", {}, with( v4, { { kIp + 8, 63 } } ) },
      { DropReason::TimeToLiveEnded, "one", {}, withIpv4( v4, kIp, { { kIp + 8, 1 } } ) },
      { DropReason::TimeToLiveEnded, "zero", {}, withIpv4( v4, kIp, { { kIp + 8, 0 } } ) },
      { DropReason::TimeToLiveEnded, "hopLimit", {}, with( v6, { { kIp + 7, 1 } } ) },
      { DropReason::NoRoute, "ipv4", {}, fromAccess( kRouter, ip( "192.0.2.99" ) ) },
      { DropReason::NoRoute, "ipv6", {}, fromAccess( kRouter, ip( "2001:db8:100::99" ) ) },
      { DropReason::UnknownHost, "neverHeardOf", {}, fromAccess( kRouter, ip( "192.0.2.3" ) ) },
   };
   for ( std::string_view const to : { "239.1.1.1", "169.254.1.1", "127.0.0.1", "0.0.0.0",
                                       "255.255.255.255", "fe80::1", "::1", "::", "ff0e::1" } ) {
      cases.push_back( { DropReason::NotRoutable,
                         "to" + std::to_string( cases.size() ),
                         {},
                         fromAccess( kRouter, ip( to ) ) } );
   }
   FrameFields fromLinkLocal = unicast( fromHost1(), kRouter, ip( "2001:db8:100::2" ) );
   fromLinkLocal.sourceIp = ip( "fe80::1" );
   cases.push_back( { DropReason::NotRoutable, "fromLinkLocal", {}, bytesOf( fromLinkLocal ) } );
   for ( Case & one : cases ) {
      one.port = kPort1;
   }
   return cases;
}

std::vector< Case > allCases() {
   std::vector< Case > all;
   for ( auto const & some : { arrivals(), outerHeaders(), decisions(), routed() } ) {
      all.insert( all.end(), some.begin(), some.end() );
   }
   return all;
}

class Drops : public testing::TestWithParam< Case > {
 protected:
   Drops() {
      Chip::ForwardingConfig config = leaf1Config();
      config.floodLists[ 10200 ] = { ip( "10.0.0.4" ) };
      config.hostRoutes = { { ip( "192.0.2.2" ), { 10, kHost2 } },
                            { ip( "2001:db8:100::2" ), { 10, kHost2 } },
                            { ip( "192.0.2.3" ), { 10, kHost3 } } };
      leaf1.pipeline.forwardingIs( config );
      leaf1.learn( kHost1, kPort1 );
      leaf1.learnBehindLeaf2( kHost2 );
   }

   Leaf leaf1;
};

TEST_P( Drops, TheFrameIsCountedByItsReasonAndGoesNowhere ) {
   DropReason const reason = GetParam().reason;
   U64 const before = leaf1.pipeline.counters()[ reason ];
   FrameStory const story = leaf1.forward( GetParam().port, GetParam().bytes );
   EXPECT_EQ( reasonOf( story ), nameOf( reason ) );
   EXPECT_EQ( leaf1.pipeline.counters()[ reason ], before + 1 );
   EXPECT_TRUE( leaf1.wire.sent.empty() );
   EXPECT_TRUE( story.copies.empty() );
   EXPECT_TRUE( story.ingress.empty() );
}

std::string nameOfCase( testing::TestParamInfo< Case > const & one ) {
   std::string name( nameOf( one.param.reason ) );
   std::erase( name, '-' );
   return name + "_" + one.param.what;
}

INSTANTIATE_TEST_SUITE_P( Reasons, Drops, testing::ValuesIn( allCases() ), nameOfCase );

TEST( DropReasons, AllOfThemAreTriedHere ) {
   std::set< DropReason > tried;
   for ( Case const & one : allCases() ) {
      tried.insert( one.reason );
   }
   EXPECT_EQ( tried.size(), Chip::kDropReasons );
}

TEST( DropReasons, AndVerdictsHaveNamesOfTheirOwn ) {
   std::set< std::string_view > names;
   for ( std::size_t n = 0; n < Chip::kDropReasons; ++n ) {
      names.insert( nameOf( static_cast< DropReason >( n ) ) );
   }
   EXPECT_EQ( names.size(), Chip::kDropReasons );
   EXPECT_EQ( nameOf( DropReason::UnknownVni ), "unknown-vni" );
   EXPECT_EQ( nameOf( DropReason::FrameTooLong ), "frame-too-long" );
   EXPECT_EQ( nameOf( DropReason::UnknownHost ), "unknown-host" );
   EXPECT_EQ( nameOf( Verdict::NotDesignated ), "not-designated" );
}

TEST( DropReasons, AStoryTellsHowFarTheFrameWasRead ) {
   Leaf leaf1;
   FrameFields frame = fromLeaf2();
   frame.outer->vni = 10300;
   FrameStory const story = leaf1.forward( frame );
   EXPECT_EQ( story.tunnel->source, kLeaf2 );
   EXPECT_EQ( story.tunnel->vni, 10300U );
   EXPECT_EQ( story.tunnel->sourceGport, Chip::vxlanGportOf( 2 ) );
   EXPECT_FALSE( story.inner );
   EXPECT_FALSE( story.kind );
}

TEST( DropReasons, ReservedBitsAndPaddingAndIpOptionsAreNoReason ) {
   Leaf leaf1;
   ByteList const frame = overIpv4();
   EXPECT_EQ( reasonOf( leaf1.forward( kUnderlay, with( frame, { { kVxlan4, 0xff },
                                                                 { kVxlan4 + 7, 0xff } } ) ) ),
              "-" );
   ByteList padded = frame;
   padded.resize( padded.size() + 20 );
   EXPECT_EQ( reasonOf( leaf1.forward( kUnderlay, padded ) ), "-" );
   EXPECT_EQ( leaf1.wire.at( kPort1 ).size(), frame.size() - 50 );
   ByteList options = frame;
   options.insert( options.begin() + kUdp4, { 1, 1, 1, 0 } );
   options[ kIp + 3 ] = static_cast< U8 >( options[ kIp + 3 ] + 4 );
   options[ kIp ] = 0x46;
   Chip::MutableBytes const ipHeader = Chip::MutableBytes( options ).subspan( kIp, 24 );
   Chip::putU16( ipHeader, 10, 0 );
   Chip::putU16( ipHeader, 10, Chip::internetChecksum( ipHeader ) );
   EXPECT_EQ( reasonOf( leaf1.forward( kUnderlay, options ) ), "-" );
}

}  // namespace DropsTest
