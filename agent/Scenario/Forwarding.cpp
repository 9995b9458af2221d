#include <Frames/Headers.h>
#include <Scenario/Parts.h>
#include <Scenario/Shape.h>

namespace Scenario {

namespace {

using Chip::Vlan;

auto const addressIn = parsed< Pelk::IpGenAddr >;

std::optional< Vlan > vlanOf( Reading & reading, Value const & value ) {
   auto const vlan = numberOf( reading, value, 1, Chip::kHighestVlan );
   return vlan ? std::optional( static_cast< Vlan >( *vlan ) ) : std::nullopt;
}

std::optional< Vlan > vlanIn( Reading & reading, std::string const & text, int line ) {
   auto const vlan = numberIn( text );
   if ( vlan && *vlan >= 1 && *vlan <= Chip::kHighestVlan ) {
      return static_cast< Vlan >( *vlan );
   }
   reading.problem( line,
                    "VLAN is " + inQuotes( text ) + "; a whole number from 1 to 4094 is expected" );
   return std::nullopt;
}

// Checks that the VLAN has a VNI, unless a VLAN or a VNI could not be read, which is reported
// already.
void checkMapped( Reading & reading, Vlan vlan, int line, Forwarding const & forwarding ) {
   auto const & vnis = forwarding.config.vlanToVni;
   if ( vlan != 0 && !vnis.contains( vlan ) && reading.judges( Ground::vlans ) ) {
      reading.problem( line, "VLAN " + std::to_string( vlan ) +
                                " is not among 'vlans'; give it a VNI there, as in " +
                                std::to_string( vlan ) + ": " + std::to_string( 10000 + vlan ) );
   }
}

// The MAC address of one station.
std::optional< Chip::MacAddress > stationOf( Reading & reading, Value const & value ) {
   auto const mac = valueOf< Chip::MacAddress >( reading, value );
   if ( mac && mac->isGroup() ) {
      reading.problem( value.line, value.name + " is " + mac->stringValue() +
                                      ", which is for several stations; the address of one is "
                                      "expected, as in 00:00:5e:00:53:01" );
      return std::nullopt;
   }
   return mac;
}

// --- The switch's addresses

void readVtepAddresses( Reading & reading, Value const & value, Forwarding & forwarding ) {
   if ( value.node.IsSequence() && value.node.size() == 0 ) {
      reading.problem( value.line,
                       "vtep-addresses is empty; give one at least, as in [ 10.0.0.1 ]" );
   }
   for ( auto const & [ address, line ] : distinctOf( reading, value, vtepIn ) ) {
      reading.agreement().ownVtepIs( address, line );
      auto & place = address.family() == Pelk::IpGenAddr::Family::ipv4 ? forwarding.config.vtepIpv4
                                                                       : forwarding.config.vtepIpv6;
      if ( place ) {
         reading.problem( line, "the switch is " + place->stringValue() +
                                   " already; it has one VTEP address of each family" );
      }
      place = address;
   }
}

void readRouterMac( Reading & reading, Value const & value, Forwarding & forwarding ) {
   forwarding.config.routerMac =
      stationOf( reading, value ).value_or( forwarding.config.routerMac );
}

// --- Interfaces and VLANs

void readUnderlay( Reading & reading, Value const & value, Forwarding & forwarding ) {
   if ( value.node.IsSequence() && value.node.size() == 0 ) {
      reading.problem( value.line, "underlay is empty; give one at least, as in [ Ethernet49 ]" );
   }
   for ( auto const & [ intf, line ] : distinctOf( reading, value, intfIn ) ) {
      reading.agreement().underlayIs( intf, line );
      forwarding.underlay.insert( intf );
   }
}

void readVlans( Reading & reading, Value const & value, Forwarding & forwarding ) {
   std::map< Chip::Vni, Vlan > vlanOfVni;
   for ( auto const & [ vlan, about ] : namedOf( reading, value, vlanIn, kNumbersOfVlans ) ) {
      std::string const name = "the VNI of VLAN " + std::to_string( vlan );
      auto const vni = numberOf( reading, { about.node, about.line, name }, 1, Chip::kHighestVni );
      forwarding.config.vlanToVni[ vlan ] = vni.value_or( 0 );
      if ( !vni ) {
         continue;
      }
      auto const [ other, isNew ] = vlanOfVni.try_emplace( *vni, vlan );
      if ( !isNew ) {
         reading.problem( about.line, "VNI " + std::to_string( *vni ) + " is that of VLAN " +
                                         std::to_string( other->second ) +
                                         " already; give each VLAN its own" );
      }
   }
}

void readAccess( Reading & reading, Value const & value, Forwarding & forwarding ) {
   for ( auto const & [ intf, about ] : keyedOf( reading, value, intfIn ) ) {
      reading.agreement().accessIs( intf, about.line );
      forwarding.vlans[ intf ].untagged = vlanOf( reading, about );
      checkMapped( reading, forwarding.vlans[ intf ].untagged.value_or( 0 ), about.line,
                   forwarding );
   }
}

void readTrunk( Reading & reading, Value const & value, Forwarding & forwarding ) {
   for ( auto const & [ intf, about ] : keyedOf( reading, value, intfIn ) ) {
      reading.agreement().accessIs( intf, about.line );
      Chip::AccessVlans & vlans = forwarding.vlans[ intf ];
      for ( auto const & [ vlan, line ] : distinctOf( reading, about, vlanIn ) ) {
         vlans.tagged.insert( vlan );
         checkMapped( reading, vlan, line, forwarding );
         if ( vlan == vlans.untagged ) {
            reading.problem( line, "VLAN " + std::to_string( vlan ) + " of " + intf.stringValue() +
                                      " is under 'access' already; a VLAN is tagged or untagged, "
                                      "so keep one of them" );
         }
      }
   }
}

void readNotDesignated( Reading & reading, Value const & value, Forwarding & forwarding ) {
   for ( auto const & [ intf, line ] : distinctOf( reading, value, intfIn ) ) {
      reading.agreement().designatedIs( intf, line );
      forwarding.config.designatedForwarder[ intf ].allVlans = false;
   }
}

// --- Routes

void readRouteVlan( Reading & reading, Value const & value, Chip::HostRoute & route ) {
   route.vlan = vlanOf( reading, value ).value_or( 0 );
}

void readRouteMac( Reading & reading, Value const & value, Chip::HostRoute & route ) {
   route.mac = stationOf( reading, value ).value_or( Chip::MacAddress() );
}

Table< Chip::HostRoute > const & hostTable() {
   static Table< Chip::HostRoute > const table{
      { "host", "The place of a host." },
      { { { "vlan", "vlan: 10", Shape::of( "vlan-number" ) }, readRouteVlan },
        { { "mac", "mac: 00:00:5e:00:53:01", Shape::of( "station-mac" ) }, readRouteMac } }
   };
   return table;
}

void readHosts( Reading & reading, Value const & value, Forwarding & forwarding ) {
   for ( auto const & [ host, about ] : keyedOf( reading, value, addressIn ) ) {
      Chip::HostRoute & route = forwarding.config.hostRoutes[ host ];
      readMapping( reading, about, hostTable(), route );
      checkMapped( reading, route.vlan, about.line, forwarding );
   }
}

void readGroups( Reading & reading, Value const & value, Forwarding & forwarding ) {
   for ( auto const & [ group, line ] : distinctOf( reading, value, addressIn ) ) {
      if ( !Chip::isMulticast( group ) ) {
         reading.problem( line, group.stringValue() +
                                   " is no multicast address; one is expected, "
                                   "as in 239.1.1.1" );
      }
      forwarding.config.multicastRoutes[ group ] = {};
   }
}

constexpr std::string_view kOneOfEachFamily = R"({
   "minItems": 1,
   "maxItems": 2,
   "not": {
      "minItems": 2,
      "anyOf": [
         { "items": { "$ref": "#/definitions/ipv4" } },
         { "items": { "$ref": "#/definitions/ipv6" } }
      ]
   }
})";

