#include <Capture/PortCaptures.h>

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

}  // namespace Chip
