// Every text form is read back to the value that was written; anything else is refused with the
// place and what was expected there.
#include <gtest/gtest.h>

#include <csignal>
#include <limits>
#include <sstream>
#include <string>

#include <rapidcheck/gtest.h>

#include <Quelm/Text.h>

#include "Generators.h"

namespace QuelmTextTest {

using Quelm::fromText;
using Quelm::textOf;

template< typename T > void expectLimitsRoundTrip() {
   for ( T const value : { std::numeric_limits< T >::min(), std::numeric_limits< T >::max() } ) {
      EXPECT_EQ( fromText< T >( textOf( value ) ), value ) << Quelm::typeName< T >();
   }
}

TEST( QuelmText, NumbersReachTheLimitsOfTheirTypes ) {
   expectLimitsRoundTrip< U8 >();
   expectLimitsRoundTrip< U16 >();
   expectLimitsRoundTrip< U32 >();
   expectLimitsRoundTrip< U64 >();
   expectLimitsRoundTrip< S32 >();
   expectLimitsRoundTrip< S64 >();
   EXPECT_EQ( textOf( U64{ 18446744073709551615U } ), "18446744073709551615" );
   EXPECT_EQ( textOf( S32{ -5 } ), "-5" );
}

TEST( QuelmText, NumbersMayBeTypedInHexadecimal ) {
   EXPECT_EQ( fromText< U32 >( "0xffFF" ), 0xffffU );
   EXPECT_EQ( fromText< U64 >( "0x1000000" ), 0x1000000U );
}

TEST( QuelmText, NumberOutsideItsTypeIsRefusedWhereItStands ) {
   EXPECT_EQ( refusal< U8 >( "256" ), "expected a number of type U8 at character 1, found '256'" );
   EXPECT_EQ( refusal< U16 >( "-1" ), "expected a number of type U16 at character 1, found '-1'" );
   EXPECT_EQ( refusal< U32 >( "0x100000000" ),
              "expected a number of type U32 at character 1, found '0x100000000'" );
   EXPECT_EQ( refusal< S32 >( "" ),
              "expected a number of type S32 at character 1, found the end of the text" );
   EXPECT_EQ( refusal< U32 >( "0x" ), "expected a number of type U32 at character 1, found '0x'" );
}

TEST( QuelmText, NumberEndsWithItsLastDigit ) {
   Quelm::TextReader in( "17-20" );
   EXPECT_EQ( Quelm::TextForm< U32 >::read( in ), 17U );
   EXPECT_EQ( in.rest(), "-20" );
   EXPECT_EQ( refusal< U32 >( "12 " ), "expected the end of the text at character 3, found ' '" );
   EXPECT_EQ( refusal< U32 >( "12f" ), "expected the end of the text at character 3, found 'f'" );
}

TEST( QuelmText, BoolIsTrueOrFalse ) {
   EXPECT_EQ( textOf( true ), "true" );
   EXPECT_EQ( textOf( false ), "false" );
   EXPECT_TRUE( fromText< bool >( "true" ) );
   EXPECT_FALSE( fromText< bool >( "false" ) );
   EXPECT_EQ( refusal< bool >( "1" ), "expected 'true' or 'false' at character 1, found '1'" );
   EXPECT_EQ( refusal< bool >( "trueish" ),
              "expected the end of the text at character 5, found 'ish'" );
}

TEST( QuelmText, StringOfNameCharactersIsBareAnyOtherIsQuoted ) {
   std::string const bare = "tenant_a-1.Port-Channel7/3:@#";
   EXPECT_EQ( textOf( bare ), bare );
   EXPECT_EQ( textOf( std::string() ), "\"\"" );
   EXPECT_EQ( textOf( std::string( "two words" ) ), "\"two words\"" );
   EXPECT_EQ( textOf( std::string( "a \"b\" \\" ) ), "\"a \\\"b\\\" \\\\\"" );
}

TEST( QuelmText, UnfinishedStringIsRefused ) {
   EXPECT_EQ( refusal< std::string >( "\"open" ),
              "expected a closing '\"' at character 6, found the end of the text" );
   EXPECT_EQ( refusal< std::string >( "\"open\\" ),
              "expected a closing '\"' at character 7, found the end of the text" );
   EXPECT_EQ( refusal< std::string >( "" ),
              "expected a name or a quoted string at character 1, found the end of the text" );
   EXPECT_EQ( refusal< std::string >( "\"a\"b" ),
              "expected the end of the text at character 4, found 'b'" );
}

RC_GTEST_PROP( QuelmText, AnyStringIsReadBack, ( std::string const & value ) ) {
   RC_ASSERT( fromText< std::string >( textOf( value ) ) == value );
}

RC_GTEST_PROP( QuelmText, AnyNumberIsReadBack, ( S64 number, U16 small ) ) {
   RC_ASSERT( fromText< S64 >( textOf( number ) ) == number );
   RC_ASSERT( fromText< U16 >( textOf( small ) ) == small );
}

TEST( QuelmText, RefusalShowsTheTextAroundThePlace ) {
   Quelm::TextReader in( "vni=none, and what comes after that" );
   in.expect( "vni=" );
   EXPECT_FALSE( in.accept( "10100" ) );
   try {
      in.expect( "0x" );
      FAIL() << "'0x' does not come next";
   } catch ( Quelm::TextError const & error ) {
      EXPECT_STREQ( error.what(),
                    "expected '0x' at character 5, found 'none, and what comes aft'" );
   }
   EXPECT_EQ( in.peek(), 'n' );
}

TEST( QuelmText, TypesHaveNames ) {
   EXPECT_EQ( Quelm::typeName< U8 >(), "U8" );
   EXPECT_EQ( Quelm::typeName< U16 >(), "U16" );
   EXPECT_EQ( Quelm::typeName< U32 >(), "U32" );
   EXPECT_EQ( Quelm::typeName< U64 >(), "U64" );
   EXPECT_EQ( Quelm::typeName< S32 >(), "S32" );
   EXPECT_EQ( Quelm::typeName< S64 >(), "S64" );
   EXPECT_EQ( Quelm::typeName< bool >(), "bool" );
   EXPECT_EQ( Quelm::typeName< std::string >(), "string" );
   EXPECT_EQ( Quelm::typeName< Pelk::IpGenAddr >(), "Pelk::IpGenAddr" );
   EXPECT_EQ( Quelm::typeName< Pelk::IntfId >(), "Pelk::IntfId" );
   EXPECT_EQ( Quelm::typeName< L3::VrfName >(), "L3::VrfName" );
   EXPECT_EQ( Quelm::typeName< Brum::PerUnitBitmap >(), "Brum::PerUnitBitmap" );
   EXPECT_EQ( Quelm::typeName< VornalTypes::VornalPort >(), "VornalTypes::VornalPort" );
   EXPECT_EQ( Quelm::typeName< VornalTypes::VornalPortList >(), "VornalTypes::VornalPortList" );
   EXPECT_EQ( Quelm::typeName< VornalCommon::ClassId >(), "VornalCommon::ClassId" );
   EXPECT_EQ( Quelm::typeName< Vxlan::VniExtOrNone >(), "Vxlan::VniExtOrNone" );
   EXPECT_EQ( Quelm::typeName< Vxlan::SwTunnelGroupId >(), "Vxlan::SwTunnelGroupId" );
   EXPECT_EQ( Quelm::typeName< VornalCentral::RemoteVtepKey >(), "VornalCentral::RemoteVtepKey" );
}

TEST( QuelmText, StreamGetsTheTextForm ) {
   std::ostringstream out;
   out << Pelk::IpGenAddr::ipv4( { 10, 0, 0, 2 } ) << ' ' << VornalTypes::VornalPort( 1, 5, 2 );
   EXPECT_EQ( out.str(), "10.0.0.2 unit1/port5/mod2" );
}

TEST( QuelmText, FormatTakesItsValuesInOrder ) {
   EXPECT_EQ( Quelm::formatted( "from vtep IP %s on %s", { "10.0.0.2", "Ethernet1" } ),
              "from vtep IP 10.0.0.2 on Ethernet1" );
   EXPECT_EQ( Quelm::formatted( "vni %d - No-op", { "10100" } ), "vni 10100 - No-op" );
   EXPECT_EQ( Quelm::formatted( "%s", { "%s and %d" } ), "%s and %d" );
   EXPECT_EQ( Quelm::formatted( "100% full", {} ), "100% full" );
}

TEST( QuelmTextDeathTest, FormatAndValuesMustAgreeInNumber ) {
   EXPECT_EXIT( Quelm::formatted( "%s on %s", { "10.0.0.2" } ), testing::KilledBySignal( SIGABRT ),
                "a value for every %s and %d of the format" );
   EXPECT_EXIT( Quelm::formatted( "no room", { "10.0.0.2" } ), testing::KilledBySignal( SIGABRT ),
                "a %s or %d for every value" );
}

}  // namespace QuelmTextTest