using ForwardingWords = std::vector< Word< Forwarding > >;

ForwardingWords tunnelWords() {
   return { { { "vtep-addresses", "vtep-addresses: [ 10.0.0.1 ]",
                Shape::listOf( Shape::of( "vtep-address" ),
                               "The switch's own VTEP addresses, one of each family.",
                               kOneOfEachFamily ) },
              readVtepAddresses },
            { { "underlay", "underlay: [ Ethernet49 ]",
                Shape::listOf( Shape::of( "segment-interface" ),
                               "The interfaces and port channels that carry VXLAN between VTEPs.",
                               R"({"minItems": 1, "uniqueItems": true})" ) },
              readUnderlay },
            { { "vlans", "vlans: { 10: 10100 }",
                Shape::mappingOf( Shape::of( "vlan-key" ), Shape::number( 1, Chip::kHighestVni ),
                                  "The VNI of each VLAN." ) },
              readVlans } };
}

ForwardingWords interfaceWords() {
   return {
      { { "access", "",
          Shape::mappingOf( Shape::of( "segment-interface" ), Shape::of( "vlan-number" ),
                            "The VLAN that an interface carries untagged." ) },
        readAccess },
      { { "trunk", "",
          Shape::mappingOf( Shape::of( "segment-interface" ),
                            Shape::setOf( Shape::of( "vlan-number" ) ),
                            "The VLANs that an interface carries tagged." ) },
        readTrunk },
      { { "not-designated", "",
          Shape::setOf( Shape::of( "segment-interface" ),
                        "Interfaces that are not the designated forwarder of their segment." ) },
        readNotDesignated }
   };
}

