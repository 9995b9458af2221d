#include <Reporters/ChipReporter.h>

namespace Reporters {

namespace {

std::vector< U32 > portsOf( Brum::PerUnitBitmap const & bitmap ) {
   std::vector< U32 > ports;
   for ( U32 port = 0; port < Brum::PerUnitBitmap::kBits; ++port ) {
      if ( bitmap.bit( port ) ) {
         ports.push_back( port );
      }
   }
   return ports;
}

Story::CallValue valueOf( Chip::NamedValue const & named ) {
   Story::CallValue result{ named.name, {} };
   std::visit( Story::Overloaded{
                  [ & ]( U32 number ) { result.value = U64{ number }; },
                  [ & ]( std::string const & text ) { result.value = text; },
                  [ & ]( Brum::PerUnitBitmap const & ports ) { result.value = portsOf( ports ); } },
               named.value );
   return result;
}

Story::RuleField fieldOf( Chip::Qualifier qualifier, Chip::Match const & match ) {
   Story::RuleField field{ std::string( nameOf( qualifier ) ), {}, {} };
   if ( qualifier == Chip::Qualifier::DstPort ) {
      field.values = { { "modId", match.modId, match.modIdMask },
                       { "port", match.data, match.mask } };
   } else {
      field.values = { { "", match.data, match.mask } };
   }
   return field;
}

Story::RuleField fieldOf( Chip::Action action, Chip::ActionParameters const & parameters ) {
   Story::RuleField field{ std::string( nameOf( action ) ), {}, {} };
   if ( action == Chip::Action::EgressMask ) {
      field.ports = portsOf( parameters.ports );
   } else if ( action != Chip::Action::Drop ) {
      field.values = { { "", parameters.param0, std::nullopt } };
   }
   return field;
}

}  // namespace

Story::Rule ruleOf( Story::RuleKey const & key, Chip::Entry const & entry ) {
   Chip::EntryContent const * const written = entry.written();
   Chip::EntryContent const & content = written ? *written : entry.staged();
   Story::Rule rule{ key, entry.name(), content.priority, written != nullptr, {}, {} };
   for ( Chip::Qualifier const qualifier : Chip::kQualifiers ) {
      if ( content[ qualifier ] ) {
         rule.qualifiers.push_back( fieldOf( qualifier, *content[ qualifier ] ) );
      }
   }
   for ( Chip::Action const action : Chip::kActions ) {
      if ( content[ action ] ) {
         rule.actions.push_back( fieldOf( action, *content[ action ] ) );
      }
   }
   return rule;
}

void ChipReporter::callMade( Chip::HardwareCall const & call ) {
   Story::HardwareCall told{ call.operation, call.callText, call.unit, call.entry, {},
                             call.returnCode };
   for ( Chip::NamedValue const & value : call.values ) {
      told.values.push_back( valueOf( value ) );
   }
   observer_.onEvent( told );
   tellRule( call.unit, call.entry );
}

void ChipReporter::tellRule( U32 unit, U32 id ) {
   if ( Chip::Unit * const chip = units_->unit( unit ) ) {
      for ( auto const & [ assignment, group ] : chip->groups() ) {
         if ( Chip::Entry const * const entry = group.entry( id ) ) {
            Story::Rule const rule = ruleOf( { unit, assignment, id }, *entry );
            if ( std::exchange( told_[ { unit, id } ], rule ) != rule ) {
               observer_.onEvent( Story::RuleIs{ rule } );
            }
            return;
         }
      }
   }
   if ( auto const gone = told_.extract( { unit, id } ) ) {
      observer_.onEvent( Story::RuleGone{ gone.mapped().key } );
   }
}

}  // namespace Reporters
