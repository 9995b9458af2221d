#include <VornalEvpnSm/EvpnMultihomingLocalBiasSm.h>

#include <Kiv/Rows.h>

KIV_DEFINE( Vornal::EvpnMultihomingLocalBiasSm )
KIV_DEFINE( Vornal::EvpnMultihomingLocalBiasWithEgressMaskSm )
KIV_DEFINE( Vornal::EvpnMultihomingLocalBiasWithI2EClassIdSm )

namespace Vornal {

Quelm::Ptr< EvpnMultihomingLocalBiasSm > evpnMultihomingLocalBiasWithEgressMaskSmFactory(
   Quelm::Ptr< VornalCommonSmData const > const & vcsd,
   Quelm::Ptr< Oxa::EvpnTepSegmentDir const > const & oxaEvpnTepSegmentDir,
   Quelm::Ptr< VornalCentral::VpIndexStatus const > const & vpIndexStatus,
   Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
   Quelm::Ptr< Vxlan::VtiStatusDir const > const & vtiStatusDir,
   Quelm::Ptr< VornalUnboundedTcamEntryManager > const & tcamManager,
   Quelm::Ptr< Kiv::Clock > const & clock, Quelm::Ptr< Lag::Config const > const & lagConfigDir,
   Quelm::Ptr< Lag::LagPhyIntfMapping const > const & lagPhyIntfMapping ) {
   return Quelm::make< EvpnMultihomingLocalBiasWithEgressMaskSm >( vcsd, oxaEvpnTepSegmentDir,
                                                                   vpIndexStatus, evpnStatus,
                                                                   vtiStatusDir, tcamManager, clock,
                                                                   lagConfigDir,
                                                                   lagPhyIntfMapping );
}

Quelm::Ptr< EvpnMultihomingLocalBiasSm > evpnMultihomingLocalBiasWithI2EClassIdSmFactory(
   Quelm::Ptr< VornalCommonSmData const > const & vcsd,
   Quelm::Ptr< Oxa::EvpnTepSegmentDir const > const & oxaEvpnTepSegmentDir,
   Quelm::Ptr< VornalCentral::VpIndexStatus const > const & vpIndexStatus,
   Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
   Quelm::Ptr< Vxlan::VtiStatusDir const > const & vtiStatusDir,
   Quelm::Ptr< VornalUnboundedTcamEntryManager > const & tcamManager,
   Quelm::Ptr< Kiv::Clock > const & clock, Quelm::Ptr< Lag::Config const > const & lagConfigDir,
   Quelm::Ptr< Lag::LagPhyIntfMapping const > const & lagPhyIntfMapping,
   Quelm::Ptr< VornalUnboundedTcamEntryManager > const &,
   Quelm::Ptr< VornalCentral::I2EClassIdIndexConfig > const &,
   Quelm::Ptr< VornalCentral::I2EClassIdIndexStatus const > const & ) {
   return Quelm::make< EvpnMultihomingLocalBiasWithI2EClassIdSm >( vcsd, oxaEvpnTepSegmentDir,
                                                                   vpIndexStatus, evpnStatus,
                                                                   vtiStatusDir, tcamManager, clock,
                                                                   lagConfigDir,
                                                                   lagPhyIntfMapping );
}

}  // namespace Vornal
