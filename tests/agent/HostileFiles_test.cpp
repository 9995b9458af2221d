// Files that somebody has made to exhaust the program, to stop it, or to learn what another file
// holds. Each is refused, or read up to a limit.
#include <fstream>

#include <gtest/gtest.h>

#include <Support.h>
#include <Switches.h>

#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using Support::Ran;

constexpr std::uintmax_t kHuge = std::uintmax_t{ 4 } << 30U;

class HostileFiles : public testing::Test {
 protected:
   // A file that takes no room on the disk.
   std::string huge( std::string const & name ) const {
      fs::path const file = directory.file( name, "" );
      fs::resize_file( file, kHuge );
      return file;
   }
   std::string pipe( std::string const & name ) const {
      fs::path const file = directory.path() / name;
      EXPECT_EQ( mkfifo( file.c_str(), 0600 ), 0 );
      return file;
   }

   Support::Directory directory;
   std::string const exploration = VORNAL_SOURCE_DIR "/explorations/start.yaml";
};

TEST_F( HostileFiles, RingsEndAtALimit ) {
   std::string const ring = huge( "ring" );
   Ran const ran = Support::vornal( { "ring", ring } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err, ring +
                          ": this is larger than the 64 MiB that a trace ring may have; name "
                          "one that 'run --ring' has written\n" );
}

TEST_F( HostileFiles, AreNoScenariosOfAFolder ) {
   huge( "huge.yaml" );
   pipe( "pipe.yaml" );
   fs::create_symlink( "/dev/zero", directory.path() / "zero.yaml" );
   Ran const ran = Support::vornal( { "test", directory.path() } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_TRUE( Support::contains( ran.err, "there is no scenario" ) ) << ran.err;
}

TEST_F( HostileFiles, AreNoCapture ) {
   for ( std::string const & file : { std::string( "/dev/zero" ), pipe( "pipe" ) } ) {
      std::string const scenario =
         directory.file( "leaf.yaml", Switches::leaf( "   - frames: { capture: " + file +
                                                      ", on: Ethernet2 }\n" ) );
      Ran const ran = Support::vornal( { "run", scenario } );
      EXPECT_EQ( ran.exitCode, 2 );
      EXPECT_TRUE( Support::contains( ran.err, "capture is '" + file + "', which is no file" ) )
         << ran.err;
   }
}

TEST_F( HostileFiles, AreNoCatalogue ) {
   for ( std::string const & file :
         { std::string( "/dev/zero" ), pipe( "pipe" ), huge( "huge" ) } ) {
      Ran const ran = Support::vornal( { "explore", exploration, "--catalogue", file } );
      EXPECT_EQ( ran.exitCode, 2 );
      EXPECT_EQ( ran.err, file + ": the catalogue cannot be read; '--write' makes one\n" );
   }
}

TEST_F( HostileFiles, AreNoResults ) {
   for ( std::string const & file : { std::string( "/dev/zero" ), pipe( "pipe" ) } ) {
      Ran const ran = Support::vornal( { "explore", "merge", exploration, file } );
      EXPECT_EQ( ran.exitCode, 2 );
      EXPECT_TRUE(
         Support::contains( ran.err, file + ": this file of results cannot be read, is empty" ) )
         << ran.err;
   }
}

// The rest of the line is that of a real file of results.
TEST_F( HostileFiles, NameNoEventThatIsNotThere ) {
   std::string const results = directory.path() / "results";
   Ran const real =
      Support::vornal( { "explore", exploration, "--length", "1", "--results", results } );
   ASSERT_EQ( real.exitCode, 0 ) << real.err;
   std::string const header = Support::contentOf( results );
   std::ofstream( results ) << header.substr( 0, header.find( '\n' ) + 1 )
                            << R"({"branch":[60000],"isWhole":false,"sequences":1,"standFor":1,)"
                               R"("without":0,"frames":0,"unnamed":0,"found":[]})"
                               "\n";
   Ran const ran = Support::vornal( { "explore", "merge", exploration, results, "--length", "1" } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err, results +
                          ": this file of results is damaged (the exploration has no event "
                          "60000); name another file\n" );
}

// A scenario can name any file as the one that it is based on.
TEST_F( HostileFiles, AreNotQuotedWhenTheyAreNoScenarios ) {
   directory.file( "secrets", "password: hunter2\nhunter3: 1\n" );
   std::string const based = directory.file( "based.yaml", "scenario: based\nbased-on: secrets\n" );
   std::string const taking =
      directory.file( "taking.yaml",
                      "exploration: taking\nbased-on: leaf.yaml\nlength: 1\nevents-of: secrets\n" );
   Ran const check = Support::vornal( { "check", based } );
   EXPECT_EQ( check.exitCode, 2 );
   EXPECT_TRUE( Support::contains( check.out,
                                   based +
                                      ":2: based-on is 'secrets', which has no word 'scenario', so "
                                      "it is none; name the file of a whole scenario" ) )
      << check.out;
   Ran const explore = Support::vornal( { "explore", taking } );
   EXPECT_EQ( explore.exitCode, 2 );
   EXPECT_EQ( explore.err, taking +
                              ":4: events-of is 'secrets', which has no word 'exploration', so "
                              "it is none; name the file of an exploration\n" );
   for ( Ran const & ran : { check, explore } ) {
      EXPECT_FALSE( Support::contains( ran.out + ran.err, "hunter" ) ) << ran.out << ran.err;
   }
}

// The shell ends a program that takes longer than ten seconds of the processor.
TEST_F( HostileFiles, EndAtTheThousandthOfTheirUnknownWords ) {
   std::string text = "scenario: many\nswitch:\n";
   for ( int n = 0; n < 200'000; ++n ) {
      text += "  k" + std::to_string( n ) + ": 1\n";
   }
   auto const ran = Support::vornal( { "check", directory.file( "many.yaml", text ) } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_TRUE( Support::contains( ran.out, "1000 mistakes" ) );
}

}  // namespace
