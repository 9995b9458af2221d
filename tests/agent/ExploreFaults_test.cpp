// `vornal explore --faults` tries every fault in the runs of scenarios.
#include <map>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <Shipped.h>

#include "Explore.h"

namespace ExploreTest {

namespace {

// How often calls stand in the events of a run.
std::size_t callsIn( std::string const & events, std::string const & operation = "" ) {
   std::string const call = "\"event\":\"callMade\"" +
                            ( operation.empty() ? "" : ",\"call\":{\"operation\":\"" + operation );
   std::size_t calls = 0;
   for ( std::size_t at = events.find( call ); at != std::string::npos;
         at = events.find( call, at + 1 ) ) {
      ++calls;
   }
   return calls;
}

std::map< std::string, nlohmann::json > findingsIn( nlohmann::json const & document ) {
   std::map< std::string, nlohmann::json > findings;
   for ( auto const & found : document[ "findings" ] ) {
      findings[ found[ "what" ] ] = found;
   }
   return findings;
}

// A call that fails, the end of the process, and a refusal, in each place where the run has one.
TEST_F( Explore, TriesEveryFaultOfAScenario ) {
   std::string const scenario = Shipped::fileOf( "first-segment" );
   std::string const events = Support::vornal( { "run", scenario, "--events" } ).out;
   std::size_t const calls = callsIn( events );
   std::size_t const requests = callsIn( events, "getEntry" );
   auto const explored = Support::vornal( { "explore", "--faults", scenario, "--json" } );
   EXPECT_EQ( explored.exitCode, 0 ) << explored.err;
   auto const document = nlohmann::json::parse( explored.out );
   EXPECT_GT( calls, 10U );
   EXPECT_GT( requests, 5U );
   std::size_t const ends = calls + 1;  // at each, and behind the last one
   EXPECT_EQ( document[ "faults" ], ends + requests + ( calls - requests ) );
   EXPECT_EQ( document[ "scenarios" ], nlohmann::json::array( { scenario } ) );
   auto const findings = findingsIn( document );
   auto const & installs = findings.at(
      "rc == BCM_E_NONE && \"installEntry failed\" in "
      "Vornal::EvpnMultihomingLocalBiasSm::installRulesForUcastTraffic" );
   EXPECT_EQ( installs[ "faults" ], 4 );  // two exemptions, twice
   EXPECT_EQ( installs[ "kind" ], "stop" );
   EXPECT_EQ( installs[ "shortest" ][ 0 ], "fail-call: {number: 7, code: -1}" );
   EXPECT_EQ( installs[ "scenario" ], scenario );
   EXPECT_EQ( findings.at( "setPriorityForEntry" )[ "kind" ], "unnoticed" );
   EXPECT_FALSE( contains( explored.out, "not told once" ) );
}

// Another call, which the scenario itself lets fail, stops the process.
TEST_F( Explore, NotesThatThePlugInGoesOnAlsoWhenItStopsLater ) {
   auto const ran = Support::vornal(
      { "explore", "--faults", Shipped::fileOf( "limits/chip-field-call-fails" ), "--json" } );
   auto const findings = findingsIn( nlohmann::json::parse( ran.out ) );
   EXPECT_EQ( findings.at( "setPriorityForEntry" )[ "faults" ], 1 );
   EXPECT_EQ( findings.at( "addEgressMaskAction" )[ "faults" ], 1 );
   EXPECT_FALSE( contains( ran.out, "not told once" ) );
}

// The scenario lets another call fail, with the same code.
TEST_F( Explore, TellsTheFaultApartFromTheScenariosOwn ) {
   auto const ran = Support::vornal(
      { "explore", "--faults", Shipped::fileOf( "limits/chip-vni-not-installed" ), "--json" } );
   auto const findings = findingsIn( nlohmann::json::parse( ran.out ) );
   EXPECT_EQ( findings.at( "setPriorityForEntry" )[ "kind" ], "unnoticed" );
   EXPECT_EQ( findings.at( "installEntry" )[ "faults" ], 1 );
}

// Its own end is none of a fault's.
TEST_F( Explore, LeavesOutTheEndOfTheScenarioItself ) {
   std::string const stops =
      directory.file( "stops.yaml",
                      std::string( kSwitch ) +
                         "   - ready: subagents::l2Ready\n"
                         "   - publish: { segments: { Ethernet3: [ 10.0.0.9 ] } }\n"
                         "   - publish: { segments: { Ethernet2: [ 10.0.0.9 ] } }\n" );
   auto const ran = explore( { "--faults", stops } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_FALSE( contains( ran.out, "room for another segment" ) ) << ran.out;
}

// Beside the old rules there is room for the new ones on one switch, and not on the other.
TEST_F( Explore, ComesUpAgainOnTheChipsOfTheProcessThatEnded ) {
   auto const endsIn = []( std::string const & scenario ) {
      auto const ran =
         Support::vornal( { "explore", "--faults", Shipped::fileOf( scenario ), "--json" } );
      EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
      std::vector< std::string > ends;
      for ( auto const & [ what, found ] : findingsIn( nlohmann::json::parse( ran.out ) ) ) {
         if ( std::string( found[ "shortest" ][ 0 ] ).starts_with( "end-at-call" ) ) {
            ends.push_back( what );
         }
      }
      return ends;
   };
   EXPECT_EQ( endsIn( "first-segment" ), std::vector< std::string >() );
   EXPECT_EQ( endsIn( "tcam-full-class-id" ),
              ( std::vector< std::string >{
                 "missing-rule: Skip shared ES pruning for LNUC packets - No-op",
                 "not-retried: Drop packets at EFP from vtep IP N on EthernetN",
                 "not-retried: Mark or drop packets at IFP from vtep IP N on shared segments",
                 "not-retried: Skip shared ES pruning for LNUC packets - No-op" } ) );
}

TEST_F( Explore, TriesTheFaultsOfSeveralScenarios ) {
   std::string const a = Shipped::fileOf( "first-segment" );
   std::string const b = Shipped::fileOf( "tcam-full" );
   auto const faultsOf = []( Words words ) {
      words.insert( words.begin(), { "explore", "--faults", "--json" } );
      auto const ran = Support::vornal( words );
      EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
      return nlohmann::json::parse( ran.out );
   };
   auto const both = faultsOf( { a, b } );
   EXPECT_EQ( both[ "faults" ], std::size_t( faultsOf( { a } )[ "faults" ] ) +
                                   std::size_t( faultsOf( { b } )[ "faults" ] ) );
   auto const findings = findingsIn( both );
   EXPECT_EQ( findings.at(
                 "not-retried: Skip shared ES pruning for LNUC packets - No-op" )[ "scenario" ],
              b );
   auto const text = Support::vornal( { "explore", "--faults", a, b } );
   EXPECT_TRUE( text.out.starts_with( "2 scenarios: " ) ) << text.out;
   EXPECT_TRUE( contains( text.out, "the shortest, in front of " + b + ":\n" ) ) << text.out;
}

// Behind a call that fails nothing has to be right; of a request without room, much has.
TEST_F( Explore, NeedsALimitForAllButCallsThatFail ) {
   std::string const scenario = Shipped::fileOf( "first-segment" );
   std::string const other = VORNAL_SOURCE_DIR "/scenarios/limits/chip-install-fails";
   auto const ran = Support::vornal( { "explore", "--faults", scenario, "--known", other } );
   EXPECT_EQ( ran.exitCode, 1 );
   EXPECT_TRUE( contains( ran.err, "shown by no scenario: stop unitTepIpToEntry->esPbmpHas" ) )
      << ran.err;
   EXPECT_FALSE( contains( ran.err, "unnoticed" ) ) << ran.err;
   EXPECT_FALSE( contains( ran.err, "installEntry failed" ) ) << ran.err;
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
   std::filesystem::create_directory( directory.path() / "empty" );
   auto const none = explore( { "--faults", directory.path() / "empty" } );
   EXPECT_EQ( none.exitCode, 2 );
   EXPECT_EQ( none.err, "there are no scenarios; name one, or a folder such as scenarios\n" );
   auto const still = explore( { "--faults", directory.path() / "leaf.yaml" } );
   EXPECT_EQ( still.exitCode, 2 );
   EXPECT_EQ( still.err, "no call of the chip is made in these scenarios; name others\n" );
   std::string const wrong =
      directory.file( "wrong.yaml", std::string( kSwitch ) +
                                       "   - ready: subagents::l2Ready\n"
                                       "   - set: { entity: /none, attribute: a, value: 1 }\n" );
   auto const broken = explore( { "--faults", wrong } );
   EXPECT_EQ( broken.exitCode, 2 );
   EXPECT_TRUE( contains( broken.err, "wrong.yaml:" ) ) << broken.err;
   EXPECT_TRUE( contains( broken.err, "/none" ) ) << broken.err;
}

TEST( EndAtCall, EndsTheProcessOfTheAgent ) {
   Support::Directory const directory;
   std::string const text = Support::contentOf( Shipped::fileOf( "first-segment" ) );
   std::string ends = text;
   ends.insert( text.find( "steps:\n" ) + 7, "  - end-at-call: { number: 3 }\n" );
   auto const ran = Support::vornal( { "run", directory.file( "ends.yaml", ends ) } );
   EXPECT_EQ( ran.exitCode, 3 );
   EXPECT_TRUE( contains( ran.out, "the process of the plug-in ended with signal 9 (Killed)" ) )
      << ran.out;
}

}  // namespace

}  // namespace ExploreTest
