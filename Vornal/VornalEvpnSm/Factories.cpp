#include <VornalEvpnSm/Factories.h>

#include <VornalEvpnSm/EgressMask/EvpnMultihomingLocalBiasWithEgressMaskSm.h>
#include <VornalEvpnSm/I2EClassId/EvpnMultihomingLocalBiasWithI2EClassIdSm.h>

namespace Vornal {

Quelm::Ptr< EvpnMultihomingLocalBiasSm > EvpnMultihomingLocalBiasWithEgressMaskSmIs(
   Quelm::Ptr< VornalCommonSmData const > const & vcsd,
   Quelm::Ptr< Oxa::EvpnTepSegmentDir const > const & oxaEvpnTepSegmentDir,
   Quelm::Ptr< VornalCentral::VpIndexStatus const > const & vpIndexStatus,
   Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
   Quelm::Ptr< Vxlan::VtiStatusDir const > const & vtiStatusDir,
   Quelm::Ptr< VornalUnboundedTcamEntryManager > const & tcamManager,
   Quelm::Ptr< Kiv::Clock > const & clock, Quelm::Ptr< Lag::Config const > const & lagConfigDir,
   Quelm::Ptr< Lag::LagPhyIntfMapping const > const & lagPhyIntfMapping ) {
   auto sm =
      Quelm::make< EvpnMultihomingLocalBiasWithEgressMaskSm >( vcsd, oxaEvpnTepSegmentDir,
                                                               vpIndexStatus, evpnStatus,
                                                               vtiStatusDir, tcamManager, clock,
                                                               lagConfigDir, lagPhyIntfMapping );
   sm->hasNotificationActiveIs( true );
   return sm;
}

Quelm::Ptr< EvpnMultihomingLocalBiasSm > evpnMultihomingLocalBiasWithEgressMaskSmFactory(
   Quelm::Ptr< VornalCommonSmData const > const & vcsd,
   Quelm::Ptr< Oxa::EvpnTepSegmentDir const > const & oxaEvpnTepSegmentDir,
   Quelm::Ptr< VornalCentral::VpIndexStatus const > const & vpIndexStatus,
   Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
   Quelm::Ptr< Vxlan::VtiStatusDir const > const & vtiStatusDir,
   Quelm::Ptr< VornalUnboundedTcamEntryManager > const & tcamManager,
   Quelm::Ptr< Kiv::Clock > const & clock, Quelm::Ptr< Lag::Config const > const & lagConfigDir,
   Quelm::Ptr< Lag::LagPhyIntfMapping const > const & lagPhyIntfMapping ) {
   return EvpnMultihomingLocalBiasWithEgressMaskSmIs( vcsd, oxaEvpnTepSegmentDir, vpIndexStatus,
                                                      evpnStatus, vtiStatusDir, tcamManager, clock,
                                                      lagConfigDir, lagPhyIntfMapping );
}

Quelm::Ptr< EvpnMultihomingLocalBiasSm > EvpnMultihomingLocalBiasWithI2EClassIdSmIs(
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
   Quelm::Ptr< VornalCentral::I2EClassIdIndexStatus const > const & i2eClassIdIndexStatus ) {
   auto sm = Quelm::make< EvpnMultihomingLocalBiasWithI2EClassIdSm >(
      vcsd, oxaEvpnTepSegmentDir, vpIndexStatus, evpnStatus, vtiStatusDir, tcamManager, clock,
      lagConfigDir, lagPhyIntfMapping, efpTcamManager, i2eClassIdIndexConfig,
      i2eClassIdIndexStatus );
   sm->hasNotificationActiveIs( true );
   return sm;
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
   Quelm::Ptr< VornalUnboundedTcamEntryManager > const & efpTcamManager,
   Quelm::Ptr< VornalCentral::I2EClassIdIndexConfig > const & i2eClassIdIndexConfig,
   Quelm::Ptr< VornalCentral::I2EClassIdIndexStatus const > const & i2eClassIdIndexStatus ) {
   return EvpnMultihomingLocalBiasWithI2EClassIdSmIs( vcsd, oxaEvpnTepSegmentDir, vpIndexStatus,
                                                      evpnStatus, vtiStatusDir, tcamManager, clock,
                                                      lagConfigDir, lagPhyIntfMapping,
                                                      efpTcamManager, i2eClassIdIndexConfig,
                                                      i2eClassIdIndexStatus );
}

}  // namespace Vornal
