// The dependency waiter: the plug-in starts when layer 2 is ready, once however often that is told.
#include <gtest/gtest.h>

#include "../support/Leaf.h"
#include "../support/Observed.h"

namespace DependencyWaiterTest {

using namespace Support;
using Quelm::make;
using Vornal::SubAgentDependencyPoints;
using Vornal::VornalSliceDependencyPoints;

Quelm::Ptr< SubAgentDependencyPoints > readySubAgents() {
   auto const subAgents = make< SubAgentDependencyPoints >( "subagents" );
   subAgents->readyIs( "l2Ready" );
   return subAgents;
}

Quelm::Ptr< VornalSliceDependencyPoints > pointsWith(
   Quelm::Ptr< SubAgentDependencyPoints > const & subAgents ) {
   auto const points = make< VornalSliceDependencyPoints >();
   points->subAgentDependencyPointsIs( subAgents );
   return points;
}

class DependencyWaiter : public testing::Test {
 protected:
   Vornal::EvpnDependencyWaiter & waiter() const { return *leaf.mounter->evpnDependencyWaiter(); }
   bool isOwnPointReady() const { return leaf.points()->evpnDependencyPoint()->isReady(); }

   Leaf leaf;
};

TEST_F( DependencyWaiter, StartsThePlugInWhenLayerTwoGetsReady ) {
   leaf.mountsComplete();
   EXPECT_EQ( leaf.initialisations(), 0 );
   EXPECT_FALSE( isOwnPointReady() );
   leaf.layerTwoIsReady();
   EXPECT_EQ( leaf.initialisations(), 1 );
   EXPECT_TRUE( leaf.mounter->evpnMultihomingLocalBiasSm() );
   EXPECT_TRUE( isOwnPointReady() );
}

TEST_F( DependencyWaiter, TakesNoOtherSubAgentForLayerTwo ) {
   leaf.mountsComplete();
   leaf.subAgents()->readyIs( "l3Ready" );
   leaf.subAgents()->readyIs( "subagents::l2Ready" );
   EXPECT_EQ( leaf.initialisations(), 0 );
   EXPECT_FALSE( isOwnPointReady() );
}

TEST_F( DependencyWaiter, StartsFromItsConstructorWhenLayerTwoIsReadyAlready ) {
   leaf.layerTwoIsReady();
   Journal built;
   AttributeDiary const diary( built, leaf.mounter );
   leaf.mountsComplete();
   // The mounter has everything but the waiter, which is still being built.
   EXPECT_EQ( built[ built.size() - 2 ], "set evpnMultihomingLocalBiasSm" );
   EXPECT_EQ( built.back(), "set evpnDependencyWaiter" );
   EXPECT_EQ( leaf.initialisations(), 1 );
   EXPECT_TRUE( isOwnPointReady() );
   // The waiter has survived that, and nobody else uses it.
   EXPECT_EQ( waiter().users(), 1U );
   EXPECT_EQ( waiter().deps(), leaf.subAgents() );
   EXPECT_TRUE( waiter().hasNotificationActive() );
}

TEST_F( DependencyWaiter, MarksItsOwnPointAfterEverythingIsBuilt ) {
   leaf.mountsComplete();
   Journal events;
   AttributeDiary const diary( events, leaf.mounter );
   Kiv::Watch< Vornal::DependencyPoint > ownPoint( leaf.points()->evpnDependencyPoint(),
                                                   [ & ]( Kiv::Change const & ) {
                                                      events.emplace_back( "own point is ready" );
                                                   } );
   ownPoint.hasNotificationActiveIs( true );
   leaf.layerTwoIsReady();
   EXPECT_EQ( events[ events.size() - 2 ], "set evpnMultihomingLocalBiasSm" );
   EXPECT_EQ( events.back(), "own point is ready" );
}

TEST_F( DependencyWaiter, StartsThePlugInOnceWhenReadinessIsReportedTwice ) {
   leaf.mountsComplete();
   leaf.layerTwoIsReady();
   auto const machine = leaf.mounter->evpnMultihomingLocalBiasSm();
   leaf.subAgents()->readyDel( "l2Ready" );
   leaf.layerTwoIsReady();
   waiter().checkAndSetDependencies();
   EXPECT_EQ( leaf.initialisations(), 1 );
   EXPECT_EQ( leaf.mounter->evpnMultihomingLocalBiasSm(), machine );
}

TEST_F( DependencyWaiter, DoesNotStartASecondTimeFromWithinTheFirst ) {
   leaf.mountsComplete();
   leaf.groups()->onLookUp = [ & ]( auto ) {
      leaf.subAgents()->readyDel( "l2Ready" );
      leaf.layerTwoIsReady();
   };
   leaf.layerTwoIsReady();
   EXPECT_EQ( leaf.initialisations(), 1 );
}

TEST_F( DependencyWaiter, StartsOncePerProcessHoweverManyWaitersThereAre ) {
   leaf.mountsComplete();
   leaf.layerTwoIsReady();
   auto const second = leaf.mounterNew();
   second->doMountsComplete( Corrum::MountStatus::Complete, leaf.database );
   leaf.subAgents()->readyDel( "l2Ready" );
   leaf.layerTwoIsReady();
   EXPECT_EQ( leaf.initialisations(), 1 );
   EXPECT_FALSE( second->evpnMultihomingLocalBiasSm() );
}

TEST_F( DependencyWaiter, DoesNotMindThatLayerTwoStopsBeingReady ) {
   leaf.mountsComplete();
   leaf.layerTwoIsReady();
   auto const machine = leaf.mounter->evpnMultihomingLocalBiasSm();
   leaf.subAgents()->readyDel( "l2Ready" );
   EXPECT_EQ( leaf.mounter->evpnMultihomingLocalBiasSm(), machine );
   EXPECT_TRUE( isOwnPointReady() );
}

TEST_F( DependencyWaiter, FollowsTheSlicesPointsToAnotherObject ) {
   leaf.mountsComplete();
   auto const oldSubAgents = leaf.subAgents();
   leaf.common()->sliceDependencyPointsIs(
      pointsWith( make< SubAgentDependencyPoints >( "subagents" ) ) );
   EXPECT_EQ( waiter().deps(), leaf.subAgents() );
   EXPECT_EQ( oldSubAgents->publisher().subscribers(), 0U );
   oldSubAgents->readyIs( "l2Ready" );
   EXPECT_EQ( leaf.initialisations(), 0 );

   leaf.layerTwoIsReady();
   EXPECT_EQ( leaf.initialisations(), 1 );
   EXPECT_TRUE( isOwnPointReady() );
}

TEST_F( DependencyWaiter, DoesNotStartForPointsThatItHasGivenUp ) {
   leaf.mountsComplete();
   ASSERT_EQ( waiter().deps(), leaf.subAgents() );
   waiter().depsDel();
   EXPECT_FALSE( waiter().deps() );
   EXPECT_EQ( leaf.subAgents()->publisher().subscribers(), 0U );
   leaf.layerTwoIsReady();
   EXPECT_EQ( leaf.initialisations(), 0 );
}

TEST_F( DependencyWaiter, WatchesTheNewPointsForOtherSubAgentPoints ) {
   leaf.mountsComplete();
   auto const oldPoints = leaf.points();
   leaf.common()->sliceDependencyPointsIs( pointsWith( nullptr ) );
   oldPoints->subAgentDependencyPointsIs( readySubAgents() );
   EXPECT_FALSE( waiter().deps() );
   EXPECT_EQ( leaf.initialisations(), 0 );

   leaf.points()->subAgentDependencyPointsIs( readySubAgents() );
   EXPECT_EQ( waiter().deps(), leaf.subAgents() );
   EXPECT_EQ( leaf.initialisations(), 1 );
   EXPECT_TRUE( isOwnPointReady() );
   EXPECT_FALSE( oldPoints->evpnDependencyPoint()->isReady() );
}

TEST_F( DependencyWaiter, StartsAtOnceWhenTheNewPointsAreReady ) {
   leaf.mountsComplete();
   leaf.common()->sliceDependencyPointsIs( pointsWith( readySubAgents() ) );
   EXPECT_EQ( leaf.initialisations(), 1 );
   EXPECT_TRUE( isOwnPointReady() );
}

TEST_F( DependencyWaiter, FollowsTheSubAgentsPointsToAnotherObject ) {
   leaf.mountsComplete();
   auto const oldSubAgents = leaf.subAgents();
   leaf.points()->subAgentDependencyPointsIs( make< SubAgentDependencyPoints >( "subagents" ) );
   EXPECT_EQ( waiter().deps(), leaf.subAgents() );
   oldSubAgents->readyIs( "l2Ready" );
   EXPECT_EQ( leaf.initialisations(), 0 );
   leaf.layerTwoIsReady();
   EXPECT_EQ( leaf.initialisations(), 1 );
}

TEST_F( DependencyWaiter, WaitsOnWithoutSubAgentPointsUntilThereAreSome ) {
   leaf.points()->subAgentDependencyPointsIs( nullptr );
   leaf.mountsComplete();
   EXPECT_FALSE( waiter().deps() );
   leaf.points()->subAgentDependencyPointsIs( readySubAgents() );
   EXPECT_EQ( leaf.initialisations(), 1 );
}

TEST_F( DependencyWaiter, WaitsOnWithoutSlicePointsUntilThereAreSome ) {
   leaf.common()->sliceDependencyPointsIs( nullptr );
   leaf.mountsComplete();
   EXPECT_FALSE( waiter().deps() );
   EXPECT_EQ( leaf.initialisations(), 0 );
   leaf.common()->sliceDependencyPointsIs( pointsWith( readySubAgents() ) );
   EXPECT_EQ( leaf.initialisations(), 1 );
}

TEST_F( DependencyWaiter, LetsGoOfSubAgentPointsThatTheSliceHasLost ) {
   leaf.mountsComplete();
   auto const lost = leaf.subAgents();
   leaf.points()->subAgentDependencyPointsIs( nullptr );
   EXPECT_FALSE( waiter().deps() );
   EXPECT_EQ( lost->users(), 1U );
   EXPECT_EQ( lost->publisher().subscribers(), 0U );
   lost->readyIs( "l2Ready" );
   EXPECT_EQ( leaf.initialisations(), 0 );
}

TEST_F( DependencyWaiter, LetsGoOfPointsThatTheCommonDataHasLost ) {
   leaf.mountsComplete();
   auto const oldPoints = leaf.points();
   leaf.common()->sliceDependencyPointsIs( nullptr );
   EXPECT_FALSE( waiter().deps() );
   EXPECT_EQ( oldPoints->users(), 1U );
   oldPoints->subAgentDependencyPoints()->readyIs( "l2Ready" );
   EXPECT_EQ( leaf.initialisations(), 0 );
}

TEST_F( DependencyWaiter, WaitsForeverWithoutCommonData ) {
   leaf.layerTwoIsReady();
   auto const waiting = leaf.mounter->evpnDependencyWaiterIs( leaf.mounter.get(), nullptr );
   waiting->checkAndSetDependencies();
   waiting->depsIs( readySubAgents() );
   EXPECT_EQ( leaf.initialisations(), 0 );
   EXPECT_EQ( leaf.traces, Journal{} );
   EXPECT_EQ( leaf.logs, Journal{} );
}

TEST_F( DependencyWaiter, CanBeAskedByName ) {
   leaf.mountsComplete();
   waiter().hasNotificationActiveIs( false );
   leaf.layerTwoIsReady();
   EXPECT_EQ( leaf.initialisations(), 0 );
   waiter().typeData().findOperation( "checkAndSetDependencies", 0 )->call( waiter(), {} );
   EXPECT_EQ( leaf.initialisations(), 1 );
}

TEST_F( DependencyWaiter, LooksAtNewPointsButNotAtThoseItHoldsAlready ) {
   leaf.mountsComplete();
   waiter().hasNotificationActiveIs( false );
   leaf.layerTwoIsReady();
   waiter().depsIs( leaf.subAgents() );
   EXPECT_EQ( leaf.initialisations(), 0 );
   waiter().depsDel();
   EXPECT_FALSE( waiter().deps() );
   EXPECT_EQ( leaf.initialisations(), 1 ) << "the slice's points are what counts";
}

TEST_F( DependencyWaiter, OnlyKeepsUpWithThePointsWhileOutOfService ) {
   leaf.mountsComplete();
   waiter().kivDoZombieReactors( true );
   leaf.layerTwoIsReady();
   leaf.points()->subAgentDependencyPointsIs( readySubAgents() );
   leaf.common()->sliceDependencyPointsIs( pointsWith( readySubAgents() ) );
   EXPECT_EQ( waiter().deps(), leaf.subAgents() );
   EXPECT_EQ( leaf.initialisations(), 0 );

   waiter().kivDoZombieReactors( false );
   leaf.subAgents()->readyIs( "l3Ready" );
   EXPECT_EQ( leaf.initialisations(), 1 );
}

TEST_F( DependencyWaiter, HearsNothingWhileItsNotificationsAreOff ) {
   leaf.mountsComplete();
   waiter().hasNotificationActiveIs( false );
   auto const held = waiter().deps();
   leaf.layerTwoIsReady();
   leaf.points()->subAgentDependencyPointsIs( readySubAgents() );
   leaf.common()->sliceDependencyPointsIs( pointsWith( readySubAgents() ) );
   EXPECT_EQ( waiter().deps(), held );
   EXPECT_EQ( leaf.initialisations(), 0 );

   waiter().hasNotificationActiveIs( true );
   leaf.common()->sliceDependencyPointsIs( pointsWith( readySubAgents() ) );
   EXPECT_EQ( leaf.initialisations(), 1 );
}

TEST_F( DependencyWaiter, SubscribesOnceHoweverOftenItIsSwitchedOn ) {
   leaf.mountsComplete();
   waiter().hasNotificationActiveIs( true );
   EXPECT_EQ( leaf.common()->publisher().subscribers(), 1U );
   EXPECT_EQ( leaf.points()->publisher().subscribers(), 1U );
   EXPECT_EQ( leaf.subAgents()->publisher().subscribers(), 1U );
}

TEST_F( DependencyWaiter, LeavesNoSubscriptionAndNoReferenceBehind ) {
   leaf.mountsComplete();
   leaf.mounter = nullptr;
   EXPECT_EQ( leaf.common()->publisher().subscribers(), 0U );
   EXPECT_EQ( leaf.points()->publisher().subscribers(), 0U );
   EXPECT_EQ( leaf.subAgents()->publisher().subscribers(), 0U );
   EXPECT_EQ( leaf.common()->users(), 2U ) << "the agent, and the reference asked through";
}

TEST_F( DependencyWaiter, SwitchesCommonDataThenSubAgentsThenSlicePoints ) {
   Journal touched;
   auto const listener = [ & ]( std::string const & name ) {
      return Listener{ .onSubscription = [ &touched, name ] { touched.push_back( name ); },
                       .onRelease = [] {} };
   };
   auto const subAgents =
      make< Observed< SubAgentDependencyPoints > >( listener( "subAgents" ), "subagents" );
   auto const points = make< Observed< VornalSliceDependencyPoints > >( listener( "slicePoints" ) );
   auto const common =
      make< Observed< Vornal::VornalCommonSmData > >( listener( "common" ), "common" );
   points->subAgentDependencyPointsIs( subAgents );
   common->sliceDependencyPointsIs( points );
   auto const waiting = make< Vornal::EvpnDependencyWaiter >( leaf.mounter.get(), common );

   Journal const order = { "common", "subAgents", "slicePoints" };
   touched.clear();
   waiting->hasNotificationActiveIs( true );
   EXPECT_EQ( touched, order );
   touched.clear();
   waiting->hasNotificationActiveIs( false );
   EXPECT_EQ( touched, order );
}

// A waiter that is the last user of all that it holds ends. What it holds says when it is let go
// of, and whether the waiter is still switched on and in service then.
TEST_F( DependencyWaiter, GoesOutOfServiceThenReleasesSlicePointsThenSubAgentsThenCommonData ) {
   Journal events;
   Vornal::EvpnDependencyWaiter const * ending = nullptr;
   auto const listener = [ & ]( std::string const & name ) {
      auto const note = [ &events, &ending, name ]( std::string const & what ) {
         if ( ending ) {
            events.push_back( what + name + ( ending->hasNotificationActive() ? ", on" : "" ) +
                              ( ending->isZombie() ? ", out of service" : "" ) );
         }
      };
      return Listener{ .onSubscription = [ note ] { note( "unsubscribed from " ); },
                       .onRelease = [ note ] { note( "released " ); } };
   };
   auto subAgents =
      make< Observed< SubAgentDependencyPoints > >( listener( "subAgents" ), "subagents" );
   auto points = make< Observed< VornalSliceDependencyPoints > >( listener( "slicePoints" ) );
   auto common = make< Observed< Vornal::VornalCommonSmData > >( listener( "common" ), "common" );
   points->subAgentDependencyPointsIs( subAgents );
   common->sliceDependencyPointsIs( points );
   auto waiting = make< Vornal::EvpnDependencyWaiter >( leaf.mounter.get(), common );
   // The waiter holds each of the three by itself once they have let go of each other.
   points->subAgentDependencyPointsIs( nullptr );
   common->sliceDependencyPointsIs( nullptr );
   waiting->hasNotificationActiveIs( true );
   subAgents = nullptr;
   points = nullptr;
   common = nullptr;
   ending = waiting.get();
   waiting = nullptr;
   EXPECT_EQ( events,
              ( Journal{ "unsubscribed from common", "unsubscribed from subAgents",
                         "unsubscribed from slicePoints", "released slicePoints, out of service",
                         "released subAgents, out of service",
                         "released common, out of service" } ) );
}

std::string const checkName = "void Vornal::EvpnDependencyWaiter::checkAndSetDependencies()";

TEST_F( DependencyWaiter, TracesThatItIsReadyThenItsNameThenTheInitialisation ) {
   Trace::levelsIs( "VornalEvpnMounter", "0,8" );
   leaf.mountsComplete();
   leaf.traces.clear();
   leaf.layerTwoIsReady();
   EXPECT_EQ( leaf.traces,
              ( Journal{ "VornalEvpnMounter 0 " + checkName + " is ready",
                         "VornalEvpnMounter 8 " + checkName,
                         "VornalEvpnMounter 8 void Vornal::VornalEvpnMounter::finishInit()" } ) );
}

TEST_F( DependencyWaiter, SaysThatItIsReadyWithoutAnyTraceSwitchedOn ) {
   leaf.mountsComplete();
   leaf.layerTwoIsReady();
   EXPECT_EQ( leaf.traces, Journal{ "VornalEvpnMounter 0 " + checkName + " is ready" } );
}

// Once for the points that it takes, and once more at the end of its constructor.
TEST_F( DependencyWaiter, AsksThePlatformTwiceWhenItIsBuilt ) {
   Trace::levelsIs( "VornalEvpnMounter", "7" );
   leaf.mountsComplete();
   std::string const waits = "VornalEvpnMounter 7 " + checkName + " waits for subagents::l2Ready";
   EXPECT_EQ( leaf.traces, ( Journal{ waits, waits } ) );
}

}  // namespace DependencyWaiterTest
