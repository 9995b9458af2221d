// `vornal explore` tries every order of events, and finds each way to end.
#include <cmath>
#include <map>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <Exploring/Branches.h>
#include <Exploring/Exchanges.h>
#include <Scenario/ReadError.h>
#include <Shipped.h>
#include <Support.h>

namespace {

using Exploring::Exploration;
using Exploring::Sequence;
using Words = std::vector< std::string >;

bool contains( std::string const & text, std::string const & part ) {
   return text.find( part ) != std::string::npos;
}

// The plug-in of the tests stops when a third segment comes.
constexpr char kSwitch[] = R"(scenario: leaf
switch:
   name: leaf1
   slice: 3
   variant: egress-mask
   units: { 0: { module: 1 } }
   interfaces:
      Ethernet1: { unit: 0, port: 1 }
      Ethernet2: { unit: 0, port: 22 }
      Ethernet3: { unit: 0, port: 33 }
evpn:
   segments: { Ethernet1: [ 10.0.0.9 ] }
   vteps: { 10.0.0.9: { virtual-port: 9 } }
steps:
   - note: the switch comes up
)";

constexpr char kHead[] =
   "exploration: segments\n"
   "based-on: leaf.yaml\n"
   "length: 4\n";
constexpr char kAlike[] =
   "alike:\n"
   "   - [ [ Ethernet2, 22 ], [ Ethernet3, 33 ] ]\n";
constexpr char kEvents[] =
   "events:\n"
   "   - ready: subagents::l2Ready\n"
   "   - publish: { segments: { Ethernet2: [ 10.0.0.9 ] } }\n"
   "   - publish: { segments: { Ethernet3: [ 10.0.0.9 ] } }\n"
   "   - withdraw: { segments: [ Ethernet2 ] }\n"
   "   - withdraw: { segments: [ Ethernet3 ] }\n";

class Explore : public testing::Test {
 protected:
   Explore() { directory.file( "leaf.yaml", kSwitch ); }

   std::string file( std::string const & text ) const {
      return directory.file( "segments.yaml", text );
   }
   std::string mistakes( std::string const & text ) const {
      try {
         Exploration const exploration( file( text ) );
         return "";
      } catch ( Scenario::ReadError const & error ) {
         return error.what();
      }
   }
   Support::Ran explore( Words words, std::string const & plugin = "segment-rules" ) const {
      words.insert( words.begin(), "explore" );
      words.insert( words.end(), { "--plugin", Support::testPlugin( plugin ) } );
      return Support::vornal( words );
   }

   Support::Directory directory;
   std::string const whole = std::string( kHead ) + kAlike + kEvents;
};

// --- Sequences that stand for others

TEST( Exchanges, AreAllThatThereAre ) {
   auto const all =
      Exploring::exchangesOf( { { { "a" }, { "b" }, { "c" } }, { { "x" }, { "y" } } } );
   EXPECT_EQ( all.size(), 3U * 2U * 2U - 1U );
}

TEST( Exchanges, TakeKeysAndValuesInAnyOrder ) {
   auto const yaml = Scenario::yamlIn( "{ a: [ 2, c ], c: { b: 1 } }" );
   EXPECT_EQ( Exploring::exchangedText( yaml, { { "a", "b" }, { "b", "a" }, { "1", "2" } } ),
              Exploring::exchangedText( Scenario::yamlIn( "{ c: { a: 2 }, b: [ c, 2 ] }" ), {} ) );
}

TEST_F( Explore, TakesOneSequenceOfAllThatAreAlike ) {
   Exploration const exploration( file( whole ) );
   std::size_t canonical = 0;
   std::size_t standFor = 0;
   for ( U16 a = 0; a < 5; ++a ) {
      for ( U16 b = 0; b < 5; ++b ) {
         for ( U16 c = 0; c < 5; ++c ) {
            if ( exploration.isCanonical( { a, b, c } ) ) {
               ++canonical;
               standFor += exploration.weight( { a, b, c } );
               EXPECT_TRUE( exploration.isCanonical( { a, b } ) );
            }
         }
      }
   }
   EXPECT_EQ( standFor, 125U );
   EXPECT_EQ( canonical, ( 125U + 1U ) / 2U );  // "ready" three times is its own twin
   EXPECT_TRUE( exploration.isCanonical( { 0, 1, 2 } ) );
   EXPECT_FALSE( exploration.isCanonical( { 0, 2, 1 } ) );
}

