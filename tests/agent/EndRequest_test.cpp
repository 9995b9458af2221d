// A request to end the process, noted over a row of works that note one for themselves.
#include <gtest/gtest.h>

#include <Process/EndRequest.h>
#include <Process/Interruption.h>

#include <signal.h>

namespace {

TEST( EndRequest, IsNotedBetweenTwoInterruptions ) {
   Process::EndRequest const request;
   { Process::Interruption const interruption; }
   EXPECT_EQ( request.signal(), 0 );
   raise( SIGTERM );
   EXPECT_EQ( request.signal(), SIGTERM );
}

TEST( EndRequest, LeavesASignalToTheInterruptionUnderWay ) {
   Process::EndRequest const request;
   Process::Interruption const interruption;
   raise( SIGINT );
   EXPECT_EQ( interruption.signal(), SIGINT );
   EXPECT_EQ( request.signal(), 0 );
}

TEST( EndRequest, LeavesAnIgnoredSignalIgnored ) {
   signal( SIGHUP, SIG_IGN );
   Process::EndRequest const request;
   raise( SIGHUP );
   EXPECT_EQ( request.signal(), 0 );
}

TEST( EndRequestDeathTest, LetsTheSecondSignalEndTheProcess ) {
   EXPECT_EXIT(
      {
         signal( SIGINT, SIG_DFL );
         Process::EndRequest const request;
         raise( SIGINT );
         raise( SIGINT );
      },
      testing::KilledBySignal( SIGINT ), "" );
}

}  // namespace
