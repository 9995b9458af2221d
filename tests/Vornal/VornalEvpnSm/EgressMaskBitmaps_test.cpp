// Port bitmaps are the SDK's: clearing, comparing and counting them is asked of the shim, whatever
// it makes of them.

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include <Decorators/SdkDecorator.h>

#include "../support/LocalBiasSwitch.h"
#include "../support/Stops.h"

namespace EgressMaskBitmapsTest {

using Support::ip;
using Support::Lines;
using Support::LocalBiasSwitch;
using Support::Machine;
using Support::stopsAt;
using Support::Variant;

// A shim that answers about bitmaps what the test says, and counts how many it has cleared.
class OddBitmaps final : public Chip::SdkDecorator {
 public:
   OddBitmaps() : SdkDecorator( *Shim::sdk_ ), next_( Shim::sdk_ ) { Shim::sdk_ = this; }
   OddBitmaps( OddBitmaps const & ) = delete;
   OddBitmaps & operator=( OddBitmaps const & ) = delete;
   ~OddBitmaps() override { Shim::sdk_ = next_; }

   void pbmpClear( _shr_pbmp & pbmp ) const override {
      ++cleared;
      SdkDecorator::pbmpClear( pbmp );
      pbmp.words[ 10 ] |= leftOver;
   }
   bool pbmpEqual( _shr_pbmp const & a, _shr_pbmp const & b ) const override {
      return equal.value_or( SdkDecorator::pbmpEqual( a, b ) );
   }
   U32 pbmpCount( _shr_pbmp const & pbmp ) const override {
      return count.value_or( SdkDecorator::pbmpCount( pbmp ) );
   }

   mutable U32 cleared = 0;
   U32 leftOver = 0;  // of a cleared bitmap's last word
   std::optional< bool > equal;
   std::optional< U32 > count;

 private:
   Shim::Sdk * next_;
};

// leaf1 shares Ethernet1, on port 5, with 10.0.0.2, which has no virtual port yet.
class EgressMaskBitmaps : public testing::Test {
 protected:
   EgressMaskBitmaps() {
      leaf.interfaceIs( "Ethernet1", 0, 5 );
      leaf.interfaceIs( "Ethernet2", 0, 6 );
      leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   }
   // The entry in the hardware masks another port than Ethernet1's.
   void maskPort7InHardware() {
      U32 const entry = sm->tepIpToEntry( 0U )->entryId( ip( "10.0.0.2" ) );
      _shr_pbmp other{};
      other.words[ 0 ] = 1U << 7;
      leaf.ingress->updateEgressMaskAction( 0, entry, other );
      leaf.ingress->reinstallEntry( 0, entry );
   }
   // The ports that the last call of that name handed to the chip.
   std::string maskOf( std::string const & operation ) const {
      auto const call = std::find_if( leaf.calls.rbegin(), leaf.calls.rend(),
                                      [ & ]( Chip::HardwareCall const & one ) {
                                         return one.operation == operation;
                                      } );
      return call == leaf.calls.rend()
                ? "none"
                : Quelm::textOf( std::get< Brum::PerUnitBitmap >( call->values[ 1 ].value ) );
   }

   LocalBiasSwitch leaf;
   Machine const sm = leaf.machineNew( Variant::EgressMask );
   OddBitmaps odd;
   std::string const verification = "EvpnMultihomingLocalBiasWithEgressMaskSm::verifyIfpEntries";
};
using EgressMaskBitmapsDeathTest = EgressMaskBitmaps;

TEST_F( EgressMaskBitmaps, AMaskStartsFromWhatTheShimHasCleared ) {
   odd.leftOver = 1U << 31;
   leaf.vtepIs( "10.0.0.2", 2 );
   EXPECT_EQ( odd.cleared, 1U );
   EXPECT_EQ( maskOf( "addEgressMaskAction" ), "{5,351}" );
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   EXPECT_EQ( odd.cleared, 2U );
   EXPECT_EQ( maskOf( "updateEgressMaskAction" ), "{5-6,351}" );
   EXPECT_EQ( Quelm::textOf( sm->tepIpToEntry( 0U )->esPbmp( ip( "10.0.0.2" ) ) ), "{5-6}" );
}

TEST_F( EgressMaskBitmaps, AnEntryThatGoesNeedsNone ) {
   leaf.vtepIs( "10.0.0.2", 2 );
   leaf.vtepDel( "10.0.0.2" );
   EXPECT_EQ( odd.cleared, 1U );
}

TEST_F( EgressMaskBitmaps, AVerificationHasTwoClearedTheReadOneAndTheExpectedOne ) {
   leaf.vtepIs( "10.0.0.2", 2 );
   odd.cleared = 0;
   sm->verifyIfpEntries( 0, ip( "10.0.0.2" ) );
   EXPECT_EQ( odd.cleared, 2U );
}

TEST_F( EgressMaskBitmapsDeathTest, WhetherTwoAreEqualIsTheShimsToSay ) {
   leaf.vtepIs( "10.0.0.2", 2 );
   odd.equal = false;
   EXPECT_DEATH( sm->handleVerify(), stopsAt( verification, "BCM_PBMP_EQ( ports, ports_exp )" ) );
   odd.equal = true;
   maskPort7InHardware();
   sm->handleVerify();
   odd.equal = std::nullopt;
   EXPECT_DEATH( sm->handleVerify(), stopsAt( verification, "BCM_PBMP_EQ( ports, ports_exp )" ) );
}

TEST_F( EgressMaskBitmapsDeathTest, HowManyPortsThereAreIsTheShimsToSay ) {
   leaf.vtepIs( "10.0.0.2", 2 );
   odd.count = 2;
   EXPECT_DEATH( sm->handleVerify(), stopsAt( verification, "portCount == expPortCount" ) );
}

TEST_F( EgressMaskBitmapsDeathTest, ThePortsThatAreCountedAreThoseReadBack ) {
   leaf.vtepIs( "10.0.0.2", 2 );
   U32 const entry = sm->tepIpToEntry( 0U )->entryId( ip( "10.0.0.2" ) );
   leaf.ingress->updateEgressMaskAction( 0, entry, _shr_pbmp{} );
   leaf.ingress->reinstallEntry( 0, entry );
   odd.equal = true;
   EXPECT_DEATH( sm->handleVerify(), stopsAt( verification, "portCount == expPortCount" ) );
}

// --- The read-back

// An ingress group whose masks are read back with a code that is no failure elsewhere.
class PositiveReader final : public Chip::SoftTcamEntryManager {
 public:
   explicit PositiveReader( LocalBiasSwitch & leaf )
         : SoftTcamEntryManager( Vornal::kIfpLocalBiasGroup, leaf.board.units(),
                                 &leaf.callObserver() ) {}
   Vornal::EgressMaskResult getEgressMaskActionPbmp( U32 unit, U32 entryId ) override {
      return { 1, SoftTcamEntryManager::getEgressMaskActionPbmp( unit, entryId ).pbmp() };
   }
};

TEST_F( EgressMaskBitmapsDeathTest, AnyCodeButZeroOfTheReadBackStops ) {
   leaf.ingress = Quelm::make< PositiveReader >( leaf );
   auto const machine = leaf.machineNew( Variant::EgressMask );
   sm->hasNotificationActiveIs( false );
   leaf.vtepIs( "10.0.0.2", 2 );
   EXPECT_DEATH( machine->handleVerify(),
                 stopsAt( verification, "!pbmpRes->rc() && \"getEgressMaskActionPbmp fails\"" ) );
}

}  // namespace EgressMaskBitmapsTest
