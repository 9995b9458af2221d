// The course of a scenario: follows the published state from the start through the steps.
//
// It finds mistakes that lie in the order of things, before anything is loaded: a step can only
// withdraw published state, and no two VTEPs may have one VP index at the end of a step. A step
// that changes published entities through the generic interface can change anything; after it these
// two are not checked any more. Steps about frames need a switch with a forwarding configuration.
#pragma once

#include <map>
#include <set>

#include <Audit/Variant.h>
#include <Scenario/Reading.h>
#include <Scenario/Scenario.h>
#include <StateDatabase/EntityPath.h>

namespace Scenario {

// The published state at one time.
class Course {
 public:
   Course( Reading & reading, Variant variant )
         : reading_( reading ), hasClassIds_( Audit::rowOf( variant ).usesClassIds ) {}

   void publish( std::vector< Change > const & changes );
   void withdraw( std::vector< Change > const & changes );
   void replace( std::vector< Replacement > const & replacements );

   // The entity at that path changes in an unknown way. If other agents publish it, the state is
   // unknown from then on.
   void mayChange( StateDatabase::EntityPath const & path );
   bool isKnown() const { return isKnown_; }

   // A step is over.
   void stepEnds();

 private:
   struct VirtualPort {
      U32 number;
      int line;
   };

   void enters( InterfacePort const & what ) { ports_.insert( what.intf ); }
   void enters( PortChannelMember const & what ) {
      portChannelOf_[ what.member ] = what.portChannel;
   }
   void enters( Segment const & what ) { segments_[ what.intf ]; }
   void enters( SegmentVtep const & what );
   void enters( VtepVirtualPort const & what );
   void enters( TunnelInterface const & what ) { tunnels_[ what.intf ]; }
   void enters( VrfVni const & what ) { tunnels_[ what.intf ].insert( what.vrf ); }
   void enters( ClassIdRequest const & what ) { asking_.insert( what.vtep ); }
   void enters( ClassIdGrant const & what ) { grants_.insert( what.vtep ); }

   // The plug-in asks for a class id; the allocator grants one at an unknown time.
   void sharesASegment( Pelk::IpGenAddr const & vtep );

   void takesThePlace( SegmentReplaced const & what );
   void takesThePlace( TunnelInterfaceReplaced const & what );

   void leaves( InterfacePort const & what );
   void leaves( PortChannelMember const & what );
   void leaves( Segment const & what );
   void leaves( SegmentVtep const & what );
   void leaves( VtepVirtualPort const & what );
   void leaves( TunnelInterface const & what );
   void leaves( VrfVni const & what );
   void leaves( ClassIdRequest const & ) {}  // no word withdraws a request
   void leaves( ClassIdGrant const & what );

   void mustBeThere( bool isThere, std::string const & absent );
   void mustBeThere( bool isThere, Pelk::IntfId const & intf, std::string const & absent );
   void checkIndices();
   void reportShared( int line, Pelk::IpGenAddr const & vtep, Pelk::IpGenAddr const & other,
                      U16 index );

   Reading & reading_;
   bool hasClassIds_;
   bool isKnown_ = true;
   int line_ = 0;
   bool arePortsNew_ = false;
   std::set< Pelk::IntfId > ports_;
   std::map< Pelk::IntfId, Pelk::IntfId > portChannelOf_;
   std::map< Pelk::IntfId, std::set< Pelk::IpGenAddr > > segments_;
   std::map< Pelk::IpGenAddr, VirtualPort > virtualPorts_;
   std::map< Pelk::IntfId, std::set< L3::VrfName > > tunnels_;
   std::set< Pelk::IpGenAddr > grants_;  // published, not the allocator's own
   std::set< Pelk::IpGenAddr > asking_;  // may be granted a class id at any time
   std::set< int > reportedLines_;
};

// Follows the first `known` steps; how those behind them change the published state is not known.
void followCourse( Reading & reading, Model const & model, std::size_t known );

}  // namespace Scenario
