// `vornal verify`, and the step `verify`, with the plug-in that comes with the program.
#include <gtest/gtest.h>

#include <Support.h>

#include <nlohmann/json.hpp>

#include <AuditRun.h>

namespace {

using Json = nlohmann::json;

class Verify : public testing::Test {
 protected:
   Support::Ran command( Leaf const & leaf, std::string const & steps,
                         std::vector< std::string > const & more = {},
                         std::string const & word = "verify" ) {
      std::vector< std::string > words{
         word,
         directory.file( "leaf.yaml", leaf.text( "   - ready: subagents::l2Ready\n" + steps ) )
      };
      words.insert( words.end(), more.begin(), more.end() );
      return Support::vornal( words );
   }

   Json document( Leaf const & leaf, std::string const & steps,
                  std::vector< std::string > more = {} ) {
      more.emplace_back( "--json" );
      return Json::parse( command( leaf, steps, more ).out );
   }

   std::string scenario() const { return directory.path() / "leaf.yaml"; }

   Support::Directory directory;
};

std::string const tipped =
   "   - drift: { group: ingress, unit: 0, entry: 3, flip: SrcVxlanGport }\n";
// The plug-in's own pass does not look at per-VNI rules.
std::string const unseen = "   - drift: { group: ingress, unit: 0, entry: 5, priority: 9 }\n";

TEST_F( Verify, ExitsWith0InSync ) {
   auto const ran = command( Leaf(), "" );

   EXPECT_EQ( ran.exitCode, 0 ) << ran.out << ran.err;
   EXPECT_EQ( ran.out,
              "leaf (egress-mask)\n"
              "at the end\n"
              "   audit: in sync; 5 expected rules, 5 in the chip\n"
              "   the plug-in's own pass: held\n"
              "IN SYNC\n" );
}

TEST_F( Verify, ExitsWith1OnDifferencesThatThePassDoesNotSee ) {
   auto const ran = command( Leaf(), unseen );

   EXPECT_EQ( ran.exitCode, 1 ) << ran.out << ran.err;
   EXPECT_TRUE(
      Support::contains( ran.out,
                         "   audit: 1 difference, 0 known; 5 expected rules, 5 in the chip\n"
                         "      wrong-priority: unit 0, ingress group 157, entry 5, \"Skip shared "
                         "ES pruning for packets with vni 50001 - No-op\", priority\n"
                         "         is priority 9; should be priority 2\n"
                         "         VRF red has VNI 50001 on Vxlan1, and there are Ethernet "
                         "segments\n" ) )
      << ran.out;
   EXPECT_TRUE( Support::contains( ran.out, "the plug-in's own pass: held\nDIFFERENCES\n" ) )
      << ran.out;
}

TEST_F( Verify, ExitsWith2OnBadInput ) {
   EXPECT_EQ( Support::vornal( { "verify", "/nowhere/leaf.yaml" } ).exitCode, 2 );
   EXPECT_EQ( Support::vornal( { "verify" } ).exitCode, 2 );
   auto const ran =
      command( Leaf(), "   - drift: { group: ingress, unit: 0, entry: 99, flip: PacketRes }\n" );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.out, "" );
   EXPECT_TRUE( Support::contains(
      ran.err, "leaf.yaml:19: group 157 has no entry 99; its entries are 1, 2, 3, 4, 5" ) )
      << ran.err;
}

TEST_F( Verify, ExitsWith3WhenThePassStopsTheProcessAndTellsWhatTheAuditHasFound ) {
   auto const ran = command( Leaf(), tipped );

   EXPECT_EQ( ran.exitCode, 3 );
   EXPECT_TRUE(
      Support::contains( ran.out, "      wrong-qualifier: unit 0, ingress group 157, entry 3, " ) )
      << ran.out;
   EXPECT_TRUE( Support::contains( ran.out,
                                   "the plug-in's own pass stopped the process: assertion gport == "
                                   "gport_exp, at " ) )
      << ran.out;
   EXPECT_TRUE( ran.out.ends_with( "STOPPED\n" ) ) << ran.out;
}

TEST_F( Verify, ExitsWith3AndTellsTheStoryWhenTheProcessStopsBefore ) {
   auto const ran =
      command( Leaf(),
               "   - call: { entity: "
               "/plugins/Vornal::VornalEvpnMounter/evpnMultihomingLocalBiasSm,\n"
               "             operation: handleTepSegment, arguments: [ 10.0.0.2 ] }\n" );

   EXPECT_EQ( ran.exitCode, 3 );
   EXPECT_TRUE( Support::contains( ran.err, "STOPPED in step 2" ) ) << ran.err;
   EXPECT_TRUE( Support::contains( ran.out, "the plug-in's own pass: not-run\nSTOPPED\n" ) )
      << ran.out;
}

