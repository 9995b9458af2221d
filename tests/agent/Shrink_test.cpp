// `vornal shrink`, and the search for the fewest elements behind it.
#include <iostream>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <RandomSteps.h>
#include <Running.h>
#include <Scenario/Yaml.h>
#include <Shipped.h>
#include <Shrinking/Shrinker.h>
#include <Support.h>
#include <Switches.h>
#include <Terminal.h>

namespace {

using Scenario::Yaml;
using Scenario::yamlIn;
using Shrinking::Kept;

// --- The fewest elements

// The first candidate that has all of the needed elements.
Shrinking::FirstThatDoes having( Kept const & needed, std::size_t & asked ) {
   return [ needed, &asked ]( std::vector< Kept > const & candidates ) {
      for ( std::size_t n = 0; n < candidates.size(); ++n ) {
         ++asked;
         if ( std::includes( candidates[ n ].begin(), candidates[ n ].end(), needed.begin(),
                             needed.end() ) ) {
            return std::optional( n );
         }
      }
      return std::optional< std::size_t >();
   };
}

TEST( Minimise, KeepsWhatIsNeededAndNothingElse ) {
   for ( Kept const & needed :
         { Kept{}, Kept{ 0 }, Kept{ 99 }, Kept{ 0, 99 }, Kept{ 3, 4, 57 } } ) {
      std::size_t asked = 0;
      EXPECT_EQ( Shrinking::minimised( 100, having( needed, asked ) ), needed );
      EXPECT_LT( asked, 100U );
   }
   std::size_t asked = 0;
   EXPECT_EQ( Shrinking::minimised( 0, having( {}, asked ) ), Kept() );
   EXPECT_EQ( asked, 0U );
}

TEST( Minimise, LeavesOutWhatBecomesNeedlessLater ) {
   // An element can go only alone, and when the one in front of it has gone; the last one is
   // needed.
   constexpr std::size_t kCount = 13;
   std::size_t gone = 0;
   auto const isOrdered = [ &gone ]( std::vector< Kept > const & candidates ) {
      for ( std::size_t n = 0; n < candidates.size(); ++n ) {
         Kept const & kept = candidates[ n ];
         bool const isSuffix =
            !kept.empty() && kept.back() == kCount - 1 && kept.front() + kept.size() == kCount;
         if ( isSuffix && kept.front() == ++gone ) {
            return std::optional( n );
         }
         gone -= isSuffix ? 1 : 0;
      }
      return std::optional< std::size_t >();
   };
   EXPECT_EQ( Shrinking::minimised( kCount, isOrdered ), Kept{ kCount - 1 } );
}

TEST( Minimise, LeavesTwoElementsOutThatNeedEachOther ) {
   // 2 and 5 stand and fall together.
   auto const together = []( std::vector< Kept > const & candidates ) {
      for ( std::size_t n = 0; n < candidates.size(); ++n ) {
         Kept const & kept = candidates[ n ];
         bool const has2 = std::find( kept.begin(), kept.end(), 2 ) != kept.end();
         bool const has5 = std::find( kept.begin(), kept.end(), 5 ) != kept.end();
         if ( has2 == has5 && !kept.empty() && kept.front() == 0 && kept.back() == 6 ) {
            return std::optional( n );
         }
      }
      return std::optional< std::size_t >();
   };
   Kept const single{ 0, 2, 5, 6 };
   auto const onSingle = [ & ]( std::vector< Kept > const & candidates ) {
      std::vector< Kept > whole;
      for ( Kept const & candidate : candidates ) {
         Kept elements;
         for ( std::size_t const number : candidate ) {
            elements.push_back( single[ number ] );
         }
         whole.push_back( elements );
      }
      return together( whole );
   };
   EXPECT_EQ( Shrinking::minimised( single.size(), onSingle ).size(), 4U );
   EXPECT_EQ( Shrinking::withoutPairs( single.size(), onSingle ), ( Kept{ 0, 3 } ) );
}

// --- The elements of a document

TEST( Shrinker, LeavesOutPartsOfPartsUntilNothingMoreCanGo ) {
   Yaml const document = yamlIn(
      "steps: [ { a: 1, b: 2 }, { c: [ 3, 4, 5 ] } ]\n"
      "evpn: { vteps: { one: {}, two: { port: 2 } } }\n" );
   auto const needsFourAndTwo = []( Shrinking::Candidates const & candidates ) {
      for ( std::size_t n = 0; n < candidates.count; ++n ) {
         std::string const text = textOf( candidates.document( n ) );
         if ( Support::contains( text, "4" ) && Support::contains( text, "two" ) ) {
            return std::optional( n );
         }
      }
      return std::optional< std::size_t >();
   };
   Yaml const shrunk = Shrinking::shrunk( document, needsFourAndTwo );
   EXPECT_EQ( textOf( shrunk ), "steps: [{c: [4]}]\nevpn: {vteps: {two: {}}}\n" );
}

TEST( Shrinker, CountsWhatIsInAScenario ) {
   EXPECT_EQ(
      Shrinking::sizeOf( yamlIn( Switches::leaf( "- note: x\n" ) ) ),
      "1 step, 1 VTEP, 1 segment, 1 tunnel interface, 4 interfaces, 1 port channel, 1 unit" );
}

// --- The program

class Shrink : public testing::Test {
 protected:
   std::string file( std::string const & steps ) const {
      return directory.file( "leaf.yaml", Switches::leaf( steps ) );
   }
   Support::Ran shrink( std::vector< std::string > words ) const {
      words.insert( words.begin(), "shrink" );
      words.insert( words.end(), { "--plugin", Support::testPlugin( "segment-rules" ) } );
      return Support::vornal( words );
   }

