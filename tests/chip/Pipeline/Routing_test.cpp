// Routed unicast, known L3 multicast: what is routed, and what a routed frame looks like.
#include <Frames/Headers.h>
#include <tins/ethernetII.h>
#include <tins/ip.h>
#include <tins/ipv6.h>

#include "Leaf.h"

namespace RoutingTest {

using namespace PipelineTest;

constexpr std::size_t kIp = 14;

Chip::ForwardingConfig withRoutes() {
   Chip::ForwardingConfig config = leaf1Config();
   config.hostRoutes = { { ip( "192.0.2.3" ), { 10, kHost3 } },
                         { ip( "198.51.100.1" ), { 20, kHost3 } },
                         { ip( "2001:db8:100::3" ), { 10, kHost3 } },
                         { ip( "192.0.2.2" ), { 10, kHost2 } } };
   config.multicastRoutes = { { ip( "239.1.1.1" ), {} },   { ip( "239.1.1.20" ), { 20 } },
                              { ip( "224.0.0.251" ), {} }, { ip( "ff0e::1" ), {} },
                              { ip( "ff02::1:1" ), {} },   { ip( "ff01::1" ), {} } };
   return config;
}

class Routing : public testing::Test {
 protected:
   Routing() { leaf1.learn( kHost3, kPort3 ); }

   Leaf leaf1{ withRoutes() };
};

TEST_F( Routing, AnIpv4FrameGetsNewAddressesAndOneLessOfItsTtl ) {
   FrameStory const story = leaf1.forward( unicast( fromHost1(), kRouter, ip( "192.0.2.3" ) ) );
   std::vector< U8 > const bytes = leaf1.wire.at( kPort3 );
   Tins::EthernetII const frame( bytes.data(), static_cast< U32 >( bytes.size() ) );
   EXPECT_EQ( frame.dst_addr().to_string(), kHost3.stringValue() );
   EXPECT_EQ( frame.src_addr().to_string(), kRouter.stringValue() );
   auto const & header = frame.rfind_pdu< Tins::IP >();
   EXPECT_EQ( header.ttl(), 63 );
   EXPECT_EQ( Chip::internetChecksum( Chip::Bytes( bytes ).subspan( kIp, 20 ) ), 0 );
   EXPECT_EQ( story.inner->destination, kRouter ) << "the story is of the frame that came";
}

TEST_F( Routing, AnIpv6FrameGetsNewAddressesAndOneLessOfItsHopLimit ) {
   FrameFields frame = unicast( fromHost1(), kRouter, ip( "2001:db8:100::3" ) );
   frame.sourceIp = ip( "2001:db8:100::1" );
   leaf1.forward( frame );
   frame.destination = kHost3;
   frame.source = kRouter;
   frame.timeToLive = 63;
   EXPECT_EQ( leaf1.wire.at( kPort3 ), bytesOf( frame ) );
}

TEST_F( Routing, ARouteLeadsIntoAnotherVlan ) {
   FrameFields host = fromHost1();
   host.source = kHost3;
   leaf1.forward( kPort2, bytesOf( host ) );  // untagged there is VLAN 20
   FrameFields frame = unicast( fromHost1(), kRouter, ip( "198.51.100.1" ) );
   FrameStory const story = leaf1.forward( frame );
   EXPECT_EQ( story.inner->vlan, 10 );
   EXPECT_EQ( verdictOn( story, "Ethernet2" ), "sent" );
   frame.destination = kHost3;
   frame.source = kRouter;
   frame.timeToLive = 63;
   EXPECT_EQ( leaf1.wire.at( kPort2 ), bytesOf( frame ) );
}

TEST_F( Routing, ARoutedFrameMayLeaveByThePortOfItsArrival ) {
   FrameFields frame = unicast( fromHost1(), kRouter, ip( "192.0.2.3" ) );
   EXPECT_EQ( verdictOn( leaf1.forward( kPort3, bytesOf( frame ) ), "Ethernet3" ), "sent" );
}

TEST_F( Routing, ARouteLeadsIntoATunnel ) {
   leaf1.learnBehindLeaf2( kHost2 );
   FrameStory const story = leaf1.forward( unicast( fromHost1(), kRouter, ip( "192.0.2.2" ) ) );
   ASSERT_EQ( story.copies.size(), 1U );
   EXPECT_EQ( story.copies[ 0 ].remoteVtep, kLeaf2 );
   std::vector< U8 > const bytes = leaf1.wire.at( kUnderlay );
   constexpr std::size_t outer = 50;
   constexpr std::size_t ttl = outer + kIp + 8;
   EXPECT_EQ( bytes.at( ttl ), 63 );
}

TEST_F( Routing, MulticastIsNotChanged ) {
   FrameFields const frame = unicast( fromHost1(), kGroupMac4, ip( "239.1.1.1" ) );
   EXPECT_EQ( kindOf( leaf1.forward( frame ) ), "routed-multicast" );
   EXPECT_EQ( leaf1.wire.at( kPort3 ), bytesOf( frame ) );
}

TEST_F( Routing, MulticastIsKnownInTheVlansOfItsRoute ) {
   FrameFields const frame = unicast( fromHost1(), kGroupMac4, ip( "239.1.1.20" ) );
   EXPECT_EQ( kindOf( leaf1.forward( kPort1, bytesOf( frame ) ) ), "l2-multicast" );
   EXPECT_EQ( kindOf( leaf1.forward( kPort2, bytesOf( frame ) ) ), "routed-multicast" );
}

TEST_F( Routing, MulticastThatCannotBeRoutedIsBridged ) {
   FrameFields frame = unicast( fromHost1(), kGroupMac4, ip( "239.1.1.1" ) );
   frame.timeToLive = 1;
   EXPECT_EQ( kindOf( leaf1.forward( frame ) ), "l2-multicast" ) << "TTL";
   frame.timeToLive = 64;
   std::vector< U8 > bytes = bytesOf( frame );
   bytes[ kIp + 10 ] = static_cast< U8 >( bytes[ kIp + 10 ] + 1 );
   EXPECT_EQ( kindOf( leaf1.forward( kPort1, bytes ) ), "l2-multicast" ) << "checksum";
   bytes[ kIp ] = 0x44;
   EXPECT_EQ( kindOf( leaf1.forward( kPort1, bytes ) ), "l2-multicast" ) << "header length";
   frame.destinationIp = ip( "224.0.0.251" );
   EXPECT_EQ( kindOf( leaf1.forward( frame ) ), "l2-multicast" ) << "local network control";
}

TEST_F( Routing, Ipv6MulticastNeedsAScopeWiderThanTheLink ) {
   FrameFields frame = unicast( fromHost1(), kGroupMac6, ip( "ff0e::1" ) );
   frame.sourceIp = ip( "2001:db8:100::1" );
   EXPECT_EQ( kindOf( leaf1.forward( frame ) ), "routed-multicast" );
   frame.destinationIp = ip( "ff02::1:1" );
   EXPECT_EQ( kindOf( leaf1.forward( frame ) ), "l2-multicast" );
   frame.destinationIp = ip( "ff01::1" );
   EXPECT_EQ( kindOf( leaf1.forward( frame ) ), "l2-multicast" );
}

}  // namespace RoutingTest
