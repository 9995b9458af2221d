// The program as its user calls it.
#include <map>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <Support.h>
#include <Switches.h>

namespace {

using Json = nlohmann::json;

class Program : public testing::Test {
 protected:
   // Runs a scenario of these steps with the sample plug-in.
   Support::Ran run( std::string const & steps, std::vector< std::string > const & more = {} ) {
      return command( { "run" }, steps, more );
   }

   Support::Ran command( std::vector< std::string > words, std::string const & steps,
                         std::vector< std::string > const & more = {} ) {
      words.push_back( directory.file( "leaf.yaml", Switches::leaf( steps ) ) );
      words.insert( words.end(), more.begin(), more.end() );
      words.insert( words.end(), { "--plugin", Support::testPlugin( "segment-rules" ) } );
      return Support::vornal( words );
   }

   std::string scenario() const { return directory.path() / "leaf.yaml"; }

   Support::Directory directory;
};

std::string const ready = "   - ready: subagents::l2Ready\n";
// The plug-in has room for two segments.
std::string const stop = ready +
                         "   - publish: { segments: { Ethernet2: [] } }\n"
                         "   - publish: { segments: { Ethernet3: [] } }\n"
                         "   - note: never reached\n";

// --- Exit codes

TEST_F( Program, ExitsWith0WhenAllHeld ) {
   auto const ran = run( ready + "   - expect: { plug-in: ready }\n" );

   EXPECT_EQ( ran.exitCode, 0 ) << ran.out << ran.err;
   EXPECT_TRUE( Support::contains( ran.out, "PASSED: 1 expectation held; 1 rule in the chip" ) )
      << ran.out;
   EXPECT_EQ( ran.err, "" );
}

TEST_F( Program, ExitsWith1WhenAnExpectationFailed ) {
   auto const ran = run( "   - expect: { plug-in: ready }\n" );

   EXPECT_EQ( ran.exitCode, 1 );
   EXPECT_TRUE( Support::contains( ran.out, "NOT as expected: plug-in ready; it is not ready (" +
                                               scenario() + ":20)" ) )
      << ran.out;
   EXPECT_TRUE( Support::contains( ran.out, "FAILED: 1 of 1 expectation did not hold" ) )
      << ran.out;
}

TEST_F( Program, ExitsWith2AndThePlaceWhenTheScenarioIsWrongBeforeAnythingIsLoaded ) {
   auto const ran = run( "   - raedy: subagents::l2Ready\n" );

   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.out, "" );
   EXPECT_EQ( ran.err.find( scenario() + ":20: " ), 0U ) << ran.err;
}

TEST_F( Program, ExitsWith2WhenThereIsNoSuchScenarioOrPlugIn ) {
   auto const noScenario = Support::vornal( { "run", "/nowhere/leaf.yaml" } );
   EXPECT_EQ( noScenario.exitCode, 2 );
   EXPECT_TRUE( Support::contains( noScenario.err, "/nowhere/leaf.yaml" ) );

   auto const noPlugin =
      Support::vornal( { "run", directory.file( "leaf.yaml", Switches::leaf( ready ) ), "--plugin",
                         "/nowhere/plug-in.so" } );
   EXPECT_EQ( noPlugin.exitCode, 2 );
   EXPECT_EQ( noPlugin.out, "" );
   EXPECT_TRUE( Support::contains( noPlugin.err, "/nowhere/plug-in.so: there is no such file" ) );
}

TEST_F( Program, ExitsWith2WhenAStepNamesAnAttributeThatDoesNotExist ) {
   auto const ran =
      run( "   - set: { entity: /lag/config, attribute: lags, value: 1 }\n", { "--json" } );

   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err,
              scenario() + ":20: a Lag::Config has no attribute 'lags'; it has phyIntf\n" );
   Json const document = Json::parse( ran.out );
   EXPECT_EQ( document[ "end" ], "failed" );
   EXPECT_EQ( document[ "error" ].get< std::string >() + "\n", ran.err );
   EXPECT_EQ( document[ "step" ], 1 );
   EXPECT_EQ( document[ "steps" ].size(), 2U );
}

