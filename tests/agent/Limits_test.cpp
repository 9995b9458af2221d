// The known limits: each scenario in scenarios/limits/ ends as the table of docs/limits.md says.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <set>
#include <sstream>

#include <Support.h>

namespace {

using Json = nlohmann::json;
namespace fs = std::filesystem;

fs::path const kSource = VORNAL_SOURCE_DIR;
fs::path const kScenarios = kSource / "scenarios/limits";

// --- The document

std::vector< std::string > const & lines() {
   static auto const all = [] {
      std::vector< std::string > result;
      std::istringstream text( Support::contentOf( kSource / "docs/limits.md" ) );
      for ( std::string line; std::getline( text, line ); ) {
         result.push_back( line );
      }
      return result;
   }();
   return all;
}

// What stands between the first `open` and the last `close` of the text; the text has both.
std::string between( std::string const & text, char open, char close ) {
   auto const from = text.find( open ) + 1;
   return text.substr( from, text.rfind( close ) - from );
}

// The cells of the rows that begin with `start`.
std::vector< std::vector< std::string > > rowsOf( std::string const & start ) {
   std::vector< std::vector< std::string > > rows;
   for ( std::string const & line : lines() ) {
      if ( line.starts_with( start ) ) {
         auto & cells = rows.emplace_back();
         for ( auto from = line.find( '|' ), to = line.find( '|', from + 1 );
               to != std::string::npos; from = to, to = line.find( '|', from + 1 ) ) {
            cells.push_back( line.substr( from + 1, to - from - 1 ) );
         }
      }
   }
   return rows;
}

// One way into a limit, a row of the first table.
struct Way {
   std::string limit;  // the title of its section
   std::string variant;
   std::string scenario;
   std::string expression;  // at which it stops; empty where the process goes on
};

std::ostream & operator<<( std::ostream & out, Way const & way ) {
   return out << way.scenario;
}

std::vector< Way > const & ways() {
   static auto const all = [] {
      std::vector< Way > result;
      for ( auto const & cells : rowsOf( "| [" ) ) {
         bool const stops = cells.at( 4 ).find( '`' ) != std::string::npos;
         result.push_back( { cells[ 0 ].substr( 2, cells[ 0 ].find( ']' ) - 2 ),
                             between( cells[ 1 ], ' ', ' ' ), between( cells[ 3 ], '[', ']' ),
                             stops ? between( cells[ 4 ], '`', '`' ) : "" } );
         result.back().scenario = between( result.back().scenario, '`', '`' );
      }
      return result;
   }();
   return all;
}

std::vector< Way > waysOfBoth() {
   std::vector< Way > result;
   std::copy_if( ways().begin(), ways().end(), std::back_inserter( result ),
                 []( Way const & way ) { return way.variant == "both"; } );
   return result;
}

std::string nameOf( testing::TestParamInfo< Way > const & one ) {
   std::string name = one.param.scenario;
   std::replace( name.begin(), name.end(), '-', '_' );
   return name;
}

// Whether the second table has this assertion of a run.
bool isListed( Json const & assertion ) {
   auto const rows = rowsOf( "| `" );
   return std::any_of( rows.begin(), rows.end(), [ & ]( auto const & cells ) {
      std::string const function = assertion[ "function" ];
      return between( cells.at( 0 ), '`', '`' ) == assertion[ "expression" ] &&
             between( cells.at( 1 ), '`', '`' ) == assertion[ "file" ] &&
             function.find( "::" + between( cells.at( 2 ), '`', '`' ) + "(" ) != std::string::npos;
   } );
}

// --- The scenarios

class KnownLimit : public testing::TestWithParam< Way > {
 protected:
   static fs::path file() { return kScenarios / GetParam().scenario / "scenario.yaml"; }

   Json run( fs::path const & scenario ) {
      auto const ran = Support::vornal( { "run", scenario, "--json" } );
      EXPECT_EQ( ran.exitCode, 0 ) << ran.out << ran.err;
      return ran.out.empty() ? Json::object() : Json::parse( ran.out );
   }

