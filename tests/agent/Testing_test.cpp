// The parts of a test run: the scenarios below folders, the workers, the report, the file for a
// build server.
#include <filesystem>
#include <sstream>

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <Process/Descriptor.h>
#include <Process/Workers.h>
#include <Stories.h>
#include <Story/InputError.h>
#include <Support.h>
#include <Testing/Collection.h>
#include <Testing/JUnit.h>
#include <Testing/Judge.h>
#include <Testing/Report.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace Stories;
using Testing::Result;
using Names = std::vector< std::string >;
namespace fs = std::filesystem;

// --- The scenarios below folders

class Collection : public testing::Test {
 protected:
   // The names of the files, relative to the test's folder.
   Names found( std::vector< fs::path > const & paths ) const {
      Names names;
      for ( fs::path const & file : Testing::scenariosAmong( paths ) ) {
         names.push_back( file.lexically_relative( directory.path() ) );
      }
      return names;
   }
   fs::path folder( std::string const & name ) const {
      fs::create_directories( directory.path() / name );
      return directory.path() / name;
   }

   Support::Directory directory;
};

TEST_F( Collection, HasTheScenariosOfAllFoldersInTheOrderOfTheirPaths ) {
   folder( "b" );
   folder( "a/deep" );
   directory.file( "b/scenario.yaml", "scenario: b\n" );
   directory.file( "a/deep/twin.yaml", "'based-on': ../x.yaml\n" );
   directory.file( "a/nameless.yaml", "# a leaf\nswitch: {}\nsteps: []\n" );
   EXPECT_EQ( found( { directory.path() } ),
              ( Names{ "a/deep/twin.yaml", "a/nameless.yaml", "b/scenario.yaml" } ) );
}

TEST_F( Collection, LeavesOtherFilesAndHiddenFoldersOut ) {
   folder( ".hidden" );
   directory.file( ".hidden/scenario.yaml", "scenario: a\n" );
   directory.file( "VornalL3.json", "{ \"scenario\": true }\n" );
   directory.file( "notes.txt", "scenario: a\n" );
   directory.file( "build.yaml", "build:\n   scenario: a\nsteps: []\n" );
   directory.file( "switches.yaml", "switch: a\n" );
   directory.file( "exploration.yaml", "exploration: a\nbased-on: switches.yaml\n" );
   EXPECT_EQ( found( { directory.path() } ), Names{} );
}

TEST_F( Collection, HasAScenarioThatIsNoYaml ) {
   directory.file( "broken.yaml", "scenario: [ a\nswitch\n" );
   EXPECT_EQ( found( { directory.path() } ), Names{ "broken.yaml" } );
}

TEST_F( Collection, TakesANamedFileAsItIsAndEachFileOnce ) {
   auto const file = directory.file( "leaf.txt", "anything" );
   auto const other = directory.file( "leaf.yaml", "scenario: a\n" );
   EXPECT_EQ( found( { directory.path(), file, other, file } ),
              ( Names{ "leaf.txt", "leaf.yaml" } ) );
}

TEST_F( Collection, RefusesAPathThatDoesNotExist ) {
   EXPECT_THROW( found( { directory.path() / "nowhere" } ), Story::InputError );
}

// --- The judgement of a run

Result judged( std::vector< Story::Event > const & events ) {
   Testing::Judge judge;
   tell( judge, events );
   return judge.result();
}

TEST( Judge, LetsAScenarioPassWhoseExpectationsHold ) {
   Result const result = judged( { Story::RunBegins{ "f", "a leaf", "", 1 }, step( 1 ),
                                   expectation( true ), Story::StepEnds{ 1 }, Story::RunEnds{} } );
   EXPECT_TRUE( result.isOver );
   EXPECT_FALSE( result.isFailed() );
   EXPECT_EQ( result.title, "a leaf" );
   EXPECT_EQ( result.expectations, 1U );
}

TEST( Judge, NamesPlaceAndFindingOfAFailedExpectation ) {
   Result const result = judged( { step( 3 ), expectation( false ), Story::RunEnds{} } );
   ASSERT_EQ( result.failures.size(), 1U );
   EXPECT_EQ( result.failures[ 0 ].place, "start-up.yaml:14" );
   EXPECT_EQ( result.failures[ 0 ].what, "not as expected in step 3" );
   EXPECT_EQ( result.failures[ 0 ].lines,
              ( Names{ "expected   plug-in ready", "found      it is not ready" } ) );
}

