#include <Frames/Reach.h>

#include <algorithm>

namespace Reference {

// --- Places

bool Reach::isTunnel( Vtep const & vtep ) const {
   Facts const & facts = device_.facts();
   return facts.virtualPort.contains( vtep ) ||
          std::any_of( facts.otherKey.begin(), facts.otherKey.end(),
                       [ & ]( auto const & one ) { return one.first.vtep == vtep; } );
}

bool Reach::isReachable( Vtep const & vtep ) const {
   return isTunnel( vtep ) && ( vtep.isIpv4() ? forwarding_.hasIpv4 : forwarding_.hasIpv6 );
}

bool Reach::isPlace( Place const & place ) const {
   if ( auto const * const vtep = std::get_if< Vtep >( &place ) ) {
      return isTunnel( *vtep );
   }
   auto const & intf = std::get< Interface >( place );
   return intf.isPortChannel() || canLeaveBy( device_.facts(), intf );
}

void Reach::stateChanged() {
   flooded_.clear();
   std::erase_if( stations_, [ this ]( auto const & one ) { return !isPlace( one.second ); } );
}

bool Reach::isKnown( Mac station ) const {
   return std::any_of( stations_.begin(), stations_.end(),
                       [ & ]( auto const & one ) { return one.first.second == station; } );
}

// --- One frame

// Whether the switch takes the frame at all.
bool Reach::admit( Frame & frame ) const {
   if ( frame.sender ) {
      auto const vlan =
         std::find_if( forwarding_.vnis.begin(), forwarding_.vnis.end(),
                       [ & ]( auto const & one ) { return one.second == frame.vni; } );
      if ( vlan == forwarding_.vnis.end() || !isReachable( *frame.sender ) ) {
         return false;
      }
      frame.vlan = vlan->first;
      return true;
   }
   auto const carried = forwarding_.vlans.find( frame.arrival );
   return carried != forwarding_.vlans.end() && carried->second.contains( frame.vlan );
}

Places Reach::take( Sending & sending ) {
   Frame & frame = sending.frame;
   if ( !admit( frame ) ) {
      return {};
   }
   Place const from = frame.sender ? Place( *frame.sender ) : Place( frame.arrival );
   stations_.try_emplace( { frame.vlan, sending.source }, from );
   switch ( sending.to ) {
   case To::everybody: frame.kind = "broadcast"; break;
   case To::group: frame.kind = "l2-multicast"; break;
   case To::routedGroup: frame.kind = "routed-multicast"; break;
   case To::station: return toStation( frame, { frame.vlan, sending.station }, false );
   case To::router: return toStation( frame, { sending.routedInto, sending.station }, true );
   }
   return flooded( frame );
}

// To a station that is not known, only what is not routed goes: everywhere.
Places Reach::toStation( Frame & frame, Station const & station, bool isRouted ) {
   frame.kind = isRouted ? "routed-unicast" : "known-unicast";
   auto const known = stations_.find( station );
   if ( known == stations_.end() ) {
      frame.kind = isRouted ? "routed-unicast" : "unknown-unicast";
      return isRouted ? Places() : flooded( frame );
   }
   Place const & place = known->second;
   bool const isBetweenVteps = frame.sender && std::holds_alternative< Vtep >( place );
   bool const isBack = !isRouted && !frame.sender && place == Place( frame.arrival );
   return isBetweenVteps || isBack ? Places() : toPlace( place );
}

Places Reach::toPlace( Place const & place ) const {
   if ( auto const * const vtep = std::get_if< Vtep >( &place ) ) {
      return isReachable( *vtep ) ? Places{ {}, { *vtep } } : Places();
   }
   auto const & intf = std::get< Interface >( place );
   return canLeaveBy( device_.facts(), intf ) ? Places{ { intf }, {} } : Places();
}

Places Reach::flooded( Frame const & frame ) {
   auto const [ found, isNew ] =
      flooded_.try_emplace( { frame.sender.has_value(), { frame.vlan, frame.arrival } } );
   if ( isNew ) {
      auto const interfaces = floodedTo( device_.facts(), forwarding_, frame );
      found->second.interfaces.assign( interfaces.begin(), interfaces.end() );
      if ( forwarding_.vnis.contains( frame.vlan ) ) {
         auto const vteps = floodedThrough( device_.facts(), forwarding_, frame );
         found->second.vteps.assign( vteps.begin(), vteps.end() );
      }
   }
   return found->second;
}

}  // namespace Reference
