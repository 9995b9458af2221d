// The SDK's field calls: what they stage, what they read back, and what they refuse.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include <rapidcheck/gtest.h>

#include "TwoUnitSwitch.h"

namespace SoftSdkTest {

using namespace ChipTest;
using Chip::codeOf;
using Chip::ResultCode;

constexpr S32 kOk = 0;
constexpr S32 kUnsupported = codeOf( ResultCode::Unsupported );
constexpr S32 kNotFound = codeOf( ResultCode::NotFound );
constexpr S32 kBadValue = codeOf( ResultCode::BadValue );

class SoftSdk : public testing::Test {
 protected:
   TwoUnitSwitch leaf1;
   Chip::SoftSdk & sdk = leaf1.sdk;
   U32 ingress = leaf1.ifp->getEntry( 0, "ingress", {} );
   U32 egress = leaf1.efp->getEntry( 0, "egress", {} );
   U32 data = 0;
   U32 mask = 0;
};

TEST_F( SoftSdk, ReadsTheSourceGportBack ) {
   EXPECT_EQ( sdk.bcm_field_qualify_SrcVxlanGport( 0, ingress, kVtep2 ), kOk );
   leaf1.ifp->installEntry( 0, ingress );
   EXPECT_EQ( sdk.bcm_field_qualify_SrcVxlanGport_get( 0, ingress, &data ), kOk );
   EXPECT_EQ( data, kVtep2 );
}

TEST_F( SoftSdk, ReadsThePacketResolutionBack ) {
   EXPECT_EQ( sdk.bcm_field_qualify_PacketRes( 0, ingress, BCM_FIELD_PKT_RES_L3UCKNOWN, 0xff ),
              kOk );
   leaf1.ifp->installEntry( 0, ingress );
   EXPECT_EQ( sdk.bcm_field_qualify_PacketRes_get( 0, ingress, &data, &mask ), kOk );
   EXPECT_EQ( data, 10U );
   EXPECT_EQ( mask, 0xffU );
}

TEST_F( SoftSdk, ReadsTunnelTerminatedBack ) {
   U8 terminated = 0;
   U8 terminatedMask = 0;
   EXPECT_EQ( sdk.bcm_field_qualify_TunnelTerminated( 0, ingress, 1, 1 ), kOk );
   leaf1.ifp->installEntry( 0, ingress );
   EXPECT_EQ( sdk.bcm_field_qualify_TunnelTerminated_get( 0, ingress, &terminated,
                                                          &terminatedMask ),
              kOk );
   EXPECT_EQ( terminated, 1 );
   EXPECT_EQ( terminatedMask, 1 );
}

TEST_F( SoftSdk, ReadsTheVniBack ) {
   EXPECT_EQ( sdk.bcm_field_qualify_VxlanNetworkId( 0, ingress, 10100, 0xffffffff ), kOk );
   leaf1.ifp->installEntry( 0, ingress );
   EXPECT_EQ( sdk.bcm_field_qualify_VxlanNetworkId_get( 0, ingress, &data, &mask ), kOk );
   EXPECT_EQ( data, 10100U );
   EXPECT_EQ( mask, 0xffffffffU );
}

TEST_F( SoftSdk, ReadsTheDestinationPortBack ) {
   EXPECT_EQ( sdk.bcm_field_qualify_DstPort( 0, egress, 4, 0xf0, 5, 0xf1 ), kOk );
   leaf1.efp->installEntry( 0, egress );
   U32 port = 0;
   U32 portMask = 0;
   EXPECT_EQ( sdk.bcm_field_qualify_DstPort_get( 0, egress, &data, &mask, &port, &portMask ), kOk );
   EXPECT_EQ( data, 4U );
   EXPECT_EQ( mask, 0xf0U );
   EXPECT_EQ( port, 5U );
   EXPECT_EQ( portMask, 0xf1U );
}

TEST_F( SoftSdk, ReadsTheIpTypeBack ) {
   for ( auto const ipType :
         { bcmFieldIpTypeAny, bcmFieldIpTypeNonIp, bcmFieldIpTypeIpv4Any, bcmFieldIpTypeIpv6 } ) {
      bcm_field_IpType_t readBack = bcmFieldIpTypeNonIp;
      EXPECT_EQ( sdk.bcm_field_qualify_IpType( 0, egress, ipType ), kOk );
      leaf1.efp->installEntry( 0, egress );
      EXPECT_EQ( sdk.bcm_field_qualify_IpType_get( 0, egress, &readBack ), kOk );
      EXPECT_EQ( readBack, ipType );
   }
}

TEST_F( SoftSdk, ReadsTheIngressClassBack ) {
   EXPECT_EQ( sdk.bcm_field_qualify_IngressClassField( 0, egress, 100, kExact ), kOk );
   leaf1.efp->installEntry( 0, egress );
   EXPECT_EQ( sdk.bcm_field_qualify_IngressClassField_get( 0, egress, &data, &mask ), kOk );
   EXPECT_EQ( data, 100U );
   EXPECT_EQ( mask, kExact );
}

TEST_F( SoftSdk, ReadsActionsBack ) {
   EXPECT_EQ( sdk.bcm_field_action_add( 0, ingress, bcmFieldActionEgressClassSelect,
                                        BCM_FIELD_EGRESS_CLASS_SELECT_NEW, 0 ),
              kOk );
   EXPECT_EQ( sdk.bcm_field_action_add( 0, ingress, bcmFieldActionNewClassId, 100, 7 ), kOk );
   EXPECT_EQ( sdk.bcm_field_action_add( 0, egress, bcmFieldActionDrop, 0, 0 ), kOk );
   leaf1.ifp->installEntry( 0, ingress );
   leaf1.efp->installEntry( 0, egress );

   EXPECT_EQ( sdk.bcm_field_action_get( 0, ingress, bcmFieldActionNewClassId, &data, &mask ), kOk );
   EXPECT_EQ( data, 100U );
   EXPECT_EQ( mask, 7U );
   EXPECT_EQ( sdk.bcm_field_action_get( 0, ingress, bcmFieldActionEgressClassSelect, &data, &mask ),
              kOk );
   EXPECT_EQ( data, 1U );
   EXPECT_EQ( sdk.bcm_field_action_get( 0, egress, bcmFieldActionDrop, &data, &mask ), kOk );
   EXPECT_EQ( data, 0U );
}

TEST_F( SoftSdk, ReadsTheWrittenCopyAndNotTheStagedOne ) {
   sdk.bcm_field_qualify_VxlanNetworkId( 0, ingress, 10100, kExact );
   EXPECT_EQ( sdk.bcm_field_qualify_VxlanNetworkId_get( 0, ingress, &data, &mask ), kNotFound );
   leaf1.ifp->installEntry( 0, ingress );
   sdk.bcm_field_qualify_VxlanNetworkId( 0, ingress, 10200, kExact );
   EXPECT_EQ( sdk.bcm_field_qualify_VxlanNetworkId_get( 0, ingress, &data, &mask ), kOk );
   EXPECT_EQ( data, 10100U );
   leaf1.ifp->reinstallEntry( 0, ingress );
   EXPECT_EQ( sdk.bcm_field_qualify_VxlanNetworkId_get( 0, ingress, &data, &mask ), kOk );
   EXPECT_EQ( data, 10200U );
}

TEST_F( SoftSdk, DoesNotFindWhatWasNeverWritten ) {
   leaf1.ifp->installEntry( 0, ingress );
   leaf1.efp->installEntry( 0, egress );
   data = 77;
   U8 octet = 0;
   bcm_field_IpType_t ipType{};
   EXPECT_EQ( sdk.bcm_field_qualify_SrcVxlanGport_get( 0, ingress, &data ), kNotFound );
   EXPECT_EQ( sdk.bcm_field_qualify_PacketRes_get( 0, ingress, &data, &mask ), kNotFound );
   EXPECT_EQ( sdk.bcm_field_qualify_TunnelTerminated_get( 0, ingress, &octet, &octet ), kNotFound );
   EXPECT_EQ( sdk.bcm_field_qualify_VxlanNetworkId_get( 0, ingress, &data, &mask ), kNotFound );
   EXPECT_EQ( sdk.bcm_field_qualify_DstPort_get( 0, egress, &data, &mask, &data, &mask ),
              kNotFound );
   EXPECT_EQ( sdk.bcm_field_qualify_IpType_get( 0, egress, &ipType ), kNotFound );
   EXPECT_EQ( sdk.bcm_field_qualify_IngressClassField_get( 0, egress, &data, &mask ), kNotFound );
   EXPECT_EQ( sdk.bcm_field_action_get( 0, ingress, bcmFieldActionNewClassId, &data, &mask ),
              kNotFound );
   EXPECT_EQ( data, 77U );
}

TEST_F( SoftSdk, ASecondQualifierOfAFieldReplacesTheFirst ) {
   sdk.bcm_field_qualify_PacketRes( 0, ingress, BCM_FIELD_PKT_RES_L2UC, 0xff );
   EXPECT_EQ( sdk.bcm_field_qualify_PacketRes( 0, ingress, 12, kExact ), kOk );
   leaf1.ifp->installEntry( 0, ingress );
   sdk.bcm_field_qualify_PacketRes_get( 0, ingress, &data, &mask );
   EXPECT_EQ( data, 12U );
   EXPECT_EQ( mask, kExact );
}

TEST_F( SoftSdk, ASecondActionOfAKindIsRefused ) {
   sdk.bcm_field_action_add( 0, ingress, bcmFieldActionNewClassId, 100, 0 );
   EXPECT_EQ( sdk.bcm_field_action_add( 0, ingress, bcmFieldActionNewClassId, 101, 0 ),
              codeOf( ResultCode::Exists ) );
   leaf1.ifp->installEntry( 0, ingress );
   sdk.bcm_field_action_get( 0, ingress, bcmFieldActionNewClassId, &data, &mask );
   EXPECT_EQ( data, 100U );
}

TEST_F( SoftSdk, AnIngressGroupHasNoEgressFields ) {
   bcm_field_IpType_t ipType{};
   EXPECT_EQ( sdk.bcm_field_qualify_DstPort( 0, ingress, 0, kExact, 5, kExact ), kUnsupported );
   EXPECT_EQ( sdk.bcm_field_qualify_IpType( 0, ingress, bcmFieldIpTypeAny ), kUnsupported );
   EXPECT_EQ( sdk.bcm_field_qualify_IngressClassField( 0, ingress, 100, kExact ), kUnsupported );
   EXPECT_EQ( sdk.bcm_field_action_add( 0, ingress, bcmFieldActionDrop, 0, 0 ), kUnsupported );
   EXPECT_EQ( sdk.bcm_field_qualify_IpType_get( 0, ingress, &ipType ), kUnsupported );
   EXPECT_EQ( sdk.bcm_field_action_get( 0, ingress, bcmFieldActionDrop, &data, &mask ),
              kUnsupported );
}

TEST_F( SoftSdk, AnEgressGroupHasNoIngressFields ) {
   EXPECT_EQ( sdk.bcm_field_qualify_SrcVxlanGport( 0, egress, kVtep2 ), kUnsupported );
   EXPECT_EQ( sdk.bcm_field_qualify_PacketRes( 0, egress, 4, 0xff ), kUnsupported );
   EXPECT_EQ( sdk.bcm_field_qualify_TunnelTerminated( 0, egress, 1, 1 ), kUnsupported );
   EXPECT_EQ( sdk.bcm_field_qualify_VxlanNetworkId( 0, egress, 10100, kExact ), kUnsupported );
   EXPECT_EQ( sdk.bcm_field_action_add( 0, egress, bcmFieldActionNewClassId, 100, 0 ),
              kUnsupported );
   EXPECT_EQ( sdk.bcm_field_action_add( 0, egress, bcmFieldActionEgressClassSelect, 1, 0 ),
              kUnsupported );
   EXPECT_EQ( sdk.bcm_field_qualify_SrcVxlanGport_get( 0, egress, &data ), kUnsupported );
}

TEST_F( SoftSdk, ValuesThatCannotBeMeantAreRefused ) {
   EXPECT_EQ( sdk.bcm_field_qualify_SrcVxlanGport( 0, ingress, 2 ), kBadValue );
   EXPECT_EQ( sdk.bcm_field_qualify_IpType( 0, egress, bcm_field_IpType_t{ 4 } ), kBadValue );
   EXPECT_EQ( sdk.bcm_field_action_add( 0, ingress, bcmFieldActionEgressClassSelect, 0, 0 ),
              kBadValue );
   EXPECT_EQ( sdk.bcm_field_action_add( 0, ingress, bcmFieldActionNewClassId, 0x10000, 0 ),
              kBadValue );
   EXPECT_EQ( sdk.bcm_field_action_add( 0, ingress, bcm_field_action_t{ 3 }, 0, 0 ), kBadValue );
   EXPECT_EQ( sdk.bcm_field_action_get( 0, ingress, bcm_field_action_t{ 3 }, &data, &mask ),
              kBadValue );
}

// Every field call, on the given unit and entry.
std::vector< S32 > codesOfAllCalls( Chip::SoftSdk & sdk, U32 unit, U32 entry ) {
   U32 word = 0;
   U8 octet = 0;
   bcm_field_IpType_t ipType{};
   return {
      sdk.bcm_field_qualify_SrcVxlanGport( unit, entry, kVtep2 ),
      sdk.bcm_field_qualify_PacketRes( unit, entry, 4, 0xff ),
      sdk.bcm_field_qualify_TunnelTerminated( unit, entry, 1, 1 ),
      sdk.bcm_field_qualify_VxlanNetworkId( unit, entry, 10100, kExact ),
      sdk.bcm_field_qualify_DstPort( unit, entry, 0, kExact, 5, kExact ),
      sdk.bcm_field_qualify_IpType( unit, entry, bcmFieldIpTypeAny ),
      sdk.bcm_field_qualify_IngressClassField( unit, entry, 100, kExact ),
      sdk.bcm_field_action_add( unit, entry, bcmFieldActionDrop, 0, 0 ),
      sdk.bcm_field_qualify_SrcVxlanGport_get( unit, entry, &word ),
      sdk.bcm_field_qualify_PacketRes_get( unit, entry, &word, &word ),
      sdk.bcm_field_qualify_TunnelTerminated_get( unit, entry, &octet, &octet ),
      sdk.bcm_field_qualify_VxlanNetworkId_get( unit, entry, &word, &word ),
      sdk.bcm_field_qualify_DstPort_get( unit, entry, &word, &word, &word, &word ),
      sdk.bcm_field_qualify_IpType_get( unit, entry, &ipType ),
      sdk.bcm_field_qualify_IngressClassField_get( unit, entry, &word, &word ),
      sdk.bcm_field_action_get( unit, entry, bcmFieldActionDrop, &word, &word ),
   };
}

TEST_F( SoftSdk, UnknownUnitsAreRefused ) {
   for ( S32 const code : codesOfAllCalls( sdk, 2, ingress ) ) {
      EXPECT_EQ( code, codeOf( ResultCode::UnknownUnit ) );
   }
}

TEST_F( SoftSdk, UnknownEntriesAreRefused ) {
   U32 const released = leaf1.ifp->getEntry( 0, "released", {} );
   leaf1.ifp->releaseEntry( 0, released );
   for ( U32 const entry : { 0U, 99U, released } ) {
      for ( S32 const code : codesOfAllCalls( sdk, 0, entry ) ) {
         EXPECT_EQ( code, codeOf( ResultCode::UnknownEntry ) );
      }
   }
}

TEST_F( SoftSdk, AnEntryOfOneUnitIsUnknownOnTheOther ) {
   EXPECT_EQ( sdk.bcm_field_qualify_PacketRes( 1, ingress, 4, 0xff ),
              codeOf( ResultCode::UnknownEntry ) );
}

TEST_F( SoftSdk, TellsTheValuesOfItsRelease ) {
   EXPECT_EQ( sdk.successCode(), 0 );
   EXPECT_EQ( sdk.packetResL3McKnown(), 12U );
   EXPECT_NE( sdk.packetResL3McKnown(), U32{ BCM_FIELD_PKT_RES_L2UC } );
   EXPECT_NE( sdk.packetResL3McKnown(), U32{ BCM_FIELD_PKT_RES_L3UCKNOWN } );
}

TEST_F( SoftSdk, HasTextsForItsCodes ) {
   EXPECT_EQ( sdk.errorText( kUnsupported ), "Group does not support this" );
   EXPECT_EQ( sdk.errorText( kNotFound ), "Not found" );
   EXPECT_EQ( sdk.errorText( 0 ), "Ok" );
   EXPECT_EQ( sdk.errorText( 3 ), "Ok" );
   EXPECT_EQ( sdk.errorText( -1000 ), "Unknown error" );
}

TEST_F( SoftSdk, ClearsComparesAndCountsPortBitmaps ) {
   _shr_pbmp ports = pbmpOfPorts( { 0, 31, 32, 351 } );
   EXPECT_EQ( sdk.pbmpCount( ports ), 4U );
   EXPECT_TRUE( sdk.pbmpEqual( ports, pbmpOfPorts( { 351, 32, 31, 0 } ) ) );
   EXPECT_FALSE( sdk.pbmpEqual( ports, pbmpOfPorts( { 0, 31, 32 } ) ) );
   sdk.pbmpClear( ports );
   EXPECT_TRUE( sdk.pbmpEqual( ports, pbmpOfPorts( {} ) ) );
}

TEST_F( SoftSdk, RefusesASourceGportThatIsNoVirtualPort ) {
   for ( U32 const gport : { 0U, 2U, 0x55ffffffU, 0x56010000U } ) {
      EXPECT_EQ( sdk.bcm_field_qualify_SrcVxlanGport( 0, ingress, gport ), kBadValue ) << gport;
   }
}

RC_GTEST_FIXTURE_PROP( SoftSdk, TakesTheGportOfEveryVirtualPort, ( U16 vpIndex ) ) {
   U32 const gport = sdk.vxlanGport( vpIndex );
   RC_ASSERT( ( gport & 0xffffU ) == vpIndex );
   RC_ASSERT( sdk.bcm_field_qualify_SrcVxlanGport( 0, ingress, gport ) == kOk );
}

}  // namespace SoftSdkTest
