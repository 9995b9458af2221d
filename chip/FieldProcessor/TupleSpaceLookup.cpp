#include <FieldProcessor/TupleSpaceLookup.h>

#include <algorithm>
#include <utility>

#include <Quelm/Assert.h>

namespace Chip {

void TupleSpaceLookup::insert( Entry const & entry ) {
   Ternary const ternary = ternaryOf( entry );
   Table & table = tableFor( ternary.masks );
   Candidate candidate{ precedenceOf( entry ), &entry };
   auto const [ winner, isFirst ] = table.winners.try_emplace( ternary.data, candidate );
   if ( isFirst ) {
      return;
   }
   if ( candidate.precedence < winner->second.precedence ) {
      std::swap( candidate, winner.value() );
   }
   table.others[ ternary.data ].push_back( candidate );
}

void TupleSpaceLookup::remove( Entry const & entry ) {
   Ternary const ternary = ternaryOf( entry );
   Table & table = tableFor( ternary.masks );
   auto const winner = table.winners.find( ternary.data );
   QUELM_ASSERT( winner != table.winners.end() );
   auto const behind = table.others.find( ternary.data );
   if ( behind == table.others.end() ) {
      table.winners.erase( winner );
      std::erase_if( tables_, []( Table const & one ) { return one.winners.empty(); } );
      return;
   }
   std::vector< Candidate > & others = behind.value();
   if ( winner->second.entry == &entry ) {
      std::swap( winner.value(),
                 *std::min_element( others.begin(), others.end(), []( auto & a, auto & b ) {
                    return a.precedence < b.precedence;
                 } ) );
   }
   std::erase_if( others, [ & ]( Candidate const & one ) { return one.entry == &entry; } );
   if ( others.empty() ) {
      table.others.erase( behind );
   }
}

Entry const * TupleSpaceLookup::find( KeyFields const & frame ) const {
   Candidate const * winner = nullptr;
   for ( Table const & table : tables_ ) {
      Candidate const * const found = valueIn( table.winners, frame.under( table.masks ) );
      if ( found && ( !winner || found->precedence < winner->precedence ) ) {
         winner = found;
      }
   }
   return winner ? winner->entry : nullptr;
}

TupleSpaceLookup::Table & TupleSpaceLookup::tableFor( KeyFields const & masks ) {
   auto const found = std::find_if( tables_.begin(), tables_.end(),
                                    [ & ]( Table const & table ) { return table.masks == masks; } );
   return found != tables_.end() ? *found : tables_.emplace_back( Table{ masks } );
}

}  // namespace Chip
