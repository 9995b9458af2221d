// The name of a VRF is what its characters are.
#include <gtest/gtest.h>

#include <rapidcheck/gtest.h>

#include <L3/VrfName.h>

#include "Generators.h"

namespace VrfNameTest {

using L3::VrfName;

TEST( VrfName, IsItsCharacters ) {
   EXPECT_EQ( VrfName( "tenant-a" ).stringValue(), "tenant-a" );
   EXPECT_EQ( VrfName().stringValue(), "" );
   EXPECT_NE( VrfName( "tenant-a" ), VrfName( "Tenant-A" ) );
   EXPECT_LT( VrfName( "tenant-a" ), VrfName( "tenant-b" ) );
}

TEST( VrfName, TextIsThatOfAString ) {
   EXPECT_EQ( Quelm::textOf( VrfName( "tenant-a" ) ), "tenant-a" );
   EXPECT_EQ( Quelm::textOf( VrfName( "tenant a" ) ), "\"tenant a\"" );
   EXPECT_EQ( Quelm::textOf( VrfName() ), "\"\"" );
   EXPECT_EQ( refusal< VrfName >( "" ),
              "expected a name or a quoted string at character 1, found the end of the text" );
}

RC_GTEST_PROP( VrfName, AnyNameIsReadBack, ( VrfName const & vrf ) ) {
   RC_ASSERT( Quelm::fromText< VrfName >( Quelm::textOf( vrf ) ) == vrf );
}

RC_GTEST_PROP( VrfName, AnyTwoNamesAreOrdered, ( VrfName const & a, VrfName const & b ) ) {
   checkOrderAndHash( a, b );
}

}  // namespace VrfNameTest
