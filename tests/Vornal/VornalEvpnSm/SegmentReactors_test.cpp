// What follows a VTEP's shared interfaces, and the switch's first and last Ethernet segment.

#include <gtest/gtest.h>

#include "../support/BareMachine.h"
#include "../support/TraceRing.h"

namespace SegmentReactorsTest {

using Support::BareMachine;
using Support::bareMachineNew;
using Support::intf;
using Support::ip;
using Support::Lines;
using Support::LocalBiasSwitch;
using Support::Variant;

// leaf1 of two units shares Ethernet1 with 10.0.0.2, which has rules on both.
class SegmentReactors : public testing::TestWithParam< Variant > {
 protected:
   explicit SegmentReactors( U32 capacity = 64 ) : leaf( 2, capacity ) {
      leaf.interfaceIs( "Ethernet1", 0, 5 );
      leaf.interfaceIs( "Ethernet2", 0, 6 );
      leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
      leaf.vtepIs( "10.0.0.2", 2 );
   }

   LocalBiasSwitch leaf;
};

TEST_F( SegmentReactors, AnInterfaceThatJoinsUpdatesEveryUnitWithRules ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   EXPECT_EQ( leaf.tracesOf( "5 handleSegmentSet" ),
              ( Lines{ "5 handleSegmentSet, intfId : Ethernet2" } ) );
   EXPECT_EQ( leaf.tracesOf( "7  " ), ( Lines{
                                         "7  Adding Ethernet2 to egress mask",
                                         "7  Adding Ethernet2 to egress mask",
                                      } ) );
   EXPECT_EQ( leaf.tracesOf( "5 updateTcamEntries" ),
              ( Lines{
                 "5 updateTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1, intfId: Ethernet2",
                 "5 updateTcamEntries, unit: 1, tepIp: 10.0.0.2, add 1, intfId: Ethernet2",
              } ) );
}

TEST_F( SegmentReactors, AnInterfaceThatLeavesUpdatesEveryUnitWithRules ) {
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.segmentDel( "Ethernet2" );
   EXPECT_EQ( leaf.tracesOf( "7  " ), ( Lines{
                                         "7  Removing Ethernet2 from egress mask",
                                         "7  Removing Ethernet2 from egress mask",
                                      } ) );
   EXPECT_EQ( leaf.tracesOf( "5 updateTcamEntries" ),
              ( Lines{
                 "5 updateTcamEntries, unit: 0, tepIp: 10.0.0.2, add 0, intfId: Ethernet2",
                 "5 updateTcamEntries, unit: 1, tepIp: 10.0.0.2, add 0, intfId: Ethernet2",
              } ) );
}

TEST_F( SegmentReactors, AnUnknownInterfaceChangesNothingAndIsTracedOnEveryUnitWithRules ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.segmentIs( "Ethernet9", { "10.0.0.2" } );
   leaf.segmentIs( "Port-Channel9", { "10.0.0.2" } );
   EXPECT_EQ( leaf.tracesOf( "2 handleSegmentSet" ),
              ( Lines{
                 "2 handleSegmentSet, Ethernet9 not part of unit 0",
                 "2 handleSegmentSet, Ethernet9 not part of unit 1",
                 "2 handleSegmentSet, Port-Channel9 not part of unit 0",
                 "2 handleSegmentSet, Port-Channel9 not part of unit 1",
              } ) );
   EXPECT_TRUE( leaf.tracesOf( "5 updateTcamEntries" ).empty() );
   EXPECT_TRUE( leaf.calls.empty() );
}

TEST_F( SegmentReactors, AnUnknownInterfaceIsNotLookedForOnAUnitWithoutTheVtepsRules ) {
   leaf.board.entryManager( Vornal::kIfpLocalBiasGroup )->foreignEntriesIs( 1, 64 );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.segmentIs( "Ethernet9", { "10.0.0.2" } );
   EXPECT_EQ( leaf.tracesOf( "2 handleSegmentSet" ),
              ( Lines{
                 "2 handleSegmentSet, Ethernet9 not part of unit 0",
                 "2 handleSegmentSet, not processing updates with respect to Ethernet9 since no "
                 "TCAMs are installed on unit 1 for tepIp 10.0.0.2",
              } ) );
}

TEST_F( SegmentReactors, APortChannelIsKnownByItsEntryEvenWithoutMembers ) {
   leaf.lagMapping->lagPhyIntfConfigIs(
      Quelm::make< Lag::LagPhyIntfConfig >( intf( "Port-Channel9" ) ) );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.segmentIs( "Port-Channel9", { "10.0.0.2" } );
   EXPECT_TRUE( leaf.tracesOf( "2 handleSegmentSet" ).empty() );
   EXPECT_EQ( leaf.tracesOf( "7  Adding" ), ( Lines{
                                               "7  Adding Port-Channel9 to egress mask",
                                               "7  Adding Port-Channel9 to egress mask",
                                            } ) );
   EXPECT_EQ( leaf.tracesOf( "7 updateTcamEntries, no update needed" ).size(), 2U );
   EXPECT_TRUE( leaf.calls.empty() );
}

TEST_F( SegmentReactors, APortChannelIsKnownByALivePortOfItsOwnButHasNoPorts ) {
   leaf.interfaceIs( "Port-Channel9", 0, 9 );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.segmentIs( "Port-Channel9", { "10.0.0.2" } );
   EXPECT_TRUE( leaf.tracesOf( "2 handleSegmentSet" ).empty() );
   EXPECT_EQ( leaf.tracesOf( "7 updateTcamEntries, no update needed" ).size(), 2U );
   EXPECT_TRUE( leaf.calls.empty() );
}

TEST_F( SegmentReactors, APortChannelIsKnownByItsMembers ) {
   leaf.memberIs( "Port-Channel2", "Ethernet2" );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.segmentIs( "Port-Channel2", { "10.0.0.2" } );
   EXPECT_EQ( leaf.tracesOf( "7  " ).front(), "7  Adding Port-Channel2 to egress mask" );
   EXPECT_EQ( Quelm::textOf( sm->tepIpToEntry( 0U )->esPbmp( ip( "10.0.0.2" ) ) ), "{5-6}" );
}

TEST_F( SegmentReactors, WithoutVirtualPortAnInterfaceChangeOnlyTraces ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.vtepDel( "10.0.0.2" );
   leaf.forget();
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   EXPECT_EQ( leaf.tracesOf( "2 handleSegmentSet" ),
              ( Lines{ "2 handleSegmentSet, no VP assigned to remote VTEP " } ) );
   EXPECT_TRUE( leaf.calls.empty() );
}

TEST_F( SegmentReactors, AUnitWithoutTheVtepsRulesIsSkipped ) {
   leaf.board.entryManager( Vornal::kIfpLocalBiasGroup )->foreignEntriesIs( 1, 64 );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   EXPECT_EQ( leaf.tracesOf( "2 handleSegmentSet" ),
              ( Lines{ "2 handleSegmentSet, not processing updates with respect to Ethernet2 since "
                       "no TCAMs are installed on unit 1 for tepIp 10.0.0.2" } ) );
   EXPECT_EQ( leaf.tracesOf( "5 updateTcamEntries" ).size(), 1U );
}

// --- The reactors themselves

TEST_F( SegmentReactors, ASegmentThatIsWatchedAlreadyStaysWatchedOnce ) {
   auto const sm = bareMachineNew( leaf );
   auto const reactor = sm->oxaEvpnTepSegment( ip( "10.0.0.2" ) );
   auto const segment = leaf.dir->tepSegment( ip( "10.0.0.2" ) );
   sm->oxaEvpnTepSegmentIs( segment );
   EXPECT_EQ( sm->oxaEvpnTepSegment( ip( "10.0.0.2" ) ), reactor );
   EXPECT_EQ( segment->publisher().subscribers(), 1U );
   EXPECT_EQ( reactor->tepIp(), ip( "10.0.0.2" ) );
}

TEST_F( SegmentReactors, AnotherSegmentOfTheSameVtepIsWatchedInItsPlace ) {
   auto const sm = bareMachineNew( leaf );
   auto const reactor = sm->oxaEvpnTepSegment( ip( "10.0.0.2" ) );
   auto const before = leaf.dir->tepSegment( ip( "10.0.0.2" ) );
   auto const after = Quelm::make< Oxa::EvpnTepSegment >( ip( "10.0.0.2" ) );
   sm->oxaEvpnTepSegmentIs( after );
   EXPECT_EQ( sm->oxaEvpnTepSegment( ip( "10.0.0.2" ) ), reactor );
   EXPECT_EQ( before->publisher().subscribers(), 0U );
   EXPECT_EQ( after->publisher().subscribers(), 1U );
   leaf.forget();
   after->segmentSetIs( intf( "Ethernet2" ) );
   EXPECT_EQ( leaf.traces.front(), "5 handleSegmentSet, intfId : Ethernet2" );
}

TEST_F( SegmentReactors, ARemovedReactorIsRetiredAndTouchesNoRule ) {
   auto const sm = bareMachineNew( leaf );
   auto const reactor = sm->oxaEvpnTepSegment( ip( "10.0.0.2" ) );
   leaf.forget();
   sm->oxaEvpnTepSegmentDel( ip( "10.0.0.2" ) );
   EXPECT_FALSE( sm->oxaEvpnTepSegmentHas( ip( "10.0.0.2" ) ) );
   EXPECT_TRUE( reactor->isZombie() );
   EXPECT_FALSE( reactor->hasNotificationActive() );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_TRUE( leaf.traces.empty() );
}

TEST_F( SegmentReactors, AllReactorsGoAtOnceAndTouchNoRule ) {
   leaf.segmentIs( "Ethernet2", { "10.0.0.3" } );
   auto const sm = bareMachineNew( leaf );
   leaf.forget();
   sm->oxaEvpnTepSegmentDelAll();
   EXPECT_FALSE( sm->oxaEvpnTepSegmentHas( ip( "10.0.0.2" ) ) );
   EXPECT_FALSE( sm->oxaEvpnTepSegmentHas( ip( "10.0.0.3" ) ) );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_NE( sm->tepIpToEntry( 0U )->entryId( ip( "10.0.0.2" ) ), 0U );
}

// --- The first and the last segment

class SegmentStatus : public testing::Test {
 protected:
   SegmentStatus() {
      auto const vti = leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan1" ) );
      vti->vrfToVniMapIs( L3::VrfName( "blue" ), Vxlan::VniExtOrNone( 50002 ) );
      vti->vrfToVniMapIs( L3::VrfName( "red" ), Vxlan::VniExtOrNone( 50001 ) );
   }
   std::string const signature = "8 void Vornal::EvpnMultihomingLocalBiasSm::handleSegmentStatus()";