   Support::Directory directory;
   std::string const out = directory.path() / "short.yaml";
};

TEST_F( Shrink, KeepsTheStepsThatTheStopNeeds ) {
   auto const ran = shrink( { file( "- note: before\n"
                                    "- ready: subagents::l2Ready\n"
                                    "- publish: { segments: { Ethernet2: [ 10.0.0.2 ], "
                                    "Ethernet3: [ 10.0.0.2 ], Ethernet4: [ 10.0.0.2 ] } }\n"
                                    "- publish: { segments: { Port-Channel7: [ 10.0.0.2 ] } }\n"
                                    "- note: never\n" ),
                              "-o", out } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( Support::contains( ran.out, " runs: " ) ) << ran.out;
   std::string const text = Support::contentOf( out );
   EXPECT_TRUE( Support::contains( text, "stopped at assertion entryIds() < kMostSegments" ) )
      << text;
   EXPECT_FALSE( Support::contains( text, "note" ) ) << text;
   EXPECT_FALSE( Support::contains( text, "vteps" ) ) << text;
   // It stops in the same way.
   auto const again =
      Support::vornal( { "run", out, "--plugin", Support::testPlugin( "segment-rules" ) } );
   EXPECT_EQ( again.exitCode, 3 ) << again.err;
   EXPECT_TRUE( Support::contains( again.out, "entryIds() < kMostSegments" ) ) << again.out;
}

TEST_F( Shrink, KeepsTheExpectationThatFailsAndWhatItFound ) {
   auto const ran =
      shrink( { file( "- note: before\n"
                      "- expect: { plug-in: waiting }\n"
                      "- ready: subagents::l2Ready\n"
                      "- publish: { segments: { Ethernet2: [ 10.0.0.2 ] } }\n"
                      "- expect: { plug-in: waiting, log: { text: x, times: 0 } }\n" ) } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( Support::contains(
      ran.out, "steps:\n  - ready: subagents::l2Ready\n  - expect: {plug-in: waiting}\n" ) )
      << ran.out;
   EXPECT_TRUE( Support::contains( ran.out, "# It ends as follows: expected plug-in waiting" ) )
      << ran.out;
   EXPECT_TRUE( Support::contains( ran.err, " runs: 2 steps" ) ) << ran.err;
}

TEST_F( Shrink, KeepsWhatTheExpectationHasFound ) {
   // Two rules in place of five; a switch without any rule would fail, too.
   auto const ran =
      shrink( { file( "- ready: subagents::l2Ready\n"
                      "- publish: { segments: { Ethernet2: [ 10.0.0.2 ] } }\n"
                      "- expect: { rules: { group: ingress, count: 5 } }\n" ) } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( Support::contains( ran.out, "- ready: subagents::l2Ready\n" ) ) << ran.out;
   EXPECT_TRUE( Support::contains( ran.out, "Ethernet2: []" ) ) << ran.out;
}

TEST_F( Shrink, RefusesAScenarioThatEndsWell ) {
   std::string const good = file( "- ready: subagents::l2Ready\n" );
   auto const ran = shrink( { good, "-o", out } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err, good +
                          " ends well, so there is nothing to look for; give a scenario that "
                          "fails or stops, or take the expectation of its stop out\n" );
   EXPECT_FALSE( std::filesystem::exists( out ) );
}

TEST_F( Shrink, RefusesAScenarioThatStopsAsItExpects ) {
   auto const ran = Support::vornal( { "shrink", Shipped::fileOf( "limits/vni-swap" ) } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_TRUE( Support::contains( ran.err, " ends well, so there is nothing" ) ) << ran.err;
}

TEST_F( Shrink, ReplacesAFileOnlyWhenItIsTold ) {
   std::string const failing = file( "- expect: { plug-in: ready }\n" );
   auto const refused = shrink( { failing, "-o", failing } );
   EXPECT_EQ( refused.exitCode, 2 );
   EXPECT_EQ( refused.err, failing + " is there already; name another file, or add --force\n" );
   EXPECT_EQ( shrink( { failing, "-o", failing, "--force" } ).exitCode, 0 );
   EXPECT_TRUE( Support::contains( Support::contentOf( failing ), "made shorter" ) );
}

TEST_F( Shrink, MakesAScenarioWholeThatIsBasedOnAnother ) {
   file( "- note: before\n" );
   std::string const twin = directory.file( "twin.yaml",
                                            "scenario: twin\n"
                                            "based-on: leaf.yaml\n"
                                            "steps:\n"
                                            "   - expect: { plug-in: ready }\n" );
   auto const ran = shrink( { twin } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( Support::contains( ran.out, "switch:" ) ) << ran.out;
   EXPECT_FALSE( Support::contains( ran.out, "based-on" ) ) << ran.out;
   EXPECT_FALSE( Support::contains( ran.out, "note" ) ) << ran.out;
}

TEST_F( Shrink, FindsTheSameWhateverTheNumberOfJobs ) {
   std::string const failing =
      file( "- ready: subagents::l2Ready\n- note: x\n- expect: { plug-in: waiting }\n- note: y\n" );
   EXPECT_EQ( shrink( { failing, "--jobs", "1" } ).out, shrink( { failing, "--jobs", "5" } ).out );
}

// --- A long story

struct StoryToShrink {
   std::string scenario;  // the shortest one that is known
   std::vector< std::string > steps;
   std::string stop = {};  // stopOf() its run
};

// The scenario of the limit, with that many random steps around its own.
std::string longStory( StoryToShrink const & story, std::size_t count, std::uint32_t seed ) {
   Yaml document = yamlIn( Support::contentOf( Shipped::fileOf( "limits/" + story.scenario ) ) );
   // The random steps take these.
   document.part( "switch" )
      .part( "interfaces" )
      .set( "Ethernet2", yamlIn( "{ unit: 0, port: 2 }" ) );
   Yaml steps = Scenario::yamlList();
   for ( std::string const & step : Random::around( story.steps, count, seed ) ) {
      steps.add( yamlIn( step ) );
   }
   document.set( "steps", steps );
   return textOf( document );
}

// What stops the run of this scenario: the function and the expression of an assertion, or the text
// of an exception.
std::string stopOf( std::string const & file ) {
   auto const ran = Support::vornal( { "run", "--json", file } );
   EXPECT_EQ( ran.exitCode, 3 ) << Support::contentOf( file );
   auto const document = nlohmann::json::parse( ran.out );
   auto const & assertion = document[ "assertion" ];
   return assertion.is_null() ? document[ "stop" ][ "output" ].front().get< std::string >()
                              : assertion[ "function" ].get< std::string >() + ": " +
                                   assertion[ "expression" ].get< std::string >();
}

class LongStory : public testing::TestWithParam< StoryToShrink > {};

TEST_P( LongStory, IsAsShortAsTheShippedOneInTheEnd ) {
   constexpr std::uint32_t kSeed = 20261122;
   std::cout << "seed " << kSeed << '\n';
   Support::Directory const directory;
   std::string const file = directory.file( "long.yaml", longStory( GetParam(), 200, kSeed ) );
   ASSERT_EQ( stopOf( file ), GetParam().stop );

   std::string const out = directory.path() / "short.yaml";
   auto const ran = Support::vornal( { "shrink", file, "-o", out } );
   ASSERT_EQ( ran.exitCode, 0 ) << ran.err;
   std::cout << ran.out;
   std::size_t const left = yamlIn( Support::contentOf( out ) ).find( "steps" )->parts.size();
   EXPECT_LE( left, GetParam().steps.size() + 1 ) << Support::contentOf( out );
   EXPECT_EQ( stopOf( out ), GetParam().stop );
}

TEST( ShrinkInterrupted, WritesTheShortestThatItHasFound ) {
   Support::Directory const directory;
   StoryToShrink const story{
      "vni-swap",
      { "ready: subagents::l2Ready",
        "publish: { tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 50001, blue: "
        "50002 } } } }",
        "publish: { tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 50002, blue: "
        "50001 } } } }" }
   };
   std::string const file = directory.file( "long.yaml", longStory( story, 600, 1 ) );
   std::string const out = directory.path() / "short.yaml";
   Support::AtTerminal terminal( { "shrink", file, "-o", out }, directory.path() );
   terminal.until( " left" );
   terminal.signal( SIGINT );
   EXPECT_TRUE( Support::contains( terminal.until( " of 600 steps" ), "interrupted after" ) );
   EXPECT_EQ( terminal.wait(), 130 );
   EXPECT_EQ( Support::vornal( { "run", out } ).exitCode, 3 );
}

INSTANTIATE_TEST_SUITE_P(
   Shrink, LongStory,
   testing::Values(
      StoryToShrink{
         "vni-swap",
         { "ready: subagents::l2Ready",
           "publish: { tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 50001, blue: 50002 } } } }",
           "publish: { tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 50002, blue: 50001 } } } "
           "}" },
         "void "
         "Vornal::EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::handleVrfToVniMap(L3::VrfName, "
         "U32, U32): !evpnMultihomingLocalBiasSm()->vniToTcamEntryIdHas( newV )" },
      StoryToShrink{
         "port-invalid-joins",
         { "ready: subagents::l2Ready", "publish: { segments: { Ethernet3: [ 10.0.0.2 ] } }" },
         "exception left a change handler: Brum::PerUnitBitmapWordIndex::value < 0 or > "
         "Brum::PerUnitBitmapWordIndex::max not allowed" } ) );

}  // namespace
