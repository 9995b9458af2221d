// States in which the verification pass stops the process although nobody has done anything
// wrong, and states that it never looks at.

#include <gtest/gtest.h>

#include "../support/RoutedSwitch.h"

namespace {

using namespace Support;

std::string const maskVerification = "EvpnMultihomingLocalBiasWithEgressMaskSm::verifyIfpEntries";
std::string const maskDiffers =
   stopsAt( maskVerification, "tepIpToEntry( unit )->esPbmp( tepIp ) == ubmp" );
std::string const countDiffers = stopsAt( maskVerification, "portCount == expPortCount" );
std::string const sharedVerification = "EvpnMultihomingLocalBiasSm::verifyIfpEntries";

class EgressMaskLimitsDeathTest : public testing::Test {
 protected:
   explicit EgressMaskLimitsDeathTest( U16 units = 1 ) : leaf( units ) {}

   // Ethernet1, on port 5 of unit 0, shared with 10.0.0.2, which has a virtual port.
   void shareEthernet1() {
      leaf.shareEthernet1();
      leaf.vtepIs( "10.0.0.2", 2 );
   }
   // Port-Channel1, with Ethernet1 as its member, shared instead.
   void sharePortChannel1() {
      leaf.interfaceIs( "Ethernet1", 0, 5 );
      leaf.memberIs( "Port-Channel1", "Ethernet1" );
      leaf.segmentIs( "Port-Channel1", { "10.0.0.2" } );
      leaf.vtepIs( "10.0.0.2", 2 );
   }
   // The machine, which agrees with all that so far.
   void start() {
      sm = leaf.machineNew( Variant::EgressMask );
      sm->handleVerify();
   }
   bool isMasked( U32 unit, U16 logicalPort ) const {
      return sm->tepIpToEntry( unit )->esPbmp( ip( "10.0.0.2" ) ).bit( logicalPort );
   }

