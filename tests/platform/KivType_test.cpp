// A class's attribute lines become its table: in the order of declaration, the base's first, each
// with an identifier that is its position. The register knows every type by name.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <string>
#include <vector>

#include <Kiv/Rows.h>

#include "support/Switch.h"
#include "support/Table.h"

namespace KivTypeTest {

using Kiv::Type;
using Support::Chassis;
using Support::FabricPort;
using Support::Port;
using Support::Switch;
using Table = std::vector< std::string >;

// A type that is defined and does not register.
class Visitor : public Port {
   KIV_ENTITY( Visitor, Port )

   // Lines of other kinds between the rows do not count.
   KIV_VALUE( first, bool )
   U32 plain = 0;

   KIV_VALUE( second, std::string )

   Visitor() : Port( 0 ) {}
};

char const * Visitor::kivTypeName() {
   return "Visitor";
}
Type const & Visitor::kivType() {
   static Type const type = Kiv::makeType< Visitor >();
   return type;
}
Type const & Visitor::typeData() const {
   return kivType();
}

TEST( KivType, TableListsTheAttributesInTheOrderOfDeclaration ) {
   EXPECT_EQ( Switch::kivType().name(), "Support::Switch" );
   EXPECT_EQ( Support::tableOf( Switch::kivType() ),
              ( Table{
                 "mtu: value -> U32",
                 "banner: value -> string",
                 "uplink: reference -> Support::Port",
                 "console: reference -> Support::Port, read-only",
                 "neighbour: reference -> Support::Switch, read-only",
                 "vlan: set U16",
                 "route: collection string -> U32",
                 "note: collection U16 -> string",
                 "port: collection of entities U16 -> Support::Port",
                 "fabricPort: collection of entities U16 -> Support::FabricPort, read-only",
                 "metric( string ) -> U32",
                 "shutdown()",
                 "fastestPort() -> Support::Port",
                 "model() -> string",
              } ) );
}

TEST( KivType, AttributesOfTheBaseComeFirst ) {
   Table expected = Support::tableOf( Switch::kivType() );
   expected.push_back( "slotPower: collection U8 -> S32" );
   expected.push_back( "shutdown( U8 )" );
   EXPECT_EQ( Support::tableOf( Chassis::kivType() ), expected );
   EXPECT_EQ( Chassis::kivType().base(), &Switch::kivType() );
   EXPECT_EQ( Switch::kivType().base(), &Kiv::Entity::kivType() );
   EXPECT_EQ( Kiv::Entity::kivType().base(), nullptr );
}

TEST( KivType, IdentifierIsThePositionFromOne ) {
   static_assert( Switch::mtuAttr() == 1 );
   static_assert( Switch::modelAttr() == 14 );
   static_assert( Chassis::slotPowerAttr() == 15 );
   static_assert( FabricPort::numberAttr() == 1 && FabricPort::laneAttr() == 3 );
   EXPECT_EQ( Chassis::kivType().attribute( Switch::routeAttr() ).name(), "route" );
   EXPECT_EQ( Chassis::kivType().attribute( Chassis::slotPowerAttr() ).name(), "slotPower" );
   EXPECT_EQ( FabricPort::kivType().attribute( FabricPort::laneAttr() ).name(), "lane" );
}

TEST( KivType, OtherLinesOfTheClassDoNotCount ) {
   static_assert( Visitor::firstAttr() == 3 && Visitor::secondAttr() == 4 );
   EXPECT_EQ( Support::tableOf( Visitor::kivType() ),
              ( Table{ "number: key -> U16, read-only", "speed: value -> U32",
                       "first: value -> bool", "second: value -> string" } ) );
}

TEST( KivType, AttributesAreFoundByName ) {
   Type const & type = Chassis::kivType();
   EXPECT_EQ( type.find( "mtu" ), &type.attribute( Switch::mtuAttr() ) );
   EXPECT_EQ( type.find( "slotPower" ), &type.attribute( Chassis::slotPowerAttr() ) );
   EXPECT_EQ( type.find( "Mtu" ), nullptr );
   EXPECT_EQ( type.find( "" ), nullptr );
   EXPECT_EQ( Switch::kivType().find( "slotPower" ), nullptr );
}

TEST( KivType, OperationsAreFoundByNameAndNumberOfArguments ) {
   Type const & type = Chassis::kivType();
   EXPECT_EQ( type.findOperation( "shutdown", 0 ), &type.attribute( Switch::shutdownAttr() ) );
   EXPECT_EQ( type.findOperation( "shutdown", 1 ), &type.attribute( Chassis::shutdownAttr() ) );
   EXPECT_EQ( Switch::kivType().findOperation( "shutdown", 1 ), nullptr );
   EXPECT_EQ( type.findOperation( "metric", 2 ), Switch::kivType().findOperation( "metric", 2 ) );
   EXPECT_EQ( Support::rowOf( *type.findOperation( "metric", 2 ) ),
              "metric( string, U32 ) -> U32" );
}

TEST( KivType, AskingForAnIdentifierOutsideTheTableIsAFailedAssertion ) {
   Type const & type = Port::kivType();
   char const * const said = "Assertion 'id >= 1 && id <= all_\\.size\\(\\)' failed\\.";
   EXPECT_EXIT( type.attribute( 0 ), testing::KilledBySignal( SIGABRT ), said );
   EXPECT_EXIT( type.attribute( 3 ), testing::KilledBySignal( SIGABRT ), said );
}

TEST( KivType, RegisterKnowsEveryDefinedTypeByName ) {
   EXPECT_EQ( Kiv::typeNamed( "Support::Chassis" ), &Chassis::kivType() );
   EXPECT_EQ( Kiv::typeNamed( "Kiv::Clock" )->name(), "Kiv::Clock" );
   EXPECT_EQ( Kiv::typeNamed( "Chassis" ), nullptr );
   EXPECT_EQ( Kiv::typeNamed( "Visitor" ), nullptr );
}

TEST( KivType, RegisterListsTheTypesByName ) {
   std::vector< std::string > names;
   for ( Type const * type : Kiv::types() ) {
      names.push_back( type->name() );
   }
   EXPECT_TRUE( std::is_sorted( names.begin(), names.end() ) );
   EXPECT_EQ( std::count( names.begin(), names.end(), "Support::Switch" ), 1 );
}

TEST( KivType, TypeIsInTheRegisterAsLongAsItsRegistrationLives ) {
   {
      Kiv::TypeRegistration const registration( Visitor::kivType() );
      EXPECT_EQ( Kiv::typeNamed( "Visitor" ), &Visitor::kivType() );
   }
   EXPECT_EQ( Kiv::typeNamed( "Visitor" ), nullptr );
}

TEST( KivType, EntityKnownByANameIsCreatedFromIt ) {
   Quelm::Ptr< Kiv::Entity > const made =
      Kiv::typeNamed( "Support::Chassis" )->create()( "spine1" );
   EXPECT_EQ( made->identity(), "spine1" );
   EXPECT_EQ( &made->typeData(), &Chassis::kivType() );
   EXPECT_EQ( made->users(), 1U );
   EXPECT_FALSE( Kiv::typeNamed( "Support::Port" )->create() );
}

TEST( KivType, EntityIsKnownByItsKeyOrItsName ) {
   EXPECT_EQ( Quelm::make< FabricPort >( U16{ 9 }, U8{ 2 } )->identity(), "9" );
   EXPECT_EQ( Quelm::make< Switch >( "leaf1" )->identity(), "leaf1" );
   EXPECT_EQ( Quelm::make< Switch >( "leaf1" )->name(), "leaf1" );
}

}  // namespace KivTypeTest
