// Checks that the parts of a scenario agree with each other, and names their lines.
//
// The reader reads the parts one by one and in no fixed order. It notes their statements here, and
// check() compares them when all parts are read. Scenario/Course.h checks the statements that
// depend on the order of the steps.
#pragma once

#include <map>
#include <vector>

#include <Pelk/IntfId.h>
#include <Pelk/IpGenAddr.h>

namespace Scenario {

class Reading;

class Agreement {
 public:
   // The switch has this address.
   void ownVtepIs( Pelk::IpGenAddr const & vtep, int line ) { ownVteps_.try_emplace( vtep, line ); }
   // Frames go to this VTEP or come from it.
   void remoteVtepIs( Pelk::IpGenAddr const & vtep, int line ) {
      remote_.push_back( { vtep, line } );
   }

   // The VTEP shares a segment with the switch.
   void sharingVtepIs( Pelk::IpGenAddr const & vtep, int line ) {
      sharing_.push_back( { vtep, line } );
   }

   // The interface carries VXLAN.
   void underlayIs( Pelk::IntfId const & intf, int line ) { underlay_.try_emplace( intf, line ); }
   // The interface or port channel carries VLANs.
   void accessIs( Pelk::IntfId const & intf, int line ) { access_.push_back( { intf, line } ); }
   // The scenario says whether the interface is a designated forwarder.
   void designatedIs( Pelk::IntfId const & intf, int line ) {
      designated_.push_back( { intf, line } );
   }

   // The interface is in the port channel before the plug-in is loaded, or joins it later.
   void memberIs( Pelk::IntfId const & member, Pelk::IntfId const & portChannel, int line ) {
      members_.push_back( { member, line, portChannel } );
   }
   // The interface leaves its port channel in a step.
   void memberGoes( Pelk::IntfId const & member ) { leaving_.insert_or_assign( member, 0 ); }

   // Reports each disagreement.
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

   std::map< Pelk::IpGenAddr, int > ownVteps_;
   Vteps remote_;
   Vteps sharing_;
   std::map< Pelk::IntfId, int > underlay_;
   std::map< Pelk::IntfId, int > leaving_;
   Interfaces access_;
   Interfaces designated_;
   std::vector< Member > members_;
};

}  // namespace Scenario
