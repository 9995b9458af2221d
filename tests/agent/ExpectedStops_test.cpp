// A scenario that expects the stop of a step: it holds when the process stops there as told, and
// fails when it stops otherwise or goes on.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <Stories.h>
#include <Story/StopCheck.h>
#include <Support.h>
#include <Switches.h>

namespace {

using namespace Stories;
using Json = nlohmann::json;
using Words = std::vector< std::string >;

// The plug-in's list has room for two segments, and the third one stops it.
std::string const kReady = "   - ready: subagents::l2Ready\n";
std::string const kSecond = "   - publish: { segments: { Ethernet2: [ 10.0.0.2 ] } }\n";
std::string const kThird = "   - publish: { segments: { Ethernet3: [ 10.0.0.2 ] } }\n";
std::string const kAssertion = "entryIds() < kMostSegments && \"room for another segment\"";
std::string const kFunction = "Sample::SegmentRulesWithEgressMaskSm::add";

std::string stopAt( std::string const & assertion, std::string const & function ) {
   return "   - expect: { stop: { assertion: '" + assertion + "', function: " + function + " } }\n";
}

class ExpectedStop : public testing::Test {
 protected:
   // The program with the scenario of these steps.
   Support::Ran ran( std::string const & steps, Words const & more = {},
                     std::string const & command = "run" ) const {
      Words words{ command, directory.file( "leaf.yaml", Switches::leaf( steps ) ), "--plugin",
                   Support::testPlugin( "segment-rules" ) };
      words.insert( words.begin() + 2, more.begin(), more.end() );
      return Support::vornal( words );
   }

