#include <Scenario/Course.h>

namespace Scenario {

namespace {

using Pelk::IntfId;
using Pelk::IpGenAddr;

// What is published at one time.
class Course {
 public:
   explicit Course( Reading & reading ) : reading_( reading ) {}

   void publish( std::vector< Change > const & changes ) {
      for ( Change const & change : changes ) {
         line_ = change.line;
         std::visit( [ this ]( auto const & what ) { enters( what ); }, change.what );
      }
      checkVirtualPorts();
   }

   void withdraw( std::vector< Change > const & changes ) {
      for ( Change const & change : changes ) {
         line_ = change.line;
         std::visit( [ this ]( auto const & what ) { goes( what ); }, change.what );
      }
   }

 private:
   struct VirtualPort {
      U32 number;
      int line;
   };

   // --- What comes

   void enters( InterfacePort const & what ) { ports_.insert( what.intf ); }
   void enters( PortChannelMember const & what ) {
      portChannelOf_[ what.member ] = what.portChannel;
   }
   void enters( Segment const & what ) { segments_[ what.intf ]; }
   void enters( SegmentVtep const & what ) { segments_[ what.intf ].insert( what.vtep ); }
   void enters( VtepVirtualPort const & what ) {
      virtualPorts_.insert_or_assign( what.vtep, VirtualPort{ what.virtualPort, line_ } );
   }
   void enters( TunnelInterface const & what ) { tunnels_[ what.intf ]; }
   void enters( VrfVni const & what ) { tunnels_[ what.intf ].insert( what.vrf ); }
   void enters( ClassIdRequest const & ) {}
   void enters( ClassIdGrant const & ) {}

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
   // The allocator has a say in these.
   void goes( ClassIdRequest const & ) {}
   void goes( ClassIdGrant const & ) {}

   void checkVirtualPorts() {
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
   int line_ = 0;
   std::set< IntfId > ports_;
   std::map< IntfId, IntfId > portChannelOf_;
   std::map< IntfId, std::set< IpGenAddr > > segments_;
   std::map< IpGenAddr, VirtualPort > virtualPorts_;
   std::map< IntfId, std::set< L3::VrfName > > tunnels_;
   std::set< int > told_;
};

bool isPublished( EntityPath const & path ) {
   return path.segments().empty() || path.segments().front().name != "plugins";
}

// Whether the step can change what is published without saying so.
bool changesAnything( Action const & action ) {
   if ( auto const * const set = std::get_if< Set >( &action ) ) {
      return isPublished( set->at.entity );
   }
   if ( auto const * const removal = std::get_if< Delete >( &action ) ) {
      return isPublished( removal->at.entity );
   }
   auto const * const call = std::get_if< Call >( &action );
   return call && isPublished( call->entity );
}

}  // namespace

void followCourse( Reading & reading, Model const & model ) {
   Course course( reading );
   course.publish( model.published );
   for ( Step const & step : model.steps ) {
      if ( changesAnything( step.action ) ) {
         return;
      }
      if ( auto const * const publish = std::get_if< Publish >( &step.action ) ) {
         course.publish( publish->changes );
      } else if ( auto const * const withdraw = std::get_if< Withdraw >( &step.action ) ) {
         course.withdraw( withdraw->changes );
      }
   }
}

}  // namespace Scenario
