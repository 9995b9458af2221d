// Tests that end in every way, for the test of the runner. A test of one is another one's
// neighbour.
#include <cstdlib>
#include <iostream>

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

// What a test leaves behind in its process.
int visits = 0;

TEST( Sample, LeavesAMark ) {
   std::cout << "said by one that passes\n";
   EXPECT_EQ( ++visits, 1 );
}

TEST( Sample, SeesNoMarkOfAnother ) {
   EXPECT_EQ( ++visits, 1 );
}

TEST( Sample, Fails ) {
   std::cout << "said by one that fails\n";
   EXPECT_TRUE( false );
}

TEST( Sample, Stops ) {
   std::abort();
}

TEST( Sample, TakesTooLong ) {
   while ( true ) {
      pause();
   }
}

TEST( Sample, EndsItsProcess ) {
   std::_Exit( EXIT_SUCCESS );
}

}  // namespace
