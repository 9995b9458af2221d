// A full ingress group: which VNIs wait, and when they are tried again.

#include <gtest/gtest.h>

#include "../support/RoutedSwitch.h"
#include "../support/Variants.h"

namespace {

using namespace Support;
using Vnis = RoutedSwitch::Vnis;
using VniOfVrf = RoutedSwitch::VniOfVrf;

std::string const timeSignature = "void Vornal::EvpnMultihomingLocalBiasSm::handleTime()";

class Retry : public testing::TestWithParam< Variant > {
 protected:
   Retry() {
      leaf.tunnelIs();
      sm = leaf.machineNew( GetParam() );
   }
   void queueThree() {
      leaf.roomIs( 0 );
      leaf.vniIs( "red", 50001 );
      leaf.vniIs( "green", 50002 );
      leaf.vniIs( "blue", 50003 );
   }

   RoutedSwitch leaf;
   Machine sm;
};

INSTANTIATE_TEST_SUITE_P( FullTcam, Retry, bothVariants, nameOfVariant );

// --- Into the queue

TEST_P( Retry, AVniWithoutRoomIsTracedAndQueued ) {
   leaf.roomIs( 0 );
   leaf.forget();
   leaf.vniIs( "red", 50001 );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "8 " + handleVrfToVniMapSignature + " vrf red",
                              "8 " + handleVrfToVniMapSignature + " new vni 50001",
                              "5 handleTcamExhaustion",
                              "2 handleVrfToVniMap failed to allocate IFP entry ID",
                           } ) );
   EXPECT_EQ( leaf.callLines(),
              ( Lines{ "unit 0 entry 0: " + ingressRequest( vniRuleName( 50001 ) ) } ) );
   EXPECT_EQ( leaf.queued( sm ), ( VniOfVrf{ { "red", 50001 } } ) );
   EXPECT_TRUE( leaf.vnisRecorded( sm ).empty() );
}

TEST_P( Retry, AVniWithoutRoomIsNotLoggedAndNoExhaustionOfTheVteps ) {
   leaf.roomIs( 0 );
   leaf.vniIs( "red", 50001 );
   EXPECT_TRUE( leaf.logs.empty() );
   EXPECT_FALSE( sm->tcamExhaustion() );
}

TEST_P( Retry, TheUnitsBehindTheFullOneAreNotVisited ) {
   RoutedSwitch twoUnits( 2 );
   twoUnits.tunnelIs();
   auto const machine = twoUnits.machineNew( GetParam() );
   twoUnits.roomIs( 0, 0 );
   twoUnits.forget();
   twoUnits.vniIs( "red", 50001 );
   ASSERT_EQ( twoUnits.calls.size(), 1U );
   EXPECT_EQ( twoUnits.calls[ 0 ].unit, 0U );
   EXPECT_EQ( twoUnits.queued( machine ), ( VniOfVrf{ { "red", 50001 } } ) );
}

TEST_P( Retry, AVrfThatIsQueuedAlreadyKeepsItsFirstVni ) {
   leaf.roomIs( 0 );
   leaf.vniIs( "red", 50001 );
   sm->vtiStatus( intf( "Vxlan1" ) )->handleVrfToVniMap( vrf( "red" ), 0, 50002 );
   EXPECT_EQ( leaf.queued( sm ), ( VniOfVrf{ { "red", 50001 } } ) );
}

TEST_P( Retry, AQueuedVrfThatGetsAnotherVniIsDequeuedBeforeThatOneIsTried ) {
   leaf.roomIs( 0 );
   leaf.vniIs( "red", 50001 );
   leaf.vniIs( "red", 50002 );
   EXPECT_EQ( leaf.queued( sm ), ( VniOfVrf{ { "red", 50002 } } ) );
   leaf.roomIs( 1 );
   leaf.vniIs( "red", 50003 );  // there is room by now, and the retry has not run
   EXPECT_TRUE( leaf.queued( sm ).empty() );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 50003 } ) );
   leaf.wakeUps();
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 50003 } ) );
}

TEST_P( Retry, AQueuedVrfThatLeavesTheMapWaitsNoLonger ) {
   queueThree();
   leaf.vniDel( "green" );
   EXPECT_EQ( leaf.queued( sm ), ( VniOfVrf{ { "blue", 50003 }, { "red", 50001 } } ) );
}

