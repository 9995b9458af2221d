// Every watched input subscribed, replaced, emptied and destroyed in every order, while a machine
// lives and after it has gone. Meant for the address sanitizer: no leak, no stale call.

#include <gtest/gtest.h>

#include <functional>

#include "../support/LocalBiasSwitch.h"
#include "../support/Variants.h"

namespace {

using Support::intf;
using Support::ip;
using Support::LocalBiasSwitch;
using Support::Machine;
using Support::Variant;

// What is done to the inputs, one thing after the other, in some order. The machine may have gone.
using Deed = std::function< void( LocalBiasSwitch &, Machine const & ) >;

std::vector< Deed > const membersGo{
   []( LocalBiasSwitch & leaf, Machine const & ) { leaf.interfaceDel( "Ethernet1" ); },
   []( LocalBiasSwitch & leaf, Machine const & ) { leaf.vtepDel( "10.0.0.2" ); },
   []( LocalBiasSwitch & leaf, Machine const & ) { leaf.segmentDel( "Port-Channel2" ); },
   []( LocalBiasSwitch & leaf, Machine const & ) {
      leaf.vtiStatusDir->vtiStatusIs( Quelm::make< Vxlan::VtiStatus >( intf( "Vxlan1" ) ) );
   },
   []( LocalBiasSwitch & leaf, Machine const & ) { leaf.vtiStatusDir->vtiStatusDelAll(); },
   []( LocalBiasSwitch & leaf, Machine const & ) { leaf.memberDel( "Ethernet1" ); },
};

std::vector< Deed > const membersChange{
   []( LocalBiasSwitch & leaf, Machine const & ) {
      auto const manager = leaf.board.entryManager( Vornal::kIfpLocalBiasGroup );
      manager->exhaustedIs( 0, true );
      manager->exhaustedIs( 0, false );
      leaf.activity.clock()->fireOne();
   },
   []( LocalBiasSwitch & leaf, Machine const & ) {
      leaf.classIdStatus->remoteESPeerVtepDel( ip( "10.0.0.2" ) );
   },
   []( LocalBiasSwitch &, Machine const & sm ) {
      if ( sm ) {
         sm->hasNotificationActiveIs( false );
         sm->hasNotificationActiveIs( true );
      }
   },
   []( LocalBiasSwitch & leaf, Machine const & ) {
      auto const other = Quelm::make< Lag::LagPhyIntfConfig >( intf( "Port-Channel2" ) );
      other->phyIntfIs( intf( "Ethernet1" ) );
      other->phyIntfIs( intf( "Ethernet2" ) );
      leaf.lagMapping->lagPhyIntfConfigIs( other );
   },
   []( LocalBiasSwitch & leaf, Machine const & ) {
      leaf.memberDel( "Ethernet1" );
      leaf.memberDel( "Ethernet2" );
   },
   []( LocalBiasSwitch & leaf, Machine const & ) { leaf.vtepIs( "10.0.0.2", 0x10009 ); },
};

void publish( LocalBiasSwitch & leaf ) {
   leaf.interfaceIs( "Ethernet1", 0, 1 );
   leaf.interfaceIs( "Ethernet2", 0, 2 );
   leaf.memberIs( "Port-Channel2", "Ethernet1" );
   leaf.memberIs( "Port-Channel2", "Ethernet2" );
   leaf.segmentIs( "Port-Channel2", { "10.0.0.2" } );
   leaf.vtepIs( "10.0.0.2", 0x10002 );
   leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan1" ) )
      ->vrfToVniMapIs( L3::VrfName( "red" ), Vxlan::VniExtOrNone( 50001 ) );
}

class InputsComeAndGo : public testing::TestWithParam< Variant > {};

INSTANTIATE_TEST_SUITE_P( Lifecycle, InputsComeAndGo, Support::bothVariants,
                          Support::nameOfVariant );

// Does the deeds in `order`; the machine ends before the deed number `end`, or after all of them.
void play( Variant variant, std::vector< Deed > const & deeds,
           std::vector< std::size_t > const & order, std::size_t end ) {
   LocalBiasSwitch leaf;
   publish( leaf );
   auto sm = leaf.machineNew( variant );
   leaf.classIdIs( "10.0.0.2", 5 );
   for ( std::size_t step = 0; step < order.size(); ++step ) {
      if ( step == end ) {
         sm = nullptr;
         leaf.forget();
      }
      deeds[ order[ step ] ]( leaf, sm );
   }
   if ( !sm ) {
      ASSERT_TRUE( leaf.traces.empty() ) << leaf.traces.front();
      ASSERT_TRUE( leaf.calls.empty() );
   }
}

void playInEveryOrder( Variant variant, std::vector< Deed > const & deeds ) {
   std::vector< std::size_t > order{ 0, 1, 2, 3, 4, 5 };
   do {
      for ( std::size_t end = 0; end <= deeds.size(); ++end ) {
         play( variant, deeds, order, end );
      }
   } while ( std::next_permutation( order.begin(), order.end() ) );
}

TEST_P( InputsComeAndGo, MembersGoInEveryOrderAndTheMachineEndsAtEveryPoint ) {
   playInEveryOrder( GetParam(), membersGo );
}

TEST_P( InputsComeAndGo, MembersChangeInEveryOrderAndTheMachineEndsAtEveryPoint ) {
   playInEveryOrder( GetParam(), membersChange );
}

TEST_P( InputsComeAndGo, InputsMayGoBeforeTheMachine ) {
   LocalBiasSwitch leaf;
   publish( leaf );
   auto sm = leaf.machineNew( GetParam() );
   leaf.segmentSm = nullptr;
   leaf.lagSm = nullptr;
   leaf.evpnStatus = nullptr;
   leaf.dir = nullptr;
   leaf.vtiStatusDir = nullptr;
   leaf.lagMapping = nullptr;
   leaf.lagConfig = nullptr;
   leaf.vpIndexStatus = nullptr;
   leaf.classIdConfig = nullptr;
   leaf.classIdStatus = nullptr;
   EXPECT_TRUE( sm->oxaEvpnTepSegmentDir()->tepSegmentHas( ip( "10.0.0.2" ) ) );
   leaf.interfaceIs( "Ethernet1", 0, 9 );
   EXPECT_TRUE( leaf.hasTraced( "5 handleVornalIntfToPort, intfId: Ethernet1" ) );
   sm = nullptr;
}

TEST_P( InputsComeAndGo, AMachineCanFollowAnotherOnTheSameInputs ) {
   LocalBiasSwitch leaf;
   publish( leaf );
   auto first = leaf.machineNew( GetParam() );
   first = nullptr;
   auto const second = leaf.machineNew( GetParam() );
   EXPECT_TRUE( second->initialized() );
   EXPECT_EQ( leaf.vcsd->publisher().subscribers(), 1U );
}

}  // namespace
