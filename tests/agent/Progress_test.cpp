#include <CommandLine/Progress.h>

#include <sstream>

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;
using CommandLine::Progress;

// A terminal, and a clock that stands until it is moved.
class ProgressLine : public testing::Test {
 protected:
   void calls( int count ) {
      for ( int n = 0; n < count; ++n ) {
         progress.onEvent( Story::CallMade{} );
      }
   }

   Progress::Clock::time_point now{};
   std::ostringstream terminal;
   Progress progress{ terminal, [ this ] { return now; } };
};

TEST_F( ProgressLine, StaysAwayFromShortSteps ) {
   progress.onEvent( Story::StepBegins{} );
   now += Progress::kPatience - 1ms;
   calls( 1000 );
   progress.onEvent( Story::StepEnds{} );

   EXPECT_EQ( terminal.str(), "" );
}

TEST_F( ProgressLine, TellsHowFarALongStepIsAndGoesBeforeAnythingElseIsPrinted ) {
   progress.onEvent( Story::RunBegins{ "", "", "", 12 } );
   progress.onEvent( Story::StepBegins{ Story::StepKind::Scenario, 3, "", "" } );
   calls( 9 );
   now += Progress::kPatience;
   calls( 1 );
   EXPECT_EQ( terminal.str(), "\r   step 3 of 12: 10 hardware calls\x1b[K" );

   terminal.str( "" );
   progress.onEvent( Story::Logged{} );
   progress.onEvent( Story::Logged{} );
   EXPECT_EQ( terminal.str(), "\r\x1b[K" );
}

TEST_F( ProgressLine, IsNotDrawnAgainForEveryCall ) {
   progress.onEvent( Story::StepBegins{} );
   now += Progress::kPatience;
   calls( 1 );
   terminal.str( "" );

   calls( 1000 );
   EXPECT_EQ( terminal.str(), "" );

   now += Progress::kInterval;
   calls( 1 );
   EXPECT_NE( terminal.str(), "" );
}

}  // namespace
