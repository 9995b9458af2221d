// What parts of a scenario say that has to agree with other parts, and in which lines they say it.
//
// The parts are read one by one and in no fixed order; what they say is noted here, and held
// together when all of them are read. What comes true only in the course of the steps is a matter
// of Scenario/Course.h.
#pragma once

#include <map>
#include <vector>

#include <Pelk/IntfId.h>
#include <Pelk/IpGenAddr.h>

namespace Scenario {

class Reading;

class Agreement {
 public:
   // An address of the switch itself.
   void ownVtepIs( Pelk::IpGenAddr const & vtep, int line ) { own_.try_emplace( vtep, line ); }
   // A VTEP that frames go to or come from.
   void remoteVtepIs( Pelk::IpGenAddr const & vtep, int line ) {
      remote_.push_back( { vtep, line } );
   }

   // A VTEP that shares a segment with the switch.
   void sharingVtepIs( Pelk::IpGenAddr const & vtep, int line ) {
      sharing_.push_back( { vtep, line } );
   }

   // The interface carries VXLAN.
   void underlayIs( Pelk::IntfId const & intf, int line ) { underlay_.try_emplace( intf, line ); }
   // The interface or port channel carries VLANs.
   void accessIs( Pelk::IntfId const & intf, int line ) { access_.push_back( { intf, line } ); }
   // Something is said about the interface as a designated forwarder.
   void designatedIs( Pelk::IntfId const & intf, int line ) {
      designated_.push_back( { intf, line } );
   }

   // The interface is in a port channel before the plug-in is loaded, or gets into one later.
   void memberIs( Pelk::IntfId const & member, Pelk::IntfId const & portChannel, int line ) {
      members_.push_back( { member, line, portChannel } );
   }
   // The interface leaves its port channel in a step.
   void memberGoes( Pelk::IntfId const & member ) { leaving_.insert_or_assign( member, 0 ); }

   // Tells what does not agree.
   void check( Reading & reading ) const;

 private:
   template< typename T > struct Said {
      T what;
      int line;
   };
   using Interfaces = std::vector< Said< Pelk::IntfId > >;
   using Vteps = std::vector< Said< Pelk::IpGenAddr > >;
   struct Member {
      Pelk::IntfId what;
      int line;
      Pelk::IntfId portChannel;
   };

   void checkOthers( Reading & reading, Vteps const & vteps ) const;
   void checkVteps( Reading & reading ) const;
   void checkUnderlay( Reading & reading ) const;
   void checkAccess( Reading & reading ) const;
   void checkDesignated( Reading & reading ) const;

   std::map< Pelk::IpGenAddr, int > own_;
   Vteps remote_;
   Vteps sharing_;
   std::map< Pelk::IntfId, int > underlay_;
   std::map< Pelk::IntfId, int > leaving_;
   Interfaces access_;
   Interfaces designated_;
   std::vector< Member > members_;
};

}  // namespace Scenario
