// What the step `expect` holds.
#include <gtest/gtest.h>

#include <Expectations/LogLineExpected.h>
#include <Expectations/PluginReady.h>
#include <Expectations/Rules.h>
#include <Expectations/State.h>
#include <Expectations/TcamGroupsAskedFor.h>
#include <Expectations/TraceLineExpected.h>
#include <ScenarioTexts.h>
#include <Steps/Expect.h>

namespace {

using namespace ScenarioTexts;

// The expectations of a step that begins in line 10, with the trace of one handle on.
std::string stepExpecting( std::string const & expect ) {
   return "trace: { VornalEvpnSm: 5 }\nsteps: [ { expect: " + expect + " } ]\n";
}

std::vector< Expectations::Expectation > expectations( std::string const & expect ) {
   auto const model = readLeaf( stepExpecting( expect ) );
   return stepOf< Steps::Expect >( model ).expectations;
}

template< typename Kind > Kind expected( std::string const & expect ) {
   return *expectations( expect ).at( 0 ).as< Kind >();
}

std::string describedOf( std::string const & expect ) {
   return expectations( expect ).at( 0 ).what->description();
}

std::string expectProblems( std::string const & expect ) {
   return leafProblems( stepExpecting( expect ) );
}

TEST( ScenarioExpectations, AreTheWordsOfAMappingInTheOrderWritten ) {
   auto const all = expectations(
      "{ tcam-groups: [ egress, ingress ],\n"
      "  plug-in: ready }" );
   ASSERT_EQ( all.size(), 2U );
   EXPECT_EQ( all[ 0 ].line, 10 );
   EXPECT_EQ( all[ 0 ].as< Expectations::TcamGroupsAskedFor >()->groups,
              ( std::vector{ Scenario::TcamGroup::egress, Scenario::TcamGroup::ingress } ) );
   EXPECT_EQ( all[ 1 ].line, 11 );
   EXPECT_TRUE( all[ 1 ].as< Expectations::PluginReady >()->isReady );
}

TEST( ScenarioExpectations, CanBeAListOfMappings ) {
   auto const all = expectations( "[ { log: FULL }, { log: RECOVERED, plug-in: waiting } ]" );
   ASSERT_EQ( all.size(), 3U );
   EXPECT_EQ( all[ 1 ].as< Expectations::LogLineExpected >()->text, "RECOVERED" );
   EXPECT_FALSE( all[ 2 ].as< Expectations::PluginReady >()->isReady );
}

TEST( ScenarioExpectations, CompareAnAttribute ) {
   auto const state = expected< Expectations::AttributeEquals >(
      "{ state: { equals: unit0/port1/mod1, key: Ethernet1, attribute: vornalIntfToPort,\n"
      "           entity: /shared/vornalCommon } }" );
   EXPECT_EQ( state.at.entity.stringValue(), "/shared/vornalCommon" );
   EXPECT_EQ( state.at.attribute, "vornalIntfToPort" );
   EXPECT_EQ( state.at.key, "Ethernet1" );
   EXPECT_EQ( state.value, "unit0/port1/mod1" );
}

TEST( ScenarioExpectations, LookForAKey ) {
   auto const has = expected< Expectations::AttributeHas >(
      "{ state: { entity: /evpn/status, attribute: segmentStatus, has: Ethernet1 } }" );
   EXPECT_TRUE( has.isPresent );
   EXPECT_EQ( has.at.key, "Ethernet1" );
   auto const lacks = expected< Expectations::AttributeHas >(
      "{ state: { entity: /evpn/status, attribute: segmentStatus, lacks: Ethernet2 } }" );
   EXPECT_FALSE( lacks.isPresent );
   EXPECT_EQ( lacks.at.key, "Ethernet2" );
}

TEST( ScenarioExpectations, CountRulesOnOneUnitOrOnAll ) {
   auto const one =
      expected< Expectations::RulesLike >( "{ rules: { group: ingress, unit: 0, count: 3 } }" );
   EXPECT_EQ( one.group, Scenario::TcamGroup::ingress );
   EXPECT_EQ( one.unit, U16{ 0 } );
   EXPECT_EQ( one.count, 3U );
   auto const all = expected< Expectations::RulesLike >( "{ rules: { group: egress } }" );
   EXPECT_EQ( all.group, Scenario::TcamGroup::egress );
   EXPECT_EQ( all.unit, std::nullopt );
   EXPECT_EQ( all.count, std::nullopt );
}

TEST( ScenarioExpectations, DescribeRulesByWhatTheyMatchAndDo ) {
   EXPECT_EQ( describedOf( "{ rules: { group: ingress, name: from vtep, state: written,\n"
                           "           priority: 1, qualifiers: { SrcVxlanGport: 0x56000002 },\n"
                           "           actions: { EgressMask: [ 3, 4 ] }, count: 1 } }" ),
              "1 rule in group ingress, named \"from vtep\", matching SrcVxlanGport 0x56000002, "
              "doing EgressMask 3, 4, priority 1, written" );
   EXPECT_EQ( describedOf( "{ rules: { group: ingress, qualifiers: { PacketRes: 4 } } }" ),
              "one or more rules in group ingress, matching PacketRes 4 (known unicast)" );
   EXPECT_EQ( describedOf( "{ rules: { group: ingress, priority: default, actions: none,\n"
                           "           qualifiers: { TunnelTerminated: }, state: staged-only } }" ),
              "one or more rules in group ingress, matching TunnelTerminated, doing nothing, "
              "the default priority, staged only" );
}

TEST( ScenarioExpectations, RefuseFieldsThatNoRuleHas ) {
   EXPECT_EQ( leafProblems( "steps:\n"
                            "   - expect: { rules: { group: ingress, actions: { Drpo: } } }\n" ),
              "leaf.yaml:10: 'Drpo' is none of a rule's actions; known are EgressMask, "
              "EgressClassSelect, NewClassId and Drop" );
}

TEST( ScenarioExpectations, LookForLogLines ) {
   auto const any =
      expected< Expectations::LogLineExpected >( "{ log: MULTIHOMING_TCAM_RESOURCE_FULL }" );
   EXPECT_EQ( any.text, "MULTIHOMING_TCAM_RESOURCE_FULL" );
   EXPECT_EQ( any.times, std::nullopt );
   EXPECT_EQ(
      expected< Expectations::LogLineExpected >( "{ log: { text: FULL, times: 0 } }" ).times, 0U );
}

TEST( ScenarioExpectations, LookForTraceLines ) {
   auto const line = expected< Expectations::TraceLineExpected >(
      "{ trace: { handle: VornalEvpnSm, level: 5, text: ' tepIp: ', times: 2 } }" );
   EXPECT_EQ( line.handle, "VornalEvpnSm" );
   EXPECT_EQ( line.level, 5 );
   EXPECT_EQ( line.text, " tepIp: " );
   EXPECT_EQ( line.times, 2U );
}

// --- what is refused

TEST( ScenarioExpectations, AreMappings ) {
   EXPECT_EQ(
      expectProblems( "ready" ),
      "leaf.yaml:10: expect is text; a mapping is expected, of plug-in, tcam-groups, state, "
      "rules, frames, audit, log, trace and stop" );
   EXPECT_EQ( expectProblems( "[ ready ]" ),
              "leaf.yaml:10: an element of expect is text; a mapping is expected, of plug-in, "
              "tcam-groups, state, rules, frames, audit, log, trace and stop" );
}

TEST( ScenarioExpectations, RefuseToExpectNothing ) {
   std::string const empty =
      " is empty; give one at least of plug-in, tcam-groups, state, rules, frames, audit, "
      "log, trace and stop";
   EXPECT_EQ( expectProblems( "{}" ), "leaf.yaml:10: expect" + empty );
   EXPECT_EQ( expectProblems( "[]" ), "leaf.yaml:10: expect" + empty );
   EXPECT_EQ( expectProblems( "[ {} ]" ), "leaf.yaml:10: an element of expect" + empty );
   EXPECT_EQ( expectProblems( "~" ), "leaf.yaml:10: expect" + empty );
}

TEST( ScenarioExpectations, RefuseAnUnknownWord ) {
   EXPECT_EQ( expectProblems( "{ plugin: ready }" ),
              "leaf.yaml:10: unknown word 'plugin' in expect; did you mean 'plug-in'?" );
}

TEST( ScenarioExpectations, RefuseAnUnknownStateOfThePlugIn ) {
   EXPECT_EQ( expectProblems( "{ plug-in: started }" ),
              "leaf.yaml:10: plug-in is 'started'; ready or waiting is expected" );
}

TEST( ScenarioExpectations, RefuseAnUnknownGroup ) {
   EXPECT_EQ( expectProblems( "{ tcam-groups: [ 157 ] }" ),
              "leaf.yaml:10: an element of tcam-groups is '157'; ingress or egress is expected" );
   EXPECT_EQ( expectProblems( "{ tcam-groups: ingress }" ),
              "leaf.yaml:10: tcam-groups is text; a list is expected" );
   EXPECT_EQ( expectProblems( "{ rules: { group: egres, count: 1 } }" ),
              "leaf.yaml:10: group is 'egres'; did you mean 'egress'?" );
}

TEST( ScenarioExpectations, RefuseAStateThatIsNotComparedOrComparedTwice ) {
   EXPECT_EQ( expectProblems( "{ state: { entity: /a, attribute: b } }" ),
              "leaf.yaml:10: state has 0 of the words 'equals', 'has' and 'lacks'; give one" );
   EXPECT_EQ( expectProblems( "{ state: { entity: /a, attribute: b, has: c, lacks: d } }" ),
              "leaf.yaml:10: state has 2 of the words 'equals', 'has' and 'lacks'; give one" );
}

TEST( ScenarioExpectations, RefuseASecondKey ) {
   EXPECT_EQ( expectProblems( "{ state: { entity: /a, attribute: b, key: c, has: c } }" ),
              "leaf.yaml:10: 'key' says the same as 'has'; leave 'key' out" );
}

TEST( ScenarioExpectations, MissWhatIsRequired ) {
   EXPECT_EQ( expectProblems( "{ state: { equals: a } }" ),
              "leaf.yaml:10: 'entity' is missing in state; give it, as in 'entity: /evpn/status'\n"
              "leaf.yaml:10: 'attribute' is missing in state; give it, as in 'attribute: "
              "segmentStatus'" );
   EXPECT_EQ( expectProblems( "{ rules: {} }" ),
              "leaf.yaml:10: 'group' is missing in rules; give it, as in 'group: ingress'" );
   EXPECT_EQ( expectProblems( "{ log: {} }" ),
              "leaf.yaml:10: 'text' is missing in log; give it, as in 'text: "
              "MULTIHOMING_TCAM_RESOURCE_FULL'" );
   EXPECT_EQ( expectProblems( "{ trace: {} }" ),
              "leaf.yaml:10: 'handle' is missing in trace; give it, as in 'handle: VornalEvpnSm'\n"
              "leaf.yaml:10: 'text' is missing in trace; give it, as in 'text: is ready'" );
}

TEST( ScenarioExpectations, RefuseAUnitThatTheSwitchHasNot ) {
   EXPECT_EQ(
      expectProblems( "{ rules: { group: ingress, unit: 3, count: 1 } }" ),
      "leaf.yaml:10: unit 3 is not among the switch's units (0); use one of these, or add it "
      "under 'units'" );
}

TEST( ScenarioExpectations, RefuseNumbersThatAreNone ) {
   EXPECT_EQ( expectProblems( "{ rules: { group: ingress, count: few } }" ),
              "leaf.yaml:10: count is 'few'; a whole number from 0 to 4294967295 is expected" );
   EXPECT_EQ( expectProblems( "{ log: { text: FULL, times: once } }" ),
              "leaf.yaml:10: times is 'once'; a whole number from 0 to 4294967295 is expected" );
   EXPECT_EQ( expectProblems( "{ trace: { handle: VornalEvpnSm, level: 10, text: a } }" ),
              "leaf.yaml:10: level is '10'; a whole number from 0 to 9 is expected" );
}

TEST( ScenarioExpectations, RefuseALogLineThatIsAList ) {
   EXPECT_EQ( expectProblems( "{ log: [ FULL ] }" ),
              "leaf.yaml:10: log is a list; a mapping is expected, of text and times" );
}

// A line at a level that is off is never there, and that it is not there would always be so.
TEST( ScenarioExpectations, RefuseATraceLineThatIsNotTraced ) {
   EXPECT_EQ(
      expectProblems( "{ trace: { handle: VornalEvpnSm, level: 8, text: a, times: 0 } }" ),
      "leaf.yaml:10: level 8 of VornalEvpnSm is not traced here; switch it on, as in 'trace: { "
      "VornalEvpnSm: 0-8 }'" );
   EXPECT_EQ(
      expectProblems( "{ trace: { handle: VornalEvpnSm, level: 0, text: a } }" ),
      "leaf.yaml:10: level 0 of VornalEvpnSm is not traced here; switch it on, as in 'trace: { "
      "VornalEvpnSm: 0-0 }'" )
      << "the levels given replace level 0, which is on otherwise";
   EXPECT_EQ( expectProblems( "{ trace: { handle: ApiVornal, level: 0, text: a } }" ), "" );
   EXPECT_EQ( expectProblems( "{ trace: { handle: VornalEvpnMounter, level: 8, text: a } }" ), "" )
      << "shown without anybody's asking";
   EXPECT_EQ(
      leafProblems( "trace: { Vornal*: 0-8, VornalEvpnSm: 1 }\n"
                    "steps: [ { expect: { trace: { handle: VornalEvpnSm, level: 8,\n"
                    "                              text: a } } } ]\n" ),
      "leaf.yaml:10: level 8 of VornalEvpnSm is not traced here; switch it on, as in 'trace: { "
      "VornalEvpnSm: 0-8 }'" )
      << "the later setting wins";
}

}  // namespace
