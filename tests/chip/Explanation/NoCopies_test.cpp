// Why an interface has no copy of a frame: each reason once, with the names that belong to it.
#include "Explained.h"

namespace NoCopiesTest {

using namespace PipelineTest;

FrameFields inVlan( U16 vlan ) {
   FrameFields frame = fromHost1();
   frame.vlan = vlan;
   return frame;
}

// leaf1 with a second underlay interface, Ethernet50.
Chip::ForwardingConfig twoUnderlays() {
   Chip::ForwardingConfig config = leaf1Config();
   config.interfaces.push_back(
      { .intfId = intf( "Ethernet50" ), .unit = 1, .logicalPort = 50, .isUnderlay = true } );
   return config;
}

TEST( NoCopies, ADroppedFrameGoesNowhere ) {
   Leaf leaf1;
   Explanation const why = explained( leaf1, inVlan( 11 ) );
   EXPECT_EQ( why.noCopies.size(), 7U ) << "six interfaces and a port channel";
   NoCopy expected{ .intfId = intf( "Ethernet1" ),
                    .reason = NoCopyReason::FrameDropped,
                    .dropReason = DropReason::UnknownVlan };
   EXPECT_EQ( noCopyOn( why, "Ethernet1" ), expected );
   expected.intfId = intf( "Port-Channel1" );
   EXPECT_EQ( noCopyOn( why, "Port-Channel1" ), expected );
   expected.intfId = intf( "Ethernet4" );
   expected.portChannel = intf( "Port-Channel1" );
   EXPECT_EQ( noCopyOn( why, "Ethernet4" ), expected );
}

TEST( NoCopies, KnownUnicastIsForOnePlace ) {
   Leaf leaf1;
   leaf1.learn( kHost3, kPort3 );
   Explanation const why = explained( leaf1, unicast( fromHost1(), kHost3, ip( "192.0.2.3" ) ) );
   EXPECT_EQ( noCopyOn( why, "Ethernet3" ), std::nullopt );
   EXPECT_EQ( noCopyOn( why, "Ethernet2" ),
              ( NoCopy{ .intfId = intf( "Ethernet2" ),
                        .reason = NoCopyReason::OnePlace,
                        .instead = { .intfId = intf( "Ethernet3" ) } } ) );
   EXPECT_EQ( noCopyOn( why, "Ethernet49" )->reason, NoCopyReason::OnePlace );
}

TEST( NoCopies, ThePlaceMayBeBehindATunnel ) {
   Leaf leaf1;
   leaf1.learnBehindLeaf2( kHost2 );
   Explanation const why = explained( leaf1, unicast( fromHost1(), kHost2, ip( "192.0.2.2" ) ) );
   EXPECT_EQ( noCopyOn( why, "Ethernet2" ),
              ( NoCopy{ .intfId = intf( "Ethernet2" ),
                        .reason = NoCopyReason::OnePlace,
                        .instead = { intf( "Ethernet49" ), kLeaf2 } } ) );
   EXPECT_EQ( noCopyOn( why, "Ethernet49" ), std::nullopt );
}

TEST( NoCopies, AnInterfaceIsNotInTheVlan ) {
   Leaf leaf1;
   Explanation const why = explained( leaf1, kPort2, fromHost1() );
   NoCopy expected{ .intfId = intf( "Ethernet3" ), .reason = NoCopyReason::NotInVlan, .vlan = 20 };
   EXPECT_EQ( noCopyOn( why, "Ethernet3" ), expected );
   expected.intfId = intf( "Ethernet5" );
   expected.portChannel = intf( "Port-Channel1" );
   EXPECT_EQ( noCopyOn( why, "Ethernet5" ), expected );
   EXPECT_EQ( noCopyOn( why, "Ethernet2" ), std::nullopt ) << "the arrival has a copy's verdict";
}

TEST( NoCopies, TheFlowTakesAnotherMember ) {
   Leaf leaf1;
   Explanation const why = explained( leaf1, fromLeaf2() );
   bool const takes4 = copyOn( why, "Port-Channel1" ).story.port == kPort4;
   std::string_view const taken = takes4 ? "Ethernet4" : "Ethernet5";
   std::string_view const other = takes4 ? "Ethernet5" : "Ethernet4";
   EXPECT_EQ( noCopyOn( why, taken ), std::nullopt );
   EXPECT_EQ( noCopyOn( why, "Port-Channel1" ), std::nullopt );
   EXPECT_EQ( noCopyOn( why, other ), ( NoCopy{ .intfId = intf( other ),
                                                .reason = NoCopyReason::OtherMember,
                                                .portChannel = intf( "Port-Channel1" ),
                                                .instead = { .intfId = intf( taken ) } } ) );
}

TEST( NoCopies, AFrameFromAMemberDoesNotGoBackByAnother ) {
   Leaf leaf1;
   EXPECT_EQ( noCopyOn( explained( leaf1, kPort4, inVlan( 10 ) ), "Ethernet5" ),
              ( NoCopy{ .intfId = intf( "Ethernet5" ),
                        .reason = NoCopyReason::ArrivalMember,
                        .portChannel = intf( "Port-Channel1" ),
                        .instead = { .intfId = intf( "Ethernet4" ) } } ) );
}

TEST( NoCopies, AMemberMayBeOfAPortChannelWithoutCopy ) {
   Leaf leaf1;
   leaf1.learn( kHost3, kPort3 );
   EXPECT_EQ( noCopyOn( explained( leaf1, unicast( fromHost1(), kHost3, ip( "192.0.2.3" ) ) ),
                        "Ethernet4" ),
              ( NoCopy{ .intfId = intf( "Ethernet4" ),
                        .reason = NoCopyReason::OnePlace,
                        .portChannel = intf( "Port-Channel1" ),
                        .instead = { .intfId = intf( "Ethernet3" ) } } ) );
}

TEST( NoCopies, WhatCameThroughATunnelEntersNoOther ) {
   Leaf leaf1;
   EXPECT_EQ( noCopyOn( explained( leaf1, fromLeaf2() ), "Ethernet49" ),
              ( NoCopy{ .intfId = intf( "Ethernet49" ), .reason = NoCopyReason::FromTunnel } ) );
}

TEST( NoCopies, AVlanWithoutVniEntersNoTunnel ) {
   Chip::ForwardingConfig config = leaf1Config();
   config.vlanToVni.erase( 10 );
   config.floodLists.clear();
   Leaf leaf1( config );
   EXPECT_EQ( noCopyOn( explained( leaf1, fromHost1() ), "Ethernet49" ),
              ( NoCopy{
                 .intfId = intf( "Ethernet49" ), .reason = NoCopyReason::NoVni, .vlan = 10 } ) );
}

TEST( NoCopies, AVniMayFloodToNobody ) {
   Leaf leaf1;
   EXPECT_EQ( noCopyOn( explained( leaf1, kPort2, fromHost1() ), "Ethernet49" ),
              ( NoCopy{ .intfId = intf( "Ethernet49" ),
                        .reason = NoCopyReason::EmptyFloodList,
                        .vlan = 20,
                        .vni = 10200 } ) );
}

TEST( NoCopies, TheFlowTakesAnotherUnderlayInterface ) {
   Chip::ForwardingConfig config = twoUnderlays();
   config.floodLists = { { 10100, { kLeaf2 } } };
   Leaf leaf1( config );
   leaf1.learnBehindLeaf2( kHost2 );
   for ( FrameFields const & frame :
         { fromHost1(), unicast( fromHost1(), kHost2, ip( "192.0.2.2" ) ) } ) {
      Explanation const why = explained( leaf1, frame );
      bool const takes49 = why.copies.back().story.intfId == intf( "Ethernet49" );
      std::string_view const taken = takes49 ? "Ethernet49" : "Ethernet50";
      std::string_view const other = takes49 ? "Ethernet50" : "Ethernet49";
      EXPECT_EQ( noCopyOn( why, taken ), std::nullopt );
      EXPECT_EQ( noCopyOn( why, other ), ( NoCopy{ .intfId = intf( other ),
                                                   .reason = NoCopyReason::OtherUnderlay,
                                                   .instead = { intf( taken ), kLeaf2 } } ) );
   }
}

TEST( NoCopies, NoTunnelOfTheFloodListLeadsOverAnInterface ) {
   Chip::ForwardingConfig config = twoUnderlays();
   config.tunnels[ kLeaf2 ].underlay = { intf( "Ethernet49" ) };
   config.tunnels[ kLeaf3 ].underlay = { intf( "Ethernet49" ) };
   Leaf leaf1( config );
   leaf1.learnBehindLeaf2( kHost2 );
   EXPECT_EQ( noCopyOn( explained( leaf1, fromHost1() ), "Ethernet50" ),
              ( NoCopy{ .intfId = intf( "Ethernet50" ), .reason = NoCopyReason::NotOnTheWay } ) );
   EXPECT_EQ( noCopyOn( explained( leaf1, unicast( fromHost1(), kHost2, ip( "192.0.2.2" ) ) ),
                        "Ethernet50" ),
              ( NoCopy{ .intfId = intf( "Ethernet50" ),
                        .reason = NoCopyReason::OnePlace,
                        .instead = { intf( "Ethernet49" ), kLeaf2 } } ) );
}

TEST( NoCopies, AnUnderlayPortChannelMayHaveNoMember ) {
   Chip::ForwardingConfig config = leaf1Config();
   config.portChannels.push_back( { .intfId = intf( "Port-Channel9" ), .isUnderlay = true } );
   Leaf leaf1( config );
   EXPECT_EQ( noCopyOn( explained( leaf1, fromHost1() ), "Port-Channel9" ),
              ( NoCopy{ .intfId = intf( "Port-Channel9" ), .reason = NoCopyReason::NoMember } ) );
}

}  // namespace NoCopiesTest
