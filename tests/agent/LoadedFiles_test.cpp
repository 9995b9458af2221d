// The program runs its own libraries, whatever stands in the current folder.
#include <cstdlib>

#include <gtest/gtest.h>

#include <Support.h>
#include <Switches.h>

#include <sys/wait.h>

namespace {

using Support::Ran;

class LoadedFiles : public testing::Test {
 protected:
   // Runs `vornal WORDS` in the test's own folder.
   Ran inFolder( std::string const & words, std::string const & before = "" ) const {
      std::string const folder = directory.path();
      std::string const command = "cd '" + folder + "' && " + before +
                                  " " VORNAL_BINARY_DIR "/vornal " + words + " > out 2> err";
      int const status = std::system( command.c_str() );
      return { WIFEXITED( status ) ? WEXITSTATUS( status ) : -1,
               Support::contentOf( directory.path() / "out" ),
               Support::contentOf( directory.path() / "err" ) };
   }

   Support::Directory directory;
};

// The loader refuses a library that is none, so a file of its name shows that it looks there.
TEST_F( LoadedFiles, AreNotTakenFromTheCurrentFolder ) {
   for ( char const * const library :
         { "libVornalPlatform.so", "libVornalHardwareAccess.so", "libpcap.so.0.8", "libfmt.so.9",
           "libzstd.so.1", "libedit.so.2", "libyaml-cpp.so.0.7", "libstdc++.so.6", "libc.so.6" } ) {
      directory.file( library, "no library" );
   }
   Ran const ran = inFolder( "--version" );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   directory.file( "leaf.yaml", Switches::leaf( "   - ready: subagents::l2Ready\n" ) );
   EXPECT_EQ( inFolder( "run leaf.yaml" ).exitCode, 0 ) << ran.err;
}

}  // namespace
