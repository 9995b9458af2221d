// How a scenario reaches the reader: files, pipes, and what is neither.
#include <Scenario/File.h>

#include <array>
#include <fstream>
#include <thread>

#include <gtest/gtest.h>

#include <ScenarioTexts.h>
#include <Steps/Reader.h>
#include <Support.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

class ScenarioFile : public testing::Test {
 protected:
   // What is said of that file, with the folder of the test left out.
   std::string problems( fs::path const & name ) const {
      try {
         Scenario::textIn( folder.path() / name, std::chrono::milliseconds( 0 ) );
      } catch ( Scenario::ReadError const & error ) {
         std::string text = error.what();
         std::string const prefix = folder.path().string() + '/';
         for ( auto at = text.find( prefix ); at != std::string::npos; at = text.find( prefix ) ) {
            text.erase( at, prefix.size() );
         }
         return text;
      }
      return {};
   }

   Support::Directory folder;
};

std::string const kExample = "; name a scenario's file, as in scenarios/start-up/scenario.yaml";

TEST_F( ScenarioFile, ThatIsNotThereHasNoLine ) {
   EXPECT_EQ( problems( "leaf.yaml" ), "leaf.yaml: there is no such file" + kExample );
}

TEST_F( ScenarioFile, BelowAFileIsToldFromOneThatIsNotThere ) {
   folder.file( "leaf.yaml", "scenario: a\n" );
   EXPECT_EQ( problems( "leaf.yaml/x.yaml" ),
              "leaf.yaml/x.yaml: a part of this path is a file and no directory" + kExample );
}

TEST_F( ScenarioFile, ThatIsADirectoryIsNamedWithTheScenarioInIt ) {
   fs::create_directory( folder.path() / "leaf" );
   EXPECT_EQ( problems( "leaf" ),
              "leaf: this is a directory; name the scenario's file, as in "
              "scenarios/start-up/scenario.yaml" );
   folder.file( "leaf/scenario.yaml", "scenario: a\n" );
   EXPECT_EQ( problems( "leaf" ), "leaf: this is a directory; did you mean 'leaf/scenario.yaml'?" );
}

TEST_F( ScenarioFile, ThatIsEmptySaysSo ) {
   folder.file( "leaf.yaml", "" );
   EXPECT_EQ( problems( "leaf.yaml" ),
              "leaf.yaml: the file is empty; a scenario is expected, as in "
              "scenarios/start-up/scenario.yaml" );
}

TEST_F( ScenarioFile, ThatLinksLeadToInACircleSaysSo ) {
   fs::create_symlink( "b.yaml", folder.path() / "a.yaml" );
   fs::create_symlink( "a.yaml", folder.path() / "b.yaml" );
   EXPECT_EQ( problems( "a.yaml" ),
              "a.yaml: symbolic links lead in a circle here; name the file itself" );
}

TEST_F( ScenarioFile, ThatMayNotBeReadSaysSo ) {
   EXPECT_EQ( Scenario::whyUnreadable( "leaf.yaml", EACCES ).text(),
              "leaf.yaml: you may not read the file; ask for the right to read it, or copy it" );
   EXPECT_EQ( Scenario::whyUnreadable( "leaf.yaml", EIO ).text(),
              "leaf.yaml: the file cannot be read (Input/output error)" + kExample );
}

TEST_F( ScenarioFile, ThatHasALongNameSaysSo ) {
   EXPECT_NE( problems( std::string( 5000, 'x' ) ).find( "cannot be read (File name too long)" ),
              std::string::npos );
}

TEST_F( ScenarioFile, WithoutEndIsNotTakenInWhole ) {
   EXPECT_EQ( problems( "/dev/zero" ),
              "/dev/zero: this is longer than the 16 MiB that a scenario may have" + kExample );
}

TEST_F( ScenarioFile, IsNotTheRecordOfARun ) {
   folder.file( "run.record", "\x50\x2a\x4d\x18 and more" );
   try {
      Steps::readScenario( folder.path() / "run.record" );
      FAIL() << "no mistake";
   } catch ( Scenario::ReadError const & error ) {
      EXPECT_EQ( error.problems().front().message,
                 "this is the record of a run and no scenario; name its file to replay, show, "
                 "explain, diff, verify, dump or shrink" );
   }
}

TEST_F( ScenarioFile, CanBeANamedPipe ) {
   fs::path const pipe = folder.path() / "pipe";
   ASSERT_EQ( mkfifo( pipe.c_str(), 0600 ), 0 );
   std::thread writer( [ & ] { std::ofstream( pipe ) << "scenario: a\n"; } );
   EXPECT_EQ( Scenario::textIn( pipe, std::chrono::minutes( 1 ) ), "scenario: a\n" );
   writer.join();
}

TEST_F( ScenarioFile, ThatIsAPipeWithoutWriterIsNotWaitedForForEver ) {
   ASSERT_EQ( mkfifo( ( folder.path() / "pipe" ).c_str(), 0600 ), 0 );
   EXPECT_EQ( problems( "pipe" ),
              "pipe: nobody writes into this pipe; write the scenario into it while the program "
              "reads" );
}

TEST_F( ScenarioFile, CanBeAnOpenPipe ) {
   std::array< int, 2 > ends{};
   ASSERT_EQ( pipe( ends.data() ), 0 );
   std::string const text = ScenarioTexts::kLeaf;
   ASSERT_EQ( write( ends[ 1 ], text.data(), text.size() ), ssize_t( text.size() ) );
   close( ends[ 1 ] );
   EXPECT_EQ( Scenario::textOf( ends[ 0 ], "standard input" ), text );
   close( ends[ 0 ] );
}

TEST_F( ScenarioFile, BeginsWithAByteOrderMarkOrNot ) {
   fs::path const file = folder.file( "leaf.yaml", "\xef\xbb\xbf" + ScenarioTexts::kLeaf );
   EXPECT_EQ( Steps::readScenario( file ).name, "two leaves" );
}

}  // namespace
