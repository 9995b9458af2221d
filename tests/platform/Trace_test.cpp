// A handle traces at the levels that are on, and formats nothing at those that are off; names and
// patterns switch the levels of handles that are there and of those that come later.
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <Quelm/Error.h>
#include <Trace/Trace.h>

namespace TraceTest {

using Trace::Handle;
using Lines = std::vector< std::string >;

// Counts how often it is formatted.
struct Probe {
   int & formatted;
};
std::ostream & operator<<( std::ostream & out, Probe const & probe ) {
   return out << "formatted " << ++probe.formatted;
}

// The levels of a handle that `isOn` says are on, as digits.
template< typename IsOn > std::string levelsWhere( IsOn isOn ) {
   std::string levels;
   for ( int level = 0; level <= 9; ++level ) {
      levels += isOn( level ) ? std::to_string( level ) : "";
   }
   return levels;
}
std::string textLevels( Handle const & handle ) {
   return levelsWhere( [ & ]( int level ) { return handle.isTextEnabled( level ); } );
}
std::string ringLevels( Handle const & handle ) {
   return levelsWhere( [ & ]( int level ) { return handle.isRingEnabled( level ); } );
}

class TraceText : public testing::Test {
 protected:
   TraceText() {
      Trace::sinkIs( [ this ]( Trace::Line const & line ) {
         lines.push_back( std::string( line.handle ) + " " + std::to_string( line.level ) + " " +
                          std::string( line.text ) );
      } );
   }
   ~TraceText() override {
      Trace::sinkIs( nullptr );
      Trace::levelsIs( "*", "0" );
      Trace::ringLevelsIs( "*", "0-5" );
   }

