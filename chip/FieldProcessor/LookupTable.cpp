#include <FieldProcessor/LookupTable.h>

#include <algorithm>
#include <limits>

#include <Quelm/Assert.h>

namespace Chip {

namespace {

// An entry as data and masks in the order of the key; data outside the masks is zero.
struct Ternary {
   LookupKey data{};
   LookupKey masks{};

   void set( std::size_t position, U32 value, U32 mask ) {
      data.fields[ position ] = value & mask;
      masks.fields[ position ] = mask;
   }
};

Ternary ternaryOf( EntryContent const & content ) {
   Ternary ternary;
   for ( QualifierRow const & row : kQualifierTable ) {
      std::optional< Match > const & match = content[ row.qualifier ];
      if ( !match ) {
         continue;
      }
      ternary.set( row.keyPosition, match->data, match->mask );
      if ( row.hasModule ) {
         ternary.set( row.keyPosition + 1, match->modId, match->modIdMask );
      }
   }
   return ternary;
}

LookupKey masked( LookupKey const & key, LookupKey const & masks ) {
   LookupKey result;
   for ( std::size_t n = 0; n < result.fields.size(); ++n ) {
      result.fields[ n ] = key.fields[ n ] & masks.fields[ n ];
   }
   return result;
}

}  // namespace

Precedence precedenceOf( std::optional< U32 > const & priority, U32 id ) {
   constexpr U64 highest = std::numeric_limits< U32 >::max();
   return { priority ? 1 + ( highest - *priority ) : 0, id };
}

void LookupTable::insert( Entry const & entry ) {
   Ternary const ternary = ternaryOf( *entry.written() );
   Candidate const candidate{ precedenceOf( entry.written()->priority, entry.id() ), &entry };
   Candidates & candidates = tableFor( ternary.masks ).byData[ ternary.data ];
   auto const below =
      std::find_if( candidates.begin(), candidates.end(), [ & ]( Candidate const & other ) {
         return candidate.precedence < other.precedence;
      } );
   candidates.insert( below, candidate );
}

void LookupTable::remove( Entry const & entry ) {
   Ternary const ternary = ternaryOf( *entry.written() );
   Table & table = tableFor( ternary.masks );
   Candidates & candidates = table.byData[ ternary.data ];
   std::erase_if( candidates, [ & ]( Candidate const & one ) { return one.entry == &entry; } );
   if ( candidates.empty() ) {
      table.byData.erase( ternary.data );
   }
   std::erase_if( tables_, []( Table const & one ) { return one.byData.empty(); } );
}

Entry const * LookupTable::find( LookupKey const & frame ) const {
   Candidate const * winner = nullptr;
   for ( Table const & table : tables_ ) {
      Candidates const * const found = valueIn( table.byData, masked( frame, table.masks ) );
      if ( found && ( !winner || found->front().precedence < winner->precedence ) ) {
         winner = &found->front();
      }
   }
   return winner ? winner->entry : nullptr;
}

LookupTable::Table & LookupTable::tableFor( LookupKey const & masks ) {
   auto const found = std::find_if( tables_.begin(), tables_.end(),
                                    [ & ]( Table const & table ) { return table.masks == masks; } );
   return found != tables_.end() ? *found : tables_.emplace_back( Table{ masks, {} } );
}

}  // namespace Chip
