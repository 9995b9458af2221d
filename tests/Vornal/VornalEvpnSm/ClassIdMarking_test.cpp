// The ingress entry that stamps a VTEP's frames: what is done to the chip and in which order, the
// count, the log, and what stops the process.

#include <gtest/gtest.h>

#include <Trace/Ring.h>

#include "../support/ClassIdLeaf.h"

namespace {

using Support::ClassIdLeaf;
using Support::egressRule;
using Support::failedAt;
using Support::ingressRule;
using Support::ip;
using Support::kEgress;
using Support::kIngress;
using Support::Lines;
using Support::logFull;
using Support::logRecovered;
using Support::released;
using Support::operator+;
using Support::stoppedAt;
using VornalCommon::ClassId;

// One unit, and a VTEP on Ethernet1, which is port 1.
class ClassIdMarking : public testing::Test {
 protected:
   ClassIdMarking() {
      leaf.interfaceIs( "Ethernet1", 0, 1 );
      leaf.interfaceIs( "Ethernet2", 0, 2 );
      leaf.share( "Ethernet1", { "10.0.0.2" } );
   }

   ClassIdLeaf leaf;
};

TEST_F( ClassIdMarking, AGrantIsProgrammedInThisOrder ) {
   leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_EQ( leaf.hardware(), ingressRule( 0, 3, "10.0.0.2", "0x56000002", 5 ) +
                                  egressRule( 0, 4, "10.0.0.2", "Ethernet1", 1, 5 ) );
}

TEST_F( ClassIdMarking, AChangedVirtualPortReleasesBothRulesAndAsksAnew ) {
   leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.hardware();
   leaf.vtepIs( "10.0.0.2", 7 );
   EXPECT_EQ( leaf.hardware(), released( 0, kIngress, { 3 } ) + released( 0, kEgress, { 4 } ) );
   // The allocator acts on the two changes of the request.
   leaf.classIdDel( "10.0.0.2" );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_EQ( leaf.hardware(), ingressRule( 0, 5, "10.0.0.2", "0x56000007", 5 ) +
                                  egressRule( 0, 6, "10.0.0.2", "Ethernet1", 1, 5 ) );
}

TEST_F( ClassIdMarking, RemovalReleasesTheIngressEntryThenTheEgressOnesThenTheExemptions ) {
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.hardware();
   leaf.vtepDel( "10.0.0.2" );
   EXPECT_EQ( leaf.hardware(), released( 0, kIngress, { 3 } ) + released( 0, kEgress, { 4, 5 } ) +
                                  released( 0, kIngress, { 1, 2 } ) );
   EXPECT_EQ( leaf.used( kIngress ), 0U );
   EXPECT_EQ( leaf.used( kEgress ), 0U );
}

TEST_F( ClassIdMarking, UnitAfterUnitIsRekeyed ) {
   ClassIdLeaf spine( 2 );
   spine.interfaceIs( "Ethernet1", 0, 1 );
   spine.share( "Ethernet1", { "10.0.0.2" } );
   spine.start();
   spine.classIdIs( "10.0.0.2", 5 );
   spine.hardware();
   spine.vtepIs( "10.0.0.2", 7 );
   EXPECT_EQ( spine.hardware(), released( 0, kIngress, { 3 } ) + released( 0, kEgress, { 4 } ) +
                                   ingressRule( 0, 5, "10.0.0.2", "0x56000007", 5 ) +
                                   egressRule( 0, 6, "10.0.0.2", "Ethernet1", 1, 5 ) +
                                   released( 1, kIngress, { 3 } ) +
                                   ingressRule( 1, 4, "10.0.0.2", "0x56000007", 5 ) );
}

TEST_F( ClassIdMarking, TheMarkAndItsRemovalAreTraced ) {
   auto & sm = leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_EQ( leaf.tracesOf( "5 ifpTcamEntries" ),
              ( Lines{ "5 ifpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1",
                       "5 ifpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1" } ) );
   EXPECT_EQ( leaf.tracesOf( "4 ifpTcamEntries" ),
              ( Lines{ "4 ifpTcamEntries allocated IFP entry ID 3",
                       "4 ifpTcamEntries working with IFP entry ID 3",
                       "4 ifpTcamEntries for IFP entry ID : 3 using I2E class ID 5 whose refcount "
                       "is 1" } ) );
   leaf.forget();
   EXPECT_TRUE( sm.ifpTcamEntries( 0, ip( "10.0.0.2" ), false ) );
   EXPECT_EQ( leaf.traces,
              ( Lines{ "5 ifpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 0",
                       "5 ifpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 0",
                       "4 ifpTcamEntries freed IFP entry ID 3",
                       "4 ifpTcamEntries working with IFP entry ID 0",
                       "4 ifpTcamEntries for IFP entry ID : 0 using I2E class ID 5 whose refcount "
                       "is 0" } ) );
   EXPECT_EQ( leaf.hardware().size(), 1U ) << "the release is the only thing done to the chip";
}

TEST_F( ClassIdMarking, NoLineOfTheVariantGoesToTheRing ) {
   std::vector< std::byte > memory( Trace::Ring::sizeFor( 64 ) );
   Trace::Ring ring( memory );
   Trace::ringIs( &ring );
   Trace::ringLevelsIs( "VornalEvpnSm", "0-9" );
   auto & sm = leaf.start();
   leaf.classIdIs( "10.0.0.9", 4 );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );
   sm.handleVerify();
   leaf.vtepDel( "10.0.0.2" );
   Trace::ringIs( nullptr );
   Lines lines;
   for ( auto const & line : Trace::Ring::decode( memory ) ) {
      lines.push_back( line.text );
   }
   EXPECT_EQ( lines,
              ( Lines{ "handleSegmentStatusTcam rules addition case",
                       "handleTepSegment tepIp: 10.0.0.2", "handleSegmentSet, intfId : Ethernet2",
                       "getPortListsOnUpdate, unit: 0, tepIp: 10.0.0.2, intfId: Ethernet2",
                       "handleRemoteVport, rvk.vtepIp: 10.0.0.2" } ) );
}

