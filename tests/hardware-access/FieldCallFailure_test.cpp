// A field call that fails stops the process: one line says which call, where and why, the shim is
// told, and the assertion names the same place. Nothing else is done to the chip any more.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include <Kiv/Activity.h>
#include <Shim/FieldCall.h>
#include <Trace/Trace.h>

#include "ScriptedSdk.h"

namespace FieldCallFailureTest {

// Past all buffers.
void say( std::string const & text ) {
   if ( write( STDERR_FILENO, text.data(), text.size() ) < 0 ) {
      std::abort();
   }
}

// An activity and a shim that answers every call with `rc` and tells on standard error what it is
// asked to do. Trace lines go there as well.
class FailingChip {
 public:
   explicit FailingChip( S32 rc ) {
      sdk_.onBefore = [ this ] { say( "chip: announced, " + lock() + "\n" ); };
      sdk_.onCall = [ this, rc ] {
         say( "chip: " + sdk_.calls.back() + ", " + lock() + "\n" );
         return rc;
      };
      sdk_.onFailed = [ this ] { say( "chip: failed, " + lock() + "\n" ); };
      Trace::levelsIs( "*", "0-9" );
   }

 private:
   std::string lock() const { return activity_.isLockHeld() ? "lock held" : "lock given up"; }

   ScriptedSdk sdk_;
   Kiv::ActivityManager activity_;
   Kiv::ActivityLockAnchor locked_{ activity_ };
};

constexpr int kLineOfTheCall = __LINE__ + 4;
void qualifyThenAct( S32 rc, U32 unit, U32 entryId ) {
   FailingChip const chip( rc );
   U32 const gport = 9;
   SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) );
   SDK_FIELD_CALL( bcm_field_action_add( unit, entryId, bcmFieldActionDrop, 0, 0 ) );
}

void qualifyAtTheLineThatSupportToolsKnow( S32 rc ) {
   FailingChip const chip( rc );
   SDK_FIELD_CALL_AT( 282, bcm_field_qualify_IpType( 0, 3, bcmFieldIpTypeAny ) );
}

std::string const announcedAndMade =
   "chip: announced, lock held\n"
   "chip: bcm_field_qualify_SrcVxlanGport 2 7 9, lock given up\n";
std::string const place = "FieldCallFailure_test.cpp:" + std::to_string( kLineOfTheCall );
std::string const assertion =
   place + ": void FieldCallFailureTest::qualifyThenAct(S32, U32, U32): Assertion '0' failed.\n";

std::string errorLine( std::string const & reason ) {
   return place + " bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) API ERROR:" + reason +
          "\n";
}

TEST( FieldCallFailureDeathTest, SaysOnceWhatFailedTellsTheShimAndStopsAtTheLineOfTheCall ) {
   EXPECT_EXIT( qualifyThenAct( -7, 2, 7 ), testing::KilledBySignal( SIGABRT ),
                testing::Matcher< std::string const & >(
                   announcedAndMade + errorLine( "Entry not found (-7)" ) +
                   "chip: failed, lock held\n" + assertion ) );
}

TEST( FieldCallFailureDeathTest, EveryNegativeCodeIsFailure ) {
   auto const story = []( std::string const & reason ) {
      return testing::Matcher< std::string const & >( announcedAndMade + errorLine( reason ) +
                                                      "chip: failed, lock held\n" + assertion );
   };
   EXPECT_EXIT( qualifyThenAct( -1, 2, 7 ), testing::KilledBySignal( SIGABRT ),
                story( "Internal error (-1)" ) );
   EXPECT_EXIT( qualifyThenAct( INT_MIN, 2, 7 ), testing::KilledBySignal( SIGABRT ),
                story( "Internal error (-2147483648)" ) );
}

TEST( FieldCallFailureDeathTest, ReportsTheLineThatSupportToolsKnowInBothLines ) {
   EXPECT_EXIT(
      qualifyAtTheLineThatSupportToolsKnow( -7 ), testing::KilledBySignal( SIGABRT ),
      testing::Matcher< std::string const & >(
         "chip: announced, lock held\n"
         "chip: bcm_field_qualify_IpType 0 3 0, lock given up\n"
         "FieldCallFailure_test.cpp:282 bcm_field_qualify_IpType( 0, 3, bcmFieldIpTypeAny ) "
         "API ERROR:Entry not found (-7)\n"
         "chip: failed, lock held\n"
         "FieldCallFailure_test.cpp:282: void "
         "FieldCallFailureTest::qualifyAtTheLineThatSupportToolsKnow(S32): "
         "Assertion '0' failed.\n" ) );
}

// What a process writes to standard error, one text per write, and how it ends.
struct LastWords {
   std::vector< std::string > writes;
   int signal = 0;
};

// Runs `act` in a process of its own.
template< typename Act > LastWords lastWordsOf( Act act ) {
   std::array< int, 2 > ends{};
   if ( pipe2( ends.data(), O_DIRECT ) != 0 ) {  // keeps writes apart
      return {};
   }
   pid_t const child = fork();
   if ( child == 0 ) {
      dup2( ends[ 1 ], STDERR_FILENO );
      act();
      _exit( 0 );
   }
   close( ends[ 1 ] );
   LastWords words;
   std::array< char, 4096 > packet{};
   ssize_t size = 0;
   while ( ( size = read( ends[ 0 ], packet.data(), packet.size() ) ) > 0 ) {
      words.writes.emplace_back( packet.data(), static_cast< std::size_t >( size ) );
   }
   close( ends[ 0 ] );
   int status = 0;
   waitpid( child, &status, 0 );
   words.signal = WIFSIGNALED( status ) ? WTERMSIG( status ) : 0;
   return words;
}

TEST( FieldCallFailure, ErrorLineIsOutWholeBeforeTheShimIsTold ) {
   LastWords const words = lastWordsOf( [] {
      // As if somebody had made standard error buffered.
      std::cerr << std::nounitbuf;
      static std::array< char, 4096 > buffer;
      static_cast< void >( setvbuf( stderr, buffer.data(), _IOFBF, buffer.size() ) );
      qualifyThenAct( -7, 2, 7 );
   } );
   EXPECT_EQ( words.writes,
              ( std::vector< std::string >{
                 "chip: announced, lock held\n",
                 "chip: bcm_field_qualify_SrcVxlanGport 2 7 9, lock given up\n",
                 errorLine( "Entry not found (-7)" ), "chip: failed, lock held\n", assertion } ) );
   EXPECT_EQ( words.signal, SIGABRT );
}

}  // namespace FieldCallFailureTest
