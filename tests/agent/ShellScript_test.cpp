// `vornal shell` with a script on standard input.
#include <filesystem>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <Running.h>
#include <Support.h>
#include <Switches.h>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using Support::Running;

std::string const kStop =
   "call: { entity: /plugins/Sample::Mounter/evpnMultihomingLocalBiasSm, operation: "
   "qualifyUnknownEntry }\n";

class ShellScript : public testing::Test {
 protected:
   Support::Ran shell( std::string const & script ) const {
      auto const in = directory.file( "script", script );
      auto const out = directory.path() / "out";
      auto const err = directory.path() / "err";
      Running running( { "shell", leaf, "--plugin", Support::testPlugin( "segment-rules" ) },
                       { open( in.c_str(), O_RDONLY | O_CLOEXEC ),
                         open( out.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600 ),
                         open( err.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600 ) } );
      int const code = running.wait();
      return { code, Support::contentOf( out ), Support::contentOf( err ) };
   }

   Support::Directory directory;
   std::string leaf =
      directory.file( "leaf.yaml", Switches::leaf( "   - ready: subagents::l2Ready\n"
                                                   "   - note: two\n"
                                                   "   - note: three\n" ) );
};

TEST_F( ShellScript, CarriesOutOwnAndTypedSteps ) {
   auto const ran = shell(
      "next\n"
      "publish: { segments: { Ethernet2: [ 10.0.0.2 ] } }\n"
      "run\n" );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_EQ( ran.err, "" );
   EXPECT_TRUE(
      ran.out.starts_with( "leaf: 3 steps; 'help' lists what can be typed\nPublished "
                           "before" ) )
      << ran.out;
   std::size_t const typed = ran.out.find( "step 2: publish" );
   EXPECT_LT( ran.out.find( "step 1: ready" ), typed ) << ran.out;
   EXPECT_LT( typed, ran.out.find( "step 3: two" ) );
   EXPECT_TRUE( Support::contains( ran.out, "step 4: three" ) );
   EXPECT_EQ( Support::timesIn( ran.out, "step 1:" ), 1U );
   EXPECT_TRUE( Support::contains( ran.out.substr( typed ), "rule added" ) );
   EXPECT_FALSE( Support::contains( ran.out, "teardown" ) );
}

TEST_F( ShellScript, AnswersQuestionsAboutTheSwitchAsItIs ) {
   auto const ran = shell( "show rules\nnext\nshow rules\nexplain 7\n" );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( Support::timesIn( ran.out, "EgressMask ports 3" ), 2U ) << ran.out;
   EXPECT_EQ( ran.err,
              "shell:4: frame 7 is not sent: the scenario has sent 0 frames up to this step; give "
              "the number of one of these, or ask after the step that sends it\n" );
}

TEST_F( ShellScript, TellsWhatTheLastStepChangedAndWhatAStepWouldChange ) {
   auto const ran = shell(
      "run to 1\n"
      "note: nothing\n"
      "diff\n"
      "diff 0\n"
      "what-if withdraw: { segments: [ Ethernet1 ] }\n"
      "diff 1 2 --json\n" );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_EQ( Support::timesIn( ran.out, "no differences\n" ), 1U ) << ran.out;
   EXPECT_TRUE( Support::contains( ran.out, "+ unit 0, ingress group 157, \"Sample Ethernet1\"" ) );
   EXPECT_TRUE( Support::contains( ran.out, "- segmentStatus[Ethernet1]" ) );
   EXPECT_TRUE( Json::parse( ran.out.substr( ran.out.rfind( "\n{" ) ) )[ "children" ].empty() );
}

TEST_F( ShellScript, GoesOnAfterAMistakeAndEndsWith2 ) {
   auto const ran = shell(
      "nxt\n"
      "pubish: {}\n"
      "withdraw: { vteps: [ 10.0.0.9 ] }\n"
      "show ruls\n"
      "run to 9\n"
      "undo\n"
      "publish\n"
      "next\n" );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err,
              "shell:1: no command 'nxt'; did you mean 'next'?\n"
              "shell:2: unknown word 'pubish' in step; did you mean 'publish'?\n"
              "shell:3: 10.0.0.9 has no virtual port at this point, so nothing can be withdrawn; "
              "publish it before, or leave this out\n"
              "shell:4: WHAT: 'ruls' cannot be shown; did you mean 'rules'?; 'help show' lists the "
              "words that it takes\n"
              "shell:5: the scenario ends with its step 3\n"
              "shell:6: no step is left to undo\n"
              "shell:7: no command 'publish'; the step begins with 'publish:'\n" );
   EXPECT_TRUE( Support::contains( ran.out, "step 1: ready" ) );
}

