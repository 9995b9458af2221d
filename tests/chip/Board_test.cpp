// A board is built from its description, or refuses it with a reason.
#include <gtest/gtest.h>

#include <string>

#include <Quelm/Error.h>

#include "TwoUnitSwitch.h"

namespace BoardTest {

using namespace ChipTest;
using Chip::Board;
using Chip::BoardConfig;

std::string refusal( BoardConfig const & config ) {
   try {
      Board const board( config );
   } catch ( Quelm::Error const & error ) {
      return error.what();
   }
   return "no refusal";
}

TEST( Board, HasTheUnitsAndGroupsOfItsDescription ) {
   Board board( { { { 0, 0, { { kIfp, 3 } } }, { 7, 4, { { kIfp, 5 }, { kEfp, 6 } } } } } );
   Chip::Unit const * const unit7 = board.units().unit( 7 );
   ASSERT_TRUE( unit7 );
   EXPECT_EQ( unit7->modId(), 4 );
   EXPECT_FALSE( board.units().unit( 1 ) );
   EXPECT_EQ( board.entryManager( kIfp )->capacity( 0 ), 3U );
   EXPECT_EQ( board.entryManager( kIfp )->capacity( 7 ), 5U );
   EXPECT_EQ( board.entryManager( kEfp )->capacity( 7 ), 6U );
}

TEST( Board, AGroupThatAUnitLacksHasNoRoomThere ) {
   Board board( { { { 0, 0, { { kIfp, 3 } } }, { 1, 4, { { kEfp, 3 } } } } } );
   EXPECT_EQ( board.entryManager( kEfp )->getEntry( 0, "drop", {} ), 0U );
   EXPECT_EQ( board.entryManager( kEfp )->capacity( 0 ), 0U );
   EXPECT_NE( board.entryManager( kEfp )->getEntry( 1, "drop", {} ), 0U );
}

TEST( Board, HasNoManagerForAGroupThatNoUnitHas ) {
   Board board( { { { 0, 0, { { kIfp, 3 } } } } } );
   EXPECT_FALSE( board.entryManager( kEfp ) );
   EXPECT_FALSE( board.groupManager()->unboundedEntryManager( kEfp ) );
}

TEST( Board, AUnitHasRoomFor256EntriesInEachGroupUnlessItSaysOtherwise ) {
   Board board( { { { .number = 0, .modId = 0 } } } );
   EXPECT_EQ( board.entryManager( kIfp )->capacity( 0 ), 256U );
   EXPECT_EQ( board.entryManager( kEfp )->capacity( 0 ), 256U );
}

TEST( Board, ABoardKnowsNothingOfAnother ) {
   TwoUnitSwitch leaf1;
   TwoUnitSwitch leaf2;
   leaf1.fromVtep( 0, kVtep2 );
   EXPECT_EQ( leaf2.winner( 0, Chip::IngressFields{ kVtep2, 1, true, 10100 } ), 0U );
   EXPECT_EQ( leaf2.fromVtep( 0, kVtep3 ), 1U );
}

TEST( Board, SaysWhatIsWrongWithADescription ) {
   EXPECT_EQ( refusal( { { { 0, 0, { { 7, 3 } } } } } ),
              "unit 0: there is no field-processor group 7; known are 157 (ingress) and 45 "
              "(egress)" );
   EXPECT_EQ( refusal( { { { 2, 0, {} }, { 2, 4, {} } } } ),
              "unit 2 comes twice; unit numbers are unique on a board" );
}

}  // namespace BoardTest
