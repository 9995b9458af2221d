#include <VornalEvpnMounter/EvpnDependencyWaiter.h>

#include <Kiv/Rows.h>
#include <VornalEvpnMounter/ModuleTrace.h>
#include <VornalEvpnMounter/VornalEvpnMounter.h>

KIV_DEFINE( Vornal::EvpnDependencyWaiter )

namespace Vornal {

namespace {

char const * const requiredDependencies[] = { "subagents::l2Ready", nullptr };

// Whether any waiter has seen its dependencies satisfied since the plug-in was loaded.
bool areDependenciesSatisfied = false;

}  // namespace

KivKiv_Vcsd_DependenciesIn::KivKiv_Vcsd_DependenciesIn(
   Quelm::Ptr< VornalSliceDependencyPoints const > const & points, EvpnDependencyWaiter * waiter )
      : waiter_( waiter ) {
   notifierIs( points );
}

void KivKiv_Vcsd_DependenciesIn::onAttribute( Kiv::Change const & change ) {
   if ( change.attribute() == VornalSliceDependencyPoints::subAgentDependencyPointsAttr() &&
        waiter_ ) {
      waiter_->depsReread();
   }
}

EvpnDependencyWaiter::EvpnDependencyWaiter( VornalEvpnMounter * evpnMounter,
                                            Quelm::Ptr< VornalCommonSmData > const & vcsd )
      : evpnMounter_( evpnMounter ), vcsd_( vcsd ) {
   if ( slicePoints() ) {
      depsReread();
   }
   checkAndSetDependencies();
   dependenciesIn_ = std::make_unique< KivKiv_Vcsd_DependenciesIn >( slicePoints(), this );
}

EvpnDependencyWaiter::~EvpnDependencyWaiter() {
   hasNotificationActiveIs( false );
   kivDoZombieReactors( true );
   vcsdDispatch_.notifierIs( nullptr );
   depsDispatch_.notifierIs( nullptr );
   dependenciesIn_->waiterDel();
   dependenciesIn_.reset();
   deps_ = nullptr;
   vcsd_ = nullptr;
   evpnMounter_ = nullptr;
}

Quelm::Ptr< EvpnDependencyWaiter > EvpnDependencyWaiter::EvpnDependencyWaiterIs(
   VornalEvpnMounter * mounter, Quelm::Ptr< VornalCommonSmData > const & commonSmData ) {
   return Quelm::make< EvpnDependencyWaiter >( mounter, commonSmData );
}

void EvpnDependencyWaiter::depsIs( Quelm::Ptr< SubAgentDependencyPoints > const & points ) {
   if ( points == deps_ ) {
      return;
   }
   depsDispatch_.notifierIs( nullptr );
   depsHeldIs( points );
   depsDispatch_.notifierIs( points );
   if ( !isZombie() ) {
      checkAndSetDependencies();
   }
}

void EvpnDependencyWaiter::depsReread() {
   depsIs( slicePoints() ? slicePoints()->subAgentDependencyPoints() : nullptr );
}

void EvpnDependencyWaiter::checkAndSetDependencies() {
   if ( areDependenciesSatisfied ) {
      return;
   }
   static char const * const caller =
      "void Vornal::EvpnDependencyWaiter::checkAndSetDependencies()";
   if ( !areAllDependenciesReady_( mounterTrace, caller, slicePoints(), requiredDependencies ) ) {
      return;
   }
   areDependenciesSatisfied = true;
   TRACE( mounterTrace, 0, caller << " is ready" );
   TRACE( mounterTrace, 8, caller );
   evpnMounter()->finishInit();
   slicePoints()->evpnDependencyPoint()->markReady();
}

void EvpnDependencyWaiter::hasNotificationActiveIs( bool active ) {
   if ( active == hasNotificationActive() ) {
      return;
   }
   Entity::hasNotificationActiveIs( active );
   vcsdDispatch_.hasNotificationActiveIs( active );
   depsDispatch_.hasNotificationActiveIs( active );
   dependenciesIn_->hasNotificationActiveIs( active );
}

void EvpnDependencyWaiter::kivDoZombieReactors( bool zombie ) {
   Entity::kivDoZombieReactors( zombie );
   dependenciesIn_->isZombieIs( zombie );
}

Quelm::Ptr< VornalSliceDependencyPoints > EvpnDependencyWaiter::slicePoints() const {
   return vcsd() ? vcsd()->sliceDependencyPoints() : nullptr;
}

void EvpnDependencyWaiter::handleSliceDependencyPoints() {
   dependenciesIn_->notifierIs( slicePoints() );
   depsReread();
}

}  // namespace Vornal
