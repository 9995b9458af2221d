// `vornal dump`: the state of a switch as a scenario of its own.
#include <iostream>

#include <gtest/gtest.h>

#include <Dumped.h>
#include <Dumping/Items.h>
#include <Dumping/Past.h>
#include <RandomSteps.h>
#include <Support.h>
#include <Switches.h>

namespace {

using Scenario::Yaml;
using Scenario::yamlIn;

// --- The items of a state

Story::Table state( std::vector< std::pair< std::string, std::string > > const & items ) {
   Story::Table table{ "state", { "kind", "item", "value" }, {} };
   for ( auto const & [ item, value ] : items ) {
      table.rows.push_back( { "published", item, value } );
   }
   table.rows.push_back( { "record", "/plugins/Sample::Mounter/isReady", "true" } );
   return table;
}

std::string textOf( std::vector< Yaml > const & steps ) {
   std::string text;
   for ( Yaml const & step : steps ) {
      text += Scenario::textOf( step );
   }
   return text;
}

TEST( DumpedItems, HaveAShapeAndKeys ) {
   auto const items = Dumping::publishedItems( state(
      { { "/evpn/status/segmentStatus[Port-Channel2]/remoteTep[2001:db8::2]", "there" } } ) );
   ASSERT_EQ( items.size(), 1U );
   EXPECT_EQ( items[ 0 ].shape, "/evpn/status/segmentStatus[]/remoteTep[]" );
   EXPECT_EQ( items[ 0 ].keys, ( std::vector< std::string >{ "Port-Channel2", "2001:db8::2" } ) );
   EXPECT_EQ( items[ 0 ].value, "there" );
}

TEST( DumpedItems, AreRepairedByTheWordsThatThereAre ) {
   std::string const vtep = "/hardware/vornal/vp/status/vornalL3/remoteVport";
   std::string const port = "/shared/vornalCommon/vornalIntfToPort";
   EXPECT_EQ( textOf( Dumping::repairs(
                 state( { { vtep + "[10.0.0.2#west]", "7" },
                          { port + "[Ethernet1]", "unit0/port5/mod1" },
                          { port + "Cache[Ethernet1]", "unit0/port5/mod1" },
                          { "/evpn/status/segmentStatus[\"a b\"]/intfId", "\"a b\"" },
                          { "/shared/tcamManager/entryManager[157]/group", "157" } } ),
                 state( { { vtep + "[10.0.0.3]", "3" } } ) ) ),
              "delete: {entity: /hardware/vornal/vp/status/vornalL3, attribute: remoteVport, key: "
              "10.0.0.3}\n"
              "set: {entity: /evpn/status, attribute: segmentStatus, key: \"\\\"a b\\\"\"}\n"
              "set: {entity: /hardware/vornal/vp/status/vornalL3, attribute: remoteVport, key: "
              "10.0.0.2#west, value: 7}\n"
              "publish: {interfaces: {Ethernet1: {unit: 0, port: 5}}}\n" );
   EXPECT_TRUE( Dumping::repairs( state( { { vtep + "[10.0.0.3]", "3" } } ),
                                  state( { { vtep + "[10.0.0.3]", "3" } } ) )
                   .empty() );
}

TEST( DumpedItems, AreAsTheyWereWhereAStepTouchesThem ) {
   std::string const port = "/shared/vornalCommon/vornalIntfToPort";
   std::string const member = "/evpn/status/segmentStatus[Ethernet1]/remoteTep";
   auto const mixed =
      Dumping::mixed( state( { { port + "[Ethernet1]", "before" },
                               { port + "[Ethernet2]", "before" },
                               { member + "[10.0.0.2]", "there" } } ),
                      state( { { port + "[Ethernet1]", "after" },
                               { port + "[Ethernet2]", "after" },
                               { member + "[10.0.0.3]", "there" } } ),
                      yamlIn( "- publish: { interfaces: { Ethernet1: { unit: 0, port: 5 } } }\n"
                              "- withdraw: { vteps: [ 10.0.0.3 ] }\n" )
                         .parts );
   std::string text;
   for ( auto const & item : Dumping::publishedItems( mixed ) ) {
      text += item.keys.back() + ' ' + item.value + '\n';
   }
   // The step with 10.0.0.3 is not about the segment.
   EXPECT_EQ( text, "Ethernet2 after\n10.0.0.3 there\nEthernet1 before\n" );
}

// --- What only the steps show

TEST( DumpedPast, HoldsTheLastWordOfEachGroupAndUnit ) {
   auto const past =
      Dumping::pastOf( yamlIn( "- foreign-entries: { group: ingress, unit: 0, count: 5 }\n"
                               "- foreign-entries: { group: egress, count: 4 }\n"
                               "- foreign-entries: { group: ingress, count: 3 }\n"
                               "- foreign-entries: { group: ingress, unit: 1, count: 0 }\n"
                               "- foreign-entries: { group: egress, count: 0 }\n"
                               "- class-id-allocator: paused\n"
                               "- designated-forwarder: { Ethernet1: false }\n"
                               "- designated-forwarder: { Ethernet1: true, Ethernet2: false }\n"
                               "- frame: { on: Ethernet1, source: 00:00:5e:00:53:01 }\n" )
                          .parts );
   EXPECT_EQ( textOf( past.foreignEntries ),
              "foreign-entries: {group: ingress, count: 3}\n"
              "foreign-entries: {group: ingress, unit: 1, count: 0}\n" );
   EXPECT_TRUE( past.isAllocatorPaused );
   EXPECT_EQ( past.designated,
              ( std::map< std::string, bool >{ { "Ethernet1", true }, { "Ethernet2", false } } ) );
   EXPECT_TRUE( past.hasFrames );
   EXPECT_FALSE( past.hasFaults );
}

// --- The program

std::string shipped( std::string const & name ) {
   return VORNAL_SOURCE_DIR "/scenarios/" + name + "/scenario.yaml";
}

TEST( Dump, IsShortAndReadable ) {
   auto const ran = Support::vornal( { "dump", shipped( "limits/port-swap" ), "--after", "9" } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( Support::contains( ran.out,
                                   "scenario: port-swap-dump\n\n"
                                   "switch:\n"
                                   "  name: leaf1\n"
                                   "  variant: egress-mask\n"
                                   "  units:\n"
                                   "    0: {module: 1}\n"
                                   "  interfaces:\n"
                                   "    Ethernet1: {unit: 0, port: 2}\n" ) )
      << ran.out;
   // A fresh start would put both ports into the mask.
   EXPECT_TRUE(
      Support::contains( ran.out,
                         "# The way there matters, so one step is kept. A fresh start would "
                         "differ:\n#    ~ unit 0, ingress group 157" ) )
      << ran.out;
   EXPECT_TRUE( Support::contains( ran.out, "\n# Its chip has learned no addresses.\n" ) )
      << ran.out;
   EXPECT_TRUE(
      ran.out.ends_with( "steps:\n"
                         "  - ready: subagents::l2Ready\n"
                         "  - publish: {interfaces: {Ethernet2: {unit: 0, port: 2}}}\n"
                         "  - publish: {interfaces: {Ethernet2: {unit: 0, port: 1}}}\n" ) )
      << ran.out;
}

TEST( Dump, GrantsClassIdsAsTheyAre ) {
   auto const ran = Support::vornal( { "dump", shipped( "grant-changed" ) } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE(
      ran.out.ends_with( "steps:\n"
                         "  - class-id-allocator: paused\n"
                         "  - ready: subagents::l2Ready\n"
                         "  - publish: {class-id-grants: {10.0.0.2: 5, 2001:db8::2: 10}}\n"
                         "  - class-id-allocator: serving\n" ) )
      << ran.out;
}

TEST( Dump, NamesItsFeatureFilesFromItsFolder ) {
   Support::Directory const directory;
   std::string const dump = directory.path() / "dump.yaml";
   auto const ran = Support::vornal( { "dump", shipped( "toggle-off" ), "--output", dump } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   std::string const text = Support::contentOf( dump );
   EXPECT_TRUE( Support::contains( text, "# It needs the feature files in ../" ) ) << text;
   EXPECT_TRUE( Support::contains( text, "/scenarios/toggle-off/features" ) ) << text;
}

TEST( Dump, TakesNoOtherFilesForFeatureFiles ) {
   Support::Directory const directory;
   std::string const scenario =
      directory.file( "leaf.yaml", Switches::leaf( "- ready: subagents::l2Ready\n" ) );
   directory.file( "results.json", "{ \"failed\": 0 }" );
   auto const words = std::vector< std::string >{ "dump", scenario, "--plugin",
                                                  Support::testPlugin( "segment-rules" ) };
   EXPECT_FALSE( Support::contains( Support::vornal( words ).out, "features" ) );
   directory.file( "Sample.json", "{ \"SampleToggle\": true }" );
   EXPECT_TRUE( Support::contains( Support::vornal( words ).out, "features: " ) );
}

TEST( Dump, WritesNothingAfterAStop ) {
   Support::Directory const directory;
   std::string const dump = directory.path() / "dump.yaml";
   auto const ran = Support::vornal( { "dump", shipped( "limits/vni-swap" ), "-o", dump } );
   EXPECT_EQ( ran.exitCode, 3 );
   EXPECT_TRUE( Support::contains( ran.err, "ask after an earlier step" ) ) << ran.err;
   EXPECT_FALSE( std::filesystem::exists( dump ) );
}

TEST( Dump, ReplacesAFileOnlyWhenItIsTold ) {
   Support::Directory const directory;
   std::string const dump = directory.file( "dump.yaml", "mine" );
   auto const refused = Support::vornal( { "dump", shipped( "two-leaves" ), "-o", dump } );
   EXPECT_EQ( refused.exitCode, 2 );
   EXPECT_EQ( refused.err, dump + " is there already; name another file, or add --force\n" );
   EXPECT_EQ( Support::contentOf( dump ), "mine" );
   EXPECT_EQ(
      Support::vornal( { "dump", shipped( "two-leaves" ), "-o", dump, "--force" } ).exitCode, 0 );
   EXPECT_EQ( Support::vornal( { "run", dump } ).exitCode, 0 );
}

TEST( Dump, LeavesOutTheVlansOfMembers ) {
   auto const ran =
      Support::vornal( { "dump", shipped( "lag-members-class-id" ), "--after", "28" } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( Support::contains( ran.out, "# The switch of " + shipped( "lag-members-class-id" ) +
                                               " after step 28" ) )
      << ran.out;
   EXPECT_FALSE( Support::contains( ran.out, "Ethernet4: 10" ) ) << ran.out;
}

TEST( Dump, RefusesAStepThatTheScenarioDoesNotHave ) {
   auto const ran = Support::vornal( { "dump", shipped( "two-leaves" ), "--after", "99" } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err, "--after 99: " + shipped( "two-leaves" ) + " ends with step 22\n" );
}

TEST( Dump, KeepsFewStepsOfALongStory ) {
   constexpr std::uint32_t kSeed = 20261122;
   std::cout << "seed " << kSeed << '\n';
   Yaml document = yamlIn( Support::contentOf( shipped( "limits/port-swap" ) ) );
   Yaml steps = Scenario::yamlList();
   for ( std::string const & step :
         Random::around( { "ready: subagents::l2Ready",
                           "publish: { interfaces: { Ethernet1: { unit: 0, port: 2 } } }",
                           "publish: { interfaces: { Ethernet2: { unit: 0, port: 1 } } }",
                           "note: the end" },
                         60, kSeed ) ) {
      steps.add( yamlIn( step ) );
   }
   document.set( "steps", steps );
   Support::Directory const directory;
   std::string const file = directory.file( "long.yaml", Scenario::textOf( document ) );

   Dumped::expectSame( file, 60 );
   auto const ran = Support::vornal( { "dump", file } );
   std::size_t const kept = Support::timesIn( ran.out, "\n  - " );
   EXPECT_LE( kept, 6U ) << ran.out;
   EXPECT_TRUE(
      Support::contains( ran.out, "publish: {interfaces: {Ethernet2: {unit: 0, port: 1}}}" ) )
      << ran.out;
}

TEST( Dump, IsTheSameEachTime ) {
   auto const words = std::vector< std::string >{ "dump", shipped( "limits/recovered-other-vtep" ),
                                                  "--after", "9" };
   auto const first = Support::vornal( words );
   EXPECT_EQ( first.exitCode, 0 ) << first.err;
   EXPECT_EQ( first.out, Support::vornal( words ).out );
}

}  // namespace
