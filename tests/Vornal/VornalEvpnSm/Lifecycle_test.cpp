// The frame of the state machine: how it starts, which handler each input calls, what switching it
// off or putting it out of service does to its reactors.

#include <gtest/gtest.h>

#include <Trace/Ring.h>

#include "../support/LocalBiasSwitch.h"
#include "../support/Variants.h"

namespace {

using namespace Support;

class Lifecycle : public EitherVariant {};
INSTANTIATE_TEST_SUITE_P( Frame, Lifecycle, bothVariants, nameOfVariant );

TEST_P( Lifecycle, StartsWithTheSegmentStatusAndEndsInitialised ) {
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

TEST_P( Lifecycle, IsWhatItsFactorySays ) {
   auto const sm = leaf.machineNew( GetParam() );
   EXPECT_EQ( sm->typeData().name(), GetParam() == Variant::EgressMask
                                        ? "Vornal::EvpnMultihomingLocalBiasWithEgressMaskSm"
                                        : "Vornal::EvpnMultihomingLocalBiasWithI2EClassIdSm" );
}

TEST_P( Lifecycle, EachInputCallsItsHandler ) {
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

TEST( ClassIdVariant, WithoutAnyInputItIsEmpty ) {
   LocalBiasSwitch leaf;
   auto const sm =
      Vornal::evpnMultihomingLocalBiasWithI2EClassIdSmFactory( nullptr, nullptr, nullptr, nullptr,
                                                               nullptr, nullptr, nullptr, nullptr,
                                                               nullptr, nullptr, nullptr, nullptr );
   EXPECT_TRUE( sm->initialized() );
   EXPECT_FALSE( sm->unitUsesOrNeedsTcams( 0 ) );
   sm->handleRemoteVport( vtep( "10.0.0.2" ) );
   sm->handleVerify();
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

TEST_P( Lifecycle, SubscribesOnceHoweverOftenItIsSwitchedOn ) {
   auto const sm = leaf.machineNew( GetParam() );
   auto const subscribed = subscribersOf( leaf, sm );
   std::size_t const grants = GetParam() == Variant::I2EClassId ? 1 : 0;
   // The segment directory's derivation is subscribed to the segment status as well.
   EXPECT_EQ( subscribed, ( std::vector< std::size_t >{ 1, 1, 1, 2, 1, 1, 1, grants } ) );
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( subscribersOf( leaf, sm ), subscribed );
}

TEST_P( Lifecycle, SwitchedOnAgainItDoesNotTouchItsNestedReactors ) {
   leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan1" ) );
   auto const sm = leaf.machineNew( GetParam() );
   auto const reactor = sm->vtiStatus( intf( "Vxlan1" ) );
   reactor->hasNotificationActiveIs( false );
   sm->hasNotificationActiveIs( true );
   EXPECT_FALSE( reactor->hasNotificationActive() );
}

TEST_P( Lifecycle, SwitchedOffItHearsNothing ) {
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

TEST_P( Lifecycle, OutOfServiceItKeepsItsReactorsButHandlesNoSegment ) {
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

TEST_P( Lifecycle, OutOfServiceIsPassedOnToEveryNestedReactor ) {
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

TEST_P( Lifecycle, ASegmentChangeIsHandledBeforeItsReactorComes ) {
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

TEST_P( Lifecycle, ATunnelInterfaceThatComesBackGetsAFreshReactor ) {
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

TEST_P( Lifecycle, AReplacedMemberIsWatchedByTheSameReactor ) {
   leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan1" ) );
   auto const sm = leaf.machineNew( GetParam() );
   auto const reactor = sm->vtiStatus( intf( "Vxlan1" ) );
   auto const other = Quelm::make< Vxlan::VtiStatus >( intf( "Vxlan1" ) );
   leaf.vtiStatusDir->vtiStatusIs( other );
   EXPECT_EQ( sm->vtiStatus( intf( "Vxlan1" ) ), reactor );
   EXPECT_EQ( reactor->notifier(), other );
   EXPECT_EQ( other->publisher().subscribers(), 1U );
}

TEST_P( Lifecycle, ATunnelInterfaceSeenWhileSwitchedOffIsNotListenedTo ) {
   auto const sm = leaf.machineNew( GetParam() );
   sm->hasNotificationActiveIs( false );
   sm->vtiStatusIs( Quelm::make< Vxlan::VtiStatus >( intf( "Vxlan1" ) ) );
   EXPECT_FALSE( sm->vtiStatus( intf( "Vxlan1" ) )->hasNotificationActive() );
   sm->hasNotificationActiveIs( true );
   EXPECT_TRUE( sm->vtiStatus( intf( "Vxlan1" ) )->hasNotificationActive() );
}

TEST_P( Lifecycle, AnEmptyMemberIsRefused ) {
   auto const sm = leaf.machineNew( GetParam() );
   EXPECT_THROW( sm->vtiStatusIs( nullptr ), Quelm::NullArgumentError );
   EXPECT_THROW( sm->oxaEvpnTepSegmentIs( nullptr ), Quelm::NullArgumentError );
   EXPECT_THROW( sm->lagPhyIntfConfigIs( nullptr ), Quelm::NullArgumentError );
}

TEST_P( Lifecycle, EveryReactorOfACollectionCanBeRetiredAtOnce ) {
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

TEST_P( Lifecycle, KeepsOneRecordAUnit ) {
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

TEST_P( Lifecycle, ReportedRoomLeadsToOneRetryAtTheNextTurn ) {
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

TEST_P( Lifecycle, OutOfServiceTheClockCallsNobody ) {
   auto const sm = leaf.machineNew( GetParam() );
   sm->handleTcamExhaustion();
   sm->kivDoZombieReactors( true );
   leaf.forget();
   EXPECT_TRUE( leaf.activity.clock()->fireOne() );
   EXPECT_TRUE( leaf.traces.empty() );
}

TEST_P( Lifecycle, WithoutItsMachineTheClockCallsNobody ) {
   auto const sm = leaf.machineNew( GetParam() );
   EXPECT_EQ( sm->kivClock().evpnMultihomingLocalBiasSm(), sm.get() );
   sm->handleTcamExhaustion();
   sm->kivClock().ownerDel();
   leaf.forget();
   EXPECT_TRUE( leaf.activity.clock()->fireOne() );
   EXPECT_TRUE( leaf.traces.empty() );
}

TEST_P( Lifecycle, APortChannelThatIsReplacedIsWatchedByTheSameReactor ) {
   leaf.memberIs( "Port-Channel3", "Ethernet3" );
   auto const sm = leaf.machineNew( GetParam() );
   auto const reactor = sm->lagPhyIntfConfig( intf( "Port-Channel3" ) );
   auto const other = Quelm::make< Lag::LagPhyIntfConfig >( intf( "Port-Channel3" ) );
   leaf.lagMapping->lagPhyIntfConfigIs( other );
   EXPECT_EQ( sm->lagPhyIntfConfig( intf( "Port-Channel3" ) ), reactor );
   EXPECT_EQ( reactor->notifier(), other );
}

TEST_P( Lifecycle, SegmentsAndPortChannelsAreListenedToFromTheFirst ) {
   auto const sm = leaf.machineNew( GetParam() );
   sm->hasNotificationActiveIs( false );
   sm->oxaEvpnTepSegmentIs( Quelm::make< Oxa::EvpnTepSegment >( ip( "10.0.0.2" ) ) );
   sm->lagPhyIntfConfigIs( Quelm::make< Lag::LagPhyIntfConfig >( intf( "Port-Channel3" ) ) );
   EXPECT_TRUE( sm->oxaEvpnTepSegment( ip( "10.0.0.2" ) )->hasNotificationActive() );
   EXPECT_TRUE( sm->lagPhyIntfConfig( intf( "Port-Channel3" ) )->hasNotificationActive() );
}

// --- The ring

TEST_P( Lifecycle, TheRingHoldsTheMarkedLinesOfEveryLevelAndNoOthersAlsoWithTheTextTraceOff ) {
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

}  // namespace
