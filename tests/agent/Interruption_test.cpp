// Signals that ask this process to end.
#include <Process/Interruption.h>

#include <gtest/gtest.h>

namespace {

using Process::Interruption;

TEST( Interruption, takes_note_of_the_first_signal ) {
   signal( SIGTERM, SIG_DFL );
   Interruption const interruption;
   EXPECT_EQ( interruption.signal(), 0 );
   raise( SIGTERM );
   EXPECT_EQ( interruption.signal(), SIGTERM );
}

TEST( Interruption, leaves_the_second_signal_to_end_the_process ) {
   EXPECT_EXIT(
      {
         signal( SIGINT, SIG_DFL );
         Interruption const interruption;
         raise( SIGINT );
         raise( SIGINT );
      },
      testing::KilledBySignal( SIGINT ), "" );
}

TEST( Interruption, leaves_a_signal_ignored_that_was_ignored_before ) {
   signal( SIGINT, SIG_IGN );
   Interruption const interruption;
   raise( SIGINT );
   raise( SIGINT );
   EXPECT_EQ( interruption.signal(), 0 );
}

TEST( Interruption, is_over_with_its_scope ) {
   EXPECT_EXIT(
      {
         signal( SIGTERM, SIG_DFL );
         { Interruption const interruption; }
         raise( SIGTERM );
      },
      testing::KilledBySignal( SIGTERM ), "" );
}

}  // namespace
