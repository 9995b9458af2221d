// Frames in scenarios: what they need, what is told of them, what leaves.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <AgentRun.h>
#include <Capture/CaptureReader.h>
#include <Support.h>

namespace {

using Frames = AgentRun;

std::string const kSwitch =
   "scenario: leaf\n"
   "switch:\n"
   "  name: leaf1\n"
   "  variant: egress-mask\n"
   "  units: { 0: { module: 1 } }\n"
   "  interfaces: { Ethernet1: { unit: 0, port: 1 }, Ethernet2: {}, Ethernet3: { unit: 0, port: 3 "
   "},\n"
   "                Ethernet49: { unit: 0, port: 49 } }\n"
   "  port-channels: { Port-Channel2: [ Ethernet2 ] }\n";  // line 8

std::string const kForwarding =
   "forwarding:\n"
   "  vtep-addresses: [ 10.0.0.1 ]\n"
   "  underlay: [ Ethernet49 ]\n"
   "  vlans: { 10: 10100 }\n"
   "  access: { Ethernet1: 10, Ethernet3: 10, Port-Channel2: 10 }\n"
   "evpn:\n"
   "  segments: { Ethernet3: [ 10.0.0.2 ] }\n"
   "  vteps: { 10.0.0.2: { virtual-port: 2 } }\n"
   "steps:\n";  // line 17

std::string const kFromPeer =
   "  - frame: { from: 10.0.0.2, vni: 10100, source: '00:00:5e:00:53:02' }\n";

std::string badInputOf( Support::Recorder const & story ) {
   auto const told = story.all< Story::BadInput >();
   return told.empty() ? "" : told.front().text;
}

std::map< std::string, std::string > verdictsOf( Story::FrameForwarded const & event ) {
   std::map< std::string, std::string > verdicts;
   for ( Chip::Copy const & copy : event.frame.copies ) {
      verdicts[ copy.remoteVtep ? copy.remoteVtep->stringValue() : copy.intfId.stringValue() ] =
         nameOf( copy.verdict );
   }
   return verdicts;
}

using Verdicts = std::map< std::string, std::string >;

TEST_F( Frames, CannotComeInOnAnInterfaceWithoutAPort ) {
   runText( kSwitch + kForwarding + "  - frame: { on: Ethernet2, source: '00:00:5e:00:53:01' }\n" );

   EXPECT_EQ( badInputOf( story ),
              "scenario.yaml:18: Ethernet2 has no port; no frame can come in on it" );
}

TEST_F( Frames, AreToldWithTheirVerdictAtEveryPortAndTheRuleThatDecided ) {
   runText( kSwitch + kForwarding + kFromPeer + "  - ready: subagents::l2Ready\n" + kFromPeer );

   auto const told = story.all< Story::FrameForwarded >();
   ASSERT_EQ( told.size(), 2U );
   EXPECT_EQ( verdictsOf( told[ 0 ] ), ( Verdicts{ { "Ethernet1", "sent" },
                                                   { "Ethernet3", "sent" },
                                                   { "Port-Channel2", "no-port" } } ) );
   EXPECT_EQ( verdictsOf( told[ 1 ] ).at( "Ethernet3" ), "masked" );
   EXPECT_EQ( told[ 1 ].number, 2U );
   Chip::FrameStory const & frame = told[ 1 ].frame;
   EXPECT_EQ( frame.arrivalIntfId.stringValue(), "Ethernet49" );
   EXPECT_EQ( frame.kind, Chip::FrameKind::Broadcast );
   ASSERT_TRUE( frame.tunnel );
   EXPECT_EQ( frame.tunnel->source.stringValue(), "10.0.0.2" );
   EXPECT_EQ( frame.tunnel->vni, 10100U );
   ASSERT_TRUE( frame.ingress.at( 0 ).rule );
   EXPECT_EQ( frame.ingress[ 0 ].rule->id, 3U );
}

TEST_F( Frames, FollowInterfacesPortChannelsAndTunnelsAsTheyArePublished ) {
   runText( kSwitch + kForwarding + kFromPeer +
            "  - publish: { interfaces: { Ethernet2: { unit: 0, port: 2 } } }\n" + kFromPeer +
            "  - withdraw: { interfaces: [ Ethernet1 ] }\n" + kFromPeer +
            "  - withdraw: { vteps: [ 10.0.0.2 ] }\n" + kFromPeer +
            "  - publish: { vteps: { 10.0.0.2: { virtual-port: 2 } } }\n"
            "  - designated-forwarder: { Ethernet3: false }\n" +
            kFromPeer );

   auto const told = story.all< Story::FrameForwarded >();
   ASSERT_EQ( told.size(), 5U );
   EXPECT_EQ( verdictsOf( told[ 1 ] ).at( "Port-Channel2" ), "sent" );
   EXPECT_FALSE( verdictsOf( told[ 2 ] ).contains( "Ethernet1" ) );
   EXPECT_EQ( told[ 3 ].frame.dropReason, Chip::DropReason::UnknownVtep );
   EXPECT_EQ( verdictsOf( told[ 4 ] ).at( "Ethernet3" ), "not-designated" );
}

TEST_F( Frames, HoldExpectationsToEachFrameThatIsMeant ) {
   runText( kSwitch + kForwarding + kFromPeer +
            "  - expect:\n"
            "      - frames: { from: 10.0.0.2, reach: [ Ethernet1, Ethernet3 ], count: 1 }\n"
            "      - frames: { kind: broadcast, never-reach: [ Port-Channel2, 10.0.0.2 ] }\n"
            "      - frames: { verdicts: { Port-Channel2: no-port } }\n"
            "      - frames: { dropped: unknown-vtep, count: 0 }\n"
            "      - frames: { from: 10.0.0.9, count: 0 }\n"
            "  - expect:\n"
            "      - frames: { never-reach: [ Ethernet1 ] }\n"
            "      - frames: { reach: [ Port-Channel2 ] }\n"
            "      - frames: { reach: [ 10.0.0.2 ] }\n"
            "      - frames: { kind: known-unicast }\n"
            "      - frames: { verdicts: { Ethernet1: masked } }\n" );

   std::vector< std::string > found;
   for ( auto const & expectation : story.all< Story::ExpectationChecked >() ) {
      found.push_back( expectation.found );
   }
   EXPECT_EQ( found,
              ( std::vector< std::string >{
                 "", "", "", "", "", "frame 1 is sent at Ethernet1",
                 "frame 1 is no-port at Port-Channel2", "frame 1 is not considered at 10.0.0.2",
                 "there are 0 such frames", "frame 1 is sent at Ethernet1" } ) );
}

TEST_F( Frames, OfAHostOnASegmentThatComeThroughItsOtherVtepLeaveItThere ) {
   runText( kSwitch + kForwarding +
            "  - frame: { on: Ethernet3, source: '00:00:5e:00:53:09' }\n"
            "  - frame: { from: 10.0.0.2, vni: 10100, source: '00:00:5e:00:53:09' }\n"
            "  - frame: { on: Ethernet1, source: '00:00:5e:00:53:01',\n"
            "             destination: '00:00:5e:00:53:09' }\n"
            "  - expect: { frames: { kind: known-unicast, reach: [ Ethernet3 ] } }\n"
            "  - withdraw: { segments: { Ethernet3: [ 10.0.0.2 ] } }\n"
            "  - frame: { from: 10.0.0.2, vni: 10100, source: '00:00:5e:00:53:09' }\n"
            "  - frame: { on: Ethernet1, source: '00:00:5e:00:53:01',\n"
            "             destination: '00:00:5e:00:53:09' }\n"
            "  - expect: { frames: { kind: known-unicast, reach: [ 10.0.0.2 ] } }\n" );

   EXPECT_EQ( badInputOf( story ), "" );
   EXPECT_EQ( failedExpectations(), 0U );
}

TEST_F( Frames, ComeAndGoOverAPortChannelAsUnderlay ) {
   runText(
      "scenario: leaf\n"
      "switch:\n"
      "  name: leaf1\n"
      "  variant: egress-mask\n"
      "  units: { 0: { module: 1 } }\n"
      "  interfaces: { Ethernet1: { unit: 0, port: 1 }, Ethernet49: { unit: 0, port: 49 },\n"
      "                Ethernet50: { unit: 0, port: 50 } }\n"
      "  port-channels: { Port-Channel49: [ Ethernet49, Ethernet50 ] }\n"
      "forwarding:\n"
      "  vtep-addresses: [ 10.0.0.1 ]\n"
      "  underlay: [ Port-Channel49 ]\n"
      "  vlans: { 10: 10100 }\n"
      "  access: { Ethernet1: 10 }\n"
      "evpn:\n"
      "  vteps: { 10.0.0.2: { virtual-port: 2 } }\n"
      "steps:\n" +
      kFromPeer +
      "  - expect: { frames: { reach: [ Ethernet1 ] } }\n"
      "  - frame: { on: Ethernet50, from: 10.0.0.2, vni: 10100, source: '00:00:5e:00:53:02' }\n"
      "  - expect: { frames: { reach: [ Ethernet1 ] } }\n"
      "  - frame: { on: Ethernet1, source: '00:00:5e:00:53:01' }\n"
      "  - expect: { frames: { reach: [ 10.0.0.2 ] } }\n"
      "  - withdraw: { port-channels: { Port-Channel49: [ Ethernet49 ] } }\n"
      "  - frame: { on: Ethernet1, source: '00:00:5e:00:53:01' }\n"
      "  - expect: { frames: { reach: [ 10.0.0.2 ] } }\n" );

   EXPECT_EQ( badInputOf( story ), "" );
   EXPECT_EQ( failedExpectations(), 0U );
   auto const told = story.all< Story::FrameForwarded >();
   ASSERT_EQ( told.size(), 4U );
   EXPECT_EQ( told[ 1 ].frame.arrivalIntfId.stringValue(), "Port-Channel49" );
   EXPECT_EQ( told[ 3 ].frame.copies.back().intfId.stringValue(), "Port-Channel49" );
}

// Of a port channel with a member that has a port.
std::string const kWithMember =
   "  - publish: { interfaces: { Ethernet2: { unit: 0, port: 2 } } }\n" + kFromPeer;

TEST_F( Frames, AreNeverExpectedAtAMemberOfAPortChannel ) {
   runText( kSwitch + kForwarding + kWithMember +
            "  - expect:\n"
            "      - frames: { reach: [ Port-Channel2 ] }\n"
            "      - frames: { reach: [ Ethernet2 ] }\n"
            "      - frames: { never-reach: [ Ethernet2 ] }\n"
            "      - frames: { verdicts: { Ethernet2: sent } }\n" );

   auto const told = story.all< Story::ExpectationChecked >();
   ASSERT_EQ( told.size(), 4U );
   EXPECT_TRUE( told[ 0 ].held );
   for ( std::size_t n = 1; n < told.size(); ++n ) {
      EXPECT_FALSE( told[ n ].held );
      EXPECT_EQ(
         told[ n ].found,
         "Ethernet2 is a member of Port-Channel2, and frames leave by all of its members; name "
         "Port-Channel2" );
   }
}

// --- The program

class FramesOfProgram : public testing::Test {
 protected:
   std::filesystem::path scenario( std::string const & steps ) {
      return directory.file( "scenario.yaml", kSwitch + kForwarding + steps );
   }
   std::size_t framesIn( std::string const & name ) {
      Chip::CaptureReader reader( directory.path() / "out" / name );
      std::size_t frames = 0;
      while ( reader.next() ) {
         ++frames;
      }
      return frames;
   }

