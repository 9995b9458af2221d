// Handlers may do anything to the subscriptions while a change is being delivered: to their own, to
// those called before them, next or last. A reactor is called at most once per change, never after it
// has unsubscribed or died, and not for the change during which it subscribed.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>

#include <rapidcheck/gtest.h>

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

TEST_F( KivReentry, handlerUnsubscribesItself ) {
   act[ B ] = [ this ] { subscriber[ B ]->hasNotificationActiveIs( false ); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, { "A", "C", "D" } } ) );
}

TEST_F( KivReentry, handlerUnsubscribesOneCalledBefore ) {
   act[ B ] = [ this ] { subscriber[ A ]->hasNotificationActiveIs( false ); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, { "B", "C", "D" } } ) );
}

TEST_F( KivReentry, handlerUnsubscribesTheNext ) {
   act[ B ] = [ this ] { subscriber[ C ]->hasNotificationActiveIs( false ); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ { "A", "B", "D" }, { "A", "B", "D" } } ) );
}

TEST_F( KivReentry, handlerUnsubscribesTheLast ) {
   act[ B ] = [ this ] { subscriber[ D ]->hasNotificationActiveIs( false ); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ { "A", "B", "C" }, { "A", "B", "C" } } ) );
}

TEST_F( KivReentry, lastHandlerUnsubscribesItself ) {
   act[ D ] = [ this ] { subscriber[ D ]->hasNotificationActiveIs( false ); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, { "A", "B", "C" } } ) );
}

TEST_F( KivReentry, handlerUnsubscribesEverybody ) {
   act[ B ] = [ this ] {
      for ( auto const & watch : subscriber ) {
         watch->hasNotificationActiveIs( false );
      }
   };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ { "A", "B" }, {} } ) );
}

TEST_F( KivReentry, handlerUnsubscribesAllThatFollowFromTheBack ) {
   act[ A ] = [ this ] {
      for ( Subscriber const n : { D, C, B } ) {
         subscriber[ n ]->hasNotificationActiveIs( false );
      }
   };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ { "A" }, { "A" } } ) );
}

TEST_F( KivReentry, handlerDestroysItsOwnReactor ) {
   act[ B ] = [ this ] { subscriber[ B ].reset(); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, { "A", "C", "D" } } ) );
}

TEST_F( KivReentry, handlerDestroysOneCalledBefore ) {
   act[ C ] = [ this ] { subscriber[ A ].reset(); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, { "B", "C", "D" } } ) );
}

TEST_F( KivReentry, handlerDestroysTheNextAndTheLast ) {
   act[ B ] = [ this ] {
      subscriber[ D ].reset();
      subscriber[ C ].reset();
   };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ { "A", "B" }, { "A", "B" } } ) );
}

TEST_F( KivReentry, lastHandlerDestroysEverybody ) {
   act[ D ] = [ this ] {
      for ( auto & watch : subscriber ) {
         watch.reset();
      }
   };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, {} } ) );
   EXPECT_FALSE( leaf1->publisher().hasSubscribers() );
}

TEST_F( KivReentry, whoeverSubscribesDuringADeliveryIsCalledFromTheNextChangeOn ) {
   Watch fifth( leaf1, [ this ]( Change const & ) { seen.push_back( "E" ); } );
   act[ B ] = [ & ] { fifth.hasNotificationActiveIs( true ); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, { "A", "B", "C", "D", "E" } } ) );
}

TEST_F( KivReentry, lastHandlerSubscribesAnother ) {
   Watch fifth( leaf1, [ this ]( Change const & ) { seen.push_back( "E" ); } );
   act[ D ] = [ & ] { fifth.hasNotificationActiveIs( true ); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, { "A", "B", "C", "D", "E" } } ) );
}

TEST_F( KivReentry, anotherTakesTheLastOnesPlaceDuringADelivery ) {
   Watch fifth( leaf1, [ this ]( Change const & ) { seen.push_back( "E" ); } );
   act[ B ] = [ & ] {
      fifth.hasNotificationActiveIs( true );
      subscriber[ D ]->hasNotificationActiveIs( false );
   };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ { "A", "B", "C" }, { "A", "B", "C", "E" } } ) );
}

TEST_F( KivReentry, unsubscribingAndSubscribingAgainMissesTheChangeUnderWay ) {
   act[ A ] = [ this ] {
      subscriber[ C ]->hasNotificationActiveIs( false );
      subscriber[ C ]->hasNotificationActiveIs( true );
   };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ { "A", "B", "D" }, { "A", "B", "D", "C" } } ) );
}

TEST_F( KivReentry, handlerSubscribesItselfAgainAndIsNotCalledTwice ) {
   act[ B ] = [ this ] {
      subscriber[ B ]->hasNotificationActiveIs( false );
      subscriber[ B ]->hasNotificationActiveIs( true );
   };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, { "A", "C", "D", "B" } } ) );
}

TEST_F( KivReentry, handlerPointsItselfAtAnotherSwitch ) {
   act[ B ] = [ this ] { subscriber[ B ]->notifierIs( leaf2 ); };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ all, { "A", "C", "D" } } ) );
   seen.clear();
   leaf2->mtuIs( 1 );
   EXPECT_EQ( seen, Journal{ "B" } );
}

