// `vornal shell` at a terminal: completion, history, Ctrl-C.
#include <memory>

#include <gtest/gtest.h>

#include <Support.h>
#include <Switches.h>
#include <Terminal.h>

#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;

constexpr char const * kTab = "\t";
constexpr char const * kEnter = "\r";
constexpr char const * kUp = "\x1b[A";
constexpr char const * kCtrlC = "\x03";
constexpr char const * kCtrlD = "\x04";
constexpr char const * kCtrlU = "\x15";

class ShellTerminal : public testing::Test {
 protected:
   std::unique_ptr< Support::AtTerminal > shell() const {
      return std::make_unique< Support::AtTerminal >(
         std::vector< std::string >{ "shell", leaf, "--plugin",
                                     Support::testPlugin( "segment-rules" ) },
         directory.path() );
   }
   static std::string call( std::string const & entity, std::string const & operation ) {
      return "call: { entity: /plugins/Sample::Mounter" + entity + ", operation: " + operation +
             " }";
   }

   Support::Directory directory;
   std::string leaf =
      directory.file( "leaf.yaml", Switches::leaf( "   - ready: subagents::l2Ready\n"
                                                   "   - note: two\n" ) );
};

TEST_F( ShellTerminal, SaysWhereOneIs ) {
   auto const screen = shell();
   EXPECT_TRUE( Support::contains( screen->until( "leaf 0/2> " ), "start-up" ) );
   screen->type( "next\r" );
   EXPECT_TRUE( Support::contains( screen->until( "leaf 1/2> " ), "step 1: ready" ) );
   screen->type( "note: mine\r" );
   screen->until( "leaf 1/2 +1> " );
   screen->type( kCtrlD );
   EXPECT_EQ( screen->wait(), 0 );
}

// The editor draws the rest of a word alone.
TEST_F( ShellTerminal, CompletesCommandsStepsAndNames ) {
   auto const screen = shell();
   screen->until( "leaf 0/2> " );
   screen->type( std::string( "with" ) + kTab );
   screen->until( "draw: " );
   screen->type( std::string( "{ vt" ) + kTab );
   screen->until( "eps: " );
   screen->type( std::string( "[ 10" ) + kTab );
   screen->until( ".0.0.2" );
   screen->type( " ] }\r" );
   EXPECT_TRUE( Support::contains( screen->until( "leaf 0/2 +1> " ), "step 1: withdraw" ) );

   screen->type( std::string( "show ent" ) + kTab + "/evpn/st" + kTab + kEnter );
   screen->until( "Evpn::EvpnStatus status" );
   screen->until( "leaf 0/2 +1> " );
   screen->type( std::string( "set: { entity: /evpn/status, attribute: seg" ) + kTab );
   screen->until( "mentStatus" );
   screen->type( std::string( kCtrlU ) + "show entities /evpn/status/" + kTab );
   screen->until( "segmentStatus[Ethernet1]" );
}

TEST_F( ShellTerminal, ListsWhatCouldFollow ) {
   auto const screen = shell();
   screen->until( "leaf 0/2> " );
   screen->type( std::string( "frame: { on: " ) + kTab + kTab );
   EXPECT_TRUE( Support::contains( screen->until( "Port-Channel7" ), "Ethernet2" ) );
   screen->type( std::string( kCtrlU ) + "run t" + kTab + "1\r" );
   screen->until( "leaf 1/2> " );
}

TEST_F( ShellTerminal, CompletesOnlyNamesThatExistNow ) {
   auto const screen = shell();
   screen->until( "leaf 0/2> " );
   screen->type( "withdraw: { vteps: [ 10.0.0.2 ], segments: [ Ethernet1 ] }\r" );
   screen->until( "leaf 0/2 +1> " );
   screen->type( "publish: { vteps: { 2001:db8::7: { virtual-port: 7 } } }\r" );
   screen->until( "leaf 0/2 +2> " );
   screen->type( std::string( "withdraw: { vteps: [ " ) + kTab );
   screen->until( "2001:db8::7" );
   screen->type( " ] }\r" );
   screen->until( "leaf 0/2 +3> " );
}

TEST_F( ShellTerminal, RemembersWhatWasTypedAlsoInTheNextSession ) {
   fs::path const history = directory.path() / "vornal/history";
   {
      auto const screen = shell();
      screen->until( "leaf 0/2> " );
      screen->type( "note: remembered\r" );
      screen->until( "leaf 0/2 +1> " );
      screen->type( std::string( kUp ) + kEnter );
      screen->until( "step 2: remembered" );
      screen->until( "leaf 0/2 +2> " );
      screen->type( "quit\r" );
      EXPECT_EQ( screen->wait(), 0 );
   }
   struct stat about {};
   ASSERT_EQ( stat( history.c_str(), &about ), 0 );
   EXPECT_EQ( about.st_mode & 0777U, 0600U );

   auto const screen = shell();
   screen->until( "leaf 0/2> " );
   screen->type( std::string( kUp ) + kUp + kEnter );
   screen->until( "step 1: remembered" );
}

