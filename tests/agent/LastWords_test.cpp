// The last words of a process, whatever it has printed.
#include <Process/LastWords.h>

#include <gtest/gtest.h>

namespace {

TEST( LastWords, ReadAnAssertionInALineOfAnyLength ) {
   std::string const function( 5'000'000, 'f' );
   std::string const expression = "a == ' failed.' && " + std::string( 5'000'000, 'e' );

   auto const assertion =
      Process::assertionIn( "f.cpp:7: " + function + ": Assertion '" + expression + "' failed." );

   ASSERT_TRUE( assertion );
   EXPECT_EQ( assertion->function, function );
   EXPECT_EQ( assertion->expression, expression );
}

TEST( LastWords, TakeAnyLengthAndAnyBytes ) {
   for ( std::string const & part :
         { std::string( "x" ), std::string( ":" ), std::string( "f.cpp:1: " ),
           std::string( ": Assertion '" ), std::string( "' failed." ), std::string( 1, '\0' ),
           std::string( "\xff\x80\r\x1b" ) } ) {
      std::string line;
      while ( line.size() < 3'000'000 ) {
         line += part;
      }
      EXPECT_FALSE( Process::assertionIn( line ) );
      EXPECT_FALSE( Process::assertionIn( line + ": Assertion '" ) );
   }
}

TEST( LastWords, SeeNoAssertionWhereAPartIsMissingOrOverlaps ) {
   for ( char const * const line :
         { ":1: g: Assertion 'a' failed.", "f.cpp: g: Assertion 'a' failed.",
           "f.cpp:-1: g: Assertion 'a' failed.", "f.cpp:1234567890: g: Assertion 'a' failed.",
           "f.cpp:1 g: Assertion 'a' failed.", "f.cpp:1: g: Assertion ' failed.",
           "f.cpp:1: Assertion 'a' failed." } ) {
      EXPECT_FALSE( Process::assertionIn( line ) ) << line;
   }
}

TEST( LastWords, SeeAnAssertionWithoutFunctionOrExpression ) {
   auto const assertion = Process::assertionIn( "f.cpp:1: : Assertion '' failed." );

   ASSERT_TRUE( assertion );
   EXPECT_EQ( assertion->function, "" );
   EXPECT_EQ( assertion->expression, "" );
}

TEST( LastWords, KeepTheBeginningOfALineThatIsTooLong ) {
   Process::LastWords words;
   words.lineNew( std::string( Process::LastWords::kLongestLine, 'x' ) );
   words.lineNew( std::string( Process::LastWords::kLongestLine - 1, 'x' ) + "\xc3\xa4" );

   EXPECT_EQ( words.lines().front(), std::string( Process::LastWords::kLongestLine, 'x' ) );
   EXPECT_EQ( words.lines().back(),
              std::string( Process::LastWords::kLongestLine - 1, 'x' ) + " ..." );
}

}  // namespace
