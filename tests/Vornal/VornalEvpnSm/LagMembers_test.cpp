// A port channel on a shared segment gains or loses a member.

#include <gtest/gtest.h>

#include "../support/LocalBiasSwitch.h"
#include "../support/TraceRing.h"

namespace {

using Support::intf;
using Support::ip;
using Support::Lines;
using Support::LocalBiasSwitch;
using Support::Variant;

class SharedLag : public testing::Test {
 protected:
   SharedLag() {
      leaf.interfaceIs( "Ethernet1", 0, 1 );
      leaf.interfaceIs( "Ethernet2", 0, 2 );
      leaf.memberIs( "Port-Channel2", "Ethernet1" );
      leaf.segmentIs( "Port-Channel2", { "10.0.0.2" } );
      leaf.vtepIs( "10.0.0.2", 0x10002 );
   }

   LocalBiasSwitch leaf;
};

TEST_F( SharedLag, AMemberThatJoinsIsTracedWithoutABlankAfterAdded ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.memberIs( "Port-Channel2", "Ethernet2" );
   EXPECT_EQ( leaf.traces.front(), "5 handleLagMember lag: Port-Channel2 changed, addedEthernet2" );
   EXPECT_TRUE( leaf.hasTraced( "8 handleLagMember, ethIntfId: Ethernet2, tepIp: 10.0.0.2" ) );
   EXPECT_TRUE(
      leaf.hasTraced( "5 updateTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1, intfId: Ethernet2" ) );
   EXPECT_EQ( Quelm::textOf( sm->tepIpToEntry( 0U )->esPbmp( ip( "10.0.0.2" ) ) ), "{1-2}" );
}

TEST_F( SharedLag, AMemberThatLeavesIsTracedWithABlankAfterDeleted ) {
   leaf.memberIs( "Port-Channel2", "Ethernet2" );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.memberDel( "Ethernet2" );
   EXPECT_EQ( leaf.traces.front(),
              "5 handleLagMember lag: Port-Channel2 changed, deleted Ethernet2" );
   EXPECT_EQ( Quelm::textOf( sm->tepIpToEntry( 0U )->esPbmp( ip( "10.0.0.2" ) ) ), "{1}" );
}

// The mapping decides who is a member, whatever object the reactor watches.
TEST_F( SharedLag, WhetherAMemberHasJoinedOrLeftIsWhatTheMappingSays ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   auto const other = Quelm::make< Lag::LagPhyIntfConfig >( intf( "Port-Channel2" ) );
   sm->lagPhyIntfConfigIs( other );
   leaf.forget();
   other->phyIntfIs( intf( "Ethernet2" ) );
   EXPECT_EQ( leaf.traces.front(),
              "5 handleLagMember lag: Port-Channel2 changed, deleted Ethernet2" );
}

TEST_F( SharedLag, AMemberOfAPortChannelWithoutSegmentDoesNothing ) {
   leaf.interfaceIs( "Ethernet3", 0, 3 );
   leaf.memberIs( "Port-Channel3", "Ethernet3" );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.memberIs( "Port-Channel3", "Ethernet2" );
   EXPECT_TRUE( leaf.traces.empty() );
   EXPECT_TRUE( leaf.calls.empty() );
}

TEST_F( SharedLag, ReactorsFollowThePortChannelsThatComeAndGo ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   EXPECT_TRUE( sm->lagPhyIntfConfigHas( intf( "Port-Channel2" ) ) );
   leaf.memberIs( "Port-Channel3", "Ethernet2" );
   EXPECT_TRUE( sm->lagPhyIntfConfigHas( intf( "Port-Channel3" ) ) );
   auto const gone = sm->lagPhyIntfConfig( intf( "Port-Channel3" ) );
   EXPECT_EQ( gone->intfId(), intf( "Port-Channel3" ) );
   leaf.memberDel( "Ethernet2" );
   EXPECT_FALSE( sm->lagPhyIntfConfigHas( intf( "Port-Channel3" ) ) );
   EXPECT_TRUE( gone->isZombie() );
   EXPECT_FALSE( gone->hasNotificationActive() );
}

TEST_F( SharedLag, BeforeInitialisationBothReactionsOnlyTraceAndTheRingHoldsTheReason ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   sm->initializedIs( false );
   leaf.forget();
   Support::TraceRing const ring;
   leaf.memberIs( "Port-Channel2", "Ethernet2" );
   leaf.interfaceIs( "Ethernet1", 0, 9 );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "2 handleLagMember, SM not initialized yet",
                              "5 handleVornalIntfToPort, intfId: Ethernet1",
                              "2 handleVornalIntfToPort, SM not initialized yet",
                           } ) );
   EXPECT_EQ( ring.lines(), ( Lines{
                               "2 handleLagMember, SM not initialized yet",
                               "2 handleVornalIntfToPort, SM not initialized yet",
                            } ) );
   EXPECT_TRUE( leaf.calls.empty() );
}

TEST_F( SharedLag, BeforeInitialisationNobodyAsksWhetherThereIsASegment ) {
   leaf.memberIs( "Port-Channel3", "Ethernet2" );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   sm->initializedIs( false );
   leaf.forget();
   leaf.interfaceIs( "Ethernet2", 0, 9 );
   leaf.interfaceIs( "Ethernet3", 0, 3 );
   leaf.memberIs( "Port-Channel3", "Ethernet3" );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "5 handleVornalIntfToPort, intfId: Ethernet2",
                              "2 handleVornalIntfToPort, SM not initialized yet",
                              "5 handleVornalIntfToPort, intfId: Ethernet3",
                              "2 handleVornalIntfToPort, SM not initialized yet",
                              "2 handleLagMember, SM not initialized yet",
                           } ) );
}

// --- The ring

TEST_F( SharedLag, TheRingHoldsEveryPortListThatIsWorkedOutForAChange ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   Support::TraceRing const ring;
   leaf.memberIs( "Port-Channel2", "Ethernet2" );
   leaf.interfaceIs( "Ethernet1", 0, 9 );
   leaf.memberIs( "Port-Channel2", "Ethernet7" );
   EXPECT_EQ( ring.lines(),
              ( Lines{
                 "5 getPortListsOnUpdate, unit: 0, tepIp: 10.0.0.2, intfId: Ethernet2",
                 "5 getPortListsOnUpdate, unit: 0, tepIp: 10.0.0.2, intfId: Ethernet1",
                 "7 getPortListsOnUpdate, lport change for intf Ethernet1",
                 "5 getPortListsOnUpdate, unit: 0, tepIp: 10.0.0.2, intfId: Ethernet7",
                 "7 getPortListsOnUpdate, no update needed",
              } ) );
}

}  // namespace
