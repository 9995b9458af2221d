// Every scenario that ships holds, on the variant that it is for.
#include <gtest/gtest.h>

#include <Shipped.h>
#include <Support.h>

namespace {

class ShippedScenario : public testing::TestWithParam< std::string > {};

TEST_P( ShippedScenario, Holds ) {
   Support::Ran const ran = Support::vornal( { "run", Shipped::fileOf( GetParam() ).string() } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.out << ran.err;
}

INSTANTIATE_TEST_SUITE_P( All, ShippedScenario, testing::ValuesIn( Shipped::scenarios() ),
                          Shipped::nameOf );

}  // namespace
