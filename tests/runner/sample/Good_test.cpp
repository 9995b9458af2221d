// Tests that pass, for the test of the runner.
#include <gtest/gtest.h>

namespace {

class Good : public testing::TestWithParam< int > {};

TEST_P( Good, passes ) {
   EXPECT_GT( GetParam(), 0 );
}

INSTANTIATE_TEST_SUITE_P( Every, Good, testing::Values( 1, 2 ) );

}  // namespace
