// A test in a file that is not named as one, for the test of the runner.
#include <gtest/gtest.h>

namespace {

TEST( Misplaced, Passes ) {}

}  // namespace
