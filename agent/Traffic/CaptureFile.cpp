#include <Traffic/CaptureFile.h>

#include <Quelm/Error.h>

namespace Traffic {

Chip::CaptureReader openedCapture( std::filesystem::path const & file ) {
   try {
      return Chip::CaptureReader( file );
   } catch ( Quelm::Error const & error ) {
      throw Quelm::Error( std::string( error.what() ) +
                          "; give a pcap or pcapng file of Ethernet frames" );
   }
}

U64 framesIn( std::filesystem::path const & file ) {
   Chip::CaptureReader reader = openedCapture( file );
   U64 frames = 0;
   while ( reader.next() ) {
      ++frames;
   }
   return frames;
}

}  // namespace Traffic
