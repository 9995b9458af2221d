// Handlers may do anything to the subscriptions while a change is being delivered: to their own, to
// those called before them, next or last. A reactor is called at most once per change, never after
// it has unsubscribed or died, and not for the change during which it subscribed.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>

#include "support/Journal.h"
#include "support/Switch.h"

namespace KivReentryTest {

using Kiv::Change;
using Quelm::Ptr;
using Support::Journal;
using Support::Switch;
using Watch = Kiv::Watch< Switch >;

// Four subscribers of one switch, A to D, each of which notes its name and may do one thing more.
class KivReentry : public testing::Test {
 protected:
   KivReentry() {
      for ( std::size_t n = 0; n < subscriber.size(); ++n ) {
         subscriber[ n ] = std::make_unique< Watch >( leaf1, [ this, n ]( Change const & ) {
            seen.push_back( std::string( 1, static_cast< char >( 'A' + n ) ) );
            if ( act[ n ] ) {
               std::exchange( act[ n ], nullptr )();
            }
         } );
         subscriber[ n ]->hasNotificationActiveIs( true );
      }
   }

   // What is seen of one change, and of the next one.
   std::pair< Journal, Journal > seenOfTwoChanges() {
      leaf1->mtuIs( leaf1->mtu() + 1 );
      Journal const first = std::exchange( seen, {} );
      leaf1->mtuIs( leaf1->mtu() + 1 );
      return { first, seen };
   }

   Ptr< Switch > leaf1 = Quelm::make< Switch >( "leaf1" );
   Ptr< Switch > leaf2 = Quelm::make< Switch >( "leaf2" );
   Journal seen;
   std::array< std::function< void() >, 4 > act;
   std::array< std::unique_ptr< Watch >, 4 > subscriber;
};

enum Subscriber { A, B, C, D };

using Two = std::pair< Journal, Journal >;
Journal const all{ "A", "B", "C", "D" };

TEST_F( KivReentry, HandlerUnsubscribesItself ) {
   act[ B ] = [ this ] { subscriber[ B ]->hasNotificationActiveIs( false ); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, { "A", "C", "D" } } ) );
}

TEST_F( KivReentry, HandlerUnsubscribesOneCalledBefore ) {
   act[ B ] = [ this ] { subscriber[ A ]->hasNotificationActiveIs( false ); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, { "B", "C", "D" } } ) );
}

TEST_F( KivReentry, HandlerUnsubscribesTheNext ) {
   act[ B ] = [ this ] { subscriber[ C ]->hasNotificationActiveIs( false ); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ { "A", "B", "D" }, { "A", "B", "D" } } ) );
}

TEST_F( KivReentry, HandlerUnsubscribesTheLast ) {
   act[ B ] = [ this ] { subscriber[ D ]->hasNotificationActiveIs( false ); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ { "A", "B", "C" }, { "A", "B", "C" } } ) );
}

TEST_F( KivReentry, LastHandlerUnsubscribesItself ) {
   act[ D ] = [ this ] { subscriber[ D ]->hasNotificationActiveIs( false ); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, { "A", "B", "C" } } ) );
}

TEST_F( KivReentry, HandlerUnsubscribesEverybody ) {
   act[ B ] = [ this ] {
      for ( auto const & watch : subscriber ) {
         watch->hasNotificationActiveIs( false );
      }
   };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ { "A", "B" }, {} } ) );
}

TEST_F( KivReentry, HandlerUnsubscribesAllThatFollowFromTheBack ) {
   act[ A ] = [ this ] {
      for ( Subscriber const n : { D, C, B } ) {
         subscriber[ n ]->hasNotificationActiveIs( false );
      }
   };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ { "A" }, { "A" } } ) );
}

TEST_F( KivReentry, HandlerDestroysItsOwnReactor ) {
   act[ B ] = [ this ] { subscriber[ B ].reset(); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, { "A", "C", "D" } } ) );
}

TEST_F( KivReentry, HandlerDestroysOneCalledBefore ) {
   act[ C ] = [ this ] { subscriber[ A ].reset(); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, { "B", "C", "D" } } ) );
}

TEST_F( KivReentry, HandlerDestroysTheNextAndTheLast ) {
   act[ B ] = [ this ] {
      subscriber[ D ].reset();
      subscriber[ C ].reset();
   };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ { "A", "B" }, { "A", "B" } } ) );
}

TEST_F( KivReentry, LastHandlerDestroysEverybody ) {
   act[ D ] = [ this ] {
      for ( auto & watch : subscriber ) {
         watch.reset();
      }
   };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, {} } ) );
   EXPECT_FALSE( leaf1->publisher().hasSubscribers() );
}

TEST_F( KivReentry, WhoeverSubscribesDuringADeliveryIsCalledFromTheNextChangeOn ) {
   Watch fifth( leaf1, [ this ]( Change const & ) { seen.push_back( "E" ); } );
   act[ B ] = [ & ] { fifth.hasNotificationActiveIs( true ); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, { "A", "B", "C", "D", "E" } } ) );
}