   Support::Directory directory;
};

TEST_F( FramesOfProgram, LeaveIntoCapturesOneForEachPort ) {
   auto const out = directory.path() / "out";
   auto const ran = Support::vornal(
      { "run", scenario( kFromPeer + kFromPeer ).string(), "--pcap-out", out.string() } );

   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_EQ( framesIn( "unit0-port1.pcap" ), 2U );
   EXPECT_EQ( framesIn( "unit0-port3.pcap" ), 2U );
   EXPECT_FALSE( std::filesystem::exists( out / "unit0-port49.pcap" ) );
}

TEST_F( FramesOfProgram, AreInTheCapturesWhenThePlugInStops ) {
   auto const out = directory.path() / "out";
   auto const ran = Support::vornal(
      { "run",
        scenario( kFromPeer + "  - ready: subagents::l2Ready\n" + kFromPeer +
                  "  - call: { entity: "
                  "/plugins/Vornal::VornalEvpnMounter/evpnMultihomingLocalBiasSm,\n"
                  "            operation: handleTepSegment, arguments: [ 10.0.0.2 ] }\n" )
           .string(),
        "--pcap-out", out.string() } );

   EXPECT_EQ( ran.exitCode, 3 ) << ran.out;
   EXPECT_EQ( framesIn( "unit0-port1.pcap" ), 2U );
   EXPECT_EQ( framesIn( "unit0-port3.pcap" ), 1U );
}

TEST_F( FramesOfProgram, DoNotStayBesideThoseOfALaterRun ) {
   auto const out = directory.path() / "out";
   std::filesystem::create_directories( out );
   directory.file( "out/unit0-port7.pcap", "\xd4\xc3\xb2\xa1 and so on" );
   directory.file( "out/unit0-port8.pcap", "" );
   directory.file( "out/notes.txt", "" );
   directory.file( "out/unit0-port7.pcap.old", "" );
   auto const ran =
      Support::vornal( { "run", scenario( kFromPeer ).string(), "--pcap-out", out.string() } );

   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_EQ( framesIn( "unit0-port1.pcap" ), 1U );
   EXPECT_FALSE( std::filesystem::exists( out / "unit0-port7.pcap" ) );
   EXPECT_FALSE( std::filesystem::exists( out / "unit0-port8.pcap" ) );
   EXPECT_TRUE( std::filesystem::exists( out / "notes.txt" ) );
   EXPECT_TRUE( std::filesystem::exists( out / "unit0-port7.pcap.old" ) );
   for ( auto const & entry : std::filesystem::directory_iterator( out ) ) {
      EXPECT_NE( entry.path().filename().string().front(), '.' ) << "a probe stays";
   }
}

TEST_F( FramesOfProgram, DoNotReplaceWhatIsNoCapture ) {
   auto const out = directory.path() / "out";
   std::filesystem::create_directories( out );
   auto const notes = directory.file( "out/unit0-port1.pcap", "scenario: mine\n" );
   auto const ran =
      Support::vornal( { "run", scenario( kFromPeer ).string(), "--pcap-out", out.string() } );

   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err, "--pcap-out: " + notes.string() +
                          " has the name of a port's capture and is none; name another folder\n" );
   EXPECT_EQ( Support::contentOf( notes ), "scenario: mine\n" );
}