   LocalBiasSwitch leaf;
   Quelm::Ptr< BareMachine > const sm = bareMachineNew( leaf );
};

TEST_F( SegmentStatus, TheFirstSegmentInstallsTheMulticastRulesOnce ) {
   EXPECT_FALSE( sm->isEvpn() );
   EXPECT_EQ( sm->vniToTcamEntryId( 50001 ), 0U );
   leaf.forget();
   leaf.segmentIs( "Ethernet1", {} );
   EXPECT_TRUE( sm->isEvpn() );
   EXPECT_NE( sm->vniToTcamEntryId( 50001 ), 0U );
   EXPECT_NE( sm->vniToTcamEntryId( 50002 ), 0U );
   EXPECT_EQ( leaf.traces[ 0 ], signature );
   EXPECT_EQ( leaf.traces[ 1 ], "2 handleSegmentStatusTcam rules addition case" );
   leaf.forget();
   leaf.segmentIs( "Ethernet2", {} );
   sm->handleSegmentStatus();
   EXPECT_EQ( leaf.traces, ( Lines{ signature, signature } ) );
   EXPECT_TRUE( leaf.calls.empty() );
}

TEST_F( SegmentStatus, TheLastSegmentTakesThemAwayOnce ) {
   leaf.segmentIs( "Ethernet1", {} );
   leaf.segmentIs( "Ethernet2", {} );
   leaf.forget();
   leaf.segmentDel( "Ethernet1" );
   EXPECT_EQ( leaf.traces, ( Lines{ signature } ) );
   EXPECT_TRUE( sm->isEvpn() );
   leaf.forget();
   leaf.segmentDel( "Ethernet2" );
   EXPECT_FALSE( sm->isEvpn() );
   EXPECT_EQ( leaf.traces[ 1 ], "2 handleSegmentStatusTcam rules deletion case" );
   EXPECT_EQ( leaf.callLines(), ( Lines{
                                   "unit 0 entry 1: releaseEntry( group 157 ) = 0",
                                   "unit 0 entry 2: releaseEntry( group 157 ) = 0",
                                } ) );
   leaf.forget();
   sm->handleSegmentStatus();
   EXPECT_EQ( leaf.traces, ( Lines{ signature } ) );
}

TEST_F( SegmentStatus, EveryTunnelInterfaceIsToldOfTheFirstSegmentAndOfTheLast ) {
   leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan2" ) )
      ->vrfToVniMapIs( L3::VrfName( "green" ), Vxlan::VniExtOrNone( 50003 ) );
   auto const hasRules = [ & ] {
      return std::vector< bool >{ sm->vniToTcamEntryIdHas( 50001 ),
                                  sm->vniToTcamEntryIdHas( 50002 ),
                                  sm->vniToTcamEntryIdHas( 50003 ) };
   };
   leaf.segmentIs( "Ethernet1", {} );
   EXPECT_EQ( hasRules(), ( std::vector< bool >{ true, true, true } ) );
   leaf.segmentDel( "Ethernet1" );
   EXPECT_EQ( hasRules(), ( std::vector< bool >{ false, false, false } ) );
}

// --- The ring

TEST_F( SegmentStatus, BothTransitionsAreInTheRing ) {
   Support::TraceRing const ring;
   leaf.segmentIs( "Ethernet1", {} );
   leaf.segmentIs( "Ethernet2", {} );
   leaf.evpnStatus->segmentStatusDelAll();
   EXPECT_EQ( ring.lines(), ( Lines{
                               "2 handleSegmentStatusTcam rules addition case",
                               "2 handleSegmentStatusTcam rules deletion case",
                            } ) );
}

TEST_F( SegmentReactors, TheRingHoldsTheMarkedLinesOnly ) {
   Support::TraceRing const ring;
   auto const sm = bareMachineNew( leaf );
   leaf.segmentIs( "Ethernet9", { "10.0.0.2" } );
   leaf.vtepDel( "10.0.0.2" );
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   leaf.segmentIs( "Ethernet2", { "10.0.0.3" } );
   leaf.vtepIs( "10.0.0.9", 9 );
   sm->initializedIs( false );
   leaf.segmentIs( "Ethernet2", { "10.0.0.4" } );
   EXPECT_EQ( ring.lines(), ( Lines{
                               "2 handleSegmentStatusTcam rules addition case",
                               "5 handleTepSegment tepIp: 10.0.0.2",
                               "5 handleSegmentSet, intfId : Ethernet9",
                               "5 handleRemoteVport, rvk.vtepIp: 10.0.0.2",
                               "5 handleSegmentSet, intfId : Ethernet2",
                               "2 handleSegmentSet, no VP assigned to remote VTEP ",
                               "5 handleTepSegment tepIp: 10.0.0.3",
                               "5 handleRemoteVport, rvk.vtepIp: 10.0.0.9",
                               "5 handleTepSegment tepIp: 10.0.0.4",
                               "2 handleTepSegment, SM not initialized yet",
                            } ) );
}

}  // namespace SegmentReactorsTest
