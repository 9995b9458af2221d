// Every scenario that ships holds, on the variant that it is for.
#include <algorithm>
#include <filesystem>

#include <gtest/gtest.h>

#include <Support.h>

namespace {

namespace fs = std::filesystem;

std::vector< std::string > shipped() {
   std::vector< std::string > names;
   for ( auto const & folder : fs::directory_iterator( VORNAL_SOURCE_DIR "/scenarios" ) ) {
      if ( fs::exists( folder.path() / "scenario.yaml" ) ) {
         names.push_back( folder.path().filename() );
      }
   }
   std::sort( names.begin(), names.end() );
   return names;
}

class Shipped : public testing::TestWithParam< std::string > {};

TEST_P( Shipped, Holds ) {
   Support::Ran const ran =
      Support::vornal( { "run", VORNAL_SOURCE_DIR "/scenarios/" + GetParam() + "/scenario.yaml" } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.out << ran.err;
}

INSTANTIATE_TEST_SUITE_P( Scenario, Shipped, testing::ValuesIn( shipped() ),
                          []( auto const & folder ) {
                             std::string name = folder.param;
                             std::replace( name.begin(), name.end(), '-', '_' );
                             return name;
                          } );

}  // namespace
