// Outputs that do not take what the program has to say.
#include <CommandLine/OutputStream.h>

#include <array>
#include <cstdlib>
#include <future>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include <CommandLine/Table.h>
#include <Support.h>
#include <Switches.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::string const ready = "   - ready: subagents::l2Ready\n";

// --- The program

class Outputs : public testing::Test {
 protected:
   Outputs() {
      directory.file( "leaf.yaml", Switches::leaf( ready ) );
      directory.file( "wrong.yaml",
                      Switches::leaf( "   - call: { entity: /plugins/Sample::Mounter, "
                                      "operation: print, arguments: [ '\"x\"' ] }\n" ) );
   }

   // Runs `vornal WORDS` by a shell, which redirects as the words say.
   Support::Ran shell( std::string const & words ) {
      std::string const err = directory.path() / "err";
      std::string const command = "cd '" + directory.path().string() + "' && { " + before +
                                  VORNAL_BINARY_DIR "/vornal " + words + " ; } 2>'" + err + "'";
      int const status = std::system( command.c_str() );
      return { WIFEXITED( status ) ? WEXITSTATUS( status ) : -1, "", Support::contentOf( err ) };
   }

   std::string const plugin =
      " --plugin '" + Support::testPlugin( "segment-rules" ).string() + "' ";
   Support::Directory directory;
   std::string before;  // commands of the shell before the program
};

// Every command, in each form of its output: its name, and the words behind it.
std::multimap< std::string, std::string > printing( std::string const & plugin ) {
   std::string const frames = VORNAL_SOURCE_DIR "/scenarios/two-leaves/scenario.yaml";
   std::string const exploration = VORNAL_SOURCE_DIR "/explorations/start.yaml";
   return { { "run", "leaf.yaml" + plugin },
            { "run", "--json leaf.yaml" + plugin },
            { "run", "--events leaf.yaml" + plugin },
            { "run", "--help" },
            { "show", "leaf.yaml entities" + plugin },
            { "show", "--json leaf.yaml entities" + plugin },
            { "explain", frames + " 17" },
            { "explain", "--json " + frames + " 17" },
            { "diff", "leaf.yaml --after 1 --against 0" + plugin },
            { "diff", "--json leaf.yaml --after 1 --against 0" + plugin },
            { "verify", "leaf.yaml" + plugin },
            { "verify", "--json leaf.yaml" + plugin },
            { "test", "leaf.yaml" + plugin },
            { "dump", "leaf.yaml" + plugin },
            { "shrink", "failing.yaml" + plugin },
            { "explore", exploration + " --length 1" },
            { "explore", "--json " + exploration + " --length 1" },
            { "check", "leaf.yaml" },
            { "check", "--json leaf.yaml" },
            { "shell", "leaf.yaml <questions" + plugin },
            { "replay", "record" + plugin },
            { "replay", "--json record" + plugin },
            { "ring", "ring" },
            { "ring", "--json ring" },
            { "ring", "--follow ring" },
            { "schema", "" },
            { "help", "" },
            { "completion", "bash" },
            { "manual", "" },
            { "", "--help" },
            { "", "--version" } };
}

TEST_F( Outputs, AFullDiskIsToldByEveryCommandAndEndsItWith2 ) {
   directory.file( "failing.yaml",
                   Switches::leaf( ready + "   - expect: { plug-in: waiting }\n" ) );
   directory.file( "questions", "show rules\n" );
   ASSERT_EQ( shell( "run leaf.yaml --ring ring --record record >/dev/null" + plugin ).exitCode,
              0 );
   std::set< std::string_view > tried;
   auto const all = printing( plugin );
   for ( auto const & [ command, words ] : all ) {
      auto const ran = shell( command + ' ' + words + " >/dev/full" );

      EXPECT_EQ( ran.exitCode, 2 ) << command << ' ' << words;
      EXPECT_EQ( ran.err,
                 "cannot write standard output (/dev/full): No space left on device; its content "
                 "is not complete\n" )
         << command << ' ' << words;
      tried.insert( command );
   }
   for ( CommandLine::Row const & row : CommandLine::table() ) {
      EXPECT_TRUE( tried.contains( row.name ) ) << row.name;
   }
}

