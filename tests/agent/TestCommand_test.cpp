// `vornal test`: the scenarios of folders, side by side.
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <Running.h>
#include <Support.h>
#include <Switches.h>

namespace {

using Support::Running;
using Support::TestPipe;
using Words = std::vector< std::string >;
namespace fs = std::filesystem;

std::string call( std::string const & operation ) {
   return "   - call: { entity: /plugins/Sample::Mounter, operation: " + operation + " }\n";
}

// How many processes have that text on their command line.
int processesWith( std::string const & text ) {
   int count = 0;
   for ( auto const & process : fs::directory_iterator( "/proc" ) ) {
      std::ifstream words( process.path() / "cmdline" );
      std::string const line{ std::istreambuf_iterator< char >( words ), {} };
      count += Support::contains( line, text ) ? 1 : 0;
   }
   return count;
}

// A folder of scenarios for the plug-in of the tests.
class TestCommand : public testing::Test {
 protected:
   void scenario( std::string const & name, std::string const & steps ) const {
      fs::create_directories( directory.path() / name );
      directory.file( name + "/scenario.yaml", Switches::leaf( steps ) );
   }
   std::string fileOf( std::string const & name ) const {
      return directory.path() / name / "scenario.yaml";
   }
   Words words( Words const & more = {} ) const {
      Words words{ "test", directory.path(), "--plugin", Support::testPlugin( "segment-rules" ) };
      words.insert( words.end(), more.begin(), more.end() );
      return words;
   }
   Support::Ran ran( Words const & more = {} ) const { return Support::vornal( words( more ) ); }

