#include <Frames/Frames.h>

#include <algorithm>
#include <cstdint>

namespace Reference {

// --- By the state

bool canLeaveBy( Facts const & facts, Interface const & intf ) {
   auto const ports = facts.portsOf( intf );
   return std::any_of( ports.begin(), ports.end(),
                       []( Port const & port ) { return port.number != Port::kInvalid; } );
}

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

std::multiset< Vtep > floodedThrough( Facts const & facts, Forwarding const & forwarding,
                                      Frame const & frame ) {
   std::multiset< Vtep > reached;
   auto const add = [ & ]( Vtep const & vtep ) {
      if ( vtep.isIpv4() ? forwarding.hasIpv4 : forwarding.hasIpv6 ) {
         reached.insert( vtep );
      }
   };
   if ( !frame.sender ) {
      for ( auto const & [ vtep, virtualPort ] : facts.virtualPort ) {
         add( vtep );
      }
      for ( auto const & [ key, virtualPort ] : facts.otherKey ) {
         add( key.vtep );
      }
   }
   return reached;
}

// --- By the rules

namespace {

// The fields of a frame that rules look at.
using Fields = std::map< std::string, unsigned >;

// The number of the frame's kind in the chip.
unsigned resolutionOf( Frame const & frame ) {
   static std::map< std::string, unsigned > const numbers{
      { "broadcast", 1 },         { "unknown-unicast", 2 }, { "l2-multicast", 3 },
      { "routed-multicast", 12 }, { "known-unicast", 4 },   { "routed-unicast", 10 }
   };
   return numbers.at( frame.kind );
}

// A frame of a host has come through no tunnel, from no VTEP and in no VNI.
Fields fieldsOf( Facts const & facts, Frame const & frame ) {
   return { { "SrcVxlanGport", frame.sender ? facts.gportOfFramesFrom( *frame.sender ) : 0 },
            { "PacketRes", resolutionOf( frame ) },
            { "TunnelTerminated", frame.sender ? 1 : 0 },
            { "VxlanNetworkId", frame.sender ? frame.vni : 0 } };
}

bool isMet( Content const & rule, Fields const & fields ) {
   return std::all_of( rule.qualifiers.begin(), rule.qualifiers.end(), [ & ]( auto const & one ) {
      auto const field = fields.find( one.first );
      return one.second.mask == 0 || one.second.isMetBy( field->second );
   } );
}

// The highest priority wins. The group's own stands above every one that was set. Of equals, the
// one that was obtained first wins.
std::uint64_t rankOf( Content const & rule ) {
   constexpr std::uint64_t kAboveAll = std::uint64_t{ 1 } << 32U;
   return rule.priority ? *rule.priority : kAboveAll;
}

Content const * winner( Switch const & device, unsigned unit, Group group, Fields const & fields ) {
   Content const * found = nullptr;
   for ( auto const & [ id, rule ] : device.rules() ) {
      if ( rule.unit == unit && rule.group == group && rule.written &&
           isMet( *rule.written, fields ) &&
           ( !found || rankOf( *rule.written ) > rankOf( *found ) ) ) {
         found = &*rule.written;
      }
   }
   return found;
}

// The class id with which the frame is marked; 0 for none.
ClassId markOf( Content const & rule ) {
   auto const chosen = rule.actions.find( "EgressClassSelect" );
   auto const mark = rule.actions.find( "NewClassId" );
   bool const isMarked =
      chosen != rule.actions.end() && chosen->second.contains( 1 ) && mark != rule.actions.end();
   return isMarked ? *mark->second.begin() : 0;
}

}  // namespace

KeptBack::KeptBack( Switch const & device, Frame const & frame )
      : device_( device ), fields_( fieldsOf( device.facts(), frame ) ) {}

bool KeptBack::at( unsigned unit, unsigned port ) {
   auto const [ found, isNew ] = rule_.try_emplace( unit );
   if ( isNew ) {
      found->second = winner( device_, unit, Group::ingress, fields_ );
   }
   Content const * const rule = found->second;
   if ( rule ) {
      auto const mask = rule->actions.find( "EgressMask" );
      if ( mask != rule->actions.end() && mask->second.contains( port ) ) {
         return true;
      }
   }
   if ( device_.device().variant != Variant::classId ) {
      return false;
   }
   Content const * const drop =
      winner( device_, unit, Group::egress,
              { { "DstPort module", device_.device().moduleOfUnit.at( unit ) },
                { "DstPort", port },
                { "IngressClassField", rule ? markOf( *rule ) : 0 } } );
   return drop && drop->actions.contains( "Drop" );
}

bool isKeptBack( Switch const & device, Frame const & frame, unsigned unit, unsigned port ) {
   return KeptBack( device, frame ).at( unit, port );
}

}  // namespace Reference
