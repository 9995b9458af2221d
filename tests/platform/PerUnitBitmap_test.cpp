// The port bitmap of one unit: 352 bits, two texts, and a fixed refusal of what lies outside.
#include <gtest/gtest.h>

#include <bitset>
#include <cstdio>
#include <string>
#include <vector>

#include <rapidcheck/gtest.h>

#include <Brum/PerUnitBitmap.h>
#include <Quelm/Error.h>

#include "Generators.h"

namespace PerUnitBitmapTest {

using Brum::PerUnitBitmap;

PerUnitBitmap bitmapOf( std::vector< U32 > const & bits ) {
   PerUnitBitmap bitmap;
   for ( U32 const n : bits ) {
      bitmap.bitSet( n );
   }
   return bitmap;
}

std::string repeated( std::string const & text, int times ) {
   std::string out;
   for ( int n = 0; n < times; ++n ) {
      out += text;
   }
   return out;
}

TEST( PerUnitBitmap, StartsAllZero ) {
   PerUnitBitmap const bitmap;
   EXPECT_TRUE( bitmap.isEmpty() );
   EXPECT_EQ( bitmap.count(), 0U );
   for ( U32 n = 0; n < PerUnitBitmap::kBits; ++n ) {
      EXPECT_FALSE( bitmap.bit( n ) ) << n;
   }
}

TEST( PerUnitBitmap, BitLiesInItsWordAtItsPosition ) {
   PerUnitBitmap const bitmap = bitmapOf( { 0, 31, 32, 69, 351 } );
   EXPECT_EQ( bitmap.word( 0 ), 0x80000001U );
   EXPECT_EQ( bitmap.word( 1 ), 0x00000001U );
   EXPECT_EQ( bitmap.word( 2 ), 0x00000020U );
   EXPECT_EQ( bitmap.word( 3 ), 0U );
   EXPECT_EQ( bitmap.word( 10 ), 0x80000000U );
   EXPECT_EQ( bitmap.count(), 5U );
}

TEST( PerUnitBitmap, IsUsableAtCompileTime ) {
   constexpr PerUnitBitmap bitmap = [] {
      PerUnitBitmap result;
      result.bitSet( 5 );
      result.bitSet( 351 );
      result.bitClear( 5 );
      return result;
   }();
   static_assert( !bitmap.bit( 5 ) && bitmap.bit( 351 ) && bitmap.count() == 1 );
   static_assert( !bitmap.isEmpty() && bitmap != PerUnitBitmap() );
}

TEST( PerUnitBitmap, SettingAndClearingTwiceIsTheSameAsOnce ) {
   PerUnitBitmap bitmap = bitmapOf( { 5, 5 } );
   EXPECT_EQ( bitmap.count(), 1U );
   bitmap.bitClear( 5 );
   bitmap.bitClear( 5 );
   EXPECT_EQ( bitmap, PerUnitBitmap() );
}

TEST( PerUnitBitmap, BitOutsideIsRefusedAndChangesNothing ) {
   PerUnitBitmap const before = bitmapOf( { 0, 351 } );
   PerUnitBitmap bitmap = before;
   auto const expectRefused = [ & ]( auto act ) {
      try {
         act();
         FAIL() << "was not refused";
      } catch ( Quelm::RangeError const & error ) {
         EXPECT_STREQ( error.what(),
                       "Brum::PerUnitBitmapWordIndex::value < 0 or > "
                       "Brum::PerUnitBitmapWordIndex::max not allowed" );
      }
      EXPECT_EQ( bitmap, before );
   };
   for ( U32 const n : { 352U, 353U, 1023U, 0xffffffffU } ) {
      expectRefused( [ & ] { bitmap.bitSet( n ); } );
      expectRefused( [ & ] { bitmap.bitClear( n ); } );
      expectRefused( [ & ] { static_cast< void >( bitmap.bit( n ) ); } );
   }
   expectRefused( [ & ] { static_cast< void >( bitmap.word( 11 ) ); } );
}

TEST( PerUnitBitmap, HighestBitIsTheTopOfWordTen ) {
   PerUnitBitmap const bitmap = bitmapOf( { 351 } );
   EXPECT_TRUE( bitmap.bit( 351 ) );
   EXPECT_EQ( bitmap.word( 10 ), 0x80000000U );
}

TEST( PerUnitBitmap, ShowsNineWordsWhenTheTwoHighestAreZero ) {
   std::string const allZero = PerUnitBitmap().bitmapToString();
   EXPECT_EQ( allZero, repeated( " 0x00000000", 9 ) );
   EXPECT_EQ( allZero.size(), 99U );
   EXPECT_EQ( bitmapOf( { 5, 287 } ).bitmapToString(),
              " 0x80000000" + repeated( " 0x00000000", 7 ) + " 0x00000020" );
}

TEST( PerUnitBitmap, ShowsElevenWordsWhenOneOfTheTwoHighestIsNotZero ) {
   EXPECT_EQ( bitmapOf( { 351 } ).bitmapToString(), " 0x80000000" + repeated( " 0x00000000", 10 ) );
   EXPECT_EQ( bitmapOf( { 288 } ).bitmapToString(),
              " 0x00000000 0x00000001" + repeated( " 0x00000000", 9 ) );
}

TEST( PerUnitBitmap, TextListsBitsAndRanges ) {
   EXPECT_EQ( Quelm::textOf( PerUnitBitmap() ), "{}" );
   EXPECT_EQ( Quelm::textOf( bitmapOf( { 0, 5, 17, 18, 19, 20 } ) ), "{0,5,17-20}" );
   EXPECT_EQ( Quelm::textOf( bitmapOf( { 31, 32, 350, 351 } ) ), "{31-32,350-351}" );
   EXPECT_EQ( Quelm::textOf( bitmapOf( { 351 } ) ), "{351}" );
   EXPECT_EQ( Quelm::fromText< PerUnitBitmap >( "{0-351}" ).count(), 352U );
   EXPECT_EQ( Quelm::textOf( Quelm::fromText< PerUnitBitmap >( "{0-351}" ) ), "{0-351}" );
}

TEST( PerUnitBitmap, NeighboursNeedNotBeTypedAsARange ) {
   EXPECT_EQ( Quelm::fromText< PerUnitBitmap >( "{3,4}" ), bitmapOf( { 3, 4 } ) );
}

TEST( PerUnitBitmap, SaysWhatIsWrongWithAText ) {
   auto const reason = refusal< PerUnitBitmap >;
   EXPECT_EQ( reason( "{5,352}" ),
              "expected a bit number from 0 to 351 at character 4, found '352}'" );
   EXPECT_EQ( reason( "{5,5}" ),
              "expected a bit number greater than 5 at character 4, found '5}'" );
   EXPECT_EQ( reason( "{5,3}" ),
              "expected a bit number greater than 5 at character 4, found '3}'" );
   EXPECT_EQ( reason( "{5-7,7}" ),
              "expected a bit number greater than 7 at character 6, found '7}'" );
   EXPECT_EQ( reason( "{7-5}" ),
              "expected a bit number greater than 7 at character 4, found '5}'" );
   EXPECT_EQ( reason( "{5-352}" ),
              "expected a bit number from 0 to 351 at character 4, found '352}'" );
   EXPECT_EQ( reason( "{5" ), "expected '}' at character 3, found the end of the text" );
   EXPECT_EQ( reason( "{5,}" ), "expected a number of type U32 at character 4, found '}'" );
   EXPECT_EQ( reason( "5" ), "expected '{' at character 1, found '5'" );
   EXPECT_EQ( reason( "{}{}" ), "expected the end of the text at character 3, found '{}'" );
}

RC_GTEST_PROP( PerUnitBitmap, AnyBitmapIsReadBack, ( PerUnitBitmap const & bitmap ) ) {
   RC_ASSERT( Quelm::fromText< PerUnitBitmap >( Quelm::textOf( bitmap ) ) == bitmap );
}

RC_GTEST_PROP( PerUnitBitmap, BehavesAsAStandardBitset, () ) {
   auto const steps = *rc::gen::container< std::vector< std::pair< bool, U32 > > >(
      rc::gen::pair( rc::gen::arbitrary< bool >(),
                     rc::gen::inRange< U32 >( 0, PerUnitBitmap::kBits ) ) );
   PerUnitBitmap bitmap;
   std::bitset< PerUnitBitmap::kBits > bits;
   for ( auto const & [ isSet, n ] : steps ) {
      isSet ? bitmap.bitSet( n ) : bitmap.bitClear( n );
      bits[ n ] = isSet;
   }
   RC_ASSERT( bitmap.isEmpty() == bits.none() );
   RC_ASSERT( bitmap.count() == bits.count() );
   for ( U32 n = 0; n < PerUnitBitmap::kBits; ++n ) {
      RC_ASSERT( bitmap.bit( n ) == bits[ n ] );
   }
}

RC_GTEST_PROP( PerUnitBitmap, EqualMeansTheSameBits,
               ( PerUnitBitmap const & a, PerUnitBitmap const & b ) ) {
   bool isSame = true;
   for ( U32 index = 0; index < PerUnitBitmap::kWords; ++index ) {
      isSame = isSame && a.word( index ) == b.word( index );
   }
   RC_ASSERT( ( a == b ) == isSame );
}

}  // namespace PerUnitBitmapTest
