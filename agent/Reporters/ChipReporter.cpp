#include <Reporters/ChipReporter.h>

namespace Reporters {

void ChipReporter::callMade( Chip::HardwareCall const & call ) {
   observer_.onEvent( Story::CallMade{ call } );
   reportRule( call.unit, call.entry );
}

void ChipReporter::reportRule( U32 unit, U32 id ) {
   if ( Chip::Unit * const chip = units_->unit( unit ) ) {
      for ( auto const & [ assignment, group ] : chip->groups() ) {
         if ( Chip::Entry const * const entry = group.entry( id ) ) {
            Chip::Rule const rule = Chip::ruleAt( { chip->number(), assignment, id }, *entry );
            if ( std::exchange( reported_[ { unit, id } ], rule ) != rule ) {
               observer_.onEvent( Story::RuleIs{ rule } );
            }
            return;
         }
      }
   }
   if ( auto const gone = reported_.extract( { unit, id } ) ) {
      observer_.onEvent( Story::RuleGone{ gone.mapped().key } );
   }
}

}  // namespace Reporters
