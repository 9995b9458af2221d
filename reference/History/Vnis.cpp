#include <History/Vnis.h>

namespace Reference {

void Vnis::readAll() {
   for ( auto const & [ tunnel, mappings ] : facts_.tunnel ) {
      for ( auto const & [ vrf, vni ] : mappings ) {
         mappingChanges( vrf, 0, vni );
      }
   }
}

// The first segment and the last one matter, those between do not.
void Vnis::segmentsChange() {
   if ( hasSegments_ == !facts_.segment.empty() ) {
      return;
   }
   hasSegments_ = !hasSegments_;
   if ( hasSegments_ ) {
      readAll();
      return;
   }
   for ( auto const & [ tunnel, mappings ] : facts_.tunnel ) {
      for ( auto const & [ vrf, vni ] : mappings ) {
         mappingChanges( vrf, vni, 0 );
      }
   }
}

void Vnis::mappingChanges( std::string const & vrf, Vni before, Vni now ) {
   if ( !device_.hasVniRules || device_.isMulticastExempt ) {
      return;
   }
   for ( auto const & [ unit, module ] : device_.moduleOfUnit ) {
      giveUp( unit, vrf, before );
      if ( now != 0 && hasSegments_ && !take( unit, vrf, now ) ) {
         return;  // the units behind this one are not tried
      }
   }
}

void Vnis::giveUp( unsigned unit, std::string const & vrf, Vni vni ) {
   if ( vni == 0 ) {
      return;
   }
   if ( auto const rule = rules_.extract( vni ) ) {
      groups_.release( unit, Group::ingress, rule.mapped() );
   } else {
      waiting_.erase( vrf );
   }
}

bool Vnis::take( unsigned unit, std::string const & vrf, Vni vni ) {
   constexpr unsigned kKnownL3Multicast = 12;
   require( !rules_.contains( vni ), "!evpnMultihomingLocalBiasSm()->vniToTcamEntryIdHas( newV )",
            "handleVrfToVniMap" );
   if ( vni == kNoVni ) {
      return true;
   }
   RuleId const rule = groups_.obtain( unit, Group::ingress,
                                       "Skip shared ES pruning for packets with vni " +
                                          std::to_string( vni ) + " - No-op" );
   if ( !rule ) {
      waiting_.try_emplace( vrf, vni );
      return false;
   }
   requireTaken( groups_.match( rule, "VxlanNetworkId", { vni } ), "handleVrfToVniMap" );
   requireTaken( groups_.match( rule, "PacketRes", { kKnownL3Multicast } ), "handleVrfToVniMap" );
   groups_.priorityIs( rule, 2 );
   groups_.install( rule );
   rules_[ vni ] = rule;
   return true;
}

// Only the end of Vxlan1 takes rules away, and then all of them.
void Vnis::tunnelGoes( Interface const & tunnel ) {
   if ( tunnel.name() != "Vxlan1" || !device_.hasVniRules ) {
      return;
   }
   for ( auto const & [ vni, rule ] : rules_ ) {
      groups_.release( groups_.unitOf( rule ), Group::ingress, rule );
   }
   rules_.clear();
}

// Every VRF that waits is tried once for each tunnel interface.
void Vnis::lookAgain() {
   auto const before = waiting_;
   for ( auto const & [ vrf, vni ] : before ) {
      for ( std::size_t tunnel = 0; tunnel < facts_.tunnel.size(); ++tunnel ) {
         waiting_.erase( vrf );
         mappingChanges( vrf, 0, vni );
      }
   }
}

}  // namespace Reference
