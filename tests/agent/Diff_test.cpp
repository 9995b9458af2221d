// `vornal diff`, and `vornal run --what-if`: what differs between two switches.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <Support.h>

namespace {

using Json = nlohmann::json;

std::string scenario( std::string const & name ) {
   return VORNAL_SOURCE_DIR "/scenarios/" + name + "/scenario.yaml";
}

Support::Ran diff( std::vector< std::string > words ) {
   words.insert( words.begin(), "diff" );
   return Support::vornal( words );
}

// The differences of that kind, by item.
Json ofKind( Json const & differences, std::string const & kind ) {
   Json found = Json::object();
   for ( Json const & node : differences[ "children" ] ) {
      if ( node[ "kind" ] == kind ) {
         for ( Json const & one : node[ "children" ] ) {
            found[ one[ "item" ].get< std::string >() ] = one;
         }
      }
   }
   return found;
}

std::string const kRuleOfLeaf2 =
   "unit 0, ingress group 157, \"Mark or drop packets at IFP from vtep IP 10.0.0.2 on shared "
   "segments\": SrcVxlanGport 0x56000002 (VTEP 10.0.0.2)";

TEST( Diff, FindsNothingBetweenASwitchAndItself ) {
   auto const ran = diff( { scenario( "two-leaves" ), scenario( "two-leaves" ) } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_EQ( ran.out, "no differences\n" );
}

TEST( Diff, NamesTheRulesThatAStepBrought ) {
   auto const ran =
      diff( { scenario( "two-leaves" ), "--after", "8", "--against", "9", "--json" } );
   EXPECT_EQ( ran.exitCode, 1 ) << ran.err;

   Json const rules = ofKind( Json::parse( ran.out ), "rule" );
   EXPECT_EQ( rules.size(), 4U ) << rules;
   ASSERT_TRUE( rules.contains( kRuleOfLeaf2 ) ) << rules;
   EXPECT_EQ( rules[ kRuleOfLeaf2 ][ "before" ], nullptr );
   EXPECT_EQ( rules[ kRuleOfLeaf2 ][ "after" ], "EgressMask ports 3, 4; priority 1" );
   EXPECT_FALSE( ofKind( Json::parse( ran.out ), "record" ).empty() );
}

TEST( Diff, ReadsBackwardsAsWell ) {
   auto const ran = diff( { scenario( "two-leaves" ), "--against", "8" } );
   EXPECT_EQ( ran.exitCode, 1 );
   EXPECT_TRUE( Support::contains( ran.out, "      - " + kRuleOfLeaf2 +
                                               ": EgressMask ports 3, 4; priority 1\n" ) )
      << ran.out;
}

TEST( Diff, ComparesTwoScenarios ) {
   auto const ran =
      diff( { scenario( "two-leaves" ), scenario( "two-leaves-class-id" ), "--json" } );
   EXPECT_EQ( ran.exitCode, 1 );

   Json const published = ofKind( Json::parse( ran.out ), "published" );
   std::string const capability =
      "/hardware/vornal/centralStatus/vxlanCapabilities/i2eClassIdSupported";
   ASSERT_TRUE( published.contains( capability ) ) << published;
   EXPECT_EQ( published[ capability ][ "before" ], "false" );
   EXPECT_EQ( published[ capability ][ "after" ], "true" );
}

TEST( Diff, NeedsTwoSwitches ) {
   EXPECT_TRUE( Support::contains( diff( { scenario( "two-leaves" ) } ).err,
                                   "OTHER: give a second scenario, or --after and --against" ) );
   auto const ran = diff( { scenario( "two-leaves" ), "--against", "99" } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err, "--against 99: " + scenario( "two-leaves" ) + " ends with step 22\n" );
}

TEST( Diff, ShowsTheNamedPartsAlone ) {
   auto const ran = diff(
      { scenario( "two-leaves" ), "--after", "8", "--against", "9", "--only", "rules", "--json" } );
   EXPECT_EQ( ran.exitCode, 1 ) << ran.err;
   Json const parts = Json::parse( ran.out )[ "children" ];
   ASSERT_EQ( parts.size(), 1U ) << parts;
   EXPECT_EQ( parts[ 0 ][ "kind" ], "rule" );
   EXPECT_EQ( diff( { scenario( "two-leaves" ), "--after", "7", "--against", "8", "--only",
                      "published", "--only", "rules" } )
                 .out,
              "no differences\n" );
   EXPECT_TRUE( Support::contains(
      diff( { scenario( "two-leaves" ), "--after", "1", "--only", "rule" } ).err,
      "--only: 'rule' is no part of a state; give published, rules or records" ) );
}

TEST( Diff, TellsTheCommonBeginningOfItemsOnce ) {
   auto const ran = diff( { scenario( "two-leaves" ), "--after", "8", "--against", "9" } );
   EXPECT_TRUE(
      Support::contains( ran.out,
                         "   records of the plug-in, below /plugins/Vornal::VornalEvpnMounter/" ) )
      << ran.out;
   EXPECT_FALSE( Support::contains( ran.out, "+ /plugins/" ) ) << ran.out;
}

// --- What if

TEST( WhatIf, ShowsWhatOneMoreStepWouldChange ) {
   auto const ran =
      Support::vornal( { "run", scenario( "two-leaves" ), "--json", "--what-if",
                         "withdraw: { segments: { Port-Channel2: [ 10.0.0.2 ] } }" } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;

   Json const differences = Json::parse( ran.out );
   std::string const member = "/evpn/status/segmentStatus[Port-Channel2]/remoteTep[10.0.0.2]";
   Json const published = ofKind( differences, "published" );
   ASSERT_TRUE( published.contains( member ) ) << published;
   EXPECT_EQ( published[ member ][ "after" ], nullptr );
   Json const rules = ofKind( differences, "rule" );
   ASSERT_TRUE( rules.contains( kRuleOfLeaf2 ) ) << rules;
   EXPECT_EQ( rules[ kRuleOfLeaf2 ][ "after" ], nullptr );
}

TEST( WhatIf, SaysThatNothingWouldChange ) {
   auto const ran =
      Support::vornal( { "run", scenario( "two-leaves" ), "--what-if", "note: nothing" } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_EQ( ran.out, "no differences\n" );
}

TEST( WhatIf, ShowsTheNamedPartsAlone ) {
   auto const ran = Support::vornal( { "run", scenario( "two-leaves" ), "--what-if",
                                       "withdraw: { segments: { Port-Channel2: [ 10.0.0.2 ] } }",
                                       "--only", "published" } );
   EXPECT_EQ( ran.out,
              "differences\n"
              "   published state\n"
              "      - /evpn/status/segmentStatus[Port-Channel2]/remoteTep[10.0.0.2]\n" );
   EXPECT_EQ( Support::vornal( { "run", scenario( "two-leaves" ), "--only", "rules" } ).exitCode,
              2 );
}

TEST( WhatIf, NamesThePlaceOfAMistake ) {
   EXPECT_EQ( Support::vornal( { "run", scenario( "two-leaves" ), "--what-if", "pubish: {}" } ).err,
              "--what-if:1: unknown word 'pubish' in step; did you mean 'publish'?\n" );
}

}  // namespace
