// leaf1 as its pipeline's tests know it: two units, hosts in VLAN 10, two remote VTEPs over IPv4
// and one over IPv6.
//
//    unit 0 (module 0)   Ethernet1: port 1, VLAN 10 untagged
//                        Ethernet2: port 2, VLAN 10 tagged, VLAN 20 untagged
//                        Ethernet49: port 49, underlay
//    unit 1 (module 4)   Ethernet3: port 3, VLAN 10 untagged
//    both                Port-Channel1: Ethernet4 (unit 0 port 4), Ethernet5 (unit 1 port 5),
//                        VLAN 10 tagged
//    VLAN 10 is VNI 10100, VLAN 20 is VNI 10200
#pragma once

#include <gtest/gtest.h>

#include <Frames/FrameFields.h>
#include <Pipeline/Pipeline.h>

#include "../TwoUnitSwitch.h"

namespace PipelineTest {

using Chip::Copy;
using Chip::DropReason;
using Chip::FrameContent;
using Chip::FrameFields;
using Chip::FrameKind;
using Chip::FrameStory;
using Chip::MacAddress;
using Chip::Verdict;
using ChipTest::kEfp;
using ChipTest::kExact;
using ChipTest::kIfp;
using Pelk::IntfId;
using Pelk::IpGenAddr;
using VornalTypes::VornalPort;

inline IpGenAddr ip( std::string_view text ) {
   return IpGenAddr::fromString( text );
}
inline IntfId intf( std::string_view name ) {
   return IntfId::fromString( name );
}

inline VornalPort const kPort1{ 0, 1, 0 };
inline VornalPort const kPort2{ 0, 2, 0 };
inline VornalPort const kPort3{ 1, 3, 4 };
inline VornalPort const kPort4{ 0, 4, 0 };
inline VornalPort const kPort5{ 1, 5, 4 };
inline VornalPort const kUnderlay{ 0, 49, 0 };

constexpr MacAddress kRouter{ 0x00005e0053fe };
constexpr MacAddress kHost1{ 0x00005e005301 };  // behind leaf1
constexpr MacAddress kHost2{ 0x00005e005302 };  // behind leaf2
constexpr MacAddress kHost3{ 0x00005e005303 };
constexpr MacAddress kNobody{ 0x00005e005377 };
constexpr MacAddress kGroupMac4{ 0x01005e010101 };  // of 239.1.1.1
constexpr MacAddress kGroupMac6{ 0x333300010101 };

inline IpGenAddr const kLeaf1 = ip( "10.0.0.1" );
inline IpGenAddr const kLeaf2 = ip( "10.0.0.2" );
inline IpGenAddr const kLeaf3 = ip( "10.0.0.3" );
inline IpGenAddr const kLeaf1v6 = ip( "2001:db8::1" );
inline IpGenAddr const kLeaf2v6 = ip( "2001:db8::2" );

inline Chip::ForwardingConfig leaf1Config() {
   Chip::ForwardingConfig config;
   config.vtepIpv4 = kLeaf1;
   config.vtepIpv6 = kLeaf1v6;
   config.routerMac = kRouter;
   config.interfaces = {
      { .intfId = intf( "Ethernet1" ), .unit = 0, .logicalPort = 1, .vlans = { {}, 10 } },
      { .intfId = intf( "Ethernet2" ), .unit = 0, .logicalPort = 2, .vlans = { { 10 }, 20 } },
      { .intfId = intf( "Ethernet3" ), .unit = 1, .logicalPort = 3, .vlans = { {}, 10 } },
      { .intfId = intf( "Ethernet4" ), .unit = 0, .logicalPort = 4 },
      { .intfId = intf( "Ethernet5" ), .unit = 1, .logicalPort = 5 },
      { .intfId = intf( "Ethernet49" ), .unit = 0, .logicalPort = 49, .isUnderlay = true },
   };
   config.portChannels = { { .intfId = intf( "Port-Channel1" ),
                             .members = { intf( "Ethernet4" ), intf( "Ethernet5" ) },
                             .vlans = { { 10 }, {} } } };
   config.vlanToVni = { { 10, 10100 }, { 20, 10200 } };
   config.tunnels = { { kLeaf2, { .vpIndex = 2 } },
                      { kLeaf3, { .vpIndex = 3 } },
                      { kLeaf2v6, { .vpIndex = 12 } } };
   config.floodLists = { { 10100, { kLeaf2, kLeaf3 } } };
   return config;
}

// A broadcast of a host behind leaf2, to be changed into what a test needs.
inline FrameFields fromLeaf2() {
   return { .outer =
               Chip::OuterFields{ .sourceVtep = kLeaf2, .destinationVtep = kLeaf1, .vni = 10100 },
            .source = kHost2,
            .content = FrameContent::Udp,
            .sourceIp = ip( "192.0.2.2" ),
            .destinationIp = ip( "192.0.2.255" ) };
}

// A broadcast of host 1, as it comes in at port 1.
inline FrameFields fromHost1() {
   return { .source = kHost1,
            .content = FrameContent::Udp,
            .sourceIp = ip( "192.0.2.1" ),
            .destinationIp = ip( "192.0.2.255" ) };
}

inline FrameFields unicast( FrameFields frame, MacAddress destination, IpGenAddr const & to ) {
   frame.destination = destination;
   frame.destinationIp = to;
   return frame;
}

struct Sent {
   VornalPort port;
   std::vector< U8 > bytes;
};

// Keeps what has left the switch.
class Wire final : public Chip::Transmitter {
 public:
   void transmit( VornalPort port, std::span< U8 const > frame ) override {
      sent.push_back( { port, { frame.begin(), frame.end() } } );
   }
   // The bytes that left by that port, which are those of one frame.
   std::vector< U8 > at( VornalPort port ) const {
      std::vector< U8 > found;
      for ( Sent const & one : sent ) {
         if ( one.port == port ) {
            EXPECT_TRUE( found.empty() ) << "two frames left by " << Quelm::textOf( port );
            found = one.bytes;
         }
      }
      return found;
   }
   // Ports in the order in which something left by them.
   std::vector< VornalPort > ports() const {
      std::vector< VornalPort > result;
      for ( Sent const & one : sent ) {
         result.push_back( one.port );
      }
      return result;
   }

