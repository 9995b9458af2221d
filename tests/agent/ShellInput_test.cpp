// Typed lines become entries, and entries become words.
#include <gtest/gtest.h>

#include <Shell/Entries.h>
#include <Shell/Line.h>
#include <Story/InputError.h>

namespace {

using Texts = std::vector< std::string >;

// The entries of these lines, each as "LINE TEXT".
Texts entriesOf( Texts const & lines ) {
   Shell::Entries entries;
   Texts all;
   auto const add = [ & ]( std::vector< Shell::Entry > const & some ) {
      for ( Shell::Entry const & entry : some ) {
         all.push_back( std::to_string( entry.line ) + ' ' + entry.text );
      }
   };
   for ( std::string const & line : lines ) {
      add( entries.lineNew( line ) );
   }
   add( entries.end() );
   return all;
}

TEST( ShellInput, IsALineForMostEntries ) {
   EXPECT_EQ( entriesOf( { "", "# a comment", "next", "withdraw: { vteps: [ 10.0.0.2 ] }", "x" } ),
              ( Texts{ "3 next", "4 withdraw: { vteps: [ 10.0.0.2 ] }", "5 x" } ) );
}

TEST( ShellInput, GoesOnWhileABracketIsOpen ) {
   EXPECT_EQ( entriesOf( { "publish: { vteps: {", "10.0.0.9: { virtual-port: 9 } } }", "next" } ),
              ( Texts{ "1 publish: { vteps: {\n10.0.0.9: { virtual-port: 9 } } }", "3 next" } ) );
   EXPECT_EQ( entriesOf( { "publish: {", "", "next" } ), ( Texts{ "1 publish: {", "3 next" } ) );
}

TEST( ShellInput, GoesOnWithDeeperLinesOfAStep ) {
   EXPECT_EQ( entriesOf( { "withdraw:", "  vteps:", "    - 10.0.0.2", "next" } ),
              ( Texts{ "1 withdraw:\n  vteps:\n    - 10.0.0.2", "4 next" } ) );
}

TEST( ShellInput, GoesOnWithDeeperLinesOfAStepBehindACommand ) {
   EXPECT_EQ( entriesOf( { "what-if withdraw:", "  vteps: [ 10.0.0.2 ]", "next" } ),
              ( Texts{ "1 what-if withdraw:\n  vteps: [ 10.0.0.2 ]", "3 next" } ) );
   EXPECT_EQ( entriesOf( { "explain { from:", "10.0.0.2 }", "next" } ),
              ( Texts{ "1 explain { from:\n10.0.0.2 }", "3 next" } ) );
}

TEST( ShellInput, TakesTheListOfAScenariosStepsWithItsHeading ) {
   EXPECT_EQ( entriesOf( { "steps:", "  - note: one", "  - note: two" } ),
              ( Texts{ "2     note: one", "3     note: two" } ) );
}

TEST( ShellInput, TakesElementsOfAListAsTheyStandInAScenario ) {
   EXPECT_EQ( entriesOf(
                 { "  - note: one", "  - only-on: class-id", "    note: two", "", "next" } ),
              ( Texts{ "1     note: one", "2     only-on: class-id\n    note: two", "5 next" } ) );
}

TEST( ShellInput, DoesNotTakeAnApostropheForAQuote ) {
   EXPECT_EQ( entriesOf( { "note: leaf2's frames { a", "}", "next" } ),
              ( Texts{ "1 note: leaf2's frames { a\n}", "3 next" } ) );
   EXPECT_EQ( Shell::openBrackets( "note: '[' # {" ), 0U );
}

TEST( ShellInput, TellsStepsFromCommands ) {
   EXPECT_TRUE( Shell::isStep( "verify: both" ) );
   EXPECT_FALSE( Shell::isStep( "verify --json" ) );
   EXPECT_TRUE( Shell::isStep( "{ note: x }" ) );
   EXPECT_FALSE( Shell::isStep( "explain { from: 10.0.0.2 }" ) );
}

TEST( ShellInput, HasWordsWithBlanksInQuotesAndBraces ) {
   EXPECT_EQ( Shell::wordsOf( " explain { from: 10.0.0.2, vni: 7 }  --on 'a b' # why" ),
              ( Texts{ "explain", "{ from: 10.0.0.2, vni: 7 }", "--on", "a b" } ) );
   EXPECT_EQ( Shell::behindFirstWord( "  what-if  note: x " ), "note: x" );
   EXPECT_EQ( Shell::behindFirstWord( "next" ), "" );
   EXPECT_THROW( Shell::wordsOf( "save 'x" ), Story::InputError );
   EXPECT_THROW( Shell::wordsOf( "explain { from" ), Story::InputError );
}

}  // namespace