TEST_F( Program, VerifiesWithADocumentAlsoWhenAStepIsWrong ) {
   auto const ran =
      command( { "verify" }, "   - set: { entity: /lag/config, attribute: lags, value: 1 }\n",
               { "--json" } );

   EXPECT_EQ( ran.exitCode, 2 );
   Json const document = Json::parse( ran.out );
   EXPECT_EQ( document[ "end" ], "failed" );
   EXPECT_EQ( document[ "error" ].get< std::string >() + "\n", ran.err );
   EXPECT_EQ( document[ "step" ], 1 );
}

TEST_F( Program, ExitsWith2OnWrongUsageAndWith0OnACryForHelp ) {
   for ( std::vector< std::string > const & words : std::vector< std::vector< std::string > >{
            {},
            { "walk" },
            { "run" },
            { "run", "a.yaml", "b.yaml" },
            { "run", "a.yaml", "--jason" },
            { "run", "a.yaml", "--trace", "VornalEvpnSm" },
            { "run", "a.yaml", "--trace", "VornalEvpnSm/5-2" },
            { "show", "a.yaml", "frames" },
            { "show", "a.yaml", "entities", "not a path" },
            { "ring" } } ) {
      auto const ran = Support::vornal( words );
      EXPECT_EQ( ran.exitCode, 2 ) << testing::PrintToString( words );
      EXPECT_EQ( ran.out, "" ) << testing::PrintToString( words );
      EXPECT_NE( ran.err, "" ) << testing::PrintToString( words );
   }
   auto const help = Support::vornal( { "--help" } );
   EXPECT_EQ( help.exitCode, 0 );
   EXPECT_TRUE( Support::contains( help.out, "3 the plug-in stopped" ) );
}

// --- A plug-in that stops the process

TEST_F( Program, TellsAtWhichStepThePlugInStoppedAndExitsWith3 ) {
   auto const ran = run( stop );

   EXPECT_EQ( ran.exitCode, 3 );
   EXPECT_TRUE(
      Support::contains( ran.out, "step 2: publish segment Ethernet2\n   trace Sample 5" ) )
      << ran.out;
   EXPECT_TRUE( Support::contains(
      ran.out, "STOPPED in step 3: the process of the plug-in ended with signal 6 (Aborted)." ) )
      << ran.out;
   EXPECT_TRUE( Support::contains( ran.out,
                                   "assertion  entryIds() < kMostSegments && \"room for another "
                                   "segment\"\n" ) )
      << ran.out;
   EXPECT_TRUE( Support::contains( ran.out, "at         segment-rules.cpp:" ) ) << ran.out;
   EXPECT_TRUE( Support::contains( ran.out,
                                   "The last lines of its trace ring:\n"
                                   "   Sample 5: handleSegment intfId: Ethernet1\n"
                                   "   Sample 5: handleSegment intfId: Ethernet2\n"
                                   "   Sample 5: handleSegment intfId: Ethernet3\n" ) )
      << ran.out;
   EXPECT_FALSE( Support::contains( ran.out, "never reached" ) );
}

TEST_F( Program, TellsTheSameInItsDocument ) {
   auto const ran = run( stop, { "--json" } );

   EXPECT_EQ( ran.exitCode, 3 );
   Json const document = Json::parse( ran.out );
   EXPECT_EQ( document[ "end" ], "stopped" );
   EXPECT_EQ( document[ "step" ], 3 );
   EXPECT_EQ( document[ "assertion" ][ "file" ], "segment-rules.cpp" );
   EXPECT_EQ( document[ "assertion" ][ "expression" ],
              "entryIds() < kMostSegments && \"room for another segment\"" );
   EXPECT_TRUE(
      Support::contains( document[ "assertion" ][ "function" ], "::add(const Pelk::IntfId" ) );
   EXPECT_EQ( document[ "stop" ][ "reason" ], "signal 6 (Aborted)" );
   EXPECT_EQ( document[ "stop" ][ "traces" ].size(), 3U );
   EXPECT_EQ( document[ "rules" ].size(), 2U );
   EXPECT_EQ( document[ "steps" ].size(), 4U );
}

