// Where MAC addresses are: learned on both sides, moved, kept over changes that they survive.
#include <Frames/Bytes.h>

#include "Leaf.h"

namespace LearningTest {

using namespace PipelineTest;

// The interface or VTEP to which a frame for that address goes, from a port that has not that
// address behind it; "everywhere" when it is not known.
std::string placeOf( Leaf & leaf1, MacAddress address, VornalPort from = kPort3 ) {
   FrameFields frame = fromHost1();
   frame.source = MacAddress( 0x00005e0053aa );
   frame.destination = address;
   FrameStory const story = leaf1.forward( from, bytesOf( frame ) );
   if ( story.kind == FrameKind::UnknownUnicast ) {
      return "everywhere";
   }
   EXPECT_EQ( story.copies.size(), 1U );
   Copy const & copy = story.copies.at( 0 );
   return copy.remoteVtep ? copy.remoteVtep->stringValue() : copy.intfId.stringValue();
}

TEST( Learning, AnAddressIsWhereItsFrameCameFrom ) {
   Leaf leaf1;
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "everywhere" );
   leaf1.learn( kHost1, kPort1 );
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "Ethernet1" );
   leaf1.learnBehindLeaf2( kHost2 );
   EXPECT_EQ( placeOf( leaf1, kHost2 ), "10.0.0.2" );
}

TEST( Learning, AnAddressMoves ) {
   Leaf leaf1;
   leaf1.learn( kHost1, kPort1 );
   leaf1.learn( kHost1, kPort2 );
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "Ethernet2" );
   leaf1.learnBehindLeaf2( kHost1 );
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "10.0.0.2" );
   leaf1.learn( kHost1, kPort1 );
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "Ethernet1" );
   EXPECT_EQ( leaf1.pipeline.learned(), 2U ) << "host 1 and the one that asks";
}

// leaf1, on which leaf2 is attached to the segment on the port channel, or on another interface.
Chip::ForwardingConfig sharedWithLeaf2( std::string_view interface ) {
   Chip::ForwardingConfig config = leaf1Config();
   config.sharedWith[ intf( interface ) ] = { kLeaf2 };
   return config;
}

TEST( Learning, AnAddressOnASegmentStaysThereWhenItIsSeenThroughAVtepOfTheSegment ) {
   Leaf leaf1( sharedWithLeaf2( "Port-Channel1" ) );
   leaf1.learn( kHost1, kPort5 );
   leaf1.learnBehindLeaf2( kHost1 );
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "Port-Channel1" );
   Leaf single( sharedWithLeaf2( "Ethernet1" ) );
   single.learn( kHost1, kPort1 );
   single.learnBehindLeaf2( kHost1 );
   EXPECT_EQ( placeOf( single, kHost1 ), "Ethernet1" );
}

TEST( Learning, AnAddressOnASegmentMovesToAVtepThatIsNotOnIt ) {
   Leaf leaf1( sharedWithLeaf2( "Ethernet1" ) );
   leaf1.learn( kHost1, kPort5 );
   leaf1.learnBehindLeaf2( kHost1 );
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "10.0.0.2" ) << "it was on another interface";
   leaf1.learn( kHost1, kPort1 );
   FrameFields frame = fromLeaf2();
   frame.outer->sourceVtep = kLeaf3;
   frame.source = kHost1;
   leaf1.forward( frame );
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "10.0.0.3" ) << "which is on no segment";
}

TEST( Learning, AnAddressThatIsFirstSeenThroughATunnelMovesToTheSegment ) {
   Leaf leaf1( sharedWithLeaf2( "Port-Channel1" ) );
   leaf1.learnBehindLeaf2( kHost1 );
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "10.0.0.2" );
   leaf1.learn( kHost1, kPort4 );
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "Port-Channel1" );
}

TEST( Learning, AnAddressMovesOnceTheVtepHasLeftTheSegment ) {
   Leaf leaf1( sharedWithLeaf2( "Port-Channel1" ) );
   leaf1.learn( kHost1, kPort5 );
   leaf1.pipeline.forwardingIs( leaf1Config() );
   leaf1.learnBehindLeaf2( kHost1 );
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "10.0.0.2" );
}

TEST( Learning, ASegmentOfAnInterfaceThatIsNotThereSaysNothing ) {
   Chip::ForwardingConfig config = sharedWithLeaf2( "Ethernet9" );
   config.sharedWith[ intf( "Ethernet1" ) ] = { ip( "10.0.0.9" ) };
   Leaf leaf1( config );
   leaf1.learn( kHost1, kPort1 );
   leaf1.learnBehindLeaf2( kHost1 );
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "10.0.0.2" );
}

TEST( Learning, AnAddressBehindAMemberIsBehindThePortChannel ) {
   Leaf leaf1;
   leaf1.learn( kHost1, kPort5 );
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "Port-Channel1" );
   leaf1.learn( kHost1, kPort4 );
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "Port-Channel1" );
}

