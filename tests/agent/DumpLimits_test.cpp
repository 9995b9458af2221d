// A dump of a switch with a known limit leads to the same wrong state, where a fresh start would
// mend it.
#include <Dumped.h>
#include <Shipped.h>

namespace {

std::vector< std::string > limits() {
   std::vector< std::string > names;
   for ( auto const & folder :
         std::filesystem::directory_iterator( VORNAL_SOURCE_DIR "/scenarios/limits" ) ) {
      if ( folder.is_directory() ) {
         names.push_back( folder.path().filename() );
      }
   }
   std::sort( names.begin(), names.end() );
   return names;
}

class DumpedLimit : public testing::TestWithParam< std::string > {};

TEST_P( DumpedLimit, LeadsToTheSameState ) {
   std::filesystem::path const file = Shipped::fileOf( "limits/" + GetParam() );
   std::set< std::size_t > steps{ Dumped::lastStep( file ) };
   if ( std::getenv( "VORNAL_EVERY_STEP" ) ) {
      steps = Dumped::stepsOf( file );
   }
   for ( std::size_t const step : steps ) {
      Dumped::expectSame( file, step );
   }
}

INSTANTIATE_TEST_SUITE_P( All, DumpedLimit, testing::ValuesIn( limits() ), Shipped::nameOf );

}  // namespace