TEST_F( Verify, HasADocument ) {
   Json const json = document( Leaf(), tipped );

   EXPECT_EQ( json[ "scenario" ], "leaf" );
   EXPECT_EQ( json[ "variant" ], "egress-mask" );
   EXPECT_EQ( json[ "end" ], "stopped" );
   EXPECT_EQ( json[ "pluginPass" ], "stopped" );
   EXPECT_EQ( json[ "assertion" ][ "expression" ], "gport == gport_exp" );
   EXPECT_EQ( json[ "step" ], 3 );
   Json const audit = json[ "audits" ].at( 0 );
   EXPECT_EQ( audit[ "step" ], 3 );
   EXPECT_EQ( audit[ "inSync" ], false );
   EXPECT_EQ( audit[ "rules" ], 5 );
   EXPECT_EQ( audit[ "known" ], Json::array() );
   Json const difference = audit[ "differences" ].at( 0 );
   EXPECT_EQ( difference[ "kind" ], "wrong-qualifier" );
   EXPECT_EQ( difference[ "unit" ], 0 );
   EXPECT_EQ( difference[ "group" ], 157 );
   EXPECT_EQ( difference[ "entry" ], 3 );
   EXPECT_EQ( difference[ "field" ], "SrcVxlanGport" );
   EXPECT_EQ( difference[ "is" ], "0x56000003 (VTEP 10.0.0.3)" );
   EXPECT_EQ( difference[ "shouldBe" ], "0x56000002 (VTEP 10.0.0.2)" );
}

TEST_F( Verify, TellsTheDocumentOfAHealthySwitch ) {
   Json const json = document( classIdLeaf(), "" );

   EXPECT_EQ( json[ "end" ], "in-sync" );
   EXPECT_EQ( json[ "pluginPass" ], "held" );
   EXPECT_EQ( json[ "assertion" ], nullptr );
   EXPECT_EQ( json[ "step" ], nullptr );
   EXPECT_EQ( json[ "audits" ].size(), 1U );
}

TEST_F( Verify, AuditsAfterEachStepWhenAskedTo ) {
   std::string const healed =
      unseen + "   - drift: { group: ingress, unit: 0, entry: 5, priority: 2 }\n";
   EXPECT_EQ( command( Leaf(), healed ).exitCode, 0 );

   auto const ran = command( Leaf(), healed, { "--after-each-step" } );
   EXPECT_EQ( ran.exitCode, 1 );
   EXPECT_TRUE(
      Support::contains( ran.out,
                         "after step 2: drift: entry 5 of group ingress on unit 0 gets priority "
                         "9\n   audit: 1 difference" ) )
      << ran.out;

   Json const json = document( Leaf(), healed, { "--after-each-step" } );
   EXPECT_EQ( json[ "end" ], "differences" );
   EXPECT_EQ( json[ "audits" ].size(), 4U );
   EXPECT_EQ( json[ "audits" ][ 1 ][ "inSync" ], false );
   EXPECT_EQ( json[ "audits" ][ 2 ][ "inSync" ], true );
}

TEST_F( Verify, DoesNotCountTheAuditsThatTheScenarioAsksForItself ) {
   std::string const healed = unseen +
                              "   - verify: audit\n"
                              "   - drift: { group: ingress, unit: 0, entry: 5, priority: 2 }\n";
   EXPECT_EQ( command( Leaf(), healed ).exitCode, 0 );
}

// Room for the exemptions and one VTEP, not for both.
Leaf fullLeaf() {
   Leaf leaf;
   leaf.tcam = "{ ingress: 4, egress: 4 }";
   leaf.tunnels = "{}";
   return leaf;
}

std::string const others = "   - foreign-entries: { group: ingress, count: 1 }\n";

TEST_F( Verify, APassThatComparesNothingIsSkippedAndHasNotHeld ) {
   Support::Ran const ran = Support::vornal(
      { "verify",
        directory.file( "leaf.yaml",
                        fullLeaf().text( others + "   - ready: subagents::l2Ready\n" ) ) } );

   EXPECT_EQ( ran.exitCode, 0 ) << ran.out << ran.err;
   EXPECT_TRUE(
      Support::contains( ran.out,
                         "   the plug-in's own pass: skipped; a TCAM group counts as full, so the "
                         "pass compares nothing\n" ) )
      << ran.out;

   Support::Ran const json = Support::vornal( { "verify", "--json", scenario() } );
   EXPECT_EQ( Json::parse( json.out )[ "pluginPass" ], "skipped" );
}

TEST_F( Verify, ASwitchWithAVtepWithoutItsRuleIsNotInStepWithoutAWord ) {
   Support::Ran const ran = Support::vornal(
      { "verify",
        directory.file( "leaf.yaml", fullLeaf().text( others + "   - ready: "
                                                               "subagents::l2Ready\n" ) ) } );

   EXPECT_EQ( ran.exitCode, 0 );
   EXPECT_TRUE( Support::contains( ran.out,
                                   "audit: in sync, 1 known; 4 expected rules, 3 in the chip; 1 "
                                   "VTEP unprotected: 10.0.0.4\n" ) )
      << ran.out;
   EXPECT_TRUE( ran.out.ends_with( "IN SYNC, but with 1 VTEP unprotected: 10.0.0.4\n" ) )
      << ran.out;

   Json const json = Json::parse( Support::vornal( { "verify", "--json", scenario() } ).out );
   EXPECT_EQ( json[ "end" ], "in-sync" );
   EXPECT_EQ( json[ "audits" ][ 0 ][ "unprotected" ], Json::array( { "10.0.0.4" } ) );
}

