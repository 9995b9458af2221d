// A dump of a shipped scenario leads to the same state: published state, rules, records.
#include <Dumped.h>
#include <Shipped.h>

namespace {

class DumpedScenario : public testing::TestWithParam< std::string > {};

TEST_P( DumpedScenario, LeadsToTheSameState ) {
   std::filesystem::path const file = Shipped::fileOf( GetParam() );
   for ( std::size_t const step : Dumped::stepsOf( file ) ) {
      Dumped::expectSame( file, step );
   }
}

INSTANTIATE_TEST_SUITE_P( All, DumpedScenario, testing::ValuesIn( Shipped::scenarios() ),
                          Shipped::nameOf );

}  // namespace