TEST_F( ShellScript, EndsWith1ForAnExpectationThatDidNotHoldUnlessItIsUndone ) {
   std::string const wrong = "expect: { plug-in: ready }\n";
   auto const ran = shell( wrong + "next\n" );
   EXPECT_EQ( ran.exitCode, 1 ) << ran.err;
   EXPECT_TRUE( Support::contains( ran.out, "step 1: " ) ) << ran.out;
   EXPECT_EQ( shell( wrong + "undo\nnext\n" + wrong ).exitCode, 0 );
}

TEST_F( ShellScript, TellsWhyThePlugInStoppedAndGoesBackByUndo ) {
   auto const stopped = shell( "next\n" + kStop + "show rules\nnote: x\n" );
   EXPECT_EQ( stopped.exitCode, 3 );
   EXPECT_TRUE( Support::contains( stopped.out, "STOPPED in step 2" ) ) << stopped.out;
   EXPECT_TRUE( Support::contains( stopped.out, "qualifyUnknownEntry" ) ) << stopped.out;
   EXPECT_EQ( stopped.err,
              "shell:3: the plug-in has stopped in step 2; undo goes back\n"
              "shell:4: the plug-in has stopped in step 2; undo goes back\n" );
   // Two lines were not carried out.
   EXPECT_EQ( shell( "next\n" + kStop + "show rules\nnote: x\nundo\n" ).exitCode, 2 );

   auto const back = shell( "next\n" + kStop + "undo\nshow rules\nnext\n" );
   EXPECT_EQ( back.exitCode, 0 ) << back.err;
   EXPECT_TRUE( Support::contains( back.out, "undone; 1 step done\n" ) );
   EXPECT_TRUE( Support::contains( back.out, "step 2: two" ) );
}

TEST_F( ShellScript, NamesTheLineOfAMistakeThatShowsOnlyInTheRun ) {
   auto const ran =
      shell( "next\n\nset: { entity: /evpn/status, attribute: none, value: x }\nnext\n" );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_TRUE( ran.err.starts_with( "shell:3: " ) ) << ran.err;
   EXPECT_TRUE( Support::contains( ran.out, "step 2: two" ) ) << ran.out;
   auto const asked = shell( "\nshow entities /nowhere\nexplain 9999\n" );
   EXPECT_EQ( asked.exitCode, 2 );
   EXPECT_TRUE( asked.err.starts_with( "shell:2: there is no entity at '/nowhere'" ) ) << asked.err;
   EXPECT_TRUE( Support::contains( asked.err, "\nshell:3: " ) ) << asked.err;
}

TEST_F( ShellScript, NamesTheLineOfAMistakeWithinAnEntry ) {
   auto const ran = shell( "next\npublish:\n   segments: { Ethernet1: ]\n\nnext\n" );
   EXPECT_TRUE( ran.err.starts_with( "shell:3: " ) ) << ran.err;
   EXPECT_TRUE( Support::contains( ran.out, "step 2: two" ) ) << ran.out;
}

TEST_F( ShellScript, SaysHowFarAnOpenBracketReaches ) {
   auto const ran = shell( "withdraw: { segments: [ Ethernet1 ]\nnext\nnext\n" );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_TRUE( ran.err.ends_with( "\na bracket is open to the end of line 3; close it\n" ) )
      << ran.err;
}

TEST_F( ShellScript, SaysThatALineHasANulCharacter ) {
   auto const ran = shell( std::string( "next\nnote: a\0b\nnext\n", 19 ) );
   EXPECT_EQ( ran.err, "shell:2: there is a NUL character in this line; take it out\n" );
   EXPECT_TRUE( Support::contains( ran.out, "step 2: two" ) ) << ran.out;
}

TEST_F( ShellScript, NamesNoVariantBeforeThePlugInIsReady ) {
   auto const ran = shell( "verify\n" );
   EXPECT_TRUE( Support::contains( ran.out, "\nleaf\nat the end\n" ) ) << ran.out;
}

TEST_F( ShellScript, SavesAScenarioThatRunsToTheSameState ) {
   std::string const mine = directory.path() / "mine.yaml";
   auto const ran = shell(
      "next\n"
      "withdraw: { segments: [ Ethernet1 ] }\n"
      "run\n"
      "save " +
      mine +
      "\n"
      "save " +
      mine +
      "\n"
      "save " +
      leaf +
      "\n"
      "show state --json\n" );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err,
              "shell:6: " + leaf + " is there already; name another file, or add --force\n" );
   auto const shown = Support::vornal(
      { "show", mine, "state", "--json", "--plugin", Support::testPlugin( "segment-rules" ) } );
   EXPECT_EQ( shown.exitCode, 0 ) << shown.err;
   EXPECT_TRUE( ran.out.ends_with( shown.out ) ) << ran.out << shown.out;
}

