// Every field call that rules are made of and checked by: its text is its source text, and its
// values are those of the SDK's names in it. Support tools know these texts, blanks included.
#include <gtest/gtest.h>

#include <string>

#include <Kiv/Activity.h>
#include <Shim/FieldCall.h>
#include <Trace/Trace.h>
#include <Vornal/VornalCommonSmData.h>
#include <VornalCommon/ClassId.h>

#include "ScriptedSdk.h"

namespace CallTextTest {

class CallText : public testing::Test {
 protected:
   CallText() {
      Trace::levelsIs( "ApiVornal", "4" );
      Trace::sinkIs( [ this ]( Trace::Line const & line ) { traced_ = line.text; } );
   }
   ~CallText() override { Trace::sinkIs( {} ); }

   // The text of the call made last: what its trace line says between place and code.
   std::string text() const {
      std::size_t const start = traced_.find( ' ' ) + 1;
      return traced_.substr( start, traced_.rfind( " (rc:" ) - start );
   }
   // The call made last as the shim got it.
   std::string values() const { return sdk_.calls.back(); }

   U32 unit = 2;
   U32 entryId = 7;

 private:
   std::string traced_;
   ScriptedSdk sdk_;
   Kiv::ActivityManager activity_;
   Kiv::ActivityLockAnchor locked_{ activity_ };
};

TEST_F( CallText, OfTheIngressRuleOfAVtep ) {
   U32 gport = 0xb0000005;
   SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) );
   EXPECT_EQ( text(), "bcm_field_qualify_SrcVxlanGport( unit, entryId, gport )" );
   EXPECT_EQ( values(), "bcm_field_qualify_SrcVxlanGport 2 7 2952790021" );

   SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport_get( unit, entryId, &gport ) );
   EXPECT_EQ( text(), "bcm_field_qualify_SrcVxlanGport_get( unit, entryId, &gport )" );
   EXPECT_EQ( values(), "bcm_field_qualify_SrcVxlanGport_get 2 7" );
   EXPECT_EQ( gport, 101U );
}

TEST_F( CallText, OfTheUnicastExemption ) {
   SDK_FIELD_CALL( bcm_field_qualify_PacketRes( unit, entryId, BCM_FIELD_PKT_RES_L2UC, 0xff ) );
   EXPECT_EQ( text(),
              "bcm_field_qualify_PacketRes( unit, entryId, BCM_FIELD_PKT_RES_L2UC, 0xff )" );
   EXPECT_EQ( values(), "bcm_field_qualify_PacketRes 2 7 4 255" );

   SDK_FIELD_CALL(
      bcm_field_qualify_PacketRes( unit, entryId, BCM_FIELD_PKT_RES_L3UCKNOWN, 0xff ) );
   EXPECT_EQ( text(),
              "bcm_field_qualify_PacketRes( unit, entryId, BCM_FIELD_PKT_RES_L3UCKNOWN, 0xff )" );
   EXPECT_EQ( values(), "bcm_field_qualify_PacketRes 2 7 10 255" );

   SDK_FIELD_CALL( bcm_field_qualify_TunnelTerminated( unit, entryId, 1, 1 ) );
   EXPECT_EQ( text(), "bcm_field_qualify_TunnelTerminated( unit, entryId, 1, 1 )" );
   EXPECT_EQ( values(), "bcm_field_qualify_TunnelTerminated 2 7 1 1" );
}

TEST_F( CallText, OfReadingBackTheUnicastExemption ) {
   U32 const l2EntryId = 5;
   U32 const l3EntryId = 6;
   U32 data = 0;
   U32 mask = 0;
   SDK_FIELD_CALL( bcm_field_qualify_PacketRes_get( unit, l2EntryId, &data, &mask ) );
   EXPECT_EQ( text(), "bcm_field_qualify_PacketRes_get( unit, l2EntryId, &data, &mask )" );
   EXPECT_EQ( values(), "bcm_field_qualify_PacketRes_get 2 5" );
   SDK_FIELD_CALL( bcm_field_qualify_PacketRes_get( unit, l3EntryId, &data, &mask ) );
   EXPECT_EQ( text(), "bcm_field_qualify_PacketRes_get( unit, l3EntryId, &data, &mask )" );
   EXPECT_EQ( values(), "bcm_field_qualify_PacketRes_get 2 6" );
   EXPECT_EQ( data, 101U );
   EXPECT_EQ( mask, 102U );

   U8 tdata = 0;
   U8 tmask = 0;
   SDK_FIELD_CALL( bcm_field_qualify_TunnelTerminated_get( unit, l2EntryId, &tdata, &tmask ) );
   EXPECT_EQ( text(), "bcm_field_qualify_TunnelTerminated_get( unit, l2EntryId, &tdata, &tmask )" );
   EXPECT_EQ( values(), "bcm_field_qualify_TunnelTerminated_get 2 5" );
   SDK_FIELD_CALL( bcm_field_qualify_TunnelTerminated_get( unit, l3EntryId, &tdata, &tmask ) );
   EXPECT_EQ( text(), "bcm_field_qualify_TunnelTerminated_get( unit, l3EntryId, &tdata, &tmask )" );
   EXPECT_EQ( values(), "bcm_field_qualify_TunnelTerminated_get 2 6" );
   EXPECT_EQ( tdata, 101U );
   EXPECT_EQ( tmask, 102U );
}

