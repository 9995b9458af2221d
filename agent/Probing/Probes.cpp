#include <Probing/Probes.h>

#include <algorithm>
#include <tuple>
#include <utility>

#include <Story/Event.h>

namespace Probing {

namespace {

using Chip::FrameKind;
using Chip::Verdict;

class Nowhere final : public Chip::Transmitter {
 public:
   void transmit( VornalTypes::VornalPort, std::span< U8 const > ) override {}
};

void send( Chip::Pipeline & pipeline, ProbeFrame const & frame, auto const & look ) {
   Nowhere nowhere;
   look( pipeline.forward( frame.arrival, frame.bytes, nowhere ) );
}

// What the ways of frames, and the promises about them, depend on.
auto part( Audit::State const & state ) {
   return std::tie( state.modules, state.ports, state.lags, state.segments, state.virtualPorts,
                    state.vnis, state.isOverrideRuleOn, state.isL3MulticastExempt );
}

bool isShared( Audit::State const & state, Pelk::IntfId const & intf,
               Pelk::IpGenAddr const & vtep ) {
   for ( auto const & [ segment, vteps ] : state.segments ) {
      auto const lag = state.lags.find( segment );
      bool const isHere =
         segment == intf || ( lag != state.lags.end() && lag->second.contains( intf ) );
      if ( isHere && vteps.contains( vtep ) ) {
         return true;
      }
   }
   return false;
}

bool isVniOfVrf( Audit::State const & state, Chip::Vni vni ) {
   for ( auto const & [ tunnel, vnis ] : state.vnis ) {
      for ( auto const & [ vrf, ofVrf ] : vnis ) {
         if ( ofVrf == vni ) {
            return true;
         }
      }
   }
   return false;
}

std::string_view familyOf( FrameKind kind ) {
   switch ( kind ) {
   case FrameKind::RoutedMulticast: return "known L3 multicast frames";
   case FrameKind::KnownUnicast: return "known unicast frames";
   case FrameKind::RoutedUnicast: return "routed unicast frames";
   default: return "flooded frames";
   }
}

std::string textOf( FrameKind kind, bool isToBeKept, bool wasRight ) {
   std::string_view const wrong =
      isToBeKept ? ( wasRight ? "leave by a shared port again" : "still leave by a shared port" )
                 : ( wasRight ? "reach a port no more" : "do not reach a port yet" );
   return std::string( familyOf( kind ) ) + ' ' + std::string( wrong );
}

}  // namespace

std::set< std::string > unexplained( Seen const & seen, Audit::Report const & report,
                                     bool isPluginReady ) {
   std::set< std::string > texts;
   for ( auto const & [ what, vtep ] : seen.lasting ) {
      if ( isPluginReady && report.differences.empty() && !report.unprotected.contains( vtep ) ) {
         texts.insert( what );
      }
   }
   return texts;
}

void Probes::watch( Chip::Units const & units, StateNow stateNow ) {
   pipeline_.emplace( units );
   stateNow_ = std::move( stateNow );
}

// Before the first call no frame can go wrong by a rule. From then on each change of the state is
// looked at before the plug-in acts on it.
void Probes::onEvent( Story::Event const & event ) {
   if ( std::holds_alternative< Story::PublishedChange >( event ) ) {
      if ( hasCalls_ && hasStateChanged() ) {
         takeState();
         look( false );
      }
   } else if ( std::holds_alternative< Story::CallMade >( event ) ) {
      if ( !std::exchange( hasCalls_, true ) && hasStateChanged() ) {
         takeState();
      }
      look( true );
   }
}

bool Probes::hasStateChanged() {
   Audit::State const now = stateNow_();
   bool const isOther = part( now ) != part( state_ );
   if ( isOther ) {
      state_ = now;
   }
   return isOther;
}

void Probes::takeState() {
   switch_ = probedSwitchOf( state_ );
   pipeline_->forwardingIs( switch_.forwarding );
   for ( ProbeFrame const & frame : switch_.fromHosts ) {
      send( *pipeline_, frame, []( Chip::FrameStory const & ) {} );
   }
   for ( auto & [ way, watch ] : watches_ ) {
      bool const isToBeKept = this->isToBeKept( way );
      if ( isToBeKept != watch.isToBeKept ) {
         end( way, watch );
         watch = { .isToBeKept = isToBeKept, .look = watch.look };
      }
   }
}

void Probes::look( bool isBehindCall ) {
   ++look_;
   for ( ProbeFrame const & frame : switch_.probes ) {
      Way way{ .vtep = frame.vtep,
               .virtualPort = frame.virtualPort,
               .arrivalUnit = frame.arrival.unit(),
               .vni = frame.vni,
               .kind = frame.kind };
      send( *pipeline_, frame, [ & ]( Chip::FrameStory const & story ) {
         for ( Chip::Copy const & copy : story.copies ) {
            way.intf = copy.intfId;
            way.port = copy.port;
            see( way, copy.verdict == Verdict::Masked || copy.verdict == Verdict::Dropped,
                 isBehindCall );
         }
      } );
   }
   seen_.frames += switch_.probes.size();
   std::erase_if( watches_, [ this ]( auto const & one ) {
      bool const isGone = one.second.look != look_;
      if ( isGone ) {
         end( one.first, one.second );
      }
      return isGone;
   } );
}

void Probes::see( Way const & way, bool isKept, bool isBehindCall ) {
   auto const [ found, isNew ] = watches_.try_emplace( way );
   Watch & watch = found->second;
   if ( isNew ) {
      watch.isToBeKept = isToBeKept( way );
      // A chip without a rule lets every frame through.
      watch.wasRight = !watch.isToBeKept && look_ == 1;
   }
   watch.look = look_;
   watch.isWrong = isKept != watch.isToBeKept;
   if ( !watch.isWrong ) {
      end( way, watch );
      watch.calls = 0;
      watch.wasRight = true;
      watch.isLasting = false;
   } else if ( isBehindCall && !watch.isLasting ) {
      ++watch.calls;
   }
}

bool Probes::isToBeKept( Way const & way ) const {
   bool const isExempt = way.kind == FrameKind::RoutedMulticast && state_.isOverrideRuleOn &&
                         isVniOfVrf( state_, way.vni );
   return isForSeveral( way.kind ) && !isExempt && isShared( state_, way.intf, way.vtep );
}

// Of a transient, if it is one.
void Probes::end( Way const & way, Watch const & watch ) {
   if ( watch.calls != 0 ) {
      U32 & longest = seen_.transients[ textOf( way.kind, watch.isToBeKept, watch.wasRight ) ];
      longest = std::max( longest, watch.calls );
   }
}

Seen Probes::seenAtRest() {
   for ( auto & [ way, watch ] : watches_ ) {
      if ( watch.isWrong ) {
         watch.isLasting = true;
         watch.calls = 0;
         seen_.lasting.emplace( textOf( way.kind, watch.isToBeKept, watch.wasRight ), way.vtep );
      }
   }
   return std::exchange( seen_, {} );
}

}  // namespace Probing