TEST_F( FramesOfProgram, DoNotReplaceACaptureThatTheScenarioPlays ) {
   auto const out = directory.path() / "out";
   auto const ran = [ & ]( std::string const & steps ) {
      return Support::vornal( { "run", scenario( steps ).string(), "--pcap-out", out.string() } );
   };
   ASSERT_EQ( ran( kFromPeer ).exitCode, 0 );
   auto const refused = ran( "  - frames: { capture: out/unit0-port1.pcap, on: Ethernet3 }\n" );

   EXPECT_EQ( refused.exitCode, 2 );
   EXPECT_TRUE( Support::contains( refused.err,
                                   "unit0-port1.pcap is played by the scenario, in line 18; "
                                   "name another folder\n" ) )
      << refused.err;
   EXPECT_EQ( framesIn( "unit0-port1.pcap" ), 1U );
}

TEST_F( FramesOfProgram, CannotLeaveIntoAFile ) {
   auto const file = directory.file( "file", "" );
   auto const ran = Support::vornal(
      { "run", scenario( kFromPeer ).string(), "--pcap-out", ( file / "out" ).string() } );

   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_NE( ran.err.find( "name a folder that takes files" ), std::string::npos ) << ran.err;
}

TEST_F( FramesOfProgram, NeedAFolderThatTakesFilesBeforeTheRunBegins ) {
   auto const ran =
      Support::vornal( { "run", scenario( kFromPeer ).string(), "--pcap-out", "/proc" } );

   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.out, "" );
   EXPECT_EQ( ran.err,
              "--pcap-out: no file can be created in /proc (No such file or directory); name a "
              "folder that takes files\n" );
}