   LocalBiasSwitch leaf;
   Machine sm;
};

class TwoUnitLimitsDeathTest : public EgressMaskLimitsDeathTest {
 protected:
   TwoUnitLimitsDeathTest() : EgressMaskLimitsDeathTest( 2 ) {}
};

// --- VTEPs without a virtual port

TEST_F( EgressMaskLimitsDeathTest, AVtepWithoutVirtualPortBesideOneThatHasIt ) {
   shareEthernet1();
   start();
   leaf.segmentIs( "Ethernet1", { "10.0.0.3" } );
   EXPECT_DEATH( sm->handleVerify(), maskDiffers );
}

TEST_F( EgressMaskLimitsDeathTest, AVtepWhoseVirtualPortIsWithdrawnBesideOneThatKeepsIt ) {
   shareEthernet1();
   start();
   leaf.segmentIs( "Ethernet1", { "10.0.0.3" } );
   leaf.vtepIs( "10.0.0.3", 3 );
   sm->handleVerify();
   leaf.vtepDel( "10.0.0.3" );
   EXPECT_DEATH( sm->handleVerify(), maskDiffers );
}

TEST_F( EgressMaskLimitsDeathTest, AVtepWithoutVirtualPortThatSharesNoLivePort ) {
   shareEthernet1();
   start();
   leaf.segmentIs( "Ethernet2", { "10.0.0.3" } );
   EXPECT_DEATH( sm->handleVerify(),
                 stopsAt( maskVerification,
                          "!pbmpRes->rc() && \"getEgressMaskActionPbmp fails\"" ) );
}

TEST_F( EgressMaskLimitsDeathTest, AVtepWithoutVirtualPortWhenOnlyAVtepThatSharesNothingHasOne ) {
   leaf.shareEthernet1();
   start();
   leaf.vtepIs( "10.0.0.9", 9 );
   EXPECT_DEATH( sm->handleVerify(), stopsAtEmptyReferenceTo( "TepIpToEntry" ) );
}

// --- A port channel with a live port of its own

// It counts one, as any interface with a live port, and its members are masked.
TEST_F( EgressMaskLimitsDeathTest, APortChannelWithALivePortCountsOneHoweverManyMembersItHas ) {
   sharePortChannel1();
   leaf.interfaceIs( "Port-Channel1", 0, 9 );
   start();
   leaf.interfaceIs( "Ethernet2", 0, 6 );
   leaf.memberIs( "Port-Channel1", "Ethernet2" );
   EXPECT_DEATH( sm->handleVerify(), countDiffers );
}

TEST_F( EgressMaskLimitsDeathTest, APortChannelWithALivePortCountsOneEvenWithoutMembers ) {
   leaf.interfaceIs( "Port-Channel1", 0, 9 );
   leaf.segmentIs( "Port-Channel1", { "10.0.0.2" } );
   leaf.vtepIs( "10.0.0.2", 2 );
   sm = leaf.machineNew( Variant::EgressMask );
   EXPECT_DEATH( sm->handleVerify(), countDiffers );
}

// What is no port channel has no members, whatever the mapping says of it.
TEST_F( EgressMaskLimitsDeathTest, AnInterfaceThatIsNoPortChannelCountsNothingWithoutALivePort ) {
   shareEthernet1();
   leaf.segmentIs( "Ethernet7", { "10.0.0.2" } );
   start();
   auto const misnamed = Quelm::make< Lag::LagPhyIntfConfig >( intf( "Ethernet7" ) );
   misnamed->phyIntfIs( intf( "Ethernet1" ) );
   leaf.lagMapping->lagPhyIntfConfigIs( misnamed );
   sm->handleVerify();
}

// --- Several units

TEST_F( TwoUnitLimitsDeathTest, APhysicalSegmentInterface ) {
   shareEthernet1();
   sm = leaf.machineNew( Variant::EgressMask );
   EXPECT_DEATH( sm->handleVerify(), countDiffers );
}

TEST_F( TwoUnitLimitsDeathTest, AnInterfaceThatIsSharedLaterIsMaskedOnEveryUnit ) {
   sharePortChannel1();
   start();
   leaf.interfaceIs( "Ethernet2", 1, 6 );
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   EXPECT_TRUE( isMasked( 0, 6 ) );
   EXPECT_DEATH( sm->handleVerify(), maskDiffers );
}

TEST_F( TwoUnitLimitsDeathTest, AMemberThatJoinsAPortChannelIsMaskedOnEveryUnit ) {
   sharePortChannel1();
   leaf.interfaceIs( "Ethernet2", 1, 6 );
   start();
   leaf.memberIs( "Port-Channel1", "Ethernet2" );
   EXPECT_TRUE( isMasked( 0, 6 ) );
   EXPECT_DEATH( sm->handleVerify(), maskDiffers );
}

TEST_F( TwoUnitLimitsDeathTest, AMemberThatLeavesUnmasksTheOtherUnitsPortOfItsNumber ) {
   sharePortChannel1();
   leaf.interfaceIs( "Ethernet2", 1, 5 );
   leaf.memberIs( "Port-Channel1", "Ethernet2" );
   start();
   leaf.memberDel( "Ethernet2" );
   EXPECT_FALSE( isMasked( 0, 5 ) );
   EXPECT_DEATH( sm->handleVerify(), maskDiffers );
}

TEST_F( TwoUnitLimitsDeathTest, AMemberThatMovesToTheOtherUnitIsMaskedOnTheOldOne ) {
   sharePortChannel1();
   start();
   leaf.interfaceIs( "Ethernet1", 1, 6 );
   EXPECT_TRUE( isMasked( 0, 6 ) );
   EXPECT_FALSE( isMasked( 1, 6 ) );
   EXPECT_DEATH( sm->handleVerify(), maskDiffers );
}

// --- Ports that are invalid, or somebody else's by now

TEST_F( EgressMaskLimitsDeathTest, ASegmentInterfaceWithAnInvalidPort ) {
   leaf.interfaceIs( "Ethernet2", 0, 1023 );
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   shareEthernet1();
   sm = leaf.machineNew( Variant::EgressMask );
   EXPECT_DEATH( sm->handleVerify(), countDiffers );
}

TEST_F( EgressMaskLimitsDeathTest, AMemberWithAnInvalidPort ) {
   leaf.interfaceIs( "Ethernet2", 0, 1023 );
   leaf.memberIs( "Port-Channel1", "Ethernet2" );
   leaf.segmentIs( "Port-Channel1", { "10.0.0.2" } );
   shareEthernet1();
   sm = leaf.machineNew( Variant::EgressMask );
   EXPECT_DEATH( sm->handleVerify(), countDiffers );
}

TEST_F( EgressMaskLimitsDeathTest, AnInterfaceThatReturnsOnAnotherPortUnmasksWhoHasItsOldOne ) {
   shareEthernet1();
   start();
   leaf.interfaceDel( "Ethernet1" );
   leaf.interfaceIs( "Ethernet2", 0, 5 );
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   sm->handleVerify();
   leaf.interfaceIs( "Ethernet1", 0, 9 );
   EXPECT_FALSE( isMasked( 0, 5 ) );
   EXPECT_DEATH( sm->handleVerify(), maskDiffers );
}

TEST_F( EgressMaskLimitsDeathTest, AMemberWithoutAPortThatLeavesUnmasksWhoHasItsOldOne ) {
   sharePortChannel1();
   start();
   leaf.interfaceDel( "Ethernet1" );
   leaf.interfaceIs( "Ethernet2", 0, 5 );
   leaf.memberIs( "Port-Channel1", "Ethernet2" );
   sm->handleVerify();
   leaf.memberDel( "Ethernet1" );
   EXPECT_FALSE( isMasked( 0, 5 ) );
   EXPECT_DEATH( sm->handleVerify(), maskDiffers );
}

TEST_F( EgressMaskLimitsDeathTest, TwoInterfacesThatExchangeTheirPorts ) {
   shareEthernet1();
   start();
   leaf.interfaceIs( "Ethernet2", 0, 6 );
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   sm->handleVerify();
   leaf.interfaceIs( "Ethernet1", 0, 6 );
   leaf.interfaceIs( "Ethernet2", 0, 5 );  // clears port 6, which is Ethernet1's by now
   EXPECT_DEATH( sm->handleVerify(), maskDiffers );
}

TEST_F( EgressMaskLimitsDeathTest, TwoInterfacesThatHaveTheSamePortForAMoment ) {
   shareEthernet1();
   leaf.interfaceIs( "Ethernet2", 0, 6 );
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   start();
   leaf.interfaceIs( "Ethernet1", 0, 6 );
   EXPECT_DEATH( sm->handleVerify(), countDiffers );
}

// --- A TCAM that has been full

class EgressMaskLimits : public testing::Test {
 protected:
   // The first VTEP has come while the TCAM was full, and another one afterwards.
   EgressMaskLimits() {
      leaf.interfaceIs( "Ethernet1", 0, 5 );
      leaf.vtepIs( "10.0.0.2", 2 );
      leaf.vtepIs( "10.0.0.3", 3 );
      leaf.roomIs( 0 );
      leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
      leaf.roomIs( 10 );
      leaf.wakeUps();
      leaf.segmentIs( "Ethernet1", { "10.0.0.3" } );
      leaf.forget();
   }

