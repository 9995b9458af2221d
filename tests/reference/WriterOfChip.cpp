// The moves in the chip and around it: room, class ids, frames, faults, verification.
#include <Writer.h>

#include <algorithm>

#include <Names.h>

namespace Moves {

// --- Room, class ids, frames

Writer::Yaml Writer::othersHold( Move const & move ) {
   if ( world_.isCalm ) {
      return {};
   }
   bool const isIngress = move.place % 2 == 0;
   std::string const unit =
      move.who % 3 == 0 ? "" : ", unit: " + std::to_string( move.who % world_.units );
   unsigned const all = isIngress ? world_.ingressEntries : world_.egressEntries;
   unsigned const free = move.number % 5;  // that are left to the plug-in
   return "foreign-entries: { group: " + std::string( isIngress ? "ingress" : "egress" ) + unit +
          ", count: " + std::to_string( all > free ? all - free : 0 ) + " }";
}

Writer::Yaml Writer::grantIs( Move const & move ) {
   if ( world_.isCalm || world_.variant != "class-id" ) {
      return {};
   }
   Name const & vtep = pick( kVteps, move.who );
   granted_.insert( vtep );
   return "publish: { class-id-grants: { '" + vtep +
          "': " + std::to_string( pick( kClassIds, move.number ) ) + " } }";
}

Writer::Yaml Writer::grantGoes( Move const & move ) {
   Name const & vtep = pick( kVteps, move.who );
   if ( granted_.erase( vtep ) == 0 ) {
      return {};
   }
   return "withdraw: { class-id-grants: [ '" + vtep + "' ] }";
}

void Writer::grantIsUncertain( Name const & vtep ) {
   if ( !isPaused_ ) {
      granted_.erase( vtep );
   }
}

Writer::Yaml Writer::allocatorPauses( Move const & move ) {
   bool const isToPause = move.number % 4 == 0;  // mostly it serves
   if ( world_.isCalm || world_.variant != "class-id" || isToPause == isPaused_ ) {
      return {};
   }
   isPaused_ = isToPause;
   granted_.clear();
   return std::string( "class-id-allocator: " ) + ( isPaused_ ? "paused" : "serving" );
}

Writer::Yaml Writer::designatedIs( Move const & move ) {
   if ( !canForward() ) {
      return {};
   }
   return "designated-forwarder: { " + pick( kSegments, move.place ) + ": " +
          ( move.number % 2 == 0 ? "false" : "true" ) + " }";
}

// A host's frame: the chip learns where the host is.
Writer::Yaml Writer::hostSends( Move const & move ) {
   Name const & intf = pick( kSegments, move.place );
   if ( !canForward() || !hasPort( intf ) ) {
      return {};
   }
   return "frame: { on: " + intf + ", source: 00:00:5e:00:53:1" +
          std::to_string( move.number % 2 ) + " }";
}

// A VTEP's frame for that host.
Writer::Yaml Writer::hostIsSentTo( Move const & move ) {
   Name const & vtep = pick( kVteps, move.who );
   if ( !canForward() || !isInChip( vtep ) ) {
      return {};
   }
   return "frame: { from: '" + vtep +
          "', vni: 10100, source: 00:00:5e:00:53:02, destination: 00:00:5e:00:53:1" +
          std::to_string( move.number % 2 ) + " }";
}

// --- Faults, verification

Writer::Yaml Writer::callFails( Move const & move ) {
   if ( !hasFaults() || move.number % 3 > 0 ) {
      return {};  // most of them end the story
   }
   std::string const operation = pick( kOperations, move.place );
   return "fail-call: { " + ( operation.empty() ? "" : "operation: " + operation + ", " ) +
          "number: " + std::to_string( 1 + move.who % 5 ) +
          ( move.number % 4 == 0 ? ", lasting: true" : "" ) + ", code: -1 }";
}

Writer::Yaml Writer::entryIsRefused( Move const & move ) {
   return hasFaults() ? "refuse-entry: { number: " + std::to_string( 1 + move.number ) + " }"
                      : Yaml();
}

// On a calm switch, the pass must not stop.
Writer::Yaml Writer::passRuns( Move const & ) {
   return world_.isCalm && !haveAllVirtualPorts() ? Yaml() : "verify: plug-in";
}

bool Writer::haveAllVirtualPorts() const {
   return std::all_of( segments_.begin(), segments_.end(), [ & ]( auto const & segment ) {
      return std::all_of( segment.second.begin(), segment.second.end(),
                          [ & ]( Name const & vtep ) { return virtualPort_.contains( vtep ); } );
   } );
}

// --- Looks

bool Writer::isInChip( Name const & vtep ) const {
   return virtualPort_.contains( vtep ) ||
          std::any_of( kOtherKeys.begin(), kOtherKeys.end(), [ & ]( std::string const & key ) {
             return otherKey_.contains( vtep + key );
          } );
}

// A frame of every VTEP that the switch has a virtual port for.
std::vector< Step > Writer::looks() const {
   std::vector< Step > all;
   for ( Name const & vtep : kVteps ) {
      if ( canForward() && isInChip( vtep ) ) {
         all.push_back(
            { "frame: { from: '" + vtep + "', vni: 10100, source: 00:00:5e:00:53:02 }", true } );
      }
   }
   return all;
}

}  // namespace Moves