TEST( Judge, NamesStepAssertionFunctionAndKnownLimitOfAStop ) {
   Story::Stopped stop = stopped();
   stop.assertion =
      Story::Assertion{ "PerVniMulticast.cpp", 9, "void Vornal::Sm::handleVrfToVniMap(U32)",
                        "!evpnMultihomingLocalBiasSm()->vniToTcamEntryIdHas( newV )" };
   Result const result =
      judged( { step( 2 ), Story::PublishedChange{ "/v", "vrfToVniMap", "red", "1", "2" }, stop } );
   ASSERT_EQ( result.failures.size(), 1U );
   Names const & lines = result.failures[ 0 ].lines;
   EXPECT_TRUE( result.failures[ 0 ].what.starts_with( "STOPPED in step 2: " ) );
   ASSERT_GE( lines.size(), 5U );
   EXPECT_EQ( lines[ 0 ], "step       ready subagents::l2Ready" );
   EXPECT_EQ( lines[ 1 ], "assertion  " + stop.assertion->expression );
   EXPECT_EQ( lines[ 3 ], "in         " + stop.assertion->function );
   EXPECT_NE( std::find( lines.begin(), lines.end(),
                         "limit      Two VRFs exchange their VNIs (docs/limits.md)" ),
              lines.end() );
}

TEST( Judge, LetsAStopPassThatIsAsExpected ) {
   Story::Stopped stop = stopped();
   stop.isAsExpected = true;
   Result const result = judged( { step( 2 ), expectation( true ), stop } );
   EXPECT_TRUE( result.isOver );
   EXPECT_FALSE( result.isFailed() );
}

TEST( Judge, HasNoResultOfAnInterruptedRun ) {
   EXPECT_FALSE( judged( { step( 2 ), Story::Interrupted{ 15, "signal 15" } } ).isOver );
}

// --- Side by side

std::vector< fs::path > files( std::size_t count ) {
   std::vector< fs::path > names;
   for ( std::size_t n = 0; n < count; ++n ) {
      names.emplace_back( "scenario-" + std::to_string( n ) );
   }
   return names;
}

Result over( fs::path const & file ) {
   Result result;
   result.title = "of " + file.string();
   result.isOver = true;
   return result;
}

void noProgress( std::vector< Result > const & ) {}

TEST( Workers, GiveTheirResultsInTheOrderOfTheFilesHoweverManyThereAre ) {
   for ( std::size_t const jobs : { 1U, 3U, 50U } ) {
      auto const tested = Testing::testAll( files( 12 ), jobs, over, noProgress );
      ASSERT_EQ( tested.results.size(), 12U );
      EXPECT_EQ( tested.signal, 0 );
      for ( std::size_t n = 0; n < tested.results.size(); ++n ) {
         EXPECT_EQ( tested.results[ n ].file, files( 12 )[ n ] );
         EXPECT_EQ( tested.results[ n ].title, "of " + tested.results[ n ].file );
         EXPECT_TRUE( tested.results[ n ].isOver );
      }
   }
}

TEST( Workers, SendResultsThatAreLongerThanAPipe ) {
   auto const tested = Testing::testAll(
      files( 2 ), 2,
      []( fs::path const & ) {
         Result result;
         result.isOver = true;
         result.failures = { { "", std::string( 1'000'000, 'x' ), {} } };
         return result;
      },
      noProgress );
   for ( Result const & result : tested.results ) {
      EXPECT_EQ( result.failures.at( 0 ).what.size(), 1'000'000U );
   }
}

TEST( Workers, TurnAnEndWithoutAResultIntoAFailure ) {
   auto const tested = Testing::testAll(
      files( 2 ), 2,
      []( fs::path const & file ) {
         if ( file == "scenario-0" ) {
            raise( SIGKILL );
         }
         return over( file );
      },
      noProgress );
   ASSERT_EQ( tested.results[ 0 ].failures.size(), 1U );
   EXPECT_EQ( tested.results[ 0 ].failures[ 0 ].what,
              "the process that ran the scenario ended with signal 9 (Killed), without a result" );
   EXPECT_FALSE( tested.results[ 1 ].isFailed() );
}

