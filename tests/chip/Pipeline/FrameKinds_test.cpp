// Every kind of frame, through a tunnel over IPv4 and IPv6 and from untagged and tagged access
// ports, with IPv4 and IPv6 inside: what it is taken for, and where it goes.
#include "Leaf.h"

namespace FrameKindsTest {

using namespace PipelineTest;

enum class From { Ipv4Tunnel, Ipv6Tunnel, Untagged, Tagged };
enum class Inside { Ipv4, Ipv6 };

struct Way {
   From from;
   Inside inside;

   bool isTunnel() const { return from == From::Ipv4Tunnel || from == From::Ipv6Tunnel; }
   VornalPort port() const {
      return isTunnel() ? kUnderlay : from == From::Tagged ? kPort2 : kPort1;
   }
   std::string_view arrival() const {
      return isTunnel() ? "Ethernet49" : from == From::Tagged ? "Ethernet2" : "Ethernet1";
   }
   IpGenAddr address( std::string_view ipv4, std::string_view ipv6 ) const {
      return ip( inside == Inside::Ipv4 ? ipv4 : ipv6 );
   }
};

std::string nameOfWay( testing::TestParamInfo< Way > const & info ) {
   std::string_view const from = std::array{ "Ipv4Tunnel", "Ipv6Tunnel", "Untagged",
                                             "Tagged" }[ static_cast< U8 >( info.param.from ) ];
   return std::string( from ) + ( info.param.inside == Inside::Ipv4 ? "WithIpv4" : "WithIpv6" );
}

class FrameKinds : public testing::TestWithParam< Way > {
 protected:
   FrameKinds() : leaf1( config() ) { leaf1.learn( kHost3, kPort3 ); }

   static Chip::ForwardingConfig config() {
      Chip::ForwardingConfig config = leaf1Config();
      config.hostRoutes = { { ip( "192.0.2.3" ), { 10, kHost3 } },
                            { ip( "2001:db8:100::3" ), { 10, kHost3 } } };
      config.multicastRoutes = { { ip( "239.1.1.1" ), {} }, { ip( "ff0e::1:101" ), { 10 } } };
      return config;
   }

   FrameFields frameTo( MacAddress mac, IpGenAddr const & destination ) const {
      FrameFields frame = GetParam().isTunnel() ? fromLeaf2() : fromHost1();
      if ( GetParam().from == From::Ipv6Tunnel ) {
         frame.outer->sourceVtep = kLeaf2v6;
         frame.outer->destinationVtep = kLeaf1v6;
      }
      if ( GetParam().from == From::Tagged ) {
         frame.vlan = 10;
      }
      frame.destination = mac;
      frame.sourceIp = GetParam().address( "192.0.2.2", "2001:db8:100::2" );
      frame.destinationIp = destination;
      return frame;
   }
   FrameStory forward( MacAddress mac, IpGenAddr const & destination ) {
      return leaf1.forward( GetParam().port(), bytesOf( frameTo( mac, destination ) ) );
   }

   // It went to all interfaces of VLAN 10 but its own, and from access interfaces to both VTEPs.
   void expectFlooded( FrameStory const & story ) const {
      std::size_t vteps = 0;
      for ( Copy const & copy : story.copies ) {
         bool const isArrival = copy.intfId == intf( GetParam().arrival() ) && !copy.remoteVtep;
         EXPECT_EQ( nameOf( copy.verdict ), isArrival ? "arrival" : "sent" );
         vteps += copy.remoteVtep ? 1U : 0U;
      }
      EXPECT_EQ( vteps, GetParam().isTunnel() ? 0U : 2U );
      EXPECT_EQ( story.copies.size(), 4 + vteps );
      EXPECT_EQ( leaf1.wire.sent.size(), GetParam().isTunnel() ? 4U : 5U );
   }
   void expectOnlyToPort3( FrameStory const & story ) const {
      ASSERT_EQ( story.copies.size(), 1U );
      EXPECT_EQ( story.copies[ 0 ],
                 ( Copy{
                    .intfId = intf( "Ethernet3" ), .port = kPort3, .verdict = Verdict::Sent } ) );
      EXPECT_EQ( leaf1.wire.ports(), std::vector{ kPort3 } );
   }

