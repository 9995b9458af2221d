// Brum::PerUnitBitmap: a bitmap of one unit's logical ports, 352 bits.
//
// Bit n lies in word n >> 5 at position n & 31 of 11 words of 32 bits; a default-built bitmap is
// all zero. There are two texts. bitmapToString() shows the words in hexadecimal, for traces. The
// text form lists the bit numbers in ascending order, runs of two and more as a range:
// `{0,5,17-20}`. It is read in ascending order only, each bit once.
//
// Failures: a bit or word number outside the bitmap throws Quelm::RangeError and changes nothing.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <string>

#include <Quelm/Integers.h>
#include <Quelm/Text.h>

namespace Brum {

class PerUnitBitmap : public Quelm::Value {
 public:
   static constexpr U32 kWords = 11;
   static constexpr U32 kBits = kWords * 32;

   constexpr void bitSet( U32 n ) { words_[ checked( n >> 5 ) ] |= mask( n ); }
   constexpr void bitClear( U32 n ) { words_[ checked( n >> 5 ) ] &= ~mask( n ); }
   constexpr bool bit( U32 n ) const { return ( words_[ checked( n >> 5 ) ] & mask( n ) ) != 0; }

   // The 32 bits from bit number 32 * index, the lowest in bit 0.
   constexpr U32 word( U32 index ) const { return words_[ checked( index ) ]; }

   constexpr bool isEmpty() const {
      return std::all_of( words_.begin(), words_.end(), []( U32 word ) { return word == 0; } );
   }
   // The number of bits that are set.
   constexpr U32 count() const {
      U32 result = 0;
      for ( U32 const word : words_ ) {
         result += static_cast< U32 >( std::popcount( word ) );
      }
      return result;
   }

   // The words from the highest to the lowest, each as " 0x%08x": nine of them, or all eleven when
   // one of the two highest is not zero.
   std::string bitmapToString() const;

   friend constexpr bool operator==( PerUnitBitmap const &, PerUnitBitmap const & ) = default;

   static std::string_view textTypeName() { return "Brum::PerUnitBitmap"; }
   void textTo( std::string & out ) const;
   static PerUnitBitmap textFrom( Quelm::TextReader & in );

 private:
   static constexpr U32 mask( U32 n ) { return U32{ 1 } << ( n & 31 ); }
   static constexpr U32 checked( U32 index ) {
      if ( index >= kWords ) {
         refuseIndex();
      }
      return index;
   }
   [[noreturn]] static void refuseIndex();

   std::array< U32, kWords > words_{};
};

}  // namespace Brum
