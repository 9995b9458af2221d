#include <FieldProcessor/Unit.h>

namespace Chip {

void Unit::groupNew( Vornal::TcamGroupAssignment assignment, GroupKind kind, U32 capacity,
                     LookupEngine engine ) {
   bool const isNew =
      groups_.try_emplace( assignment, assignment, kind, capacity, ids_, engine ).second;
   QUELM_ASSERT( isNew );
}

Group * Unit::group( Vornal::TcamGroupAssignment assignment ) {
   auto const found = groups_.find( assignment );
   return found == groups_.end() ? nullptr : &found->second;
}

Entry * Unit::entry( U32 id ) {
   for ( auto & [ assignment, group ] : groups_ ) {
      if ( Entry * const found = group.entry( id ) ) {
         return found;
      }
   }
   return nullptr;
}

Unit & Units::unitNew( U16 number, U16 modId ) {
   auto const [ at, isNew ] = units_.try_emplace( number, number, modId );
   QUELM_ASSERT( isNew );
   return at->second;
}

Unit * Units::unit( U32 number ) {
   auto const found = units_.find( number );
   return found == units_.end() ? nullptr : &found->second;
}

Group * Units::group( U32 number, Vornal::TcamGroupAssignment assignment ) {
   Unit * const found = unit( number );
   return found ? found->group( assignment ) : nullptr;
}

}  // namespace Chip
