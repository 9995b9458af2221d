// The flat hash table is a map, whatever is inserted and removed in whatever order.
#include <map>

#include <FlatMap/FlatMap.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace FlatMapTest {

// Few different values, so that keys collide.
struct PoorHash {
   std::size_t operator()( U32 key ) const noexcept { return key % 5; }
};

template< typename Map > void expectSame( Map const & map, std::map< U32, U32 > const & model ) {
   RC_ASSERT( map.size() == model.size() );
   std::map< U32, U32 > visited;
   map.forEach( [ & ]( U32 key, U32 value ) { visited[ key ] = value; } );
   RC_ASSERT( visited == model );
   for ( U32 key = 0; key < 64; ++key ) {
      U32 const * const found = map.find( key );
      auto const expected = model.find( key );
      bool const isSame =
         found ? expected != model.end() && *found == expected->second : expected == model.end();
      RC_ASSERT( isSame );
   }
}

template< typename Map > void behavesAsAMap() {
   Map map;
   std::map< U32, U32 > model;
   auto const operations = *rc::gen::container< std::vector< std::pair< U32, bool > > >(
      rc::gen::pair( rc::gen::inRange( 0U, 64U ),
                     rc::gen::weightedElement< bool >( { { 2, true }, { 1, false } } ) ) );
   U32 value = 0;
   for ( auto const & [ key, isInsert ] : operations ) {
      if ( isInsert ) {
         map[ key ] = model[ key ] = ++value;
      } else {
         map.erase( key );
         model.erase( key );
      }
      expectSame( map, model );
   }
}

RC_GTEST_PROP( FlatMap, isAMap, () ) {
   behavesAsAMap< Chip::FlatMap< U32, U32 > >();
}

RC_GTEST_PROP( FlatMap, isAMapWhenAllKeysCollide, () ) {
   behavesAsAMap< Chip::FlatMap< U32, U32, PoorHash > >();
}

TEST( FlatMap, canBeEmptied ) {
   Chip::FlatMap< U32, U32 > map;
   map[ 1 ] = 2;
   map.clear();
   EXPECT_TRUE( map.isEmpty() );
   EXPECT_EQ( map.find( 1 ), nullptr );
   map.erase( 1 );
   EXPECT_EQ( map[ 1 ], 0U );
}

}  // namespace FlatMapTest
