// Frames into a capture file (pcap with nanoseconds), one after the other.
//
// Failures: Quelm::Error, which names the file, when it cannot be created or written. What is
// written is buffered; close() says whether all of it has reached the file, and the destructor
// closes without a word.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>

#include <Frames/Bytes.h>

struct pcap;
struct pcap_dumper;

namespace Chip {

class CaptureWriter {
 public:
   // Replaces a file that is there.
   explicit CaptureWriter( std::filesystem::path file );

   std::filesystem::path const & file() const { return file_; }
   // `timestamp` is since 1970.
   void write( std::chrono::nanoseconds timestamp, Bytes frame );
   // Nothing is written after it.
   void close();

 private:
   struct Close {
      void operator()( pcap * handle ) const;
      void operator()( pcap_dumper * dumper ) const;
   };

   std::filesystem::path file_;
   std::unique_ptr< pcap, Close > handle_;
   std::unique_ptr< pcap_dumper, Close > dumper_;
};

}  // namespace Chip
