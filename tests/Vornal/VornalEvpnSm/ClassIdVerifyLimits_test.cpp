// Legitimate states that a verification of the class-id variant takes for broken ones: it stops the
// process although nothing has drifted.

#include <iostream>

#include <gtest/gtest.h>

#include "../support/ClassIdLeaf.h"
#include "../support/Stops.h"

namespace {

using namespace Support;
using VornalCommon::ClassId;

class ClassIdVerifyLimitsDeath : public testing::Test {
 protected:
   ClassIdVerifyLimitsDeath() { ready( leaf ); }

   static void ready( ClassIdLeaf & on ) {
      on.interfaceIs( "Ethernet1", 0, 1 );
      on.interfaceIs( "Ethernet2", 0, 2 );
      on.vtepIs( "10.0.0.2", 2 );
      on.vtepIs( "10.0.0.3", 3 );
   }
   static std::string stopOf( std::string const & operation, std::string const & expression ) {
      return stoppedAt( "ClassIdVerification", operation, expression );
   }
   // At an assertion that both variants share.
   static std::string sharedStop( std::string const & expression ) {
      return stopsAt( "EvpnMultihomingLocalBiasSm::verifyIfpEntries", expression );
   }
   static inline std::string const countDiffers =
      stopOf( "verifyEfpEntries", "portCount == expPortCount" );
   static inline std::string const hasNoRule = sharedStop( "unitUsesTcamsForTepIp( unit, tepIp )" );

