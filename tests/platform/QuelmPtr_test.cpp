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

class CountedTunnel : public Quelm::Counted {
 public:
   explicit CountedTunnel( int & destroyed ) : destroyed_( destroyed ) {}
   ~CountedTunnel() override { ++destroyed_; }
   int vni() const { return 10100; }

 private:
   int & destroyed_;
};

class VxlanTunnel : public CountedTunnel {
 public:
   using CountedTunnel::CountedTunnel;
};

class OtherTunnel : public CountedTunnel {
 public:
   using CountedTunnel::CountedTunnel;
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
   Ptr< CountedTunnel > first = Quelm::make< CountedTunnel >( destroyed );
   EXPECT_EQ( first->users(), 1U );
   {
      Ptr< CountedTunnel > const second = first;
      EXPECT_EQ( first->users(), 2U );
      first = nullptr;
      EXPECT_EQ( destroyed, 0 );
      EXPECT_EQ( second->vni(), 10100 );
   }
   EXPECT_EQ( destroyed, 1 );
}

TEST( QuelmPtr, MovingHandsTheUseOver ) {
   int destroyed = 0;
   Ptr< CountedTunnel > first = Quelm::make< CountedTunnel >( destroyed );
   Ptr< CountedTunnel > const second = std::move( first );
   EXPECT_EQ( second->users(), 1U );
   EXPECT_FALSE( first );  // NOLINT(bugprone-use-after-move): that it is empty is what is shown
}

TEST( QuelmPtr, AssigningItselfChangesNothing ) {
   int destroyed = 0;
   Ptr< CountedTunnel > tunnel = Quelm::make< CountedTunnel >( destroyed );
   Ptr< CountedTunnel > const & same = tunnel;
   tunnel = same;
   EXPECT_EQ( tunnel->users(), 1U );
   EXPECT_EQ( destroyed, 0 );
}

TEST( QuelmPtr, PlainThisBecomesAReferenceAtAnyTime ) {
   int destroyed = 0;
   Ptr< CountedTunnel > const tunnel = Quelm::make< CountedTunnel >( destroyed );
   Ptr< CountedTunnel > const again( tunnel.get() );
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
   Ptr< CountedTunnel > const next = Quelm::make< CountedTunnel >( destroyed );
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
   Ptr< CountedTunnel const > const base = tunnel;
   EXPECT_EQ( base->users(), 2U );
   EXPECT_EQ( base->vni(), 10100 );
   EXPECT_TRUE( base == tunnel );
   EXPECT_TRUE( tunnel == base );
   static_assert( !std::is_constructible_v< Ptr< VxlanTunnel >, Ptr< CountedTunnel > > );
   static_assert( !std::is_constructible_v< Ptr< CountedTunnel >, Ptr< CountedTunnel const > > );
}

TEST( QuelmPtr, DynamicCastFindsTheDerivedObjectOrNothing ) {
   int destroyed = 0;
   Ptr< CountedTunnel > const tunnel = Quelm::make< VxlanTunnel >( destroyed );
   EXPECT_EQ( Quelm::dynamicCast< VxlanTunnel >( tunnel ), tunnel );
   EXPECT_EQ( Quelm::dynamicCast< OtherTunnel >( tunnel ), nullptr );
   EXPECT_EQ( Quelm::dynamicCast< VxlanTunnel >( Ptr< CountedTunnel >() ), nullptr );
   EXPECT_EQ( tunnel->users(), 1U );
}

TEST( QuelmPtr, ReleasedUseIsTakenOverByAdopt ) {
   int destroyed = 0;
   Ptr< CountedTunnel > tunnel = Quelm::make< CountedTunnel >( destroyed );
   CountedTunnel * const plain = tunnel.release();
   EXPECT_FALSE( tunnel );
   EXPECT_EQ( destroyed, 0 );
   tunnel = Ptr< CountedTunnel >::adopt( plain );
   EXPECT_EQ( tunnel->users(), 1U );
}

TEST( QuelmPtr, EqualMeansTheSameObject ) {
   int destroyed = 0;
   Ptr< CountedTunnel > const tunnel = Quelm::make< CountedTunnel >( destroyed );
   Ptr< CountedTunnel > const other = Quelm::make< CountedTunnel >( destroyed );
   Ptr< CountedTunnel > const same( tunnel.get() );
   EXPECT_EQ( tunnel, same );
   EXPECT_NE( tunnel, other );
   EXPECT_NE( tunnel, nullptr );
   EXPECT_EQ( Ptr< CountedTunnel >(), nullptr );
   EXPECT_EQ( ( std::unordered_set< Ptr< CountedTunnel > >{ tunnel, same, other } ).size(), 2U );
}

TEST( QuelmPtrDeathTest, UsingAnEmptyReferenceStopsTheProcess ) {
   Ptr< CountedTunnel > const empty;
   char const * const said =
      "Ptr\\.h:[0-9]+: .*Quelm::Ptr<.*operator->.*T = QuelmPtrTest::CountedTunnel\\]: "
      "Assertion '\"reference is not empty\" && target_' failed\\.\n$";
   EXPECT_EXIT( empty->vni(), testing::KilledBySignal( SIGABRT ), said );
   EXPECT_EXIT( ( *empty ).vni(), testing::KilledBySignal( SIGABRT ), said );
}

}  // namespace QuelmPtrTest