   RoutedSwitch leaf;
   Machine sm = leaf.machineNew( Variant::EgressMask );
};

TEST_F( EgressMaskLimits, OnceTheTcamHasBeenFullNothingIsVerifiedAnyMore ) {
   sm->handleVerify();
   EXPECT_EQ( leaf.traces, ( Lines{ "9 handleVerify",
                                    "2 handleVerify tcam is exhausted, skipping verification" } ) );
}

// Known unicast from the VTEP does not leave by the shared port either, and nobody finds out.
TEST_F( EgressMaskLimits, AVtepThatComesAfterwardsIsFilteredWithoutExemptions ) {
   EXPECT_TRUE( sm->unitUsesTcamsForTepIp( 0, ip( "10.0.0.3" ) ) );
   EXPECT_FALSE( sm->l2UcastRuleInstalledHas( 0 ) );
   EXPECT_FALSE( sm->l3UcastRuleInstalledHas( 0 ) );
}

TEST_F( EgressMaskLimits, TheVtepThatFoundNoRoomIsNotRetried ) {
   leaf.roomIs( 20 );
   leaf.wakeUps();
   EXPECT_FALSE( sm->unitUsesTcamsForTepIp( 0, ip( "10.0.0.2" ) ) );
}

// --- The part that both variants share, as the class-id variant meets it

class ClassIdLimitsDeathTest : public testing::Test {
 protected:
   ClassIdLimitsDeathTest() { leaf.shareEthernet1(); }

   RoutedSwitch leaf;
};

TEST_F( ClassIdLimitsDeathTest, AVtepThatWaitsForItsClassId ) {
   leaf.vtepIs( "10.0.0.2", 2 );
   auto const sm = leaf.machineNew( Variant::I2EClassId );
   EXPECT_DEATH( sm->handleVerify(),
                 stopsAt( sharedVerification, "unitUsesTcamsForTepIp( unit, tepIp )" ) );
   leaf.classIdIs( "10.0.0.2", 5 );
   sm->handleVerify();
}

// The exemptions found no room, the VTEP's entry did, a turn later: known unicast from the VTEP is
// dropped at the shared port.
TEST_F( ClassIdLimitsDeathTest, ExemptionsThatFoundNoRoomBeforeTheClassIdCame ) {
   auto const sm = leaf.machineNew( Variant::I2EClassId );
   leaf.roomIs( 0 );
   leaf.vtepIs( "10.0.0.2", 2 );
   leaf.roomIs( 10 );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_TRUE( leaf.logs.empty() );
   EXPECT_TRUE( sm->unitUsesTcamsForTepIp( 0, ip( "10.0.0.2" ) ) );
   EXPECT_DEATH( sm->handleVerify(),
                 stopsAt( sharedVerification, "l2UcastRuleInstalledHas( unit )" ) );
}

TEST_F( ClassIdLimitsDeathTest, OneOfTheExemptionsThatFoundNoRoomBeforeTheClassIdCame ) {
   auto const sm = leaf.machineNew( Variant::I2EClassId );
   leaf.roomIs( 1 );
   leaf.vtepIs( "10.0.0.2", 2 );
   leaf.roomIs( 10 );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_DEATH( sm->handleVerify(),
                 stopsAt( sharedVerification, "l3UcastRuleInstalledHas( unit )" ) );
}

TEST_F( ClassIdLimitsDeathTest, ExemptionsStillMissingAfterTheTcamHasRecovered ) {
   auto const sm = leaf.machineNew( Variant::I2EClassId );
   leaf.roomIs( 0 );
   leaf.vtepIs( "10.0.0.2", 2 );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_TRUE( sm->tcamExhaustion() );
   leaf.roomIs( 10 );
   leaf.classIdIs( "10.0.0.2", 6 );  // another grant programs the VTEP at last
   EXPECT_FALSE( sm->tcamExhaustion() );
   EXPECT_DEATH( sm->handleVerify(),
                 stopsAt( sharedVerification, "l2UcastRuleInstalledHas( unit )" ) );
}

}  // namespace
