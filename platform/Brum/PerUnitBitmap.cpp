#include <Brum/PerUnitBitmap.h>

#include <cstdio>

#include <Quelm/Error.h>

namespace Brum {

namespace {

void writeWord( std::string & out, U32 word ) {
   std::array< char, 12 > text{};
   std::snprintf( text.data(), text.size(), " 0x%08x", word );
   out += text.data();
}

// A bit number of at least `lowest`.
U32 readBit( Quelm::TextReader & in, U32 lowest ) {
   Quelm::TextReader const before = in;
   U32 const n = Quelm::TextForm< U32 >::read( in );
   if ( n >= PerUnitBitmap::kBits ) {
      before.fail( "a bit number from 0 to " + std::to_string( PerUnitBitmap::kBits - 1 ) );
   }
   if ( n < lowest ) {
      before.fail( "a bit number greater than " + std::to_string( lowest - 1 ) );
   }
   return n;
}

}  // namespace

void PerUnitBitmap::refuseIndex() {
   throw Quelm::RangeError(
      "Brum::PerUnitBitmapWordIndex::value < 0 or > "
      "Brum::PerUnitBitmapWordIndex::max not allowed" );
}

std::string PerUnitBitmap::bitmapToString() const {
   constexpr U32 kAlwaysShown = 9;
   bool const isTopShown = words_[ 10 ] != 0 || words_[ 9 ] != 0;
   std::string out;
   for ( U32 index = isTopShown ? kWords : kAlwaysShown; index-- > 0; ) {
      writeWord( out, words_[ index ] );
   }
   return out;
}

void PerUnitBitmap::textTo( std::string & out ) const {
   out += '{';
   for ( U32 first = 0; first < kBits; ++first ) {
      if ( !bit( first ) ) {
         continue;
      }
      U32 last = first;
      while ( last + 1 < kBits && bit( last + 1 ) ) {
         ++last;
      }
      out += out.back() == '{' ? "" : ",";
      out += std::to_string( first );
      if ( last != first ) {
         out += '-' + std::to_string( last );
      }
      first = last;
   }
   out += '}';
}

PerUnitBitmap PerUnitBitmap::textFrom( Quelm::TextReader & in ) {
   PerUnitBitmap bitmap;
   in.expect( "{" );
   if ( in.accept( "}" ) ) {
      return bitmap;
   }
   U32 lowest = 0;
   do {
      U32 const first = readBit( in, lowest );
      U32 const last = in.accept( "-" ) ? readBit( in, first + 1 ) : first;
      for ( U32 n = first; n <= last; ++n ) {
         bitmap.bitSet( n );
      }
      lowest = last + 1;
   } while ( in.accept( "," ) );
   in.expect( "}" );
   return bitmap;
}

}  // namespace Brum
