// The frame of the state machine: what it watches, whom it calls, how it starts and ends.

#include <gtest/gtest.h>

#include <Trace/Ring.h>

#include "../support/LocalBiasSwitch.h"
#include "../support/Observed.h"

namespace {

using Support::intf;
using Support::ip;
using Support::Lines;
using Support::LocalBiasSwitch;
using Support::Machine;
using Support::Variant;

class BothVariants : public testing::TestWithParam< Variant > {
 protected:
   // Ethernet1, on port 5, shared with 10.0.0.2, which has a virtual port.
   void shareEthernet1() {
      leaf.interfaceIs( "Ethernet1", 0, 5 );
      leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
      leaf.vtepIs( "10.0.0.2", 0x10002 );
   }

   LocalBiasSwitch leaf;
};

INSTANTIATE_TEST_SUITE_P( Lifecycle, BothVariants,
                          testing::Values( Variant::EgressMask, Variant::I2EClassId ),
                          []( auto const & variant ) {
                             return variant.param == Variant::EgressMask ? "EgressMask"
                                                                         : "I2EClassId";
                          } );

TEST_P( BothVariants, StartsWithTheSegmentStatusAndEndsInitialised ) {
   shareEthernet1();
   leaf.memberIs( "Port-Channel3", "Ethernet3" );
   leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan1" ) );
   auto const sm = leaf.machineNew( GetParam() );
   EXPECT_EQ( leaf.traces[ 0 ],
              "8 void Vornal::EvpnMultihomingLocalBiasSm::handleSegmentStatus()" );
   EXPECT_EQ( leaf.traces[ 1 ], "2 handleSegmentStatusTcam rules addition case" );
   EXPECT_EQ( leaf.tracesOf( "5 handleInitialized" ),
              ( Lines{ "5 handleInitialized", "5 handleInitialized" } ) );
   EXPECT_TRUE( leaf.hasTraced( "5 handleTepSegment" ) );
   EXPECT_TRUE( leaf.hasTraced( "5 handleTepSegment tepIp: 10.0.0.2" ) );
   EXPECT_TRUE( sm->initialized() );
   EXPECT_TRUE( sm->isEvpn() );
   EXPECT_TRUE( sm->hasNotificationActive() );
   EXPECT_TRUE( sm->oxaEvpnTepSegmentHas( ip( "10.0.0.2" ) ) );
   EXPECT_TRUE( sm->vtiStatusHas( intf( "Vxlan1" ) ) );
   EXPECT_TRUE( sm->lagPhyIntfConfigHas( intf( "Port-Channel3" ) ) );
}

TEST_P( BothVariants, IsWhatItsFactorySays ) {
   auto const sm = leaf.machineNew( GetParam() );
   EXPECT_EQ( sm->typeData().name(), GetParam() == Variant::EgressMask
                                        ? "Vornal::EvpnMultihomingLocalBiasWithEgressMaskSm"
                                        : "Vornal::EvpnMultihomingLocalBiasWithI2EClassIdSm" );
}

TEST_P( BothVariants, EachInputCallsItsHandler ) {
   auto const sm = leaf.machineNew( GetParam() );
   leaf.forget();
   leaf.interfaceIs( "Ethernet1", 0, 5 );
   EXPECT_EQ( leaf.traces.front(), "5 handleVornalIntfToPort, intfId: Ethernet1" );
   leaf.forget();
   leaf.dir->tepSegmentIs( ip( "10.0.0.7" ) );
   EXPECT_EQ( leaf.traces.front(), "5 handleTepSegment tepIp: 10.0.0.7" );
   leaf.forget();
   leaf.vtepIs( "10.0.0.8", 8 );
   EXPECT_EQ( leaf.traces.front(), "5 handleRemoteVport, rvk.vtepIp: 10.0.0.8" );
   leaf.forget();
   leaf.evpnStatus->segmentStatusIs( intf( "Ethernet9" ) );
   EXPECT_EQ( leaf.traces.front(),
              "8 void Vornal::EvpnMultihomingLocalBiasSm::handleSegmentStatus()" );
   leaf.forget();
   sm->tcamManager()->exhaustedIs( 0, true );
   EXPECT_EQ( leaf.traces, ( Lines{ "5 handleTcamExhaustion" } ) );
   leaf.forget();
   leaf.dir->tepSegment( ip( "10.0.0.7" ) )->segmentSetIs( intf( "Ethernet1" ) );
   EXPECT_EQ( leaf.traces.front(), "5 handleSegmentSet, intfId : Ethernet1" );
   leaf.forget();
   leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan1" ) )
      ->vrfToVniMapIs( L3::VrfName( "red" ), Vxlan::VniExtOrNone( 50001 ) );
   EXPECT_EQ( leaf.traces.front(),
              "8 void Vornal::EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::"
              "handleVrfToVniMap(L3::VrfName, U32, U32) vrf red" );
}

TEST( ClassIdVariant, AGrantCallsItsHandler ) {
   LocalBiasSwitch leaf;
   auto const sm = leaf.machineNew( Variant::I2EClassId );
   leaf.forget();
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_EQ( leaf.traces,
              ( Lines{ "2 handleRemoteESPeerVtepI2EClassId initialized: 1 tepIp part of "
                       "oxaEvpnTepSegmentDir: 0" } ) );
}

TEST( ClassIdVariant, RequestsOfAnEarlierRunAreClearedBeforeAnyNewOneIsMade ) {
   LocalBiasSwitch leaf;
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.vtepIs( "10.0.0.2", 0x10002 );
   leaf.classIdConfig->remoteESPeerVtepIs( ip( "10.0.0.9" ), true );
   Lines requests;
   Kiv::Watch< VornalCentral::I2EClassIdIndexConfig > watch(
      leaf.classIdConfig, [ & ]( Kiv::Change const & change ) {
         requests.push_back( ( change.newValue< bool >() ? "asked for " : "cleared " ) +
                             change.key< Pelk::IpGenAddr >().stringValue() );
      } );
   watch.hasNotificationActiveIs( true );
   auto const sm = leaf.machineNew( Variant::I2EClassId );
   EXPECT_EQ( requests, ( Lines{ "cleared 10.0.0.9", "asked for 10.0.0.2" } ) );
}

// --- Notifications

std::vector< std::size_t > subscribersOf( LocalBiasSwitch & leaf, Machine const & sm ) {
   return {
      leaf.vcsd->publisher().subscribers(),          leaf.dir->publisher().subscribers(),
      leaf.vpIndexStatus->publisher().subscribers(), leaf.evpnStatus->publisher().subscribers(),
      leaf.vtiStatusDir->publisher().subscribers(),  sm->tcamManager()->publisher().subscribers(),
      leaf.lagMapping->publisher().subscribers(),    leaf.classIdStatus->publisher().subscribers()
   };
}

TEST_P( BothVariants, SubscribesOnceHoweverOftenItIsSwitchedOn ) {
   auto const sm = leaf.machineNew( GetParam() );
   auto const subscribed = subscribersOf( leaf, sm );
   std::size_t const grants = GetParam() == Variant::I2EClassId ? 1 : 0;
   // The segment directory's derivation is subscribed to the segment status as well.
   EXPECT_EQ( subscribed, ( std::vector< std::size_t >{ 1, 1, 1, 2, 1, 1, 1, grants } ) );
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( subscribersOf( leaf, sm ), subscribed );
}

TEST_P( BothVariants, SwitchedOffItHearsNothing ) {
   shareEthernet1();
   auto const sm = leaf.machineNew( GetParam() );
   sm->hasNotificationActiveIs( false );
   EXPECT_EQ( subscribersOf( leaf, sm ), ( std::vector< std::size_t >{ 0, 0, 0, 1, 0, 0, 0, 0 } ) );
   EXPECT_FALSE( sm->oxaEvpnTepSegment( ip( "10.0.0.2" ) )->hasNotificationActive() );
   leaf.forget();
   leaf.vtepDel( "10.0.0.2" );
   leaf.interfaceDel( "Ethernet1" );
   leaf.segmentDel( "Ethernet1" );
   EXPECT_TRUE( leaf.traces.empty() );
   EXPECT_TRUE( leaf.calls.empty() );
}

TEST_P( BothVariants, OutOfServiceItKeepsItsReactorsButHandlesNoSegment ) {
   auto const sm = leaf.machineNew( GetParam() );
   sm->kivDoZombieReactors( true );
   leaf.forget();
   leaf.dir->tepSegmentIs( ip( "10.0.0.2" ) );
   sm->tcamManager()->exhaustedIs( 0, true );
   EXPECT_TRUE( leaf.traces.empty() );
   EXPECT_TRUE( sm->oxaEvpnTepSegmentHas( ip( "10.0.0.2" ) ) );
   leaf.dir->tepSegmentDel( ip( "10.0.0.2" ) );
   EXPECT_FALSE( sm->oxaEvpnTepSegmentHas( ip( "10.0.0.2" ) ) );
   EXPECT_TRUE( leaf.traces.empty() );
}

TEST_P( BothVariants, OutOfServiceIsPassedOnToEveryNestedReactor ) {
   shareEthernet1();
   leaf.memberIs( "Port-Channel3", "Ethernet3" );
   leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan1" ) );
   auto const sm = leaf.machineNew( GetParam() );
   sm->kivDoZombieReactors( true );
   EXPECT_TRUE( sm->isZombie() );
   EXPECT_TRUE( sm->oxaEvpnTepSegment( ip( "10.0.0.2" ) )->isZombie() );
   EXPECT_TRUE( sm->vtiStatus( intf( "Vxlan1" ) )->isZombie() );
   EXPECT_TRUE( sm->lagPhyIntfConfig( intf( "Port-Channel3" ) )->isZombie() );
   EXPECT_TRUE( sm->kivClock().isZombie() );
}

// --- Nested reactors

TEST_P( BothVariants, ASegmentChangeIsHandledBeforeItsReactorComes ) {
   auto const sm = leaf.machineNew( GetParam() );
   bool hadReactor = true;
   Trace::sinkIs( [ & ]( Trace::Line const & line ) {
      if ( line.text == "handleTepSegment tepIp: 10.0.0.2" ) {
         hadReactor = sm->oxaEvpnTepSegmentHas( ip( "10.0.0.2" ) );
      }
   } );
   leaf.dir->tepSegmentIs( ip( "10.0.0.2" ) );
   EXPECT_FALSE( hadReactor );
   EXPECT_TRUE( sm->oxaEvpnTepSegmentHas( ip( "10.0.0.2" ) ) );
}

TEST_P( BothVariants, ATunnelInterfaceThatComesBackGetsAFreshReactor ) {
   leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan1" ) );
   auto const sm = leaf.machineNew( GetParam() );
   auto const first = sm->vtiStatus( intf( "Vxlan1" ) );
   EXPECT_TRUE( first->hasNotificationActive() );
   leaf.vtiStatusDir->vtiStatusDel( intf( "Vxlan1" ) );
   EXPECT_FALSE( sm->vtiStatusHas( intf( "Vxlan1" ) ) );
   EXPECT_TRUE( first->isZombie() );
   EXPECT_FALSE( first->hasNotificationActive() );
   leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan1" ) );
   EXPECT_NE( sm->vtiStatus( intf( "Vxlan1" ) ), first );
   EXPECT_TRUE( sm->vtiStatus( intf( "Vxlan1" ) )->hasNotificationActive() );
}

TEST_P( BothVariants, AReplacedMemberIsWatchedByTheSameReactor ) {
   leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan1" ) );
   auto const sm = leaf.machineNew( GetParam() );
   auto const reactor = sm->vtiStatus( intf( "Vxlan1" ) );
   auto const other = Quelm::make< Vxlan::VtiStatus >( intf( "Vxlan1" ) );
   leaf.vtiStatusDir->vtiStatusIs( other );
   EXPECT_EQ( sm->vtiStatus( intf( "Vxlan1" ) ), reactor );
   EXPECT_EQ( reactor->notifier(), other );
   EXPECT_EQ( other->publisher().subscribers(), 1U );
}

TEST_P( BothVariants, ATunnelInterfaceSeenWhileSwitchedOffIsNotListenedTo ) {
   auto const sm = leaf.machineNew( GetParam() );
   sm->hasNotificationActiveIs( false );
   sm->vtiStatusIs( Quelm::make< Vxlan::VtiStatus >( intf( "Vxlan1" ) ) );
   EXPECT_FALSE( sm->vtiStatus( intf( "Vxlan1" ) )->hasNotificationActive() );
   sm->hasNotificationActiveIs( true );
   EXPECT_TRUE( sm->vtiStatus( intf( "Vxlan1" ) )->hasNotificationActive() );
}

TEST_P( BothVariants, AnEmptyMemberIsRefused ) {
   auto const sm = leaf.machineNew( GetParam() );
   EXPECT_THROW( sm->vtiStatusIs( nullptr ), Quelm::NullArgumentError );
   EXPECT_THROW( sm->oxaEvpnTepSegmentIs( nullptr ), Quelm::NullArgumentError );
   EXPECT_THROW( sm->lagPhyIntfConfigIs( nullptr ), Quelm::NullArgumentError );
}

TEST_P( BothVariants, EveryReactorOfACollectionCanBeRetiredAtOnce ) {
   leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan1" ) );
   leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan2" ) );
   auto const sm = leaf.machineNew( GetParam() );
   leaf.forget();
   sm->vtiStatusDelAll();
   EXPECT_FALSE( sm->vtiStatusHas( intf( "Vxlan1" ) ) );
   EXPECT_FALSE( sm->vtiStatusHas( intf( "Vxlan2" ) ) );
   EXPECT_EQ( leaf
                 .tracesOf( "8 void Vornal::EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::"
                            "doCleanup(): Cleanup" )
                 .size(),
              2U );
}

// --- Records

TEST_P( BothVariants, KeepsOneRecordAUnit ) {
   auto const sm = leaf.machineNew( GetParam() );
   EXPECT_FALSE( sm->tepIpToEntry( 0U ) );
   auto const record = sm->tepIpToEntryIs( U16{ 0 } );
   EXPECT_EQ( sm->tepIpToEntryIs( U16{ 0 } ), record );
   EXPECT_EQ( sm->tepIpToEntry( 0U ), record );
   EXPECT_EQ( record->unit(), 0 );
   EXPECT_EQ( sm->tepIpToEntryDel( 0 ), record );
   EXPECT_FALSE( sm->tepIpToEntryDel( 0 ) );
}

// --- The clock

TEST_P( BothVariants, ReportedRoomLeadsToOneRetryAtTheNextTurn ) {
   auto const sm = leaf.machineNew( GetParam() );
   sm->tcamManager()->exhaustedIs( 0, true );
   EXPECT_FALSE( sm->kivClock().isArmed() );
   sm->tcamManager()->exhaustedIs( 0, false );
   EXPECT_TRUE( sm->kivClock().isArmed() );
   leaf.forget();
   EXPECT_TRUE( leaf.activity.clock()->fireOne() );
   EXPECT_EQ( leaf.traces, ( Lines{ "8 void Vornal::EvpnMultihomingLocalBiasSm::handleTime()" } ) );
   EXPECT_FALSE( leaf.activity.clock()->fireOne() );
}

TEST_P( BothVariants, OutOfServiceTheClockCallsNobody ) {
   auto const sm = leaf.machineNew( GetParam() );
   sm->handleTcamExhaustion();
   sm->kivDoZombieReactors( true );
   leaf.forget();
   EXPECT_TRUE( leaf.activity.clock()->fireOne() );
   EXPECT_TRUE( leaf.traces.empty() );
}

TEST_P( BothVariants, WithoutItsMachineTheClockCallsNobody ) {
   auto const sm = leaf.machineNew( GetParam() );
   EXPECT_EQ( sm->kivClock().evpnMultihomingLocalBiasSm(), sm.get() );
   sm->handleTcamExhaustion();
   sm->kivClock().ownerDel();
   leaf.forget();
   EXPECT_TRUE( leaf.activity.clock()->fireOne() );
   EXPECT_TRUE( leaf.traces.empty() );
}

TEST_P( BothVariants, APortChannelThatIsReplacedIsWatchedByTheSameReactor ) {
   leaf.memberIs( "Port-Channel3", "Ethernet3" );
   auto const sm = leaf.machineNew( GetParam() );
   auto const reactor = sm->lagPhyIntfConfig( intf( "Port-Channel3" ) );
   auto const other = Quelm::make< Lag::LagPhyIntfConfig >( intf( "Port-Channel3" ) );
   leaf.lagMapping->lagPhyIntfConfigIs( other );
   EXPECT_EQ( sm->lagPhyIntfConfig( intf( "Port-Channel3" ) ), reactor );
   EXPECT_EQ( reactor->notifier(), other );
}

TEST_P( BothVariants, SegmentsAndPortChannelsAreListenedToFromTheFirst ) {
   auto const sm = leaf.machineNew( GetParam() );
   sm->hasNotificationActiveIs( false );
   sm->oxaEvpnTepSegmentIs( Quelm::make< Oxa::EvpnTepSegment >( ip( "10.0.0.2" ) ) );
   sm->lagPhyIntfConfigIs( Quelm::make< Lag::LagPhyIntfConfig >( intf( "Port-Channel3" ) ) );
   EXPECT_TRUE( sm->oxaEvpnTepSegment( ip( "10.0.0.2" ) )->hasNotificationActive() );
   EXPECT_TRUE( sm->lagPhyIntfConfig( intf( "Port-Channel3" ) )->hasNotificationActive() );
}

// --- The ring

TEST_P( BothVariants, TheRingHoldsTheMarkedLinesOfEveryLevelAndNoOthersAlsoWithTheTextTraceOff ) {
   std::vector< std::byte > memory( Trace::Ring::sizeFor( 64 ) );
   Trace::Ring ring( memory );
   Trace::ringIs( &ring );
   Trace::levelsIs( "VornalEvpnSm", "" );
   shareEthernet1();
   auto const sm = leaf.machineNew( GetParam() );
   sm->getPortListsOnUpdate( 0, ip( "10.0.0.2" ), intf( "Ethernet9" ), true );
   leaf.vcsd->vornalIntfToPortCacheIs( intf( "Ethernet1" ), LocalBiasSwitch::port( 0, 7 ) );
   sm->getPortListsOnUpdate( 0, ip( "10.0.0.2" ), intf( "Ethernet1" ), true );
   sm->initializedIs( false );
   sm->handleVornalIntfToPort( intf( "Ethernet1" ) );
   Trace::ringIs( nullptr );
   Lines lines;
   for ( auto const & line : Trace::Ring::decode( memory ) ) {
      lines.push_back( std::to_string( line.level ) + " " + line.text );
   }
   EXPECT_EQ( lines, ( Lines{
                        "2 handleSegmentStatusTcam rules addition case",
                        "5 handleTepSegment tepIp: 10.0.0.2",
                        "5 getPortListsOnUpdate, unit: 0, tepIp: 10.0.0.2, intfId: Ethernet9",
                        "7 getPortListsOnUpdate, no update needed",
                        "5 getPortListsOnUpdate, unit: 0, tepIp: 10.0.0.2, intfId: Ethernet1",
                        "7 getPortListsOnUpdate, lport change for intf Ethernet1",
                        "2 handleVornalIntfToPort, SM not initialized yet",
                     } ) );
}

// --- The end

TEST_P( BothVariants, ANestedReactorThatOutlivesItsMachineHasForgottenIt ) {
   shareEthernet1();
   auto sm = leaf.machineNew( GetParam() );
   auto const reactor = sm->oxaEvpnTepSegment( ip( "10.0.0.2" ) );
   sm = nullptr;
   EXPECT_FALSE( reactor->evpnMultihomingLocalBiasSm() );
   EXPECT_DEATH( reactor->handleSegmentSet( intf( "Ethernet1" ) ),
                 "Assertion 'evpnMultihomingLocalBiasSm\\(\\)' failed" );
}

TEST_P( BothVariants, AHeldReactorOfAMachineThatEndedSwitchedOffHearsNothing ) {
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

TEST( ClassIdVariant, ItsReactorsAreOutOfServiceBeforeItLetsGoOfTheEgressGroup ) {
   LocalBiasSwitch leaf;
   Quelm::Ptr< Vornal::EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus > reactor;
   Lines story;
   auto const noteRelease = [ & ] {
      story.push_back( reactor->hasNotificationActive() ? "released, listening" : "released" );
      story.push_back( reactor->isZombie() ? "out of service" : "in service" );
   };
   leaf.egress = Quelm::make< Support::Observed< Chip::SoftTcamEntryManager > >(
      Support::Listener{ .onRelease = noteRelease }, Vornal::kEfpLocalBiasGroup, leaf.board.units(),
      &leaf.callObserver() );
   leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan1" ) );
   auto sm = leaf.machineNew( Variant::I2EClassId );
   reactor = sm->vtiStatus( intf( "Vxlan1" ) );
   leaf.egress = nullptr;
   EXPECT_TRUE( story.empty() );
   sm = nullptr;
   EXPECT_EQ( story, ( Lines{ "released", "out of service" } ) );
}

TEST( ClassIdVariant, WithoutAnyInputItIsEmpty ) {
   LocalBiasSwitch leaf;
   auto const sm =
      Vornal::evpnMultihomingLocalBiasWithI2EClassIdSmFactory( nullptr, nullptr, nullptr, nullptr,
                                                               nullptr, nullptr, nullptr, nullptr,
                                                               nullptr, nullptr, nullptr, nullptr );
   EXPECT_TRUE( sm->initialized() );
   EXPECT_FALSE( sm->unitUsesOrNeedsTcams( 0 ) );
   sm->handleRemoteVport( Support::vtep( "10.0.0.2" ) );
   sm->handleVerify();
}

TEST_P( BothVariants, DestroyedItLeavesEveryRuleAndNoSubscription ) {
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

}  // namespace
