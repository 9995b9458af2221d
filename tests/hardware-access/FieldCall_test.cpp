// The guarded field call, as long as the chip does what it is told: what happens before, during and
// after it, and what it says about itself.
#include <gtest/gtest.h>

#include <latch>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <Kiv/Activity.h>
#include <Shim/FieldCall.h>
#include <Trace/Trace.h>

#include "ScriptedSdk.h"

namespace FieldCallTest {

using Journal = std::vector< std::string >;

// A unit whose activity lock this thread holds.
class FieldCall : public testing::Test {
 protected:
   std::string lock() const { return activity_.isLockHeld() ? "lock held" : "lock given up"; }
   // What the other threads of the agent do once they have the lock.
   void anotherThreadsTurn() {
      Kiv::ActivityLockAnchor const locked( activity_ );
      journal_.emplace_back( "another thread's turn" );
   }

   // Written under the activity lock only.
   Journal journal_;
   ScriptedSdk sdk_;
   Kiv::ActivityManager activity_;
};

constexpr U32 unit = 2;
constexpr U32 entryId = 7;
constexpr U32 gport = 0xb0000005;

TEST_F( FieldCall, ReachesTheShimOnceWithTheValuesOfItsArguments ) {
   Kiv::ActivityLockAnchor const locked( activity_ );
   U32 looks = 0;
   SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( unit, ++looks, gport ) );
   EXPECT_EQ( sdk_.calls, Journal{ "bcm_field_qualify_SrcVxlanGport 2 1 2952790021" } );
}

TEST_F( FieldCall, ZeroAndPositiveCodesAreSuccess ) {
   Kiv::ActivityLockAnchor const locked( activity_ );
   for ( S32 const rc : { 0, 1, 2147483647 } ) {
      sdk_.onCall = [ rc ] { return rc; };
      SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) );
   }
   EXPECT_EQ( sdk_.calls.size(), 3U );
}

TEST_F( FieldCall, IsAnnouncedWithTheLockHeldAndMadeWithTheLockGivenUp ) {
   Kiv::ActivityLockAnchor const locked( activity_ );
   sdk_.onBefore = [ & ] { journal_.push_back( "announced, " + lock() ); };
   sdk_.onCall = [ & ] {
      journal_.push_back( "called, " + lock() );
      return 0;
   };
   SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) );
   journal_.push_back( "back, " + lock() );
   EXPECT_EQ( journal_,
              ( Journal{ "announced, lock held", "called, lock given up", "back, lock held" } ) );
}

TEST_F( FieldCall, LetsAnotherThreadHaveItsTurnDuringTheCallAndNotBefore ) {
   std::thread other;
   sdk_.onBefore = [ & ] {
      other = std::thread( [ & ] { anotherThreadsTurn(); } );
      journal_.emplace_back( "announced" );
   };
   sdk_.onCall = [ & ] {
      other.join();
      return 0;
   };
   Kiv::ActivityLockAnchor const locked( activity_ );
   SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) );
   journal_.emplace_back( "back" );
   EXPECT_EQ( journal_, ( Journal{ "announced", "another thread's turn", "back" } ) );
}

TEST_F( FieldCall, ComesBackOnlyWhenAnotherThreadHasFinishedItsTurn ) {
   std::thread other;
   std::latch started( 1 );
   sdk_.onCall = [ & ] {
      other = std::thread( [ & ] {
         Kiv::ActivityLockAnchor const locked( activity_ );
         started.count_down();
         journal_.emplace_back( "another thread's turn" );
      } );
      started.wait();
      return 0;
   };
   {
      Kiv::ActivityLockAnchor const locked( activity_ );
      SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) );
      journal_.emplace_back( "back" );
   }
   other.join();
   EXPECT_EQ( journal_, ( Journal{ "another thread's turn", "back" } ) );
}

TEST_F( FieldCall, KeepsOtherThreadsOutAgainAfterTheCall ) {
   std::thread other;
   {
      Kiv::ActivityLockAnchor const locked( activity_ );
      SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) );
      other = std::thread( [ & ] { anotherThreadsTurn(); } );
      journal_.emplace_back( "back" );
   }
   other.join();
   EXPECT_EQ( journal_, ( Journal{ "back", "another thread's turn" } ) );
}

