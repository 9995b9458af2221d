// The egress-mask variant when the TCAM is full, and when the chip refuses what it is told.

#include <gtest/gtest.h>

#include <csignal>

#include <Decorators/FailingSdk.h>

#include "../support/FaultyManager.h"
#include "../support/Stops.h"

namespace EgressMaskFailuresTest {

using Support::intf;
using Support::ip;
using Support::Lines;
using Support::LocalBiasSwitch;
using Support::Machine;
using Support::ManagerFault;
using Support::Variant;

// leaf1 shares Ethernet1, on port 5, with 10.0.0.2 and Ethernet2, on port 6, with nobody.
class EgressMaskFailures : public testing::Test {
 protected:
   explicit EgressMaskFailures( U32 capacity = 64 ) : leaf( 1, capacity ) {
      leaf.interfaceIs( "Ethernet1", 0, 5 );
      leaf.interfaceIs( "Ethernet2", 0, 6 );
      leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   }
   Machine machineWith( ManagerFault const & fault ) {
      leaf.ingress = Quelm::make< Support::FaultyManager >( leaf, fault );
      return leaf.machineNew( Variant::EgressMask );
   }
   static std::string stopOf( std::string const & file, std::string const & operation,
                              std::string const & expression ) {
      return "^" + Support::assertionLine( file, operation, expression ) + "$";
   }