// Both workers are over. While the first one's result is taken, the signal comes.
TEST( Workers, AreNoFailureWhenTheSignalToTheProgramHasEndedThem ) {
   signal( SIGTERM, SIG_DFL );
   Process::Pipe go = Process::pipeNew();
   std::vector< std::size_t > taken;
   auto const work = [ & ]( std::size_t piece ) {
      if ( piece == 1 ) {
         std::string word;
         go.out.readInto( word );
         raise( SIGKILL );
      }
      return std::string( "result" );
   };
   auto const take = [ & ]( std::size_t piece, Process::Worked const & ) {
      taken.push_back( piece );
      go.in.write( "go" );
      siginfo_t ended{};
      waitid( P_ALL, 0, &ended, WEXITED | WNOWAIT );
      raise( SIGTERM );
   };
   EXPECT_EQ( Process::workAll( { 2, 2, work, take, [] {} } ), SIGTERM );
   EXPECT_EQ( taken, std::vector< std::size_t >{ 0 } );
}

TEST( Workers, EndWithASignalToTheProgram ) {
   signal( SIGTERM, SIG_DFL );
   auto const tested = Testing::testAll(
      files( 3 ), 1,
      []( fs::path const & file ) {
         if ( file == "scenario-1" ) {
            pause();
         }
         return over( file );
      },
      []( std::vector< Result > const & results ) {
         if ( results[ 0 ].isOver ) {
            raise( SIGTERM );
         }
      } );
   EXPECT_EQ( tested.signal, SIGTERM );
   EXPECT_TRUE( tested.results[ 0 ].isOver );
   EXPECT_FALSE( tested.results[ 1 ].isOver );
   EXPECT_FALSE( tested.results[ 2 ].isOver );
}

// --- The report

Result result( std::string const & file, std::vector< Testing::Failure > failures = {} ) {
   Result one;
   one.file = file;
   one.isOver = true;
   one.failures = std::move( failures );
   one.expectations = 2;
   one.seconds = 0.25;
   return one;
}

std::string reported( Testing::Tested const & tested, bool isVerbose = false ) {
   std::ostringstream out;
   Testing::Report( out, Story::Style( false ), isVerbose ).tellEnd( tested, 1.5 );
   return out.str();
}

TEST( TestReport, IsOneLineWhenAllPassed ) {
   EXPECT_EQ( reported( { { result( "a.yaml" ), result( "b.yaml" ) }, 0 } ),
              "PASSED: 2 scenarios; 4 expectations; 1.5 s\n" );
}

TEST( TestReport, EndsWithTheFailuresAndTheTotals ) {
   EXPECT_EQ( reported( { { result( "a.yaml", { { "a.yaml:7", "not as expected", { "found x" } },
                                                { "", "a mistake", {} } } ),
                            result( "b.yaml" ) },
                          0 } ),
              "\n"
              "FAILED a.yaml\n"
              "   a.yaml:7: not as expected\n"
              "      found x\n"
              "   a mistake\n"
              "\n"
              "FAILED: 1 of 2 scenarios; 4 expectations; 1.5 s\n" );
}

TEST( TestReport, HasALineForEachScenarioWhereItIsWantedAndTheSlowestOnes ) {
   Result slow = result( "slow.yaml" );
   slow.seconds = 7;
   EXPECT_EQ( reported( { { result( "a.yaml" ), slow }, 0 }, true ),
              "passed    0.25 s  a.yaml\n"
              "passed    7.00 s  slow.yaml\n"
              "\n"
              "slowest:\n"
              "     7.00 s  slow.yaml\n"
              "     0.25 s  a.yaml\n"
              "\n"
              "PASSED: 2 scenarios; 4 expectations; 1.5 s\n" );
}

TEST( TestReport, WaitsWithALineForTheScenariosBefore ) {
   std::ostringstream out;
   Testing::Report report( out, Story::Style( false ), true );
   std::vector< Result > results{ result( "a.yaml" ), result( "b.yaml" ) };
   results[ 0 ].isOver = false;
   report.tellOver( results );
   EXPECT_EQ( out.str(), "" );
   results[ 0 ].isOver = true;
   report.tellOver( results );
   report.tellOver( results );
   EXPECT_EQ( out.str(), "passed    0.25 s  a.yaml\npassed    0.25 s  b.yaml\n" );
}

