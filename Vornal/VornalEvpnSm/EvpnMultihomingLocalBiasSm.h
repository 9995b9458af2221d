// The local-bias state machine.
#pragma once

#include <Evpn/EvpnStatus.h>
#include <Kiv/Clock.h>
#include <Lag/Config.h>
#include <Oxa/EvpnTepSegmentDir.h>
#include <Vornal/VornalCommonSmData.h>
#include <VornalCentral/I2EClassIdIndex.h>
#include <VornalCentral/VpIndexStatus.h>
#include <VornalTcam/EntryManager.h>
#include <Vxlan/VtiStatusDir.h>

namespace Vornal {

class EvpnMultihomingLocalBiasSm : public Kiv::Entity {
   KIV_ENTITY( EvpnMultihomingLocalBiasSm, Kiv::Entity )
   KIV_HELD( vcsd, VornalCommonSmData const )
   KIV_HELD( oxaEvpnTepSegmentDir, Oxa::EvpnTepSegmentDir const )
   KIV_HELD( vpIndexStatus, VornalCentral::VpIndexStatus const )
   KIV_HELD( evpnStatus, Evpn::EvpnStatus const )
   KIV_HELD( vtiStatusDir, Vxlan::VtiStatusDir const )
   KIV_HELD( tcamManager, VornalUnboundedTcamEntryManager )
   KIV_HELD( clock, Kiv::Clock )
   KIV_HELD( lagConfigDir, Lag::Config const )
   KIV_HELD( lagPhyIntfMapping, Lag::LagPhyIntfMapping const )

   EvpnMultihomingLocalBiasSm(
      Quelm::Ptr< VornalCommonSmData const > const & vcsd,
      Quelm::Ptr< Oxa::EvpnTepSegmentDir const > const & oxaEvpnTepSegmentDir,
      Quelm::Ptr< VornalCentral::VpIndexStatus const > const & vpIndexStatus,
      Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
      Quelm::Ptr< Vxlan::VtiStatusDir const > const & vtiStatusDir,
      Quelm::Ptr< VornalUnboundedTcamEntryManager > const & tcamManager,
      Quelm::Ptr< Kiv::Clock > const & clock, Quelm::Ptr< Lag::Config const > const & lagConfigDir,
      Quelm::Ptr< Lag::LagPhyIntfMapping const > const & lagPhyIntfMapping ) {
      vcsd_ = vcsd;
      oxaEvpnTepSegmentDir_ = oxaEvpnTepSegmentDir;
      vpIndexStatus_ = vpIndexStatus;
      evpnStatus_ = evpnStatus;
      vtiStatusDir_ = vtiStatusDir;
      tcamManager_ = tcamManager;
      clock_ = clock;
      lagConfigDir_ = lagConfigDir;
      lagPhyIntfMapping_ = lagPhyIntfMapping;
   }
};

class EvpnMultihomingLocalBiasWithEgressMaskSm : public EvpnMultihomingLocalBiasSm {
   KIV_ENTITY( EvpnMultihomingLocalBiasWithEgressMaskSm, EvpnMultihomingLocalBiasSm )
   using EvpnMultihomingLocalBiasSm::EvpnMultihomingLocalBiasSm;
};

class EvpnMultihomingLocalBiasWithI2EClassIdSm : public EvpnMultihomingLocalBiasSm {
   KIV_ENTITY( EvpnMultihomingLocalBiasWithI2EClassIdSm, EvpnMultihomingLocalBiasSm )
   using EvpnMultihomingLocalBiasSm::EvpnMultihomingLocalBiasSm;
};

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
