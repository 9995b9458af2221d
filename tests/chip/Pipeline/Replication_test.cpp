// Who gets a frame, and in which form: VLAN tags, port channels, the way back.
#include "Leaf.h"

namespace ReplicationTest {

using namespace PipelineTest;

constexpr std::size_t kAddresses = 12;

// The same frame, with a VLAN tag put in.
std::vector< U8 > tagged( std::vector< U8 > bytes, U16 tag ) {
   std::array< U8, 4 > const field{ 0x81, 0x00, static_cast< U8 >( tag >> 8 ),
                                    static_cast< U8 >( tag ) };
   bytes.insert( bytes.begin() + kAddresses, field.begin(), field.end() );
   return bytes;
}

VornalPort portOf( FrameStory const & story, std::string_view interface ) {
   for ( Copy const & copy : story.copies ) {
      if ( copy.intfId == intf( interface ) ) {
         return copy.port;
      }
   }
   return {};
}

FrameFields flowFromLeaf2( U16 sourcePort ) {
   FrameFields frame = fromLeaf2();
   frame.sourcePort = sourcePort;
   return frame;
}

TEST( Replication, AFrameFromATunnelLeavesWithoutItsOuterHeaders ) {
   Leaf leaf1;
   FrameFields inner = fromLeaf2();
   leaf1.forward( inner );
   inner.outer.reset();
   EXPECT_EQ( leaf1.wire.at( kPort1 ), bytesOf( inner ) );
   EXPECT_EQ( leaf1.wire.at( kPort2 ), tagged( bytesOf( inner ), 10 ) );
}

TEST( Replication, ATagIsPutInAndTakenOut ) {
   Leaf leaf1;
   std::vector< U8 > const untagged = bytesOf( fromHost1() );
   leaf1.forward( kPort1, untagged );
   EXPECT_EQ( leaf1.wire.at( kPort2 ), tagged( untagged, 10 ) );
   EXPECT_EQ( leaf1.wire.at( kPort3 ), untagged );
   leaf1.forward( kPort2, tagged( untagged, 10 ) );
   EXPECT_EQ( leaf1.wire.at( kPort1 ), untagged );
   EXPECT_EQ( leaf1.wire.at( kPort3 ), untagged );
}

TEST( Replication, ATagKeepsItsPriority ) {
   Leaf leaf1;
   std::vector< U8 > const untagged = bytesOf( fromHost1() );
   VornalPort const member =
      portOf( leaf1.forward( kPort2, tagged( untagged, 0xa00a ) ), "Port-Channel1" );
   EXPECT_EQ( leaf1.wire.at( member ), tagged( untagged, 0xa00a ) );
   leaf1.forward( kPort1, tagged( untagged, 0xa000 ) );
   EXPECT_EQ( leaf1.wire.at( kPort2 ), tagged( untagged, 0xa00a ) );
   EXPECT_EQ( leaf1.wire.at( kPort3 ), untagged );
}

TEST( Replication, AFrameMayCarryTheTagOfAnUntaggedVlan ) {
   Leaf leaf1;
   std::vector< U8 > const untagged = bytesOf( fromHost1() );
   leaf1.forward( kPort1, tagged( untagged, 10 ) );
   EXPECT_EQ( leaf1.wire.at( kPort3 ), untagged );
}

TEST( Replication, AFrameStaysInItsVlan ) {
   Leaf leaf1;
   FrameStory const story = leaf1.forward( kPort2, bytesOf( fromHost1() ) );
   EXPECT_EQ( story.inner->vlan, 20 );
   EXPECT_EQ( story.copies.size(), 1U );
   EXPECT_EQ( verdictOn( story, "Ethernet2" ), "arrival" );
   EXPECT_TRUE( leaf1.wire.sent.empty() );
}

TEST( Replication, WhatCameThroughATunnelEntersNoOther ) {
   Leaf leaf1;
   FrameStory const story = leaf1.forward( fromLeaf2() );
   EXPECT_EQ( verdictOn( story, "Ethernet49" ), "-" );
   EXPECT_EQ( story.copies.size(), 4U );
}

TEST( Replication, APortChannelGetsOneCopyByAMemberThatTheFlowChooses ) {
   Leaf leaf1;
   std::map< VornalPort, int > flows;
   for ( U16 sourcePort = 1; sourcePort <= 1000; ++sourcePort ) {
      VornalPort const member =
         portOf( leaf1.forward( flowFromLeaf2( sourcePort ) ), "Port-Channel1" );
      EXPECT_EQ( portOf( leaf1.forward( flowFromLeaf2( sourcePort ) ), "Port-Channel1" ), member );
      ++flows[ member ];
   }
   EXPECT_EQ( flows.size(), 2U );
   EXPECT_GT( flows[ kPort4 ], 400 );
   EXPECT_GT( flows[ kPort5 ], 400 );
}

TEST( Replication, AFlowTakesTheSameMemberThroughATunnelAndFromAnAccessPort ) {
   Leaf leaf1;
   for ( U16 sourcePort = 1; sourcePort <= 100; ++sourcePort ) {
      FrameFields frame = flowFromLeaf2( sourcePort );
      VornalPort const member = portOf( leaf1.forward( frame ), "Port-Channel1" );
      frame.outer.reset();
      EXPECT_EQ( portOf( leaf1.forward( frame ), "Port-Channel1" ), member );
      frame.vlan = 10;
      EXPECT_EQ( portOf( leaf1.forward( kPort2, bytesOf( frame ) ), "Port-Channel1" ), member );
   }
}

TEST( Replication, AFrameFromAMemberDoesNotGoBackByAnother ) {
   Leaf leaf1;
   for ( VornalPort const & member : { kPort4, kPort5 } ) {
      FrameStory const story = leaf1.forward( member, tagged( bytesOf( fromHost1() ), 10 ) );
      EXPECT_EQ( story.arrivalIntfId, intf( "Port-Channel1" ) );
      EXPECT_EQ( verdictOn( story, "Port-Channel1" ), "arrival" );
      EXPECT_TRUE( leaf1.wire.at( kPort4 ).empty() );
      EXPECT_TRUE( leaf1.wire.at( kPort5 ).empty() );
   }
}

TEST( Replication, APortChannelWithoutMembersHasNoPort ) {
   Chip::ForwardingConfig config = leaf1Config();
   config.portChannels[ 0 ].members.clear();
   Leaf leaf1( config );
   EXPECT_EQ( verdictOn( leaf1.forward( fromLeaf2() ), "Port-Channel1" ), "no-port" );
}

TEST( Replication, AVlanWithoutVniIsBridgedLocally ) {
   Chip::ForwardingConfig config = leaf1Config();
   config.vlanToVni.erase( 10 );
   config.floodLists.clear();
   Leaf leaf1( config );
   FrameStory const story = leaf1.forward( fromHost1() );
   EXPECT_EQ( verdictOn( story, "Ethernet3" ), "sent" );
   EXPECT_EQ( verdictOn( story, "Ethernet49" ), "-" );
}

TEST( Replication, AFrameKeepsMoreThanOneTag ) {
   Leaf leaf1;
   std::vector< U8 > const inside = tagged( bytesOf( fromHost1() ), 300 );
   leaf1.forward( kPort2, tagged( inside, 10 ) );
   EXPECT_EQ( leaf1.wire.at( kPort3 ), inside );
}

TEST( Replication, CountsFramesAndCopies ) {
   Leaf leaf1;
   leaf1.forward( fromLeaf2() );
   leaf1.forward( fromHost1() );
   leaf1.forward( kPort2, { 1, 2, 3 } );
   Chip::PipelineCounters const & counters = leaf1.pipeline.counters();
   EXPECT_EQ( counters.frames, 3U );
   EXPECT_EQ( counters[ FrameKind::Broadcast ], 2U );
   EXPECT_EQ( counters[ DropReason::FrameTooShort ], 1U );
   EXPECT_EQ( counters[ Verdict::Sent ], 9U );
   EXPECT_EQ( counters[ Verdict::Arrival ], 1U );
}

}  // namespace ReplicationTest
