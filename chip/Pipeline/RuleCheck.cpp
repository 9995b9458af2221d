#include <Pipeline/RuleCheck.h>

namespace Chip {

EgressFields egressFieldsOf( UnitTables const & unit, VornalTypes::VornalPort port,
                             bcm_field_IpType_t ipType, U16 classId ) {
   return { .dstModId = unit.modId,
            .dstPort = port.logicalPort(),
            .ipType = ipType,
            .ingressClass = classId };
}

void RuleCheck::start( Tables const & tables, IngressFields const & fields,
                       bcm_field_IpType_t ipType, std::vector< IngressStory > & story ) {
   tables_ = &tables;
   fields_ = fields;
   ipType_ = ipType;
   story_ = &story;
   results_.assign( tables.units.size(), {} );
}

void RuleCheck::enter( Index unit ) {
   IngressResult & result = results_[ unit ];
   if ( result.isLookedUp ) {
      return;
   }
   result.isLookedUp = true;
   UnitTables const & tables = tables_->units[ unit ];
   Entry const * const winner = tables.ingress ? tables.ingress->lookup( fields_ ) : nullptr;
   if ( winner ) {
      result.rule = { tables.number, tables.ingress->assignment(), winner->id() };
      applyActions( *winner->written(), result );
   }
   story_->push_back( { tables.number, result.rule, result.classId } );
}

void RuleCheck::applyActions( EntryContent const & rule, IngressResult & result ) {
   if ( auto const & mask = rule[ Action::EgressMask ] ) {
      result.mask = &mask->ports;
   }
   auto const & select = rule[ Action::EgressClassSelect ];
   auto const & classId = rule[ Action::NewClassId ];
   // A new class id counts only when it is selected as the class that egress rules see.
   if ( select && select->param0 == BCM_FIELD_EGRESS_CLASS_SELECT_NEW && classId ) {
      result.classId = static_cast< U16 >( classId->param0 );
   }
}

Verdict RuleCheck::judge( VornalTypes::VornalPort port, std::optional< RuleKey > & rule ) {
   Index const unit = tables_->unitOf( port.unit() );
   enter( unit );
   IngressResult const & ingress = results_[ unit ];
   if ( ingress.mask && ingress.mask->bit( port.logicalPort() ) ) {
      rule = ingress.rule;
      return Verdict::Masked;
   }
   rule = dropRule( tables_->units[ unit ], port, ingress.classId );
   return rule ? Verdict::Dropped : Verdict::Sent;
}

std::optional< RuleKey > RuleCheck::dropRule( UnitTables const & unit, VornalTypes::VornalPort port,
                                              U16 classId ) const {
   Entry const * const winner =
      unit.egress ? unit.egress->lookup( egressFieldsOf( unit, port, ipType_, classId ) ) : nullptr;
   if ( !winner || !( *winner->written() )[ Action::Drop ] ) {
      return std::nullopt;
   }
   return RuleKey{ unit.number, unit.egress->assignment(), winner->id() };
}

}  // namespace Chip