TEST_F( Program, ShowsTheLineOfAFieldCallThatFailed ) {
   auto const ran = run( ready +
                            "   - call: { entity: /plugins/Sample::Mounter/"
                            "evpnMultihomingLocalBiasSm, operation: qualifyUnknownEntry }\n",
                         { "--json" } );

   EXPECT_EQ( ran.exitCode, 3 );
   Json const document = Json::parse( ran.out );
   EXPECT_EQ( document[ "assertion" ][ "expression" ], "0" );
   EXPECT_TRUE(
      Support::contains( document[ "stop" ][ "output" ][ 0 ],
                         " bcm_field_qualify_TunnelTerminated( unit, entryId, 1, 1 ) API ERROR:"
                         "Unknown entry (-2)" ) );
   EXPECT_EQ( document[ "steps" ][ 2 ][ "hardwareCalls" ][ 0 ][ "returnCode" ], -2 );
   EXPECT_EQ( document[ "counters" ][ "failedCalls" ], 1 );
   EXPECT_TRUE( Support::contains( ran.err, "API ERROR:" ) );
}

// --- The document

TEST_F( Program, PrintsOneDocumentAndNothingElseOnStandardOutput ) {
   auto const ran = run(
      "   - call: { entity: /plugins/Sample::Mounter, operation: print, "
      "arguments: [ '\"hello from inside\"' ] }\n",
      { "--json" } );

   EXPECT_EQ( ran.exitCode, 0 );
   EXPECT_EQ( Json::parse( ran.out )[ "end" ], "completed" );
   EXPECT_EQ( ran.err, "hello from inside\n" );
}

TEST_F( Program, GivesEveryStepItsCallsRulesAndExpectations ) {
   auto const ran = run( ready +
                            "   - publish: { segments: { Ethernet2: [] } }\n"
                            "   - withdraw: { segments: [ Ethernet1 ] }\n"
                            "   - expect: { rules: { group: ingress, count: 1 } }\n",
                         { "--json" } );

   Json const document = Json::parse( ran.out );
   EXPECT_EQ( document[ "scenario" ], "leaf" );
   EXPECT_EQ( document[ "file" ], scenario() );
   EXPECT_EQ( document[ "variant" ], "Sample::SegmentRulesWithEgressMaskSm" );
   Json const & steps = document[ "steps" ];
   ASSERT_EQ( steps.size(), 6U );
   EXPECT_EQ( steps[ 0 ][ "changes" ].size(), 0U );
   EXPECT_EQ( steps[ 1 ][ "rulesAdded" ][ 0 ][ "name" ], "Sample Ethernet1" );
   EXPECT_EQ( steps[ 2 ][ "text" ], "publish segment Ethernet2" );
   EXPECT_EQ( steps[ 2 ][ "place" ], scenario() + ":21" );
   EXPECT_EQ( steps[ 2 ][ "hardwareCalls" ].size(), 5U );
   EXPECT_EQ( steps[ 3 ][ "rulesRemoved" ][ 0 ][ "id" ], 1 );
   EXPECT_EQ( steps[ 4 ][ "expectations" ][ 0 ][ "held" ], true );
   EXPECT_EQ( document[ "rules" ][ 0 ][ "name" ], "Sample Ethernet2" );
   EXPECT_EQ( document[ "rules" ][ 0 ][ "actions" ][ "EgressMask" ][ "ports" ],
              Json::array( { 3 } ) );
}

// --- Files that are no plug-ins

TEST_F( Program, RefusesAPlugInThatWasCutShortWhereverItWas ) {
   std::string const whole = Support::contentOf( Support::testPlugin( "segment-rules" ) );
   std::string const leaf = directory.file( "leaf.yaml", Switches::leaf( ready ) );
   for ( std::size_t const size :
         { std::size_t{ 0 }, std::size_t{ 3 }, std::size_t{ 64 }, std::size_t{ 1000 },
           std::size_t{ 4096 }, whole.size() / 2, whole.size() - 1 } ) {
      std::string const cut = directory.file( "cut.so", whole.substr( 0, size ) );
      auto const ran = Support::vornal( { "run", leaf, "--plugin", cut } );

      EXPECT_EQ( ran.exitCode, 2 ) << size << ran.out;
      EXPECT_EQ( ran.err.find( cut + " is " ), 0U ) << size << ran.err;
      EXPECT_TRUE( Support::contains( ran.err, "; " ) ) << ran.err;
   }
}