TEST_F( CallText, OfThePerVniMulticastRule ) {
   auto const common = Quelm::make< Vornal::VornalCommonSmData >( "vornalCommon" );
   common->vornalModIdIs( 2, 40 );
   auto const iter = common->vornalModIdIter();
   U32 const ifpEntryId = 7;
   U32 const newV = 10100;
   SDK_FIELD_CALL( bcm_field_qualify_VxlanNetworkId( iter.key(), ifpEntryId, newV, 0xffffffff ) );
   EXPECT_EQ( text(),
              "bcm_field_qualify_VxlanNetworkId( iter.key(), ifpEntryId, newV, 0xffffffff )" );
   EXPECT_EQ( values(), "bcm_field_qualify_VxlanNetworkId 2 7 10100 4294967295" );

   U32 const BCM_FIELD_PKT_RES_L3MCKNOWN = Shim::sdk_->packetResL3McKnown();
   SDK_FIELD_CALL( bcm_field_qualify_PacketRes( iter.key(), ifpEntryId, BCM_FIELD_PKT_RES_L3MCKNOWN,
                                                BCM_FIELD_EXACT_MATCH_MASK ) );
   EXPECT_EQ( text(),
              "bcm_field_qualify_PacketRes( iter.key(), ifpEntryId, BCM_FIELD_PKT_RES_L3MCKNOWN, "
              "BCM_FIELD_EXACT_MATCH_MASK )" );
   EXPECT_EQ( values(), "bcm_field_qualify_PacketRes 2 7 12 4294967295" );
}

TEST_F( CallText, OfTaggingWithAClassId ) {
   VornalCommon::ClassId const i2eClassId( 300 );
   SDK_FIELD_CALL( bcm_field_action_add( unit, entryId, bcmFieldActionEgressClassSelect,
                                         BCM_FIELD_EGRESS_CLASS_SELECT_NEW, 0 ) );
   EXPECT_EQ( text(),
              "bcm_field_action_add( unit, entryId, bcmFieldActionEgressClassSelect, "
              "BCM_FIELD_EGRESS_CLASS_SELECT_NEW, 0 )" );
   EXPECT_EQ( values(), "bcm_field_action_add 2 7 2 1 0" );

   SDK_FIELD_CALL(
      bcm_field_action_add( unit, entryId, bcmFieldActionNewClassId, i2eClassId.value(), 0 ) );
   EXPECT_EQ( text(),
              "bcm_field_action_add( unit, entryId, bcmFieldActionNewClassId, i2eClassId.value(), "
              "0 )" );
   EXPECT_EQ( values(), "bcm_field_action_add 2 7 1 300 0" );
}

