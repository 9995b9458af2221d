// The two entries that keep known unicast out of the filter: when they come and go, what they
// match, and what happens when one of them cannot be had.

#include <gtest/gtest.h>

#include <csignal>
#include <iostream>

#include <Decorators/FailingSdk.h>
#include <Snapshot/Rules.h>

#include "../support/BareMachine.h"
#include "../support/FaultyManager.h"
#include "../support/Stops.h"

namespace UnicastExemptionTest {

using Support::BareMachine;
using Support::bareMachineNew;
using Support::Lines;
using Support::LocalBiasSwitch;

class UnicastExemption : public testing::Test {
 protected:
   explicit UnicastExemption( U32 capacity = 64 ) : leaf( 1, capacity ) {}

   LocalBiasSwitch leaf;
   Quelm::Ptr< BareMachine > const sm = bareMachineNew( leaf );
};

TEST_F( UnicastExemption, L2ComesBeforeL3AndEachIsQualifiedBeforeItIsInstalled ) {
   leaf.forget();
   sm->installRulesForUcastTraffic( 0 );
   EXPECT_EQ( leaf.callLines(),
              ( Lines{
                 "unit 0 entry 1: " + Support::ingressRequest( Support::l2RuleName() ),
                 "unit 0 entry 1: bcm_field_qualify_PacketRes( data 4, mask 0xff ) = 0",
                 "unit 0 entry 1: bcm_field_qualify_TunnelTerminated( data 1, mask 0x1 ) = 0",
                 "unit 0 entry 1: installEntry( group 157 ) = 0",
                 "unit 0 entry 2: " + Support::ingressRequest( Support::l3RuleName() ),
                 "unit 0 entry 2: bcm_field_qualify_PacketRes( data 10, mask 0xff ) = 0",
                 "unit 0 entry 2: bcm_field_qualify_TunnelTerminated( data 1, mask 0x1 ) = 0",
                 "unit 0 entry 2: installEntry( group 157 ) = 0",
              } ) );
   EXPECT_EQ( sm->l2UcastRuleInstalled( 0 ), 1U );
   EXPECT_EQ( sm->l3UcastRuleInstalled( 0 ), 2U );
   EXPECT_EQ( leaf.traces, ( Lines{ "5 installRulesForUcastTraffic, unit: 0" } ) );
}

TEST_F( UnicastExemption, HasNeitherActionNorPriority ) {
   sm->installRulesForUcastTraffic( 0 );
   auto const rules = Chip::rulesOf( leaf.board.units() );
   ASSERT_EQ( rules.size(), 2U );
   for ( Chip::Rule const & rule : rules ) {
      EXPECT_TRUE( rule.isWritten );
      EXPECT_FALSE( rule.content.priority );
      EXPECT_EQ( rule.content.actions, Chip::EntryContent().actions );
      EXPECT_EQ( rule.content[ Chip::Qualifier::PacketRes ]->mask, 0xffU );
      EXPECT_EQ( *rule.content[ Chip::Qualifier::TunnelTerminated ],
                 ( Chip::Match{ .data = 1, .mask = 1 } ) );
   }
   EXPECT_EQ( rules[ 0 ].content[ Chip::Qualifier::PacketRes ]->data, 4U );
   EXPECT_EQ( rules[ 1 ].content[ Chip::Qualifier::PacketRes ]->data, 10U );
}

TEST_F( UnicastExemption, RemovingReleasesBoth ) {
   sm->installRulesForUcastTraffic( 0 );
   leaf.forget();
   sm->removeRulesForUcastTraffic( 0 );
   EXPECT_EQ( leaf.callLines(), ( Lines{
                                   "unit 0 entry 1: releaseEntry( group 157 ) = 0",
                                   "unit 0 entry 2: releaseEntry( group 157 ) = 0",
                                } ) );
   EXPECT_FALSE( sm->l2UcastRuleInstalledHas( 0 ) );
   EXPECT_FALSE( sm->l3UcastRuleInstalledHas( 0 ) );
   EXPECT_EQ( leaf.tracesOf( "5 remove" ), ( Lines{ "5 removeRulesForUcastTraffic" } ) );
   EXPECT_TRUE( leaf.tracesOf( "2 " ).empty() );
}

TEST_F( UnicastExemption, BeforeInitialisationBothOperationsOnlyTrace ) {
   sm->initializedIs( false );
   leaf.forget();
   sm->tepIpToEntryIs( U16{ 0 } );
   sm->installRulesForUcastTraffic( 0 );
   sm->removeRulesForUcastTraffic( 0 );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "5 installRulesForUcastTraffic, unit: 0",
                              "5 removeRulesForUcastTraffic",
                           } ) );
   EXPECT_TRUE( leaf.calls.empty() );
}

TEST_F( UnicastExemption, BeforeInitialisationRulesInTheWayStopNobody ) {
   sm->initializedIs( false );
   sm->l2UcastRuleInstalledIs( 0, 7 );
   sm->l3UcastRuleInstalledIs( 0, 8 );
   leaf.forget();
   sm->installRulesForUcastTraffic( 0 );
   EXPECT_EQ( leaf.traces, ( Lines{ "5 installRulesForUcastTraffic, unit: 0" } ) );
   EXPECT_EQ( sm->l2UcastRuleInstalled( 0 ), 7U );
   EXPECT_EQ( sm->l3UcastRuleInstalled( 0 ), 8U );
}