TEST_F( KivReentry, LastHandlerSubscribesAnother ) {
   Watch fifth( leaf1, [ this ]( Change const & ) { seen.push_back( "E" ); } );
   act[ D ] = [ & ] { fifth.hasNotificationActiveIs( true ); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, { "A", "B", "C", "D", "E" } } ) );
}

TEST_F( KivReentry, AnotherTakesTheLastOnesPlaceDuringADelivery ) {
   Watch fifth( leaf1, [ this ]( Change const & ) { seen.push_back( "E" ); } );
   act[ B ] = [ & ] {
      fifth.hasNotificationActiveIs( true );
      subscriber[ D ]->hasNotificationActiveIs( false );
   };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ { "A", "B", "C" }, { "A", "B", "C", "E" } } ) );
}

TEST_F( KivReentry, UnsubscribingAndSubscribingAgainMissesTheChangeUnderWay ) {
   act[ A ] = [ this ] {
      subscriber[ C ]->hasNotificationActiveIs( false );
      subscriber[ C ]->hasNotificationActiveIs( true );
   };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ { "A", "B", "D" }, { "A", "B", "D", "C" } } ) );
}

TEST_F( KivReentry, HandlerSubscribesItselfAgainAndIsNotCalledTwice ) {
   act[ B ] = [ this ] {
      subscriber[ B ]->hasNotificationActiveIs( false );
      subscriber[ B ]->hasNotificationActiveIs( true );
   };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, { "A", "C", "D", "B" } } ) );
}

TEST_F( KivReentry, HandlerPointsItselfAtAnotherSwitch ) {
   act[ B ] = [ this ] { subscriber[ B ]->notifierIs( leaf2 ); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, { "A", "C", "D" } } ) );
   seen.clear();
   leaf2->mtuIs( 1 );
   EXPECT_EQ( seen, Journal{ "B" } );
}

TEST_F( KivReentry, HandlerPointsTheNextOneElsewhereAndBack ) {
   act[ B ] = [ this ] {
      subscriber[ C ]->notifierIs( leaf2 );
      subscriber[ C ]->notifierIs( leaf1 );
   };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ { "A", "B", "D" }, { "A", "B", "D", "C" } } ) );
}

TEST_F( KivReentry, ChangeMadeByAHandlerIsDeliveredAtOnceAndWhole ) {
   Journal changes;
   subscriber = {};
   Support::Scribe const before( leaf1, changes, "before: " );
   Watch clamp( leaf1, [ this ]( Change const & change ) {
      if ( change.attribute() == Switch::mtuAttr() && leaf1->mtu() > 9000 ) {
         leaf1->mtuIs( 9000 );
      }
   } );
   clamp.hasNotificationActiveIs( true );
   Support::Scribe const after( leaf1, changes, "after: " );
   leaf1->mtuIs( 65535 );
   EXPECT_EQ( changes,
              ( Journal{ "before: leaf1 mtu: 0 -> 65535", "before: leaf1 mtu: 65535 -> 9000",
                         "after: leaf1 mtu: 65535 -> 9000", "after: leaf1 mtu: 0 -> 65535" } ) );
   EXPECT_EQ( leaf1->mtu(), 9000U );
}

TEST_F( KivReentry, NestedChangeReachesWhoeverHasSubscribedByThen ) {
   Watch fifth( leaf1, [ this ]( Change const & ) { seen.push_back( "E" ); } );
   act[ B ] = [ & ] {
      fifth.hasNotificationActiveIs( true );
      leaf1->vlanIs( 100 );
   };
   leaf1->mtuIs( 1 );
   EXPECT_EQ( seen, ( Journal{ "A", "B", "A", "B", "C", "D", "E", "C", "D" } ) );
}

TEST_F( KivReentry, UnsubscribingInANestedDeliveryHoldsForTheOuterOnes ) {
   act[ A ] = [ this ] {
      act[ B ] = [ this ] {
         subscriber[ D ].reset();
         subscriber[ C ].reset();
      };
      leaf1->vlanIs( 100 );
   };
   leaf1->mtuIs( 1 );
   EXPECT_EQ( seen, ( Journal{ "A", "A", "B", "B" } ) );
}

TEST_F( KivReentry, HandlerThatDestroysItsReactorMayGoOnUsingWhatItHolds ) {
   std::unique_ptr< Watch > once;
   std::string const name = "a name too long to be kept inside the function object itself";
   once = std::make_unique< Watch >( leaf1, [ this, name, &once ]( Change const & ) {
      once.reset();
      seen = { name };
   } );
   subscriber = {};
   once->hasNotificationActiveIs( true );
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ { name }, {} } ) );
   EXPECT_EQ( once, nullptr );
}

}  // namespace KivReentryTest
