// How long a turn has taken, as the parent of its process counts it.
#include <Process/TurnTimer.h>

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;
using Process::TurnTimer;

class Turn : public testing::Test {
 protected:
   Process::Pulse pulse;
   TurnTimer timer{ pulse, 1s };
};

TEST_F( Turn, is_over_when_its_parent_has_waited_for_as_long_as_the_limit ) {
   for ( int n = 0; n < 9; ++n ) {
      timer.waited( 100ms );
   }
   EXPECT_FALSE( timer.isOver() );
   timer.waited( 100ms );
   EXPECT_TRUE( timer.isOver() );
}

TEST_F( Turn, counts_from_its_own_beginning ) {
   timer.worked( 999ms );
   pulse.beat();
   timer.worked( 999ms );
   EXPECT_FALSE( timer.isOver() );
   timer.worked( 999ms );
   EXPECT_FALSE( timer.isOver() );
   timer.worked( 1ms );
   EXPECT_TRUE( timer.isOver() );
}

TEST_F( Turn, does_not_count_that_both_processes_were_suspended ) {
   timer.waited( 3600s );
   EXPECT_FALSE( timer.isOver() );
}

TEST_F( Turn, may_take_as_long_as_it_likes_without_a_limit ) {
   TurnTimer without( pulse, 0s );
   without.worked( 3600s );
   EXPECT_FALSE( without.isOver() );
}

}  // namespace
