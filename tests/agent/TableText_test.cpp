// Tables as people read them.
#include <gtest/gtest.h>

#include <Story/Table.h>

namespace {

using Story::Cell;
using Story::Table;
using Texts = std::vector< std::string >;

Table vteps() {
   return { "vteps",
            { "vtep", "virtualPort", "segment" },
            { { "10.0.0.2", U64{ 2 }, Texts{ "Port-Channel2", "Ethernet5" } },
              { "10.0.0.4", Cell(), Texts{} } } };
}

TEST( TableText, PutsEachColumnUnderItsHeading ) {
   EXPECT_EQ( tableText( vteps(), 80 ),
              "VTEP      VIRTUAL PORT  SEGMENT\n"
              "10.0.0.2  2             Port-Channel2, Ethernet5\n"
              "10.0.0.4  -             -\n" );
}

TEST( TableText, BreaksTheWidestColumnAtBlanksUntilTheTableFits ) {
   EXPECT_EQ( tableText( vteps(), 39 ),
              "VTEP      VIRTUAL PORT  SEGMENT\n"
              "10.0.0.2  2             Port-Channel2,\n"
              "                        Ethernet5\n"
              "10.0.0.4  -             -\n" );
}

TEST( TableText, BreaksAWordThatIsWiderThanItsColumn ) {
   Table const table{ "names", { "name" }, { { "abcdefghijkl" } } };
   EXPECT_EQ( tableText( table, 8 ), "NAME\nabcdefgh\nijkl\n" );
}

TEST( TableText, MakesNoColumnNarrowerThanAWordNeeds ) {
   Table const table{ "names", { "name", "text" }, { { "12345678", "a bc def ghij" } } };
   EXPECT_EQ( tableText( table, 3 ),
              "NAME      TEXT\n"
              "12345678  a bc def\n"
              "          ghij\n" );
}

TEST( TableText, GivesTheReasonsLinesOfTheirOwnBelowTheRow ) {
   Table const table{ "rules",
                      { "entry", "because" },
                      { { U64{ 3 }, "VTEP 10.0.0.2 shares it" } } };
   EXPECT_EQ( tableText( table, 80 ), "ENTRY\n3\n      because: VTEP 10.0.0.2 shares it\n" );
   EXPECT_EQ( tableText( table, 30 ), "ENTRY\n3\n      because: VTEP 10.0.0.2\n      shares it\n" );
}

TEST( TableText, GivesALastColumnThatSqueezesTheOthersLinesOfItsOwn ) {
   Table const table{ "vteps",
                      { "vtep", "rules", "protection" },
                      { { "10.0.0.2", U64{ 1 }, "protected" },
                        { "10.0.0.3", U64{ 0 }, "none: its class id is asked for and not granted" },
                        { "10.0.0.4", U64{ 0 }, Cell() } } };
   EXPECT_EQ( tableText( table, 50 ),
              "VTEP      RULES  PROTECTION\n"
              "10.0.0.2  1      protected\n"
              "10.0.0.3  0      none: its class id is asked for\n"
              "                 and not granted\n"
              "10.0.0.4  0      -\n" );
   EXPECT_EQ( tableText( table, 35 ),
              "VTEP      RULES\n"
              "10.0.0.2  1\n"
              "      protection: protected\n"
              "10.0.0.3  0\n"
              "      protection: none: its class\n"
              "      id is asked for and not\n"
              "      granted\n"
              "10.0.0.4  0\n" );
}

TEST( TableText, GivesEachColumnOfASqueezedRowALine ) {
   Table const table{ "rules",
                      { "entry", "matches", "does", "because" },
                      { { U64{ 3 }, "DstPort module 1 port 3 and IngressClassField 1", "Drop",
                          "VTEP 10.0.0.2 shares it" } } };
   EXPECT_EQ( tableText( table, 36 ),
              "ENTRY    3\n"
              "MATCHES  DstPort module 1 port 3 and\n"
              "         IngressClassField 1\n"
              "DOES     Drop\n"
              "      because: VTEP 10.0.0.2 shares\n"
              "      it\n" );
}

TEST( TableText, SaysThatThereIsNone ) {
   EXPECT_EQ( Story::tableText( { "vteps", { "vtep" }, {} }, 80 ), "no vteps\n" );
}

TEST( TableText, WritesOutWhatATerminalWouldObey ) {
   Table const table{ "log", { "line" }, { { "\x1b[2J" } } };
   EXPECT_EQ( tableText( table, 80 ), "LINE\n\\x1b[2J\n" );
}

TEST( TableText, FindsATextInAListAndANumberByItsDigits ) {
   EXPECT_TRUE( Cell( Texts{ "Ethernet1", "Ethernet5" } ).has( "Ethernet5" ) );
   EXPECT_FALSE( Cell( Texts{ "Ethernet1", "Ethernet5" } ).has( "Ethernet" ) );
   EXPECT_TRUE( Cell( U64{ 10 } ).has( "10" ) );
   EXPECT_FALSE( Cell( "10.0.0.20" ).has( "10.0.0.2" ) );
}

}  // namespace
