// The verification pass on switches where everything agrees: what is read, in which order, and when
// nothing is.

#include <gtest/gtest.h>

#include "../support/RoutedSwitch.h"
#include "../support/Variants.h"

namespace {

using namespace Support;

class Verification : public testing::TestWithParam< Variant > {
 protected:
   // Ethernet1, on port 5 of unit 0, shared with the VTEPs, each of which has a virtual port.
   void shareEthernet1( LocalBiasSwitch & on, std::vector< std::string > const & vteps ) {
      on.interfaceIs( "Ethernet1", 0, 5 );
      on.segmentIs( "Ethernet1", vteps );
      for ( std::string const & vtep : vteps ) {
         on.vtepIs( vtep, vpIndex++ );
      }
   }
   void start( LocalBiasSwitch & on, std::vector< std::string > const & granted ) {
      sm = on.machineNew( GetParam() );
      U16 classId = 5;
      for ( std::string const & vtep : granted ) {
         on.classIdIs( vtep, classId++ );
      }
      on.forget();
   }
   static Lines operationsOf( LocalBiasSwitch const & on ) {
      Lines operations;
      for ( Chip::HardwareCall const & call : on.calls ) {
         operations.push_back( call.operation + " " + std::to_string( call.unit ) + " " +
                               std::to_string( call.entry ) );
      }
      return operations;
   }

