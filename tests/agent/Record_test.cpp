// The record of a run: what is written is read back, up to its end or to a damage.
#include <Record/Header.h>
#include <Record/Reader.h>
#include <Record/Writer.h>

#include <gtest/gtest.h>

#include <OneOfEach.h>
#include <Stories.h>
#include <Story/Codec.h>
#include <Story/InputError.h>
#include <Support.h>

namespace {

namespace fs = std::filesystem;
using Items = std::vector< std::string >;

Record::Setup const kSetup{
   "1.0", "/home/leaf", "leaf.yaml", { { "--then", "note: x" } }, 7, 8, { { "VornalEvpn*", "0-5" } }
};

std::string bytesOf( Record::Item const & item ) {
   std::string bytes;
   Record::write( bytes, item );
   return bytes;
}

class RecordOfARun : public testing::Test {
 protected:
   // Writes a record with one file, and these steps of the story.
   Items write( std::vector< std::vector< Story::Event > > const & steps ) {
      Items written;
      Record::Writer writer( file, kSetup );
      writer.add( { "leaf.yaml", "scenario: leaf\n" } );
      writer.inputsEnd();
      written = { bytesOf( kSetup ), bytesOf( Record::FilePart{ "leaf.yaml", "scenario: leaf\n" } ),
                  bytesOf( Record::InputsEnd() ) };
      for ( auto const & step : steps ) {
         for ( Story::Event const & event : step ) {
            writer.onEvent( event );
            written.push_back( bytesOf( event ) );
         }
      }
      return written;
   }

   // The items up to the end or to a damage, and why no more of them can be read.
   struct Read {
      Items items;
      bool isRefused = false;
      bool isComplete = false;
      std::string cutText;
   };
   Read read( fs::path const & from ) const {
      try {
         Record::Reader reader( from );
         Items items;
         while ( auto const item = reader.next() ) {
            items.push_back( bytesOf( *item ) );
         }
         return { items, false, reader.isComplete(), reader.cutText() };
      } catch ( Story::InputError const & error ) {
         return { {}, true, false, error.what() };
      }
   }
   Read read() const { return read( file ); }
   Read readBytes( std::string const & bytes ) const {
      return read( directory.file( "damaged", bytes ) );
   }

   static bool isBeginningOf( Items const & few, Items const & all ) {
      return few.size() <= all.size() && std::equal( few.begin(), few.end(), all.begin() );
   }

