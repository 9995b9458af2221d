// Captures: what is written is read back, and what is no capture is refused by name and frame.
#include <gtest/gtest.h>

#include <fstream>

#include <Capture/CaptureReader.h>
#include <Capture/PortCaptures.h>
#include <Quelm/Error.h>
#include <Restored.h>

#include <signal.h>

namespace CapturesTest {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using ByteList = std::vector< U8 >;

class Captures : public testing::Test {
 protected:
   Captures()
         : folder( fs::path( testing::TempDir() ) /
                   ( std::string( "captures-" ) +
                     testing::UnitTest::GetInstance()->current_test_info()->name() ) ),
           file( folder / "some.pcap" ) {
      fs::create_directories( folder );
   }
   ~Captures() override { fs::remove_all( folder ); }

   void writeText( std::string const & text ) const {
      std::ofstream( file, std::ios::binary ) << text;
   }
   // Changes one byte of the file.
   void byteIs( std::streamoff at, char value ) const {
      std::fstream stream( file, std::ios::binary | std::ios::in | std::ios::out );
      stream.seekp( at );
      stream.put( value );
   }
   void writeFrames( std::vector< ByteList > const & frames ) const {
      Chip::CaptureWriter writer( file );
      for ( ByteList const & frame : frames ) {
         writer.write( 1700000000s + 5ns, frame );
      }
      writer.flush();
   }
   static std::vector< ByteList > framesOf( fs::path const & path ) {
      std::vector< ByteList > frames;
      Chip::CaptureReader reader( path );
      while ( auto const frame = reader.next() ) {
         EXPECT_EQ( frame->number, frames.size() + 1 );
         frames.emplace_back( frame->bytes.begin(), frame->bytes.end() );
      }
      return frames;
   }
   // Why the file is refused, with its name cut out; empty when it is not.
   std::string refusal() const {
      try {
         framesOf( file );
      } catch ( Quelm::Error const & error ) {
         std::string text = error.what();
         std::size_t const name = text.find( file.string() );
         EXPECT_NE( name, std::string::npos ) << text;
         return text.replace( name, file.string().size(), "FILE" );
      }
      return "";
   }

