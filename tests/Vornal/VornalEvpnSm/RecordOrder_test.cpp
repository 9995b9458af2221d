// When something is written down: records and hardware in one list. Who reads a record between two
// calls to the chip, a retry or a support engineer with a core file, finds in it what the chip
// already holds and nothing else.

#include <gtest/gtest.h>

#include "../support/ClassIdLeaf.h"
#include "../support/Ledger.h"
#include "../support/RoutedSwitch.h"

namespace {

using Support::ClassIdLeaf;
using Support::ingressRequest;
using Support::kEgress;
using Support::kIngress;
using Support::Ledger;
using Support::Lines;
using Support::LocalBiasSwitch;
using Support::Machine;
using Support::RoutedSwitch;
using Support::Variant;

// --- The egress-mask variant

// leaf1 shares Ethernet1, on port 5, with 10.0.0.2, which has no virtual port yet.
class MaskRecordOrder : public testing::Test {
 protected:
   MaskRecordOrder() {
      leaf.interfaceIs( "Ethernet1", 0, 5 );
      leaf.interfaceIs( "Ethernet2", 0, 6 );
      leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
      ledger.lines();
   }

   LocalBiasSwitch leaf;
   Machine const sm = leaf.machineNew( Variant::EgressMask );
   Ledger ledger{ leaf, sm };
};

std::string const vtepRequest = ingressRequest( Support::vtepRuleName( "10.0.0.2" ) );

Lines const exemptionsAndRecord{
   "unit 0 entry 1: " + ingressRequest( Support::l2RuleName() ),
   "unit 0 entry 1: bcm_field_qualify_PacketRes( data 4, mask 0xff )",
   "unit 0 entry 1: bcm_field_qualify_TunnelTerminated( data 1, mask 0x1 )",
   "unit 0 entry 1: installEntry( group 157 )",
   "sm: l2UcastRuleInstalled[0] = 1",
   "unit 0 entry 2: " + ingressRequest( Support::l3RuleName() ),
   "unit 0 entry 2: bcm_field_qualify_PacketRes( data 10, mask 0xff )",
   "unit 0 entry 2: bcm_field_qualify_TunnelTerminated( data 1, mask 0x1 )",
   "unit 0 entry 2: installEntry( group 157 )",
   "sm: l3UcastRuleInstalled[0] = 2",
   "sm: tepIpToEntry[0] = Vornal::TepIpToEntry 0",
};

Lines maskedEntry( std::string const & entry, std::string const & vpIndex ) {
   return {
      "unit 0 entry " + entry + ": " + vtepRequest,
      "unit 0 entry " + entry + ": bcm_field_qualify_SrcVxlanGport( gport 0x5600000" + vpIndex +
         " )",
      "unit 0: entryId[10.0.0.2] = " + entry,
      "unit 0 entry " + entry + ": setPriorityForEntry( group 157, priority 1 )",
      "unit 0 entry " + entry + ": addEgressMaskAction( group 157, ports {5} )",
      "unit 0: esPbmp[10.0.0.2] = {5}",
      "unit 0 entry " + entry + ": installEntry( group 157 )",
      "unit 0: vpIndex[10.0.0.2] = " + vpIndex,
   };
}

Lines releasedEntry( std::string const & entry ) {
   return {
      "unit 0 entry " + entry + ": releaseEntry( group 157 )",
      "unit 0: entryId[10.0.0.2] gone",
      "unit 0: esPbmp[10.0.0.2] gone",
   };
}

Lines const lastVtepGone{
   "unit 0: vpIndex[10.0.0.2] gone",
   "sm: tepIpToEntry[0] gone",
   "unit 0 entry 1: releaseEntry( group 157 )",
   "sm: l2UcastRuleInstalled[0] gone",
   "unit 0 entry 2: releaseEntry( group 157 )",
   "sm: l3UcastRuleInstalled[0] gone",
};

using Support::operator+;

TEST_F( MaskRecordOrder, AVirtualPortBringsExemptionsRecordEntryAndLastItsIndex ) {
   leaf.vtepIs( "10.0.0.2", 2 );
   EXPECT_EQ( ledger.lines(), exemptionsAndRecord + maskedEntry( "3", "2" ) );
}

TEST_F( MaskRecordOrder, ASegmentBringsThemInTheSameOrder ) {
   leaf.segmentDel( "Ethernet1" );
   leaf.vtepIs( "10.0.0.2", 2 );
   EXPECT_EQ( ledger.lines(), Lines{ "sm: isEvpn = false" } );
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   EXPECT_EQ( ledger.lines(),
              Lines{ "sm: isEvpn = true" } + exemptionsAndRecord + maskedEntry( "3", "2" ) );
}

TEST_F( MaskRecordOrder, ANewVpIndexIsWrittenDownOnceItsEntryIsIn ) {
   leaf.vtepIs( "10.0.0.2", 2 );
   ledger.lines();
   leaf.vtepIs( "10.0.0.2", 9 );
   EXPECT_EQ( ledger.lines(), releasedEntry( "3" ) + maskedEntry( "4", "9" ) );
}

TEST_F( MaskRecordOrder, AWithdrawnVirtualPortIsForgottenAfterItsEntry ) {
   leaf.vtepIs( "10.0.0.2", 2 );
   ledger.lines();
   leaf.vtepDel( "10.0.0.2" );
   EXPECT_EQ( ledger.lines(), releasedEntry( "3" ) + lastVtepGone );
}

TEST_F( MaskRecordOrder, ASegmentThatGoesEmptiesTheMaskFirst ) {
   leaf.vtepIs( "10.0.0.2", 2 );
   ledger.lines();
   leaf.segmentDel( "Ethernet1" );
   EXPECT_EQ( ledger.lines(),
              ( Lines{
                   "unit 0 entry 3: updateEgressMaskAction( group 157, ports {} )",
                   "unit 0 entry 3: reinstallEntry( group 157 )",
                   "unit 0: esPbmp[10.0.0.2] = {}",
                } +
                releasedEntry( "3" ) + lastVtepGone + Lines{ "sm: isEvpn = false" } ) );
}

TEST_F( MaskRecordOrder, AChangedMaskIsWrittenDownOnceTheChipHasIt ) {
   leaf.vtepIs( "10.0.0.2", 2 );
   ledger.lines();
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   EXPECT_EQ( ledger.lines(), ( Lines{
                                 "unit 0 entry 3: updateEgressMaskAction( group 157, ports {5-6} )",
                                 "unit 0 entry 3: reinstallEntry( group 157 )",
                                 "unit 0: esPbmp[10.0.0.2] = {5-6}",
                              } ) );
}

// The unit's need of its TCAM is asked for when the VTEP is forgotten already.
TEST_F( MaskRecordOrder, WhoIsForgottenDoesNotCountAnyMore ) {
   leaf.vtepIs( "10.0.0.2", 2 );
   auto const record = sm->tepIpToEntry( 0U );
   bool wasAskedForBefore = true;
   Kiv::Watch< Vornal::TepIpToEntry > watch( record, [ & ]( Kiv::Change const & change ) {
      if ( change.attribute() == Vornal::TepIpToEntry::vpIndexAttr() ) {
         wasAskedForBefore = leaf.hasTraced( "5 unitUsesOrNeedsTcams unit: 0" );
      }
   } );
   watch.hasNotificationActiveIs( true );
   leaf.forget();
   leaf.vtepDel( "10.0.0.2" );
   EXPECT_FALSE( wasAskedForBefore );
   EXPECT_TRUE( leaf.hasTraced( "5 unitUsesOrNeedsTcams unit: 0" ) );
}

TEST_F( MaskRecordOrder, ExhaustionIsLoggedAndThenRemembered ) {
   leaf.board.entryManager( kIngress )->foreignEntriesIs( 0, 62 );
   leaf.vtepIs( "10.0.0.2", 2 );
   EXPECT_EQ( ledger.lines(),
              ( exemptionsAndRecord + Lines{
                                         "unit 0 entry 0: " + vtepRequest,
                                         "log %VORNAL-3-MULTIHOMING_TCAM_RESOURCE_FULL",
                                         "sm: tcamExhaustion = true",
                                         "unit 0: vpIndex[10.0.0.2] = 2",
                                      } ) );
}

// --- The class-id variant

// leaf1 shares Ethernet1, on port 1, with 10.0.0.2, which waits for its class id.
class ClassIdRecordOrder : public testing::Test {
 protected:
   ClassIdRecordOrder() {
      leaf.interfaceIs( "Ethernet1", 0, 1 );
      leaf.share( "Ethernet1", { "10.0.0.2" } );
      leaf.start();
   }

