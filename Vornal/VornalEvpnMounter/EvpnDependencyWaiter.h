// The dependency waiter: holds the plug-in back until the agent's layer 2 is ready.
//
// Rules for tunnels and ports mean nothing before layer 2 has set up both, so the mounter builds
// nothing until "subagents::l2Ready" is ready on this slice. The waiter watches the slice's
// dependency points, and the first time that everything it needs is ready it calls the mounter's
// finishInit() and then marks the plug-in's own dependency point. That happens once in the life of
// the loaded plug-in: a flag shared by all waiters is set before finishInit() runs, so that
// whatever finishInit() stirs up cannot start a second one. An agent keeps the plug-in for the life
// of its process; one that closes it and opens it again starts it afresh, flag included. A later
// loss of readiness is not watched.
//
// The common data may be given other slice dependency points, and those other sub-agent points. The
// waiter follows both.
//
// Everything may already be ready when the waiter is built. finishInit() then runs from inside this
// constructor, before the mounter holds the waiter.
//
// Missing common data or dependency points leave the waiter waiting; nothing times out, and nothing
// is reported. Threads: the activity's.
#pragma once

#include <memory>

#include <Kiv/Entity.h>
#include <Vornal/VornalCommonSmData.h>

namespace Vornal {

class EvpnDependencyWaiter;
class VornalEvpnMounter;

// Watches the slice's dependency points for other sub-agent points.
class KivKiv_Vcsd_DependenciesIn final : public Kiv::Reactor {
 public:
   KivKiv_Vcsd_DependenciesIn( Quelm::Ptr< VornalSliceDependencyPoints const > const & points,
                               EvpnDependencyWaiter * waiter );

   void notifierIs( Quelm::Ptr< VornalSliceDependencyPoints const > const & points ) {
      watchedIs( points );
   }
   // Forgets the waiter, which is going.
   void waiterDel() { waiter_ = nullptr; }

 private:
   void onAttribute( Kiv::Change const & change ) override;

   EvpnDependencyWaiter * waiter_;
};

class EvpnDependencyWaiter : public Kiv::Entity {
   KIV_ENTITY( EvpnDependencyWaiter, Kiv::Entity )
   KIV_BACK( evpnMounter, VornalEvpnMounter )
   KIV_HELD( vcsd, VornalCommonSmData )
   KIV_HELD( deps, SubAgentDependencyPoints )
   KIV_OPERATION( void, checkAndSetDependencies, () )

   EvpnDependencyWaiter( VornalEvpnMounter * evpnMounter,
                         Quelm::Ptr< VornalCommonSmData > const & vcsd );
   ~EvpnDependencyWaiter() override;

   // Builds one; the caller switches its notifications on.
   static Quelm::Ptr< EvpnDependencyWaiter > EvpnDependencyWaiterIs(
      VornalEvpnMounter * mounter, Quelm::Ptr< VornalCommonSmData > const & commonSmData );

   // Watches `points` from now on and checks them at once. Without effect for the points that are
   // held already. A waiter that is out of service does not check.
   void depsIs( Quelm::Ptr< SubAgentDependencyPoints > const & points );
   void depsDel() { depsIs( nullptr ); }

   // Takes the sub-agent points of the common data's slice dependency points; none when there are
   // none.
   void depsReread();

   void hasNotificationActiveIs( bool active ) override;
   void kivDoZombieReactors( bool zombie ) override;

 private:
   Quelm::Ptr< VornalSliceDependencyPoints > slicePoints() const;
   void handleSliceDependencyPoints();

   Kiv::Watch< VornalCommonSmData > vcsdDispatch_{
      vcsd(), Kiv::onAttribute( VornalCommonSmData::sliceDependencyPointsAttr(), this,
                                &KivSelf::handleSliceDependencyPoints )
   };
   Kiv::Watch< SubAgentDependencyPoints > depsDispatch_{
      Kiv::inService( this, Kiv::onAttribute( SubAgentDependencyPoints::readyAttr(), this,
                                              &KivSelf::checkAndSetDependencies ) )
   };
   std::unique_ptr< KivKiv_Vcsd_DependenciesIn > dependenciesIn_;
};

}  // namespace Vornal
