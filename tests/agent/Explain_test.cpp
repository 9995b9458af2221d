// `vornal explain`: why a frame leaves by some ports and not by others.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <Support.h>
#include <Switches.h>

namespace {

using Json = nlohmann::json;

std::string const kScenarios = VORNAL_SOURCE_DIR "/scenarios/";
std::string const kFromLeaf2 = "{ from: 10.0.0.2, vni: 10100, source: 00:00:5e:00:53:02 }";
std::string const kFromLeaf3 = "{ from: 10.0.0.3, vni: 10100, source: 00:00:5e:00:53:02 }";

std::string scenario( std::string const & name ) {
   return kScenarios + name + "/scenario.yaml";
}

Support::Ran explain( std::string const & name, std::vector< std::string > const & words ) {
   std::vector< std::string > all{ "explain", scenario( name ) };
   all.insert( all.end(), words.begin(), words.end() );
   return Support::vornal( all );
}

// The lines of the explanation; an indented part is found with the line above it.
std::string explained( std::string const & name, std::vector< std::string > const & words ) {
   auto const ran = explain( name, words );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   return ran.out;
}

TEST( Explain, NamesTheRuleThatKeepsACopyBackAndTheStateBehindIt ) {
   std::string const text = explained( "two-leaves", { kFromLeaf2 } );

   EXPECT_TRUE( Support::contains(
      text,
      "      entry 3 matches, and wins: no other rule matches\n"
      "         does EgressMask ports 3, 4: the frame does not leave by these\n"
      "         \"Mark or drop packets at IFP from vtep IP 10.0.0.2 on shared segments\"\n"
      "         because of this state: VTEP 10.0.0.2 shares segment Port-Channel2 through "
      "Ethernet3 "
      "and Ethernet4; virtual port 2\n"
      "         programmed in step 9 (ready subagents::l2Ready), not changed since\n" ) )
      << text;
   EXPECT_TRUE(
      text.ends_with( "   verdict: the broadcast frame from VTEP 10.0.0.2 is sent to "
                      "Ethernet1; kept back from Port-Channel2 by unit 0 entry 3, where "
                      "VTEP 10.0.0.2 delivers it itself\n" ) )
      << text;
}

TEST( Explain, NamesTheStepThatChangedARuleLast ) {
   std::string const text = explained( "limits/port-given-on", { kFromLeaf2, "--after", "7" } );
   EXPECT_TRUE(
      Support::contains( text, ", last changed in step 7 (publish Ethernet2 in Port-Channel2)\n" ) )
      << text;
}

TEST( Explain, SaysWhyTheWinnerStandsAboveTheNext ) {
   EXPECT_TRUE(
      Support::contains( explained( "vni-multicast", { "1" } ),
                         "entry 5 matches, and wins: its priority 2 is above priority 1 of entry "
                         "3\n" ) );
   std::string const text =
      explained( "two-leaves", { "{ from: 10.0.0.2, vni: 10100, source: 00:00:5e:00:53:02, "
                                 "destination: 00:00:5e:00:53:12 }" } );
   EXPECT_TRUE(
      Support::contains( text,
                         "entry 1 matches, and wins: the group's default priority is above "
                         "priority 1 of entry 3\n" ) )
      << text;
   EXPECT_TRUE( Support::contains( text, "entry 3 matches, and loses\n" ) ) << text;
}

TEST( Explain, NamesTheFrameAndTheStepThatTaughtAnAddress ) {
   for ( std::string const scenario : { "two-leaves", "two-leaves-class-id" } ) {
      std::string const source = explained( scenario, { "136" } );
      EXPECT_TRUE(
         Support::contains( source,
                            "before this frame: VTEP 10.0.0.2, learned from frame 3 in step 7\n" ) )
         << source;
      std::string const destination = explained( scenario, { "355" } );
      EXPECT_TRUE(
         Support::contains( destination,
                            "destination 00:00:5e:00:53:12 in VLAN 10: Port-Channel2, learned from "
                            "frame 2 in step 4\n" ) )
         << destination;
   }
}

TEST( Explain, NamesTheQualifierThatANearMissFails ) {
   std::string const text = explained( "two-leaves", { kFromLeaf2 } );

   EXPECT_TRUE(
      Support::contains( text,
                         "entry 1 misses: PacketRes is 1 (broadcast), not 4 (known unicast)\n" ) )
      << text;
   EXPECT_TRUE(
      Support::contains( text,
                         "entry 4 misses: SrcVxlanGport is 0x56000002 (VTEP 10.0.0.2), not "
                         "0x56000066 (VTEP 2001:db8::2)\n" ) )
      << text;
}

TEST( Explain, TellsOfTheNearestMissesAndCountsTheOthers ) {
   std::string const text =
      explained( "two-leaves-class-id", { kFromLeaf2, "--interface", "Ethernet1" } );
   EXPECT_TRUE(
      Support::contains( text,
                         "entry 5 misses: DstPort is module 1 port 1 (Ethernet1), not module "
                         "1 port 4 (Ethernet4)\n            2 other rules miss\n" ) )
      << text;
   EXPECT_FALSE( Support::contains( text, "entry 7 misses" ) ) << "it misses by two qualifiers";
}

TEST( Explain, FollowsAClassIdToTheEgressRuleThatDrops ) {
   std::string const text = explained( "two-leaves-class-id", { kFromLeaf2 } );

   EXPECT_TRUE( Support::contains( text, "the frame goes on with class id 1\n" ) ) << text;
   EXPECT_TRUE( Support::contains( text, "IngressClassField 1\n" ) ) << text;
   EXPECT_TRUE( Support::contains( text, "does Drop: the copy does not leave\n" ) ) << text;
   EXPECT_TRUE( Support::contains( text, ": kept back by an egress rule\n" ) ) << text;
}

TEST( Explain, SaysWhyACopyIsNotFiltered ) {
   EXPECT_TRUE(
      Support::contains( explained( "two-leaves", { kFromLeaf3 } ),
                         "not filtered: the segment of Port-Channel2 is not shared with VTEP "
                         "10.0.0.3\n" ) );
   EXPECT_TRUE( Support::contains( explained( "two-leaves", { kFromLeaf2 } ),
                                   "not filtered: Ethernet1 is on no Ethernet segment\n" ) );
   EXPECT_TRUE(
      Support::contains( explained( "two-leaves", { kFromLeaf2, "--after", "8" } ),
                         "not filtered: the plug-in is not ready, so there are no rules yet\n" ) );
   EXPECT_TRUE( Support::contains(
      explained( "tcam-full",
                 { "{ from: 10.0.0.3, vni: 10100, source: 00:00:5e:00:53:03 }", "--after", "8" } ),
      "not filtered: VTEP 10.0.0.3 lacks a rule: group 157 has no room on unit 0\n" ) );
   EXPECT_TRUE( Support::contains( explained( "class-ids-run-out",
                                              { "{ from: '2001:db8::4', vni: 10100, source: "
                                                "00:00:5e:00:53:04 }",
                                                "--after", "4" } ),
                                   "lacks a rule: " ) );
}

TEST( Explain, SaysWhyAnInterfaceHasNoCopy ) {
   std::string const text = explained( "two-leaves", { kFromLeaf2 } );

   EXPECT_TRUE(
      Support::contains( text,
                         "      Ethernet3 of Port-Channel2: the flow takes another member, "
                         "Ethernet4\n"
                         "      Ethernet49: a frame from a tunnel enters no other tunnel\n" ) )
      << text;
}

TEST( Explain, SaysWhyAFrameIsDropped ) {
   std::string const text =
      explained( "two-leaves", { "{ from: 10.0.0.2, vni: 3, source: 00:00:5e:00:53:02 }" } );

   std::string const why = "dropped as unknown-vni: no VLAN of this switch has that VNI\n";
   EXPECT_TRUE( Support::contains( text, "   decision: " + why ) ) << text;
   EXPECT_TRUE( text.ends_with( "   verdict: the frame from VTEP 10.0.0.2 is " + why ) ) << text;
}

TEST( Explain, SaysWhichVlanAnInterfaceDoesNotCarry ) {
   std::string const text =
      explained( "two-leaves", { "{ on: Ethernet1, vlan: 77, source: 00:00:5e:00:53:01 }" } );
   EXPECT_TRUE( Support::contains( text, "EtherType 0x88b5, VLAN tag 77\n" ) ) << text;
   EXPECT_TRUE(
      Support::contains( text,
                         "dropped as unknown-vlan: the interface that it came in on does not carry "
                         "its VLAN\n" ) )
      << text;
}

TEST( Explain, SaysOfAnInterfaceWithoutAPortThatItHasNone ) {
   std::string const text = explained( "lag-members", { kFromLeaf2, "--after", "18" } );
   EXPECT_TRUE(
      Support::contains( text, "      Ethernet4: it has no port on a chip of this switch\n" ) )
      << text;
}

TEST( Explain, SaysThatAFrameArrivesTwiceAndWhy ) {
   EXPECT_TRUE(
      explained( "tcam-full", { "2" } )
         .ends_with( "; it arrives twice at Ethernet3, where VTEP 10.0.0.3 delivers it as "
                     "well: VTEP 10.0.0.3 lacks a rule: group 157 has no room on unit 0\n" ) );
   EXPECT_TRUE(
      Support::contains( explained( "two-leaves", { "17" } ), "; it arrives twice at " ) );
   EXPECT_FALSE( Support::contains( explained( "two-leaves", { "136" } ), "twice" ) );
   EXPECT_FALSE( Support::contains( explained( "vni-multicast", { "1" } ), "twice" ) )
      << "it is exempt";
}

// --- One interface

TEST( Explain, TellsOfOneInterfaceAlone ) {
   std::string const text = explained( "two-leaves", { kFromLeaf2, "--interface", "Ethernet3" } );
   EXPECT_TRUE(
      Support::contains( text, "Ethernet3 of Port-Channel2: the flow takes another member" ) )
      << text;
   EXPECT_FALSE( Support::contains( text, "   copies\n" ) ) << text;
   EXPECT_FALSE( Support::contains( text, "   headers\n" ) ) << text;
   EXPECT_TRUE( Support::contains( text, "entry 3 matches" ) ) << text;

   std::string const member = explained( "two-leaves", { kFromLeaf2, "--interface", "Ethernet4" } );
   EXPECT_TRUE(
      Support::contains( member, "Port-Channel2 by Ethernet4 (unit 0 port 4): kept back" ) )
      << member;
   std::string const both =
      explained( "two-leaves", { kFromLeaf2, "--interface", "Port-Channel2" } );
   EXPECT_TRUE( Support::contains( both, "Port-Channel2 by Ethernet4" ) ) << both;
   EXPECT_TRUE( Support::contains( both, "Ethernet3 of Port-Channel2" ) ) << both;
}

TEST( Explain, RefusesAnInterfaceThatTheSwitchDoesNotHave ) {
   auto const ran = explain( "two-leaves", { kFromLeaf2, "--interface", "Ethernet9" } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err,
              "--interface: the switch has no 'Ethernet9'; give Ethernet1, Ethernet3, Ethernet4, "
              "Ethernet49 or Port-Channel2\n" );
   EXPECT_EQ( ran.out, "" );
}

TEST( Explain, DecodesTheHeaders ) {
   std::string const text = explained( "two-leaves", { kScenarios + "captures/fabric-v4.pcap:3" } );

   EXPECT_TRUE(
      Support::contains( text,
                         "      outer IPv4: 10.0.0.4 to 10.0.0.1, UDP, TTL 64, port 43850 to "
                         "4789\n"
                         "      VXLAN: VNI 10100, flags 0x08\n"
                         "      inner Ethernet: 00:00:5e:00:53:04 to 33:33:00:00:00:16, "
                         "EtherType 0x86dd\n"
                         "      inner IPv6: fe80::200:5eff:fe00:5304 to ff02::16, protocol 0, "
                         "hop limit 1\n" ) )
      << text;
}

TEST( Explain, TakesAFrameOfTheRunByTheStateWhenItIsSent ) {
   // Frame 2 is the first from its host, so nothing is known of that host yet.
   std::string const then = explained( "two-leaves", { "2" } );
   EXPECT_TRUE( then.starts_with( "frame 2: 60 bytes on Port-Channel2 (unit 0 port 3)\n" ) )
      << then;
   EXPECT_TRUE( Support::contains( then, "before this frame: not in the MAC table\n" ) ) << then;

   std::string const later = explained( "two-leaves", { "2", "--after", "22" } );
   EXPECT_FALSE( Support::contains( later, "before this frame: not in the MAC table\n" ) ) << later;
}

TEST( Explain, AgreesWithTheStoryOfTheRun ) {
   auto const run = Support::vornal( { "run", "--json", scenario( "two-leaves" ) } );
   Json const frames = Json::parse( run.out )[ "frames" ];
   for ( std::size_t const number : { 1U, 100U, 357U } ) {
      Json const & story = frames[ number - 1 ];
      Json const why =
         Json::parse( explained( "two-leaves", { std::to_string( number ), "--json" } ) );
      Json verdicts = Json::array();
      for ( Json const & part : why[ "children" ] ) {
         if ( part[ "kind" ] == "copies" ) {
            for ( Json const & copy : part[ "children" ] ) {
               verdicts.push_back( copy[ "verdict" ] );
            }
         }
      }
      Json told = Json::array();
      for ( Json const & port : story[ "ports" ] ) {
         told.push_back( port[ "verdict" ] );
      }
      EXPECT_EQ( why[ "number" ], story[ "number" ] );
      EXPECT_EQ( verdicts, told ) << number;
   }
}

TEST( Explain, TellsTheStopOfAnEarlierStep ) {
   auto const ran =
      explain( "limits/chip-field-call-fails", { kScenarios + "captures/fabric-v4.pcap:3" } );
   EXPECT_EQ( ran.exitCode, 3 );
   EXPECT_TRUE( Support::contains( ran.err, "STOPPED in step" ) ) << ran.err;
}

// --- Wrong words

TEST( Explain, RefusesWhatIsNoFrame ) {
   EXPECT_EQ(
      explain( "two-leaves", { "x" } ).err,
      "vornal explain: FRAME: 'x' is no frame; give its number, as in 7, CAPTURE:NUMBER, or "
      "the words of the step 'frame': '{ from: 10.0.0.2, vni: 10100, source: "
      "00:00:5e:00:53:02 }'\n'vornal explain --help' lists the words that it takes\n" );
   EXPECT_EQ( explain( "two-leaves", { "0" } ).exitCode, 2 );
   EXPECT_TRUE(
      Support::contains( explain( "two-leaves", { "nothing.pcap:3" } ).err,
                         "'nothing.pcap:3' names no capture; there is no file 'nothing.pcap'" ) );
}

TEST( Explain, SaysHowManyFramesThereAre ) {
   EXPECT_EQ( explain( "two-leaves", { "999" } ).err,
              "frame 999 is not sent: the scenario has sent 357 frames up to this step; give the "
              "number of one of these, or ask after the step that sends it\n" );
   EXPECT_TRUE(
      explain( "two-leaves", { "2", "--after", "0" } )
         .err.starts_with( "frame 2 is not sent: the scenario has sent 0 frames up to" ) );
   EXPECT_TRUE( Support::contains(
      explain( "two-leaves", { kScenarios + "captures/fabric-v4.pcap:9999" } ).err,
      "frames, and no frame 9999" ) );
}

TEST( Explain, NamesThePlaceOfAMistakeInTheFrame ) {
   EXPECT_EQ( explain( "two-leaves", { "{ from: 10.0.0.2, source: 00:00:5e:00:53:02 }" } ).err,
              "FRAME:1: 'from' and 'vni' stand together: a frame from a VTEP comes in a VNI\n" );
   EXPECT_TRUE( explain( "two-leaves", { "{ from: [ }" } ).err.starts_with( "FRAME:1: " ) );
}

TEST( Explain, TakesNoMoreThanAFrame ) {
   EXPECT_EQ( explain( "two-leaves", { kFromLeaf2 + "\nonly-on: class-id" } ).err,
              "FRAME: give the words of one frame in braces, and nothing else\n" );
}

TEST( Explain, TakesAnInterfaceForACaptureOnly ) {
   EXPECT_TRUE( Support::contains( explain( "two-leaves", { "2", "--on", "Ethernet1" } ).err,
                                   "--on: it is for a frame of a capture; leave it out" ) );
   EXPECT_TRUE( Support::contains(
      explained( "two-leaves", { kScenarios + "captures/fabric-v4.pcap:3", "--on", "Ethernet1" } ),
      "on Ethernet1 (unit 0 port 1)\n" ) );
}

TEST( Explain, NeedsAScenarioThatForwards ) {
   Support::Directory const directory;
   auto const file = directory.file( "leaf.yaml", Switches::leaf( "   - note: a\n" ) );
   auto const capture = kScenarios + "captures/fabric-v4.pcap:3";
   EXPECT_EQ( Support::vornal( { "explain", file, capture } ).err,
              "the scenario has no 'forwarding', so no frame can come in\n" );
   EXPECT_EQ( Support::vornal( { "explain", file, kFromLeaf2 } ).exitCode, 2 );
}

}  // namespace
