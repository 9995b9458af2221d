// The generic interface: every attribute by name, as text, through the same accessors as everybody
// else; and what is refused is refused before anything has changed.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <Quelm/Error.h>

#include "support/Journal.h"
#include "support/Switch.h"

namespace KivGenericTest {

using Kiv::Attribute;
using Quelm::AccessError;
using Quelm::Ptr;
using Quelm::TextError;
using Support::Chassis;
using Support::FabricPort;
using Support::Journal;
using Support::Port;
using Support::Switch;
using Texts = std::vector< std::string >;

template< typename Act > std::string refusal( Act act ) {
   try {
      act();
      return "not refused";
   } catch ( AccessError const & error ) {
      return error.what();
   }
}

class KivGeneric : public testing::Test {
 protected:
   Attribute const & attribute( std::string const & name ) {
      Attribute const * const found = leaf1->typeData().find( name );
      QUELM_ASSERT( found );
      return *found;
   }
   std::string call( std::string const & name, Texts const & arguments ) {
      Attribute const * const found = leaf1->typeData().findOperation( name, arguments.size() );
      QUELM_ASSERT( found );
      return found->call( *leaf1, arguments );
   }
   // What has been announced since the last time.
   Journal news() { return std::exchange( seen, {} ); }

   Ptr< Switch > leaf1 = Quelm::make< Switch >( "leaf1" );
   Journal seen;
   Support::Scribe< Switch > scribe{ leaf1, seen };
};

TEST_F( KivGeneric, ValueIsReadAndWrittenAsText ) {
   EXPECT_EQ( attribute( "mtu" ).text( *leaf1, "" ), "0" );
   attribute( "mtu" ).textIs( *leaf1, "", "9000" );
   EXPECT_EQ( leaf1->mtu(), 9000U );
   attribute( "banner" ).textIs( *leaf1, "", "\"keep out\"" );
   EXPECT_EQ( leaf1->banner(), "keep out" );
   EXPECT_EQ( attribute( "banner" ).text( *leaf1, "" ), "\"keep out\"" );
   EXPECT_EQ( news(), ( Journal{ "leaf1 mtu: 0 -> 9000", "leaf1 banner: \"\" -> \"keep out\"" } ) );
}

TEST_F( KivGeneric, WritingAnEqualTextNotifiesNobody ) {
   attribute( "mtu" ).textIs( *leaf1, "", "9000" );
   attribute( "route" ).textIs( *leaf1, "default", "1" );
   news();
   attribute( "mtu" ).textIs( *leaf1, "", "0x2328" );
   attribute( "route" ).textIs( *leaf1, "default", "1" );
   EXPECT_EQ( news(), Journal{} );
}

TEST_F( KivGeneric, CollectionIsReadWrittenAndDeletedByKey ) {
   Attribute const & route = attribute( "route" );
   EXPECT_FALSE( route.has( *leaf1, "default" ) );
   EXPECT_EQ( route.text( *leaf1, "default" ), "0" );
   route.textIs( *leaf1, "default", "7" );
   route.textIs( *leaf1, "10.0.0.0/8", "3" );
   EXPECT_TRUE( route.has( *leaf1, "default" ) );
   EXPECT_EQ( route.text( *leaf1, "default" ), "7" );
   EXPECT_EQ( route.keys( *leaf1 ), ( Texts{ "10.0.0.0/8", "default" } ) );
   route.del( *leaf1, "default" );
   route.del( *leaf1, "default" );
   EXPECT_EQ( news(), ( Journal{ "leaf1 route[default]: absent -> 7",
                                 "leaf1 route[10.0.0.0/8]: absent -> 3",
                                 "leaf1 route[default]: 7 -> absent" } ) );
}

TEST_F( KivGeneric, SetHasKeysAndNoValues ) {
   Attribute const & vlan = attribute( "vlan" );
   vlan.textIs( *leaf1, "100", "" );
   vlan.textIs( *leaf1, "20", "" );
   EXPECT_EQ( vlan.keys( *leaf1 ), ( Texts{ "20", "100" } ) );
   EXPECT_TRUE( vlan.has( *leaf1, "20" ) );
   EXPECT_EQ( refusal( [ & ] { vlan.textIs( *leaf1, "30", "true" ); } ),
              "attribute 'vlan' is a set and its members have no value" );
   vlan.del( *leaf1, "20" );
   EXPECT_EQ( vlan.keys( *leaf1 ), Texts{ "100" } );
}

TEST_F( KivGeneric, MemberIsCreatedByItsKey ) {
   Attribute const & port = attribute( "port" );
   port.textIs( *leaf1, "5", "" );
   port.textIs( *leaf1, "5", "" );
   EXPECT_EQ( port.text( *leaf1, "5" ), "Support::Port 5" );
   EXPECT_EQ( port.text( *leaf1, "6" ), "none" );
   EXPECT_EQ( port.entity( *leaf1, "5" ), leaf1->port( 5 ) );
   EXPECT_EQ( port.entity( *leaf1, "6" ), nullptr );
   EXPECT_EQ(
      refusal( [ & ] { port.textIs( *leaf1, "6", "Port" ); } ),
      "attribute 'port' is a collection of entities and its members are entities, which are "
      "created by key alone" );
   port.del( *leaf1, "5" );
   EXPECT_EQ( news(), ( Journal{ "leaf1 port[5]: absent -> Support::Port 5",
                                 "leaf1 port[5]: Support::Port 5 -> absent" } ) );
}

TEST_F( KivGeneric, MemberThatNeedsMoreThanAKeyIsInsertedAndNotCreated ) {
   Attribute const & fabricPort = attribute( "fabricPort" );
   EXPECT_FALSE( fabricPort.isWritable() );
   EXPECT_THROW( fabricPort.textIs( *leaf1, "9", "" ), AccessError );
   Ptr< FabricPort > const made = Quelm::make< FabricPort >( U16{ 9 }, U8{ 2 } );
   fabricPort.entityIs( *leaf1, made );
   EXPECT_EQ( leaf1->fabricPort( 9 ), made );
   EXPECT_EQ( refusal( [ & ] { fabricPort.entityIs( *leaf1, Quelm::make< Port >( U16{ 9 } ) ); } ),
              "attribute 'fabricPort' is a collection of entities and holds entities of type "
              "Support::FabricPort" );
   EXPECT_THROW( fabricPort.entityIs( *leaf1, nullptr ), AccessError );
   EXPECT_EQ( news(), Journal{ "leaf1 fabricPort[9]: absent -> Support::FabricPort 9" } );
}

TEST_F( KivGeneric, ReferenceIsPointedAtAnEntityAndEmptied ) {
   Attribute const & uplink = attribute( "uplink" );
   EXPECT_EQ( uplink.text( *leaf1, "" ), "none" );
   Ptr< FabricPort > const made = Quelm::make< FabricPort >( U16{ 9 }, U8{ 2 } );
   uplink.entityIs( *leaf1, made );
   EXPECT_EQ( uplink.text( *leaf1, "" ), "Support::FabricPort 9" );
   EXPECT_EQ( uplink.entity( *leaf1, "" ), made );
   EXPECT_EQ(
      refusal( [ & ] { uplink.entityIs( *leaf1, leaf1 ); } ),
      "attribute 'uplink' is a reference and holds a Support::Port, not a Support::Switch" );
   EXPECT_THROW( uplink.textIs( *leaf1, "", "Support::Port 5" ), AccessError );
   EXPECT_EQ( leaf1->uplink(), made );
   uplink.del( *leaf1, "" );
   EXPECT_EQ( leaf1->uplink(), nullptr );
   uplink.entityIs( *leaf1, made );
   uplink.entityIs( *leaf1, nullptr );
   EXPECT_EQ( leaf1->uplink(), nullptr );
}

TEST_F( KivGeneric, ReferencesOfTheClassItselfAreReadOnly ) {
   leaf1->consoleIs( Quelm::make< Port >( U16{ 1 } ) );
   leaf1->neighbourIs( leaf1.get() );
   EXPECT_EQ( attribute( "console" ).text( *leaf1, "" ), "Support::Port 1" );
   EXPECT_EQ( attribute( "neighbour" ).text( *leaf1, "" ), "Support::Switch leaf1" );
   EXPECT_EQ( attribute( "neighbour" ).entity( *leaf1, "" ), leaf1 );
   for ( char const * const name : { "console", "neighbour" } ) {
      EXPECT_FALSE( attribute( name ).isWritable() );
      EXPECT_THROW( attribute( name ).entityIs( *leaf1, nullptr ), AccessError );
      EXPECT_THROW( attribute( name ).del( *leaf1, "" ), AccessError );
   }
   leaf1->neighbourIs( nullptr );
   EXPECT_EQ( attribute( "neighbour" ).text( *leaf1, "" ), "none" );
}

TEST_F( KivGeneric, KeyIsReadAndNeverWritten ) {
   Ptr< Port > const port = leaf1->portIs( 5 );
   Attribute const & number = *port->typeData().find( "number" );
   EXPECT_EQ( number.text( *port, "" ), "5" );
   EXPECT_EQ( refusal( [ & ] { number.textIs( *port, "", "6" ); } ),
              "attribute 'number' is a key and cannot be written" );
   EXPECT_EQ( refusal( [ & ] { number.del( *port, "" ); } ),
              "attribute 'number' is a key and has nothing to delete" );
}

TEST_F( KivGeneric, TextThatIsNotTheTypesIsRefusedAndChangesNothing ) {
   leaf1->mtuIs( 1500 );
   leaf1->routeIs( "default", 1 );
   leaf1->vlanIs( 100 );
   news();
   for ( std::string const text : { "", "-1", "4294967296", "1500 ", "many" } ) {
      EXPECT_THROW( attribute( "mtu" ).textIs( *leaf1, "", text ), TextError ) << text;
      EXPECT_THROW( attribute( "route" ).textIs( *leaf1, "default", text ), TextError ) << text;
      EXPECT_THROW( attribute( "route" ).textIs( *leaf1, "10.0.0.0/8", text ), TextError ) << text;
   }
   EXPECT_THROW( attribute( "banner" ).textIs( *leaf1, "", "keep out" ), TextError );
   EXPECT_EQ( leaf1->mtu(), 1500U );
   EXPECT_EQ( leaf1->route( "default" ), 1U );
   EXPECT_EQ( leaf1->routes(), 1U );
   EXPECT_EQ( news(), Journal{} );
}

TEST_F( KivGeneric, KeyThatIsNotTheTypesIsRefusedByEveryAccess ) {
   for ( char const * const name : { "vlan", "port", "note", "fabricPort" } ) {
      Attribute const & keyed = attribute( name );
      EXPECT_THROW( keyed.has( *leaf1, "65536" ), TextError ) << name;
      EXPECT_THROW( keyed.del( *leaf1, "all" ), TextError ) << name;
      EXPECT_TRUE( keyed.keys( *leaf1 ).empty() );
   }
   EXPECT_THROW( attribute( "vlan" ).textIs( *leaf1, "one", "" ), TextError );
   EXPECT_THROW( attribute( "port" ).textIs( *leaf1, "one", "" ), TextError );
   EXPECT_THROW( attribute( "port" ).entity( *leaf1, "one" ), TextError );
   EXPECT_THROW( attribute( "note" ).textIs( *leaf1, "one", "text" ), TextError );
   EXPECT_THROW( attribute( "note" ).text( *leaf1, "one" ), TextError );
   EXPECT_EQ( news(), Journal{} );
}

TEST_F( KivGeneric, WhatAKindDoesNotOfferIsRefusedWithItsName ) {
   EXPECT_EQ( refusal( [ & ] { attribute( "mtu" ).keys( *leaf1 ); } ),
              "attribute 'mtu' is a value and has no keys" );
   EXPECT_EQ( refusal( [ & ] { attribute( "mtu" ).has( *leaf1, "" ); } ),
              "attribute 'mtu' is a value and has no keys" );
   EXPECT_EQ( refusal( [ & ] { attribute( "mtu" ).entity( *leaf1, "" ); } ),
              "attribute 'mtu' is a value and does not refer to an entity" );
   EXPECT_EQ( refusal( [ & ] { attribute( "route" ).entityIs( *leaf1, leaf1 ); } ),
              "attribute 'route' is a collection and cannot be made to refer to an entity" );
   EXPECT_EQ( refusal( [ & ] { attribute( "vlan" ).text( *leaf1, "100" ); } ),
              "attribute 'vlan' is a set and has no value to read" );
   EXPECT_EQ( refusal( [ & ] { attribute( "uplink" ).call( *leaf1, {} ); } ),
              "attribute 'uplink' is a reference and cannot be called" );
   EXPECT_EQ( refusal( [ & ] { attribute( "shutdown" ).text( *leaf1, "" ); } ),
              "attribute 'shutdown' is an operation and has no value to read" );
}

TEST_F( KivGeneric, OperationsAreCalledByNameWithTextsForArguments ) {
   leaf1->portIs( 5 )->speedIs( 100 );
   EXPECT_EQ( call( "fastestPort", {} ), "Support::Port 5" );
   EXPECT_EQ( call( "model", {} ), "\"pizza box\"" );
   EXPECT_EQ( call( "shutdown", {} ), "" );
   EXPECT_EQ( leaf1->ports(), 0U );
   EXPECT_EQ( call( "fastestPort", {} ), "none" );
}

TEST_F( KivGeneric, OverloadsAreToldApartByTheNumberOfArguments ) {
   leaf1->routeIs( "10.0.0.0/8", 3 );
   leaf1->routeIs( "default", 1 );
   EXPECT_EQ( call( "metric", {} ), "4" );
   EXPECT_EQ( call( "metric", { "default" } ), "1" );
   EXPECT_EQ( call( "metric", { "default", "10" } ), "11" );
   EXPECT_EQ( leaf1->route( "default" ), 11U );
   EXPECT_EQ( leaf1->typeData().findOperation( "metric", 3 ), nullptr );
   EXPECT_EQ( leaf1->typeData().findOperation( "metrics", 1 ), nullptr );
   EXPECT_EQ( leaf1->typeData().findOperation( "mtu", 0 ), nullptr );
}

TEST_F( KivGeneric, WrongArgumentsAreRefusedBeforeTheCall ) {
   Attribute const & metric = *leaf1->typeData().findOperation( "metric", 2 );
   news();
   EXPECT_THROW( metric.call( *leaf1, { "default", "much" } ), TextError );
   EXPECT_THROW( metric.call( *leaf1, { "two words", "1" } ), TextError );
   EXPECT_EQ( refusal( [ & ] { metric.call( *leaf1, { "default" } ); } ),
              "attribute 'metric' is an operation and takes 2 arguments" );
   EXPECT_EQ( leaf1->routes(), 0U );
   EXPECT_EQ( news(), Journal{} );
}

TEST_F( KivGeneric, DerivedTypeAnswersForItsBaseAsWell ) {
   leaf1 = Quelm::make< Chassis >( "spine1" );
   attribute( "mtu" ).textIs( *leaf1, "", "9000" );
   attribute( "slotPower" ).textIs( *leaf1, "3", "-48" );
   EXPECT_EQ( leaf1->mtu(), 9000U );
   EXPECT_EQ( call( "model", {} ), "\"chassis of 1\"" );
   leaf1->portIs( 5 );
   call( "shutdown", { "3" } );
   EXPECT_EQ( leaf1->ports(), 1U );
   EXPECT_EQ( call( "model", {} ), "\"chassis of 0\"" );
   call( "shutdown", {} );
   EXPECT_EQ( leaf1->ports(), 0U );
   EXPECT_EQ( call( "metric", {} ), "0" );
}

}  // namespace KivGenericTest