TEST_P( Retry, AVniThatMakesRoomForItselfIsNotQueued ) {
   leaf.vniIs( "red", 50001 );
   leaf.roomIs( 0 );
   leaf.vniIs( "red", 50002 );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 50002 } ) );
   EXPECT_TRUE( leaf.queued( sm ).empty() );
}

// --- What starts a retry

TEST_P( Retry, RoomThatComesBackProgramsTheQueueAtTheNextTurn ) {
   leaf.roomIs( 0 );
   leaf.vniIs( "red", 50001 );
   leaf.roomIs( 1 );
   EXPECT_TRUE( leaf.vnisOnChip().empty() );
   EXPECT_EQ( leaf.activity.clock()->nextWakeUp(), leaf.activity.clock()->now() );
   leaf.forget();
   EXPECT_EQ( leaf.wakeUps(), 1U );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "8 " + timeSignature,
                              "5 handleTime vrfName: red newVni: 50001",
                              "8 " + handleVrfToVniMapSignature + " vrf red",
                              "8 " + handleVrfToVniMapSignature + " new vni 50001",
                              "4 handleVrfToVniMap allocated IFP entry ID 1",
                           } ) );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 50001 } ) );
   EXPECT_TRUE( leaf.queued( sm ).empty() );
}

TEST_P( Retry, TheRuleOfVniOneStaysWhenOthersAreTriedAgain ) {
   leaf.vniIs( "green", 1 );
   leaf.roomIs( 0 );
   leaf.vniIs( "red", 50001 );
   leaf.roomIs( 1 );
   leaf.wakeUps();
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 1, 50001 } ) );
}

TEST_P( Retry, WhileEveryUnitIsExhaustedNothingIsScheduled ) {
   RoutedSwitch twoUnits( 2 );
   auto const machine = twoUnits.machineNew( GetParam() );
   twoUnits.ingress()->exhaustedIs( 1, true );
   twoUnits.wakeUps();
   twoUnits.forget();
   twoUnits.ingress()->exhaustedIs( 0, true );
   EXPECT_EQ( twoUnits.traces, ( Lines{ "5 handleTcamExhaustion" } ) );
   EXPECT_FALSE( machine->kivClock().isArmed() );
}

TEST_P( Retry, WhileAnyUnitHasRoomOneRetryIsScheduled ) {
   RoutedSwitch twoUnits( 2 );
   auto const machine = twoUnits.machineNew( GetParam() );
   twoUnits.ingress()->exhaustedIs( 0, true );  // unit 1 has no flag
   EXPECT_TRUE( machine->kivClock().isArmed() );
   twoUnits.ingress()->exhaustedIs( 1, false );
   twoUnits.ingress()->exhaustedIs( 0, false );
   twoUnits.forget();
   EXPECT_EQ( twoUnits.wakeUps(), 1U );
   EXPECT_EQ( twoUnits.traces, ( Lines{ "8 " + timeSignature } ) );
}

TEST_P( Retry, AFlagThatGoesAwayIsAChangeToo ) {
   leaf.ingress()->exhaustedIs( 0, true );
   EXPECT_FALSE( sm->kivClock().isArmed() );
   leaf.ingress()->exhaustedDel( 0 );
   EXPECT_TRUE( sm->kivClock().isArmed() );
}

TEST_P( Retry, AnOwnRuleThatIsReleasedMakesRoomForAQueuedOne ) {
   leaf.vniIs( "red", 50001 );
   leaf.roomIs( 0 );
   leaf.vniIs( "blue", 50002 );
   leaf.vniDel( "red" );
   EXPECT_EQ( leaf.wakeUps(), 1U );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 50002 } ) );
}

TEST_P( Retry, BeforeInitialisationNothingIsScheduledAndNothingRetried ) {
   queueThree();
   sm->initializedIs( false );
   leaf.forget();
   leaf.roomIs( 5 );
   EXPECT_EQ( leaf.traces, ( Lines{ "2 handleTcamExhaustion, SM not initialized yet" } ) );
   EXPECT_FALSE( sm->kivClock().isArmed() );
   leaf.forget();
   sm->handleTime();
   EXPECT_EQ( leaf.traces,
              ( Lines{ "8 " + timeSignature, "2 handleTime, SM not initialized yet" } ) );
   EXPECT_EQ( leaf.queued( sm ).size(), 3U );
}

