// Steps of several changes in one turn, of entities that are replaced, and of calls that fail.
#include <gtest/gtest.h>

#include <Calls/Faults.h>
#include <ScenarioTexts.h>
#include <Steps/Call.h>
#include <Steps/Delete.h>
#include <Steps/EndAtCall.h>
#include <Steps/FailCall.h>
#include <Steps/Publish.h>
#include <Steps/Ready.h>
#include <Steps/RefuseEntry.h>
#include <Steps/Replace.h>
#include <Steps/Set.h>
#include <Steps/Turn.h>
#include <Steps/Withdraw.h>

namespace {

using namespace ScenarioTexts;

// The switch with one step, in line 10 and those after it.
std::string stepProblems( std::string const & step ) {
   return leafProblems( "steps:\n   - " + step + '\n' );
}

Scenario::Model modelOf( std::string const & step ) {
   return read( kPublished + "steps:\n   - " + step + '\n' );
}

template< typename Kind > Kind step( std::string const & text ) {
   return stepOf< Kind >( modelOf( text ) );
}

std::string described( std::string const & step ) {
   return modelOf( step ).steps.at( 0 ).action->description();
}

Scenario::AfterRestart afterRestart( std::string const & step ) {
   return modelOf( step ).steps.at( 0 ).action->afterRestart();
}

template< typename Kind > bool isOfKind( Steps::Turn::PlacedPart const & one ) {
   return dynamic_cast< Kind const * >( one.part.get() ) != nullptr;
}

// --- turn

TEST( ScenarioTurns, HoldTheirChangesInTheOrderWrittenWithTheirLines ) {
   auto const turn = step< Steps::Turn >(
      "turn:\n"
      "        - withdraw: { vteps: [ 10.0.0.2 ] }\n"
      "        - publish: { vteps: { 10.0.0.2: { virtual-port: 7 } } }\n"
      "        - replace: { segments: { Ethernet1: [] } }\n"
      "        - ready: subagents::l2Ready\n"
      "        - set: { entity: /a, attribute: b, value: c }\n"
      "        - delete: { entity: /a, attribute: b }\n"
      "        - call: { entity: /a, operation: b }" );

   ASSERT_EQ( turn.parts.size(), 7U );
   EXPECT_TRUE( isOfKind< Steps::Withdraw >( turn.parts[ 0 ] ) );
   EXPECT_TRUE( isOfKind< Steps::Publish >( turn.parts[ 1 ] ) );
   EXPECT_TRUE( isOfKind< Steps::Replace >( turn.parts[ 2 ] ) );
   EXPECT_TRUE( isOfKind< Steps::Ready >( turn.parts[ 3 ] ) );
   EXPECT_TRUE( isOfKind< Steps::Set >( turn.parts[ 4 ] ) );
   EXPECT_TRUE( isOfKind< Steps::Delete >( turn.parts[ 5 ] ) );
   EXPECT_TRUE( isOfKind< Steps::Call >( turn.parts[ 6 ] ) );
   EXPECT_EQ( turn.parts[ 0 ].line, 11 );
   EXPECT_EQ( turn.parts[ 6 ].line, 17 );
}

TEST( ScenarioTurns, AreDescribedChangeByChange ) {
   EXPECT_EQ( described( "turn: [ { withdraw: { vteps: [ 10.0.0.2 ] } },"
                         " { set: { entity: /a, attribute: b, value: c } } ]" ),
              "in one turn: withdraw virtual port of VTEP 10.0.0.2; set /a b to c" );
}

TEST( ScenarioTurns, RefuseAnEmptyList ) {
   EXPECT_EQ( stepProblems( "turn: []" ), "leaf.yaml:10: turn is empty; give one change at least" );
   EXPECT_EQ( stepProblems( "turn: { publish: {} }" ),
              "leaf.yaml:10: turn is a mapping; a list is expected" );
}

TEST( ScenarioTurns, RefuseWhatChangesNothing ) {
   EXPECT_EQ( stepProblems( "turn: [ { frames: { capture: a, on: Ethernet1 } } ]" ),
              "leaf.yaml:10: unknown word 'frames' in turn; known are ready, publish, withdraw, "
              "replace, set, delete and call" );
   EXPECT_EQ( stepProblems( "turn: [ { expect: { audit: in-sync } } ]" ),
              "leaf.yaml:10: unknown word 'expect' in turn; known are ready, publish, withdraw, "
              "replace, set, delete and call" );
}

TEST( ScenarioTurns, RefuseTwoWordsInOneElement ) {
   EXPECT_EQ( stepProblems( "turn:\n"
                            "        - { ready: subagents::l2Ready,"
                            " withdraw: { vteps: [ 10.0.0.2 ] } }" ),
              "leaf.yaml:11: an element of turn changes one thing, but this one changes 2; write "
              "an element for "
              "each" );
}

TEST( ScenarioTurns, RefuseWhatTheirWordsRefuse ) {
   EXPECT_EQ( stepProblems( "turn:\n        - publish: { segments: { Ethernet9: [] } }" ),
              "leaf.yaml:11: Ethernet9 is not defined; define it under 'interfaces'" );
}

// --- replace

TEST( ScenarioReplace, TakesWholeEntitiesWithWhatTheyHold ) {
   auto const replace = step< Steps::Replace >(
      "replace:\n"
      "        segments: { Ethernet1: [ 10.0.0.2, 10.0.0.3 ], Port-Channel2: [] }\n"
      "        tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 50001, blue: none } } }" );

   ASSERT_EQ( replace.replacements.size(), 3U );
   auto const & first = std::get< Scenario::SegmentReplaced >( replace.replacements[ 0 ].what );
   EXPECT_EQ( first.intf.stringValue(), "Ethernet1" );
   EXPECT_EQ( first.vteps.size(), 2U );
   EXPECT_EQ( replace.replacements[ 0 ].line, 11 );
   EXPECT_TRUE(
      std::get< Scenario::SegmentReplaced >( replace.replacements[ 1 ].what ).vteps.empty() );
   auto const & tunnel =
      std::get< Scenario::TunnelInterfaceReplaced >( replace.replacements[ 2 ].what );
   EXPECT_EQ( tunnel.vnis.size(), 2U );
   EXPECT_TRUE( tunnel.vnis[ 1 ].vni.isNone() );
   EXPECT_EQ( replace.replacements[ 2 ].line, 12 );
}

TEST( ScenarioReplace, IsDescribedEntityByEntity ) {
   EXPECT_EQ( described( "replace: { segments: { Ethernet1: [ 10.0.0.2, 10.0.0.3 ] },"
                         " tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 50001 } } } }" ),
              "replace by segment Ethernet1 with VTEP 10.0.0.2 and 10.0.0.3, tunnel interface "
              "Vxlan1 with VNI 50001 of VRF red" );
   EXPECT_EQ( described( "replace: { segments: { Ethernet1: [] }, tunnel-interfaces: { Vxlan1: {} "
                         "} }" ),
              "replace by segment Ethernet1 with no VTEP, tunnel interface Vxlan1 with no VNI" );
}

TEST( ScenarioReplace, RefusesWhatHasNoEntityOfItsOwn ) {
   EXPECT_EQ( stepProblems( "replace: { vteps: { 10.0.0.2: { virtual-port: 2 } } }" ),
              "leaf.yaml:10: unknown word 'vteps' in replace; known are segments and "
              "tunnel-interfaces" );
   EXPECT_EQ( stepProblems( "replace: {}" ),
              "leaf.yaml:10: replace is empty; give one at least of segments and "
              "tunnel-interfaces" );
}

// --- fail-call

TEST( ScenarioFailCall, NamesOperationNumberAndCode ) {
   auto const fail =
      step< Steps::FailCall >( "fail-call: { operation: installEntry, number: 3, code: -6 }" );
   EXPECT_EQ( fail.operation, "installEntry" );
   EXPECT_EQ( fail.number, 3U );
   EXPECT_EQ( fail.code, -6 );
   EXPECT_EQ( described( "fail-call: { operation: installEntry, number: 3, code: -6 }" ),
              "call 3 of installEntry from now on is not made and gives code -6" );
}

TEST( ScenarioFailCall, IsTheNextCallIfNoNumberIsGiven ) {
   auto const fail =
      step< Steps::FailCall >( "fail-call: { operation: bcm_field_action_add, code: 2 }" );
   EXPECT_EQ( fail.number, 1U );
   EXPECT_EQ( fail.code, 2 );
}

TEST( ScenarioFailCall, KnowsEveryOperationThatCanFail ) {
   for ( std::string_view const name : Chip::kFallibleOperations ) {
      EXPECT_EQ( stepProblems( "fail-call: { operation: " + std::string( name ) + ", code: -1 }" ),
                 "" );
   }
}

TEST( ScenarioFailCall, RefusesAnOperationThatCannotFail ) {
   EXPECT_EQ( stepProblems( "fail-call: { operation: installEntri, code: -1 }" ),
              "leaf.yaml:10: operation is 'installEntri'; did you mean 'installEntry'?" );
}

TEST( ScenarioFailCall, RefusesWhatIsNoNumberOrCode ) {
   EXPECT_EQ( stepProblems( "fail-call: { operation: installEntry, number: 0, code: -1 }" ),
              "leaf.yaml:10: number is '0'; a whole number from 1 to 4294967295 is expected" );
   for ( std::string const code : { "0", "full", "-1.5", "3000000000", "'-1'" } ) {
      std::string const bare = code.front() == '\'' ? code.substr( 1, code.size() - 2 ) : code;
      EXPECT_EQ( stepProblems( "fail-call: { operation: installEntry, code: " + code + " }" ),
                 "leaf.yaml:10: code is '" + bare +
                    "'; a result code of the chip is expected, as in -1, which is not 0 and stands "
                    "without quotes" );
   }
   EXPECT_EQ( stepProblems( "fail-call: { operation: installEntry }" ),
              "leaf.yaml:10: 'code' is missing in fail-call; give it, as in 'code: -1'" );
}

TEST( ScenarioFailCall, CountsEveryOperationIfNoneIsGiven ) {
   EXPECT_EQ( step< Steps::FailCall >( "fail-call: { number: 3, code: -6 }" ).operation, "" );
   EXPECT_EQ( described( "fail-call: { number: 3, code: -6 }" ),
              "call 3 from now on is not made and gives code -6" );
}

TEST( ScenarioFailCall, CanBeLasting ) {
   constexpr char kLasting[] = "fail-call: { operation: installEntry, lasting: true, code: -6 }";
   EXPECT_TRUE( step< Steps::FailCall >( kLasting ).isLasting );
   EXPECT_EQ( described( kLasting ),
              "calls of installEntry from number 1 from now on are not made and give code -6" );
   EXPECT_EQ( stepProblems( "fail-call: { lasting: often, code: -6 }" ),
              "leaf.yaml:10: lasting is 'often'; true or false is expected" );
}

// --- refuse-entry

TEST( ScenarioRefuseEntry, NamesTheNumberOfTheRequest ) {
   EXPECT_EQ( step< Steps::RefuseEntry >( "refuse-entry: { number: 3 }" ).number, 3U );
   EXPECT_EQ( described( "refuse-entry: { number: 3 }" ),
              "request 3 for an entry from now on finds no room" );
   EXPECT_EQ( stepProblems( "refuse-entry: { number: 0 }" ),
              "leaf.yaml:10: number is '0'; a whole number from 1 to 4294967295 is expected" );
}

// --- What becomes of a step when another process of the agent comes up

TEST( ScenarioAfterRestart, LastsWhatOthersPublishAndHold ) {
   for ( std::string const text :
         { "publish: { vteps: { 10.0.0.2: { virtual-port: 2 } } }",
           "set: { entity: /evpn/status, attribute: a, value: 1 }",
           "foreign-entries: { group: ingress, count: 1 }", "class-id-allocator: paused",
           "turn: [ ready: subagents::l2Ready, withdraw: { segments: [ Ethernet1 ] } ]" } ) {
      EXPECT_EQ( afterRestart( text ), Scenario::AfterRestart::lasts ) << text;
   }
}

TEST( ScenarioAfterRestart, RepeatsWhatBelongsToTheStartAndForgetsTheRest ) {
   for ( std::string const text :
         { "ready: subagents::l2Ready", "turn: [ ready: subagents::l2Ready ]" } ) {
      EXPECT_EQ( afterRestart( text ), Scenario::AfterRestart::repeated ) << text;
   }
   for ( std::string const text :
         { "note: a", "verify: audit", "end-at-call: { number: 1 }", "dump: rules",
           "fail-call: { code: -1 }", "refuse-entry: { number: 1 }",
           "expect: { rules: { group: ingress, count: 0 } }" } ) {
      EXPECT_EQ( afterRestart( text ), Scenario::AfterRestart::over ) << text;
   }
}

// --- end-at-call

TEST( ScenarioEndAtCall, NamesTheCall ) {
   auto const any = step< Steps::EndAtCall >( "end-at-call: { number: 3 }" );
   EXPECT_EQ( any.operation, "" );
   EXPECT_EQ( any.number, 3U );
   EXPECT_EQ( described( "end-at-call: { number: 3 }" ), "the process ends at call 3 from now on" );
   constexpr char kOne[] = "end-at-call: { operation: installEntry, number: 2 }";
   EXPECT_EQ( step< Steps::EndAtCall >( kOne ).operation, "installEntry" );
   EXPECT_EQ( described( kOne ), "the process ends at call 2 of installEntry from now on" );
   EXPECT_EQ( stepProblems( "end-at-call: { operation: installEntry }" ),
              "leaf.yaml:10: 'number' is missing in end-at-call; give it, as in 'number: 1'" );
   EXPECT_EQ( stepProblems( "end-at-call: { number: 0 }" ),
              "leaf.yaml:10: number is '0'; a whole number from 1 to 4294967295 is expected" );
}

}  // namespace
