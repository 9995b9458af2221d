// What becomes of the per-VNI rules when a tunnel interface goes, and when it comes back.

#include <gtest/gtest.h>

#include "../support/RoutedSwitch.h"

namespace {

using namespace Support;
using Vnis = RoutedSwitch::Vnis;
using VniOfVrf = RoutedSwitch::VniOfVrf;

std::string const signatureOfCleanup =
   "void Vornal::EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::doCleanup()";

class PerVniCleanup : public testing::Test {
 protected:
   PerVniCleanup() { leaf.tunnelIs(); }

   RoutedSwitch leaf;
   Machine sm = leaf.machineNew( Variant::EgressMask );
};

TEST_F( PerVniCleanup, TheTunnelInterfaceThatGoesTakesEveryRuleAlong ) {
   leaf.vniIs( "red", 50001 );
   leaf.vniIs( "blue", 50002 );
   leaf.forget();
   leaf.tunnelDel();
   EXPECT_EQ( leaf.callLines(), ( Lines{
                                   "unit 0 entry 1: releaseEntry( group 157 ) = 0",
                                   "unit 0 entry 2: releaseEntry( group 157 ) = 0",
                                } ) );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "8 " + signatureOfCleanup + ": Cleanup",
                              "4 doCleanup freed vni entry ID 1",
                              "4 doCleanup freed vni entry ID 2",
                           } ) );
   EXPECT_TRUE( leaf.vnisRecorded( sm ).empty() );
   EXPECT_TRUE( leaf.vnisOnChip().empty() );
}

TEST_F( PerVniCleanup, AnotherTunnelInterfaceThatGoesFreesNothing ) {
   leaf.tunnelIs( "Vxlan2" );
   leaf.vniIs( "red", 50001 );
   leaf.forget();
   leaf.tunnelDel( "Vxlan2" );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "8 " + signatureOfCleanup + ": Cleanup",
                              "8 " + signatureOfCleanup + ": Ignoring VTI interfaceVx2",
                           } ) );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 50001 } ) );
}

TEST_F( PerVniCleanup, TheEntriesAreReleasedOnTheFirstUnitOfTheTableOnly ) {
   RoutedSwitch twoUnits( 2 );
   twoUnits.tunnelIs();
   auto const machine = twoUnits.machineNew( Variant::EgressMask );
   machine->vniToTcamEntryIdIs( 50001, 7 );
   twoUnits.forget();
   twoUnits.tunnelDel();
   ASSERT_EQ( twoUnits.calls.size(), 1U );
   EXPECT_EQ( twoUnits.calls[ 0 ].operation, "releaseEntry" );
   EXPECT_EQ( twoUnits.calls[ 0 ].unit, 0U );
   EXPECT_EQ( twoUnits.calls[ 0 ].entry, 7U );
}

TEST_F( PerVniCleanup, TheQueueIsLeftAsItIs ) {
   leaf.roomIs( 1 );
   leaf.vniIs( "red", 50001 );
   leaf.vniIs( "blue", 50002 );
   leaf.tunnelDel();
   EXPECT_EQ( leaf.queued( sm ), ( VniOfVrf{ { "blue", 50002 } } ) );
}

TEST_F( PerVniCleanup, TheMachineThatEndsLeavesTheRulesWhereTheyAre ) {
   leaf.vniIs( "red", 50001 );
   leaf.forget();
   sm = nullptr;
   EXPECT_TRUE( leaf.tracesOf( "8 " + signatureOfCleanup ).empty() );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 50001 } ) );
}

TEST_F( PerVniCleanup, OutOfServiceIsNoReasonToCleanUp ) {
   leaf.vniIs( "red", 50001 );
   leaf.forget();
   sm->kivDoZombieReactors( true );
   EXPECT_TRUE( leaf.traces.empty() );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 50001 } ) );
}

TEST_F( PerVniCleanup, CanBeAskedForByName ) {
   leaf.vniIs( "red", 50001 );
   auto const reactor = sm->vtiStatus( intf( "Vxlan1" ) );
   auto const * const operation = reactor->typeData().findOperation( "doCleanup", 0 );
   ASSERT_TRUE( operation );
   operation->call( *reactor, {} );
   EXPECT_TRUE( leaf.vnisOnChip().empty() );
}

// --- Coming back

TEST_F( PerVniCleanup, TheInterfaceThatComesBackGetsItsRulesAsItsVnisFollow ) {
   leaf.vniIs( "red", 50001 );
   leaf.tunnelDel();
   leaf.tunnelIs();
   EXPECT_TRUE( leaf.vnisOnChip().empty() );
   leaf.vniIs( "red", 50001 );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 50001 } ) );
}

TEST_F( PerVniCleanup, WithoutATunnelInterfaceTheQueueWaits ) {
   leaf.roomIs( 0 );
   leaf.vniIs( "red", 50001 );
   leaf.tunnelDel();
   leaf.roomIs( 5 );
   EXPECT_EQ( leaf.wakeUps(), 1U );
   EXPECT_EQ( leaf.queued( sm ), ( VniOfVrf{ { "red", 50001 } } ) );
   EXPECT_TRUE( leaf.vnisOnChip().empty() );
}

TEST_F( PerVniCleanup, BackWhileTheTcamIsStillFullTheVrfWaitsOnAndIsProgrammedOnce ) {
   leaf.roomIs( 0 );
   leaf.vniIs( "red", 50001 );
   leaf.tunnelDel();
   leaf.tunnelIs();
   leaf.vniIs( "red", 50001 );
   EXPECT_EQ( leaf.queued( sm ), ( VniOfVrf{ { "red", 50001 } } ) );
   leaf.roomIs( 5 );
   leaf.wakeUps();
   EXPECT_TRUE( leaf.queued( sm ).empty() );
   EXPECT_EQ( leaf.vnisOnChip(), ( Vnis{ 50001 } ) );
}

TEST_F( PerVniCleanup, AVrfThatLeavesTheMapBeforeTheInterfaceGoesIsNotQueuedAnyMore ) {
   leaf.roomIs( 0 );
   leaf.vniIs( "red", 50001 );
   leaf.vniDel( "red" );
   leaf.tunnelDel();
   EXPECT_TRUE( leaf.queued( sm ).empty() );
}

}  // namespace
