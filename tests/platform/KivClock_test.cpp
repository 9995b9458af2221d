// A clock reactor fires once when its time has come; it can be moved, taken back and destroyed,
// also from inside a handler.
#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <Kiv/Activity.h>

namespace KivClockTest {

using Kiv::Clock;
using Kiv::ClockReactor;
using Quelm::Ptr;
using namespace std::chrono_literals;
using Story = std::vector< std::string >;

class KivClock : public testing::Test {
 protected:
   std::unique_ptr< ClockReactor > reactor( std::string const & name,
                                            std::function< void() > const & act = nullptr ) {
      auto made = std::make_unique< ClockReactor >( clock, [ this, name, act ] {
         fired.push_back( name );
         if ( act ) {
            act();
         }
      } );
      made->hasNotificationActiveIs( true );
      return made;
   }
   // Moves the clock and fires whatever is due.
   Story firedAt( Kiv::Time time ) {
      fired.clear();
      clock->nowIs( time );
      while ( clock->fireOne() ) {
      }
      return fired;
   }

   Ptr< Clock > clock = Quelm::make< Clock >();
   Story fired;
};

TEST_F( KivClock, StartsAtZeroWithNobodyArmed ) {
   EXPECT_EQ( clock->now(), 0ns );
   EXPECT_FALSE( clock->nextWakeUp() );
   EXPECT_FALSE( clock->fireOne() );
}

TEST_F( KivClock, ReactorFiresOnceWhenItsTimeHasBeenReached ) {
   auto const alarm = reactor( "alarm" );
   alarm->timeMinIs( 10s );
   EXPECT_TRUE( alarm->isArmed() );
   EXPECT_EQ( clock->nextWakeUp(), 10s );
   EXPECT_EQ( firedAt( 9s ), Story{} );
   EXPECT_EQ( firedAt( 10s ), Story{ "alarm" } );
   EXPECT_FALSE( alarm->isArmed() );
   EXPECT_EQ( firedAt( 20s ), Story{} );
}

TEST_F( KivClock, ReactorsFireInTheOrderOfTheirTimes ) {
   auto const late = reactor( "late" );
   auto const early = reactor( "early" );
   late->timeMinIs( 2s );
   early->timeMinIs( 1s );
   EXPECT_EQ( clock->nextWakeUp(), 1s );
   EXPECT_EQ( firedAt( 5s ), ( Story{ "early", "late" } ) );
}

TEST_F( KivClock, ReactorsArmedForTheSameTimeFireInTheOrderOfArming ) {
   auto const first = reactor( "first" );
   auto const second = reactor( "second" );
   auto const third = reactor( "third" );
   third->timeMinIs( 1s );
   first->timeMinIs( 1s );
   second->timeMinIs( 1s );
   EXPECT_EQ( firedAt( 1s ), ( Story{ "third", "first", "second" } ) );
}

TEST_F( KivClock, ArmingAgainMovesTheTime ) {
   auto const alarm = reactor( "alarm" );
   alarm->timeMinIs( 1s );
   alarm->timeMinIs( 3s );
   EXPECT_EQ( firedAt( 2s ), Story{} );
   EXPECT_EQ( firedAt( 3s ), Story{ "alarm" } );
}

TEST_F( KivClock, ArmingAgainForTheSameTimeGoesToTheEnd ) {
   auto const first = reactor( "first" );
   auto const second = reactor( "second" );
   first->timeMinIs( 1s );
   second->timeMinIs( 1s );
   first->timeMinIs( 1s );
   EXPECT_EQ( firedAt( 1s ), ( Story{ "second", "first" } ) );
}

TEST_F( KivClock, TimeThatIsOverFiresAtTheNextTurn ) {
   clock->nowIs( 1h );
   auto const alarm = reactor( "alarm" );
   alarm->timeMinIs( 0s );
   EXPECT_EQ( fired, Story{} );
   EXPECT_TRUE( clock->fireOne() );
   EXPECT_EQ( fired, Story{ "alarm" } );
   EXPECT_EQ( clock->now(), 1h );
}

TEST_F( KivClock, DisarmedReactorDoesNotFire ) {
   auto const alarm = reactor( "alarm" );
   alarm->timeMinIs( 1s );
   alarm->disarm();
   alarm->disarm();
   EXPECT_FALSE( clock->nextWakeUp() );
   EXPECT_EQ( firedAt( 1s ), Story{} );
   alarm->timeMinIs( 2s );
   EXPECT_EQ( firedAt( 2s ), Story{ "alarm" } );
}

TEST_F( KivClock, TimePassesWithoutACallWhileInactiveOrOutOfService ) {
   auto const inactive = reactor( "inactive" );
   auto const zombie = reactor( "zombie" );
   inactive->hasNotificationActiveIs( false );
   zombie->isZombieIs( true );
   inactive->timeMinIs( 1s );
   zombie->timeMinIs( 1s );
   EXPECT_EQ( firedAt( 1s ), Story{} );
   EXPECT_FALSE( inactive->isArmed() || zombie->isArmed() );
   inactive->hasNotificationActiveIs( true );
   zombie->isZombieIs( false );
   EXPECT_EQ( firedAt( 2s ), Story{} );
}

TEST_F( KivClock, HandlerMayArmItsReactorAgain ) {
   std::unique_ptr< ClockReactor > alarm;
   alarm = reactor( "alarm", [ & ] {
      if ( fired.size() < 3 ) {
         alarm->timeMinIs( clock->now() );
      }
   } );
   alarm->timeMinIs( 1s );
   EXPECT_EQ( firedAt( 1s ), ( Story{ "alarm", "alarm", "alarm" } ) );
   EXPECT_FALSE( alarm->isArmed() );
}

TEST_F( KivClock, HandlerMayDestroyItsReactorAndGoOnUsingWhatItHolds ) {
   std::unique_ptr< ClockReactor > alarm;
   std::string const name = "a name too long to be kept inside the function object itself";
   alarm = reactor( "alarm", [ &, name ] {
      alarm.reset();
      fired.push_back( name );
   } );
   alarm->timeMinIs( 1s );
   EXPECT_EQ( firedAt( 1s ), ( Story{ "alarm", name } ) );
   EXPECT_EQ( alarm, nullptr );
}

TEST_F( KivClock, HandlerMayDestroyAnotherThatIsDueAsWell ) {
   std::unique_ptr< ClockReactor > second = reactor( "second" );
   auto const first = reactor( "first", [ & ] { second.reset(); } );
   auto const third = reactor( "third" );
   first->timeMinIs( 1s );
   second->timeMinIs( 1s );
   third->timeMinIs( 1s );
   EXPECT_EQ( firedAt( 1s ), ( Story{ "first", "third" } ) );
}

TEST_F( KivClock, DestroyedReactorDoesNotFire ) {
   auto alarm = reactor( "alarm" );
   alarm->timeMinIs( 1s );
   alarm.reset();
   EXPECT_FALSE( clock->nextWakeUp() );
   EXPECT_EQ( firedAt( 1s ), Story{} );
}

TEST_F( KivClock, ReactorKeepsItsClockAlive ) {
   auto const alarm = reactor( "alarm" );
   Clock * const plain = clock.get();
   clock = nullptr;
   EXPECT_EQ( plain->users(), 1U );
   alarm->timeMinIs( 1s );
   EXPECT_EQ( plain->nextWakeUp(), 1s );
}

TEST( KivNoClock, ArmingWithoutAClockHasNoEffect ) {
   ClockReactor alarm( nullptr, [] { FAIL(); } );
   alarm.hasNotificationActiveIs( true );
   alarm.timeMinIs( 1s );
   EXPECT_FALSE( alarm.isArmed() );
   alarm.disarm();
}

TEST_F( KivClock, NeverGoesBack ) {
   clock->nowIs( 1h );
   clock->nowIs( 1h );
   EXPECT_EXIT( clock->nowIs( 59min ), testing::KilledBySignal( SIGABRT ),
                "Clock\\.cpp:[0-9]+: .*Clock::nowIs\\(.*\\): Assertion 'time >= now_' failed\\." );
}

}  // namespace KivClockTest
