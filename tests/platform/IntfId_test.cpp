// Interfaces are known by their names and ordered as a person would order them.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <vector>

#include <rapidcheck/gtest.h>

#include <Pelk/IntfId.h>

#include "Generators.h"

namespace IntfIdTest {

using Pelk::IntfId;

TEST( IntfId, HasANameAndAShortName ) {
   auto const expectNames = []( std::string const & name, std::string const & shortName ) {
      IntfId const intfId = IntfId::fromString( name );
      EXPECT_EQ( intfId.stringValue(), name );
      EXPECT_EQ( intfId.shortName(), shortName );
      EXPECT_EQ( Quelm::textOf( intfId ), name );
   };
   expectNames( "Ethernet1", "Et1" );
   expectNames( "Ethernet3/1", "Et3/1" );
   expectNames( "Ethernet3/1/4", "Et3/1/4" );
   expectNames( "Ethernet0/0/0", "Et0/0/0" );
   expectNames( "Loopback0", "Lo0" );
   expectNames( "Management1/2", "Ma1/2" );
   expectNames( "Port-Channel7", "Po7" );
   expectNames( "Vlan100", "Vl100" );
   expectNames( "Vxlan1", "Vx1" );
   expectNames( "Port-Channel65534", "Po65534" );
}

TEST( IntfId, EmptyOneNamesNoInterface ) {
   IntfId const none;
   EXPECT_TRUE( none.isEmpty() );
   EXPECT_EQ( none.stringValue(), "" );
   EXPECT_EQ( none.shortName(), "" );
   EXPECT_EQ( IntfId::fromString( "" ), none );
   EXPECT_EQ( Quelm::fromText< IntfId >( "" ), none );
   EXPECT_FALSE( IntfId::fromString( "Ethernet0" ).isEmpty() );
}

TEST( IntfId, IsCopiedAsANumber ) {
   static_assert( sizeof( IntfId ) == 8 );
   static_assert( std::is_trivially_copyable_v< IntfId > );
}

TEST( IntfId, TellsPortChannelsFromTheRest ) {
   EXPECT_TRUE( isPortChannel( IntfId::fromString( "Port-Channel7" ) ) );
   EXPECT_FALSE( isPortChannel( IntfId::fromString( "Ethernet7" ) ) );
   EXPECT_FALSE( isPortChannel( IntfId() ) );
   EXPECT_EQ( IntfId::fromString( "Vxlan1" ).kind(), IntfId::Kind::vxlan );
}

TEST( IntfId, IsOrderedNaturally ) {
   std::vector< std::string > const ascending = { "",
                                                  "Ethernet1",
                                                  "Ethernet2",
                                                  "Ethernet3",
                                                  "Ethernet3/1",
                                                  "Ethernet3/1/1",
                                                  "Ethernet3/2",
                                                  "Ethernet3/10",
                                                  "Ethernet4",
                                                  "Ethernet10",
                                                  "Loopback0",
                                                  "Management1",
                                                  "Port-Channel9",
                                                  "Port-Channel10",
                                                  "Vlan2",
                                                  "Vxlan1" };
   std::vector< IntfId > intfIds( ascending.size() );
   std::transform( ascending.begin(), ascending.end(), intfIds.begin(), &IntfId::fromString );
   EXPECT_TRUE( std::is_sorted( intfIds.begin(), intfIds.end(), std::less_equal<>() ) );
   EXPECT_EQ( std::unordered_set< IntfId >( intfIds.begin(), intfIds.end() ).size(),
              ascending.size() );
}

TEST( IntfId, SaysWhatIsWrongWithAName ) {
   auto const says = []( std::string const & name, std::string const & why ) {
      EXPECT_EQ( refusal< IntfId >( name ), "'" + name + "' is not an interface: " + why );
   };
   std::string const kinds =
      "a name is Ethernet, Loopback, Management, Port-Channel, Vlan or Vxlan and a number, as in "
      "Ethernet1 or Ethernet3/1";
   std::string const range = " is not a number from 0 to 65534 without leading zeros";
   says( "eth0", kinds );
   says( "ethernet1", kinds );
   says( "Po7", kinds );
   says( "Ethernet", "''" + range );
   says( "Ethernet01", "'01'" + range );
   says( "Ethernet65535", "'65535'" + range );
   says( "Ethernet99999999999999999999999", "'99999999999999999999999'" + range );
   says( "Ethernet-1", "'-1'" + range );
   says( "Ethernet1.100", "'1.100'" + range );
   says( "Ethernet1//2", "''" + range );
   says( "Ethernet/1", "''" + range );
   says( "Ethernet3/", "''" + range );
   says( "Ethernet1/2/3/4", "it has too many numbers (Ethernet: at most 3)" );
   says( "Port-Channel1/2", "it has too many numbers (Port-Channel: at most 1)" );
}

RC_GTEST_PROP( IntfId, AnyNameIsReadBack, ( IntfId const & intfId ) ) {
   RC_ASSERT( IntfId::fromString( intfId.stringValue() ) == intfId );
   RC_ASSERT( Quelm::fromText< IntfId >( Quelm::textOf( intfId ) ) == intfId );
}

RC_GTEST_PROP( IntfId, AnyTwoAreOrdered, ( IntfId const & a, IntfId const & b ) ) {
   checkOrderAndHash( a, b );
   RC_ASSERT( ( a == b ) == ( a.stringValue() == b.stringValue() ) );
}

}  // namespace IntfIdTest
