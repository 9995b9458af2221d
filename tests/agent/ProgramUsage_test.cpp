// What the program says to words that it does not know, and how a scenario can be given to it.
#include <cstdlib>
#include <thread>

#include <gtest/gtest.h>

#include <CommandLine/Table.h>
#include <Support.h>
#include <Switches.h>
#include <Text/Words.h>

#include <sys/stat.h>
#include <sys/wait.h>

namespace {

// "run, show and help": those of the program's help.
std::string commands() {
   return Text::listed( CommandLine::commandNames(), "and" );
}

TEST( ProgramUsage, NamesTheCommandThatWasProbablyMeant ) {
   auto const ran = Support::vornal( { "rum", "x.yaml" } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.out, "" );
   EXPECT_EQ( ran.err, "no command 'rum'; did you mean 'run'?\n" );
   EXPECT_EQ( Support::vornal( { "vrify", "x.yaml" } ).err,
              "no command 'vrify'; did you mean 'verify'?\n" );
   EXPECT_EQ( Support::vornal( { "shwo", "x.yaml" } ).err,
              "no command 'shwo'; did you mean 'show'?\n" );
   EXPECT_EQ( Support::vornal( { "inspect" } ).err,
              "no command 'inspect'; the commands are " + commands() + '\n' );
}

TEST( ProgramUsage, WritesOutWhatATerminalWouldObeyInEveryMessage ) {
   std::string const evil = "\x1b]0;x\x07";
   for ( auto const & arguments :
         std::vector< std::vector< std::string > >{ { evil },
                                                    { "run", "leaf.yaml", "--" + evil },
                                                    { "run", "leaf.yaml", "--trace", evil },
                                                    { "run", "leaf.yaml", "--turn-limit", evil },
                                                    { "show", "leaf.yaml", evil },
                                                    { "show", "leaf.yaml", "entities", evil } } ) {
      auto const ran = Support::vornal( arguments );

      EXPECT_EQ( ran.exitCode, 2 );
      EXPECT_EQ( ran.err.find_first_of( "\x1b\x07" ), std::string::npos ) << ran.err;
      EXPECT_NE( ran.err.find( "\\x1b]0;x\\x07" ), std::string::npos ) << ran.err;
   }
}

TEST( ProgramUsage, KeepsItsMessagesShortWhateverIsTyped ) {
   auto const ran = Support::vornal( { "run", "leaf.yaml", "--trace", std::string( 9000, 'x' ) } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_LT( ran.err.size(), 2000U );
   EXPECT_NE( ran.err.find( "'vornal run --help' lists" ), std::string::npos ) << ran.err;
}

TEST( ProgramUsage, SaysWhichWordIsMissingOrTooMany ) {
   std::string const help = "\n'vornal run --help' lists the words that it takes\n";
   std::string const scenario = "the scenario's file, a pipe, or '-' for standard input";
   EXPECT_EQ( Support::vornal( {} ).err, "vornal: a command is missing; the commands are " +
                                            commands() +
                                            "\n"
                                            "'vornal --help' lists the words that it takes\n" );
   EXPECT_EQ( Support::vornal( { "run" } ).err,
              "vornal run: SCENARIO is missing: " + scenario + help );
   EXPECT_EQ( Support::vornal( { "show", "leaf.yaml" } ).err,
              "vornal show: WHAT is missing: what to show: rules, segments, vteps, ports, tcam, "
              "class-ids, macs, counters, log, state or entities\n"
              "'vornal show --help' lists the words that it takes\n" );
   EXPECT_EQ( Support::vornal( { "run", "leaf.yaml", "--ring" } ).err,
              "vornal run: --ring needs a value: write the binary trace ring into this file" +
                 help );
   EXPECT_EQ( Support::vornal( { "run", "leaf.yaml", "--ring", "a", "--ring", "b" } ).err,
              "vornal run: --ring is given more than once; give it once" + help );
   EXPECT_EQ( Support::vornal( { "run", "leaf.yaml", "--jsn" } ).err,
              "vornal run: unknown word '--jsn'; did you mean '--json'?" + help );
   EXPECT_EQ( Support::vornal( { "run", "leaf.yaml", "more" } ).err,
              "vornal run: unknown word 'more'" + help );
}

TEST( ProgramUsage, NamesAnUnknownWordWhereACommandIsExpected ) {
   std::string const help = "\n'vornal --help' lists the words that it takes\n";
   EXPECT_EQ( Support::vornal( { "--hlep" } ).err,
              "vornal: unknown word '--hlep'; did you mean '--help'?" + help );
   EXPECT_EQ( Support::vornal( { "--bogus" } ).err, "vornal: unknown word '--bogus'" + help );
}

TEST( ProgramUsage, SaysWhatNumberIsExpected ) {
   for ( std::string const step : { "x", "-1", "99999999999", "-2s", "nans", "1e9s", "2.5" } ) {
      EXPECT_EQ( Support::vornal( { "show", "leaf.yaml", "rules", "--after=" + step } ).err,
                 "vornal show: --after: '" + step +
                    "' is no step; give its number, 0 for start-up, or of a record a time such as "
                    "2.5s\n'vornal show --help' lists the words that it takes\n" );
   }
   EXPECT_EQ( Support::vornal( { "run", "leaf.yaml", "--until=x" } ).err,
              "vornal run: --until: 'x' is no whole number from 0 on: end with this step, 0 for "
              "start-up\n'vornal run --help' lists the words that it takes\n" );
   for ( std::string const jobs : { "x", "0", "-1", "1025", "2x" } ) {
      EXPECT_EQ( Support::vornal( { "test", "leaf.yaml", "--jobs", jobs } ).err,
                 "vornal test: --jobs: '" + jobs +
                    "' is no number of jobs; give one from 1 to 1024\n'vornal test --help' lists "
                    "the words that it takes\n" );
   }
}

TEST( ProgramUsage, SaysWhatATurnLimitIs ) {
   for ( std::string const limit : { "x", "-1", "nan", "1e9", "5s", "86400.1" } ) {
      auto const ran = Support::vornal( { "run", "leaf.yaml", "--turn-limit=" + limit } );
      EXPECT_EQ( ran.exitCode, 2 ) << limit;
      EXPECT_EQ( ran.err, "vornal run: --turn-limit: '" + limit +
                             "' is no time limit of a turn; give seconds from 0 to 86400, such as "
                             "2.5, or 0 for no limit\n'vornal run --help' lists the words that it "
                             "takes\n" );
   }
}

TEST( ProgramUsage, NamesTheSignalsThatEndARunInItsHelp ) {
   for ( std::string const command : { "run", "show", "verify" } ) {
      std::string const help = Support::vornal( { command, "--help" } ).out;
      EXPECT_NE( help.find( "129 SIGHUP, 130 SIGINT (Ctrl-C), 143 SIGTERM" ), std::string::npos )
         << help;
   }
}

TEST( ProgramUsage, RefusesNamesThatAreEmpty ) {
   for ( std::string const option : { "--ring", "--pcap-out", "--plugin" } ) {
      auto const ran = Support::vornal( { "run", "x.yaml", option, "" } );
      EXPECT_EQ( ran.exitCode, 2 ) << option;
      EXPECT_NE( ran.err.find( option + ": an empty text names nothing; give a name" ),
                 std::string::npos )
         << ran.err;
   }
   EXPECT_EQ( Support::vornal( { "run", "" } ).exitCode, 2 );
}

TEST( ProgramUsage, RefusesEmptyPathsAndRings ) {
   std::string const reason = "an empty text names nothing; give a name";
   auto const shown = Support::vornal( { "show", "x.yaml", "entities", "" } );
   EXPECT_EQ( shown.exitCode, 2 );
   EXPECT_NE( shown.err.find( "vornal show: PATH: " + reason ), std::string::npos ) << shown.err;
   auto const ring = Support::vornal( { "ring", "" } );
   EXPECT_EQ( ring.exitCode, 2 );
   EXPECT_NE( ring.err.find( "vornal ring: FILE: " + reason ), std::string::npos ) << ring.err;
}

TEST( ProgramUsage, RefusesAValueOfAWordThatTakesNone ) {
   struct Case {
      std::vector< std::string > arguments;
      std::string err;
   };
   for ( Case const & one :
         { Case{ { "run", "x.yaml", "--json=5" }, "vornal run: --json takes no value" },
           Case{ { "run", "x.yaml", "--json=false" }, "vornal run: --json takes no value" },
           Case{ { "verify", "x.yaml", "--after-each-step=no" },
                 "vornal verify: --after-each-step takes no value" },
           Case{ { "show", "--help=5" }, "vornal show: --help takes no value" },
           Case{ { "--version=5" }, "vornal: --version takes no value" } } ) {
      auto const ran = Support::vornal( one.arguments );
      EXPECT_EQ( ran.exitCode, 2 );
      EXPECT_EQ( ran.out, "" );
      EXPECT_TRUE( ran.err.starts_with( one.err + "; give it alone\n" ) ) << ran.err;
   }
}

TEST( ProgramUsage, NamesAScenarioThatIsNotThereWithoutALine ) {
   auto const ran = Support::vornal( { "run", "/nowhere/leaf.yaml" } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err,
              "/nowhere/leaf.yaml: there is no such file; name a scenario's file, as in "
              "scenarios/start-up/scenario.yaml\n" );
}

class ProgramInput : public testing::Test {
 protected:
   // What a shell's command prints.
   std::string printed( std::string const & command ) const {
      std::string const out = directory.path() / "out";
      int const status = std::system( ( command + " > " + out + " 2>&1" ).c_str() );
      return std::to_string( WEXITSTATUS( status ) ) + '\n' + Support::contentOf( out );
   }

   Support::Directory directory;
   std::string const program = VORNAL_BINARY_DIR "/vornal";
   std::string const plugin = " --plugin " + Support::testPlugin( "segment-rules" ).string();
   std::string const good =
      directory.file( "good.yaml", Switches::leaf( "   - note: read\n" ) ).string();
   std::string const bad =
      directory.file( "bad.yaml", Switches::leaf( "   - nope: x\n" ) ).string();
};

TEST_F( ProgramInput, CanBeStandardInput ) {
   std::string const ran = printed( program + " run -" + plugin + " < " + good );
   EXPECT_EQ( ran.substr( 0, 2 ), "0\n" ) << ran;
   EXPECT_NE( ran.find( "read" ), std::string::npos );
   std::string const refused = printed( program + " run -" + plugin + " < " + bad );
   EXPECT_EQ( refused.substr( 0, 43 ), "2\nstandard input:20: unknown word 'nope' in" ) << refused;
}

TEST_F( ProgramInput, HasOneNameWhereItsMistakesAreListed ) {
   std::string const file = directory.file( "worse.yaml", "switch: 1\nscenario:\n" );
   std::string const ran = printed( program + " check - < " + file );
   EXPECT_TRUE( ran.starts_with( "2\nstandard input:1: switch is text" ) ) << ran;
   EXPECT_NE( ran.find( "\nstandard input: not checked because of" ), std::string::npos ) << ran;
}

TEST_F( ProgramInput, CanBeAPipe ) {
   std::string const ran = printed( "cat " + good + " | " + program + " run /dev/stdin" + plugin );
   EXPECT_EQ( ran.substr( 0, 2 ), "0\n" ) << ran;
}

// --- A key that is left out

TEST_F( ProgramInput, SaysWhatHappensWithoutAKeyWhereThereAreKeys ) {
   auto const ran = [ & ]( std::string const & step ) {
      return printed(
         program + " run" + plugin + ' ' +
         directory.file( "keys.yaml", Switches::leaf( "   - " + step + '\n' ) ).string() );
   };
   std::string const empty = ran( "set: { entity: /lag/config, attribute: phyIntf }" );
   EXPECT_EQ( empty.substr( 0, 2 ), "0\n" ) << empty;
   EXPECT_NE(
      empty.find(
         "keys.yaml:20: 'key' is left out, so the entry of 'phyIntf' under the empty key is used" ),
      std::string::npos )
      << empty;
   std::string const refused =
      ran( "set: { entity: '/evpn/status/segmentStatus[Ethernet1]', attribute: remoteTep }" );
   EXPECT_EQ( refused.substr( 0, 2 ), "2\n" ) << refused;
   EXPECT_NE( refused.find( "keys.yaml:20: attribute 'remoteTep' has keys; give one with 'key'" ),
              std::string::npos )
      << refused;
}

}  // namespace
