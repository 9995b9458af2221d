// `vornal explore` tries every order of events, and finds each way to end.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <Shipped.h>

#include "Explore.h"

namespace ExploreTest {

namespace {

TEST_F( Explore, FindsTheStopByItsShortestSequence ) {
   auto const ran = explore( { file( whole ), "--write", directory.path() / "found" } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( contains( ran.out,
                          "\nstop entryIds() < kMostSegments && \"room for another segment\" in "
                          "Sample::SegmentRulesWithEgressMaskSm::add\n" ) )
      << ran.out;
   EXPECT_TRUE( contains( ran.out,
                          "the shortest:\n"
                          "      - ready: subagents::l2Ready\n"
                          "      - publish: {segments: {Ethernet2: [10.0.0.9]}}\n"
                          "      - publish: {segments: {Ethernet3: [10.0.0.9]}}\n" ) )
      << ran.out;
   auto const again = Support::vornal( { "run", directory.path() / "found/01.yaml", "--plugin",
                                         Support::testPlugin( "segment-rules" ) } );
   EXPECT_EQ( again.exitCode, 3 ) << again.err;
   EXPECT_TRUE( contains( again.out, "SegmentRulesWithEgressMaskSm::add" ) ) << again.out;
}

// Each sequence without exchanges, counted by hand: a segment comes when it is not there, and goes
// when it is; the sub-agent is ready once; a stop is the end.
struct Expected {
   std::size_t sequences = 0;
   std::size_t stops = 0;

   void follow( std::size_t left, bool isReady, bool has2, bool has3 ) {
      if ( left == 0 ) {
         return;
      }
      auto const next = [ & ]( bool ready, bool two, bool three ) {
         ++sequences;
         if ( ready && two && three ) {
            ++stops;
         } else {
            follow( left - 1, ready, two, three );
         }
      };
      if ( !isReady ) {
         next( true, has2, has3 );
      }
      next( isReady, !has2, has3 );
      next( isReady, has2, !has3 );
   }
};

TEST_F( Explore, TriesEverySequenceThatChangesSomething ) {
   Expected expected;
   expected.follow( 4, false, false, false );
   for ( std::string const & text : { whole, std::string( kHead ) + kEvents } ) {
      auto const ran = explore( { file( text ), "--json" } );
      ASSERT_EQ( ran.exitCode, 0 ) << ran.err;
      auto const document = nlohmann::json::parse( ran.out );
      EXPECT_EQ( document[ "standFor" ], expected.sequences );
      EXPECT_EQ( document[ "findings" ][ 0 ][ "kind" ], "stop" );
      EXPECT_EQ( document[ "findings" ][ 0 ][ "sequences" ], expected.stops );
      EXPECT_EQ( document[ "findings" ][ 0 ][ "shortest" ].size(), 3U );
      bool const isWhole = text == whole;
      EXPECT_EQ( document[ "sequences" ] < document[ "standFor" ], isWhole );
   }
}

TEST_F( Explore, TakesEventsThatCannotHappenAtFirst ) {
   auto const ran =
      explore( { file( "exploration: goes-first\n"
                       "based-on: leaf.yaml\n"
                       "length: 2\n"
                       "events:\n"
                       "   - withdraw: { segments: [ Ethernet2 ] }\n"
                       "   - publish: { segments: { Ethernet2: [ 10.0.0.9 ] } }\n" ) } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( ran.out.starts_with(
      "goes-first: 2 sequences, which stand for 2; 2 more changed nothing; 0 frames\n" ) )
      << ran.out;
}

TEST_F( Explore, FindsTheSameInShares ) {
   std::string const exploration = file( whole );
   Words merge{ "merge", exploration };
   for ( std::string const shard : { "1/3", "2/3", "3/3" } ) {
      std::string const results = directory.path() / shard.substr( 0, 1 );
      EXPECT_EQ( explore( { exploration, "--shard", shard, "--results", results } ).exitCode, 0 );
      merge.push_back( results );
   }
   auto const merged = explore( merge );
   EXPECT_EQ( merged.exitCode, 0 ) << merged.err;
   EXPECT_EQ( merged.out, explore( { exploration, "--jobs", "1" } ).out );

   merge.pop_back();
   auto const part = explore( merge );
   EXPECT_EQ( part.exitCode, 2 );
   EXPECT_TRUE( contains( part.err, "branches are in none of these files" ) ) << part.err;
}

TEST_F( Explore, GoesOnWhereItWasEnded ) {
   std::string const exploration = file( whole );
   std::string const results = directory.path() / "results";
   std::string const all = explore( { exploration, "--results", results } ).out;
   std::string const text = Support::contentOf( results );
   directory.file( "results", text.substr( 0, text.size() * 2 / 3 ) );
   EXPECT_EQ( explore( { exploration, "--results", results } ).out, all );
   EXPECT_EQ( Support::contentOf( results ).size(), text.size() );

   auto const other = explore( { exploration, "--results", results, "--length", "2" } );
   EXPECT_EQ( other.exitCode, 2 );
   EXPECT_EQ( other.err, results +
                            ": these are no results of this exploration as it is now; name "
                            "another file\n" );
   EXPECT_EQ( Support::contentOf( results ).size(), text.size() );
}

TEST_F( Explore, FailsWhenAFindingIsNewOrHasVanished ) {
   std::string const exploration = file( whole );
   explore( { exploration, "--write", directory.path() } );
   std::string const catalogue = directory.path() / "catalogue";
   EXPECT_EQ( explore( { exploration, "--catalogue", catalogue } ).exitCode, 0 );

   std::string const lines = Support::contentOf( catalogue );
   std::string const first = lines.substr( 0, lines.find( '\n' ) + 1 );
   directory.file( "catalogue", "# a comment\n" + lines.substr( first.size() ) + "hang x\n" );
   auto const ran = explore( { exploration, "--catalogue", catalogue } );
   EXPECT_EQ( ran.exitCode, 1 );
   EXPECT_EQ( ran.err, "new: " + first + "vanished: hang x\n" );
}

TEST_F( Explore, NamesTheScenariosThatEndLikeAFinding ) {
   std::filesystem::create_directory( directory.path() / "limits" );
   std::string const stops =
      directory.file( "limits/stops.yaml",
                      std::string( kSwitch ) +
                         "   - ready: subagents::l2Ready\n"
                         "   - publish: { segments: { Ethernet3: [ 10.0.0.9 ] } }\n"
                         "   - publish: { segments: { Ethernet2: [ 10.0.0.9 ] } }\n" );
   std::string const limits = directory.path() / "limits";
   auto const ran = explore( { file( whole ), "--known", limits } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( contains( ran.out, "\n   shown by " + stops + '\n' ) ) << ran.out;

   directory.file( "limits/stops.yaml", kSwitch );
   auto const unknown = explore( { file( whole ), "--known", limits, "--json" } );
   EXPECT_EQ( unknown.exitCode, 1 );
   EXPECT_TRUE( unknown.err.starts_with( "shown by no scenario: stop entryIds() < kMostSegments" ) )
      << unknown.err;
   EXPECT_TRUE( nlohmann::json::parse( unknown.out )[ "findings" ][ 0 ][ "shownBy" ].empty() );

   directory.file( "limits/stops.yaml", "scenario: broken\n" );
   auto const broken = explore( { file( whole ), "--known", limits } );
   EXPECT_EQ( broken.exitCode, 2 );
   EXPECT_TRUE( contains( broken.err, "stops.yaml:1: 'switch' is missing" ) ) << broken.err;
}

// The rules and the records hold, as far as one can tell, and a frame is dropped for good.
TEST_F( Explore, NamesTheScenariosInWhichFramesGoWrongLikeInAFinding ) {
   std::filesystem::path const shows = Shipped::fileOf( "limits/grant-withdrawn" );
   std::string const exploration = file(
      "exploration: class-id-of-another\n"
      "based-on: " +
      shows.string() +
      "\n"
      "length: 1\n"
      "events:\n"
      "   - withdraw: { tunnel-interfaces: [ Vxlan1 ] }\n" );
   std::string const what =
      "lasting flooded frames do not reach a port yet, kept back by Drop packets at EFP from vtep "
      "IP N on EthernetN\n";
   auto const ran =
      Support::vornal( { "explore", exploration, "--known", shows.parent_path().string() } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( contains( ran.out, '\n' + what +
                                      "   in 1 sequence; the shortest:\n"
                                      "      (the start itself)\n"
                                      "   shown by " +
                                      shows.string() + '\n' ) )
      << ran.out;

   auto const others = Shipped::fileOf( "limits/two-keys-no-room" ).parent_path();
   auto const unknown = Support::vornal( { "explore", exploration, "--known", others.string() } );
   EXPECT_EQ( unknown.exitCode, 1 );
   EXPECT_TRUE( contains( unknown.err, "shown by no scenario: " + what ) ) << unknown.err;
}

// The shipped plug-in, and a build of it that puts another port into masks.
TEST_F( Explore, FindsAWrongRule ) {
   std::string const exploration = file(
      "exploration: masks\n"
      "based-on: leaf.yaml\n"
      "length: 1\n"
      "events: [ ready: subagents::l2Ready ]\n" );
   auto const right = Support::vornal( { "explore", exploration } );
   EXPECT_FALSE( contains( right.out, "\ndifference " ) ) << right.out;
   auto const wrong = explore( { exploration }, "VornalEvpn-wrong-mask" );
   EXPECT_EQ( wrong.exitCode, 0 ) << wrong.err;
   EXPECT_TRUE( contains( wrong.out,
                          "\ndifference wrong-mask: Mark or drop packets at IFP from "
                          "vtep IP N on shared segments" ) )
      << wrong.out;
}

// The shipped plug-in, and a build of it that empties a mask before it changes it. When the event
// is over, the rules of both are right.
TEST_F( Explore, FindsFramesThatSlipThroughBetweenTwoCalls ) {
   std::string const exploration = file(
      "exploration: joins\n"
      "based-on: leaf.yaml\n"
      "length: 1\n"
      "steps: [ ready: subagents::l2Ready ]\n"
      "events: [ publish: { segments: { Ethernet2: [ 10.0.0.9 ] } } ]\n" );
   auto const right = Support::vornal( { "explore", exploration, "--json" } );
   auto const document = nlohmann::json::parse( right.out );
   EXPECT_EQ( document[ "findings" ][ 0 ][ "kind" ], "transient" );
   EXPECT_GT( document[ "findings" ][ 0 ][ "calls" ], 0 );
   EXPECT_GT( document[ "frames" ], 0 );
   EXPECT_FALSE( contains( right.out, " again" ) ) << right.out;

   auto const wrong = explore( { exploration }, "VornalEvpn-emptied-mask" );
   EXPECT_TRUE( contains( wrong.out,
                          "\ntransient flooded frames leave by a shared port again\n"
                          "   in 1 sequence, for at most 2 calls; the shortest with so many:\n"
                          "      - publish: {segments: {Ethernet2: [10.0.0.9]}}\n" ) )
      << wrong.out;
   EXPECT_FALSE( contains( wrong.out, "\ndifference " ) ) << wrong.out;
}

TEST_F( Explore, FindsAnEventWithoutEnd ) {
   std::string const hang = "   - call: { entity: /plugins/Sample::Mounter, operation: hang }\n";
   auto const ran =
      explore( { file( kHead + ( kEvents + hang ) ), "--length", "1", "--turn-limit", "0.2" } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( contains( ran.out, "\nhang the event does not come to its end\n" ) ) << ran.out;
}

TEST_F( Explore, SaysWhenTheSwitchDoesNotComeUp ) {
   directory.file( "leaf.yaml", std::string( kSwitch ) +
                                   "   - ready: subagents::l2Ready\n"
                                   "   - publish: { segments: { Ethernet2: [ 10.0.0.9 ] } }\n"
                                   "   - publish: { segments: { Ethernet3: [ 10.0.0.9 ] } }\n" );
   auto const ran = explore( { file( std::string( kHead ) + kEvents ) } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_TRUE( contains( ran.err, "segments.yaml: the switch does not come up: " ) ) << ran.err;
   EXPECT_TRUE( contains( ran.err, "room for another segment" ) ) << ran.err;
   auto const none = Support::vornal( { "explore", file( std::string( kHead ) + kEvents ),
                                        "--plugin", file( std::string( kHead ) + kEvents ) } );
   EXPECT_EQ( none.exitCode, 2 );
   EXPECT_TRUE( contains( none.err, "segments.yaml: the switch does not come up: " ) ) << none.err;
}

// The second event is in front of a branch.
TEST_F( Explore, EndsEachEventThatTakesTooLong ) {
   std::string const hang = "   - call: { entity: /plugins/Sample::Mounter, operation: hang }\n";
   auto const ran =
      explore( { file( kHead + ( kEvents + hang ) ), "--length", "2", "--turn-limit", "0.2" } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( contains( ran.out, "\nhang the event does not come to its end\n" ) ) << ran.out;
   auto const steps =
      explore( { file( kHead + ( "steps:\n" + hang + kEvents ) ), "--turn-limit", "0.2" } );
   EXPECT_EQ( steps.exitCode, 2 );
   EXPECT_TRUE( contains( steps.err, "does not come up: it takes longer than the time limit" ) )
      << steps.err;
}

// The second share does not begin with the start itself.
TEST_F( Explore, RefusesEachShareOfASwitchThatDoesNotComeUp ) {
   std::string const steps =
      "steps:\n"
      "   - ready: subagents::l2Ready\n"
      "   - publish: { segments: { Ethernet2: [ 10.0.0.9 ] } }\n"
      "   - publish: { segments: { Ethernet3: [ 10.0.0.9 ] } }\n";
   std::string const results = directory.path() / "results";
   for ( std::string const shard : { "1/2", "2/2" } ) {
      auto const ran =
         explore( { file( kHead + steps + kEvents ), "--shard", shard, "--results", results } );
      EXPECT_EQ( ran.exitCode, 2 );
      EXPECT_TRUE( contains( ran.err, "segments.yaml: the switch does not come up: " ) ) << ran.err;
   }
}

TEST_F( Explore, LooksAtItsWordsBeforeTheWork ) {
   std::string const exploration = file( whole );
   std::string const empty = directory.path() / "empty";
   std::filesystem::create_directory( empty );
   std::string const found = directory.path() / "found";
   auto const none = explore( { exploration, "--known", empty, "--write", found } );
   EXPECT_EQ( none.exitCode, 2 );
   EXPECT_TRUE( contains( none.err, "empty has no scenarios; name a folder such as" ) ) << none.err;
   EXPECT_FALSE( std::filesystem::exists( found + "/catalogue" ) );
   auto const folder = explore( { exploration, "--write", exploration } );
   EXPECT_EQ( folder.exitCode, 2 );
   EXPECT_TRUE( contains( folder.err, "segments.yaml is no folder, and none can be made" ) )
      << folder.err;
   auto const scenario = explore( { exploration, "--known", exploration } );
   EXPECT_EQ( scenario.exitCode, 2 );
   EXPECT_TRUE( contains( scenario.err, "segments.yaml:1: " ) ) << scenario.err;
}

TEST_F( Explore, RefusesWrongWords ) {
   std::string const exploration = file( whole );
   EXPECT_TRUE( contains( explore( { exploration, "--shard", "3/2" } ).err,
                          "'3/2' is no share; give one such as 1/4" ) );
   EXPECT_EQ( explore( { exploration, exploration } ).exitCode, 2 );
   EXPECT_EQ( explore( { "merge", exploration } ).exitCode, 2 );
   EXPECT_EQ( explore( { exploration, "--catalogue", "/nowhere" } ).exitCode, 2 );
}

}  // namespace

}  // namespace ExploreTest
