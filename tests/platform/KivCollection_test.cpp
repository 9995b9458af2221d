// The five operations of a collection: read, ask, set, delete, delete all; and the factories of
// collections of entities.
#include <gtest/gtest.h>

#include <csignal>
#include <map>
#include <vector>

#include <rapidcheck/gtest.h>

#include "support/Journal.h"
#include "support/Switch.h"

namespace KivCollectionTest {

using Kiv::Change;
using Quelm::Ptr;
using Support::FabricPort;
using Support::Journal;
using Support::Port;
using Support::Switch;
using Watch = Kiv::Watch< Switch >;

class KivCollection : public testing::Test {
 protected:
   Ptr< Switch > leaf1 = Quelm::make< Switch >( "leaf1" );
};

TEST_F( KivCollection, StartsEmpty ) {
   EXPECT_EQ( leaf1->routes(), 0U );
   EXPECT_FALSE( leaf1->routeHas( "default" ) );
   EXPECT_FALSE( leaf1->vlanHas( 100 ) );
   EXPECT_FALSE( leaf1->portIter() );
}

TEST_F( KivCollection, WhatWasSetIsRead ) {
   leaf1->routeIs( "default", 7 );
   EXPECT_TRUE( leaf1->routeHas( "default" ) );
   EXPECT_EQ( leaf1->route( "default" ), 7U );
   EXPECT_EQ( leaf1->routes(), 1U );
   leaf1->routeIs( "default", 8 );
   EXPECT_EQ( leaf1->route( "default" ), 8U );
   EXPECT_EQ( leaf1->routes(), 1U );
}

TEST_F( KivCollection, AbsentMemberReadsAsTheDefault ) {
   leaf1->routeIs( "default", 7 );
   EXPECT_EQ( leaf1->route( "10.0.0.0/8" ), 0U );
   EXPECT_EQ( leaf1->note( 5 ), "" );
   EXPECT_EQ( leaf1->port( 5 ), nullptr );
   EXPECT_EQ( leaf1->routes(), 1U );
}

TEST_F( KivCollection, SetGivesBackTheStoredSlot ) {
   U32 const & stored = leaf1->routeIs( "default", 7 );
   EXPECT_EQ( stored, 7U );
   U32 const & again = leaf1->routeIs( "default", 8 );
   EXPECT_EQ( &again, &stored );
   EXPECT_EQ( stored, 8U );
   EXPECT_EQ( &leaf1->routeIs( "default", 8 ), &stored );
}

TEST_F( KivCollection, SetGivesBackTheStoredSlotWhenSomebodyWatches ) {
   Watch watch( leaf1, []( Change const & ) {} );
   watch.hasNotificationActiveIs( true );
   std::string const & stored = leaf1->noteIs( 5, "to leaf2" );
   leaf1->noteIs( 5, "to leaf3" );
   EXPECT_EQ( stored, "to leaf3" );
}

TEST_F( KivCollection, SetGivesBackWhatASubscriberHasMadeOfIt ) {
   Watch watch( leaf1, [ this ]( Change const & ) { leaf1->routeIs( "default", 100 ); } );
   watch.hasNotificationActiveIs( true );
   EXPECT_EQ( leaf1->routeIs( "default", 7 ), 100U );
}

TEST_F( KivCollection, SetGivesBackTheDefaultWhenASubscriberHasRemovedTheMember ) {
   Watch watch( leaf1, [ this ]( Change const & ) { leaf1->noteDel( 5 ); } );
   watch.hasNotificationActiveIs( true );
   EXPECT_EQ( leaf1->noteIs( 5, "to leaf2" ), "" );
   EXPECT_FALSE( leaf1->noteHas( 5 ) );
}

TEST_F( KivCollection, DeletingGivesBackWhatWasRemoved ) {
   leaf1->noteIs( 5, "to leaf2" );
   EXPECT_EQ( leaf1->noteDel( 5 ), "to leaf2" );
   EXPECT_FALSE( leaf1->noteHas( 5 ) );
   Ptr< Port > const port = leaf1->portIs( 5 );
   EXPECT_EQ( leaf1->portDel( 5 ), port );
   leaf1->vlanIs( 100 );
   EXPECT_TRUE( leaf1->vlanDel( 100 ) );
}

TEST_F( KivCollection, DeletingWhatIsAbsentGivesBackTheDefault ) {
   EXPECT_EQ( leaf1->noteDel( 5 ), "" );
   EXPECT_EQ( leaf1->routeDel( "default" ), 0U );
   EXPECT_EQ( leaf1->portDel( 5 ), nullptr );
   EXPECT_FALSE( leaf1->vlanDel( 100 ) );
}

TEST_F( KivCollection, DeletingAllLeavesNothing ) {
   leaf1->noteIs( 5, "to leaf2" );
   leaf1->noteIs( 6, "to leaf3" );
   leaf1->noteDelAll();
   EXPECT_FALSE( leaf1->noteHas( 5 ) || leaf1->noteHas( 6 ) );
   leaf1->noteDelAll();
   EXPECT_FALSE( leaf1->noteIter() );
}

TEST_F( KivCollection, KeyMayBeTheMembersOwn ) {
   leaf1->routeIs( "a prefix too long to be kept inside the string object itself", 7 );
   Journal seen;
   Support::Scribe const scribe( leaf1, seen );
   leaf1->routeDel( leaf1->routeIter().key() );
   EXPECT_EQ( seen, Journal{ "leaf1 route[\"a prefix too long to be kept inside the string object "
                             "itself\"]: 7 -> absent" } );
   leaf1->portIs( 5 );
   leaf1->portDel( leaf1->port( 5 )->number() );
   EXPECT_EQ( leaf1->ports(), 0U );
}

TEST_F( KivCollection, ValueMayBeAMembersOwn ) {
   leaf1->noteIs( 5, "a note too long to be kept inside the string object itself" );
   leaf1->noteIs( 6, leaf1->note( 5 ) );
   leaf1->noteIs( 5, leaf1->note( 6 ) );
   EXPECT_EQ( leaf1->note( 6 ), "a note too long to be kept inside the string object itself" );
   EXPECT_EQ( leaf1->note( 5 ), leaf1->note( 6 ) );
}

TEST_F( KivCollection, MembersAreWalkedInKeyOrderWhateverTheOrderTheyCameIn ) {
   for ( U16 const vlan : std::vector< U16 >{ 300, 7, 4094, 100 } ) {
      leaf1->vlanIs( vlan );
   }
   std::vector< U16 > walked;
   for ( auto iter = leaf1->vlanIter(); iter; ++iter ) {
      walked.push_back( iter.key() );
   }
   EXPECT_EQ( walked, ( std::vector< U16 >{ 7, 100, 300, 4094 } ) );
}

// A look-up begins where the last one came to.

RC_GTEST_FIXTURE_PROP( KivCollection, FindsWhatIsThereInWhateverOrderItIsAskedAndChanged, () ) {
   std::map< U16, std::string > notes;
   auto const keys = *rc::gen::container< std::vector< U16 > >( rc::gen::inRange< U16 >( 0, 12 ) );
   for ( U16 const key : keys ) {
      switch ( *rc::gen::inRange( 0, 4 ) ) {
      case 0:
         leaf1->noteIs( key, "note " + std::to_string( key ) );
         notes[ key ] = "note " + std::to_string( key );
         break;
      case 1:
         leaf1->noteDel( key );
         notes.erase( key );
         break;
      case 2: RC_ASSERT( leaf1->noteHas( key ) == notes.contains( key ) ); break;
      default: RC_ASSERT( leaf1->note( key ) == ( notes.contains( key ) ? notes[ key ] : "" ) );
      }
   }
}

// A key that counts how often keys are compared.
struct CountedKey {
   int value;
   static inline int comparisons = 0;

