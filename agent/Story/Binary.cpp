#include <Story/Binary.h>

namespace Story::Binary {

U8 In::byte() {
   return static_cast< U8 >( bytes( 1 ).front() );
}

U64 In::number() {
   constexpr int kHighest = 63;  // the last byte holds one bit of 64
   U64 number = 0;
   for ( int shift = 0; shift <= kHighest; shift += Out::kBits ) {
      U8 const next = byte();
      U64 const part = next & Out::kLow;
      bool const isLast = ( next & Out::kMore ) == 0;
      bool const isOverlong = isLast && part == 0 && shift != 0;
      if ( isOverlong || ( shift == kHighest && part > 1 ) ) {
         fail( "a number has no such form" );
      }
      number |= part << static_cast< unsigned >( shift );
      if ( isLast ) {
         return number;
      }
   }
   fail( "a number has more than 64 bits" );
}

std::string_view In::bytes( U64 count ) {
   if ( count > bytes_.size() ) {
      fail( "the bytes end too early" );
   }
   std::string_view const taken = bytes_.substr( 0, static_cast< std::size_t >( count ) );
   bytes_.remove_prefix( taken.size() );
   return taken;
}

U64 In::below( U64 end ) {
   U64 const found = number();
   if ( found >= end ) {
      fail( std::to_string( found ) + " stands for nothing here" );
   }
   return found;
}

// FNV-1a.
U64 fingerprintOf( Layout const & layout ) {
   constexpr U64 kBegin = 0xcbf29ce484222325;
   constexpr U64 kPrime = 0x100000001b3;
   U64 hash = kBegin;
   for ( char const c : layout.text() ) {
      hash = ( hash ^ static_cast< U8 >( c ) ) * kPrime;
   }
   return hash;
}

void In::expectEnd() const {
   if ( !isAtEnd() ) {
      fail( std::to_string( bytes_.size() ) + " bytes are left over" );
   }
}

}  // namespace Story::Binary
