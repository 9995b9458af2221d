#include <VornalEvpnMounter/VornalEvpnMounter.h>

#include <algorithm>
#include <iterator>

#include <Kiv/Activity.h>
#include <Kiv/Rows.h>
#include <VornalEvpnMounter/ModuleTrace.h>
#include <VornalEvpnSm/EgressMask/EvpnMultihomingLocalBiasWithEgressMaskSm.h>
#include <VornalEvpnSm/I2EClassId/EvpnMultihomingLocalBiasWithI2EClassIdSm.h>

KIV_DEFINE( Vornal::VornalEvpnMounter )

namespace Vornal {

namespace {

constexpr char const * kEvpnStatusPath = "evpn/status";
constexpr char const * kVpIndexStatusPath = "hardware/vornal/vp/status/vornalL3";
// The agent's central part mounts the capabilities; the plug-in looks them up alone.
constexpr char const * kVxlanCapabilitiesPath = "hardware/vornal/centralStatus/vxlanCapabilities";
constexpr char const * kI2EClassIdConfigPath = "hardware/vornal/i2eclassid/config/slice/%s";
constexpr char const * kI2EClassIdStatusPath = "hardware/vornal/i2eclassid/status/slice/%s";
constexpr char const * kVtiStatusDirPath = "interface/status/eth/vxlan";
constexpr char const * kLagConfigPath = "lag/config";
constexpr char const * kHwCapabilitiesPath = "bridging/hwcapabilities";

// The entity at `path`, or an empty reference when there is none, when it is not a T, or when there
// is no manager.
template< typename T >
Quelm::Ptr< T > entityAt( Quelm::Ptr< Corrum::EntityManager > const & manager,
                          std::string const & path ) {
   return manager ? Quelm::dynamicCast< T >( manager->getEntity( path ) ) : nullptr;
}

Quelm::Ptr< VornalUnboundedTcamEntryManager > entryManagerFor(
   TcamGroupAssignment assignment, Quelm::Ptr< VornalTcamGroupManager > const & groups ) {
   return groups ? groups->unboundedEntryManager( assignment ) : nullptr;
}

}  // namespace

VornalEvpnMounter::VornalEvpnMounter( std::string const & name ) : MounterBase( name ) {
   TRACE( mounterTrace, 8, __PRETTY_FUNCTION__ );
}

VornalEvpnMounter::~VornalEvpnMounter() {
   isBeingDestroyedIs();
   evpnDependencyWaiterDel();
   evpnTepSegmentSmDel();
   lagPhyIntfMappingDel();
   lagPhyIntfMappingSmDel();
}

void VornalEvpnMounter::doInit() {
   TRACE( mounterTrace, 8, __PRETTY_FUNCTION__ );
   auto const group = entityManager()->getMountGroup();
   group->doMount( { kEvpnStatusPath, "Evpn::EvpnStatus", "r" } );
   group->doMount( { kVpIndexStatusPath, "VornalCentral::VpIndexStatus", "r" } );
   group->doMount( { Quelm::formatted( kI2EClassIdConfigPath, { sliceId() } ),
                     "VornalCentral::I2EClassIdIndexConfig", "wc" } );
   group->doMount( { Quelm::formatted( kI2EClassIdStatusPath, { sliceId() } ),
                     "VornalCentral::I2EClassIdIndexStatus", "rc" } );
   group->doMount( { kVtiStatusDirPath, "Vxlan::VtiStatusDir", "r" } );
   group->doMount( { kLagConfigPath, "Lag::Config", "r" } );
   group->doMount( { kHwCapabilitiesPath, "Bridging::HwCapabilities", "r" } );
   group->doClose( "" );
}

void VornalEvpnMounter::doMountsComplete( Corrum::MountStatus,
                                          Quelm::Ptr< Corrum::EntityManager > entityManager ) {
   TRACE( mounterTrace, 8, __PRETTY_FUNCTION__ );
   evpnStatusIs( entityAt< Evpn::EvpnStatus >( entityManager, kEvpnStatusPath ) );
   vcsdIs( Quelm::dynamicCast< VornalCommonSmData >( sharedEntity( "vornalCommon" ) ) );
   svpShimStatusHeldIs(
      entityAt< VornalCentral::VpIndexStatus >( entityManager, kVpIndexStatusPath ) );
   vxlanCapabilitiesHeldIs(
      entityAt< VornalCentral::VxlanCapabilities >( entityManager, kVxlanCapabilitiesPath ) );
   i2eClassIdIndexConfigHeldIs( entityAt< VornalCentral::I2EClassIdIndexConfig >(
      entityManager, Quelm::formatted( kI2EClassIdConfigPath, { sliceId() } ) ) );
   i2eClassIdIndexStatusHeldIs( entityAt< VornalCentral::I2EClassIdIndexStatus >(
      entityManager, Quelm::formatted( kI2EClassIdStatusPath, { sliceId() } ) ) );
   vtiStatusDirHeldIs( entityAt< Vxlan::VtiStatusDir >( entityManager, kVtiStatusDirPath ) );
   lagConfigIs( entityAt< Lag::Config >( entityManager, kLagConfigPath ) );
   bridgingHwCapabilitiesHeldIs(
      entityAt< Bridging::HwCapabilities >( entityManager, kHwCapabilitiesPath ) );
   evpnDependencyWaiterIs( this, vcsd() );
}

// The directory's machine hears of a segment before the local-bias machine does, because it is
// built first. So a VTEP is in the directory when handleSegmentStatus() runs.
void VornalEvpnMounter::finishInit() {
   TRACE( mounterTrace, 8, __PRETTY_FUNCTION__ );
   auto const groups =
      Quelm::dynamicCast< VornalTcamGroupManager >( sharedEntity( "tcamManager" ) );
   Variant const & variant = variantFor( *vxlanCapabilities() );
   lagPhyIntfMappingIs( "lagToMemberInterfacesMap" );
   lagPhyIntfMappingSmIs( lagConfig(), lagPhyIntfMapping() );
   oxaEvpnTepSegmentDirIs( Oxa::evpnTepSegmentDirFactory( "oxaEvpnTepSegmentDir" ) );
   evpnTepSegmentSmIs( evpnStatus(), oxaEvpnTepSegmentDir(), bridgingHwCapabilities(),
                       lagPhyIntfMapping() );
   evpnMultihomingLocalBiasSmHeldIs( ( this->*variant.create )( groups ) );
}

// The machine is of the first variant whose capability the chip has. The last serves every chip.
VornalEvpnMounter::Variant const VornalEvpnMounter::variants[] = {
   { &VornalCentral::VxlanCapabilities::i2eClassIdSupported,
     &VornalEvpnMounter::localBiasWithI2EClassId },
   { nullptr, &VornalEvpnMounter::localBiasWithEgressMask },
};

VornalEvpnMounter::Variant const & VornalEvpnMounter::variantFor(
   VornalCentral::VxlanCapabilities const & capabilities ) {
   return *std::find_if( std::begin( variants ), std::end( variants ),
                         [ & ]( auto const & variant ) {
                            return !variant.capability || ( capabilities.*variant.capability )();
                         } );
}

VornalEvpnMounter::Machine VornalEvpnMounter::localBiasWithI2EClassId(
   TcamGroups const & groups ) const {
   auto const egress = entryManagerFor( kEfpLocalBiasGroup, groups );
   auto const clock = Kiv::activityManager()->clock();
   auto const ingress = entryManagerFor( kIfpLocalBiasGroup, groups );
   return evpnMultihomingLocalBiasWithI2EClassIdSmFactory(
      vcsd(), oxaEvpnTepSegmentDir(), svpShimStatus(), evpnStatus(), vtiStatusDir(), ingress, clock,
      lagConfig(), lagPhyIntfMapping(), egress, i2eClassIdIndexConfig(), i2eClassIdIndexStatus() );
}

VornalEvpnMounter::Machine VornalEvpnMounter::localBiasWithEgressMask(
   TcamGroups const & groups ) const {
   auto const clock = Kiv::activityManager()->clock();
   auto const ingress = entryManagerFor( kIfpLocalBiasGroup, groups );
   return evpnMultihomingLocalBiasWithEgressMaskSmFactory( vcsd(), oxaEvpnTepSegmentDir(),
                                                           svpShimStatus(), evpnStatus(),
                                                           vtiStatusDir(), ingress, clock,
                                                           lagConfig(), lagPhyIntfMapping() );
}

}  // namespace Vornal
