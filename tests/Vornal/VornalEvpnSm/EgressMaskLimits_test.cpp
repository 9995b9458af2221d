// The known limits of the egress-mask variant: what other agents may well publish, and after which
// the process stops or a mask is not what it should be.

#include <gtest/gtest.h>

#include <csignal>
#include <functional>

#include "../support/LocalBiasSwitch.h"
#include "../support/Stops.h"

namespace EgressMaskLimitsTest {

using Support::intf;
using Support::ip;
using Support::LocalBiasSwitch;
using Support::Machine;
using Support::Variant;

std::string stopOf( std::string const & file, std::string const & operation,
                    std::string const & expression ) {
   return "^" + Support::assertionLine( file, operation, expression ) + "$";
}

std::string const noMask =
   stopOf( "EgressMaskProgramming.cpp:", "ifpTcamEntries", "unitTepIpToEntry->esPbmpHas( tepIp )" );
std::string const noRecord = Support::stopsAtEmptyReferenceTo( "TepIpToEntry" );
std::string const rangeError = "^exception left a change handler: " +
                               Support::literally(
                                  "Brum::PerUnitBitmapWordIndex::value < 0 or > "
                                  "Brum::PerUnitBitmapWordIndex::max not allowed" ) +
                               "\n$";

// leaf1, on which 10.0.0.2 shares Ethernet1 and 10.0.0.3 shares Ethernet2.
class EgressMaskLimit : public testing::Test {
 protected:
   explicit EgressMaskLimit( U16 units = 1, U32 capacity = 64 ) : leaf( units, capacity ) {
      leaf.interfaceIs( "Ethernet1", 0, 1 );
      leaf.interfaceIs( "Ethernet2", 0, 2 );
      leaf.vtepIs( "10.0.0.2", 2 );
      leaf.vtepIs( "10.0.0.3", 3 );
   }
   void expectStop( std::function< void() > const & event, std::string const & words ) {
      EXPECT_EXIT( event(), testing::KilledBySignal( SIGABRT ), words );
   }
   std::string mask( U32 unit ) const {
      return Quelm::textOf( sm->tepIpToEntry( unit )->esPbmp( ip( "10.0.0.2" ) ) );
   }

