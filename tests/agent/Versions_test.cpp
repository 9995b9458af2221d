// The versions of the program and of its formats: where they are printed, and that they agree with
// docs/compatibility.md.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <regex>
#include <set>
#include <sstream>

#include <CommandLine/DeclaredWords.h>
#include <Support.h>

namespace {

using OrderedJson = nlohmann::ordered_json;

constexpr char const * kScenario = VORNAL_SOURCE_DIR "/scenarios/start-up/scenario.yaml";

// The lines of `vornal --version`.
std::vector< std::string > versionLines() {
   auto const ran = Support::vornal( { "--version" } );
   EXPECT_EQ( ran.exitCode, 0 );
   EXPECT_EQ( ran.err, "" );
   std::vector< std::string > lines;
   std::istringstream stream( ran.out );
   for ( std::string line; std::getline( stream, line ); ) {
      lines.push_back( line );
   }
   return lines;
}

// "1.0" of the line "JSON documents 1.0".
std::string versionOf( std::string const & format ) {
   for ( std::string const & line : versionLines() ) {
      if ( line.starts_with( format + ' ' ) ) {
         return line.substr( format.size() + 1 );
      }
   }
   return "(no line of " + format + ")";
}

TEST( Versions, ArePrintedWithTheCommit ) {
   auto const lines = versionLines();
   ASSERT_GE( lines.size(), 4U );
   std::regex const first( "vornal \\d+\\.\\d+\\.\\d+, (commit \\S+|unknown commit)" );
   EXPECT_TRUE( std::regex_match( lines[ 0 ], first ) ) << lines[ 0 ];
   for ( std::size_t n = 1; n < lines.size(); ++n ) {
      EXPECT_TRUE( std::regex_match( lines[ n ], std::regex( "[A-Za-z -]+ \\d+\\.\\d+" ) ) )
         << lines[ n ];
   }
}

// The commands that take --json.
std::set< std::string > commandsWithJson() {
   std::set< std::string > names;
   for ( auto const & command : CommandLine::declaredCommands() ) {
      for ( auto const & option : command.options ) {
         if ( option.names.front() == "--json" ) {
            names.insert( command.name );
         }
      }
   }
   return names;
}

void expectVersionFirst( std::vector< std::string > words, std::string const & version ) {
   SCOPED_TRACE( testing::PrintToString( words ) );
   words.emplace_back( "--json" );
   auto const ran = Support::vornal( words );
   OrderedJson const document = OrderedJson::parse( ran.out, nullptr, false );
   ASSERT_TRUE( document.is_object() ) << ran.out << ran.err;
   EXPECT_EQ( document.begin().key(), "formatVersion" );
   EXPECT_EQ( document.begin().value(), version );
   EXPECT_EQ( Support::timesIn( ran.out, "formatVersion" ), 1U );
}

TEST( Versions, StandFirstInEachJsonDocument ) {
   Support::Directory const directory;
   std::string const frames = VORNAL_SOURCE_DIR "/scenarios/two-leaves/scenario.yaml";
   std::string const record = directory.path() / "record";
   std::string const ring = directory.path() / "ring";
   Support::vornal( { "run", kScenario, "--record", record, "--ring", ring } );
   std::set< std::string > asked;
   for ( std::vector< std::string > const & words :
         { std::vector< std::string >{ "run", kScenario },
           { "run", kScenario, "--step", "1" },
           { "run", kScenario, "--what-if", "note: nothing" },
           { "show", kScenario, "tcam" },
           { "show", kScenario, "entities" },
           { "show", kScenario, "entities", "/evpn/status" },
           { "explain", frames, "17" },
           { "diff", kScenario, "--after", "0" },
           { "verify", kScenario },
           { "check", kScenario },
           { "explore", VORNAL_SOURCE_DIR "/explorations/start.yaml", "--length", "1" },
           { "replay", record },
           { "ring", ring } } ) {
      expectVersionFirst( words, versionOf( "JSON documents" ) );
      asked.insert( words.front() );
   }
   EXPECT_EQ( asked, commandsWithJson() );
}

TEST( Versions, StandInTheSchemaOfScenarios ) {
   OrderedJson const schema = OrderedJson::parse( Support::vornal( { "schema" } ).out );
   EXPECT_EQ( schema[ "$comment" ], "scenario language " + versionOf( "scenario language" ) );
}

// A row for each line of `vornal --version`, such as "| scenario language | 1.0 |".
TEST( Versions, AreThoseOfTheDocument ) {
   std::string const document = Support::contentOf( VORNAL_SOURCE_DIR "/docs/compatibility.md" );
   auto const lines = versionLines();
   ASSERT_GE( lines.size(), 4U );
   for ( std::size_t n = 1; n < lines.size(); ++n ) {
      std::size_t const blank = lines[ n ].rfind( ' ' );
      std::string const row =
         "| " + lines[ n ].substr( 0, blank ) + " | " + lines[ n ].substr( blank + 1 ) + " |";
      EXPECT_NE( document.find( row ), std::string::npos ) << row;
   }
}

}  // namespace
