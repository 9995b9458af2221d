// Where the per-VNI rules end: events that others may well publish, after which the process stops,
// or a rule is there that should not be, or one is missing.

#include <gtest/gtest.h>

#include "../support/RoutedSwitch.h"

namespace {

using namespace Support;
using Vnis = RoutedSwitch::Vnis;
using VniOfVrf = RoutedSwitch::VniOfVrf;

class PerVniLimits : public testing::Test {
 protected:
   void start( RoutedSwitch & leaf ) {
      leaf.tunnelIs();
      sm = leaf.machineNew( Variant::EgressMask );
   }

   RoutedSwitch leaf1;
   Machine sm;
};

// Stops the process sooner or later.
class PerVniLimitsDeathTest : public PerVniLimits {};

// --- Several units: what is installed is recorded by VNI alone

TEST_F( PerVniLimitsDeathTest, OnTwoUnitsTheFirstVniStopsTheProcessAtTheSecondUnit ) {
   RoutedSwitch twoUnits( 2 );
   start( twoUnits );
   EXPECT_DEATH( twoUnits.vniIs( "red", 50001 ), stopsAtTakenVni );
}

TEST_F( PerVniLimitsDeathTest, OnTwoUnitsAMappedVniStopsTheProcessAtTheStart ) {
   RoutedSwitch twoUnits( 2 );
   twoUnits.tunnelIs();
   twoUnits.vniIs( "red", 50001 );
   EXPECT_DEATH( twoUnits.machineNew( Variant::EgressMask ), stopsAtTakenVni );
}

TEST_F( PerVniLimitsDeathTest, OnTwoUnitsTheFirstSegmentStopsTheProcess ) {
   RoutedSwitch twoUnits( 2 );
   twoUnits.segmentDel( "Ethernet1" );
   start( twoUnits );
   twoUnits.vniIs( "red", 50001 );
   EXPECT_DEATH( twoUnits.segmentIs( "Ethernet1", {} ), stopsAtTakenVni );
}

TEST_F( PerVniLimitsDeathTest, OnTwoUnitsAFullFirstUnitOnlyPutsTheStopOff ) {
   RoutedSwitch twoUnits( 2 );
   start( twoUnits );
   twoUnits.roomIs( 0, 0 );
   twoUnits.vniIs( "red", 50001 );
   EXPECT_EQ( twoUnits.wakeUps(), 1U );  // unit 1 has room, so there is a retry, in vain
   twoUnits.roomIs( 1, 0 );
   EXPECT_DEATH( twoUnits.wakeUps(), stopsAtTakenVni );
}

// The first unit releases the entry; the second finds none, and takes it for a VRF that waits.
TEST_F( PerVniLimits, OnTwoUnitsAVniThatGoesTakesItsVrfOutOfTheQueue ) {
   RoutedSwitch twoUnits( 2 );
   start( twoUnits );
   sm->vniToTcamEntryIdIs( 50001, 7 );
   sm->unprogrammedTcamRulesListIs( vrf( "red" ), 50002 );
   twoUnits.forget();
   sm->vtiStatus( intf( "Vxlan1" ) )->handleVrfToVniMap( vrf( "red" ), 50001, 0 );
   ASSERT_EQ( twoUnits.calls.size(), 1U );
   EXPECT_EQ( twoUnits.calls[ 0 ].unit, 0U );
   EXPECT_TRUE( twoUnits.queued( sm ).empty() );
}

TEST_F( PerVniLimits, OnTwoUnitsTheVniThatMeansNoneIsTracedForEach ) {
   RoutedSwitch twoUnits( 2 );
   start( twoUnits );
   twoUnits.forget();
   twoUnits.vniIs( "red", Vxlan::VniExtOrNone::kNone );
   EXPECT_EQ( twoUnits.traces.size(), 3U );
   EXPECT_EQ( twoUnits.traces[ 1 ], twoUnits.traces[ 2 ] );
   EXPECT_TRUE( twoUnits.traces[ 2 ].ends_with( " new vni 16777216" ) );
}

// --- One VNI in two VRFs

TEST_F( PerVniLimitsDeathTest, ASecondVrfWithTheSameVniStopsTheProcess ) {
   start( leaf1 );
   leaf1.vniIs( "red", 50001 );
   EXPECT_DEATH( leaf1.vniIs( "blue", 50001 ), stopsAtTakenVni );
}

TEST_F( PerVniLimitsDeathTest, TwoVrfsQueuedWithTheSameVniStopTheProcessAtTheRetry ) {
   start( leaf1 );
   leaf1.roomIs( 0 );
   leaf1.vniIs( "red", 50001 );
   leaf1.vniIs( "blue", 50001 );
   leaf1.roomIs( 2 );
   EXPECT_DEATH( leaf1.wakeUps(), stopsAtTakenVni );
}

TEST_F( PerVniLimitsDeathTest, TwoVrfsThatSwapTheirVnisStopTheProcess ) {
   start( leaf1 );
   leaf1.vniIs( "red", 50001 );
   leaf1.vniIs( "blue", 50002 );
   EXPECT_DEATH( leaf1.vniIs( "red", 50002 ), stopsAtTakenVni );
}

TEST_F( PerVniLimits, TwoVrfsMaySwapTheirVnisWhenOneLeavesTheMapFirst ) {
   start( leaf1 );
   leaf1.vniIs( "red", 50001 );
   leaf1.vniIs( "blue", 50002 );
   leaf1.vniDel( "red" );
   leaf1.vniIs( "blue", 50001 );
   leaf1.vniIs( "red", 50002 );
   EXPECT_EQ( leaf1.vnisOnChip(), ( Vnis{ 50001, 50002 } ) );
}

TEST_F( PerVniLimits, TwoVrfsMaySwapTheirVnisWhileBothAreQueued ) {
   start( leaf1 );
   leaf1.roomIs( 0 );
   leaf1.vniIs( "red", 50001 );
   leaf1.vniIs( "blue", 50002 );
   leaf1.vniIs( "red", 50002 );
   leaf1.vniIs( "blue", 50001 );
   EXPECT_EQ( leaf1.queued( sm ), ( VniOfVrf{ { "blue", 50001 }, { "red", 50002 } } ) );
   leaf1.roomIs( 2 );
   leaf1.wakeUps();
   EXPECT_EQ( leaf1.vnisOnChip(), ( Vnis{ 50001, 50002 } ) );
}

TEST_F( PerVniLimitsDeathTest, ASwapWithOneVrfQueuedStopsTheProcessAtTheRetryThatItCauses ) {
   start( leaf1 );
   leaf1.vniIs( "red", 50001 );
   leaf1.roomIs( 0 );
   leaf1.vniIs( "blue", 50002 );
   leaf1.vniIs( "red", 50002 );  // 50001 makes room, and blue is to be tried again
   EXPECT_EQ( leaf1.vnisOnChip(), ( Vnis{ 50002 } ) );
   EXPECT_DEATH( leaf1.wakeUps(), stopsAtTakenVni );
}

TEST_F( PerVniLimits, ASwapWithOneVrfQueuedInASingleTurnLeavesAStaleVniInTheQueue ) {
   start( leaf1 );
   leaf1.vniIs( "red", 50001 );
   leaf1.roomIs( 0 );
   leaf1.vniIs( "blue", 50002 );
   leaf1.vniIs( "red", 50002 );
   leaf1.vniIs( "blue", 50001 );  // takes the entry of 50002 for its own old one
   EXPECT_EQ( leaf1.vnisOnChip(), ( Vnis{ 50001 } ) );
   EXPECT_EQ( leaf1.queued( sm ), ( VniOfVrf{ { "blue", 50002 } } ) );
   leaf1.wakeUps();
   EXPECT_EQ( leaf1.queued( sm ), ( VniOfVrf{ { "blue", 50002 } } ) );
   leaf1.roomIs( 1 );
   leaf1.wakeUps();
   EXPECT_EQ( leaf1.vnisOnChip(), ( Vnis{ 50001, 50002 } ) );
}

// --- Several tunnel interfaces: VRFs are told apart by name alone

TEST_F( PerVniLimitsDeathTest, AVniOnASecondTunnelInterfaceStopsTheProcess ) {
   start( leaf1 );
   leaf1.tunnelIs( "Vxlan2" );
   leaf1.vniIs( "red", 50001, "Vxlan1" );
   EXPECT_DEATH( leaf1.vniIs( "red", 50001, "Vxlan2" ), stopsAtTakenVni );
}

TEST_F( PerVniLimitsDeathTest, WithTwoTunnelInterfacesARetryThatSucceedsStopsTheProcess ) {
   start( leaf1 );
   leaf1.tunnelIs( "Vxlan2" );
   leaf1.roomIs( 0 );
   leaf1.vniIs( "red", 50001, "Vxlan1" );
   leaf1.roomIs( 1 );
   EXPECT_DEATH( leaf1.wakeUps(), stopsAtTakenVni );
}

TEST_F( PerVniLimits, AVrfQueuedOnTwoTunnelInterfacesKeepsOnlyTheFirstVni ) {
   start( leaf1 );
   leaf1.tunnelIs( "Vxlan2" );
   leaf1.roomIs( 0 );
   leaf1.vniIs( "red", 50001, "Vxlan1" );
   leaf1.vniIs( "red", 50002, "Vxlan2" );
   EXPECT_EQ( leaf1.queued( sm ), ( VniOfVrf{ { "red", 50001 } } ) );
   leaf1.vniDel( "red", "Vxlan2" );  // takes the other's place in the queue away
   EXPECT_TRUE( leaf1.queued( sm ).empty() );
}

TEST_F( PerVniLimits, Vxlan1TakesTheRulesOfTheOtherTunnelInterfacesAlong ) {
   start( leaf1 );
   leaf1.tunnelIs( "Vxlan2" );
   leaf1.vniIs( "red", 50001, "Vxlan1" );
   leaf1.vniIs( "blue", 50002, "Vxlan2" );
   leaf1.tunnelDel( "Vxlan1" );
   EXPECT_TRUE( leaf1.vnisOnChip().empty() );  // blue is still mapped
}

TEST_F( PerVniLimits, AnotherTunnelInterfaceLeavesItsRulesBehind ) {
   start( leaf1 );
   leaf1.tunnelIs( "Vxlan2" );
   leaf1.vniIs( "blue", 50002, "Vxlan2" );
   leaf1.tunnelDel( "Vxlan2" );
   EXPECT_EQ( leaf1.vnisOnChip(), ( Vnis{ 50002 } ) );
   leaf1.segmentDel( "Ethernet1" );
   EXPECT_EQ( leaf1.vnisOnChip(), ( Vnis{ 50002 } ) );
}

TEST_F( PerVniLimitsDeathTest, AnotherTunnelInterfaceThatComesBackStopsTheProcess ) {
   start( leaf1 );
   leaf1.tunnelIs( "Vxlan2" );
   leaf1.vniIs( "blue", 50002, "Vxlan2" );
   leaf1.tunnelDel( "Vxlan2" );
   leaf1.tunnelIs( "Vxlan2" );
   EXPECT_DEATH( leaf1.vniIs( "blue", 50002, "Vxlan2" ), stopsAtTakenVni );
}

TEST_F( PerVniLimits, AVrfQueuedByAnInterfaceThatHasGoneIsProgrammedByAnother ) {
   start( leaf1 );
   leaf1.tunnelIs( "Vxlan2" );
   leaf1.roomIs( 0 );
   leaf1.vniIs( "blue", 50002, "Vxlan2" );
   leaf1.tunnelDel( "Vxlan2" );
   leaf1.roomIs( 1 );
   leaf1.wakeUps();
   EXPECT_EQ( leaf1.vnisOnChip(), ( Vnis{ 50002 } ) );  // and nobody maps it
}

// --- A tunnel interface that goes while a VRF is queued

TEST_F( PerVniLimitsDeathTest, ProgrammedAfterTheReturnAStillQueuedVrfStopsTheProcess ) {
   start( leaf1 );
   leaf1.roomIs( 0 );
   leaf1.vniIs( "red", 50001 );
   leaf1.tunnelDel();
   leaf1.roomIs( 1 );
   leaf1.wakeUps();
   leaf1.tunnelIs();
   leaf1.vniIs( "red", 50001 );  // fits now, and the queue still has it
   EXPECT_EQ( leaf1.vnisOnChip(), ( Vnis{ 50001 } ) );
   EXPECT_EQ( leaf1.queued( sm ), ( VniOfVrf{ { "red", 50001 } } ) );
   leaf1.vniIs( "blue", 50002 );  // does not fit
   leaf1.roomIs( 1 );
   EXPECT_DEATH( leaf1.wakeUps(), stopsAtTakenVni );
}

TEST_F( PerVniLimits, ProgrammedAfterTheReturnAStillQueuedVrfStaysQueuedWhenItsVniGoes ) {
   start( leaf1 );
   leaf1.roomIs( 0 );
   leaf1.vniIs( "red", 50001 );
   leaf1.tunnelDel();
   leaf1.roomIs( 1 );
   leaf1.wakeUps();
   leaf1.tunnelIs();
   leaf1.vniIs( "red", 50001 );
   leaf1.vniDel( "red" );
   EXPECT_TRUE( leaf1.vnisOnChip().empty() );
   EXPECT_EQ( leaf1.queued( sm ), ( VniOfVrf{ { "red", 50001 } } ) );
}

TEST_F( PerVniLimits, AVrfThatReturnsWithAnotherVniIsRetriedWithTheOldOne ) {
   start( leaf1 );
   leaf1.roomIs( 0 );
   leaf1.vniIs( "red", 50001 );
   leaf1.tunnelDel();
   leaf1.tunnelIs();
   leaf1.vniIs( "red", 50002 );
   EXPECT_EQ( leaf1.queued( sm ), ( VniOfVrf{ { "red", 50001 } } ) );
   leaf1.roomIs( 5 );
   leaf1.wakeUps();
   EXPECT_EQ( leaf1.vnisOnChip(), ( Vnis{ 50001 } ) );
   EXPECT_TRUE( leaf1.queued( sm ).empty() );
}

TEST_F( PerVniLimits, AVrfThatDoesNotReturnIsProgrammedAllTheSame ) {
   start( leaf1 );
   leaf1.roomIs( 0 );
   leaf1.vniIs( "red", 50001 );
   leaf1.tunnelDel();
   leaf1.tunnelIs();
   leaf1.roomIs( 5 );
   leaf1.wakeUps();
   EXPECT_EQ( leaf1.vnisOnChip(), ( Vnis{ 50001 } ) );
}

TEST_F( PerVniLimitsDeathTest, ATunnelInterfaceReplacedInPlaceStopsTheProcess ) {
   start( leaf1 );
   leaf1.vniIs( "red", 50001 );
   leaf1.vtiStatusDir->vtiStatusIs( Quelm::make< Vxlan::VtiStatus >( intf( "Vxlan1" ) ) );
   EXPECT_EQ( leaf1.vnisOnChip(), ( Vnis{ 50001 } ) );
   EXPECT_DEATH( leaf1.vniIs( "red", 50001 ), stopsAtTakenVni );
}

TEST_F( PerVniLimits, ATunnelInterfaceThatIsPublishedFullIsNotReadUntilTheNextSegmentOrStart ) {
   sm = leaf1.machineNew( Variant::EgressMask );
   auto const status = Quelm::make< Vxlan::VtiStatus >( intf( "Vxlan1" ) );
   status->vrfToVniMapIs( vrf( "red" ), Vxlan::VniExtOrNone( 50001 ) );
   leaf1.vtiStatusDir->vtiStatusIs( status );
   EXPECT_TRUE( leaf1.vnisOnChip().empty() );
}

// --- Without a word

// An ingress group that cannot write any entry.
class UnwritableGroup final : public Chip::SoftTcamEntryManager {
 public:
   explicit UnwritableGroup( Chip::Units & units )
         : SoftTcamEntryManager( Vornal::kIfpLocalBiasGroup, units, nullptr ) {}
   S32 installEntry( U32, U32 ) override { return -1; }
};

TEST_F( PerVniLimits, AFailedInstallGoesUnnoticed ) {
   leaf1.tunnelIs();
   auto const machine = Vornal::evpnMultihomingLocalBiasWithEgressMaskSmFactory(
      leaf1.vcsd, leaf1.dir, leaf1.vpIndexStatus, leaf1.evpnStatus, leaf1.vtiStatusDir,
      Quelm::make< UnwritableGroup >( leaf1.board.units() ), leaf1.activity.clock(),
      leaf1.lagConfig, leaf1.lagMapping );
   leaf1.vniIs( "red", 50001 );
   EXPECT_EQ( leaf1.vnisRecorded( machine ), ( Vnis{ 50001 } ) );
   EXPECT_TRUE( leaf1.vnisOnChip().empty() );
   EXPECT_TRUE( leaf1.logs.empty() );
}

TEST_F( PerVniLimits, AMachineThatIsBuiltAgainProgramsItsRulesBesideTheOldOnes ) {
   start( leaf1 );
   leaf1.vniIs( "red", 50001 );
   sm = nullptr;
   sm = leaf1.machineNew( Variant::EgressMask );
   EXPECT_EQ( leaf1.ingress()->used( 0 ), 2U );
   leaf1.vniDel( "red" );
   EXPECT_EQ( leaf1.vnisOnChip(), ( Vnis{ 50001 } ) );
}

}  // namespace