   Leaf leaf1;
};

TEST_P( FrameKinds, BroadcastGoesEverywhere ) {
   FrameStory const story =
      forward( MacAddress::broadcast(), GetParam().address( "192.0.2.255", "ff02::1" ) );
   EXPECT_EQ( kindOf( story ), "broadcast" );
   expectFlooded( story );
}

TEST_P( FrameKinds, UnicastToAnUnknownAddressGoesEverywhere ) {
   FrameStory const story =
      forward( kNobody, GetParam().address( "192.0.2.77", "2001:db8:100::77" ) );
   EXPECT_EQ( kindOf( story ), "unknown-unicast" );
   expectFlooded( story );
}

TEST_P( FrameKinds, MulticastWithoutARouteGoesEverywhere ) {
   FrameStory const story = forward( kGroupMac4, GetParam().address( "239.1.1.9", "ff0e::1:109" ) );
   EXPECT_EQ( kindOf( story ), "l2-multicast" );
   expectFlooded( story );
}

TEST_P( FrameKinds, MulticastWithARouteIsKnownL3Multicast ) {
   FrameStory const story = forward( kGroupMac4, GetParam().address( "239.1.1.1", "ff0e::1:101" ) );
   EXPECT_EQ( kindOf( story ), "routed-multicast" );
   expectFlooded( story );
}

TEST_P( FrameKinds, UnicastToALearnedAddressGoesThereOnly ) {
   FrameStory const story = forward( kHost3, GetParam().address( "192.0.2.3", "2001:db8:100::3" ) );
   EXPECT_EQ( kindOf( story ), "known-unicast" );
   expectOnlyToPort3( story );
}

TEST_P( FrameKinds, UnicastToTheRouterGoesToItsHostOnly ) {
   FrameStory const story =
      forward( kRouter, GetParam().address( "192.0.2.3", "2001:db8:100::3" ) );
   EXPECT_EQ( kindOf( story ), "routed-unicast" );
   expectOnlyToPort3( story );
}

TEST_P( FrameKinds, TheStoryTellsWhereItCameFrom ) {
   IpGenAddr const destination = GetParam().address( "192.0.2.255", "ff02::1" );
   FrameStory const story = forward( MacAddress::broadcast(), destination );
   EXPECT_EQ( story.arrivalPort, GetParam().port() );
   EXPECT_EQ( story.arrivalIntfId, intf( GetParam().arrival() ) );
   FrameFields const frame = frameTo( MacAddress::broadcast(), destination );
   EXPECT_EQ( story.length, bytesOf( frame ).size() );
   EXPECT_EQ( *story.inner,
              ( Chip::InnerStory{ .source = frame.source,
                                  .destination = frame.destination,
                                  .vlan = 10,
                                  .etherType = GetParam().inside == Inside::Ipv4 ? U16{ 0x0800 }
                                                                                 : U16{ 0x86dd },
                                  .ip = Chip::IpStory{ *frame.sourceIp, destination } } ) );
   ASSERT_EQ( story.tunnel.has_value(), GetParam().isTunnel() );
   if ( story.tunnel ) {
      U16 const vpIndex = GetParam().from == From::Ipv4Tunnel ? 2 : 12;
      EXPECT_EQ( *story.tunnel,
                 ( Chip::TunnelStory{ .source = frame.outer->sourceVtep,
                                      .destination = frame.outer->destinationVtep,
                                      .vni = 10100,
                                      .sourceGport = Chip::vxlanGportOf( vpIndex ) } ) );
   }
}

INSTANTIATE_TEST_SUITE_P(
   Ways, FrameKinds,
   testing::Values( Way{ From::Ipv4Tunnel, Inside::Ipv4 }, Way{ From::Ipv4Tunnel, Inside::Ipv6 },
                    Way{ From::Ipv6Tunnel, Inside::Ipv4 }, Way{ From::Ipv6Tunnel, Inside::Ipv6 },
                    Way{ From::Untagged, Inside::Ipv4 }, Way{ From::Untagged, Inside::Ipv6 },
                    Way{ From::Tagged, Inside::Ipv4 }, Way{ From::Tagged, Inside::Ipv6 } ),
   nameOfWay );

}  // namespace FrameKindsTest
