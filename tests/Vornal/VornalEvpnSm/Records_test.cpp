// The records of what is programmed, and the values that port resolution hands on.

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <Quelm/Hash.h>
#include <VornalEvpnSm/PortLists.h>
#include <VornalEvpnSm/TepIpToEntry.h>

#include "../support/Ports.h"

namespace {

using Support::portsOf;
using Vornal::PortListsOnUpdate;
using Vornal::SharedESPortInfo;
using Vornal::TepIpToEntry;
using VornalTypes::VornalPort;
using VornalTypes::VornalPortList;

Pelk::IpGenAddr const vtep2 = Pelk::IpGenAddr::fromString( "10.0.0.2" );
Pelk::IpGenAddr const vtep3 = Pelk::IpGenAddr::fromString( "2001:db8::3" );

SharedESPortInfo infoOf( std::vector< U32 > const & bits, VornalPortList const & ports ) {
   Brum::PerUnitBitmap bitmap;
   for ( U32 const bit : bits ) {
      bitmap.bitSet( bit );
   }
   SharedESPortInfo info;
   info.sharedPortBitmapIs( bitmap );
   info.sharedPortListIs( ports );
   return info;
}

PortListsOnUpdate listsOf( VornalPortList const & ports, VornalPortList const & previous ) {
   PortListsOnUpdate lists;
   lists.portListIs( ports );
   lists.prevPortListIs( previous );
   return lists;
}

template< typename T > T parsed( std::string const & text ) {
   return T( text.data(), text.data() + text.size() );
}

std::vector< std::string > attributesOf( Kiv::Type const & type ) {
   std::vector< std::string > rows;
   for ( auto const * attribute : type.attributes() ) {
      rows.push_back( attribute->name() + ": " + attribute->keyType() + " -> " +
                      attribute->valueType() );
   }
   return rows;
}

TEST( TepIpToEntry, ReadsAsItsTable ) {
   EXPECT_EQ( attributesOf( TepIpToEntry::kivType() ),
              ( std::vector< std::string >{
                 "unit:  -> U16",
                 "entryId: Pelk::IpGenAddr -> U32",
                 "esPbmp: Pelk::IpGenAddr -> Brum::PerUnitBitmap",
                 "esPortAndEFPEntryIdList: Pelk::IpGenAddr -> Vornal::ESPortAndEFPEntryIdList",
                 "vpIndex: Pelk::IpGenAddr -> U16",
              } ) );
   EXPECT_EQ( attributesOf( Vornal::ESPortAndEFPEntryIdList::kivType() ),
              ( std::vector< std::string >{
                 "tepIp:  -> Pelk::IpGenAddr",
                 "efpEntryId: VornalTypes::VornalPort -> U32",
                 "esPortList:  -> VornalTypes::VornalPortList",
              } ) );
}

TEST( TepIpToEntry, IsEmptyWhenBorn ) {
   auto const record = Quelm::make< TepIpToEntry >( U16{ 3 } );
   EXPECT_EQ( record->unit(), 3 );
   EXPECT_EQ( record->entryIds(), 0U );
   EXPECT_FALSE( record->entryIdHas( vtep2 ) );
   EXPECT_FALSE( record->esPbmpHas( vtep2 ) );
   EXPECT_FALSE( record->esPortAndEFPEntryIdListHas( vtep2 ) );
   EXPECT_FALSE( record->vpIndexHas( vtep2 ) );
}

TEST( TepIpToEntry, InsertsOverwritesInPlaceAndGivesBackWhatItRemoves ) {
   auto const record = Quelm::make< TepIpToEntry >( U16{ 0 } );
   U32 const & slot = record->entryIdIs( vtep2, 7 );
   EXPECT_EQ( slot, 7U );
   record->entryIdIs( vtep2, 8 );
   EXPECT_EQ( slot, 8U );
   EXPECT_EQ( record->entryId( vtep2 ), 8U );
   EXPECT_EQ( record->entryIdDel( vtep2 ), 8U );
   EXPECT_FALSE( record->entryIdHas( vtep2 ) );
   record->vpIndexIs( vtep2, 5 );
   EXPECT_EQ( record->vpIndexDel( vtep2 ), 5 );
}

TEST( TepIpToEntry, RemovingAnAbsentEntryIdReturns0AndChangesNothing ) {
   auto const record = Quelm::make< TepIpToEntry >( U16{ 0 } );
   record->entryIdIs( vtep3, 9 );
   EXPECT_EQ( record->entryIdDel( vtep2 ), 0U );
   EXPECT_EQ( record->vpIndexDel( vtep2 ), 0 );
   EXPECT_EQ( record->entryIds(), 1U );
   EXPECT_EQ( record->entryId( vtep3 ), 9U );
}

TEST( TepIpToEntry, RemovingAnAbsentBitmapReturnsAnAllZeroOne ) {
   auto const record = Quelm::make< TepIpToEntry >( U16{ 0 } );
   EXPECT_TRUE( record->esPbmpDel( vtep2 ).isEmpty() );
   EXPECT_TRUE( record->esPbmp( vtep2 ).isEmpty() );
}

TEST( TepIpToEntry, CopiesAllWordsOfABitmap ) {
   auto const record = Quelm::make< TepIpToEntry >( U16{ 0 } );
   Brum::PerUnitBitmap bitmap;
   bitmap.bitSet( 0 );
   bitmap.bitSet( 351 );
   record->esPbmpIs( vtep2, bitmap );
   bitmap.bitClear( 0 );
   EXPECT_TRUE( record->esPbmp( vtep2 ).bit( 0 ) );
   EXPECT_TRUE( record->esPbmpDel( vtep2 ).bit( 351 ) );
}

TEST( TepIpToEntry, CreatesAnEgressListOncePerVtep ) {
   auto const record = Quelm::make< TepIpToEntry >( U16{ 0 } );
   auto const list = record->esPortAndEFPEntryIdListIs( vtep2 );
   list->efpEntryIdIs( VornalPort( 0, 5 ), 11 );
   EXPECT_EQ( record->esPortAndEFPEntryIdListIs( vtep2 ), list );
   EXPECT_EQ( list->efpEntryIds(), 1U );
   EXPECT_EQ( list->tepIp(), vtep2 );
   EXPECT_EQ( record->esPortAndEFPEntryIdListDel( vtep2 ), list );
   EXPECT_FALSE( record->esPortAndEFPEntryIdListDel( vtep2 ) );
}

TEST( TepIpToEntry, EmptiesEachCollectionByItself ) {
   auto const record = Quelm::make< TepIpToEntry >( U16{ 0 } );
   record->entryIdIs( vtep2, 1 );
   record->entryIdIs( vtep3, 2 );
   record->vpIndexIs( vtep2, 3 );
   record->esPbmpIs( vtep2, Brum::PerUnitBitmap() );
   auto const list = record->esPortAndEFPEntryIdListIs( vtep2 );
   list->efpEntryIdIs( VornalPort( 0, 5 ), 11 );
   record->entryIdDelAll();
   EXPECT_EQ( record->entryIds(), 0U );
   EXPECT_EQ( record->vpIndex( vtep2 ), 3 );
   record->vpIndexDelAll();
   EXPECT_FALSE( record->vpIndexHas( vtep2 ) );
   EXPECT_TRUE( record->esPbmpHas( vtep2 ) );
   record->esPbmpDelAll();
   EXPECT_FALSE( record->esPbmpHas( vtep2 ) );
   list->efpEntryIdDelAll();
   EXPECT_EQ( list->efpEntryIds(), 0U );
   EXPECT_TRUE( record->esPortAndEFPEntryIdListHas( vtep2 ) );
   record->esPortAndEFPEntryIdListDelAll();
   EXPECT_FALSE( record->esPortAndEFPEntryIdListHas( vtep2 ) );
}

TEST( ESPortAndEFPEntryIdList, HoldsEntriesAndPortsSeparately ) {
   auto const list = Quelm::make< Vornal::ESPortAndEFPEntryIdList >( vtep2 );
   EXPECT_EQ( list->efpEntryIds(), 0U );
   EXPECT_TRUE( list->esPortList().isEmpty() );
   list->esPortListIs( portsOf( { VornalPort( 0, 5 ), VornalPort( 0, 6 ) } ) );
   list->efpEntryIdIs( VornalPort( 0, 5 ), 1 );
   EXPECT_EQ( list->efpEntryIdDel( VornalPort( 0, 6 ) ), 0U );
   EXPECT_EQ( list->efpEntryIdDel( VornalPort( 0, 5 ) ), 1U );
   EXPECT_EQ( list->esPortList().ports(), 2U );
}

TEST( SharedESPortInfo, IsEmptyWhenBorn ) {
   EXPECT_EQ( SharedESPortInfo(), infoOf( {}, {} ) );
   EXPECT_EQ( PortListsOnUpdate(), listsOf( {}, {} ) );
}

TEST( SharedESPortInfo, DiffersByBitmapEvenWhenTheListsAreEqual ) {
   VornalPortList const ports = portsOf( { VornalPort( 0, 5 ) } );
   EXPECT_EQ( infoOf( { 5 }, ports ), infoOf( { 5 }, ports ) );
   EXPECT_NE( infoOf( { 5 }, ports ), infoOf( { 6 }, ports ) );
   EXPECT_NE( infoOf( { 5 }, ports ), infoOf( { 5 }, {} ) );
}

TEST( PortListsOnUpdate, DiffersByEitherList ) {
   VornalPortList const ports = portsOf( { VornalPort( 0, 5 ) } );
   EXPECT_EQ( listsOf( ports, ports ), listsOf( ports, ports ) );
   EXPECT_NE( listsOf( ports, {} ), listsOf( {}, {} ) );
   EXPECT_NE( listsOf( {}, ports ), listsOf( {}, {} ) );
}

TEST( SharedESPortInfo, CannotBeHashed ) {
   EXPECT_THROW( Quelm::hashOf( SharedESPortInfo() ), Quelm::UnhashableError );
   EXPECT_THROW( Quelm::hashOf( PortListsOnUpdate() ), Quelm::UnhashableError );
   EXPECT_NO_THROW( Quelm::hashOf( vtep2 ) );
}

TEST( SharedESPortInfo, PrintsItsTypeThenItsAttributesInOrder ) {
   std::ostringstream out;
   out << infoOf( { 5, 6, 9 }, portsOf( { VornalPort( 0, 5, 40 ) } ) );
   EXPECT_EQ( out.str(),
              "Vornal::SharedESPortInfo( sharedPortBitmap={5-6,9}, "
              "sharedPortList={unit0/port5/mod40} )" );
   EXPECT_EQ( Quelm::textOf( listsOf( portsOf( { VornalPort( 1, 2, 3 ) } ), {} ) ),
              "Vornal::PortListsOnUpdate( portList={unit1/port2/mod3}, prevPortList={} )" );
}

// Ports that lie on a chip: what a bitmap can hold.
rc::Gen< VornalPort > anyPort() {
   return rc::gen::construct< VornalPort >( rc::gen::inRange< U16 >( 0, 4 ),
                                            rc::gen::inRange< U16 >( 0, 352 ),
                                            rc::gen::arbitrary< U16 >() );
}

TEST( SharedESPortInfo, ReadsBackWhateverItPrints ) {
   EXPECT_TRUE( rc::check( "SharedESPortInfo", [] {
      auto const bits = *rc::gen::container< std::vector< U32 > >( rc::gen::inRange( 0U, 352U ) );
      auto const ports = portsOf( *rc::gen::container< std::vector< VornalPort > >( anyPort() ) );
      auto const info = infoOf( bits, ports );
      RC_ASSERT( parsed< SharedESPortInfo >( Quelm::textOf( info ) ) == info );
   } ) );
   EXPECT_TRUE( rc::check( "PortListsOnUpdate", [] {
      auto const lists =
         listsOf( portsOf( *rc::gen::container< std::vector< VornalPort > >( anyPort() ) ),
                  portsOf( *rc::gen::container< std::vector< VornalPort > >( anyPort() ) ) );
      RC_ASSERT( parsed< PortListsOnUpdate >( Quelm::textOf( lists ) ) == lists );
   } ) );
}

template< typename T > std::string refusalOf( std::string const & text ) {
   try {
      parsed< T >( text );
   } catch ( Quelm::AttributeTextError const & error ) {
      return error.what();
   }
   return "not refused by attribute";
}

TEST( SharedESPortInfo, NamesTheAttributeOfADamagedText ) {
   EXPECT_TRUE( refusalOf< SharedESPortInfo >(
                   "Vornal::SharedESPortInfo( sharedPortBitmap={352}, sharedPortList={} )" )
                   .starts_with( "cannot read attribute 'sharedPortBitmap'" ) );
   EXPECT_TRUE( refusalOf< SharedESPortInfo >(
                   "Vornal::SharedESPortInfo( sharedPortBitmap={}, sharedPortList={unit0} )" )
                   .starts_with( "cannot read attribute 'sharedPortList'" ) );
   EXPECT_TRUE(
      refusalOf< PortListsOnUpdate >( "Vornal::PortListsOnUpdate( portList={5}, prevPortList={} )" )
         .starts_with( "cannot read attribute 'portList'" ) );
   EXPECT_TRUE(
      refusalOf< PortListsOnUpdate >( "Vornal::PortListsOnUpdate( portList={}, previous={} )" )
         .starts_with( "cannot read attribute 'prevPortList'" ) );
}

// Wherever the text ends too early, an attribute is named.
template< typename T > void expectCutsNameAnAttribute( T const & value ) {
   std::string const text = Quelm::textOf( value );
   for ( std::size_t length = 0; length < text.size(); ++length ) {
      std::string const cut = text.substr( 0, length );
      EXPECT_TRUE( refusalOf< T >( cut ).starts_with( "cannot read attribute '" ) ) << cut;
   }
}

TEST( SharedESPortInfo, NamesTheAttributeAtWhichItsTextIsCutOff ) {
   VornalPortList const ports = portsOf( { VornalPort( 0, 5, 40 ) } );
   expectCutsNameAnAttribute( infoOf( { 5 }, ports ) );
   expectCutsNameAnAttribute( listsOf( ports, ports ) );
   EXPECT_EQ( refusalOf< SharedESPortInfo >( "" ),
              "cannot read attribute 'sharedPortBitmap': expected 'Vornal::SharedESPortInfo' at "
              "character 1, found the end of the text" );
   EXPECT_EQ( refusalOf< PortListsOnUpdate >( "Vornal::PortListsOnUpdate( portList={}, "
                                              "prevPortList={}" ),
              "cannot read attribute 'prevPortList': expected ' )' at character 56, found the end "
              "of the text" );
}

TEST( SharedESPortInfo, IsVisibleByNameToTheGenericInterface ) {
   Kiv::Type const * const info = Kiv::typeNamed( "Vornal::SharedESPortInfo" );
   ASSERT_NE( info, nullptr );
   EXPECT_EQ( attributesOf( *info ), ( std::vector< std::string >{
                                        "sharedPortBitmap:  -> Brum::PerUnitBitmap",
                                        "sharedPortList:  -> VornalTypes::VornalPortList",
                                     } ) );
   Kiv::Type const * const lists = Kiv::typeNamed( "Vornal::PortListsOnUpdate" );
   ASSERT_NE( lists, nullptr );
   EXPECT_EQ( attributesOf( *lists ), ( std::vector< std::string >{
                                         "portList:  -> VornalTypes::VornalPortList",
                                         "prevPortList:  -> VornalTypes::VornalPortList",
                                      } ) );
   std::string const text = Quelm::textOf( infoOf( { 5, 6 }, {} ) );
   EXPECT_EQ( info->find( "sharedPortBitmap" )->textIn( text ), "{5-6}" );
   EXPECT_EQ( info->find( "sharedPortBitmap" )->valueWith( text, "{7}" ),
              Quelm::textOf( infoOf( { 7 }, {} ) ) );
   EXPECT_EQ( lists->find( "prevPortList" )
                 ->valueWith( Quelm::textOf( PortListsOnUpdate() ), "{unit0/port5/mod0}" ),
              Quelm::textOf( listsOf( {}, portsOf( { VornalPort( 0, 5 ) } ) ) ) );
}

TEST( SharedESPortInfo, RefusesAnotherTypesTextAndTrailingCharacters ) {
   EXPECT_THROW( parsed< SharedESPortInfo >( Quelm::textOf( PortListsOnUpdate() ) ),
                 Quelm::TextError );
   EXPECT_THROW( parsed< PortListsOnUpdate >( Quelm::textOf( PortListsOnUpdate() ) + " " ),
                 Quelm::TextError );
   EXPECT_THROW( parsed< PortListsOnUpdate >( "" ), Quelm::TextError );
}

}  // namespace
