#include <Capture/PortCaptures.h>

#include <regex>

namespace Chip {

void PortCaptures::transmit( VornalTypes::VornalPort port, Bytes frame ) {
   auto writer = writers_.find( port );
   if ( writer == writers_.end() ) {
      writer = writers_.try_emplace( port, fileOf( port ) ).first;
   }
   writer->second.write( time_, frame );
}

void PortCaptures::flush() {
   for ( auto & [ port, writer ] : writers_ ) {
      writer.flush();
   }
}

std::filesystem::path PortCaptures::fileOf( VornalTypes::VornalPort port ) const {
   return folder_ / ( "unit" + std::to_string( port.unit() ) + "-port" +
                      std::to_string( port.logicalPort() ) + ".pcap" );
}

bool PortCaptures::isPortCapture( std::filesystem::path const & file ) {
   static std::regex const form( "unit[0-9]{1,5}-port[0-9]{1,5}\\.pcap" );
   return std::regex_match( file.filename().string(), form );
}

}  // namespace Chip
