// How a switch forwards: everything that the packet pipeline takes from outside, but for the rules
// of the field processor.
//
// A plain value. The owner of the switch's state (interfaces, port channels, VLANs, tunnels) builds
// it anew when any of that changes, and gives the whole of it to Pipeline::forwardingIs().
// There is no order in which parts would have to change, and nothing is ever half applied.
//
// Meaning and limits:
//
// - A bridge domain is a VLAN. One that is mapped to a VNI reaches over the tunnels; a VLAN that
//   only interfaces name is bridged locally.
// - An interface is a physical port. Those that are members of a port channel forward as the port
//   channel, whose VLANs hold; their own do not. Underlay interfaces carry VXLAN between VTEPs and
//   nothing else; a port channel can be one too.
// - A tunnel is a remote VTEP from which frames are accepted, with the virtual port that stands for
//   it in the chip. Each VNI has its own list of VTEPs to which flooded frames go.
// - There is one routing table. A routed frame keeps its bridge domain as long as no host route
//   takes it into another one; there are no next hops, no VRFs and no
//   multicast between VLANs.
//
// checkForwarding() refuses a value that contradicts itself; the Pipeline calls it first.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <vector>

#include <Frames/MacAddress.h>
#include <Pelk/IntfId.h>
#include <Pelk/IpGenAddr.h>
#include <Quelm/Integers.h>

namespace Chip {

using Vlan = U16;  // from 1
using Vni = U32;   // from 1
inline constexpr Vlan kHighestVlan = 4094;
inline constexpr Vni kHighestVni = 0xffffff;

// The VLANs of an access interface, and how they look on the wire (IEEE 802.1Q).
struct AccessVlans {
   std::set< Vlan > tagged{};
   std::optional< Vlan > untagged{};

   friend bool operator==( AccessVlans const &, AccessVlans const & ) = default;
};

// A physical port. Its module id is its unit's.
struct InterfaceConfig {
   Pelk::IntfId intfId{};
   U16 unit = 0;
   U16 logicalPort = 0;  // below 352
   // It carries VXLAN, and no VLANs.
   bool isUnderlay = false;
   AccessVlans vlans{};
   // Underlay only: the MAC address at the other end of the link.
   MacAddress neighbour = MacAddress::broadcast();

   friend bool operator==( InterfaceConfig const &, InterfaceConfig const & ) = default;
};

struct PortChannelConfig {
   Pelk::IntfId intfId{};
   // Interfaces above; none while all links are down.
   std::vector< Pelk::IntfId > members{};
   AccessVlans vlans{};
   // As for interfaces; the members themselves are no underlay interfaces.
   bool isUnderlay = false;
   MacAddress neighbour = MacAddress::broadcast();

   friend bool operator==( PortChannelConfig const &, PortChannelConfig const & ) = default;
};

// A remote VTEP from which frames are accepted.
struct TunnelConfig {
   U16 vpIndex = 0;  // of its virtual port; makes the source gport (Gport.h)
   // The underlay interfaces that lead there, of which the flow chooses one; empty: all.
   std::vector< Pelk::IntfId > underlay{};

   friend bool operator==( TunnelConfig const &, TunnelConfig const & ) = default;
};

// Whether an access interface forwards frames that came through a tunnel for several receivers (RFC
// 7432, section 8.5). It does by default.
struct DesignatedForwarderConfig {
   bool allVlans = true;
   std::map< Vlan, bool > perVlan{};  // stands above allVlans

   friend bool operator==( DesignatedForwarderConfig const &,
                           DesignatedForwarderConfig const & ) = default;
};

// The VLAN and MAC address of a host, for frames that are routed to it.
struct HostRoute {
   Vlan vlan = 0;
   MacAddress mac{};

   friend bool operator==( HostRoute const &, HostRoute const & ) = default;
};

struct ForwardingConfig {
   // The switch's own addresses: those of its VTEP, and the MAC address to which hosts send frames
   // for the router.
   std::optional< Pelk::IpGenAddr > vtepIpv4{};
   std::optional< Pelk::IpGenAddr > vtepIpv6{};
   MacAddress routerMac{ 0x020000000001 };

   std::vector< InterfaceConfig > interfaces{};
   std::vector< PortChannelConfig > portChannels{};
   std::map< Pelk::IntfId, DesignatedForwarderConfig > designatedForwarder{};
   // The remote VTEPs that are attached to the Ethernet segment of an interface or port channel as
   // well. An interface that does not exist and a VTEP without tunnel are ignored.
   std::map< Pelk::IntfId, std::set< Pelk::IpGenAddr > > sharedWith{};

   std::map< Vlan, Vni > vlanToVni{};
   std::map< Pelk::IpGenAddr, TunnelConfig > tunnels{};  // by remote VTEP
   std::map< Vni, std::vector< Pelk::IpGenAddr > > floodLists{};

   std::map< Pelk::IpGenAddr, HostRoute > hostRoutes{};  // by the host's address
   // Groups that have a route, with the VLANs for which they have; no VLANs: all.
   std::map< Pelk::IpGenAddr, std::set< Vlan > > multicastRoutes{};

   friend bool operator==( ForwardingConfig const &, ForwardingConfig const & ) = default;
};

// Throws Quelm::Error, naming the place and the remedy, unless
// - interfaces and port channels are called by different names of their kind, none lies where
//   another does, and logical ports are below 352;
// - the members of a port channel are interfaces, no underlay, and in no other port channel;
// - VLANs and VNIs are in their ranges, no VLAN is tagged and untagged at once, no VNI has two
//   VLANs, and underlay interfaces have no VLANs;
// - designated-forwarder state is of an interface or port channel with VLANs;
// - own VTEP addresses have the family of their place, remote ones are not the own ones, tunnels
//   lead over underlay interfaces, and flood lists are of VNIs that a VLAN is mapped to;
// - routes lead into VLANs of this switch, and multicast routes are of multicast addresses.
void checkForwarding( ForwardingConfig const & config );

}  // namespace Chip
