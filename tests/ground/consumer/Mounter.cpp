#include <Kiv/Rows.h>
#include <Vornal/VornalCommonSmData.h>
#include <VornalLib/MounterBase.h>

#include "Machine.h"

namespace Quarantine {

namespace {

constexpr char const * kVports = "hardware/vornal/vp/status/vornalL3";
char const * const kNeeded[] = { "subagents::l2Ready", nullptr };

}  // namespace

class Mounter : public VornalLib::MounterBase {
   KIV_ENTITY( Mounter, VornalLib::MounterBase )
   KIV_HELD( config, Config )
   KIV_HELD( vports, VornalCentral::VpIndexStatus const )
   KIV_HELD( common, Vornal::VornalCommonSmData )
   KIV_HELD( evpnMultihomingLocalBiasSm, Machine )

   explicit Mounter( std::string const & name )
         : MounterBase( name ), config_( Quelm::make< Config >( "quarantine" ) ) {}

   void doInit() override;
   void doMountsComplete( Corrum::MountStatus status,
                          Quelm::Ptr< Corrum::EntityManager > manager ) override;

 private:
   void handleReady( std::string const & point );

   Kiv::Watch< Vornal::SubAgentDependencyPoints > readyWatch_{
      Kiv::onKey( Vornal::SubAgentDependencyPoints::readyAttr(), this, &KivSelf::handleReady )
   };
};

// The first turn: the plug-in says what it wants to read.
void Mounter::doInit() {
   auto const group = entityManager()->getMountGroup();
   group->doMount( { kVports, "VornalCentral::VpIndexStatus", "r" } );
   group->doClose( "" );
}

// A later turn: it is there.
void Mounter::doMountsComplete( Corrum::MountStatus, Quelm::Ptr< Corrum::EntityManager > manager ) {
   vportsHeldIs(
      Quelm::dynamicCast< VornalCentral::VpIndexStatus const >( manager->getEntity( kVports ) ) );
   commonHeldIs(
      Quelm::dynamicCast< Vornal::VornalCommonSmData >( sharedEntity( "vornalCommon" ) ) );
   QUELM_ASSERT( vports() && common() );
   readyWatch_.notifierIs( common()->sliceDependencyPoints()->subAgentDependencyPoints() );
   readyWatch_.hasNotificationActiveIs( true );
   handleReady( "" );
}

// Rules mean nothing before layer 2 has set up ports and tunnels.
void Mounter::handleReady( std::string const & ) {
   auto const points = common()->sliceDependencyPoints();
   if ( evpnMultihomingLocalBiasSm() ||
        !Vornal::areAllDependenciesReady_( trace, "handleReady", points, kNeeded ) ) {
      return;
   }
   auto const groups =
      Quelm::dynamicCast< Vornal::VornalTcamGroupManager >( sharedEntity( "tcamManager" ) );
   evpnMultihomingLocalBiasSmHeldIs(
      Quelm::make< Machine >( config(), vports(), common(),
                              groups->unboundedEntryManager( Vornal::kIfpLocalBiasGroup ) ) );
   points->evpnDependencyPoint()->markReady();
}

namespace {

Plugin::MounterRegistration const registration(
   "Quarantine::Mounter", []( std::string const & name ) -> Quelm::Ptr< Plugin::Mounter > {
      return Quelm::make< Mounter >( name );
   } );

}  // namespace

}  // namespace Quarantine

KIV_DEFINE( Quarantine::Mounter )
