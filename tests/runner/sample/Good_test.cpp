// Tests that pass, for the test of the runner.
#include <cstdlib>

#include <gtest/gtest.h>

namespace {

class Good : public testing::TestWithParam< int > {};

TEST_P( Good, Passes ) {
   EXPECT_GT( GetParam(), 0 );
}

INSTANTIATE_TEST_SUITE_P( Every, Good, testing::Values( 1, 2 ) );

// Starts the program again, with the words that it was started with.
TEST( GoodDeathTest, EndsInAProgramOfItsOwn ) {
   testing::FLAGS_gtest_death_test_style = "threadsafe";
   EXPECT_EXIT( std::exit( EXIT_SUCCESS ), testing::ExitedWithCode( EXIT_SUCCESS ), "" );
}

}  // namespace
