// The end of the state machine: it goes out of service, forgets and is forgotten, and leaves every
// rule in the hardware.

#include <gtest/gtest.h>

#include "../support/Observed.h"
#include "../support/Variants.h"

namespace {

using namespace Support;

class Ending : public EitherVariant {};
INSTANTIATE_TEST_SUITE_P( Frame, Ending, bothVariants, nameOfVariant );

TEST_P( Ending, ANestedReactorThatOutlivesItsMachineHasForgottenIt ) {
   shareEthernet1();
   auto sm = leaf.machineNew( GetParam() );
   auto const reactor = sm->oxaEvpnTepSegment( ip( "10.0.0.2" ) );
   sm = nullptr;
   EXPECT_FALSE( reactor->evpnMultihomingLocalBiasSm() );
   EXPECT_DEATH( reactor->handleSegmentSet( intf( "Ethernet1" ) ),
                 "Assertion 'evpnMultihomingLocalBiasSm\\(\\)' failed" );
}

TEST_P( Ending, AHeldReactorOfAMachineThatEndedSwitchedOffHearsNothing ) {
   auto const tunnel = leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan1" ) );
   auto const segment = Quelm::make< Oxa::EvpnTepSegment >( ip( "10.0.0.2" ) );
   auto const portChannel = Quelm::make< Lag::LagPhyIntfConfig >( intf( "Port-Channel3" ) );
   auto sm = leaf.machineNew( GetParam() );
   sm->hasNotificationActiveIs( false );
   sm->oxaEvpnTepSegmentIs( segment );
   sm->lagPhyIntfConfigIs( portChannel );
   auto const ofSegment = sm->oxaEvpnTepSegment( ip( "10.0.0.2" ) );
   auto const ofTunnel = sm->vtiStatus( intf( "Vxlan1" ) );
   auto const ofPortChannel = sm->lagPhyIntfConfig( intf( "Port-Channel3" ) );
   ofTunnel->hasNotificationActiveIs( true );
   leaf.forget();
   sm = nullptr;
   segment->segmentSetIs( intf( "Ethernet1" ) );
   tunnel->vrfToVniMapIs( L3::VrfName( "red" ), Vxlan::VniExtOrNone( 50001 ) );
   portChannel->phyIntfIs( intf( "Ethernet3" ) );
   EXPECT_TRUE( leaf.traces.empty() );
   EXPECT_FALSE( ofSegment->hasNotificationActive() );
   EXPECT_FALSE( ofSegment->evpnMultihomingLocalBiasSm() );
   EXPECT_FALSE( ofTunnel->evpnMultihomingLocalBiasSm() );
   EXPECT_FALSE( ofPortChannel->evpnMultihomingLocalBiasSm() );
}

TEST( EndingWithClassIds, ItsReactorsAreOutOfServiceBeforeItLetsGoOfTheEgressGroup ) {
   LocalBiasSwitch leaf;
   Quelm::Ptr< Vornal::EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus > reactor;
   Lines story;
   auto const noteRelease = [ & ] {
      story.push_back( reactor->hasNotificationActive() ? "released, listening" : "released" );
      story.push_back( reactor->isZombie() ? "out of service" : "in service" );
   };
   leaf.egress =
      Quelm::make< Observed< Chip::SoftTcamEntryManager > >( Listener{ .onRelease = noteRelease },
                                                             Vornal::kEfpLocalBiasGroup,
                                                             leaf.board.units(),
                                                             &leaf.callObserver() );
   leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan1" ) );
   auto sm = leaf.machineNew( Variant::I2EClassId );
   reactor = sm->vtiStatus( intf( "Vxlan1" ) );
   leaf.egress = nullptr;
   EXPECT_TRUE( story.empty() );
   sm = nullptr;
   EXPECT_EQ( story, ( Lines{ "released", "out of service" } ) );
}

TEST_P( Ending, DestroyedItLeavesEveryRuleAndNoSubscription ) {
   shareEthernet1();
   leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan1" ) )
      ->vrfToVniMapIs( L3::VrfName( "red" ), Vxlan::VniExtOrNone( 50001 ) );
   auto sm = leaf.machineNew( GetParam() );
   leaf.classIdIs( "10.0.0.2", 5 );
   sm->handleTcamExhaustion();
   auto const manager = sm->tcamManager();
   U32 const used = leaf.board.entryManager( Vornal::kIfpLocalBiasGroup )->used( 0 );
   U32 const usedAtEgress = leaf.board.entryManager( Vornal::kEfpLocalBiasGroup )->used( 0 );
   EXPECT_EQ( usedAtEgress, GetParam() == Variant::I2EClassId ? 1U : 0U );
   EXPECT_EQ( used, 4U );  // two unicast exemptions, the VTEP's entry, the VNI's
   auto const segment = leaf.dir->tepSegment( ip( "10.0.0.2" ) );
   leaf.forget();
   sm = nullptr;
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_TRUE( leaf.traces.empty() );
   EXPECT_EQ( leaf.board.entryManager( Vornal::kIfpLocalBiasGroup )->used( 0 ), used );
   EXPECT_EQ( leaf.board.entryManager( Vornal::kEfpLocalBiasGroup )->used( 0 ), usedAtEgress );
   EXPECT_FALSE( leaf.vcsd->publisher().hasSubscribers() );
   EXPECT_FALSE( leaf.dir->publisher().hasSubscribers() );
   EXPECT_FALSE( manager->publisher().hasSubscribers() );
   EXPECT_FALSE( segment->publisher().hasSubscribers() );
   EXPECT_FALSE( leaf.activity.clock()->nextWakeUp() );
}

// The machine holds the last reference to a segment, and the segment's end looks at the clock.
TEST_P( Ending, ItsClockForgetsItBeforeItsNestedReactorsGo ) {
   auto sm = leaf.machineNew( GetParam() );
   auto * const machine = sm.get();
   Lines story;
   sm->oxaEvpnTepSegmentIs( Quelm::make< Observed< Oxa::EvpnTepSegment > >(
      Listener{ .onRelease =
                   [ & ] {
                      story.push_back( machine->kivClock().evpnMultihomingLocalBiasSm()
                                          ? "remembers"
                                          : "has forgotten" );
                   } },
      ip( "10.0.0.2" ) ) );
   EXPECT_TRUE( story.empty() );
   sm = nullptr;
   EXPECT_EQ( story, Lines{ "has forgotten" } );
}

}  // namespace
