// What the class-id variant is known not to cope with: published events, each of them legitimate,
// after which the process stops or frames are treated wrongly.

#include <gtest/gtest.h>

#include "../support/ClassIdLeaf.h"

namespace {

using namespace Support;
using VornalCommon::ClassId;

// A switch of one or two units with Ethernet1 and Ethernet2 on ports 1 and 2 of unit 0.
class Fabric : public ClassIdLeaf {
 public:
   explicit Fabric( U16 units = 1 ) : ClassIdLeaf( units ) {
      interfaceIs( "Ethernet1", 0, 1 );
      interfaceIs( "Ethernet2", 0, 2 );
   }

   // The class with which the unit stamps a flooded frame from that virtual port; 0 is none.
   U32 stamp( U32 unit, U16 vpIndex ) {
      Chip::Entry const * const entry =
         board.units()
            .group( unit, kIngress )
            ->lookup( Chip::IngressFields{ .srcVxlanGport = Shim::sdk_->vxlanGport( vpIndex ),
                                           .tunnelTerminated = true } );
      auto const action = entry ? ( *entry->written() )[ Chip::Action::NewClassId ] : std::nullopt;
      return action ? action->param0 : 0;
   }
   // Whether the unit keeps a frame of that class from leaving by its port.
   bool drops( U16 unit, U16 logicalPort, U32 classId ) {
      return board.units()
                .group( unit, kEgress )
                ->lookup( Chip::EgressFields{ .dstModId = modIdOf( unit ),
                                              .dstPort = logicalPort,
                                              .ingressClass = classId } ) != nullptr;
   }
};

class ClassIdLimits : public testing::Test {
 protected:
   ClassIdLimits() {
      leaf.vtepIs( "10.0.0.2", 2 );
      leaf.vtepIs( "10.0.0.3", 3 );
      leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   }
   // The other VTEP has rules, on Ethernet2, and keeps the unit's record.
   void otherVtepIsInUse() {
      leaf.segmentIs( "Ethernet2", { "10.0.0.3" } );
      leaf.start();
      leaf.classIdIs( "10.0.0.3", 6 );
   }
   static std::string stopsOver( std::string const & what ) {
      return stoppedAt( "ClassIdAllocation", "addTcamEntriesWithI2EClassId",
                        "!unitTepIpToEntry->" + what + "( tepIp )" );
   }
   static inline std::string const classIdIsInvalid =
      stoppedAt( "EgressDropRules", "efpTcamEntries", "i2eClassId.isValid()" );

