#include <ByState/ByState.h>

#include <algorithm>

#include <Rules/Groups.h>

namespace Reference {

namespace {

Rule written( unsigned unit, Group group, std::string const & name ) {
   Rule rule{ unit, group, name };
   rule.isWritten = true;
   return rule;
}

// Known unicast from a VTEP goes everywhere.
Rule exemption( unsigned unit, char const * name, unsigned resolution ) {
   Rule rule = written( unit, Group::ingress, name );
   rule.qualifiers = { { "PacketRes", under( resolution, 0xff ) },
                       { "TunnelTerminated", under( 1, 1 ) } };
   return rule;
}

// Known L3 multicast in a VNI goes everywhere.
Rule exemption( unsigned unit, Vni vni ) {
   Rule rule = written( unit, Group::ingress,
                        "Skip shared ES pruning for packets with vni " + std::to_string( vni ) +
                           " - No-op" );
   rule.qualifiers = { { "VxlanNetworkId", under( vni, kExact ) },
                       { "PacketRes", under( 12, kExact ) } };
   rule.priority = "2";
   return rule;
}

// Everything else from this VTEP...
Rule recognition( Device const & device, Facts const & facts, unsigned unit, Vtep const & vtep ) {
   Rule rule = written( unit, Group::ingress,
                        "Mark or drop packets at IFP from vtep IP " + vtep.address() +
                           " on shared segments" );
   rule.qualifiers = { { "SrcVxlanGport", under( facts.gportOf( vtep ), kExact ) } };
   rule.priority = device.hasVniRules ? "1" : "default";
   return rule;
}

// ...does not leave by the ports that the VTEP shares: they are masked,
void mask( Rule & rule, std::set< Port > const & shared ) {
   std::set< unsigned > ports;
   for ( Port const & port : shared ) {
      ports.insert( port.number );
   }
   rule.actions = { { "EgressMask", textOf( ports ) } };
}

// or the frame is marked,
void mark( Rule & rule, ClassId id ) {
   rule.actions = { { "EgressClassSelect", "1" }, { "NewClassId", std::to_string( id ) } };
}

// and dropped at each of them.
Rule drop( Facts const & facts, Vtep const & vtep, Port const & port ) {
   Rule rule = written( port.unit, Group::egress,
                        "Drop packets at EFP from vtep IP " + vtep.address() + " on " +
                           facts.interfaceOf( port ).name() );
   rule.qualifiers = { { "DstPort", "module " + under( port.module, kExact ) + " port " +
                                       under( port.number, kExact ) },
                       { "IpType", under( 0, 0 ) },
                       { "IngressClassField", under( facts.grant.at( vtep ), kExact ) } };
   rule.actions = { { "Drop", "" } };
   return rule;
}

void addRulesOf( Device const & device, Facts const & facts, unsigned unit, Vtep const & vtep,
                 std::vector< Rule > & rules ) {
   bool const usesClassIds = device.variant == Variant::classId;
   if ( usesClassIds && !facts.grant.contains( vtep ) ) {
      return;  // not yet
   }
   std::set< Port > const shared = facts.sharedPorts( unit, vtep );
   Rule rule = recognition( device, facts, unit, vtep );
   usesClassIds ? mark( rule, facts.grant.at( vtep ) ) : mask( rule, shared );
   rules.push_back( rule );
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