TEST_F( ShellScript, SavesNothingThatWouldNotRun ) {
   std::string const mine = directory.path() / "mine.yaml";
   auto const ran = shell( "next\nexpect: { stop: { exception: x } }\nsave " + mine + "\n" );
   EXPECT_EQ( ran.err,
              "shell:3: what was carried out is no scenario yet, so nothing is saved: stop is "
              "about the next step, and no step follows; write the step that stops the process "
              "behind this one\n" );
   EXPECT_FALSE( fs::exists( mine ) );
}

TEST_F( ShellScript, SavesIntoNoDeviceAndBehindNoLinkThatLeadsNowhere ) {
   fs::path const folder = directory.path();
   directory.file( "old.yaml", "" );
   fs::create_symlink( "old.yaml", folder / "link.yaml" );
   fs::create_symlink( "nowhere.yaml", folder / "dangling.yaml" );
   ASSERT_EQ( mkfifo( ( folder / "fifo" ).c_str(), 0600 ), 0 );
   std::string text = "next\n";
   for ( char const * const name : { "fifo", "dangling.yaml", "link.yaml", "none/mine.yaml" } ) {
      text += "save --force " + ( folder / name ).string() + "\n";
   }
   auto const ran = shell( text );
   EXPECT_EQ( ran.err, "shell:2: " + ( folder / "fifo" ).string() +
                          " is no regular file; name another one\nshell:3: " +
                          ( folder / "dangling.yaml" ).string() +
                          " is no regular file; name another one\nshell:5: there is no folder " +
                          ( folder / "none" ).string() + "; make it, or name another file\n" );
   EXPECT_TRUE( fs::is_fifo( folder / "fifo" ) );
   EXPECT_TRUE( fs::is_symlink( folder / "link.yaml" ) );
   EXPECT_TRUE( Support::contains( Support::contentOf( folder / "old.yaml" ), "scenario: " ) );
}

TEST_F( ShellScript, WalksThroughAnExpectedStop ) {
   leaf = directory.file( "stops.yaml",
                          Switches::leaf( "   - ready: subagents::l2Ready\n"
                                          "   - expect: { stop: { assertion: '0', function: "
                                          "qualifyUnknownEntry } }\n"
                                          "   - " +
                                          kStop ) );
   auto const walked = shell( "next\nnext\nshow tcam\nnext\n" );
   EXPECT_EQ( walked.err, "" );
   EXPECT_EQ( walked.exitCode, 0 ) << walked.out;
   EXPECT_TRUE( Support::contains( walked.out, "STOPPED in step 3" ) ) << walked.out;
   EXPECT_EQ( shell( "run\nundo\nshow tcam\n" ).exitCode, 0 );
}

TEST_F( ShellScript, EndsWithTheSignalThatInterruptsIt ) {
   auto const ran = shell(
      "call: { entity: /plugins/Sample::Mounter, operation: interrupt }\n"
      "next\n" );
   EXPECT_EQ( ran.exitCode, 130 );
   EXPECT_TRUE( Support::contains( ran.out, "INTERRUPTED in step 1 by signal 2" ) ) << ran.out;
   EXPECT_FALSE( Support::contains( ran.out, "l2Ready" ) ) << ran.out;
}

TEST_F( ShellScript, ListsWhatCanBeTyped ) {
   auto const ran = shell( "help\nhelp withdraw\nhelp verify\nhelp diff\nexit\nnonsense\n" );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( Support::contains( ran.out, "\nrun [to STEP] " ) ) << ran.out;
   EXPECT_TRUE( Support::contains( ran.out, "\nSteps: note, ready, publish" ) );
   EXPECT_TRUE( Support::contains( ran.out, "withdraw: (a step) Other agents withdraw" ) );
   EXPECT_TRUE( Support::contains( ran.out, "--after-each-step" ) );
   EXPECT_TRUE( Support::contains( ran.out, "--only PART" ) );
}

TEST_F( ShellScript, RefusesStandardInputAsTheScenario ) {
   auto const ran = Support::vornal( { "shell", "-" } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ(
      ran.err,
      "vornal shell: SCENARIO: standard input holds the commands; name the scenario's file\n"
      "'vornal shell --help' lists the words that it takes\n" );
}

}  // namespace
