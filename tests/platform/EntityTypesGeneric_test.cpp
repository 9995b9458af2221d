// Every registered entity type, through the generic interface alone: what can be read is read, what
// can be written is written and read back, what is wrong is refused and changes nothing, and every
// operation can be called. A new type takes part by being registered; a new value type by a line in
// the table of texts below.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <Evpn/EvpnStatus.h>
#include <Kiv/Clock.h>
#include <Lag/LagPhyIntfMappingSm.h>
#include <Oxa/OxaEvpnTepSegmentSm.h>
#include <Quelm/Error.h>
#include <Vornal/Dependency.h>
#include <VornalLib/MounterBase.h>
#include <Vxlan/VtiStatusDir.h>

#include "support/Journal.h"
#include "support/Panel.h"

namespace EntityTypesGenericTest {

using Kiv::Attribute;
using Kiv::Entity;
using Kiv::Type;
using Quelm::Ptr;
using Support::Journal;
using Texts = std::vector< std::string >;

// Two texts of every type that is a key, a value or an argument, in the type's order.
std::map< std::string, Texts > const texts{
   { "L3::VrfName", { "blue", "red" } },
   { "Pelk::IntfId", { "Ethernet1", "Port-Channel7" } },
   { "Pelk::IpGenAddr", { "10.0.0.2", "2001:db8::2" } },
   { "S32", { "-48", "12" } },
   { "U16", { "5", "65535" } },
   { "U32", { "1", "4294967295" } },
   { "U8", { "3", "255" } },
   { "VornalCentral::RemoteVtepKey", { "10.0.0.2", "2001:db8::2@2#west" } },
   { "VornalCommon::ClassId", { "1", "511" } },
   { "VornalTypes::VornalPort", { "unit0/port5/mod0", "unit1/port7/mod3" } },
   { "Vxlan::VniExtOrNone", { "10100", "16777215" } },
   { "bool", { "true", "false" } },
   { "string", { "name", "\"two words\"" } },
};

// No type's text.
constexpr char const * kWrongText = " !";

Texts const & textsOf( std::string const & type ) {
   auto const found = texts.find( type );
   if ( found == texts.end() ) {
      throw std::out_of_range( "the table of texts has no line for " + type );
   }
   return found->second;
}

struct AnyDependencySet : Vornal::DependencySet {
   bool isReady( std::string const & ) const override { return false; }
};

template< typename Base > struct AnyMounter : Base {
   AnyMounter() : Base( "mounter" ) {}
   void doInit() override {}
   void doMountsComplete( Corrum::MountStatus, Ptr< Corrum::EntityManager > ) override {}
};

template< typename T, typename... Args > std::function< Ptr< Entity >() > maker( Args... args ) {
   return [ args... ] { return Quelm::make< T >( args... ); };
}

Ptr< Support::Port > port5() {
   return Quelm::make< Support::Port >( U16{ 5 } );
}

// Types that cannot be created from a name.
std::map< std::string, std::function< Ptr< Entity >() > > const makers{
   { "Evpn::EthernetSegmentStatus", maker< Evpn::EthernetSegmentStatus >( Pelk::IntfId() ) },
   { "Kiv::Clock", maker< Kiv::Clock >() },
   { "Lag::EthPhyIntfLagConfig", maker< Lag::EthPhyIntfLagConfig >( Pelk::IntfId() ) },
   { "Lag::LagPhyIntfConfig", maker< Lag::LagPhyIntfConfig >( Pelk::IntfId() ) },
   { "Lag::LagPhyIntfMappingSm", maker< Lag::LagPhyIntfMappingSm >( nullptr, nullptr ) },
   { "Oxa::EvpnTepSegment", maker< Oxa::EvpnTepSegment >( Pelk::IpGenAddr() ) },
   { "Oxa::OxaEvpnTepSegmentSm",
     maker< Oxa::OxaEvpnTepSegmentSm >( nullptr, nullptr, nullptr, nullptr ) },
   { "Plugin::Mounter", maker< AnyMounter< Plugin::Mounter > >() },
   { "Support::FabricPort", maker< Support::FabricPort >( U16{ 9 }, U8{ 2 } ) },
   { "Support::Lamp", [] { return Quelm::make< Support::Lamp >( port5(), nullptr ); } },
   { "Support::Port", maker< Support::Port >( U16{ 5 } ) },
   { "Vornal::DependencySet", maker< AnyDependencySet >() },
   { "Vornal::VornalSliceDependencyPoints", maker< Vornal::VornalSliceDependencyPoints >() },
   { "VornalLib::MounterBase", maker< AnyMounter< VornalLib::MounterBase > >() },
   { "Vxlan::VtiStatus", maker< Vxlan::VtiStatus >( Pelk::IntfId() ) },
};

Ptr< Entity > entityOf( Type const & type ) {
   return type.create() ? type.create()( "entity" ) : makers.at( type.name() )();
}

// One attribute of one new entity, of which every change is noted.
struct Subject {
   Subject( Type const & type, Attribute const & examined )
         : entity( entityOf( type ) ), attribute( examined ), scribe( entity, seen ) {}

