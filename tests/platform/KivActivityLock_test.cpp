// One thread at a time works with the activity lock. An unlock anchor really gives it up for its
// scope: another thread runs then, and nothing but then.
#include <gtest/gtest.h>

#include <csignal>
#include <latch>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <Kiv/Activity.h>

namespace KivActivityLockTest {

using Kiv::ActivityLockAnchor;
using Kiv::ActivityManager;
using Kiv::ActivityUnlockAnchor;
using Story = std::vector< std::string >;

class KivActivityLock : public testing::Test {
 protected:
   ActivityManager manager;
   Story story;  // written with the lock held only
};

TEST_F( KivActivityLock, AnotherThreadRunsWhileTheLockIsGivenUp ) {
   std::latch visited( 1 );
   std::thread visitor;
   manager.turnNew( [ & ] {
      story.push_back( "turn begins" );
      visitor = std::thread( [ & ] {
         {
            ActivityLockAnchor const locked( manager );
            story.push_back( "visitor" );
         }
         visited.count_down();
      } );
      {
         ActivityUnlockAnchor const unlocked;
         EXPECT_FALSE( manager.isLockHeld() );
         visited.wait();
      }
      EXPECT_TRUE( manager.isLockHeld() );
      story.push_back( "turn ends" );
   } );
   manager.run();
   visitor.join();
   EXPECT_EQ( story, ( Story{ "turn begins", "visitor", "turn ends" } ) );
}

TEST_F( KivActivityLock, AnotherThreadWaitsAsLongAsTheLockIsHeld ) {
   std::latch knocking( 1 );
   std::thread visitor;
   manager.turnNew( [ & ] {
      visitor = std::thread( [ & ] {
         EXPECT_FALSE( manager.isLockHeld() );
         knocking.count_down();
         ActivityLockAnchor const locked( manager );
         story.push_back( "visitor" );
      } );
      knocking.wait();
      for ( int n = 0; n < 1000; ++n ) {
         std::this_thread::yield();
         EXPECT_EQ( story.size(), static_cast< std::size_t >( n ) );
         story.push_back( "turn" );
      }
   } );
   manager.run();
   visitor.join();
   EXPECT_EQ( story.size(), 1001U );
   EXPECT_EQ( story.back(), "visitor" );
}

TEST_F( KivActivityLock, ScopeEndsWithTheLockOnlyAfterTheVisitorHasLetGo ) {
   std::latch inside( 1 );
   std::thread visitor;
   manager.turnNew( [ & ] {
      visitor = std::thread( [ & ] {
         ActivityLockAnchor const locked( manager );
         inside.count_down();
         for ( int n = 0; n < 1000; ++n ) {
            std::this_thread::yield();
            story.push_back( "visitor" );
         }
      } );
      {
         ActivityUnlockAnchor const unlocked;
         inside.wait();
      }
      story.push_back( "turn" );
   } );
   manager.run();
   visitor.join();
   EXPECT_EQ( story.size(), 1001U );
   EXPECT_EQ( story.back(), "turn" );
}

TEST_F( KivActivityLock, IsTakenBackWhenAnExceptionPasses ) {
   bool heldAfter = false;
   manager.turnNew( [ & ] {
      try {
         ActivityUnlockAnchor const unlocked;
         throw std::runtime_error( "the chip is gone" );
      } catch ( std::runtime_error const & ) {
         heldAfter = manager.isLockHeld();
      }
   } );
   manager.run();
   EXPECT_TRUE( heldAfter );
   EXPECT_FALSE( manager.isLockHeld() );
}

TEST_F( KivActivityLock, VisitorsQueueTurnsForTheActivity ) {
   std::thread visitor;
   manager.turnNew( [ & ] {
      visitor = std::thread( [ & ] {
         ActivityLockAnchor const locked( manager );
         manager.turnNew( [ & ] { story.push_back( "visitor's turn" ); } );
      } );
      ActivityUnlockAnchor const unlocked;
      visitor.join();
   } );
   manager.turnNew( [ & ] { story.push_back( "own turn" ); } );
   manager.run();
   EXPECT_EQ( story, ( Story{ "own turn", "visitor's turn" } ) );
}

// A wake-up for a time that is over must not be mistaken for one to move the clock to, however the
// two threads meet.
TEST_F( KivActivityLock, VisitorsMayArmReactorsAtAnyMoment ) {
   constexpr int kRounds = 20000;
   int fired = 0;
   bool isOver = false;
   manager.clock()->nowIs( Kiv::Time( 1000 ) );
   Kiv::ClockReactor reactor( manager.clock(), [ & ] { ++fired; } );
   reactor.hasNotificationActiveIs( true );
   std::thread visitor( [ & ] {
      for ( int n = 0; n < kRounds; ++n ) {
         ActivityLockAnchor const locked( manager );
         reactor.timeMinIs( Kiv::Time( 0 ) );
      }
      ActivityLockAnchor const locked( manager );
      manager.turnNew( [ & ] { isOver = true; } );
   } );
   while ( !isOver ) {
      manager.run();
   }
   visitor.join();
   EXPECT_GE( fired, 1 );
   EXPECT_LE( fired, kRounds );
   EXPECT_EQ( manager.clock()->now(), Kiv::Time( 1000 ) );
}

TEST_F( KivActivityLock, GivingUpWhatIsNotHeldIsAFailedAssertion ) {
   EXPECT_EXIT( ActivityUnlockAnchor(), testing::KilledBySignal( SIGABRT ),
                "Activity\\.cpp:[0-9]+: .*ActivityManager::unlock\\(\\): "
                "Assertion 'isLockHeld\\(\\)' failed\\." );
}

TEST_F( KivActivityLock, GivingItUpTwiceIsAFailedAssertion ) {
   auto const twice = [ & ] {
      ActivityLockAnchor const locked( manager );
      ActivityUnlockAnchor const unlocked;
      ActivityUnlockAnchor const again;
   };
   EXPECT_EXIT( twice(), testing::KilledBySignal( SIGABRT ),
                "Assertion 'isLockHeld\\(\\)' failed\\." );
}

TEST_F( KivActivityLock, TakingItTwiceIsAFailedAssertionRatherThanAnEndlessWait ) {
   auto const twice = [ & ] {
      ActivityLockAnchor const locked( manager );
      ActivityLockAnchor const again( manager );
   };
   EXPECT_EXIT( twice(), testing::KilledBySignal( SIGABRT ),
                "Assertion '!isLockHeld\\(\\)' failed\\." );
}

TEST_F( KivActivityLock, TurnCannotRunTheActivityItself ) {
   auto const nested = [ & ] {
      manager.turnNew( [ & ] { manager.run(); } );
      manager.run();
   };
   EXPECT_EXIT( nested(), testing::KilledBySignal( SIGABRT ),
                "Assertion '!isLockHeld\\(\\)' failed\\." );
}

}  // namespace KivActivityLockTest