TEST_F( ClassIdMarking, TakingFromACountOfZeroGivesAllOnesAndTheClassIdIsKept ) {
   auto & sm = leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   auto const * const operation = sm.typeData().find( "ifpTcamEntries" );
   EXPECT_EQ( operation->call( sm, { "0", "10.0.0.2", "false" } ), "true" );
   EXPECT_EQ( operation->call( sm, { "0", "10.0.0.2", "false" } ), "true" );
   EXPECT_EQ( sm.i2eTepIpClassIdRefCount( ip( "10.0.0.2" ) ), 4294967295U );
   EXPECT_TRUE(
      leaf.hasTraced( "4 ifpTcamEntries for IFP entry ID : 0 using I2E class ID 5 whose "
                      "refcount is 4294967295" ) );
   EXPECT_TRUE( sm.deleteTcamEntries( 0, ip( "10.0.0.2" ) ) );
   EXPECT_TRUE( sm.i2eTepIpClassIdHas( ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.requests(), ( Lines{ "10.0.0.2" } ) );
}

// --- Exhaustion

TEST_F( ClassIdMarking, WithoutRoomForTheIngressEntryNothingIsCountedAndFullIsLogged ) {
   auto & sm = leaf.start();
   leaf.roomIs( kIngress, 0, 0 );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_EQ( leaf.logs, ( Lines{ logFull } ) );
   EXPECT_TRUE( sm.tcamExhaustion() );
   EXPECT_FALSE( sm.i2eTepIpClassIdRefCountHas( ip( "10.0.0.2" ) ) );
   EXPECT_TRUE( leaf.tracesOf( "5 efpTcamEntries" ).empty() );
   EXPECT_TRUE( leaf.tracesOf( "4 ifpTcamEntries working" ).empty() );
}

TEST_F( ClassIdMarking, WithoutRoomAtEgressTheMarkedIngressRuleStaysInstalled ) {
   auto & sm = leaf.start();
   leaf.roomIs( kEgress, 0, 0 );
   sm.i2eTepIpClassIdIs( ip( "10.0.0.2" ), ClassId( 5 ) );
   EXPECT_FALSE( sm.addTcamEntriesWithI2EClassId( 0, ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.logs, ( Lines{ logFull } ) );
   EXPECT_TRUE( sm.tcamExhaustion() );
   EXPECT_EQ( sm.i2eTepIpClassIdRefCount( ip( "10.0.0.2" ) ), 1U );
   EXPECT_EQ(
      leaf.written( 0, leaf.ingressEntry( 0, "10.0.0.2" ) )[ Chip::Action::NewClassId ]->param0,
      5U );
}

TEST_F( ClassIdMarking, AnAddWithAKnownClassIdSaysWhetherAllRulesStand ) {
   auto & sm = leaf.start();
   sm.i2eTepIpClassIdIs( ip( "10.0.0.2" ), ClassId( 5 ) );
   EXPECT_TRUE( sm.addTcamEntries( 0, ip( "10.0.0.2" ) ) );
   leaf.share( "Ethernet2", { "10.0.0.3" } );
   leaf.roomIs( kEgress, 0, 0 );
   sm.i2eTepIpClassIdIs( ip( "10.0.0.3" ), ClassId( 6 ) );
   EXPECT_FALSE( sm.addTcamEntries( 0, ip( "10.0.0.3" ) ) );
   leaf.share( "Ethernet2", { "10.0.0.4" } );
   leaf.roomIs( kIngress, 0, 0 );
   sm.i2eTepIpClassIdIs( ip( "10.0.0.4" ), ClassId( 7 ) );
   EXPECT_FALSE( sm.addTcamEntries( 0, ip( "10.0.0.4" ) ) );
}

TEST_F( ClassIdMarking, FullAndRecoveredAreLoggedOnceAnEpisode ) {
   leaf.share( "Ethernet2", { "10.0.0.3", "10.0.0.4", "10.0.0.5", "10.0.0.6" } );
   auto & sm = leaf.start();
   leaf.roomIs( kEgress, 0, 0 );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.classIdIs( "10.0.0.3", 6 );
   EXPECT_EQ( leaf.logs, ( Lines{ logFull } ) );
   leaf.foreignIs( kEgress, 0, 0 );
   EXPECT_EQ( leaf.logs, ( Lines{ logFull } ) ) << "room alone is no recovery";
   leaf.classIdIs( "10.0.0.4", 7 );
   leaf.classIdIs( "10.0.0.5", 8 );
   EXPECT_EQ( leaf.logs, ( Lines{ logFull, logRecovered } ) );
   EXPECT_FALSE( sm.tcamExhaustion() );
   leaf.roomIs( kEgress, 0, 0 );
   leaf.classIdIs( "10.0.0.6", 9 );
   EXPECT_EQ( leaf.logs, ( Lines{ logFull, logRecovered, logFull } ) );
}

TEST_F( ClassIdMarking, TheAddThatEndsAnEpisodeHasSucceeded ) {
   auto & sm = leaf.start();
   sm.i2eTepIpClassIdIs( ip( "10.0.0.2" ), ClassId( 5 ) );
   sm.tcamExhaustionIs( true );
   EXPECT_TRUE( sm.addTcamEntriesWithI2EClassId( 0, ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.logs, ( Lines{ logRecovered } ) );
   EXPECT_FALSE( sm.tcamExhaustion() );
}

TEST_F( ClassIdMarking, AFailedIngressStepWhileFullIsLoggedIsSilent ) {
   leaf.share( "Ethernet2", { "10.0.0.3" } );
   auto & sm = leaf.start();
   leaf.roomIs( kEgress, 0, 0 );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.roomIs( kIngress, 0, 0 );
   leaf.classIdIs( "10.0.0.3", 6 );
   EXPECT_EQ( leaf.logs, ( Lines{ logFull } ) );
   EXPECT_TRUE( sm.tcamExhaustion() );
}

// --- What stops the process

using ClassIdMarkingDeath = ClassIdMarking;

TEST_F( ClassIdMarkingDeath, AFailedClassSelectionStops ) {
   leaf.start();
   leaf.fail( { .nth = 1, .code = -5, .operation = "bcm_field_action_add" } );
   EXPECT_DEATH( leaf.classIdIs( "10.0.0.2", 5 ),
                 failedAt( "ClassIdAllocation", "ifpTcamEntries",
                           "bcm_field_action_add( unit, entryId, bcmFieldActionEgressClassSelect, "
                           "BCM_FIELD_EGRESS_CLASS_SELECT_NEW, 0 )",
                           -5 ) );
}

TEST_F( ClassIdMarkingDeath, AFailedMarkStops ) {
   leaf.start();
   leaf.fail( { .nth = 2, .code = -5, .operation = "bcm_field_action_add" } );
   EXPECT_DEATH( leaf.classIdIs( "10.0.0.2", 5 ),
                 failedAt( "ClassIdAllocation", "ifpTcamEntries",
                           "bcm_field_action_add( unit, entryId, bcmFieldActionNewClassId, "
                           "i2eClassId.value(), 0 )",
                           -5 ) );
}

// A manager whose installEntry answers this code.
class Uninstalling final : public Chip::SoftTcamEntryManager {
 public:
   Uninstalling( ClassIdLeaf & leaf, S32 code )
         : SoftTcamEntryManager( kIngress, leaf.board.units(), nullptr ), code_( code ) {}
   S32 installEntry( U32, U32 ) override { return code_; }

 private:
   S32 code_;
};

TEST_F( ClassIdMarkingDeath, AnInstallThatReturnsAnythingButTheSuccessCodeStops ) {
   for ( S32 const code : { 1, -1 } ) {
      auto const sm = Vornal::evpnMultihomingLocalBiasWithI2EClassIdSmFactory(
         leaf.vcsd, nullptr, leaf.vpIndexStatus, nullptr, nullptr,
         Quelm::make< Uninstalling >( leaf, code ), leaf.activity.clock(), nullptr, nullptr,
         nullptr, nullptr, nullptr );
      sm->tepIpToEntryIs( U16{ 0 } );
      EXPECT_DEATH( sm->ifpTcamEntries( 0, ip( "10.0.0.2" ), true ),
                    stoppedAt( "ClassIdAllocation", "ifpTcamEntries",
                               "rc == BCM_E_NONE && \"installEntry failed\"" ) );
   }
}

TEST_F( ClassIdMarkingDeath, AnEntryThatVanishedFromTheRecordStops ) {
   auto & sm = leaf.start();
   auto const record = sm.tepIpToEntry( 0U );
   Kiv::Watch< Vornal::TepIpToEntry > eraser( record, [ & ]( Kiv::Change const & ) {
      record->entryIdDelAll();
   } );
   eraser.hasNotificationActiveIs( true );
   EXPECT_DEATH( leaf.classIdIs( "10.0.0.2", 5 ),
                 stoppedAt( "ClassIdAllocation", "ifpTcamEntries", "entryId" ) );
}

TEST_F( ClassIdMarkingDeath, RemovingTheMarkOfAVtepWithoutAClassIdStops ) {
   auto & sm = leaf.start();
   EXPECT_DEATH( sm.ifpTcamEntries( 0, ip( "10.0.0.2" ), false ),
                 stoppedAt( "ClassIdAllocation", "ifpTcamEntries",
                            "i2eTepIpClassIdHas( tepIp )" ) );
}

TEST_F( ClassIdMarkingDeath, AUnitIsNotProgrammedOverWhatIsLeft ) {
   auto & sm = leaf.start();
   auto const record = sm.tepIpToEntry( 0U );
   auto const tepIp = ip( "10.0.0.2" );
   std::string const operation = "addTcamEntriesWithI2EClassId";
   auto const stopHere = [ & ]( std::string const & expression ) {
      return stoppedAt( "ClassIdAllocation", operation, expression );
   };
   record->esPortAndEFPEntryIdListIs( tepIp );
   EXPECT_DEATH( sm.addTcamEntriesWithI2EClassId( 0, tepIp ),
                 stopHere( "!unitTepIpToEntry->esPortAndEFPEntryIdListHas( tepIp )" ) );
   record->esPbmpIs( tepIp, Brum::PerUnitBitmap() );
   EXPECT_DEATH( sm.addTcamEntriesWithI2EClassId( 0, tepIp ),
                 stopHere( "!unitTepIpToEntry->esPbmpHas( tepIp )" ) );
   record->entryIdIs( tepIp, 3 );
   EXPECT_DEATH( sm.addTcamEntriesWithI2EClassId( 0, tepIp ),
                 stopHere( "!unitTepIpToEntry->entryIdHas( tepIp )" ) );
}

}  // namespace
