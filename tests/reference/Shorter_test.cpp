// A failing list of moves becomes the shortest one that still fails.
#include <algorithm>

#include <gtest/gtest.h>

#include <Shorter.h>

namespace {

using Moves::Move;
using Moves::Plot;

// So many moves, each with its number as its kind.
Plot plotOf( unsigned moves ) {
   Plot plot;
   plot.world.variant = "class-id";
   plot.world.units = 2;
   plot.world.movesBeforeReady = 3;
   for ( unsigned n = 0; n < moves; ++n ) {
      plot.moves.push_back( { n, 5, 5, 5, true } );
   }
   return plot;
}

bool has( Plot const & plot, unsigned kind ) {
   return std::any_of( plot.moves.begin(), plot.moves.end(),
                       [ kind ]( Move const & move ) { return move.kind == kind; } );
}

TEST( Shorter, KeepsTheMovesThatTheFailureNeedsAndNoOther ) {
   Plot const least = shorter( plotOf( 70 ), []( Plot const & plot ) {
      return has( plot, 7 ) && has( plot, 8 ) && has( plot, 69 );
   } );
   ASSERT_EQ( least.moves.size(), 3U );
   EXPECT_EQ( least.moves[ 0 ].kind, 7U );
   EXPECT_EQ( least.moves[ 1 ].kind, 8U );
   EXPECT_EQ( least.moves[ 2 ].kind, 69U );
}

TEST( Shorter, KeepsASwitchAndNumbersThatTheFailureNeeds ) {
   Plot const least = shorter( plotOf( 10 ), []( Plot const & plot ) {
      return plot.world.units == 2 && !plot.moves.empty() && plot.moves.back().who == 5;
   } );
   EXPECT_EQ( least.world.units, 2U );
   EXPECT_EQ( least.world.variant, "egress-mask" );
   EXPECT_EQ( least.world.movesBeforeReady, 0U );
   ASSERT_EQ( least.moves.size(), 1U );
   EXPECT_EQ( least.moves[ 0 ].place, 0U );
   EXPECT_EQ( least.moves[ 0 ].who, 5U );
   EXPECT_EQ( least.moves[ 0 ].number, 0U );
   EXPECT_FALSE( least.moves[ 0 ].isWithNext );
}

// Move 2 is tried before move 1, and can go only when move 1 has gone.
TEST( Shorter, TakesMovesAwayAsLongAsThatHelps ) {
   Plot const least = shorter( plotOf( 3 ), []( Plot const & plot ) {
      return has( plot, 0 ) && ( has( plot, 2 ) || !has( plot, 1 ) );
   } );
   EXPECT_EQ( least.moves.size(), 1U );
}

TEST( Shorter, TakesMovesAwayThatSimplerNumbersDoWithout ) {
   Plot const least = shorter( plotOf( 2 ), []( Plot const & plot ) {
      return has( plot, 0 ) && ( has( plot, 1 ) || plot.moves.front().who == 0 );
   } );
   EXPECT_EQ( least.moves.size(), 1U );
}

TEST( Shorter, TriesFewPlots ) {
   unsigned tries = 0;
   shorter( plotOf( 100 ), [ &tries ]( Plot const & plot ) {
      ++tries;
      return has( plot, 1 ) && has( plot, 50 ) && has( plot, 51 ) && has( plot, 99 );
   } );
   EXPECT_LT( tries, 100U );
}

}  // namespace
