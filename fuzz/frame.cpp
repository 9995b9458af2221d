// A frame in the words of a scenario has the values that were written, or is refused for a mistake
// that is one. Its bytes have these values, with the right lengths and checksums. For libFuzzer;
// fuzz/README.md has the command.
//
// The input chooses the words and their values.
#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <Explanation/DecodedFrame.h>
#include <Pieces.h>
#include <Property.h>
#include <Steps/Frame.h>
#include <Steps/Reader.h>

namespace {

using Chip::FrameContent;
using Fuzz::mustHold;
using Fuzz::Pieces;
using Pelk::IpGenAddr;

std::string const kHead =
   "scenario: fuzzed\n"
   "switch:\n"
   "  name: leaf1\n"
   "  variant: egress-mask\n"
   "  units: { 0: { module: 1 } }\n"
   "  interfaces: { Ethernet1: { unit: 0, port: 1 }, Ethernet49: { unit: 0, port: 49 } }\n"
   "forwarding:\n"
   "  vtep-addresses: [ 10.0.0.1, '2001:db8::1' ]\n"
   "  underlay: [ Ethernet49 ]\n"
   "  vlans: { 10: 10100 }\n"
   "  access: { Ethernet1: 10 }\n"
   "steps:\n"
   "  - frame: ";

// --- What is written

struct Written {
   std::string words;
   std::vector< std::string > names;
   Chip::FrameFields fields;
   std::string on;
   bool areNumbersRight = true;

