// What other agents publish: interfaces, port channels, segments, VTEPs, tunnel interfaces; before
// the plug-in is loaded and in steps.
#include <gtest/gtest.h>

#include <Scenario/Description.h>
#include <ScenarioTexts.h>
#include <Steps/Publish.h>
#include <Steps/Withdraw.h>

namespace {

using namespace ScenarioTexts;

// The changes as lines, each after the line of the text that it stands in.
std::string told( std::vector< Scenario::Change > const & changes, bool isWithdrawn = false ) {
   std::string text;
   for ( Scenario::Change const & change : changes ) {
      text += std::to_string( change.line ) + ' ' +
              Scenario::description( change.what, isWithdrawn ) + '\n';
   }
   return text;
}

// The changes of a first step, which begins in line 10.
std::string published( std::string const & words ) {
   auto const model = readLeaf( "steps:\n   - publish:\n" + words );
   return told( stepOf< Steps::Publish >( model ).changes );
}

std::string withdrawn( std::string const & words ) {
   auto const model = read( kPublished + "steps:\n   - withdraw:\n" + words );
   return told( stepOf< Steps::Withdraw >( model ).changes, true );
}

std::string publishProblems( std::string const & words ) {
   return leafProblems( "steps:\n   - publish:\n" + words );
}

std::string withdrawProblems( std::string const & words ) {
   return leafProblems( "steps:\n   - withdraw:\n" + words );
}

// --- before the plug-in is loaded

TEST( ScenarioPublished, PublishesInterfacesBeforePortChannelsBeforeEvpn ) {
   EXPECT_EQ( told( readLeaf( "evpn:\n"
                              "   tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 50001 } } }\n"
                              "   vteps: { 2001:db8::2: { virtual-port: 0x10002 } }\n"
                              "   segments: { Port-Channel2: [ 10.0.0.2, '2001:db8::2' ] }\n" )
                       .published ),
              "6 Ethernet1 on unit0/port1/mod1\n"
              "7 Ethernet2 on unit0/port2/mod1\n"
              "8 Ethernet2 in Port-Channel2\n"
              "12 segment Port-Channel2\n"
              "12 VTEP 10.0.0.2 on segment Port-Channel2\n"
              "12 VTEP 2001:db8::2 on segment Port-Channel2\n"
              "11 virtual port 65538 of VTEP 2001:db8::2\n"
              "10 tunnel interface Vxlan1\n"
              "10 VNI 50001 of VRF red on Vxlan1\n" );
}

TEST( ScenarioPublished, TakesModuleIdsFromTheUnits ) {
   auto const model = read(
      "scenario: s\n"
      "switch: { name: leaf1, variant: egress-mask,\n"
      "          units: { 0: { module: 4 }, 1: { module: 6 } },\n"
      "          interfaces: { Ethernet1: { unit: 1, port: 351 } } }\n" );
   EXPECT_EQ( std::get< Scenario::InterfacePort >( model.published.at( 0 ).what ).port,
              VornalTypes::VornalPort( 1, 351, 6 ) );
}

TEST( ScenarioPublished, TakesTheInvalidPort ) {
   EXPECT_EQ( published( "        interfaces: { Ethernet1: { unit: 0, port: 1023 },\n"
                         "                      Ethernet2: { unit: 0, port: 1023 } }\n" ),
              "11 Ethernet1 on unit0/port1023/mod1\n"
              "12 Ethernet2 on unit0/port1023/mod1\n" );
}

TEST( ScenarioPublished, DefinesAnInterfaceWithoutAPort ) {
   auto const model = read(
      "scenario: s\n"
      "switch: { name: leaf1, variant: egress-mask, units: { 0: { module: 1 } },\n"
      "          interfaces: { Ethernet9: {} } }\n"
      "evpn: { segments: { Ethernet9: [] } }\n" );
   EXPECT_EQ( told( model.published ), "4 segment Ethernet9\n" );
}

TEST( ScenarioPublished, DefinesAPortChannelWithoutMembers ) {
   EXPECT_EQ( published( "        port-channels: { Port-Channel7: [] }\n"
                         "        segments: { Port-Channel7: [ 10.0.0.2 ] }\n" ),
              "12 segment Port-Channel7\n"
              "12 VTEP 10.0.0.2 on segment Port-Channel7\n" );
}

TEST( ScenarioPublished, KnowsAnInterfaceThatGetsItsPortLater ) {
   EXPECT_EQ( leafProblems( "evpn: { segments: { Ethernet5: [ 10.0.0.2 ] } }\n"
                            "steps:\n"
                            "   - publish: { interfaces: { Ethernet5: { unit: 0, port: 5 } } }\n" ),
              "" );
}

TEST( ScenarioPublished, TakesATunnelInterfaceWithoutMappings ) {
   EXPECT_EQ( published( "        tunnel-interfaces: { Vxlan1: {} }\n" ),
              "11 tunnel interface Vxlan1\n" );
}

TEST( ScenarioPublished, TakesAVrfWithoutVni ) {
   EXPECT_EQ( published( "        tunnel-interfaces: { Vxlan1: { vrf-vni: { red: none } } }\n" ),
              "11 tunnel interface Vxlan1\n"
              "11 VNI none of VRF red on Vxlan1\n" );
}

// --- in steps

TEST( ScenarioPublished, PublishesInTheOrderWritten ) {
   EXPECT_EQ( published( "        vteps: { 10.0.0.2: { virtual-port: 2 } }\n"
                         "        segments: { Port-Channel2: [ 10.0.0.2 ] }\n"
                         "        port-channels: { Port-Channel2: [ Ethernet1 ] }\n" ),
              "11 virtual port 2 of VTEP 10.0.0.2\n"
              "12 segment Port-Channel2\n"
              "12 VTEP 10.0.0.2 on segment Port-Channel2\n"
              "13 Ethernet1 in Port-Channel2\n" );
}

TEST( ScenarioPublished, WithdrawsPartsInTheOrderWritten ) {
   EXPECT_EQ( withdrawn( "        segments: { Port-Channel2: [ 10.0.0.2 ] }\n"
                         "        vteps: [ 10.0.0.2,\n"
                         "                 2001:db8::2 ]\n"
                         "        port-channels: { Port-Channel2: [ Ethernet2 ] }\n"
                         "        interfaces: [ Ethernet2 ]\n"
                         "        tunnel-interfaces: { Vxlan1: [ red, blue ] }\n" ),
              "11 VTEP 10.0.0.2 from segment Port-Channel2\n"
              "12 virtual port of VTEP 10.0.0.2\n"
              "13 virtual port of VTEP 2001:db8::2\n"
              "14 Ethernet2 from Port-Channel2\n"
              "15 Ethernet2\n"
              "16 VNI of VRF red on Vxlan1\n"
              "16 VNI of VRF blue on Vxlan1\n" );
}

TEST( ScenarioPublished, WithdrawsWholeSegmentsAndTunnelInterfaces ) {
   EXPECT_EQ( withdrawn( "        segments: [ Port-Channel2, Ethernet1 ]\n"
                         "        tunnel-interfaces: [ Vxlan1 ]\n" ),
              "11 segment Port-Channel2\n"
              "11 segment Ethernet1\n"
              "12 tunnel interface Vxlan1\n" );
}

TEST( ScenarioPublished, LetsAMemberMoveInASecondStep ) {
   EXPECT_EQ( leafProblems( "steps:\n"
                            "   - publish: { port-channels: { Port-Channel3: [ Ethernet2 ] } }\n" ),
              "" );
}

// --- what is refused

TEST( ScenarioPublished, RefusesToPublishOrWithdrawNothing ) {
   EXPECT_EQ( publishProblems( "        {}\n" ),
              "leaf.yaml:10: publish is empty; give one at least of interfaces, port-channels, "
              "segments, vteps, tunnel-interfaces and class-id-grants" );
   EXPECT_EQ( withdrawProblems( "" ),
              "leaf.yaml:10: withdraw is empty; give one at least of interfaces, port-channels, "
              "segments, vteps, tunnel-interfaces and class-id-grants" );
}

TEST( ScenarioPublished, RefusesUnknownWords ) {
   EXPECT_EQ( publishProblems( "        vtep: {}\n" ),
              "leaf.yaml:11: unknown word 'vtep' in publish; did you mean 'vteps'?" );
   EXPECT_EQ( leafProblems( "evpn: { segment: {} }\n" ),
              "leaf.yaml:9: unknown word 'segment' in evpn; did you mean 'segments'?" );
   EXPECT_EQ(
      withdrawProblems( "        portchannels: {}\n" ),
      "leaf.yaml:11: unknown word 'portchannels' in withdraw; did you mean 'port-channels'?" );
}

TEST( ScenarioPublished, RefusesListsForMappingsAndMappingsForLists ) {
   EXPECT_EQ( publishProblems( "        interfaces: [ Ethernet1 ]\n" ),
              "leaf.yaml:11: interfaces is a list; a mapping is expected" );
   EXPECT_EQ( publishProblems( "        segments: { Port-Channel2: { 10.0.0.2: 1 } }\n" ),
              "leaf.yaml:11: Port-Channel2 is a mapping; a list is expected" );
   EXPECT_EQ( withdrawProblems( "        vteps: 10.0.0.2\n" ),
              "leaf.yaml:11: vteps is text; a list is expected" );
   EXPECT_EQ( withdrawProblems( "        segments: Port-Channel2\n" ),
              "leaf.yaml:11: segments is text; a list is expected" );
   EXPECT_EQ( publishProblems( "        vteps: { 10.0.0.2: 2 }\n" ),
              "leaf.yaml:11: 10.0.0.2 is text; a mapping is expected, of virtual-port" );
   EXPECT_EQ( publishProblems( "        interfaces: { Ethernet1: 1 }\n" ),
              "leaf.yaml:11: Ethernet1 is text; a mapping is expected, of unit and port" );
}

TEST( ScenarioPublished, RefusesWhatIsNoInterface ) {
   EXPECT_EQ( publishProblems( "        interfaces: { Eth1: { unit: 0, port: 3 } }\n" ),
              "leaf.yaml:11: 'Eth1' is not an interface: a name is Ethernet, Loopback, Management, "
              "Port-Channel, Vlan or Vxlan and a number, as in Ethernet1 or Ethernet3/1" );
}

TEST( ScenarioPublished, RefusesInterfacesOfTheWrongKind ) {
   EXPECT_EQ( publishProblems( "        interfaces: { Port-Channel2: { unit: 0, port: 3 } }\n" ),
              "leaf.yaml:11: Port-Channel2 cannot stand here; an Ethernet interface is expected" );
   EXPECT_EQ( publishProblems( "        port-channels: { Ethernet1: [] }\n" ),
              "leaf.yaml:11: Ethernet1 cannot stand here; a port channel is expected, as in "
              "Port-Channel1" );
   EXPECT_EQ( publishProblems( "        port-channels: { Port-Channel2: [ Vlan1 ] }\n" ),
              "leaf.yaml:11: Vlan1 cannot stand here; an Ethernet interface is expected" );
   EXPECT_EQ(
      publishProblems( "        segments: { Vlan1: [] }\n" ),
      "leaf.yaml:11: Vlan1 cannot stand here; a segment is on an Ethernet interface or a port "
      "channel" );
   EXPECT_EQ(
      publishProblems( "        tunnel-interfaces: { Ethernet1: {} }\n" ),
      "leaf.yaml:11: Ethernet1 cannot stand here; a tunnel interface is expected, as in Vxlan1" );
}

TEST( ScenarioPublished, RefusesInterfacesThatNothingDefines ) {
   EXPECT_EQ( publishProblems( "        segments: { Ethernet3: [] }\n" ),
              "leaf.yaml:11: Ethernet3 is not defined; define it under 'interfaces'" );
   EXPECT_EQ( publishProblems( "        segments: { Port-Channel3: [] }\n" ),
              "leaf.yaml:11: Port-Channel3 is not defined; define it under 'port-channels'" );
   EXPECT_EQ( publishProblems( "        port-channels: { Port-Channel2: [ Ethernet3 ] }\n" ),
              "leaf.yaml:11: Ethernet3 is not defined; define it under 'interfaces'" );
   EXPECT_EQ( withdrawProblems( "        interfaces: [ Ethernet3 ]\n" ),
              "leaf.yaml:11: Ethernet3 is not defined; define it under 'interfaces'" );
   EXPECT_EQ( withdrawProblems( "        port-channels: { Port-Channel3: [] }\n" ),
              "leaf.yaml:11: Port-Channel3 is not defined; define it under 'port-channels'" );
}

TEST( ScenarioPublished, RefusesAnInterfaceWithoutUnitOrPort ) {
   EXPECT_EQ( publishProblems( "        interfaces: { Ethernet1: { unit: 0 } }\n" ),
              "leaf.yaml:11: 'port' is missing in Ethernet1; give it, as in 'port: 1'" );
   EXPECT_EQ( publishProblems( "        interfaces: { Ethernet1: { port: 1 } }\n" ),
              "leaf.yaml:11: 'unit' is missing in Ethernet1; give it, as in 'unit: 0'" );
}

TEST( ScenarioPublished, RefusesAUnitThatTheSwitchHasNot ) {
   EXPECT_EQ(
      publishProblems( "        interfaces: { Ethernet1: { unit: 1, port: 1 } }\n" ),
      "leaf.yaml:11: unit 1 is not among the switch's units (0); use one of these, or add it "
      "under 'units'" );
}

TEST( ScenarioPublished, DoesNotComplainAboutEveryUnitWhereThereIsNone ) {
   EXPECT_EQ(
      problems( "scenario: s\n"
                "switch: { name: leaf1, variant: egress-mask,\n"
                "          interfaces: { Ethernet1: { unit: 1, port: 1 } } }\n" ),
      "leaf.yaml:2: 'units' is missing in switch; give it, as in 'units: { 0: { module: 1 } }'" );
}

TEST( ScenarioPublished, RefusesAPortOutOfRange ) {
   for ( std::string const port : { "352", "1022", "1024", "-1", "one", "1.5" } ) {
      EXPECT_EQ( publishProblems( "        interfaces: { Ethernet1: { unit: 0, port: " + port +
                                  " } }\n" ),
                 "leaf.yaml:11: port is '" + port +
                    "'; a whole number from 0 to 351 is expected, or 1023 for a port that is not "
                    "valid" );
   }
}

TEST( ScenarioPublished, RefusesAPortOfTwoInterfaces ) {
   EXPECT_EQ(
      publishProblems( "        interfaces: { Ethernet1: { unit: 0, port: 1 },\n"
                       "                      Ethernet2: { unit: 0, port: 1 } }\n" ),
      "leaf.yaml:12: port 1 of unit 0 is Ethernet1's already; give each interface a port of its "
      "own" );
}

TEST( ScenarioPublished, RefusesAMemberOfTwoPortChannels ) {
   EXPECT_EQ(
      publishProblems( "        port-channels: { Port-Channel1: [ Ethernet1 ],\n"
                       "                         Port-Channel2: [ Ethernet1 ] }\n" ),
      "leaf.yaml:12: Ethernet1 is in Port-Channel1 already; an interface is in one port channel "
      "at most" );
}

TEST( ScenarioPublished, RefusesRepetitionsHoweverTheyAreWritten ) {
   EXPECT_EQ( publishProblems( "        interfaces: { Ethernet1: { unit: 0, port: 1 },\n"
                               "                      Ethernet1: { unit: 0, port: 2 } }\n" ),
              "leaf.yaml:12: Ethernet1 is given twice, first in line 11; keep one of them" );
   EXPECT_EQ( publishProblems(
                 "        port-channels: { Port-Channel2: [ Ethernet1, Ethernet1 ] }\n" ),
              "leaf.yaml:11: Ethernet1 is given twice, first in line 11; keep one of them" );
   EXPECT_EQ( publishProblems( "        segments: { Port-Channel2: [ 2001:db8::1,\n"
                               "                                     2001:DB8:0::1 ] }\n" ),
              "leaf.yaml:12: 2001:db8::1 is given twice, first in line 11; keep one of them" );
}

TEST( ScenarioPublished, RefusesBadAddresses ) {
   EXPECT_EQ(
      publishProblems( "        vteps: { 10.0.0.256: { virtual-port: 2 } }\n" ),
      "leaf.yaml:11: '10.0.0.256' is not an IP address: '256' is not a number from 0 to 255" );
   EXPECT_EQ( publishProblems( "        segments: { Port-Channel2: [ 10.0.0 ] }\n" ),
              "leaf.yaml:11: '10.0.0' is not an IP address: an IPv4 address is four numbers, as in "
              "192.0.2.1" );
   EXPECT_EQ( withdrawProblems( "        vteps: [ leaf2 ]\n" ),
              "leaf.yaml:11: 'leaf2' is not an IP address: an IPv4 address is four numbers, as in "
              "192.0.2.1" );
   EXPECT_EQ( publishProblems( "        segments: { Port-Channel2: [ [ 10.0.0.2 ] ] }\n" ),
              "leaf.yaml:11: an element of Port-Channel2 is a list; text is expected" );
}

TEST( ScenarioPublished, RefusesAVtepWithoutVirtualPort ) {
   EXPECT_EQ(
      publishProblems( "        vteps: { 10.0.0.2: {} }\n" ),
      "leaf.yaml:11: 'virtual-port' is missing in 10.0.0.2; give it, as in 'virtual-port: 2'" );
   EXPECT_EQ( publishProblems( "        vteps: { 10.0.0.2: { virtual-port: 4294967296 } }\n" ),
              "leaf.yaml:11: virtual-port is '4294967296'; a whole number from 0 to 4294967295 is "
              "expected" );
}

TEST( ScenarioPublished, RefusesAVniOutOfRange ) {
   EXPECT_EQ(
      publishProblems( "        tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 16777216 } } }\n" ),
      "leaf.yaml:11: red is '16777216'; a whole number from 0 to 16777215 is expected, or none" );
}

TEST( ScenarioPublished, RefusesAnUnknownWordOfATunnelInterface ) {
   EXPECT_EQ(
      publishProblems( "        tunnel-interfaces: { Vxlan1: { vrf-vnis: {} } }\n" ),
      "leaf.yaml:11: unknown word 'vrf-vnis' in tunnel-interface; did you mean 'vrf-vni'?" );
}

}  // namespace
