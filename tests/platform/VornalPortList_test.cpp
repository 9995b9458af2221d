// A set of chip ports that is walked in port order, whatever the order of insertion.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include <rapidcheck/gtest.h>

#include <VornalTypes/VornalPortList.h>

#include "Generators.h"

namespace VornalPortListTest {

using VornalTypes::VornalPort;
using VornalTypes::VornalPortList;

VornalPort const kPort5( 0, 5 );
VornalPort const kPort6( 0, 6 );
VornalPort const kPortOfUnit1( 1, 2, 4 );

VornalPortList listOf( std::vector< VornalPort > const & ports ) {
   VornalPortList list;
   for ( VornalPort const & port : ports ) {
      list.portIs( port );
   }
   return list;
}

TEST( VornalPortList, StartsEmpty ) {
   VornalPortList const list;
   EXPECT_TRUE( list.isEmpty() );
   EXPECT_EQ( list.ports(), 0U );
   EXPECT_EQ( list.begin(), list.end() );
}

TEST( VornalPortList, HoldsEachPortOnce ) {
   VornalPortList list;
   EXPECT_TRUE( list.portIs( kPort6 ) );
   EXPECT_TRUE( list.portIs( kPort5 ) );
   EXPECT_FALSE( list.portIs( kPort5 ) );
   EXPECT_FALSE( list.portIs( kPort6 ) );
   EXPECT_EQ( list.ports(), 2U );
   EXPECT_TRUE( list.portHas( kPort5 ) );
   EXPECT_FALSE( list.portHas( kPortOfUnit1 ) );
}

TEST( VornalPortList, IsWalkedInPortOrder ) {
   VornalPortList const list = listOf( { kPortOfUnit1, kPort6, kPort5 } );
   std::vector< VornalPort > walked;
   for ( VornalPort const & port : list ) {
      walked.push_back( port );
   }
   EXPECT_EQ( walked, ( std::vector< VornalPort >{ kPort5, kPort6, kPortOfUnit1 } ) );
}

TEST( VornalPortList, RemovesWhatItHolds ) {
   VornalPortList list = listOf( { kPort5, kPort6 } );
   EXPECT_TRUE( list.portDel( kPort5 ) );
   EXPECT_FALSE( list.portDel( kPort5 ) );
   EXPECT_FALSE( list.portDel( kPortOfUnit1 ) );
   EXPECT_EQ( list, listOf( { kPort6 } ) );
   list.portDelAll();
   EXPECT_TRUE( list.isEmpty() );
}

TEST( VornalPortList, RemovesThePortsOfAnotherUnit ) {
   VornalPortList list = listOf( { kPort5, kPortOfUnit1, kPort6 } );
   list.portsDelIf( []( VornalPort const & port ) { return port.unit() != 0; } );
   EXPECT_EQ( list, listOf( { kPort5, kPort6 } ) );
}

TEST( VornalPortList, EqualMeansTheSamePortsWhateverTheOrderOfInsertion ) {
   EXPECT_EQ( listOf( { kPort5, kPort6 } ), listOf( { kPort6, kPort5 } ) );
   EXPECT_NE( listOf( { kPort5 } ), listOf( { kPort6 } ) );
   EXPECT_NE( listOf( { kPort5 } ), VornalPortList() );
}

TEST( VornalPortList, KeepsItsRoomWhenEmptied ) {
   VornalPortList list;
   list.reserve( 3 );
   list.portIs( kPort5 );
   VornalPort const * const storage = &*list.begin();
   list.portDelAll();
   list.portIs( kPortOfUnit1 );
   list.portIs( kPort6 );
   list.portIs( kPort5 );
   EXPECT_EQ( &*list.begin(), storage );
}

TEST( VornalPortList, TextListsThePorts ) {
   EXPECT_EQ( Quelm::textOf( VornalPortList() ), "{}" );
   EXPECT_EQ( Quelm::textOf( listOf( { kPort6, kPort5 } ) ),
              "{unit0/port5/mod0,unit0/port6/mod0}" );
}

TEST( VornalPortList, SaysWhatIsWrongWithAText ) {
   auto const reason = refusal< VornalPortList >;
   EXPECT_EQ( reason( "{unit0/port6/mod0,unit0/port5/mod0}" ),
              "expected a port after unit0/port6/mod0 at character 19, found 'unit0/port5/mod0}'" );
   EXPECT_EQ( reason( "{unit0/port6/mod0,unit0/port6/mod0}" ),
              "expected a port after unit0/port6/mod0 at character 19, found 'unit0/port6/mod0}'" );
   EXPECT_EQ( reason( "{unit0/port6/mod0" ),
              "expected '}' at character 18, found the end of the text" );
   EXPECT_EQ( reason( "{unit0/port6/mod0,}" ), "expected 'unit' at character 19, found '}'" );
   EXPECT_EQ( reason( "unit0/port6/mod0" ),
              "expected '{' at character 1, found 'unit0/port6/mod0'" );
}

RC_GTEST_PROP( VornalPortList, AnyListIsReadBack, ( VornalPortList const & list ) ) {
   RC_ASSERT( Quelm::fromText< VornalPortList >( Quelm::textOf( list ) ) == list );
}

RC_GTEST_PROP( VornalPortList, BehavesAsAStandardSet, () ) {
   auto const port = rc::gen::construct< VornalPort >( rc::gen::inRange< U16 >( 0, 2 ),
                                                       rc::gen::inRange< U16 >( 0, 8 ) );
   auto const steps = *rc::gen::container< std::vector< std::pair< bool, VornalPort > > >(
      rc::gen::pair( rc::gen::arbitrary< bool >(), port ) );
   VornalPortList list;
   std::set< VornalPort > expected;
   for ( auto const & [ isInsertion, some ] : steps ) {
      if ( isInsertion ) {
         RC_ASSERT( list.portIs( some ) == expected.insert( some ).second );
      } else {
         RC_ASSERT( list.portDel( some ) == ( expected.erase( some ) == 1 ) );
      }
      RC_ASSERT( list.portHas( some ) == isInsertion );
   }
   RC_ASSERT( list.ports() == expected.size() );
   RC_ASSERT( std::equal( list.begin(), list.end(), expected.begin(), expected.end() ) );
}

}  // namespace VornalPortListTest
