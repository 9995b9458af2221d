#include <Pipeline/Tables.h>

#include <FieldProcessor/Gport.h>
#include <Quelm/Error.h>

namespace Chip {

namespace {

Group const * groupOf( Unit const & unit, Vornal::TcamGroupAssignment assignment ) {
   auto const found = unit.groups().find( assignment );
   return found == unit.groups().end() ? nullptr : &found->second;
}

// Throws unless it can be forwarded like this.
ForwardingConfig const & checked( ForwardingConfig const & config ) {
   checkForwarding( config );
   return config;
}

}  // namespace

DomainInterface const * BridgeDomain::find( Index interface ) const {
   auto const found =
      std::find_if( interfaces.begin(), interfaces.end(),
                    [ & ]( DomainInterface const & part ) { return part.interface == interface; } );
   return found == interfaces.end() ? nullptr : &*found;
}

Tables::Tables( Units const & all, ForwardingConfig const & forwarding )
      : config( checked( forwarding ) ) {
   domainOfVlan.fill( kNone );
   addUnits( all );
   addDomains();
   addInterfaces();
   addTunnels();
   addSegments();
   addRoutes();
}

Index Tables::unitOf( U16 number ) const {
   for ( std::size_t n = 0; n < units.size(); ++n ) {
      if ( units[ n ].number == number ) {
         return static_cast< Index >( n );
      }
   }
   return kNone;
}

void Tables::addUnits( Units const & all ) {
   for ( auto const & [ number, unit ] : all ) {
      UnitTables & tables = units.emplace_back();
      tables.number = unit.number();
      tables.modId = unit.modId();
      tables.ingress = groupOf( unit, Vornal::kIfpLocalBiasGroup );
      tables.egress = groupOf( unit, Vornal::kEfpLocalBiasGroup );
      tables.interfaces.fill( kNone );
   }
}

void Tables::addDomains() {
   for ( auto const & [ vlan, vni ] : config.vlanToVni ) {
      Index const domain = obtainDomain( vlan );
      domains[ domain ].vni = vni;
      domainOfVni[ vni ] = domain;
   }
}

void Tables::addInterfaces() {
   std::map< Pelk::IntfId, Index > portChannelOf;
   for ( PortChannelConfig const & portChannel : config.portChannels ) {
      Index const interface = addInterface( portChannel );
      for ( Pelk::IntfId const & member : portChannel.members ) {
         portChannelOf[ member ] = interface;
      }
   }
   for ( InterfaceConfig const & intf : config.interfaces ) {
      auto const portChannel = portChannelOf.find( intf.intfId );
      if ( portChannel != portChannelOf.end() ) {
         addPort( intf, portChannel->second );
         continue;
      }
      addPort( intf, addInterface( intf ) );
   }
}

// Of an interface or a port channel.
template< typename Config > Index Tables::addInterface( Config const & of ) {
   auto const index = static_cast< Index >( interfaces.size() );
   ForwardingInterface & interface = interfaces.emplace_back();
   interface.intfId = of.intfId;
   interface.isUnderlay = of.isUnderlay;
   interface.neighbour = of.neighbour;
   interface.untagged = of.vlans.untagged.value_or( 0 );
   for ( Vlan const vlan : of.vlans.tagged ) {
      addToDomain( vlan, index, true );
   }
   if ( of.vlans.untagged ) {
      addToDomain( *of.vlans.untagged, index, false );
   }
   return index;
}

void Tables::addToDomain( Vlan vlan, Index interface, bool isTagged ) {
   bool const designated = isDesignated( interfaces[ interface ].intfId, vlan );
   domains[ obtainDomain( vlan ) ].interfaces.push_back( { interface, isTagged, designated } );
}

void Tables::addPort( InterfaceConfig const & intf, Index interface ) {
   Index const unit = unitOf( intf.unit );
   if ( unit == kNone ) {
      throw Quelm::Error( "forwarding: interface " + intf.intfId.stringValue() +
                          ": the switch has no unit " + std::to_string( intf.unit ) );
   }
   units[ unit ].interfaces[ intf.logicalPort ] = interface;
   interfaces[ interface ].ports.emplace_back( intf.unit, intf.logicalPort, units[ unit ].modId );
}

bool Tables::isDesignated( Pelk::IntfId const & intfId, Vlan vlan ) const {
   auto const state = config.designatedForwarder.find( intfId );
   if ( state == config.designatedForwarder.end() ) {
      return true;
   }
   auto const forVlan = state->second.perVlan.find( vlan );
   return forVlan == state->second.perVlan.end() ? state->second.allVlans : forVlan->second;
}

Index Tables::obtainDomain( Vlan vlan ) {
   if ( domainOfVlan[ vlan ] == kNone ) {
      domainOfVlan[ vlan ] = static_cast< Index >( domains.size() );
      domains.emplace_back().vlan = vlan;
   }
   return domainOfVlan[ vlan ];
}

void Tables::addTunnels() {
   for ( auto const & [ vtep, tunnel ] : config.tunnels ) {
      Tunnel & entry = tunnels[ obtainTunnel( vtep ) ];
      entry.gport = vxlanGportOf( tunnel.vpIndex );
      if ( !tunnel.underlay.empty() ) {
         restrictUnderlay( entry, tunnel.underlay );
      }
   }
   for ( auto const & [ vni, vteps ] : config.floodLists ) {
      for ( Pelk::IpGenAddr const & vtep : vteps ) {
         domains[ *valueIn( domainOfVni, vni ) ].floodList.push_back( obtainTunnel( vtep ) );
      }
   }
}

// The tunnel leads over those underlay interfaces only.
void Tables::restrictUnderlay( Tunnel & tunnel, std::vector< Pelk::IntfId > const & named ) const {
   std::erase_if( tunnel.underlay, [ & ]( Index interface ) {
      Pelk::IntfId const & intfId = interfaces[ interface ].intfId;
      return std::find( named.begin(), named.end(), intfId ) == named.end();
   } );
}

void Tables::addSegments() {
   for ( std::size_t n = 0; n < interfaces.size(); ++n ) {
      auto const segment = config.sharedWith.find( interfaces[ n ].intfId );
      if ( segment == config.sharedWith.end() ) {
         continue;
      }
      for ( Pelk::IpGenAddr const & vtep : segment->second ) {
         if ( Index const * const tunnel = valueIn( tunnelOfVtep, vtep ) ) {
            tunnels[ *tunnel ].shared.push_back( static_cast< Index >( n ) );
         }
      }
   }
}

// The tunnel to that VTEP; a new one leads over all underlay interfaces.
Index Tables::obtainTunnel( Pelk::IpGenAddr const & vtep ) {
   if ( Index const * const known = valueIn( tunnelOfVtep, vtep ) ) {
      return *known;
   }
   auto const index = static_cast< Index >( tunnels.size() );
   Tunnel & tunnel = tunnels.emplace_back();
   tunnel.remoteVtep = vtep;
   for ( std::size_t n = 0; n < interfaces.size(); ++n ) {
      if ( interfaces[ n ].isUnderlay && !interfaces[ n ].ports.empty() ) {
         tunnel.underlay.push_back( static_cast< Index >( n ) );
      }
   }
   bool const isIpv4 = vtep.family() == Pelk::IpGenAddr::Family::ipv4;
   if ( auto const & own = isIpv4 ? config.vtepIpv4 : config.vtepIpv6 ) {
      tunnel.outer.emplace( config.routerMac, *own, vtep );
   }
   tunnelOfVtep[ vtep ] = index;
   return index;
}

void Tables::addRoutes() {
   for ( auto const & [ host, route ] : config.hostRoutes ) {
      hostRoutes[ host ] = { obtainDomain( route.vlan ), route.mac };
   }
   for ( auto const & [ group, vlans ] : config.multicastRoutes ) {
      multicastRoutes[ group ] = &vlans;
   }
}

}  // namespace Chip