TEST_F( FramesOfProgram, AreInTheDocumentWithNamesThatScriptsHoldOnTo ) {
   auto const ran = Support::vornal( { "run", scenario( kFromPeer ).string(), "--json" } );
   auto const document = nlohmann::json::parse( ran.out );

   auto const & frame = document.at( "frames" ).at( 0 );
   EXPECT_EQ( frame.at( "number" ), 1 );
   EXPECT_EQ( frame.at( "step" ), 1 );
   EXPECT_EQ( frame.at( "arrival" ), "Ethernet49" );
   EXPECT_EQ( frame.at( "outer" ).at( "source" ), "10.0.0.2" );
   EXPECT_EQ( frame.at( "outer" ).at( "destination" ), "10.0.0.1" );
   EXPECT_EQ( frame.at( "inner" ).at( "source" ), "00:00:5e:00:53:02" );
   EXPECT_EQ( frame.at( "vni" ), 10100 );
   EXPECT_EQ( frame.at( "kind" ), "broadcast" );
   EXPECT_TRUE( frame.at( "dropReason" ).is_null() );
   auto const & ports = frame.at( "ports" );
   auto const first = std::find_if( ports.begin(), ports.end(), []( auto const & port ) {
      return port.at( "interface" ) == "Ethernet1";
   } );
   ASSERT_NE( first, ports.end() );
   EXPECT_EQ( first->at( "verdict" ), "sent" );
   EXPECT_EQ( first->at( "port" ), 1 );
   EXPECT_TRUE( first->at( "rule" ).is_null() );
   EXPECT_EQ( document.at( "counters" ).at( "frames" ), 1 );
   EXPECT_EQ( document.at( "counters" ).at( "copies" ).at( "sent" ), 2 );
   EXPECT_EQ( document.at( "steps" ).at( 1 ).at( "frames" ), nlohmann::json::array( { 1 } ) );
}

