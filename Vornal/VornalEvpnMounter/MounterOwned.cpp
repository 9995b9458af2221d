// The objects that the mounter creates and owns: their creators and removers.

#include <VornalEvpnMounter/VornalEvpnMounter.h>

namespace Vornal {

template< typename T >
Quelm::Ptr< T > VornalEvpnMounter::ownedIs( Kiv::AttributeId attribute, Quelm::Ptr< T > & held,
                                            Quelm::Ptr< T > const & built ) {
   Kiv::Store::assign( *this, attribute, held, built );
   built->hasNotificationActiveIs( true );
   return built;
}

template< typename T >
Quelm::Ptr< T > VornalEvpnMounter::ownedDel( Kiv::AttributeId attribute, Quelm::Ptr< T > & held ) {
   Quelm::Ptr< T > const detached = held;
   Kiv::Store::assign( *this, attribute, held, Quelm::Ptr< T >() );
   return detached;
}

Quelm::Ptr< EvpnDependencyWaiter > VornalEvpnMounter::evpnDependencyWaiterIs(
   VornalEvpnMounter * mounter, Quelm::Ptr< VornalCommonSmData > const & commonSmData ) {
   auto const & held = evpnDependencyWaiter();
   if ( held && held->evpnMounter() == mounter && held->vcsd() == commonSmData ) {
      return held;
   }
   return ownedIs( evpnDependencyWaiterAttr(), evpnDependencyWaiter_,
                   EvpnDependencyWaiter::EvpnDependencyWaiterIs( mounter, commonSmData ) );
}

Quelm::Ptr< EvpnDependencyWaiter > VornalEvpnMounter::evpnDependencyWaiterDel() {
   if ( evpnDependencyWaiter() ) {
      evpnDependencyWaiter()->hasNotificationActiveIs( false );
   }
   return ownedDel( evpnDependencyWaiterAttr(), evpnDependencyWaiter_ );
}

Quelm::Ptr< Lag::LagPhyIntfMapping > VornalEvpnMounter::lagPhyIntfMappingIs(
   std::string const & name ) {
   if ( lagPhyIntfMapping() && lagPhyIntfMapping()->name() == name ) {
      return lagPhyIntfMapping();
   }
   return ownedIs( lagPhyIntfMappingAttr(), lagPhyIntfMapping_,
                   Quelm::make< Lag::LagPhyIntfMapping >( name ) );
}

Quelm::Ptr< Lag::LagPhyIntfMapping > VornalEvpnMounter::lagPhyIntfMappingDel() {
   return ownedDel( lagPhyIntfMappingAttr(), lagPhyIntfMapping_ );
}

Quelm::Ptr< Lag::LagPhyIntfMappingSm > VornalEvpnMounter::lagPhyIntfMappingSmIs(
   Quelm::Ptr< Lag::Config const > const & lagConfig,
   Quelm::Ptr< Lag::LagPhyIntfMapping > const & lagPhyIntfMapping ) {
   auto const & held = lagPhyIntfMappingSm();
   if ( held && held->lagConfig() == lagConfig && held->lagPhyIntfMapping() == lagPhyIntfMapping ) {
      return held;
   }
   return ownedIs( lagPhyIntfMappingSmAttr(), lagPhyIntfMappingSm_,
                   Lag::LagPhyIntfMappingSm::LagPhyIntfMappingSmIs( lagConfig,
                                                                    lagPhyIntfMapping ) );
}

Quelm::Ptr< Lag::LagPhyIntfMappingSm > VornalEvpnMounter::lagPhyIntfMappingSmDel() {
   if ( lagPhyIntfMappingSm() ) {
      lagPhyIntfMappingSm()->hasNotificationActiveIs( false );
   }
   return ownedDel( lagPhyIntfMappingSmAttr(), lagPhyIntfMappingSm_ );
}

Quelm::Ptr< Oxa::OxaEvpnTepSegmentSm > VornalEvpnMounter::evpnTepSegmentSmIs(
   Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
   Quelm::Ptr< Oxa::EvpnTepSegmentDir > const & tepSegmentDir,
   Quelm::Ptr< Bridging::HwCapabilities const > const & bridgingHwCapabilities,
   Quelm::Ptr< Lag::LagPhyIntfMapping const > const & lagPhyIntfMapping ) {
   auto const & held = evpnTepSegmentSm();
   if ( held && held->evpnStatus() == evpnStatus && held->tepSegmentDir() == tepSegmentDir &&
        held->bridgingHwCapabilities() == bridgingHwCapabilities &&
        held->lagPhyIntfMapping() == lagPhyIntfMapping ) {
      return held;
   }
   return ownedIs( evpnTepSegmentSmAttr(), evpnTepSegmentSm_,
                   Oxa::OxaEvpnTepSegmentSm::OxaEvpnTepSegmentSmIs( evpnStatus, tepSegmentDir,
                                                                    bridgingHwCapabilities,
                                                                    lagPhyIntfMapping ) );
}

Quelm::Ptr< Oxa::OxaEvpnTepSegmentSm > VornalEvpnMounter::evpnTepSegmentSmDel() {
   if ( evpnTepSegmentSm() ) {
      evpnTepSegmentSm()->hasNotificationActiveIs( false );
   }
   return ownedDel( evpnTepSegmentSmAttr(), evpnTepSegmentSm_ );
}

}  // namespace Vornal
