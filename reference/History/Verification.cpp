// The plug-in's own verification pass.
//
// For each VTEP that shares a segment, on each unit: its record is right in itself; the exemptions
// are in the chip as they were made; so is the rule that recognises the VTEP's frames; and so is
// what it does. A VTEP without a virtual port must have no rule. The pass then goes on to what the
// rule does nevertheless, and reads entry 0.
//
// It counts the ports that must be covered in its own way: an Ethernet interface with a port is
// one, on every unit and also with an invalid port. A port that two members of a port channel have
// is one.
#include <algorithm>

#include <History/Senders.h>

namespace Reference {

namespace {

constexpr char const * kBase = "EvpnMultihomingLocalBiasSm::verifyIfpEntries";
constexpr char const * kWithMask = "WithEgressMaskSm::verifyIfpEntries";
constexpr char const * kWithClassId = "WithI2EClassIdSm::verifyIfpEntries";
constexpr char const * kDrops = "verifyEfpEntries";

// The value, of a call that must be taken.
template< typename Value > Value taken( ReadBack< Value > const & read, char const * function ) {
   requireTaken( read.result, function );
   return read.value;
}

}  // namespace

void Senders::verify() {
   if ( isShort_ ) {
      return;
   }
   std::set< Vtep > const sharing = facts_.sharing();
   if ( sharing.empty() || ( facts_.virtualPort.empty() && facts_.otherKey.empty() ) ) {
      for ( auto const & [ unit, module ] : device_.moduleOfUnit ) {
         constexpr char const * kFunction = "handleVerify";
         require( !records_.contains( unit ), "!tepIpToEntry( unit )", kFunction );
         require( !exemptL2_.contains( unit ), "!l2UcastRuleInstalledHas( unit )", kFunction );
         require( !exemptL3_.contains( unit ), "!l3UcastRuleInstalledHas( unit )", kFunction );
      }
      return;
   }
   for ( Vtep const & vtep : sharing ) {
      for ( auto const & [ unit, module ] : device_.moduleOfUnit ) {
         verify( unit, vtep );
      }
   }
}

void Senders::verify( unsigned unit, Vtep const & vtep ) {
   verifyRecord( unit, vtep );
   if ( !usesClassIds() ) {
      senderOn( unit, vtep );  // there must be a record
   }
   verifySender( unit, vtep );
   if ( usesClassIds() ) {
      verifyMark( unit, vtep );
      verifyDrops( unit, vtep );
   } else {
      verifyMask( unit, vtep );
   }
}

Senders::Sender const & Senders::recordedOn( unsigned unit, Vtep const & vtep ) const {
   static Sender const none{};
   auto const record = records_.find( unit );
   if ( record == records_.end() ) {
      return none;
   }
   auto const sender = record->second.find( vtep );
   return sender == record->second.end() ? none : sender->second;
}

void Senders::verifyRecord( unsigned unit, Vtep const & vtep ) const {
   constexpr char const * kFunction = "tcamSanityCheckForTepIp";
   Sender const & sender = recordedOn( unit, vtep );
   if ( usesClassIds() ) {
      require( !sender.rule || classId_.contains( vtep ), "classIdsUsed", kFunction );
   } else {
      require( sender.rule.has_value() == sender.mask.has_value(), "ifpTcamsUsed == esPbmpUsed",
               kFunction );
   }
}

// --- Rules of both variants

void Senders::verifySender( unsigned unit, Vtep const & vtep ) {
   if ( !facts_.virtualPort.contains( vtep ) ) {
      require( !hasRule( unit, vtep ), "!unitUsesTcamsForTepIp( unit, tepIp )", kBase );
      return;
   }
   require( exemptL2_.contains( unit ), "l2UcastRuleInstalledHas( unit )", kBase );
   verifyExemption( unit, exemptL2_.at( unit ), kL2Unicast, "data == BCM_FIELD_PKT_RES_L2UC" );
   require( exemptL3_.contains( unit ), "l3UcastRuleInstalledHas( unit )", kBase );
   verifyExemption( unit, exemptL3_.at( unit ), kL3Unicast, "data == BCM_FIELD_PKT_RES_L3UCKNOWN" );
   require( hasRule( unit, vtep ), "unitUsesTcamsForTepIp( unit, tepIp )", kBase );
   Match const gport =
      taken( groups_.readMatch( unit, recordedOn( unit, vtep ).rule, "SrcVxlanGport" ), kBase );
   require( gport.data == facts_.gportOf( vtep ), "gport == gport_exp", kBase );
}

// The mask of the frame's kind is not compared.
void Senders::verifyExemption( unsigned unit, RuleId rule, unsigned resolution,
                               char const * expression ) {
   Match const kind = taken( groups_.readMatch( unit, rule, "PacketRes" ), kBase );
   require( kind.data == resolution, expression, kBase );
   Match const tunnel = taken( groups_.readMatch( unit, rule, "TunnelTerminated" ), kBase );
   require( tunnel.data == 1, "tdata == 1", kBase );
   require( tunnel.mask == 1, "tmask == 1", kBase );
}

std::size_t Senders::portsExpected( unsigned unit, Vtep const & vtep ) const {
   std::size_t count = 0;
   for ( Interface const & intf : facts_.sharedWith( vtep ) ) {
      if ( facts_.port.contains( intf ) ) {
         ++count;
      } else if ( intf.isPortChannel() ) {
         for ( Port const & port : facts_.portsOf( intf ) ) {
            count += port.unit == unit ? 1U : 0U;
         }
      }
   }
   return count;
}

// --- Masks

void Senders::verifyMask( unsigned unit, Vtep const & vtep ) {
   Sender const & sender = recordedOn( unit, vtep );
   std::set< unsigned > const onRecord = sender.mask.value_or( std::set< unsigned >() );
   std::set< unsigned > shared;
   for ( Port const & port : portsToCover( unit, vtep ) ) {
      shared.insert( port.number );
   }
   require( onRecord == shared, "tepIpToEntry( unit )->esPbmp( tepIp ) == ubmp", kWithMask );
   auto const mask = groups_.readMask( unit, sender.rule );
   require( mask.result == 0, "!pbmpRes->rc() && \"getEgressMaskActionPbmp fails\"", kWithMask );
   require( mask.value == onRecord, "BCM_PBMP_EQ( ports, ports_exp )", kWithMask );
   require( mask.value.size() == portsExpected( unit, vtep ), "portCount == expPortCount",
            kWithMask );
}

// --- Marks and drops

void Senders::verifyMark( unsigned unit, Vtep const & vtep ) {
   RuleId const rule = recordedOn( unit, vtep ).rule;
   unsigned const chosen =
      taken( groups_.readAction( unit, rule, "EgressClassSelect" ), kWithClassId );
   require( chosen == kNewClass, "data == BCM_FIELD_EGRESS_CLASS_SELECT_NEW", kWithClassId );
   unsigned const mark = taken( groups_.readAction( unit, rule, "NewClassId" ), kWithClassId );
   require( mark == classIdOf( vtep ), "data == i2eClassId.value()", kWithClassId );
}

void Senders::verifyDrops( unsigned unit, Vtep const & vtep ) {
   Sender const & sender = recordedOn( unit, vtep );
   for ( auto const & [ port, rule ] : sender.drops ) {
      PortMatch const place = taken( groups_.readPort( unit, rule ), kDrops );
      require( place.module.data == port.module, "modId == sp.modId()", kDrops );
      require( unit == port.unit, "unit == sp.unit()", kDrops );
      require( place.port.data == port.number, "portId == sp.logicalPort()", kDrops );
      Match const mark = taken( groups_.readMatch( unit, rule, "IngressClassField" ), kDrops );
      require( mark.data == classIdOf( vtep ), "data == i2eTepIpClassId( tepIp ).value()", kDrops );
      Match const type = taken( groups_.readMatch( unit, rule, "IpType" ), kDrops );
      require( type.data == kAnyIpType, "ipType == bcmFieldIpTypeAny", kDrops );
      unsigned const drop = taken( groups_.readAction( unit, rule, "Drop" ), kDrops );
      require( drop == 0, "data == 0", kDrops );
   }
   require( sender.drops.size() == portsExpected( unit, vtep ), "portCount == expPortCount",
            kDrops );
}

ClassId Senders::classIdOf( Vtep const & vtep ) const {
   auto const found = classId_.find( vtep );
   return found == classId_.end() ? kNoClassId : found->second;
}

}  // namespace Reference
