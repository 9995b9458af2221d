#include <Frames/Frames.h>

#include <algorithm>

namespace Reference {

// --- By the state

namespace {

bool canLeaveBy( Facts const & facts, Interface const & intf ) {
   auto const ports = facts.portsOf( intf );
   return std::any_of( ports.begin(), ports.end(),
                       []( Port const & port ) { return port.number != Port::kInvalid; } );
}

}  // namespace

std::set< Interface > floodedTo( Facts const & facts, Forwarding const & forwarding,
                                 Frame const & frame ) {
   std::set< Interface > reached;
   for ( auto const & [ intf, vlans ] : forwarding.vlans ) {
      bool const isDesignated = !frame.sender || !forwarding.notDesignated.contains( intf );
      bool const isMember = facts.portChannelOf.contains( intf );  // the port channel forwards
      if ( vlans.contains( frame.vlan ) && intf != frame.arrival && isDesignated && !isMember &&
           canLeaveBy( facts, intf ) ) {
         reached.insert( intf );
      }
   }
   return reached;
}

std::set< Interface > mayReach( Facts const & facts, Forwarding const & forwarding,
                                Frame const & frame ) {
   std::set< Interface > reached = floodedTo( facts, forwarding, frame );
   if ( frame.sender ) {
      for ( Interface const & shared : facts.sharedWith( *frame.sender ) ) {
         reached.erase( shared );
      }
   }
   return reached;
}

std::set< Vtep > floodedThrough( Facts const & facts, Forwarding const & forwarding,
                                 Frame const & frame ) {
   std::set< Vtep > reached;
   if ( !frame.sender ) {
      for ( auto const & [ vtep, virtualPort ] : facts.virtualPort ) {
         bool const isIpv4 = vtep.address().find( ':' ) == std::string::npos;
         if ( isIpv4 ? forwarding.hasIpv4 : forwarding.hasIpv6 ) {
            reached.insert( vtep );
         }
      }
   }
   return reached;
}

// --- By the rules

namespace {

bool compares( Rule const & rule, char const * qualifier, unsigned data ) {
   auto const found = rule.qualifiers.find( qualifier );
   return found == rule.qualifiers.end() ||
          found->second.starts_with( std::to_string( data ) + " " );
}

// The number of the frame's kind in the chip.
unsigned resolutionOf( Frame const & frame ) {
   return frame.kind == "known-unicast"      ? 4
          : frame.kind == "routed-unicast"   ? 10
          : frame.kind == "routed-multicast" ? 12
                                             : 0;
}

bool isMet( Rule const & rule, Switch const & device, Frame const & frame ) {
   return compares( rule, "SrcVxlanGport", device.facts().gportOf( *frame.sender ) ) &&
          compares( rule, "PacketRes", resolutionOf( frame ) ) &&
          compares( rule, "VxlanNetworkId", frame.vni );
}

// The highest priority wins; none that was set is as high as the group's own. Of equals, the one
// that was obtained first wins.
unsigned rankOf( Rule const & rule ) {
   constexpr unsigned kHighest = 1000;
   return rule.priority == "default" ? kHighest
                                     : static_cast< unsigned >( std::stoul( rule.priority ) );
}

Rule const * winnerOn( Switch const & device, Frame const & frame, unsigned unit ) {
   Rule const * winner = nullptr;
   for ( auto const & [ id, rule ] : device.rules() ) {
      if ( rule.unit == unit && rule.group == Group::ingress && rule.isWritten &&
           isMet( rule, device, frame ) && ( !winner || rankOf( rule ) > rankOf( *winner ) ) ) {
         winner = &rule;
      }
   }
   return winner;
}

bool isAmong( std::string const & port, std::string const & ports ) {
   return ( " " + ports + " " ).find( " " + port + " " ) != std::string::npos;
}

}  // namespace

bool isKeptBack( Switch const & device, Frame const & frame, unsigned unit, unsigned port ) {
   Rule const * const winner = frame.sender ? winnerOn( device, frame, unit ) : nullptr;
   if ( !winner ) {
      return false;
   }
   if ( auto const mask = winner->actions.find( "EgressMask" ); mask != winner->actions.end() ) {
      return isAmong( std::to_string( port ), mask->second );
   }
   auto const mark = winner->actions.find( "NewClassId" );
   if ( mark == winner->actions.end() ) {
      return false;
   }
   std::string const place = "module " + under( device.device().moduleOfUnit.at( unit ), kExact ) +
                             " port " + under( port, kExact );
   return std::any_of( device.rules().begin(), device.rules().end(), [ & ]( auto const & one ) {
      Rule const & rule = one.second;
      return rule.unit == unit && rule.group == Group::egress && rule.isWritten &&
             rule.qualifiers.at( "DstPort" ) == place &&
             compares( rule, "IngressClassField",
                       static_cast< unsigned >( std::stoul( mark->second ) ) );
   } );
}

}  // namespace Reference
