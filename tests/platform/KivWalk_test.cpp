// A walk over a collection survives whatever is done to the collection meanwhile: removed members
// are not visited, the removed current one can still be read, and nothing inserted is visited.
#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <memory>
#include <vector>

#include "support/Journal.h"
#include "support/Switch.h"

namespace KivWalkTest {

using Quelm::Ptr;
using Support::Port;
using Support::Switch;
using Keys = std::vector< U16 >;

class KivWalk : public testing::Test {
 protected:
   KivWalk() {
      for ( U16 const key : Keys{ 10, 20, 30, 40 } ) {
         leaf1->noteIs( key, "note " + std::to_string( key ) );
      }
   }

   // The keys that a walk visits when `act` runs at key `where`.
   Keys visited( U16 where, std::function< void() > const & act ) {
      Keys keys;
      for ( auto iter = leaf1->noteIter(); iter; ++iter ) {
         keys.push_back( iter.key() );
         if ( iter.key() == where ) {
            act();
         }
      }
      return keys;
   }
   Keys present() {
      return visited( 0, [] {} );
   }

   Ptr< Switch > leaf1 = Quelm::make< Switch >( "leaf1" );
};

TEST_F( KivWalk, VisitsEveryMemberInKeyOrder ) {
   EXPECT_EQ( present(), ( Keys{ 10, 20, 30, 40 } ) );
}

TEST_F( KivWalk, GoesOnWhenTheCurrentMemberIsRemoved ) {
   EXPECT_EQ( visited( 20, [ this ] { leaf1->noteDel( 20 ); } ), ( Keys{ 10, 20, 30, 40 } ) );
   EXPECT_EQ( present(), ( Keys{ 10, 30, 40 } ) );
}

TEST_F( KivWalk, DoesNotVisitTheNextMemberOnceItIsRemoved ) {
   EXPECT_EQ( visited( 20, [ this ] { leaf1->noteDel( 30 ); } ), ( Keys{ 10, 20, 40 } ) );
}

TEST_F( KivWalk, DoesNotMindThatThePreviousMemberIsRemoved ) {
   EXPECT_EQ( visited( 20, [ this ] { leaf1->noteDel( 10 ); } ), ( Keys{ 10, 20, 30, 40 } ) );
}

TEST_F( KivWalk, EndsWhenAllMembersAreRemoved ) {
   EXPECT_EQ( visited( 20, [ this ] { leaf1->noteDelAll(); } ), ( Keys{ 10, 20 } ) );
   EXPECT_EQ( present(), Keys{} );
}

TEST_F( KivWalk, EndsWhenTheRestIsRemovedFromTheBack ) {
   EXPECT_EQ( visited( 10,
                       [ this ] {
                          for ( U16 const key : Keys{ 40, 30, 20 } ) {
                             leaf1->noteDel( key );
                          }
                       } ),
              Keys{ 10 } );
}

TEST_F( KivWalk, RemovesEachMemberAsItVisitsIt ) {
   Keys keys;
   for ( auto iter = leaf1->noteIter(); iter; ++iter ) {
      keys.push_back( iter.key() );
      leaf1->noteDel( iter.key() );
   }
   EXPECT_EQ( keys, ( Keys{ 10, 20, 30, 40 } ) );
   EXPECT_EQ( present(), Keys{} );
}

TEST_F( KivWalk, RemovedCurrentMemberCanStillBeRead ) {
   auto iter = leaf1->noteIter();
   EXPECT_EQ( leaf1->noteDel( 10 ), "note 10" );
   EXPECT_EQ( iter.key(), 10 );
   EXPECT_EQ( iter.value(), "note 10" );
   leaf1->noteIs( 10, "another" );
   EXPECT_EQ( iter.value(), "note 10" );
   ++iter;
   EXPECT_EQ( iter.value(), "note 20" );
}

TEST_F( KivWalk, RemovedCurrentEntityLivesUntilTheWalkIsOver ) {
   leaf1->portIs( 5 )->speedIs( 100 );
   auto iter = leaf1->portIter();
   leaf1->portDelAll();
   EXPECT_EQ( iter.value()->speed(), 100U );
   EXPECT_EQ( iter.value()->users(), 1U );
}

TEST_F( KivWalk, DoesNotVisitWhatIsInsertedWhereverItFalls ) {
   EXPECT_EQ( visited( 20,
                       [ this ] {
                          for ( U16 const key : Keys{ 5, 15, 25, 45 } ) {
                             leaf1->noteIs( key, "new" );
                          }
                       } ),
              ( Keys{ 10, 20, 30, 40 } ) );
   EXPECT_EQ( present(), ( Keys{ 5, 10, 15, 20, 25, 30, 40, 45 } ) );
}

TEST_F( KivWalk, DoesNotVisitWhatIsInsertedWhileItStandsOnTheLast ) {
   EXPECT_EQ( visited( 40, [ this ] { leaf1->noteIs( 50, "new" ); } ), ( Keys{ 10, 20, 30, 40 } ) );
}

TEST_F( KivWalk, DoesNotVisitWhatIsRemovedAndInsertedAgain ) {
   EXPECT_EQ( visited( 20,
                       [ this ] {
                          leaf1->noteIs( 30, leaf1->noteDel( 30 ) );
                          leaf1->noteIs( 20, leaf1->noteDel( 20 ) );
                       } ),
              ( Keys{ 10, 20, 40 } ) );
   EXPECT_EQ( present(), ( Keys{ 10, 20, 30, 40 } ) );
}

TEST_F( KivWalk, VisitsAMemberWhoseValueIsOverwrittenAndSeesTheNewValue ) {
   std::vector< std::string > values;
   for ( auto iter = leaf1->noteIter(); iter; ++iter ) {
      if ( iter.key() == 10 ) {
         leaf1->noteIs( 10, "changed 10" );
         leaf1->noteIs( 30, "changed 30" );
      }
      values.push_back( iter.value() );
   }
   EXPECT_EQ( values,
              ( std::vector< std::string >{ "changed 10", "note 20", "changed 30", "note 40" } ) );
}

TEST_F( KivWalk, MayBeginWhileAnotherIsUnderWay ) {
   Keys pairs;
   for ( auto outer = leaf1->noteIter(); outer; ++outer ) {
      for ( auto inner = leaf1->noteIter(); inner; ++inner ) {
         pairs.push_back( static_cast< U16 >( outer.key() * 100 + inner.key() ) );
      }
   }
   EXPECT_EQ( pairs.size(), 16U );
   EXPECT_EQ( pairs.front(), 1010 );
   EXPECT_EQ( pairs.back(), 4040 );
}

TEST_F( KivWalk, InnerWalkVisitsWhatWasInsertedBeforeItBeganAndTheOuterDoesNot ) {
   Keys inner;
   EXPECT_EQ( visited( 20,
                       [ & ] {
                          leaf1->noteIs( 25, "new" );
                          inner = present();
                       } ),
              ( Keys{ 10, 20, 30, 40 } ) );
   EXPECT_EQ( inner, ( Keys{ 10, 20, 25, 30, 40 } ) );
}

TEST_F( KivWalk, InnerWalkRemovesWhatTheOuterStandsOnAndWillVisit ) {
   auto outer = leaf1->noteIter();
   ++outer;
   for ( auto inner = leaf1->noteIter(); inner; ++inner ) {
      leaf1->noteDel( inner.key() );
   }
   EXPECT_EQ( outer.value(), "note 20" );
   ++outer;
   EXPECT_FALSE( outer );
}

TEST_F( KivWalk, KeepsItsOwnerAlive ) {
   Ptr< Port > const port = leaf1->portIs( 5 );
   {
      auto iter = leaf1->portIter();
      leaf1 = nullptr;
      EXPECT_EQ( port->users(), 2U );
      EXPECT_EQ( iter.value(), port );
   }
   EXPECT_EQ( port->users(), 1U );
}

TEST_F( KivWalk, OwnerMayGoFromWithinAWalkThatEmptiesIt ) {
   Keys keys;
   Switch * const plain = leaf1.get();
   for ( auto iter = plain->noteIter(); iter; ++iter ) {
      leaf1 = nullptr;
      keys.push_back( iter.key() );
      plain->noteDel( iter.key() );
   }
   EXPECT_EQ( keys, ( Keys{ 10, 20, 30, 40 } ) );
}

TEST_F( KivWalk, OfNothingIsOverAtOnceAndStaysSo ) {
   auto iter = leaf1->portIter();
   EXPECT_FALSE( iter );
   leaf1->portIs( 5 );
   ++iter;
   EXPECT_FALSE( iter );
}

TEST_F( KivWalk, HandlersOfARemovalMayWalkAndRemoveAsWell ) {
   Kiv::Watch< Switch > watch( leaf1, [ this ]( Kiv::Change const & change ) {
      if ( change.key< U16 >() == 10 ) {
         leaf1->noteDel( 30 );
         leaf1->noteIs( 50, "new" );
      }
   } );
   watch.hasNotificationActiveIs( true );
   Support::Journal seen;
   Support::Scribe const scribe( leaf1, seen );
   leaf1->noteDelAll();
   EXPECT_EQ( present(), Keys{ 50 } );
   EXPECT_EQ( seen.size(), 5U );
}

// A port that cleans up after itself: at the end of its life it takes its neighbour off the switch
// that both are on.
class Twin : public Port {
 public:
   Twin( U16 number, Switch & owner, U16 other )
         : Port( number ), owner_( owner ), other_( other ) {}
   ~Twin() override {
      for ( auto iter = owner_.portIter(); iter; ++iter ) {
         if ( iter.key() == other_ ) {
            owner_.portDel( other_ );
         }
      }
   }

 private:
   Switch & owner_;
   U16 other_;
};

TEST_F( KivWalk, EntitiesThatDieAtItsEndMayWalkTheSameCollection ) {
   leaf1->portIs( 1 );
   leaf1->portIs( Quelm::make< Twin >( U16{ 2 }, *leaf1, U16{ 3 } ) );
   leaf1->portIs( Quelm::make< Twin >( U16{ 3 }, *leaf1, U16{ 4 } ) );
   leaf1->portIs( 4 );
   {
      auto iter = leaf1->portIter();
      leaf1->portDel( 1 );
      leaf1->portDel( 2 );
   }
   EXPECT_EQ( leaf1->ports(), 0U );
}

TEST_F( KivWalk, WalksEndInTheReverseOrderOfTheirBeginning ) {
   auto const crossed = [ this ] {
      std::unique_ptr< Switch::noteIterator > first( new auto( leaf1->noteIter() ) );
      auto const second = leaf1->noteIter();
      first.reset();
   };
   EXPECT_EXIT( crossed(), testing::KilledBySignal( SIGABRT ),
                "Assertion 'collection_.walks_ == this' failed\\." );
}

}  // namespace KivWalkTest