   std::vector< Sent > sent;
};

class Leaf {
 public:
   explicit Leaf( Chip::ForwardingConfig const & config = leaf1Config() )
         : pipeline( chips.board.units() ) {
      pipeline.forwardingIs( config );
   }

   FrameStory forward( VornalPort port, std::vector< U8 > const & bytes ) {
      wire.sent.clear();
      return pipeline.forward( port, bytes, wire );
   }
   // At the port where such a frame would come in: underlay, or port 1.
   FrameStory forward( FrameFields const & frame ) {
      return forward( frame.outer ? kUnderlay : kPort1, bytesOf( frame ) );
   }
   // Makes the switch know where that address is.
   void learn( MacAddress address, VornalPort port ) {
      FrameFields frame = fromHost1();
      frame.source = address;
      if ( port != kPort1 && port != kPort3 ) {
         frame.vlan = 10;
      }
      ASSERT_FALSE( forward( port, bytesOf( frame ) ).dropReason );
   }
   void learnBehindLeaf2( MacAddress address ) {
      FrameFields frame = fromLeaf2();
      frame.source = address;
      ASSERT_FALSE( forward( frame ).dropReason );
   }

   ChipTest::TwoUnitSwitch chips{ 256 };
   Chip::Pipeline pipeline;
   Wire wire;
};

// The verdict on that interface's copy, as its name, so that a failure reads well; "-" for none.
inline std::string_view verdictOn( FrameStory const & story, std::string_view interface ) {
   for ( Copy const & copy : story.copies ) {
      if ( copy.intfId == intf( interface ) ) {
         return nameOf( copy.verdict );
      }
   }
   return "-";
}

inline std::string_view reasonOf( FrameStory const & story ) {
   return story.dropReason ? nameOf( *story.dropReason ) : "-";
}

inline std::string_view kindOf( FrameStory const & story ) {
   return story.kind ? nameOf( *story.kind ) : "-";
}

}  // namespace PipelineTest
