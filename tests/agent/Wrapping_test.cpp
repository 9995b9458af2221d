// Indented texts on a narrow terminal.
#include <gtest/gtest.h>

#include <limits>

#include <Text/Wrapping.h>

namespace {

using Text::narrowed;

TEST( Wrapping, LeavesLinesThatFitAsTheyAre ) {
   std::string const text = "a\n   b of thirty characters, say\n\n";
   EXPECT_EQ( narrowed( text, 33 ), text );
   EXPECT_EQ( narrowed( text, std::numeric_limits< std::size_t >::max() ), text );
}

TEST( Wrapping, IndentsWhatGoesOnFurtherThanALineBelow ) {
   EXPECT_EQ( narrowed( "   one two three four five six seven\n      below\n", 32 ),
              "   one two three four five six\n"
              "         seven\n"
              "      below\n" );
   EXPECT_EQ( narrowed( "one two three four five six seven eight nine ten\n", 26 ),
              "one two three four five\n"
              "      six seven eight nine\n"
              "      ten\n" );
}

TEST( Wrapping, BreaksAWordThatIsTooLong ) {
   EXPECT_EQ( narrowed( "abcdefghijklmnopqrstuvwxyzabcdefgh\n", 26 ),
              "abcdefghijklmnopqrstuvwxyz\n"
              "      abcdefgh\n" );
}

TEST( Wrapping, BreaksAPathBehindASlashAndNeverBehindASign ) {
   EXPECT_EQ( narrowed( "   + /plugins/first/second/third/fourth: there\n", 33 ),
              "   + /plugins/first/second/third/\n"
              "           fourth: there\n" );
}

TEST( Wrapping, LeavesRoomForAWordHoweverNarrowTheTerminalIs ) {
   EXPECT_EQ( narrowed( "      one two three four five six\n", 1 ),
              "      one two three four five\n"
              "            six\n" );
}

}  // namespace
