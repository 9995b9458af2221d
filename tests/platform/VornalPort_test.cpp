// A chip port is one number with the unit, the logical port and the module id at fixed places.
#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>
#include <type_traits>
#include <vector>

#include <rapidcheck/gtest.h>

#include <VornalTypes/VornalPort.h>

#include "Generators.h"

namespace VornalPortTest {

using VornalTypes::VornalPort;

TEST( VornalPort, HasItsPartsAtFixedBits ) {
   static_assert( sizeof( VornalPort ) == 8 );
   static_assert( std::is_trivially_copyable_v< VornalPort > );
   constexpr VornalPort port( 0x0102, 0x0304, 0x0506 );
   static_assert( port.value() == 0x0000'0304'0102'0506 );
   EXPECT_EQ( port.unit(), 0x0102 );
   EXPECT_EQ( port.logicalPort(), 0x0304 );
   EXPECT_EQ( port.modId(), 0x0506 );
}

TEST( VornalPort, LogicalPort1023IsNotValid ) {
   EXPECT_TRUE( VornalPort( 0, 0 ).isValid() );
   EXPECT_TRUE( VornalPort( 3, 1022, 7 ).isValid() );
   EXPECT_FALSE( VornalPort( 3, 1023, 7 ).isValid() );
   EXPECT_EQ( VornalPort(), VornalPort( 0, VornalPort::kInvalidLogicalPort, 0 ) );
   EXPECT_FALSE( VornalPort().isValid() );
}

TEST( VornalPort, IsOrderedByUnitThenLogicalPortThenModuleId ) {
   std::vector< VornalPort > const ascending = {
      { 0, 5, 9 }, { 0, 6, 0 }, { 0, 6, 1 }, { 1, 0, 0 }
   };
   EXPECT_TRUE( std::is_sorted( ascending.begin(), ascending.end(), std::less_equal<>() ) );
}

TEST( VornalPort, TextNamesItsParts ) {
   EXPECT_EQ( Quelm::textOf( VornalPort( 0, 5, 0 ) ), "unit0/port5/mod0" );
   EXPECT_EQ( Quelm::textOf( VornalPort( 65535, 65535, 65535 ) ), "unit65535/port65535/mod65535" );
   EXPECT_EQ( Quelm::textOf( VornalPort() ), "unit0/port1023/mod0" );
}

TEST( VornalPort, SaysWhatIsWrongWithAText ) {
   auto const reason = refusal< VornalPort >;
   EXPECT_EQ( reason( "port5" ), "expected 'unit' at character 1, found 'port5'" );
   EXPECT_EQ( reason( "unit0/port5" ),
              "expected '/mod' at character 12, found the end of the text" );
   EXPECT_EQ( reason( "unit0/port70000/mod0" ),
              "expected a number of type U16 at character 11, found '70000/mod0'" );
}

RC_GTEST_PROP( VornalPort, AnyPortIsReadBack, ( VornalPort const & port ) ) {
   RC_ASSERT( Quelm::fromText< VornalPort >( Quelm::textOf( port ) ) == port );
}

RC_GTEST_PROP( VornalPort, AnyTwoPortsAreOrdered, ( VornalPort const & a, VornalPort const & b ) ) {
   checkOrderAndHash( a, b );
   auto const parts = []( VornalPort const & port ) {
      return std::tuple( port.unit(), port.logicalPort(), port.modId() );
   };
   RC_ASSERT( ( a < b ) == ( parts( a ) < parts( b ) ) );
}

}  // namespace VornalPortTest