TEST_P( Retry, OutOfServiceNothingIsRetried ) {
   queueThree();
   leaf.roomIs( 5 );
   sm->kivDoZombieReactors( true );
   leaf.forget();
   EXPECT_EQ( leaf.wakeUps(), 1U );
   EXPECT_TRUE( leaf.traces.empty() );
   EXPECT_EQ( leaf.queued( sm ).size(), 3U );
}

// --- The walk over the queue

TEST_P( Retry, AnEmptyQueueIsOnlyTraced ) {
   leaf.forget();
   sm->handleTime();
   EXPECT_EQ( leaf.traces, ( Lines{ "8 " + timeSignature } ) );
   EXPECT_TRUE( leaf.calls.empty() );
}

TEST_P( Retry, WhatFailsAgainIsPutBackAndNotTriedTwiceInOneWalk ) {
   queueThree();
   leaf.forget();
   sm->handleTime();
   EXPECT_EQ( leaf.tracesOf( "5 handleTime" ), ( Lines{
                                                  "5 handleTime vrfName: blue newVni: 50003",
                                                  "5 handleTime vrfName: green newVni: 50002",
                                                  "5 handleTime vrfName: red newVni: 50001",
                                               } ) );
   EXPECT_EQ( leaf.requests(), 3 );
   EXPECT_EQ( leaf.queued( sm ),
              ( VniOfVrf{ { "blue", 50003 }, { "green", 50002 }, { "red", 50001 } } ) );
}

TEST_P( Retry, WithRoomForOneTheFirstInOrderGetsItAndTheRestWaits ) {
   queueThree();
   leaf.roomIs( 1 );
   EXPECT_EQ( leaf.wakeUps(), 1U );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 50003 } ) );
   EXPECT_EQ( leaf.queued( sm ), ( VniOfVrf{ { "green", 50002 }, { "red", 50001 } } ) );
   leaf.roomIs( 5 );
   EXPECT_EQ( leaf.wakeUps(), 1U );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 50001, 50002, 50003 } ) );
   EXPECT_TRUE( leaf.queued( sm ).empty() );
}

TEST_P( Retry, AFailedRetrySchedulesNoOther ) {
   queueThree();
   leaf.ingress()->exhaustedIs( 0, false );  // room that somebody else takes at once
   EXPECT_EQ( leaf.wakeUps(), 1U );
   EXPECT_EQ( leaf.queued( sm ).size(), 3U );
   EXPECT_FALSE( sm->kivClock().isArmed() );
}

TEST_P( Retry, ARetryWithoutAnySegmentEmptiesTheQueueUntilTheNextOneComes ) {
   queueThree();
   sm->isEvpnIs( false );
   leaf.roomIs( 5 );
   leaf.wakeUps();
   EXPECT_TRUE( leaf.queued( sm ).empty() );
   EXPECT_TRUE( leaf.vnisOnChip().empty() );
   leaf.segmentIs( "Ethernet2", {} );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 50001, 50002, 50003 } ) );
}

TEST_P( Retry, TwoTunnelInterfacesTryAQueuedVrfOnceEachAndQueueItOnce ) {
   leaf.tunnelIs( "Vxlan2" );
   leaf.roomIs( 0 );
   leaf.vniIs( "red", 50001 );
   leaf.forget();
   sm->handleTime();
   EXPECT_EQ( leaf.tracesOf( "5 handleTime" ), ( Lines{
                                                  "5 handleTime vrfName: red newVni: 50001",
                                                  "5 handleTime vrfName: red newVni: 50001",
                                               } ) );
   EXPECT_EQ( leaf.requests(), 2 );
   EXPECT_EQ( leaf.queued( sm ), ( VniOfVrf{ { "red", 50001 } } ) );
}

TEST_P( Retry, AVrfIsTracedByItsBareName ) {
   leaf.roomIs( 0 );
   leaf.vniIs( "tenant 7", 50001 );
   leaf.forget();
   sm->handleTime();
   EXPECT_TRUE( leaf.hasTraced( "5 handleTime vrfName: tenant 7 newVni: 50001" ) );
}

}  // namespace