   ClassIdLeaf leaf;
};

std::string const listOfVtep = "unit 0/esPortAndEFPEntryIdList[10.0.0.2]: ";

TEST_F( ClassIdRecordOrder, AGrantIsCountedBeforeItIsStampedAndAPortIsListedOnceItsEntryIsIn ) {
   Ledger ledger( leaf, Machine( &leaf.sm() ) );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_EQ(
      ledger.lines(),
      ( Lines{
           "sm: i2eTepIpClassId[10.0.0.2] = 5",
           "unit 0 entry 3: " + vtepRequest,
           "unit 0 entry 3: bcm_field_qualify_SrcVxlanGport( gport 0x56000002 )",
           "unit 0: entryId[10.0.0.2] = 3",
           "unit 0 entry 3: setPriorityForEntry( group 157, priority 1 )",
           "sm: i2eTepIpClassIdRefCount[10.0.0.2] = 1",
           "unit 0 entry 3: bcm_field_action_add( action EgressClassSelect, param0 1, param1 0 )",
           "unit 0 entry 3: bcm_field_action_add( action NewClassId, param0 5, param1 0 )",
           "unit 0 entry 3: installEntry( group 157 )",
           "unit 0: esPortAndEFPEntryIdList[10.0.0.2] = Vornal::ESPortAndEFPEntryIdList 10.0.0.2",
        } +
        Support::egressRule( 0, 4, "10.0.0.2", "Ethernet1", 1, 5 ) +
        Lines{
           listOfVtep + "esPortList = {unit0/port1/mod40}",
           listOfVtep + "efpEntryId[unit0/port1/mod40] = 4",
        } ) );
}

TEST_F( ClassIdRecordOrder, WhatIsReleasedIsForgottenAfterwards ) {
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.forget();
   Ledger ledger( leaf, Machine( &leaf.sm() ) );
   leaf.vtepDel( "10.0.0.2" );
   EXPECT_EQ( ledger.lines(), ( Lines{
                                   "unit 0 entry 3: releaseEntry( group 157 )",
                                   "unit 0: entryId[10.0.0.2] gone",
                                   "sm: i2eTepIpClassIdRefCount[10.0.0.2] = 0",
                                   "unit 0 entry 4: releaseEntry( group 45 )",
                                   listOfVtep + "efpEntryId[unit0/port1/mod40] gone",
                                   "unit 0: esPortAndEFPEntryIdList[10.0.0.2] gone",
                                   "sm: i2eTepIpClassId[10.0.0.2] gone",
                                   "sm: i2eTepIpClassIdRefCount[10.0.0.2] gone",
                                } +
                                lastVtepGone ) );
}

TEST_F( ClassIdRecordOrder, ExhaustionAndRecoveryAreLoggedAndThenRemembered ) {
   Ledger ledger( leaf, Machine( &leaf.sm() ) );
   leaf.roomIs( kEgress, 0, 0 );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.share( "Ethernet9", { "10.0.0.2", "10.0.0.3" } );
   leaf.classIdIs( "10.0.0.3", 6 );
   Lines found = ledger.lines();
   found.erase( std::remove_if( found.begin(), found.end(),
                                []( std::string const & line ) {
                                   return !line.starts_with( "log" ) &&
                                          !line.starts_with( "sm: tcam" );
                                } ),
                found.end() );
   EXPECT_EQ( found, ( Lines{
                        "log %VORNAL-3-MULTIHOMING_TCAM_RESOURCE_FULL",
                        "sm: tcamExhaustion = true",
                        "log %VORNAL-5-MULTIHOMING_TCAM_RESOURCE_RECOVERED",
                        "sm: tcamExhaustion = false",
                     } ) );
}

// --- Per-VNI rules

class VniRecordOrder : public testing::Test {
 protected:
   VniRecordOrder() { leaf.tunnelIs(); }

