// How the state machine starts, switches its notifications, and ends; and the order in which a
// change of a collection reaches the machine's handler and the reactor on the member.

#include <Kiv/OrEmpty.h>
#include <Kiv/Rows.h>
#include <VornalEvpnSm/EvpnMultihomingLocalBiasSm.h>
#include <VornalEvpnSm/Module.h>

KIV_DEFINE( Vornal::EvpnMultihomingLocalBiasSm )
KIV_DEFINE( Vornal::EvpnMultihomingLocalBiasSm::NestedSm )
KIV_DEFINE( Vornal::EvpnMultihomingLocalBiasSm::NestedSm_OxaEvpnTepSegment )
KIV_DEFINE( Vornal::EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus )
KIV_DEFINE( Vornal::EvpnMultihomingLocalBiasSm::NestedSm_LagPhyIntfConfig )

namespace Vornal {

using Kiv::orEmpty;

EvpnMultihomingLocalBiasSm::EvpnMultihomingLocalBiasSm(
   Quelm::Ptr< VornalCommonSmData const > const & vcsd,
   Quelm::Ptr< Oxa::EvpnTepSegmentDir const > const & oxaEvpnTepSegmentDir,
   Quelm::Ptr< VornalCentral::VpIndexStatus const > const & vpIndexStatus,
   Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
   Quelm::Ptr< Vxlan::VtiStatusDir const > const & vtiStatusDir,
   Quelm::Ptr< VornalUnboundedTcamEntryManager > const & tcamManager,
   Quelm::Ptr< Kiv::Clock > const & clock, Quelm::Ptr< Lag::Config const > const & lagConfigDir,
   Quelm::Ptr< Lag::LagPhyIntfMapping const > const & lagPhyIntfMapping )
      : vcsd_( vcsd ),
        oxaEvpnTepSegmentDir_( oxaEvpnTepSegmentDir ),
        vpIndexStatus_( vpIndexStatus ),
        evpnStatus_( evpnStatus ),
        vtiStatusDir_( vtiStatusDir ),
        tcamManager_( tcamManager ),
        clock_( clock ),
        lagConfigDir_( lagConfigDir ),
        lagPhyIntfMapping_( lagPhyIntfMapping ),
        kivClock_( std::make_unique< KivClock >( clock, this ) ) {
   handleSegmentStatus();
   for ( auto iter = orEmpty( oxaEvpnTepSegmentDir ).tepSegmentIter(); iter; ++iter ) {
      oxaEvpnTepSegmentIs( iter.value() );
   }
   for ( auto iter = orEmpty( vtiStatusDir ).vtiStatusIter(); iter; ++iter ) {
      vtiStatusIs( iter.value() );
   }
   for ( auto iter = orEmpty( lagPhyIntfMapping ).lagPhyIntfConfigIter(); iter; ++iter ) {
      lagPhyIntfConfigIs( iter.value() );
   }
}

// The variants' destructors have switched off their own reactors. A nested reactor that outlives
// the machine hears nothing any more. No rule is deleted.
EvpnMultihomingLocalBiasSm::~EvpnMultihomingLocalBiasSm() {
   EvpnMultihomingLocalBiasSm::hasNotificationActiveIs( false );
   EvpnMultihomingLocalBiasSm::kivDoZombieReactors( true );
   kivClock_->ownerDel();
   Kiv::nestedOwnerDel( oxaEvpnTepSegment_ );
   Kiv::nestedOwnerDel( vtiStatus_ );
   Kiv::nestedOwnerDel( lagPhyIntfConfig_ );
}

void EvpnMultihomingLocalBiasSm::hasNotificationActiveIs( bool active ) {
   if ( active == hasNotificationActive() ) {
      return;
   }
   Entity::hasNotificationActiveIs( active );
   vcsdDispatch_.hasNotificationActiveIs( active );
   oxaEvpnTepSegmentDirDispatch_.hasNotificationActiveIs( active );
   vpIndexStatusDispatch_.hasNotificationActiveIs( active );
   evpnStatusDispatch_.hasNotificationActiveIs( active );
   vtiStatusDirDispatch_.hasNotificationActiveIs( active );
   tcamManagerDispatch_.hasNotificationActiveIs( active );
   kivClock_->hasNotificationActiveIs( active );
   lagPhyIntfMappingDispatch_.hasNotificationActiveIs( active );
   Kiv::nestedNotificationActiveIs( oxaEvpnTepSegment_, active );
   Kiv::nestedNotificationActiveIs( vtiStatus_, active );
   Kiv::nestedNotificationActiveIs( lagPhyIntfConfig_, active );
}

void EvpnMultihomingLocalBiasSm::kivDoZombieReactors( bool zombie ) {
   Entity::kivDoZombieReactors( zombie );
   Kiv::nestedZombieIs( oxaEvpnTepSegment_, zombie );
   Kiv::nestedZombieIs( vtiStatus_, zombie );
   Kiv::nestedZombieIs( lagPhyIntfConfig_, zombie );
   kivClock_->isZombieIs( zombie );
}

void EvpnMultihomingLocalBiasSm::handleInitialized() {
   TRACE( smTrace, 5, "handleInitialized" );
   initializedIs( true );
   handleTepSegment();
   for ( auto iter = vtiStatusIter(); iter; ++iter ) {
      iter.value()->handleVrfToVniMap();
   }
}

// The rules first: the new reactor hears later changes only.
void EvpnMultihomingLocalBiasSm::handleTepSegmentChange( Pelk::IpGenAddr const & tepIp ) {
   if ( !isZombie() ) {
      handleTepSegment( tepIp );
   }
   if ( auto const segment = oxaEvpnTepSegmentDir()->tepSegment( tepIp ) ) {
      oxaEvpnTepSegmentIs( segment );
   } else {
      oxaEvpnTepSegmentDel( tepIp );
   }
}

void EvpnMultihomingLocalBiasSm::handleVtiStatusChange( Pelk::IntfId const & intfId ) {
   if ( auto const status = vtiStatusDir()->vtiStatus( intfId ) ) {
      vtiStatusIs( status );
   } else {
      vtiStatusDel( intfId );
   }
}

void EvpnMultihomingLocalBiasSm::handleLagPhyIntfConfigChange( Pelk::IntfId const & intfId ) {
   if ( auto const config = lagPhyIntfMapping()->lagPhyIntfConfig( intfId ) ) {
      lagPhyIntfConfigIs( config );
   } else {
      lagPhyIntfConfigDel( intfId );
   }
}

void EvpnMultihomingLocalBiasSm::oxaEvpnTepSegmentIs(
   Quelm::Ptr< Oxa::EvpnTepSegment const > const & segment ) {
   Kiv::nestedIs( *this, oxaEvpnTepSegmentAttr(), oxaEvpnTepSegment_, segment, true );
}

void EvpnMultihomingLocalBiasSm::vtiStatusIs(
   Quelm::Ptr< Vxlan::VtiStatus const > const & status ) {
   Kiv::nestedIs( *this, vtiStatusAttr(), vtiStatus_, status, hasNotificationActive() );
}

void EvpnMultihomingLocalBiasSm::lagPhyIntfConfigIs(
   Quelm::Ptr< Lag::LagPhyIntfConfig const > const & config ) {
   Kiv::nestedIs( *this, lagPhyIntfConfigAttr(), lagPhyIntfConfig_, config, true );
}

EvpnMultihomingLocalBiasSm::KivClock::KivClock( Quelm::Ptr< Kiv::Clock > const & clock,
                                                EvpnMultihomingLocalBiasSm * machine )
      : evpnMultihomingLocalBiasSm_( machine ), reactor_( clock, [ this ] { handleTime(); } ) {}

void EvpnMultihomingLocalBiasSm::KivClock::handleTime() {
   if ( evpnMultihomingLocalBiasSm_ ) {
      evpnMultihomingLocalBiasSm_->handleTime();
   }
}

}  // namespace Vornal
