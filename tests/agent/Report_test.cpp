// `vornal run --report`: the page of a run, as a user gets it.
#include <Report/Page.h>

#include <algorithm>
#include <regex>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <Support.h>
#include <Switches.h>

namespace {

using Json = nlohmann::json;

std::string const kTwoLeaves = VORNAL_SOURCE_DIR "/scenarios/two-leaves/scenario.yaml";
std::string const kSegmentGoes =
   VORNAL_SOURCE_DIR "/scenarios/limits/full-segment-goes/scenario.yaml";
std::string const kDataBegins = "<script type=\"application/json\" id=\"data\">";

Json dataIn( std::string const & page ) {
   std::size_t const begin = page.find( kDataBegins ) + kDataBegins.size();
   return Json::parse( page.substr( begin, page.find( "</script>", begin ) - begin ) );
}

class Report : public testing::Test {
 protected:
   Support::Ran run( std::vector< std::string > const & words ) {
      std::vector< std::string > all{ "run", "--report", file };
      all.insert( all.end(), words.begin(), words.end() );
      Support::Ran ran = Support::vornal( all );
      page = std::filesystem::is_regular_file( file ) ? Support::contentOf( file ) : "";
      return ran;
   }

   // Of a run that wrote its page.
   Json dataOf( std::vector< std::string > const & words ) {
      run( words );
      return dataIn( page );
   }

   std::string text( Json const & number ) const { return data[ "texts" ][ number.get< U32 >() ]; }

   // The tree as `vornal explain` prints it.
   std::string treeText( U32 number, std::size_t depth = 0 ) const {
      Json const & tree = data[ "trees" ][ number ];
      std::string lines = std::string( 3 * depth, ' ' ) + text( tree[ 1 ] ) + '\n';
      for ( std::size_t n = 3; n < tree.size(); ++n ) {
         lines += treeText( tree[ n ], depth + 1 );
      }
      return lines;
   }