   Support::Directory directory;
   std::string const expected = stopAt( kAssertion, kFunction );
   std::string const stops = kReady + kSecond + expected + kThird;
};

TEST_F( ExpectedStop, HoldsWhenTheStepStopsAsTold ) {
   auto const told = ran( stops );
   EXPECT_EQ( told.exitCode, 0 ) << told.out << told.err;
   EXPECT_TRUE( Support::contains( told.out,
                                   "STOPPED in step 4, as expected: the process of the plug-in "
                                   "ended with signal 6 (Aborted).\n" ) )
      << told.out;
   EXPECT_TRUE( Support::contains( told.out, "\nPASSED: 1 expectation held; 2 rules in the chip" ) )
      << told.out;
}

TEST_F( ExpectedStop, StandsInTheDocumentOfTheStepThatStopped ) {
   Json const document = Json::parse( ran( stops, { "--json" } ).out );
   EXPECT_EQ( document[ "end" ], "stopped" );
   EXPECT_EQ( document[ "step" ], 4 );
   EXPECT_EQ( document[ "stop" ][ "asExpected" ], true );
   // Compilers differ in the blanks of the parameters.
   EXPECT_TRUE( document[ "assertion" ][ "function" ].get< std::string >().starts_with(
      "void " + kFunction + "(const Pelk::IntfId" ) );
   EXPECT_EQ( document[ "counters" ][ "expectations" ], 1 );
   Json const expectation = document[ "steps" ][ 4 ][ "expectations" ][ 0 ];
   EXPECT_EQ( expectation[ "held" ], true );
   EXPECT_TRUE( Support::contains( expectation[ "place" ], "leaf.yaml:22" ) ) << expectation;
}

TEST_F( ExpectedStop, FailsWithWhatCameWhenTheStepStopsAtAnotherAssertion ) {
   auto const told = ran( kReady + kSecond + stopAt( "a == b", kFunction ) + kThird );
   EXPECT_EQ( told.exitCode, 1 );
   EXPECT_TRUE( Support::contains(
      told.out, "NOT as expected: the next step to stop the process at assertion a == b in " +
                   kFunction + "; it stopped at assertion " + kAssertion + " in void " + kFunction +
                   "(const Pelk::IntfId" ) )
      << told.out;
   EXPECT_TRUE( Support::contains( told.out, "\nSTOPPED in step 4: " ) ) << told.out;
   EXPECT_TRUE( Support::contains( told.out, "\nFAILED: 1 of 1 expectation did not hold" ) )
      << told.out;
}

TEST_F( ExpectedStop, FailsWhenItIsInAnotherFunction ) {
   Json const document = Json::parse(
      ran( kReady + kSecond + stopAt( kAssertion, "Sample::Mounter::add" ) + kThird, { "--json" } )
         .out );
   EXPECT_EQ( document[ "end" ], "stopped" );
   EXPECT_EQ( document[ "stop" ][ "asExpected" ], false );
   EXPECT_EQ( document[ "counters" ][ "expectationsFailed" ], 1 );
}

TEST_F( ExpectedStop, FailsWhenAnExceptionIsExpectedAndAnAssertionStops ) {
   EXPECT_EQ(
      ran( kReady + kSecond + "   - expect: { stop: { exception: no room } }\n" + kThird ).exitCode,
      1 );
}

TEST_F( ExpectedStop, FailsWhenTheProcessGoesOn ) {
   auto const told = ran( kReady + expected + kSecond );
   EXPECT_EQ( told.exitCode, 1 );
   EXPECT_TRUE( Support::contains( told.out, "; it went on (" ) ) << told.out;
   EXPECT_TRUE( Support::contains( told.out, "\nFAILED: 1 of 1 expectation did not hold" ) )
      << told.out;
}

TEST_F( ExpectedStop, IsNoExcuseForAStopOfAnEarlierStep ) {
   auto const told = ran( kReady + kSecond + kThird + expected + "   - note: more\n" );
   EXPECT_EQ( told.exitCode, 3 );
   EXPECT_FALSE( Support::contains( told.out, "as expected" ) ) << told.out;
}

TEST_F( ExpectedStop, DoesNotHideAnotherExpectationThatFailed ) {
   EXPECT_EQ(
      ran( kReady + "   - expect: { plug-in: waiting }\n" + kSecond + expected + kThird ).exitCode,
      1 );
}

// --- With the words of the commands

TEST_F( ExpectedStop, IsNotJudgedWhenTheStoryEndsBeforeTheNextStep ) {
   auto const told = ran( stops, { "--until", "3" } );
   EXPECT_EQ( told.exitCode, 0 );
   EXPECT_TRUE( Support::contains( told.out, "\nCOMPLETED; 2 rules in the chip at the end.\n" ) )
      << told.out;
}

TEST_F( ExpectedStop, JudgesAStepOfTheCommandLineBehindIt ) {
   std::string const note = "note: nothing";
   EXPECT_EQ( ran( stops, { "--until", "3", "--then", note } ).exitCode, 1 );
   std::string const third = "publish: { segments: { Ethernet4: [ 10.0.0.2 ] } }";
   EXPECT_EQ( ran( stops, { "--until", "3", "--then", third } ).exitCode, 0 );
}

TEST_F( ExpectedStop, RefusesAStepOfTheCommandLineThatIsNeverReached ) {
   for ( std::string const option : { "--then", "--what-if" } ) {
      auto const told = ran( stops, { option, "note: nothing" } );
      EXPECT_EQ( told.exitCode, 2 );
      EXPECT_EQ( told.err, option +
                              ":1: a step before is expected to stop the process, so this one "
                              "is never carried out; end the story earlier with --until\n" );
   }
}

TEST_F( ExpectedStop, IsToldWithItsStepAlone ) {
   auto const told = ran( stops, { "--step", "4" } );
   EXPECT_EQ( told.exitCode, 0 );
   EXPECT_TRUE( Support::contains( told.out, "STOPPED in step 4, as expected" ) ) << told.out;
   EXPECT_FALSE( Support::contains( told.out, "step 2" ) ) << told.out;
}

TEST_F( ExpectedStop, LeavesNoSwitchToAsk ) {
   for ( Words const & question : { Words{ "rules" }, Words{ "entities" } } ) {
      auto const told = ran( stops, question, "show" );
      EXPECT_EQ( told.exitCode, 3 );
      EXPECT_TRUE( Support::contains( told.err, "no answer; ask after an earlier step.\n" ) )
         << told.err;
      EXPECT_EQ( told.out, "" );
   }
   EXPECT_EQ( ran( stops, { "rules", "--after", "3" }, "show" ).exitCode, 0 );
   EXPECT_EQ( ran( stops, { "--against", "3" }, "diff" ).exitCode, 3 );
   EXPECT_EQ( ran( stops, {}, "verify" ).exitCode, 3 );
}

TEST_F( ExpectedStop, IsCheckedByTheStepsOfTheVariant ) {
   std::string const text =
      Switches::leaf( kReady + "   - only-on: class-id\n     expect: { stop: { exception: x } }\n" +
                      kSecond + "   - only-on: egress-mask\n     note: more\n" );
   auto const file = directory.file( "leaf.yaml", text );
   EXPECT_EQ( Support::vornal( { "run", file, "--plugin", Support::testPlugin( "segment-rules" ) } )
                 .exitCode,
              0 );
}

// --- The comparison

TEST( AssertionName, IsTheQualifiedNameOrItsEnd ) {
   Story::Assertion const one{ "f.cpp", 1, "virtual bool Vornal::Sm::addAll(U32, const A&)", "" };
   EXPECT_TRUE( one.isIn( "Vornal::Sm::addAll" ) );
   EXPECT_TRUE( one.isIn( "Sm::addAll" ) );
   EXPECT_TRUE( one.isIn( "addAll" ) );
   for ( char const * const other : { "All", "add", "m::addAll", "Other::addAll", "A", "bool" } ) {
      EXPECT_FALSE( one.isIn( other ) ) << other;
   }
   EXPECT_TRUE(
      ( Story::Assertion{ "", 1, "T* Quelm::Ptr<T>::operator->() const [with T = X]", "" }.isIn(
         "operator->" ) ) );
   EXPECT_TRUE( ( Story::Assertion{ "", 1, "main()", "" }.isIn( "main" ) ) );
}

// What the check tells of these events, less the events themselves.
std::vector< Story::ExpectationChecked > judged( std::vector< Story::Event > const & events ) {
   Support::Recorder told;
   Story::StopCheck check( told );
   tell( check, events );
   return told.all< Story::ExpectationChecked >();
}

Story::StopExpected const kExpected{ "it stops", "s.yaml:7", "count < 2", "Sm::add" };

TEST( StopCheck, JudgesTheStepBehindTheExpectationAlone ) {
   auto const held = judged( { step( 1 ), kExpected, Story::StepEnds{ 1 }, step( 2 ), stopped() } );
   ASSERT_EQ( held.size(), 1U );
   EXPECT_TRUE( held[ 0 ].held ) << held[ 0 ].found;
   EXPECT_EQ( held[ 0 ].place, "s.yaml:7" );

   EXPECT_TRUE( judged( { step( 1 ), kExpected, stopped() } ).empty() );
   EXPECT_EQ( judged( { step( 1 ), kExpected, Story::StepEnds{ 1 }, step( 2 ), Story::StepEnds{ 2 },
                        step( 3 ), stopped() } )
                 .size(),
              1U );
}

TEST( StopCheck, DoesNotJudgeAnInterruptedStepOrTheTeardown ) {
   EXPECT_TRUE( judged( { step( 1 ), kExpected, Story::StepEnds{ 1 }, step( 2 ),
                          Story::Interrupted{ 2, "signal 2" } } )
                   .empty() );
   EXPECT_TRUE( judged( { step( 1 ), kExpected, Story::StepEnds{ 1 },
                          Story::StepBegins{ Story::StepKind::Teardown, 2, "teardown", "" },
                          Story::StepEnds{ 2 } } )
                   .empty() );
}

TEST( StopCheck, TakesAnExceptionByTheEndOfTheLastLine ) {
   Story::StopExpected const exception{ "it stops", "s.yaml:7", "out of range", "" };
   auto const verdict = [ & ]( Story::Stopped const & stop ) {
      return judged( { step( 1 ), exception, Story::StepEnds{ 1 }, step( 2 ), stop } ).at( 0 ).held;
   };
   EXPECT_TRUE( verdict( { "signal 6", {}, { "an exception: out of range" }, {} } ) );
   EXPECT_FALSE( verdict( { "signal 6", {}, { "an exception: range" }, {} } ) );
   EXPECT_FALSE( verdict( { "signal 6", {}, {}, {} } ) );
   Story::Stopped atAssertion = stopped();
   atAssertion.output = { "an exception: out of range" };
   EXPECT_FALSE( verdict( atAssertion ) );
}

}  // namespace
