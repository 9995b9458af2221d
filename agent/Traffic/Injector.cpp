#include <Traffic/Injector.h>

#include <fmt/format.h>

#include <FieldProcessor/Gport.h>
#include <Quelm/Error.h>
#include <Traffic/CaptureFile.h>

namespace Traffic {

namespace {

using Pelk::IntfId;

// Adds the interfaces with a live port on one of the chips.
void addInterfaces( Chip::ForwardingConfig & config, Scenario::Forwarding const & forwarding,
                    Vornal::VornalCommonSmData const & common ) {
   for ( auto live = common.vornalIntfToPortIter(); live; ++live ) {
      VornalTypes::VornalPort const port = live.value();
      if ( !port.isValid() || !common.vornalModIdHas( port.unit() ) ) {
         continue;
      }
      Chip::InterfaceConfig interface {
         .intfId = live.key(), .unit = port.unit(), .logicalPort = port.logicalPort()
      };
      interface.isUnderlay = forwarding.underlay.contains( live.key() );
      if ( auto const vlans = forwarding.vlans.find( live.key() );
           vlans != forwarding.vlans.end() ) {
         interface.vlans = vlans->second;
      }
      config.interfaces.push_back( interface );
   }
}

bool hasInterface( Chip::ForwardingConfig const & config, IntfId const & intfId ) {
   return std::any_of( config.interfaces.begin(), config.interfaces.end(),
                       [ & ]( auto const & interface ) { return interface.intfId == intfId; } );
}

// Adds the port channel with those members that have a port.
void addPortChannel( Chip::ForwardingConfig & config, Chip::PortChannelConfig portChannel,
                     Lag::Config const & lags ) {
   for ( auto member = lags.phyIntfIter(); member; ++member ) {
      if ( member.value()->lag() == portChannel.intfId && hasInterface( config, member.key() ) ) {
         portChannel.members.push_back( member.key() );
      }
   }
   config.portChannels.push_back( std::move( portChannel ) );
}

// Adds the port channels that carry VLANs or VXLAN.
void addPortChannels( Chip::ForwardingConfig & config, Scenario::Forwarding const & forwarding,
                      Lag::Config const & lags ) {
   for ( auto const & [ intfId, vlans ] : forwarding.vlans ) {
      if ( isPortChannel( intfId ) && !forwarding.underlay.contains( intfId ) ) {
         addPortChannel( config, { .intfId = intfId, .vlans = vlans }, lags );
      }
   }
   for ( IntfId const & intfId : forwarding.underlay ) {
      if ( isPortChannel( intfId ) ) {
         addPortChannel( config, { .intfId = intfId, .isUnderlay = true }, lags );
      }
   }
}

void addSegments( Chip::ForwardingConfig & config, Evpn::EvpnStatus const & status ) {
   for ( auto segment = status.segmentStatusIter(); segment; ++segment ) {
      for ( auto vtep = segment.value()->remoteTepIter(); vtep; ++vtep ) {
         config.sharedWith[ segment.key() ].insert( vtep.key() );
      }
   }
}

void addTunnels( Chip::ForwardingConfig & config, VornalCentral::VpIndexStatus const & ports ) {
   for ( auto vport = ports.remoteVportIter(); vport; ++vport ) {
      config.tunnels[ vport.key().vtepIp() ] = { static_cast< U16 >( vport.value() ), {} };
      for ( auto const & [ vlan, vni ] : config.vlanToVni ) {
         config.floodLists[ vni ].push_back( vport.key().vtepIp() );
      }
   }
}

}  // namespace

Injector::Injector( Context const & context )
      : context_( context ),
        forwarding_( context.scenario.forwarding ),
        pipeline_( context.units ) {}

// --- How the switch forwards

Chip::ForwardingConfig Injector::forwardingNow() const {
   Chip::ForwardingConfig config = forwarding_.value().config;
   addInterfaces( config, *forwarding_, *context_.published.common() );
   addPortChannels( config, *forwarding_, *context_.published.lagConfig() );
   addTunnels( config, *context_.published.vpIndexStatus() );
   addSegments( config, *context_.published.evpnStatus() );
   std::erase_if( config.designatedForwarder, [ & ]( auto const & one ) {
      return !isPortChannel( one.first ) && !hasInterface( config, one.first );
   } );
   return config;
}

void Injector::prepare() {
   pipeline_.forwardingIs( forwardingNow() );
}

void Injector::designateForwarders( std::map< IntfId, bool > const & isDesignated ) {
   for ( auto const & [ intf, isForwarder ] : isDesignated ) {
      if ( forwarding_ ) {
         forwarding_->config.designatedForwarder[ intf ].allVlans = isForwarder;
      }
   }
   prepare();
}

// --- Injection

VornalTypes::VornalPort Injector::portOf( IntfId const & intfId ) const {
   auto const & common = *context_.published.common();
   if ( isPortChannel( intfId ) ) {
      for ( auto const & portChannel : pipeline_.forwarding().portChannels ) {
         if ( portChannel.intfId == intfId && !portChannel.members.empty() ) {
            return common.vornalIntfToPort( portChannel.members.front() );
         }
      }
   } else if ( common.vornalIntfToPortHas( intfId ) ) {
      return common.vornalIntfToPort( intfId );
   }
   throw Quelm::Error( intfId.stringValue() + " has no port; no frame can come in on it" );
}

IntfId Injector::arrivalOf( std::optional< IntfId > const & on ) const {
   return on ? *on : *forwarding_->underlay.begin();
}

// Of a frame to the switch's own VTEP, if it comes through a tunnel.
std::vector< U8 > Injector::bytesOf( Chip::FrameFields fields ) const {
   if ( fields.outer ) {
      auto const & ownVtep = fields.outer->sourceVtep.family() == Pelk::IpGenAddr::Family::ipv4
                                ? forwarding_->config.vtepIpv4
                                : forwarding_->config.vtepIpv6;
      fields.outer->destinationVtep = ownVtep.value_or( Pelk::IpGenAddr() );
   }
   return Chip::bytesOf( fields );
}

void Injector::inject( Chip::FrameFields const & fields, std::optional< IntfId > const & on ) {
   prepare();
   IntfId const arrival = arrivalOf( on );
   VornalTypes::VornalPort const port = portOf( arrival );
   std::vector< U8 > const bytes = bytesOf( fields );
   tellBegin( arrival, 1 );
   if ( captures_ ) {
      captures_->timeIs( context_.activity.clock()->now() );
   }
   forward( port, bytes );
}

void Injector::injectCapture( std::filesystem::path const & file, IntfId const & on ) {
   prepare();
   VornalTypes::VornalPort const port = portOf( on );
   Chip::CaptureReader reader = openedCapture( file );
   tellBegin( on, framesIn( file ) );
   while ( auto const frame = reader.next() ) {
      if ( captures_ ) {
         captures_->timeIs( frame->timestamp );
      }
      forward( port, frame->bytes );
   }
}

void Injector::tellBegin( IntfId const & arrival, U64 frames ) {
   context_.observer.onEvent( Story::FramesBegin{ arrival.stringValue(), frames } );
   if ( onlooker_ ) {
      onlooker_->framesBegin();
   }
}

void Injector::forward( VornalTypes::VornalPort arrival, Chip::Bytes frame ) {
   if ( onlooker_ ) {
      onlooker_->look( frames_ + 1, { arrival, { frame.begin(), frame.end() } } );
   }
   Chip::FrameStory const & story = captures_ ? pipeline_.forward( arrival, frame, *captures_ )
                                              : pipeline_.forward( arrival, frame, nowhere_ );
   if ( captures_ ) {
      captures_->flush();
   }
   context_.observer.onEvent( Story::FrameForwarded{ ++frames_, story } );
}

// --- Questions

std::set< IntfId > Injector::configured() const {
   std::set< IntfId > interfaces;
   if ( forwarding_ ) {
      interfaces = forwarding_->underlay;
      for ( auto const & [ interface, vlans ] : forwarding_->vlans ) {
         interfaces.insert( interface );
      }
   }
   return interfaces;
}

ArrivingFrame Injector::frameOf( CapturedFrame const & captured ) const {
   Chip::CaptureReader reader = openedCapture( captured.file );
   for ( U64 number = 1; auto const one = reader.next(); ++number ) {
      if ( number == captured.number ) {
         return { portOf( arrivalOf( captured.on ) ), { one->bytes.begin(), one->bytes.end() } };
      }
   }
   throw Quelm::Error( fmt::format( "{} has {} frames, and no frame {}", captured.file.string(),
                                    framesIn( captured.file ), captured.number ) );
}

ArrivingFrame Injector::arriving( FrameAsked const & asked ) {
   if ( !forwarding_ ) {
      throw Quelm::Error( "the scenario has no 'forwarding', so no frame can come in" );
   }
   prepare();
   if ( auto const * const captured = std::get_if< CapturedFrame >( &asked ) ) {
      return frameOf( *captured );
   }
   auto const & written = std::get< WrittenFrame >( asked );
   return { portOf( arrivalOf( written.on ) ), bytesOf( written.fields ) };
}

Chip::Explanation Injector::explain( ArrivingFrame const & frame, std::size_t nearMisses ) {
   prepare();
   return Chip::explain( pipeline_, frame.port, frame.bytes, { .nearMisses = nearMisses } );
}

}  // namespace Traffic
