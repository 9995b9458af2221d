// leaf1 with all 256 entries of both groups used, and frames that arrive at it through tunnels.
#pragma once

#include <string>

#include <Frames/FrameFields.h>
#include <Pipeline/Pipeline.h>
#include <support/ProgrammedChip.h>

namespace Bench {

using Pelk::IntfId;
using Pelk::IpGenAddr;

inline constexpr U32 kRules = 256;
inline constexpr U16 kPorts = 8;
inline constexpr VornalTypes::VornalPort kUnderlay{ 0, 49 };

inline IpGenAddr vtep( U32 n ) {
   return IpGenAddr::ipv4( { 10, 0, static_cast< U8 >( n >> 8 ), static_cast< U8 >( n ) } );
}

// One unit: an underlay port and eight access ports, VTEPs 10.0.0.2 and up, all 256 entries of both
// groups used. Each VTEP's frames are marked with a class id; port 1 drops them.
class ForwardingLeaf : public ProgrammedChip {
 public:
   ForwardingLeaf() : ProgrammedChip( kRules ) {
      Chip::ForwardingConfig config;
      config.vtepIpv4 = vtep( 1 );
      config.vtepIpv6 = IpGenAddr::fromString( "2001:db8::1" );
      config.vlanToVni = { { 10, 10100 } };
      config.interfaces.push_back(
         { .intfId = IntfId::fromString( "Ethernet49" ), .logicalPort = 49, .isUnderlay = true } );
      for ( U16 port = 1; port <= kPorts; ++port ) {
         config.interfaces.push_back(
            { .intfId = IntfId::fromString( "Ethernet" + std::to_string( port ) ),
              .logicalPort = port,
              .vlans = { {}, 10 } } );
      }
      addExemptions();
      for ( U16 n = 2; n < kRules; ++n ) {
         config.tunnels[ vtep( n ) ] = { .vpIndex = n };
         addClassOfVtep( n );
      }
      U16 const sixth = 1000;
      for ( U16 n = 2; n <= 4; ++n ) {
         std::string const address = "2001:db8::" + std::to_string( n );
         config.tunnels[ IpGenAddr::fromString( address ) ] = { .vpIndex = static_cast< U16 >(
                                                                   sixth + n ) };
      }
      for ( U16 n = 2; n < kRules + 2; ++n ) {
         addDrop( n, 1 );
      }
      pipeline.forwardingIs( config );
   }

   Chip::Pipeline pipeline{ board.units() };
};

// A broadcast from a host behind the n-th VTEP.
inline Chip::FrameFields broadcastFrom( U32 n ) {
   return { .outer = Chip::OuterFields{ .sourceVtep = vtep( n ),
                                        .destinationVtep = vtep( 1 ),
                                        .vni = 10100 },
            .source = Chip::MacAddress( 0x00005e005300 + n ),
            .content = Chip::FrameContent::Udp,
            .sourceIp = IpGenAddr::fromString( "192.0.2.2" ),
            .destinationIp = IpGenAddr::fromString( "192.0.2.255" ) };
}

}  // namespace Bench
