#include <fmt/format.h>

#include <Audit/SharedSegments.h>
#include <Audit/Variant.h>

namespace Audit {

namespace {

using Chip::Action;
using Chip::EntryContent;
using Chip::Match;
using Chip::Qualifier;
using Pelk::IpGenAddr;
using VornalTypes::VornalPort;

constexpr U32 kExact = BCM_FIELD_EXACT_MATCH_MASK;

EntryContent egressDrop( VornalPort const & port ) {
   EntryContent content;
   content[ Qualifier::DstPort ] = Match{ port.logicalPort(), kExact, port.modId(), kExact };
   content[ Qualifier::IpType ] = Match{ bcmFieldIpTypeAny, 0 };
   content[ Action::Drop ].emplace();
   return content;
}

Pelk::IntfId intfOf( State const & state, VornalPort const & wanted ) {
   for ( auto const & [ intf, port ] : state.ports ) {
      if ( port == wanted ) {
         return intf;
      }
   }
   return {};
}

// Adds the class id that the VTEP was granted, and keeps the rule.
void put( State const & state, RuleFor const & what, WantedRule rule, WantedRules & rules ) {
   auto const granted = state.classIds.find( what.vtep );
   rule.isWithoutClassId = granted == state.classIds.end();
   if ( !rule.isWithoutClassId ) {
      classIdIs( what, granted->second, rule.content );
      rule.because += fmt::format( "; class id {}", granted->second.value() );
   }
   rules[ what ] = std::move( rule );
}

}  // namespace

void classIdIs( RuleFor const & what, VornalCommon::ClassId classId, EntryContent & content ) {
   if ( what.purpose == Purpose::egressDrop ) {
      content[ Qualifier::IngressClassField ] = Match{ classId.value(), kExact };
   } else {
      content[ Action::NewClassId ] = { classId.value(), 0, {} };
   }
}

// The ingress rule marks the frame. One egress rule for each shared port drops marked frames.
void addClassIdRules( State const & state, U16 unit, IpGenAddr const & vtep, WantedRules & rules ) {
   WantedRule rule = ingressRuleOf( state, unit, vtep );
   std::string const because = rule.because;
   rule.content[ Action::EgressClassSelect ] = { BCM_FIELD_EGRESS_CLASS_SELECT_NEW, 0, {} };
   put( state, { unit, Purpose::vtep, vtep }, std::move( rule ), rules );
   for ( VornalPort const & port : sharedPorts( state, unit, vtep ) ) {
      put( state, { unit, Purpose::egressDrop, vtep, port },
           { fmt::format( "Drop packets at EFP from vtep IP {} on {}", vtep.stringValue(),
                          intfOf( state, port ).stringValue() ),
             egressDrop( port ), because },
           rules );
   }
}

}  // namespace Audit
