// The rules that keep known L3 multicast of routed VNIs out of the filter: what they are made of,
// and how they follow the VNIs of the VRFs.

#include <gtest/gtest.h>

#include <Trace/Ring.h>
#include <VornalCentral/Capabilities.h>

#include "../support/RoutedSwitch.h"
#include "../support/Stops.h"
#include "../support/Variants.h"

namespace {

using namespace Support;
using Vnis = RoutedSwitch::Vnis;
using VniOfVrf = RoutedSwitch::VniOfVrf;

std::string const operation = "NestedSm_VtiStatus::handleVrfToVniMap";

class PerVniMulticast : public testing::TestWithParam< Variant > {
 protected:
   void start() {
      leaf.tunnelIs();
      sm = leaf.machineNew( GetParam() );
      leaf.forget();
   }

   RoutedSwitch leaf;
   Machine sm;
};

using PerVniMulticastDeathTest = PerVniMulticast;

INSTANTIATE_TEST_SUITE_P( Vnis, PerVniMulticast, bothVariants, nameOfVariant );
INSTANTIATE_TEST_SUITE_P( Vnis, PerVniMulticastDeathTest, bothVariants, nameOfVariant );

// --- One rule

TEST_P( PerVniMulticast, ANewVniIsQualifiedPrioritisedAndInstalledInThisOrder ) {
   start();
   leaf.vniIs( "red", 50001 );
   EXPECT_EQ( leaf.callLines(),
              ( Lines{
                 "unit 0 entry 1: " + ingressRequest( vniRuleName( 50001 ) ),
                 "unit 0 entry 1: bcm_field_qualify_VxlanNetworkId( data 50001, mask 0xffffffff ) "
                 "= 0",
                 "unit 0 entry 1: bcm_field_qualify_PacketRes( data 12, mask 0xffffffff ) = 0",
                 "unit 0 entry 1: setPriorityForEntry( group 157, priority 2 ) = 0",
                 "unit 0 entry 1: installEntry( group 157 ) = 0",
              } ) );
   EXPECT_EQ( sm->vniToTcamEntryId( 50001 ), 1U );
}

TEST_P( PerVniMulticast, TheFieldCallsAreSpelledAsSupportToolsKnowThem ) {
   start();
   leaf.vniIs( "red", 50001 );
   ASSERT_EQ( leaf.calls.size(), 5U );
   EXPECT_EQ( leaf.calls[ 1 ].callText,
              "bcm_field_qualify_VxlanNetworkId( iter.key(), ifpEntryId, newV, 0xffffffff )" );
   EXPECT_EQ( leaf.calls[ 2 ].callText,
              "bcm_field_qualify_PacketRes( iter.key(), ifpEntryId, BCM_FIELD_PKT_RES_L3MCKNOWN, "
              "BCM_FIELD_EXACT_MATCH_MASK )" );
}

TEST_P( PerVniMulticast, TheRuleHasNoActionAndStandsAboveTheVteps ) {
   start();
   leaf.vniIs( "red", 50001 );
   auto const rules = Chip::rulesOf( leaf.board.units() );
   ASSERT_EQ( rules.size(), 1U );
   EXPECT_TRUE( rules[ 0 ].isWritten );
   EXPECT_EQ( rules[ 0 ].content.priority, 2U );
   for ( auto const & action : rules[ 0 ].content.actions ) {
      EXPECT_FALSE( action );
   }
}

TEST_P( PerVniMulticast, ANewVniIsTraced ) {
   start();
   leaf.vniIs( "red", 50001 );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "8 " + handleVrfToVniMapSignature + " vrf red",
                              "8 " + handleVrfToVniMapSignature + " new vni 50001",
                              "4 handleVrfToVniMap allocated IFP entry ID 1",
                           } ) );
}

// --- Following the map

TEST_P( PerVniMulticast, AnotherVniReleasesTheOldEntryAndInstallsANewOne ) {
   start();
   leaf.vniIs( "red", 50001 );
   leaf.forget();
   leaf.vniIs( "red", 50002 );
   ASSERT_EQ( leaf.calls.size(), 6U );
   EXPECT_EQ( leaf.callLines()[ 0 ], "unit 0 entry 1: releaseEntry( group 157 ) = 0" );
   EXPECT_EQ( leaf.callLines()[ 5 ], "unit 0 entry 2: installEntry( group 157 ) = 0" );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "8 " + handleVrfToVniMapSignature + " vrf red",
                              "8 " + handleVrfToVniMapSignature + " old vni 50001",
                              "4 handleVrfToVniMap freed vni entry ID 1",
                              "8 " + handleVrfToVniMapSignature + " new vni 50002",
                              "4 handleVrfToVniMap allocated IFP entry ID 2",
                           } ) );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 50002 } ) );
   EXPECT_EQ( leaf.vnisRecorded( sm ), ( Vnis{ 50002 } ) );
}