TEST( Learning, AnAddressIsKnownInItsVlanOnly ) {
   Leaf leaf1;
   leaf1.learn( kHost1, kPort1 );
   EXPECT_EQ( placeOf( leaf1, kHost1, kPort2 ), "everywhere" ) << "untagged there is VLAN 20";
}

TEST( Learning, GroupAddressesAndZeroAreNobodys ) {
   Leaf leaf1;
   leaf1.learn( kGroupMac4, kPort1 );
   leaf1.learn( MacAddress::broadcast(), kPort1 );
   leaf1.learn( MacAddress(), kPort1 );
   EXPECT_EQ( leaf1.pipeline.learned(), 0U );
}

TEST( Learning, ADroppedFrameOfAnUnknownVlanTeachesNothing ) {
   Leaf leaf1;
   FrameFields frame = fromHost1();
   frame.vlan = 11;
   EXPECT_EQ( reasonOf( leaf1.forward( kPort1, bytesOf( frame ) ) ), "unknown-vlan" );
   EXPECT_EQ( leaf1.pipeline.learned(), 0U );
}

TEST( Learning, EndsAtALimitAndKnownAddressesStillMove ) {
   Leaf leaf1;
   std::vector< U8 > bytes = bytesOf( fromHost1() );
   for ( U64 n = 0; n < 33000; ++n ) {
      Chip::putMac( bytes, MacAddress::kBytes, MacAddress( 0x020000100000 + n ) );
      leaf1.wire.sent.clear();
      leaf1.pipeline.forward( kPort1, bytes, leaf1.wire );
   }
   EXPECT_EQ( leaf1.pipeline.learned(), 32768U );
   leaf1.learn( MacAddress( 0x020000100000 ), kPort2 );
   EXPECT_EQ( placeOf( leaf1, MacAddress( 0x020000100000 ) ), "Ethernet2" );
}

class ChangedForwarding : public testing::Test {
 protected:
   ChangedForwarding() {
      leaf1.learn( kHost1, kPort1 );
      leaf1.learn( kHost3, kPort5 );
      leaf1.learnBehindLeaf2( kHost2 );
   }

   Chip::ForwardingConfig config = leaf1Config();
   Leaf leaf1;
};

TEST_F( ChangedForwarding, KeepsWhatHasNotChanged ) {
   std::reverse( config.interfaces.begin(), config.interfaces.end() );
   config.tunnels.emplace( ip( "10.0.0.1" ), Chip::TunnelConfig{} );
   config.vtepIpv4 = ip( "10.0.0.9" );
   config.portChannels[ 0 ].members = { intf( "Ethernet4" ) };
   leaf1.pipeline.forwardingIs( config );
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "Ethernet1" );
   EXPECT_EQ( placeOf( leaf1, kHost2 ), "10.0.0.2" );
   EXPECT_EQ( placeOf( leaf1, kHost3 ), "Port-Channel1" );
}

TEST_F( ChangedForwarding, ForgetsWhatWasBehindAnInterfaceThatIsGone ) {
   std::erase_if( config.interfaces, []( Chip::InterfaceConfig const & one ) {
      return one.intfId == intf( "Ethernet1" );
   } );
   config.portChannels.clear();
   leaf1.pipeline.forwardingIs( config );
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "everywhere" );
   EXPECT_EQ( placeOf( leaf1, kHost3 ), "everywhere" );
   EXPECT_EQ( placeOf( leaf1, kHost2 ), "10.0.0.2" );
}

TEST_F( ChangedForwarding, ForgetsWhatWasInAVlanThatTheInterfaceHasLeft ) {
   config.interfaces[ 0 ].vlans = { {}, 20 };
   leaf1.pipeline.forwardingIs( config );
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "everywhere" );
}

TEST_F( ChangedForwarding, ForgetsWhatWasBehindATunnelThatIsGone ) {
   config.tunnels.erase( kLeaf2 );
   config.floodLists.clear();
   leaf1.pipeline.forwardingIs( config );
   EXPECT_EQ( placeOf( leaf1, kHost2 ), "everywhere" );
}

TEST_F( ChangedForwarding, ForgetsWhatWasBehindATunnelWhenTheVlanLosesItsVni ) {
   config.vlanToVni.erase( 10 );
   config.floodLists.clear();
   leaf1.pipeline.forwardingIs( config );
   EXPECT_EQ( placeOf( leaf1, kHost2 ), "everywhere" );
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "Ethernet1" );
}

TEST_F( ChangedForwarding, IsNotTakenWhenItContradictsItself ) {
   config.interfaces[ 0 ].unit = 7;
   EXPECT_THROW( leaf1.pipeline.forwardingIs( config ), Quelm::Error );
   EXPECT_EQ( leaf1.pipeline.forwarding(), leaf1Config() );
   EXPECT_EQ( placeOf( leaf1, kHost1 ), "Ethernet1" );
}

}  // namespace LearningTest
