// What is said of a forwarding state that contradicts itself: the place, and what would be right.
#include <functional>

#include "Leaf.h"

namespace ForwardingTest {

using namespace PipelineTest;
using Chip::ForwardingConfig;

// What the change makes the pipeline say; empty when it takes it.
std::string refusal( std::function< void( ForwardingConfig & ) > const & change ) {
   ForwardingConfig config = leaf1Config();
   change( config );
   Chip::Board const board( ChipTest::twoUnits( 8 ) );
   Chip::Pipeline pipeline( board.units() );
   try {
      pipeline.forwardingIs( config );
   } catch ( Quelm::Error const & error ) {
      return error.what();
   }
   return "";
}

TEST( Forwarding, IsTakenWhenItHolds ) {
   EXPECT_EQ( refusal( []( ForwardingConfig & ) {} ), "" );
   EXPECT_EQ( refusal( []( ForwardingConfig & config ) { config = {}; } ), "" );
}

TEST( Forwarding, InterfacesHaveNamesAndPlacesOfTheirOwn ) {
   EXPECT_EQ( refusal( []( auto & config ) { config.interfaces[ 0 ].intfId = {}; } ),
              "forwarding: interface : give it the name of a physical port, as in Ethernet1" );
   EXPECT_EQ( refusal(
                 []( auto & config ) { config.interfaces[ 0 ].intfId = intf( "Port-Channel3" ); } ),
              "forwarding: interface Port-Channel3: give it the name of a physical port, as "
              "in Ethernet1" );
   EXPECT_EQ( refusal(
                 []( auto & config ) { config.interfaces[ 1 ].intfId = intf( "Ethernet1" ); } ),
              "forwarding: interface Ethernet1: it comes twice" );
   EXPECT_EQ( refusal( []( auto & config ) { config.interfaces[ 1 ].logicalPort = 1; } ),
              "forwarding: interface Ethernet2: unit 0 port 1 is that of Ethernet1 already" );
   EXPECT_EQ( refusal( []( auto & config ) { config.interfaces[ 0 ].logicalPort = 352; } ),
              "forwarding: interface Ethernet1: there is no logical port 352; a unit has ports 0 "
              "to 351" );
   EXPECT_EQ( refusal( []( auto & config ) { config.interfaces[ 0 ].unit = 2; } ),
              "forwarding: interface Ethernet1: the switch has no unit 2" );
}

TEST( Forwarding, PortChannelsHaveMembersOfTheirOwn ) {
   EXPECT_EQ( refusal(
                 []( auto & config ) { config.portChannels[ 0 ].intfId = intf( "Ethernet9" ); } ),
              "forwarding: port channel Ethernet9: give it the name of one, as in "
              "Port-Channel1" );
   EXPECT_EQ( refusal( []( auto & config ) {
                 config.portChannels.push_back( config.portChannels[ 0 ] );
              } ),
              "forwarding: port channel Port-Channel1: it comes twice" );
   EXPECT_EQ( refusal( []( auto & config ) {
                 config.portChannels[ 0 ].members.push_back( intf( "Ethernet9" ) );
              } ),
              "forwarding: port channel Port-Channel1: its member 'Ethernet9' is no interface" );
   EXPECT_EQ( refusal( []( auto & config ) {
                 config.portChannels[ 0 ].members.push_back( intf( "Ethernet49" ) );
              } ),
              "forwarding: port channel Port-Channel1: its member Ethernet49 is an underlay "
              "interface" );
   EXPECT_EQ( refusal( []( auto & config ) {
                 config.portChannels.push_back(
                    { .intfId = intf( "Port-Channel2" ), .members = { intf( "Ethernet4" ) } } );
              } ),
              "forwarding: port channel Port-Channel2: its member Ethernet4 is one of "
              "Port-Channel1 already" );
}

TEST( Forwarding, VlansAndVnisAreInTheirRanges ) {
   EXPECT_EQ( refusal( []( auto & config ) { config.interfaces[ 0 ].vlans.untagged = 4095; } ),
              "forwarding: interface Ethernet1: there is no VLAN 4095; VLANs are 1 to 4094" );
   EXPECT_EQ( refusal( []( auto & config ) { config.portChannels[ 0 ].vlans.tagged = { 0 }; } ),
              "forwarding: port channel Port-Channel1: there is no VLAN 0; VLANs are 1 to 4094" );
   EXPECT_EQ( refusal( []( auto & config ) { config.interfaces[ 0 ].vlans.tagged = { 10 }; } ),
              "forwarding: interface Ethernet1: VLAN 10 is either tagged or untagged" );
   EXPECT_EQ( refusal( []( auto & config ) { config.interfaces.back().vlans.tagged = { 10 }; } ),
              "forwarding: interface Ethernet49: an underlay interface carries VXLAN only and has "
              "no VLANs" );
   EXPECT_EQ( refusal( []( auto & config ) { config.portChannels[ 0 ].isUnderlay = true; } ),
              "forwarding: port channel Port-Channel1: an underlay interface carries VXLAN only "
              "and has no VLANs" );
   EXPECT_EQ( refusal( []( auto & config ) { config.vlanToVni[ 10 ] = 0x1000000; } ),
              "forwarding: VLAN 10: there is no VNI 16777216; VNIs are 1 to 16777215" );
   EXPECT_EQ( refusal( []( auto & config ) { config.vlanToVni[ 20 ] = 10100; } ),
              "forwarding: VLAN 20: VNI 10100 is that of VLAN 10 already" );
}

TEST( Forwarding, DesignationIsOfAccessInterfaces ) {
   EXPECT_EQ( refusal(
                 []( auto & config ) { config.designatedForwarder[ intf( "Ethernet49" ) ]; } ),
              "forwarding: designated forwarder on 'Ethernet49': it is neither an access interface "
              "nor a port channel" );
   EXPECT_EQ( refusal( []( auto & config ) {
                 config.portChannels[ 0 ].isUnderlay = true;
                 config.portChannels[ 0 ].vlans = {};
                 config.designatedForwarder[ intf( "Port-Channel1" ) ];
              } ),
              "forwarding: designated forwarder on 'Port-Channel1': it is neither an access "
              "interface nor a port channel" );
   EXPECT_EQ( refusal( []( auto & config ) {
                 config.designatedForwarder[ intf( "Ethernet1" ) ].perVlan[ 30 ] = false;
              } ),
              "forwarding: designated forwarder on 'Ethernet1': VLAN 30 is neither on an interface "
              "nor mapped to a VNI" );
}

TEST( Forwarding, TunnelsLeadToOthersOverUnderlayInterfaces ) {
   EXPECT_EQ( refusal( []( auto & config ) { config.vtepIpv4 = kLeaf1v6; } ),
              "forwarding: own IPv4 VTEP address: 2001:db8::1 is of the other family" );
   EXPECT_EQ( refusal( []( auto & config ) { config.vtepIpv6 = ip( "fe80::1" ); } ),
              "forwarding: own IPv6 VTEP address: fe80::1 cannot be reached over a network" );
   EXPECT_EQ( refusal( []( auto & config ) { config.tunnels[ kLeaf1 ]; } ),
              "forwarding: tunnel to 10.0.0.1: 10.0.0.1 is this switch itself" );
   EXPECT_EQ( refusal( []( auto & config ) {
                 config.tunnels[ kLeaf2 ].underlay = { intf( "Ethernet1" ) };
              } ),
              "forwarding: tunnel to 10.0.0.2: 'Ethernet1' is no underlay interface" );
   EXPECT_EQ( refusal( []( auto & config ) { config.floodLists[ 10300 ]; } ),
              "forwarding: flood list of VNI 10300: no VLAN is mapped to that VNI" );
   EXPECT_EQ( refusal( []( auto & config ) { config.floodLists[ 10100 ] = { kLeaf1 }; } ),
              "forwarding: flood list of VNI 10100: 10.0.0.1 is this switch itself" );
}

TEST( Forwarding, RoutesLeadIntoVlansOfTheSwitch ) {
   EXPECT_EQ( refusal( []( auto & config ) {
                 config.hostRoutes[ ip( "192.0.2.1" ) ] = { 30, kHost1 };
              } ),
              "forwarding: host route to 192.0.2.1: VLAN 30 is neither on an interface nor mapped "
              "to a VNI" );
   EXPECT_EQ( refusal( []( auto & config ) { config.multicastRoutes[ ip( "192.0.2.1" ) ]; } ),
              "forwarding: multicast route of 192.0.2.1: it is no multicast address" );
   EXPECT_EQ( refusal(
                 []( auto & config ) { config.multicastRoutes[ ip( "239.1.1.1" ) ] = { 30 }; } ),
              "forwarding: multicast route of 239.1.1.1: VLAN 30 is neither on an interface nor "
              "mapped to a VNI" );
}

}  // namespace ForwardingTest
