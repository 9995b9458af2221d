#include <FieldProcessor/TupleSpaceLookup.h>

#include <algorithm>
#include <utility>

#include <Quelm/Assert.h>

namespace Chip {

void TupleSpaceLookup::insert( Entry const & entry ) {
   Ternary const ternary = ternaryOf( entry );
   Candidate candidate{ precedenceOf( entry ), &entry };
   auto const [ place, isFirst ] =
      tableFor( Key( ternary.masks ) )
         .byData.try_emplace( Key( ternary.data ), Candidates{ candidate } );
   if ( isFirst ) {
      return;
   }
   Candidates & candidates = place.value();
   if ( candidate.precedence < candidates.winner.precedence ) {
      std::swap( candidate, candidates.winner );
   }
   candidates.others.push_back( candidate );
}

void TupleSpaceLookup::remove( Entry const & entry ) {
   Ternary const ternary = ternaryOf( entry );
   Table & table = tableFor( Key( ternary.masks ) );
   auto const place = table.byData.find( Key( ternary.data ) );
   QUELM_ASSERT( place != table.byData.end() );
   auto & [ winner, others ] = place.value();
   if ( winner.entry != &entry ) {
      std::erase_if( others, [ & ]( Candidate const & one ) { return one.entry == &entry; } );
   } else if ( !others.empty() ) {
      auto const next =
         std::min_element( others.begin(), others.end(), []( auto const & a, auto const & b ) {
            return a.precedence < b.precedence;
         } );
      winner = *next;
      others.erase( next );
   } else {
      table.byData.erase( place );
      std::erase_if( tables_, []( Table const & one ) { return one.byData.empty(); } );
   }
}

Entry const * TupleSpaceLookup::find( KeyFields const & frame ) const {
   Key const key( frame );
   Candidate const * winner = nullptr;
   for ( Table const & table : tables_ ) {
      Candidates const * const found = valueIn( table.byData, key.under( table.masks ) );
      if ( found && ( !winner || found->winner.precedence < winner->precedence ) ) {
         winner = &found->winner;
      }
   }
   return winner ? winner->entry : nullptr;
}

TupleSpaceLookup::Table & TupleSpaceLookup::tableFor( Key const & masks ) {
   auto const found = std::find_if( tables_.begin(), tables_.end(),
                                    [ & ]( Table const & table ) { return table.masks == masks; } );
   return found != tables_.end() ? *found : tables_.emplace_back( Table{ masks } );
}

}  // namespace Chip
