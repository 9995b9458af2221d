// The life of entities while handlers take and drop references to them: during construction, during
// a change, during destruction.
#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <memory>

#include "support/Journal.h"
#include "support/Switch.h"

namespace KivLifeTest {

using Kiv::Change;
using Quelm::Ptr;
using Support::describe;
using Support::Journal;
using Support::Port;
using Support::Switch;
using Watch = Kiv::Watch< Switch >;

// A switch that says when it is gone.
class Mortal : public Switch {
 public:
   explicit Mortal( bool & isGone ) : Switch( "mortal" ), isGone_( isGone ) {}
   ~Mortal() override { isGone_ = true; }

 private:
   bool & isGone_;
};

// A switch that copies the MTU of another one from its construction on, and refers to itself in
// doing so.
class Follower : public Switch {
 public:
   Follower( Ptr< Switch > const & leader, int & destroyed )
         : Switch( "follower" ),
           watch_( leader, [ this, leader = leader.get() ]( Change const & ) { copy( *leader ); } ),
           destroyed_( destroyed ) {
      watch_.hasNotificationActiveIs( true );
      leader->mtuIs( 1500 );
      usersDuringConstruction = users();
   }
   ~Follower() override { ++destroyed_; }

   U32 usersDuringConstruction = 0;

 private:
   void copy( Switch const & leader ) {
      Ptr< Follower > const first( this );
      Ptr< Follower > second = first;
      second = nullptr;
      mtuIs( leader.mtu() );
   }

   Watch watch_;
   int & destroyed_;
};

// At the end of its life it still walks, changes and refers to itself.
class Orderly : public Switch {
 public:
   explicit Orderly( std::function< void( Orderly & ) > farewell )
         : Switch( "orderly" ), farewell_( std::move( farewell ) ) {}
   ~Orderly() override { farewell_( *this ); }