   LocalBiasSwitch leaf;
   Machine sm;
   U32 vpIndex = 2;
};

using EgressMaskVerification = Verification;

INSTANTIATE_TEST_SUITE_P( Agreement, Verification, bothVariants, nameOfVariant );
INSTANTIATE_TEST_SUITE_P( Agreement, EgressMaskVerification, testing::Values( Variant::EgressMask ),
                          nameOfVariant );

// --- When nothing is verified

TEST_P( Verification, BeforeInitialisationItOnlyTraces ) {
   start( leaf, {} );
   sm->initializedIs( false );
   sm->tepIpToEntryIs( U16{ 0 } );
   sm->handleVerify();
   EXPECT_EQ( leaf.traces, ( Lines{ "9 handleVerify" } ) );
}

TEST_P( Verification, BeforeInitialisationAFullTcamIsNoReason ) {
   start( leaf, {} );
   sm->initializedIs( false );
   sm->tcamExhaustionIs( true );
   sm->handleVerify();
   EXPECT_EQ( leaf.traces, ( Lines{ "9 handleVerify" } ) );
}

TEST_P( Verification, WhileTheTcamIsExhaustedItOnlyTraces ) {
   shareEthernet1( leaf, { "10.0.0.2" } );
   start( leaf, { "10.0.0.2" } );
   sm->tcamExhaustionIs( true );
   sm->l2UcastRuleInstalledDel( 0 );
   sm->handleVerify();
   EXPECT_EQ( leaf.traces, ( Lines{ "9 handleVerify",
                                    "2 handleVerify tcam is exhausted, skipping verification" } ) );
   EXPECT_TRUE( leaf.calls.empty() );
}

TEST_P( Verification, ASwitchWithNothingToProtectHasNothingProgrammed ) {
   start( leaf, {} );
   sm->handleVerify();
   EXPECT_EQ( leaf.traces, ( Lines{ "9 handleVerify" } ) );
   EXPECT_TRUE( leaf.calls.empty() );
}

TEST_P( Verification, SegmentsWithoutAnyVirtualPortAreNothingToProtect ) {
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   start( leaf, {} );
   sm->handleVerify();
   EXPECT_EQ( leaf.traces, ( Lines{ "9 handleVerify" } ) );
}

TEST_P( Verification, VirtualPortsWithoutAnySegmentAreNothingToProtect ) {
   leaf.vtepIs( "10.0.0.2", 2 );
   start( leaf, {} );
   sm->handleVerify();
   EXPECT_EQ( leaf.traces, ( Lines{ "9 handleVerify" } ) );
}

TEST_P( Verification, AfterTheLastVtepHasGoneNothingIsLeft ) {
   shareEthernet1( leaf, { "10.0.0.2" } );
   start( leaf, { "10.0.0.2" } );
   leaf.segmentDel( "Ethernet1" );
   sm->handleVerify();
   EXPECT_TRUE( Chip::rulesOf( leaf.board.units() ).empty() );
}

TEST_P( Verification, CanBeAskedForByName ) {
   start( leaf, {} );
   auto const * const operation = sm->typeData().findOperation( "handleVerify", 0 );
   ASSERT_TRUE( operation );
   operation->call( *sm, {} );
   EXPECT_EQ( leaf.traces, ( Lines{ "9 handleVerify" } ) );
}

// --- What is read

TEST_P( EgressMaskVerification, ReadsTheExemptionRulesTheVtepsEntryAndItsMask ) {
   shareEthernet1( leaf, { "10.0.0.2" } );
   start( leaf, {} );
   sm->handleVerify();
   EXPECT_EQ( operationsOf( leaf ), ( Lines{
                                       "bcm_field_qualify_PacketRes_get 0 1",
                                       "bcm_field_qualify_TunnelTerminated_get 0 1",
                                       "bcm_field_qualify_PacketRes_get 0 2",
                                       "bcm_field_qualify_TunnelTerminated_get 0 2",
                                       "bcm_field_qualify_SrcVxlanGport_get 0 3",
                                       "getEgressMaskActionPbmp 0 3",
                                    } ) );
   Lines texts;
   for ( auto const & call : leaf.calls ) {
      texts.push_back( call.callText );
   }
   EXPECT_EQ( texts, ( Lines{
                        "bcm_field_qualify_PacketRes_get( unit, l2EntryId, &data, &mask )",
                        "bcm_field_qualify_TunnelTerminated_get( unit, l2EntryId, &tdata, &tmask )",
                        "bcm_field_qualify_PacketRes_get( unit, l3EntryId, &data, &mask )",
                        "bcm_field_qualify_TunnelTerminated_get( unit, l3EntryId, &tdata, &tmask )",
                        "bcm_field_qualify_SrcVxlanGport_get( unit, entryId, &gport )",
                        "",
                     } ) );
}

TEST_P( EgressMaskVerification, TracesItsWay ) {
   shareEthernet1( leaf, { "10.0.0.2" } );
   start( leaf, {} );
   sm->handleVerify();
   EXPECT_EQ( leaf.traces, ( Lines{
                              "9 handleVerify",
                              "5 tcamSanityCheckForTepIp unit: 0 tepIp: 10.0.0.2",
                              "4 tcamSanityCheckForTepIp ifpTcamsUsed:1 esPbmpUsed:1",
                              "9 verifyIfpEntries",
                              "9 verifyIfpEntries",
                              "5 unitUsesTcamsForTepIp unit: 0 tepIp: 10.0.0.2",
                              "4 unitUsesTcamsForTepIp ifpTcamsUsed: 1",
                              "5 getSharedESPortInfo, unit: 0, tepIp: 10.0.0.2",
                           } ) );
}

TEST_P( EgressMaskVerification, VisitsEachVtepAndForItEachUnit ) {
   LocalBiasSwitch twoUnits( 2 );
   twoUnits.interfaceIs( "Ethernet1", 0, 5 );
   twoUnits.memberIs( "Port-Channel1", "Ethernet1" );
   twoUnits.segmentIs( "Port-Channel1", { "10.0.0.3", "10.0.0.2" } );
   twoUnits.vtepIs( "10.0.0.2", 2 );
   twoUnits.vtepIs( "10.0.0.3", 3 );
   start( twoUnits, {} );
   sm->handleVerify();
   EXPECT_EQ( twoUnits.tracesOf( "5 tcamSanityCheckForTepIp" ),
              ( Lines{
                 "5 tcamSanityCheckForTepIp unit: 0 tepIp: 10.0.0.2",
                 "5 tcamSanityCheckForTepIp unit: 1 tepIp: 10.0.0.2",
                 "5 tcamSanityCheckForTepIp unit: 0 tepIp: 10.0.0.3",
                 "5 tcamSanityCheckForTepIp unit: 1 tepIp: 10.0.0.3",
              } ) );
}

TEST_P( Verification, AVtepIsVerifiedOnAUnitWithoutSharedPortsToo ) {
   LocalBiasSwitch twoUnits( 2 );
   twoUnits.interfaceIs( "Ethernet1", 0, 5 );
   twoUnits.memberIs( "Port-Channel1", "Ethernet1" );
   twoUnits.segmentIs( "Port-Channel1", { "10.0.0.2" } );
   twoUnits.vtepIs( "10.0.0.2", 2 );
   start( twoUnits, { "10.0.0.2" } );
   twoUnits.forget();
   sm->handleVerify();
   Lines const operations = operationsOf( twoUnits );
   for ( char const * const expected :
         { "bcm_field_qualify_PacketRes_get 1 1", "bcm_field_qualify_PacketRes_get 1 2",
           "bcm_field_qualify_SrcVxlanGport_get 1 3" } ) {
      EXPECT_EQ( std::count( operations.begin(), operations.end(), std::string( expected ) ), 1 )
         << expected;
   }
}

TEST_P( Verification, OfAPortChannelOnTwoUnitsEachUnitCountsItsOwnMembers ) {
   LocalBiasSwitch twoUnits( 2 );
   twoUnits.interfaceIs( "Ethernet1", 0, 5 );
   twoUnits.interfaceIs( "Ethernet2", 0, 6 );
   twoUnits.interfaceIs( "Ethernet3", 1, 5 );
   for ( char const * const member : { "Ethernet1", "Ethernet2", "Ethernet3" } ) {
      twoUnits.memberIs( "Port-Channel1", member );
   }
   twoUnits.segmentIs( "Port-Channel1", { "10.0.0.2" } );
   twoUnits.vtepIs( "10.0.0.2", 2 );
   start( twoUnits, { "10.0.0.2" } );
   sm->handleVerify();
   EXPECT_EQ( sm->getSharedESPortInfo( 0, ip( "10.0.0.2" ) ).sharedPortList().ports(), 2U );
   EXPECT_EQ( sm->getSharedESPortInfo( 1, ip( "10.0.0.2" ) ).sharedPortList().ports(), 1U );
}

TEST_P( EgressMaskVerification, AUnitWithoutARecordPassesTheSanityCheckWithFalse ) {
   start( leaf, {} );
   EXPECT_FALSE( sm->tcamSanityCheckForTepIp( 0, ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.traces, ( Lines{ "5 tcamSanityCheckForTepIp unit: 0 tepIp: 10.0.0.2" } ) );
}

TEST_P( EgressMaskVerification, ARecordWithoutTheVtepPassesTheSanityCheckWithTrue ) {
   start( leaf, {} );
   sm->tepIpToEntryIs( U16{ 0 } );
   EXPECT_TRUE( sm->tcamSanityCheckForTepIp( 0, ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.tracesOf( "4 " ),
              ( Lines{ "4 tcamSanityCheckForTepIp ifpTcamsUsed:0 esPbmpUsed:0" } ) );
}

// --- What is not looked at

TEST_P( Verification, TheMaskOfThePacketResolutionIsNotCompared ) {
   shareEthernet1( leaf, { "10.0.0.2" } );
   start( leaf, { "10.0.0.2" } );
   for ( U32 const entry : { sm->l2UcastRuleInstalled( 0 ), sm->l3UcastRuleInstalled( 0 ) } ) {
      U32 const resolution = entry == sm->l2UcastRuleInstalled( 0 ) ? 4 : 10;
      ASSERT_EQ( Shim::sdk_->bcm_field_qualify_PacketRes( 0, entry, resolution, 0x0f ), 0 );
      ASSERT_EQ( sm->tcamManager()->installEntry( 0, entry ), 0 );
   }
   sm->handleVerify();
}

TEST_P( Verification, ThePerVniRulesAreNotVerified ) {
   RoutedSwitch routed;
   shareEthernet1( routed, { "10.0.0.2" } );
   routed.tunnelIs();
   start( routed, { "10.0.0.2" } );
   routed.vniIs( "red", 50001 );
   sm->tcamManager()->releaseEntry( 0, sm->vniToTcamEntryId( 50001 ) );
   sm->handleVerify();
   EXPECT_TRUE( routed.vnisOnChip().empty() );
   EXPECT_TRUE( sm->vniToTcamEntryIdHas( 50001 ) );
}

// --- After changes

TEST_P( Verification, HoldsAfterWhatOrdinaryChangesDo ) {
   leaf.interfaceIs( "Ethernet1", 0, 5 );
   leaf.interfaceIs( "Ethernet2", 0, 6 );
   leaf.interfaceIs( "Ethernet3", 0, 7 );
   leaf.memberIs( "Port-Channel1", "Ethernet2" );
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.vtepIs( "10.0.0.2", 2 );
   start( leaf, { "10.0.0.2" } );
   auto const holdsAfter = [ & ]( std::string const & what ) {
      SCOPED_TRACE( what );
      leaf.forget();
      sm->handleVerify();
      EXPECT_FALSE( leaf.calls.empty() );
   };
   holdsAfter( "the start" );
   leaf.segmentIs( "Port-Channel1", { "10.0.0.2" } );
   holdsAfter( "a port channel that is shared as well" );
   leaf.memberIs( "Port-Channel1", "Ethernet3" );
   holdsAfter( "a member that joins it" );
   leaf.interfaceDel( "Ethernet2" );
   holdsAfter( "a member that loses its port" );
   leaf.memberDel( "Ethernet2" );
   holdsAfter( "and leaves" );
   leaf.interfaceIs( "Ethernet1", 0, 9 );
   holdsAfter( "an interface that changes its port" );
   leaf.interfaceDel( "Ethernet1" );
   holdsAfter( "loses it" );
   leaf.interfaceIs( "Ethernet1", 0, 9 );
   holdsAfter( "and has it again" );
   leaf.segmentDel( "Port-Channel1" );
   holdsAfter( "a port channel that is shared no more" );
   leaf.vtepIs( "10.0.0.2", 17 );
   if ( GetParam() == Variant::EgressMask ) {  // the other variant waits for a new class id now
      holdsAfter( "another virtual port" );
   }
}

}  // namespace