TEST_F( CallText, OfTheEgressDropRule ) {
   VornalTypes::VornalPort const sp( 2, 5, 40 );
   VornalCommon::ClassId const i2eClassId( 300 );
   U32 const efpEntryId = 7;
   // clang-format off
   SDK_FIELD_CALL( bcm_field_qualify_DstPort( unit, efpEntryId, sp.modId() , BCM_FIELD_EXACT_MATCH_MASK, sp.logicalPort(), BCM_FIELD_EXACT_MATCH_MASK ) );
   // clang-format on
   EXPECT_EQ( text(),
              "bcm_field_qualify_DstPort( unit, efpEntryId, sp.modId() , "
              "BCM_FIELD_EXACT_MATCH_MASK, sp.logicalPort(), BCM_FIELD_EXACT_MATCH_MASK )" );
   EXPECT_EQ( values(), "bcm_field_qualify_DstPort 2 7 40 4294967295 5 4294967295" );

   SDK_FIELD_CALL( bcm_field_qualify_IpType( unit, efpEntryId, bcmFieldIpTypeAny ) );
   EXPECT_EQ( text(), "bcm_field_qualify_IpType( unit, efpEntryId, bcmFieldIpTypeAny )" );
   EXPECT_EQ( values(), "bcm_field_qualify_IpType 2 7 0" );

   SDK_FIELD_CALL( bcm_field_qualify_IngressClassField( unit, efpEntryId, i2eClassId.value(),
                                                        BCM_FIELD_EXACT_MATCH_MASK ) );
   EXPECT_EQ( text(),
              "bcm_field_qualify_IngressClassField( unit, efpEntryId, i2eClassId.value(), "
              "BCM_FIELD_EXACT_MATCH_MASK )" );
   EXPECT_EQ( values(), "bcm_field_qualify_IngressClassField 2 7 300 4294967295" );

   SDK_FIELD_CALL( bcm_field_action_add( unit, efpEntryId, bcmFieldActionDrop, 0, 0 ) );
   EXPECT_EQ( text(), "bcm_field_action_add( unit, efpEntryId, bcmFieldActionDrop, 0, 0 )" );
   EXPECT_EQ( values(), "bcm_field_action_add 2 7 0 0 0" );
}

TEST_F( CallText, OfReadingBackActions ) {
   U32 data = 0;
   U32 mask = 0;
   SDK_FIELD_CALL(
      bcm_field_action_get( unit, entryId, bcmFieldActionEgressClassSelect, &data, &mask ) );
   EXPECT_EQ( text(),
              "bcm_field_action_get( unit, entryId, bcmFieldActionEgressClassSelect, &data, "
              "&mask )" );
   EXPECT_EQ( values(), "bcm_field_action_get 2 7 2" );

   SDK_FIELD_CALL( bcm_field_action_get( unit, entryId, bcmFieldActionNewClassId, &data, &mask ) );
   EXPECT_EQ( text(),
              "bcm_field_action_get( unit, entryId, bcmFieldActionNewClassId, &data, &mask )" );
   EXPECT_EQ( values(), "bcm_field_action_get 2 7 1" );

   SDK_FIELD_CALL( bcm_field_action_get( unit, entryId, bcmFieldActionDrop, &data, &mask ) );
   EXPECT_EQ( text(), "bcm_field_action_get( unit, entryId, bcmFieldActionDrop, &data, &mask )" );
   EXPECT_EQ( values(), "bcm_field_action_get 2 7 0" );
   EXPECT_EQ( data, 101U );
   EXPECT_EQ( mask, 102U );
}

TEST_F( CallText, OfReadingBackTheEgressDropRule ) {
   U32 modId = 0;
   U32 modIdMask = 0;
   U32 portId = 0;
   U32 portIdMask = 0;
   SDK_FIELD_CALL(
      bcm_field_qualify_DstPort_get( unit, entryId, &modId, &modIdMask, &portId, &portIdMask ) );
   EXPECT_EQ( text(),
              "bcm_field_qualify_DstPort_get( unit, entryId, &modId, &modIdMask, &portId, "
              "&portIdMask )" );
   EXPECT_EQ( values(), "bcm_field_qualify_DstPort_get 2 7" );
   EXPECT_EQ( modId, 101U );
   EXPECT_EQ( modIdMask, 102U );
   EXPECT_EQ( portId, 103U );
   EXPECT_EQ( portIdMask, 104U );

   bcm_field_IpType_t ipType{};
   SDK_FIELD_CALL( bcm_field_qualify_IpType_get( unit, entryId, &ipType ) );
   EXPECT_EQ( text(), "bcm_field_qualify_IpType_get( unit, entryId, &ipType )" );
   EXPECT_EQ( values(), "bcm_field_qualify_IpType_get 2 7" );

   U32 data = 0;
   U32 mask = 0;
   SDK_FIELD_CALL( bcm_field_qualify_IngressClassField_get( unit, entryId, &data, &mask ) );
   EXPECT_EQ( text(), "bcm_field_qualify_IngressClassField_get( unit, entryId, &data, &mask )" );
   EXPECT_EQ( values(), "bcm_field_qualify_IngressClassField_get 2 7" );
}

}  // namespace CallTextTest
