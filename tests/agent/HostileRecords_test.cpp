// Records that somebody has made: small files that unpack to more than a machine has, paths that
// lead out of the folder of a replay.
#include <cstdlib>

#include <gtest/gtest.h>

#include <Record/File.h>
#include <Record/Items.h>
#include <Support.h>
#include <Switches.h>

namespace {

namespace fs = std::filesystem;
using Support::Ran;

bool has( std::string const & text, std::string const & part ) {
   return text.find( part ) != std::string::npos;
}

std::string bytesOf( std::vector< Record::Item > const & items ) {
   std::string bytes;
   for ( Record::Item const & item : items ) {
      Record::write( bytes, item );
   }
   return bytes;
}

class HostileRecords : public testing::Test {
 protected:
   HostileRecords() {
      fs::create_directory( temporary );
      setenv( "TMPDIR", temporary.c_str(), 1 );
   }
   ~HostileRecords() override { unsetenv( "TMPDIR" ); }

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
      EXPECT_TRUE( has( ran.err, record + ": " + why ) ) << ran.err;
      EXPECT_TRUE( fs::is_empty( temporary ) );
   }

   Support::Directory directory;
   fs::path temporary = directory.path() / "temporary";
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

}  // namespace
