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

TEST_F( Turn, IsOverWhenItsParentHasWaitedForAsLongAsTheLimit ) {
   for ( int n = 0; n < 9; ++n ) {
      timer.waited( 100ms );
   }
   EXPECT_FALSE( timer.isOver() );
   timer.waited( 100ms );
   EXPECT_TRUE( timer.isOver() );
}

TEST_F( Turn, CountsFromItsOwnBeginning ) {
   timer.worked( 999ms );
   pulse.beat();
   timer.worked( 999ms );
   EXPECT_FALSE( timer.isOver() );
   timer.worked( 999ms );
   EXPECT_FALSE( timer.isOver() );
   timer.worked( 1ms );
   EXPECT_TRUE( timer.isOver() );
}

TEST_F( Turn, DoesNotCountThatBothProcessesWereSuspended ) {
   timer.waited( 3600s );
   EXPECT_FALSE( timer.isOver() );
}

TEST_F( Turn, MayTakeAsLongAsItLikesWithoutALimit ) {
   TurnTimer without( pulse, 0s );
   without.worked( 3600s );
   EXPECT_FALSE( without.isOver() );
}

}  // namespace
