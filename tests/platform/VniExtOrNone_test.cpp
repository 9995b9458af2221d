// A VNI has 24 bits; the number above them all means none.
#include <gtest/gtest.h>

#include <rapidcheck/gtest.h>

#include <Quelm/Error.h>
#include <Vxlan/VniExtOrNone.h>

#include "Generators.h"

namespace VniExtOrNoneTest {

using Vxlan::VniExtOrNone;

TEST( VniExtOrNone, StartsAsNone ) {
   static_assert( VniExtOrNone().isNone() );
   static_assert( VniExtOrNone().value() == 0x1000000 );
   EXPECT_EQ( VniExtOrNone( 0x1000000 ), VniExtOrNone() );
   EXPECT_FALSE( VniExtOrNone( 0xffffff ).isNone() );
   EXPECT_FALSE( VniExtOrNone( 0 ).isNone() );
}

TEST( VniExtOrNone, NumberAboveNoneIsRefused ) {
   try {
      VniExtOrNone const vni( 0x1000001 );
      FAIL() << vni;
   } catch ( Quelm::RangeError const & error ) {
      EXPECT_STREQ( error.what(), "VNI 16777217 is above 16777215" );
   }
}

TEST( VniExtOrNone, TextIsTheNumberOrNone ) {
   EXPECT_EQ( Quelm::textOf( VniExtOrNone( 10100 ) ), "10100" );
   EXPECT_EQ( Quelm::textOf( VniExtOrNone() ), "none" );
   EXPECT_EQ( Quelm::fromText< VniExtOrNone >( "16777215" ).value(), 0xffffffU );
   EXPECT_EQ( refusal< VniExtOrNone >( "16777217" ),
              "expected a VNI from 0 to 16777215, or 'none' at character 1, found '16777217'" );
   EXPECT_EQ( refusal< VniExtOrNone >( "many" ),
              "expected a VNI from 0 to 16777215, or 'none' at character 1, found 'many'" );
}

RC_GTEST_PROP( VniExtOrNone, AnyVniIsReadBack, ( VniExtOrNone const & vni ) ) {
   RC_ASSERT( Quelm::fromText< VniExtOrNone >( Quelm::textOf( vni ) ) == vni );
}

RC_GTEST_PROP( VniExtOrNone, AnyTwoAreOrdered,
               ( VniExtOrNone const & a, VniExtOrNone const & b ) ) {
   checkOrderAndHash( a, b );
   RC_ASSERT( ( a < b ) == ( a.value() < b.value() ) );
}

}  // namespace VniExtOrNoneTest
