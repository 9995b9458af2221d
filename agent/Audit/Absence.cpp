// Tells why a rule is missing: a fault, or something that the switch waits for.

#include <Audit/Comparison.h>
#include <Audit/SharedSegments.h>

#include <fmt/format.h>

namespace Audit {

namespace {

bool isThere( Sides const & sides, RuleFor const & what ) {
   return sides.matched.rules.contains( what );
}

Absence whyAbsentInGroup( Sides const & sides, RuleFor const & what ) {
   auto const * const group = groupOf( sides.units, what.unit, what.group() );
   if ( !group ) {
      return { DifferenceKind::noRoom,
               fmt::format( "unit {} has no group {}", what.unit, what.group() ) };
   }
   if ( group->room() == 0 ) {
      return { DifferenceKind::noRoom,
               fmt::format( "group {} has no room on unit {}", what.group(), what.unit ) };
   }
   if ( what.purpose == Purpose::vni && sides.records.hasQueued( what.vni ) ) {
      return { DifferenceKind::queued, "the plug-in has queued it until there is room" };
   }
   if ( what.purpose == Purpose::vni && sides.state.freedVnis.contains( what.vni ) ) {
      return { DifferenceKind::leftBehind,
               "Vxlan1 took all per-VNI rules with it when it was withdrawn" };
   }
   if ( what.purpose != Purpose::vni && sides.records.isExhausted ) {
      return { DifferenceKind::notRetried,
               "an entry was refused while the group was full; there is room now, and the plug-in "
               "does not ask again by itself" };
   }
   return {};
}

// The plug-in programs a VTEP's egress rules after its ingress rule on the unit.
Absence whyNoEgressRule( Sides const & sides, RuleFor const & what ) {
   RuleFor const ingress{ what.unit, Purpose::vtep, what.vtep };
   Absence absence = isThere( sides, ingress ) ? Absence{} : whyAbsent( sides, ingress );
   if ( !isForLackOfRoom( absence.kind ) ) {
      return whyAbsentInGroup( sides, what );
   }
   absence.reason = "the VTEP has no ingress rule either: " + absence.reason;
   return absence;
}

// A unit without room for any VTEP's rule has no exemptions either.
Absence whyNoUnicastRule( Sides const & sides, RuleFor const & what ) {
   Absence absence;
   for ( Pelk::IpGenAddr const & vtep : activeVteps( sides.state ) ) {
      RuleFor const ingress{ what.unit, Purpose::vtep, vtep };
      absence = isThere( sides, ingress ) ? Absence{} : whyAbsent( sides, ingress );
      if ( !isForLackOfRoom( absence.kind ) ) {
         return whyAbsentInGroup( sides, what );
      }
   }
   return absence;
}

}  // namespace

bool isForLackOfRoom( DifferenceKind kind ) {
   return kind == DifferenceKind::noRoom || kind == DifferenceKind::notRetried;
}

Absence whyAbsent( Sides const & sides, RuleFor const & what ) {
   if ( sides.records.entries.contains( what ) ) {
      return { DifferenceKind::missingRule, "the plug-in has it on record" };
   }
   if ( sides.wanted.at( what ).isWithoutClassId ) {
      return sides.state.classIdRequests.contains( what.vtep )
                ? Absence{ DifferenceKind::waitingForClassId,
                           "its class id is asked for and not granted" }
                : Absence{ DifferenceKind::missingRule, "no class id is asked for" };
   }
   switch ( what.purpose ) {
   case Purpose::egressDrop: return whyNoEgressRule( sides, what );
   case Purpose::l2Unicast:
   case Purpose::l3Unicast: return whyNoUnicastRule( sides, what );
   default: return whyAbsentInGroup( sides, what );
   }
}

std::string whyUnexpected( State const & state, RuleFor const & what ) {
   if ( !state.isPluginReady ) {
      return "the plug-in is not ready";
   }
   std::string const vtep = what.vtep.stringValue();
   switch ( what.purpose ) {
   case Purpose::vni: return fmt::format( "no VRF needs an exemption for VNI {}", what.vni );
   case Purpose::l2Unicast:
   case Purpose::l3Unicast: return "no VTEP with a virtual port shares a segment";
   case Purpose::egressDrop:
      if ( activeVteps( state ).contains( what.vtep ) ) {
         return fmt::format( "{} is on no segment that VTEP {} shares on unit {}",
                             Quelm::textOf( what.port ), vtep, what.unit );
      }
      break;
   case Purpose::vtep: break;
   }
   return state.virtualPorts.contains( what.vtep )
             ? fmt::format( "VTEP {} shares no segment", vtep )
             : fmt::format( "VTEP {} has no virtual port", vtep );
}

}  // namespace Audit
