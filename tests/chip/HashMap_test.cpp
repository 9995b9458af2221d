// The hash table of the pipeline: what the chip adds to the library's.
#include <gtest/gtest.h>

#include <set>

#include <HashMap/HashMap.h>

namespace HashMapTest {

TEST( HashMap, ValueIsFoundByItsKeyAlone ) {
   Chip::HashMap< U32, U32 > map;
   EXPECT_EQ( valueIn( map, 10100U ), nullptr );
   map[ 10100 ] = 7;
   ASSERT_NE( valueIn( map, 10100U ), nullptr );
   EXPECT_EQ( *valueIn( map, 10100U ), 7U );
   EXPECT_EQ( valueIn( map, 10101U ), nullptr );
}

// As the same MAC address in all VLANs does.
TEST( HashMap, KeysThatDifferInTheirUpperBitsOnlyHaveDifferentPlaces ) {
   constexpr int vlanShift = 48;
   constexpr std::size_t places = 8192;
   std::set< std::size_t > taken;
   for ( U64 vlan = 1; vlan <= 4094; ++vlan ) {
      taken.insert( Chip::SpreadHash< std::hash< U64 > >()( vlan << vlanShift ) % places );
   }
   EXPECT_GT( taken.size(), 2048U );
}

}  // namespace HashMapTest
