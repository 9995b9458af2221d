#include <ByState/ByState.h>

#include <algorithm>

#include <Rules/Groups.h>

namespace Reference {

namespace {

Rule written( unsigned unit, Group group, std::string const & name, Content const & content ) {
   return { unit, group, name, content, content };
}

// Known unicast from a VTEP goes everywhere.
Rule exemption( unsigned unit, char const * name, unsigned resolution ) {
   return written( unit, Group::ingress, name,
                   { { { "PacketRes", { resolution, 0xff } }, { "TunnelTerminated", { 1, 1 } } },
                     {},
                     {} } );
}

// Known L3 multicast in a VNI goes everywhere.
Rule exemption( unsigned unit, Vni vni ) {
   return written( unit, Group::ingress,
                   "Skip shared ES pruning for packets with vni " + std::to_string( vni ) +
                      " - No-op",
                   { { { "VxlanNetworkId", { vni } }, { "PacketRes", { 12 } } }, {}, 2 } );
}

// Everything else from this VTEP...
Content recognition( Device const & device, Facts const & facts, Vtep const & vtep ) {
   Content content;
   content.qualifiers = { { "SrcVxlanGport", { facts.gportOf( vtep ) } } };
   if ( device.hasVniRules ) {
      content.priority = 1;
   }
   return content;
}

// ...does not leave by the ports that the VTEP shares: they are masked,
void mask( Content & content, std::set< Port > const & shared ) {
   std::set< unsigned > ports;
   for ( Port const & port : shared ) {
      ports.insert( port.number );
   }
   content.actions = { { "EgressMask", ports } };
}

// or the frame is marked,
void mark( Content & content, ClassId id ) {
   content.actions = { { "EgressClassSelect", { 1 } }, { "NewClassId", { id } } };
}

// and dropped at each of them.
Rule drop( Facts const & facts, Vtep const & vtep, Port const & port ) {
   return written( port.unit, Group::egress,
                   "Drop packets at EFP from vtep IP " + vtep.address() + " on " +
                      facts.interfaceOf( port ).name(),
                   { { { "DstPort module", { port.module } },
                       { "DstPort", { port.number } },
                       { "IpType", { 0, 0 } },
                       { "IngressClassField", { facts.grant.at( vtep ) } } },
                     { { "Drop", { 0 } } },
                     {} } );
}

void addRulesOf( Device const & device, Facts const & facts, unsigned unit, Vtep const & vtep,
                 std::vector< Rule > & rules ) {
   bool const usesClassIds = device.variant == Variant::classId;
   if ( usesClassIds && !facts.grant.contains( vtep ) ) {
      return;  // not yet
   }
   std::set< Port > const shared = facts.sharedPorts( unit, vtep );
   Content content = recognition( device, facts, vtep );
   usesClassIds ? mark( content, facts.grant.at( vtep ) ) : mask( content, shared );
   rules.push_back(
      written( unit, Group::ingress,
               "Mark or drop packets at IFP from vtep IP " + vtep.address() + " on shared segments",
               content ) );
   if ( usesClassIds ) {
      std::transform( shared.begin(), shared.end(), std::back_inserter( rules ),
                      [ & ]( Port const & port ) { return drop( facts, vtep, port ); } );
   }
}

void addRulesOfVnis( Device const & device, Facts const & facts, unsigned unit,
                     std::vector< Rule > & rules ) {
   if ( facts.segment.empty() || !device.hasVniRules || device.isMulticastExempt ) {
      return;
   }
   for ( auto const & [ tunnel, mappings ] : facts.tunnel ) {
      for ( auto const & [ vrf, vni ] : mappings ) {
         if ( vni != 0 && vni != kNoVni ) {
            rules.push_back( exemption( unit, vni ) );
         }
      }
   }
}

}  // namespace

std::vector< Rule > rulesByState( Device const & device, Facts const & facts ) {
   std::vector< Rule > rules;
   std::set< Vtep > senders = facts.sharing();
   std::erase_if( senders, [ & ]( Vtep const & v ) { return !facts.virtualPort.contains( v ); } );
   for ( auto const & [ unit, module ] : device.moduleOfUnit ) {
      if ( !senders.empty() ) {
         rules.push_back( exemption( unit, "Skip shared ES pruning for L2UC packets - No-op", 4 ) );
         rules.push_back(
            exemption( unit, "Skip shared ES pruning for L3UC packets - No-op", 10 ) );
      }
      for ( Vtep const & sender : senders ) {
         addRulesOf( device, facts, unit, sender, rules );
      }
      addRulesOfVnis( device, facts, unit, rules );
   }
   return rules;
}

}  // namespace Reference
