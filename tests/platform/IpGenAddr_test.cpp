// IP addresses of both families: read strictly, written in one form, compared by family and bytes.
#include <gtest/gtest.h>

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <vector>

#include <rapidcheck/gtest.h>

#include <Pelk/IpGenAddr.h>

#include "Generators.h"

namespace IpGenAddrTest {

using Pelk::IpGenAddr;

std::string rewritten( std::string_view text ) {
   return IpGenAddr::fromString( text ).stringValue();
}

std::string reason( std::string_view text ) {
   return refusal< IpGenAddr >( text );
}

TEST( IpGenAddr, IsSmallAndCopiedAsBytes ) {
   static_assert( sizeof( IpGenAddr ) == 20 );
   static_assert( std::is_trivially_copyable_v< IpGenAddr > );
   static_assert( std::has_unique_object_representations_v< IpGenAddr > );
   static_assert( IpGenAddr() == IpGenAddr::ipv4( { 0, 0, 0, 0 } ) );
   EXPECT_EQ( IpGenAddr().stringValue(), "0.0.0.0" );
}

TEST( IpGenAddr, KeepsItsBytesInNetworkOrder ) {
   IpGenAddr const v4 = IpGenAddr::fromString( "192.0.2.1" );
   EXPECT_EQ( v4.family(), IpGenAddr::Family::ipv4 );
   EXPECT_EQ( v4.bytes(), ( std::array< U8, 16 >{ 192, 0, 2, 1 } ) );
   IpGenAddr const v6 = IpGenAddr::fromString( "2001:db8::102:304" );
   EXPECT_EQ( v6.family(), IpGenAddr::Family::ipv6 );
   EXPECT_EQ( v6.bytes(), ( std::array< U8, 16 >{ 0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 1,
                                                  2, 3, 4 } ) );
}

TEST( IpGenAddr, Ipv4IsFourDecimalNumbers ) {
   EXPECT_EQ( rewritten( "0.0.0.0" ), "0.0.0.0" );
   EXPECT_EQ( rewritten( "255.255.255.255" ), "255.255.255.255" );
   EXPECT_EQ( rewritten( "10.0.0.2" ), "10.0.0.2" );
}

TEST( IpGenAddr, Ipv6IsReadInAllItsForms ) {
   EXPECT_EQ( rewritten( "ABCD:EF01:2345:6789:ABCD:EF01:2345:6789" ),
              "abcd:ef01:2345:6789:abcd:ef01:2345:6789" );
   EXPECT_EQ( rewritten( "2001:0db8:0000:0000:0008:0800:200c:417a" ), "2001:db8::8:800:200c:417a" );
   EXPECT_EQ( rewritten( "FF01:0:0:0:0:0:0:101" ), "ff01::101" );
   EXPECT_EQ( rewritten( "0:0:0:0:0:0:0:1" ), "::1" );
   EXPECT_EQ( rewritten( "0:0:0:0:0:0:0:0" ), "::" );
   EXPECT_EQ( rewritten( "::" ), "::" );
   EXPECT_EQ( rewritten( "1::" ), "1::" );
   EXPECT_EQ( rewritten( "0:0:0:0:0:0:13.1.68.3" ), "::d01:4403" );
   EXPECT_EQ( rewritten( "64:ff9b::192.0.2.33" ), "64:ff9b::c000:221" );
   EXPECT_EQ( rewritten( "1:2:3:4:5:6:7::" ), "1:2:3:4:5:6:7:0" );
   EXPECT_EQ( rewritten( "::2:3:4:5:6:7:8" ), "0:2:3:4:5:6:7:8" );
}

TEST( IpGenAddr, Ipv6CompressesTheFirstOfItsLongestRunsOfZeros ) {
   EXPECT_EQ( rewritten( "2001:db8:0:1:1:1:1:1" ), "2001:db8:0:1:1:1:1:1" );
   EXPECT_EQ( rewritten( "2001:0:0:1:0:0:0:1" ), "2001:0:0:1::1" );
   EXPECT_EQ( rewritten( "2001:db8:0:0:1:0:0:1" ), "2001:db8::1:0:0:1" );
   EXPECT_EQ( rewritten( "1:0:0:2:3:4:0:0" ), "1::2:3:4:0:0" );
   EXPECT_EQ( rewritten( "0:0:1:0:0:0:0:0" ), "0:0:1::" );
}

TEST( IpGenAddr, Ipv4MappedAddressIsWrittenDotted ) {
   EXPECT_EQ( rewritten( "::FFFF:c000:0201" ), "::ffff:192.0.2.1" );
   EXPECT_EQ( rewritten( "0:0:0:0:0:ffff:192.0.2.1" ), "::ffff:192.0.2.1" );
   EXPECT_EQ( rewritten( "::ffff:0:0" ), "::ffff:0.0.0.0" );
}

TEST( IpGenAddr, SaysWhatIsWrongWithAnIpv4Address ) {
   EXPECT_EQ( reason( "10.0.0.256" ),
              "'10.0.0.256' is not an IP address: '256' is not a number from 0 to 255" );
   EXPECT_EQ( reason( "10.0.0.01" ), "'10.0.0.01' is not an IP address: '01' has a leading zero" );
   EXPECT_EQ( reason( "10.0.0.-1" ),
              "'10.0.0.-1' is not an IP address: '-1' is not a number from 0 to 255" );
   EXPECT_EQ( reason( "10.0..1" ),
              "'10.0..1' is not an IP address: '' is not a number from 0 to 255" );
   for ( char const * text : { "10.0.1", "10.0.0.0.1", "leaf2", "" } ) {
      EXPECT_EQ( reason( text ),
                 "'" + std::string( text ) +
                    "' is not an IP address: an IPv4 address is four numbers, as in "
                    "192.0.2.1" );
   }
   EXPECT_NE( reason( "10.0.0.1." ), "" );
   EXPECT_NE( reason( ".10.0.1" ), "" );
   EXPECT_NE( reason( "10.0.0.1/24" ), "" );
   EXPECT_NE( reason( "0x0a.0.0.1" ), "" );
}

TEST( IpGenAddr, SaysWhatIsWrongWithAnIpv6Address ) {
   auto const says = []( std::string const & text, std::string const & why ) {
      EXPECT_EQ( reason( text ), "'" + text + "' is not an IP address: " + why );
   };
   std::string const needsEight = "without '::' an IPv6 address has eight groups";
   std::string const hasEmpty =
      "it has an empty group; only one '::' may stand for groups of zeros";
   std::string const noZeros = "'::' leaves no group of zeros for it to stand for";
   says( "1:2:3:4:5:6:7", needsEight );
   says( "1:2:3:4:5:6:7:8:9", "it has more than eight groups" );
   says( "1:2:3:4:5:6:7:1.2.3.4", "it has more than eight groups" );
   says( "1:2:3:4:5:1.2.3.4", needsEight );
   says( "1::2::3", hasEmpty );
   says( ":::1", hasEmpty );
   says( ":1::", hasEmpty );
   says( "1::2:", hasEmpty );
   says( ":", hasEmpty );
   says( "1:2:3:4::5:6:7:8", noZeros );
   says( "1:2:3:4:5:6::1.2.3.4", noZeros );
   says( "2001:db8::12345", "'12345' is not a group of one to four hexadecimal digits" );
   says( "2001:db8::g", "'g' is not a group of one to four hexadecimal digits" );
   says( "1.2.3.4::", "'1.2.3.4' is not a group of one to four hexadecimal digits" );
   says( "::1.2.3.4:5", "'1.2.3.4' is not a group of one to four hexadecimal digits" );
   says( "::1.2.3.04", "'04' has a leading zero" );
   says( "fe80::1%eth0", "'1%eth0' is not a group of one to four hexadecimal digits" );
   says( "2001:db8::1/64", "'1/64' is not a group of one to four hexadecimal digits" );
}

TEST( IpGenAddr, FamilyIsPartOfTheValue ) {
   EXPECT_NE( IpGenAddr::fromString( "192.0.2.1" ), IpGenAddr::fromString( "::ffff:192.0.2.1" ) );
   EXPECT_NE( IpGenAddr::fromString( "0.0.0.0" ), IpGenAddr::fromString( "::" ) );
}

TEST( IpGenAddr, IsOrderedByFamilyThenBytes ) {
   std::vector< std::string > const ascending = {
      "0.0.0.0", "9.255.255.255", "10.0.0.1",    "10.0.0.2",       "192.0.2.1", "::",
      "::1",     "0:0:0:1::",     "2001:db8::1", "2001:db8:0:1::", "fe80::",    "ff02::1"
   };
   std::vector< IpGenAddr > addresses( ascending.size() );
   std::transform( ascending.begin(), ascending.end(), addresses.begin(), &IpGenAddr::fromString );
   EXPECT_TRUE( std::is_sorted( addresses.begin(), addresses.end(), std::less_equal<>() ) );
}

TEST( IpGenAddr, NeighbouringVtepsHashApart ) {
   std::unordered_set< std::size_t > hashes;
   std::size_t addresses = 0;
   for ( U8 high = 0; high < 16; ++high ) {
      for ( int low = 0; low < 256; ++low ) {
         U8 const last = static_cast< U8 >( low );
         std::hash< IpGenAddr > const hash;
         hashes.insert( hash( IpGenAddr::ipv4( { 10, 0, high, last } ) ) );
         hashes.insert( hash( IpGenAddr::ipv6( { 0x20, 1, 0xd, 0xb8, 0, 0, high, last } ) ) );
         hashes.insert( hash(
            IpGenAddr::ipv6( { 0xfd, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, high, last } ) ) );
         addresses += 3;
      }
   }
   EXPECT_EQ( hashes.size(), addresses );
}

RC_GTEST_PROP( IpGenAddr, AnyAddressIsReadBack, ( IpGenAddr const & address ) ) {
   RC_ASSERT( IpGenAddr::fromString( address.stringValue() ) == address );
   RC_ASSERT( Quelm::fromText< IpGenAddr >( Quelm::textOf( address ) ) == address );
}

RC_GTEST_PROP( IpGenAddr, AnyTwoAddressesAreOrdered,
               ( IpGenAddr const & a, IpGenAddr const & b ) ) {
   checkOrderAndHash( a, b );
   RC_ASSERT( ( a < b ) ==
              ( std::pair( a.family(), a.bytes() ) < std::pair( b.family(), b.bytes() ) ) );
}

// The C library writes the deprecated IPv4-compatible addresses (::/96) dotted, RFC 5952 does not.
bool isIpv4Compatible( std::array< U8, 16 > const & bytes ) {
   return std::all_of( bytes.begin(), bytes.begin() + 12, []( U8 byte ) { return byte == 0; } );
}

RC_GTEST_PROP( IpGenAddr, IsWrittenAsTheCLibraryDoes, ( IpGenAddr const & address ) ) {
   bool const isIpv4 = address.family() == IpGenAddr::Family::ipv4;
   std::array< U8, 16 > const bytes = address.bytes();
   RC_PRE( isIpv4 || !isIpv4Compatible( bytes ) );
   std::array< char, INET6_ADDRSTRLEN > text{};
   inet_ntop( isIpv4 ? AF_INET : AF_INET6, bytes.data(), text.data(), text.size() );
   RC_ASSERT( address.stringValue() == text.data() );
}

using Pieces = std::vector< std::string >;

// Pieces of addresses, joined as the pieces of an address are: some are one, many are not quite.
rc::Gen< std::string > nearAddresses( char separator, std::size_t most,
                                      rc::Gen< std::string > const & piece ) {
   auto const join = [ separator ]( Pieces const & pieces ) {
      std::string text = pieces.front();
      for ( std::size_t n = 1; n < pieces.size(); ++n ) {
         text += separator + pieces[ n ];
      }
      return text;
   };
   auto const pieces = [ piece ]( std::size_t count ) {
      return rc::gen::container< Pieces >( count, piece );
   };
   auto const count = rc::gen::inRange< std::size_t >( 3, most + 1 );
   return rc::gen::map( rc::gen::mapcat( count, pieces ), join );
}

RC_GTEST_PROP( IpGenAddr, ReadsWhatTheCLibraryReads, () ) {
   auto const number = rc::gen::weightedElement< std::string >(
      { { 9, "0" }, { 9, "10" }, { 9, "255" }, { 1, "01" }, { 1, "256" } } );
   auto const group = rc::gen::weightedElement< std::string >(
      { { 9, "0" }, { 9, "dB8" }, { 9, "00ff" }, { 4, "" }, { 1, "12345" }, { 1, "1.2.3.4" } } );
   std::string const text =
      *rc::gen::oneOf( nearAddresses( '.', 5, number ), nearAddresses( ':', 9, group ) );
   std::array< U8, 16 > bytes{};
   bool const isIpv6 = inet_pton( AF_INET6, text.c_str(), bytes.data() ) == 1;
   bool const isIpv4 = inet_pton( AF_INET, text.c_str(), bytes.data() ) == 1;
   RC_CLASSIFY( isIpv6 || isIpv4, "an address" );
   RC_ASSERT( reason( text ).empty() == ( isIpv6 || isIpv4 ) );
   if ( isIpv6 || isIpv4 ) {
      RC_ASSERT( IpGenAddr::fromString( text ).bytes() == bytes );
   }
}

}  // namespace IpGenAddrTest