   // Whether `act` is refused with an Error and nothing has changed.
   template< typename Error > bool refuses( std::function< void() > const & act ) {
      std::size_t const before = seen.size();
      try {
         act();
         return false;
      } catch ( Error const & ) {
         return seen.size() == before;
      }
   }
   void textIs( std::string const & key, std::string const & value ) {
      attribute.textIs( *entity, key, value );
   }
   std::string text( std::string const & key ) { return attribute.text( *entity, key ); }
   bool has( std::string const & key ) { return attribute.has( *entity, key ); }

   Ptr< Entity > entity;
   Attribute const & attribute;
   Journal seen;
   Support::Scribe< Entity > scribe;
};

void checkKey( Subject & subject ) {
   EXPECT_EQ( subject.text( "" ), subject.entity->identity() );
   EXPECT_TRUE( subject.refuses< Quelm::AccessError >(
      [ & ] { subject.textIs( "", textsOf( subject.attribute.valueType() )[ 0 ] ); } ) );
}

void checkValue( Subject & subject ) {
   std::string const initial = subject.text( "" );
   EXPECT_TRUE(
      subject.refuses< Quelm::TextError >( [ & ] { subject.textIs( "", kWrongText ); } ) );
   EXPECT_EQ( subject.text( "" ), initial );
   std::size_t changes = 0;
   for ( std::string const & value : textsOf( subject.attribute.valueType() ) ) {
      changes += value == subject.text( "" ) ? 0U : 1U;
      subject.textIs( "", value );
      subject.textIs( "", value );
      EXPECT_EQ( subject.text( "" ), value );
      EXPECT_EQ( subject.seen.size(), changes );
   }
   subject.textIs( "", initial );
   EXPECT_EQ( subject.text( "" ), initial );
}

void checkReference( Subject & subject ) {
   Attribute const & attribute = subject.attribute;
   auto const pointAt = [ & ]( Ptr< Entity > const & target ) {
      attribute.entityIs( *subject.entity, target );
   };
   if ( !attribute.isWritable() ) {
      EXPECT_TRUE( subject.refuses< Quelm::AccessError >( [ & ] { pointAt( nullptr ); } ) );
      EXPECT_EQ( subject.text( "" ) == "none", !attribute.entity( *subject.entity, "" ) );
      return;
   }
   EXPECT_EQ( subject.text( "" ), "none" );
   Ptr< Entity > const target = entityOf( *Kiv::typeNamed( attribute.valueType() ) );
   pointAt( target );
   EXPECT_EQ( attribute.entity( *subject.entity, "" ), target );
   EXPECT_TRUE(
      subject.refuses< Quelm::AccessError >( [ & ] { pointAt( Quelm::make< Kiv::Clock >() ); } ) );
   EXPECT_EQ( attribute.entity( *subject.entity, "" ), target );
   attribute.del( *subject.entity, "" );
   EXPECT_EQ( subject.text( "" ), "none" );
   EXPECT_EQ( subject.seen.size(), 2U );
}

// What is the same for the three kinds with keys, once both keys are present.
void checkKeys( Subject & subject ) {
   Texts const & keys = textsOf( subject.attribute.keyType() );
   EXPECT_EQ( subject.attribute.keys( *subject.entity ), keys );
   for ( auto const & act :
         { std::function< void() >( [ & ] { subject.has( kWrongText ); } ),
           std::function< void() >( [ & ] { subject.textIs( kWrongText, "" ); } ),
           std::function< void() >(
              [ & ] { subject.attribute.del( *subject.entity, kWrongText ); } ) } ) {
      EXPECT_TRUE( subject.refuses< Quelm::TextError >( act ) );
   }
   for ( std::string const & key : keys ) {
      EXPECT_TRUE( subject.has( key ) );
      subject.attribute.del( *subject.entity, key );
      EXPECT_FALSE( subject.has( key ) );
      subject.attribute.del( *subject.entity, key );
   }
   EXPECT_TRUE( subject.attribute.keys( *subject.entity ).empty() );
}

void checkSet( Subject & subject ) {
   for ( std::string const & key : textsOf( subject.attribute.keyType() ) ) {
      EXPECT_FALSE( subject.has( key ) );
      EXPECT_TRUE(
         subject.refuses< Quelm::AccessError >( [ & ] { subject.textIs( key, "true" ); } ) );
      subject.textIs( key, "" );
      subject.textIs( key, "" );
   }
   checkKeys( subject );
   EXPECT_EQ( subject.seen.size(), 4U );
}

void checkCollection( Subject & subject ) {
   Texts const & values = textsOf( subject.attribute.valueType() );
   for ( std::string const & key : textsOf( subject.attribute.keyType() ) ) {
      EXPECT_TRUE(
         subject.refuses< Quelm::TextError >( [ & ] { subject.textIs( key, kWrongText ); } ) );
      EXPECT_FALSE( subject.has( key ) );
      for ( std::string const & value : values ) {
         subject.textIs( key, value );
         subject.textIs( key, value );
         EXPECT_EQ( subject.text( key ), value );
      }
   }
   checkKeys( subject );
   EXPECT_EQ( subject.seen.size(), 6U );
}

void checkMembers( Subject & subject ) {
   Attribute const & attribute = subject.attribute;
   if ( !attribute.isWritable() ) {
      EXPECT_TRUE( attribute.keys( *subject.entity ).empty() );
      return;
   }
   for ( std::string const & key : textsOf( attribute.keyType() ) ) {
      EXPECT_EQ( subject.text( key ), "none" );
      EXPECT_TRUE(
         subject.refuses< Quelm::AccessError >( [ & ] { subject.textIs( key, "new" ); } ) );
      subject.textIs( key, "" );
      subject.textIs( key, "" );
      Ptr< Entity > const member = attribute.entity( *subject.entity, key );
      ASSERT_TRUE( member );
      EXPECT_EQ( member->typeData().name(), attribute.valueType() );
      EXPECT_EQ( member->identity(), key );
      EXPECT_EQ( subject.text( key ), attribute.valueType() + " " + key );
   }
   EXPECT_TRUE( subject.refuses< Quelm::AccessError >(
      [ & ] { attribute.entityIs( *subject.entity, Quelm::make< Kiv::Clock >() ); } ) );
   checkKeys( subject );
   EXPECT_EQ( subject.seen.size(), 4U );
}

void checkOperation( Subject & subject ) {
   Attribute const & operation = subject.attribute;
   EXPECT_EQ( subject.entity->typeData().findOperation( operation.name(), operation.arity() ),
              &operation );
   Texts arguments;
   for ( std::string types = operation.keyType(); !types.empty(); ) {
      std::size_t const end = std::min( types.find( ", " ), types.size() );
      arguments.push_back( textsOf( types.substr( 0, end ) )[ 0 ] );
      types.erase( 0, end + 2 );
   }
   EXPECT_EQ( arguments.size(), operation.arity() );
   std::string const result = operation.call( *subject.entity, arguments );
   if ( operation.valueType().empty() ) {
      EXPECT_EQ( result, "" );
   }
   arguments.push_back( "1" );
   EXPECT_TRUE( subject.refuses< Quelm::AccessError >(
      [ & ] { operation.call( *subject.entity, arguments ); } ) );
   if ( operation.arity() != 0 ) {
      Texts const wrong( operation.arity(), kWrongText );
      EXPECT_TRUE( subject.refuses< Quelm::TextError >(
         [ & ] { operation.call( *subject.entity, wrong ); } ) );
   }
}

void check( Subject && subject ) {
   switch ( subject.attribute.kind() ) {
   case Attribute::Kind::Key: return checkKey( subject );
   case Attribute::Kind::Value: return checkValue( subject );
   case Attribute::Kind::Reference: return checkReference( subject );
   case Attribute::Kind::Set: return checkSet( subject );
   case Attribute::Kind::Collection: return checkCollection( subject );
   case Attribute::Kind::Members: return checkMembers( subject );
   case Attribute::Kind::Operation: return checkOperation( subject );
   }
}

// Value types have no base.
std::vector< Type const * > entityTypes() {
   std::vector< Type const * > found = Kiv::types();
   found.erase( std::remove_if( found.begin(), found.end(),
                                []( Type const * type ) { return !type->base(); } ),
                found.end() );
   return found;
}

TEST( EntityTypesGeneric, EveryAttributeOfEveryTypeDoesWhatItsKindOffers ) {
   for ( Type const * type : entityTypes() ) {
      for ( Attribute const * attribute : type->attributes() ) {
         SCOPED_TRACE( type->name() + " " + attribute->name() );
         check( Subject( *type, *attribute ) );
      }
   }
}

TEST( EntityTypesGeneric, EveryTypesTableBeginsWithThatOfItsBase ) {
   for ( Type const * type : entityTypes() ) {
      auto const & all = type->attributes();
      auto const & inherited = type->base()->attributes();
      ASSERT_LE( inherited.size(), all.size() ) << type->name();
      EXPECT_TRUE( std::equal( inherited.begin(), inherited.end(), all.begin() ) ) << type->name();
      EXPECT_EQ( Kiv::typeNamed( type->name() ), type );
   }
}

TEST( EntityTypesGeneric, EveryTableIsReadByPositionAndByName ) {
   for ( Type const * type : entityTypes() ) {
      for ( Kiv::AttributeId id = 1; id <= type->attributes().size(); ++id ) {
         Attribute const & attribute = type->attribute( id );
         EXPECT_EQ( type->attributes()[ id - 1 ], &attribute );
         EXPECT_EQ( type->find( attribute.name() )->name(), attribute.name() );
      }
   }
}

TEST( EntityTypesGeneric, EveryEntityKnowsItsType ) {
   for ( Type const * type : entityTypes() ) {
      EXPECT_EQ( &entityOf( *type )->typeData(), type ) << type->name();
   }
}

}  // namespace EntityTypesGenericTest
