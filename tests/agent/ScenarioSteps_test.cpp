// The steps of a scenario, less what they publish and expect.
#include <gtest/gtest.h>

#include <ScenarioTexts.h>
#include <Steps/Call.h>
#include <Steps/Delete.h>
#include <Steps/Note.h>
#include <Steps/Ready.h>
#include <Steps/Set.h>

namespace {

using namespace ScenarioTexts;

// The switch with one step, in line 10 and those after it.
std::string stepProblems( std::string const & step ) {
   return leafProblems( "steps:\n   - " + step + '\n' );
}

template< typename Kind > Kind step( std::string const & text ) {
   return stepOf< Kind >( readLeaf( "steps:\n   - " + text + '\n' ) );
}

TEST( ScenarioSteps, StandInTheOrderWrittenWithTheirLines ) {
   auto const model = readLeaf(
      "steps:\n"
      "   - note: first\n"
      "   -\n"
      "      ready: subagents::l2Ready\n" );
   ASSERT_EQ( model.steps.size(), 2U );
   EXPECT_EQ( model.steps[ 0 ].line, 10 );
   EXPECT_EQ( stepOf< Steps::Note >( model, 0 ).text, "first" );
   EXPECT_EQ( model.steps[ 1 ].line, 12 );
   EXPECT_EQ( stepOf< Steps::Ready >( model, 1 ).point, "l2Ready" );
}

TEST( ScenarioSteps, SetAnAttributeWithKeyAndValue ) {
   auto const set = step< Steps::Set >(
      "set: { entity: /shared/vornalCommon, "
      "attribute: vornalModId, key: 0, value: 5 }" );
   EXPECT_EQ( set.at.entity.stringValue(), "/shared/vornalCommon" );
   EXPECT_EQ( set.at.attribute, "vornalModId" );
   EXPECT_EQ( set.at.key, "0" );
   EXPECT_EQ( set.value, "5" );
}

TEST( ScenarioSteps, SetTextsAsTheyAreWritten ) {
   auto const set = step< Steps::Set >( "set: { entity: /a, attribute: b, value: true }" );
   EXPECT_EQ( set.value, "true" );
   EXPECT_EQ( set.at.key, "" );
   EXPECT_EQ( step< Steps::Set >( "set: { entity: /a, attribute: b, value: '\"\"' }" ).value,
              "\"\"" );
}

TEST( ScenarioSteps, DeleteAKey ) {
   auto const step_ = step< Steps::Delete >(
      "delete: { entity: '/evpn/status/segmentStatus[Port-Channel2]', attribute: remoteTep, "
      "key: 10.0.0.2 }" );
   EXPECT_EQ( step_.at.entity.stringValue(), "/evpn/status/segmentStatus[Port-Channel2]" );
   EXPECT_EQ( step_.at.key, "10.0.0.2" );
}

TEST( ScenarioSteps, CallAnOperationWithItsArguments ) {
   auto const call = step< Steps::Call >(
      "call: { entity: /shared/vornalCommon, operation: intfPortIs, "
      "arguments: [ Ethernet1, unit0/port5/mod1 ] }" );
   EXPECT_EQ( call.entity.stringValue(), "/shared/vornalCommon" );
   EXPECT_EQ( call.operation, "intfPortIs" );
   EXPECT_EQ( call.arguments, ( std::vector< std::string >{ "Ethernet1", "unit0/port5/mod1" } ) );
   EXPECT_TRUE( step< Steps::Call >( "call: { entity: /a, operation: b }" ).arguments.empty() );
}

TEST( ScenarioSteps, AreLeftOutOnTheOtherVariant ) {
   EXPECT_TRUE( readLeaf( "steps: [ { only-on: class-id, note: tagged } ]\n" ).steps.empty() );
   EXPECT_EQ( readLeaf( "steps: [ { only-on: egress-mask, note: masked } ]\n" ).steps.size(), 1U );
}

TEST( ScenarioSteps, AreReadAlsoWhereTheyAreLeftOut ) {
   EXPECT_EQ( stepProblems( "{ only-on: class-id, ready: l2Ready }" ),
              "leaf.yaml:10: ready is 'l2Ready'; a sub-agent's dependency point is expected, as in "
              "subagents::l2Ready" );
}

// --- what is refused

TEST( ScenarioSteps, AreAList ) {
   EXPECT_EQ( leafProblems( "steps: { note: a }\n" ),
              "leaf.yaml:9: steps is a mapping; a list is expected" );
   EXPECT_EQ( leafProblems( "steps:\n" ), "leaf.yaml:9: steps is empty; a list is expected" );
}

TEST( ScenarioSteps, AreMappings ) {
   EXPECT_EQ( stepProblems( "ready" ),
              "leaf.yaml:10: an element of steps is text; a mapping is expected, of note, ready, "
              "publish, withdraw, replace, set, delete, call, turn, frame, frames, "
              "designated-forwarder, foreign-entries, class-id-allocator, dump, "
              "drift, fail-call, refuse-entry, end-at-call, verify, expect and only-on" );
   EXPECT_EQ( leafProblems( "steps:\n   -\n" ),
              "leaf.yaml:10: an element of steps is empty; a mapping is expected, of note, ready, "
              "publish, withdraw, replace, set, delete, call, turn, frame, frames, "
              "designated-forwarder, foreign-entries, class-id-allocator, dump, "
              "drift, fail-call, refuse-entry, end-at-call, verify, expect and only-on" );
}

TEST( ScenarioSteps, DoOneThingEach ) {
   EXPECT_EQ( stepProblems( "{ note: a, ready: subagents::l2Ready }" ),
              "leaf.yaml:10: a step does one thing, but this one does 2; write a step for each" );
   EXPECT_EQ( stepProblems( "only-on: class-id" ),
              "leaf.yaml:10: a step does one thing, but this one does 0; write a step for each" );
}

TEST( ScenarioSteps, RefuseAnUnknownWord ) {
   EXPECT_EQ( stepProblems( "pubish: {}" ),
              "leaf.yaml:10: unknown word 'pubish' in step; did you mean 'publish'?" );
}

TEST( ScenarioSteps, RefuseAnEmptyNote ) {
   EXPECT_EQ( stepProblems( "note: ''" ), "leaf.yaml:10: note is empty; text is expected" );
}

TEST( ScenarioSteps, RefuseAPointThatIsNoSubAgents ) {
   for ( std::string const point : { "l2Ready", "subagents::", "evpn" } ) {
      EXPECT_EQ( stepProblems( "ready: '" + point + "'" ),
                 "leaf.yaml:10: ready is '" + point +
                    "'; a sub-agent's dependency point is expected, as in subagents::l2Ready" );
   }
}

TEST( ScenarioSteps, RefuseAVariantThatThereIsNot ) {
   EXPECT_EQ( stepProblems( "{ note: a, only-on: class_id }" ),
              "leaf.yaml:10: only-on is 'class_id'; did you mean 'class-id'?" );
}

TEST( ScenarioSteps, MissEntityAndAttribute ) {
   EXPECT_EQ( stepProblems( "set: { value: 1 }" ),
              "leaf.yaml:10: 'entity' is missing in set; give it, as in 'entity: /evpn/status'\n"
              "leaf.yaml:10: 'attribute' is missing in set; give it, as in 'attribute: "
              "segmentStatus'" );
   EXPECT_EQ( stepProblems( "delete: { entity: /evpn/status }" ),
              "leaf.yaml:10: 'attribute' is missing in delete; give it, as in 'attribute: "
              "segmentStatus'" );
   EXPECT_EQ( stepProblems( "call: { entity: /shared/vornalCommon }" ),
              "leaf.yaml:10: 'operation' is missing in call; give it, as in 'operation: "
              "intfPortDel'" );
}

TEST( ScenarioSteps, RefuseWordsOfAnotherStep ) {
   EXPECT_EQ( stepProblems( "delete: { entity: /a, attribute: b, value: c }" ),
              "leaf.yaml:10: unknown word 'value' in delete; known are entity, attribute and key" );
}

TEST( ScenarioSteps, RefuseAPathThatIsNone ) {
   EXPECT_EQ( stepProblems(
                 "set: { entity: evpn/status, attribute: segmentStatus, key: Ethernet1 }" ),
              "leaf.yaml:10: 'evpn/status' is not the path of an entity, as in "
              "/evpn/status/segmentStatus[Port-Channel2]: expected '/' at character 1, found "
              "'evpn/status'" );
}

TEST( ScenarioSteps, RefuseArgumentsThatAreNoListOfTexts ) {
   EXPECT_EQ( stepProblems( "call: { entity: /a, operation: b, arguments: c }" ),
              "leaf.yaml:10: arguments is text; a list is expected" );
   EXPECT_EQ( stepProblems( "call: { entity: /a, operation: b, arguments: [ {} ] }" ),
              "leaf.yaml:10: an element of arguments is a mapping; text is expected" );
}

TEST( ScenarioSteps, TellsASlipOfThePenFromAnotherDependencyPoint ) {
   EXPECT_EQ( stepProblems( "ready: subagents::l2Redy" ),
              "leaf.yaml:10: ready is 'subagents::l2Redy'; did you mean 'subagents::l2Ready'?" );
   EXPECT_EQ( stepProblems( "ready: subagents::l3Ready" ), "" );
   EXPECT_EQ( stepProblems( "ready: subagents::vxlan" ), "" );
}

TEST( ScenarioSteps, DoNotFollowWhatIsPublishedBehindAStepThatCanChangeAnything ) {
   EXPECT_EQ( stepProblems( "call: { entity: /shared/vornalCommon, operation: a }\n"
                            "   - withdraw: { vteps: [ 10.0.0.2 ] }" ),
              "" );
   EXPECT_EQ( stepProblems( "call: { entity: /plugins/a, operation: b }\n"
                            "   - withdraw: { vteps: [ 10.0.0.2 ] }" ),
              "leaf.yaml:11: 10.0.0.2 has no virtual port at this point, so nothing can be "
              "withdrawn; publish it before, or leave this out" );
}

TEST( ScenarioSteps, CanExpectWhatTheMounterTracesByDefault ) {
   std::string const step = "expect: { trace: { handle: VornalEvpnMounter, text: a, level: ";
   EXPECT_EQ( stepProblems( step + "8 } }" ), "" );
   EXPECT_EQ( stepProblems( step + "7 } }" ),
              "leaf.yaml:10: level 7 of VornalEvpnMounter is not traced here; switch it on, as in "
              "'trace: { VornalEvpnMounter: 0-7 }'" );
}

}  // namespace
