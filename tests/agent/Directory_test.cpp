#include <StateDatabase/Directory.h>

#include <gtest/gtest.h>

#include <Evpn/EvpnStatus.h>
#include <Quelm/Error.h>
#include <Support.h>

namespace {

using StateDatabase::Directory;
using StateDatabase::isOfType;

TEST( Directory, creates_an_entity_by_the_name_of_its_type_and_finds_it_at_its_path ) {
   Directory directory;
   auto const made = directory.entityNew( "evpn/status", "Evpn::EvpnStatus" );

   ASSERT_TRUE( Quelm::dynamicCast< Evpn::EvpnStatus >( made ) );
   EXPECT_EQ( made->identity(), "status" );
   EXPECT_EQ( directory.entity( "evpn/status" ), made );
}

TEST( Directory, answers_with_an_empty_reference_where_nobody_publishes ) {
   Directory directory;
   directory.entityNew( "evpn/status", "Evpn::EvpnStatus" );

   EXPECT_FALSE( directory.entity( "evpn" ) );
   EXPECT_FALSE( directory.entity( "evpn/status/more" ) );
}

TEST( Directory, does_not_put_a_second_entity_at_a_path ) {
   Directory directory;
   auto const first = directory.entityNew( "lag/config", "Lag::Config" );

   EXPECT_THROW( directory.entityNew( "lag/config", "Lag::Config" ), Quelm::AccessError );
   EXPECT_EQ( directory.entity( "lag/config" ), first );
}

TEST( Directory, refuses_types_that_nobody_has_or_that_need_more_than_a_name ) {
   Directory directory;

   EXPECT_THROW( directory.entityNew( "a", "Lag::Konfig" ), Quelm::AccessError );
   EXPECT_THROW( directory.entityNew( "a", "Evpn::EthernetSegmentStatus" ), Quelm::AccessError );
   EXPECT_TRUE( directory.entities().empty() );
}

TEST( Directory, refuses_what_is_not_a_path ) {
   Directory directory;
   for ( char const * const path : { "", "/evpn", "evpn/", "evpn//status" } ) {
      EXPECT_THROW( directory.entityNew( path, "Lag::Config" ), Quelm::AccessError ) << path;
   }
}

TEST( Directory, lets_an_entity_go_when_it_is_taken_out ) {
   Directory directory;
   auto const entity = directory.entityNew( "lag/config", "Lag::Config" );
   ASSERT_EQ( entity->users(), 2U );

   directory.entityDel( "lag/config" );

   EXPECT_EQ( entity->users(), 1U );
   EXPECT_FALSE( directory.entity( "lag/config" ) );
}

TEST( Directory, counts_a_derived_type_as_its_base ) {
   Directory directory;
   auto const entity = directory.entityNew( "evpn/status", "Evpn::EvpnStatus" );

   EXPECT_TRUE( isOfType( *entity, "Evpn::EvpnStatus" ) );
   EXPECT_TRUE( isOfType( *entity, "Kiv::Entity" ) );
   EXPECT_FALSE( isOfType( *entity, "Lag::Config" ) );
}

}  // namespace
