#include <History/Senders.h>

#include <algorithm>

namespace Reference {

// --- Events

void Senders::sharingChanges( Vtep const & vtep ) {
   if ( !facts_.virtualPort.contains( vtep ) ) {
      return;  // its rules went with the virtual port, or come with it
   }
   for ( auto const & [ unit, module ] : device_.moduleOfUnit ) {
      if ( isShared( vtep ) ) {
         recordIs( unit );
         make( unit, vtep );
         senderOn( unit, vtep ).wasTried = true;
      } else {
         unmake( unit, vtep );
         if ( records_.contains( unit ) ) {
            records_[ unit ][ vtep ].wasTried = false;
         }
         recordGoesIfUnused( unit );
      }
   }
}

void Senders::virtualPortIs( Vtep const & vtep ) {
   if ( !isShared( vtep ) ) {
      return;
   }
   for ( auto const & [ unit, module ] : device_.moduleOfUnit ) {
      makeAnew( unit, vtep );
   }
}

void Senders::virtualPortGoes( Vtep const & vtep ) {
   if ( !isShared( vtep ) ) {
      return;
   }
   for ( auto const & [ unit, module ] : device_.moduleOfUnit ) {
      unmake( unit, vtep );
      if ( records_.contains( unit ) ) {
         records_[ unit ][ vtep ].wasTried = false;
      }
      recordGoesIfUnused( unit );
   }
}

// The virtual port is what a rule matches, so another one takes another rule.
void Senders::makeAnew( unsigned unit, Vtep const & vtep ) {
   recordIs( unit );
   if ( senderOn( unit, vtep ).wasTried ) {
      unmake( unit, vtep );
   }
   make( unit, vtep );
   senderOn( unit, vtep ).wasTried = true;
}

// --- A rule for one VTEP on one unit

Senders::Sender & Senders::senderOn( unsigned unit, Vtep const & vtep ) {
   auto const record = records_.find( unit );
   require( record != records_.end(), "\"reference is not empty\" && target_", "operator->" );
   return record->second[ vtep ];
}

bool Senders::hasRule( unsigned unit, Vtep const & vtep ) const {
   auto const record = records_.find( unit );
   if ( record == records_.end() ) {
      return false;
   }
   auto const sender = record->second.find( vtep );
   return sender != record->second.end() && sender->second.rule;
}

void Senders::requireNothingMade( Sender const & sender, char const * function ) const {
   require( !sender.rule, "!unitTepIpToEntry->entryIdHas( tepIp )", function );
   require( !sender.mask, "!unitTepIpToEntry->esPbmpHas( tepIp )", function );
   require( !sender.hasDrops, "!unitTepIpToEntry->esPortAndEFPEntryIdListHas( tepIp )", function );
}

void Senders::make( unsigned unit, Vtep const & vtep ) {
   if ( usesClassIds() ) {
      if ( classId_.contains( vtep ) ) {
         makeWithClassId( unit, vtep );
      } else {
         requests_.insert( vtep );
      }
      return;
   }
   requireNothingMade( senderOn( unit, vtep ), "addTcamEntries" );
   if ( !recognise( unit, vtep ) ) {
      fullIs();
   }
}

// The rule that recognises the VTEP's frames, with its action.
bool Senders::recognise( unsigned unit, Vtep const & vtep ) {
   Sender & sender = senderOn( unit, vtep );
   RuleId const rule = groups_.obtain( unit, Group::ingress,
                                       "Mark or drop packets at IFP from vtep IP " +
                                          vtep.address() + " on shared segments" );
   if ( !rule ) {
      return false;
   }
   requireTaken( groups_.match( rule, "SrcVxlanGport", { facts_.gportOf( vtep ) } ),
                 "EvpnMultihomingLocalBiasSm::ifpTcamEntries" );
   sender.rule = rule;
   if ( device_.hasVniRules ) {
      groups_.priorityIs( rule, 1 );  // below the rules of VNIs
   }
   usesClassIds() ? mark( sender, vtep ) : mask( sender, portsToCover( unit, vtep ) );
   return true;
}

void Senders::mask( Sender & sender, Ports const & ports ) {
   std::set< unsigned > mask;
   for ( Port const & port : ports ) {
      mask.insert( port.number );
   }
   groups_.addMask( sender.rule, mask );
   sender.mask = mask;
   requireInstalled( groups_.install( sender.rule ), "WithEgressMaskSm::ifpTcamEntries" );
}

void Senders::unmake( unsigned unit, Vtep const & vtep ) {
   usesClassIds() ? unmakeMarked( unit, vtep ) : unmakeMasked( unit, vtep );
}

void Senders::unmakeMasked( unsigned unit, Vtep const & vtep ) {
   Sender & sender = senderOn( unit, vtep );
   if ( sender.rule ) {
      groups_.release( unit, Group::ingress, sender.rule );
      sender.rule.reset();
   }
   require( sender.mask.has_value(), "unitTepIpToEntry->esPbmpHas( tepIp )", "ifpTcamEntries" );
   sender.mask.reset();
}

void Senders::fullIs() {
   if ( !isShort_ ) {
      log_.emplace_back( "MULTIHOMING_TCAM_RESOURCE_FULL" );
   }
   isShort_ = true;
}

// --- Records of units, and the exemptions that live as long

void Senders::recordIs( unsigned unit ) {
   if ( !records_.contains( unit ) ) {
      exemptUnicast( unit );
      records_[ unit ];
   }
}

void Senders::recordGoesIfUnused( unsigned unit ) {
   auto const record = records_.find( unit );
   if ( record != records_.end() ) {
      bool const isUsed =
         std::any_of( record->second.begin(), record->second.end(),
                      []( auto const & one ) { return one.second.rule.has_value(); } );
      bool const isNeeded =
         std::any_of( requests_.begin(), requests_.end(),
                      [ & ]( auto const & v ) { return !facts_.grant.contains( v ); } );
      if ( isUsed || isNeeded ) {
         return;
      }
      records_.erase( record );
   }
   exemptNoMore( unit );
}

RuleId Senders::exempt( unsigned unit, char const * name, unsigned resolution ) {
   constexpr unsigned kResolutionMask = 0xff;
   RuleId const rule = groups_.obtain( unit, Group::ingress, name );
   if ( rule ) {
      constexpr char const * kFunction = "installRulesForUcastTraffic";
      requireTaken( groups_.match( rule, "PacketRes", { resolution, kResolutionMask } ),
                    kFunction );
      requireTaken( groups_.match( rule, "TunnelTerminated", { 1, 1 } ), kFunction );
      requireInstalled( groups_.install( rule ), kFunction );
   }
   return rule;
}

// Known unicast has one receiver, so nobody has delivered it yet.
void Senders::exemptUnicast( unsigned unit ) {
   RuleId const l2 = exempt( unit, "Skip shared ES pruning for L2UC packets - No-op", kL2Unicast );
   if ( !l2 ) {
      return;
   }
   exemptL2_[ unit ] = l2;
   if ( RuleId const l3 =
           exempt( unit, "Skip shared ES pruning for L3UC packets - No-op", kL3Unicast ) ) {
      exemptL3_[ unit ] = l3;
   }
}

void Senders::exemptNoMore( unsigned unit ) {
   for ( auto * const rules : { &exemptL2_, &exemptL3_ } ) {
      auto const rule = rules->find( unit );
      if ( rule == rules->end() ) {
         return;
      }
      groups_.release( unit, Group::ingress, rule->second );
      rules->erase( rule );
   }
}

}  // namespace Reference
