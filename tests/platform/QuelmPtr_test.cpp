// A counted object lives exactly as long as somebody refers to it, may be referred to from within
// its own constructor and destructor, and an empty reference that is used stops the process.
#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <unordered_set>
#include <utility>

#include <Quelm/Ptr.h>

namespace QuelmPtrTest {

using Quelm::Ptr;

class Tunnel : public Quelm::Counted {
 public:
   explicit Tunnel( int & destroyed ) : destroyed_( destroyed ) {}
   ~Tunnel() override { ++destroyed_; }
   int vni() const { return 10100; }

 private:
   int & destroyed_;
};

class VxlanTunnel : public Tunnel {
 public:
   using Tunnel::Tunnel;
};

class OtherTunnel : public Tunnel {
 public:
   using Tunnel::Tunnel;
};

// Refers to itself while it is built and while it is destroyed, as handlers of its own may.
class SelfReferring : public Quelm::Counted {
 public:
   explicit SelfReferring( int & destroyed ) : destroyed_( destroyed ) { referToSelf(); }
   ~SelfReferring() override {
      referToSelf();
      ++destroyed_;
   }

 private:
   void referToSelf() {
      Ptr< SelfReferring > self( this );
      self = Ptr< SelfReferring >( this );
   }
   int & destroyed_;
};

// Runs a function at the end of its life.
class Farewell : public Quelm::Counted {
 public:
   explicit Farewell( std::function< void() > act ) : act_( std::move( act ) ) {}
   ~Farewell() override { act_(); }

 private:
   std::function< void() > act_;
};

// Instead of being deleted, goes back to where it came from.
class Pooled : public Quelm::Counted {
 public:
   int returned = 0;

