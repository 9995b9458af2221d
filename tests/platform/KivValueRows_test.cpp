// Value types in the generic interface: a module makes them known by name, and their fields are
// read and written by name, as text, without knowing their class.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <Kiv/ValueRows.h>
#include <Quelm/Error.h>

#include "support/Switch.h"
#include "support/Table.h"

namespace KivValueRowsTest {

class Tunnel : public Quelm::Value {
   QUELM_VALUE( Tunnel, "Support::Tunnel" )
   QUELM_FIELD( name, std::string )
   QUELM_FIELD( vni, U32 )
};

class Route : public Quelm::Value {
   QUELM_VALUE( Route, "Support::Route" )
   QUELM_FIELD( tunnel, Tunnel )
   QUELM_FIELD( isUp, bool )
};

}  // namespace KivValueRowsTest

KIV_DEFINE_VALUE( KivValueRowsTest::Tunnel )
KIV_DEFINE_VALUE( KivValueRowsTest::Route )

namespace KivValueRowsTest {

Kiv::Attribute const & attribute( std::string const & type, std::string const & name ) {
   Kiv::Type const * const found = Kiv::typeNamed( type );
   QUELM_ASSERT( found && found->find( name ) );
   return *found->find( name );
}

constexpr char const * kLeaf2 = "Support::Tunnel( name=leaf2, vni=10100 )";

TEST( KivValueRows, TypeIsFoundByItsNameWithItsFieldsInOrder ) {
   Kiv::Type const * const type = Kiv::typeNamed( "Support::Route" );
   ASSERT_NE( type, nullptr );
   EXPECT_EQ( type->name(), "Support::Route" );
   EXPECT_EQ( type->base(), nullptr );
   EXPECT_FALSE( type->create() );
   EXPECT_EQ( Support::tableOf( *type ),
              ( std::vector< std::string >{ "tunnel: value -> Support::Tunnel",
                                            "isUp: value -> bool" } ) );
   EXPECT_EQ( type->find( "vni" ), nullptr );
}

TEST( KivValueRows, FieldIsReadOutOfAValue ) {
   EXPECT_EQ( attribute( "Support::Tunnel", "vni" ).textIn( kLeaf2 ), "10100" );
   std::string const route = "Support::Route( tunnel=" + std::string( kLeaf2 ) + ", isUp=true )";
   EXPECT_EQ( attribute( "Support::Route", "tunnel" ).textIn( route ), kLeaf2 );
   EXPECT_EQ( attribute( "Support::Route", "isUp" ).textIn( route ), "true" );
}

TEST( KivValueRows, ValueIsMadeWithAnotherField ) {
   EXPECT_EQ( attribute( "Support::Tunnel", "name" ).valueWith( kLeaf2, "\"leaf 3\"" ),
              "Support::Tunnel( name=\"leaf 3\", vni=10100 )" );
   EXPECT_EQ( attribute( "Support::Tunnel", "vni" ).valueWith( kLeaf2, "0x10" ),
              "Support::Tunnel( name=leaf2, vni=16 )" );
}

TEST( KivValueRows, TextThatIsNotTheValuesOrNotTheFieldsIsRefused ) {
   Kiv::Attribute const & vni = attribute( "Support::Tunnel", "vni" );
   EXPECT_THROW( vni.textIn( "Support::Tunnel( name=leaf2, vni=10100" ),
                 Quelm::AttributeTextError );
   EXPECT_THROW( vni.textIn( "Support::Route( isUp=true )" ), Quelm::TextError );
   EXPECT_THROW( vni.valueWith( kLeaf2, "many" ), Quelm::TextError );
}

TEST( KivValueRows, FieldAndAttributeOfAnEntityAreNotTakenForEachOther ) {
   auto const port = Quelm::make< Support::Port >( U16{ 5 } );
   Kiv::Attribute const & vni = attribute( "Support::Tunnel", "vni" );
   EXPECT_THROW( vni.text( *port, "" ), Quelm::AccessError );
   EXPECT_THROW( vni.textIs( *port, "", "1" ), Quelm::AccessError );
   Kiv::Attribute const & speed = attribute( "Support::Port", "speed" );
   EXPECT_THROW( speed.textIn( kLeaf2 ), Quelm::AccessError );
   EXPECT_THROW( speed.valueWith( kLeaf2, "1" ), Quelm::AccessError );
}

}  // namespace KivValueRowsTest