   LocalBiasSwitch leaf;
};

// --- No room

struct EgressMaskInRoomForThree : EgressMaskFailures {
   EgressMaskInRoomForThree() : EgressMaskFailures( 3 ) { leaf.vtepIs( "10.0.0.2", 2 ); }
};

TEST_F( EgressMaskInRoomForThree, AFailedAllocationAddsNoActionAndRecordsNoMask ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.vtepIs( "10.0.0.3", 3 );
   leaf.forget();
   leaf.segmentIs( "Ethernet2", { "10.0.0.3" } );
   ASSERT_EQ( leaf.calls.size(), 1U );
   EXPECT_EQ( leaf.calls[ 0 ].operation, "getEntry" );
   auto const record = sm->tepIpToEntry( 0U );
   EXPECT_FALSE( record->entryIdHas( ip( "10.0.0.3" ) ) );
   EXPECT_FALSE( record->esPbmpHas( ip( "10.0.0.3" ) ) );
   EXPECT_EQ( record->vpIndex( ip( "10.0.0.3" ) ), 3U );
   EXPECT_EQ( leaf.tracesOf( "2 ifp" ),
              ( Lines{ "2 ifpTcamEntries failed to allocate IFP entry ID" } ) );
   EXPECT_TRUE( leaf.tracesOf( "4 ifp" ).empty() );
   EXPECT_TRUE( leaf.tracesOf( "3 " ).empty() );
}

TEST_F( EgressMaskInRoomForThree, TheFullMessageIsLoggedOnceInTheLifeOfTheMachine ) {
   Lines const fullOnce{
      "%VORNAL-3-MULTIHOMING_TCAM_RESOURCE_FULL: "
      "TCAM resource for EVPN Multi-Homing exhausted"
   };
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.vtepIs( "10.0.0.3", 3 );
   leaf.vtepIs( "10.0.0.4", 4 );
   leaf.vtepIs( "10.0.0.5", 5 );
   leaf.segmentIs( "Ethernet2", { "10.0.0.3" } );
   EXPECT_EQ( leaf.logs, fullOnce );
   // Room returns, and the next VTEP takes it.
   leaf.vtepDel( "10.0.0.2" );
   leaf.segmentIs( "Ethernet2", { "10.0.0.4" } );
   ASSERT_TRUE( sm->tepIpToEntry( 0U )->entryIdHas( ip( "10.0.0.4" ) ) );
   EXPECT_TRUE( sm->tcamExhaustion() );
   // The TCAM fills a second time.
   leaf.segmentIs( "Ethernet2", { "10.0.0.5" } );
   ASSERT_FALSE( sm->tepIpToEntry( 0U )->entryIdHas( ip( "10.0.0.5" ) ) );
   EXPECT_EQ( leaf.logs, fullOnce );
}

TEST_F( EgressMaskInRoomForThree, ALaterMachineLogsItAgain ) {
   auto sm = leaf.machineNew( Variant::EgressMask );
   leaf.vtepIs( "10.0.0.3", 3 );
   leaf.segmentIs( "Ethernet2", { "10.0.0.3" } );
   EXPECT_EQ( leaf.logs.size(), 1U );
   sm = leaf.machineNew( Variant::EgressMask );
   EXPECT_EQ( leaf.logs.size(), 2U );
}

// --- The chip refuses

using EgressMaskDeathTest = EgressMaskFailures;

TEST_F( EgressMaskDeathTest, AFailedInstallOfTheEntryStopsTheProcessWhateverTheCode ) {
   for ( S32 const code : { -1, 1 } ) {
      auto const sm = machineWith( { "installEntry", 3, code } );  // after the two exemptions
      EXPECT_EXIT( leaf.vtepIs( "10.0.0.2", 2 ), testing::KilledBySignal( SIGABRT ),
                   stopOf( "EgressMaskProgramming.cpp:", "ifpTcamEntries",
                           "rc == BCM_E_NONE && \"installEntry failed\"" ) );
   }
}

TEST_F( EgressMaskDeathTest, AFailedReinstallStopsTheProcessWhateverTheCode ) {
   for ( S32 const code : { -1, 1 } ) {
      auto const sm = machineWith( { "reinstallEntry", 1, code } );
      leaf.vtepIs( "10.0.0.2", 2 );
      EXPECT_EXIT( leaf.segmentIs( "Ethernet2", { "10.0.0.2" } ),
                   testing::KilledBySignal( SIGABRT ),
                   stopOf( "EgressMaskProgramming.cpp:", "updateIfpTcamEntries",
                           "rc == BCM_E_NONE && \"reinstallEntry failed\"" ) );
      leaf.vtepDel( "10.0.0.2" );
   }
}

TEST_F( EgressMaskDeathTest, AnEntryThatTheChipHasLostStopsTheProcessAtTheNextUpdate ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.vtepIs( "10.0.0.2", 2 );
   leaf.ingress->releaseEntry( 0, sm->tepIpToEntry( 0U )->entryId( ip( "10.0.0.2" ) ) );
   EXPECT_EXIT( leaf.segmentIs( "Ethernet2", { "10.0.0.2" } ), testing::KilledBySignal( SIGABRT ),
                stopOf( "EgressMaskProgramming.cpp:", "updateIfpTcamEntries",
                        "rc == BCM_E_NONE && \"reinstallEntry failed\"" ) );
}

TEST_F( EgressMaskDeathTest, AFailedQualifierStopsTheProcess ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   Chip::FailingSdk failing( *Shim::sdk_, { .nth = 1,
                                            .code = -1,
                                            .operation = "bcm_field_qualify_SrcVxlanGport" } );
   Shim::sdk_ = &failing;
   EXPECT_EXIT( leaf.vtepIs( "10.0.0.2", 2 ), testing::KilledBySignal( SIGABRT ),
                Support::failedCall( "IngressRules.cpp:", "ifpTcamEntries",
                                     "bcm_field_qualify_SrcVxlanGport( unit, entryId, gport )",
                                     "Unknown unit (-1)" ) );
}

// --- Records that contradict themselves

TEST_F( EgressMaskDeathTest, AnEntryWithoutRecordedMaskIsNotTakenAway ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.vtepIs( "10.0.0.2", 2 );
   sm->tepIpToEntry( 0U )->esPbmpDel( ip( "10.0.0.2" ) );
   EXPECT_EXIT( sm->deleteTcamEntries( 0, ip( "10.0.0.2" ) ), testing::KilledBySignal( SIGABRT ),
                stopOf( "EgressMaskProgramming.cpp:", "ifpTcamEntries",
                        "unitTepIpToEntry->esPbmpHas( tepIp )" ) );
}

TEST_F( EgressMaskDeathTest, AVtepThatWasNeverAddedIsNotTakenAway ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   sm->tepIpToEntryIs( U16{ 0 } );
   EXPECT_EXIT( sm->deleteTcamEntries( 0, ip( "10.0.0.2" ) ), testing::KilledBySignal( SIGABRT ),
                stopOf( "EgressMaskProgramming.cpp:", "ifpTcamEntries",
                        "unitTepIpToEntry->esPbmpHas( tepIp )" ) );
}

TEST_F( EgressMaskDeathTest, AnEntryThatIsForgottenWhileItIsMadeGetsNoMask ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   auto const record = sm->tepIpToEntryIs( U16{ 0 } );
   Kiv::Watch< Vornal::TepIpToEntry > meddler( record, [ record ]( Kiv::Change const & ) {
      record->entryIdDel( ip( "10.0.0.2" ) );
   } );
   meddler.hasNotificationActiveIs( true );
   EXPECT_EXIT( sm->ifpTcamEntries( 0, ip( "10.0.0.2" ), true ), testing::KilledBySignal( SIGABRT ),
                stopOf( "EgressMaskProgramming.cpp:", "ifpTcamEntries", "entryId" ) );
}

}  // namespace EgressMaskFailuresTest