   Support::Directory directory;
   std::string const ready = "   - ready: subagents::l2Ready\n";
   std::string const good = ready + "   - expect: { plug-in: ready }\n";
   std::string const bad = ready + "   - expect: { plug-in: waiting }\n";
   std::string const stops = ready +
                             "   - publish: { segments: { Ethernet2: [ 10.0.0.2 ] } }\n"
                             "   - publish: { segments: { Ethernet3: [ 10.0.0.2 ] } }\n";
};

TEST_F( TestCommand, IsQuietWhenAllPass ) {
   scenario( "a", good );
   scenario( "b", good );
   auto const told = ran();
   EXPECT_EQ( told.exitCode, 0 ) << told.err;
   EXPECT_TRUE( told.out.starts_with( "PASSED: 2 scenarios; 2 expectations; " ) ) << told.out;
   EXPECT_EQ( std::count( told.out.begin(), told.out.end(), '\n' ), 1 );
   EXPECT_EQ( told.err, "" );
}

TEST_F( TestCommand, ListsTheMistakesOfAScenarioOneBelowTheOther ) {
   scenario( "a", ready + "   - expct: {}\n   - nte: x\n" );
   auto const told = ran();
   EXPECT_EQ( Support::timesIn( told.out, "\n   " + fileOf( "a" ) + ':' ), 2U ) << told.out;
}

TEST_F( TestCommand, EndsWithTheFailuresInTheOrderOfThePaths ) {
   scenario( "a", bad );
   scenario( "b", good );
   scenario( "c", stops );
   scenario( "d", ready + "   - expct: {}\n" );
   auto const told = ran( { "--jobs", "3" } );
   EXPECT_EQ( told.exitCode, 1 );
   EXPECT_EQ( told.out.substr( 0, told.out.find( "\n\nFAILED " + fileOf( "c" ) ) ),
              "\nFAILED " + fileOf( "a" ) + "\n   " + fileOf( "a" ) +
                 ":21: not as expected in step 2\n"
                 "      expected   plug-in waiting\n"
                 "      found      it is ready" );
   EXPECT_TRUE(
      Support::contains( told.out, "   " + fileOf( "c" ) +
                                      ":22: STOPPED in step 3: the process of the plug-in ended "
                                      "with signal 6 (Aborted)\n" ) )
      << told.out;
   EXPECT_TRUE(
      Support::contains( told.out,
                         "      assertion  entryIds() < kMostSegments && \"room for another "
                         "segment\"\n" ) );
   EXPECT_TRUE( Support::contains( told.out,
                                   "      in         void Sample::SegmentRulesWithEgressMaskSm::"
                                   "add(const Pelk::IntfId" ) );
   EXPECT_TRUE( Support::contains( told.out, "   " + fileOf( "d" ) + ":21: unknown word 'expct'" ) )
      << told.out;
   EXPECT_TRUE( Support::contains( told.out, "\n\nFAILED: 3 of 4 scenarios; " ) ) << told.out;
   EXPECT_EQ( told.err, "" );
}

TEST_F( TestCommand, TellsTheSameHoweverManyRunAtATime ) {
   for ( std::string const name : { "a", "b", "c", "d", "e" } ) {
      scenario( name, name == "a" || name == "e" ? bad : good );
   }
   auto const withoutTime = []( std::string const & text ) {
      return text.substr( 0, text.rfind( ';' ) );
   };
   std::string const one = withoutTime( ran( { "--jobs", "1" } ).out );
   EXPECT_TRUE( Support::contains( one, "FAILED: 2 of 5 scenarios" ) ) << one;
   EXPECT_EQ( withoutTime( ran( { "--jobs", "5" } ).out ), one );
}

TEST_F( TestCommand, HasALineForEachScenarioWhereItIsWanted ) {
   scenario( "a", good );
   scenario( "b", bad );
   auto const told = ran( { "--verbose" } );
   std::string const first = told.out.substr( 0, told.out.find( '\n' ) );
   EXPECT_TRUE( first.starts_with( "passed " ) && first.ends_with( fileOf( "a" ) ) ) << told.out;
   EXPECT_TRUE( Support::contains( told.out, "\nFAILED " ) );
   EXPECT_TRUE( Support::contains( told.out, "\nslowest:\n" ) ) << told.out;
}

TEST_F( TestCommand, EndsATurnThatTakesTooLong ) {
   scenario( "a", ready + call( "hang" ) );
   auto const told = ran( { "--turn-limit", "0.5" } );
   EXPECT_EQ( told.exitCode, 1 );
   EXPECT_TRUE( Support::contains( told.out, "STOPPED in step 2: a turn did not come to its end" ) )
      << told.out;
}

TEST_F( TestCommand, WritesTheResultsForABuildServer ) {
   scenario( "a", bad );
   scenario( "b", good );
   std::string const file = directory.path() / "results.xml";
   EXPECT_EQ( ran( { "--junit", file } ).exitCode, 1 );
   pugi::xml_document document;
   ASSERT_TRUE( document.load_file( file.c_str() ) );
   auto const test = document.child( "testsuites" ).child( "testsuite" ).first_child();
   EXPECT_EQ( test.attribute( "classname" ).value(), ( directory.path() / "a" ).string() );
   EXPECT_STREQ( test.attribute( "name" ).value(), "leaf" );
   EXPECT_TRUE(
      Support::contains( test.child( "failure" ).text().get(), fileOf( "a" ) + ":21: " ) );
}

// --- What is refused

TEST_F( TestCommand, ReplacesNoScenarioByItsResults ) {
   scenario( "good", good );
   std::string const before = Support::contentOf( fileOf( "good" ) );
   auto const tested = ran( { "--junit", fileOf( "good" ) } );
   EXPECT_EQ( tested.exitCode, 2 );
   EXPECT_EQ( tested.err,
              "--junit: " + fileOf( "good" ) + " is a scenario to be tested; name another file\n" );
   EXPECT_EQ( Support::contentOf( fileOf( "good" ) ), before );
}

TEST_F( TestCommand, PassesALinkThatLeadsToItself ) {
   scenario( "good", good );
   fs::create_symlink( "loop.yaml", directory.path() / "loop.yaml" );
   EXPECT_EQ( ran().exitCode, 0 );
}

TEST_F( TestCommand, EndsWith2WhereNothingCanBeTested ) {
   auto const nothing = ran();
   EXPECT_EQ( nothing.exitCode, 2 );
   EXPECT_TRUE( Support::contains( nothing.err, "there is no scenario; give " ) ) << nothing.err;

   scenario( "a", good );
   for ( Words const & more :
         { Words{ "nowhere" }, Words{ "--jobs", "0" }, Words{ "--junit", "/no/such/folder/x" },
           Words{ "--turn-limit", "soon" } } ) {
      auto const told = ran( more );
      EXPECT_EQ( told.exitCode, 2 ) << more.back();
      EXPECT_EQ( told.out, "" );
      EXPECT_TRUE( Support::contains( told.err, more.back() ) ) << told.err;
   }
   auto const told = Support::vornal( { "test", directory.path(), "--plugin", "nowhere.so" } );
   EXPECT_EQ( told.exitCode, 2 );
   EXPECT_TRUE( Support::contains( told.err, "nowhere.so" ) ) << told.err;
}

// --- Somebody who interrupts

TEST_F( TestCommand, EndsAllProcessesOnCtrlC ) {
   scenario( "a", bad );
   scenario( "b", ready + call( "hang" ) );
   int const null = open( "/dev/null", O_RDWR | O_CLOEXEC );
   TestPipe out;
   TestPipe err;
   std::string const file = directory.path() / "results.xml";
   Running running( words( { "--jobs", "2", "--turn-limit", "0", "--verbose", "--junit", file } ),
                    { null, out.in(), err.in() } );
   out.closeEnd( 1 );
   err.closeEnd( 1 );
   // The first one is over, and the second one began at the same time.
   EXPECT_TRUE( Support::contains( out.read( "a/scenario.yaml\n" ), "FAILED" ) );
   running.signal( SIGINT );
   std::string const rest = out.read();

   EXPECT_EQ( running.wait(), 130 );
   EXPECT_EQ( processesWith( directory.path() ), 0 );
   EXPECT_TRUE( Support::contains( rest, "not as expected in step 2" ) ) << rest;
   EXPECT_TRUE( Support::contains( rest, "\nINTERRUPTED: 1 of 2 scenarios tested, 1 failed; " ) )
      << rest;
   pugi::xml_document document;
   ASSERT_TRUE( document.load_file( file.c_str() ) );
   EXPECT_EQ( document.child( "testsuites" ).attribute( "skipped" ).as_int(), 1 );
}

// --- What ships

TEST_F( TestCommand, PassesOnAFolderThatShips ) {
   auto const told = Support::vornal( { "test", VORNAL_SOURCE_DIR "/scenarios/start-up",
                                        VORNAL_SOURCE_DIR "/scenarios/start-up-class-id",
                                        VORNAL_SOURCE_DIR "/scenarios/limits/vni-swap" } );
   EXPECT_EQ( told.exitCode, 0 ) << told.out << told.err;
   EXPECT_TRUE( told.out.starts_with( "PASSED: 3 scenarios; " ) ) << told.out;
}

}  // namespace
