#include <algorithm>
#include <array>

#include <Scenario/Parts.h>

namespace Scenario {

namespace {

constexpr U32 kHighestVni = 0xffffff;
constexpr U32 kHighestPort = 0xffff;
constexpr U32 kLargestPayload = 9000;

auto const addressIn = parsed< Pelk::IpGenAddr >;

// The names of all values of an enumeration of the chip.
template< typename T > std::string_view nameOfChip( std::size_t value ) {
   return Chip::nameOf( static_cast< T >( value ) );
}

template< typename T > Choices< T > choicesOf( std::string_view place, std::size_t count ) {
   Choices< T > choices{ place, {} };
   for ( std::size_t value = 0; value < count; ++value ) {
      choices.all.push_back( { nameOfChip< T >( value ), static_cast< T >( value ) } );
   }
   return choices;
}

Choices< Chip::FrameKind > const & kinds() {
   static auto const choices =
      choicesOf< Chip::FrameKind >( "frame-kind", Chip::kFrameKinds.size() );
   return choices;
}

Choices< Chip::Verdict > const & verdicts() {
   static auto const choices = choicesOf< Chip::Verdict >( "verdict", Chip::kVerdicts );
   return choices;
}

Choices< Chip::DropReason > const & dropReasons() {
   static auto const choices = choicesOf< Chip::DropReason >( "drop-reason", Chip::kDropReasons );
   return choices;
}

// --- a frame as fields

Chip::OuterFields & outerOf( Frame & frame ) {
   return frame.fields.outer ? *frame.fields.outer : frame.fields.outer.emplace();
}

template< typename T > void readOn( Reading & reading, Value const & value, T & target ) {
   if ( auto const text = stringOf( reading, value ) ) {
      if ( auto const intf = intfIn( reading, *text, value.line ) ) {
         target.on = *intf;
      }
   }
}

void readFrom( Reading & reading, Value const & value, Frame & frame ) {
   Pelk::IpGenAddr & vtep = outerOf( frame ).sourceVtep;
   auto const text = stringOf( reading, value, std::string( kExample< Pelk::IpGenAddr > ) );
   if ( auto const read = text ? vtepIn( reading, *text, value.line ) : std::nullopt ) {
      vtep = *read;
      reading.agreement().remoteVtepIs( vtep, value.line );
   }
}

void readVni( Reading & reading, Value const & value, Frame & frame ) {
   outerOf( frame ).vni = numberOf( reading, value, 0, kHighestVni ).value_or( 0 );
}

template< Chip::MacAddress Chip::FrameFields::*mac >
void readMac( Reading & reading, Value const & value, Frame & frame ) {
   frame.fields.*mac = valueOf< Chip::MacAddress >( reading, value ).value_or( Chip::MacAddress() );
}

template< std::optional< Pelk::IpGenAddr > Chip::FrameFields::*ip >
void readIp( Reading & reading, Value const & value, Frame & frame ) {
   frame.fields.*ip = valueOf< Pelk::IpGenAddr >( reading, value );
}

void readVlan( Reading & reading, Value const & value, Frame & frame ) {
   constexpr U32 kHighestVlan = 4094;
   if ( auto const vlan = numberOf( reading, value, 1, kHighestVlan ) ) {
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
   static Choices< FrameContent > const choices{ "frame-content",
                                                 { { "bare", FrameContent::Bare },
                                                   { "arp", FrameContent::Arp },
                                                   { "neighbour-solicitation",
                                                     FrameContent::NeighbourSolicitation },
                                                   { "udp", FrameContent::Udp } } };
   return choices;
}

void readContent( Reading & reading, Value const & value, Frame & frame ) {
   frame.fields.content =
      choiceOf( reading, value, contents() ).value_or( Chip::FrameContent::Bare );
}

Table< Frame > const & frameTable() {
   using Fields = Chip::FrameFields;
   static Table< Frame > const table{
      "frame",
      { { { "on", "" }, readOn< Frame > },
        { { "from", "" }, readFrom },
        { { "vni", "" }, readVni },
        { { "vlan", "" }, readVlan },
        { { "source", "source: 00:00:5e:00:53:02" }, readMac< &Fields::source > },
        { { "destination", "" }, readMac< &Fields::destination > },
        { { "content", "" }, readContent },
        { { "source-ip", "" }, readIp< &Fields::sourceIp > },
        { { "destination-ip", "" }, readIp< &Fields::destinationIp > },
        { { "ttl", "" }, readFieldNumber< U8, &Fields::timeToLive, 0xff > },
        { { "source-port", "" }, readFieldNumber< U16, &Fields::sourcePort, kHighestPort > },
        { { "destination-port", "" },
          readFieldNumber< U16, &Fields::destinationPort, kHighestPort > },
        { { "payload", "" },
          readFieldNumber< std::size_t, &Fields::payloadSize, kLargestPayload > } }
   };
   return table;
}

// --- the addresses of a frame

std::string nameOf( Chip::FrameContent content ) {
   return std::string( contents().nameOf( content ) );
}

// Those that could be read; what could not is told already.
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

// Words that only a udp frame has a place for; none is told of where 'content' could not be read.
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
                          word + " is of udp frames; give 'content: udp', or leave it out" );
      }
   }
}

