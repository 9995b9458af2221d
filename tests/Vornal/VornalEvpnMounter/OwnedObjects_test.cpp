// The creators and removers of the four objects that the mounter owns: the same arguments keep the
// object, any other replaces it.
#include <gtest/gtest.h>

#include "../support/Leaf.h"
#include "../support/Observed.h"

namespace OwnedObjectsTest {

using namespace Support;
using Quelm::make;

// A mounter that has not been told to start; nothing is ready.
class OwnedObjects : public testing::Test {
 protected:
   Leaf leaf;
   Vornal::VornalEvpnMounter & mounter = *leaf.mounter;
};

// What every creator promises about the object that `second` built in place of `first`.
template< typename T >
void expectReplaced( Quelm::Ptr< T > const & first, Quelm::Ptr< T > const & second,
                     Quelm::Ptr< T > const & held ) {
   EXPECT_NE( first, second );
   EXPECT_EQ( held, second );
   EXPECT_TRUE( second->hasNotificationActive() );
   EXPECT_EQ( first->users(), 1U ) << "nobody but the test uses it any more";
}

TEST_F( OwnedObjects, LagMappingStaysForTheSameNameAndIsReplacedForAnother ) {
   auto const first = mounter.lagPhyIntfMappingIs( "lagToMemberInterfacesMap" );
   EXPECT_EQ( first->name(), "lagToMemberInterfacesMap" );
   EXPECT_EQ( mounter.lagPhyIntfMapping(), first );
   EXPECT_TRUE( first->hasNotificationActive() );
   EXPECT_EQ( mounter.lagPhyIntfMappingIs( std::string( "lagToMemberInterfaces" ) + "Map" ),
              first );

   auto const second = mounter.lagPhyIntfMappingIs( "another" );
   expectReplaced( first, second, mounter.lagPhyIntfMapping() );
}

TEST_F( OwnedObjects, LagMappingIsLetGoOfAsItIs ) {
   auto const mapping = mounter.lagPhyIntfMappingIs( "lagToMemberInterfacesMap" );
   EXPECT_EQ( mounter.lagPhyIntfMappingDel(), mapping );
   EXPECT_FALSE( mounter.lagPhyIntfMapping() );
   EXPECT_TRUE( mapping->hasNotificationActive() );
   EXPECT_EQ( mapping->users(), 1U );
}

TEST_F( OwnedObjects, LagMappingSmIsReplacedWhenOneOfItsTwoArgumentsIsAnother ) {
   auto const config = leaf.at< Lag::Config >( lagConfigPath );
   auto const mapping = make< Lag::LagPhyIntfMapping >( "mapping" );
   auto const first = mounter.lagPhyIntfMappingSmIs( config, mapping );
   EXPECT_EQ( first->lagConfig(), config );
   EXPECT_EQ( first->lagPhyIntfMapping(), mapping );
   EXPECT_TRUE( first->hasNotificationActive() );
   EXPECT_EQ( mounter.lagPhyIntfMappingSmIs( config, mapping ), first );

   auto const second = mounter.lagPhyIntfMappingSmIs( make< Lag::Config >( "another" ), mapping );
   expectReplaced( first, second, mounter.lagPhyIntfMappingSm() );
   auto const third = mounter.lagPhyIntfMappingSmIs( second->lagConfig(),
                                                     make< Lag::LagPhyIntfMapping >( "mapping" ) );
   expectReplaced( second, third, mounter.lagPhyIntfMappingSm() );
}

TEST_F( OwnedObjects, TepSegmentSmIsReplacedWhenOneOfItsFourArgumentsIsAnother ) {
   auto status = leaf.at< Evpn::EvpnStatus >( evpnStatusPath );
   auto dir = Oxa::evpnTepSegmentDirFactory( "dir" );
   auto capabilities = leaf.at< Bridging::HwCapabilities >( hwCapabilitiesPath );
   auto mapping = make< Lag::LagPhyIntfMapping >( "mapping" );
   auto const build = [ & ] {
      return mounter.evpnTepSegmentSmIs( status, dir, capabilities, mapping );
   };

   auto first = build();
   EXPECT_EQ( first->evpnStatus(), status );
   EXPECT_EQ( first->tepSegmentDir(), dir );
   EXPECT_EQ( first->bridgingHwCapabilities(), capabilities );
   EXPECT_EQ( first->lagPhyIntfMapping(), mapping );
   EXPECT_TRUE( first->hasNotificationActive() );
   EXPECT_EQ( build(), first );

   auto const expectAnother = [ & ] {
      auto const next = build();
      expectReplaced( first, next, mounter.evpnTepSegmentSm() );
      EXPECT_EQ( build(), next );
      first = next;
   };
   status = make< Evpn::EvpnStatus >( "another" );
   expectAnother();
   dir = Oxa::evpnTepSegmentDirFactory( "dir" );
   expectAnother();
   capabilities = nullptr;
   expectAnother();
   mapping = make< Lag::LagPhyIntfMapping >( "mapping" );
   expectAnother();
}

TEST_F( OwnedObjects, WaiterIsReplacedWhenOneOfItsTwoArgumentsIsAnother ) {
   auto const first = mounter.evpnDependencyWaiterIs( &mounter, leaf.common() );
   EXPECT_EQ( first->evpnMounter(), &mounter );
   EXPECT_EQ( first->vcsd(), leaf.common() );
   EXPECT_TRUE( first->hasNotificationActive() );
   EXPECT_EQ( mounter.evpnDependencyWaiterIs( &mounter, leaf.common() ), first );

   auto const otherMounter = leaf.mounterNew();
   auto const second = mounter.evpnDependencyWaiterIs( otherMounter.get(), leaf.common() );
   expectReplaced( first, second, mounter.evpnDependencyWaiter() );
   auto const third = mounter.evpnDependencyWaiterIs( otherMounter.get(), nullptr );
   expectReplaced( second, third, mounter.evpnDependencyWaiter() );
}

// Whenever the mounter takes a new object in, it says which, and whether it is switched on by then.
TEST_F( OwnedObjects, ReplaceTheHeldOneBeforeTheyAreSwitchedOn ) {
   Journal taken;
   Kiv::Watch< Vornal::VornalEvpnMounter > watch( leaf.mounter, [ & ](
                                                                   Kiv::Change const & change ) {
      auto const & attribute = change.entity().typeData().attribute( change.attribute() );
      auto const held = attribute.entity( change.entity(), "" );
      taken.push_back( attribute.name() + ( held->hasNotificationActive() ? " on" : " off" ) );
   } );
   watch.hasNotificationActiveIs( true );
   for ( int round = 0; round < 2; ++round ) {
      taken.clear();
      auto const mapping = mounter.lagPhyIntfMappingIs( "mapping" + std::to_string( round ) );
      auto const lagSm = mounter.lagPhyIntfMappingSmIs( nullptr, mapping );
      auto const tepSm = mounter.evpnTepSegmentSmIs( nullptr, nullptr, nullptr, mapping );
      auto const waiter =
         mounter.evpnDependencyWaiterIs( &mounter, round == 0 ? leaf.common() : nullptr );
      EXPECT_EQ( taken, ( Journal{ "lagPhyIntfMapping off", "lagPhyIntfMappingSm off",
                                   "evpnTepSegmentSm off", "evpnDependencyWaiter off" } ) );
      for ( Quelm::Ptr< Kiv::Entity > const & built :
            std::vector< Quelm::Ptr< Kiv::Entity > >{ mapping, lagSm, tepSm, waiter } ) {
         EXPECT_TRUE( built->hasNotificationActive() );
      }
   }
}

TEST_F( OwnedObjects, ReactiveObjectsAreSwitchedOffAndHandedBack ) {
   auto const waiter = mounter.evpnDependencyWaiterIs( &mounter, leaf.common() );
   auto const lagSm =
      mounter.lagPhyIntfMappingSmIs( leaf.at< Lag::Config >( lagConfigPath ), nullptr );
   auto const tepSm = mounter.evpnTepSegmentSmIs( leaf.at< Evpn::EvpnStatus >( evpnStatusPath ),
                                                  nullptr, nullptr, nullptr );

   EXPECT_EQ( mounter.evpnDependencyWaiterDel(), waiter );
   EXPECT_FALSE( mounter.evpnDependencyWaiter() );
   EXPECT_FALSE( waiter->hasNotificationActive() );

   EXPECT_EQ( mounter.lagPhyIntfMappingSmDel(), lagSm );
   EXPECT_FALSE( mounter.lagPhyIntfMappingSm() );
   EXPECT_FALSE( lagSm->hasNotificationActive() );

   EXPECT_EQ( mounter.evpnTepSegmentSmDel(), tepSm );
   EXPECT_FALSE( mounter.evpnTepSegmentSm() );
   EXPECT_FALSE( tepSm->hasNotificationActive() );
}

TEST_F( OwnedObjects, AreStillHeldWhileTheyAreSwitchedOff ) {
   bool isHeld = false;
   auto const status = make< Observed< Evpn::EvpnStatus > >(
      Listener{ .onSubscription = [ & ] { isHeld = bool( mounter.evpnTepSegmentSm() ); },
                .onRelease = [] {} },
      "evpn/status" );
   auto const sm = mounter.evpnTepSegmentSmIs( status, nullptr, nullptr, nullptr );
   isHeld = false;
   mounter.evpnTepSegmentSmDel();
   EXPECT_TRUE( isHeld );
}

TEST_F( OwnedObjects, RemovingWhatIsNotThereGivesAnEmptyReference ) {
   EXPECT_FALSE( mounter.evpnDependencyWaiterDel() );
   EXPECT_FALSE( mounter.evpnTepSegmentSmDel() );
   EXPECT_FALSE( mounter.lagPhyIntfMappingDel() );
   EXPECT_FALSE( mounter.lagPhyIntfMappingSmDel() );
}

TEST_F( OwnedObjects, CanBeBuiltAgainAfterTheirRemoval ) {
   auto const first = mounter.lagPhyIntfMappingIs( "lagToMemberInterfacesMap" );
   mounter.lagPhyIntfMappingDel();
   EXPECT_NE( mounter.lagPhyIntfMappingIs( "lagToMemberInterfacesMap" ), first );
}

}  // namespace OwnedObjectsTest
