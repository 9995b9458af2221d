// What the field processors' rules do to frames: masks, class ids and drop rules, each on its own
// unit and only once written.
#include "Leaf.h"

namespace FieldRulesTest {

using namespace PipelineTest;
using Chip::RuleKey;

constexpr U16 kMod0 = 0;
constexpr U16 kMod1 = 4;

class FieldRules : public testing::Test {
 protected:
   U32 fromLeaf2Rule( U32 unit ) {
      U32 const id = chips.ifp->getEntry( unit, "from leaf2", {} );
      chips.sdk.bcm_field_qualify_SrcVxlanGport( unit, id, Chip::vxlanGportOf( 2 ) );
      return id;
   }
   U32 mask( U32 unit, std::vector< U32 > const & ports ) {
      U32 const id = fromLeaf2Rule( unit );
      chips.ifp->addEgressMaskAction( unit, id, ChipTest::pbmpOfPorts( ports ) );
      chips.ifp->installEntry( unit, id );
      return id;
   }
   U32 mark( U32 unit, U16 classId ) {
      U32 const id = fromLeaf2Rule( unit );
      chips.sdk.bcm_field_action_add( unit, id, bcmFieldActionEgressClassSelect,
                                      BCM_FIELD_EGRESS_CLASS_SELECT_NEW, 0 );
      chips.sdk.bcm_field_action_add( unit, id, bcmFieldActionNewClassId, classId, 0 );
      chips.ifp->installEntry( unit, id );
      return id;
   }
   U32 stagedDrop( U32 unit, U32 modId, U32 port, U16 classId,
                   bcm_field_IpType_t ipType = bcmFieldIpTypeAny ) {
      U32 const id = chips.efp->getEntry( unit, "drop", {} );
      chips.sdk.bcm_field_qualify_DstPort( unit, id, modId, kExact, port, kExact );
      chips.sdk.bcm_field_qualify_IpType( unit, id, ipType );
      chips.sdk.bcm_field_qualify_IngressClassField( unit, id, classId, kExact );
      chips.sdk.bcm_field_action_add( unit, id, bcmFieldActionDrop, 0, 0 );
      return id;
   }
   U32 drop( U32 unit, U32 modId, U32 port, U16 classId,
             bcm_field_IpType_t ipType = bcmFieldIpTypeAny ) {
      U32 const id = stagedDrop( unit, modId, port, classId, ipType );
      chips.efp->installEntry( unit, id );
      return id;
   }
   // A rule without action, which takes frames away from the others.
   U32 exemption( U32 packetRes ) {
      U32 const id = chips.ifp->getEntry( 0, "no-op", {} );
      chips.sdk.bcm_field_qualify_PacketRes( 0, id, packetRes, 0xff );
      chips.sdk.bcm_field_qualify_TunnelTerminated( 0, id, 1, 1 );
      chips.ifp->installEntry( 0, id );
      return id;
   }
   void prioritise( U32 id, U32 priority ) {
      chips.ifp->setPriorityForEntry( 0, id, priority );
      chips.ifp->reinstallEntry( 0, id );
   }

   static Copy const & copyOn( FrameStory const & story, std::string_view interface ) {
      auto const found =
         std::find_if( story.copies.begin(), story.copies.end(),
                       [ & ]( Copy const & copy ) { return copy.intfId == intf( interface ); } );
      EXPECT_NE( found, story.copies.end() ) << "no copy for " << interface;
      return *found;
   }

