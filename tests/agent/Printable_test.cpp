#include <Text/Printable.h>

#include <gtest/gtest.h>

namespace {

using Text::printable;

TEST( Printable, LeavesWhatCanBePrintedAsItIs ) {
   for ( char const * const text :
         { "", "Mark or drop: \"x\" ~", "M\xc3\xbcnchen", "\xe2\x82\xac", "\xf0\x9f\x90\xa7" } ) {
      EXPECT_EQ( printable( text ), text );
   }
}

TEST( Printable, WritesControlCharactersOut ) {
   EXPECT_EQ( printable( "a\nb\tc\rd" ), "a\\nb\\tc\\rd" );
   EXPECT_EQ( printable( "\x1b[31mred\x7f" ), "\\x1b[31mred\\x7f" );
   EXPECT_EQ( printable( std::string( "\0\x01", 2 ) ), "\\x00\\x01" );
   EXPECT_EQ( printable( "\xc2\x80\xc2\x9b"
                         "31m\xc2\x9f\xc2\xa0" ),
              "\\u0080\\u009b31m\\u009f\xc2\xa0" )
      << "C1 controls are characters of two bytes";
}

TEST( Printable, WritesLineSeparatorsAndChangesOfDirectionOut ) {
   EXPECT_EQ( printable( "a\xe2\x80\xa8 b\xe2\x80\xa9" ), "a\\u2028 b\\u2029" );
   EXPECT_EQ( printable( "\xe2\x80\xae.gnp\xe2\x80\xac" ), "\\u202e.gnp\\u202c" );
   EXPECT_EQ( printable( "\xe2\x81\xa6\xe2\x81\xa9\xe2\x80\x8f\xd8\x9c" ),
              "\\u2066\\u2069\\u200f\\u061c" );
   EXPECT_EQ( printable( "\xe2\x80\xa7\xe2\x80\xaf" ), "\xe2\x80\xa7\xe2\x80\xaf" )
      << "their neighbours";
}

TEST( Printable, WritesCodePointsThatAreNoCharactersOut ) {
   EXPECT_EQ( printable( "\xef\xbf\xbd\xef\xbf\xbe\xef\xbf\xbf" ), "\xef\xbf\xbd\\ufffe\\uffff" );
   EXPECT_EQ( printable( "\xf4\x8f\xbf\xbf" ), "\\u10ffff" );
}

TEST( Printable, WritesBytesThatAreNoUtf8Out ) {
   EXPECT_EQ( printable( "M\xfcnchen" ), "M\\xfcnchen" );
   EXPECT_EQ( printable( "\x9b" ), "\\x9b" ) << "a control of one byte, for terminals of old";
   EXPECT_EQ( printable( "\xe2\x82" ), "\\xe2\\x82" ) << "cut off";
   EXPECT_EQ( printable( "\xe2(\xa1" ), "\\xe2(\\xa1" );
   EXPECT_EQ( printable( "\xc0\xaf" ), "\\xc0\\xaf" ) << "longer than need be";
   EXPECT_EQ( printable( "\xe0\x80\x8a" ), "\\xe0\\x80\\x8a" );
   EXPECT_EQ( printable( "\xed\xa0\x80" ), "\\xed\\xa0\\x80" ) << "half of a pair";
   EXPECT_EQ( printable( "\xf4\x90\x80\x80" ), "\\xf4\\x90\\x80\\x80" ) << "beyond the last";
   EXPECT_EQ( printable( "\xff" ), "\\xff" );
}

TEST( Printable, ChangesNothingTheSecondTime ) {
   for ( int c = 0; c < 256; ++c ) {
      std::string const once = printable( std::string( 3, static_cast< char >( c ) ) );
      EXPECT_EQ( printable( once ), once );
   }
}

TEST( Printable, KeepsTheLineEndsOfSeveralLines ) {
   EXPECT_EQ( Text::printableLines( "a\n\x1b\n\nb" ), "a\n\\x1b\n\nb" );
   EXPECT_EQ( Text::printableLines( "a\n" ), "a\n" );
}

}  // namespace