   Lines lines;
};

TEST_F( TraceText, HandleStartsWithLevelZeroForTextAndTheLowerHalfForTheRing ) {
   Handle const handle( "TestSm" );
   EXPECT_EQ( handle.name(), "TestSm" );
   EXPECT_EQ( textLevels( handle ), "0" );
   EXPECT_EQ( ringLevels( handle ), "012345" );
}

TEST_F( TraceText, LineCarriesHandleLevelAndText ) {
   Handle const handle( "TestSm" );
   Trace::levelsIs( "TestSm", "5" );
   TRACE( handle, 5,
          "ifpTcamEntries"
             << ", unit: " << 1 );
   EXPECT_EQ( lines, Lines{ "TestSm 5 ifpTcamEntries, unit: 1" } );
}

TEST_F( TraceText, EveryLevelIsSwitchedByItself ) {
   Handle const handle( "TestSm" );
   for ( int on = 0; on <= 9; ++on ) {
      Trace::levelsIs( "TestSm", std::to_string( on ) );
      for ( int level = 0; level <= 9; ++level ) {
         TRACE( handle, level, "level " << level );
      }
      std::string const digit = std::to_string( on );
      EXPECT_EQ( std::exchange( lines, {} ), Lines{ "TestSm " + digit + " level " + digit } );
   }
}

TEST_F( TraceText, LevelThatIsOffFormatsNothing ) {
   Handle const handle( "TestSm" );
   Trace::levelsIs( "TestSm", "" );
   Trace::ringLevelsIs( "TestSm", "" );
   int formatted = 0;
   TRACE( handle, 8, Probe{ formatted } );
   TRACE_RING( handle, 8, Probe{ formatted } );
   EXPECT_EQ( formatted, 0 );
   Trace::levelsIs( "TestSm", "8" );
   TRACE( handle, 8, Probe{ formatted } );
   TRACE_RING( handle, 8, Probe{ formatted } );
   EXPECT_EQ( formatted, 2 );
   EXPECT_EQ( lines, ( Lines{ "TestSm 8 formatted 1", "TestSm 8 formatted 2" } ) );
}

TEST_F( TraceText, TextAloneDoesNotHeedTheLevelsOfTheRing ) {
   Handle const handle( "TestSm" );
   Trace::ringLevelsIs( "TestSm", "5" );
   int formatted = 0;
   TRACE( handle, 5, Probe{ formatted } );
   EXPECT_EQ( formatted, 0 );
}

TEST_F( TraceText, MacroIsOneStatement ) {
   Handle const handle( "TestSm" );
   bool const isShared = false;
   // NOLINTBEGIN(readability-braces-around-statements): braces would hide a second statement
   if ( isShared )
      TRACE( handle, 0, "shared" );
   else
      TRACE( handle, 0, "not shared" );
   // NOLINTEND(readability-braces-around-statements)
   EXPECT_EQ( lines, Lines{ "TestSm 0 not shared" } );
}

TEST_F( TraceText, PatternSwitchesAllWhoseNameBeginsWithIt ) {
   Handle const mounter( "TestEvpnMounter" );
   Handle const machine( "TestEvpnSm" );
   Handle const other( "TestApi" );
   Trace::levelsIs( "TestEvpn*", "1-3" );
   EXPECT_EQ( textLevels( mounter ), "123" );
   EXPECT_EQ( textLevels( machine ), "123" );
   EXPECT_EQ( textLevels( other ), "0" );
   EXPECT_EQ( ringLevels( machine ), "012345" );
}

TEST_F( TraceText, NameWithoutAStarIsExact ) {
   Handle const handle( "TestEvpnSm" );
   Trace::levelsIs( "TestEvpn", "9" );
   Trace::levelsIs( "testevpnsm", "9" );
   EXPECT_EQ( textLevels( handle ), "0" );
   Trace::levelsIs( "TestEvpnSm", "9" );
   EXPECT_EQ( textLevels( handle ), "9" );
}

TEST_F( TraceText, StarAloneIsEverybody ) {
   Handle const handle( "TestSm" );
   Handle const nameless( "" );
   Trace::levelsIs( "*", "7" );
   Trace::ringLevelsIs( "*", "" );
   EXPECT_EQ( textLevels( handle ) + textLevels( nameless ), "77" );
   EXPECT_EQ( ringLevels( handle ) + ringLevels( nameless ), "" );
}

TEST_F( TraceText, SettingHoldsForHandlesThatComeLater ) {
   Trace::levelsIs( "TestLate*", "0-9" );
   Trace::ringLevelsIs( "TestLateSm", "2,4" );
   Handle const handle( "TestLateSm" );
   EXPECT_EQ( textLevels( handle ), "0123456789" );
   EXPECT_EQ( ringLevels( handle ), "24" );
}

TEST_F( TraceText, LaterSettingsWin ) {
   Handle const early( "TestWinSm" );
   Trace::levelsIs( "TestWinSm", "1" );
   Trace::levelsIs( "TestWin*", "2" );
   Handle const late( "TestWinSm" );
   EXPECT_EQ( textLevels( early ) + textLevels( late ), "22" );
   Trace::levelsIs( "TestWinSm", "3" );
   EXPECT_EQ( textLevels( early ) + textLevels( late ), "33" );
}

TEST_F( TraceText, SettingOthersLeavesAHandleAsItIs ) {
   Handle handle( "TestSm" );
   handle.textLevelsIs( 1U << 7 );
   handle.ringLevelsIs( 1U << 8 );
   Trace::levelsIs( "TestApi", "5" );
   Trace::ringLevelsIs( "TestApi", "5" );
   EXPECT_EQ( textLevels( handle ), "7" );
   EXPECT_EQ( ringLevels( handle ), "8" );
}

TEST_F( TraceText, LevelsAreDigitsAndRanges ) {
   Handle const handle( "TestSm" );
   for ( auto const & [ text, levels ] :
         { std::pair( "", "" ), std::pair( "5", "5" ), std::pair( "0-9", "0123456789" ),
           std::pair( "3-3", "3" ), std::pair( "9,0", "09" ), std::pair( "0-2,5,7-9", "0125789" ),
           std::pair( "1-4,2-5", "12345" ) } ) {
      Trace::levelsIs( "TestSm", text );
      EXPECT_EQ( textLevels( handle ), levels ) << text;
   }
}

TEST_F( TraceText, AnythingElseIsRefusedAndChangesNothing ) {
   Handle const handle( "TestSm" );
   Trace::levelsIs( "TestSm", "4" );
   for ( char const * const text : { "a", "10", "-", "5-", "-5", "5-3", "1,", ",1", "1,,2", "1-2-3",
                                     "1 ", " 1", "1;2", "0-9,x", "1-,2" } ) {
      EXPECT_THROW( Trace::levelsIs( "TestSm", text ), Quelm::TextError ) << text;
      EXPECT_THROW( Trace::ringLevelsIs( "TestSm", text ), Quelm::TextError ) << text;
   }
   EXPECT_EQ( textLevels( handle ), "4" );
   EXPECT_EQ( ringLevels( handle ), "012345" );
   Handle const late( "TestSm" );
   EXPECT_EQ( textLevels( late ), "4" );
   try {
      Trace::levelsIs( "TestSm", "5-" );
   } catch ( Quelm::TextError const & error ) {
      EXPECT_STREQ( error.what(), "'5-' is not a list of trace levels such as '0-5,9'" );
   }
}

TEST_F( TraceText, HandlesAreListedInTheOrderOfTheirMakingWhileTheyLive ) {
   Lines const before = Trace::handleNames();
   Handle const second( "TestB" );
   {
      Handle const third( "TestA" );
      Lines expected = before;
      expected.insert( expected.end(), { "TestB", "TestA" } );
      EXPECT_EQ( Trace::handleNames(), expected );
   }
   EXPECT_EQ( Trace::handleNames().size(), before.size() + 1 );
}

TEST_F( TraceText, DestroyedHandleIsForgotten ) {
   { Handle const handle( "TestGone" ); }
   Trace::levelsIs( "TestGone", "0-9" );
   Handle const again( "TestGone" );
   EXPECT_EQ( textLevels( again ), "0123456789" );
}

TEST_F( TraceText, LinesGoToStandardErrorWhereThereIsNoSink ) {
   Trace::sinkIs( nullptr );
   Handle const handle( "TestSm" );
   testing::internal::CaptureStderr();
   TRACE( handle, 0, "finishInit" );
   TRACE_RING( handle, 0, "ready" );
   EXPECT_EQ( testing::internal::GetCapturedStderr(), "TestSm 0 finishInit\nTestSm 0 ready\n" );
   EXPECT_EQ( lines, Lines{} );
}

}  // namespace TraceTest
