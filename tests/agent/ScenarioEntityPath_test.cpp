#include <StateDatabase/EntityPath.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace {

using StateDatabase::EntityPath;

std::string whyNot( std::string const & text ) {
   try {
      EntityPath::fromString( text );
   } catch ( Quelm::TextError const & error ) {
      return error.what();
   }
   return {};
}

TEST( ScenarioEntityPath, SplitsIntoNamesAndKeys ) {
   auto const path = EntityPath::fromString( "/evpn/status/segmentStatus[Port-Channel2]" );
   ASSERT_EQ( path.segments().size(), 3U );
   EXPECT_EQ( path.segments()[ 0 ], ( EntityPath::Segment{ "evpn", std::nullopt } ) );
   EXPECT_EQ( path.segments()[ 1 ], ( EntityPath::Segment{ "status", std::nullopt } ) );
   EXPECT_EQ( path.segments()[ 2 ], ( EntityPath::Segment{ "segmentStatus", "Port-Channel2" } ) );
}

TEST( ScenarioEntityPath, TakesPlugInNamesAsTheyAre ) {
   auto const path = EntityPath::fromString( "/plugins/Vornal::VornalEvpnMounter" );
   EXPECT_EQ( path.segments().back().name, "Vornal::VornalEvpnMounter" );
}

TEST( ScenarioEntityPath, KeepsSlashesOfAKey ) {
   auto const path = EntityPath::fromString( "/lag/config/phyIntf[Ethernet3/1]/more" );
   ASSERT_EQ( path.segments().size(), 4U );
   EXPECT_EQ( path.segments()[ 2 ].key, "Ethernet3/1" );
}

TEST( ScenarioEntityPath, KeepsBracketsOfAQuotedKey ) {
   auto const path = EntityPath::fromString( R"(/a/b["x]\"]y"]/c)" );
   ASSERT_EQ( path.segments().size(), 3U );
   EXPECT_EQ( path.segments()[ 1 ].key, R"("x]\"]y")" );
}

TEST( ScenarioEntityPath, PrintsWhatItRead ) {
   for ( std::string const text :
         { "/a", "/evpn/status", "/evpn/status/segmentStatus[Port-Channel2]",
           "/lag/config/phyIntf[Ethernet3/1]/lag", R"(/a["]"]/b[2001:db8::1])" } ) {
      EXPECT_EQ( EntityPath::fromString( text ).stringValue(), text );
   }
}

RC_GTEST_PROP( ScenarioEntityPath, ReadsBackWhateverItPrints, () ) {
   auto const name = rc::gen::nonEmpty(
      rc::gen::container< std::string >( rc::gen::elementOf( std::string( "azAZ09_-.:@#" ) ) ) );
   auto const key = rc::gen::nonEmpty(
      rc::gen::container< std::string >( rc::gen::elementOf( std::string( "az09/:{},. [" ) ) ) );
   std::vector< EntityPath::Segment > segments;
   for ( int n = *rc::gen::inRange( 1, 6 ); n > 0; --n ) {
      EntityPath::Segment segment{ *name, std::nullopt };
      if ( *rc::gen::arbitrary< bool >() ) {
         segment.key = *key;
      }
      segments.push_back( segment );
   }
   EntityPath const path( segments );
   RC_ASSERT( EntityPath::fromString( path.stringValue() ) == path );
}

TEST( ScenarioEntityPath, RefusesWhatIsNoPathAndSaysWhere ) {
   EXPECT_EQ( whyNot( "" ), "expected '/' at character 1, found the end of the text" );
   EXPECT_EQ( whyNot( "evpn/status" ), "expected '/' at character 1, found 'evpn/status'" );
   EXPECT_EQ( whyNot( "/" ), "expected a name at character 2, found the end of the text" );
   EXPECT_EQ( whyNot( "/evpn//status" ), "expected a name at character 7, found '/status'" );
   EXPECT_EQ( whyNot( "/evpn/" ), "expected a name at character 7, found the end of the text" );
   EXPECT_EQ( whyNot( "/a[]" ), "expected a key at character 4, found ']'" );
   EXPECT_EQ( whyNot( "/a[b" ),
              "expected a closing ']' at character 5, found the end of the text" );
   EXPECT_EQ( whyNot( "/a[\"b]" ),
              "expected a closing '\"' at character 7, found the end of the text" );
   EXPECT_EQ( whyNot( "/a[b]c" ), "expected the end of the text at character 6, found 'c'" );
   EXPECT_EQ( whyNot( "/a b" ), "expected the end of the text at character 3, found ' b'" );
}

}  // namespace
