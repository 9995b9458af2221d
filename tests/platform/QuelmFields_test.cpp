// A class that declares its fields one per line gets storage, accessors, and a text form that is
// read back exactly; a field that cannot be read is named.
#include <gtest/gtest.h>

#include <compare>
#include <concepts>
#include <sstream>
#include <string>

#include <rapidcheck/gtest.h>

#include <Quelm/Fields.h>

#include "Generators.h"

namespace QuelmFieldsTest {

class Tunnel : public Quelm::Value {
   QUELM_VALUE( Tunnel, "Test::Tunnel" )
   QUELM_FIELD( name, std::string )
   QUELM_FIELD( vni, U32 )

   // Fields need not stand on neighbouring lines.
   QUELM_FIELD( vtepIp, Pelk::IpGenAddr )

   friend bool operator==( Tunnel const &, Tunnel const & ) = default;
};

class Segment : public Quelm::Value {
   QUELM_VALUE( Segment, "Test::Segment" )
   QUELM_FIELD( intfId, Pelk::IntfId )
   QUELM_FIELD( tunnel, Tunnel )
   QUELM_FIELD( isUp, bool )
};

class Nothing : public Quelm::Value {
   QUELM_VALUE( Nothing, "Test::Nothing" )
};

Tunnel leaf2() {
   Tunnel tunnel;
   tunnel.nameIs( "leaf2" );
   tunnel.vniIs( 10100 );
   tunnel.vtepIpIs( Pelk::IpGenAddr::ipv4( { 10, 0, 0, 2 } ) );
   return tunnel;
}

constexpr char const * kLeaf2Text = "Test::Tunnel( name=leaf2, vni=10100, vtepIp=10.0.0.2 )";

TEST( QuelmFields, StartWithTheDefaultsOfTheirTypes ) {
   Tunnel const tunnel;
   EXPECT_EQ( tunnel.name(), "" );
   EXPECT_EQ( tunnel.vni(), 0U );
   EXPECT_EQ( tunnel.vtepIp(), Pelk::IpGenAddr() );
}

TEST( QuelmFields, AreWrittenByNameInTheirOrder ) {
   EXPECT_EQ( Quelm::textOf( leaf2() ), kLeaf2Text );
   EXPECT_EQ( Quelm::textOf( Tunnel() ), "Test::Tunnel( name=\"\", vni=0, vtepIp=0.0.0.0 )" );
   EXPECT_EQ( Quelm::textOf( Nothing() ), "Test::Nothing( )" );
   EXPECT_EQ( Quelm::typeName< Tunnel >(), "Test::Tunnel" );
}

TEST( QuelmFields, AreReadBack ) {
   EXPECT_EQ( Quelm::fromText< Tunnel >( kLeaf2Text ), leaf2() );
   EXPECT_EQ( Quelm::textOf( Quelm::fromText< Nothing >( "Test::Nothing( )" ) ),
              "Test::Nothing( )" );
}

TEST( QuelmFields, MayBeValuesWithFields ) {
   Segment segment;
   segment.tunnelIs( leaf2() );
   std::string const text =
      "Test::Segment( intfId=, tunnel=" + std::string( kLeaf2Text ) + ", isUp=false )";
   EXPECT_EQ( Quelm::textOf( segment ), text );
   EXPECT_EQ( Quelm::textOf( Quelm::fromText< Segment >( text ) ), text );
}

RC_GTEST_PROP( QuelmFields, OfAnyValuesAreReadBack,
               ( std::string const & name, U32 vni, Pelk::IpGenAddr const & vtepIp ) ) {
   Tunnel tunnel;
   tunnel.nameIs( name );
   tunnel.vniIs( vni );
   tunnel.vtepIpIs( vtepIp );
   RC_ASSERT( Quelm::fromText< Tunnel >( Quelm::textOf( tunnel ) ) == tunnel );
}

TEST( QuelmFields, FieldThatCannotBeReadIsNamed ) {
   auto const reading = []( std::string_view text ) { return Quelm::fromText< Tunnel >( text ); };
   EXPECT_THROW( reading( "Test::Tunnel( name=leaf2, vni=many, vtepIp=10.0.0.2 )" ),
                 Quelm::AttributeTextError );
   EXPECT_EQ( refusal< Tunnel >( "Test::Tunnel( name=leaf2, vni=many, vtepIp=10.0.0.2 )" ),
              "cannot read attribute 'vni': expected a number of type U32 at character 31, found "
              "'many, vtepIp=10.0.0.2 )'" );
   EXPECT_EQ( refusal< Tunnel >( "Test::Tunnel( name=leaf2, vtepIp=10.0.0.2 )" ),
              "cannot read attribute 'vni': expected 'vni' at character 27, found "
              "'vtepIp=10.0.0.2 )'" );
   EXPECT_EQ( refusal< Tunnel >( "Test::Tunnel( name=leaf2, vni=1, vtepIp=10.0.0.256 )" ),
              "cannot read attribute 'vtepIp': '10.0.0.256' is not an IP address: '256' is not a "
              "number from 0 to 255" );
}

TEST( QuelmFields, FieldInsideAFieldIsNamedByItsWay ) {
   EXPECT_EQ( refusal< Segment >( "Test::Segment( intfId=Ethernet1, tunnel=Test::Tunnel( name=x, "
                                  "vni=, vtepIp=::1 ), isUp=true )" ),
              "cannot read attribute 'tunnel': cannot read attribute 'vni': expected a number of "
              "type U32 at character 67, found ', vtepIp=::1 ), isUp=tru'" );
}

TEST( QuelmFields, TypeNameBelongsToTheFirstFieldAndTheClosingTextToTheLast ) {
   EXPECT_EQ( refusal< Tunnel >( "Test::Segment( )" ),
              "cannot read attribute 'name': expected 'Test::Tunnel' at character 1, found "
              "'Test::Segment( )'" );
   EXPECT_EQ( refusal< Tunnel >( "Test::Tunnel( name=a, vni=1, vtepIp=::1" ),
              "cannot read attribute 'vtepIp': expected ' )' at character 40, found the end of the "
              "text" );
   EXPECT_EQ( refusal< Nothing >( "Test::Nothing(" ), "expected '( )' at character 14, found '('" );
   EXPECT_EQ( refusal< Tunnel >( "Test::Tunnel( name=a, vni=1, vtepIp=::1 ) " ),
              "expected the end of the text at character 42, found ' '" );
}

// Wherever the text is cut, the first field is named whose text is not whole. The comma in front of
// a field belongs to it, and the closing text to the last.
TEST( QuelmFields, TextThatIsCutOffNamesTheFieldAtWhichItEnds ) {
   std::string const text = kLeaf2Text;
   std::size_t const vni = text.find( ", vni" );
   std::size_t const vtepIp = text.find( ", vtepIp" );
   for ( std::size_t length = 0; length < text.size(); ++length ) {
      std::string const cut = text.substr( 0, length );
      std::string const missing = length <= vni ? "name" : length <= vtepIp ? "vni" : "vtepIp";
      std::string const said = refusal< Tunnel >( cut );
      // "leaf" for "leaf2" is a name, and the text ends at what is to follow it.
      bool const isNameRead = length > text.find( '=' ) + 1 && length <= vni;
      bool const isVniRead = length > text.find( '=', vni ) + 1 && length <= vtepIp;
      std::string const named = isNameRead ? "vni" : isVniRead ? "vtepIp" : missing;
      EXPECT_TRUE( said.starts_with( "cannot read attribute '" + named + "'" ) )
         << "'" << cut << "': " << said;
   }
}

TEST( QuelmFields, ValueIsComparableOnlyIfItsClassSaysHow ) {
   static_assert( std::equality_comparable< Tunnel > );
   static_assert( !std::equality_comparable< Segment > );
   static_assert( !std::three_way_comparable< Tunnel > );
   Tunnel other = leaf2();
   EXPECT_EQ( other, leaf2() );
   other.vniIs( 10200 );
   EXPECT_NE( other, leaf2() );
}

TEST( QuelmFields, StreamGetsTheTextForm ) {
   std::ostringstream out;
   out << leaf2();
   EXPECT_EQ( out.str(), kLeaf2Text );
}

}  // namespace QuelmFieldsTest