   // Whether the program has found the limit, and its remedy, by the stop.
   static bool namesLimit( Json const & limits ) {
      return std::any_of( limits.begin(), limits.end(), []( Json const & limit ) {
         return limit.at( "title" ) == GetParam().limit &&
                !limit.at( "remedy" ).get_ref< std::string const & >().empty();
      } );
   }

   static void expectAllHeld( Json const & document ) {
      for ( Json const & step : document.at( "steps" ) ) {
         for ( Json const & expectation : step.at( "expectations" ) ) {
            EXPECT_EQ( expectation.at( "held" ), true ) << expectation;
         }
      }
   }

   // An exception that ends the process leaves no assertion, only its text.
   static void expectEnd( Json const & document ) {
      std::string const & expression = GetParam().expression;
      EXPECT_EQ( document.at( "end" ), expression.empty() ? "completed" : "stopped" );
      if ( !expression.empty() ) {
         EXPECT_EQ( document.at( "stop" ).at( "asExpected" ), true );
         EXPECT_TRUE( namesLimit( document.at( "stop" ).at( "limits" ) ) ) << document.at( "stop" );
      }
      Json const & assertion = document.at( "assertion" );
      if ( assertion.is_object() ) {
         EXPECT_EQ( assertion.at( "expression" ), expression );
         EXPECT_TRUE( isListed( assertion ) ) << assertion;
      } else if ( !expression.empty() ) {
         std::string const last = document.at( "stop" ).at( "output" ).back();
         EXPECT_TRUE( last.ends_with( ": " + expression ) ) << last;
      }
   }
};

TEST_P( KnownLimit, EndsAsTheTableSays ) {
   Json const document = run( file() );

   ASSERT_FALSE( document.empty() );
   expectAllHeld( document );
   expectEnd( document );
   if ( GetParam().variant != "both" ) {
      EXPECT_EQ( document.at( "variant" ), GetParam().variant );
   }
}

INSTANTIATE_TEST_SUITE_P( Every, KnownLimit, testing::ValuesIn( ways() ), nameOf );

// One that both variants have; its scenario is on one of them.
using KnownLimitOfBoth = KnownLimit;

TEST_P( KnownLimitOfBoth, EndsOnTheOtherVariantAsWell ) {
   Support::Directory directory;
   std::string const other =
      "scenario: the-other\nbased-on: " + file().string() + "\nvariant: class-id\n";
   Json const document = run( directory.file( "scenario.yaml", other ) );

   ASSERT_FALSE( document.empty() );
   EXPECT_EQ( document.at( "variant" ), "class-id" );
   expectAllHeld( document );
   expectEnd( document );
}

INSTANTIATE_TEST_SUITE_P( Every, KnownLimitOfBoth, testing::ValuesIn( waysOfBoth() ), nameOf );

TEST( KnownLimits, HaveAFolderForEveryRowAndARowForEveryFolder ) {
   std::set< std::string > rows;
   for ( Way const & way : ways() ) {
      EXPECT_TRUE( rows.insert( way.scenario ).second ) << way.scenario << " has two rows";
   }
   std::set< std::string > folders;
   for ( auto const & entry : fs::directory_iterator( kScenarios ) ) {
      if ( entry.is_directory() ) {
         folders.insert( entry.path().filename() );
      }
   }
   EXPECT_EQ( rows, folders );
   EXPECT_GE( rows.size(), 40U );
}

TEST( KnownLimits, AreDescribedInASectionAndInTheListOfScenarios ) {
   std::string const list = Support::contentOf( kScenarios / "README.md" );
   for ( Way const & way : ways() ) {
      EXPECT_EQ( std::count( lines().begin(), lines().end(), "### " + way.limit ), 1 ) << way.limit;
      EXPECT_EQ( Support::timesIn( list, "| [`" + way.scenario + "`]" ), 1U ) << way.scenario;
   }
}

}  // namespace
