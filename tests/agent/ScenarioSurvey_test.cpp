// What is refused before anything is made of a text: quotes that were not closed, texts without
// bounds, bytes that are no text.
#include <gtest/gtest.h>

#include <ScenarioTexts.h>

namespace {

using namespace ScenarioTexts;

std::string closedIn( int line, int last ) {
   return "leaf.yaml:" + std::to_string( line ) +
          ": the quote that begins here is closed in line " + std::to_string( last ) +
          " only, and all between counts as its text; close it in this line";
}

std::string const kIndent = ", or indent the lines that belong to it deeper";

// --- Quotes

TEST( ScenarioSurvey, RefusesAQuoteThatSwallowsTheStepsBehindItWhereItBegins ) {
   EXPECT_EQ( leafProblems( "steps:\n"
                            "- note: \"one\n"
                            "- expect: { plug-in: waiting }\n"
                            "- note: two\"\n" ),
              closedIn( 10, 12 ) + kIndent );
   EXPECT_EQ( leafProblems( "steps:\n"
                            "  - note: 'one\n"
                            "    only-on: class-id\n"
                            "  - note: it's\n" ),
              closedIn( 10, 12 ) + kIndent );
   EXPECT_EQ( leafProblems( "description: 'A leaf\n"
                            "trace: { VornalEvpnSm: '5' }\n" ),
              closedIn( 9, 10 ) + kIndent );
}

TEST( ScenarioSurvey, RefusesAQuoteThatSwallowsStepsWithinBrackets ) {
   EXPECT_EQ( leafProblems( "steps: [\n"
                            "   { note: \"one },\n"
                            "   { expect: { plug-in: ready } },\n"
                            "   { note: two\" } ]\n" ),
              closedIn( 10, 12 ) );
}

TEST( ScenarioSurvey, RefusesAQuoteThatIsNeverClosedWhereItBegins ) {
   std::string const never = "leaf.yaml:10: the quote that begins here is never closed; close it";
   EXPECT_EQ( leafProblems( "steps:\n- note: \"one\n- note: two\n" ), never );
   EXPECT_EQ( leafProblems( "steps:\n- note: 'it''s\n- note: two" ), never );
   EXPECT_EQ( leafProblems( "steps:\n- { note: &text \"one\\\" }\n- note: two\n" ), never );
   EXPECT_EQ( leafProblems( "steps:\n- \"note: one\n" ), never );
   EXPECT_EQ( leafProblems( "steps:\n- note: !!str 'one\n" ), never );
}

TEST( ScenarioSurvey, TakesATextInQuotesThatGoesOnDeeper ) {
   EXPECT_EQ( readLeaf( "description: \"A leaf that shares\n"
                        "   a port channel.\"\n" )
                 .description,
              "A leaf that shares a port channel." );
   EXPECT_EQ( readLeaf( "description:\n"
                        "   'A leaf\n"
                        "\n"
                        "   of two'\n" )
                 .description,
              "A leaf\nof two" );
   EXPECT_EQ( leafProblems( "steps:\n- note: 'two \"lines\"\n   of it'\n- note: it's \"so\n" ),
              "" );
}

// --- Bounds

TEST( ScenarioSurvey, RefusesWhatIsNestedTooDeeplyWithItsLine ) {
   std::string const tooDeep =
      "leaf.yaml:9: more than 50 nested lists and mappings stand here; a scenario needs ten at "
      "most, check the brackets";
   EXPECT_EQ( leafProblems( "steps: " + std::string( 49, '[' ) + std::string( 49, ']' ) ),
              "leaf.yaml:9: an element of steps is a list; a mapping is expected, of note, ready, "
              "publish, withdraw, replace, set, delete, call, turn, frame, frames, "
              "designated-forwarder, foreign-entries, class-id-allocator, dump, drift, fail-call, "
              "refuse-entry, end-at-call, verify, expect and only-on" );
   EXPECT_EQ( leafProblems( "steps: " + std::string( 50, '[' ) + std::string( 50, ']' ) ),
              tooDeep );
   EXPECT_EQ( leafProblems( "steps: " + std::string( 100'000, '[' ) ), tooDeep );
   EXPECT_EQ( leafProblems( "steps: " + std::string( 100'000, '{' ) ), tooDeep );
   std::string dashes;
   for ( int n = 0; n < 10'000; ++n ) {
      dashes += "- ";
   }
   EXPECT_EQ( leafProblems( "steps:\n" + dashes + "\n" ),
              "leaf.yaml:10" + tooDeep.substr( std::string( "leaf.yaml:9" ).size() ) );
}

TEST( ScenarioSurvey, CountsWhatAliasesRepeat ) {
   std::string text = "a: &a [ 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 ]\n";
   for ( char name = 'b'; name < 'i'; ++name ) {
      std::string const alias = std::string( "*" ) + static_cast< char >( name - 1 );
      text += std::string( 1, name ) + ": &" + name + " [ " + alias;
      for ( int n = 0; n < 9; ++n ) {
         text += ", " + alias;
      }
      text += " ]\n";
   }
   EXPECT_EQ( leafProblems( text ),
              "leaf.yaml:14: the scenario has more than 1000000 values up to here, each repetition "
              "by an alias counted; make it smaller" );
}

TEST( ScenarioSurvey, RefusesAnAliasOfWhatItStandsIn ) {
   EXPECT_EQ( leafProblems( "steps: &all\n  - note: a\n  - *all\n" ),
              "leaf.yaml:11: this alias stands within the value that it repeats, so it has no end; "
              "write the value out" );
}

TEST( ScenarioSurvey, RefusesALineWithoutBounds ) {
   EXPECT_EQ( leafProblems( "description: " + std::string( 1'048'576, 'x' ) + "\n" ),
              "leaf.yaml:9: the line is longer than 1 MiB; break it" );
}

TEST( ScenarioSurvey, StopsAtAThousandProblems ) {
   std::string text = "steps:\n";
   for ( int n = 0; n < 2000; ++n ) {
      text += "- x\n";
   }
   EXPECT_TRUE( leafProblems( text ).ends_with( "\nand 980 more" ) );
}

// --- Characters

TEST( ScenarioSurvey, RefusesWhatIsNotUtf8WithItsLine ) {
   for ( std::string const byte : { "\xe9", "\xc0\xaf", "\xed\xa0\x80", "\xf5", "\x80" } ) {
      std::string const problem = leafProblems( "steps: []\ndescription: caf" + byte + " x\n" );
      EXPECT_EQ( problem.substr( 0, 34 ),
                 "leaf.yaml:10: the byte \\x" + problem.substr( 25, 2 ) + " stands" );
      EXPECT_TRUE(
         problem.ends_with( " stands here, which is not UTF-8; save the file as UTF-8" ) );
   }
   EXPECT_EQ( readLeaf( "description: caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x90\x99\n" ).description,
              "caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x90\x99" );
}

TEST( ScenarioSurvey, RefusesControlCharactersWithTheirLine ) {
   for ( int const code : { 0, 1, 4, 7, 8, 11, 12, 27, 31, 127 } ) {
      std::string text = "description: caf\nsteps: []\n";
      text[ 15 ] = static_cast< char >( code );
      EXPECT_TRUE( leafProblems( text ).starts_with( "leaf.yaml:9: the control character \\x" ) )
         << code;
   }
   EXPECT_EQ( leafProblems( "description: a\xc2\x9b b\n" ),
              "leaf.yaml:9: the control character \\u009b stands here; remove it, or write it in "
              "double quotes, as in \"\\x1b\"" );
   EXPECT_NE( leafProblems( "description: a\rsteps: []\n" ), "" );
   EXPECT_EQ( leafProblems( "description: a\r\nsteps: []\r\n" ), "" );
}

TEST( ScenarioSurvey, ShowsNoControlCharacterAndNoHalfCharacter ) {
   EXPECT_EQ( leafProblems( "\"\\e[31m\": 1\n" ),
              "leaf.yaml:9: unknown word '\\x1b[31m' in scenario; known are scenario, description, "
              "switch, forwarding, evpn, features, trace and steps" );
   std::string const problem = leafProblems( std::string( 39, 'x' ) + "\xc3\xa9\xc3\xa9: 1\n" );
   EXPECT_NE( problem.find( '\'' + std::string( 39, 'x' ) + "...'" ), std::string::npos );
}

TEST( ScenarioSurvey, CutsALongProblemShort ) {
   std::string const problem =
      leafProblems( "evpn: { class-id-requests: [ " + std::string( 100'000, '1' ) + " ] }\n" );
   EXPECT_LT( problem.size(), 4000U );
   EXPECT_NE( problem.find( "is not an IP address" ), std::string::npos );
}

}  // namespace
