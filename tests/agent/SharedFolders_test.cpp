// In a folder that everybody can write to, another user has put a link, a file or a folder under
// the name of an output. The program writes nowhere through it.
#include <Process/SharedFolder.h>

#include <gtest/gtest.h>

#include <Capture/CaptureWriter.h>
#include <Process/RingMemory.h>
#include <Process/WholeFile.h>
#include <Quelm/Error.h>
#include <Running.h>
#include <Story/InputError.h>
#include <Support.h>
#include <Switches.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using Support::Ran;
using Words = std::vector< std::string >;

constexpr uid_t kOther = 65534;

class SharedFolders : public testing::Test {
 protected:
   SharedFolders() {
      fs::create_directory( shared );
      fs::permissions( shared, fs::perms::all | fs::perms::sticky_bit );
      directory.file( "precious", "precious" );
      scenario =
         directory.file( "leaf.yaml", Switches::leaf( "   - ready: subagents::l2Ready\n" ) );
   }
   void SetUp() override {
      if ( geteuid() != 0 ) {
         GTEST_SKIP() << "only the administrator can make files of another user";
      }
   }

   fs::path linkOfOther( std::string const & name, fs::path const & target ) const {
      fs::create_symlink( target, shared / name );
      EXPECT_EQ( lchown( ( shared / name ).c_str(), kOther, kOther ), 0 );
      return shared / name;
   }
   fs::path fileOfOther( std::string const & name ) const {
      std::ofstream( shared / name ).flush();
      EXPECT_EQ( chown( ( shared / name ).c_str(), kOther, kOther ), 0 );
      return shared / name;
   }
   void expectRefused( Words words, fs::path const & name, std::string const & what ) const {
      words.insert( words.end(), { "--plugin", Support::testPlugin( "segment-rules" ) } );
      Ran const ran = Support::vornal( words );
      EXPECT_EQ( ran.exitCode, 2 ) << words.front();
      EXPECT_EQ( ran.err, words.at( 2 ) + " cannot be written safely: " + name.string() + what +
                             " of another user, in a folder that everybody can write to; name a "
                             "file in a folder of your own\n" );
   }
   // Each command writes its output to the name; the name is the third word.
   std::vector< Words > commandsTo( fs::path const & name ) const {
      return { { "run", "--ring", name, scenario },
               { "run", "--record", name, scenario },
               { "run", "--report", name, scenario },
               { "run", "--pcap-out", name, scenario },
               { "test", "--junit", name, scenario },
               { "dump", "-o", name, scenario, "--force" },
               { "shrink", "-o", name, scenario, "--force" },
               { "explore", "--results", name, exploration },
               { "explore", "--write", name, exploration } };
   }

   Support::Directory directory;
   fs::path shared = directory.path() / "shared";
   std::string scenario;
   std::string exploration = VORNAL_SOURCE_DIR "/explorations/start.yaml";
};

TEST_F( SharedFolders, DoNotLeadAnOutputThroughALinkOfAnotherUser ) {
   fs::path const old = linkOfOther( "old", directory.path() / "precious" );
   fs::path const made = linkOfOther( "made", directory.path() / "made" );
   for ( fs::path const & name : { old, made } ) {
      for ( Words const & words : commandsTo( name ) ) {
         expectRefused( words, name, " is a link" );
      }
   }
   EXPECT_EQ( Support::contentOf( directory.path() / "precious" ), "precious" );
   EXPECT_FALSE( fs::exists( directory.path() / "made" ) );
}

TEST_F( SharedFolders, DoNotLeadAnOutputIntoAFileOfAnotherUser ) {
   fs::path const name = fileOfOther( "file" );
   for ( Words const & words : commandsTo( name ) ) {
      expectRefused( words, name, " is" );
   }
   EXPECT_EQ( Support::contentOf( name ), "" );
}

TEST_F( SharedFolders, DoNotLeadAnOutputThroughAFolderOfAnotherUser ) {
   fs::path const folder = linkOfOther( "folder", directory.path() );
   for ( Words const & words : commandsTo( folder / "made" ) ) {
      expectRefused( words, folder, " is a link" );
   }
   EXPECT_FALSE( fs::exists( directory.path() / "made" ) );
}

// A link that is put there behind the check is not followed.
TEST_F( SharedFolders, HaveTheirFilesOpenedWithoutLinks ) {
   EXPECT_EQ( Process::flagsToOpen( shared / "new" ), O_NOFOLLOW );
   EXPECT_EQ( Process::flagsToOpen( directory.path() / "new" ), 0 );
}

TEST_F( SharedFolders, TakeOutputsOfTheirOwn ) {
   for ( Words words : commandsTo( shared / "own" ) ) {
      if ( words.at( 1 ) == "--write" || words.at( 0 ) == "shrink" ) {
         continue;
      }
      words.insert( words.end(), { "--plugin", words.at( 0 ) == "explore"
                                                  ? Support::plugin()
                                                  : Support::testPlugin( "segment-rules" ) } );
      EXPECT_EQ( Support::vornal( words ).exitCode, 0 ) << words.at( 1 );
      fs::remove_all( shared / "own" );
   }
}

// Outside of such a folder, a link is the user's own business.
TEST( OwnFolders, LeadOutputsThroughLinks ) {
   Support::Directory const directory;
   directory.file( "target", "old" );
   fs::create_symlink( directory.path() / "target", directory.path() / "link" );
   EXPECT_NO_THROW( Process::refuseForeign( directory.path() / "link" ) );
   Process::RingMemory const ring( directory.file( "ring", "" ) );
   EXPECT_THROW( Process::RingMemory( directory.path() / "link" ), Quelm::Error );
}

// The capture of a port is opened without a check of the folder before each.
TEST( OwnFolders, HaveNoCaptureBehindALink ) {
   Support::Directory const directory;
   fs::path const target = directory.file( "precious", "precious" );
   fs::path const link = directory.path() / "unit0-port1.pcap";
   fs::create_symlink( target, link );
   try {
      Chip::CaptureWriter const writer( link );
      FAIL() << "a link was followed";
   } catch ( Quelm::Error const & error ) {
      EXPECT_EQ( error.what(),
                 "capture " + link.string() + ": this is a symbolic link; name another folder" );
   }
   EXPECT_EQ( Support::contentOf( target ), "precious" );
}

// Names that another user could foresee and take: none of them stops a file from being written.
TEST( OwnFolders, HaveNoNameThatStopsAFileThatIsWrittenWhole ) {
   Support::Directory const directory;
   directory.file( ".page." + std::to_string( getpid() ), "taken" );
   EXPECT_NO_THROW( Process::writeWhole( directory.path() / "page", "text" ) );
   EXPECT_EQ( Support::contentOf( directory.path() / "page" ), "text" );
}

}  // namespace
