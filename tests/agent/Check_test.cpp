// `vornal check`: every mistake that shows without a run, and no mistake that follows from another.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <ScenarioTexts.h>
#include <Support.h>

namespace {

class Check : public testing::Test {
 protected:
   // What the program prints about a scenario, with its folder left out.
   std::string told( std::string const & text ) const {
      std::string const file = directory.file( "leaf.yaml", text );
      return withoutFolder( Support::vornal( { "check", file } ).out );
   }

   // The same about a leaf with `more` from line 9 on.
   std::string toldOfLeaf( std::string const & more ) const {
      return told( ScenarioTexts::kLeaf + more );
   }

   std::string withoutFolder( std::string text ) const {
      std::string const folder = directory.path().string() + '/';
      for ( auto at = text.find( folder ); at != std::string::npos; at = text.find( folder ) ) {
         text.erase( at, folder.size() );
      }
      return text;
   }

   Support::Directory const directory;
};

// --- Every mistake

TEST_F( Check, FindsEachOfManyDifferentMistakes ) {
   EXPECT_EQ(
      told( "scenario: s\n"
            "colour: red\n"
            "switch:\n"
            "   name: leaf1\n"
            "   variant: egress\n"
            "   units: { 0: { module: 1 } }\n"
            "   tcam: { ingress: 70000 }\n"
            "   interfaces: { Ethernet1: { unit: 0, port: 1 },\n"
            "                 Ethernet2: { unit: 3, port: 2 } }\n"
            "   port-channels: { Port-Channel2: [ Ethernet2 ] }\n"
            "evpn: { vteps: { 10.0.0.256: { virtual-port: 2 } } }\n"
            "trace: { VornalEvpnSm: 7-3 }\n"
            "steps:\n"
            "   - publish: { segments: { Ethernet1: [ 10.0.0.2, 10.0.0.2 ] } }\n"
            "   - note:\n"
            "   - expect: { tcam-groups: [], rules: { group: egres } }\n"
            "   - frames: { capture: gone.pcap, on: Ethernet1 }\n"
            "   - fail-call: { operation: installEntry, code: 0 }\n"
            "   - ready: subagents::l2Reddy\n"
            "   - drift: { group: ingress, unit: 0, entry: 1, flip: Nothing }\n" ),
      "leaf.yaml:2: unknown word 'colour' in scenario; known are scenario, description, "
      "switch, forwarding, evpn, features, trace and steps\n"
      "leaf.yaml:5: variant is 'egress'; egress-mask or class-id is expected\n"
      "leaf.yaml:7: ingress is '70000'; a whole number from 0 to 65536 is expected, or "
      "none\n"
      "leaf.yaml:9: unit 3 is not among the switch's units (0); use one of these, or add it "
      "under 'units'\n"
      "leaf.yaml:11: '10.0.0.256' is not an IP address: '256' is not a number from 0 to 255\n"
      "leaf.yaml:12: VornalEvpnSm is '7-3'; trace levels are expected, as in 0-5,9\n"
      "leaf.yaml:14: 10.0.0.2 is given twice, first in line 14; keep one of them\n"
      "leaf.yaml:15: note is empty; text is expected\n"
      "leaf.yaml:16: group is 'egres'; did you mean 'egress'?\n"
      "leaf.yaml:17: capture is 'gone.pcap', which is no file; a capture is expected, "
      "relative to the scenario's file\n"
      "leaf.yaml:18: code is '0'; a result code of the chip is expected, as in -1, which is "
      "not 0 and stands without quotes\n"
      "leaf.yaml:19: ready is 'subagents::l2Reddy'; did you mean 'subagents::l2Ready'?\n"
      "leaf.yaml:20: 'Nothing' is not expected here; known are SrcVxlanGport, PacketRes, "
      "TunnelTerminated, VxlanNetworkId, DstPort, IpType, IngressClassField, EgressClassSelect "
      "and NewClassId\n"
      "leaf.yaml: not checked because of these mistakes: whether steps about frames have a "
      "forwarding configuration; the order in which state is published and withdrawn\n"
      "13 mistakes in 1 scenario\n" );
}

TEST_F( Check, FindsMistakesInTheOrderOfStepsBesideOthers ) {
   EXPECT_EQ( toldOfLeaf( "steps:\n"
                          "   - expect: { rules: { group: egres } }\n"
                          "   - withdraw: { vteps: [ 10.0.0.2 ] }\n"
                          "   - frame: { on: Ethernet1, source: 00:00:5e:00:53:01 }\n" ),
              "leaf.yaml:10: group is 'egres'; did you mean 'egress'?\n"
              "leaf.yaml:11: 10.0.0.2 has no virtual port at this point, so nothing can be "
              "withdrawn; publish it before, or leave this out\n"
              "leaf.yaml:12: this step needs 'forwarding', and the scenario has none; add it\n"
              "3 mistakes in 1 scenario\n" );
}

TEST_F( Check, FindsTheMistakesOfAScenarioAndOfTheOneThatItIsBasedOn ) {
   directory.file( "base.yaml", ScenarioTexts::kLeaf + "steps:\n   - note:\n" );
   EXPECT_EQ( told( "scenario: s\nbased-on: base.yaml\nvariant: class\nsteps:\n   - nope: 1\n" ),
              "leaf.yaml:3: variant is 'class'; egress-mask or class-id is expected\n"
              "leaf.yaml:5: unknown word 'nope' in step; did you mean 'note'?\n"
              "base.yaml:10: note is empty; text is expected\n"
              "leaf.yaml: not checked because of these mistakes: the order in which state is "
              "published and withdrawn\n"
              "3 mistakes in 1 scenario\n" );
}

TEST_F( Check, ReadsTheFilesThatAScenarioNames ) {
   directory.file( "broken.pcap", "no capture" );
   directory.file( "VornalL3.json", "{ \"SbdEvpnTcamOverrideRule\": 1 }" );
   std::string const text = toldOfLeaf(
      "forwarding: { vtep-addresses: [ 10.0.0.1 ], underlay: [ Ethernet1 ], vlans: {} }\n"
      "steps:\n"
      "   - frames: { capture: broken.pcap, on: Ethernet1 }\n" );
   EXPECT_EQ( text.find( "leaf.yaml:11: " ), 0U ) << text;
   EXPECT_NE( text.find( "; give a pcap or pcapng file of Ethernet frames\n" ), std::string::npos )
      << text;
   EXPECT_NE( text.find(
                 "\nVornalL3.json:1: 'SbdEvpnTcamOverrideRule' is of type number; an object "
                 "of booleans is expected" ),
              std::string::npos )
      << text;
   EXPECT_TRUE( text.ends_with( "\n2 mistakes in 1 scenario\n" ) ) << text;
}

// --- No mistakes that follow from another

TEST_F( Check, SaysOnceThatAWordIsMisspelt ) {
   EXPECT_EQ( told( "scenario: s\n"
                    "switch:\n"
                    "   name: leaf1\n"
                    "   variant: egress-mask\n"
                    "   units: { 0: { modul: 1 } }\n"
                    "   interfacs: { Ethernet1: { unit: 0, port: 1 } }\n"
                    "evpn: { segments: { Ethernet1: [] } }\n" ),
              "leaf.yaml:5: unknown word 'modul' in unit; did you mean 'module'?\n"
              "leaf.yaml:6: unknown word 'interfacs' in switch; did you mean 'interfaces'?\n"
              "leaf.yaml: not checked because of these mistakes: whether each interface is "
              "defined; the order in which state is published and withdrawn\n"
              "2 mistakes in 1 scenario\n" );
}

TEST_F( Check, SaysOnceThatAnInterfaceIsNotDefined ) {
   EXPECT_EQ( toldOfLeaf( "steps:\n"
                          "   - withdraw: { interfaces: [ Ethernet9 ] }\n"
                          "   - withdraw: { segments: [ Ethernet8 ] }\n"
                          "   - withdraw: { port-channels: { Port-Channel2: [ Ethernet7 ] } }\n" ),
              "leaf.yaml:10: Ethernet9 is not defined; define it under 'interfaces'\n"
              "leaf.yaml:11: Ethernet8 is not defined; define it under 'interfaces'\n"
              "leaf.yaml:12: Ethernet7 is not defined; define it under 'interfaces'\n"
              "3 mistakes in 1 scenario\n" );
}

TEST_F( Check, JudgesNothingByAPartThatItCannotRead ) {
   EXPECT_EQ(
      told( "scenario: s\n"
            "switch:\n"
            "   name: leaf1\n"
            "   variant: egress-mask\n"
            "   units: { x: { module: 1 }, 1: { module: 2 } }\n"
            "   interfaces: { Ethernet1: { unit: 0, port: 1 } }\n"
            "   port-channels: { Port-Chanel2: [ Ethernet1 ] }\n"
            "forwarding:\n"
            "   vtep-addresses: [ 10.0.0.1, '2001:db8:::1' ]\n"
            "   underlay: [ Ethernet1 ]\n"
            "   access: { Port-Channel2: 10 }\n"
            "evpn: { vteps: { '2001:db8::2': { virtual-port: 2 } } }\n"
            "trace: { VornalEvpnSm: x }\n"
            "steps:\n"
            "   - expect: { trace: { handle: VornalEvpnSm, level: 5, text: x } }\n"
            "   - publish: { vteps: { 10.0.0.2: {} } }\n"
            "   - withdraw: { vteps: [ 10.0.0.2 ] }\n" ),
      "leaf.yaml:5: unit is 'x'; a whole number from 0 to 65535 is expected\n"
      "leaf.yaml:7: 'Port-Chanel2' is not an interface: a name is Ethernet, Loopback, Management, "
      "Port-Channel, Vlan or Vxlan and a number, as in Ethernet1 or Ethernet3/1\n"
      "leaf.yaml:8: 'vlans' is missing in forwarding; give it, as in 'vlans: { 10: 10100 "
      "}'\n"
      "leaf.yaml:9: '2001:db8:::1' is not an IP address: it has an empty group; only one '::' "
      "may stand for groups of zeros\n"
      "leaf.yaml:13: VornalEvpnSm is 'x'; trace levels are expected, as in 0-5,9\n"
      "leaf.yaml:16: 'virtual-port' is missing in 10.0.0.2; give it, as in 'virtual-port: "
      "2'\n"
      "leaf.yaml: not checked because of these mistakes: whether each port channel is "
      "defined; whether each unit is one of the switch's; whether each VLAN has a VNI; "
      "whether each VTEP can be reached; whether each expected trace is switched on; the "
      "order in which state is published and withdrawn\n"
      "6 mistakes in 1 scenario\n" );
}

TEST_F( Check, SaysThatAMistakeOfTheTextHidesTheRest ) {
   EXPECT_EQ( toldOfLeaf( "steps: [ { note: a }\n" ).find( "leaf.yaml:" ), 0U );
   std::string const text = toldOfLeaf( "steps: [ { note: a }\n" );
   EXPECT_NE( text.find(
                 "\nleaf.yaml: not checked because of these mistakes: the rest of the file\n"
                 "1 mistake in 1 scenario\n" ),
              std::string::npos )
      << text;
}

// --- Files, exit codes, documents

TEST_F( Check, TakesFilesAndFoldersOneAfterTheOther ) {
   std::string const good = directory.file( "good.yaml", ScenarioTexts::kLeaf );
   std::filesystem::create_directory( directory.path() / "more" );
   directory.file( "more/b.yaml", "scenario: s\nswitch: 1\n" );
   directory.file( "more/a.yaml", "scenario:\n" + ScenarioTexts::kLeaf.substr( 21 ) );
   auto const ran = Support::vornal(
      { "check", good, ( directory.path() / "more" ).string(), "/nowhere/leaf.yaml" } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err, "" );
   EXPECT_EQ( withoutFolder( ran.out ),
              "more/a.yaml:1: scenario is empty; text is expected\n"
              "more/b.yaml:2: switch is text; a mapping is expected, of name, slice, variant, "
              "units, tcam, class-ids, l3-multicast-exempt, interfaces and port-channels\n"
              "more/b.yaml: not checked because of these mistakes: the order in which state is "
              "published and withdrawn\n"
              "/nowhere/leaf.yaml: there is no such file; name a scenario's file, as in "
              "scenarios/start-up/scenario.yaml\n"
              "3 mistakes in 4 scenarios\n" );
}

TEST_F( Check, FindsAFolderWithoutScenariosBesideOtherMistakes ) {
   std::string const folder = directory.path().string();
   std::string const twice = directory.file( "more.text", "scenario: s\nswitch: 1\n" );
   auto const ran = Support::vornal( { "check", folder, twice, twice } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err, "" );
   EXPECT_EQ( ran.out.find( folder + ": this folder holds no scenario; name one with some\n" ), 0U )
      << ran.out;
   EXPECT_TRUE( ran.out.ends_with( "\n2 mistakes in 2 scenarios\n" ) ) << ran.out;
}

TEST_F( Check, FindsNothingInTheScenariosThatShip ) {
   auto const ran = Support::vornal( { "check", VORNAL_SOURCE_DIR "/scenarios" } );
   EXPECT_EQ( ran.exitCode, 0 );
   EXPECT_EQ( ran.out.find( "no mistakes in " ), 0U ) << ran.out;
}

TEST_F( Check, PrintsADocumentForPrograms ) {
   std::string const file =
      directory.file( "leaf.yaml",
                      "scenario: s\nswtch: {}\nevpn: { segments: { Ethernet1: [] } }\n" );
   auto const ran = Support::vornal( { "check", "--json", file, "/nowhere/leaf.yaml" } );
   EXPECT_EQ( ran.exitCode, 2 );
   auto const document = nlohmann::json::parse( ran.out );
   auto const & first = document.at( "scenarios" ).at( 0 );
   EXPECT_EQ( first.at( "file" ), file );
   EXPECT_EQ( first.at( "mistakes" ),
              nlohmann::json::array(
                 { { { "file", file },
                     { "line", 2 },
                     { "text", "unknown word 'swtch' in scenario; did you mean 'switch'?" } } } ) );
   EXPECT_EQ( first.at( "notChecked" ),
              nlohmann::json::array( { "whether each interface is defined",
                                       "the order in which state is published and withdrawn" } ) );
   EXPECT_TRUE(
      document.at( "scenarios" ).at( 1 ).at( "mistakes" ).at( 0 ).at( "line" ).is_null() );
}

}  // namespace
