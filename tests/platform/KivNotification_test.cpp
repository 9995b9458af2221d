// A subscriber is told of every change, at the time of the change, in the order of subscription,
// with names, key, old and new value; and of nothing else.
#include <gtest/gtest.h>

#include <csignal>
#include <stdexcept>

#include "support/Journal.h"
#include "support/Switch.h"

namespace KivNotificationTest {

using Kiv::Change;
using Kiv::Watch;
using Quelm::Ptr;
using Support::Chassis;
using Support::describe;
using Support::Journal;
using Support::Port;
using Support::Scribe;
using Support::Switch;

class KivNotification : public testing::Test {
 protected:
   Ptr< Switch > leaf1 = Quelm::make< Switch >( "leaf1" );
   Journal seen;
};

TEST_F( KivNotification, ValueIsAnnouncedWithOldAndNew ) {
   leaf1->mtuIs( 1500 );
   Scribe const scribe( leaf1, seen, "" );
   leaf1->mtuIs( 9000 );
   leaf1->bannerIs( "keep out" );
   EXPECT_EQ( seen,
              ( Journal{ "leaf1 mtu: 1500 -> 9000", "leaf1 banner: \"\" -> \"keep out\"" } ) );
}

TEST_F( KivNotification, ChangeCarriesTypedKeyAndValues ) {
   int calls = 0;
   Watch< Switch > watch( leaf1, [ & ]( Change const & change ) {
      ++calls;
      EXPECT_EQ( &change.entity(), leaf1.get() );
      EXPECT_EQ( change.attribute(), Switch::routeAttr() );
      EXPECT_EQ( change.key< std::string >(), "10.0.0.0/8" );
      EXPECT_EQ( change.oldValue< U32 >(), nullptr );
      ASSERT_NE( change.newValue< U32 >(), nullptr );
      EXPECT_EQ( *change.newValue< U32 >(), 20U );
   } );
   watch.hasNotificationActiveIs( true );
   leaf1->routeIs( "10.0.0.0/8", 20 );
   EXPECT_EQ( calls, 1 );
}

TEST_F( KivNotification, MemberIsAnnouncedWhenItComesChangesAndGoes ) {
   Scribe const scribe( leaf1, seen, "" );
   leaf1->routeIs( "default", 1 );
   leaf1->routeIs( "default", 2 );
   EXPECT_EQ( leaf1->routeDel( "default" ), 2U );
   EXPECT_EQ( seen, ( Journal{ "leaf1 route[default]: absent -> 1", "leaf1 route[default]: 1 -> 2",
                               "leaf1 route[default]: 2 -> absent" } ) );
}

TEST_F( KivNotification, DeletingAndSettingAgainAreTwoChanges ) {
   leaf1->routeIs( "default", 1 );
   Scribe const scribe( leaf1, seen, "" );
   leaf1->routeDel( "default" );
   leaf1->routeIs( "default", 1 );
   EXPECT_EQ( seen, ( Journal{ "leaf1 route[default]: 1 -> absent",
                               "leaf1 route[default]: absent -> 1" } ) );
}

TEST_F( KivNotification, SetMemberIsAnnouncedWhenItComesAndGoes ) {
   Scribe const scribe( leaf1, seen, "" );
   leaf1->vlanIs( 100 );
   leaf1->vlanIs( 100 );
   leaf1->vlanDel( 100 );
   EXPECT_EQ( seen, ( Journal{ "leaf1 vlan[100]: absent -> present",
                               "leaf1 vlan[100]: present -> absent" } ) );
}

TEST_F( KivNotification, EntityMembersAndReferencesAreAnnounced ) {
   Scribe const scribe( leaf1, seen, "" );
   Ptr< Port > const port = leaf1->portIs( 5 );
   leaf1->uplinkIs( port );
   leaf1->uplinkIs( nullptr );
   leaf1->consoleIs( port );
   leaf1->consoleIs( port );
   leaf1->portDel( 5 );
   EXPECT_EQ( seen, ( Journal{ "leaf1 port[5]: absent -> Support::Port 5",
                               "leaf1 uplink: none -> Support::Port 5",
                               "leaf1 uplink: Support::Port 5 -> none",
                               "leaf1 console: none -> Support::Port 5",
                               "leaf1 port[5]: Support::Port 5 -> absent" } ) );
}

TEST_F( KivNotification, RemovingAllIsAnnouncedMemberByMemberInKeyOrder ) {
   leaf1->vlanIs( 300 );
   leaf1->vlanIs( 100 );
   leaf1->vlanIs( 200 );
   Scribe const scribe( leaf1, seen, "" );
   leaf1->vlanDelAll();
   EXPECT_EQ( seen,
              ( Journal{ "leaf1 vlan[100]: present -> absent", "leaf1 vlan[200]: present -> absent",
                         "leaf1 vlan[300]: present -> absent" } ) );
}

TEST_F( KivNotification, EqualValueNotifiesNobody ) {
   Ptr< Port > const port = leaf1->portIs( 5 );
   leaf1->mtuIs( 1500 );
   leaf1->routeIs( "default", 1 );
   leaf1->uplinkIs( port );
   Scribe const scribe( leaf1, seen, "" );
   leaf1->mtuIs( 1500 );
   leaf1->routeIs( "default", 1 );
   leaf1->uplinkIs( port );
   leaf1->portIs( 5 );
   leaf1->portIs( port );
   EXPECT_EQ( seen, Journal{} );
}

TEST_F( KivNotification, RemovingWhatIsAbsentNotifiesNobody ) {
   Scribe const scribe( leaf1, seen, "" );
   EXPECT_EQ( leaf1->routeDel( "default" ), 0U );
   EXPECT_FALSE( leaf1->vlanDel( 100 ) );
   EXPECT_EQ( leaf1->portDel( 5 ), nullptr );
   leaf1->routeDelAll();
   EXPECT_EQ( seen, Journal{} );
}

TEST_F( KivNotification, MemberSetToTheDefaultIsAChange ) {
   Scribe const scribe( leaf1, seen, "" );
   leaf1->routeIs( "default", 0 );
   EXPECT_EQ( seen, Journal{ "leaf1 route[default]: absent -> 0" } );
}

TEST_F( KivNotification, IsDeliveredAtTheTimeOfTheChangeWithTheNewStateInPlace ) {
   U32 mtuSeen = 0;
   bool vlanSeen = true;
   leaf1->vlanIs( 100 );
   Watch< Switch > watch( leaf1, [ & ]( Change const & ) {
      mtuSeen = leaf1->mtu();
      vlanSeen = leaf1->vlanHas( 100 );
   } );
   watch.hasNotificationActiveIs( true );
   leaf1->mtuIs( 9000 );
   EXPECT_EQ( mtuSeen, 9000U );
   EXPECT_TRUE( vlanSeen );
   leaf1->vlanDel( 100 );
   EXPECT_FALSE( vlanSeen );
}

TEST_F( KivNotification, SubscribersAreCalledInTheOrderOfSubscription ) {
   Watch< Switch > early( leaf1, [ & ]( Change const & ) { seen.push_back( "early" ); } );
   Watch< Switch > late( leaf1, [ & ]( Change const & ) { seen.push_back( "late" ); } );
   late.hasNotificationActiveIs( true );
   early.hasNotificationActiveIs( true );
   leaf1->mtuIs( 1 );
   EXPECT_EQ( seen, ( Journal{ "late", "early" } ) );
}

TEST_F( KivNotification, SubscribingAgainGoesToTheEnd ) {
   Watch< Switch > first( leaf1, [ & ]( Change const & ) { seen.push_back( "first" ); } );
   Watch< Switch > second( leaf1, [ & ]( Change const & ) { seen.push_back( "second" ); } );
   first.hasNotificationActiveIs( true );
   second.hasNotificationActiveIs( true );
   first.hasNotificationActiveIs( false );
   first.hasNotificationActiveIs( true );
   leaf1->mtuIs( 1 );
   EXPECT_EQ( seen, ( Journal{ "second", "first" } ) );
}

TEST_F( KivNotification, ActivatingTwiceSubscribesOnce ) {
   Watch< Switch > watch( leaf1, [ & ]( Change const & ) { seen.push_back( "called" ); } );
   watch.hasNotificationActiveIs( true );
   watch.hasNotificationActiveIs( true );
   EXPECT_EQ( leaf1->publisher().subscribers(), 1U );
   leaf1->mtuIs( 1 );
   EXPECT_EQ( seen, Journal{ "called" } );
   watch.hasNotificationActiveIs( false );
   watch.hasNotificationActiveIs( false );
   leaf1->mtuIs( 2 );
   EXPECT_EQ( seen, Journal{ "called" } );
   EXPECT_EQ( leaf1->publisher().subscribers(), 0U );
}

TEST_F( KivNotification, InactiveReactorIsNotCalledWhateverItWatches ) {
   Ptr< Switch > const leaf2 = Quelm::make< Switch >( "leaf2" );
   Watch< Switch > watch( leaf1, [ & ]( Change const & ) { seen.push_back( "called" ); } );
   watch.notifierIs( leaf2 );
   leaf1->mtuIs( 1 );
   leaf2->mtuIs( 1 );
   EXPECT_EQ( seen, Journal{} );
}

TEST_F( KivNotification, ActiveReactorFollowsItsNotifier ) {
   Ptr< Switch > const leaf2 = Quelm::make< Switch >( "leaf2" );
   Watch< Switch > watch( leaf1, [ & ]( Change const & change ) {
      seen.push_back( describe( change ) );
   } );
   watch.hasNotificationActiveIs( true );
   watch.notifierIs( leaf2 );
   leaf1->mtuIs( 1 );
   leaf2->mtuIs( 2 );
   watch.notifierIs( nullptr );
   leaf2->mtuIs( 3 );
   EXPECT_EQ( seen, Journal{ "leaf2 mtu: 0 -> 2" } );
   EXPECT_EQ( leaf1->publisher().subscribers() + leaf2->publisher().subscribers(), 0U );
}

TEST_F( KivNotification, MissingNotifierIsNothingToSubscribeTo ) {
   Watch< Switch > watch( nullptr, [ & ]( Change const & change ) {
      seen.push_back( describe( change ) );
   } );
   watch.hasNotificationActiveIs( true );
   EXPECT_TRUE( watch.hasNotificationActive() );
   watch.notifierIs( leaf1 );
   leaf1->mtuIs( 1 );
   EXPECT_EQ( seen, Journal{ "leaf1 mtu: 0 -> 1" } );
}

TEST_F( KivNotification, ZombieIsAMarkAndDoesNotUnsubscribe ) {
   Watch< Switch > watch( leaf1, [ & ]( Change const & ) {
      seen.push_back( watch.isZombie() ? "out of service" : "in service" );
   } );
   watch.hasNotificationActiveIs( true );
   watch.isZombieIs( true );
   leaf1->mtuIs( 1 );
   watch.isZombieIs( false );
   leaf1->mtuIs( 2 );
   EXPECT_EQ( seen, ( Journal{ "out of service", "in service" } ) );
}

TEST_F( KivNotification, EntityNotesItsOwnFlags ) {
   EXPECT_FALSE( leaf1->hasNotificationActive() || leaf1->isZombie() || leaf1->isBeingDestroyed() );
   leaf1->hasNotificationActiveIs( true );
   leaf1->kivDoZombieReactors( true );
   EXPECT_TRUE( leaf1->hasNotificationActive() );
   EXPECT_TRUE( leaf1->isZombie() );
   leaf1->hasNotificationActiveIs( false );
   leaf1->kivDoZombieReactors( false );
   EXPECT_FALSE( leaf1->hasNotificationActive() || leaf1->isZombie() );
}

TEST_F( KivNotification, AttributesOfTheBaseAreAnnouncedUnderTheirOwnNames ) {
   Ptr< Chassis > const spine1 = Quelm::make< Chassis >( "spine1" );
   Scribe const scribe( spine1, seen, "" );
   spine1->mtuIs( 9000 );
   spine1->slotPowerIs( 3, -48 );
   EXPECT_EQ( seen, ( Journal{ "spine1 mtu: 0 -> 9000", "spine1 slotPower[3]: absent -> -48" } ) );
}

class Retiring : public Switch {
 public:
   Retiring() : Switch( "retiring" ) {}
   void retire() { isBeingDestroyedIs(); }
};

TEST_F( KivNotification, EntityBeingTakenApartDeliversNothingMore ) {
   Ptr< Retiring > const old = Quelm::make< Retiring >();
   Scribe const scribe( Ptr< Switch >( old ), seen, "" );
   old->mtuIs( 1 );
   old->retire();
   EXPECT_TRUE( old->isBeingDestroyed() );
   old->mtuIs( 2 );
   old->vlanIs( 100 );
   old->vlanDelAll();
   EXPECT_EQ( seen, Journal{ "retiring mtu: 0 -> 1" } );
   EXPECT_EQ( old->mtu(), 2U );
}

TEST_F( KivNotification, AskingForAnotherTypeThanTheValueIsAFailedAssertion ) {
   Watch< Switch > watch( leaf1, []( Change const & change ) { change.newValue< U16 >(); } );
   watch.hasNotificationActiveIs( true );
   EXPECT_EXIT( leaf1->mtuIs( 1 ), testing::KilledBySignal( SIGABRT ),
                "Assertion '!target_ \\|\\| \\*type_ == typeid\\( T \\)' failed\\." );
}

TEST_F( KivNotification, AskingAPlainValueForItsKeyIsAFailedAssertion ) {
   Watch< Switch > watch( leaf1, []( Change const & change ) { change.key< U16 >(); } );
   watch.hasNotificationActiveIs( true );
   EXPECT_EXIT( leaf1->mtuIs( 1 ), testing::KilledBySignal( SIGABRT ),
                "Assertion 'key' failed\\." );
}

TEST_F( KivNotification, ExceptionThatLeavesAHandlerStopsTheProcessAndSaysWhat ) {
   Watch< Switch > watch( leaf1, []( Change const & ) { throw std::runtime_error( "no route" ); } );
   watch.hasNotificationActiveIs( true );
   EXPECT_EXIT( leaf1->mtuIs( 1 ), testing::KilledBySignal( SIGABRT ),
                "exception left a change handler: no route" );
}

TEST_F( KivNotification, AnythingElseThrownByAHandlerStopsTheProcessAsWell ) {
   Watch< Switch > watch( leaf1, []( Change const & ) { throw 7; } );
   watch.hasNotificationActiveIs( true );
   EXPECT_EXIT( leaf1->vlanIs( 1 ), testing::KilledBySignal( SIGABRT ), "" );
}

}  // namespace KivNotificationTest
