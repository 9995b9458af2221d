// Frames from a capture file (pcap or pcapng, as libpcap reads them), one after the other.
//
//    Chip::CaptureReader capture( "fabric-v4.pcap" );
//    while ( auto const frame = capture.next() ) {
//       pipeline.forward( arrival, frame->bytes, transmitter );
//    }
//
// Failures: Quelm::Error, which names the file and the frame, for a file that cannot be read, is no
// capture or one of something else than Ethernet, ends within a frame, or holds frames of which
// only the beginning was captured or whose time is beyond that of nanoseconds in 64 bits. The
// frames before it have been given by then.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>

#include <Frames/Bytes.h>

struct pcap;
struct pcap_pkthdr;

namespace Chip {

struct CapturedFrame {
   U64 number = 0;                        // from 1
   std::chrono::nanoseconds timestamp{};  // since 1970
   Bytes bytes{};                         // valid until the next frame is read
};

class CaptureReader {
 public:
   explicit CaptureReader( std::filesystem::path file );

   // The next frame; none at the end of the file.
   std::optional< CapturedFrame > next();

 private:
   struct Close {
      void operator()( pcap * handle ) const;
   };

   std::chrono::nanoseconds timeOf( pcap_pkthdr const & header ) const;
   [[noreturn]] void refuse( std::string const & reason ) const;

   std::filesystem::path file_;
   std::unique_ptr< pcap, Close > handle_;
   U64 number_ = 0;
};

}  // namespace Chip
