// A table of scenarios that are wrong in one way each, with what is said of them: the whole text,
// place included. WrongTable.h reads it.
#include <set>

#include <gtest/gtest.h>

#include <ScenarioTexts.h>
#include <Support.h>
#include <WrongTable.h>

namespace {

TEST( WrongScenarios, AreRefusedWithPlaceAndRemedyEachInItsWords ) {
   auto const all = WrongTable::all();
   EXPECT_GE( all.size(), 200U );
   for ( WrongTable::Wrong const & wrong : all ) {
      EXPECT_EQ( ScenarioTexts::problems( wrong.text ) + '\n', wrong.said ) << wrong.text;
   }
}

TEST( WrongScenarios, AreAllDifferent ) {
   std::set< std::string > seen;
   for ( WrongTable::Wrong const & wrong : WrongTable::all() ) {
      EXPECT_TRUE( seen.insert( wrong.text ).second ) << wrong.text;
   }
}

TEST( WrongScenarios, EndTheProgramWithExitCode2AndNothingOnStandardOutput ) {
   auto const all = WrongTable::all();
   constexpr std::size_t kPrograms = 30;
   Support::Directory const directory;
   for ( std::size_t n = 0; n < kPrograms; ++n ) {
      WrongTable::Wrong const & wrong = all.at( n * all.size() / kPrograms );
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
