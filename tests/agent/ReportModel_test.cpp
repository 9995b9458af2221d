// What a report collects from the events of a run.
#include <Report/Collector.h>
#include <Report/Data.h>
#include <Report/Page.h>

#include <gtest/gtest.h>

#include <Stories.h>

namespace {

using Report::Collector;
using Report::RuleChange;
using Story::Node;

constexpr Chip::RuleKey kKey{ 0, 157, 1 };

Chip::FrameStory frameFrom( std::string const & vtep, std::optional< Chip::RuleKey > rule ) {
   Chip::FrameStory frame;
   frame.tunnel.emplace();
   frame.tunnel->source = Pelk::IpGenAddr::fromString( vtep );
   frame.kind = Chip::FrameKind::Broadcast;
   frame.ingress.push_back( { 0, rule, 0 } );
   frame.copies.push_back(
      { .verdict = rule ? Chip::Verdict::Masked : Chip::Verdict::Sent, .rule = rule } );
   return frame;
}

// --- Texts and trees

TEST( ReportTexts, KeepsATextOnceInAFormThatCanBePrinted ) {
   Report::Texts texts;
   EXPECT_EQ( texts.idOf( "a" ), 0U );
   EXPECT_EQ( texts.idOf( "\x1b[31m" ), 1U );
   EXPECT_EQ( texts.idOf( "a" ), 0U );
   EXPECT_EQ( texts.all(), ( std::vector< std::string >{ "a", "\\x1b[31m" } ) );
}

TEST( ReportTexts, NoCharacterOfTheDataIsMarkup ) {
   EXPECT_EQ( Report::escaped( R"(["</script>&"])" ), R"(["\u003c/script\u003e\u0026"])" );
}

TEST( ReportExplanations, EqualPartsOfTreesStandOnce ) {
   Report::Explanations trees;
   Report::Texts texts;
   Report::RuleHistory const rules( 10 );
   Node const same{ "tunnel", "from VTEP 10.0.0.2", {}, { { "x", "below" } } };
   U32 const first = trees.add( { "frame", "frame 1", {}, { same, same } }, rules, texts );
   std::size_t const before = trees.trees().size();
   U32 const second = trees.add( { "frame", "frame 2", {}, { same } }, rules, texts );

   EXPECT_EQ( before, 3U );
   EXPECT_EQ( trees.trees().size(), 4U );
   EXPECT_EQ( trees.trees()[ first ][ 3 ], trees.trees()[ second ][ 3 ] );
   EXPECT_EQ( trees.trees()[ first ].size(), 5U ) << "two children";
}

TEST( ReportExplanations, ANodeBelowALookupLeadsToTheRuleOfTheMoment ) {
   Report::Texts texts;
   Report::RuleHistory rules( 10 );
   Node const lookup{
      "ingress-lookup",
      "ingress rules",
      {},
      { { "winner", "entry 1 matches", { { "unit", U64{ 0 } }, { "entry", U64{ 1 } } }, {} } }
   };
   auto const ruleIn = [ & ] {
      Report::Explanations trees;
      trees.add( lookup, rules, texts );
      return trees.trees()[ 0 ][ 2 ];
   };
   EXPECT_EQ( ruleIn(), 0U ) << "there is none";
   rules.onEvent( Story::RuleIs{ Stories::rule( 1 ) }, 1 );
   EXPECT_EQ( ruleIn(), 1U );
   rules.onEvent( Story::RuleGone{ kKey }, 2, texts );
   rules.onEvent( Story::RuleIs{ Stories::rule( 1 ) }, 3 );
   EXPECT_EQ( ruleIn(), 2U ) << "another rule has the entry";
}

// --- Rules

TEST( ReportRules, AnEntryThatIsObtainedAgainIsAnotherRule ) {
   Report::Texts texts;
   Report::RuleHistory rules( 10 );
   rules.onEvent( Story::RuleIs{ Stories::rule( 1 ) }, 1 );
   EXPECT_EQ( rules.at( kKey ), 0U );
   auto const added = rules.changes( 1, texts );
   rules.onEvent( Story::RuleGone{ kKey }, 2, texts );
   EXPECT_EQ( rules.at( kKey ), std::nullopt );
   auto const removed = rules.changes( 2, texts );
   rules.onEvent( Story::RuleIs{ Stories::rule( 1 ) }, 3 );

   ASSERT_EQ( rules.rules().size(), 2U );
   EXPECT_EQ( rules.rules()[ 0 ].until, 2U );
   EXPECT_EQ( rules.rules()[ 1 ].since, 3U );
   EXPECT_EQ( rules.at( kKey ), 1U );
   EXPECT_EQ( added.at( 0 ).what, RuleChange::What::Added );
   EXPECT_EQ( removed.at( 0 ).what, RuleChange::What::Removed );
   EXPECT_EQ( removed.at( 0 ).rule, 0U );
}

TEST( ReportRules, ARuleThatComesAndGoesInAStepHasItsForm ) {
   Report::Texts texts;
   Report::RuleHistory rules( 10 );
   rules.onEvent( Story::PublishedChange{ "/vp", "remoteVport", "10.0.0.2", {}, "2" } );
   rules.onEvent( Story::RuleIs{ Stories::rule( 1 ) }, 1 );
   rules.onEvent( Story::RuleGone{ kKey }, 1, texts );

   EXPECT_TRUE( rules.changes( 1, texts ).empty() );
   ASSERT_EQ( rules.rules()[ 0 ].forms.size(), 1U );
   EXPECT_EQ( texts.all()[ rules.rules()[ 0 ].forms[ 0 ].matches ],
              "SrcVxlanGport 0x56000002 (VTEP 10.0.0.2) and PacketRes 4 mask 0xff (known "
              "unicast)" );
}

TEST( ReportRules, AGroundIsToldWhenItChanges ) {
   Report::Texts texts;
   Report::RuleHistory rules( 10 );
   rules.onEvent( Story::RuleIs{ Stories::rule( 1 ) }, 1 );
   auto const answer = [ & ]( U32 step, std::string const & because ) {
      rules.onEvent( Story::Table{ "rules",
                                   { "unit", "group", "entry", "because" },
                                   { { U64{ 0 }, "ingress group 157", U64{ 1 }, because },
                                     { U64{ 1 }, "ingress group 157", U64{ 1 }, "another" } } },
                     step, texts );
   };
   answer( 1, "one" );
   answer( 2, "one" );
   answer( 3, "two" );
   auto const & grounds = rules.rules()[ 0 ].grounds;
   ASSERT_EQ( grounds.size(), 2U );
   EXPECT_EQ( grounds[ 1 ].step, 3U );
   EXPECT_EQ( texts.all()[ grounds[ 1 ].because ], "two" );
}

TEST( ReportRules, RulesWithoutEndAreCounted ) {
   Report::Texts texts;
   Report::RuleHistory rules( 1 );
   for ( U32 step = 1; step <= 3; ++step ) {
      rules.onEvent( Story::RuleIs{ Stories::rule( 1 ) }, step );
      EXPECT_EQ( rules.at( kKey ).has_value(), step == 1 );
      rules.onEvent( Story::RuleGone{ kKey }, step, texts );
   }
   EXPECT_EQ( rules.rules().size(), 1U );
   EXPECT_EQ( rules.leftOut(), 2U );
}

// --- The run

TEST( ReportCollector, LeavesOutWhatIsTooMuchAndCountsIt ) {
   Collector collector( {}, { .frames = 1, .explained = 1, .rules = 1, .lines = 2 } );
   Stories::tell( collector, Stories::startUp() );
   Stories::tell( collector, Stories::readyStep() );
   collector.onEvent( Stories::step( 2 ) );
   for ( U64 number = 1; number <= 3; ++number ) {
      collector.onEvent( Story::FrameExplained{ { "frame", std::to_string( number ) } } );
      collector.onEvent( Story::FrameForwarded{ number, frameFrom( "10.0.0.2", kKey ) } );
      collector.onEvent( Story::Logged{ "NAME", "a line" } );
      collector.onEvent( Story::PublishedChange{ "/x", "y", "", {}, "1" } );
   }
   collector.onEvent( Story::StepEnds{ 2 } );

   Report::Model const & model = collector.model();
   Report::Step const & step = model.steps.back();
   EXPECT_EQ( model.frames.frames().size(), 1U );
   EXPECT_EQ( model.explanations.trees().size(), 1U );
   EXPECT_EQ( model.totals.frames, 3U );
   EXPECT_EQ( step.frames, 3U );
   EXPECT_EQ( step.frameTable.size(), 2U ) << "a heading and a row for all frames";
   EXPECT_EQ( step.lines.size(), 2U );
   EXPECT_EQ( step.linesLeftOut, 1U );
   EXPECT_EQ( step.changesLeftOut, 1U );
   EXPECT_EQ( model.rules.leftOut(), 1U );
}

TEST( ReportCollector, AnExplanationBelongsToTheFrameThatFollowsIt ) {
   Collector collector( {} );
   Stories::tell( collector, Stories::startUp() );
   collector.onEvent( Story::FrameExplained{
      { "frame",
        "frame 1",
        {},
        { { "verdict",
            "twice",
            { { "twice", std::vector< std::string >{ "Ethernet1" } } } } } } } );
   collector.onEvent( Story::FrameForwarded{ 1, frameFrom( "10.0.0.2", {} ) } );
   collector.onEvent( Story::FrameForwarded{ 2, frameFrom( "10.0.0.2", {} ) } );

   auto const & frames = collector.model().frames.frames();
   EXPECT_TRUE( frames[ 0 ].explanation.has_value() );
   EXPECT_TRUE( frames[ 0 ].isTwice );
   EXPECT_FALSE( frames[ 1 ].explanation.has_value() );
   EXPECT_FALSE( frames[ 1 ].isTwice );
   EXPECT_EQ( frames[ 0 ].fate, frames[ 1 ].fate ) << "equal fates stand once";
   EXPECT_EQ( collector.model().frames.explained(), 1U );
}

TEST( ReportCollector, AStepWithoutAnswersHasThoseOfTheStepBefore ) {
   Collector collector( {} );
   Stories::tell( collector, Stories::startUp() );
   Story::Table const ports{ "ports", { "unit" }, { { U64{ 0 } } } };
   collector.onEvent( Stories::step( 1 ) );
   collector.onEvent( Story::TableShown{ ports } );
   collector.onEvent( Stories::step( 2 ) );
   collector.onEvent( Story::TableShown{ ports } );
   collector.onEvent( Stories::step( 3 ) );
   collector.onEvent( Stories::stopped() );

   Report::Model const & model = collector.model();
   EXPECT_EQ( model.tables.at( "ports" ).size(), 1U ) << "an equal answer stands once";
   EXPECT_EQ( model.steps.back().tables.at( "ports" ), 0U );
   EXPECT_EQ( model.ending.name, "stopped" );
   EXPECT_EQ( Report::dataOf( model )[ "end" ][ "stop" ][ "assertion" ][ "expression" ],
              "count < 2" );
}

TEST( ReportCollector, TellsWhoInterruptedTheRun ) {
   Collector collector( {} );
   Stories::tell( collector, Stories::startUp() );
   collector.onEvent( Stories::step( 1 ) );
   collector.onEvent( Story::RuleIs{ Stories::rule( 1 ) } );
   collector.onEvent( Story::Interrupted{ 2, "signal 2 (Interrupt)" } );
   EXPECT_EQ( collector.model().ending.interrupted, "signal 2 (Interrupt)" );
   EXPECT_EQ( collector.model().steps.back().rules.size(), 1U );
}

}  // namespace