   ClassIdLeaf leaf;
};

TEST_F( ClassIdVerifyLimitsDeath, WhileAClassIdIsPending ) {
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.start();
   EXPECT_DEATH( leaf.sm().handleVerify(), hasNoRule );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.sm().handleVerify();
   leaf.vtepIs( "10.0.0.2", 12 );
   EXPECT_DEATH( leaf.sm().handleVerify(), hasNoRule ) << "asked anew after a changed port";
}

TEST_F( ClassIdVerifyLimitsDeath, WhileAGrantHasNoValidId ) {
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.start();
   leaf.classIdIs( "10.0.0.2", ClassId::kNone );
   EXPECT_DEATH( leaf.sm().handleVerify(), hasNoRule );
}

TEST_F( ClassIdVerifyLimitsDeath, WhileAVtepWithoutAVirtualPortSharesASegment ) {
   leaf.vtepDel( "10.0.0.2" );
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.start();
   leaf.afterCall = [ this ] { std::cerr << leaf.callLines().back() << '\n'; };
   EXPECT_DEATH( leaf.sm().handleVerify(), "unit 0 entry 0: bcm_field_action_get" );
   EXPECT_DEATH(
      leaf.sm().handleVerify(),
      failedAt( "ClassIdVerification", "verifyIfpEntries",
                "bcm_field_action_get( unit, entryId, bcmFieldActionEgressClassSelect, &data, "
                "&mask )",
                -2 ) );
}

TEST_F( ClassIdVerifyLimitsDeath, AfterAGrantHasChangedOverLiveRules ) {
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.classIdDel( "10.0.0.2" );
   leaf.sm().handleVerify();
   leaf.classIdIs( "10.0.0.2", 6 );
   EXPECT_DEATH( leaf.sm().handleVerify(),
                 stopOf( "verifyIfpEntries", "data == i2eClassId.value()" ) );
   leaf.classIdIs( "10.0.0.2", ClassId::kNone );
   EXPECT_DEATH( leaf.sm().handleVerify(),
                 stopOf( "verifyIfpEntries", "data == i2eClassId.value()" ) );
}

TEST_F( ClassIdVerifyLimitsDeath, AfterARecordWentWhileAGrantWasOnTheWay ) {
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.segmentIs( "Ethernet2", { "10.0.0.3" } );
   leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.classIdIs( "10.0.0.3", 6 );
   leaf.vtepIs( "10.0.0.2", 12 );
   leaf.segmentDel( "Ethernet2" );
   leaf.classIdDel( "10.0.0.2" );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_DEATH( leaf.sm().handleVerify(), sharedStop( "l2UcastRuleInstalledHas( unit )" ) );
}

TEST_F( ClassIdVerifyLimitsDeath, AfterAGrantCrossedTheWithdrawalOfItsVirtualPort ) {
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.segmentIs( "Ethernet2", { "10.0.0.3" } );
   leaf.start();
   leaf.classIdIs( "10.0.0.3", 6 );
   leaf.vtepDel( "10.0.0.2" );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.classIdDel( "10.0.0.2" );
   EXPECT_DEATH( leaf.sm().handleVerify(), sharedStop( "!unitUsesTcamsForTepIp( unit, tepIp )" ) );
   leaf.segmentDel( "Ethernet1" );
   leaf.segmentDel( "Ethernet2" );
   EXPECT_DEATH( leaf.sm().handleVerify(),
                 stopsAt( "EvpnMultihomingLocalBiasSm::handleVerify", "!tepIpToEntry( unit )" ) );
}

// --- Two units

TEST_F( ClassIdVerifyLimitsDeath, OnTwoUnitsWithAPhysicalInterfaceOnASharedSegment ) {
   ClassIdLeaf spine( 2 );
   ready( spine );
   spine.segmentIs( "Ethernet1", { "10.0.0.2" } );
   spine.start();
   spine.classIdIs( "10.0.0.2", 5 );
   EXPECT_DEATH( spine.sm().handleVerify(), countDiffers ) << "the other unit has no rule for it";
}

TEST_F( ClassIdVerifyLimitsDeath, OnTwoUnitsAfterAMemberHasJoined ) {
   ClassIdLeaf spine( 2 );
   ready( spine );
   spine.memberIs( "Port-Channel1", "Ethernet1" );
   spine.segmentIs( "Port-Channel1", { "10.0.0.2" } );
   spine.start();
   spine.classIdIs( "10.0.0.2", 5 );
   spine.sm().handleVerify();
   spine.memberIs( "Port-Channel1", "Ethernet2" );
   EXPECT_DEATH( spine.sm().handleVerify(), stopOf( "verifyEfpEntries", "unit == sp.unit()" ) );
}

TEST_F( ClassIdVerifyLimitsDeath, OnTwoUnitsAfterAnInterfaceHasJoinedOrMovedToAnotherUnit ) {
   ClassIdLeaf spine( 2 );
   ready( spine );
   spine.memberIs( "Port-Channel1", "Ethernet1" );
   spine.segmentIs( "Port-Channel1", { "10.0.0.2" } );
   spine.start();
   spine.classIdIs( "10.0.0.2", 5 );
   spine.segmentIs( "Ethernet2", { "10.0.0.2" } );
   EXPECT_DEATH( spine.sm().handleVerify(), stopOf( "verifyEfpEntries", "unit == sp.unit()" ) )
      << "the interface is programmed on both units";
   spine.segmentDel( "Ethernet2" );
   spine.sm().handleVerify();
   spine.interfaceIs( "Ethernet1", 1, 11 );
   EXPECT_DEATH( spine.sm().handleVerify(), stopOf( "verifyEfpEntries", "unit == sp.unit()" ) );
}

// --- Exhaustion

TEST_F( ClassIdVerifyLimitsDeath, AfterAnotherVtepsSuccessHasEndedTheEpisode ) {
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.segmentIs( "Ethernet2", { "10.0.0.2", "10.0.0.3" } );
   leaf.start();
   leaf.roomIs( kEgress, 0, 1 );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.sm().handleVerify();
   leaf.foreignIs( kEgress, 0, 0 );
   leaf.classIdIs( "10.0.0.3", 6 );
   EXPECT_EQ( leaf.logs, ( Lines{ logFull, logRecovered } ) );
   EXPECT_DEATH( leaf.sm().handleVerify(), countDiffers );
}

TEST_F( ClassIdVerifyLimitsDeath, AfterAnotherUnitsSuccessHasEndedTheEpisode ) {
   ClassIdLeaf spine( 2 );
   ready( spine );
   spine.segmentIs( "Port-Channel1", { "10.0.0.2" } );
   spine.start();
   spine.roomIs( kIngress, 0, 0 );
   spine.classIdIs( "10.0.0.2", 5 );
   EXPECT_DEATH( spine.sm().handleVerify(), hasNoRule );
}

TEST_F( ClassIdVerifyLimitsDeath, AfterAPortJoinedWhileTheEgressGroupWasFull ) {
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.roomIs( kEgress, 0, 0 );
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   EXPECT_DEATH( leaf.sm().handleVerify(), countDiffers );
}

TEST_F( ClassIdVerifyLimitsDeath, WhenTheExemptionsFoundNoRoomAndTheGrantCameAfterThereWasSome ) {
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.roomIs( kIngress, 0, 0 );
   leaf.start();
   leaf.foreignIs( kIngress, 0, 0 );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_TRUE( leaf.logs.empty() );
   EXPECT_DEATH( leaf.sm().handleVerify(), sharedStop( "l2UcastRuleInstalledHas( unit )" ) );
   ClassIdLeaf other;
   ready( other );
   other.segmentIs( "Ethernet1", { "10.0.0.2" } );
   other.roomIs( kIngress, 0, 1 );
   other.start();
   other.foreignIs( kIngress, 0, 0 );
   other.classIdIs( "10.0.0.2", 5 );
   EXPECT_DEATH( other.sm().handleVerify(), sharedStop( "l3UcastRuleInstalledHas( unit )" ) );
}

// --- Ports

TEST_F( ClassIdVerifyLimitsDeath, WithAnInterfaceWhosePortIsNotValid ) {
   leaf.interfaceIs( "Ethernet2", 0, VornalTypes::VornalPort::kInvalidLogicalPort );
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_DEATH( leaf.sm().handleVerify(), countDiffers );
}

TEST_F( ClassIdVerifyLimitsDeath, WithAnInterfaceThatIsASegmentOfItsOwnAndAMemberOfOne ) {
   leaf.memberIs( "Port-Channel1", "Ethernet2" );
   leaf.segmentIs( "Port-Channel1", { "10.0.0.2" } );
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_DEATH( leaf.sm().handleVerify(), countDiffers );
}

TEST_F( ClassIdVerifyLimitsDeath, AfterTwoSharedInterfacesHaveSwappedPorts ) {
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.interfaceIs( "Ethernet1", 0, 2 );
   leaf.interfaceIs( "Ethernet2", 0, 1 );
   EXPECT_DEATH( leaf.sm().handleVerify(), countDiffers );
}

}  // namespace
