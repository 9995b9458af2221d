// Signals that ask this process to end.
#include <Process/Interruption.h>

#include <gtest/gtest.h>

namespace {

using Process::Interruption;

TEST( Interruption, TakesNoteOfTheFirstSignal ) {
   signal( SIGTERM, SIG_DFL );
   Interruption const interruption;
   EXPECT_EQ( interruption.signal(), 0 );
   raise( SIGTERM );
   EXPECT_EQ( interruption.signal(), SIGTERM );
}

TEST( Interruption, LeavesTheSecondSignalToEndTheProcess ) {
   EXPECT_EXIT(
      {
         signal( SIGINT, SIG_DFL );
         Interruption const interruption;
         raise( SIGINT );
         raise( SIGINT );
      },
      testing::KilledBySignal( SIGINT ), "" );
}

volatile sig_atomic_t handled = 0;

TEST( Interruption, LeavesTheSecondSignalToTheHandlerOfBefore ) {
   signal( SIGINT, []( int ) { handled = handled + 1; } );
   {
      Interruption const interruption;
      raise( SIGINT );
      EXPECT_EQ( handled, 0 );
      raise( SIGINT );
      EXPECT_EQ( handled, 1 );
   }
   raise( SIGINT );
   EXPECT_EQ( handled, 2 );
}

TEST( Interruption, LeavesASignalIgnoredThatWasIgnoredBefore ) {
   signal( SIGINT, SIG_IGN );
   Interruption const interruption;
   raise( SIGINT );
   raise( SIGINT );
   EXPECT_EQ( interruption.signal(), 0 );
}

TEST( Interruption, IsOverWithItsScope ) {
   EXPECT_EXIT(
      {
         signal( SIGTERM, SIG_DFL );
         { Interruption const interruption; }
         raise( SIGTERM );
      },
      testing::KilledBySignal( SIGTERM ), "" );
}

}  // namespace