   Support::Directory directory;
   std::string file = directory.path() / "run.html";
   std::string page;
   Json data;
};

// --- What it holds

TEST_F( Report, HasTheNumbersOfTheRun ) {
   Json const document = Json::parse( run( { "--json", kTwoLeaves } ).out );
   data = dataIn( page );

   Json const & counters = document[ "counters" ];
   EXPECT_EQ( data[ "title" ], "two-leaves" );
   EXPECT_EQ( data[ "variant" ], document[ "variant" ] );
   EXPECT_EQ( data[ "end" ][ "name" ], "completed" );
   EXPECT_EQ( data[ "end" ][ "expectations" ], counters[ "expectations" ] );
   EXPECT_EQ( data[ "totals" ][ "frames" ], counters[ "frames" ] );
   EXPECT_EQ( data[ "totals" ][ "drops" ], counters[ "framesDropped" ] );
   EXPECT_EQ( data[ "frames" ].size(), 357U );
   EXPECT_EQ( data[ "explained" ], 357 );
   EXPECT_EQ( data[ "rules" ].size(), document[ "rules" ].size() );
   std::size_t changes = 0;
   std::size_t calls = 0;
   for ( Json const & step : data[ "steps" ] ) {
      changes += step[ "changes" ].size();
      calls += step[ "calls" ].get< std::size_t >();
   }
   EXPECT_EQ( changes, counters[ "publishedChanges" ] );
   EXPECT_EQ( calls, counters[ "hardwareCalls" ] );
}

TEST_F( Report, HasTheStepsWithWhatEachDid ) {
   Json const document = Json::parse( run( { "--json", kTwoLeaves } ).out );
   data = dataIn( page );

   Json const & steps = data[ "steps" ];
   ASSERT_EQ( steps.size(), document[ "steps" ].size() + 1 );
   EXPECT_EQ( steps[ 0 ][ "name" ], "published before" );
   EXPECT_EQ( steps[ 0 ][ "changes" ].size(), 21U );
   for ( Json const & step : document[ "steps" ] ) {
      Json const & shown = steps[ step[ "number" ].get< std::size_t >() + 1 ];
      EXPECT_EQ( shown[ "text" ], step[ "text" ] );
      EXPECT_EQ( shown[ "frames" ], step[ "frames" ].size() );
      EXPECT_EQ( shown[ "rules" ].size(), step[ "rulesAdded" ].size() +
                                             step[ "rulesChanged" ].size() +
                                             step[ "rulesRemoved" ].size() )
         << step[ "text" ];
   }
   EXPECT_EQ( steps[ 10 ][ "rules" ][ 2 ], Json( { "added", 2 } ) );
   EXPECT_EQ( steps.back()[ "name" ], "teardown" );
   EXPECT_EQ( steps.back()[ "tables" ], steps[ 23 ][ "tables" ] ) << "nothing is asked any more";
}

TEST_F( Report, HasEachFrameAsTheDocumentHasIt ) {
   Json const document = Json::parse( run( { "--json", kTwoLeaves } ).out );
   data = dataIn( page );

   for ( Json const & frame : document[ "frames" ] ) {
      Json const & row = data[ "frames" ][ frame[ "number" ].get< std::size_t >() - 1 ];
      Json const & fate = data[ "fates" ][ row[ 11 ].get< std::size_t >() ];
      EXPECT_EQ( row[ 0 ], frame[ "step" ] );
      EXPECT_EQ( text( row[ 1 ] ), frame[ "arrival" ] );
      EXPECT_EQ( row[ 4 ], frame[ "length" ] );
      EXPECT_EQ( row[ 7 ].is_null() ? Json() : Json( text( row[ 7 ] ) ), frame[ "kind" ] );
      EXPECT_EQ( fate[ 0 ].is_null() ? Json() : Json( text( fate[ 0 ] ) ), frame[ "dropReason" ] );
      ASSERT_EQ( fate[ 2 ].size(), frame[ "ports" ].size() );
      for ( std::size_t n = 0; n < fate[ 2 ].size(); ++n ) {
         Json const & copy = fate[ 2 ][ n ];
         Json const & port = frame[ "ports" ][ n ];
         EXPECT_EQ( text( copy[ 0 ] ), port[ "interface" ] );
         EXPECT_EQ( copy[ 2 ], port[ "port" ] );
         EXPECT_EQ( text( copy[ 4 ] ), port[ "verdict" ] );
         Json const rule = copy[ 5 ].is_null()
                              ? Json()
                              : data[ "rules" ][ copy[ 5 ].get< std::size_t >() ][ "entry" ];
         EXPECT_EQ( rule, port[ "rule" ].is_null() ? Json() : port[ "rule" ][ "id" ] );
      }
   }
}

// Frames that come in together share the grounds of their explanations. Some of these frames came
// before the rules, some learned an address that the next ones know.
TEST_F( Report, ExplainsEachFrameByTheStateOfItsMoment ) {
   data = dataOf( { kTwoLeaves } );
   for ( U32 const number : { 1U, 3U, 19U, 121U, 122U, 136U, 246U, 355U, 356U, 357U } ) {
      auto const explained = Support::vornal( { "explain", kTwoLeaves, std::to_string( number ) } );
      EXPECT_EQ( treeText( data[ "frames" ][ number - 1 ][ 12 ] ), explained.out );
   }
}

TEST_F( Report, MarksTheFramesThatArriveTwice ) {
   data = dataOf( { kTwoLeaves } );
   std::size_t twice = 0;
   for ( Json const & frame : data[ "frames" ] ) {
      twice += frame[ 13 ].get< std::size_t >();
      EXPECT_TRUE( frame[ 13 ] == 0 || ( frame[ 0 ] == 7 && text( frame[ 5 ] ) == "10.0.0.2" ) );
   }
   EXPECT_EQ( twice, 11U ) << "those of leaf2 for several, before the rules";
}

TEST_F( Report, KnowsTheStateBehindEachRule ) {
   data = dataOf( { kTwoLeaves } );
   Json const rules =
      Json::parse( Support::vornal( { "show", kTwoLeaves, "rules", "--json" } ).out )[ "rules" ];
   ASSERT_EQ( rules.size(), data[ "rules" ].size() );
   for ( std::size_t n = 0; n < rules.size(); ++n ) {
      Json const & rule = data[ "rules" ][ n ];
      EXPECT_EQ( rule[ "entry" ], rules[ n ][ "entry" ] );
      EXPECT_EQ( rule[ "since" ], rules[ n ][ "programmedIn" ] );
      EXPECT_EQ( text( rule[ "forms" ].back()[ 2 ] ), rules[ n ][ "matches" ] );
      EXPECT_EQ( text( rule[ "forms" ].back()[ 3 ] ), rules[ n ][ "does" ] );
      ASSERT_EQ( rule[ "grounds" ].size(), 1U );
      EXPECT_EQ( text( rule[ "grounds" ][ 0 ][ 1 ] ), rules[ n ][ "because" ] );
   }
}

TEST_F( Report, HasTheSwitchAfterEachStep ) {
   data = dataOf( { kTwoLeaves } );
   Json const & ports = data[ "tables" ][ "ports" ];
   Json const shown =
      Json::parse( Support::vornal( { "show", kTwoLeaves, "ports", "--json" } ).out )[ "ports" ];
   Json const & last = ports[ "versions" ].back();
   ASSERT_EQ( last.size(), shown.size() );
   EXPECT_EQ(
      ports[ "rows" ][ last[ 1 ].get< std::size_t >() ],
      Json(
         { 0, 3, "Ethernet3", "Port-Channel2", "Port-Channel2", { "10.0.0.2", "2001:db8::2" } } ) );
   EXPECT_EQ( data[ "device" ][ "underlay" ], Json( { "Ethernet49" } ) );
   EXPECT_EQ( data[ "tables" ][ "tcam" ][ "versions" ].size(), 2U ) << "before the rules and after";
   EXPECT_NE( data[ "steps" ][ 9 ][ "tables" ][ "tcam" ],
              data[ "steps" ][ 10 ][ "tables" ][ "tcam" ] );
}

// --- Ends

TEST_F( Report, TellsTheStopOfThePlugIn ) {
   ASSERT_EQ( run( { kSegmentGoes } ).exitCode, 0 );
   data = dataIn( page );
   Json const & stop = data[ "end" ][ "stop" ];
   EXPECT_EQ( stop[ "text" ], "the process of the plug-in ended with signal 6 (Aborted)" );
   EXPECT_EQ( stop[ "assertion" ][ "expression" ], "unitTepIpToEntry->esPbmpHas( tepIp )" );
   EXPECT_TRUE( Support::contains( stop[ "assertion" ][ "in" ], "::ifpTcamEntries(" ) );
   EXPECT_EQ( stop[ "asExpected" ], true );
   EXPECT_FALSE( stop[ "traces" ].empty() );
   EXPECT_TRUE(
      Support::contains( stop[ "limits" ].dump(), "The segment of a VTEP without a rule goes" ) );
   EXPECT_EQ( data[ "steps" ].back()[ "text" ], "withdraw segment Ethernet2" );
   EXPECT_EQ( data[ "rules" ].size(), 3U );
}

TEST_F( Report, TellsAStopThatNobodyExpected ) {
   auto const ran = run( { kTwoLeaves, "--then", "fail-call: { operation: installEntry, code: -1 }",
                           "--then", "publish: { segments: { Ethernet1: [ 10.0.0.3 ] } }" } );
   ASSERT_EQ( ran.exitCode, 3 ) << ran.err;
   data = dataIn( page );
   EXPECT_EQ( data[ "end" ][ "name" ], "stopped" );
   EXPECT_TRUE( data[ "end" ][ "stop" ][ "asExpected" ].is_null() );
}

TEST_F( Report, TellsTheMistakeThatEndedTheRun ) {
   directory.file( "wrong.yaml",
                   Switches::leaf( "   - set: { entity: /nothing, attribute: x, value: 1 }\n" ) );
   auto const ran = run(
      { directory.path() / "wrong.yaml", "--plugin", Support::testPlugin( "segment-rules" ) } );
   ASSERT_EQ( ran.exitCode, 2 );
   data = dataIn( page );
   EXPECT_EQ( data[ "end" ][ "name" ], "failed" );
   EXPECT_EQ( data[ "end" ][ "error" ].get< std::string >() + '\n', ran.err );
}

// --- The story is the same

TEST_F( Report, ChangesNothingElse ) {
   for ( std::string const name : { "two-leaves", "two-units-class-id", "grant-late", "vtep-flap",
                                    "limits/full-segment-goes" } ) {
      std::string const scenario = VORNAL_SOURCE_DIR "/scenarios/" + name + "/scenario.yaml";
      auto const plain = Support::vornal( { "run", "--json", scenario } );
      auto const reported = run( { "--json", scenario } );
      EXPECT_EQ( reported.out, plain.out );
      EXPECT_EQ( reported.err, plain.err );
      EXPECT_EQ( reported.exitCode, plain.exitCode );
   }
}

TEST_F( Report, EndsWithTheStepThatTheRunEndsWith ) {
   data = dataOf( { kTwoLeaves, "--step", "9" } );
   EXPECT_EQ( data[ "steps" ].size(), 12U ) << "the state before, start-up, 9 steps, teardown";
   EXPECT_EQ( run( { kTwoLeaves, "--what-if", "note: x" } ).exitCode, 2 );
}

// --- The page

TEST_F( Report, IsOneFileThatAsksForNothing ) {
   run( { kTwoLeaves } );
   EXPECT_TRUE( page.starts_with( ::Report::kFirstLine ) );
   EXPECT_TRUE( Support::contains( page,
                                   "content=\"default-src 'none'; style-src 'unsafe-inline'; "
                                   "script-src 'unsafe-inline'; " ) );
   std::regex const reference( "\\b(src|href)=|\\burl\\(|\\bfetch\\(|XMLHttpRequest|@import" );
   EXPECT_FALSE( std::regex_search( page, reference ) );
   EXPECT_EQ( Support::timesIn( page, "<script" ), Support::timesIn( page, "</script>" ) );
}

TEST_F( Report, IsTheSameForTheSameRun ) {
   run( { kTwoLeaves } );
   std::string const first = page;
   run( { kTwoLeaves } );
   EXPECT_EQ( page, first );
}

// Texts of a scenario that would end the script that holds them, begin another, or turn the text.
TEST_F( Report, NoTextOfAScenarioBecomesMarkup ) {
   run( { kTwoLeaves } );
   std::size_t const scripts = Support::timesIn( page, "<script" );
   std::string const hostile =
      "</script><script>alert( 1 )</script><!-- <img src=x> & \xe2\x80\xae";
   directory.file( "hostile.yaml",
                   Switches::leaf( "   - note: \"" + hostile + " \\e[31m \\0\"\n" ) );
   run( { directory.path() / "hostile.yaml", "--plugin", Support::testPlugin( "segment-rules" ) } );
   EXPECT_EQ( Support::timesIn( page, "<script" ), scripts );
   EXPECT_FALSE( Support::contains( page, "<img" ) );
   EXPECT_FALSE( Support::contains( page, "\xe2\x80\xae" ) );
   data = dataIn( page );
   EXPECT_EQ( data[ "steps" ][ 2 ][ "text" ],
              "</script><script>alert( 1 )</script><!-- <img src=x> & \\u202e \\x1b[31m \\x00" );
}

// --- The file

TEST_F( Report, ReplacesThePageOfAnEarlierRunAlsoThroughALink ) {
   directory.file( "earlier.html", std::string( ::Report::kFirstLine ) + "old" );
   directory.file( "empty.html", "" );
   for ( std::string const name : { "earlier.html", "empty.html" } ) {
      std::filesystem::remove( file );
      std::filesystem::create_symlink( name, file );
      ASSERT_EQ( run( { kTwoLeaves } ).exitCode, 0 );
      EXPECT_TRUE( std::filesystem::is_symlink( file ) );
      EXPECT_EQ( dataIn( Support::contentOf( directory.path() / name ) )[ "title" ], "two-leaves" );
   }
}

class ReportRefused : public Report {
 protected:
   // The run is refused for the reason, and nothing of it is carried out.
   void expectRefused( std::string const & why ) {
      std::string const captures = directory.path() / "captures";
      auto const ran = run( { kTwoLeaves, "--pcap-out", captures } );
      EXPECT_EQ( ran.exitCode, 2 );
      EXPECT_EQ( ran.out, "" );
      EXPECT_EQ( ran.err, "--report: " + file + " " + why +
                             "; name a new file in a folder that takes files\n" );
      EXPECT_FALSE( std::filesystem::exists( captures ) );
   }
};

TEST_F( ReportRefused, AFolder ) {
   file = directory.path();
   expectRefused( "is a folder" );
}

TEST_F( ReportRefused, AFileInAFolderThatIsNotThere ) {
   file = directory.path() / "nowhere" / "run.html";
   expectRefused( "cannot be written (No such file or directory)" );
}

TEST_F( ReportRefused, ADevice ) {
   file = "/dev/null";
   expectRefused( "is no regular file" );
}

TEST_F( ReportRefused, AFileOfAnotherKind ) {
   directory.file( "run.html", "<!DOCTYPE html>\n<p>mine" );
   expectRefused( "is there already, and is no report of an earlier run" );
   EXPECT_EQ( page, "<!DOCTYPE html>\n<p>mine" );
}

TEST_F( ReportRefused, TheFileOfAnotherOutputOfTheRun ) {
   auto const ran = run( { kTwoLeaves, "--ring", file } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err, "--report and --ring both name " + file + "; name two files\n" );
   EXPECT_FALSE( std::filesystem::exists( file ) );
}

TEST_F( ReportRefused, APageThatFindsNoRoomIsNotThereAtAll ) {
   std::string const command = "ulimit -f 64; " VORNAL_BINARY_DIR "/vornal run " + kTwoLeaves +
                               " --report " + file + " >/dev/null 2>/dev/null";
   EXPECT_EQ( WEXITSTATUS( std::system( command.c_str() ) ), 2 );
   EXPECT_TRUE( std::filesystem::is_empty( directory.path() ) );
}

}  // namespace