TEST_P( PerVniMulticast, AVrfThatLeavesTheMapOnlyReleases ) {
   start();
   leaf.vniIs( "red", 50001 );
   leaf.forget();
   leaf.vniDel( "red" );
   EXPECT_EQ( leaf.callLines(), ( Lines{ "unit 0 entry 1: releaseEntry( group 157 ) = 0" } ) );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "8 " + handleVrfToVniMapSignature + " vrf red",
                              "8 " + handleVrfToVniMapSignature + " old vni 50001",
                              "4 handleVrfToVniMap freed vni entry ID 1",
                           } ) );
   EXPECT_TRUE( leaf.vnisRecorded( sm ).empty() );
}

TEST_P( PerVniMulticast, TheSameVniAgainReleasesItsEntryAndObtainsAnother ) {
   start();
   leaf.vniIs( "red", 50001 );
   sm->vtiStatus( intf( "Vxlan1" ) )->handleVrfToVniMap( vrf( "red" ), 50001, 50001 );
   EXPECT_EQ( sm->vniToTcamEntryId( 50001 ), 2U );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 50001 } ) );
}

TEST_P( PerVniMulticast, VniZeroIsNoVni ) {
   start();
   leaf.vniIs( "red", 50001 );
   leaf.vniIs( "red", 0 );
   EXPECT_TRUE( leaf.vnisOnChip().empty() );
   leaf.forget();
   leaf.vniIs( "blue", 0 );
   EXPECT_EQ( leaf.traces, ( Lines{ "8 " + handleVrfToVniMapSignature + " vrf blue" } ) );
   EXPECT_TRUE( leaf.calls.empty() );
}

TEST_P( PerVniMulticast, TheVniThatMeansNoneIsTracedButNeitherInstalledNorReleased ) {
   start();
   leaf.vniIs( "red", Vxlan::VniExtOrNone::kNone );
   EXPECT_EQ( leaf.traces, ( Lines{ "8 " + handleVrfToVniMapSignature + " vrf red",
                                    "8 " + handleVrfToVniMapSignature + " new vni 16777216" } ) );
   leaf.forget();
   leaf.vniDel( "red" );
   EXPECT_EQ( leaf.traces, ( Lines{ "8 " + handleVrfToVniMapSignature + " vrf red" } ) );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_TRUE( leaf.vnisRecorded( sm ).empty() );
}

TEST_P( PerVniMulticast, AnEntryRecordedForTheVniThatMeansNoneIsNotReleased ) {
   start();
   sm->vniToTcamEntryIdIs( Vxlan::VniExtOrNone::kNone, 1 );
   sm->vtiStatus( intf( "Vxlan1" ) )
      ->handleVrfToVniMap( vrf( "red" ), Vxlan::VniExtOrNone::kNone, 0 );
   EXPECT_EQ( leaf.traces, ( Lines{ "8 " + handleVrfToVniMapSignature + " vrf red",
                                    "8 " + handleVrfToVniMapSignature + " old vni 16777216" } ) );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_TRUE( sm->vniToTcamEntryIdHas( Vxlan::VniExtOrNone::kNone ) );
}

TEST_P( PerVniMulticast, NorIsAnEntryMissedThatIsNotThere ) {
   start();
   sm->vniToTcamEntryIdIs( Vxlan::VniExtOrNone::kNone, 0 );
   sm->vtiStatus( intf( "Vxlan1" ) )
      ->handleVrfToVniMap( vrf( "red" ), Vxlan::VniExtOrNone::kNone, 0 );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_TRUE( sm->vniToTcamEntryIdHas( Vxlan::VniExtOrNone::kNone ) );
}

TEST_P( PerVniMulticast, SeveralVrfsMayHaveNoVni ) {
   start();
   leaf.vniIs( "blue", Vxlan::VniExtOrNone::kNone );
   leaf.vniIs( "red", Vxlan::VniExtOrNone::kNone );
   leaf.vniIs( "red", 50001 );
   leaf.vniIs( "red", Vxlan::VniExtOrNone::kNone );
   EXPECT_TRUE( leaf.vnisOnChip().empty() );
}