 private:
   void lastUserGone() override { ++returned; }
};

TEST( QuelmPtr, ObjectLivesUntilItsLastUserLetsGo ) {
   int destroyed = 0;
   Ptr< Tunnel > first = Quelm::make< Tunnel >( destroyed );
   EXPECT_EQ( first->users(), 1U );
   {
      Ptr< Tunnel > const second = first;
      EXPECT_EQ( first->users(), 2U );
      first = nullptr;
      EXPECT_EQ( destroyed, 0 );
      EXPECT_EQ( second->vni(), 10100 );
   }
   EXPECT_EQ( destroyed, 1 );
}

TEST( QuelmPtr, MovingHandsTheUseOver ) {
   int destroyed = 0;
   Ptr< Tunnel > first = Quelm::make< Tunnel >( destroyed );
   Ptr< Tunnel > const second = std::move( first );
   EXPECT_EQ( second->users(), 1U );
   EXPECT_FALSE( first );  // NOLINT(bugprone-use-after-move): that it is empty is what is shown
}

TEST( QuelmPtr, AssigningItselfChangesNothing ) {
   int destroyed = 0;
   Ptr< Tunnel > tunnel = Quelm::make< Tunnel >( destroyed );
   Ptr< Tunnel > const & same = tunnel;
   tunnel = same;
   EXPECT_EQ( tunnel->users(), 1U );
   EXPECT_EQ( destroyed, 0 );
}

TEST( QuelmPtr, PlainThisBecomesAReferenceAtAnyTime ) {
   int destroyed = 0;
   Ptr< Tunnel > const tunnel = Quelm::make< Tunnel >( destroyed );
   Ptr< Tunnel > const again( tunnel.get() );
   EXPECT_EQ( tunnel->users(), 2U );
   EXPECT_EQ( again, tunnel );
}

TEST( QuelmPtr, ConstructorAndDestructorMayReferToTheirObject ) {
   int destroyed = 0;
   Ptr< SelfReferring > object = Quelm::make< SelfReferring >( destroyed );
   EXPECT_EQ( object->users(), 1U );
   EXPECT_EQ( destroyed, 0 );
   object = nullptr;
   EXPECT_EQ( destroyed, 1 );
}

TEST( QuelmPtr, DestructorOfTheOldTargetSeesTheNewOne ) {
   int destroyed = 0;
   Ptr< Quelm::Counted > current;
   Ptr< Quelm::Counted > seen;
   current = Quelm::make< Farewell >( [ & ] { seen = current; } );
   Ptr< Tunnel > const next = Quelm::make< Tunnel >( destroyed );
   current = next;
   EXPECT_EQ( seen, next );
}

TEST( QuelmPtr, ClassMayDecideWhatHappensWhenItsLastUserIsGone ) {
   Pooled object;
   { Ptr< Pooled > const user = Ptr< Pooled >::adopt( &object ); }
   EXPECT_EQ( object.returned, 1 );
}

TEST( QuelmPtr, ConvertsToBasesAndToConst ) {
   int destroyed = 0;
   Ptr< VxlanTunnel > const tunnel = Quelm::make< VxlanTunnel >( destroyed );
   Ptr< Tunnel const > const base = tunnel;
   EXPECT_EQ( base->users(), 2U );
   EXPECT_EQ( base->vni(), 10100 );
   EXPECT_TRUE( base == tunnel );
   EXPECT_TRUE( tunnel == base );
   static_assert( !std::is_constructible_v< Ptr< VxlanTunnel >, Ptr< Tunnel > > );
   static_assert( !std::is_constructible_v< Ptr< Tunnel >, Ptr< Tunnel const > > );
}

TEST( QuelmPtr, DynamicCastFindsTheDerivedObjectOrNothing ) {
   int destroyed = 0;
   Ptr< Tunnel > const tunnel = Quelm::make< VxlanTunnel >( destroyed );
   EXPECT_EQ( Quelm::dynamicCast< VxlanTunnel >( tunnel ), tunnel );
   EXPECT_EQ( Quelm::dynamicCast< OtherTunnel >( tunnel ), nullptr );
   EXPECT_EQ( Quelm::dynamicCast< VxlanTunnel >( Ptr< Tunnel >() ), nullptr );
   EXPECT_EQ( tunnel->users(), 1U );
}

TEST( QuelmPtr, ReleasedUseIsTakenOverByAdopt ) {
   int destroyed = 0;
   Ptr< Tunnel > tunnel = Quelm::make< Tunnel >( destroyed );
   Tunnel * const plain = tunnel.release();
   EXPECT_FALSE( tunnel );
   EXPECT_EQ( destroyed, 0 );
   tunnel = Ptr< Tunnel >::adopt( plain );
   EXPECT_EQ( tunnel->users(), 1U );
}

TEST( QuelmPtr, EqualMeansTheSameObject ) {
   int destroyed = 0;
   Ptr< Tunnel > const tunnel = Quelm::make< Tunnel >( destroyed );
   Ptr< Tunnel > const other = Quelm::make< Tunnel >( destroyed );
   Ptr< Tunnel > const same( tunnel.get() );
   EXPECT_EQ( tunnel, same );
   EXPECT_NE( tunnel, other );
   EXPECT_NE( tunnel, nullptr );
   EXPECT_EQ( Ptr< Tunnel >(), nullptr );
   EXPECT_EQ( ( std::unordered_set< Ptr< Tunnel > >{ tunnel, same, other } ).size(), 2U );
}

TEST( QuelmPtrDeathTest, UsingAnEmptyReferenceStopsTheProcess ) {
   Ptr< Tunnel > const empty;
   char const * const said =
      "Ptr\\.h:[0-9]+: .*Quelm::Ptr<.*operator->.*T = QuelmPtrTest::Tunnel\\]: "
      "Assertion '\"reference is not empty\" && target_' failed\\.\n$";
   EXPECT_EXIT( empty->vni(), testing::KilledBySignal( SIGABRT ), said );
   EXPECT_EXIT( ( *empty ).vni(), testing::KilledBySignal( SIGABRT ), said );
}

}  // namespace QuelmPtrTest
