// A machine without a variant: the ingress entry is obtained and qualified, and nothing is hung on
// it. For what holds before a variant adds anything.
//
// A deaf one does not release entries: what happens when a delete leaves one behind.
#pragma once

#include "LocalBiasSwitch.h"

namespace Support {

class BareMachine final : public Vornal::EvpnMultihomingLocalBiasSm {
 public:
   explicit BareMachine( LocalBiasSwitch & leaf )
         : EvpnMultihomingLocalBiasSm( leaf.vcsd, leaf.dir, leaf.vpIndexStatus, leaf.evpnStatus,
                                       leaf.vtiStatusDir, leaf.ingress, leaf.activity.clock(),
                                       leaf.lagConfig, leaf.lagMapping ) {}
   ~BareMachine() override { hasNotificationActiveIs( false ); }

   void deafIs( bool deaf ) { isDeaf_ = deaf; }

   bool ifpTcamEntries( U32 unit, Pelk::IpGenAddr const & tepIp, bool add ) override {
      return ( !add && isDeaf_ ) || EvpnMultihomingLocalBiasSm::ifpTcamEntries( unit, tepIp, add );
   }

 private:
   bool isDeaf_ = false;
};

// One that is initialised and listens.
inline Quelm::Ptr< BareMachine > bareMachineNew( LocalBiasSwitch & leaf ) {
   auto machine = Quelm::make< BareMachine >( leaf );
   machine->handleInitialized();
   machine->hasNotificationActiveIs( true );
   return machine;
}

}  // namespace Support