TEST_F( ShellTerminal, LeavesAFileAloneThatIsNoHistory ) {
   fs::create_directory( directory.path() / "vornal" );
   directory.file( "vornal/history", "something else\n" );
   auto const screen = shell();
   screen->until( "leaf 0/2> " );
   screen->type( "next\rquit\r" );
   EXPECT_EQ( screen->wait(), 0 );
   EXPECT_EQ( Support::contentOf( directory.path() / "vornal/history" ), "something else\n" );
}

TEST_F( ShellTerminal, DropsTheLineOnCtrlCAtThePrompt ) {
   auto const screen = shell();
   screen->until( "leaf 0/2> " );
   screen->type( "nonsense" );
   screen->until( "nonsense" );
   screen->type( kCtrlC );
   screen->until( "^C" );
   screen->until( "leaf 0/2> " );
   screen->type( "next\r" );
   screen->until( "leaf 1/2> " );
   screen->type( "publish:\r" );
   screen->until( "... " );
   screen->type( kCtrlC );
   screen->until( "leaf 1/2> " );
   screen->type( "quit\r" );
   EXPECT_EQ( screen->wait(), 0 );
}

TEST_F( ShellTerminal, InterruptsAStepByCtrlCAndGoesOn ) {
   auto const screen = shell();
   screen->until( "leaf 0/2> " );
   screen->type( "next\r" );
   screen->until( "leaf 1/2> " );
   screen->type( call( "", "hang" ) + kEnter );
   screen->until( "printed: hanging" );
   screen->type( std::string( kCtrlC ) + kCtrlC );
   screen->until( "INTERRUPTED in step " );
   screen->until( "leaf 1/2> " );
   screen->type( "show tcam\r" );
   screen->until( "ingress group 157" );
   screen->until( "leaf 1/2> " );
   screen->type( "quit\r" );
   EXPECT_EQ( screen->wait(), 0 );
}

TEST_F( ShellTerminal, GoesBackByUndoAfterAStopAndSavesAScenarioThatRuns ) {
   std::string const mine = directory.path() / "mine.yaml";
   auto const screen = shell();
   screen->until( "leaf 0/2> " );
   screen->type( "next\r" );
   screen->until( "leaf 1/2> " );
   screen->type( call( "/evpnMultihomingLocalBiasSm", "qualifyUnknownEntry" ) + kEnter );
   screen->until( "STOPPED in step 2" );
   screen->until( "leaf 1/2 +1 stopped> " );
   screen->type( "show rules\r" );
   screen->until( "the plug-in has stopped in step 2; undo goes back" );
   screen->type( "undo\r" );
   screen->until( "leaf 1/2> " );
   screen->type( "run\r" );
   screen->until( "leaf 2/2> " );
   screen->type( "save " + mine + kEnter );
   screen->until( "leaf 2/2> " );
   screen->type( "quit\r" );
   EXPECT_EQ( screen->wait(), 0 );

   auto const ran =
      Support::vornal( { "run", mine, "--plugin", Support::testPlugin( "segment-rules" ) } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( Support::contains( ran.out, "step 2: two" ) ) << ran.out;
}

TEST_F( ShellTerminal, DoesNotSaveOverWhatSomebodyElseHasWritten ) {
   std::string const mine = directory.path() / "mine.yaml";
   auto const screen = shell();
   screen->until( "leaf 0/2> " );
   screen->type( "save " + mine + kEnter );
   screen->until( "leaf 0/2> " );
   directory.file( "mine.yaml", "by hand\n" );
   screen->type( "save " + mine + kEnter );
   screen->until( " has changed since it was saved; name another file, or add --force" );
   screen->until( "leaf 0/2> " );
   EXPECT_EQ( Support::contentOf( mine ), "by hand\n" );
   screen->type( "save --force " + mine + kEnter );
   screen->until( "leaf 0/2> " );
   EXPECT_TRUE( Support::contains( Support::contentOf( mine ), "scenario: mine" ) );
}

TEST_F( ShellTerminal, KeepsTheHistoryWhenItIsKilled ) {
   auto const screen = shell();
   screen->until( "leaf 0/2> " );
   screen->type( "note: remembered\r" );
   screen->until( "leaf 0/2 +1> " );
   screen->signal( SIGKILL );
   EXPECT_NE( screen->wait(), 0 );
   EXPECT_TRUE( Support::contains( Support::contentOf( directory.path() / "vornal/history" ),
                                   "remembered" ) );
}

TEST_F( ShellTerminal, EndsWithTheTerminalOrByATermination ) {
   auto const screen = shell();
   screen->until( "leaf 0/2> " );
   screen->signal( SIGTERM );
   EXPECT_EQ( screen->wait(), 143 );
}

}  // namespace
