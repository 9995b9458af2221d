#include <Writer.h>

#include <algorithm>
#include <iterator>

#include <Names.h>

namespace Moves {

namespace {

// Removes a member; its key, if there is any member.
template< typename Map > std::optional< std::string > takeKey( Map & map, unsigned which ) {
   if ( map.empty() ) {
      return {};
   }
   auto const at = std::next( map.begin(), static_cast< long >( which % map.size() ) );
   std::string const key = at->first;
   map.erase( at );
   return key;
}

// Every pair of a key and one of its values.
using Pairs = std::vector< std::pair< std::string, std::string > >;
Pairs pairsOf( std::map< std::string, std::set< std::string > > const & map ) {
   Pairs all;
   for ( auto const & [ key, values ] : map ) {
      for ( std::string const & value : values ) {
         all.emplace_back( key, value );
      }
   }
   return all;
}

}  // namespace

Writer::Writer( World const & world ) : world_( world ) {
   std::string const last = std::to_string( world.units - 1 ) + "/";
   port_ = { { "Ethernet1", "0/1" },
             { "Ethernet2", last + "2" },
             { "Ethernet3", "0/3" },
             { "Ethernet4", last + "4" },
             { "Ethernet5", "0/5" } };
   portChannelOf_ = { { "Ethernet3", "Port-Channel1" }, { "Ethernet4", "Port-Channel1" } };
   tunnels_[ "Vxlan1" ];
}

// Those that make rules are there more often.
std::vector< Writer::Kind > const & Writer::table() {
   static std::vector< Kind > const all{
      &Writer::vtepJoins,       &Writer::vtepJoins,       &Writer::vtepJoins,
      &Writer::vtepJoins,       &Writer::vtepJoins,       &Writer::virtualPortIs,
      &Writer::virtualPortIs,   &Writer::virtualPortIs,   &Writer::virtualPortIs,
      &Writer::vtepLeaves,      &Writer::virtualPortGoes, &Writer::segmentGoes,
      &Writer::emptySegmentIs,  &Writer::segmentReplaced, &Writer::portIs,
      &Writer::portIs,          &Writer::portGoes,        &Writer::memberJoins,
      &Writer::memberJoins,     &Writer::memberLeaves,    &Writer::vniIs,
      &Writer::vniIs,           &Writer::vniIs,           &Writer::vniGoes,
      &Writer::tunnelGoes,      &Writer::tunnelReplaced,  &Writer::othersHold,
      &Writer::othersHold,      &Writer::grantIs,         &Writer::grantGoes,
      &Writer::allocatorPauses, &Writer::designatedIs,    &Writer::hostSends,
      &Writer::hostIsSentTo,    &Writer::passRuns,        &Writer::otherKeyIs,
      &Writer::otherKeyGoes,    &Writer::callFails,       &Writer::entryIsRefused
   };
   return all;
}

Writer::Yaml Writer::step( Move const & move ) {
   return ( this->*pick( table(), move.kind ) )( move );
}

unsigned Writer::kinds() {
   return static_cast< unsigned >( table().size() );
}

// --- Segments and VTEPs

Writer::Yaml Writer::vtepJoins( Move const & move ) {
   Name const & segment = segmentOf( move );
   Name const & vtep = pick( kVteps, move.who );
   if ( !segments_[ segment ].insert( vtep ).second ) {
      return {};
   }
   return "publish: { segments: { " + segment + ": [ '" + vtep + "' ] } }";
}

Writer::Yaml Writer::vtepLeaves( Move const & move ) {
   Pairs const all = pairsOf( segments_ );
   if ( all.empty() ) {
      return {};
   }
   auto const [ segment, vtep ] = pick( all, move.who );
   segments_[ segment ].erase( vtep );
   grantIsUncertain( vtep );
   return "withdraw: { segments: { " + segment + ": [ '" + vtep + "' ] } }";
}

Writer::Yaml Writer::segmentGoes( Move const & move ) {
   for ( Name const & vtep : kVteps ) {
      grantIsUncertain( vtep );
   }
   auto const segment = takeKey( segments_, move.place );
   return segment ? Yaml( "withdraw: { segments: [ " + *segment + " ] }" ) : Yaml();
}

Writer::Yaml Writer::segmentReplaced( Move const & move ) {
   Name const & segment = segmentOf( move );
   std::set< Name > vteps;
   std::string list;
   for ( unsigned n = 0; n < kVteps.size(); ++n ) {
      grantIsUncertain( kVteps.at( n ) );
      if ( ( move.who >> n & 1 ) != 0 ) {
         vteps.insert( kVteps.at( n ) );
         list += ( list.empty() ? "'" : ", '" ) + kVteps.at( n ) + "'";
      }
   }
   segments_[ segment ] = vteps;
   return "replace: { segments: { " + segment + ": [ " + list + " ] } }";
}

Writer::Yaml Writer::emptySegmentIs( Move const & move ) {
   Name const & segment = segmentOf( move );
   if ( !segments_.try_emplace( segment ).second ) {
      return {};
   }
   return "publish: { segments: { " + segment + ": [] } }";
}

Writer::Yaml Writer::virtualPortIs( Move const & move ) {
   Name const & vtep = pick( kVteps, move.who );
   unsigned const number = pick( kVirtualPorts, move.number );
   auto const present = virtualPort_.find( vtep );
   if ( isVirtualPortTaken( vtep, number ) ||
        ( present != virtualPort_.end() && present->second == number ) ) {
      return {};
   }
   virtualPort_[ vtep ] = number;
   grantIsUncertain( vtep );
   return "publish: { vteps: { '" + vtep + "': { virtual-port: " + std::to_string( number ) +
          " } } }";
}

Writer::Yaml Writer::virtualPortGoes( Move const & move ) {
   auto const vtep = takeKey( virtualPort_, move.who );
   if ( !vtep ) {
      return {};
   }
   grantIsUncertain( *vtep );
   return "withdraw: { vteps: [ '" + *vtep + "' ] }";
}

bool Writer::isVirtualPortTaken( Name const & key, unsigned number ) const {
   auto const isTaken = [ & ]( auto const & one ) {
      return one.first != key && ( one.second & 0xffff ) == ( number & 0xffff );
   };
   return std::any_of( virtualPort_.begin(), virtualPort_.end(), isTaken ) ||
          std::any_of( otherKey_.begin(), otherKey_.end(), isTaken );
}

// A VTEP under another key than its usual one.
Writer::Yaml Writer::otherKeyIs( Move const & move ) {
   Name const & vtep = pick( kVteps, move.who );
   Name const key = vtep + pick( kOtherKeys, move.place );
   unsigned const number = pick( kVirtualPorts, move.number );
   if ( world_.isCalm || isVirtualPortTaken( key, number ) ) {
      return {};
   }
   otherKey_[ key ] = number;
   grantIsUncertain( vtep );
   return "set: { entity: /hardware/vornal/vp/status/vornalL3, attribute: remoteVport, key: '" +
          key + "', value: " + std::to_string( number ) + " }";
}

Writer::Yaml Writer::otherKeyGoes( Move const & move ) {
   auto const key = takeKey( otherKey_, move.who );
   if ( !key ) {
      return {};
   }
   grantIsUncertain( key->substr( 0, key->find_first_of( "@#" ) ) );
   return "delete: { entity: /hardware/vornal/vp/status/vornalL3, attribute: remoteVport, key: '" +
          *key + "' }";
}

Writer::Name const & Writer::segmentOf( Move const & move ) const {
   return world_.isCalm ? pick( kSegments, move.place ) : pick( kAllSegments, move.place );
}

// --- Interfaces

Writer::Yaml Writer::portIs( Move const & move ) {
   Name const & intf = pick( kInterfaces, move.place );
   unsigned const port = world_.isCalm ? ++freshPort_ : pick( kPorts, move.number );
   std::string const unit = std::to_string( move.who % world_.units );
   port_[ intf ] = unit + "/" + std::to_string( port );
   return "publish: { interfaces: { " + intf + ": { unit: " + unit +
          ", port: " + std::to_string( port ) + " } } }";
}

Writer::Yaml Writer::portGoes( Move const & move ) {
   auto const intf = takeKey( port_, move.place );
   return intf ? Yaml( "withdraw: { interfaces: [ " + *intf + " ] }" ) : Yaml();
}

Writer::Yaml Writer::memberJoins( Move const & move ) {
   Name const & member = pick( kMembers, move.place );
   Name const & portChannel = pick( kPortChannels, move.number );
   auto const present = portChannelOf_.find( member );
   if ( present != portChannelOf_.end() && present->second == portChannel ) {
      return {};
   }
   portChannelOf_[ member ] = portChannel;
   return "publish: { port-channels: { " + portChannel + ": [ " + member + " ] } }";
}

Writer::Yaml Writer::memberLeaves( Move const & move ) {
   if ( portChannelOf_.empty() ) {
      return {};
   }
   auto const of = portChannelOf_;
   auto const member = takeKey( portChannelOf_, move.place );
   return "withdraw: { port-channels: { " + of.at( *member ) + ": [ " + *member + " ] } }";
}

bool Writer::canForward() const {
   std::set< std::string > ports;
   return std::all_of( port_.begin(), port_.end(), [ & ]( auto const & one ) {
      return one.second.ends_with( "/1023" ) || ports.insert( one.second ).second;
   } );
}

bool Writer::hasPort( Name const & intf ) const {
   return std::any_of( port_.begin(), port_.end(), [ & ]( auto const & one ) {
      auto const portChannel = portChannelOf_.find( one.first );
      bool const isIt = one.first == intf ||
                        ( portChannel != portChannelOf_.end() && portChannel->second == intf );
      return isIt && !one.second.ends_with( "/1023" );
   } );
}

// --- Tunnel interfaces

Writer::Yaml Writer::vniIs( Move const & move ) {
   Name const & tunnel = tunnelOf( move );
   Name const & vrf = pick( kVrfs, move.who );
   Name const vni = world_.isCalm ? std::to_string( ++freshVni_ ) : pick( kVnis, move.number );
   tunnels_[ tunnel ].insert( vrf );
   return "publish: { tunnel-interfaces: { " + tunnel + ": { vrf-vni: { " + vrf + ": " + vni +
          " } } } }";
}

Writer::Yaml Writer::vniGoes( Move const & move ) {
   Pairs const all = pairsOf( tunnels_ );
   if ( all.empty() ) {
      return {};
   }
   auto const [ tunnel, vrf ] = pick( all, move.who );
   tunnels_[ tunnel ].erase( vrf );
   return "withdraw: { tunnel-interfaces: { " + tunnel + ": [ " + vrf + " ] } }";
}

Writer::Yaml Writer::tunnelGoes( Move const & move ) {
   auto const tunnel = takeKey( tunnels_, move.place );
   return tunnel ? Yaml( "withdraw: { tunnel-interfaces: [ " + *tunnel + " ] }" ) : Yaml();
}

Writer::Yaml Writer::tunnelReplaced( Move const & move ) {
   if ( world_.isCalm ) {
      return {};
   }
   Name const & tunnel = tunnelOf( move );
   Name const & vrf = pick( kVrfs, move.who );
   tunnels_[ tunnel ] = { vrf };
   return "replace: { tunnel-interfaces: { " + tunnel + ": { vrf-vni: { " + vrf + ": " +
          pick( kVnis, move.number ) + " } } } }";
}

Writer::Name const & Writer::tunnelOf( Move const & move ) const {
   return world_.isCalm ? kTunnels[ 0 ] : pick( kTunnels, move.place );
}

}  // namespace Moves
