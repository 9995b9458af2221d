// Records that somebody has made: small files that unpack to more than a machine has, paths that
// lead out of the folder of a replay; and what a record of a stranger's scenario takes along.
#include <gtest/gtest.h>

#include <Record/File.h>
#include <Record/Items.h>
#include <Restored.h>
#include <Support.h>
#include <Switches.h>

namespace {

namespace fs = std::filesystem;
using Support::Ran;

std::string bytesOf( std::vector< Record::Item > const & items ) {
   std::string bytes;
   for ( Record::Item const & item : items ) {
      Record::write( bytes, item );
   }
   return bytes;
}

class HostileRecords : public testing::Test {
 protected:
   HostileRecords() { fs::create_directory( temporary ); }

   // A record with these blocks behind the setup.
   std::string recordOf( std::vector< std::string > const & blocks ) const {
      std::string const file = directory.path() / "hostile.record";
      Record::FileWriter writer( file );
      writer.add( bytesOf( { Record::Setup{ "0.1.0", "/there", "leaf.yaml", {}, {}, {}, {} } } ) );
      for ( std::string const & block : blocks ) {
         writer.add( block );
      }
      return file;
   }
   std::string wholeInputs() const {
      return bytesOf(
         { Record::FilePart{ "leaf.yaml", Switches::leaf( "   - ready: subagents::l2Ready\n" ) },
           Record::InputsEnd{} } );
   }
   void expectRefused( std::string const & record, std::string const & why,
                       std::string const & command = "replay" ) const {
      std::vector< std::string > words{ command, record };
      if ( command == "show" ) {
         words.emplace_back( "rules" );
      }
      Ran const ran = Support::vornal( words );
      EXPECT_EQ( ran.exitCode, 2 );
      EXPECT_TRUE( Support::contains( ran.err, record + ": " + why ) ) << ran.err;
      EXPECT_TRUE( fs::is_empty( temporary ) );
   }

   Support::Directory directory;
   fs::path temporary = directory.path() / "temporary";
   Restored::Variable place{ "TMPDIR", temporary };
};

constexpr char const * kTooMuch = "its files take more room than the record of a run needs";

TEST_F( HostileRecords, FillNoDisk ) {
   std::vector< Record::Item > parts( 1000,
                                      Record::FilePart{
                                         "a", std::string( std::size_t{ 64 } << 10U, '\0' ) } );
   std::string const block = bytesOf( parts );
   std::string const record = recordOf( { block, block } );
   EXPECT_LT( fs::file_size( record ), std::uintmax_t{ 1 } << 16U );
   expectRefused( record, kTooMuch );
}

TEST_F( HostileRecords, MakeNoFilesWithoutEnd ) {
   std::vector< Record::Item > parts;
   for ( int n = 0; n < 3000; ++n ) {
      std::string folder;
      for ( int depth = 0; depth < 40; ++depth ) {
         folder += "f/";
      }
      parts.emplace_back( Record::FilePart{ folder + std::to_string( n ), "" } );
   }
   expectRefused( recordOf( { bytesOf( parts ) } ), kTooMuch );
}

TEST_F( HostileRecords, HaveNoStepsWithoutEnd ) {
   std::vector< Record::Item > events;
   for ( U32 n = 0; n < 1'000'001; ++n ) {
      events.emplace_back( Story::StepEnds{ n } );
   }
   expectRefused( recordOf( { wholeInputs(), bytesOf( events ) } ),
                  "the record has more than a million steps", "show" );
}

TEST_F( HostileRecords, HaveNoBlockOfManyTimesTheirSize ) {
   std::string const record =
      recordOf( { std::string( Record::FileReader::kLargestBlock + 1, '\0' ) } );
   EXPECT_LT( fs::file_size( record ), std::uintmax_t{ 1 } << 16U );
   expectRefused( record, "the record ends before the run begins" );
   EXPECT_LE( Record::FileReader::kLargestBlock, std::size_t{ 64 } << 20U );
}

// The folder of the replay stands in `temporary`.
TEST_F( HostileRecords, WriteNoFileOutsideOfTheirFolder ) {
   for ( std::string const outside : { "../outside", "../../../../outside", "/outside",
                                       "/tmp/../../outside", "a/../../../outside" } ) {
      std::string const name =
         outside == "/outside" ? ( directory.path() / "outside" ).string() : outside;
      std::string const record =
         recordOf( { bytesOf( { Record::FilePart{ name, "x" } } ), wholeInputs() } );
      Support::vornal( { "replay", record, "--plugin", Support::testPlugin( "segment-rules" ) } );
      EXPECT_FALSE( fs::exists( directory.path() / "outside" ) ) << name;
      EXPECT_FALSE( fs::exists( "/outside" ) ) << name;
      EXPECT_TRUE( fs::is_empty( temporary ) ) << name;
   }
}

// --- Records of a stranger's scenario

class RecordOfAStranger : public testing::Test {
 protected:
   // The content of a record of a run of the scenario.
   std::string itemsOf( std::string const & scenario ) const {
      std::string const record = directory.path() / "run.record";
      Ran const ran = Support::vornal( { "run", scenario, "--record", record, "--plugin",
                                         Support::testPlugin( "segment-rules" ) } );
      EXPECT_TRUE( fs::exists( record ) ) << ran.err;
      std::string items;
      Record::FileReader reader( record );
      while ( auto const block = reader.next() ) {
         items += *block;
      }
      return items;
   }

   Support::Directory directory;
   std::string const ready = "   - ready: subagents::l2Ready\n";
};

TEST_F( RecordOfAStranger, TakesNoFileThatIsNoCapture ) {
   directory.file( "secret", "hunter2 hunter2 hunter2 hunter2" );
   std::string const scenario =
      directory.file( "leaf.yaml",
                      "forwarding:\n"
                      "   vtep-addresses: [ 10.0.0.1 ]\n"
                      "   underlay: [ Ethernet2 ]\n"
                      "   vlans: { 10: 10100 }\n" +
                         Switches::leaf( ready +
                                         "   - frames: { capture: secret, on: Ethernet2 }\n" ) );
   EXPECT_FALSE( Support::contains( itemsOf( scenario ), "hunter2" ) );
   Ran const replayed = Support::vornal( { "replay", directory.path() / "run.record", "--plugin",
                                           Support::testPlugin( "segment-rules" ) } );
   EXPECT_EQ( replayed.exitCode, 0 ) << replayed.out << replayed.err;
}

TEST_F( RecordOfAStranger, TakesFeatureFilesAndNoOtherFileOfTheirFolder ) {
   directory.file( "account.json", R"({ "key": "hunter2" })" );
   directory.file( "Sample.json", R"({ "SampleToggle": true })" );
   directory.file( "secret", R"({ "key": "hunter3" })" );
   fs::create_symlink( "secret", directory.path() / "VornalL3.json" );
   std::string const items = itemsOf( directory.file( "leaf.yaml", Switches::leaf( ready ) ) );
   EXPECT_TRUE( Support::contains( items, "SampleToggle" ) );
   EXPECT_FALSE( Support::contains( items, "hunter" ) );
}

// The run tells of it, and so does the replay.
TEST_F( RecordOfAStranger, TakesADamagedFeatureFileThatThePlugInAsksFor ) {
   directory.file( "VornalL3.json", R"({ "damaged )" );
   EXPECT_TRUE(
      Support::contains( itemsOf( directory.file( "leaf.yaml", Switches::leaf( ready ) ) ),
                         R"({ "damaged )" ) );
}

}  // namespace