   Fabric leaf;
};

using ClassIdLimitsDeath = ClassIdLimits;

// --- The list that a full egress group leaves empty

TEST_F( ClassIdLimitsDeath, AnEmptyListIsMetByTheGrantAfterAVirtualPortChange ) {
   leaf.start();
   leaf.roomIs( kEgress, 0, 0 );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.foreignIs( kEgress, 0, 0 );
   leaf.vtepIs( "10.0.0.2", 12 );
   leaf.classIdDel( "10.0.0.2" );
   EXPECT_DEATH( leaf.classIdIs( "10.0.0.2", 5 ), stopsOver( "esPortAndEFPEntryIdListHas" ) );
}

TEST_F( ClassIdLimitsDeath, OnTwoUnitsAnEmptyListIsMetByTheVirtualPortChangeItself ) {
   Fabric spine( 2 );
   spine.share( "Ethernet1", { "10.0.0.2" } );
   spine.start();
   spine.roomIs( kEgress, 0, 0 );
   spine.classIdIs( "10.0.0.2", 5 );
   EXPECT_DEATH( spine.vtepIs( "10.0.0.2", 12 ), stopsOver( "esPortAndEFPEntryIdListHas" ) );
}

TEST_F( ClassIdLimitsDeath, AnEmptyListOutlivesItsVirtualPortWhileAnotherVtepKeepsTheRecord ) {
   otherVtepIsInUse();
   leaf.roomIs( kEgress, 0, 0 );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.vtepDel( "10.0.0.2" );
   leaf.classIdDel( "10.0.0.2" );
   EXPECT_EQ( leaf.egressPorts( 0, "10.0.0.2" ), "{}" );
   leaf.foreignIs( kEgress, 0, 0 );
   leaf.vtepIs( "10.0.0.2", 2 );
   EXPECT_DEATH( leaf.classIdIs( "10.0.0.2", 5 ), stopsOver( "esPortAndEFPEntryIdListHas" ) );
}

TEST_F( ClassIdLimits, AnEmptyListGoesWithItsSegmentsLastPort ) {
   otherVtepIsInUse();
   leaf.roomIs( kEgress, 0, 0 );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.segmentDel( "Ethernet1" );
   EXPECT_EQ( leaf.egressPorts( 0, "10.0.0.2" ), "none" );
   leaf.classIdDel( "10.0.0.2" );
   leaf.foreignIs( kEgress, 0, 0 );
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_TRUE( leaf.drops( 0, 1, leaf.stamp( 0, 2 ) ) );
}

TEST_F( ClassIdLimits, AnEmptyListGoesWithTheUnitsRecord ) {
   leaf.start();
   leaf.roomIs( kEgress, 0, 0 );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.vtepDel( "10.0.0.2" );
   leaf.classIdDel( "10.0.0.2" );
   leaf.foreignIs( kEgress, 0, 0 );
   leaf.vtepIs( "10.0.0.2", 2 );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_TRUE( leaf.drops( 0, 1, leaf.stamp( 0, 2 ) ) );
}

// --- Grants that change over live rules

TEST_F( ClassIdLimitsDeath, AGrantThatTurnsInvalidStopsTheNextPortThatJoins ) {
   leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.classIdIs( "10.0.0.2", ClassId::kNone );
   EXPECT_DEATH( leaf.segmentIs( "Ethernet2", { "10.0.0.2" } ), classIdIsInvalid );
}

TEST_F( ClassIdLimitsDeath, AGrantThatTurnsInvalidStopsAnInterfaceThatChangesItsPort ) {
   leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.classIdIs( "10.0.0.2", ClassId::kNone );
   EXPECT_DEATH( leaf.interfaceIs( "Ethernet1", 0, 9 ), classIdIsInvalid );
}

TEST_F( ClassIdLimitsDeath, OnTwoUnitsAGrantThatTurnsInvalidStopsAVirtualPortChange ) {
   Fabric spine( 2 );
   spine.share( "Ethernet1", { "10.0.0.2" } );
   spine.start();
   spine.classIdIs( "10.0.0.2", 5 );
   spine.classIdIs( "10.0.0.2", ClassId::kNone );
   EXPECT_DEATH( spine.vtepIs( "10.0.0.2", 12 ), classIdIsInvalid );
}

TEST_F( ClassIdLimits, WithoutSharedPortsAnInvalidIdIsStampedAfterAVirtualPortChange ) {
   Fabric spine( 2 );
   spine.share( "Ethernet9", { "10.0.0.2" } );
   spine.start();
   spine.classIdIs( "10.0.0.2", 5 );
   spine.classIdIs( "10.0.0.2", ClassId::kNone );
   spine.vtepIs( "10.0.0.2", 12 );
   EXPECT_EQ( spine.stamp( 0, 12 ), 65535U );
   EXPECT_EQ( spine.stamp( 1, 12 ), 65535U );
}

TEST_F( ClassIdLimits, AGrantThatChangesLeavesAPortThatJoinsUnprotected ) {
   leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.classIdIs( "10.0.0.2", 7 );
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   EXPECT_EQ( leaf.stamp( 0, 2 ), 5U );
   EXPECT_TRUE( leaf.drops( 0, 1, 5 ) );
   EXPECT_FALSE( leaf.drops( 0, 2, 5 ) );
   EXPECT_TRUE( leaf.drops( 0, 2, 7 ) ) << "which no frame carries";
}

TEST_F( ClassIdLimits, AWithdrawnIdThatAnotherVtepGetsDropsThatVtepsFrames ) {
   leaf.segmentIs( "Ethernet2", { "10.0.0.3" } );
   leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.classIdDel( "10.0.0.2" );
   leaf.classIdIs( "10.0.0.3", 5 );
   EXPECT_TRUE( leaf.drops( 0, 1, leaf.stamp( 0, 3 ) ) ) << "Ethernet1 is not shared with it";
   EXPECT_TRUE( leaf.drops( 0, 2, leaf.stamp( 0, 2 ) ) ) << "and the other way round";
}

// --- Grants that cross the withdrawal of their request

TEST_F( ClassIdLimits, AGrantThatCrossesAVirtualPortsWithdrawalMarksVirtualPortZeroForGood ) {
   otherVtepIsInUse();
   leaf.vtepDel( "10.0.0.2" );
   EXPECT_EQ( leaf.requests(), ( Lines{ "10.0.0.3" } ) );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_EQ( leaf.stamp( 0, 0 ), 5U );
   leaf.classIdDel( "10.0.0.2" );
   leaf.segmentDel( "Ethernet1" );
   EXPECT_EQ( leaf.stamp( 0, 0 ), 5U ) << "no virtual port: the segment's end deletes nothing";
}

TEST_F( ClassIdLimitsDeath, TheVirtualPortsReturnOverSuchARuleStops ) {
   otherVtepIsInUse();
   leaf.vtepDel( "10.0.0.2" );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.classIdDel( "10.0.0.2" );
   EXPECT_DEATH( leaf.vtepIs( "10.0.0.2", 2 ), stopsOver( "entryIdHas" ) );
   leaf.segmentDel( "Ethernet1" );
   leaf.vtepIs( "10.0.0.2", 2 );
   EXPECT_DEATH( leaf.segmentIs( "Ethernet1", { "10.0.0.2" } ), stopsOver( "entryIdHas" ) );
}

TEST_F( ClassIdLimits, AnIdThatWasGivenBackIsUsedWithoutARequestAfterSuchACrossing ) {
   leaf.start();
   leaf.vtepDel( "10.0.0.2" );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.classIdDel( "10.0.0.2" );
   leaf.segmentIs( "Ethernet2", { "10.0.0.3" } );
   leaf.classIdIs( "10.0.0.3", 5 );
   leaf.vtepIs( "10.0.0.2", 2 );
   EXPECT_EQ( leaf.requests(), ( Lines{ "10.0.0.3" } ) );
   EXPECT_EQ( leaf.stamp( 0, 2 ), 5U );
   EXPECT_TRUE( leaf.drops( 0, 1, leaf.stamp( 0, 3 ) ) ) << "Ethernet1 is not shared with it";
}

TEST_F( ClassIdLimits, AGrantThatCrossesAChangedVirtualPortEndsUpWithTwoVteps ) {
   leaf.segmentIs( "Ethernet2", { "10.0.0.3" } );
   leaf.start();
   leaf.vtepIs( "10.0.0.2", 12 );  // gives the request back and asks anew
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.classIdDel( "10.0.0.2" );
   leaf.classIdIs( "10.0.0.3", 5 );  // which has waited longer
   leaf.classIdIs( "10.0.0.2", 6 );
   EXPECT_EQ( leaf.stamp( 0, 12 ), 5U ) << "rules are not made anew";
   EXPECT_TRUE( leaf.drops( 0, 1, leaf.stamp( 0, 3 ) ) ) << "Ethernet1 is not shared with it";
}

// --- Records that go while a grant is on the way

TEST_F( ClassIdLimits, ARecordThatGoesBeforeTheNewGrantLeavesTheVtepWithoutRules ) {
   otherVtepIsInUse();
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.vtepIs( "10.0.0.2", 12 );
   EXPECT_EQ( leaf.requests(), ( Lines{ "10.0.0.2", "10.0.0.3" } ) );
   // The old grant still stands: nothing seems to be pending when the other VTEP goes.
   leaf.segmentDel( "Ethernet2" );
   EXPECT_FALSE( leaf.sm().tepIpToEntryHas( 0 ) );
   leaf.classIdDel( "10.0.0.2" );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_EQ( leaf.stamp( 0, 12 ), 0U );
   EXPECT_TRUE( leaf.logs.empty() );
   // Only the next change of the virtual port brings rules.
   leaf.vtepIs( "10.0.0.2", 13 );
   EXPECT_TRUE( leaf.drops( 0, 1, leaf.stamp( 0, 13 ) ) );
}

TEST_F( ClassIdLimits, TheSameHappensOverGrantsFoundAtTheStart ) {
   leaf.segmentIs( "Ethernet2", { "10.0.0.3" } );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.classIdIs( "10.0.0.3", 6 );
   leaf.start();
   EXPECT_EQ( leaf.stamp( 0, 2 ), 0U ) << "grants found at the start are not read";
   leaf.segmentDel( "Ethernet2" );
   leaf.classIdDel( "10.0.0.2" );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_EQ( leaf.stamp( 0, 2 ), 0U );
}

// --- Exhaustion

TEST_F( ClassIdLimits, AnIngressRuleThatFoundNoRoomIsNotRetriedWhenThereIsSome ) {
   leaf.start();
   leaf.roomIs( kIngress, 0, 0 );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.foreignIs( kIngress, 0, 0 );
   leaf.activity.clock()->fireOne();
   EXPECT_EQ( leaf.stamp( 0, 2 ), 0U );
   EXPECT_EQ( leaf.logs, ( Lines{ logFull } ) );
}

TEST_F( ClassIdLimits, RecoveryIsLoggedWhileAnotherUnitIsStillFull ) {
   Fabric spine( 2 );
   spine.share( "Ethernet1", { "10.0.0.2" } );
   spine.start();
   spine.roomIs( kIngress, 0, 0 );
   spine.classIdIs( "10.0.0.2", 5 );
   EXPECT_EQ( spine.logs, ( Lines{ logFull, logRecovered } ) );
   EXPECT_EQ( spine.stamp( 0, 2 ), 0U );
}

TEST_F( ClassIdLimits, RecoveryIsLoggedByAVtepThatNeedsNoEgressRuleWhileEgressIsStillFull ) {
   leaf.segmentIs( "Ethernet9", { "10.0.0.3" } );
   leaf.start();
   leaf.roomIs( kEgress, 0, 0 );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.classIdIs( "10.0.0.3", 6 );
   EXPECT_EQ( leaf.logs, ( Lines{ logFull, logRecovered } ) );
   EXPECT_FALSE( leaf.drops( 0, 1, leaf.stamp( 0, 2 ) ) );
}

TEST_F( ClassIdLimits, AnUpdateThatHealsAShortVtepEndsNoEpisode ) {
   auto & sm = leaf.start();
   leaf.roomIs( kEgress, 0, 0 );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.foreignIs( kEgress, 0, 0 );
   leaf.interfaceIs( "Ethernet1", 0, 9 );
   EXPECT_TRUE( leaf.drops( 0, 9, leaf.stamp( 0, 2 ) ) );
   EXPECT_EQ( leaf.logs, ( Lines{ logFull } ) );
   EXPECT_TRUE( sm.tcamExhaustion() );
   leaf.segmentDel( "Ethernet1" );
   EXPECT_TRUE( sm.tcamExhaustion() ) << "nor does the VTEP's end";
}

TEST_F( ClassIdLimits, APortThatJoinsAFullGroupIsUnprotectedAndNobodyIsTold ) {
   auto & sm = leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.roomIs( kEgress, 0, 0 );
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   leaf.foreignIs( kEgress, 0, 0 );
   EXPECT_FALSE( leaf.drops( 0, 2, 5 ) );
   EXPECT_TRUE( leaf.logs.empty() );
   EXPECT_FALSE( sm.tcamExhaustion() );
}

// --- Ports

TEST_F( ClassIdLimits, AnInterfaceThatMovesToAnotherUnitIsUnprotectedThere ) {
   Fabric spine( 2 );
   spine.share( "Ethernet1", { "10.0.0.2" } );
   spine.start();
   spine.classIdIs( "10.0.0.2", 5 );
   spine.interfaceIs( "Ethernet1", 1, 11 );
   EXPECT_FALSE( spine.drops( 1, 11, 5 ) );
   EXPECT_EQ( spine.egressPorts( 0, "10.0.0.2" ), "{unit1/port11/mod41}" ) << "in vain";
   spine.interfaceDel( "Ethernet1" );
   EXPECT_EQ( spine.egressPorts( 0, "10.0.0.2" ), "{unit1/port11/mod41}" ) << "and left behind";
}

TEST_F( ClassIdLimits, OnTwoUnitsAPortThatJoinsIsProgrammedOnBoth ) {
   Fabric spine( 2 );
   spine.memberIs( "Port-Channel1", "Ethernet1" );
   spine.share( "Port-Channel1", { "10.0.0.2" } );
   spine.start();
   spine.classIdIs( "10.0.0.2", 5 );
   EXPECT_EQ( spine.egressPorts( 1, "10.0.0.2" ), "none" );
   spine.memberIs( "Port-Channel1", "Ethernet2" );
   EXPECT_EQ( spine.egressPorts( 1, "10.0.0.2" ), "{unit0/port2/mod40}" );
}

TEST_F( ClassIdLimits, TwoSharedInterfacesThatSwapPortsLeaveOneUnprotected ) {
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.interfaceIs( "Ethernet1", 0, 2 );
   leaf.interfaceIs( "Ethernet2", 0, 1 );
   EXPECT_TRUE( leaf.drops( 0, 1, 5 ) );
   EXPECT_FALSE( leaf.drops( 0, 2, 5 ) );
}

TEST_F( ClassIdLimits, APortInTwoSharedSegmentsIsUnprotectedOnceItLeavesOneOfThem ) {
   leaf.segmentIs( "Port-Channel1", { "10.0.0.2" } );
   leaf.memberIs( "Port-Channel1", "Ethernet1" );
   leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_TRUE( leaf.drops( 0, 1, 5 ) );
   leaf.memberDel( "Ethernet1" );
   EXPECT_FALSE( leaf.drops( 0, 1, 5 ) ) << "Ethernet1 is still a shared segment of its own";
}

}  // namespace
