#include <algorithm>
#include <array>

#include <Frames/Headers.h>
#include <Pipeline/Forwarding.h>
#include <Scenario/Interfaces.h>
#include <Scenario/Parts.h>
#include <Scenario/Shape.h>

namespace Scenario {

namespace {

std::optional< L3::VrfName > vrfIn( Reading &, std::string const & text, int ) {
   return L3::VrfName( text );
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

// A VTEP that has, or is to have, a tunnel to this switch.
std::optional< Pelk::IpGenAddr > tunnelVtepIn( Reading & reading, std::string const & text,
                                               int line ) {
   auto const vtep = vtepIn( reading, text, line );
   if ( vtep ) {
      reading.agreement().remoteVtepIs( *vtep, line );
   }
   return vtep;
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
void readWithdrawnSegments( Reading & reading, Value const & value, Changes & changes ) {
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
          readNumber< VtepWords, &VtepWords::virtualPort > } }
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

void readWithdrawnVteps( Reading & reading, Value const & value, Changes & changes ) {
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

void readWithdrawnGrants( Reading & reading, Value const & value, Changes & changes ) {
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

std::optional< Vxlan::VniExtOrNone > vniOf( Reading & reading, Value const & value ) {
   if ( value.node.IsScalar() && value.node.Scalar() == "none" ) {
      return Vxlan::VniExtOrNone();
   }
   auto const vni = numberOf( reading, value, 0, Chip::kHighestVni, ", or none" );
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
                              Shape::anyOf( { Shape::number( 0, Chip::kHighestVni ),
                                              Shape::constant( "none" ) } ),
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
void readWithdrawnTunnels( Reading & reading, Value const & value, Changes & changes ) {
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

Table< Changes > const & withdrawTable() {
   static Table< Changes > const table{
      { "withdraw", "Other agents withdraw what they have published, in the order written.",
        R"({"minProperties": 1})" },
      { { { "interfaces", "", Shape::of( "ethernets", "Interfaces that lose their chip port." ) },
          readWithdrawnInterfaces },
        { { "port-channels", "",
            Shape::of( "port-channels", "Members that leave, by port channel." ) },
          readWithdrawnMembers },
        { { "segments", "",
            Shape::anyOf( { Shape::setOf( Shape::of( "segment-interface" ) ),
                            Shape::of( "segments" ) },
                          "A list of interfaces whose segments go, or remote VTEPs that leave, by "
                          "interface." ) },
          readWithdrawnSegments },
        { { "vteps", "",
            Shape::of( "vtep-addresses", "Remote VTEPs that lose their virtual port." ) },
          readWithdrawnVteps },
        { { "tunnel-interfaces", "",
            Shape::anyOf(
               { Shape::setOf( Shape::of( "vxlan" ) ),
                 Shape::mappingOf( Shape::of( "vxlan" ), Shape::setOf( Shape::of( "text" ) ) ) },
               "A list of tunnel interfaces that go, or VRFs that leave, by tunnel interface." ) },
          readWithdrawnTunnels },
        { { "class-id-grants", "",
            Shape::of( "vtep-addresses", "Remote VTEPs that lose their class id." ) },
          readWithdrawnGrants } }
   };
   return table;
}

}  // namespace

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
   return { vtepTable().list(),    tunnelTable().list(),   evpnTable().list(),
            publishTable().list(), withdrawTable().list(), replaceTable().list() };
}

}  // namespace Scenario
