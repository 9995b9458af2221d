// A tunnel group is known by its name; a default-built identifier names none.
#include <gtest/gtest.h>

#include <rapidcheck/gtest.h>

#include <Vxlan/SwTunnelGroupId.h>

#include "Generators.h"

namespace SwTunnelGroupIdTest {

using Vxlan::SwTunnelGroupId;

TEST( SwTunnelGroupId, StartsEmpty ) {
   EXPECT_TRUE( SwTunnelGroupId().isEmpty() );
   EXPECT_EQ( SwTunnelGroupId().stringValue(), "" );
   EXPECT_FALSE( SwTunnelGroupId( "west" ).isEmpty() );
   EXPECT_LT( SwTunnelGroupId(), SwTunnelGroupId( "west" ) );
}

TEST( SwTunnelGroupId, TextIsThatOfAString ) {
   EXPECT_EQ( Quelm::textOf( SwTunnelGroupId( "west" ) ), "west" );
   EXPECT_EQ( Quelm::textOf( SwTunnelGroupId() ), "\"\"" );
}

RC_GTEST_PROP( SwTunnelGroupId, AnyNameIsReadBack, ( SwTunnelGroupId const & group ) ) {
   RC_ASSERT( Quelm::fromText< SwTunnelGroupId >( Quelm::textOf( group ) ) == group );
}

RC_GTEST_PROP( SwTunnelGroupId, AnyTwoGroupsAreOrdered,
               ( SwTunnelGroupId const & a, SwTunnelGroupId const & b ) ) {
   checkOrderAndHash( a, b );
}

}  // namespace SwTunnelGroupIdTest