TEST_F( Verify, AVtepWithoutItsClassIdIsUnprotected ) {
   auto const ran = Support::vornal(
      { "verify",
        directory.file( "leaf.yaml", classIdLeaf().text( "   - class-id-allocator: paused\n"
                                                         "   - ready: subagents::l2Ready\n" ) ) } );

   EXPECT_TRUE( Support::contains( ran.out, "2 VTEPs unprotected: 10.0.0.2, 10.0.0.4\n" ) )
      << ran.out;
}

TEST_F( Verify, TheStepTellsOfAPassThatWasSkipped ) {
   auto const text = fullLeaf().text( others +
                                      "   - ready: subagents::l2Ready\n"
                                      "   - verify: plug-in\n" );
   auto const ran = Support::vornal( { "run", directory.file( "leaf.yaml", text ) } );
   EXPECT_TRUE(
      Support::contains( ran.out, "   the plug-in's own pass was skipped: a TCAM group counts" ) )
      << ran.out;

   auto const json = Support::vornal( { "run", "--json", scenario() } );
   EXPECT_EQ( Json::parse( json.out )[ "steps" ][ 3 ][ "pluginPass" ], "skipped" );
}

TEST_F( Verify, NamesTheKnownLimitAtWhichThePassStops ) {
   std::string const file = VORNAL_SOURCE_DIR "/scenarios/limits/port-beyond-bitmap/scenario.yaml";
   EXPECT_TRUE( Support::contains( Support::vornal( { "verify", file } ).out,
                                   "known limit (docs/limits.md): A logical port above 351\n"
                                   "      Remedy: Use no segment on such ports;" ) );
}

TEST_F( Verify, HasNoPassOfAPlugInThatHasNotComeUp ) {
   auto const ran = Support::vornal(
      { "verify", directory.file( "leaf.yaml", Leaf().text( "   - note: nothing\n" ) ) } );

   EXPECT_EQ( ran.exitCode, 0 );
   EXPECT_TRUE( Support::contains( ran.out, "the plug-in's own pass: absent" ) ) << ran.out;
}

// --- The step

TEST_F( Verify, TheStepShowsInTheStoryAndInTheDocument ) {
   std::string const steps = unseen + "   - verify: both\n";
   auto const told = command( Leaf(), steps, {}, "run" );
   EXPECT_EQ( told.exitCode, 0 );
   EXPECT_TRUE(
      Support::contains( told.out,
                         "step 3: verify by the audit and the plug-in's own pass\n"
                         "   audit: 1 difference, 0 known; 5 expected rules, 5 in the chip\n"
                         "      wrong-priority: " ) )
      << told.out;
   EXPECT_TRUE( Support::contains( told.out, "   the plug-in's own pass held\n" ) ) << told.out;

   Json const json = Json::parse( command( Leaf(), steps, { "--json" }, "run" ).out );
   Json const step = json[ "steps" ][ 3 ];
   EXPECT_EQ( step[ "audits" ][ 0 ][ "differences" ][ 0 ][ "kind" ], "wrong-priority" );
   EXPECT_EQ( step[ "pluginPass" ], "held" );
   EXPECT_EQ( json[ "steps" ][ 2 ][ "pluginPass" ], nullptr );
}

TEST_F( Verify, TheStepTellsTheAuditBeforeThePassStopsTheProcess ) {
   auto const ran = command( Leaf(), tipped + "   - verify: both\n", { "--json" }, "run" );

   EXPECT_EQ( ran.exitCode, 3 );
   Json const step = Json::parse( ran.out )[ "steps" ][ 3 ];
   EXPECT_EQ( step[ "audits" ][ 0 ][ "inSync" ], false );
   EXPECT_EQ( step[ "pluginPass" ], "stopped" );
}

TEST_F( Verify, AuditsCanBeExpected ) {
   auto const ran = command( Leaf(),
                             "   - expect: { audit: in-sync }\n" + unseen +
                                "   - expect:\n"
                                "        - audit: differences\n"
                                "        - audit: { kind: wrong-priority, count: 1 }\n"
                                "        - audit: { count: 1 }\n"
                                "        - audit: { kind: no-room, count: 0 }\n"
                                "        - audit: { kind: missing-rule }\n",
                             {}, "run" );

   EXPECT_EQ( ran.exitCode, 1 );
   EXPECT_TRUE( Support::contains( ran.out, "FAILED: 1 of 6 expectations did not hold" ) )
      << ran.out;
   EXPECT_TRUE( Support::contains( ran.out,
                                   "NOT as expected: an audit finds some missing-rule; it finds 1 "
                                   "wrong-priority" ) )
      << ran.out;
}

}  // namespace