TEST_F( Program, RunsNothingOfAFileThatCannotBeAPlugIn ) {
   std::string const leaf = directory.file( "leaf.yaml", Switches::leaf( ready ) );
   std::string const library = VORNAL_BINARY_DIR "/libVornalPlatform.so";
   for ( auto const & [ file, why ] : std::map< std::string, std::string >{
            { library, " registers no mounter, so it is no plug-in: it is not linked with " },
            { leaf, " is no shared object of this machine; " },
            { VORNAL_BINARY_DIR "/vornal", ": cannot dynamically load " },
            { "/dev/null", " is no file; " },
            { "/", " is no file; " } } ) {
      auto const ran = Support::vornal( { "run", leaf, "--json", "--plugin", file } );

      EXPECT_EQ( ran.exitCode, 2 ) << file;
      EXPECT_TRUE( Support::contains( ran.err, file + why ) ) << ran.err;
      EXPECT_EQ( Json::parse( ran.out )[ "end" ], "failed" ) << file;
   }
}

// --- Traces

TEST_F( Program, ShowsTheTraceLevelsThatAreAskedFor ) {
   auto const quiet = run( ready, { "--trace", "Sample/" } );
   auto const loud = run( ready, { "--trace", "Sample/", "--trace", "Sam*/5,8" } );

   EXPECT_FALSE( Support::contains( quiet.out, "trace Sample" ) ) << quiet.out;
   EXPECT_TRUE( Support::contains( loud.out, "trace Sample 8: Sample::Mounter::doInit" ) )
      << loud.out;
   EXPECT_TRUE( Support::contains( loud.out, "trace Sample 5: handleSegment intfId: Ethernet1" ) );
}

TEST_F( Program, WritesATraceRingAndPrintsIt ) {
   std::string const ring = directory.path() / "ring";
   EXPECT_EQ( run( stop, { "--ring", ring } ).exitCode, 3 );

   auto const printed = Support::vornal( { "ring", ring } );

   EXPECT_EQ( printed.exitCode, 0 );
   EXPECT_EQ( printed.out,
              "       0      0.000000000    1 Sample 5: handleSegment intfId: Ethernet1\n"
              "       1      0.000000000    2 Sample 5: handleSegment intfId: Ethernet2\n"
              "       2      0.000000000    3 Sample 5: handleSegment intfId: Ethernet3\n" );
}

TEST_F( Program, RefusesAFileThatIsNoTraceRing ) {
   auto const text = Support::vornal( { "ring", directory.file( "text", "no ring" ) } );
   EXPECT_EQ( text.exitCode, 2 );
   EXPECT_TRUE( Support::contains( text.err, "/text: not a trace ring" ) ) << text.err;

   auto const nothing = Support::vornal( { "ring", "/nowhere/ring" } );
   EXPECT_EQ( nothing.exitCode, 2 );
   EXPECT_EQ( nothing.err,
              "/nowhere/ring: the file cannot be read (No such file or directory); name one that "
              "'run --ring' has written\n" );

   auto const device = Support::vornal( { "ring", "/dev/zero" } );
   EXPECT_EQ( device.exitCode, 2 );
   EXPECT_TRUE( Support::contains( device.err, "/dev/zero: this is no regular file" ) )
      << device.err;
}

TEST_F( Program, SaysWhichRingFileCannotBeWritten ) {
   auto const ran = run( ready, { "--ring", "/nowhere/ring" } );

   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.out, "" );
   EXPECT_TRUE( Support::contains( ran.err, "/nowhere/ring" ) ) << ran.err;
}

TEST_F( Program, LeavesAFileAloneThatIsNoRing ) {
   std::string const text =
      Support::contentOf( directory.file( "leaf.yaml", Switches::leaf( ready ) ) );
   auto const ran = run( ready, { "--ring", scenario() } );

   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err, "--ring: " + scenario() +
                          " holds something else; name a new file, or the ring of a run that is "
                          "over\n" );
   EXPECT_EQ( Support::contentOf( scenario() ), text );
}