// --- a capture

void readFile( Reading & reading, Value const & value, Capture & capture ) {
   auto const name = stringOf( reading, value );
   if ( !name ) {
      return;
   }
   capture.file = reading.directory() / *name;
   std::error_code error;
   if ( !std::filesystem::is_regular_file( capture.file, error ) ) {
      reading.problem( value.line, "capture is " + pathInQuotes( *name ) +
                                      ", which is no file; a capture is expected, relative to the "
                                      "scenario's file" );
   }
}

Table< Capture > const & captureTable() {
   static Table< Capture > const table{ "frames",
                                        { { { "capture", "capture: ../captures/fabric-v4.pcap" },
                                            readFile },
                                          { { "on", "on: Ethernet49" }, readOn< Capture > } } };
   return table;
}

// --- what is expected

void readLikeFrom( Reading & reading, Value const & value, FramesLike & frames ) {
   frames.from = valueOf< Pelk::IpGenAddr >( reading, value );
}

// One kind, or a list of them.
void readLikeKind( Reading & reading, Value const & value, FramesLike & frames ) {
   std::vector< Value > const all =
      value.node.IsSequence() ? listOf( reading, value ) : std::vector{ value };
   for ( Value const & one : all ) {
      if ( auto const kind = choiceOf( reading, one, kinds() ) ) {
         frames.kinds.insert( *kind );
      }
   }
}

std::optional< FrameTarget > targetIn( Reading & reading, std::string const & text, int line ) {
   if ( text.find_first_of( ".:" ) != std::string::npos ) {
      auto const vtep = addressIn( reading, text, line );
      return vtep ? std::optional< FrameTarget >( *vtep ) : std::nullopt;
   }
   auto const intf = intfIn( reading, text, line );
   return intf ? std::optional< FrameTarget >( *intf ) : std::nullopt;
}

template< std::vector< FrameTarget > FramesLike::*targets >
void readTargets( Reading & reading, Value const & value, FramesLike & frames ) {
   for ( Value const & element : listOf( reading, value ) ) {
      auto const text = stringOf( reading, element );
      if ( auto const target = text ? targetIn( reading, *text, element.line ) : std::nullopt ) {
         ( frames.*targets ).push_back( *target );
      }
   }
}

void readVerdicts( Reading & reading, Value const & value, FramesLike & frames ) {
   for ( auto const & [ intf, about ] : keyedOf( reading, value, intfIn ) ) {
      if ( auto const verdict = choiceOf( reading, about, verdicts() ) ) {
         frames.verdicts[ intf ] = *verdict;
      }
   }
}

void readDropped( Reading & reading, Value const & value, FramesLike & frames ) {
   frames.dropped = choiceOf( reading, value, dropReasons() );
}

Table< FramesLike > const & framesTable() {
   static Table< FramesLike > const table{
      "frames-like",
      { { { "from", "" }, readLikeFrom },
        { { "kind", "" }, readLikeKind },
        { { "reach", "" }, readTargets< &FramesLike::reach > },
        { { "never-reach", "" }, readTargets< &FramesLike::neverReach > },
        { { "verdicts", "" }, readVerdicts },
        { { "dropped", "" }, readDropped },
        { { "count", "" }, readNumber< FramesLike, &FramesLike::count, 0, ~U32{ 0 } > } }
   };
   return table;
}

}  // namespace

void readFrame( Reading & reading, Value const & value, Frame & frame ) {
   readMapping( reading, value, frameTable(), frame );
   if ( !value.node.IsMap() ) {
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
   checkAddresses( reading, value, frame.fields );
   checkUdpWords( reading, value, frame.fields );
}

void readCapture( Reading & reading, Value const & value, Capture & capture ) {
   readMapping( reading, value, captureTable(), capture );
}

void readFramesLike( Reading & reading, Value const & value, FramesLike & frames ) {
   readAsWritten( reading, value, framesTable(), frames );
}

std::vector< WordList > framesVocabulary() {
   return { frameTable().list(), captureTable().list(), framesTable().list(), kinds().list(),
            verdicts().list(),   dropReasons().list(),  contents().list() };
}

}  // namespace Scenario
