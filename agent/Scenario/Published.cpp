#include <algorithm>
#include <array>

#include <Brum/PerUnitBitmap.h>
#include <Frames/Headers.h>
#include <Scenario/Parts.h>
#include <Scenario/Shape.h>

namespace Scenario {

namespace {

using Changes = std::vector< Change >;
using Kind = Pelk::IntfId::Kind;

// An interface of one of the kinds, which `expected` words.
std::optional< Pelk::IntfId > interfaceIn( Reading & reading, std::string const & text, int line,
                                           std::initializer_list< Kind > kinds,
                                           std::string const & expected ) {
   auto const intf = parsed< Pelk::IntfId >( reading, text, line );
   if ( !intf || std::find( kinds.begin(), kinds.end(), intf->kind() ) != kinds.end() ) {
      return intf;
   }
   reading.problem( line, intf->stringValue() + " cannot stand here; " + expected );
   return std::nullopt;
}

std::optional< Pelk::IntfId > ethernetIn( Reading & reading, std::string const & text, int line ) {
   return interfaceIn( reading, text, line, { Kind::ethernet },
                       "an Ethernet interface is expected" );
}

std::optional< Pelk::IntfId > portChannelIn( Reading & reading, std::string const & text,
                                             int line ) {
   return interfaceIn( reading, text, line, { Kind::portChannel },
                       "a port channel is expected, as in Port-Channel1" );
}

std::optional< Pelk::IntfId > segmentIntfIn( Reading & reading, std::string const & text,
                                             int line ) {
   auto const intf = interfaceIn( reading, text, line, { Kind::ethernet, Kind::portChannel },
                                  "a segment is on an Ethernet interface or a port channel" );
   if ( intf ) {
      reading.use( *intf, line );
   }
   return intf;
}

std::optional< Pelk::IntfId > tunnelIntfIn( Reading & reading, std::string const & text,
                                            int line ) {
   return interfaceIn( reading, text, line, { Kind::vxlan },
                       "a tunnel interface is expected, as in Vxlan1" );
}

std::optional< L3::VrfName > vrfIn( Reading &, std::string const & text, int ) {
   return L3::VrfName( text );
}

// A VTEP that has, or is to have, a tunnel to this switch.
std::optional< Pelk::IpGenAddr > tunnelVtepIn( Reading & reading, std::string const & text,
                                               int line ) {
   auto const vtep = vtepIn( reading, text, line );
   if ( vtep ) {
      reading.agreement().remoteVtepIs( *vtep, line );
   }
   return vtep;
}

// --- interfaces

struct PortWords {
   std::optional< U32 > unit;
   std::optional< U32 > port;
};

constexpr U32 kHighestPort = Brum::PerUnitBitmap::kBits - 1;
constexpr U32 kInvalid = VornalTypes::VornalPort::kInvalidLogicalPort;

void readPort( Reading & reading, Value const & value, PortWords & words ) {
   words.port =
      numberIn( value ) == kInvalid
         ? std::optional( kInvalid )
         : numberOf( reading, value, 0, kHighestPort, ", or 1023 for a port that is not valid" );
}

Table< PortWords > const & interfaceTable() {
   static Table< PortWords > const table{
      { "interface", "The chip port of an interface." },
      { { { "unit", "unit: 0",
            Shape::of( "unit-number",
                       "The chip that the port is on; one of the switch's units." ) },
          readNumber< PortWords, &PortWords::unit, 0, 0xffff > },
        { { "port", "port: 1",
            Shape::anyOf( { Shape::number( 0, kHighestPort ), Shape::constant( kInvalid ) },
                          "The logical port, 0 to 351; 1023 for one that is not valid." ) },
          readPort } }
   };
   return table;
}

// The interface's port; nothing when it has none, or none that can be read.
std::optional< VornalTypes::VornalPort > portOf( Reading & reading, Value const & value ) {
   if ( value.node.IsMap() && value.node.size() == 0 ) {
      return std::nullopt;
   }
   PortWords words;
   readMapping( reading, value, interfaceTable(), words );
   if ( !words.unit || !words.port ) {
      return std::nullopt;
   }
   auto const unit = static_cast< U16 >( *words.unit );
   auto const module = reading.module( unit, value.line );
   return module ? std::optional(
                      VornalTypes::VornalPort( unit, static_cast< U16 >( *words.port ), *module ) )
                 : std::nullopt;
}

void interfacesGone( Reading & reading, Value const & value, Changes & changes ) {
   for ( auto const & [ intf, line ] : distinctOf( reading, value, ethernetIn ) ) {
      reading.use( intf, line );
      changes.push_back( { InterfacePort{ intf, {} }, line } );
   }
}

// --- port channels

using PortChannels = std::vector< Keyed< Pelk::IntfId > >;

// The members of each, none in two of them.
struct Member {
   Pelk::IntfId intf;
   Pelk::IntfId portChannel;
   int line;
};

std::vector< Member > readMembers( Reading & reading, PortChannels const & portChannels,
                                   Changes & changes ) {
   std::vector< Member > result;
   std::map< Pelk::IntfId, Pelk::IntfId > portChannelOf;
   for ( auto const & [ portChannel, members ] : portChannels ) {
      for ( auto const & [ member, line ] : distinctOf( reading, members, ethernetIn ) ) {
         reading.use( member, line );
         auto const [ other, isNew ] = portChannelOf.try_emplace( member, portChannel );
         if ( !isNew ) {
            reading.problem( line, member.stringValue() + " is in " + other->second.stringValue() +
                                      " already; an interface is in one port channel at most" );
         }
         changes.push_back( { PortChannelMember{ portChannel, member }, line } );
         result.push_back( { member, portChannel, line } );
      }
   }
   return result;
}

void membersGone( Reading & reading, Value const & value, Changes & changes ) {
   PortChannels const portChannels = keyedOf( reading, value, portChannelIn );
   for ( auto const & portChannel : portChannels ) {
      reading.use( portChannel.key, portChannel.value.line );
   }
   for ( Member const & member : readMembers( reading, portChannels, changes ) ) {
      reading.agreement().memberGoes( member.intf );
   }
}

// --- segments

void readSegmentVteps( Reading & reading, Pelk::IntfId const & intf, Value const & value,
                       Changes & changes ) {
   for ( auto const & [ vtep, line ] : distinctOf( reading, value, vtepIn ) ) {
      reading.agreement().sharingVtepIs( vtep, line );
      changes.push_back( { SegmentVtep{ intf, vtep }, line } );
   }
}

void readSegments( Reading & reading, Value const & value, Changes & changes ) {
   for ( auto const & [ intf, vteps ] : keyedOf( reading, value, segmentIntfIn ) ) {
      changes.push_back( { Segment{ intf }, vteps.line } );
      readSegmentVteps( reading, intf, vteps, changes );
   }
}

// Whole segments as a list, or remote VTEPs of each as a mapping.
void segmentsGone( Reading & reading, Value const & value, Changes & changes ) {
   if ( value.node.IsMap() ) {
      for ( auto const & [ intf, vteps ] : keyedOf( reading, value, segmentIntfIn ) ) {
         readSegmentVteps( reading, intf, vteps, changes );
      }
      return;
   }
   for ( auto const & [ intf, line ] : distinctOf( reading, value, segmentIntfIn ) ) {
      changes.push_back( { Segment{ intf }, line } );
   }
}

// --- VTEPs

struct VtepWords {
   std::optional< U32 > virtualPort;
};

Table< VtepWords > const & vtepTable() {
   static Table< VtepWords > const table{
      { "vtep", "A remote VTEP." },
      { { { "virtual-port", "virtual-port: 2",
            Shape::number( 0, ~U32{ 0 },
                           "The virtual port that the chip uses for the VTEP; its low 16 bits are "
                           "the VP index." ) },
          readNumber< VtepWords, &VtepWords::virtualPort, 0, ~U32{ 0 } > } }
   };
   return table;
}

void readVteps( Reading & reading, Value const & value, Changes & changes ) {
   for ( auto const & [ vtep, about ] : keyedOf( reading, value, tunnelVtepIn ) ) {
      VtepWords words;
      readMapping( reading, about, vtepTable(), words );
      changes.push_back( { VtepVirtualPort{ vtep, words.virtualPort.value_or( 0 ) }, about.line } );
   }
}

void vtepsGone( Reading & reading, Value const & value, Changes & changes ) {
   for ( auto const & [ vtep, line ] : distinctOf( reading, value, vtepIn ) ) {
      changes.push_back( { VtepVirtualPort{ vtep, 0 }, line } );
   }
}

// --- class ids

void readClassIdRequests( Reading & reading, Value const & value, Changes & changes ) {
   for ( auto const & [ vtep, line ] : distinctOf( reading, value, vtepIn ) ) {
      changes.push_back( { ClassIdRequest{ vtep }, line } );
   }
}

void readClassIdGrants( Reading & reading, Value const & value, Changes & changes ) {
   for ( auto const & [ vtep, about ] : keyedOf( reading, value, vtepIn ) ) {
      U32 const id = numberOf( reading, about, 0, VornalCommon::ClassId::kNone ).value_or( 0 );
      changes.push_back(
         { ClassIdGrant{ vtep, VornalCommon::ClassId( static_cast< U16 >( id ) ) }, about.line } );
   }
}

void classIdGrantsGone( Reading & reading, Value const & value, Changes & changes ) {
   for ( auto const & [ vtep, line ] : distinctOf( reading, value, vtepIn ) ) {
      changes.push_back( { ClassIdGrant{ vtep, {} }, line } );
   }
}

// --- tunnel interfaces

// The tunnel interface whose mappings are being read, and where they go.
struct Mappings {
   Pelk::IntfId intf;
   Changes & changes;
};

constexpr U32 kHighestVni = Vxlan::VniExtOrNone::kNone - 1;

std::optional< Vxlan::VniExtOrNone > vniOf( Reading & reading, Value const & value ) {
   if ( value.node.IsScalar() && value.node.Scalar() == "none" ) {
      return Vxlan::VniExtOrNone();
   }
   auto const vni = numberOf( reading, value, 0, kHighestVni, ", or none" );
   return vni ? std::optional( Vxlan::VniExtOrNone( *vni ) ) : std::nullopt;
}

void readVrfVni( Reading & reading, Value const & value, Mappings & mappings ) {
   for ( auto const & [ vrf, about ] : keyedOf( reading, value, vrfIn ) ) {
      if ( auto const vni = vniOf( reading, about ) ) {
         mappings.changes.push_back( { VrfVni{ mappings.intf, vrf, *vni }, about.line } );
      }
   }
}

Table< Mappings > const & tunnelTable() {
   static Table< Mappings > const table{
      { "tunnel-interface", "A VXLAN tunnel interface." },
      { { { "vrf-vni", "",
            Shape::mappingOf( Shape::json( R"({"minLength": 1})" ),
                              Shape::anyOf(
                                 { Shape::number( 0, kHighestVni ), Shape::constant( "none" ) } ),
                              "The VNI of each VRF that is routed over the interface." ) },
          readVrfVni } }
   };
   return table;
}

void readTunnels( Reading & reading, Value const & value, Changes & changes ) {
   for ( auto const & [ intf, about ] : keyedOf( reading, value, tunnelIntfIn ) ) {
      changes.push_back( { TunnelInterface{ intf }, about.line } );
      Mappings mappings{ intf, changes };
      readMapping( reading, about, tunnelTable(), mappings );
   }
}

// Whole tunnel interfaces as a list, or VRFs of each as a mapping.
void tunnelsGone( Reading & reading, Value const & value, Changes & changes ) {
   if ( !value.node.IsMap() ) {
      for ( auto const & [ intf, line ] : distinctOf( reading, value, tunnelIntfIn ) ) {
         changes.push_back( { TunnelInterface{ intf }, line } );
      }
      return;
   }
   for ( auto const & [ intf, vrfs ] : keyedOf( reading, value, tunnelIntfIn ) ) {
      for ( auto const & [ vrf, line ] : distinctOf( reading, vrfs, vrfIn ) ) {
         changes.push_back( { VrfVni{ intf, vrf, {} }, line } );
      }
   }
}

Table< Changes > const & evpnTable() {
   static Table< Changes > const table{
      { "evpn", "What the EVPN and VXLAN agents publish before the plug-in is loaded." },
      { { { "segments", "", Shape::of( "segments" ) }, readSegments },
        { { "vteps", "", Shape::of( "vteps" ) }, readVteps },
        { { "tunnel-interfaces", "", Shape::of( "tunnel-interfaces" ) }, readTunnels },
        { { "class-id-requests", "",
            Shape::of(
               "vtep-addresses",
               "Remote VTEPs for which an earlier run of the agent has asked for a class id." ) },
          readClassIdRequests },
        { { "class-id-grants", "", Shape::of( "class-id-grants" ) }, readClassIdGrants } }
   };
   return table;
}

Table< Changes > const & publishTable() {
   static Table< Changes > const table{
      { "publish",
        "Other agents publish, or change what they have published, in the order written.",
        R"({"minProperties": 1})" },
      { { { "interfaces", "", Shape::of( "interfaces" ) }, readInterfaces },
        { { "port-channels", "", Shape::of( "port-channels" ) }, readPortChannels },
        { { "segments", "", Shape::of( "segments" ) }, readSegments },
        { { "vteps", "", Shape::of( "vteps" ) }, readVteps },
        { { "tunnel-interfaces", "", Shape::of( "tunnel-interfaces" ) }, readTunnels },
        { { "class-id-grants", "", Shape::of( "class-id-grants" ) }, readClassIdGrants } }
   };
   return table;
}

Table< Changes > const & replaceTable() {
   static Table< Changes > const table{
      { "replace",
        "New entities take the place of those that are there, each with all that it holds, in one "
        "change.",
        R"({"minProperties": 1})" },
      { { { "segments", "", Shape::of( "segments" ) }, readSegments },
        { { "tunnel-interfaces", "", Shape::of( "tunnel-interfaces" ) }, readTunnels } }
   };
   return table;
}

// The IPv4 address of an IPv4-mapped one (RFC 4291, section 2.5.5.2).
std::optional< Pelk::IpGenAddr > ipv4Within( Pelk::IpGenAddr const & address ) {
   constexpr std::array< U8, 12 > mapped{ 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff };
   std::array< U8, 16 > const bytes = address.bytes();
   bool const isMapped = address.family() == Pelk::IpGenAddr::Family::ipv6 &&
                         std::equal( mapped.begin(), mapped.end(), bytes.begin() );
   return isMapped ? std::optional( Pelk::IpGenAddr::ipv4(
                        { bytes[ 12 ], bytes[ 13 ], bytes[ 14 ], bytes[ 15 ] } ) )
                   : std::nullopt;
}

Table< Changes > const & withdrawTable() {
   static Table< Changes > const table{
      { "withdraw", "Other agents withdraw what they have published, in the order written.",
        R"({"minProperties": 1})" },
      { { { "interfaces", "", Shape::of( "ethernets", "Interfaces that lose their chip port." ) },
          interfacesGone },
        { { "port-channels", "",
            Shape::of( "port-channels", "Members that leave, by port channel." ) },
          membersGone },
        { { "segments", "",
            Shape::anyOf( { Shape::setOf( Shape::of( "segment-interface" ) ),
                            Shape::of( "segments" ) },
                          "A list of interfaces whose segments go, or remote VTEPs that leave, by "
                          "interface." ) },
          segmentsGone },
        { { "vteps", "",
            Shape::of( "vtep-addresses", "Remote VTEPs that lose their virtual port." ) },
          vtepsGone },
        { { "tunnel-interfaces", "",
            Shape::anyOf(
               { Shape::setOf( Shape::of( "vxlan" ) ),
                 Shape::mappingOf( Shape::of( "vxlan" ), Shape::setOf( Shape::of( "text" ) ) ) },
               "A list of tunnel interfaces that go, or VRFs that leave, by tunnel interface." ) },
          tunnelsGone },
        { { "class-id-grants", "",
            Shape::of( "vtep-addresses", "Remote VTEPs that lose their class id." ) },
          classIdGrantsGone } }
   };
   return table;
}

}  // namespace

void readInterfaces( Reading & reading, Value const & value, Changes & changes ) {
   std::map< VornalTypes::VornalPort, Pelk::IntfId > intfOfPort;
   for ( auto const & [ intf, about ] : keyedOf( reading, value, ethernetIn ) ) {
      reading.define( intf );
      auto const port = portOf( reading, about );
      if ( !port ) {
         continue;
      }
      auto const [ other, isNew ] = intfOfPort.try_emplace( *port, intf );
      if ( !isNew && port->isValid() ) {
         reading.problem( about.line, "port " + std::to_string( port->logicalPort() ) +
                                         " of unit " + std::to_string( port->unit() ) + " is " +
                                         other->second.stringValue() +
                                         "'s already; give each interface a port of its own" );
      }
      changes.push_back( { InterfacePort{ intf, *port }, about.line } );
   }
}

void readPortChannels( Reading & reading, Value const & value, Changes & changes ) {
   PortChannels const portChannels = keyedOf( reading, value, portChannelIn );
   for ( auto const & portChannel : portChannels ) {
      reading.define( portChannel.key );
   }
   for ( Member const & member : readMembers( reading, portChannels, changes ) ) {
      reading.agreement().memberIs( member.intf, member.portChannel, member.line );
   }
}

std::optional< Pelk::IpGenAddr > vtepIn( Reading & reading, std::string const & text, int line ) {
   auto const vtep = parsed< Pelk::IpGenAddr >( reading, text, line );
   if ( auto const inside = vtep ? ipv4Within( *vtep ) : std::nullopt ) {
      reading.problem( line, vtep->stringValue() +
                                " is an IPv4 address as IPv6 programs see it, which no packet "
                                "carries; write " +
                                inside->stringValue() );
      return std::nullopt;
   }
   if ( !vtep || ( Chip::isRoutable( *vtep ) && !Chip::isMulticast( *vtep ) ) ) {
      return vtep;
   }
   reading.problem( line, vtep->stringValue() +
                             " is no address of a VTEP; one that packets can be sent to over a "
                             "network is expected, as in 10.0.0.2" );
   return std::nullopt;
}

void readEvpn( Reading & reading, Value const & value, Changes & changes ) {
   readMapping( reading, value, evpnTable(), changes );
}

void readPublish( Reading & reading, Value const & value, Changes & changes ) {
   readAsWritten( reading, value, publishTable(), changes );
}

void readReplaced( Reading & reading, Value const & value, Changes & changes ) {
   readAsWritten( reading, value, replaceTable(), changes );
}

void readWithdraw( Reading & reading, Value const & value, Changes & changes ) {
   readAsWritten( reading, value, withdrawTable(), changes );
}

std::vector< WordList > publishedVocabulary() {
   return { interfaceTable().list(), vtepTable().list(),    tunnelTable().list(),
            evpnTable().list(),      publishTable().list(), withdrawTable().list(),
            replaceTable().list() };
}

}  // namespace Scenario