TEST_F( KivReentry, handlerPointsTheNextOneElsewhereAndBack ) {
   act[ B ] = [ this ] {
      subscriber[ C ]->notifierIs( leaf2 );
      subscriber[ C ]->notifierIs( leaf1 );
   };
   EXPECT_EQ( seenOfTwoChanges(), ( Two{ { "A", "B", "D" }, { "A", "B", "D", "C" } } ) );
}

TEST_F( KivReentry, changeMadeByAHandlerIsDeliveredAtOnceAndWhole ) {
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
   EXPECT_EQ( changes, ( Journal{ "before: leaf1 mtu: 0 -> 65535", "before: leaf1 mtu: 65535 -> 9000",
                                  "after: leaf1 mtu: 65535 -> 9000",
                                  "after: leaf1 mtu: 0 -> 65535" } ) );
   EXPECT_EQ( leaf1->mtu(), 9000U );
}

TEST_F( KivReentry, nestedChangeReachesWhoeverHasSubscribedByThen ) {
   Watch fifth( leaf1, [ this ]( Change const & ) { seen.push_back( "E" ); } );
   act[ B ] = [ & ] {
      fifth.hasNotificationActiveIs( true );
      leaf1->vlanIs( 100 );
   };
   leaf1->mtuIs( 1 );
   EXPECT_EQ( seen, ( Journal{ "A", "B", "A", "B", "C", "D", "E", "C", "D" } ) );
}

TEST_F( KivReentry, unsubscribingInANestedDeliveryHoldsForTheOuterOnes ) {
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

TEST_F( KivReentry, handlerThatDestroysItsReactorMayGoOnUsingWhatItHolds ) {
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

// Eight subscribers, and a script of what the n-th call does to which of them. The model is the
// definition: a list of who has subscribed, of which a delivery calls those who were in it when it
// began and have been in it ever since.
class Model {
 public:
   void subscribe( int who ) { order_.push_back( { who, births_++ } ); }
   void unsubscribe( int who ) {
      std::erase_if( order_, [ & ]( auto const & entry ) { return entry.first == who; } );
   }
   bool has( int who ) const {
      return std::any_of( order_.begin(), order_.end(),
                          [ & ]( auto const & entry ) { return entry.first == who; } );
   }
   // Calls `visit` for everybody who is to be called for one change.
   void deliver( std::function< void( int ) > const & visit ) {
      int const bound = births_;
      int last = -1;
      for ( ;; ) {
         auto const next = std::find_if( order_.begin(), order_.end(), [ & ]( auto const & entry ) {
            return entry.second > last && entry.second < bound;
         } );
         if ( next == order_.end() ) {
            return;
         }
         last = next->second;
         visit( next->first );
      }
   }

 private:
   std::vector< std::pair< int, int > > order_;  // who, number of the subscription
   int births_ = 0;
};

constexpr int kSubscribers = 8;

struct Step {
   int victim;
   bool isNestedChange;
};

RC_GTEST_PROP( KivReentryModel, anyScriptOfHandlersCallsWhomTheModelCalls, () ) {
   auto const steps = *rc::gen::container< std::vector< Step > >( rc::gen::construct< Step >(
      rc::gen::inRange( 0, kSubscribers ), rc::gen::map( rc::gen::inRange( 0, 4 ),
                                                         []( int n ) { return n == 0; } ) ) );
   Model model;
   std::vector< int > expected;
   std::size_t at = 0;
   std::function< void( int ) > const visit = [ & ]( int who ) {
      expected.push_back( who );
      if ( at == steps.size() ) {
         return;
      }
      Step const step = steps[ at++ ];
      if ( step.isNestedChange ) {
         model.deliver( visit );
      } else {
         model.has( step.victim ) ? model.unsubscribe( step.victim )
                                  : model.subscribe( step.victim );
      }
   };
   for ( int n = 0; n < kSubscribers; ++n ) {
      model.subscribe( n );
   }
   model.deliver( visit );
   model.deliver( visit );

   Ptr< Switch > const leaf1 = Quelm::make< Switch >( "leaf1" );
   std::array< std::unique_ptr< Watch >, kSubscribers > subscriber;
   std::vector< int > called;
   std::size_t now = 0;
   auto const subscribe = [ & ]( int who, auto const & again ) -> void {
      auto const index = static_cast< std::size_t >( who );
      subscriber[ index ] = std::make_unique< Watch >( leaf1, [ &, who, again ]( Change const & ) {
         called.push_back( who );
         if ( now == steps.size() ) {
            return;
         }
         Step const step = steps[ now++ ];
         auto const victim = static_cast< std::size_t >( step.victim );
         if ( step.isNestedChange ) {
            leaf1->mtuIs( leaf1->mtu() + 1 );
         } else if ( subscriber[ victim ] ) {
            subscriber[ victim ].reset();
         } else {
            again( step.victim, again );
         }
      } );
      subscriber[ index ]->hasNotificationActiveIs( true );
   };
   for ( int n = 0; n < kSubscribers; ++n ) {
      subscribe( n, subscribe );
   }
   leaf1->mtuIs( leaf1->mtu() + 1 );
   leaf1->mtuIs( leaf1->mtu() + 1 );
   RC_ASSERT( called == expected );
}

}  // namespace KivReentryTest
