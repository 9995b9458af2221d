// Explorations are read, and things that are alike in them stand for one another.
#include <gtest/gtest.h>

#include <Exploring/Branches.h>
#include <Exploring/Exchanges.h>
#include <Shipped.h>

#include "Explore.h"

namespace ExploreTest {

namespace {

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
      findings.add( Exploring::Kind::stop, "x", { 2, sequence } );
   }
   findings.add( Exploring::Kind::hang, "x", { 1, { 1 } } );
   auto const all = findings.findings().all;
   ASSERT_EQ( all.size(), 2U );
   EXPECT_EQ( all.begin()->second.shortest, ( Sequence{ 4, 4 } ) );
   EXPECT_EQ( all.begin()->second.sequences, 10U );
}

TEST( SharedFindings, CountThoseThatFindNoRoom ) {
   Exploring::SharedFindings findings;
   for ( std::size_t n = 0; n < Exploring::SharedFindings::kMost + 1; ++n ) {
      findings.add( Exploring::Kind::stop, std::to_string( n ), { 3, { 1 } } );
   }
   findings.add( Exploring::Kind::stop, "0", { 3, { 2 } } );
   EXPECT_EQ( findings.findings().all.size(), Exploring::SharedFindings::kMost );
   EXPECT_EQ( findings.findings().counts.unnamed, 3U );
   EXPECT_EQ( Exploring::decoded( encoded( {}, findings.findings() ) ).second.counts.unnamed, 3U );
}

}  // namespace

}  // namespace ExploreTest
