// `vornal check` and `vornal run` say the same of wrong scenarios; and one mistake does not hide
// another one in a different part.
#include <algorithm>

#include <gtest/gtest.h>

#include <Mutations.h>
#include <Steps/Reader.h>
#include <Support.h>
#include <WrongTable.h>

namespace {

namespace fs = std::filesystem;
using Schema::Json;

std::string firstLineOf( std::string const & text ) {
   return text.substr( 0, text.find( '\n' ) );
}

TEST( CheckAgainstRun, BeginsWithTheMistakeThatARunBeginsWith ) {
   Support::Directory const directory;
   for ( WrongTable::Wrong const & wrong : WrongTable::all() ) {
      fs::path const file = directory.file( "leaf.yaml", wrong.text );
      auto const findings = Steps::examineScenario( file );
      ASSERT_FALSE( findings.problems.empty() ) << wrong.text;
      try {
         Steps::readScenario( file );
         ADD_FAILURE() << wrong.text;
      } catch ( Scenario::ReadError const & error ) {
         EXPECT_EQ( findings.problems.front().text(), error.problems().front().text() )
            << wrong.text;
      }
   }
}

TEST( CheckAgainstRun, EndsWithExitCode2AsARunDoes ) {
   Support::Directory const directory;
   auto const all = WrongTable::all();
   for ( std::size_t n = 0; n < all.size(); n += 10 ) {
      std::string const file = directory.file( "leaf.yaml", all[ n ].text );
      auto const checked = Support::vornal( { "check", file } );
      EXPECT_EQ( checked.exitCode, 2 ) << all[ n ].text;
      EXPECT_EQ( firstLineOf( checked.out ), firstLineOf( Support::vornal( { "run", file } ).err ) )
         << all[ n ].text;
   }
}

Scenario::Findings findingsIn( Json const & scenario, fs::path const & file ) {
   return Steps::examineScenarioText( scenario.dump( 1 ), file );
}

// Adding a mistake elsewhere can move lines.
std::set< std::string > messagesOf( Scenario::Findings const & findings ) {
   std::set< std::string > messages;
   for ( Scenario::Problem const & problem : findings.problems ) {
      messages.insert( problem.message );
   }
   return messages;
}

// The scenario with one change within the value of that word.
Json changedIn( std::string const & word, Json const & scenario, std::mt19937 & random ) {
   Json changed = scenario;
   changed[ word ] = Mutations::structural( scenario.at( word ), random ).value;
   return changed;
}

// The words of a scenario that hold something to change.
std::vector< std::string > partsOf( Json const & scenario ) {
   std::vector< std::string > parts;
   for ( auto const & [ word, value ] : scenario.items() ) {
      if ( value.is_structured() && !value.empty() ) {
         parts.push_back( word );
      }
   }
   return parts;
}

// Some messages name lines of other parts, or a use of what another part no longer defines.
bool isAboutOtherParts( std::string const & message ) {
   return message.find( "line " ) != std::string::npos ||
          message.find( "is not defined" ) != std::string::npos;
}

TEST( CheckAgainstRun, FindsTheMistakesOfTwoPartsTogetherAsItFindsEachAlone ) {
   std::mt19937 random( Mutations::kSeed );
   int both = 0;
   for ( fs::path const & file : Mutations::shippedFiles() ) {
      Json const scenario = Schema::jsonOf( YAML::LoadFile( file ) );
      auto const parts = partsOf( scenario );
      for ( int n = 0; n < 4 && parts.size() > 1; ++n ) {
         std::size_t const one = random() % parts.size();
         std::size_t const other = ( one + 1 + random() % ( parts.size() - 1 ) ) % parts.size();
         Json const first = changedIn( parts[ one ], scenario, random );
         Json const second = changedIn( parts[ other ], scenario, random );
         Json together = first;
         together[ parts[ other ] ] = second.at( parts[ other ] );
         auto const found = findingsIn( together, file );
         auto alone = messagesOf( findingsIn( first, file ) );
         alone.merge( messagesOf( findingsIn( second, file ) ) );
         auto const all = messagesOf( found );
         bool const isMissing =
            std::any_of( alone.begin(), alone.end(), [ & ]( std::string const & message ) {
               return !all.contains( message ) && !isAboutOtherParts( message );
            } );
         both += all.size() > 1 ? 1 : 0;
         EXPECT_TRUE( !isMissing || !found.leftOut.empty() )
            << file << ", " << parts[ one ] << " and " << parts[ other ] << ", seed "
            << Mutations::kSeed << '\n'
            << testing::PrintToString( alone ) << '\n'
            << testing::PrintToString( all ) << '\n'
            << together.dump( 1 );
      }
   }
   EXPECT_GE( both, 60 );
}

}  // namespace
