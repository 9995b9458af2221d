// From doInit() to doMountsComplete(): what the mounter asks the state database for, in which
// order, and what it keeps of the answers.
#include <gtest/gtest.h>

#include <string>

#include "../support/Leaf.h"

namespace MountingTest {

using namespace Support;

Journal const lookUps = {
   "entity evpn/status",
   "shared vornalCommon",
   "entity hardware/vornal/vp/status/vornalL3",
   "entity hardware/vornal/centralStatus/vxlanCapabilities",
   "entity hardware/vornal/i2eclassid/config/slice/3",
   "entity hardware/vornal/i2eclassid/status/slice/3",
   "entity interface/status/eth/vxlan",
   "entity lag/config",
   "entity bridging/hwcapabilities",
};

class Mounting : public testing::Test {
 protected:
   // The mounter's reference of that name, as text.
   std::string held( std::string const & attribute ) const {
      return leaf.mounter->typeData().find( attribute )->text( *leaf.mounter, "" );
   }

   Leaf leaf;
};

// The agent tells the mounter only of a group that is closed with an empty name.
TEST_F( Mounting, MountsSevenPathsInOneGroupAndTakesTheEntitiesWhenItIsDone ) {
   leaf.mounter->doInit();
   EXPECT_EQ( leaf.journal,
              ( Journal{
                 "mount evpn/status Evpn::EvpnStatus r",
                 "mount hardware/vornal/vp/status/vornalL3 VornalCentral::VpIndexStatus r",
                 "mount hardware/vornal/i2eclassid/config/slice/3 "
                 "VornalCentral::I2EClassIdIndexConfig wc",
                 "mount hardware/vornal/i2eclassid/status/slice/3 "
                 "VornalCentral::I2EClassIdIndexStatus rc",
                 "mount interface/status/eth/vxlan Vxlan::VtiStatusDir r",
                 "mount lag/config Lag::Config r",
                 "mount bridging/hwcapabilities Bridging::HwCapabilities r",
              } ) );
   leaf.journal.clear();
   leaf.run();
   Journal done = { "mounts complete" };
   done.insert( done.end(), lookUps.begin(), lookUps.end() );
   EXPECT_EQ( leaf.journal, done );
}

TEST_F( Mounting, PutsTheSliceIdentifierIntoTheClassIdPathsAsItIs ) {
   leaf.mounter->sliceIdIs( "Linecard4/1" );
   leaf.mounter->doInit();
   EXPECT_EQ( leaf.journal[ 2 ],
              "mount hardware/vornal/i2eclassid/config/slice/Linecard4/1 "
              "VornalCentral::I2EClassIdIndexConfig wc" );
   EXPECT_EQ( leaf.journal[ 3 ],
              "mount hardware/vornal/i2eclassid/status/slice/Linecard4/1 "
              "VornalCentral::I2EClassIdIndexStatus rc" );
}

TEST_F( Mounting, AsksForNineEntitiesInOrder ) {
   leaf.mountsComplete();
   EXPECT_EQ( leaf.journal, lookUps );
}

TEST_F( Mounting, KeepsEachEntityInItsAttribute ) {
   leaf.mountsComplete();
   EXPECT_EQ( held( "evpnStatus" ), "Evpn::EvpnStatus evpn/status" );
   EXPECT_EQ( held( "vcsd" ), "Vornal::VornalCommonSmData vornalCommon" );
   EXPECT_EQ( held( "svpShimStatus" ),
              "VornalCentral::VpIndexStatus hardware/vornal/vp/status/vornalL3" );
   EXPECT_EQ( held( "vxlanCapabilities" ),
              "VornalCentral::VxlanCapabilities "
              "hardware/vornal/centralStatus/vxlanCapabilities" );
   EXPECT_EQ( held( "i2eClassIdIndexConfig" ),
              "VornalCentral::I2EClassIdIndexConfig "
              "hardware/vornal/i2eclassid/config/slice/3" );
   EXPECT_EQ( held( "i2eClassIdIndexStatus" ),
              "VornalCentral::I2EClassIdIndexStatus "
              "hardware/vornal/i2eclassid/status/slice/3" );
   EXPECT_EQ( held( "vtiStatusDir" ), "Vxlan::VtiStatusDir interface/status/eth/vxlan" );
   EXPECT_EQ( held( "lagConfig" ), "Lag::Config lag/config" );
   EXPECT_EQ( held( "bridgingHwCapabilities" ),
              "Bridging::HwCapabilities bridging/hwcapabilities" );
}

TEST_F( Mounting, StoresThemInTheOrderOfAskingAndBuildsTheWaiterLast ) {
   Journal stored;
   AttributeDiary const diary( stored, leaf.mounter );
   leaf.mountsComplete();
   EXPECT_EQ( stored, ( Journal{ "set evpnStatus", "set vcsd", "set svpShimStatus",
                                 "set vxlanCapabilities", "set i2eClassIdIndexConfig",
                                 "set i2eClassIdIndexStatus", "set vtiStatusDir", "set lagConfig",
                                 "set bridgingHwCapabilities", "set evpnDependencyWaiter" } ) );
}

TEST_F( Mounting, StartsTheWaiterWithTheMounterAndTheCommonData ) {
   leaf.mountsComplete();
   auto const waiter = leaf.mounter->evpnDependencyWaiter();
   ASSERT_TRUE( waiter );
   EXPECT_EQ( waiter->evpnMounter(), leaf.mounter.get() );
   EXPECT_EQ( waiter->vcsd(), leaf.common() );
   EXPECT_TRUE( waiter->hasNotificationActive() );
}

TEST_F( Mounting, BuildsNothingElseBeforeLayerTwoIsReady ) {
   leaf.mountsComplete();
   EXPECT_EQ( held( "lagPhyIntfMapping" ), "none" );
   EXPECT_EQ( held( "lagPhyIntfMappingSm" ), "none" );
   EXPECT_EQ( held( "oxaEvpnTepSegmentDir" ), "none" );
   EXPECT_EQ( held( "evpnTepSegmentSm" ), "none" );
   EXPECT_EQ( held( "evpnMultihomingLocalBiasSm" ), "none" );
}

TEST_F( Mounting, TakesTheSamePathWhateverTheMountsCameTo ) {
   for ( auto const status : { Corrum::MountStatus::Partial, Corrum::MountStatus::Failed } ) {
      leaf.journal.clear();
      auto const mounter = leaf.mounterNew();
      mounter->doMountsComplete( status, leaf.database );
      EXPECT_EQ( leaf.journal, lookUps );
      EXPECT_TRUE( mounter->evpnStatus() );
      EXPECT_TRUE( mounter->evpnDependencyWaiter() );
   }
}

// The agent may hand over another manager than the one that the paths were mounted through.
TEST_F( Mounting, TakesEntitiesFromTheManagerThatItIsHanded ) {
   Journal asked;
   Scribe scribe( asked );
   StateDatabase::Directory directory;
   auto const other = leaf.sessionNew( directory, scribe );
   auto const status = Quelm::make< Evpn::EvpnStatus >( "the other's" );
   directory.entityIs( evpnStatusPath, status );
   leaf.mounter->doMountsComplete( Corrum::MountStatus::Complete, other );
   EXPECT_EQ( leaf.journal, Journal{ "shared vornalCommon" } );
   EXPECT_EQ( asked.size(), lookUps.size() - 1 );
   EXPECT_EQ( leaf.mounter->evpnStatus(), status );
   EXPECT_EQ( held( "lagConfig" ), "none" );
   EXPECT_EQ( leaf.mounter->entityManager(), leaf.database );
}

TEST_F( Mounting, GoesOnWithoutAnyEntityWhenNoManagerIsHanded ) {
   leaf.mounter->doMountsComplete( Corrum::MountStatus::Failed, nullptr );
   for ( char const * const name :
         { "evpnStatus", "svpShimStatus", "vxlanCapabilities", "i2eClassIdIndexConfig",
           "i2eClassIdIndexStatus", "vtiStatusDir", "lagConfig", "bridgingHwCapabilities" } ) {
      EXPECT_EQ( held( name ), "none" ) << name;
   }
   EXPECT_EQ( leaf.mounter->vcsd(), leaf.common() );
   ASSERT_TRUE( leaf.mounter->evpnDependencyWaiter() );
   EXPECT_EQ( leaf.mounter->evpnDependencyWaiter()->vcsd(), leaf.common() );
   EXPECT_EQ( leaf.logs, Journal{} );
   EXPECT_EQ( leaf.traces, Journal{} );
}

// What is published at `path` instead of the right entity leaves just `attribute` empty.
void expectOnlyThisEmpty( std::string const & path, std::string const & attribute,
                          Quelm::Ptr< Kiv::Entity > const & wrong ) {
   Leaf leaf;
   leaf.publish( path, wrong );
   leaf.mountsComplete();
   for ( std::string const name :
         { "evpnStatus", "svpShimStatus", "vxlanCapabilities", "i2eClassIdIndexConfig",
           "i2eClassIdIndexStatus", "vtiStatusDir", "lagConfig", "bridgingHwCapabilities" } ) {
      std::string const text = leaf.mounter->typeData().find( name )->text( *leaf.mounter, "" );
      EXPECT_EQ( text == "none", name == attribute ) << name << " is " << text;
   }
   EXPECT_EQ( leaf.journal, lookUps );
   EXPECT_EQ( leaf.logs, Journal{} );
   EXPECT_EQ( leaf.traces, Journal{} );
}

TEST( MountingGaps, LeaveOneAttributeEmptyAndAreReportedNowhere ) {
   auto const ofAnotherType = Quelm::make< Vornal::DependencyPoint >( "not what is asked for" );
   for ( auto const & wrong :
         { Quelm::Ptr< Kiv::Entity >(), Quelm::Ptr< Kiv::Entity >( ofAnotherType ) } ) {
      expectOnlyThisEmpty( evpnStatusPath, "evpnStatus", wrong );
      expectOnlyThisEmpty( vpIndexStatusPath, "svpShimStatus", wrong );
      expectOnlyThisEmpty( vxlanCapabilitiesPath, "vxlanCapabilities", wrong );
      expectOnlyThisEmpty( classIdConfigPath, "i2eClassIdIndexConfig", wrong );
      expectOnlyThisEmpty( classIdStatusPath, "i2eClassIdIndexStatus", wrong );
      expectOnlyThisEmpty( vtiStatusPath, "vtiStatusDir", wrong );
      expectOnlyThisEmpty( lagConfigPath, "lagConfig", wrong );
      expectOnlyThisEmpty( hwCapabilitiesPath, "bridgingHwCapabilities", wrong );
   }
}

TEST_F( Mounting, WaitsWithoutCommonDataWhenTheAgentSharesNoneOrSomethingElse ) {
   for ( auto const & wrong :
         { Quelm::Ptr< Kiv::Entity >(),
           Quelm::Ptr< Kiv::Entity >( leaf.at< Lag::Config >( lagConfigPath ) ) } ) {
      leaf.share( "vornalCommon", wrong );
      auto const mounter = leaf.mounterNew();
      mounter->doMountsComplete( Corrum::MountStatus::Complete, leaf.database );
      EXPECT_FALSE( mounter->vcsd() );
      ASSERT_TRUE( mounter->evpnDependencyWaiter() );
      EXPECT_FALSE( mounter->evpnDependencyWaiter()->vcsd() );
      EXPECT_EQ( leaf.initialisations(), 0 );
   }
}

}  // namespace MountingTest
