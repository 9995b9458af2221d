// A table of scenarios that are wrong in one way each, with what is said of them: the whole text,
// place included. data/wrong-scenarios.txt holds it; a block is the scenario, a line of dashes,
// what is said, and a line of equals signs.
#include <algorithm>
#include <fstream>

#include <gtest/gtest.h>

#include <ScenarioTexts.h>
#include <Support.h>

namespace {

struct Wrong {
   std::string text;
   std::string said;
};

std::vector< Wrong > table() {
   std::vector< Wrong > all;
   std::ifstream in( VORNAL_SOURCE_DIR "/tests/agent/data/wrong-scenarios.txt" );
   Wrong wrong;
   bool isSaid = false;
   for ( std::string line; std::getline( in, line ); ) {
      if ( line == "==========" ) {
         all.push_back( std::exchange( wrong, {} ) );
         isSaid = false;
      } else if ( line == "----------" ) {
         isSaid = true;
      } else {
         ( isSaid ? wrong.said : wrong.text ) += line + '\n';
      }
   }
   return all;
}

TEST( WrongScenarios, AreRefusedWithPlaceAndRemedyEachInItsWords ) {
   auto const all = table();
   EXPECT_GE( all.size(), 200U );
   for ( Wrong const & wrong : all ) {
      EXPECT_EQ( ScenarioTexts::problems( wrong.text ) + '\n', wrong.said ) << wrong.text;
   }
}

TEST( WrongScenarios, AreAllDifferent ) {
   std::set< std::string > seen;
   for ( Wrong const & wrong : table() ) {
      EXPECT_TRUE( seen.insert( wrong.text ).second ) << wrong.text;
   }
}

TEST( WrongScenarios, EndTheProgramWithExitCode2AndNothingOnStandardOutput ) {
   auto const all = table();
   constexpr std::size_t kPrograms = 30;
   Support::Directory const directory;
   for ( std::size_t n = 0; n < kPrograms; ++n ) {
      Wrong const & wrong = all.at( n * all.size() / kPrograms );
      std::string const file = directory.file( "leaf.yaml", wrong.text );
      auto const ran = Support::vornal( { n % 2 == 0 ? "run" : "verify", file, "--json" } );
      std::string said = ran.err;
      for ( auto at = said.find( file ); at != std::string::npos; at = said.find( file ) ) {
         said.replace( at, file.size(), "leaf.yaml" );
      }
      EXPECT_EQ( ran.exitCode, 2 ) << wrong.text;
      EXPECT_EQ( ran.out, "" ) << wrong.text;
      EXPECT_EQ( said, wrong.said ) << wrong.text;
   }
}

}  // namespace
