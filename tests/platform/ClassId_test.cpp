// A class id is valid unless all its 16 bits are set.
#include <gtest/gtest.h>

#include <rapidcheck/gtest.h>

#include <VornalCommon/ClassId.h>

#include "Generators.h"

namespace ClassIdTest {

using VornalCommon::ClassId;

TEST( ClassId, StartsAsNone ) {
   static_assert( ClassId().value() == 0xffff );
   static_assert( !ClassId().isValid() );
   EXPECT_EQ( ClassId( 0xffff ), ClassId() );
}

TEST( ClassId, EveryOtherNumberIsValid ) {
   EXPECT_TRUE( ClassId( 0 ).isValid() );
   EXPECT_TRUE( ClassId( 5 ).isValid() );
   EXPECT_TRUE( ClassId( 0xfffe ).isValid() );
}

TEST( ClassId, TextIsTheNumber ) {
   EXPECT_EQ( Quelm::textOf( ClassId( 5 ) ), "5" );
   EXPECT_EQ( Quelm::textOf( ClassId() ), "65535" );
   EXPECT_EQ( refusal< ClassId >( "65536" ),
              "expected a number of type U16 at character 1, found '65536'" );
}

RC_GTEST_PROP( ClassId, AnyClassIdIsReadBack, ( ClassId const & classId ) ) {
   RC_ASSERT( Quelm::fromText< ClassId >( Quelm::textOf( classId ) ) == classId );
}

RC_GTEST_PROP( ClassId, AnyTwoAreOrdered, ( ClassId const & a, ClassId const & b ) ) {
   checkOrderAndHash( a, b );
   RC_ASSERT( ( a < b ) == ( a.value() < b.value() ) );
}

}  // namespace ClassIdTest
