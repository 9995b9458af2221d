#include <Steps/Frame.h>

#include <algorithm>
#include <array>

#include <fmt/format.h>

#include <Pipeline/Forwarding.h>
#include <Scenario/Parts.h>
#include <Scenario/Shape.h>
#include <Steps/Context.h>

namespace Steps {

namespace {

namespace Shape = Scenario::Shape;

using Scenario::Choices;
using Scenario::Table;

constexpr U32 kHighestPort = 0xffff;
constexpr U32 kLargestPayload = 9000;

// --- Its fields

Chip::OuterFields & outerOf( Frame & frame ) {
   return frame.fields.outer ? *frame.fields.outer : frame.fields.outer.emplace();
}

void readOn( Reading & reading, Value const & value, Frame & frame ) {
   if ( auto const intf = intfOf( reading, value ) ) {
      frame.on = *intf;
   }
}

void readFrom( Reading & reading, Value const & value, Frame & frame ) {
   Pelk::IpGenAddr & vtep = outerOf( frame ).sourceVtep;
   auto const text =
      stringOf( reading, value, std::string( Scenario::kExample< Pelk::IpGenAddr > ) );
   if ( auto const read = text ? vtepIn( reading, *text, value.line ) : std::nullopt ) {
      vtep = *read;
      reading.agreement().remoteVtepIs( vtep, value.line );
   }
}

void readVni( Reading & reading, Value const & value, Frame & frame ) {
   outerOf( frame ).vni = numberOf( reading, value, 0, Chip::kHighestVni ).value_or( 0 );
}

template< Chip::MacAddress Chip::FrameFields::*mac >
void readMac( Reading & reading, Value const & value, Frame & frame ) {
   frame.fields.*mac =
      Scenario::valueOf< Chip::MacAddress >( reading, value ).value_or( Chip::MacAddress() );
}

template< std::optional< Pelk::IpGenAddr > Chip::FrameFields::*ip >
void readIp( Reading & reading, Value const & value, Frame & frame ) {
   frame.fields.*ip = Scenario::valueOf< Pelk::IpGenAddr >( reading, value );
}

void readVlan( Reading & reading, Value const & value, Frame & frame ) {
   if ( auto const vlan = numberOf( reading, value, 1, Chip::kHighestVlan ) ) {
      frame.fields.vlan = static_cast< U16 >( *vlan );
   }
}

template< typename T, T Chip::FrameFields::*number, U32 highest >
void readFieldNumber( Reading & reading, Value const & value, Frame & frame ) {
   if ( auto const read = numberOf( reading, value, 0, highest ) ) {
      frame.fields.*number = static_cast< T >( *read );
   }
}

Choices< Chip::FrameContent > const & contents() {
   using Chip::FrameContent;
   static Choices< FrameContent > const choices{
      { "frame-content",
        "The content of the frame: an unknown payload ('bare', if left out), an ARP request or a "
        "neighbour solicitation for destination-ip, or a UDP datagram." },
      { { "bare", FrameContent::Bare },
        { "arp", FrameContent::Arp },
        { "neighbour-solicitation", FrameContent::NeighbourSolicitation },
        { "udp", FrameContent::Udp } }
   };
   return choices;
}

void readContent( Reading & reading, Value const & value, Frame & frame ) {
   frame.fields.content =
      choiceOf( reading, value, contents() ).value_or( Chip::FrameContent::Bare );
}

// The words of a frame that stand together.
constexpr std::string_view kWordsTogether = R"({
   "anyOf": [ { "required": [ "on" ] }, { "required": [ "from" ] } ],
   "dependencies": {
      "from": [ "vni" ],
      "vni": [ "from" ],
      "ttl": { "$ref": "#/definitions/of-udp" },
      "source-port": { "$ref": "#/definitions/of-udp" },
      "destination-port": { "$ref": "#/definitions/of-udp" }
   },
   "allOf": [
      {
         "description": "All contents but bare have addresses.",
         "anyOf": [
            { "not": { "required": [ "content" ] } },
            { "properties": { "content": { "const": "bare" } } },
            { "required": [ "source-ip", "destination-ip" ] }
         ]
      },
      {
         "description": "Addresses are of one family: arp takes IPv4, neighbour-solicitation IPv6.",
         "anyOf": [
            { "not": { "required": [ "source-ip", "destination-ip" ] } },
            {
               "properties": {
                  "source-ip": { "$ref": "#/definitions/ipv4" },
                  "destination-ip": { "$ref": "#/definitions/ipv4" },
                  "content": { "not": { "const": "neighbour-solicitation" } }
               }
            },
            {
               "properties": {
                  "source-ip": { "$ref": "#/definitions/ipv6" },
                  "destination-ip": { "$ref": "#/definitions/ipv6" },
                  "content": { "not": { "const": "arp" } }
               }
            }
         ]
      }
   ]
})";

using Fields = Chip::FrameFields;

