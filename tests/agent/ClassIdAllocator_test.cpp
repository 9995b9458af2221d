// The central allocator of class ids: what it grants, when, and what it takes back.
#include <Peers/ClassIdAllocator.h>

#include <gtest/gtest.h>

namespace {

using Peers::ClassIdAllocator;
using Pelk::IpGenAddr;
using VornalCommon::ClassId;

IpGenAddr vtep( U32 n ) {
   return IpGenAddr::fromString( "10.0.0." + std::to_string( n ) );
}

// An allocator, the requests it reads and the grants it writes. Grants are noted as they happen.
class Allocator : public testing::Test {
 protected:
   void start( Scenario::ClassIds const & range ) {
      allocator.emplace( range, activity, config, status );
      activity.turnNew( [ this ] { allocator->start(); } );
      activity.run();
      watch.hasNotificationActiveIs( true );
   }

   void inTurn( std::function< void() > const & work ) {
      activity.turnNew( work );
      activity.run();
   }
   void ask( U32 n ) { config->remoteESPeerVtepIs( vtep( n ), true ); }
   void giveBack( U32 n ) { config->remoteESPeerVtepDel( vtep( n ) ); }

   // The grant of VTEP n, or 0.
   U16 grant( U32 n ) const {
      return status->remoteESPeerVtepHas( vtep( n ) )
                ? status->remoteESPeerVtep( vtep( n ) ).value()
                : U16{ 0 };
   }