TEST_F( FramesOfProgram, AreShownToPeopleAsATableWithTotals ) {
   auto const ran = Support::vornal( { "run", scenario( kFromPeer ).string() } );

   EXPECT_NE( ran.out.find( "   from      kind       frames  outcomes\n"
                            "   10.0.0.2  broadcast       1  Ethernet1 sent; Ethernet3 sent; "
                            "Port-Channel2 no-port\n" ),
              std::string::npos )
      << ran.out;
   EXPECT_NE( ran.out.find( "1 frame in, none dropped; copies 1 no-port, 2 sent.\n" ),
              std::string::npos )
      << ran.out;
}

TEST_F( FramesOfProgram, ThatCannotBeReadEndTheRunBeforeAnyOfThemComesIn ) {
   directory.file( "no.pcap", "this is no capture" );
   auto const ran = Support::vornal(
      { "run", scenario( "  - frames: { capture: no.pcap, on: Ethernet49 }\n" ).string() } );

   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_NE( ran.err.find( "scenario.yaml:18: " ), std::string::npos ) << ran.err;
   EXPECT_NE( ran.err.find( "no.pcap: unknown file format; give a pcap or pcapng file of Ethernet "
                            "frames\n" ),
              std::string::npos )
      << ran.err;
   EXPECT_EQ( ran.out.find( "frames  outcomes" ), std::string::npos );
}

TEST_F( FramesOfProgram, OfACaptureThatIsNotThereAreRefusedBeforeAnythingIsLoaded ) {
   auto const ran = Support::vornal(
      { "run", scenario( "  - frames: { capture: nowhere.pcap, on: Ethernet49 }\n" ).string() } );

   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.out, "" );
   EXPECT_NE( ran.err.find( "capture is 'nowhere.pcap', which is no file" ), std::string::npos )
      << ran.err;
}

}  // namespace
