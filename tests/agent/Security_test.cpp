// docs/security.md names a test for each threat.
#include <regex>
#include <sstream>

#include <gtest/gtest.h>

#include <Support.h>

namespace {

namespace fs = std::filesystem;

// The sources of all tests, with a single blank for what is between words.
std::string sourcesOfTests() {
   std::string text;
   for ( auto const & entry : fs::recursive_directory_iterator( VORNAL_SOURCE_DIR "/tests" ) ) {
      if ( entry.path().filename().string().ends_with( "_test.cpp" ) ) {
         text += Support::contentOf( entry.path() );
      }
   }
   return std::regex_replace( text, std::regex( "\\s+" ), " " );
}

// The lines of the last table, which tells of threats.
std::vector< std::string > rowsOfThreats() {
   std::string const document = Support::contentOf( VORNAL_SOURCE_DIR "/docs/security.md" );
   std::istringstream lines( document.substr( document.find( "| threat |" ) ) );
   std::vector< std::string > rows;
   for ( std::string line; std::getline( lines, line ); ) {
      rows.push_back( line );
   }
   rows.erase( rows.begin(), rows.begin() + 2 );  // the heading
   return rows;
}

TEST( Security, HasATestForEachThreat ) {
   std::string const sources = sourcesOfTests();
   std::regex const name( "`([A-Za-z]+)\\.([A-Za-z0-9]+)`" );
   auto const rows = rowsOfThreats();
   EXPECT_GE( rows.size(), 20U );
   for ( std::string const & row : rows ) {
      std::string const tests = row.substr( row.rfind( " | " ) );
      std::sregex_iterator test( tests.begin(), tests.end(), name );
      EXPECT_NE( test, std::sregex_iterator() ) << row;
      for ( ; test != std::sregex_iterator(); ++test ) {
         std::string const words = "( " + ( *test )[ 1 ].str() + ", " + ( *test )[ 2 ].str() + " )";
         EXPECT_NE( sources.find( words ), std::string::npos ) << words;
      }
   }
}

}  // namespace