   Kiv::ActivityManager activity;
   Quelm::Ptr< ClassIdAllocator::Config > config =
      Quelm::make< ClassIdAllocator::Config >( "config" );
   Quelm::Ptr< ClassIdAllocator::Status > status =
      Quelm::make< ClassIdAllocator::Status >( "status" );
   std::vector< std::string > story;
   Kiv::Watch< ClassIdAllocator::Status > watch{
      status,
      [ this ]( Kiv::Change const & change ) {
         auto const * const id = change.newValue< ClassId >();
         story.push_back( change.key< IpGenAddr >().stringValue() +
                          ( id ? " gets " + std::to_string( id->value() ) : " loses it" ) );
      }
   };
   std::optional< ClassIdAllocator > allocator;
};

using Told = std::vector< std::string >;

TEST_F( Allocator, GrantsTheLowestFreeIdInTheOrderOfTheRequests ) {
   start( { 3, 9, 0 } );
   inTurn( [ & ] {
      ask( 7 );
      ask( 2 );
      EXPECT_EQ( story, Told() ) << "granted within the turn that asks";
   } );
   EXPECT_EQ( story, ( Told{ "10.0.0.7 gets 3", "10.0.0.2 gets 4" } ) );
   inTurn( [ & ] { giveBack( 7 ); } );
   inTurn( [ & ] { ask( 5 ); } );
   EXPECT_EQ( grant( 5 ), 3 );
}

TEST_F( Allocator, GrantsOneTurnLaterThanTheRequestAndTheDelayLaterStill ) {
   start( { 1, 9, 3 } );
   Told turns;
   activity.turnNew( [ & ] { ask( 2 ); } );
   for ( int turn = 1; turn <= 7; ++turn ) {
      activity.turnNew( [] {} );
   }
   int turn = 0;
   while ( grant( 2 ) == 0 && activity.runOne() ) {
      ++turn;
   }
   inTurn( [] {} );
   EXPECT_GT( turn, 4 );
   EXPECT_EQ( grant( 2 ), 1 );
}

TEST_F( Allocator, CancelsARequestThatIsDeletedBeforeItWasGranted ) {
   start( {} );
   inTurn( [ & ] {
      ask( 2 );
      giveBack( 2 );
   } );
   EXPECT_EQ( story, Told() );
   inTurn( [ & ] {
      ask( 2 );
      giveBack( 2 );
      ask( 2 );
   } );
   EXPECT_EQ( story, ( Told{ "10.0.0.2 gets 1" } ) );
}

TEST_F( Allocator, TakesAGrantBackAlsoWhenItWasAskedForAgainAndGrantsItAnew ) {
   start( {} );
   inTurn( [ & ] { ask( 2 ); } );
   inTurn( [ & ] {
      giveBack( 2 );
      ask( 2 );
   } );
   EXPECT_EQ( story, ( Told{ "10.0.0.2 gets 1", "10.0.0.2 loses it", "10.0.0.2 gets 1" } ) );
}

TEST_F( Allocator, IsSilentWhileNoIdIsFreeAndServesTheLongestWaitingFirst ) {
   start( { 1, 2, 0 } );
   inTurn( [ & ] {
      for ( U32 const n : { 2U, 3U, 9U, 4U } ) {
         ask( n );
      }
   } );
   EXPECT_EQ( story, ( Told{ "10.0.0.2 gets 1", "10.0.0.3 gets 2" } ) );
   inTurn( [ & ] { giveBack( 3 ); } );
   EXPECT_EQ( grant( 9 ), 2 );
   inTurn( [ & ] { giveBack( 4 ); } );
   inTurn( [ & ] { giveBack( 2 ); } );
   EXPECT_EQ( grant( 4 ), 0 ) << "it no longer waits";
}

TEST_F( Allocator, FindsRequestsAndWithdrawsGrantsThatNobodyAsksForWhenItStarts ) {
   config->remoteESPeerVtepIs( vtep( 2 ), true );
   config->remoteESPeerVtepIs( vtep( 3 ), true );
   status->remoteESPeerVtepIs( vtep( 3 ), ClassId( 1 ) );
   status->remoteESPeerVtepIs( vtep( 4 ), ClassId( 2 ) );
   start( { 1, 9, 0 } );
   EXPECT_EQ( grant( 3 ), 1 );
   EXPECT_EQ( grant( 4 ), 0 );
   EXPECT_EQ( grant( 2 ), 2 );
}

TEST_F( Allocator, GrantsNothingWhileItIsPaused ) {
   start( {} );
   inTurn( [ & ] { allocator->pausedIs( true ); } );
   inTurn( [ & ] { ask( 2 ); } );
   EXPECT_EQ( story, Told() );
   inTurn( [ & ] { allocator->pausedIs( false ); } );
   EXPECT_EQ( story, ( Told{ "10.0.0.2 gets 1" } ) );
}

TEST_F( Allocator, CountsIdsThatAreGivenByHandAsTaken ) {
   start( { 1, 3, 0 } );
   inTurn( [ & ] { allocator->grantIs( vtep( 2 ), ClassId( 1 ) ); } );
   inTurn( [ & ] { ask( 3 ); } );
   EXPECT_EQ( grant( 3 ), 2 );
   inTurn( [ & ] { allocator->grantIs( vtep( 3 ), ClassId( 7 ) ); } );
   inTurn( [ & ] { ask( 4 ); } );
   EXPECT_EQ( grant( 4 ), 2 ) << "an id that was replaced is free";
   inTurn( [ & ] { giveBack( 3 ); } );
   EXPECT_EQ( grant( 3 ), 0 ) << "an id outside the range can be given back";
}

TEST_F( Allocator, PassesIdsByThatWereGivenByHandAboveThoseInUse ) {
   start( { 1, 5, 0 } );
   inTurn( [ & ] {
      allocator->grantIs( vtep( 12 ), ClassId( 2 ) );
      allocator->grantIs( vtep( 13 ), ClassId( 3 ) );
   } );
   inTurn( [ & ] {
      ask( 2 );
      ask( 3 );
   } );
   EXPECT_EQ( grant( 2 ), 1 );
   EXPECT_EQ( grant( 3 ), 4 );
}

TEST_F( Allocator, GrantsTheLowestIdAlsoWhenAHigherOneCameAndWentByHand ) {
   start( { 1, 5, 0 } );
   inTurn( [ & ] { allocator->grantIs( vtep( 12 ), ClassId( 4 ) ); } );
   inTurn( [ & ] { allocator->grantDel( vtep( 12 ) ); } );
   inTurn( [ & ] {
      for ( U32 const n : { 2U, 3U, 4U, 5U } ) {
         ask( n );
      }
   } );
   EXPECT_EQ( grant( 2 ), 1 );
   EXPECT_EQ( grant( 4 ), 3 );
   EXPECT_EQ( grant( 5 ), 4 ) << "each id once";
}

TEST_F( Allocator, GrantsAnewAfterAWithdrawalByHandOnlyWhenItIsAskedAgain ) {
   start( {} );
   inTurn( [ & ] { ask( 2 ); } );
   inTurn( [ & ] { allocator->grantDel( vtep( 2 ) ); } );
   EXPECT_EQ( grant( 2 ), 0 );
   inTurn( [ & ] {
      giveBack( 2 );
      ask( 2 );
   } );
   EXPECT_EQ( grant( 2 ), 1 );
}

// --- Ids that come free by hand

// One id, which VTEP 2 has; VTEPs 3 and 4 wait for it, in this order.
class WithoutAFreeId : public Allocator {
 protected:
   explicit WithoutAFreeId( U32 delay = 0 ) {
      start( { 1, 1, delay } );
      inTurn( [ this ] {
         for ( U32 const n : { 2U, 3U, 4U } ) {
            ask( n );
         }
      } );
      story.clear();
   }
};

TEST_F( WithoutAFreeId, TheLongestWaitingIsServedWhenAGrantIsWithdrawnByHand ) {
   inTurn( [ & ] { allocator->grantDel( vtep( 2 ) ); } );
   EXPECT_EQ( story, ( Told{ "10.0.0.2 loses it", "10.0.0.3 gets 1" } ) );
}

TEST_F( WithoutAFreeId, TheLongestWaitingIsServedWhenAGrantIsReplacedByHand ) {
   inTurn( [ & ] { allocator->grantIs( vtep( 2 ), ClassId( 7 ) ); } );
   EXPECT_EQ( story, ( Told{ "10.0.0.2 gets 7", "10.0.0.3 gets 1" } ) );
}

TEST_F( WithoutAFreeId, TheLongestWaitingIsServedWhenAGrantIsDeletedPastTheAllocator ) {
   inTurn( [ & ] { status->remoteESPeerVtepDelAll(); } );
   EXPECT_EQ( story, ( Told{ "10.0.0.2 loses it", "10.0.0.3 gets 1" } ) );
   inTurn( [ & ] { status->remoteESPeerVtepIs( vtep( 3 ), ClassId( 9 ) ); } );
   EXPECT_EQ( grant( 4 ), 1 );
}

TEST_F( WithoutAFreeId, AnIdThatIsTakenPastTheAllocatorIsNotFree ) {
   inTurn( [ & ] {
      status->remoteESPeerVtepIs( vtep( 9 ), ClassId( 1 ) );
      status->remoteESPeerVtepDel( vtep( 2 ) );
   } );
   EXPECT_EQ( grant( 3 ), 0 );
}

TEST_F( WithoutAFreeId, AGrantByHandIsNotWaitedForAnyMore ) {
   inTurn( [ & ] { allocator->grantIs( vtep( 3 ), ClassId( 7 ) ); } );
   inTurn( [ & ] { allocator->grantDel( vtep( 2 ) ); } );
   EXPECT_EQ( story, ( Told{ "10.0.0.3 gets 7", "10.0.0.2 loses it", "10.0.0.4 gets 1" } ) );
}

TEST_F( WithoutAFreeId, TheGrantStandsBehindTheTurnsThatAreQueuedWhenTheIdComesFree ) {
   activity.turnNew( [ & ] { allocator->grantDel( vtep( 2 ) ); } );
   activity.turnNew( [ & ] { story.emplace_back( "another turn" ); } );
   activity.run();
   EXPECT_EQ( story, ( Told{ "10.0.0.2 loses it", "another turn", "10.0.0.3 gets 1" } ) );
}

struct WithoutAFreeIdAndSlow : WithoutAFreeId {
   WithoutAFreeIdAndSlow() : WithoutAFreeId( 3 ) {}
};

TEST_F( WithoutAFreeIdAndSlow, ARequestThatIsGivenUpIsNotServedBeforeItsEndIsActedOn ) {
   inTurn( [ & ] {
      giveBack( 3 );
      allocator->grantDel( vtep( 2 ) );
   } );
   EXPECT_EQ( story, ( Told{ "10.0.0.2 loses it", "10.0.0.4 gets 1" } ) );
}

// --- Paused

// VTEP 2 has id 1 of two, and the allocator is paused.
class Paused : public Allocator {
 protected:
   Paused() {
      start( { 1, 2, 0 } );
      inTurn( [ this ] { ask( 2 ); } );
      inTurn( [ this ] { allocator->pausedIs( true ); } );
      story.clear();
   }
   void resume() {
      inTurn( [ this ] { allocator->pausedIs( false ); } );
   }
};

TEST_F( Paused, TakesNoGrantBackBeforeItServesAgain ) {
   inTurn( [ & ] { giveBack( 2 ); } );
   EXPECT_EQ( story, Told() );
   resume();
   EXPECT_EQ( story, ( Told{ "10.0.0.2 loses it" } ) );
}

TEST_F( Paused, ActsOnWhatHasHappenedInItsOrderOnceItServesAgain ) {
   inTurn( [ & ] { ask( 3 ); } );
   inTurn( [ & ] { giveBack( 2 ); } );
   inTurn( [ & ] { ask( 4 ); } );
   inTurn( [ & ] { ask( 2 ); } );
   inTurn( [ & ] { giveBack( 3 ); } );
   inTurn( [ & ] { ask( 5 ); } );
   EXPECT_EQ( story, Told() );
   resume();
   EXPECT_EQ( story, ( Told{ "10.0.0.2 loses it", "10.0.0.4 gets 1", "10.0.0.2 gets 2" } ) )
      << "VTEP 3 has given up, VTEP 5 has come last";
}

TEST_F( Paused, ServesNobodyWhenAnIdComesFreeByHand ) {
   inTurn( [ & ] { ask( 3 ); } );
   inTurn( [ & ] { allocator->grantDel( vtep( 2 ) ); } );
   EXPECT_EQ( story, ( Told{ "10.0.0.2 loses it" } ) );
   resume();
   EXPECT_EQ( grant( 3 ), 1 );
}

TEST_F( Paused, HoldsBackAgainWhatItHasNotActedOnWhenItPausesAgain ) {
   inTurn( [ & ] { giveBack( 2 ); } );
   inTurn( [ & ] {
      allocator->pausedIs( false );
      allocator->pausedIs( true );
   } );
   EXPECT_EQ( story, Told() );
   resume();
   EXPECT_EQ( story, ( Told{ "10.0.0.2 loses it" } ) );
}

TEST_F( Paused, AsksForNothingTwiceWhenItIsToldToServeTwice ) {
   inTurn( [ & ] { ask( 3 ); } );
   resume();
   resume();
   EXPECT_EQ( story, ( Told{ "10.0.0.3 gets 2" } ) );
}

}  // namespace
