// What leaves a switch, as captures: one file for each port that something has left by, named after
// it, as in unit0-port5.pcap.
#pragma once

#include <map>

#include <Capture/CaptureWriter.h>
#include <Pipeline/Pipeline.h>

namespace Chip {

class PortCaptures final : public Transmitter {
 public:
   // The folder exists.
   explicit PortCaptures( std::filesystem::path folder ) : folder_( std::move( folder ) ) {}

   // The time, since 1970, at which frames leave from now on.
   void timeIs( std::chrono::nanoseconds time ) { time_ = time; }
   // Both throw as CaptureWriter does.
   void transmit( VornalTypes::VornalPort port, Bytes frame ) override;
   void flush();

   // The file of that port, whether or not something has left by it.
   std::filesystem::path fileOf( VornalTypes::VornalPort port ) const;
   // Whether a file is named as these are.
   static bool isPortCapture( std::filesystem::path const & file );

 private:
   std::filesystem::path folder_;
   std::chrono::nanoseconds time_{};
   std::map< VornalTypes::VornalPort, CaptureWriter > writers_;
};

}  // namespace Chip
