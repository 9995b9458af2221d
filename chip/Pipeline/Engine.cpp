#include <Pipeline/Engine.h>

#include <Pipeline/Termination.h>

namespace Chip {

namespace {

// As new, but for the room that its lists have.
void clear( FrameStory & story ) {
   story.ingress.clear();
   story.copies.clear();
   story = { .ingress = std::move( story.ingress ), .copies = std::move( story.copies ) };
}

// For frames that are not meant to leave.
class Nowhere final : public Transmitter {
 public:
   void transmit( VornalTypes::VornalPort /*port*/, Bytes /*frame*/ ) override {}
};

template< typename Counters, typename Name > void countOne( Counters & counters, Name name ) {
   ++counters[ static_cast< std::size_t >( name ) ];
}

}  // namespace

Pipeline::Engine::Engine( Units const & units )
      : units_( units ), tables_( std::make_shared< Tables >( units, ForwardingConfig{} ) ) {}

void Pipeline::Engine::forwardingIs( ForwardingConfig const & config ) {
   auto after = std::make_shared< Tables >( units_, config );
   macs_ = macs_.movedTo( *tables_, *after );
   tables_ = std::move( after );
}

FrameStory const & Pipeline::Engine::forward( VornalTypes::VornalPort arrival, Bytes frame,
                                              Transmitter & transmitter ) {
   transmitter_ = &transmitter;
   frame_ = {};
   clear( story_ );
   story_.dropReason = prepare( arrival, frame );
   if ( !story_.dropReason ) {
      replicate();
   }
   count();
   return story_;
}

Rehearsal Pipeline::Engine::rehearse( VornalTypes::VornalPort arrival, Bytes frame ) const {
   auto const copy = std::make_unique< Engine >( *this );
   Nowhere nowhere;
   Rehearsal result{ .story = copy->forward( arrival, frame, nowhere ), .tables = tables_ };
   result.number = copy->counters_.frames;
   result.learning = copy->frame_.learning;
   if ( result.learning ) {
      InnerStory const & inner = *result.story.inner;
      result.source = macs_.entry( inner.vlan, inner.source, *tables_ );
   }
   result.destination = copy->destinationLookup();
   result.ingress = copy->ingressFields();
   return result;
}

Pipeline::Engine::Failure Pipeline::Engine::prepare( VornalTypes::VornalPort arrival,
                                                     Bytes frame ) {
   if ( Failure const failure = arrive( arrival, frame ) ) {
      return failure;
   }
   bool const isUnderlay = tables_->interfaces[ frame_.interface ].isUnderlay;
   if ( Failure const failure = isUnderlay ? admitFromTunnel( frame ) : admitFromAccess( frame ) ) {
      return failure;
   }
   if ( frame_.bytes.size() > kLargestFrame ) {
      return DropReason::FrameTooLong;
   }
   learn();
   if ( Failure const failure = decide() ) {
      return failure;
   }
   startRuleCheck();
   rules_.enter( frame_.unit );
   return std::nullopt;
}

Pipeline::Engine::Failure Pipeline::Engine::arrive( VornalTypes::VornalPort arrival, Bytes frame ) {
   story_.arrivalPort = arrival;
   story_.length = frame.size();
   frame_.unit = tables_->unitOf( arrival.unit() );
   if ( frame_.unit == kNone || arrival.logicalPort() >= Brum::PerUnitBitmap::kBits ) {
      return DropReason::UnknownPort;
   }
   UnitTables const & unit = tables_->units[ frame_.unit ];
   story_.arrivalPort = { unit.number, arrival.logicalPort(), unit.modId };
   frame_.interface = unit.interfaces[ arrival.logicalPort() ];
   if ( frame_.interface == kNone ) {
      return DropReason::UnknownPort;
   }
   story_.arrivalIntfId = tables_->interfaces[ frame_.interface ].intfId;
   return std::nullopt;
}

Pipeline::Engine::Failure Pipeline::Engine::admitFromTunnel( Bytes frame ) {
   Terminated terminated;
   if ( Failure const failure = terminate( *tables_, frame, terminated, story_.tunnel ) ) {
      return failure;
   }
   frame_.tunnel = terminated.tunnel;
   frame_.domain = terminated.domain;
   readHeaders( terminated.inner, terminated.ethernet, tables_->domains[ frame_.domain ].vlan );
   return std::nullopt;
}

Pipeline::Engine::Failure Pipeline::Engine::admitFromAccess( Bytes frame ) {
   std::optional< EthernetHeader > const ethernet = readEthernet( frame );
   if ( !ethernet ) {
      return DropReason::FrameTooShort;
   }
   Vlan const untagged = tables_->interfaces[ frame_.interface ].untagged;
   Vlan const vlan = ethernet->vlan() != 0 ? ethernet->vlan() : untagged;
   readHeaders( frame, *ethernet, vlan );
   frame_.domain = tables_->domainOf( vlan );
   bool const isCarried = frame_.domain != kNone &&
                          tables_->domains[ frame_.domain ].find( frame_.interface ) != nullptr;
   return isCarried ? Failure() : DropReason::UnknownVlan;
}

void Pipeline::Engine::readHeaders( Bytes bytes, EthernetHeader const & ethernet, Vlan vlan ) {
   frame_.bytes = bytes;
   frame_.ethernet = ethernet;
   frame_.ip = readInnerIp( ethernet, bytes );
   IpHeader const & ip = frame_.ip.header;
   story_.inner = InnerStory{ .source = ethernet.source,
                              .destination = ethernet.destination,
                              .vlan = vlan,
                              .etherType = ethernet.etherType };
   if ( frame_.ip.isSound() ) {
      story_.inner->ip = IpStory{ ip.source, ip.destination };
      frame_.flowHash = flowHashOf( ethernet, &ip, ip.payloadOf( frame_.ip.packet ) );
   } else {
      frame_.flowHash = flowHashOf( ethernet, nullptr, {} );
   }
}

void Pipeline::Engine::learn() {
   Place const place =
      isFromTunnel() ? Place{ true, frame_.tunnel } : Place{ false, frame_.interface };
   frame_.learning = macs_.learn( story_.inner->vlan, frame_.ethernet.source, place, *tables_,
                                  counters_.frames + 1 );
}

Pipeline::Engine::Failure Pipeline::Engine::decide() {
   MacAddress const destination = frame_.ethernet.destination;
   Failure failure;
   if ( destination.isReserved() ) {
      return DropReason::ReservedAddress;
   }
   if ( destination == tables_->config.routerMac ) {
      failure = decideRouted();
   } else if ( destination.isBroadcast() ) {
      frame_.kind = FrameKind::Broadcast;
   } else if ( destination.isGroup() ) {
      Vlan const vlan = tables_->domains[ frame_.domain ].vlan;
      frame_.kind = isRoutedMulticast( *tables_, frame_.ip, vlan ) ? FrameKind::RoutedMulticast
                                                                   : FrameKind::L2Multicast;
   } else {
      failure = findDestination( destination, FrameKind::KnownUnicast );
   }
   story_.kind = frame_.kind;
   return failure;
}

Pipeline::Engine::Failure Pipeline::Engine::decideRouted() {
   frame_.kind = FrameKind::RoutedUnicast;
   if ( Failure const failure = findRoute( *tables_, frame_.ip, frame_.route ) ) {
      return failure;
   }
   frame_.domain = frame_.route.domain;
   return findDestination( frame_.route.mac, FrameKind::RoutedUnicast );
}

Pipeline::Engine::Failure Pipeline::Engine::findDestination( MacAddress address,
                                                             FrameKind ifKnown ) {
   frame_.kind = ifKnown;
   Place const * const place = macs_.find( tables_->domains[ frame_.domain ].vlan, address );
   if ( !place ) {
      if ( ifKnown == FrameKind::RoutedUnicast ) {
         return DropReason::UnknownHost;
      }
      frame_.kind = FrameKind::UnknownUnicast;
      return std::nullopt;
   }
   frame_.destination = *place;
   if ( place->isTunnel && isFromTunnel() ) {
      return DropReason::TunnelToTunnel;
   }
   bool const isBridgedBack = ifKnown == FrameKind::KnownUnicast && !isFromTunnel() &&
                              *place == Place{ false, frame_.interface };
   return isBridgedBack ? DropReason::SameInterface : Failure();
}

// What findDestination() has looked for, if the frame got there.
std::optional< DestinationLookup > Pipeline::Engine::destinationLookup() const {
   bool const isRouted = story_.kind == FrameKind::RoutedUnicast;
   bool const isBridged =
      story_.kind == FrameKind::KnownUnicast || story_.kind == FrameKind::UnknownUnicast;
   if ( !isBridged && !( isRouted && frame_.route.domain != kNone ) ) {
      return std::nullopt;
   }
   Vlan const vlan = tables_->domains[ frame_.domain ].vlan;
   MacAddress const address = isRouted ? frame_.route.mac : frame_.ethernet.destination;
   return DestinationLookup{ vlan, address, macs_.entry( vlan, address, *tables_ ) };
}

void Pipeline::Engine::startRuleCheck() {
   rules_.start( *tables_, ingressFields(), ipTypeOf( frame_.ethernet.etherType ), story_.ingress );
}

IngressFields Pipeline::Engine::ingressFields() const {
   IngressFields fields{ .packetRes = packetResolutionOf( frame_.kind ) };
   if ( isFromTunnel() ) {
      fields.srcVxlanGport = tables_->tunnels[ frame_.tunnel ].gport;
      fields.tunnelTerminated = true;
      fields.vxlanNetworkId = *story_.tunnel->vni;
   }
   return fields;
}

void Pipeline::Engine::replicate() {
   departure_.start( frame_.bytes, frame_.ethernet );
   if ( frame_.kind == FrameKind::RoutedUnicast ) {
      rewriteRouted( tables_->config.routerMac, frame_.route, frame_.ethernet,
                     departure_.ownCopy() );
   }
   if ( isForSeveral( frame_.kind ) ) {
      flood();
   } else if ( frame_.destination.isTunnel ) {
      copyInto( frame_.destination.index );
   } else {
      copyTo( *tables_->domains[ frame_.domain ].find( frame_.destination.index ) );
   }
}

void Pipeline::Engine::flood() {
   BridgeDomain const & domain = tables_->domains[ frame_.domain ];
   for ( DomainInterface const & interface : domain.interfaces ) {
      copyTo( interface );
   }
   if ( !isFromTunnel() ) {
      for ( Index const tunnel : domain.floodList ) {
         copyInto( tunnel );
      }
   }
}

void Pipeline::Engine::copyTo( DomainInterface const & to ) {
   Copy & copy = addCopy( to.interface );
   std::vector< VornalTypes::VornalPort > const & ports = tables_->interfaces[ to.interface ].ports;
   if ( to.interface == frame_.interface && isForSeveral( frame_.kind ) ) {
      copy.port = story_.arrivalPort;
      copy.verdict = Verdict::Arrival;
   } else if ( ports.empty() ) {
      copy.verdict = Verdict::NoPort;
   } else {
      U32 hash = frame_.flowHash;
      copy.port = chosen( ports, hash );
      judge( copy, to.isDesignated );
   }
   if ( copy.verdict == Verdict::Sent ) {
      Vlan const vlan = tables_->domains[ frame_.domain ].vlan;
      transmitter_->transmit( copy.port,
                              to.isTagged ? departure_.tagged( vlan ) : departure_.untagged() );
   }
}

void Pipeline::Engine::copyInto( Index tunnel ) {
   Tunnel const & to = tables_->tunnels[ tunnel ];
   U32 hash = frame_.flowHash;
   Index const interface = to.underlay.empty() ? kNone : chosen( to.underlay, hash );
   Copy & copy = addCopy( interface );
   copy.remoteVtep = to.remoteVtep;
   if ( interface == kNone ) {
      copy.verdict = Verdict::NoPort;
      return;
   }
   ForwardingInterface const & underlay = tables_->interfaces[ interface ];
   copy.port = chosen( underlay.ports, hash );
   if ( !to.outer ) {
      copy.verdict = Verdict::NoVtep;
      return;
   }
   judge( copy, true );
   if ( copy.verdict == Verdict::Sent ) {
      transmitter_->transmit( copy.port,
                              departure_.enveloped( *to.outer,
                                                    { .vni = tables_->domains[ frame_.domain ].vni,
                                                      .flowHash = frame_.flowHash,
                                                      .neighbour = underlay.neighbour } ) );
   }
}

void Pipeline::Engine::judge( Copy & copy, bool isDesignated ) {
   copy.verdict = rules_.judge( copy.port, copy.rule );
   // Split horizon by designation is for frames that the other forwarders of the segment have too
   // (RFC 7432, section 8.5).
   bool const needsDesignation = isFromTunnel() && isForSeveral( frame_.kind );
   if ( copy.verdict == Verdict::Sent && needsDesignation && !isDesignated ) {
      copy.verdict = Verdict::NotDesignated;
   }
}

Copy & Pipeline::Engine::addCopy( Index interface ) {
   Copy & copy = story_.copies.emplace_back();
   if ( interface != kNone ) {
      copy.intfId = tables_->interfaces[ interface ].intfId;
   }
   return copy;
}

void Pipeline::Engine::count() {
   ++counters_.frames;
   if ( story_.dropReason ) {
      countOne( counters_.dropped, *story_.dropReason );
      return;
   }
   countOne( counters_.forwarded, frame_.kind );
   for ( Copy const & copy : story_.copies ) {
      countOne( counters_.copies, copy.verdict );
   }
}

}  // namespace Chip