   LocalBiasSwitch leaf;
   Machine const sm = leaf.machineNew( Variant::EgressMask );
};
using EgressMaskLimitDeathTest = EgressMaskLimit;

// --- A VTEP for which there was no room

// Room for the exemptions and one VTEP: 10.0.0.2 has it, 10.0.0.3 has not.
struct AfterAFailedAddDeathTest : EgressMaskLimit {
   AfterAFailedAddDeathTest() : EgressMaskLimit( 1, 4 ) {
      leaf.board.entryManager( Vornal::kIfpLocalBiasGroup )->foreignEntriesIs( 0, 1 );
      leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
      leaf.segmentIs( "Ethernet2", { "10.0.0.3" } );
   }
};

TEST_F( AfterAFailedAddDeathTest, ASegmentThatGoesStopsTheProcess ) {
   expectStop( [ & ] { leaf.segmentDel( "Ethernet2" ); }, noMask );
}

TEST_F( AfterAFailedAddDeathTest, AVtepThatLeavesItsSegmentStopsTheProcess ) {
   expectStop(
      [ & ] {
         leaf.evpnStatus->segmentStatus( intf( "Ethernet2" ) )->remoteTepDel( ip( "10.0.0.3" ) );
      },
      noMask );
}

TEST_F( AfterAFailedAddDeathTest, AWithdrawnVirtualPortStopsTheProcess ) {
   expectStop( [ & ] { leaf.vtepDel( "10.0.0.3" ); }, noMask );
}

TEST_F( AfterAFailedAddDeathTest, AChangedVirtualPortStopsTheProcessAlsoWhenThereIsRoomAgain ) {
   expectStop( [ & ] { leaf.vtepIs( "10.0.0.3", 9 ); }, noMask );
   leaf.board.entryManager( Vornal::kIfpLocalBiasGroup )->foreignEntriesIs( 0, 0 );
   expectStop( [ & ] { leaf.vtepIs( "10.0.0.3", 9 ); }, noMask );
}

TEST_F( AfterAFailedAddDeathTest, AnInterfaceThatJoinsOrLeavesIsSkipped ) {
   leaf.segmentIs( "Ethernet1", { "10.0.0.3" } );
   leaf.evpnStatus->segmentStatus( intf( "Ethernet1" ) )->remoteTepDel( ip( "10.0.0.3" ) );
   EXPECT_FALSE( sm->tepIpToEntry( 0U )->entryIdHas( ip( "10.0.0.3" ) ) );
}

// The last VTEP with rules takes the unit's record along, and with it what is known of the other.
struct AfterTheRecordHasGoneDeathTest : AfterAFailedAddDeathTest {
   AfterTheRecordHasGoneDeathTest() { leaf.segmentDel( "Ethernet1" ); }
};

TEST_F( AfterTheRecordHasGoneDeathTest, ASegmentThatGoesStopsTheProcess ) {
   ASSERT_FALSE( sm->tepIpToEntryHas( 0 ) );
   expectStop( [ & ] { leaf.segmentDel( "Ethernet2" ); }, noRecord );
}

TEST_F( AfterTheRecordHasGoneDeathTest, AWithdrawnVirtualPortStopsTheProcess ) {
   expectStop( [ & ] { leaf.vtepDel( "10.0.0.3" ); }, noRecord );
}

TEST_F( AfterTheRecordHasGoneDeathTest, AChangedVirtualPortGetsTheVtepItsRule ) {
   leaf.vtepIs( "10.0.0.3", 9 );
   EXPECT_TRUE( sm->tepIpToEntry( 0U )->esPbmpHas( ip( "10.0.0.3" ) ) );
}

struct RoomOnOneUnitDeathTest : EgressMaskLimit {
   RoomOnOneUnitDeathTest() : EgressMaskLimit( 2 ) {
      leaf.board.entryManager( Vornal::kIfpLocalBiasGroup )->foreignEntriesIs( 1, 64 );
      leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   }
};

TEST_F( RoomOnOneUnitDeathTest, TheUnitWithoutRoomStopsTheProcessWhenTheVtepGoes ) {
   ASSERT_TRUE( sm->tepIpToEntry( 0U )->entryIdHas( ip( "10.0.0.2" ) ) );
   ASSERT_FALSE( sm->tepIpToEntry( 1U )->entryIdHas( ip( "10.0.0.2" ) ) );
   expectStop( [ & ] { leaf.vtepDel( "10.0.0.2" ); }, noMask );
}

// --- A VTEP that is published under a second key as well, by its tunnel group

VornalCentral::RemoteVtepKey inGroupWest( std::string const & address ) {
   return { Vxlan::SwTunnelGroupId( "west" ), VornalCentral::RemoteVtepKey::kUsualVtiNumber,
            ip( address ) };
}

TEST_F( EgressMaskLimitDeathTest, TheSecondKeysEndTakesTheRulesAndTheSegmentsEndStopsTheProcess ) {
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.vpIndexStatus->remoteVportIs( inGroupWest( "10.0.0.2" ), 7 );
   EXPECT_EQ( sm->tepIpToEntry( 0U )->vpIndex( ip( "10.0.0.2" ) ), 7U );
   leaf.vpIndexStatus->remoteVportDel( inGroupWest( "10.0.0.2" ) );
   ASSERT_FALSE( sm->tepIpToEntryHas( 0 ) );
   expectStop( [ & ] { leaf.segmentDel( "Ethernet1" ); }, noRecord );
   expectStop( [ & ] { leaf.vtepDel( "10.0.0.2" ); }, noRecord );
   leaf.segmentIs( "Ethernet2", { "10.0.0.3" } );  // another VTEP brings the record back
   expectStop( [ & ] { leaf.segmentDel( "Ethernet1" ); }, noMask );
}

TEST_F( EgressMaskLimitDeathTest, RulesOfASecondKeyAloneOutliveTheSegmentAndTheNextAddStops ) {
   leaf.vtepDel( "10.0.0.2" );
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.vpIndexStatus->remoteVportIs( inGroupWest( "10.0.0.2" ), 7 );
   leaf.segmentDel( "Ethernet1" );
   ASSERT_TRUE( sm->tepIpToEntry( 0U )->entryIdHas( ip( "10.0.0.2" ) ) );
   leaf.vtepIs( "10.0.0.2", 2 );
   expectStop( [ & ] { leaf.segmentIs( "Ethernet1", { "10.0.0.2" } ); },
               stopOf( "IngressRules.cpp:", "addTcamEntries",
                       "!unitTepIpToEntry->entryIdHas( tepIp )" ) );
}

// --- A segment interface whose port is not valid

struct InvalidPortDeathTest : EgressMaskLimit {
   InvalidPortDeathTest() {
      leaf.interfaceIs( "Ethernet3", 0, 1023 );
      leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   }
};

TEST_F( InvalidPortDeathTest, AnInterfaceThatJoinsStopsTheProcess ) {
   expectStop( [ & ] { leaf.segmentIs( "Ethernet3", { "10.0.0.2" } ); }, rangeError );
}

TEST_F( InvalidPortDeathTest, AnInterfaceThatGetsSuchAPortStopsTheProcess ) {
   expectStop( [ & ] { leaf.interfaceIs( "Ethernet1", 0, 1023 ); }, rangeError );
}

TEST_F( InvalidPortDeathTest, ALagMemberThatJoinsStopsTheProcess ) {
   leaf.memberIs( "Port-Channel2", "Ethernet2" );
   leaf.segmentIs( "Port-Channel2", { "10.0.0.2" } );
   expectStop( [ & ] { leaf.memberIs( "Port-Channel2", "Ethernet3" ); }, rangeError );
}

TEST_F( InvalidPortDeathTest, APortChannelThatJoinsWithSuchAMemberStopsTheProcess ) {
   leaf.memberIs( "Port-Channel2", "Ethernet3" );
   expectStop( [ & ] { leaf.segmentIs( "Port-Channel2", { "10.0.0.2" } ); }, rangeError );
}

// It is left out when the VTEP's entry is made, and stops the process when it is to be taken out.
TEST_F( InvalidPortDeathTest, WhatTheEntryLeftOutStopsTheProcessWhenItChanges ) {
   leaf.segmentIs( "Ethernet3", { "10.0.0.3" } );
   leaf.segmentIs( "Ethernet2", { "10.0.0.3" } );
   expectStop( [ & ] { leaf.segmentDel( "Ethernet3" ); }, rangeError );
   expectStop( [ & ] { leaf.interfaceDel( "Ethernet3" ); }, rangeError );
   expectStop( [ & ] { leaf.interfaceIs( "Ethernet3", 0, 3 ); }, rangeError );
}

TEST_F( InvalidPortDeathTest, APortBeyondTheBitmapStopsTheProcessAlsoWhenTheEntryIsMade ) {
   leaf.interfaceIs( "Ethernet4", 0, 352 );
   expectStop( [ & ] { leaf.segmentIs( "Ethernet4", { "10.0.0.3" } ); }, rangeError );
}

// --- A port that was given to another interface: the cached map still has it under the old one

struct PortGivenOnDeathTest : EgressMaskLimit {
   PortGivenOnDeathTest() {
      leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
      leaf.memberIs( "Port-Channel2", "Ethernet3" );
      leaf.segmentIs( "Port-Channel2", { "10.0.0.2" } );
      leaf.interfaceDel( "Ethernet2" );
      leaf.interfaceIs( "Ethernet1", 0, 2 );
   }
   void expectUnmasked() {
      EXPECT_EQ( mask( 0 ), "{}" );
      expectStop( [ & ] { sm->handleVerify(); },
                  stopOf( "EgressMaskVerification.cpp:", "verifyIfpEntries",
                          "tepIpToEntry( unit )->esPbmp( tepIp ) == ubmp" ) );
   }
};

TEST_F( PortGivenOnDeathTest, IsUnmaskedWhenItsOldInterfaceJoinsAPortChannel ) {
   EXPECT_EQ( mask( 0 ), "{2}" );
   leaf.memberIs( "Port-Channel2", "Ethernet2" );
   expectUnmasked();
}

// --- A switch of two units: updates do not look at a physical interface's unit

struct OnTwoUnitsDeathTest : EgressMaskLimit {
   OnTwoUnitsDeathTest() : EgressMaskLimit( 2 ) { leaf.segmentIs( "Ethernet1", { "10.0.0.2" } ); }
   std::string const wrongMask = stopOf( "EgressMaskVerification.cpp:", "verifyIfpEntries",
                                         "tepIpToEntry( unit )->esPbmp( tepIp ) == ubmp" );
};

TEST_F( OnTwoUnitsDeathTest, APhysicalInterfaceThatJoinsIsMaskedOnEveryUnit ) {
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   EXPECT_EQ( mask( 0 ), "{1-2}" );
   EXPECT_EQ( mask( 1 ), "{2}" );
   expectStop( [ & ] { sm->verifyIfpEntries( 1, ip( "10.0.0.2" ) ); }, wrongMask );
}

TEST_F( OnTwoUnitsDeathTest, APhysicalInterfaceThatLeavesUnmasksAnotherPortOfTheSameNumber ) {
   leaf.interfaceIs( "Ethernet11", 1, 1 );
   leaf.memberIs( "Port-Channel2", "Ethernet11" );
   leaf.segmentIs( "Port-Channel2", { "10.0.0.2" } );
   EXPECT_EQ( mask( 1 ), "{1}" );
   leaf.segmentDel( "Ethernet1" );
   EXPECT_EQ( mask( 1 ), "{}" );
   expectStop( [ & ] { sm->verifyIfpEntries( 1, ip( "10.0.0.2" ) ); }, wrongMask );
}

TEST_F( OnTwoUnitsDeathTest, AnInterfaceThatMovesToAnotherUnitIsMaskedOnTheOldOne ) {
   leaf.interfaceIs( "Ethernet1", 1, 9 );
   EXPECT_EQ( mask( 0 ), "{9}" );
   EXPECT_EQ( mask( 1 ), "{}" );
   expectStop( [ & ] { sm->verifyIfpEntries( 0, ip( "10.0.0.2" ) ); }, wrongMask );
}

TEST_F( OnTwoUnitsDeathTest, ALagMemberThatJoinsIsMaskedOnEveryUnit ) {
   leaf.memberIs( "Port-Channel2", "Ethernet3" );
   leaf.segmentIs( "Port-Channel2", { "10.0.0.2" } );
   leaf.memberIs( "Port-Channel2", "Ethernet2" );
   EXPECT_EQ( mask( 1 ), "{2}" );
   expectStop( [ & ] { sm->verifyIfpEntries( 1, ip( "10.0.0.2" ) ); }, wrongMask );
}

}  // namespace EgressMaskLimitsTest