   bool has( char const * name ) const {
      return std::find( names.begin(), names.end(), name ) != names.end();
   }
};

// A number from `lowest` to `highest`, or beyond them.
std::uint32_t number( Pieces & pieces, Written & written, std::uint32_t lowest,
                      std::uint32_t highest ) {
   std::uint32_t const bound = pieces.yesOrNo() ? highest : highest + 2;
   auto const any = static_cast< std::uint32_t >( pieces.number( 4 ) % ( bound + 1 ) );
   written.areNumbersRight = written.areNumbersRight && any >= lowest && any <= highest;
   return any;
}

Chip::MacAddress mac( Pieces & pieces ) {
   return Chip::MacAddress( pieces.number( Chip::MacAddress::kBytes ) );
}

IpGenAddr address( Pieces & pieces ) {
   std::array< std::uint8_t, 16 > bytes{};
   bool const isIpv4 = pieces.yesOrNo();
   for ( std::size_t n = 0; n < ( isIpv4 ? 4 : bytes.size() ); ++n ) {
      bytes.at( n ) = pieces.byte();
   }
   return isIpv4 ? IpGenAddr::ipv4( { bytes[ 0 ], bytes[ 1 ], bytes[ 2 ], bytes[ 3 ] } )
                 : IpGenAddr::ipv6( bytes );
}

Chip::OuterFields & outerOf( Written & written ) {
   auto & outer = written.fields.outer;
   return outer ? *outer : outer.emplace();
}

std::string on( Pieces & pieces, Written & written ) {
   return written.on = pieces.yesOrNo() ? "Ethernet1" : "Ethernet49";
}
std::string from( Pieces & pieces, Written & written ) {
   std::array< std::string, 3 > const vteps{ "10.0.0.2", "2001:db8::2", "192.0.2.255" };
   std::string const & vtep = pieces.oneOf( vteps );
   outerOf( written ).sourceVtep = IpGenAddr::fromString( vtep );
   return vtep;
}
std::string vni( Pieces & pieces, Written & written ) {
   return std::to_string( outerOf( written ).vni = number( pieces, written, 0, 0xffffff ) );
}
std::string vlan( Pieces & pieces, Written & written ) {
   auto const vlan = number( pieces, written, 1, 4094 );
   written.fields.vlan = static_cast< std::uint16_t >( vlan );
   return std::to_string( vlan );
}
template< Chip::MacAddress Chip::FrameFields::*member >
std::string macOf( Pieces & pieces, Written & written ) {
   return ( written.fields.*member = mac( pieces ) ).stringValue();
}
template< std::optional< IpGenAddr > Chip::FrameFields::*member >
std::string ipOf( Pieces & pieces, Written & written ) {
   return ( written.fields.*member = address( pieces ) )->stringValue();
}
template< typename T, T Chip::FrameFields::*member, std::uint32_t highest >
std::string numberOf( Pieces & pieces, Written & written ) {
   auto const value = number( pieces, written, 0, highest );
   written.fields.*member = static_cast< T >( value );
   return std::to_string( value );
}
std::string content( Pieces & pieces, Written & written ) {
   std::array< std::string, 4 > const contents{ "bare", "arp", "neighbour-solicitation", "udp" };
   std::uint8_t const which = pieces.byte() % contents.size();
   written.fields.content = static_cast< FrameContent >( which );
   return contents.at( which );
}

struct Word {
   char const * name;
   std::string ( *write )( Pieces & pieces, Written & written );
   bool isNumber;
};

using Fields = Chip::FrameFields;
constexpr std::array kWords{
   Word{ "on", on, false },
   Word{ "from", from, false },
   Word{ "vni", vni, true },
   Word{ "vlan", vlan, true },
   Word{ "source", macOf< &Fields::source >, false },
   Word{ "destination", macOf< &Fields::destination >, false },
   Word{ "content", content, false },
   Word{ "source-ip", ipOf< &Fields::sourceIp >, false },
   Word{ "destination-ip", ipOf< &Fields::destinationIp >, false },
   Word{ "ttl", numberOf< std::uint8_t, &Fields::timeToLive, 0xff >, true },
   Word{ "source-port", numberOf< std::uint16_t, &Fields::sourcePort, 0xffff >, true },
   Word{ "destination-port", numberOf< std::uint16_t, &Fields::destinationPort, 0xffff >, true },
   Word{ "payload", numberOf< std::size_t, &Fields::payloadSize, 9000 >, true }
};

Written written( Pieces & pieces ) {
   Written result;
   // The source address must be there.
   std::uint64_t const chosen = pieces.number( 2 ) | 1U << 4U;
   for ( std::size_t n = 0; n < kWords.size(); ++n ) {
      if ( ( chosen >> n & 1U ) == 0 ) {
         continue;
      }
      std::string const value = kWords[ n ].write( pieces, result );
      result.names.emplace_back( kWords[ n ].name );
      result.words += std::string( result.words.empty() ? "{ " : ", " ) + kWords[ n ].name + ": " +
                      ( kWords[ n ].isNumber ? value : "'" + value + "'" );
   }
   result.words += " }";
   return result;
}

// --- What is right

bool areAddressesRight( Fields const & fields ) {
   if ( !fields.sourceIp || !fields.destinationIp ) {
      return fields.content == FrameContent::Bare;
   }
   bool const isIpv4 = fields.sourceIp->family() == IpGenAddr::Family::ipv4;
   return fields.sourceIp->family() == fields.destinationIp->family() &&
          ( fields.content != FrameContent::Arp || isIpv4 ) &&
          ( fields.content != FrameContent::NeighbourSolicitation || !isIpv4 );
}

bool isRight( Written const & words ) {
   bool const hasUdpWords =
      words.has( "ttl" ) || words.has( "source-port" ) || words.has( "destination-port" );
   return words.areNumbersRight && ( words.has( "on" ) || words.has( "from" ) ) &&
          words.has( "from" ) == words.has( "vni" ) && areAddressesRight( words.fields ) &&
          ( !hasUdpWords || words.fields.content == FrameContent::Udp );
}

// --- What becomes of it

// The Internet checksum of the whole, which is 0 where the one within is right.
std::uint32_t sumOf( Chip::Bytes bytes ) {
   std::uint32_t sum = 0;
   for ( std::size_t n = 0; n < bytes.size(); ++n ) {
      sum += static_cast< std::uint32_t >( bytes[ n ] ) << ( n % 2 == 0 ? 8U : 0U );
   }
   return sum;
}

bool isPayloadChecked( Chip::IpHeader const & ip, Chip::Bytes payload ) {
   std::uint32_t sum =
      sumOf( payload ) + ip.protocol + static_cast< std::uint32_t >( payload.size() );
   for ( IpGenAddr const & address : { ip.source, ip.destination } ) {
      sum += sumOf( address.bytes() );
   }
   while ( sum > 0xffff ) {
      sum = ( sum & 0xffffU ) + ( sum >> 16U );
   }
   return sum == 0xffff;
}

void checkPorts( Fields const & fields, Chip::IpHeader const & ip, Chip::Bytes payload ) {
   mustHold( payload.size() == Chip::kUdpSize + fields.payloadSize, "it has its length" );
   mustHold( Chip::u16At( payload, 0 ) == fields.sourcePort &&
                Chip::u16At( payload, 2 ) == fields.destinationPort &&
                Chip::u16At( payload, 4 ) == payload.size(),
             "it has its ports" );
   for ( std::size_t n = 0; n < fields.payloadSize; ++n ) {
      mustHold( payload[ Chip::kUdpSize + n ] == n % 256, "its payload counts up" );
   }
   mustHold( ip.timeToLive == fields.timeToLive && ip.destination == *fields.destinationIp,
             "it has its destination and its time to live" );
}

void checkIp( Fields const & fields, std::uint16_t etherType, Chip::Bytes packet ) {
   Chip::IpHeader ip;
   mustHold( Chip::readIp( etherType, packet, ip ) == Chip::IpFault::None, "its packet is whole" );
   Chip::Bytes const payload = ip.payloadOf( packet );
   mustHold( ip.source == *fields.sourceIp && isChecksumRight( ip, packet ) &&
                isPayloadChecked( ip, payload ),
             "it has its source, and the right checksums" );
   if ( fields.content == FrameContent::Udp ) {
      mustHold( ip.protocol == Chip::IpProtocol::kUdp, "it is UDP" );
      checkPorts( fields, ip, payload );
   } else {
      mustHold( ip.protocol == 58 && ip.timeToLive == 255 && Chip::u8At( payload, 0 ) == 135 &&
                   Chip::ipv6At( payload, 8 ) == *fields.destinationIp &&
                   Chip::macAt( payload, 26 ) == fields.source,
                "it asks for its destination" );
   }
}

void checkArp( Fields const & fields, Chip::HeaderFields const & frame ) {
   mustHold( frame.arp && frame.arp->operation == 1 && frame.arp->senderMac == fields.source &&
                frame.arp->senderIp == *fields.sourceIp &&
                frame.arp->targetIp == *fields.destinationIp,
             "it asks for its destination" );
}

void checkInner( Fields const & fields, Chip::Bytes frame ) {
   auto const ethernet = Chip::readEthernet( frame );
   mustHold( ethernet && ethernet->source == fields.source &&
                ethernet->destination == fields.destination && ethernet->tag == fields.vlan,
             "it has its addresses and its tag" );
   auto const read = Chip::decode( frame, false ).inner;
   mustHold( read && read->source == fields.source && read->etherType == ethernet->etherType,
             "both readers read the same" );
   Chip::Bytes const packet = frame.subspan( ethernet->size() );
   switch ( fields.content ) {
   case FrameContent::Bare:
      mustHold( ethernet->etherType == 0x88b5 && packet.size() >= fields.payloadSize,
                "it has its payload" );
      break;
   case FrameContent::Arp: checkArp( fields, *read ); break;
   case FrameContent::NeighbourSolicitation:
   case FrameContent::Udp: checkIp( fields, ethernet->etherType, packet ); break;
   }
}

// What the tunnel carries.
Chip::Bytes innerOf( Fields const & fields, Chip::Bytes frame ) {
   Chip::OuterFields const & outer = *fields.outer;
   auto const read = Chip::decode( frame, true );
   mustHold( read.outer && read.outer->ip && read.outer->ports && read.vxlan && read.inner,
             "its outer headers are all there" );
   mustHold( read.outer->ip->source == outer.sourceVtep &&
                read.outer->ip->destination == outer.destinationVtep &&
                read.outer->ip->fault == Chip::IpFault::None && read.outer->ip->isChecksumRight &&
                read.outer->ports->destination == Chip::kVxlanPort && read.vxlan->vni == outer.vni,
             "its tunnel is right" );
   bool const isIpv4 = outer.sourceVtep.family() == IpGenAddr::Family::ipv4;
   return frame.subspan( Chip::EthernetHeader::kUntagged +
                         ( isIpv4 ? Chip::kIpv4Size : Chip::kIpv6Size ) + Chip::kUdpSize +
                         Chip::kVxlanSize );
}

void check( Fields fields ) {
   if ( fields.outer ) {
      bool const isIpv4 = fields.outer->sourceVtep.family() == IpGenAddr::Family::ipv4;
      fields.outer->destinationVtep = IpGenAddr::fromString( isIpv4 ? "10.0.0.1" : "2001:db8::1" );
   }
   std::vector< std::uint8_t > const frame = Chip::bytesOf( fields );
   checkInner( fields, fields.outer ? innerOf( fields, frame ) : Chip::Bytes( frame ) );
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   Pieces pieces( data, size );
   Written const words = written( pieces );
   std::optional< Scenario::Model > model;
   try {
      model = Steps::readScenarioText( kHead + words.words + '\n', "fuzzed.yaml" );
   } catch ( Scenario::ReadError const & error ) {
      mustHold( !isRight( words ), words.words + " is right: " + error.what() );
      return 0;
   }
   mustHold( isRight( words ), words.words + " is wrong, and must be refused" );
   auto const & frame = *model->steps.front().as< Steps::Frame >();
   mustHold( frame.fields == words.fields, "a frame has the values that were written" );
   mustHold( ( frame.on ? frame.on->stringValue() : "" ) == words.on, "it comes in where it says" );
   check( frame.fields );
   return 0;
}
