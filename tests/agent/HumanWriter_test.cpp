#include <Story/HumanWriter.h>

#include <sstream>

#include <gtest/gtest.h>

#include <Stories.h>
#include <Support.h>

namespace {

using namespace Stories;

class HumanWriter : public testing::Test {
 protected:
   // What is printed for these events.
   std::string told( std::vector< Story::Event > const & events ) {
      out.str( "" );
      tell( writer, events );
      return out.str();
   }

   std::ostringstream out;
   Story::HumanWriter writer{ out, Story::Style( false ) };
};

TEST_F( HumanWriter, TellsStartUpLineByLine ) {
   EXPECT_EQ( told( startUp() ),
              "start-up (start-up.yaml)\n"
              "A leaf comes up.\n"
              "Published before the plug-in is loaded: 1 change of the state database and the "
              "agent's shared state.\n"
              "\n"
              "start-up: the plug-in is loaded\n"
              "   plug-in VornalEvpn.so loaded, it offers Vornal::VornalEvpnMounter\n"
              "   mounts evpn/status as Evpn::EvpnStatus, to read\n"
              "   mounts class/ids as Class::Ids, to write\n"
              "   mounts complete\n"
              "   takes evpn/status (Evpn::EvpnStatus)\n"
              "   looks up nothing: nobody publishes it\n"
              "   takes the agent's \"vornalCommon\" (Vornal::VornalCommonSmData)\n" );
}

TEST_F( HumanWriter, TellsAStepAndTheRulesThatItLeadsTo ) {
   told( startUp() );

   EXPECT_EQ( told( readyStep() ),
              "\n"
              "step 1: ready subagents::l2Ready\n"
              "   dependency point \"subagents::l2Ready\" is ready\n"
              "   asks for TCAM ingress group 157\n"
              "   variant egress-mask: Vornal::WithEgressMaskSm\n"
              "   marks its own dependency point \"evpn\" as ready\n"
              "   rule added: unit 0, ingress group 157, entry 1, \"Mark or drop\"\n"
              "      matches SrcVxlanGport 0x56000002 and PacketRes 4 mask 0xff (known unicast); "
              "does EgressMask "
              "ports 3, 4; "
              "priority 1\n"
              "   rule added: unit 0, ingress group 157, entry 2, \"Mark or drop\"\n"
              "      matches SrcVxlanGport 0x56000002 and PacketRes 4 mask 0xff (known unicast); "
              "does EgressMask "
              "ports 3, 4; "
              "priority 1; staged only, not written to the chip\n" );
}

TEST_F( HumanWriter, TellsWhatChangedInARuleAndWhichWasRemoved ) {
   told( readyStep() );
   Chip::Rule changed = rule( 1 );
   changed.content.actions = {};
   changed.content.priority.reset();

   std::string const text = told( { step( 2, "withdraw it" ), Story::RuleIs{ changed },
                                    Story::RuleGone{ rule( 2 ).key }, Story::StepEnds{ 2 } } );

   EXPECT_EQ( text,
              "\n"
              "step 2: withdraw it\n"
              "   rule changed: unit 0, ingress group 157, entry 1, \"Mark or drop\"\n"
              "      matches SrcVxlanGport 0x56000002 and PacketRes 4 mask 0xff (known unicast); "
              "does nothing; the "
              "group's default priority\n"
              "      before: matches SrcVxlanGport 0x56000002 and PacketRes 4 mask 0xff (known "
              "unicast); does "
              "EgressMask ports 3, 4; priority 1\n"
              "   rule removed: unit 0, ingress group 157, entry 2, \"Mark or drop\"\n" );
}

TEST_F( HumanWriter, NamesTheVtepThatHadAGportLast ) {
   using Change = Story::PublishedChange;
   std::string const path = "/hardware/vornal/vp/status/vornalL3";
   told( readyStep() );
   Chip::Rule changed = rule( 1 );
   changed.content.actions = {};
   std::string const vtep2 = " (VTEP 10.0.0.2)";
   std::optional< U32 > other = 7;
   auto const tellsOf = [ & ]( std::string const & vtep, std::vector< Change > const & changes ) {
      std::vector< Story::Event > events{ step( 2 ) };
      events.insert( events.end(), changes.begin(), changes.end() );
      std::swap( changed.content.priority, other );
      events.insert( events.end(), { Story::RuleIs{ changed }, Story::StepEnds{ 2 } } );
      std::string const text = told( events );
      return text.find( "SrcVxlanGport 0x56000002" + vtep + " and" ) != std::string::npos;
   };

   EXPECT_TRUE( tellsOf( "", { Change{ path, "remoteVport", "10.0.0.2@2", {}, "2" } } ) );
   EXPECT_TRUE( tellsOf( vtep2, { Change{ path, "remoteVport", "10.0.0.2", {}, "65538" } } ) );
   EXPECT_TRUE( tellsOf( vtep2, { Change{ path, "remoteVport", "10.0.0.2", "65538", {} } } ) );
   EXPECT_TRUE(
      tellsOf( " (VTEP 10.0.0.3)", { Change{ path, "remoteVport", "10.0.0.3", {}, "2" } } ) );
}

TEST_F( HumanWriter, TellsWhatThePlugInWritesAndLeavesOutWhatTheStepSaysItself ) {
   told( startUp() );

   std::string const text =
      told( { step( 1 ), Story::PublishedChange{ "/evpn/status", "a", "b", {}, "true" },
              Story::PublishedChange{ "/class/ids", "peer", "10.0.0.2", {}, "true" },
              Story::PublishedChange{ "/class/ids", "peer", "10.0.0.2", "true", {} },
              Story::StepEnds{ 1 } } );

   EXPECT_EQ( text,
              "\n"
              "step 1: ready subagents::l2Ready\n"
              "   writes /class/ids/peer[10.0.0.2]: true\n"
              "   deletes /class/ids/peer[10.0.0.2]\n" );
}

TEST_F( HumanWriter, ShowsTracesLogLinesAndWhatWasPrinted ) {
   EXPECT_EQ( told( { Story::Traced{ "VornalEvpnSm", 5, "add, unit: 0" },
                      Story::Logged{ "FULL", "%VORNAL-3-FULL: no room" },
                      Story::OutputLine{ "hello" } } ),
              "   trace VornalEvpnSm 5: add, unit: 0\n"
              "   log %VORNAL-3-FULL: no room\n"
              "   printed: hello\n" );
}

TEST_F( HumanWriter, IsBriefAboutExpectationsThatHeldAndSaysWhatWasFoundOtherwise ) {
   std::string const text =
      told( { step( 2, "expect plug-in ready" ), expectation( true ), Story::StepEnds{ 2 },
              step( 3, "expect both" ), expectation( true ), expectation( false ),
              Story::StepEnds{ 3 } } );

   EXPECT_EQ( text,
              "\n"
              "step 2: expect plug-in ready\n"
              "   as expected\n"
              "\n"
              "step 3: expect both\n"
              "   NOT as expected: plug-in ready; it is not ready (start-up.yaml:14)\n"
              "   the rest is as expected\n" );
}

TEST_F( HumanWriter, EndsWithOneVerdict ) {
   EXPECT_EQ( told( { Story::RunEnds{} } ), "\nCOMPLETED; 0 rules in the chip at the end.\n" );
   EXPECT_EQ( told( { expectation( true ), Story::RunEnds{} } ),
              "\nPASSED: 1 expectation held; 0 rules in the chip at the end.\n" );
   EXPECT_EQ( told( { expectation( false ), Story::RuleIs{ rule( 1 ) }, Story::RunEnds{} } ),
              "   NOT as expected: plug-in ready; it is not ready (start-up.yaml:14)\n"
              "\nFAILED: 1 of 2 expectations did not hold; 1 rule in the chip at the end.\n" );
}

TEST_F( HumanWriter, SaysInWhichStepThePlugInStoppedAndWhatItsLastWordsWere ) {
   told( readyStep() );

   EXPECT_EQ( told( { step( 2, "publish segment Port-Channel3" ), stopped() } ),
              "\n"
              "step 2: publish segment Port-Channel3\n"
              "\n"
              "STOPPED in step 2: the process of the plug-in ended with signal 6 (Aborted).\n"
              "   assertion  count < 2\n"
              "   at         Sm.cpp:117\n"
              "   in         void Vornal::Sm::add()\n"
              "The last lines of its trace ring:\n"
              "   VornalEvpnSm 5: add, unit: 0\n"
              "The last lines that it printed:\n"
              "   Sm.cpp:117: void Vornal::Sm::add(): Assertion 'count < 2' failed.\n" );
}

TEST_F( HumanWriter, ShowsAHalfBuiltRuleWhenThePlugInStopsInTheMiddleOfIt ) {
   std::string const text = told( { step( 2 ), Story::RuleIs{ rule( 7, false ) }, stopped() } );

   EXPECT_NE( text.find( "rule added: unit 0, ingress group 157, entry 7" ), std::string::npos );
   EXPECT_NE( text.find( "staged only, not written to the chip" ), std::string::npos );
}

// Whatever others call themselves, a terminal sees it written out.
TEST( HumanWriterStyle, LetsNoControlCharacterOfOthersThrough ) {
   std::string const evil = "\x1b]0;x\x07\r\xc2\x9b\x7f\xff";
   std::string const written = "\\x1b]0;x\\x07\\r\\u009b\\x7f\\xff";
   Chip::Rule named = rule( 1 );
   named.name = evil;
   Chip::Rule changed = named;
   changed.content.priority.reset();
   Story::EntityTree const tree{ evil, evil, evil, {} };
   Story::Difference difference;
   difference.rule = difference.field = difference.actual = evil;
   difference.expected = difference.because = evil;
   Story::Stopped stop = stopped();
   stop.assertion = Story::Assertion{ evil, 1, evil, evil };
   stop.output = { evil };
   stop.trace = { { evil, 1, evil } };
   std::vector< Story::Event > const events{
      Story::RunBegins{ evil, evil, evil + "\nof two lines", 1 },
      Story::StepBegins{ Story::StepKind::Scenario, 1, evil, evil },
      Story::PluginLoaded{ evil, { evil } },
      Story::MountAsked{ evil, evil, "wc" },
      Story::MountsDone{ evil, evil, { evil } },
      Story::EntityLookedUp{ evil, evil },
      Story::SharedEntityAsked{ evil, evil },
      Story::VariantChosen{ evil, evil },
      Story::DependencyPointReady{ evil, true },
      Story::PublishedChange{ "/" + evil, evil, evil, {}, evil },
      Story::RuleIs{ named },
      Story::Traced{ evil, 1, evil },
      Story::Logged{ evil, evil },
      Story::ExpectationChecked{ evil, evil, false, evil },
      Story::EntityDumped{ evil, tree },
      Story::RulesDumped{ { named } },
      Story::Audited{ 1, 1, { difference }, { evil } },
      Story::PluginPass{ Story::PluginPass::State::Skipped, evil },
      Story::OutputLine{ evil },
      Story::StepEnds{ 1 },
      Story::StepBegins{ Story::StepKind::Scenario, 2, evil, evil },
      Story::RuleIs{ changed },
      Story::StepEnds{ 2 },
      Story::RuleGone{ named.key },
      stop
   };
   std::ostringstream plain;
   Story::HumanWriter onFile( plain, Story::Style( false ) );
   tell( onFile, events );

   std::string const text = plain.str();
   EXPECT_GE( Support::timesIn( text, written ), 35U ) << text;
   for ( char const c : text ) {
      EXPECT_TRUE( c == '\n' || ( c >= ' ' && c < '\x7f' ) ) << static_cast< int >( c );
   }

   std::ostringstream coloured;
   Story::HumanWriter onTerminal( coloured, Story::Style( true ) );
   tell( onTerminal, events );
   EXPECT_EQ( Support::timesIn( coloured.str(), "\x1b" ),
              Support::timesIn( coloured.str(), "\x1b[31m" ) +
                 Support::timesIn( coloured.str(), "\x1b[1m" ) +
                 Support::timesIn( coloured.str(), "\x1b[32m" ) +
                 Support::timesIn( coloured.str(), "\x1b[0m" ) );
}

TEST_F( HumanWriter, NamesTheKnownLimitOfAStopAndItsRemedy ) {
   told( readyStep() );
   Story::Stopped stop = stopped();
   stop.assertion =
      Story::Assertion{ "EgressDropRules.cpp", 1, "void Vornal::Sm::efpTcamEntries(U32)",
                        "i2eClassId.isValid()" };

   std::string const text =
      told( { Story::VariantChosen{ "class-id", "T" }, step( 2, "publish virtual port" ),
              Story::PublishedChange{ "/p", "remoteVport", "10.0.0.2", "2", "3" }, stop } );

   EXPECT_NE( text.find( "A known limit (docs/limits.md):\n"
                         "   A grant turns into one without a class id\n"
                         "      Remedy: Withdraw the grant instead: a withdrawn grant changes "
                         "nothing in the plug-in.\n" ),
              std::string::npos )
      << text;
   EXPECT_EQ( told( { step( 3 ), stop } ).find( "known limit" ), std::string::npos );
}

TEST( HumanWriterStyle, UsesColoursOnlyWhereTheyAreWanted ) {
   std::ostringstream plain;
   Story::HumanWriter onFile( plain, Story::Style( false ) );
   tell( onFile, { step( 1 ), expectation( false ), Story::StepEnds{ 1 }, Story::RunEnds{} } );
   std::ostringstream coloured;
   Story::HumanWriter onTerminal( coloured, Story::Style( true ) );
   tell( onTerminal, { step( 1 ), expectation( false ), Story::StepEnds{ 1 }, Story::RunEnds{} } );

   EXPECT_EQ( Support::timesIn( plain.str(), "\x1b[" ), 0U );
   EXPECT_EQ( Support::timesIn( coloured.str(), "\x1b[1m\x1b[31m" ), 2U );
}

TEST_F( HumanWriter, TellsAWarningBelowItsStep ) {
   told( startUp() );
   EXPECT_EQ( told( { Story::Warning{ "leaf.yaml:7: no \x1b handle" } } ),
              "   warning: leaf.yaml:7: no \\x1b handle\n" );
}

TEST( FrameTotals, SaySoWhenNoCopyOfAFrameWasConsidered ) {
   Story::FrameTotals totals;
   EXPECT_EQ( totals.copiesText(), "no copies" );
}

TEST_F( HumanWriter, TellsInWhichStepTheRunWasInterruptedAndTheTotalsSoFar ) {
   told( startUp() );
   told( readyStep() );
   told( { step( 2 ), expectation( true ), expectation( false ) } );

   EXPECT_EQ( told( { Story::Interrupted{ 2, "signal 2 (Interrupt)" } } ),
              "\nINTERRUPTED in step 2 by signal 2 (Interrupt); so far 2 expectations, 1 of which "
              "did not hold, and 2 rules in the chip.\n" );
}

TEST_F( HumanWriter, NamesTheLimitThatATurnHasExceeded ) {
   Story::Stopped stop = stopped();
   stop.reason = "turn limit of 60 s";
   stop.isOverTime = true;
   told( startUp() );
   told( readyStep() );

   std::string const text = told( { stop } );

   EXPECT_EQ( text.substr( 0, text.find( '\n', 1 ) ),
              "\nSTOPPED in step 1: a turn did not come to its end, and the process of the plug-in "
              "was ended by the turn limit of 60 s; --turn-limit allows more." )
      << text;
}

}  // namespace