TEST_P( PerVniMulticast, WhatIsMappedAtTheStartIsProgrammedInMapOrder ) {
   leaf.tunnelIs();
   leaf.vniIs( "red", 50001 );
   leaf.vniIs( "blue", 50002 );
   sm = leaf.machineNew( GetParam() );
   EXPECT_EQ( sm->vniToTcamEntryId( 50002 ), 1U );  // blue comes first
   EXPECT_EQ( sm->vniToTcamEntryId( 50001 ), 2U );
}

TEST_P( PerVniMulticast, TheRuleOfVniOneStaysWhenOtherVrfsAreMapped ) {
   leaf.tunnelIs();
   leaf.vniIs( "green", 1 );
   leaf.vniIs( "blue", 50001 );
   leaf.vniIs( "red", 50002 );
   sm = leaf.machineNew( GetParam() );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 1, 50001, 50002 } ) );
   leaf.vniIs( "white", 50003 );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 1, 50001, 50002, 50003 } ) );
}

// --- When rules are needed

TEST_P( PerVniMulticast, WithoutAnEthernetSegmentNothingIsInstalled ) {
   leaf.segmentDel( "Ethernet1" );
   start();
   leaf.vniIs( "red", 50001 );
   EXPECT_EQ( leaf.traces, ( Lines{ "8 " + handleVrfToVniMapSignature + " vrf red" } ) );
   EXPECT_TRUE( leaf.calls.empty() );
}

TEST_P( PerVniMulticast, TheFirstSegmentInstallsAllVnisAndTheLastReleasesThem ) {
   leaf.segmentDel( "Ethernet1" );
   start();
   leaf.vniIs( "red", 50001 );
   leaf.vniIs( "blue", 50002 );
   leaf.segmentIs( "Ethernet1", {} );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 50001, 50002 } ) );
   leaf.segmentIs( "Ethernet2", {} );
   leaf.segmentDel( "Ethernet1" );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 50001, 50002 } ) );
   leaf.segmentDel( "Ethernet2" );
   EXPECT_TRUE( leaf.vnisOnChip().empty() );
   EXPECT_TRUE( leaf.vnisRecorded( sm ).empty() );
   leaf.segmentIs( "Ethernet2", {} );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 50001, 50002 } ) );
}

TEST_P( PerVniMulticast, TheLastSegmentDropsTheQueueAsWell ) {
   start();
   leaf.roomIs( 0 );
   leaf.vniIs( "red", 50001 );
   EXPECT_EQ( leaf.queued( sm ), ( VniOfVrf{ { "red", 50001 } } ) );
   leaf.segmentDel( "Ethernet1" );
   EXPECT_TRUE( leaf.queued( sm ).empty() );
}

TEST_P( PerVniMulticast, AVniIsReleasedAlsoWhenThereIsNoSegmentAnyMore ) {
   start();
   leaf.vniIs( "red", 50001 );
   sm->isEvpnIs( false );
   leaf.vniIs( "red", 50002 );
   EXPECT_TRUE( leaf.vnisOnChip().empty() );
}

TEST_P( PerVniMulticast, BeforeInitialisationItOnlyTraces ) {
   start();
   sm->initializedIs( false );
   leaf.vniIs( "red", 50001 );
   EXPECT_EQ( leaf.traces, ( Lines{ "8 " + handleVrfToVniMapSignature + " vrf red",
                                    "2 handleVrfToVniMap, SM not initialized yet" } ) );
   EXPECT_TRUE( leaf.calls.empty() );
}

TEST_P( PerVniMulticast, APlatformThatNeedsNoRulesGetsNoneWithoutAWord ) {
   auto const & platform = VornalCentral::vornalAttributes();
   platform->l3McastExemptFromSplitHorizonIs( true );
   start();
   leaf.vniIs( "red", 50001 );
   platform->l3McastExemptFromSplitHorizonIs( false );
   EXPECT_EQ( leaf.traces, ( Lines{ "8 " + handleVrfToVniMapSignature + " vrf red" } ) );
   EXPECT_TRUE( leaf.calls.empty() );
}

TEST_P( PerVniMulticast, BeforeInitialisationNobodyAsksWhatThePlatformNeeds ) {
   auto const & platform = VornalCentral::vornalAttributes();
   platform->l3McastExemptFromSplitHorizonIs( true );
   start();
   sm->initializedIs( false );
   leaf.vniIs( "red", 50001 );
   platform->l3McastExemptFromSplitHorizonIs( false );
   EXPECT_EQ( leaf.traces, ( Lines{ "8 " + handleVrfToVniMapSignature + " vrf red",
                                    "2 handleVrfToVniMap, SM not initialized yet" } ) );
}

