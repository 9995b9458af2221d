#include <Scenario/Course.h>

#include <algorithm>
#include <utility>

namespace Scenario {

namespace {

using Pelk::IntfId;
using Pelk::IpGenAddr;

bool isPublished( StateDatabase::EntityPath const & path ) {
   return path.segments().empty() || path.segments().front().name != "plugins";
}

// What is published at one time.
class Course {
 public:
   Course( Reading & reading, Variant variant )
         : reading_( reading ), hasClassIds_( variant == Variant::classId ) {}

   void publish( std::vector< Change > const & changes ) {
      for ( Change const & change : changes ) {
         line_ = change.line;
         std::visit( [ this ]( auto const & what ) { enters( what ); }, change.what );
      }
      arePortsNew_ = true;
   }

   // What the step does; false when it can change what is published without saying so.
   template< typename Action > bool happens( Action const & action ) {
      return std::visit( [ & ]( auto const & what ) { return goesOn( what ); }, action );
   }

   // To be called when a step is over.
   void checkVirtualPorts() {
      if ( std::exchange( arePortsNew_, false ) ) {
         checkIndices();
      }
   }

 private:
   struct VirtualPort {
      U32 number;
      int line;
   };

   // --- Steps and parts of a turn

   bool goesOn( Publish const & step ) {
      publish( step.changes );
      return true;
   }
   bool goesOn( Withdraw const & step ) {
      withdraw( step.changes );
      return true;
   }
   bool goesOn( Replace const & step ) {
      for ( Replacement const & one : step.replacements ) {
         std::visit( [ this ]( auto const & what ) { takesThePlace( what ); }, one.what );
      }
      return true;
   }
   bool goesOn( Turn const & turn ) {
      return std::all_of( turn.parts.begin(), turn.parts.end(),
                          [ this ]( Turn::PlacedPart const & one ) {
                             return happens( one.part );
                          } );
   }
   bool goesOn( Set const & step ) const { return !isPublished( step.at.entity ); }
   bool goesOn( Delete const & step ) const { return !isPublished( step.at.entity ); }
   bool goesOn( Call const & step ) const { return !isPublished( step.entity ); }
   template< typename Other > bool goesOn( Other const & ) const { return true; }

   void withdraw( std::vector< Change > const & changes ) {
      for ( Change const & change : changes ) {
         line_ = change.line;
         std::visit( [ this ]( auto const & what ) { goes( what ); }, change.what );
      }
   }

   // --- What comes

   void enters( InterfacePort const & what ) { ports_.insert( what.intf ); }
   void enters( PortChannelMember const & what ) {
      portChannelOf_[ what.member ] = what.portChannel;
   }
   void enters( Segment const & what ) { segments_[ what.intf ]; }
   void enters( SegmentVtep const & what ) {
      segments_[ what.intf ].insert( what.vtep );
      sharesASegment( what.vtep );
   }
   void enters( VtepVirtualPort const & what ) {
      virtualPorts_.insert_or_assign( what.vtep, VirtualPort{ what.virtualPort, line_ } );
   }
   void enters( TunnelInterface const & what ) { tunnels_[ what.intf ]; }
   void enters( VrfVni const & what ) { tunnels_[ what.intf ].insert( what.vrf ); }
   void enters( ClassIdRequest const & what ) { asking_.insert( what.vtep ); }
   void enters( ClassIdGrant const & what ) { grants_.insert( what.vtep ); }

   // The plug-in asks for a class id, and the allocator grants one in its own time.
   void sharesASegment( IpGenAddr const & vtep ) {
      if ( hasClassIds_ ) {
         asking_.insert( vtep );
      }
   }

   void takesThePlace( SegmentReplaced const & what ) {
      segments_[ what.intf ] = { what.vteps.begin(), what.vteps.end() };
      for ( IpGenAddr const & vtep : what.vteps ) {
         sharesASegment( vtep );
      }
   }
   void takesThePlace( TunnelInterfaceReplaced const & what ) {
      auto & vrfs = tunnels_[ what.intf ];
      vrfs.clear();
      for ( VrfVni const & one : what.vnis ) {
         vrfs.insert( one.vrf );
      }
   }

   // --- What goes

   void isThere( bool is, std::string const & absent ) {
      if ( !is ) {
         reading_.problem( line_, absent +
                                     " at this point, so nothing can be withdrawn; publish it "
                                     "before, or leave this out" );
      }
   }

