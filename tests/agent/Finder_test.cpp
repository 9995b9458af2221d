#include <StateDatabase/Finder.h>

#include <gtest/gtest.h>

#include <Evpn/EvpnStatus.h>
#include <Quelm/Error.h>
#include <Support.h>
#include <Vornal/VornalCommonSmData.h>

namespace {

using StateDatabase::EntityPath;

// A database with a segment on Port-Channel2, and the agent's shared data.
class Finder : public testing::Test {
 protected:
   Finder() {
      auto const status = Quelm::make< Evpn::EvpnStatus >( "status" );
      segment = status->segmentStatusIs( Pelk::IntfId::fromString( "Port-Channel2" ) );
      database.entityIs( "evpn/status", status );
      common = Quelm::make< Vornal::VornalCommonSmData >( "vornalCommon" );
      common->sliceDependencyPointsIs( Quelm::make< Vornal::VornalSliceDependencyPoints >() );
      own.entityIs( "shared/vornalCommon", common );
   }

   Quelm::Ptr< Kiv::Entity > find( char const * path ) const {
      return finder.entity( EntityPath::fromString( path ) );
   }
   std::string refusalOf( char const * path ) const {
      try {
         find( path );
      } catch ( Quelm::AccessError const & error ) {
         return error.what();
      }
      return "found";
   }

   StateDatabase::Directory database;
   StateDatabase::Directory own;
   Quelm::Ptr< Evpn::EthernetSegmentStatus > segment;
   Quelm::Ptr< Vornal::VornalCommonSmData > common;
   StateDatabase::Finder finder{ { &database, &own } };
};

TEST_F( Finder, FindsWhatIsMountedAndWhatIsShared ) {
   EXPECT_EQ( find( "/evpn/status" ), database.entity( "evpn/status" ) );
   EXPECT_EQ( find( "/shared/vornalCommon" ), common );
}

TEST_F( Finder, FollowsACollectionOfEntitiesByKeyAndAReferenceByName ) {
   EXPECT_EQ( find( "/evpn/status/segmentStatus[Port-Channel2]" ), segment );
   EXPECT_EQ( find( "/shared/vornalCommon/sliceDependencyPoints/evpnDependencyPoint" ),
              common->sliceDependencyPoints()->evpnDependencyPoint() );
}

TEST_F( Finder, TakesTheLongestBeginningThatIsThere ) {
   auto const inner = database.entityNew( "evpn/status/segmentStatus", "Lag::Config" );

   EXPECT_EQ( find( "/evpn/status/segmentStatus" ), inner );
   EXPECT_EQ( find( "/evpn/status/segmentStatus[Port-Channel2]" ), segment );
}

TEST_F( Finder, ListsTheBeginningsWhenAPathHasNoneOfThem ) {
   EXPECT_EQ( refusalOf( "/evpn/statsu" ),
              "there is no entity at '/evpn/statsu'; did you mean '/evpn/status'? Paths begin with "
              "one of\n"
              "   /evpn/status\n"
              "   /shared/vornalCommon" );
}

TEST_F( Finder, SaysWhichAttributesThereAreWhenOneDoesNotExist ) {
   EXPECT_EQ( refusalOf( "/evpn/status/segments" ),
              "there is no entity at '/evpn/status/segments': an Evpn::EvpnStatus has no attribute "
              "'segments'; it has segmentStatus" );
}

TEST_F( Finder, SaysWhetherAKeyIsNeeded ) {
   EXPECT_EQ( refusalOf( "/evpn/status/segmentStatus" ),
              "there is no entity at '/evpn/status/segmentStatus': attribute 'segmentStatus' needs "
              "a key in brackets; it has Port-Channel2" );
   EXPECT_EQ( refusalOf( "/shared/vornalCommon/sliceDependencyPoints[1]" ),
              "there is no entity at '/shared/vornalCommon/sliceDependencyPoints[1]': attribute "
              "'sliceDependencyPoints' takes no key; leave the brackets out" );
}

TEST_F( Finder, NamesTheOwnerOfWhatIsAValue ) {
   EXPECT_EQ( refusalOf( "/evpn/status/segmentStatus[Port-Channel2]/remoteTep[10.0.0.2]" ),
              "there is no entity at "
              "'/evpn/status/segmentStatus[Port-Channel2]/remoteTep[10.0.0.2]': attribute "
              "'remoteTep' holds values and no entities; name its owner, which shows "
              "them: '/evpn/status/segmentStatus[Port-Channel2]'" );
}

TEST_F( Finder, SaysWhereAPathLeadsNowhere ) {
   EXPECT_EQ(
      refusalOf( "/evpn/status/segmentStatus[Port-Channel3]" ),
      "there is no entity at '/evpn/status/segmentStatus[Port-Channel3]': 'segmentStatus' has "
      "no key 'Port-Channel3'; it has Port-Channel2" );
}

TEST_F( Finder, GoesThroughAttributesThatLeadToEntitiesOnly ) {
   EXPECT_THROW( find( "/shared/vornalCommon/vornalModId/more" ), Quelm::AccessError );
}

}  // namespace
