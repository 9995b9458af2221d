// Nested reactors: one for each member that somebody else publishes. They enter, are pointed at a
// replacement, and are retired.
#include <gtest/gtest.h>

#include <Kiv/OrEmpty.h>
#include <Quelm/Error.h>

#include "support/Journal.h"
#include "support/Panel.h"

namespace KivNestedTest {

using Quelm::Ptr;
using Support::Journal;
using Support::Lamp;
using Support::Panel;
using Support::Port;
using Support::Switch;

class KivNested : public testing::Test {
 protected:
   KivNested() {
      panel->hasNotificationActiveIs( true );
      panel->lampIs( port5 );
      panel->lampIs( leaf1->portIs( 6 ) );
   }
   Journal story() { return std::exchange( panel->story, {} ); }

   Ptr< Switch > leaf1 = Quelm::make< Switch >( "leaf1" );
   Ptr< Port > port5 = leaf1->portIs( 5 );
   Ptr< Panel > panel = Quelm::make< Panel >( "panel" );
};

TEST_F( KivNested, ReactorHearsOfItsOwnMemberOnly ) {
   port5->speedIs( 100 );
   EXPECT_EQ( story(), Journal{ "lamp 5: speed 100" } );
   leaf1->port( 6 )->speedIs( 400 );
   EXPECT_EQ( story(), Journal{ "lamp 6: speed 400" } );
}

TEST_F( KivNested, ReactorIsKnownByTheKeyOfWhatItWatches ) {
   EXPECT_EQ( panel->lamp( 5 )->identity(), "5" );
   EXPECT_EQ( panel->lamp( 5 )->notifier(), port5 );
   EXPECT_EQ( panel->lamp( 5 )->panel(), panel.get() );
   EXPECT_EQ( panel->lamps(), 2U );
   EXPECT_EQ( panel->users(), 1U );
}

TEST_F( KivNested, EnteringAndLeavingAreAnnounced ) {
   Journal seen;
   Support::Scribe const scribe( panel, seen, "" );
   panel->lampIs( leaf1->portIs( 7 ) );
   panel->lampDel( 5 );
   EXPECT_EQ( seen, ( Journal{ "panel lamp[7]: absent -> Support::Lamp 7",
                               "panel lamp[5]: Support::Lamp 5 -> absent" } ) );
}

TEST_F( KivNested, ReplacedMemberIsFollowedByTheSameReactor ) {
   Ptr< Lamp > const lamp = panel->lamp( 5 );
   Ptr< Port > const another = Quelm::make< Port >( U16{ 5 } );
   panel->lampIs( another );
   EXPECT_EQ( panel->lamp( 5 ), lamp );
   port5->speedIs( 100 );
   another->speedIs( 400 );
   EXPECT_EQ( story(), Journal{ "lamp 5: speed 400" } );
   EXPECT_EQ( port5->publisher().subscribers(), 0U );
}

TEST_F( KivNested, RetiringPutsOutOfServiceThenSilencesThenHasALastWord ) {
   panel->lampDel( 5 );
   EXPECT_EQ( story(), Journal{ "lamp 5: retired, out of service" } );
   EXPECT_FALSE( panel->lampHas( 5 ) );
   port5->speedIs( 100 );
   EXPECT_EQ( story(), Journal{} );
   panel->lampDel( 5 );
   EXPECT_EQ( story(), Journal{} );
}

TEST_F( KivNested, RetiringAllGoesInKeyOrder ) {
   panel->lampDelAll();
   EXPECT_EQ( story(),
              ( Journal{ "lamp 5: retired, out of service", "lamp 6: retired, out of service" } ) );
   EXPECT_EQ( panel->lamps(), 0U );
}

// Every lamp takes the other one off with its last word.
TEST_F( KivNested, RetiringAllRetiresEachOnceWhenOneRetiresAnother ) {
   panel->lampIs( leaf1->portIs( 7 ) );
   panel->onRetired = [ & ]( Lamp & lamp ) {
      panel->lampDel( static_cast< U16 >( lamp.kivKey() + 1 ) );
      panel->lampDel( static_cast< U16 >( lamp.kivKey() - 1 ) );
   };
   panel->lampDelAll();
   EXPECT_EQ( story(),
              ( Journal{ "lamp 5: retired, out of service", "lamp 6: retired, out of service",
                         "lamp 7: retired, out of service" } ) );
   EXPECT_EQ( panel->lamps(), 0U );
}

TEST_F( KivNested, RetiringAllEndsWhenOneRetiresAll ) {
   panel->onRetired = [ & ]( Lamp & ) { panel->lampDelAll(); };
   panel->lampDelAll();
   EXPECT_EQ( story(),
              ( Journal{ "lamp 5: retired, out of service", "lamp 6: retired, out of service" } ) );
   EXPECT_EQ( panel->lamps(), 0U );
}

// Every lamp replaces itself and the other one with its last word.
TEST_F( KivNested, RetiringAllLeavesThoseThatComeMeanwhile ) {
   panel->onRetired = [ & ]( Lamp & lamp ) {
      ASSERT_LT( panel->story.size(), 9U );
      panel->lampDel( lamp.kivKey() == 5 ? 6 : 5 );
      panel->lampIs( leaf1->port( lamp.kivKey() ) );
   };
   panel->lampDelAll();
   EXPECT_EQ( story(),
              ( Journal{ "lamp 5: retired, out of service", "lamp 6: retired, out of service" } ) );
   EXPECT_EQ( panel->lamps(), 2U );
   port5->speedIs( 100 );
   EXPECT_EQ( story(), Journal{ "lamp 5: speed 100" } );
}

TEST_F( KivNested, HandlerMayRetireItsOwnReactor ) {
   panel->isRetiringOnChange = true;
   port5->speedIs( 100 );
   EXPECT_EQ( story(), ( Journal{ "lamp 5: retired, out of service",
                                  "lamp 5: speed 100, out of service" } ) );
}

TEST_F( KivNested, OwnerThatGoesRetiresNobody ) {
   panel = nullptr;
   EXPECT_EQ( port5->publisher().subscribers(), 0U );
   port5->speedIs( 100 );
}

TEST_F( KivNested, ReactorThatOutlivesItsOwnerIsSilentHoweverTheOwnerWasSwitched ) {
   Ptr< Lamp > const lamp = panel->lamp( 5 );
   panel->hasNotificationActiveIs( false );
   lamp->hasNotificationActiveIs( true );  // as one that was nested while its owner was off
   Ptr< Lamp > const other = panel->lamp( 6 );
   panel = nullptr;
   for ( Ptr< Lamp > const & left : { lamp, other } ) {
      EXPECT_EQ( left->panel(), nullptr );
      EXPECT_TRUE( left->isZombie() );
      EXPECT_FALSE( left->hasNotificationActive() );
      EXPECT_EQ( left->users(), 2U ) << "ours and the list's, not the owner's";
   }
   EXPECT_EQ( port5->publisher().subscribers(), 0U );
   port5->speedIs( 100 );
}

TEST_F( KivNested, NotificationsAreSwitchedForAllAndForThoseThatComeLater ) {
   panel->hasNotificationActiveIs( false );
   Ptr< Port > const port7 = leaf1->portIs( 7 );
   panel->lampIs( port7 );
   port5->speedIs( 100 );
   port7->speedIs( 100 );
   EXPECT_EQ( story(), Journal{} );
   panel->hasNotificationActiveIs( true );
   port5->speedIs( 400 );
   port7->speedIs( 400 );
   EXPECT_EQ( story(), ( Journal{ "lamp 5: speed 400", "lamp 7: speed 400" } ) );
   EXPECT_EQ( port7->publisher().subscribers(), 1U );
}

TEST_F( KivNested, OutOfServiceIsAMarkOnAll ) {
   panel->kivDoZombieReactors( true );
   port5->speedIs( 100 );
   panel->kivDoZombieReactors( false );
   port5->speedIs( 400 );
   EXPECT_EQ( story(), ( Journal{ "lamp 5: speed 100, out of service", "lamp 5: speed 400" } ) );
}

TEST_F( KivNested, MissingMemberIsRefusedAndChangesNothing ) {
   EXPECT_THROW( panel->lampIs( nullptr ), Quelm::NullArgumentError );
   EXPECT_EQ( panel->lamps(), 2U );
}

TEST_F( KivNested, GenericInterfaceReadsThemAndLeavesThemAlone ) {
   Kiv::Attribute const & lamp = *panel->typeData().find( "lamp" );
   EXPECT_EQ( lamp.keys( *panel ), ( std::vector< std::string >{ "5", "6" } ) );
   EXPECT_EQ( lamp.text( *panel, "5" ), "Support::Lamp 5" );
   EXPECT_EQ( lamp.entity( *panel, "5" ), panel->lamp( 5 ) );
   EXPECT_FALSE( lamp.isWritable() );
   EXPECT_THROW( lamp.textIs( *panel, "7", "" ), Quelm::AccessError );
   EXPECT_THROW( lamp.del( *panel, "5" ), Quelm::AccessError );
   EXPECT_THROW( lamp.entityIs( *panel, panel->lamp( 5 ) ), Quelm::AccessError );
   EXPECT_EQ( panel->lamps(), 2U );
}

TEST( KivOrEmpty, MissingInputReadsAsOneWithoutMembers ) {
   Ptr< Switch const > const missing;
   EXPECT_FALSE( Kiv::orEmpty( missing ).portIter() );
   EXPECT_EQ( Kiv::orEmpty( missing ).route( "default" ), 0U );
   Ptr< Switch > const leaf1 = Quelm::make< Switch >( "leaf1" );
   EXPECT_EQ( &Kiv::orEmpty( Ptr< Switch const >( leaf1 ) ), leaf1.get() );
}

}  // namespace KivNestedTest
