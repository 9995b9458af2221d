// Any bytes are a capture, up to its end or to a damage, or are refused with file and message. Its
// frames count from 1, and those that are written into another capture are read from it again. For
// libFuzzer; fuzz/README.md has the command.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include <Capture/CaptureReader.h>
#include <Capture/CaptureWriter.h>
#include <Property.h>
#include <Quelm/Error.h>
#include <Traffic/CaptureFile.h>

#include <stdlib.h>
#include <unistd.h>

namespace {

using Fuzz::mustHold;

struct Frame {
   std::chrono::nanoseconds time;
   std::vector< std::uint8_t > bytes;

   friend bool operator==( Frame const &, Frame const & ) = default;
};

struct Taken {
   std::vector< Frame > frames;
   std::string refusal;  // of the first damage, or of the whole
};

Taken taken( std::string const & path ) {
   Taken result;
   try {
      Chip::CaptureReader reader = Traffic::openedCapture( path );
      while ( auto const frame = reader.next() ) {
         result.frames.push_back(
            { frame->timestamp, { frame->bytes.begin(), frame->bytes.end() } } );
         mustHold( frame->number == result.frames.size(), "frames count from 1" );
      }
   } catch ( Quelm::Error const & error ) {
      result.refusal = error.what();
      mustHold( result.refusal.find( path ) != std::string::npos, "a refusal names the file" );
   }
   return result;
}

std::size_t bytesIn( Taken const & capture ) {
   std::size_t bytes = 0;
   for ( Frame const & frame : capture.frames ) {
      bytes += frame.bytes.size();
   }
   return bytes;
}

void checkCount( std::string const & path, Taken const & capture ) {
   try {
      mustHold( Traffic::framesIn( path ) == capture.frames.size() && capture.refusal.empty(),
                "as many frames are counted as are read" );
   } catch ( Quelm::Error const & ) {
      mustHold( !capture.refusal.empty(), "what can be read can be counted" );
   }
}

// The frames that the form of a pcap file has room for.
bool isWritable( Frame const & frame ) {
   auto const second = std::chrono::floor< std::chrono::seconds >( frame.time ).count();
   return second >= 0 && second <= 0x7fffffff;
}

// A capture is never written through a link, and the path of a file in memory is one.
class FileOnDisk {
 public:
   FileOnDisk() { close( mkstemp( path_.data() ) ); }
   FileOnDisk( FileOnDisk const & ) = delete;
   FileOnDisk & operator=( FileOnDisk const & ) = delete;
   ~FileOnDisk() { unlink( path_.c_str() ); }

   std::string const & path() const { return path_; }

 private:
   std::string path_ = "/tmp/fuzz-capture-XXXXXX";
};

void writeAndRead( Taken capture ) {
   std::erase_if( capture.frames, []( Frame const & frame ) { return !isWritable( frame ); } );
   FileOnDisk const file;
   Chip::CaptureWriter writer( file.path() );
   for ( Frame const & frame : capture.frames ) {
      writer.write( frame.time, frame.bytes );
   }
   writer.flush();
   Taken const again = taken( file.path() );
   mustHold( again.refusal.empty() && again.frames == capture.frames,
             "a capture that was written is read again: " + again.refusal );
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   Fuzz::MemoryFile const file( Fuzz::textOf( data, size ) );
   Taken const capture = taken( file.path() );
   mustHold( bytesIn( capture ) <= size, "no byte of a frame comes from outside the file" );
   checkCount( file.path(), capture );
   writeAndRead( capture );
   return 0;
}
