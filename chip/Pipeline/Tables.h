// A ForwardingConfig in the form in which frames look things up: everything by small index or flat
// hash table, nothing by name.
//
// Built as a whole, then never changed. Indices mean something together with the tables they are
// from; MacTable.h says how learned addresses get from old tables into new ones.
#pragma once

#include <array>
#include <limits>

#include <FieldProcessor/Unit.h>
#include <HashMap/HashMap.h>
#include <Pipeline/Encapsulation.h>
#include <Pipeline/Forwarding.h>
#include <VornalTypes/VornalPort.h>

namespace Chip {

using Index = U16;
inline constexpr Index kNone = std::numeric_limits< Index >::max();

// A port channel, or a physical port that is in none.
struct ForwardingInterface {
   Pelk::IntfId intfId{};
   std::vector< VornalTypes::VornalPort > ports{};
   bool isUnderlay = false;
   Vlan untagged = 0;  // of frames without tag; 0 for none
   MacAddress neighbour{};
};

// An interface as part of a bridge domain.
struct DomainInterface {
   Index interface = kNone;
   bool isTagged = false;
   bool isDesignated = true;
};

struct BridgeDomain {
   Vlan vlan = 0;
   Vni vni = 0;  // 0 for none
   std::vector< DomainInterface > interfaces{};
   std::vector< Index > floodList{};  // of tunnels

   // The part of that interface, or nullptr.
   DomainInterface const * find( Index interface ) const;
};

struct Tunnel {
   Pelk::IpGenAddr remoteVtep{};
   U32 gport = 0;                          // 0: frames are sent there, and not accepted from there
   std::vector< Index > underlay{};        // interfaces that have a port
   std::vector< Index > shared{};          // interfaces of segments that the VTEP is on as well
   std::optional< OuterHeaders > outer{};  // none without an own address of the family
};

struct Route {
   Index domain = kNone;
   MacAddress mac{};
};

// A unit of the switch, with the interface at each of its ports.
struct UnitTables {
   U16 number = 0;
   U16 modId = 0;
   Group const * ingress = nullptr;  // nullptr when the unit has no such group
   Group const * egress = nullptr;
   std::array< Index, Brum::PerUnitBitmap::kBits > interfaces{};
};

struct Tables {
   // As forwardingIs() of the Pipeline.
   Tables( Units const & all, ForwardingConfig const & forwarding );
   Tables( Tables const & ) = delete;
   Tables & operator=( Tables const & ) = delete;
   ~Tables() = default;

   // The unit's position in `units`, or kNone.
   Index unitOf( U16 number ) const;
   // The bridge domain, or kNone.
   Index domainOf( Vlan vlan ) const { return domainOfVlan[ vlan ]; }

   ForwardingConfig const config;
   std::vector< UnitTables > units;
   std::vector< ForwardingInterface > interfaces;
   std::vector< BridgeDomain > domains;
   std::vector< Tunnel > tunnels;
   std::array< Index, 4096 > domainOfVlan{};
   HashMap< Vni, Index > domainOfVni;
   HashMap< Pelk::IpGenAddr, Index > tunnelOfVtep;
   HashMap< Pelk::IpGenAddr, Route > hostRoutes;
   HashMap< Pelk::IpGenAddr, std::set< Vlan > const * > multicastRoutes;  // point into `config`

 private:
   void addUnits( Units const & all );
   void addInterfaces();
   void addToDomain( Vlan vlan, Index interface, bool isTagged );
   void addPort( InterfaceConfig const & intf, Index interface );
   template< typename Config > Index addInterface( Config const & of );
   void addDomains();
   void addTunnels();
   void addSegments();
   void restrictUnderlay( Tunnel & tunnel, std::vector< Pelk::IntfId > const & named ) const;
   void addRoutes();
   Index obtainDomain( Vlan vlan );
   Index obtainTunnel( Pelk::IpGenAddr const & vtep );
   bool isDesignated( Pelk::IntfId const & intfId, Vlan vlan ) const;
};

}  // namespace Chip
