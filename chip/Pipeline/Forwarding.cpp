#include <Pipeline/Forwarding.h>

#include <Brum/PerUnitBitmap.h>
#include <Frames/Headers.h>
#include <Quelm/Error.h>

namespace Chip {

namespace {

using Pelk::IntfId;
using Pelk::IpGenAddr;

[[noreturn]] void refuse( std::string const & place, std::string const & reason ) {
   throw Quelm::Error( "forwarding: " + place + ": " + reason );
}

std::string portName( InterfaceConfig const & intf ) {
   return "unit " + std::to_string( intf.unit ) + " port " + std::to_string( intf.logicalPort );
}

// Goes through a configuration and throws at the first thing that cannot be.
class Check {
 public:
   explicit Check( ForwardingConfig const & config ) : config_( config ) {}

   void run() {
      for ( InterfaceConfig const & intf : config_.interfaces ) {
         checkInterface( intf );
      }
      for ( PortChannelConfig const & portChannel : config_.portChannels ) {
         checkPortChannel( portChannel );
      }
      for ( auto const & [ vlan, vni ] : config_.vlanToVni ) {
         checkBridgeDomain( vlan, vni );
      }
      for ( auto const & [ intfId, state ] : config_.designatedForwarder ) {
         checkDesignation( intfId, state );
      }
      checkOwnVtep( "own IPv4 VTEP address", config_.vtepIpv4, IpGenAddr::Family::ipv4 );
      checkOwnVtep( "own IPv6 VTEP address", config_.vtepIpv6, IpGenAddr::Family::ipv6 );
      checkTunnels();
      checkRoutes();
   }

 private:
   void checkInterface( InterfaceConfig const & intf ) {
      std::string const place = "interface " + intf.intfId.stringValue();
      if ( intf.intfId.isEmpty() || isPortChannel( intf.intfId ) ) {
         refuse( place, "give it the name of a physical port, as in Ethernet1" );
      }
      if ( !interfaces_.try_emplace( intf.intfId, &intf ).second ) {
         refuse( place, "it comes twice" );
      }
      if ( intf.logicalPort >= Brum::PerUnitBitmap::kBits ) {
         refuse( place, "there is no logical port " + std::to_string( intf.logicalPort ) +
                           "; a unit has ports 0 to 351" );
      }
      auto const [ other, isFree ] =
         places_.try_emplace( { intf.unit, intf.logicalPort }, intf.intfId );
      if ( !isFree ) {
         refuse( place,
                 portName( intf ) + " is that of " + other->second.stringValue() + " already" );
      }
      checkVlans( place, intf );
   }

   void checkPortChannel( PortChannelConfig const & portChannel ) {
      std::string const place = "port channel " + portChannel.intfId.stringValue();
      if ( !isPortChannel( portChannel.intfId ) ) {
         refuse( place, "give it the name of one, as in Port-Channel1" );
      }
      if ( !portChannels_.insert( portChannel.intfId ).second ) {
         refuse( place, "it comes twice" );
      }
      for ( IntfId const & member : portChannel.members ) {
         auto const found = interfaces_.find( member );
         if ( found == interfaces_.end() ) {
            refuse( place, "its member '" + member.stringValue() + "' is no interface" );
         }
         if ( found->second->isUnderlay ) {
            refuse( place, "its member " + member.stringValue() + " is an underlay interface" );
         }
         auto const [ other, isFree ] = memberOf_.try_emplace( member, portChannel.intfId );
         if ( !isFree ) {
            refuse( place, "its member " + member.stringValue() + " is one of " +
                              other->second.stringValue() + " already" );
         }
      }
      checkVlans( place, portChannel );
   }

   // Of an interface or a port channel.
   template< typename Config > void checkVlans( std::string const & place, Config const & config ) {
      AccessVlans const & vlans = config.vlans;
      if ( config.isUnderlay ) {
         underlay_.insert( config.intfId );
         if ( vlans != AccessVlans{} ) {
            refuse( place, "an underlay interface carries VXLAN only and has no VLANs" );
         }
      }
      for ( Vlan const vlan : vlans.tagged ) {
         checkVlan( place, vlan );
         if ( vlan == vlans.untagged ) {
            refuse( place, "VLAN " + std::to_string( vlan ) + " is either tagged or untagged" );
         }
      }
      if ( vlans.untagged ) {
         checkVlan( place, *vlans.untagged );
      }
   }