   void goes( InterfacePort const & what ) {
      isThere( ports_.erase( what.intf ) == 1, what.intf.stringValue() + " has no port" );
   }
   void goes( PortChannelMember const & what ) {
      auto const found = portChannelOf_.find( what.member );
      bool const isMember = found != portChannelOf_.end() && found->second == what.portChannel;
      isThere( isMember,
               what.member.stringValue() + " is not in " + what.portChannel.stringValue() );
      if ( isMember ) {
         portChannelOf_.erase( found );
      }
   }
   void goes( Segment const & what ) {
      isThere( segments_.erase( what.intf ) == 1,
               "there is no segment on " + what.intf.stringValue() );
   }
   void goes( SegmentVtep const & what ) {
      auto const segment = segments_.find( what.intf );
      isThere( segment != segments_.end() && segment->second.erase( what.vtep ) == 1,
               what.vtep.stringValue() + " is not attached to a segment on " +
                  what.intf.stringValue() );
   }
   void goes( VtepVirtualPort const & what ) {
      isThere( virtualPorts_.erase( what.vtep ) == 1,
               what.vtep.stringValue() + " has no virtual port" );
   }
   void goes( TunnelInterface const & what ) {
      isThere( tunnels_.erase( what.intf ) == 1, "there is no " + what.intf.stringValue() );
   }
   void goes( VrfVni const & what ) {
      auto const tunnel = tunnels_.find( what.intf );
      isThere( tunnel != tunnels_.end() && tunnel->second.erase( what.vrf ) == 1,
               "VRF " + what.vrf.stringValue() + " has no VNI on " + what.intf.stringValue() );
   }
   // No word withdraws a request.
   void goes( ClassIdRequest const & ) {}
   void goes( ClassIdGrant const & what ) {
      isThere( grants_.erase( what.vtep ) == 1 || asking_.contains( what.vtep ),
               what.vtep.stringValue() + " has no class id" );
   }

   void checkIndices() {
      std::map< U16, IpGenAddr > vtepOf;
      for ( auto const & [ vtep, port ] : virtualPorts_ ) {
         auto const index = static_cast< U16 >( port.number );
         auto const [ other, isNew ] = vtepOf.try_emplace( index, vtep );
         if ( !isNew && port.line >= virtualPorts_.at( other->second ).line ) {
            tellShared( port.line, vtep, other->second, index );
         } else if ( !isNew ) {
            tellShared( virtualPorts_.at( other->second ).line, other->second, vtep, index );
         }
      }
   }

   // Once for each line.
   void tellShared( int line, IpGenAddr const & vtep, IpGenAddr const & other, U16 index ) {
      if ( told_.insert( line ).second ) {
         reading_.problem( line, vtep.stringValue() + " has the VP index of " +
                                    other.stringValue() + ", " + std::to_string( index ) +
                                    " (the low 16 bits of the virtual port); give each VTEP its "
                                    "own" );
      }
   }

   Reading & reading_;
   bool hasClassIds_;
   int line_ = 0;
   bool arePortsNew_ = false;
   std::set< IntfId > ports_;
   std::map< IntfId, IntfId > portChannelOf_;
   std::map< IntfId, std::set< IpGenAddr > > segments_;
   std::map< IpGenAddr, VirtualPort > virtualPorts_;
   std::map< IntfId, std::set< L3::VrfName > > tunnels_;
   std::set< IpGenAddr > grants_;  // published, not the allocator's own
   std::set< IpGenAddr > asking_;  // may be granted a class id at any time
   std::set< int > told_;
};

bool isAboutFrames( Action const & action ) {
   return std::holds_alternative< Frame >( action ) ||
          std::holds_alternative< Capture >( action ) ||
          std::holds_alternative< DesignatedForwarder >( action );
}

void checkForwarding( Reading & reading, Model const & model ) {
   for ( Step const & step : model.steps ) {
      if ( !model.forwarding && isAboutFrames( step.action ) ) {
         reading.problem( step.line,
                          "this step needs 'forwarding', and the scenario has none; add it" );
      }
   }
}

}  // namespace

void followCourse( Reading & reading, Model const & model ) {
   checkForwarding( reading, model );
   Course course( reading, model.device.variant );
   course.publish( model.published );
   course.checkVirtualPorts();
   for ( Step const & step : model.steps ) {
      if ( !course.happens( step.action ) ) {
         return;
      }
      course.checkVirtualPorts();
   }
}

}  // namespace Scenario
