// What a step says of itself in the output.
#include <gtest/gtest.h>

#include <ScenarioTexts.h>

namespace {

using namespace ScenarioTexts;

std::string described( std::string const & step ) {
   auto const model =
      read( kPublished + "trace: { VornalEvpnSm: 0-8 }\nsteps:\n   - " + step + '\n' );
   return model.steps.at( 0 ).action->description();
}

TEST( ScenarioDescription, OfANoteIsItsText ) {
   EXPECT_EQ( described( "note: A VTEP comes." ), "A VTEP comes." );
}

TEST( ScenarioDescription, OfAReadyPointHasItsGroup ) {
   EXPECT_EQ( described( "ready: subagents::l2Ready" ), "ready subagents::l2Ready" );
}

TEST( ScenarioDescription, OfWhatIsPublishedNamesEveryChange ) {
   EXPECT_EQ( described( "publish: { interfaces: { Ethernet1: { unit: 0, port: 7 } },"
                         " segments: { Ethernet1: [ 10.0.0.2 ] } }" ),
              "publish Ethernet1 on unit0/port7/mod1, segment Ethernet1, VTEP 10.0.0.2 on segment "
              "Ethernet1" );
}

TEST( ScenarioDescription, OfWhatIsWithdrawnLeavesTheValuesOut ) {
   EXPECT_EQ( described(
                 "withdraw: { vteps: [ 10.0.0.2 ], tunnel-interfaces: { Vxlan1: [ red ] } }" ),
              "withdraw virtual port of VTEP 10.0.0.2, VNI of VRF red on Vxlan1" );
}

TEST( ScenarioDescription, OfAttributesNamesEntityAttributeAndKey ) {
   EXPECT_EQ( described( "set: { entity: /a, attribute: b, key: c, value: d }" ),
              "set /a b[c] to d" );
   EXPECT_EQ( described( "set: { entity: /a, attribute: b, key: c }" ), "set /a b[c]" );
   EXPECT_EQ( described( "delete: { entity: /a, attribute: b }" ), "delete /a b" );
}

TEST( ScenarioDescription, OfACallReadsAsOne ) {
   EXPECT_EQ( described( "call: { entity: /a, operation: b, arguments: [ c, d ] }" ),
              "call /a b( c, d )" );
   EXPECT_EQ( described( "call: { entity: /a, operation: b }" ), "call /a b()" );
}

TEST( ScenarioDescription, OfExpectationsNamesEach ) {
   EXPECT_EQ(
      described( "expect: [ { plug-in: waiting, tcam-groups: [] },"
                 " { plug-in: ready, tcam-groups: [ egress, ingress ] } ]" ),
      "expect plug-in waiting, TCAM groups asked for: none, plug-in ready, TCAM groups asked "
      "for: egress, ingress" );
}

TEST( ScenarioDescription, OfAnExpectedStateSaysWhatIsCompared ) {
   EXPECT_EQ( described( "expect: { state: { entity: /a, attribute: b, key: c, equals: d } }" ),
              "expect /a b[c] equals d" );
   EXPECT_EQ( described( "expect: { state: { entity: /a, attribute: b, has: c } }" ),
              "expect /a b has c" );
   EXPECT_EQ( described( "expect: { state: { entity: /a, attribute: b, lacks: c } }" ),
              "expect /a b lacks c" );
}

TEST( ScenarioDescription, OfExpectedRulesSaysWhere ) {
   EXPECT_EQ( described( "expect: { rules: { group: ingress, unit: 0, count: 3 } }" ),
              "expect 3 rules in group ingress of unit 0" );
   EXPECT_EQ( described( "expect: { rules: { group: egress, count: 0 } }" ),
              "expect 0 rules in group egress" );
}

TEST( ScenarioDescription, OfExpectedLinesSaysHowOften ) {
   EXPECT_EQ( described( "expect: { log: FULL }" ), "expect log line \"FULL\"" );
   EXPECT_EQ( described( "expect: { log: { text: FULL, times: 1 } }" ),
              "expect log line \"FULL\" once" );
   EXPECT_EQ( described(
                 "expect: { trace: { handle: VornalEvpnSm, level: 5, text: a, times: 0 } }" ),
              "expect trace line of VornalEvpnSm at level 5 \"a\" 0 times" );
}

}  // namespace
