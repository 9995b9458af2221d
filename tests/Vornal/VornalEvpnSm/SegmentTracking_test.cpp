// Which remote VTEPs have rules, and when: segments, virtual ports and their order of coming. On
// the machine without a variant: none of this depends on what the rules do.

#include <gtest/gtest.h>

#include <csignal>

#include "../support/BareMachine.h"
#include "../support/Stops.h"

namespace SegmentTrackingTest {

using Support::BareMachine;
using Support::bareMachineNew;
using Support::intf;
using Support::ip;
using Support::Lines;
using Support::LocalBiasSwitch;

// leaf1 of two units: Ethernet1 on unit 0 and Ethernet11 on unit 1 carry segments.
class SegmentTracking : public testing::Test {
 protected:
   explicit SegmentTracking( U32 capacity = 64 ) : leaf( 2, capacity ) {
      leaf.interfaceIs( "Ethernet1", 0, 5 );
      leaf.interfaceIs( "Ethernet11", 1, 6 );
   }
   U32 entryId( U32 unit, std::string const & address ) const {
      auto const record = sm->tepIpToEntry( unit );
      return record ? record->entryId( ip( address ) ) : 0;
   }

   LocalBiasSwitch leaf;
   Quelm::Ptr< BareMachine > const sm = bareMachineNew( leaf );
};

// --- A VTEP comes

TEST_F( SegmentTracking, ASegmentBeforeInitialisationOnlyTracesAndIsCaughtUpWith ) {
   sm->initializedIs( false );
   leaf.vtepIs( "10.0.0.2", 2 );
   leaf.forget();
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   EXPECT_EQ( leaf.tracesOf( "5 handleTep" ), ( Lines{ "5 handleTepSegment tepIp: 10.0.0.2" } ) );
   EXPECT_EQ( leaf.tracesOf( "2 handleTep" ),
              ( Lines{ "2 handleTepSegment, SM not initialized yet" } ) );
   EXPECT_TRUE( leaf.calls.empty() );
   leaf.forget();
   sm->handleInitialized();
   EXPECT_EQ( leaf.tracesOf( "5 handle" ), ( Lines{ "5 handleInitialized", "5 handleTepSegment",
                                                    "5 handleTepSegment tepIp: 10.0.0.2" } ) );
   EXPECT_NE( entryId( 0, "10.0.0.2" ), 0U );
   EXPECT_NE( entryId( 1, "10.0.0.2" ), 0U );
}

TEST_F( SegmentTracking, TheCatchUpVisitsEveryVtepThatSharesASegment ) {
   sm->initializedIs( false );
   leaf.segmentIs( "Ethernet1", { "10.0.0.2", "10.0.0.3" } );
   leaf.segmentIs( "Ethernet11", { "10.0.0.3", "2001:db8::4" } );
   leaf.forget();
   sm->handleTepSegment();
   EXPECT_EQ( leaf.tracesOf( "5 handle" ),
              ( Lines{ "5 handleTepSegment", "5 handleTepSegment tepIp: 10.0.0.2",
                       "5 handleTepSegment tepIp: 10.0.0.3",
                       "5 handleTepSegment tepIp: 2001:db8::4" } ) );
}

TEST_F( SegmentTracking, ASegmentWithoutVirtualPortYieldsNoRules ) {
   leaf.forget();
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   EXPECT_EQ( leaf.tracesOf( "2 handleTep" ),
              ( Lines{ "2 handleTepSegment, no VP assigned to remote VTEP " } ) );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_FALSE( sm->tepIpToEntryHas( 0 ) );
}

TEST_F( SegmentTracking, TheLaterVirtualPortInstallsTheRulesAndDeletesNothing ) {
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.forget();
   leaf.vtepIs( "10.0.0.2", 0x70009 );
   EXPECT_EQ( leaf.tracesOf( "5 handleR" ),
              ( Lines{ "5 handleRemoteVport, rvk.vtepIp: 10.0.0.2" } ) );
   EXPECT_EQ( leaf.tracesOf( "6 " ), ( Lines{
                                        "6 handleRemoteVport, newVpIndex: 9",
                                        "6 handleRemoteVport, add TCAM entry with new VPindex qual",
                                        "6 handleRemoteVport, newVpIndex: 9",
                                        "6 handleRemoteVport, add TCAM entry with new VPindex qual",
                                     } ) );
   for ( U16 const unit : { U16{ 0 }, U16{ 1 } } ) {
      EXPECT_NE( entryId( unit, "10.0.0.2" ), 0U );
      EXPECT_EQ( sm->tepIpToEntry( unit )->vpIndex( ip( "10.0.0.2" ) ), 9U );
      EXPECT_TRUE( sm->l2UcastRuleInstalledHas( unit ) );
      EXPECT_TRUE( sm->l3UcastRuleInstalledHas( unit ) );
   }
}

TEST_F( SegmentTracking, TheExemptionsComeBeforeTheFirstEntryOfAUnit ) {
   leaf.vtepIs( "10.0.0.2", 0x70009 );
   leaf.forget();
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   EXPECT_EQ( leaf.tracesOf( "6 " ), ( Lines{
                                        "6 handleTepSegment, adding TCAM entry for tepIp ",
                                        "6 handleTepSegment, adding TCAM entry for tepIp ",
                                     } ) );
   EXPECT_EQ( sm->l2UcastRuleInstalled( 1 ), 1U );
   EXPECT_EQ( sm->l3UcastRuleInstalled( 1 ), 2U );
   EXPECT_EQ( entryId( 1, "10.0.0.2" ), 3U );
   EXPECT_EQ( sm->tepIpToEntry( 1U )->vpIndex( ip( "10.0.0.2" ) ), 9U );
}

TEST_F( SegmentTracking, ASecondVtepFindsTheExemptionsInPlace ) {
   leaf.vtepIs( "10.0.0.2", 2 );
   leaf.vtepIs( "10.0.0.3", 3 );
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   auto const record = sm->tepIpToEntry( 0U );
   leaf.forget();
   leaf.segmentIs( "Ethernet11", { "10.0.0.3" } );
   EXPECT_TRUE( leaf.tracesOf( "5 installRules" ).empty() );
   EXPECT_EQ( sm->tepIpToEntry( 0U ), record );
   EXPECT_EQ( entryId( 0, "10.0.0.3" ), 4U );
}

TEST_F( SegmentTracking, AVirtualPortOfAVtepThatSharesNothingOnlyTraces ) {
   leaf.forget();
   leaf.vtepIs( "10.0.0.9", 9 );
   sm->initializedIs( false );
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.vtepIs( "10.0.0.2", 2 );
   EXPECT_EQ( leaf.tracesOf( "2  init" ),
              ( Lines{
                 "2  initialized: 1 tepIp part of oxaEvpnTepSegmentDir: 0",
                 "2  initialized: 0 tepIp part of oxaEvpnTepSegmentDir: 1",
              } ) );
   EXPECT_TRUE( leaf.calls.empty() );
}

// --- A VTEP's VP index changes

class TwoVteps : public SegmentTracking {
 protected:
   TwoVteps() {
      leaf.vtepIs( "10.0.0.2", 2 );
      leaf.vtepIs( "10.0.0.3", 3 );
      leaf.segmentIs( "Ethernet1", { "10.0.0.2", "10.0.0.3" } );
      leaf.forget();
   }
};

TEST_F( TwoVteps, AVpIndexChangeDeletesAndAddsTheEntryOnEveryUnit ) {
   leaf.vtepIs( "10.0.0.2", 0x10008 );
   EXPECT_EQ( leaf.tracesOf( "6 " ),
              ( Lines{
                 "6 handleRemoteVport, newVpIndex: 8",
                 "6 handleRemoteVport, delete TCAM entry with old VPindex qual",
                 "6 handleRemoteVport, add TCAM entry with new VPindex qual",
                 "6 handleRemoteVport, newVpIndex: 8",
                 "6 handleRemoteVport, delete TCAM entry with old VPindex qual",
                 "6 handleRemoteVport, add TCAM entry with new VPindex qual",
              } ) );
   for ( U32 const unit : { 0U, 1U } ) {
      EXPECT_EQ( entryId( unit, "10.0.0.2" ), 5U );
      EXPECT_EQ( entryId( unit, "10.0.0.3" ), 4U );
      EXPECT_EQ( sm->tepIpToEntry( unit )->vpIndex( ip( "10.0.0.2" ) ), 8U );
      EXPECT_EQ( sm->tepIpToEntry( unit )->vpIndex( ip( "10.0.0.3" ) ), 3U );
   }
}

TEST_F( TwoVteps, AVirtualPortWithTheSameIndexIsReprogrammedAllTheSame ) {
   leaf.vtepIs( "10.0.0.2", 0x50002 );
   EXPECT_EQ( entryId( 0, "10.0.0.2" ), 5U );
   EXPECT_EQ( sm->tepIpToEntry( 0U )->vpIndex( ip( "10.0.0.2" ) ), 2U );
}

// --- A VTEP goes

TEST_F( TwoVteps, RemovingOneOfTwoKeepsTheRecordAndTheExemptions ) {
   leaf.evpnStatus->segmentStatus( intf( "Ethernet1" ) )->remoteTepDel( ip( "10.0.0.2" ) );
   EXPECT_EQ( leaf.tracesOf( "6 " ), ( Lines{
                                        "6 handleTepSegment, deleting TCAM entry for tepIp ",
                                        "6 handleTepSegment, deleting TCAM entry for tepIp ",
                                     } ) );
   EXPECT_EQ( leaf.callLines(), ( Lines{
                                   "unit 0 entry 3: releaseEntry( group 157 ) = 0",
                                   "unit 1 entry 3: releaseEntry( group 157 ) = 0",
                                } ) );
   auto const record = sm->tepIpToEntry( 0U );
   ASSERT_TRUE( record );
   EXPECT_FALSE( record->vpIndexHas( ip( "10.0.0.2" ) ) );
   EXPECT_TRUE( record->vpIndexHas( ip( "10.0.0.3" ) ) );
   EXPECT_TRUE( sm->l2UcastRuleInstalledHas( 0 ) );
}

Lines const allReleased{
   "unit 0 entry 4: releaseEntry( group 157 ) = 0", "unit 0 entry 1: releaseEntry( group 157 ) = 0",
   "unit 0 entry 2: releaseEntry( group 157 ) = 0", "unit 1 entry 4: releaseEntry( group 157 ) = 0",
   "unit 1 entry 1: releaseEntry( group 157 ) = 0", "unit 1 entry 2: releaseEntry( group 157 ) = 0",
};

TEST_F( TwoVteps, RemovingTheLastTakesTheRecordAndAfterThatTheExemptions ) {
   leaf.evpnStatus->segmentStatus( intf( "Ethernet1" ) )->remoteTepDel( ip( "10.0.0.2" ) );
   leaf.forget();
   leaf.segmentDel( "Ethernet1" );
   EXPECT_EQ( leaf.callLines(), allReleased );
   EXPECT_FALSE( sm->tepIpToEntryHas( 0 ) );
   EXPECT_FALSE( sm->l2UcastRuleInstalledHas( 0 ) );
   EXPECT_FALSE( sm->l3UcastRuleInstalledHas( 1 ) );
}

TEST_F( TwoVteps, WithdrawingVirtualPortsDoesTheSame ) {
   leaf.vtepDel( "10.0.0.2" );
   EXPECT_EQ( leaf.tracesOf( "6 " ), ( Lines{
                                        "6 handleRemoteVport, delete TCAM entry for tepIp",
                                        "6 handleRemoteVport, delete TCAM entry for tepIp",
                                     } ) );
   EXPECT_FALSE( sm->tepIpToEntry( 0U )->vpIndexHas( ip( "10.0.0.2" ) ) );
   EXPECT_TRUE( sm->l2UcastRuleInstalledHas( 0 ) );
   leaf.forget();
   leaf.vtepDel( "10.0.0.3" );
   EXPECT_EQ( leaf.callLines(), allReleased );
   EXPECT_FALSE( sm->tepIpToEntryHas( 1 ) );
}

TEST_F( TwoVteps, ASegmentThatGoesAfterTheVirtualPortFindsNothingToDelete ) {
   leaf.vtepDel( "10.0.0.2" );
   leaf.forget();
   leaf.segmentDel( "Ethernet1" );
   EXPECT_EQ( leaf.tracesOf( "2 handleTep" ),
              ( Lines{ "2 handleTepSegment, no VP assigned to remote VTEP " } ) );
   EXPECT_EQ( leaf.callLines(), allReleased );
}

TEST_F( TwoVteps, AVtepThatComesBackGetsNewRules ) {
   leaf.segmentDel( "Ethernet1" );
   leaf.segmentIs( "Ethernet11", { "10.0.0.3" } );
   EXPECT_EQ( sm->l2UcastRuleInstalled( 0 ), 5U );
   EXPECT_EQ( entryId( 0, "10.0.0.3" ), 7U );
}

using TwoVtepsDeathTest = TwoVteps;

TEST_F( TwoVtepsDeathTest, AWithdrawnVirtualPortMustLeaveNoEntryBehind ) {
   sm->deafIs( true );
   EXPECT_EXIT( leaf.vtepDel( "10.0.0.2" ), testing::KilledBySignal( SIGABRT ),
                "^" +
                   Support::assertionLine( "SegmentTracking.cpp:", "handleRemoteVport",
                                           "!unitUsesTcamsForTepIp( iter.key(), rvk.vtepIp() )" ) +
                   "$" );
}

// --- No room

class NoRoomForTheSecond : public SegmentTracking {
 protected:
   NoRoomForTheSecond() : SegmentTracking( 3 ) {
      leaf.vtepIs( "10.0.0.2", 2 );
      leaf.vtepIs( "10.0.0.3", 3 );
      leaf.board.entryManager( Vornal::kIfpLocalBiasGroup )->foreignEntriesIs( 0, 1 );
      leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   }
};

TEST_F( NoRoomForTheSecond, AUnitWithoutRoomDoesNotKeepTheNextFromItsRules ) {
   EXPECT_EQ( entryId( 0, "10.0.0.2" ), 0U );
   EXPECT_EQ( entryId( 1, "10.0.0.2" ), 3U );
}

TEST_F( NoRoomForTheSecond, TheVpIndexIsRecordedAlsoWhereTheAddFailed ) {
   EXPECT_EQ( sm->tepIpToEntry( 0U )->vpIndex( ip( "10.0.0.2" ) ), 2U );
   leaf.vtepIs( "10.0.0.2", 0x10007 );
   EXPECT_EQ( entryId( 0, "10.0.0.2" ), 0U );
   EXPECT_EQ( sm->tepIpToEntry( 0U )->vpIndex( ip( "10.0.0.2" ) ), 7U );
}

TEST_F( NoRoomForTheSecond, AVpIndexChangeTriesAgain ) {
   leaf.board.entryManager( Vornal::kIfpLocalBiasGroup )->foreignEntriesIs( 0, 0 );
   EXPECT_EQ( entryId( 0, "10.0.0.2" ), 0U );
   leaf.vtepIs( "10.0.0.2", 0x10007 );
   EXPECT_EQ( entryId( 0, "10.0.0.2" ), 3U );
}

}  // namespace SegmentTrackingTest