   Leaf leaf1;
   ChipTest::TwoUnitSwitch & chips = leaf1.chips;
};

TEST_F( FieldRules, AMaskedPortGetsNoCopyAndTheRuleIsNamed ) {
   U32 const rule = mask( 0, { 1 } );
   FrameStory const story = leaf1.forward( fromLeaf2() );
   EXPECT_EQ( copyOn( story, "Ethernet1" ), ( Copy{ .intfId = intf( "Ethernet1" ),
                                                    .port = kPort1,
                                                    .verdict = Verdict::Masked,
                                                    .rule = RuleKey{ 0, kIfp, rule } } ) );
   EXPECT_EQ( verdictOn( story, "Ethernet2" ), "sent" );
   EXPECT_EQ( verdictOn( story, "Ethernet3" ), "sent" );
   EXPECT_TRUE( leaf1.wire.at( kPort1 ).empty() );
   EXPECT_FALSE( leaf1.wire.at( kPort2 ).empty() );
   EXPECT_EQ( leaf1.pipeline.counters()[ Verdict::Masked ], 1U );
}

TEST_F( FieldRules, AMaskIsForOneVtepOnly ) {
   mask( 0, { 1 } );
   FrameFields frame = fromLeaf2();
   frame.outer->sourceVtep = kLeaf3;
   EXPECT_EQ( verdictOn( leaf1.forward( frame ), "Ethernet1" ), "sent" );
}

TEST_F( FieldRules, AMaskIsForPortsOfItsOwnUnitOnly ) {
   mask( 0, { 3 } );
   EXPECT_EQ( verdictOn( leaf1.forward( fromLeaf2() ), "Ethernet3" ), "sent" );
   U32 const rule = mask( 1, { 1, 3 } );
   FrameStory const story = leaf1.forward( fromLeaf2() );
   EXPECT_EQ( copyOn( story, "Ethernet3" ).rule, ( RuleKey{ 1, kIfp, rule } ) );
   EXPECT_EQ( verdictOn( story, "Ethernet3" ), "masked" );
   EXPECT_EQ( verdictOn( story, "Ethernet1" ), "sent" );
}

TEST_F( FieldRules, AMarkedFrameIsDroppedWhereAnEgressRuleSaysSo ) {
   U32 const ingress = mark( 0, 100 );
   U32 const egress = drop( 0, kMod0, 2, 100 );
   FrameStory const story = leaf1.forward( fromLeaf2() );
   EXPECT_EQ( copyOn( story, "Ethernet2" ).rule, ( RuleKey{ 0, kEfp, egress } ) );
   EXPECT_EQ( verdictOn( story, "Ethernet2" ), "dropped" );
   EXPECT_EQ( verdictOn( story, "Ethernet1" ), "sent" );
   EXPECT_EQ( story.ingress[ 0 ], ( Chip::IngressStory{ 0, RuleKey{ 0, kIfp, ingress }, 100 } ) );
}

TEST_F( FieldRules, AnEgressRuleOfAnotherClassOrModuleDropsNothing ) {
   mark( 0, 100 );
   drop( 0, kMod0, 2, 101 );
   drop( 0, kMod1, 2, 100 );
   EXPECT_EQ( verdictOn( leaf1.forward( fromLeaf2() ), "Ethernet2" ), "sent" );
}

TEST_F( FieldRules, AMarkDoesNotReachTheOtherUnit ) {
   drop( 1, kMod1, 3, 100 );
   mark( 0, 100 );
   EXPECT_EQ( verdictOn( leaf1.forward( fromLeaf2() ), "Ethernet3" ), "sent" );
   mark( 1, 100 );
   EXPECT_EQ( verdictOn( leaf1.forward( fromLeaf2() ), "Ethernet3" ), "dropped" );
}

TEST_F( FieldRules, AClassIdThatIsNotSelectedIsNone ) {
   U32 const id = fromLeaf2Rule( 0 );
   chips.sdk.bcm_field_action_add( 0, id, bcmFieldActionNewClassId, 100, 0 );
   chips.ifp->installEntry( 0, id );
   drop( 0, kMod0, 2, 100 );
   EXPECT_EQ( verdictOn( leaf1.forward( fromLeaf2() ), "Ethernet2" ), "sent" );
}

TEST_F( FieldRules, AnEgressRuleSeesTheIpTypeOfTheFrameInside ) {
   mark( 0, 100 );
   drop( 0, kMod0, 2, 100, bcmFieldIpTypeIpv6 );
   FrameFields frame = fromLeaf2();
   EXPECT_EQ( verdictOn( leaf1.forward( frame ), "Ethernet2" ), "sent" );
   frame.sourceIp = ip( "2001:db8:100::2" );
   frame.destinationIp = ip( "ff02::1" );
   EXPECT_EQ( verdictOn( leaf1.forward( frame ), "Ethernet2" ), "dropped" );
   frame.content = FrameContent::Bare;
   EXPECT_EQ( verdictOn( leaf1.forward( frame ), "Ethernet2" ), "sent" );
}

TEST_F( FieldRules, AnEgressRuleWithoutDropLetsTheCopyOut ) {
   U32 const id = chips.efp->getEntry( 0, "no-op", {} );
   chips.efp->installEntry( 0, id );
   FrameStory const story = leaf1.forward( fromLeaf2() );
   EXPECT_EQ( verdictOn( story, "Ethernet2" ), "sent" );
   EXPECT_FALSE( copyOn( story, "Ethernet2" ).rule );
}

TEST_F( FieldRules, StagedRulesTouchNoFrame ) {
   U32 const ingress = fromLeaf2Rule( 0 );
   chips.ifp->addEgressMaskAction( 0, ingress, ChipTest::pbmpOfPorts( { 1 } ) );
   stagedDrop( 0, kMod0, 2, 0 );
   FrameStory const story = leaf1.forward( fromLeaf2() );
   EXPECT_EQ( verdictOn( story, "Ethernet1" ), "sent" );
   EXPECT_EQ( verdictOn( story, "Ethernet2" ), "sent" );
   EXPECT_FALSE( story.ingress[ 0 ].rule );
}

TEST_F( FieldRules, AChangedMaskHoldsFromItsReinstallOn ) {
   U32 const rule = mask( 0, { 1 } );
   chips.ifp->updateEgressMaskAction( 0, rule, ChipTest::pbmpOfPorts( { 2 } ) );
   EXPECT_EQ( verdictOn( leaf1.forward( fromLeaf2() ), "Ethernet1" ), "masked" );
   chips.ifp->reinstallEntry( 0, rule );
   FrameStory const story = leaf1.forward( fromLeaf2() );
   EXPECT_EQ( verdictOn( story, "Ethernet1" ), "sent" );
   EXPECT_EQ( verdictOn( story, "Ethernet2" ), "masked" );
}

TEST_F( FieldRules, KnownUnicastIsExemptFromTheMask ) {
   leaf1.learn( kHost1, kPort1 );
   U32 const perVtep = mask( 0, { 1 } );
   prioritise( perVtep, 1 );
   FrameFields const frame = unicast( fromLeaf2(), kHost1, ip( "192.0.2.1" ) );
   EXPECT_EQ( verdictOn( leaf1.forward( frame ), "Ethernet1" ), "masked" );
   U32 const noOp = exemption( BCM_FIELD_PKT_RES_L2UC );
   FrameStory const story = leaf1.forward( frame );
   EXPECT_EQ( verdictOn( story, "Ethernet1" ), "sent" );
   EXPECT_EQ( story.ingress[ 0 ].rule, ( RuleKey{ 0, kIfp, noOp } ) );
   EXPECT_EQ( verdictOn( leaf1.forward( fromLeaf2() ), "Ethernet1" ), "masked" );
}

TEST_F( FieldRules, KnownL3MulticastOfAVniIsExemptFromTheMask ) {
   Chip::ForwardingConfig config = leaf1Config();
   config.multicastRoutes = { { ip( "239.1.1.1" ), {} } };
   leaf1.pipeline.forwardingIs( config );
   prioritise( mask( 0, { 1 } ), 1 );
   U32 const perVni = chips.ifp->getEntry( 0, "no-op", {} );
   chips.sdk.bcm_field_qualify_VxlanNetworkId( 0, perVni, 10100, kExact );
   chips.sdk.bcm_field_qualify_PacketRes( 0, perVni, chips.sdk.packetResL3McKnown(), kExact );
   chips.ifp->installEntry( 0, perVni );
   prioritise( perVni, 2 );
   FrameFields const routed = unicast( fromLeaf2(), kGroupMac4, ip( "239.1.1.1" ) );
   FrameFields const bridged = unicast( fromLeaf2(), kGroupMac4, ip( "239.1.1.2" ) );
   EXPECT_EQ( verdictOn( leaf1.forward( routed ), "Ethernet1" ), "sent" );
   EXPECT_EQ( verdictOn( leaf1.forward( bridged ), "Ethernet1" ), "masked" );
}

TEST_F( FieldRules, FramesFromAccessPortsHaveNoTunnelFacts ) {
   exemption( Chip::packetResolutionOf( FrameKind::Broadcast ) );
   EXPECT_FALSE( leaf1.forward( fromHost1() ).ingress[ 0 ].rule );
   EXPECT_TRUE( leaf1.forward( fromLeaf2() ).ingress[ 0 ].rule );
}

TEST_F( FieldRules, RulesAreForCopiesIntoTunnelsToo ) {
   drop( 0, kMod0, 49, 0 );
   FrameStory const story = leaf1.forward( fromHost1() );
   EXPECT_EQ( verdictOn( story, "Ethernet49" ), "dropped" );
   EXPECT_TRUE( leaf1.wire.at( kUnderlay ).empty() );
}

TEST_F( FieldRules, TheUnitOfArrivalIsAskedFirstAndEachUnitOnce ) {
   FrameStory const story = leaf1.forward( kPort3, bytesOf( fromHost1() ) );
   ASSERT_EQ( story.ingress.size(), 2U );
   EXPECT_EQ( story.ingress[ 0 ].unit, 1 );
   EXPECT_EQ( story.ingress[ 1 ].unit, 0 );
}

TEST_F( FieldRules, TheFirstInTheOrderOfThePipelineDecides ) {
   Chip::ForwardingConfig config = leaf1Config();
   config.designatedForwarder[ intf( "Ethernet1" ) ].allVlans = false;
   leaf1.pipeline.forwardingIs( config );
   U32 const marked = mark( 0, 100 );
   EXPECT_EQ( verdictOn( leaf1.forward( fromLeaf2() ), "Ethernet1" ), "not-designated" );
   drop( 0, kMod0, 1, 100 );
   EXPECT_EQ( verdictOn( leaf1.forward( fromLeaf2() ), "Ethernet1" ), "dropped" );
   chips.ifp->addEgressMaskAction( 0, marked, ChipTest::pbmpOfPorts( { 1 } ) );
   chips.ifp->reinstallEntry( 0, marked );
   EXPECT_EQ( verdictOn( leaf1.forward( fromLeaf2() ), "Ethernet1" ), "masked" );
}

TEST_F( FieldRules, AUnitWithoutGroupsForwardsAllTheSame ) {
   Chip::Board bare( { { { 0, 0, {} }, { 1, 4, {} } } } );
   Chip::Pipeline pipeline( bare.units() );
   pipeline.forwardingIs( leaf1Config() );
   Wire wire;
   FrameStory const story = pipeline.forward( kUnderlay, bytesOf( fromLeaf2() ), wire );
   EXPECT_EQ( verdictOn( story, "Ethernet1" ), "sent" );
}

TEST( PacketResolution, IsDifferentForEveryKind ) {
   std::set< U32 > resolutions;
   for ( FrameKind const kind : Chip::kFrameKinds ) {
      resolutions.insert( Chip::packetResolutionOf( kind ) );
   }
   EXPECT_EQ( resolutions.size(), Chip::kFrameKinds.size() );
   EXPECT_EQ( Chip::packetResolutionOf( FrameKind::KnownUnicast ), 4U );
   EXPECT_EQ( Chip::packetResolutionOf( FrameKind::RoutedUnicast ), 10U );
   EXPECT_EQ( Chip::packetResolutionOf( FrameKind::RoutedMulticast ), 12U );
}

}  // namespace FieldRulesTest
