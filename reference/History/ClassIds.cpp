// Class ids: a VTEP's rule marks its frames with one, and a rule for each shared port drops the
// frames that carry it. Another agent grants them.
#include <History/Senders.h>

namespace Reference {

// --- Marks

void Senders::grantComes( Vtep const & vtep ) {
   if ( !isShared( vtep ) ) {
      return;
   }
   classId_[ vtep ] = facts_.grant.at( vtep );
   if ( classId_[ vtep ] == kNoClassId ) {
      return;
   }
   for ( auto const & [ unit, module ] : device_.moduleOfUnit ) {
      if ( records_.contains( unit ) && !hasRule( unit, vtep ) ) {
         makeWithClassId( unit, vtep );
      }
   }
}

void Senders::makeWithClassId( unsigned unit, Vtep const & vtep ) {
   requireNothingMade( senderOn( unit, vtep ), "addTcamEntriesWithI2EClassId" );
   if ( !recognise( unit, vtep ) || !drop( unit, vtep, portsToCover( unit, vtep ) ) ) {
      fullIs();
      return;
   }
   if ( isShort_ ) {
      log_.emplace_back( "MULTIHOMING_TCAM_RESOURCE_RECOVERED" );
      isShort_ = false;
   }
}

void Senders::mark( Sender & sender, Vtep const & vtep ) {
   constexpr char const * kFunction = "WithI2EClassIdSm::ifpTcamEntries";
   ++marks_[ vtep ];
   requireTaken( groups_.addAction( sender.rule, "EgressClassSelect", kNewClass ), kFunction );
   requireTaken( groups_.addAction( sender.rule, "NewClassId", classId_.at( vtep ) ), kFunction );
   requireInstalled( groups_.install( sender.rule ), kFunction );
}

void Senders::unmakeMarked( unsigned unit, Vtep const & vtep ) {
   if ( hasRule( unit, vtep ) ) {
      Sender & sender = senderOn( unit, vtep );
      groups_.release( unit, Group::ingress, sender.rule );
      sender.rule.reset();
      require( classId_.contains( vtep ), "i2eTepIpClassIdHas( tepIp )", "ifpTcamEntries" );
      --marks_[ vtep ];
      Ports ports;
      for ( auto const & [ port, rule ] : sender.drops ) {
         ports.insert( port );
      }
      dropNoMore( unit, vtep, ports );
   }
   giveClassIdBack( vtep );
}

void Senders::giveClassIdBack( Vtep const & vtep ) {
   if ( !classId_.contains( vtep ) || marks_[ vtep ] == 0 ) {
      requests_.erase( vtep );
      classId_.erase( vtep );
      marks_.erase( vtep );
   }
}

// --- Drops

bool Senders::drop( unsigned unit, Vtep const & vtep, Ports const & ports ) {
   if ( ports.empty() ) {
      return true;
   }
   Sender & sender = senderOn( unit, vtep );
   sender.hasDrops = true;
   require( classId_.contains( vtep ) && classId_[ vtep ] != kNoClassId, "i2eClassId.isValid()",
            "efpTcamEntries" );
   for ( Port const & port : ports ) {
      if ( !sender.drops.contains( port ) ) {
         RuleId const rule = dropAt( unit, vtep, port );
         if ( !rule ) {
            return false;
         }
         sender.drops[ port ] = rule;
      }
   }
   return true;
}

RuleId Senders::dropAt( unsigned unit, Vtep const & vtep, Port const & port ) {
   RuleId const rule = groups_.obtain( unit, Group::egress,
                                       "Drop packets at EFP from vtep IP " + vtep.address() +
                                          " on " + facts_.interfaceOf( port ).name() );
   if ( rule ) {
      constexpr char const * kFunction = "efpTcamEntries";
      requireTaken( groups_.matchPort( rule, port.module, port.number ), kFunction );
      requireTaken( groups_.match( rule, "IpType", { kAnyIpType, 0 } ), kFunction );
      requireTaken( groups_.match( rule, "IngressClassField", { classId_.at( vtep ) } ),
                    kFunction );
      requireTaken( groups_.addAction( rule, "Drop", 0 ), kFunction );
      requireInstalled( groups_.install( rule ), kFunction );
   }
   return rule;
}

// A port without a rule gives entry 0 back, which does nothing.
void Senders::dropNoMore( unsigned unit, Vtep const & vtep, Ports const & ports ) {
   Sender & sender = senderOn( unit, vtep );
   if ( ports.empty() || !sender.hasDrops ) {
      return;
   }
   for ( Port const & port : ports ) {
      auto const rule = sender.drops.find( port );
      groups_.release( unit, Group::egress,
                       rule == sender.drops.end() ? std::nullopt : rule->second );
      sender.drops.erase( port );
   }
   sender.hasDrops = !sender.drops.empty();
}

}  // namespace Reference
