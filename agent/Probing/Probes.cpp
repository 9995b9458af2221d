#include <Probing/Probes.h>

#include <algorithm>
#include <tuple>
#include <utility>

#include <Audit/SharedSegments.h>
#include <Quelm/Assert.h>
#include <Story/Event.h>

namespace Probing {

namespace {

using Chip::FrameKind;
using Chip::Verdict;

class Nowhere final : public Chip::Transmitter {
 public:
   void transmit( VornalTypes::VornalPort, std::span< U8 const > ) override {}
};

// What the ways of frames, and the promises about them, depend on.
auto part( Audit::State const & state ) {
   return std::tie( state.modules, state.ports, state.lags, state.segments, state.virtualPorts,
                    state.vnis, state.isOverrideRuleOn, state.isL3MulticastExempt );
}

bool isShared( Audit::State const & state, VornalTypes::VornalPort port,
               Pelk::IpGenAddr const & vtep ) {
   auto const ports = sharedPorts( state, port.unit(), vtep );
   return std::any_of( ports.begin(), ports.end(), [ & ]( VornalTypes::VornalPort one ) {
      return one.logicalPort() == port.logicalPort();
   } );
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

namespace {

// Whether the difference is one of a rule that decides about such frames: the VTEP's own, or an
// exemption.
bool canCause( Story::Difference const & difference, Lasting const & lasting ) {
   constexpr std::string_view kExemption = "Skip shared ES pruning";
   std::string const own = lasting.vtep ? "vtep IP " + lasting.vtep->stringValue() + " on " : "";
   bool const isHere = !difference.unit || *difference.unit == lasting.unit;
   bool const isOfVtep = !own.empty() && difference.rule.find( own ) != std::string::npos;
   return isHere && ( isOfVtep || difference.rule.starts_with( kExemption ) );
}

}  // namespace

std::set< Lasting > unexplained( Seen const & seen, Audit::Report const & report,
                                 bool isPluginReady ) {
   std::set< Lasting > result;
   for ( Lasting const & lasting : seen.lasting ) {
      bool const isExplained = std::any_of( report.differences.begin(), report.differences.end(),
                                            [ & ]( auto const & difference ) {
                                               return canCause( difference, lasting );
                                            } );
      if ( isPluginReady && !isExplained ) {
         result.insert( lasting );
      }
   }
   return result;
}

void Probes::watch( Chip::Units const & units, StateNow stateNow ) {
   units_ = &units;
   pipeline_.emplace( units );
   stateNow_ = std::move( stateNow );
   readState();
}

// Before the first call no frame can go wrong by a rule. From then on each change of the state is
// looked at before the plug-in acts on it.
void Probes::onEvent( Story::Event const & event ) {
   if ( std::holds_alternative< Story::PublishedChange >( event ) ) {
      readState();
   } else if ( std::holds_alternative< Story::CallMade >( event ) ) {
      if ( !std::exchange( hasCalls_, true ) ) {
         takeState();
      }
      look( true );
   }
}

void Probes::readState() {
   Audit::State now = stateNow_();
   if ( part( now ) == part( state_ ) ) {
      return;
   }
   state_ = std::move( now );
   for ( auto const & [ tunnel, ofVrfs ] : state_.vnis ) {
      for ( auto const & [ vrf, vni ] : ofVrfs ) {
         vnis_.insert( vni );
      }
   }
   if ( hasCalls_ ) {
      takeState();
      look( false );
   }
}

void Probes::takeState() {
   switch_ = probedSwitchOf( state_, vnis_ );
   pipeline_->forwardingIs( switch_.forwarding );
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
      Way way{ .arrival = frame.arrival, .vtep = frame.vtep, .vni = frame.vni, .kind = frame.kind };
      Nowhere nowhere;
      Chip::FrameStory const & story = pipeline_->forward( frame.arrival, frame.bytes, nowhere );
      QUELM_ASSERT( story.kind == frame.kind && !story.dropReason && "the frame is a probe" );
      for ( Chip::Copy const & copy : story.copies ) {
         way.intf = copy.intfId;
         way.port = copy.port;
         see( way, copy, isBehindCall );
      }
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

void Probes::see( Way const & way, Chip::Copy const & copy, bool isBehindCall ) {
   bool const isKept = copy.verdict == Verdict::Masked || copy.verdict == Verdict::Dropped;
   auto const [ found, isNew ] = watches_.try_emplace( way );
   Watch & watch = found->second;
   if ( isNew ) {
      watch.isToBeKept = isToBeKept( way );
      // A chip without a rule lets every frame through.
      watch.wasRight = !watch.isToBeKept && look_ == 1;
   }
   watch.look = look_;
   watch.rule = copy.rule;
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
   return way.vtep && isForSeveral( way.kind ) && !isExempt &&
          isShared( state_, way.port, *way.vtep );
}

// Of a transient, if it is one.
void Probes::end( Way const & way, Watch const & watch ) {
   if ( watch.calls != 0 ) {
      U32 & longest = seen_.transients[ textOf( way.kind, watch.isToBeKept, watch.wasRight ) ];
      longest = std::max( longest, watch.calls );
   }
}

std::string Probes::nameOf( Chip::RuleKey const & rule ) const {
   std::string name;
   units_->forEachEntry( [ & ]( Chip::RuleKey const & key, Chip::Entry const & entry ) {
      if ( key == rule ) {
         name = entry.name();
      }
   } );
   return name;
}

Seen Probes::seenAtRest() {
   if ( hasCalls_ ) {
      look( false );
   }
   for ( auto & [ way, watch ] : watches_ ) {
      if ( watch.isWrong ) {
         watch.isLasting = true;
         watch.calls = 0;
         seen_.lasting.insert( { textOf( way.kind, watch.isToBeKept, watch.wasRight ),
                                 way.port.unit(), way.vtep,
                                 watch.rule ? nameOf( *watch.rule ) : "" } );
      }
   }
   return std::exchange( seen_, {} );
}

}  // namespace Probing
