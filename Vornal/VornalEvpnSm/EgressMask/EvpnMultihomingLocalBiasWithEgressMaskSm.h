// Local bias by an egress port mask.
//
// For chips whose ingress field processor can mask egress ports: the ingress entry of a remote VTEP
// carries the ports of the segments shared with it, and a frame that the entry matches does not
// leave by them. The mask is by logical port of the unit that the entry is on.
//
// The recorded mask (esPbmp) is there exactly while the entry is installed, and equals the mask
// that was last written to the hardware. A VTEP without shared ports on a unit has an entry with an
// empty mask.
//
// Failures: a full TCAM leaves neither an entry nor a mask recorded; the VP index is recorded all
// the same. A failed install or reinstall stops the process, and so does taking away an entry that
// has no recorded mask: a delete that follows a failed add. Verifying a VTEP on a unit without a
// record stops it, too.
//
// Files: EgressMaskProgramming.cpp, EgressMaskVerification.cpp. Threads: the activity's.
#pragma once

#include <VornalEvpnSm/EvpnMultihomingLocalBiasSm.h>

namespace Vornal {

class EvpnMultihomingLocalBiasWithEgressMaskSm final : public EvpnMultihomingLocalBiasSm {
   KIV_ENTITY( EvpnMultihomingLocalBiasWithEgressMaskSm, EvpnMultihomingLocalBiasSm )

   // Takes the base's arguments. The initial walk has been done when it returns.
   template< typename... Inputs >
   explicit EvpnMultihomingLocalBiasWithEgressMaskSm( Inputs const &... inputs )
         : EvpnMultihomingLocalBiasSm( inputs... ) {
      handleInitialized();
   }

   bool ifpTcamEntries( U32 unit, Pelk::IpGenAddr const & tepIp, bool add ) override;
   bool updateIfpTcamEntries( U32 unit, Pelk::IpGenAddr const & tepIp,
                              VornalTypes::VornalPortList const & oldPorts,
                              VornalTypes::VornalPortList const & ports, bool add ) override;
   void updateTcamEntries( U32 unit, Pelk::IpGenAddr const & tepIp, Pelk::IntfId const & intfId,
                           bool add ) override;
   bool tcamSanityCheckForTepIp( U32 unit, Pelk::IpGenAddr const & tepIp ) override;
   void verifyIfpEntries( U32 unit, Pelk::IpGenAddr const & tepIp ) override;
   void handleInitialized() override;

 private:
   // Gives the entry its mask, staged only, and records it.
   void addMask( U32 unit, Pelk::IpGenAddr const & tepIp, U32 entryId );
};

// Builds one from the arguments of its constructor and switches its notifications on.
template< typename... Inputs >
Quelm::Ptr< EvpnMultihomingLocalBiasSm > EvpnMultihomingLocalBiasWithEgressMaskSmIs(
   Inputs const &... inputs ) {
   return activeMachineNew< EvpnMultihomingLocalBiasWithEgressMaskSm >( inputs... );
}

// The same, for the mounter.
template< typename... Inputs >
Quelm::Ptr< EvpnMultihomingLocalBiasSm > evpnMultihomingLocalBiasWithEgressMaskSmFactory(
   Inputs const &... inputs ) {
   return EvpnMultihomingLocalBiasWithEgressMaskSmIs( inputs... );
}

}  // namespace Vornal