   RoutedSwitch leaf;
   Machine const sm = leaf.machineNew( Variant::EgressMask );
   Ledger ledger{ leaf, sm };
};

Lines const vniReleased{
   "unit 0 entry 1: releaseEntry( group 157 )",
   "sm: vniToTcamEntryId[50001] gone",
};

TEST_F( VniRecordOrder, AnEntryIsWrittenDownOnceItIsInAndForgottenOnceItIsOut ) {
   leaf.vniIs( "red", 50001 );
   EXPECT_EQ( ledger.lines(),
              ( Lines{
                 "unit 0 entry 1: " + ingressRequest( Support::vniRuleName( 50001 ) ),
                 "unit 0 entry 1: bcm_field_qualify_VxlanNetworkId( data 50001, mask 0xffffffff )",
                 "unit 0 entry 1: bcm_field_qualify_PacketRes( data 12, mask 0xffffffff )",
                 "unit 0 entry 1: setPriorityForEntry( group 157, priority 2 )",
                 "unit 0 entry 1: installEntry( group 157 )",
                 "sm: vniToTcamEntryId[50001] = 1",
              } ) );
   leaf.vniDel( "red" );
   EXPECT_EQ( ledger.lines(), vniReleased );
}

TEST_F( VniRecordOrder, TheTunnelInterfaceThatGoesKeepsThatOrder ) {
   leaf.vniIs( "red", 50001 );
   ledger.lines();
   leaf.tunnelDel();
   EXPECT_EQ( ledger.lines(), vniReleased );
}

TEST_F( VniRecordOrder, TheLastSegmentIsWrittenDownBeforeItsRulesGo ) {
   leaf.vniIs( "red", 50001 );
   ledger.lines();
   leaf.segmentDel( "Ethernet1" );
   EXPECT_EQ( ledger.lines(), Lines{ "sm: isEvpn = false" } + vniReleased );
}

}  // namespace
