// Every scenario that ships goes as the reference says, those that show limits included.
#include <algorithm>
#include <filesystem>
#include <iostream>

#include <gtest/gtest.h>

#include <Judgement.h>
#include <Steps/Reader.h>

namespace {

namespace fs = std::filesystem;

std::vector< fs::path > scenariosIn( fs::path const & folder ) {
   std::vector< fs::path > files;
   for ( auto const & entry : fs::directory_iterator( folder ) ) {
      if ( fs::exists( entry.path() / "scenario.yaml" ) ) {
         files.push_back( entry.path() / "scenario.yaml" );
      }
   }
   std::sort( files.begin(), files.end() );
   return files;
}

// Prints what was judged and what was not.
Counts judgeAllIn( fs::path const & folder ) {
   Counts counts;
   for ( fs::path const & file : scenariosIn( folder ) ) {
      Judgement const judgement = judgementOf( file );
      EXPECT_FALSE( judgement.isOff() ) << file << ", " << judgement.text();
      counts.add( judgement.counts );
   }
   std::cout << counts.text() << '\n';
   return counts;
}

TEST( ShippedScenarios, GoAsTheReferenceSays ) {
   Counts const counts = judgeAllIn( VORNAL_SOURCE_DIR "/scenarios" );
   EXPECT_GT( counts.steps, 0U );
   EXPECT_EQ( counts.stepsWithoutOpinion, 0U ) << "the scenarios hold nothing out of its reach";
}

TEST( ShippedScenarios, MeetTheirLimitsWhereTheReferenceForetellsThem ) {
   Counts const counts = judgeAllIn( VORNAL_SOURCE_DIR "/scenarios/limits" );
   EXPECT_GT( counts.stops, 0U );
   EXPECT_EQ( counts.stepsWithoutOpinion, 0U ) << "the limits hold nothing out of its reach";
}

}  // namespace