 private:
   std::function< void( Orderly & ) > farewell_;
};

TEST( KivLife, ObjectUnderConstructionSurvivesItsOwnHandlers ) {
   Ptr< Switch > const leader = Quelm::make< Switch >( "leader" );
   int destroyed = 0;
   Ptr< Follower > follower = Quelm::make< Follower >( leader, destroyed );
   EXPECT_EQ( destroyed, 0 );
   EXPECT_EQ( follower->mtu(), 1500U );
   EXPECT_EQ( follower->usersDuringConstruction, 1U );
   EXPECT_EQ( follower->users(), 1U );
   leader->mtuIs( 9000 );
   EXPECT_EQ( follower->mtu(), 9000U );
   follower = nullptr;
   EXPECT_EQ( destroyed, 1 );
   EXPECT_EQ( leader->publisher().subscribers(), 0U );
}

TEST( KivLife, ChangedEntityOutlivesTheDeliveryThatDropsTheLastReference ) {
   bool isGone = false;
   Ptr< Switch > leaf1 = Quelm::make< Mortal >( isGone );
   Journal seen;
   Watch first( leaf1, [ & ]( Change const & ) {
      first.notifierIs( nullptr );
      leaf1 = nullptr;
      seen.push_back( isGone ? "gone" : "still there" );
   } );
   first.hasNotificationActiveIs( true );
   leaf1->mtuIs( 1 );
   EXPECT_EQ( seen, Journal{ "still there" } );
   EXPECT_TRUE( isGone );
}

TEST( KivLife, EveryKindOfChangeMayDropTheLastReference ) {
   using Act = std::function< void( Switch & ) >;
   for ( Act const & act :
         { Act( []( Switch & s ) { s.vlanIs( 1 ); } ),
           Act( []( Switch & s ) { s.vlanDel( 100 ); } ),
           Act( []( Switch & s ) { s.vlanDelAll(); } ),
           Act( []( Switch & s ) { s.routeIs( "default", 2 ); } ),
           Act( []( Switch & s ) { s.portIs( 6 ); } ), Act( []( Switch & s ) { s.portDel( 5 ); } ),
           Act( []( Switch & s ) { s.uplinkIs( nullptr ); } ) } ) {
      bool isGone = false;
      Ptr< Switch > leaf1 = Quelm::make< Mortal >( isGone );
      leaf1->vlanIs( 100 );
      leaf1->routeIs( "default", 1 );
      leaf1->uplinkIs( leaf1->portIs( 5 ) );
      Watch watch( leaf1, [ & ]( Change const & ) {
         watch.notifierIs( nullptr );
         leaf1 = nullptr;
         EXPECT_FALSE( isGone );
      } );
      watch.hasNotificationActiveIs( true );
      act( *leaf1 );
      EXPECT_TRUE( isGone );
   }
}

TEST( KivLife, ReactorKeepsItsNotifierAliveUntilItTurnsAway ) {
   bool isGone = false;
   Watch watch( Quelm::make< Mortal >( isGone ), []( Change const & ) {} );
   EXPECT_FALSE( isGone );
   watch.hasNotificationActiveIs( true );
   watch.hasNotificationActiveIs( false );
   EXPECT_FALSE( isGone );
   watch.notifierIs( nullptr );
   EXPECT_TRUE( isGone );
}

TEST( KivLife, ReactorDropsItsNotifierWithItself ) {
   bool isGone = false;
   auto watch =
      std::make_unique< Watch >( Quelm::make< Mortal >( isGone ), []( Change const & ) {} );
   watch->hasNotificationActiveIs( true );
   watch.reset();
   EXPECT_TRUE( isGone );
}

TEST( KivLife, EndOfTheOldNotifierSeesTheReactorAlreadyOnTheNewOne ) {
   Ptr< Switch > const leaf2 = Quelm::make< Switch >( "leaf2" );
   Journal seen;
   Watch watch( nullptr, [ & ]( Change const & change ) { seen.push_back( describe( change ) ); } );
   watch.notifierIs( Quelm::make< Orderly >( [ & ]( Orderly & ) { leaf2->mtuIs( 1 ); } ) );
   watch.hasNotificationActiveIs( true );
   watch.notifierIs( leaf2 );
   EXPECT_EQ( seen, Journal{ "leaf2 mtu: 0 -> 1" } );
}

TEST( KivLife, DestructorMayChangeWalkAndReferToItsObject ) {
   std::vector< U16 > walked;
   Ptr< Switch > leaf1 = Quelm::make< Orderly >( [ & ]( Orderly & self ) {
      Ptr< Orderly > const reference( &self );
      self.vlanIs( 300 );
      for ( auto iter = self.vlanIter(); iter; ++iter ) {
         walked.push_back( iter.key() );
      }
      self.vlanDelAll();
   } );
   leaf1->vlanIs( 100 );
   leaf1 = nullptr;
   EXPECT_EQ( walked, ( std::vector< U16 >{ 100, 300 } ) );
}

TEST( KivLife, HandlerMayTakeTheMemberThatIsBeingMadeOutAgain ) {
   Ptr< Switch > const leaf1 = Quelm::make< Switch >( "leaf1" );
   Watch watch( leaf1, [ & ]( Change const & change ) {
      if ( change.rawNewValue().get() ) {
         leaf1->portDel( change.key< U16 >() );
      }
   } );
   watch.hasNotificationActiveIs( true );
   Ptr< Port > const port = leaf1->portIs( 5 );
   EXPECT_EQ( port->number(), 5 );
   EXPECT_EQ( port->users(), 1U );
   EXPECT_EQ( leaf1->ports(), 0U );
}

TEST( KivLife, OldAndNewEntityLiveThroughTheAnnouncementOfTheirExchange ) {
   Ptr< Switch > const leaf1 = Quelm::make< Switch >( "leaf1" );
   leaf1->uplinkIs( Quelm::make< Port >( U16{ 5 } ) );
   U32 numbers = 0;
   Watch watch( leaf1, [ & ]( Change const & change ) {
      if ( numbers == 0 ) {
         numbers = 1;
         leaf1->uplinkIs( nullptr );
         numbers = ( *change.oldValue< Ptr< Port > >() )->number() * 10U +
                   ( *change.newValue< Ptr< Port > >() )->number();
      }
   } );
   watch.hasNotificationActiveIs( true );
   leaf1->uplinkIs( Quelm::make< Port >( U16{ 6 } ) );
   EXPECT_EQ( numbers, 56U );
   EXPECT_EQ( leaf1->uplink(), nullptr );
}

TEST( KivLife, BackReferenceIsNotAUser ) {
   bool isGone = false;
   Ptr< Switch > leaf1 = Quelm::make< Mortal >( isGone );
   Ptr< Switch > const leaf2 = Quelm::make< Switch >( "leaf2" );
   leaf2->neighbourIs( leaf1.get() );
   EXPECT_EQ( leaf2->neighbour(), leaf1.get() );
   EXPECT_EQ( leaf1->users(), 1U );
   leaf1 = nullptr;
   EXPECT_TRUE( isGone );
}

TEST( KivLife, SubscriberThatStaysBehindWhenItsSwitchGoesIsAFailedAssertion ) {
   auto const leak = [] {
      auto * const watch = new Watch( nullptr, []( Change const & ) {} );
      Quelm::make< Orderly >( [ & ]( Orderly & self ) {
         watch->hasNotificationActiveIs( true );
         watch->notifierIs( Ptr< Switch >( &self ) );
      } );
   };
   EXPECT_EXIT( leak(), testing::KilledBySignal( SIGABRT ), "Assertion '!first_' failed\\." );
}

TEST( KivLife, UsingAnEmptyReferenceOfAnEntityIsAFailedAssertion ) {
   Ptr< Switch > const leaf1 = Quelm::make< Switch >( "leaf1" );
   EXPECT_EXIT( leaf1->uplink()->speed(), testing::KilledBySignal( SIGABRT ),
                "Ptr\\.h:[0-9]+: .*T = Support::Port\\]: "
                "Assertion '\"reference is not empty\" && target_' failed\\.\n$" );
   EXPECT_EXIT( leaf1->port( 5 )->speedIs( 1 ), testing::KilledBySignal( SIGABRT ),
                "Assertion '\"reference is not empty\" && target_' failed\\.\n$" );
}

}  // namespace KivLifeTest