   friend bool operator<( CountedKey const & a, CountedKey const & b ) {
      ++comparisons;
      return a.value < b.value;
   }
};

class SearchesOfACollection : public testing::Test {
 protected:
   SearchesOfACollection() {
      for ( int n = 0; n < 1000; ++n ) {
         collection.insert( { 2 * n }, n );
      }
   }
   template< typename Work > static int comparisonsOf( Work work ) {
      CountedKey::comparisons = 0;
      work();
      return CountedKey::comparisons;
   }

   static constexpr int kSearch = 10;  // a search takes as many, and more
   static constexpr int kFew = 7;
   Kiv::Collection< CountedKey, int > collection;
};

TEST_F( SearchesOfACollection, EndWhereTheLastOneEnded ) {
   EXPECT_GE( comparisonsOf( [ & ] { collection.find( { 500 } ); } ), kSearch );
   EXPECT_LE( comparisonsOf( [ & ] { collection.find( { 500 } ); } ), kFew );
   EXPECT_LE( comparisonsOf( [ & ] { collection.has( { 500 } ); } ), kFew );
   EXPECT_LE( comparisonsOf( [ & ] { collection.insert( { 500 }, 7 ); } ), kFew );
   int removed = 0;
   EXPECT_LE( comparisonsOf( [ & ] { collection.remove( { 500 }, removed ); } ), kFew );
}

TEST_F( SearchesOfACollection, EndOneFurtherForTheKeyThatFollows ) {
   collection.find( { 500 } );
   EXPECT_LE( comparisonsOf( [ & ] { collection.find( { 502 } ); } ), kFew );
   EXPECT_LE( comparisonsOf( [ & ] { collection.find( { 504 } ); } ), kFew );
}

TEST_F( SearchesOfACollection, EndWhereANewKeyBelongs ) {
   EXPECT_GE( comparisonsOf( [ & ] { collection.has( { 501 } ); } ), kSearch );
   EXPECT_LE( comparisonsOf( [ & ] { collection.insert( { 501 }, 7 ); } ), kFew );
   EXPECT_LE( comparisonsOf( [ & ] { collection.find( { 501 } ); } ), kFew );
   EXPECT_GE( comparisonsOf( [ & ] { collection.insert( { 9000 }, 7 ); } ), kSearch );
   EXPECT_LE( comparisonsOf( [ & ] { collection.insert( { 9001 }, 7 ); } ), kFew );
}

TEST_F( KivCollection, FactoryMakesTheMemberOfAKeyOnce ) {
   Ptr< Port > const port = leaf1->portIs( 5 );
   EXPECT_EQ( port->number(), 5 );
   EXPECT_EQ( leaf1->portIs( 5 ), port );
   EXPECT_EQ( leaf1->port( 5 ), port );
   EXPECT_EQ( leaf1->ports(), 1U );
}

TEST_F( KivCollection, MemberMadeElsewhereEntersUnderItsOwnKey ) {
   Ptr< FabricPort > const port = Quelm::make< FabricPort >( U16{ 9 }, U8{ 2 } );
   leaf1->fabricPortIs( port );
   EXPECT_EQ( leaf1->fabricPort( 9 ), port );
   Ptr< FabricPort > const other = Quelm::make< FabricPort >( U16{ 9 }, U8{ 3 } );
   leaf1->fabricPortIs( other );
   EXPECT_EQ( leaf1->fabricPort( 9 ), other );
   EXPECT_EQ( port->users(), 1U );
}

TEST_F( KivCollection, ConstEntityGivesItsMembersAsConst ) {
   leaf1->portIs( 5 );
   Ptr< Switch const > const readOnly = leaf1;
   static_assert( std::is_same_v< decltype( readOnly->port( 5 ) ), Ptr< Port const > > );
   EXPECT_EQ( readOnly->port( 5 )->number(), 5 );
}

TEST_F( KivCollection, RemovedMemberLivesAsLongAsItIsReferredTo ) {
   Ptr< Port > const port = leaf1->portIs( 5 );
   leaf1->portDelAll();
   EXPECT_EQ( port->users(), 1U );
   port->speedIs( 100 );
   EXPECT_NE( leaf1->portIs( 5 ), port );
}

TEST_F( KivCollection, MissingMemberCannotBeInserted ) {
   EXPECT_EXIT( leaf1->portIs( Ptr< Port >() ), testing::KilledBySignal( SIGABRT ),
                "Assertion '\"reference is not empty\" && target_' failed\\." );
}

}  // namespace KivCollectionTest
