// The program runs its own libraries, and the plug-in that was named, whatever stands in the
// current folder and wherever the environment leads.
#include <cstdlib>

#include <gtest/gtest.h>

#include <Support.h>
#include <Switches.h>

#include <sys/wait.h>

namespace {

namespace fs = std::filesystem;
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

// A name without a slash is a file of the current folder, and of no other.
TEST_F( LoadedFiles, AreNoPluginFromTheFoldersOfLibraries ) {
   directory.file( "leaf.yaml", Switches::leaf( "   - ready: subagents::l2Ready\n" ) );
   fs::create_directory( directory.path() / "libraries" );
   fs::path const source = Support::testPlugin( "segment-rules" );
   fs::copy_file( source, directory.path() / "libraries/other.so" );
   std::string const before = "LD_LIBRARY_PATH='" + directory.path().string() + "/libraries' ";
   Ran const ran = inFolder( "run leaf.yaml --plugin other.so", before );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err,
              "other.so: there is no such file; --plugin takes the plug-in's shared object\n" );
   fs::copy_file( source, directory.path() / "other.so" );
   directory.file( "libraries/other.so", "no plug-in" );
   EXPECT_EQ( inFolder( "run leaf.yaml --plugin other.so", before ).exitCode, 0 );
}

// The loader would open lib/x86_64-linux-gnu/other.so in place of $LIB/other.so.
TEST_F( LoadedFiles, AreNoPluginBesideTheNamedOne ) {
   directory.file( "leaf.yaml", Switches::leaf( "   - ready: subagents::l2Ready\n" ) );
   for ( std::string const word : { "$LIB", "${LIB}", "$ORIGIN", "${PLATFORM}" } ) {
      fs::create_directory( directory.path() / word );
      fs::copy_file( Support::testPlugin( "segment-rules" ), directory.path() / word / "a.so" );
      Ran const ran = inFolder( "run leaf.yaml --plugin '" + word + "/a.so'" );
      EXPECT_EQ( ran.exitCode, 2 );
      EXPECT_EQ( ran.err, word + "/a.so has '" + word +
                             "' in its path, for which the loader puts another text; name the "
                             "plug-in by a path without it\n" );
   }
   fs::create_directory( directory.path() / "$5" );
   fs::copy_file( Support::testPlugin( "segment-rules" ), directory.path() / "$5/a.so" );
   EXPECT_EQ( inFolder( "run leaf.yaml --plugin '$5/a.so'" ).exitCode, 0 );
}

}  // namespace
