#include <Scenario/Parts.h>

namespace Scenario {

namespace {

using Chip::Vlan;

constexpr U32 kHighestVlan = 4094;
constexpr U32 kHighestVni = 0xffffff;

auto const addressIn = parsed< Pelk::IpGenAddr >;

std::optional< Vlan > vlanOf( Reading & reading, Value const & value ) {
   auto const vlan = numberOf( reading, value, 1, kHighestVlan );
   return vlan ? std::optional( static_cast< Vlan >( *vlan ) ) : std::nullopt;
}

std::optional< Vlan > vlanIn( Reading & reading, std::string const & text, int line ) {
   auto const vlan = numberIn( text );
   if ( vlan && *vlan >= 1 && *vlan <= kHighestVlan ) {
      return static_cast< Vlan >( *vlan );
   }
   reading.problem( line,
                    "VLAN is " + inQuotes( text ) + "; a whole number from 1 to 4094 is expected" );
   return std::nullopt;
}

// --- what the switch is called

void readVtepAddresses( Reading & reading, Value const & value, Forwarding & forwarding ) {
   for ( auto const & [ address, line ] : distinctOf( reading, value, addressIn ) ) {
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
      valueOf< Chip::MacAddress >( reading, value ).value_or( forwarding.config.routerMac );
}

// --- interfaces and VLANs

void readUnderlay( Reading & reading, Value const & value, Forwarding & forwarding ) {
   for ( auto const & [ intf, line ] : distinctOf( reading, value, intfIn ) ) {
      forwarding.underlay.insert( intf );
   }
}

void readVlans( Reading & reading, Value const & value, Forwarding & forwarding ) {
   for ( auto const & [ vlan, about ] : keyedOf( reading, value, vlanIn ) ) {
      if ( auto const vni = numberOf( reading, about, 1, kHighestVni ) ) {
         forwarding.config.vlanToVni[ vlan ] = *vni;
      }
   }
}

void readAccess( Reading & reading, Value const & value, Forwarding & forwarding ) {
   for ( auto const & [ intf, about ] : keyedOf( reading, value, intfIn ) ) {
      forwarding.vlans[ intf ].untagged = vlanOf( reading, about );
   }
}

void readTrunk( Reading & reading, Value const & value, Forwarding & forwarding ) {
   for ( auto const & [ intf, about ] : keyedOf( reading, value, intfIn ) ) {
      for ( auto const & [ vlan, line ] : distinctOf( reading, about, vlanIn ) ) {
         forwarding.vlans[ intf ].tagged.insert( vlan );
      }
   }
}

void readNotDesignated( Reading & reading, Value const & value, Forwarding & forwarding ) {
   for ( auto const & [ intf, line ] : distinctOf( reading, value, intfIn ) ) {
      forwarding.config.designatedForwarder[ intf ].allVlans = false;
   }
}

// --- routes

void readRouteVlan( Reading & reading, Value const & value, Chip::HostRoute & route ) {
   route.vlan = vlanOf( reading, value ).value_or( 0 );
}

void readRouteMac( Reading & reading, Value const & value, Chip::HostRoute & route ) {
   route.mac = valueOf< Chip::MacAddress >( reading, value ).value_or( Chip::MacAddress() );
}

Table< Chip::HostRoute > const & hostTable() {
   static Table< Chip::HostRoute > const table{ "host",
                                                { { { "vlan", "vlan: 10" }, readRouteVlan },
                                                  { { "mac", "mac: 00:00:5e:00:53:01" },
                                                    readRouteMac } } };
   return table;
}

void readHosts( Reading & reading, Value const & value, Forwarding & forwarding ) {
   for ( auto const & [ host, about ] : keyedOf( reading, value, addressIn ) ) {
      readMapping( reading, about, hostTable(), forwarding.config.hostRoutes[ host ] );
   }
}

void readGroups( Reading & reading, Value const & value, Forwarding & forwarding ) {
   for ( auto const & [ group, line ] : distinctOf( reading, value, addressIn ) ) {
      forwarding.config.multicastRoutes[ group ] = {};
   }
}

Table< Forwarding > const & forwardingTable() {
   static Table< Forwarding > const table{
      "forwarding",
      { { { "vtep-addresses", "vtep-addresses: [ 10.0.0.1 ]" }, readVtepAddresses },
        { { "underlay", "underlay: [ Ethernet49 ]" }, readUnderlay },
        { { "vlans", "vlans: { 10: 10100 }" }, readVlans },
        { { "access", "" }, readAccess },
        { { "trunk", "" }, readTrunk },
        { { "not-designated", "" }, readNotDesignated },
        { { "router-mac", "" }, readRouterMac },
        { { "hosts", "" }, readHosts },
        { { "multicast-routes", "" }, readGroups } }
   };
   return table;
}

}  // namespace

std::optional< Pelk::IntfId > intfIn( Reading & reading, std::string const & text, int line ) {
   auto const intf = parsed< Pelk::IntfId >( reading, text, line );
   if ( intf ) {
      reading.use( *intf, line );
   }
   return intf;
}

void readForwarding( Reading & reading, Value const & value,
                     std::optional< Forwarding > & forwarding ) {
   readMapping( reading, value, forwardingTable(), forwarding.emplace() );
}

void readDesignated( Reading & reading, Value const & value, DesignatedForwarder & designated ) {
   for ( auto const & [ intf, about ] : keyedOf( reading, value, intfIn ) ) {
      designated.isDesignated[ intf ] = yesOrNoOf( reading, about ).value_or( true );
   }
}

std::vector< WordList > forwardingVocabulary() {
   return { forwardingTable().list(), hostTable().list() };
}

}  // namespace Scenario
