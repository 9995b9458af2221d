// What every derivation does, whatever it derives: it keeps its directory in sync while it is both
// switched on and in service, and leaves it as it is otherwise.
#include <gtest/gtest.h>

#include <ostream>
#include <vector>

#include <rapidcheck/gtest.h>

#include "support/PortChannels.h"
#include "support/SharedSegments.h"

namespace DerivationTest {

using Support::Journal;
using Support::PortChannels;
using Support::SharedSegments;
using Support::Table;

template< typename World > class Derivation : public testing::Test {
 protected:
   // Changes that are published between the two are caught up with, and later ones followed.
   void changesNothingBetween( auto const & end, auto const & begin ) {
      world.publishFirst();
      end();
      world.news();
      world.publishSecond();
      EXPECT_EQ( world.news(), Journal{} );
      EXPECT_EQ( world.state(), world.firstState() );
      begin();
      EXPECT_EQ( world.state(), world.secondState() );
      world.publishThird();
      EXPECT_EQ( world.state(), world.thirdState() );
   }

   World world;
};

using Worlds = testing::Types< PortChannels, SharedSegments >;
TYPED_TEST_SUITE( Derivation, Worlds );

TYPED_TEST( Derivation, ItsCreatorLeavesTheNotificationsToTheCaller ) {
   this->world.publishFirst();
   auto const sm = this->world.smNew();
   EXPECT_FALSE( sm->hasNotificationActive() );
   EXPECT_EQ( this->world.state(), "" );
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( this->world.state(), this->world.firstState() );
}

TYPED_TEST( Derivation, SwitchedOffItChangesNothingAndCatchesUpWhenOnAgain ) {
   auto const sm = this->world.activeSmNew();
   this->changesNothingBetween( [ & ] { sm->hasNotificationActiveIs( false ); },
                                [ & ] { sm->hasNotificationActiveIs( true ); } );
}

TYPED_TEST( Derivation, OutOfServiceItChangesNothingAndCatchesUpWhenBack ) {
   auto const sm = this->world.activeSmNew();
   this->changesNothingBetween( [ & ] { sm->kivDoZombieReactors( true ); },
                                [ & ] { sm->kivDoZombieReactors( false ); } );
}

TYPED_TEST( Derivation, DerivesOnlyWhileBothSwitchedOnAndInService ) {
   auto const sm = this->world.activeSmNew();
   sm->kivDoZombieReactors( true );
   sm->hasNotificationActiveIs( false );
   sm->hasNotificationActiveIs( true );
   this->world.publishFirst();
   EXPECT_EQ( this->world.state(), "" );
   sm->hasNotificationActiveIs( false );
   sm->kivDoZombieReactors( false );
   EXPECT_EQ( this->world.state(), "" );
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( this->world.state(), this->world.firstState() );
}

TYPED_TEST( Derivation, SwitchingOnAgainWithNothingMissedChangesNothing ) {
   auto const sm = this->world.activeSmNew();
   this->world.publishFirst();
   this->world.news();
   auto const subscribers = this->world.subscribers();
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( this->world.subscribers(), subscribers );
   sm->hasNotificationActiveIs( false );
   EXPECT_EQ( this->world.subscribers(), 0U );
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( this->world.subscribers(), subscribers );
   EXPECT_EQ( this->world.news(), Journal{} );
}

// A directory that is cleared by hand stays so until something changes.
TYPED_TEST( Derivation, SwitchedOnWhileOnItDoesNotDeriveOnceMore ) {
   auto const sm = this->world.activeSmNew();
   this->world.publishFirst();
   this->world.clearDirectory();
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( this->world.state(), "" );
}

TYPED_TEST( Derivation, DestroyedItLeavesTheDirectoryAndNoSubscription ) {
   auto sm = this->world.activeSmNew();
   this->world.publishFirst();
   this->world.news();
   sm = nullptr;
   EXPECT_EQ( this->world.subscribers(), 0U );
   this->world.publishSecond();
   EXPECT_EQ( this->world.news(), Journal{} );
   EXPECT_EQ( this->world.state(), this->world.firstState() );
}

TYPED_TEST( Derivation, AnotherTakesOverTheDirectoryOfTheFirst ) {
   auto first = this->world.activeSmNew();
   this->world.publishFirst();
   first = nullptr;
   this->world.news();
   auto const second = this->world.activeSmNew();
   EXPECT_EQ( this->world.news(), Journal{} );
   this->world.publishSecond();
   EXPECT_EQ( this->world.state(), this->world.secondState() );
}

TYPED_TEST( Derivation, AReaderThatEndsItEndsItAtOnce ) {
   this->world.publishFirst();
   auto const sm = this->world.smNew();
   Kiv::Watch< typename TypeParam::Directory > reader( this->world.directory,
                                                       [ & ]( Kiv::Change const & ) {
                                                          sm->kivDoZombieReactors( true );
                                                       } );
   reader.hasNotificationActiveIs( true );
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( this->world.state(), this->world.cutShortState() );
   EXPECT_EQ( this->world.subscribers(), 0U );
}

TYPED_TEST( Derivation, WithoutAnInputItDerivesNothing ) {
   for ( auto const & sm : this->world.smsWithoutInputs() ) {
      sm->hasNotificationActiveIs( true );
      this->world.publishFirst();
      this->world.publishSecond();
      sm->hasNotificationActiveIs( false );
   }
   EXPECT_EQ( this->world.news(), Journal{} );
}

// --- Any edits

struct Step {
   enum Kind { Edit, SwitchOff, SwitchOn, OutOfService, InService, Rebuild } kind;
   int edit;
   int first;
   int second;
};

std::ostream & operator<<( std::ostream & out, Step const & step ) {
   static char const * const name[] = { "Edit",         "SwitchOff", "SwitchOn",
                                        "OutOfService", "InService", "Rebuild" };
   return out << name[ step.kind ] << " " << step.edit << " " << step.first << " " << step.second;
}

rc::Gen< std::vector< Step > > anySteps() {
   auto const kind = rc::gen::weightedElement< Step::Kind >( { { 16, Step::Edit },
                                                               { 1, Step::SwitchOff },
                                                               { 2, Step::SwitchOn },
                                                               { 1, Step::OutOfService },
                                                               { 2, Step::InService },
                                                               { 1, Step::Rebuild } } );
   return rc::gen::container< std::vector< Step > >(
      rc::gen::construct< Step >( kind, rc::gen::inRange( 0, 8 ), rc::gen::inRange( 0, 4 ),
                                  rc::gen::inRange( 0, 4 ) ) );
}

template< typename World >
void apply( Step const & step, World & world, Quelm::Ptr< typename World::Sm > & sm ) {
   switch ( step.kind ) {
   case Step::Edit: world.edit( step.edit, step.first, step.second ); break;
   case Step::SwitchOff: sm->hasNotificationActiveIs( false ); break;
   case Step::SwitchOn: sm->hasNotificationActiveIs( true ); break;
   case Step::OutOfService: sm->kivDoZombieReactors( true ); break;
   case Step::InService: sm->kivDoZombieReactors( false ); break;
   case Step::Rebuild:
      sm = nullptr;
      sm = world.smNew();
      break;
   }
}

// After each step the directory is as computed, or as it was; and no member is ever replaced.
template< typename World > void runsThroughAnySteps() {
   World world;
   bool isReplaced = false;
   Kiv::Watch< typename World::Directory > watch( world.directory, [ & ](
                                                                      Kiv::Change const & change ) {
      isReplaced |= change.rawOldValue().get() && change.rawNewValue().get();
   } );
   watch.hasNotificationActiveIs( true );
   auto sm = world.activeSmNew();
   for ( Step const & step : *anySteps() ) {
      Table const before = world.held();
      apply( step, world, sm );
      bool const isDerived = sm->hasNotificationActive() && !sm->isZombie();
      RC_ASSERT( world.held() == ( isDerived ? world.computed() : before ) );
      RC_ASSERT( !isReplaced );
   }
}

RC_GTEST_PROP( DerivationModel, PortChannelsAreInSyncWhileOnAndInService, () ) {
   runsThroughAnySteps< PortChannels >();
}

RC_GTEST_PROP( DerivationModel, SharedSegmentsAreInSyncWhileOnAndInService, () ) {
   runsThroughAnySteps< SharedSegments >();
}

}  // namespace DerivationTest