// --- show

TEST_F( Program, ShowsAnEntityAsATree ) {
   auto const ran = command( { "show" }, ready, { "entities", "/evpn/status" } );

   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_EQ( ran.out,
              "/evpn/status: Evpn::EvpnStatus status\n"
              "   segmentStatus\n"
              "      Ethernet1: Evpn::EthernetSegmentStatus Ethernet1\n"
              "         intfId: Ethernet1\n"
              "         remoteTep\n"
              "            10.0.0.2\n" );
}

TEST_F( Program, ShowsAnEntityOfThePlugInAsADocument ) {
   auto const ran =
      command( { "show" }, ready,
               { "entities", "/plugins/Sample::Mounter/evpnMultihomingLocalBiasSm", "--json" } );

   Json const document = Json::parse( ran.out );
   EXPECT_EQ( document[ "path" ], "/plugins/Sample::Mounter/evpnMultihomingLocalBiasSm" );
   EXPECT_EQ( document[ "entity" ][ "attributes" ][ "entryId" ][ "Ethernet1" ], "1" );
   EXPECT_EQ( document[ "entity" ][ "attributes" ][ "evpnStatus" ][ "shownAt" ], "/evpn/status" );
}

TEST_F( Program, ListsThePathsThatCanBeShown ) {
   auto const text = command( { "show" }, ready, { "entities" } );
   EXPECT_TRUE( Support::contains( text.out, "/evpn/status: Evpn::EvpnStatus\n" ) ) << text.out;

   Json const document = Json::parse( command( { "show" }, ready, { "entities", "--json" } ).out );
   EXPECT_EQ( document[ "entities" ][ 1 ][ "path" ], "/evpn/status" );
}

TEST_F( Program, ShowsNothingAtAPathWhoseKeyIsNone ) {
   auto const ran = command( { "show" }, ready, { "entities", "/evpn/status/segmentStatus[foo]" } );

   EXPECT_EQ( ran.exitCode, 2 ) << ran.err;
   EXPECT_EQ( ran.out, "" );
   EXPECT_TRUE( Support::contains( ran.err, "'foo'" ) ) << ran.err;
   EXPECT_FALSE( Support::contains( ran.err, "STOPPED" ) ) << ran.err;
}

TEST_F( Program, SaysWhatThereIsWhenThereIsNoSuchEntity ) {
   auto const ran = command( { "show" }, ready, { "entities", "/evpn/state" } );

   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.out, "" );
   EXPECT_TRUE( Support::contains( ran.err, "there is no entity at '/evpn/state'" ) ) << ran.err;
   EXPECT_TRUE( Support::contains( ran.err, "   /evpn/status\n" ) ) << ran.err;
}

TEST_F( Program, TellsTheStoryInsteadWhenThePlugInStopsBeforeThereIsAnythingToShow ) {
   auto const ran = command( { "show" }, stop, { "entities", "/evpn/status" } );

   EXPECT_EQ( ran.exitCode, 3 );
   EXPECT_EQ( ran.out, "" );
   EXPECT_TRUE( Support::contains( ran.err, "STOPPED in step 3" ) ) << ran.err;
}

// --- The plug-in that comes with the program

TEST( ProgramWithItsPlugin, FindsThePlugInBesideItAndBringsItUp ) {
   for ( char const * const scenario : { "start-up", "start-up-class-id" } ) {
      std::string const file =
         std::string( VORNAL_SOURCE_DIR "/scenarios/" ) + scenario + "/scenario.yaml";
      auto const ran = Support::vornal( { "run", file } );

      EXPECT_EQ( ran.exitCode, 0 ) << ran.out << ran.err;
      EXPECT_TRUE(
         Support::contains( ran.out, "marks its own dependency point \"evpn\" as ready" ) );
      EXPECT_TRUE( Support::contains( ran.out, "void Vornal::VornalEvpnMounter::finishInit()" ) );
      EXPECT_EQ( Support::timesIn( ran.out, "   mounts " ),
                 8U );  // seven, and that they are complete
   }
}

}  // namespace