TEST_P( PerVniMulticast, SwitchedOffTheMapIsNotFollowed ) {
   start();
   sm->hasNotificationActiveIs( false );
   leaf.vniIs( "red", 50001 );
   EXPECT_TRUE( leaf.traces.empty() );
}

TEST_P( PerVniMulticast, NothingOfItGoesToTheRing ) {
   std::vector< std::byte > memory( Trace::Ring::sizeFor( 64 ) );
   Trace::Ring ring( memory );
   start();
   Trace::ringIs( &ring );
   Trace::ringLevelsIs( "VornalEvpnSm", "0-9" );
   leaf.vniIs( "red", 50001 );
   leaf.vniIs( "red", 50002 );
   leaf.roomIs( 0 );
   leaf.vniIs( "blue", 50003 );
   leaf.roomIs( 1 );
   leaf.wakeUps();
   leaf.tunnelDel();
   sm->handleVerify();
   sm->initializedIs( false );
   sm->handleTime();
   sm->handleTcamExhaustion();
   Trace::ringIs( nullptr );
   EXPECT_TRUE( Trace::Ring::decode( memory ).empty() );
}

// --- What stops the process

TEST_P( PerVniMulticastDeathTest, AnOldVniRecordedWithoutAnEntryStopsTheProcess ) {
   start();
   sm->vniToTcamEntryIdIs( 50001, 0 );
   EXPECT_DEATH( sm->vtiStatus( intf( "Vxlan1" ) )->handleVrfToVniMap( vrf( "red" ), 50001, 0 ),
                 stopsAt( operation, "entryId" ) );
}

TEST_P( PerVniMulticastDeathTest, ANewVniThatHasAnEntryStopsTheProcess ) {
   start();
   leaf.vniIs( "red", 50001 );
   EXPECT_DEATH( sm->vtiStatus( intf( "Vxlan1" ) )->handleVrfToVniMap( vrf( "red" ), 0, 50001 ),
                 stopsAtTakenVni );
}

TEST_P( PerVniMulticastDeathTest, SoDoesTheNewVniThatMeansNone ) {
   start();
   sm->vniToTcamEntryIdIs( Vxlan::VniExtOrNone::kNone, 7 );
   EXPECT_DEATH( sm->vtiStatus( intf( "Vxlan1" ) )
                    ->handleVrfToVniMap( vrf( "red" ), 0, Vxlan::VniExtOrNone::kNone ),
                 stopsAtTakenVni );
}

TEST_P( PerVniMulticastDeathTest, AStopNamesTheOperationByTheSignatureThatItTraces ) {
   start();
   leaf.vniIs( "red", 50001 );
   EXPECT_DEATH( leaf.vniIs( "blue", 50001 ),
                 "^PerVniMulticast\\.cpp:[0-9]+: " +
                    literally( handleVrfToVniMapSignature + ": Assertion '" + vniIsTaken +
                               "' failed.\n" ) +
                    "$" );
}

TEST_P( PerVniMulticastDeathTest, AFailedVniQualifierIsReportedAtItsLine ) {
   start();
   FieldCallFault const fault( { .nth = 1, .code = -4 } );
   EXPECT_DEATH( leaf.vniIs( "red", 50001 ),
                 failedCall( "PerVniMulticast.cpp:279", operation,
                             "bcm_field_qualify_VxlanNetworkId( iter.key(), ifpEntryId, newV, "
                             "0xffffffff )",
                             "Action exists (-4)" ) );
}

TEST_P( PerVniMulticastDeathTest, AFailedResolutionQualifierIsReportedAtItsLine ) {
   start();
   FieldCallFault const fault( { .nth = 2, .code = -4 } );
   EXPECT_DEATH( leaf.vniIs( "red", 50001 ),
                 failedCall( "PerVniMulticast.cpp:282", operation,
                             "bcm_field_qualify_PacketRes( iter.key(), ifpEntryId, "
                             "BCM_FIELD_PKT_RES_L3MCKNOWN, BCM_FIELD_EXACT_MATCH_MASK )",
                             "Action exists (-4)" ) );
}

TEST_P( PerVniMulticast, APositiveCodeOfAFieldCallIsSuccess ) {
   start();
   FieldCallFault const fault( { .nth = 1, .code = 1 } );
   leaf.vniIs( "red", 50001 );
   EXPECT_EQ( leaf.vnisRecorded( sm ), ( Vnis{ 50001 } ) );
}

}  // namespace