   fs::path const folder;
   fs::path const file;
};

TEST_F( Captures, GivesBackWhatWasWritten ) {
   std::vector< ByteList > const frames{ ByteList( 60, 1 ), {}, ByteList( 9600, 2 ) };
   writeFrames( frames );
   EXPECT_EQ( framesOf( file ), frames );
}

TEST_F( Captures, KeepsTimesToTheNanosecond ) {
   writeFrames( { ByteList( 60 ) } );
   EXPECT_EQ( Chip::CaptureReader( file ).next()->timestamp, 1700000000s + 5ns );
}

TEST_F( Captures, ReadsRealOnes ) {
   fs::path const captures = VORNAL_SOURCE_DIR "/scenarios/captures";
   EXPECT_EQ( framesOf( captures / "fabric-v4.pcap" ).size(), 119U );
   EXPECT_EQ( framesOf( captures / "fabric-v6.pcap" ).size(), 114U );
}

TEST_F( Captures, RefusesAFileThatIsNotThere ) {
   EXPECT_EQ( refusal(), "capture FILE: No such file or directory" );
}

TEST_F( Captures, RefusesAFolder ) {
   fs::create_directory( file );
   EXPECT_EQ( refusal(), "capture FILE: error reading dump file: Is a directory" );
}

TEST_F( Captures, RefusesAnEmptyFile ) {
   writeText( "" );
   EXPECT_EQ( refusal(),
              "capture FILE: truncated dump file; tried to read 4 file header bytes, only got 0" );
}

TEST_F( Captures, RefusesAFileOfSomethingElse ) {
   writeText( "name: start-up\nvariant: egress-mask\n" );
   EXPECT_EQ( refusal(), "capture FILE: unknown file format" );
}

TEST_F( Captures, RefusesFramesOfSomethingElse ) {
   writeFrames( { ByteList( 60 ) } );
   std::streamoff const linkType = 20;
   byteIs( linkType, 113 );
   EXPECT_EQ( refusal(), "capture FILE: its frames are of link type LINUX_SLL, not Ethernet" );
}

TEST_F( Captures, RefusesAFrameThatTheFileEndsWithin ) {
   writeFrames( { ByteList( 60 ), ByteList( 60 ) } );
   fs::resize_file( file, fs::file_size( file ) - 1 );
   EXPECT_EQ( refusal(),
              "capture FILE: frame 2: truncated dump file; tried to read 60 captured "
              "bytes, only got 59" );
}

TEST_F( Captures, RefusesAFrameThatWasNotCapturedWhole ) {
   writeFrames( { ByteList( 60 ) } );
   std::streamoff const lengthOnTheWire = 24 + 12;
   byteIs( lengthOnTheWire, 100 );
   EXPECT_EQ( refusal(),
              "capture FILE: frame 1: only 60 of its 100 bytes were captured; capture whole "
              "frames" );
}

// A section header, an interface and a packet of pcapng, whose time is in microseconds.
std::string pcapngAt( U64 microseconds ) {
   std::string file;
   auto const add = [ & ]( std::initializer_list< U32 > words ) {
      for ( U32 const word : words ) {
         file.append( reinterpret_cast< char const * >( &word ), sizeof word );
      }
   };
   add( { 0x0a0d0d0a, 28, 0x1a2b3c4d, 1, ~U32{ 0 }, ~U32{ 0 }, 28 } );
   add( { 1, 20, 1, 65535, 20 } );
   add( { 6, 96, 0, static_cast< U32 >( microseconds >> 32U ), static_cast< U32 >( microseconds ),
          64, 64 } );
   file.append( 64, '\0' );
   add( { 96 } );
   return file;
}

TEST_F( Captures, KeepTimesToTheEndOfWhatNanosecondsCanTell ) {
   U64 const microsecond = 1000000;
   U64 const last = 9223372035 * microsecond;
   writeText( pcapngAt( last ) );
   EXPECT_EQ( Chip::CaptureReader( file ).next()->timestamp, 9223372035s );

   for ( U64 const beyond : { last + microsecond, last * 2, ~U64{ 0 } } ) {
      writeText( pcapngAt( beyond ) );
      EXPECT_EQ( refusal(), "capture FILE: frame 1: its time is " +
                               std::to_string( beyond / microsecond ) +
                               " seconds after 1970; times of the years 1678 to 2261 are read" );
   }
}

TEST_F( Captures, RefuseTimesThatAPcapFileHasNoRoomFor ) {
   Chip::CaptureWriter writer( file );
   writer.write( 2147483647s, ByteList( 60 ) );
   for ( auto const time : { 2147483648s, -1s } ) {
      try {
         writer.write( time, ByteList( 60 ) );
         FAIL() << "a time that comes back as another";
      } catch ( Quelm::Error const & error ) {
         EXPECT_EQ( std::string( error.what() ),
                    "capture " + file.string() + ": a frame's time is " +
                       std::to_string( time.count() ) +
                       " seconds after 1970; a pcap file has times of the years 1970 to 2037" );
      }
   }
   writer.flush();
   EXPECT_EQ( Chip::CaptureReader( file ).next()->timestamp, 2147483647s );
}

TEST_F( Captures, RefusesToWriteWhereNothingCanBe ) {
   fs::create_directory( file );
   try {
      Chip::CaptureWriter const writer( file );
      FAIL() << "a folder was written";
   } catch ( Quelm::Error const & error ) {
      EXPECT_EQ( error.what(), "capture " + file.string() + ": Is a directory" );
   }
}

TEST_F( Captures, TellsWhenTheDiskIsFull ) {
   try {
      Chip::CaptureWriter const writer( "/dev/full" );
      FAIL() << "a full disk was written";
   } catch ( Quelm::Error const & error ) {
      EXPECT_EQ( std::string( error.what() ),
                 "capture /dev/full: No space left on device; the frames from there on are not in "
                 "it" );
   }
}

// A limit on the size of files stands in for a disk that fills up.
TEST_F( Captures, EndWithAWholeFrameWhenTheDiskFillsUp ) {
   Restored::RoomInFiles const room( 300 );
   Chip::CaptureWriter writer( file );
   std::string told;
   std::size_t taken = 0;
   while ( told.empty() ) {
      try {
         writer.write( 1s, ByteList( 60 ) );
         writer.flush();
         ++taken;
      } catch ( Quelm::Error const & error ) {
         told = error.what();
      }
   }

   EXPECT_EQ( told, "capture " + file.string() +
                       ": File too large; the frames from there on are not in it" );
   EXPECT_EQ( taken, 3U );
   EXPECT_EQ( framesOf( file ), std::vector( taken, ByteList( 60 ) ) );
}

TEST_F( Captures, HoldWhatWasFlushedWhateverBecomesOfTheProcess ) {
   EXPECT_EXIT(
      {
         Chip::CaptureWriter writer( file );
         writer.write( 1s, ByteList( 60 ) );
         writer.flush();
         raise( SIGKILL );
      },
      testing::KilledBySignal( SIGKILL ), "" );

   EXPECT_EQ( framesOf( file ).size(), 1U );
}

TEST_F( Captures, OfPortsAreFilesOfTheirOwn ) {
   Chip::PortCaptures captures( folder );
   VornalTypes::VornalPort const five( 0, 5 );
   VornalTypes::VornalPort const three( 1, 3, 4 );
   captures.timeIs( 7s );
   captures.transmit( five, ByteList( 60, 1 ) );
   captures.timeIs( 8s );
   captures.transmit( three, ByteList( 60, 2 ) );
   captures.transmit( five, ByteList( 60, 3 ) );
   captures.flush();
   EXPECT_EQ( captures.fileOf( five ), folder / "unit0-port5.pcap" );
   EXPECT_EQ( framesOf( folder / "unit0-port5.pcap" ),
              ( std::vector{ ByteList( 60, 1 ), ByteList( 60, 3 ) } ) );
   EXPECT_EQ( framesOf( folder / "unit1-port3.pcap" ),
              std::vector< ByteList >( { ByteList( 60, 2 ) } ) );
   EXPECT_EQ( Chip::CaptureReader( folder / "unit1-port3.pcap" ).next()->timestamp, 8s );
}

}  // namespace CapturesTest
