// Parts of an agent wait for each other by points that become ready, found by name in a set.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <Trace/Trace.h>
#include <Vornal/Dependency.h>

#include "support/Journal.h"

namespace DependencyTest {

using Quelm::Ptr;
using Vornal::areAllDependenciesReady_;
using Vornal::DependencyPoint;
using Vornal::SubAgentDependencyPoints;
using Vornal::VornalSliceDependencyPoints;
using Lines = std::vector< std::string >;

class Dependencies : public testing::Test {
 protected:
   Dependencies() {
      Trace::sinkIs( [ this ]( Trace::Line const & line ) {
         traced.push_back( std::to_string( line.level ) + " " + std::string( line.text ) );
      } );
      trace.textLevelsIs( 1U << 7 );
   }
   ~Dependencies() override { Trace::sinkIs( nullptr ); }

   void pointsAre( Lines const & ready ) {
      auto const points = Quelm::make< SubAgentDependencyPoints >( "subagents" );
      for ( std::string const & name : ready ) {
         points->readyIs( name );
      }
      slice->subAgentDependencyPointsIs( points );
   }
   bool areReady( std::vector< char const * > names ) {
      names.push_back( nullptr );
      return areAllDependenciesReady_( trace, "caller()", slice, names.data() );
   }

   Ptr< VornalSliceDependencyPoints > slice = Quelm::make< VornalSliceDependencyPoints >();
   Trace::Handle trace{ "TestDependencies" };
   Lines traced;
};

TEST_F( Dependencies, PointBecomesReadyOnceAndSaysSo ) {
   auto const point = Quelm::make< DependencyPoint >( "evpn" );
   Support::Journal seen;
   Support::Scribe const scribe( point, seen, "" );
   EXPECT_FALSE( point->isReady() );
   point->markReady();
   point->markReady();
   EXPECT_TRUE( point->isReady() );
   EXPECT_EQ( seen, Lines{ "evpn isReady: false -> true" } );
}

TEST_F( Dependencies, SliceHasThePlugInsOwnPointFromTheStart ) {
   ASSERT_TRUE( slice->evpnDependencyPoint() );
   EXPECT_EQ( slice->evpnDependencyPoint()->name(), "evpn" );
   EXPECT_FALSE( slice->evpnDependencyPoint()->isReady() );
   EXPECT_FALSE( slice->subAgentDependencyPoints() );
}

TEST_F( Dependencies, SubAgentsPointIsReadyWhenItsGroupSaysSo ) {
   EXPECT_FALSE( slice->isReady( "subagents::l2Ready" ) );
   pointsAre( { "l3Ready" } );
   EXPECT_FALSE( slice->isReady( "subagents::l2Ready" ) );
   slice->subAgentDependencyPoints()->readyIs( "l2Ready" );
   EXPECT_TRUE( slice->isReady( "subagents::l2Ready" ) );
}

TEST_F( Dependencies, PlugInsOwnPointIsFoundByItsNameInTheSlicesSet ) {
   EXPECT_FALSE( slice->isReady( "evpn" ) );
   EXPECT_FALSE( areReady( { "evpn" } ) );
   slice->evpnDependencyPoint()->markReady();
   EXPECT_TRUE( slice->isReady( "evpn" ) );
   EXPECT_TRUE( areReady( { "evpn" } ) );
   EXPECT_FALSE( slice->isReady( "subagents::evpn" ) );
}

TEST_F( Dependencies, SubAgentOfThePlugInsNameIsNotItsPoint ) {
   pointsAre( { "evpn" } );
   EXPECT_FALSE( slice->isReady( "evpn" ) );
   EXPECT_TRUE( slice->isReady( "subagents::evpn" ) );
}

TEST_F( Dependencies, NamesAreExact ) {
   pointsAre( { "l2Ready" } );
   for ( char const * const name : { "l2Ready", "subagents", "subagents::", "subagents::l2",
                                     "::l2Ready", "agents::l2Ready", "subagents::l2Ready ", "" } ) {
      EXPECT_FALSE( slice->isReady( name ) ) << name;
   }
}

TEST_F( Dependencies, AllMustBeReady ) {
   pointsAre( { "l2Ready", "l3Ready" } );
   EXPECT_TRUE( areReady( { "subagents::l2Ready" } ) );
   EXPECT_TRUE( areReady( { "subagents::l2Ready", "subagents::l3Ready" } ) );
   EXPECT_EQ( traced, Lines{} );
   EXPECT_FALSE( areReady( { "subagents::l2Ready", "subagents::mplsReady" } ) );
}

TEST_F( Dependencies, FirstThatIsNotReadyIsTracedAfterItsCaller ) {
   pointsAre( { "l2Ready" } );
   EXPECT_FALSE( areReady( { "subagents::l2Ready", "subagents::a", "subagents::b" } ) );
   EXPECT_EQ( traced, Lines{ "7 caller() waits for subagents::a" } );
}

TEST_F( Dependencies, TestOnNoSetIsFalse ) {
   slice = nullptr;
   EXPECT_FALSE( areReady( { "subagents::l2Ready" } ) );
   EXPECT_EQ( traced, Lines{ "7 caller() waits for subagents::l2Ready" } );
   EXPECT_FALSE( areReady( {} ) );
}

TEST_F( Dependencies, NoDependenciesAreReadyOnAnySet ) {
   EXPECT_TRUE( areReady( {} ) );
}

TEST_F( Dependencies, SetWithoutSubAgentsIsNotReady ) {
   EXPECT_FALSE( areReady( { "subagents::l2Ready" } ) );
}

}  // namespace DependencyTest