TEST_F( Explore, RefusesThingsThatAreNotAlike ) {
   EXPECT_TRUE( contains( mistakes( std::string( kHead ) +
                                    "alike: [ [ [ Ethernet2 ], [ Ethernet3 ] ] ]\n" + kEvents ),
                          "segments.yaml:4: the switch is another one when " ) );
   EXPECT_TRUE( contains(
      mistakes( whole.substr( 0, whole.rfind( "   - withdraw" ) ) ),
      "segments.yaml:4: event 4, 'withdraw: {segments: [Ethernet2]}', becomes no other event" ) );
   EXPECT_TRUE(
      contains( mistakes( std::string( kHead ) + "alike: [ [ [ a, b ], [ c ] ] ]\n" + kEvents ),
                "segments.yaml:4: things that are alike have as many names each" ) );
}

// Lists of steps have an order, other lists have none.
TEST_F( Explore, TakesStepsInTheirOrder ) {
   std::string const steps =
      "steps:\n"
      "   - publish: { segments: { Ethernet2: [ 10.0.0.9 ] } }\n"
      "   - publish: { segments: { Ethernet3: [ 10.0.0.9 ] } }\n";
   EXPECT_TRUE( contains( mistakes( kHead + steps + kAlike + kEvents ),
                          "segments.yaml:7: the switch is another one when " ) );
   std::string const turn =
      "   - turn:\n"
      "        - publish: { segments: { Ethernet2: [ 10.0.0.9 ] } }\n"
      "        - publish: { segments: { Ethernet3: [ 10.0.0.9 ] } }\n";
   EXPECT_TRUE( contains( mistakes( whole + turn ), "becomes no other event" ) );
}

TEST_F( Explore, RefusesAnEventThatIsThereTwice ) {
   EXPECT_TRUE( contains( mistakes( whole + "   - ready: subagents::l2Ready\n" ),
                          "event 'ready: subagents::l2Ready' is there twice; leave one out" ) );
}

TEST_F( Explore, NamesTheLineOfAMistake ) {
   EXPECT_TRUE( contains( mistakes( "exploration: a\nlength: 0\nevents: []\n" ), "based-on" ) );
   EXPECT_TRUE( contains( mistakes( whole + "   - publsh: {}\n" ), "segments.yaml:12: " ) );
   EXPECT_TRUE( contains( mistakes( whole + "   - publish: { vteps: { x: {} } }\n" ),
                          "segments.yaml:12: " ) );
   EXPECT_TRUE(
      contains( mistakes( whole + "   - { note: x, only-on: class }\n" ), "segments.yaml:12: " ) );
   EXPECT_TRUE(
      contains( mistakes( kHead + std::string( "steps: [ { note: x }, { nte: x } ]\n" ) + kEvents ),
                "segments.yaml:4: " ) );
   EXPECT_TRUE( contains( mistakes( kHead + std::string( "events: []\n" ) ),
                          "segments.yaml:1: an exploration has from 1 to 1000 events" ) );
   EXPECT_TRUE( contains( mistakes( "exploration: a\nbased-on: none.yaml\nlength: 1\n" +
                                    std::string( kEvents ) ),
                          "none.yaml" ) );
}

TEST_F( Explore, TakesTheEventsOfItsVariant ) {
   std::string const text =
      whole + "   - { note: x, only-on: class-id }\n   - { note: y, only-on: egress-mask }\n";
   Exploration const masks( file( text ) );
   ASSERT_EQ( masks.events(), 6U );
   EXPECT_EQ( masks.text( 5 ), "note: y" );
   EXPECT_EQ( masks.event( 5 ).action->description(), "y" );
   Exploration const classIds( file( "variant: class-id\n" + text ) );
   ASSERT_EQ( classIds.events(), 6U );
   EXPECT_EQ( classIds.text( 5 ), "note: x" );
   EXPECT_EQ( classIds.event( 5 ).action->description(), "x" );
}