Table< Frame > const & frameTable() {
   static Table< Frame > const table{
      { "frame",
        "A frame comes in: from a host on an access interface, or through a tunnel from a remote "
        "VTEP.",
        kWordsTogether },
      { { { "on", "",
            Shape::of( "segment-interface",
                       "The interface that it comes in on; for a tunnel, the first underlay "
                       "interface if left out." ) },
          readOn },
        { { "from", "", Shape::of( "vtep-address", "The remote VTEP that sends it, in VXLAN." ) },
          readFrom },
        { { "vni", "", Shape::number( 0, Chip::kHighestVni, "The VNI of a frame from a VTEP." ) },
          readVni },
        { { "vlan", "",
            Shape::of( "vlan-number", "The VLAN of an 802.1Q tag; untagged if left out." ) },
          readVlan },
        { { "source", "source: 00:00:5e:00:53:02", Shape::of( "mac", "The source MAC address." ) },
          readMac< &Fields::source > },
        { { "destination", "",
            Shape::of( "mac", "The destination MAC address; broadcast if left out." ) },
          readMac< &Fields::destination > },
        { { "content", "", Shape::of( "frame-content" ) }, readContent },
        { { "source-ip", "", Shape::of( "address" ) }, readIp< &Fields::sourceIp > },
        { { "destination-ip", "", Shape::of( "address" ) }, readIp< &Fields::destinationIp > },
        { { "ttl", "",
            Shape::number( 0, 0xff, "TTL or hop limit of a 'udp' frame; 64 if left out." ) },
          readFieldNumber< U8, &Fields::timeToLive, 0xff > },
        { { "source-port", "", Shape::number( 0, kHighestPort, "UDP source port." ) },
          readFieldNumber< U16, &Fields::sourcePort, kHighestPort > },
        { { "destination-port", "", Shape::number( 0, kHighestPort, "UDP destination port." ) },
          readFieldNumber< U16, &Fields::destinationPort, kHighestPort > },
        { { "payload", "",
            Shape::number( 0, kLargestPayload,
                           "Bytes of payload of a 'bare' or 'udp' frame; 32 if left out." ) },
          readFieldNumber< std::size_t, &Fields::payloadSize, kLargestPayload > } }
   };
   return table;
}

// --- Its addresses

std::string nameOf( Chip::FrameContent content ) {
   return std::string( contents().nameOf( content ) );
}

// Checks the addresses that could be read; the others are reported already.
void checkFamilies( Reading & reading, Value const & value, Chip::FrameFields const & fields ) {
   using Family = Pelk::IpGenAddr::Family;
   if ( !fields.sourceIp || !fields.destinationIp ) {
      return;
   }
   Family const family = fields.sourceIp->family();
   if ( family != fields.destinationIp->family() ) {
      reading.problem( value.line, fields.sourceIp->stringValue() + " and " +
                                      fields.destinationIp->stringValue() +
                                      " are of different families; give two addresses of one" );
   } else if ( fields.content == Chip::FrameContent::Arp && family != Family::ipv4 ) {
      reading.problem( value.line,
                       "arp is for IPv4 addresses; write neighbour-solicitation for IPv6" );
   } else if ( fields.content == Chip::FrameContent::NeighbourSolicitation &&
               family != Family::ipv6 ) {
      reading.problem( value.line,
                       "neighbour-solicitation is for IPv6 addresses; write arp for IPv4" );
   }
}

void checkAddresses( Reading & reading, Value const & value, Chip::FrameFields const & fields ) {
   bool const hasBoth =
      value.node[ "source-ip" ].IsDefined() && value.node[ "destination-ip" ].IsDefined();
   if ( fields.content != Chip::FrameContent::Bare && !hasBoth ) {
      reading.problem( value.line, "a frame with " + nameOf( fields.content ) +
                                      " has IP addresses; give 'source-ip' and "
                                      "'destination-ip'" );
   }
   checkFamilies( reading, value, fields );
}

// Reports words that only a udp frame can have, unless 'content' could not be read.
void checkUdpWords( Reading & reading, Value const & value, Chip::FrameFields const & fields ) {
   constexpr std::array< std::string_view, 3 > words{ "ttl", "source-port", "destination-port" };
   YAML::Node const content = value.node[ "content" ];
   bool const isRead = !content.IsDefined() ||
                       ( content.IsScalar() && content.Scalar() == nameOf( fields.content ) );
   if ( !isRead || fields.content == Chip::FrameContent::Udp ) {
      return;
   }
   for ( auto const & entry : value.node ) {
      std::string const word = entry.first.IsScalar() ? entry.first.Scalar() : "";
      if ( std::find( words.begin(), words.end(), word ) != words.end() ) {
         reading.problem( entry.first.Mark().line + 1,
                          word + " belongs to udp frames; give 'content: udp', or leave it out" );
      }
   }
}

}  // namespace

std::vector< WordList > Frame::vocabulary() {
   return { frameTable().list(), contents().list() };
}

void Frame::read( Reading & reading, Value const & value ) {
   readMapping( reading, value, frameTable(), *this );
   if ( !value.node.IsMap() || hasStrangers( value, frameTable().list() ) ) {
      checkFamilies( reading, value, fields );
      return;
   }
   bool const hasFrom = value.node[ "from" ].IsDefined();
   if ( !hasFrom && !value.node[ "on" ].IsDefined() ) {
      reading.problem( value.line,
                       "a frame needs 'on', the interface it comes in on, or 'from', "
                       "the VTEP it comes from" );
   }
   if ( hasFrom != value.node[ "vni" ].IsDefined() ) {
      reading.problem( value.line,
                       "'from' and 'vni' stand together: a frame from a VTEP comes in a VNI" );
   }
   checkAddresses( reading, value, fields );
   checkUdpWords( reading, value, fields );
}

std::string Frame::description() const {
   using Quelm::textOf;
   auto const & outer = fields.outer;
   std::string const from =
      outer ? fmt::format( "from VTEP {} in VNI {}", textOf( outer->sourceVtep ), outer->vni )
            : "on " + textOf( *on );
   std::string const addresses =
      fields.sourceIp && fields.destinationIp
         ? fmt::format( ", {} to {}", textOf( *fields.sourceIp ), textOf( *fields.destinationIp ) )
         : "";
   return fmt::format( "a frame {}: {} to {}{}", from, textOf( fields.source ),
                       textOf( fields.destination ), addresses );
}

void Frame::queue( Context const & context, int line ) const {
   context.turnNew( line, [ this, &context ] { context.traffic.inject( fields, on ); } );
}

}  // namespace Steps
