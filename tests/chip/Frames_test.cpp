// Frames written as fields, as a library reads them back; MAC addresses as text.
#include <gtest/gtest.h>

#include <Frames/FrameFields.h>
#include <Frames/Headers.h>
#include <Quelm/Error.h>
#include <tins/arp.h>
#include <tins/dot1q.h>
#include <tins/ethernetII.h>
#include <tins/icmpv6.h>
#include <tins/ip.h>
#include <tins/ipv6.h>
#include <tins/rawpdu.h>
#include <tins/udp.h>

namespace FramesTest {

using Chip::FrameContent;
using Chip::FrameFields;
using Chip::MacAddress;

Pelk::IpGenAddr ip( std::string_view text ) {
   return Pelk::IpGenAddr::fromString( text );
}

FrameFields udp( std::string_view from, std::string_view to ) {
   return { .source = MacAddress( 0x00005e005301 ),
            .content = FrameContent::Udp,
            .sourceIp = ip( from ),
            .destinationIp = ip( to ) };
}

Tins::EthernetII read( std::vector< U8 > const & bytes ) {
   return { bytes.data(), static_cast< U32 >( bytes.size() ) };
}

std::string refusal( FrameFields const & fields ) {
   try {
      bytesOf( fields );
   } catch ( Quelm::Error const & error ) {
      return error.what();
   }
   return "";
}

TEST( Frames, UdpHasAllFieldsOverIpv4 ) {
   FrameFields fields = udp( "192.0.2.1", "192.0.2.255" );
   fields.timeToLive = 8;
   fields.sourcePort = 1;
   fields.destinationPort = 2;
   fields.payloadSize = 3;
   Tins::EthernetII const frame = read( bytesOf( fields ) );
   EXPECT_EQ( frame.src_addr().to_string(), "00:00:5e:00:53:01" );
   EXPECT_EQ( frame.dst_addr().to_string(), "ff:ff:ff:ff:ff:ff" );
   auto const & header = frame.rfind_pdu< Tins::IP >();
   EXPECT_EQ( header.src_addr().to_string(), "192.0.2.1" );
   EXPECT_EQ( header.dst_addr().to_string(), "192.0.2.255" );
   EXPECT_EQ( header.ttl(), 8 );
   EXPECT_EQ( frame.rfind_pdu< Tins::UDP >().sport(), 1 );
   EXPECT_EQ( frame.rfind_pdu< Tins::UDP >().dport(), 2 );
   EXPECT_EQ( frame.rfind_pdu< Tins::RawPDU >().payload(), ( std::vector< U8 >{ 0, 1, 2 } ) );
}

TEST( Frames, UdpHasAllFieldsOverIpv6 ) {
   FrameFields fields = udp( "2001:db8:100::1", "2001:db8:100::2" );
   fields.timeToLive = 8;
   Tins::EthernetII const frame = read( bytesOf( fields ) );
   auto const & header = frame.rfind_pdu< Tins::IPv6 >();
   EXPECT_EQ( header.src_addr().to_string(), "2001:db8:100::1" );
   EXPECT_EQ( header.dst_addr().to_string(), "2001:db8:100::2" );
   EXPECT_EQ( header.hop_limit(), 8 );
}

TEST( Frames, AVlanTagGoesInFront ) {
   FrameFields fields = udp( "192.0.2.1", "192.0.2.2" );
   fields.vlan = 10;
   Tins::EthernetII const frame = read( bytesOf( fields ) );
   EXPECT_EQ( frame.rfind_pdu< Tins::Dot1Q >().id(), 10 );
   EXPECT_EQ( frame.rfind_pdu< Tins::IP >().dst_addr().to_string(), "192.0.2.2" );
}

TEST( Frames, ArpAsksForTheDestination ) {
   FrameFields fields = udp( "192.0.2.1", "192.0.2.2" );
   fields.content = FrameContent::Arp;
   Tins::EthernetII const frame = read( bytesOf( fields ) );
   auto const & arp = frame.rfind_pdu< Tins::ARP >();
   EXPECT_EQ( arp.opcode(), Tins::ARP::REQUEST );
   EXPECT_EQ( arp.target_ip_addr().to_string(), "192.0.2.2" );
   EXPECT_EQ( arp.sender_ip_addr().to_string(), "192.0.2.1" );
   EXPECT_EQ( arp.sender_hw_addr().to_string(), "00:00:5e:00:53:01" );
}

TEST( Frames, NeighbourSolicitationAsksForTheDestination ) {
   FrameFields fields = udp( "2001:db8:100::1", "2001:db8:100::2" );
   fields.content = FrameContent::NeighbourSolicitation;
   Tins::EthernetII const frame = read( bytesOf( fields ) );
   EXPECT_EQ( frame.rfind_pdu< Tins::IPv6 >().dst_addr().to_string(), "ff02::1:ff00:2" );
   EXPECT_EQ( frame.rfind_pdu< Tins::IPv6 >().hop_limit(), 255 );
   auto const & icmp = frame.rfind_pdu< Tins::ICMPv6 >();
   EXPECT_EQ( icmp.type(), Tins::ICMPv6::NEIGHBOUR_SOLICIT );
   EXPECT_EQ( icmp.target_addr().to_string(), "2001:db8:100::2" );
}

TEST( Frames, ABareFrameHasATypeForExperimentsAndItsPayload ) {
   FrameFields fields{ .source = MacAddress( 0x00005e005301 ), .payloadSize = 2 };
   std::vector< U8 > const bytes = bytesOf( fields );
   EXPECT_EQ( std::vector< U8 >( bytes.begin(), bytes.begin() + 17 ),
              ( std::vector< U8 >{ 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0, 0, 0x5e, 0, 0x53, 1, 0x88,
                                   0xb5, 0, 1, 0 } ) );
   EXPECT_EQ( bytes.size(), 60U ) << "the shortest on a wire";
   fields.vlan = 10;
   fields.payloadSize = 100;
   std::vector< U8 > const tagged = bytesOf( fields );
   EXPECT_EQ( Chip::readEthernet( tagged )->etherType, 0x88b5 );
   EXPECT_EQ( tagged.size(), 118U );
}

TEST( Frames, ATunnelGoesAroundTheFrame ) {
   for ( bool const isIpv4 : { true, false } ) {
      FrameFields fields = udp( "192.0.2.1", "192.0.2.2" );
      std::vector< U8 > const inner = bytesOf( fields );
      fields.outer =
         Chip::OuterFields{ .sourceVtep = ip( isIpv4 ? "10.0.0.2" : "2001:db8::2" ),
                            .destinationVtep = ip( isIpv4 ? "10.0.0.1" : "2001:db8::1" ),
                            .vni = 10100,
                            .sourcePort = 50000 };
      Tins::EthernetII const frame = read( bytesOf( fields ) );
      EXPECT_EQ( frame.find_pdu< Tins::IP >() != nullptr, isIpv4 );
      auto const & outer = frame.rfind_pdu< Tins::UDP >();
      EXPECT_EQ( outer.sport(), 50000 );
      EXPECT_EQ( outer.dport(), 4789 );
      std::vector< U8 > expected{ 8, 0, 0, 0, 0, 0x27, 0x74, 0 };
      expected.insert( expected.end(), inner.begin(), inner.end() );
      EXPECT_EQ( frame.rfind_pdu< Tins::RawPDU >().payload(), expected );
   }
}

TEST( Frames, ThatCannotBeAreRefused ) {
   FrameFields fields = udp( "192.0.2.1", "2001:db8::1" );
   EXPECT_EQ( refusal( fields ), "frame: 192.0.2.1 and 2001:db8::1 are of different families" );
   fields.sourceIp.reset();
   EXPECT_EQ( refusal( fields ), "frame: its IP addresses are missing" );
   fields = udp( "192.0.2.1", "192.0.2.2" );
   fields.content = FrameContent::NeighbourSolicitation;
   EXPECT_EQ( refusal( fields ),
              "frame: neighbour solicitation is for IPv6 addresses; of IPv4 addresses it is ARP" );
   fields = udp( "2001:db8::1", "2001:db8::2" );
   fields.content = FrameContent::Arp;
   EXPECT_EQ( refusal( fields ),
              "frame: ARP is for IPv4 addresses; of IPv6 addresses it is neighbour solicitation" );
   fields.content = FrameContent::Bare;
   fields.payloadSize = 65536;
   EXPECT_EQ( refusal( fields ), "frame: a payload of 65536 bytes is too long; at most 65335 fit" );
   fields.payloadSize = 65335;
   fields.outer =
      Chip::OuterFields{ .sourceVtep = ip( "10.0.0.2" ), .destinationVtep = ip( "10.0.0.1" ) };
   EXPECT_EQ( refusal( fields ), "" );
}

TEST( MacAddresses, AreReadAndWritten ) {
   EXPECT_EQ( MacAddress::fromString( "00:00:5e:00:53:01" ), MacAddress( 0x00005e005301 ) );
   EXPECT_EQ( MacAddress::fromString( "FF:ff:FF:ff:FF:ff" ), MacAddress::broadcast() );
   EXPECT_EQ( MacAddress( 0x00005e0053aF ).stringValue(), "00:00:5e:00:53:af" );
   EXPECT_EQ( Quelm::fromText< MacAddress >( "00:00:5e:00:53:01" ), MacAddress( 0x00005e005301 ) );
}

TEST( MacAddresses, ThatAreNoneAreQuoted ) {
   for ( std::string const text :
         { "", "00:00:5e:00:53", "00:00:5e:00:53:01:02", "00-00-5e-00-53-01", "00:00:5e:00:53:0g",
           "0:00:5e:00:53:001", "00:00:5e:00:53:01 ", "00:00:5e:00:53: 1", "+0:00:5e:00:53:01" } ) {
      try {
         MacAddress::fromString( text );
         FAIL() << "'" << text << "' was taken";
      } catch ( Quelm::TextError const & error ) {
         EXPECT_EQ( error.what(), "'" + text +
                                     "' is not a MAC address: it is six pairs of "
                                     "hexadecimal digits, as in 00:00:5e:00:53:01" );
      }
   }
}

TEST( MacAddresses, TellTheirKind ) {
   EXPECT_TRUE( MacAddress::broadcast().isGroup() );
   EXPECT_TRUE( MacAddress( 0x01005e000001 ).isGroup() );
   EXPECT_FALSE( MacAddress( 0x02005e000001 ).isGroup() );
   EXPECT_TRUE( MacAddress( 0x0180c200000f ).isReserved() );
   EXPECT_FALSE( MacAddress( 0x0180c2000010 ).isReserved() );
}

}  // namespace FramesTest
