// The activity runs turns one after the other: wake-ups that are due first, then what was queued,
// in order; and when nothing is left, the clock moves on.
#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <Kiv/Activity.h>
#include <Kiv/TurnWatch.h>

namespace KivActivityTest {

using Kiv::ActivityManager;
using Kiv::ClockReactor;
using namespace std::chrono_literals;
using Story = std::vector< std::string >;

class KivActivity : public testing::Test {
 protected:
   std::function< void() > note( std::string const & text ) {
      return [ this, text ] { story.push_back( text ); };
   }

   ActivityManager manager;
   Story story;
};

TEST_F( KivActivity, TurnsRunInTheOrderOfQueueing ) {
   manager.turnNew( note( "first" ) );
   manager.turnNew( note( "second" ) );
   manager.turnNew( note( "third" ) );
   EXPECT_EQ( story, Story{} );
   manager.run();
   EXPECT_EQ( story, ( Story{ "first", "second", "third" } ) );
}

TEST_F( KivActivity, TurnQueuedByATurnRunsBehindThoseThatWait ) {
   manager.turnNew( [ & ] {
      manager.turnNew( note( "third" ) );
      story.push_back( "first" );
   } );
   manager.turnNew( note( "second" ) );
   manager.run();
   EXPECT_EQ( story, ( Story{ "first", "second", "third" } ) );
}

TEST_F( KivActivity, EqualTurnsAreNotMerged ) {
   for ( int n = 0; n < 3; ++n ) {
      manager.turnNew( note( "again" ) );
   }
   manager.run();
   EXPECT_EQ( story, ( Story{ "again", "again", "again" } ) );
}

TEST_F( KivActivity, TheWatchIsToldBeforeEveryTurnAndEveryWakeUp ) {
   Kiv::turnWatchIs( note( "watch" ) );
   ClockReactor reactor( manager.clock(), note( "wake-up" ) );
   reactor.hasNotificationActiveIs( true );
   reactor.timeMinIs( manager.clock()->now() + 1s );
   manager.turnNew( note( "first" ) );
   manager.turnNew( note( "second" ) );
   manager.run();
   Kiv::turnWatchIs( {} );
   manager.turnNew( note( "unseen" ) );
   manager.run();
   EXPECT_EQ( story, ( Story{ "watch", "first", "watch", "second", "watch", "watch", "wake-up",
                              "watch", "unseen" } ) );
}

TEST_F( KivActivity, RunOneRunsOneTurnAndTellsWhetherThereWasOne ) {
   manager.turnNew( note( "first" ) );
   manager.turnNew( note( "second" ) );
   EXPECT_TRUE( manager.runOne() );
   EXPECT_EQ( story, Story{ "first" } );
   EXPECT_TRUE( manager.runOne() );
   EXPECT_FALSE( manager.runOne() );
}

TEST_F( KivActivity, WakeUpThatIsDueRunsBeforeTheNextQueuedTurn ) {
   ClockReactor reactor( manager.clock(), note( "wake-up" ) );
   reactor.hasNotificationActiveIs( true );
   manager.turnNew( [ & ] {
      story.push_back( "first" );
      reactor.timeMinIs( Kiv::System::currentTime() );
   } );
   manager.turnNew( note( "second" ) );
   manager.run();
   EXPECT_EQ( story, ( Story{ "first", "wake-up", "second" } ) );
}

TEST_F( KivActivity, WakeUpIsATurnOfItsOwn ) {
   ClockReactor reactor( manager.clock(), note( "wake-up" ) );
   reactor.hasNotificationActiveIs( true );
   manager.turnNew( [ & ] {
      reactor.timeMinIs( Kiv::System::currentTime() );
      story.push_back( "armed" );
   } );
   EXPECT_TRUE( manager.runOne() );
   EXPECT_EQ( story, Story{ "armed" } );
   EXPECT_TRUE( manager.runOne() );
   EXPECT_EQ( story, ( Story{ "armed", "wake-up" } ) );
}

TEST_F( KivActivity, ClockMovesOnOnlyWhenNoTurnIsLeft ) {
   ClockReactor reactor( manager.clock(), [ & ] {
      story.push_back( "wake-up at " + std::to_string( manager.clock()->now() / 1h ) + " h" );
   } );
   reactor.hasNotificationActiveIs( true );
   reactor.timeMinIs( 1h );
   manager.turnNew( note( "first" ) );
   manager.turnNew( [ & ] {
      manager.turnNew( note( "third" ) );
      story.push_back( "second" );
   } );
   manager.run();
   EXPECT_EQ( story, ( Story{ "first", "second", "third", "wake-up at 1 h" } ) );
   EXPECT_EQ( manager.clock()->now(), 1h );
}

TEST_F( KivActivity, RunOneLeavesTheClockWhereItIs ) {
   ClockReactor reactor( manager.clock(), note( "wake-up" ) );
   reactor.hasNotificationActiveIs( true );
   reactor.timeMinIs( 1h );
   EXPECT_FALSE( manager.runOne() );
   EXPECT_EQ( manager.clock()->now(), 0h );
   EXPECT_EQ( story, Story{} );
}

TEST_F( KivActivity, ClockGoesFromWakeUpToWakeUp ) {
   std::vector< Kiv::Time > times;
   ClockReactor reactor( manager.clock(), [ & ] {
      times.push_back( Kiv::System::currentTime() );
      if ( times.size() < 3 ) {
         reactor.timeMinIs( times.back() + 24h );
      }
   } );
   reactor.hasNotificationActiveIs( true );
   reactor.timeMinIs( 5ns );
   manager.run();
   EXPECT_EQ( times, ( std::vector< Kiv::Time >{ 5ns, 24h + 5ns, 48h + 5ns } ) );
}

TEST_F( KivActivity, EveryTurnHoldsTheLockAndNothingElseDoes ) {
   bool heldInTurn = false;
   bool heldInWakeUp = false;
   ClockReactor reactor( manager.clock(), [ & ] { heldInWakeUp = manager.isLockHeld(); } );
   reactor.hasNotificationActiveIs( true );
   reactor.timeMinIs( 1s );
   manager.turnNew( [ & ] { heldInTurn = manager.isLockHeld(); } );
   EXPECT_FALSE( manager.isLockHeld() );
   manager.run();
   EXPECT_TRUE( heldInTurn );
   EXPECT_TRUE( heldInWakeUp );
   EXPECT_FALSE( manager.isLockHeld() );
}

TEST_F( KivActivity, WhatATurnHoldsGoesWithTheLockStillHeld ) {
   std::shared_ptr< void > held( nullptr, [ this ]( void * ) {
      story.push_back( manager.isLockHeld() ? "let go with the lock" : "let go without the lock" );
   } );
   manager.turnNew( [ held ] {} );
   held = nullptr;
   manager.run();
   EXPECT_EQ( story, Story{ "let go with the lock" } );
}

TEST_F( KivActivity, ExceptionThatLeavesATurnPassesAndTurnsBehindItStayQueued ) {
   manager.turnNew( [] { throw std::runtime_error( "bad turn" ); } );
   manager.turnNew( note( "behind" ) );
   EXPECT_THROW( manager.run(), std::runtime_error );
   EXPECT_FALSE( manager.isLockHeld() );
   EXPECT_EQ( story, Story{} );
   manager.run();
   EXPECT_EQ( story, Story{ "behind" } );
}

TEST_F( KivActivity, TheManagerInChargeIsTheLatestStillAlive ) {
   EXPECT_EQ( Kiv::activityManager(), &manager );
   {
      ActivityManager const inner;
      EXPECT_EQ( Kiv::activityManager(), &inner );
      manager.clock()->nowIs( 5s );
      EXPECT_EQ( Kiv::System::currentTime(), 0s );
   }
   EXPECT_EQ( Kiv::activityManager(), &manager );
   EXPECT_EQ( Kiv::System::currentTime(), 5s );
}

TEST( KivNoActivity, ThereIsNoManagerUntilOneIsBuilt ) {
   EXPECT_FALSE( Kiv::hasActivityManager() );
   { ActivityManager const manager; }
   EXPECT_FALSE( Kiv::hasActivityManager() );
}

TEST( KivNoActivity, AskingForTheManagerOrTheTimeIsAFailedAssertion ) {
   EXPECT_EXIT( Kiv::activityManager(), testing::KilledBySignal( SIGABRT ),
                "Activity\\.cpp:[0-9]+: .*activityManager\\(\\): Assertion 'inCharge' failed\\." );
   EXPECT_EXIT( Kiv::System::currentTime(), testing::KilledBySignal( SIGABRT ),
                "Assertion 'inCharge' failed\\." );
}

TEST( KivNoActivity, ManagersGoInTheReverseOrderOfTheirBuilding ) {
   auto const crossed = [] {
      auto first = std::make_unique< ActivityManager >();
      ActivityManager const second;
      first.reset();
   };
   EXPECT_EXIT( crossed(), testing::KilledBySignal( SIGABRT ),
                "Assertion 'inCharge == this' failed\\." );
}

}  // namespace KivActivityTest
