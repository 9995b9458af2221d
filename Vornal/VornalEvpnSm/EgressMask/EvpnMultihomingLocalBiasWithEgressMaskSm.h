// Local bias by an egress port mask.
//
// For chips whose ingress field processor can mask egress ports: the ingress entry of a remote VTEP
// carries the ports of the segments shared with it, and a frame that the entry matches does not
// leave by them. The mask is by logical port of the unit that the entry is on.
//
// The recorded mask (esPbmp) is there exactly while the entry is installed, and equals what was
// last written to the hardware. A VTEP without shared ports on a unit has an entry with an empty
// mask.
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
   EvpnMultihomingLocalBiasWithEgressMaskSm(
      Quelm::Ptr< VornalCommonSmData const > const & vcsd,
      Quelm::Ptr< Oxa::EvpnTepSegmentDir const > const & oxaEvpnTepSegmentDir,
      Quelm::Ptr< VornalCentral::VpIndexStatus const > const & vpIndexStatus,
      Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
      Quelm::Ptr< Vxlan::VtiStatusDir const > const & vtiStatusDir,
      Quelm::Ptr< VornalUnboundedTcamEntryManager > const & tcamManager,
      Quelm::Ptr< Kiv::Clock > const & clock, Quelm::Ptr< Lag::Config const > const & lagConfigDir,
      Quelm::Ptr< Lag::LagPhyIntfMapping const > const & lagPhyIntfMapping );

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

// Builds one and switches its notifications on.
Quelm::Ptr< EvpnMultihomingLocalBiasSm > EvpnMultihomingLocalBiasWithEgressMaskSmIs(
   Quelm::Ptr< VornalCommonSmData const > const & vcsd,
   Quelm::Ptr< Oxa::EvpnTepSegmentDir const > const & oxaEvpnTepSegmentDir,
   Quelm::Ptr< VornalCentral::VpIndexStatus const > const & vpIndexStatus,
   Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
   Quelm::Ptr< Vxlan::VtiStatusDir const > const & vtiStatusDir,
   Quelm::Ptr< VornalUnboundedTcamEntryManager > const & tcamManager,
   Quelm::Ptr< Kiv::Clock > const & clock, Quelm::Ptr< Lag::Config const > const & lagConfigDir,
   Quelm::Ptr< Lag::LagPhyIntfMapping const > const & lagPhyIntfMapping );

}  // namespace Vornal