TEST_F( UnicastExemption, ARemoveWithoutL3FreesL2 ) {
   sm->installRulesForUcastTraffic( 0 );
   sm->l3UcastRuleInstalledDel( 0 );
   leaf.forget();
   sm->removeRulesForUcastTraffic( 0 );
   EXPECT_EQ( leaf.callLines(), ( Lines{ "unit 0 entry 1: releaseEntry( group 157 ) = 0" } ) );
   EXPECT_FALSE( sm->l2UcastRuleInstalledHas( 0 ) );
}

TEST_F( UnicastExemption, EachUnitHasItsOwn ) {
   LocalBiasSwitch twoUnits( 2 );
   auto const machine = bareMachineNew( twoUnits );
   machine->installRulesForUcastTraffic( 0 );
   machine->installRulesForUcastTraffic( 1 );
   machine->removeRulesForUcastTraffic( 0 );
   EXPECT_FALSE( machine->l2UcastRuleInstalledHas( 0 ) );
   EXPECT_TRUE( machine->l2UcastRuleInstalledHas( 1 ) );
   EXPECT_TRUE( machine->l3UcastRuleInstalledHas( 1 ) );
   EXPECT_EQ( twoUnits.calls.back().unit, 0U );
}

// --- No room

struct UnicastExemptionInNoRoom : UnicastExemption {
   UnicastExemptionInNoRoom() : UnicastExemption( 0 ) {}
};

TEST_F( UnicastExemptionInNoRoom, WithoutRoomForL2NeitherIsMade ) {
   leaf.forget();
   sm->installRulesForUcastTraffic( 0 );
   EXPECT_EQ( leaf.callLines(),
              ( Lines{ "unit 0 entry 0: " + Support::ingressRequest( Support::l2RuleName() ) } ) );
   EXPECT_FALSE( sm->l2UcastRuleInstalledHas( 0 ) );
   EXPECT_FALSE( sm->l3UcastRuleInstalledHas( 0 ) );
   EXPECT_EQ( leaf.traces.back(), "2 installRulesForUcastTraffic L2UC entry allocation failed" );
}

TEST_F( UnicastExemptionInNoRoom, IsNeitherLoggedNorRememberedAsExhaustion ) {
   sm->installRulesForUcastTraffic( 0 );
   EXPECT_TRUE( leaf.logs.empty() );
   EXPECT_FALSE( sm->tcamExhaustion() );
}

struct UnicastExemptionInRoomForOne : UnicastExemption {
   UnicastExemptionInRoomForOne() : UnicastExemption( 1 ) {}
};

TEST_F( UnicastExemptionInRoomForOne, WithoutRoomForL3TheL2RuleStays ) {
   leaf.forget();
   sm->installRulesForUcastTraffic( 0 );
   EXPECT_EQ( leaf.callLines().back(),
              "unit 0 entry 0: " + Support::ingressRequest( Support::l3RuleName() ) );
   EXPECT_EQ( sm->l2UcastRuleInstalled( 0 ), 1U );
   EXPECT_FALSE( sm->l3UcastRuleInstalledHas( 0 ) );
   EXPECT_EQ( leaf.traces.back(), "2 installRulesForUcastTraffic L3UC entry allocation failed" );
   EXPECT_TRUE( leaf.logs.empty() );
   EXPECT_FALSE( sm->tcamExhaustion() );
}

TEST_F( UnicastExemptionInRoomForOne, ALaterRemoveFreesL2AndReportsTheMissingL3InTheSameWords ) {
   sm->installRulesForUcastTraffic( 0 );
   leaf.forget();
   sm->removeRulesForUcastTraffic( 0 );
   EXPECT_EQ( leaf.callLines(), ( Lines{ "unit 0 entry 1: releaseEntry( group 157 ) = 0" } ) );
   EXPECT_FALSE( sm->l2UcastRuleInstalledHas( 0 ) );
   EXPECT_EQ( leaf.tracesOf( "2 " ),
              ( Lines{ "2 removeRulesForUcastTraffic could not find L2UC entry" } ) );
}

TEST_F( UnicastExemption, ARemoveWithoutL2LeavesL3InPlace ) {
   sm->installRulesForUcastTraffic( 0 );
   sm->l2UcastRuleInstalledDel( 0 );
   leaf.forget();
   sm->removeRulesForUcastTraffic( 0 );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_EQ( sm->l3UcastRuleInstalled( 0 ), 2U );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "5 removeRulesForUcastTraffic",
                              "2 removeRulesForUcastTraffic could not find L2UC entry",
                           } ) );
}

// --- What stops the process

std::string stopOf( std::string const & place, std::string const & operation,
                    std::string const & expression ) {
   return "^" + Support::assertionLine( place, operation, expression ) + "$";
}

using UnicastExemptionDeathTest = UnicastExemption;

