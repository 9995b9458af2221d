// Everything that reaches the hardware makes one list, in order, with values and result.
#include <gtest/gtest.h>

#include <csignal>
#include <optional>
#include <string>
#include <vector>

#include <Decorators/FailingSdk.h>
#include <Decorators/RecordingSdk.h>
#include <Kiv/Activity.h>
#include <Shim/FieldCall.h>
#include <Snapshot/Rules.h>

#include "TwoUnitSwitch.h"

namespace HardwareCallTest {

using namespace ChipTest;
using Chip::HardwareCall;

using Texts = std::vector< std::string >;

class HardwareCalls : public testing::Test {
 protected:
   ~HardwareCalls() override { Shim::sdk_ = nullptr; }

   Kiv::ActivityManager activity;
   Kiv::ActivityLockAnchor lock{ activity };
   Record record;
   TwoUnitSwitch leaf1{ 2, &record };
   Chip::RecordingSdk recorder{ leaf1.sdk, record };
};

// --- Recording

TEST_F( HardwareCalls, TheLifeOfARuleIsOneListInOrder ) {
   U32 const id = leaf1.ifp->getEntry( 0, "from vtep 10.0.0.2", {} );
   recorder.bcm_field_qualify_SrcVxlanGport( 0, id, kVtep2 );
   leaf1.ifp->addEgressMaskAction( 0, id, pbmpOfPorts( { 5, 17, 18 } ) );
   leaf1.ifp->setPriorityForEntry( 0, id, 1 );
   leaf1.ifp->installEntry( 0, id );
   leaf1.ifp->updateEgressMaskAction( 0, id, pbmpOfPorts( { 5 } ) );
   leaf1.ifp->reinstallEntry( 0, id );
   leaf1.ifp->getEgressMaskActionPbmp( 0, id );
   leaf1.ifp->releaseEntry( 0, id );
   leaf1.ifp->releaseEntry( 0, id );
   EXPECT_EQ( record.texts(),
              ( Texts{
                 "unit 0 entry 1: getEntry( group 157, name \"from vtep 10.0.0.2\" )",
                 "unit 0 entry 1: bcm_field_qualify_SrcVxlanGport( gport 0x56000002 ) = 0",
                 "unit 0 entry 1: addEgressMaskAction( group 157, ports {5,17-18} ) = 0",
                 "unit 0 entry 1: setPriorityForEntry( group 157, priority 1 ) = 0",
                 "unit 0 entry 1: installEntry( group 157 ) = 0",
                 "unit 0 entry 1: updateEgressMaskAction( group 157, ports {5} ) = 0",
                 "unit 0 entry 1: reinstallEntry( group 157 ) = 0",
                 "unit 0 entry 1: getEgressMaskActionPbmp( group 157, ports {5} ) = 0",
                 "unit 0 entry 1: releaseEntry( group 157 ) = 0",
                 "unit 0 entry 1: releaseEntry( group 157 ) = -2 ENTRY",
              } ) );
}

TEST_F( HardwareCalls, ARequestWithAKeyIsRecordedWithIt ) {
   VornalTcam::RequestKey key;
   key.numberIs( 7 );
   leaf1.ifp->getEntry( 0, "rule", {} );
   leaf1.ifp->getEntry( 0, "rule", key );
   EXPECT_EQ( record.texts(),
              ( Texts{
                 "unit 0 entry 1: getEntry( group 157, name rule )",
                 "unit 0 entry 2: getEntry( group 157, name rule, key "
                 "\"VornalTcam::RequestKey( owner=\\\"\\\", number=7, detail=\\\"\\\" )\" )",
              } ) );
}

TEST_F( HardwareCalls, EveryFieldCallIsRecordedWithItsValues ) {
   U32 const ingress = leaf1.ifp->getEntry( 1, "ingress", {} );
   U32 const egress = leaf1.efp->getEntry( 1, "egress", {} );
   record.calls.clear();
   recorder.bcm_field_qualify_PacketRes( 1, ingress, 4, 0xff );
   recorder.bcm_field_qualify_TunnelTerminated( 1, ingress, 1, 1 );
   recorder.bcm_field_qualify_VxlanNetworkId( 1, ingress, 10100, kExact );
   recorder.bcm_field_action_add( 1, ingress, bcmFieldActionEgressClassSelect, 1, 0 );
   recorder.bcm_field_action_add( 1, ingress, bcm_field_action_t{ 9 }, 1, 0 );
   recorder.bcm_field_qualify_DstPort( 1, egress, 4, kExact, 5, kExact );
   recorder.bcm_field_qualify_IpType( 1, egress, bcmFieldIpTypeIpv6 );
   recorder.bcm_field_qualify_IngressClassField( 1, egress, 100, kExact );
   EXPECT_EQ(
      record.texts(),
      ( Texts{
         "unit 1 entry 1: bcm_field_qualify_PacketRes( data 4, mask 0xff ) = 0",
         "unit 1 entry 1: bcm_field_qualify_TunnelTerminated( data 1, mask 0x1 ) = 0",
         "unit 1 entry 1: bcm_field_qualify_VxlanNetworkId( data 10100, mask 0xffffffff ) = 0",
         "unit 1 entry 1: bcm_field_action_add( action EgressClassSelect, param0 1, param1 0 ) = 0",
         "unit 1 entry 1: bcm_field_action_add( action 9, param0 1, param1 0 ) = -6 BAD_VALUE",
         std::string(
            "unit 1 entry 2: bcm_field_qualify_DstPort( modId 4, modIdMask 0xffffffff, " ) +
            "port 5, portMask 0xffffffff ) = 0",
         "unit 1 entry 2: bcm_field_qualify_IpType( ipType 3 ) = 0",
         "unit 1 entry 2: bcm_field_qualify_IngressClassField( data 100, mask 0xffffffff ) = 0",
      } ) );
}

TEST_F( HardwareCalls, ReadBacksAreRecordedWithWhatWasRead ) {
   U32 const ingress = leaf1.ifp->getEntry( 0, "ingress", {} );
   U32 const egress = leaf1.efp->getEntry( 0, "egress", {} );
   leaf1.sdk.bcm_field_qualify_SrcVxlanGport( 0, ingress, kVtep2 );
   leaf1.sdk.bcm_field_qualify_PacketRes( 0, ingress, 4, 0xff );
   leaf1.sdk.bcm_field_qualify_TunnelTerminated( 0, ingress, 1, 1 );
   leaf1.sdk.bcm_field_qualify_VxlanNetworkId( 0, ingress, 10100, kExact );
   leaf1.sdk.bcm_field_action_add( 0, ingress, bcmFieldActionNewClassId, 100, 0 );
   leaf1.sdk.bcm_field_qualify_DstPort( 0, egress, 4, 0xf, 5, 0x1f );
   leaf1.sdk.bcm_field_qualify_IpType( 0, egress, bcmFieldIpTypeIpv6 );
   leaf1.sdk.bcm_field_qualify_IngressClassField( 0, egress, 100, 0xff );
   leaf1.ifp->installEntry( 0, ingress );
   leaf1.efp->installEntry( 0, egress );
   record.calls.clear();

   U32 data = 0;
   U32 mask = 0;
   U32 port = 0;
   U32 portMask = 0;
   U8 octet = 0;
   U8 octetMask = 0;
   bcm_field_IpType_t ipType{};
   recorder.bcm_field_qualify_SrcVxlanGport_get( 0, ingress, &data );
   recorder.bcm_field_qualify_PacketRes_get( 0, ingress, &data, &mask );
   recorder.bcm_field_qualify_TunnelTerminated_get( 0, ingress, &octet, &octetMask );
   recorder.bcm_field_qualify_VxlanNetworkId_get( 0, ingress, &data, &mask );
   recorder.bcm_field_action_get( 0, ingress, bcmFieldActionNewClassId, &data, &mask );
   recorder.bcm_field_qualify_DstPort_get( 0, egress, &data, &mask, &port, &portMask );
   recorder.bcm_field_qualify_IpType_get( 0, egress, &ipType );
   recorder.bcm_field_qualify_IngressClassField_get( 0, egress, &data, &mask );
   recorder.bcm_field_action_get( 0, egress, bcmFieldActionDrop, &data, &mask );
   EXPECT_EQ(
      record.texts(),
      ( Texts{
         "unit 0 entry 1: bcm_field_qualify_SrcVxlanGport_get( gport 0x56000002 ) = 0",
         "unit 0 entry 1: bcm_field_qualify_PacketRes_get( data 4, mask 0xff ) = 0",
         "unit 0 entry 1: bcm_field_qualify_TunnelTerminated_get( data 1, mask 0x1 ) = 0",
         "unit 0 entry 1: bcm_field_qualify_VxlanNetworkId_get( data 10100, mask 0xffffffff ) = 0",
         "unit 0 entry 1: bcm_field_action_get( action NewClassId, param0 100, param1 0 ) = 0",
         std::string( "unit 0 entry 2: bcm_field_qualify_DstPort_get( modId 4, modIdMask 0xf, " ) +
            "port 5, portMask 0x1f ) = 0",
         "unit 0 entry 2: bcm_field_qualify_IpType_get( ipType 3 ) = 0",
         "unit 0 entry 2: bcm_field_qualify_IngressClassField_get( data 100, mask 0xff ) = 0",
         "unit 0 entry 2: bcm_field_action_get( action Drop ) = -3 NOT_FOUND",
      } ) );
}

TEST_F( HardwareCalls, AGuardedCallIsRecordedWithItsText ) {
   Shim::sdk_ = &recorder;
   U32 const unit = 0;
   U32 const entryId = leaf1.ifp->getEntry( unit, "no-op", {} );
   SDK_FIELD_CALL( bcm_field_qualify_PacketRes( unit, entryId, BCM_FIELD_PKT_RES_L2UC, 0xff ) );
   recorder.bcm_field_qualify_TunnelTerminated( unit, entryId, 1, 1 );
   HardwareCall const & guarded = record.calls.at( 1 );
   EXPECT_EQ( guarded.callText,
              "bcm_field_qualify_PacketRes( unit, entryId, BCM_FIELD_PKT_RES_L2UC, 0xff )" );
   EXPECT_EQ( guarded.operation, "bcm_field_qualify_PacketRes" );
   EXPECT_EQ( guarded.values, ( std::vector< Chip::NamedValue >{ { "data", U32{ 4 } },
                                                                 { "mask", U32{ 0xff } } } ) );
   EXPECT_EQ( record.calls.at( 0 ).callText, "" );
   EXPECT_EQ( record.calls.at( 2 ).callText, "" );
}

TEST_F( HardwareCalls, ARefusedRequestIsRecordedBeforeItsNotification ) {
   std::size_t recordedBefore = 0;
   Kiv::Watch< Chip::SoftTcamEntryManager > watch( leaf1.ifp, [ & ]( Kiv::Change const & ) {
      recordedBefore = record.calls.size();
   } );
   watch.hasNotificationActiveIs( true );
   leaf1.ifp->foreignEntriesIs( 0, 2 );
   EXPECT_EQ( leaf1.ifp->getEntry( 0, "rule", {} ), 0U );
   EXPECT_EQ( recordedBefore, 1U );
   EXPECT_EQ( record.texts(), Texts{ "unit 0 entry 0: getEntry( group 157, name rule )" } );
}

// --- Failing

TEST_F( HardwareCalls, TheNthCallFailsAndIsNotMade ) {
   Chip::FailingSdk failing( leaf1.sdk, { .nth = 2, .code = -4711 } );
   U32 const id = leaf1.ifp->getEntry( 0, "rule", {} );
   EXPECT_EQ( failing.bcm_field_qualify_SrcVxlanGport( 0, id, kVtep2 ), 0 );
   EXPECT_EQ( failing.bcm_field_qualify_PacketRes( 0, id, 4, 0xff ), -4711 );
   EXPECT_EQ( failing.bcm_field_qualify_TunnelTerminated( 0, id, 1, 1 ), 0 );
   Chip::EntryContent const staged = Chip::rulesOf( leaf1.board.units() ).at( 0 ).content;
   EXPECT_TRUE( staged[ Chip::Qualifier::SrcVxlanGport ] );
   EXPECT_FALSE( staged[ Chip::Qualifier::PacketRes ] );
   EXPECT_TRUE( staged[ Chip::Qualifier::TunnelTerminated ] );
}

TEST_F( HardwareCalls, TheNthCallOfANamedOperationFails ) {
   Chip::FailingSdk failing( leaf1.sdk,
                             { .nth = 2, .code = -8, .operation = "bcm_field_qualify_PacketRes" } );
   U32 const id = leaf1.ifp->getEntry( 0, "rule", {} );
   EXPECT_EQ( failing.bcm_field_qualify_PacketRes( 0, id, 4, 0xff ), 0 );
   EXPECT_EQ( failing.bcm_field_qualify_TunnelTerminated( 0, id, 1, 1 ), 0 );
   EXPECT_EQ( failing.bcm_field_qualify_PacketRes( 0, id, 10, 0xff ), -8 );
   EXPECT_EQ( failing.bcm_field_qualify_PacketRes( 0, id, 10, 0xff ), 0 );
}

TEST_F( HardwareCalls, AReadBackThatIsNotMadeReadsNothing ) {
   Chip::FailingSdk failing( recorder, { .nth = 1, .code = -5 } );
   Chip::RecordingSdk front( failing, record );
   U32 const id = leaf1.fromVtep( 0, kVtep2 );
   record.calls.clear();
   U32 gport = 77;
   EXPECT_EQ( front.bcm_field_qualify_SrcVxlanGport_get( 0, id, &gport ), -5 );
   EXPECT_EQ( gport, 77U );
   EXPECT_EQ( record.texts(),
              Texts{ "unit 0 entry 1: bcm_field_qualify_SrcVxlanGport_get() = -5 UNSUPPORTED" } );
}

using HardwareCallsDeathTest = HardwareCalls;

TEST_F( HardwareCallsDeathTest, AFailedGuardedCallIsRecordedAndTheStopAnnounced ) {
   class ToStandardError : public Chip::CallObserver {
    public:
      void callMade( HardwareCall const & call ) override {
         std::fprintf( stderr, "%s\n", textOf( call ).c_str() );
      }
   } printer;
   Chip::FailingSdk failing( leaf1.sdk, { .nth = 1, .code = -5 } );
   Chip::RecordingSdk front( failing, printer );
   Shim::sdk_ = &front;
   U32 const unit = 0;
   U32 const entryId = 1;
   EXPECT_EXIT(
      SDK_FIELD_CALL_AT( 758, bcm_field_qualify_TunnelTerminated( unit, entryId, 1, 1 ) ),
      testing::KilledBySignal( SIGABRT ),
      "^unit 0 entry 1: bcm_field_qualify_TunnelTerminated\\( data 1, mask 0x1 \\) = -5 "
      "UNSUPPORTED\n"
      "HardwareCall_test.cpp:758 bcm_field_qualify_TunnelTerminated\\( unit, entryId, 1, 1 \\) "
      "API ERROR:Group does not support this \\(-5\\)\n"
      "HardwareCall_test.cpp:758: .*Assertion '0' failed" );
}

// A shim of its own codes: any that is not negative is a success.
class OtherCodes final : public Chip::SdkDecorator {
 public:
   using SdkDecorator::SdkDecorator;
   S32 make( Shim::Call & call ) override {
      call.values.add( 4 );
      call.values.add( 0xff );
      return 7;
   }
   S32 successCode() const override { return 1; }
};

TEST_F( HardwareCalls, AReadBackHasItsValuesWithAnyCodeThatIsNotNegative ) {
   OtherCodes other( leaf1.sdk );
   Chip::RecordingSdk recorderOfOther( other, record );
   U32 data = 0;
   U32 mask = 0;
   recorderOfOther.bcm_field_qualify_PacketRes_get( 0, 3, &data, &mask );
   EXPECT_EQ( record.texts(),
              ( Texts{
                 "unit 0 entry 3: bcm_field_qualify_PacketRes_get( data 4, mask 0xff ) = 7" } ) );
}

// --- Handing on

TEST_F( HardwareCalls, ADecoratorHandsOnWhatAGuardedCallAnnounces ) {
   class Announced : public Chip::SdkDecorator {
    public:
      using SdkDecorator::SdkDecorator;
      void beforeFieldCall() override { ++calls; }
      void fieldCallFailed() override { ++failures; }

      U32 calls = 0;
      U32 failures = 0;
   } announced( leaf1.sdk );
   Chip::RecordingSdk front( announced, record );
   Shim::sdk_ = &front;
   U32 const unit = 0;
   U32 const entryId = leaf1.ifp->getEntry( unit, "rule", {} );
   SDK_FIELD_CALL( bcm_field_qualify_PacketRes( unit, entryId, 4, 0xff ) );
   SDK_FIELD_CALL( bcm_field_qualify_TunnelTerminated( unit, entryId, 1, 1 ) );
   front.bcm_field_qualify_TunnelTerminated( unit, entryId, 1, 1 );
   EXPECT_EQ( announced.calls, 2U );
   EXPECT_EQ( announced.failures, 0U );
   front.fieldCallFailed();
   EXPECT_EQ( announced.failures, 1U );
}

TEST_F( HardwareCalls, ADecoratorHandsOnWhatIsNoFieldCall ) {
   EXPECT_EQ( recorder.successCode(), 0 );
   EXPECT_EQ( recorder.errorText( -3 ), "Not found" );
   EXPECT_EQ( recorder.packetResL3McKnown(), 12U );
   EXPECT_EQ( recorder.vxlanGport( 2 ), kVtep2 );
   _shr_pbmp ports = pbmpOfPorts( { 5, 6 } );
   EXPECT_EQ( recorder.pbmpCount( ports ), 2U );
   EXPECT_FALSE( recorder.pbmpEqual( ports, pbmpOfPorts( {} ) ) );
   recorder.pbmpClear( ports );
   EXPECT_TRUE( recorder.pbmpEqual( ports, pbmpOfPorts( {} ) ) );
   EXPECT_TRUE( record.calls.empty() );
}

}  // namespace HardwareCallTest
