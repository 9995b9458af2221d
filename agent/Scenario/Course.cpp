#include <Scenario/Course.h>

#include <utility>

namespace Scenario {

using Pelk::IpGenAddr;

// --- The effect of a step

void Course::publish( std::vector< Change > const & changes ) {
   if ( !isKnown_ ) {
      return;
   }
   for ( Change const & change : changes ) {
      line_ = change.line;
      std::visit( [ this ]( auto const & what ) { enters( what ); }, change.what );
   }
   arePortsNew_ = true;
}

void Course::withdraw( std::vector< Change > const & changes ) {
   if ( !isKnown_ ) {
      return;
   }
   for ( Change const & change : changes ) {
      line_ = change.line;
      std::visit( [ this ]( auto const & what ) { leaves( what ); }, change.what );
   }
}

void Course::replace( std::vector< Replacement > const & replacements ) {
   for ( Replacement const & one : replacements ) {
      std::visit( [ this ]( auto const & what ) { takesThePlace( what ); }, one.what );
   }
}

void Course::mayChange( StateDatabase::EntityPath const & path ) {
   bool const isOfPlugin = !path.segments().empty() && path.segments().front().name == "plugins";
   isKnown_ = isKnown_ && isOfPlugin;
}

void Course::stepEnds() {
   if ( std::exchange( arePortsNew_, false ) && isKnown_ ) {
      checkIndices();
   }
}

// --- State that enters

void Course::enters( SegmentVtep const & what ) {
   segments_[ what.intf ].insert( what.vtep );
   sharesASegment( what.vtep );
}

void Course::enters( VtepVirtualPort const & what ) {
   virtualPorts_.insert_or_assign( what.vtep, VirtualPort{ what.virtualPort, line_ } );
}

void Course::sharesASegment( IpGenAddr const & vtep ) {
   if ( hasClassIds_ ) {
      asking_.insert( vtep );
   }
}

void Course::takesThePlace( SegmentReplaced const & what ) {
   segments_[ what.intf ] = { what.vteps.begin(), what.vteps.end() };
   for ( IpGenAddr const & vtep : what.vteps ) {
      sharesASegment( vtep );
   }
}

void Course::takesThePlace( TunnelInterfaceReplaced const & what ) {
   auto & vrfs = tunnels_[ what.intf ];
   vrfs.clear();
   for ( VrfVni const & one : what.vnis ) {
      vrfs.insert( one.vrf );
   }
}

// --- State that leaves

void Course::mustBeThere( bool isThere, std::string const & absent ) {
   if ( !isThere ) {
      reading_.problem( line_, absent +
                                  " at this point, so nothing can be withdrawn; publish it "
                                  "before, or leave this out" );
   }
}

// An undefined interface has been reported as such.
void Course::mustBeThere( bool isThere, Pelk::IntfId const & intf, std::string const & absent ) {
   mustBeThere( isThere || !reading_.isDefined( intf ), absent );
}

void Course::leaves( InterfacePort const & what ) {
   mustBeThere( ports_.erase( what.intf ) == 1, what.intf,
                what.intf.stringValue() + " has no port" );
}

void Course::leaves( PortChannelMember const & what ) {
   auto const found = portChannelOf_.find( what.member );
   bool const isMember = found != portChannelOf_.end() && found->second == what.portChannel;
   mustBeThere( isMember, reading_.isDefined( what.member ) ? what.portChannel : what.member,
                what.member.stringValue() + " is not in " + what.portChannel.stringValue() );
   if ( isMember ) {
      portChannelOf_.erase( found );
   }
}

void Course::leaves( Segment const & what ) {
   mustBeThere( segments_.erase( what.intf ) == 1, what.intf,
                "there is no segment on " + what.intf.stringValue() );
}

void Course::leaves( SegmentVtep const & what ) {
   auto const segment = segments_.find( what.intf );
   mustBeThere( segment != segments_.end() && segment->second.erase( what.vtep ) == 1, what.intf,
                what.vtep.stringValue() + " is not attached to a segment on " +
                   what.intf.stringValue() );
}

void Course::leaves( VtepVirtualPort const & what ) {
   mustBeThere( virtualPorts_.erase( what.vtep ) == 1,
                what.vtep.stringValue() + " has no virtual port" );
}

void Course::leaves( TunnelInterface const & what ) {
   mustBeThere( tunnels_.erase( what.intf ) == 1, "there is no " + what.intf.stringValue() );
}

void Course::leaves( VrfVni const & what ) {
   auto const tunnel = tunnels_.find( what.intf );
   mustBeThere( tunnel != tunnels_.end() && tunnel->second.erase( what.vrf ) == 1,
                "VRF " + what.vrf.stringValue() + " has no VNI on " + what.intf.stringValue() );
}

void Course::leaves( ClassIdGrant const & what ) {
   mustBeThere( grants_.erase( what.vtep ) == 1 || asking_.contains( what.vtep ),
                what.vtep.stringValue() + " has no class id" );
}

// --- VP indices

void Course::checkIndices() {
   std::map< U16, IpGenAddr > vtepOf;
   for ( auto const & [ vtep, port ] : virtualPorts_ ) {
      auto const index = static_cast< U16 >( port.number );
      auto const [ other, isNew ] = vtepOf.try_emplace( index, vtep );
      if ( !isNew && port.line >= virtualPorts_.at( other->second ).line ) {
         reportShared( port.line, vtep, other->second, index );
      } else if ( !isNew ) {
         reportShared( virtualPorts_.at( other->second ).line, other->second, vtep, index );
      }
   }
}

// Reports once for each line.
void Course::reportShared( int line, IpGenAddr const & vtep, IpGenAddr const & other, U16 index ) {
   if ( reportedLines_.insert( line ).second ) {
      reading_.problem( line, vtep.stringValue() + " has the VP index of " + other.stringValue() +
                                 ", " + std::to_string( index ) +
                                 " (the low 16 bits of the virtual port); give each VTEP its "
                                 "own" );
   }
}

// --- The whole scenario

namespace {

void checkForwarding( Reading & reading, Model const & model ) {
   for ( Step const & step : model.steps ) {
      if ( !model.forwarding && step.action->isAboutFrames() &&
           reading.judges( Ground::forwarding ) ) {
         reading.problem( step.line,
                          "this step needs 'forwarding', and the scenario has none; add it" );
      }
   }
}

}  // namespace

void followCourse( Reading & reading, Model const & model, std::size_t known ) {
   checkForwarding( reading, model );
   if ( !reading.judges( Ground::published ) ) {
      return;
   }
   Course course( reading, model.device.variant );
   course.publish( model.published );
   course.stepEnds();
   for ( std::size_t n = 0; n < known && course.isKnown(); ++n ) {
      model.steps[ n ].action->follow( course );
      course.stepEnds();
   }
   if ( known < model.steps.size() && course.isKnown() ) {
      reading.doubts().leavesOut( Ground::published );
   }
}

}  // namespace Scenario