TEST_F( Explore, TakesTheEventsOfAnotherExploration ) {
   Exploration const other( file( whole ) );
   auto const further = [ & ]( std::string const & of, std::string const & events ) {
      return directory.file( "further.yaml",
                             "exploration: further\nbased-on: leaf.yaml\nlength: 1\n"
                             "events-of: " +
                                of + '\n' + events );
   };
   Exploration const exploration( further( "segments.yaml", "events:\n   - note: x\n" ) );
   ASSERT_EQ( exploration.events(), 6U );
   EXPECT_EQ( exploration.text( 4 ), other.text( 4 ) );
   EXPECT_EQ( exploration.text( 5 ), "note: x" );
   EXPECT_FALSE( exploration.isCanonical( { 2 } ) );  // what is alike there is alike here
   EXPECT_NE( exploration.fingerprint(),
              Exploration( further( "segments.yaml", "" ) ).fingerprint() );

   auto const refused = [ & ]( std::string const & of ) {
      try {
         Exploration const none( further( of, "" ) );
         return std::string();
      } catch ( Scenario::ReadError const & error ) {
         return std::string( error.what() );
      }
   };
   EXPECT_TRUE( contains( refused( "further.yaml" ),
                          "further.yaml:4: events-of is 'further.yaml', "
                          "which takes events of another" ) );
   EXPECT_TRUE( contains( refused( "nowhere.yaml" ), "nowhere.yaml" ) );
   file( whole + "   - publsh: {}\n" );
   EXPECT_TRUE( contains( refused( "segments.yaml" ), "segments.yaml:12: " ) );
}

TEST_F( Explore, WritesScenariosThatFindTheirCaptures ) {
   namespace fs = std::filesystem;
   std::string const capture =
      fs::relative( VORNAL_SOURCE_DIR "/scenarios/captures/fabric-v4.pcap", directory.path() );
   std::string const base = fs::relative( Shipped::fileOf( "two-leaves" ), directory.path() );
   std::string const frames = "frames: { capture: " + capture + ", on: Ethernet49 }\n";
   Exploration const exploration( file( "exploration: frames\nbased-on: " + base +
                                        "\nlength: 1\nsteps:\n   - " + frames + "events:\n   - " +
                                        frames ) );
   std::string const text = exploration.scenarioText( { 0 }, directory.path() / "a/01.yaml" );
   EXPECT_TRUE( contains( text, "based-on: ../" + base + '\n' ) ) << text;
   std::size_t const first = text.find( "../" + capture );
   EXPECT_NE( first, std::string::npos ) << text;
   EXPECT_NE( text.find( "../" + capture, first + 1 ), std::string::npos ) << text;
}

TEST_F( Explore, BeginsWithItsSteps ) {
   std::string const steps =
      "steps:\n"
      "   - ready: subagents::l2Ready\n"
      "   - publish: { segments: { Ethernet3: [ 10.0.0.9 ] } }\n";
   auto const ran = explore(
      { file( kHead + steps + kEvents ), "--length", "1", "--write", directory.path() / "found" } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( contains( ran.out,
                          "the shortest:\n"
                          "      - publish: {segments: {Ethernet2: [10.0.0.9]}}\n" ) )
      << ran.out;
   auto const again = Support::vornal( { "run", directory.path() / "found/01.yaml", "--plugin",
                                         Support::testPlugin( "segment-rules" ) } );
   EXPECT_EQ( again.exitCode, 3 ) << again.err;

   EXPECT_TRUE( contains( mistakes( kHead + steps + kAlike + kEvents ),
                          "segments.yaml:7: the switch is another one when " ) );
}

TEST( SharedFindings, KeepTheShortestSequenceAndTheFirstOfThese ) {
   Exploring::SharedFindings findings;
   for ( Sequence const & sequence :
         { Sequence{ 1, 2, 3 }, { 4, 5 }, { 4, 4 }, { 4, 6 }, { 0, 1, 2 } } ) {
      findings.add( Exploring::Kind::stop, "x", sequence, 2 );
   }
   findings.add( Exploring::Kind::hang, "x", { 1 }, 1 );
   auto const all = findings.findings().all;
   ASSERT_EQ( all.size(), 2U );
   EXPECT_EQ( all.begin()->second.shortest, ( Sequence{ 4, 4 } ) );
   EXPECT_EQ( all.begin()->second.sequences, 10U );
}

TEST( SharedFindings, CountThoseThatFindNoRoom ) {
   Exploring::SharedFindings findings;
   for ( std::size_t n = 0; n < Exploring::SharedFindings::kMost + 1; ++n ) {
      findings.add( Exploring::Kind::stop, std::to_string( n ), { 1 }, 3 );
   }
   findings.add( Exploring::Kind::stop, "0", { 2 }, 3 );
   EXPECT_EQ( findings.findings().all.size(), Exploring::SharedFindings::kMost );
   EXPECT_EQ( findings.findings().counts.unnamed, 3U );
   EXPECT_EQ( Exploring::decoded( encoded( {}, findings.findings() ) ).second.counts.unnamed, 3U );
}

// --- The program

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
      "goes-first: 2 sequences, which stand for 2; 2 more changed nothing\n" ) )
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

