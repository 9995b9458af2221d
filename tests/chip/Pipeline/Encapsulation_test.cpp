// What goes into a tunnel, as a library that knows nothing of the pipeline reads it.
#include <Frames/Headers.h>
#include <tins/ethernetII.h>
#include <tins/ip.h>
#include <tins/ipv6.h>
#include <tins/rawpdu.h>
#include <tins/udp.h>

#include "Leaf.h"

namespace EncapsulationTest {

using namespace PipelineTest;

using ByteList = std::vector< U8 >;

Tins::EthernetII read( ByteList const & bytes ) {
   return { bytes.data(), static_cast< U32 >( bytes.size() ) };
}

// What is behind the UDP header.
ByteList vxlanOf( Tins::EthernetII const & frame ) {
   return frame.rfind_pdu< Tins::RawPDU >().payload();
}

void expectVxlanAround( ByteList const & inner, ByteList const & vxlan ) {
   ByteList expected{ 0x08, 0, 0, 0, 0x00, 0x27, 0x74, 0 };  // the I flag, VNI 10100
   expected.insert( expected.end(), inner.begin(), inner.end() );
   EXPECT_EQ( vxlan, expected );
}

Chip::ForwardingConfig floodTo( std::vector< IpGenAddr > const & vteps ) {
   Chip::ForwardingConfig config = leaf1Config();
   config.floodLists = { { 10100, vteps } };
   config.interfaces.back().neighbour = MacAddress( 0x020000000049 );
   return config;
}

TEST( Encapsulation, OverIpv4HasAllHeadersRight ) {
   Leaf leaf1( floodTo( { kLeaf2 } ) );
   leaf1.forward( fromHost1() );
   ByteList const bytes = leaf1.wire.at( kUnderlay );
   Tins::EthernetII const frame = read( bytes );
   EXPECT_EQ( frame.dst_addr().to_string(), "02:00:00:00:00:49" );
   EXPECT_EQ( frame.src_addr().to_string(), kRouter.stringValue() );
   auto const & outer = frame.rfind_pdu< Tins::IP >();
   EXPECT_EQ( outer.src_addr().to_string(), "10.0.0.1" );
   EXPECT_EQ( outer.dst_addr().to_string(), "10.0.0.2" );
   EXPECT_EQ( outer.ttl(), 64 );
   EXPECT_EQ( outer.tot_len(), bytes.size() - 14 );
   EXPECT_EQ( outer.flags(), Tins::IP::DONT_FRAGMENT );
   EXPECT_EQ( Chip::internetChecksum( Chip::Bytes( bytes ).subspan( 14, 20 ) ), 0 );
   auto const & udp = frame.rfind_pdu< Tins::UDP >();
   EXPECT_EQ( udp.dport(), 4789 );
   EXPECT_GE( udp.sport(), 49152 );
   EXPECT_EQ( udp.length(), bytes.size() - 34 );
   EXPECT_EQ( udp.checksum(), 0 );
   expectVxlanAround( bytesOf( fromHost1() ), vxlanOf( frame ) );
}

TEST( Encapsulation, OverIpv6HasAllHeadersRight ) {
   Leaf leaf1( floodTo( { kLeaf2v6 } ) );
   leaf1.forward( fromHost1() );
   ByteList const bytes = leaf1.wire.at( kUnderlay );
   Tins::EthernetII const frame = read( bytes );
   auto const & outer = frame.rfind_pdu< Tins::IPv6 >();
   EXPECT_EQ( outer.src_addr().to_string(), "2001:db8::1" );
   EXPECT_EQ( outer.dst_addr().to_string(), "2001:db8::2" );
   EXPECT_EQ( outer.hop_limit(), 64 );
   EXPECT_EQ( outer.payload_length(), bytes.size() - 54 );
   EXPECT_EQ( outer.next_header(), 17 );
   auto const & udp = frame.rfind_pdu< Tins::UDP >();
   EXPECT_EQ( udp.dport(), 4789 );
   EXPECT_EQ( udp.length(), bytes.size() - 54 );
   EXPECT_EQ( udp.checksum(), 0 );
   expectVxlanAround( bytesOf( fromHost1() ), vxlanOf( frame ) );
}

TEST( Encapsulation, LeavesTheVlanTagBehind ) {
   Leaf leaf1( floodTo( { kLeaf2 } ) );
   FrameFields tagged = fromHost1();
   tagged.vlan = 10;
   leaf1.forward( kPort2, bytesOf( tagged ) );
   expectVxlanAround( bytesOf( fromHost1() ), vxlanOf( read( leaf1.wire.at( kUnderlay ) ) ) );
}

TEST( Encapsulation, EachVtepOfTheFloodListGetsItsOwn ) {
   Leaf leaf1( floodTo( { kLeaf2, kLeaf2v6, kLeaf3 } ) );
   FrameStory const story = leaf1.forward( fromHost1() );
   std::vector< IpGenAddr > vteps;
   for ( Copy const & copy : story.copies ) {
      if ( copy.remoteVtep ) {
         EXPECT_EQ( copy.port, kUnderlay );
         vteps.push_back( *copy.remoteVtep );
      }
   }
   EXPECT_EQ( vteps, ( std::vector{ kLeaf2, kLeaf2v6, kLeaf3 } ) );
   std::vector< std::string > destinations;
   for ( Sent const & sent : leaf1.wire.sent ) {
      Tins::EthernetII const frame = read( sent.bytes );
      if ( sent.port != kUnderlay ) {
         continue;
      }
      expectVxlanAround( bytesOf( fromHost1() ), vxlanOf( frame ) );
      auto const * const ipv4 = frame.find_pdu< Tins::IP >();
      destinations.push_back( ipv4 ? ipv4->dst_addr().to_string() : "IPv6" );
   }
   EXPECT_EQ( destinations, ( std::vector< std::string >{ "10.0.0.2", "IPv6", "10.0.0.3" } ) );
}

TEST( Encapsulation, FlowsHaveSourcePortsOfTheirOwnAndKeepThem ) {
   Leaf leaf1( floodTo( { kLeaf2 } ) );
   auto const sourcePort = [ & ]( U16 flow ) {
      FrameFields frame = fromHost1();
      frame.sourcePort = flow;
      leaf1.forward( frame );
      return read( leaf1.wire.at( kUnderlay ) ).rfind_pdu< Tins::UDP >().sport();
   };
   std::set< U16 > ports;
   for ( U16 flow = 1; flow <= 100; ++flow ) {
      ports.insert( sourcePort( flow ) );
   }
   EXPECT_GT( ports.size(), 90U );
   EXPECT_EQ( sourcePort( 7 ), sourcePort( 7 ) );
}

TEST( Encapsulation, NeedsAnOwnAddressOfTheFamily ) {
   Chip::ForwardingConfig config = floodTo( { kLeaf2, kLeaf2v6 } );
   config.vtepIpv6.reset();
   Leaf leaf1( config );
   FrameStory const story = leaf1.forward( fromHost1() );
   EXPECT_EQ( leaf1.pipeline.counters()[ Verdict::NoVtep ], 1U );
   EXPECT_EQ( story.copies.back().remoteVtep, kLeaf2v6 );
   EXPECT_EQ( story.copies.back().verdict, Verdict::NoVtep );
}

TEST( Encapsulation, NeedsAnUnderlayInterface ) {
   Chip::ForwardingConfig config = leaf1Config();
   config.interfaces.pop_back();
   Leaf leaf1( config );
   FrameStory const story = leaf1.forward( fromHost1() );
   EXPECT_EQ( story.copies.back().verdict, Verdict::NoPort );
   EXPECT_EQ( story.copies.back().remoteVtep, kLeaf3 );
}

TEST( Encapsulation, ATunnelLeadsOverItsUnderlayInterfaces ) {
   Chip::ForwardingConfig config = floodTo( { kLeaf2, kLeaf3 } );
   config.interfaces.push_back(
      { .intfId = intf( "Ethernet50" ), .unit = 1, .logicalPort = 50, .isUnderlay = true } );
   config.tunnels[ kLeaf3 ].underlay = { intf( "Ethernet50" ) };
   Leaf leaf1( config );
   std::set< VornalPort > toLeaf2;
   for ( U16 flow = 1; flow <= 100; ++flow ) {
      FrameFields frame = fromHost1();
      frame.sourcePort = flow;
      for ( Copy const & copy : leaf1.forward( frame ).copies ) {
         if ( copy.remoteVtep == kLeaf2 ) {
            toLeaf2.insert( copy.port );
         } else if ( copy.remoteVtep == kLeaf3 ) {
            EXPECT_EQ( copy.port, VornalPort( 1, 50, 4 ) );
         }
      }
   }
   EXPECT_EQ( toLeaf2.size(), 2U ) << "flows are spread";
}

}  // namespace EncapsulationTest
