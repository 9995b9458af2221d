#include <FieldProcessor/LinearLookup.h>

#include <algorithm>

namespace Chip {

namespace {

bool matches( Ternary const & ternary, KeyFields const & frame ) {
   for ( std::size_t n = 0; n < kKeyFields; ++n ) {
      if ( ( frame[ n ] & ternary.masks[ n ] ) != ternary.data[ n ] ) {
         return false;
      }
   }
   return true;
}

}  // namespace

void LinearLookup::insert( Entry const & entry ) {
   Written const written{ precedenceOf( entry ), ternaryOf( entry ), &entry };
   auto const below =
      std::find_if( entries_.begin(), entries_.end(), [ & ]( Written const & other ) {
         return written.precedence < other.precedence;
      } );
   entries_.insert( below, written );
}

void LinearLookup::remove( Entry const & entry ) {
   std::erase_if( entries_, [ & ]( Written const & one ) { return one.entry == &entry; } );
}

Entry const * LinearLookup::find( KeyFields const & frame ) const {
   auto const winner =
      std::find_if( entries_.begin(), entries_.end(),
                    [ & ]( Written const & one ) { return matches( one.ternary, frame ); } );
   return winner == entries_.end() ? nullptr : winner->entry;
}

}  // namespace Chip
