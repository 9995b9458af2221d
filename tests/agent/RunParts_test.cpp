// `vornal run` with a part of a scenario, and with more steps than it has.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <Support.h>
#include <Switches.h>

namespace {

using Json = nlohmann::json;

class RunParts : public testing::Test {
 protected:
   // A leaf with three notes.
   Support::Ran run( std::vector< std::string > const & words ) const {
      std::vector< std::string > all{ "run", scenario(), "--plugin",
                                      Support::testPlugin( "segment-rules" ) };
      all.insert( all.end(), words.begin(), words.end() );
      return Support::vornal( all );
   }
   std::string scenario() const {
      return directory.file( "leaf.yaml", Switches::leaf( "   - note: one\n"
                                                          "   - note: two\n"
                                                          "   - note: three\n" ) );
   }
   // The texts of the scenario's steps in the story, without start-up and teardown.
   std::vector< std::string > steps( std::vector< std::string > words ) const {
      words.emplace_back( "--json" );
      auto const ran = run( words );
      EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
      Json const document = Json::parse( ran.out );
      std::vector< std::string > texts;
      for ( Json const & step : document[ "steps" ] ) {
         if ( !step[ "place" ].is_null() ) {
            texts.push_back( step[ "text" ] );
         }
      }
      return texts;
   }

   Support::Directory directory;
};

using Texts = std::vector< std::string >;

TEST_F( RunParts, EndsWithTheStepThatIsNamed ) {
   EXPECT_EQ( steps( { "--until", "2" } ), ( Texts{ "one", "two" } ) );
   EXPECT_EQ( steps( { "--until", "0" } ), Texts{} );
   EXPECT_EQ( steps( { "--until", "3" } ).size(), 3U );
}

TEST_F( RunParts, GoesOnWithMoreSteps ) {
   EXPECT_EQ( steps( { "--then", "note: four", "--then", "note: five" } ),
              ( Texts{ "one", "two", "three", "four", "five" } ) );
   EXPECT_EQ( steps( { "--until", "1", "--then", "note: four" } ), ( Texts{ "one", "four" } ) );
}

TEST_F( RunParts, ChangesTheStateByAnAddedStep ) {
   auto const ran = run( { "--json", "--then", "withdraw: { vteps: [ 10.0.0.2 ] }" } );
   Json const last = Json::parse( ran.out )[ "steps" ][ 4 ];

   EXPECT_EQ( last[ "place" ], "--then:1" );
   EXPECT_FALSE( last[ "changes" ].empty() ) << last;
}

TEST_F( RunParts, NamesThePlaceOfAMistakeInAnAddedStep ) {
   EXPECT_EQ( run( { "--then", "pubish: {}" } ).err,
              "--then:1: unknown word 'pubish' in step; did you mean 'publish'?\n" );
   EXPECT_EQ( run( { "--then", "note: [" } ).exitCode, 2 );
   EXPECT_TRUE( run( { "--then", "" } )
                   .err.starts_with( "--then:1: an element of --then is empty; a mapping is" ) );
   EXPECT_EQ( run( { "--until", "4" } ).err, "--until 4: " + scenario() + " ends with step 3\n" );
}

TEST_F( RunParts, TellsOneStepAlone ) {
   EXPECT_EQ( run( { "--step", "2" } ).out, "\nstep 2: two\n" );

   auto const json = run( { "--step", "2", "--json" } );
   EXPECT_EQ( json.exitCode, 0 ) << json.err;
   EXPECT_EQ( Json::parse( json.out )[ "text" ], "two" );
   EXPECT_EQ( Json::parse( json.out )[ "number" ], 2 );
}

TEST_F( RunParts, TellsOfAStepTheRulesThatItChangedItself ) {
   std::string const all = run( { "--step", "4", "--then",
                                  "publish: { vteps: { 10.0.0.3: { "
                                  "virtual-port: 3 } } }" } )
                              .out;
   EXPECT_TRUE( all.starts_with( "\nstep 4: " ) ) << all;
   EXPECT_EQ( Support::timesIn( all, "step " ), 1U ) << all;
}

TEST_F( RunParts, TakesOneOfUntilAndStep ) {
   EXPECT_EQ( run( { "--until", "1", "--step", "1" } ).exitCode, 2 );
   EXPECT_EQ( run( { "--step", "4" } ).exitCode, 2 );
}

}  // namespace
