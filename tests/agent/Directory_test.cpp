#include <StateDatabase/Directory.h>

#include <gtest/gtest.h>

#include <Evpn/EvpnStatus.h>
#include <Quelm/Error.h>
#include <Support.h>

namespace {

using StateDatabase::Directory;
using StateDatabase::isOfType;

TEST( Directory, CreatesAnEntityByTheNameOfItsTypeAndFindsItAtItsPath ) {
   Directory directory;
   auto const made = directory.entityNew( "evpn/status", "Evpn::EvpnStatus" );

   ASSERT_TRUE( Quelm::dynamicCast< Evpn::EvpnStatus >( made ) );
   EXPECT_EQ( made->identity(), "status" );
   EXPECT_EQ( directory.entity( "evpn/status" ), made );
}

TEST( Directory, AnswersWithAnEmptyReferenceWhereNobodyPublishes ) {
   Directory directory;
   directory.entityNew( "evpn/status", "Evpn::EvpnStatus" );

   EXPECT_FALSE( directory.entity( "evpn" ) );
   EXPECT_FALSE( directory.entity( "evpn/status/more" ) );
}

TEST( Directory, DoesNotPutASecondEntityAtAPath ) {
   Directory directory;
   auto const first = directory.entityNew( "lag/config", "Lag::Config" );

   EXPECT_THROW( directory.entityNew( "lag/config", "Lag::Config" ), Quelm::AccessError );
   EXPECT_EQ( directory.entity( "lag/config" ), first );
}

TEST( Directory, RefusesTypesThatNobodyHasOrThatNeedMoreThanAName ) {
   Directory directory;

   EXPECT_THROW( directory.entityNew( "a", "Lag::Konfig" ), Quelm::AccessError );
   EXPECT_THROW( directory.entityNew( "a", "Evpn::EthernetSegmentStatus" ), Quelm::AccessError );
   EXPECT_TRUE( directory.entities().empty() );
}

TEST( Directory, RefusesWhatIsNotAPath ) {
   Directory directory;
   for ( char const * const path : { "", "/evpn", "evpn/", "evpn//status" } ) {
      EXPECT_THROW( directory.entityNew( path, "Lag::Config" ), Quelm::AccessError ) << path;
   }
}

TEST( Directory, LetsAnEntityGoWhenItIsTakenOut ) {
   Directory directory;
   auto const entity = directory.entityNew( "lag/config", "Lag::Config" );
   ASSERT_EQ( entity->users(), 2U );

   directory.entityDel( "lag/config" );

   EXPECT_EQ( entity->users(), 1U );
   EXPECT_FALSE( directory.entity( "lag/config" ) );
}

TEST( Directory, CountsADerivedTypeAsItsBase ) {
   Directory directory;
   auto const entity = directory.entityNew( "evpn/status", "Evpn::EvpnStatus" );

   EXPECT_TRUE( isOfType( *entity, "Evpn::EvpnStatus" ) );
   EXPECT_TRUE( isOfType( *entity, "Kiv::Entity" ) );
   EXPECT_FALSE( isOfType( *entity, "Lag::Config" ) );
}

}  // namespace