TEST_F( Outputs, StandardErrorThatIsFullEndsItWith2 ) {
   EXPECT_EQ( shell( "run --json wrong.yaml >/dev/null" + plugin ).exitCode, 0 );
   EXPECT_EQ( shell( "run --json wrong.yaml >/dev/null 2>/dev/full" + plugin ).exitCode, 2 );
}

TEST_F( Outputs, ALimitOnTheSizeOfFilesIsAnErrorOfTheFile ) {
   before = "ulimit -f 0; ";
   auto const ran = shell( "run leaf.yaml 2>/dev/null >story" + plugin );

   EXPECT_EQ( ran.exitCode, 2 );
}

TEST_F( Outputs, ARingThatHasNoRoomLeavesNoFileBehindThatWasNotThere ) {
   before = "ulimit -f 8; ";
   directory.file( "empty", "" );
   auto const ran = shell( "run leaf.yaml --ring ring >story" + plugin );

   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_TRUE( Support::contains( ran.err, "cannot write the trace ring ring: " ) ) << ran.err;
   EXPECT_FALSE( std::filesystem::exists( directory.path() / "ring" ) );

   EXPECT_EQ( shell( "run leaf.yaml --ring empty >story" + plugin ).exitCode, 2 );
   EXPECT_TRUE( std::filesystem::exists( directory.path() / "empty" ) ) << "somebody else's";
   EXPECT_EQ( std::filesystem::file_size( directory.path() / "empty" ), 0U );
}

// --- The stream

TEST( OutputStream, TakesEverythingBeforeItIsFlushed ) {
   Support::Directory const directory;
   std::string const file = directory.path() / "out";
   int const fd = open( file.c_str(), O_WRONLY | O_CREAT, 0600 );
   CommandLine::OutputStream out( fd, "standard output" );
   std::string const much( 300000, 'x' );
   out << much << 7 << '\n';
   out.flush();
   close( fd );

   EXPECT_EQ( Support::contentOf( file ), much + "7\n" );
}

TEST( OutputStream, NamesWhatCannotBeWrittenAsSoonAsItIsFlushed ) {
   CommandLine::OutputStream out( -1, "standard output" );
   out << "a line\n";
   try {
      out.flush();
      FAIL() << "a closed descriptor was written";
   } catch ( CommandLine::OutputError const & error ) {
      EXPECT_TRUE(
         Support::contains( error.what(), "cannot write standard output: Bad file descriptor" ) )
         << error.what();
   }
}

TEST( OutputStream, TellsWhileALongTextGoesOn ) {
   int const fd = open( "/dev/full", O_WRONLY );
   CommandLine::OutputStream out( fd, "standard output" );
   EXPECT_THROW( out << std::string( 300000, 'x' ), CommandLine::OutputError );
   close( fd );
}

TEST( OutputStream, WaitsForASlowReaderThatItIsToldNotToWaitFor ) {
   std::array< int, 2 > ends{};
   ASSERT_EQ( pipe2( ends.data(), O_NONBLOCK ), 0 );
   std::size_t const much = 1000000;
   auto writing = std::async( std::launch::async, [ & ] {
      CommandLine::OutputStream out( ends[ 1 ], "standard output" );
      out << std::string( much, 'x' );
      out.flush();
      close( ends[ 1 ] );
   } );
   std::size_t read = 0;
   std::array< char, 1000 > some{};
   ssize_t size = 0;
   while ( ( size = ::read( ends[ 0 ], some.data(), some.size() ) ) != 0 ) {
      read += size > 0 ? static_cast< std::size_t >( size ) : 0;
   }
   writing.get();
   close( ends[ 0 ] );

   EXPECT_EQ( read, much );
}

}  // namespace
