// `vornal show`: the tables that answer questions about the switch of a shipped scenario.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <Support.h>

namespace {

using Json = nlohmann::json;

std::string scenario( std::string const & name ) {
   return VORNAL_SOURCE_DIR "/scenarios/" + name + "/scenario.yaml";
}

Support::Ran show( std::string const & name, std::vector< std::string > const & words ) {
   std::vector< std::string > all{ "show", scenario( name ) };
   all.insert( all.end(), words.begin(), words.end() );
   return Support::vornal( all );
}

// The rows of the table.
Json rows( std::string const & name, std::vector< std::string > words ) {
   std::string const what = words.front();
   words.emplace_back( "--json" );
   auto const ran = show( name, words );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   return Json::parse( ran.out ).at( what );
}

TEST( Show, SaysOfARuleWhatItMatchesAndDoesAndWhatStateCallsForIt ) {
   Json const rules = rows( "two-leaves", { "rules", "--vtep", "10.0.0.2" } );

   ASSERT_EQ( rules.size(), 1U ) << rules;
   Json const rule{ { "unit", 0 },
                    { "group", "ingress group 157" },
                    { "entry", 3 },
                    { "vtep", "10.0.0.2" },
                    { "interface", nullptr },
                    { "matches", "SrcVxlanGport 0x56000002 (VTEP 10.0.0.2)" },
                    { "does", "EgressMask ports 3, 4" },
                    { "priority", 1 },
                    { "programmedIn", 9 },
                    { "changedIn", 9 },
                    { "because",
                      "VTEP 10.0.0.2 shares segment Port-Channel2 through Ethernet3 and Ethernet4; "
                      "virtual port 2" } };
   EXPECT_EQ( rules[ 0 ], rule );
}

TEST( Show, DecodesThePacketResolutionOfAnExemption ) {
   EXPECT_EQ( rows( "two-leaves", { "rules" } )[ 0 ][ "matches" ],
              "PacketRes 4 mask 0xff (known unicast) and TunnelTerminated 1 mask 0x1" );
}

TEST( Show, NamesTheInterfaceOfAnEgressRule ) {
   Json const rules =
      rows( "two-leaves-class-id", { "rules", "--vtep", "10.0.0.2", "--interface", "Ethernet4" } );

   ASSERT_EQ( rules.size(), 1U ) << rules;
   EXPECT_EQ( rules[ 0 ][ "group" ], "egress group 45" );
   EXPECT_EQ( rules[ 0 ][ "does" ], "Drop" );
}

TEST( Show, ShowsTheSwitchAfterTheStepThatIsNamed ) {
   EXPECT_EQ( show( "two-leaves", { "rules", "--after", "8" } ).out, "no rules\n" );
   EXPECT_EQ( rows( "two-leaves", { "rules", "--after", "9" } ).size(), 4U );
   EXPECT_EQ( show( "two-leaves", { "rules", "--after", "9", "--unit", "9", "--entry", "7" } ).out,
              "no rules with unit 9 with entry 7; 4 in all\n" );
   EXPECT_EQ( rows( "grant-late", { "class-ids", "--after", "0" } ), Json::array() );
}

TEST( Show, ListsSegmentsWithTheirPortsAndVteps ) {
   Json const segments = rows( "two-leaves", { "segments" } );

   ASSERT_EQ( segments.size(), 1U );
   EXPECT_EQ( segments[ 0 ][ "segment" ], "Port-Channel2" );
   EXPECT_EQ( segments[ 0 ][ "ports" ],
              Json( { "Ethernet3 (unit 0 port 3)", "Ethernet4 (unit 0 port 4)" } ) );
   EXPECT_EQ( segments[ 0 ][ "vtep" ], Json( { "10.0.0.2", "2001:db8::2" } ) );
   EXPECT_EQ( rows( "two-leaves", { "segments", "--vtep", "10.0.0.3" } ), Json::array() );
}

TEST( Show, SaysOfEachVtepWhetherItsFramesAreFiltered ) {
   Json const vteps = rows( "tcam-full", { "vteps" } );

   ASSERT_EQ( vteps.size(), 4U );
   EXPECT_EQ( vteps[ 0 ][ "gport" ], "0x56000002" );
   EXPECT_EQ( vteps[ 0 ][ "protection" ], "protected" );
   EXPECT_EQ( vteps[ 1 ][ "protection" ],
              "none: an entry was refused while the group was full; there is room now, and the "
              "plug-in does not ask again by itself" );
   EXPECT_EQ( rows( "two-leaves", { "vteps", "--vtep", "10.0.0.3" } )[ 0 ][ "protection" ],
              "not needed: it shares no segment" );
   EXPECT_EQ( rows( "two-leaves", { "vteps", "--after", "0" } )[ 0 ][ "protection" ],
              "none: the plug-in is not ready" );
}

TEST( Show, SaysOfEachPortWhoseFramesItKeepsBack ) {
   Json const ports = rows( "two-leaves", { "ports" } );

   ASSERT_EQ( ports.size(), 4U );
   EXPECT_EQ( ports[ 0 ][ "keepsBackFrom" ], nullptr );
   EXPECT_EQ( ports[ 1 ][ "portChannel" ], "Port-Channel2" );
   EXPECT_EQ( ports[ 1 ][ "keepsBackFrom" ], Json( { "10.0.0.2", "2001:db8::2" } ) );
}

TEST( Show, CountsTheEntriesOfEachGroupAndWhoWasRefused ) {
   EXPECT_EQ( show( "tcam-full", { "tcam" } ).out,
              "UNIT  GROUP              CAPACITY  PLUGIN  OTHERS  FREE  MOST  REFUSED  WITHOUT\n"
              "0     egress group 45    8         0       0       8     0     0        -\n"
              "0     ingress group 157  8         4       2       2     8     2        VTEP "
              "10.0.0.3, VTEP 10.0.0.4\n" );
}

TEST( Show, NamesThoseThatFoundNoRoom ) {
   auto const without = []( std::string const & scenario, std::string const & step ) {
      Json names = Json::array();
      for ( Json const & row : rows( scenario, { "tcam", "--after", step } ) ) {
         names.push_back( row[ "without" ] );
      }
      return names;
   };
   EXPECT_EQ( without( "egress-group-full", "7" ).at( 0 ).size(), 2U )
      << without( "egress-group-full", "7" );
   EXPECT_EQ( without( "vni-retry", "7" ).at( 1 ), Json( { "VNI 10100", "VNI 10200" } ) )
      << without( "vni-retry", "7" );
   EXPECT_EQ( without( "limits/vni-two-units-full", "3" ).at( 3 ), Json( { "VNI 50001" } ) )
      << "unit 1 has room, but the plug-in has queued the VNI when unit 0 had none";
}

TEST( Show, NamesTheStepThatTaughtAMacAddress ) {
   Json const macs = rows( "two-leaves", { "macs" } );
   ASSERT_EQ( macs.size(), 5U );
   EXPECT_EQ( macs[ 0 ][ "frame" ], 1 );
   EXPECT_EQ( macs[ 0 ][ "step" ], 2 );
   EXPECT_EQ( macs[ 1 ][ "step" ], 18 );
}

TEST( Show, TakesTheNumberOfARule ) {
   Json const rules = rows( "two-leaves-class-id", { "rules", "--entry", "5" } );
   ASSERT_EQ( rules.size(), 1U ) << rules;
   EXPECT_EQ( rules[ 0 ][ "interface" ], "Ethernet4" );
}

TEST( Show, ListsTheClassIdsThatVtepsWaitFor ) {
   Json const all = rows( "class-ids-run-out", { "class-ids", "--after", "4" } );

   std::size_t waiting = 0;
   for ( Json const & one : all ) {
      waiting += one[ "asked" ] == "yes" && one[ "classId" ].is_null() ? 1U : 0U;
   }
   EXPECT_GT( all.size(), waiting );
   EXPECT_GT( waiting, 0U ) << all;
}

TEST( Show, CountsTheFramesThatEachRuleKeptBack ) {
   Json const counters = rows( "two-leaves-class-id", { "counters", "--vtep", "10.0.0.2" } );

   U64 frames = 0;
   for ( Json const & one : counters ) {
      EXPECT_EQ( one[ "interface" ], "Port-Channel2" );
      EXPECT_TRUE( one[ "port" ] == 3 || one[ "port" ] == 4 ) << one;
      frames += one[ "frames" ].get< U64 >();
   }
   EXPECT_EQ( frames, 11U );
   EXPECT_EQ( rows( "two-leaves-class-id", { "counters", "--after", "9" } ), Json::array() );
}

TEST( Show, ShowsTheLogByStep ) {
   Json const log = rows( "tcam-full", { "log" } );

   ASSERT_EQ( log.size(), 1U );
   EXPECT_EQ( log[ 0 ][ "step" ], 8 );
   EXPECT_EQ( log[ 0 ][ "name" ], "MULTIHOMING_TCAM_RESOURCE_FULL" );
}

TEST( Show, IgnoresTheExpectationsOfTheScenario ) {
   Support::Directory const directory;
   std::string text = Support::contentOf( scenario( "two-leaves" ) );
   auto const base = std::string( VORNAL_SOURCE_DIR "/scenarios/two-leaves/" );
   std::string const wrong = "  - expect: { rules: { group: ingress, count: 99 } }\n";
   std::string const captures = "../captures/";
   for ( auto at = text.find( captures ); at != std::string::npos;
         at = text.find( captures, at + base.size() + captures.size() ) ) {
      text.replace( at, captures.size(), base + captures );
   }
   auto const file = directory.file( "leaf.yaml", text + wrong );

   EXPECT_EQ( Support::vornal( { "show", file, "segments" } ).exitCode, 0 );
   EXPECT_EQ( Support::vornal( { "run", file } ).exitCode, 1 );
}

// --- Wrong words

TEST( Show, SaysWhichStepIsTheLast ) {
   auto const ran = show( "two-leaves", { "rules", "--after", "99" } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err, "--after 99: " + scenario( "two-leaves" ) + " ends with step 22\n" );
}

TEST( Show, NamesTheQuestionThatWasProbablyMeant ) {
   EXPECT_EQ( show( "two-leaves", { "rulez" } ).err,
              "vornal show: WHAT: 'rulez' cannot be shown; did you mean 'rules'?\n"
              "'vornal show --help' lists the words that it takes\n" );
}

TEST( Show, RefusesAFilterThatTheTableHasNoColumnFor ) {
   auto const ran = show( "two-leaves", { "log", "--vtep", "10.0.0.2" } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err,
              "vornal show: --vtep: 'log' has no column vtep; leave it out\n"
              "'vornal show --help' lists the words that it takes\n" );
   EXPECT_NE( show( "two-leaves", { "entities", "--unit", "0" } ).err.find( "leave it out" ),
              std::string::npos );
}

TEST( Show, RefusesAPathForATable ) {
   EXPECT_NE( show( "two-leaves", { "rules", "/evpn/status" } )
                 .err.find( "a path is of 'entities'; leave it out, or show those" ),
              std::string::npos );
}

}  // namespace
