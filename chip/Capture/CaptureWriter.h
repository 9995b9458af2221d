// Frames into a capture file (pcap with nanoseconds), one after the other.
//
// Frames are buffered. After flush() they are in the file, whatever becomes of this process.
// The destructor writes the rest without a word.
//
// Failures: Quelm::Error, which names the file, when it cannot be created, does not take what it is
// given, or is given a time that its form has no room for. Nothing is written after that, and the
// file ends where it was flushed last.
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
   // Replaces an existing file.
   explicit CaptureWriter( std::filesystem::path file );

   std::filesystem::path const & file() const { return file_; }
   // `timestamp` is since 1970.
   void write( std::chrono::nanoseconds timestamp, Bytes frame );
   void flush();

 private:
   struct Close {
      void operator()( pcap * handle ) const;
      void operator()( pcap_dumper * dumper ) const;
   };

   [[noreturn]] void fail( int reason );

   std::filesystem::path file_;
   std::unique_ptr< pcap, Close > handle_;
   std::unique_ptr< pcap_dumper, Close > dumper_;  // none after a failure
   std::uintmax_t written_ = 0;                    // in bytes
   std::uintmax_t flushed_ = 0;                    // of these
};

}  // namespace Chip