TEST( TestReport, CountsTheScenariosThatWereTestedBeforeASignal ) {
   std::vector< Result > results{ result( "a.yaml" ), result( "b.yaml" ) };
   results[ 1 ].isOver = false;
   EXPECT_EQ( reported( { results, SIGINT } ),
              "INTERRUPTED: 1 of 2 scenarios tested, 0 failed; 4 expectations; 1.5 s\n" );
}

// --- The file for a build server

pugi::xml_document read( std::vector< Result > const & results ) {
   std::stringstream text;
   Testing::writeJUnit( results, 1.5, text );
   pugi::xml_document document;
   auto const parsed = document.load( text );
   EXPECT_TRUE( parsed ) << parsed.description();
   return document;
}

TEST( JUnit, HasATestCaseForEachScenarioAndItsFolderAsClassName ) {
   Result one = result( "dir/port-swap/scenario.yaml",
                        { { "dir/port-swap/scenario.yaml:7", "not as expected", { "found x" } } } );
   one.title = "port-swap";
   Result missing = result( "dir/later/scenario.yaml" );
   missing.isOver = false;
   auto const document = read( { one, result( "dir/b/scenario.yaml" ), missing } );

   auto const suite = document.child( "testsuites" ).child( "testsuite" );
   EXPECT_EQ( suite.attribute( "tests" ).as_int(), 3 );
   EXPECT_EQ( suite.attribute( "failures" ).as_int(), 1 );
   EXPECT_EQ( suite.attribute( "skipped" ).as_int(), 1 );
   auto const test = suite.first_child();
   EXPECT_STREQ( test.attribute( "classname" ).value(), "dir/port-swap" );
   EXPECT_STREQ( test.attribute( "name" ).value(), "port-swap" );
   EXPECT_STREQ( test.child( "failure" ).attribute( "message" ).value(),
                 "dir/port-swap/scenario.yaml:7: not as expected" );
   EXPECT_STREQ( test.child( "failure" ).text().get(),
                 "dir/port-swap/scenario.yaml:7: not as expected\n   found x\n" );
   EXPECT_FALSE( test.next_sibling().first_child() );
   EXPECT_TRUE( test.next_sibling().next_sibling().child( "skipped" ) );
}

TEST( JUnit, IsXmlWhateverItHolds ) {
   std::string const odd = "a \x01\x1b[31m \xff \xef\xbf\xbf <b a=\"c\"> & ]]> ' M\xc3\xbcnchen";
   Result one = result( odd, { { odd, odd, { odd } } } );
   one.title = odd;
   std::stringstream text;
   Testing::writeJUnit( { one }, 1, text );
   EXPECT_EQ( text.str().find_first_of( "\x01\x1b\xff" ), std::string::npos );
   EXPECT_EQ( text.str().find( "&#" ), std::string::npos ) << text.str();
   EXPECT_EQ( text.str().find( "\xef\xbf\xbf" ), std::string::npos );
   auto const document = read( { one } );
   auto const test = document.child( "testsuites" ).child( "testsuite" ).first_child();
   EXPECT_EQ( std::string( test.attribute( "name" ).value() ), Text::printable( odd ) );
}

// --- On the way from a worker

TEST( Results, ComeBackAsTheyWere ) {
   Result one = result( "a.yaml", { { "p", "w", { "l", "m" } } } );
   one.title = "t";
   Result const back = Testing::decoded( Testing::encoded( one ) );
   EXPECT_EQ( back.file, one.file );
   EXPECT_EQ( back.title, one.title );
   EXPECT_EQ( back.isOver, one.isOver );
   EXPECT_EQ( back.expectations, one.expectations );
   EXPECT_EQ( back.seconds, one.seconds );
   ASSERT_EQ( back.failures.size(), 1U );
   EXPECT_EQ( back.failures[ 0 ].place, "p" );
   EXPECT_EQ( back.failures[ 0 ].lines, ( Names{ "l", "m" } ) );
   EXPECT_THROW( Testing::decoded( "" ), std::runtime_error );
   EXPECT_THROW( Testing::decoded( "{}" ), std::runtime_error );
}

}  // namespace