ForwardingWords routingWords() {
   return {
      { { "router-mac", "",
          Shape::of( "station-mac",
                     "The MAC address to which hosts send packets for routing; "
                     "02:00:00:00:00:01 if left out." ) },
        readRouterMac },
      { { "hosts", "",
          Shape::mappingOf( Shape::of( "address" ), Shape::of( "host" ),
                            "Routes to hosts, by the host's address." ) },
        readHosts },
      { { "multicast-routes", "",
          Shape::setOf( Shape::of( "multicast-group" ), "Multicast groups that have a route." ) },
        readGroups }
   };
}

Table< Forwarding > const & forwardingTable() {
   static Table< Forwarding > const table{
      { "forwarding", "How the switch forwards frames, in addition to the published state." },
      joined< Forwarding >( { tunnelWords(), interfaceWords(), routingWords() } )
   };
   return table;
}

}  // namespace

std::optional< Pelk::IntfId > intfIn( Reading & reading, std::string const & text, int line ) {
   auto const intf = parsed< Pelk::IntfId >( reading, text, line );
   if ( intf && intf->kind() != Pelk::IntfId::Kind::ethernet && !isPortChannel( *intf ) ) {
      reading.problem( line, intf->stringValue() +
                                " cannot stand here; an Ethernet interface or a port channel is "
                                "expected" );
      return std::nullopt;
   }
   if ( intf ) {
      reading.use( *intf, line );
   }
   return intf;
}

std::optional< Pelk::IntfId > intfOf( Reading & reading, Value const & value ) {
   auto const text = stringOf( reading, value );
   return text ? intfIn( reading, *text, value.line ) : std::nullopt;
}

void readForwarding( Reading & reading, Value const & value,
                     std::optional< Forwarding > & forwarding ) {
   readMapping( reading, value, forwardingTable(), forwarding.emplace() );
}

std::vector< WordList > forwardingVocabulary() {
   return { forwardingTable().list(), hostTable().list() };
}

}  // namespace Scenario
