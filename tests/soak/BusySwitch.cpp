#include <BusySwitch.h>

#include <fmt/format.h>

namespace Soak {

namespace {

constexpr unsigned kVirtualPorts = 2;  // that a VTEP may have
constexpr unsigned kSecondPort = 100;  // so much higher than the first

std::string vtepName( unsigned vtep ) {
   return fmt::format( "10.0.1.{}", vtep + 1 );
}

std::string segmentName( unsigned segment ) {
   return fmt::format( "Port-Channel{}", segment + 1 );
}

// --- The events

std::string joins( unsigned vtep, unsigned segment ) {
   return fmt::format( "publish: {{ segments: {{ {}: [ {} ] }} }}", segmentName( segment ),
                       vtepName( vtep ) );
}

std::string leaves( unsigned vtep, unsigned segment ) {
   return fmt::format( "withdraw: {{ segments: {{ {}: [ {} ] }} }}", segmentName( segment ),
                       vtepName( vtep ) );
}

std::string goes( unsigned segment ) {
   return fmt::format( "withdraw: {{ segments: [ {} ] }}", segmentName( segment ) );
}

// 0: it goes.
std::string virtualPortIs( unsigned vtep, unsigned which ) {
   constexpr unsigned kApart = 1000;
   return which == 0 ? fmt::format( "withdraw: {{ vteps: [ {} ] }}", vtepName( vtep ) )
                     : fmt::format( "publish: {{ vteps: {{ {}: {{ virtual-port: {} }} }} }}",
                                    vtepName( vtep ), which * kApart + vtep );
}

std::string designatedIs( unsigned segment, bool is ) {
   return fmt::format( "designated-forwarder: {{ {}: {} }}", segmentName( segment ), is );
}

}  // namespace

BusySwitch::BusySwitch( std::string const & variant, std::uint64_t seed )
      : variant_( variant ), numbers_( seed ) {
   addVtepEvents();
   addSegmentEvents();
   for ( std::size_t n = 0; n < texts_.size(); ++n ) {
      numberOf_[ texts_[ n ] ] = n;
   }
}

void BusySwitch::addVtepEvents() {
   for ( unsigned vtep = 0; vtep < kVteps; ++vtep ) {
      for ( unsigned segment = 0; segment < kSegments; ++segment ) {
         texts_.push_back( joins( vtep, segment ) );
         texts_.push_back( leaves( vtep, segment ) );
      }
      for ( unsigned which = 0; which <= kVirtualPorts; ++which ) {
         texts_.push_back( virtualPortIs( vtep, which ) );
      }
   }
}

void BusySwitch::addSegmentEvents() {
   for ( unsigned segment = 0; segment < kSegments; ++segment ) {
      texts_.push_back( goes( segment ) );
      texts_.push_back( designatedIs( segment, false ) );
      texts_.push_back( designatedIs( segment, true ) );
      for ( unsigned unit = 0; unit < kUnits; ++unit ) {
         for ( bool const is : { false, true } ) {
            texts_.push_back( memberIs( segment, unit, is ) );
            texts_.push_back( portIs( segment, unit, is ) );
         }
      }
   }
}

std::string BusySwitch::memberIs( unsigned segment, unsigned unit, bool isJoined ) {
   return fmt::format( "{}: {{ port-channels: {{ {}: [ {} ] }} }}",
                       isJoined ? "publish" : "withdraw", segmentName( segment ),
                       memberName( segment, unit ) );
}

std::string BusySwitch::memberName( unsigned segment, unsigned unit ) {
   return fmt::format( "Ethernet{}", unit * kSegments + segment + 1 );
}

std::string BusySwitch::portIs( unsigned segment, unsigned unit, bool isMoved ) {
   return fmt::format( "publish: {{ interfaces: {{ {}: {{ unit: {}, port: {} }} }} }}",
                       memberName( segment, unit ), unit,
                       segment + 1 + ( isMoved ? kSecondPort : 0 ) );
}

// --- The switch

std::string BusySwitch::scenario() const {
   std::string units;
   std::string interfaces = "    Ethernet49: { unit: 0, port: 49 }\n";
   std::string portChannels;
   std::string access;
   for ( unsigned unit = 0; unit < kUnits; ++unit ) {
      units += fmt::format( "    {}: {{ module: {} }}\n", unit, 1 + 4 * unit );
   }
   for ( unsigned segment = 0; segment < kSegments; ++segment ) {
      std::string members;
      for ( unsigned unit = 0; unit < kUnits; ++unit ) {
         std::string const name = memberName( segment, unit );
         interfaces += fmt::format( "    {}: {{ unit: {}, port: {} }}\n", name, unit, segment + 1 );
         members += ( members.empty() ? "" : ", " ) + name;
      }
      portChannels += fmt::format( "    {}: [ {} ]\n", segmentName( segment ), members );
      access += fmt::format( "    {}: 10\n", segmentName( segment ) );
   }
   return fmt::format(
      "scenario: busy\n"
      "switch:\n  name: leaf1\n  variant: {}\n  units:\n{}"
      "  tcam: {{ ingress: 1024, egress: 4096 }}\n  class-ids: {{ first: 1, last: {} }}\n"
      "  interfaces:\n{}  port-channels:\n{}"
      "forwarding:\n  vtep-addresses: [ 10.0.0.1 ]\n  underlay: [ Ethernet49 ]\n"
      "  vlans: {{ 10: 10100 }}\n  access:\n{}"
      "steps:\n  - ready: subagents::l2Ready\n",
      variant_, units, kVteps, interfaces, portChannels, access );
}

std::vector< Scenario::AddedStep > BusySwitch::events() const {
   std::vector< Scenario::AddedStep > events;
   for ( std::string const & text : texts_ ) {
      events.push_back( { "event", text, {}, true } );
   }
   return events;
}

// --- What happens

std::size_t BusySwitch::next() {
   return numberOf_.at( event() );
}

std::string BusySwitch::event() {
   if ( changesLeft_ != 0 ) {
      --changesLeft_;
      return memberChanges();
   }
   constexpr unsigned kParts = 512;
   unsigned const part = below( kParts );
   if ( part == 0 ) {
      return segmentGoes();
   }
   if ( part < 8 ) {
      return designationChanges();
   }
   return part < 256 ? virtualPortChanges() : joinOrLeave();
}

std::string BusySwitch::joinOrLeave() {
   unsigned const number = below( kVteps );
   unsigned const segment = below( kSegments );
   auto & segments = vteps_.at( number ).segments;
   if ( segments.erase( segment ) != 0 ) {
      return leaves( number, segment );
   }
   segments.insert( segment );
   segments_.insert( segment );
   return joins( number, segment );
}

std::string BusySwitch::virtualPortChanges() {
   unsigned const number = below( kVteps );
   unsigned & port = vteps_.at( number ).virtualPort;
   port = ( port + 1 + below( kVirtualPorts ) ) % ( kVirtualPorts + 1 );
   return virtualPortIs( number, port );
}

std::string BusySwitch::segmentGoes() {
   gone_ = below( kSegments );
   changesLeft_ = below( 2 * kUnits );
   for ( Vtep & vtep : vteps_ ) {
      vtep.segments.erase( gone_ );
   }
   return segments_.erase( gone_ ) != 0 ? goes( gone_ ) : memberChanges();
}

std::string BusySwitch::memberChanges() {
   unsigned const unit = below( kUnits );
   Member & member = members_.at( gone_ ).at( unit );
   if ( below( 2 ) == 0 ) {
      member.isMoved = !member.isMoved;
      return portIs( gone_, unit, member.isMoved );
   }
   member.isJoined = !member.isJoined;
   return memberIs( gone_, unit, member.isJoined );
}

std::string BusySwitch::designationChanges() {
   return designatedIs( below( kSegments ), below( 2 ) == 0 );
}

}  // namespace Soak