   Support::Directory directory;
   fs::path const file = directory.path() / "record";
};

std::vector< Story::Event > lastStep() {
   return { Stories::step( 2, "the last" ), Story::StepEnds{ 2 }, Story::RunEnds{ 5 } };
}

TEST_F( RecordOfARun, HoldsItsInputsAndEveryEvent ) {
   Items const written = write( { OneOfEach::events(), lastStep() } );
   Read const found = read();

   EXPECT_EQ( found.items, written );
   EXPECT_TRUE( found.isComplete );
}

TEST_F( RecordOfARun, HoldsAStepAsSoonAsItHasEnded ) {
   Record::Writer writer( file, kSetup );
   writer.inputsEnd();
   Stories::tell( writer, Stories::startUp() );
   writer.onEvent( Stories::step( 1 ) );

   Read const found = read();
   EXPECT_EQ( found.items.size(), 2 + Stories::startUp().size() );
   EXPECT_FALSE( found.isComplete );
   EXPECT_EQ( found.cutText, "after start-up" );
}

TEST_F( RecordOfARun, CanBeReadByOthersAsOneZstdStream ) {
   Items const written = write( { Stories::startUp(), lastStep() } );
   fs::path const out = directory.path() / "out";
   std::string const command = "zstdcat < '" + file.string() + "' > '" + out.string() + "'";
   ASSERT_EQ( std::system( command.c_str() ), 0 );

   std::string all;
   for ( std::string const & item : written ) {
      all += item;
   }
   EXPECT_EQ( Support::contentOf( out ), all );
}

// --- Damage

TEST_F( RecordOfARun, IsReadUpToTheBlockInWhichItIsCut ) {
   write( { Stories::startUp() } );
   auto const begin = fs::file_size( file );
   Items const all = write( { Stories::startUp(), Stories::readyStep(), lastStep() } );
   std::string const bytes = Support::contentOf( file );
   for ( std::size_t size = begin; size < bytes.size(); ++size ) {
      SCOPED_TRACE( size );
      Read const found = readBytes( bytes.substr( 0, size ) );
      EXPECT_TRUE( isBeginningOf( found.items, all ) );
      EXPECT_GE( found.items.size(), 3 + Stories::startUp().size() );
      EXPECT_LT( found.items.size(), all.size() );
      EXPECT_FALSE( found.isComplete );
      EXPECT_TRUE( found.cutText.starts_with( "after " ) ) << found.cutText;
   }
}

TEST_F( RecordOfARun, NamesThePlaceOfADamageAndTheStepBefore ) {
   write( { Stories::startUp(), Stories::readyStep() } );
   auto const size = fs::file_size( file );
   write( { Stories::startUp(), Stories::readyStep(), lastStep() } );
   std::string bytes = Support::contentOf( file );
   bytes[ size + 12 ] = static_cast< char >( bytes[ size + 12 ] ^ 1 );

   std::string const text = readBytes( bytes ).cutText;
   EXPECT_TRUE(
      text.starts_with( "after step 1; byte " + std::to_string( size ) + " of the file: " ) )
      << text;
   EXPECT_EQ( readBytes( bytes.substr( 0, size + 12 ) ).cutText,
              "after step 1; byte " + std::to_string( size ) +
                 " of the file: the file ends in a block" );
}

TEST_F( RecordOfARun, GivesNoWrongEventWhicheverBitIsWrong ) {
   Items const all = write( { Stories::readyStep(), lastStep() } );
   std::string const bytes = Support::contentOf( file );
   std::size_t cut = 0;
   for ( std::size_t n = 0; n < bytes.size(); ++n ) {
      for ( unsigned bit = 0; bit < 8; ++bit ) {
         std::string damaged = bytes;
         damaged[ n ] = static_cast< char >( damaged[ n ] ^ ( 1 << bit ) );
         Read const found = readBytes( damaged );
         ASSERT_TRUE( isBeginningOf( found.items, all ) ) << n << " bit " << bit;
         ASSERT_TRUE( found.isComplete || found.isRefused ||
                      found.cutText.find( "byte" ) != std::string::npos )
            << n << " bit " << bit << ": " << found.cutText;
         cut += found.isComplete ? 0 : 1;
      }
   }
   EXPECT_GT( cut, bytes.size() * 7 );
}

// --- Its version

// Version 1.0 is this layout and no other, so that programs of one version read each other's
// records.
TEST_F( RecordOfARun, HasALayoutThatBelongsToItsVersion ) {
   struct Pinned {
      U16 major;
      U16 minor;
      U64 fingerprint;
   };
   constexpr Pinned kPinned{ 1, 0, 10003233770998085001U };
   std::string const remedy =
      "a field of an item or an event is another one: raise kMinor in agent/Record/Header.h and "
      "the "
      "version in docs/compatibility.md, and pin the new version with its fingerprint here";
   EXPECT_EQ( Record::layoutFingerprint(), kPinned.fingerprint ) << remedy;
   EXPECT_EQ( Record::kMajor, kPinned.major ) << remedy;
   EXPECT_EQ( Record::kMinor, kPinned.minor ) << remedy;
}

TEST_F( RecordOfARun, BeginsWithItsVersion ) {
   write( { lastStep() } );
   constexpr std::size_t kPlace = 16;  // behind the beginning of the frame and the mark
   EXPECT_EQ( Support::contentOf( file ).substr( kPlace, 4 ), std::string( "\1\0\0\0", 4 ) );
}

TEST_F( RecordOfARun, SaysThatItIsOfAnotherVersion ) {
   write( { lastStep() } );
   std::string const bytes = Support::contentOf( file );
   // The lowest bytes of MAJOR and MINOR, and the highest of the fingerprint.
   for ( std::size_t const place :
         { std::size_t{ 16 }, std::size_t{ 18 }, Record::kHeaderSize - 1 } ) {
      std::string other = bytes;
      other[ place ] = static_cast< char >( other[ place ] ^ 1 );
      EXPECT_NE( readBytes( other ).cutText.find( "another version" ), std::string::npos ) << place;
   }
}

TEST_F( RecordOfARun, IsNoneWhenItHoldsSomethingElse ) {
   for ( std::string const & other :
         { std::string(), std::string( "scenario: leaf\n" ), std::string( 100, '\x28' ) } ) {
      Read const found = readBytes( other );
      EXPECT_TRUE( found.isRefused );
      EXPECT_NE( found.cutText.find( "this is no record of a run" ), std::string::npos );
   }
   EXPECT_TRUE( read( directory.path() / "nowhere" ).isRefused );
   EXPECT_TRUE( read( directory.path() ).isRefused );
}

// --- Its file

std::string refusal( fs::path const & file ) {
   try {
      Record::FileWriter const writer( file );
      return "";
   } catch ( std::runtime_error const & error ) {
      return error.what();
   }
}

TEST_F( RecordOfARun, TakesTheFileOfAnEarlierOneOrAnEmptyOne ) {
   write( { Stories::startUp() } );
   EXPECT_EQ( refusal( file ), "" );
   EXPECT_EQ( refusal( directory.file( "empty", "" ) ), "" );
   Record::FileWriter( file ).add( "" );
   EXPECT_LT( fs::file_size( file ), Record::kHeaderSize + 20 );
}

TEST_F( RecordOfARun, LeavesTheFileAsItWasUntilItHasABlock ) {
   write( { Stories::startUp() } );
   std::string const before = Support::contentOf( file );
   fs::path const other = directory.file( "empty", "" );
   fs::path const none = directory.path() / "none";
   for ( fs::path const & one : { file, other, none } ) {
      Record::FileWriter const writer( one );
   }
   EXPECT_EQ( Support::contentOf( file ), before );
   EXPECT_TRUE( fs::exists( other ) );
   EXPECT_FALSE( fs::exists( none ) );
}

TEST_F( RecordOfARun, LeavesEveryOtherFileUnchanged ) {
   fs::path const other = directory.file( "leaf.yaml", "scenario: leaf\n" );
   EXPECT_EQ( refusal( other ), "--record: " + other.string() +
                                   " holds something else; name a new file, or the record of a run "
                                   "that is over" );
   EXPECT_EQ( Support::contentOf( other ), "scenario: leaf\n" );
   EXPECT_NE( refusal( directory.path() ).find( "is no regular file" ), std::string::npos );
   EXPECT_NE( refusal( "/dev/null" ).find( "is no regular file" ), std::string::npos );
   EXPECT_NE( refusal( "/nowhere/record" ).find( "/nowhere/record" ), std::string::npos );
}

TEST_F( RecordOfARun, IsLeftToTheRunThatWritesIt ) {
   Record::FileWriter const writer( file );
   EXPECT_NE( refusal( file ).find( "is the record of a run that goes on" ), std::string::npos );
}

// --- Its size

// A rule as the plug-in programs it, call by call, each followed by the rule as it is then.
void programRule( Record::Writer & writer, U32 entry, U64 & calls ) {
   Chip::Rule rule = Stories::rule( entry, false );
   rule.name = "Mark or drop packets at IFP from vtep IP 10.0." + std::to_string( entry / 250 ) +
               "." + std::to_string( entry % 250 ) + " on shared segments";
   U32 const gport = 0x56000000 + entry;
   rule.content[ Chip::Qualifier::SrcVxlanGport ] = Chip::Match{ gport, 0xffffffff };
   auto const call = [ & ]( char const * operation, char const * text,
                            std::vector< Chip::NamedValue > values ) {
      writer.onEvent( Story::CallMade{ { operation, text, 0, entry, std::move( values ), 0 } } );
      writer.onEvent( Story::RuleIs{ rule } );
      ++calls;
   };
   call( "getEntry", "", { { "group", U32{ 157 } }, { "name", rule.name } } );
   call( "bcm_field_qualify_SrcVxlanGport",
         "bcm_field_qualify_SrcVxlanGport( unit, entryId, gport, 0xffffffff )",
         { { "data", gport }, { "mask", U32{ 0xffffffff } } } );
   call( "bcm_field_qualify_PacketRes",
         "bcm_field_qualify_PacketRes( unit, entryId, BCM_FIELD_PKT_RES_L2UC, 0xff )",
         { { "data", U32{ 4 } }, { "mask", U32{ 0xff } } } );
   call( "addEgressMaskAction", "",
         { { "group", U32{ 157 } }, { "ports", OneOfEach::somePorts() } } );
   call( "setPriorityForEntry", "", { { "group", U32{ 157 } }, { "priority", U32{ 1 } } } );
   rule.isWritten = true;
   call( "installEntry", "", { { "group", U32{ 157 } } } );
}

TEST_F( RecordOfARun, NeedsAtMost32BytesForEachCall ) {
   U64 calls = 0;
   {
      Record::Writer writer( file, kSetup );
      writer.inputsEnd();
      for ( U32 entry = 1; entry <= 5000; ++entry ) {
         programRule( writer, entry, calls );
      }
      writer.onEvent( Story::StepEnds{ 1 } );
   }
   EXPECT_LE( fs::file_size( file ), 32 * calls );
}

}  // namespace
