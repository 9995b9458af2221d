// Any bytes at any port are forwarded or dropped: nothing is read past their end, each frame is
// counted once, and what leaves is a frame by a port of the switch. For libFuzzer; fuzz/README.md
// has the command.
//
// The first byte of the input chooses the port of arrival, the rest is the frame.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include <Board/Board.h>
#include <Pipeline/Pipeline.h>

namespace {

using Pelk::IntfId;
using Pelk::IpGenAddr;

void mustHold( bool condition ) {
   if ( !condition ) {
      std::abort();
   }
}

Chip::ForwardingConfig forwarding() {
   Chip::ForwardingConfig config;
   config.vtepIpv4 = IpGenAddr::fromString( "10.0.0.1" );
   config.vtepIpv6 = IpGenAddr::fromString( "2001:db8::1" );
   config.routerMac = Chip::MacAddress( 0x00005e005301 );  // what the captures' hosts send to
   for ( std::uint16_t port = 1; port <= 4; ++port ) {
      config.interfaces.push_back(
         { .intfId = IntfId::fromString( "Ethernet" + std::to_string( port ) ),
           .logicalPort = port } );
   }
   config.interfaces[ 0 ].isUnderlay = true;
   config.interfaces[ 1 ].vlans = { {}, 10 };
   config.interfaces[ 2 ].vlans = { { 10 }, 20 };
   config.portChannels = { { .intfId = IntfId::fromString( "Port-Channel1" ),
                             .members = { config.interfaces[ 3 ].intfId },
                             .vlans = { { 10, 20 }, {} } } };
   config.vlanToVni = { { 10, 10100 } };
   for ( std::uint16_t n = 2; n <= 4; ++n ) {
      for ( std::string const network : { "10.0.0.", "2001:db8::" } ) {
         IpGenAddr const vtep = IpGenAddr::fromString( network + std::to_string( n ) );
         config.tunnels[ vtep ] = { .vpIndex = n };
         config.floodLists[ 10100 ].push_back( vtep );
      }
   }
   config.hostRoutes = { { IpGenAddr::fromString( "192.0.2.1" ),
                           { 20, Chip::MacAddress( 0x00005e005302 ) } } };
   config.multicastRoutes = { { IpGenAddr::fromString( "239.1.1.1" ), {} } };
   return config;
}

// Reads all that is transmitted.
class Reader final : public Chip::Transmitter {
 public:
   void transmit( VornalTypes::VornalPort port, std::span< std::uint8_t const > frame ) override {
      mustHold( port.unit() == 0 && port.logicalPort() >= 1 && port.logicalPort() <= 4 );
      mustHold( frame.size() >= 14 );
      for ( std::uint8_t const byte : frame ) {
         sum_ = sum_ + byte;
      }
   }

 private:
   unsigned volatile sum_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   static Chip::Board const board( { { { .number = 0, .modId = 0 } } } );
   static Chip::Pipeline pipeline( board.units() );
   static bool const isTold = ( pipeline.forwardingIs( forwarding() ), true );
   if ( size == 0 || !isTold ) {
      return 0;
   }
   Reader reader;
   std::vector< std::uint8_t > const frame( data + 1, data + size );
   std::uint64_t const before = pipeline.counters().frames;
   std::uint16_t const port = data[ 0 ] % 5;
   Chip::FrameStory const & story = pipeline.forward( { 0, port }, frame, reader );
   mustHold( pipeline.counters().frames == before + 1 );
   mustHold( story.dropReason ? story.copies.empty() : story.kind.has_value() );
   return 0;
}