// The shipped plug-in, and a build of it that puts another port into masks.
TEST_F( Explore, FindsAWrongRule ) {
   std::string const exploration = file(
      "exploration: masks\n"
      "based-on: leaf.yaml\n"
      "length: 1\n"
      "events: [ ready: subagents::l2Ready ]\n" );
   auto const right = Support::vornal( { "explore", exploration } );
   EXPECT_EQ( right.out, "masks: 1 sequence, which stand for 1; 0 more changed nothing\n" );
   auto const wrong = explore( { exploration }, "VornalEvpn-wrong-mask" );
   EXPECT_EQ( wrong.exitCode, 0 ) << wrong.err;
   EXPECT_TRUE( contains( wrong.out,
                          "\ndifference wrong-mask: Mark or drop packets at IFP from "
                          "vtep IP N on shared segments" ) )
      << wrong.out;
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

TEST_F( Explore, RefusesEachShareOfASwitchThatDoesNotComeUp ) {
   std::string const text = kHead + std::string( "steps: [ set: { entity: /none } ]\n" ) + kEvents;
   std::string const results = directory.path() / "results";
   for ( std::string const shard : { "1/2", "2/2" } ) {
      auto const ran = explore( { file( text ), "--shard", shard, "--results", results } );
      EXPECT_EQ( ran.exitCode, 2 );
   }
   auto const why = explore(
      { file( kHead + std::string( "steps: [ set: { entity: /none, a: 1 } ]\n" ) + kEvents ),
        "--shard", "2/2" } );
   EXPECT_EQ( why.exitCode, 2 );
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
   EXPECT_TRUE( contains( scenario.err, "segments.yaml: " ) ) << scenario.err;
}

// A refusal and a call that fails, in each place where the run of the scenario has one.
TEST_F( Explore, TriesEveryFaultOfAScenario ) {
   std::string const scenario = Shipped::fileOf( "first-segment" );
   constexpr char kCall[] = "\"event\":\"callMade\"";
   auto const ran = Support::vornal( { "run", scenario, "--events" } );
   std::size_t calls = 0;
   for ( std::size_t at = ran.out.find( kCall ); at != std::string::npos;
         at = ran.out.find( kCall, at + 1 ) ) {
      ++calls;
   }
   auto const explored = Support::vornal( { "explore", "--faults", scenario, "--json" } );
   EXPECT_EQ( explored.exitCode, 0 ) << explored.err;
   auto const document = nlohmann::json::parse( explored.out );
   EXPECT_GT( calls, 10U );
   EXPECT_EQ( document[ "sequences" ], calls );
   std::map< std::string, nlohmann::json > findings;
   for ( auto const & found : document[ "findings" ] ) {
      findings[ found[ "what" ] ] = found;
   }
   auto const & installs = findings.at(
      "rc == BCM_E_NONE && \"installEntry failed\" in "
      "Vornal::EvpnMultihomingLocalBiasSm::installRulesForUcastTraffic" );
   EXPECT_EQ( installs[ "sequences" ], 4 );  // two exemptions, twice
   EXPECT_EQ( installs[ "kind" ], "stop" );
   EXPECT_EQ( findings.at( "setPriorityForEntry" )[ "kind" ], "unnoticed" );

   EXPECT_EQ( installs[ "shortest" ][ 0 ], "fail-call: {number: 7, code: -1}" );
}

TEST_F( Explore, RefusesWhatDoesNotGoWithFaults ) {
   std::string const scenario = Shipped::fileOf( "first-segment" );
   for ( std::string const word : { "--length", "--shard", "--results", "--write" } ) {
      auto const ran = Support::vornal( { "explore", "--faults", scenario, word, "1/1" } );
      EXPECT_EQ( ran.exitCode, 2 ) << word;
      EXPECT_TRUE( contains( ran.err, word ) ) << ran.err;
   }
   auto const exploration = explore( { "--faults", file( whole ) } );
   EXPECT_EQ( exploration.exitCode, 2 );
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
