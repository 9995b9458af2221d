#include <FieldProcessor/Lookup.h>

#include <limits>

#include <FieldProcessor/LinearLookup.h>
#include <FieldProcessor/TupleSpaceLookup.h>

namespace Chip {

namespace {

void set( Ternary & ternary, std::size_t position, U32 value, U32 mask ) {
   ternary.data.fieldIs( position, value & mask );
   ternary.masks.fieldIs( position, mask );
}

}  // namespace

std::unique_ptr< Lookup > lookupNew( LookupEngine engine ) {
   if ( engine == LookupEngine::Linear ) {
      return std::make_unique< LinearLookup >();
   }
   return std::make_unique< TupleSpaceLookup >();
}

Precedence precedenceOf( Entry const & entry ) {
   constexpr U64 highest = std::numeric_limits< U32 >::max();
   auto const & priority = entry.written()->priority;
   return { priority ? 1 + ( highest - *priority ) : 0, entry.id() };
}

Ternary ternaryOf( Entry const & entry ) {
   EntryContent const & content = *entry.written();
   Ternary ternary;
   for ( QualifierRow const & row : kQualifierTable ) {
      std::optional< Match > const & match = content[ row.qualifier ];
      if ( !match ) {
         continue;
      }
      set( ternary, row.keyPosition, match->data, match->mask );
      if ( row.hasModule ) {
         set( ternary, row.keyPosition + 1, match->modId, match->modIdMask );
      }
   }
   return ternary;
}

}  // namespace Chip
