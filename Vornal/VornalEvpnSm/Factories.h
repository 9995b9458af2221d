// How the mounter gets its state machine: one factory a variant.
//
// Both build the machine, which walks the existing state and programs the first rules, and then
// switch its notifications on. Any input may be missing, and reads as empty. An output that is
// missing (an entry manager, the class-id requests) stops the process when it has something to do.
#pragma once

#include <VornalEvpnSm/EvpnMultihomingLocalBiasSm.h>

namespace Vornal {

Quelm::Ptr< EvpnMultihomingLocalBiasSm > evpnMultihomingLocalBiasWithEgressMaskSmFactory(
   Quelm::Ptr< VornalCommonSmData const > const & vcsd,
   Quelm::Ptr< Oxa::EvpnTepSegmentDir const > const & oxaEvpnTepSegmentDir,
   Quelm::Ptr< VornalCentral::VpIndexStatus const > const & vpIndexStatus,
   Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
   Quelm::Ptr< Vxlan::VtiStatusDir const > const & vtiStatusDir,
   Quelm::Ptr< VornalUnboundedTcamEntryManager > const & tcamManager,
   Quelm::Ptr< Kiv::Clock > const & clock, Quelm::Ptr< Lag::Config const > const & lagConfigDir,
   Quelm::Ptr< Lag::LagPhyIntfMapping const > const & lagPhyIntfMapping );

Quelm::Ptr< EvpnMultihomingLocalBiasSm > evpnMultihomingLocalBiasWithI2EClassIdSmFactory(
   Quelm::Ptr< VornalCommonSmData const > const & vcsd,
   Quelm::Ptr< Oxa::EvpnTepSegmentDir const > const & oxaEvpnTepSegmentDir,
   Quelm::Ptr< VornalCentral::VpIndexStatus const > const & vpIndexStatus,
   Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
   Quelm::Ptr< Vxlan::VtiStatusDir const > const & vtiStatusDir,
   Quelm::Ptr< VornalUnboundedTcamEntryManager > const & tcamManager,
   Quelm::Ptr< Kiv::Clock > const & clock, Quelm::Ptr< Lag::Config const > const & lagConfigDir,
   Quelm::Ptr< Lag::LagPhyIntfMapping const > const & lagPhyIntfMapping,
   Quelm::Ptr< VornalUnboundedTcamEntryManager > const & efpTcamManager,
   Quelm::Ptr< VornalCentral::I2EClassIdIndexConfig > const & i2eClassIdIndexConfig,
   Quelm::Ptr< VornalCentral::I2EClassIdIndexStatus const > const & i2eClassIdIndexStatus );

}  // namespace Vornal