TEST_F( UnicastExemptionDeathTest, AUnitIsNotGivenASecondL2Rule ) {
   sm->l2UcastRuleInstalledIs( 0, 7 );
   sm->l3UcastRuleInstalledIs( 0, 8 );
   EXPECT_EXIT( sm->installRulesForUcastTraffic( 0 ), testing::KilledBySignal( SIGABRT ),
                stopOf( "UnicastExemption.cpp:", "installRulesForUcastTraffic",
                        "!l2UcastRuleInstalledHas( unit )" ) );
}

TEST_F( UnicastExemptionDeathTest, AUnitIsNotGivenASecondL3Rule ) {
   sm->l3UcastRuleInstalledIs( 0, 8 );
   leaf.afterCall = [] { std::cerr << "the chip was called before\n"; };
   EXPECT_EXIT( sm->installRulesForUcastTraffic( 0 ), testing::KilledBySignal( SIGABRT ),
                stopOf( "UnicastExemption.cpp:", "installRulesForUcastTraffic",
                        "!l3UcastRuleInstalledHas( unit )" ) );
}

TEST_F( UnicastExemptionDeathTest, TheyDoNotGoBeforeTheUnitsRecord ) {
   sm->installRulesForUcastTraffic( 0 );
   sm->tepIpToEntryIs( U16{ 0 } );
   EXPECT_EXIT( sm->removeRulesForUcastTraffic( 0 ), testing::KilledBySignal( SIGABRT ),
                stopOf( "UnicastExemption.cpp:", "removeRulesForUcastTraffic",
                        "!tepIpToEntryHas( unit )" ) );
}

struct FailingCall {
   char const * name;
   U64 nth;
   int line;
   char const * text;

   friend std::ostream & operator<<( std::ostream & out, FailingCall const & call ) {
      return out << "line " << call.line;
   }
};

class AFailedCallDeathTest : public testing::TestWithParam< FailingCall > {};

INSTANTIATE_TEST_SUITE_P(
   UnicastExemption, AFailedCallDeathTest,
   testing::Values(
      FailingCall{ "L2PacketRes", 1, 758,
                   "bcm_field_qualify_PacketRes( unit, entryId, BCM_FIELD_PKT_RES_L2UC, 0xff )" },
      FailingCall{ "L2TunnelTerminated", 2, 760,
                   "bcm_field_qualify_TunnelTerminated( unit, entryId, 1, 1 )" },
      FailingCall{
         "L3PacketRes", 3, 777,
         "bcm_field_qualify_PacketRes( unit, entryId, BCM_FIELD_PKT_RES_L3UCKNOWN, 0xff )" },
      FailingCall{ "L3TunnelTerminated", 4, 779,
                   "bcm_field_qualify_TunnelTerminated( unit, entryId, 1, 1 )" } ),
   []( auto const & call ) { return call.param.name; } );

TEST_P( AFailedCallDeathTest, StopsTheProcessAtItsLine ) {
   LocalBiasSwitch leaf;
   auto const sm = bareMachineNew( leaf );
   Chip::FailingSdk failing( *Shim::sdk_, { .nth = GetParam().nth, .code = -5 } );
   Shim::sdk_ = &failing;
   EXPECT_EXIT( sm->installRulesForUcastTraffic( 0 ), testing::KilledBySignal( SIGABRT ),
                Support::failedCall( "UnicastExemption.cpp:" + std::to_string( GetParam().line ),
                                     "installRulesForUcastTraffic", GetParam().text,
                                     "Group does not support this (-5)" ) );
}

TEST_P( AFailedCallDeathTest, APositiveCodeIsNoFailure ) {
   LocalBiasSwitch leaf;
   auto const sm = bareMachineNew( leaf );
   Chip::FailingSdk odd( *Shim::sdk_, { .nth = GetParam().nth, .code = 1 } );
   Shim::sdk_ = &odd;
   sm->installRulesForUcastTraffic( 0 );
   EXPECT_TRUE( sm->l3UcastRuleInstalledHas( 0 ) );
}

// The code of the first or second installEntry, and the line that then stops the process.
class AFailedInstallDeathTest : public testing::TestWithParam< std::tuple< U32, S32 > > {};

INSTANTIATE_TEST_SUITE_P( UnicastExemption, AFailedInstallDeathTest,
                          testing::Combine( testing::Values( 1U, 2U ), testing::Values( -5, 1 ) ) );

TEST_P( AFailedInstallDeathTest, StopsTheProcessWhateverTheCode ) {
   auto const [ nth, code ] = GetParam();
   LocalBiasSwitch leaf;
   leaf.ingress =
      Quelm::make< Support::FaultyManager >( leaf,
                                             Support::ManagerFault{ "installEntry", nth, code } );
   auto const sm = bareMachineNew( leaf );
   EXPECT_EXIT( sm->installRulesForUcastTraffic( 0 ), testing::KilledBySignal( SIGABRT ),
                stopOf( nth == 1 ? "UnicastExemption.cpp:764" : "UnicastExemption.cpp:783",
                        "installRulesForUcastTraffic",
                        "rc == BCM_E_NONE && \"installEntry failed\"" ) );
}

}  // namespace UnicastExemptionTest