TEST_F( FieldCall, TakesTheLockBackWhenAnExceptionPasses ) {
   std::thread other;
   {
      Kiv::ActivityLockAnchor const locked( activity_ );
      sdk_.onCall = []() -> S32 { throw std::runtime_error( "no such unit" ); };
      EXPECT_THROW( SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) ),
                    std::runtime_error );
      EXPECT_EQ( lock(), "lock held" );
      other = std::thread( [ & ] { anotherThreadsTurn(); } );
      journal_.emplace_back( "back" );
   }
   other.join();
   EXPECT_EQ( journal_, ( Journal{ "back", "another thread's turn" } ) );
}

TEST_F( FieldCall, IsUnderWayFromItsAnnouncementToItsEnd ) {
   Kiv::ActivityLockAnchor const locked( activity_ );
   auto const note = [ & ] {
      journal_.emplace_back( Shim::fieldCallUnderWay_ ? Shim::fieldCallUnderWay_->text : "none" );
   };
   sdk_.onBefore = note;
   sdk_.onCall = [ & ] {
      note();
      return 0;
   };
   note();
   SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) );
   note();
   std::string const text = "bcm_field_qualify_SrcVxlanGport( unit, entryId, gport )";
   EXPECT_EQ( journal_, ( Journal{ "none", text, text, "none" } ) );
}

TEST_F( FieldCall, IsNoLongerUnderWayWhenAnExceptionHasPassed ) {
   Kiv::ActivityLockAnchor const locked( activity_ );
   sdk_.onCall = []() -> S32 { throw std::runtime_error( "no such unit" ); };
   EXPECT_ANY_THROW( SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) ) );
   EXPECT_EQ( Shim::fieldCallUnderWay_, nullptr );
}

// The same, with its trace lines taken down as "HANDLE LEVEL TEXT".
class FieldCallTrace : public FieldCall {
 protected:
   FieldCallTrace() {
      Trace::sinkIs( [ this ]( Trace::Line const & line ) {
         journal_.push_back( std::string( line.handle ) + " " + std::to_string( line.level ) + " " +
                             std::string( line.text ) );
         lockAtTrace_ = lock();
      } );
   }
   ~FieldCallTrace() override { Trace::sinkIs( {} ); }

   std::string lockAtTrace_;
   Kiv::ActivityLockAnchor locked_{ activity_ };
};

std::string tracedAt( int line, std::string const & text ) {
   return "ApiVornal 4 FieldCall_test.cpp:" + std::to_string( line ) + " " + text;
}

TEST_F( FieldCallTrace, SaysFileLineCallAndCodeAtLevelFour ) {
   Trace::levelsIs( "ApiVornal", "4" );
   SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) );
   int const line = __LINE__ - 1;
   EXPECT_EQ( journal_,
              Journal{
                 tracedAt( line,
                           "bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) (rc:0)" ) } );
   EXPECT_EQ( lockAtTrace_, "lock held" );
}

TEST_F( FieldCallTrace, GivesAPositiveCodeInDecimal ) {
   Trace::levelsIs( "ApiVornal", "4" );
   sdk_.onCall = [] { return 17; };
   SDK_FIELD_CALL( bcm_field_qualify_IpType( unit, entryId, bcmFieldIpTypeAny ) );
   int const line = __LINE__ - 1;
   EXPECT_EQ( journal_,
              Journal{ tracedAt(
                 line, "bcm_field_qualify_IpType( unit, entryId, bcmFieldIpTypeAny ) (rc:17)" ) } );
}

TEST_F( FieldCallTrace, GivesTheLineThatSupportToolsKnow ) {
   Trace::levelsIs( "ApiVornal", "4" );
   SDK_FIELD_CALL_AT( 279, bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) );
   EXPECT_EQ( journal_,
              Journal{
                 tracedAt( 279,
                           "bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) (rc:0)" ) } );
}

TEST_F( FieldCallTrace, SaysNothingWhileLevelFourIsOff ) {
   Trace::levelsIs( "ApiVornal", "0-3,5-9" );
   SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) );
   EXPECT_EQ( sdk_.calls.size(), 1U );
   EXPECT_EQ( journal_, Journal{} );
}

TEST_F( FieldCallTrace, IsOffUntilSwitchedOn ) {
   SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) );
   EXPECT_EQ( journal_, Journal{} );
}

}  // namespace FieldCallTest