   void checkVlan( std::string const & place, Vlan vlan ) {
      if ( vlan == 0 || vlan > kHighestVlan ) {
         refuse( place, "there is no VLAN " + std::to_string( vlan ) + "; VLANs are 1 to 4094" );
      }
      vlans_.insert( vlan );
   }

   void checkBridgeDomain( Vlan vlan, Vni vni ) {
      std::string const place = "VLAN " + std::to_string( vlan );
      checkVlan( place, vlan );
      if ( vni == 0 || vni > kHighestVni ) {
         refuse( place, "there is no VNI " + std::to_string( vni ) + "; VNIs are 1 to 16777215" );
      }
      auto const [ other, isFree ] = vnis_.try_emplace( vni, vlan );
      if ( !isFree ) {
         refuse( place, "VNI " + std::to_string( vni ) + " is that of VLAN " +
                           std::to_string( other->second ) + " already" );
      }
   }

   void checkDesignation( IntfId const & intfId, DesignatedForwarderConfig const & state ) {
      std::string const place = "designated forwarder on '" + intfId.stringValue() + "'";
      bool const isThere = interfaces_.contains( intfId ) || portChannels_.contains( intfId );
      if ( !isThere || underlay_.contains( intfId ) ) {
         refuse( place, "it is neither an access interface nor a port channel" );
      }
      for ( auto const & [ vlan, isDesignated ] : state.perVlan ) {
         static_cast< void >( isDesignated );
         checkVlanIsKnown( place, vlan );
      }
   }

   void checkVlanIsKnown( std::string const & place, Vlan vlan ) const {
      if ( !vlans_.contains( vlan ) ) {
         refuse( place, "VLAN " + std::to_string( vlan ) +
                           " is neither on an interface nor mapped to a VNI" );
      }
   }

   static void checkOwnVtep( std::string const & place, std::optional< IpGenAddr > const & vtep,
                             IpGenAddr::Family family ) {
      if ( vtep && vtep->family() != family ) {
         refuse( place, vtep->stringValue() + " is of the other family" );
      }
      if ( vtep && !isRoutable( *vtep ) ) {
         refuse( place, vtep->stringValue() + " cannot be reached over a network" );
      }
   }

   void checkTunnels() const {
      for ( auto const & [ vtep, tunnel ] : config_.tunnels ) {
         std::string const place = "tunnel to " + vtep.stringValue();
         checkRemoteVtep( place, vtep );
         for ( IntfId const & underlay : tunnel.underlay ) {
            if ( !underlay_.contains( underlay ) ) {
               refuse( place, "'" + underlay.stringValue() + "' is no underlay interface" );
            }
         }
      }
      for ( auto const & [ vni, vteps ] : config_.floodLists ) {
         std::string const place = "flood list of VNI " + std::to_string( vni );
         if ( !vnis_.contains( vni ) ) {
            refuse( place, "no VLAN is mapped to that VNI" );
         }
         for ( IpGenAddr const & vtep : vteps ) {
            checkRemoteVtep( place, vtep );
         }
      }
   }

   void checkRemoteVtep( std::string const & place, IpGenAddr const & vtep ) const {
      if ( vtep == config_.vtepIpv4 || vtep == config_.vtepIpv6 ) {
         refuse( place, vtep.stringValue() + " is this switch itself" );
      }
   }

   void checkRoutes() const {
      for ( auto const & [ host, route ] : config_.hostRoutes ) {
         checkVlanIsKnown( "host route to " + host.stringValue(), route.vlan );
      }
      for ( auto const & [ group, vlans ] : config_.multicastRoutes ) {
         std::string const place = "multicast route of " + group.stringValue();
         if ( !isMulticast( group ) ) {
            refuse( place, "it is no multicast address" );
         }
         for ( Vlan const vlan : vlans ) {
            checkVlanIsKnown( place, vlan );
         }
      }
   }

   ForwardingConfig const & config_;
   std::map< IntfId, InterfaceConfig const * > interfaces_;
   std::map< std::pair< U16, U16 >, IntfId > places_;
   std::set< IntfId > portChannels_;
   std::map< IntfId, IntfId > memberOf_;
   std::set< IntfId > underlay_;
   std::set< Vlan > vlans_;
   std::map< Vni, Vlan > vnis_;
};

}  // namespace

void checkForwarding( ForwardingConfig const & config ) {
   Check( config ).run();
}

}  // namespace Chip
