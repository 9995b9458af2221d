// The end of a mounter: in which order it lets go of what it holds, and that no rule goes with it.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "../support/Leaf.h"
#include "../support/Observed.h"

namespace TeardownTest {

using namespace Support;

// leaf1 with entities that the database and the agent give up, so that the plug-in is the last user
// of each. Everything that happens to them is in `diary`.
class Teardown : public testing::Test {
 protected:
   Teardown() {
      published< Evpn::EvpnStatus >( evpnStatusPath );
      published< VornalCentral::VpIndexStatus >( vpIndexStatusPath );
      published< VornalCentral::VxlanCapabilities >( vxlanCapabilitiesPath );
      published< VornalCentral::I2EClassIdIndexConfig >( classIdConfigPath );
      published< VornalCentral::I2EClassIdIndexStatus >( classIdStatusPath );
      published< Vxlan::VtiStatusDir >( vtiStatusPath );
      published< Lag::Config >( lagConfigPath );
      published< Bridging::HwCapabilities >( hwCapabilitiesPath );
      auto const common = observed< Vornal::VornalCommonSmData >( "vornalCommon" );
      common->sliceDependencyPointsIs( leaf.points() );
      leaf.share( "vornalCommon", common );
   }

   template< typename T > Quelm::Ptr< Observed< T > > observed( std::string const & name ) {
      return Quelm::make< Observed< T > >(
         Listener{ .onSubscription = [ this, name ] { noteSubscription( name ); },
                   .onRelease = [ this, name ] { diary.push_back( "released " + name ); } },
         name );
   }
   template< typename T > void published( std::string const & path ) {
      leaf.publish( path, observed< T >( path ) );
   }

   // The first time that a subscription is given up on one of the three entities that the mounter's
   // own reactive objects watch: what the mounter still owns at that moment.
   void noteSubscription( std::string const & name ) {
      std::string const line = "switched off on " + name + ", mounter holds";
      bool const isWatchedByOwned =
         name == "vornalCommon" || name == evpnStatusPath || name == lagConfigPath;
      if ( !isWatchedByOwned || hasLine( line ) || !mounter || !mounter->isBeingDestroyed() ) {
         return;
      }
      diary.push_back( line + ( mounter->evpnDependencyWaiter() ? " waiter" : "" ) +
                       ( mounter->evpnTepSegmentSm() ? " tepSm" : "" ) +
                       ( mounter->lagPhyIntfMapping() ? " lagMapping" : "" ) +
                       ( mounter->lagPhyIntfMappingSm() ? " lagSm" : "" ) );
   }
   bool hasLine( std::string const & start ) const {
      return std::any_of( diary.begin(), diary.end(),
                          [ & ]( std::string const & line ) { return line.starts_with( start ); } );
   }
   std::ptrdiff_t position( std::string const & line ) const {
      return std::find( diary.begin(), diary.end(), line ) - diary.begin();
   }

   void destroyMounter() {
      mounter = leaf.mounter.get();
      leaf.withdrawAll();
      diary.clear();
      leaf.mounter = nullptr;
      mounter = nullptr;
   }

   Journal diary;
   Vornal::VornalEvpnMounter const * mounter = nullptr;
   Leaf leaf;
};

TEST_F( Teardown, OfAMounterThatWaitsReleasesWhatTheMountsGaveInReverseOrder ) {
   leaf.mountsComplete();
   destroyMounter();
   EXPECT_EQ( diary,
              ( Journal{ "switched off on vornalCommon, mounter holds waiter",
                         "released vornalCommon", "released " + hwCapabilitiesPath,
                         "released " + lagConfigPath, "released " + classIdStatusPath,
                         "released " + classIdConfigPath, "released " + vxlanCapabilitiesPath,
                         "released " + vpIndexStatusPath, "released " + vtiStatusPath,
                         "released " + evpnStatusPath } ) );
}

TEST_F( Teardown, OfAMounterThatWasNeverToldToStartReleasesNothing ) {
   destroyMounter();
   EXPECT_EQ( diary, Journal{} );
}

TEST_F( Teardown, RemovesWaiterThenTepSegmentSmThenLagMappingThenItsSm ) {
   leaf.mountsComplete();
   leaf.mounter->finishInit();
   destroyMounter();
   auto const firstRelease =
      std::find_if( diary.begin(), diary.end(),
                    []( std::string const & line ) { return line.starts_with( "released" ); } );
   Journal const removals( diary.begin(), firstRelease );
   EXPECT_EQ( removals,
              ( Journal{
                 "switched off on vornalCommon, mounter holds waiter tepSm lagMapping lagSm",
                 "switched off on evpn/status, mounter holds tepSm lagMapping lagSm",
                 "switched off on lag/config, mounter holds lagSm" } ) );
}

TEST_F( Teardown, ReleasesTheStateMachineBetweenVpIndicesAndTheSegmentDirectory ) {
   leaf.mountsComplete();
   leaf.mounter->finishInit();
   auto const dir = leaf.mounter->oxaEvpnTepSegmentDir();
   destroyMounter();
   // The state machine is the last user of the first three; what stands before and after it in the
   // mounter is released before and after them.
   for ( std::string const & name :
         { std::string( "vornalCommon" ), vpIndexStatusPath, lagConfigPath } ) {
      EXPECT_GT( position( "released " + name ), position( "released " + vxlanCapabilitiesPath ) );
      EXPECT_LT( position( "released " + name ), position( "released " + vtiStatusPath ) );
   }
   EXPECT_LT( position( "released " + hwCapabilitiesPath ),
              position( "released " + classIdStatusPath ) );
   EXPECT_LT( position( "released " + classIdStatusPath ),
              position( "released " + classIdConfigPath ) );
   EXPECT_LT( position( "released " + classIdConfigPath ),
              position( "released " + vxlanCapabilitiesPath ) );
   EXPECT_LT( position( "released " + vtiStatusPath ), position( "released " + evpnStatusPath ) );
   EXPECT_LT( position( "released " + evpnStatusPath ),
              static_cast< std::ptrdiff_t >( diary.size() ) );
   EXPECT_EQ( dir->users(), 1U );
}

TEST_F( Teardown, LeavesEveryRuleInTheHardware ) {
   leaf.shareSegmentWithVtep();
   leaf.mountsComplete();
   leaf.mounter->finishInit();
   leaf.journal.clear();
   leaf.sdk.calls.clear();
   destroyMounter();
   EXPECT_EQ( leaf.journal, Journal{} );
   EXPECT_EQ( leaf.sdk.calls, Journal{} );
}

TEST_F( Teardown, WithdrawsNothingThatWasDerived ) {
   leaf.shareSegmentWithVtep();
   leaf.mountsComplete();
   leaf.mounter->finishInit();
   auto const dir = leaf.mounter->oxaEvpnTepSegmentDir();
   ASSERT_EQ( dir->tepSegments(), 1U );
   destroyMounter();
   EXPECT_EQ( dir->tepSegments(), 1U );
}

}  // namespace TeardownTest
