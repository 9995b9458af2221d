// Class ids: asked for, granted, used by the units that wait, and given back.

#include <gtest/gtest.h>

#include "../support/ClassIdLeaf.h"

namespace {

using namespace Support;
using VornalCommon::ClassId;

// Two units, and a VTEP on a port channel with one member on each of them.
class ClassIdAllocation : public testing::Test {
 protected:
   ClassIdAllocation() {
      leaf.interfaceIs( "Ethernet1", 0, 1 );
      leaf.interfaceIs( "Ethernet11", 1, 11 );
      leaf.memberIs( "Port-Channel1", "Ethernet1" );
      leaf.memberIs( "Port-Channel1", "Ethernet11" );
   }

   // What becomes of the requests, in order.
   Lines changes;
   ClassIdLeaf leaf{ 2 };
   Kiv::Watch< VornalCentral::I2EClassIdIndexConfig > watch{
      leaf.classIdConfig,
      [ this ]( Kiv::Change const & change ) {
         changes.push_back( ( change.newValue< bool >() ? "asked for " : "withdrawn " ) +
                            change.key< Pelk::IpGenAddr >().stringValue() );
      }
   };
};

TEST_F( ClassIdAllocation, ANewVtepIsAskedForAndNothingIsProgrammed ) {
   auto & sm = leaf.start();
   EXPECT_FALSE( sm.addTcamEntries( 0, ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.requests(), ( Lines{ "10.0.0.2" } ) );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_EQ( leaf.traces, ( Lines{ "5 addTcamEntries, unit: 0, tepIp: 10.0.0.2" } ) );
   EXPECT_EQ( sm.i2eTepIpClassId( ip( "10.0.0.2" ) ).value(), 0xffff );
   EXPECT_FALSE( sm.i2eTepIpClassId( ip( "10.0.0.2" ) ).isValid() );
}

TEST_F( ClassIdAllocation, AskingForTheSameVtepAgainChangesNothing ) {
   auto & sm = leaf.start();
   watch.hasNotificationActiveIs( true );
   EXPECT_FALSE( sm.addTcamEntries( 0, ip( "10.0.0.2" ) ) );
   EXPECT_FALSE( sm.addTcamEntries( 1, ip( "10.0.0.2" ) ) );
   EXPECT_EQ( changes, ( Lines{ "asked for 10.0.0.2" } ) );
}

TEST_F( ClassIdAllocation, APendingGrantIsNotExhaustion ) {
   leaf.share( "Port-Channel1", { "10.0.0.2" } );
   auto & sm = leaf.start();
   sm.handleTepSegment( ip( "10.0.0.2" ) );
   EXPECT_TRUE( leaf.logs.empty() );
   EXPECT_FALSE( sm.tcamExhaustion() );
}

TEST_F( ClassIdAllocation, AGrantProgramsEveryUnitThatWaits ) {
   leaf.share( "Port-Channel1", { "10.0.0.2" } );
   auto & sm = leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_EQ( sm.i2eTepIpClassId( ip( "10.0.0.2" ) ), ClassId( 5 ) );
   EXPECT_EQ( sm.i2eTepIpClassIdRefCount( ip( "10.0.0.2" ) ), 2U );
   for ( U32 const unit : { 0U, 1U } ) {
      auto const rule = leaf.written( unit, leaf.ingressEntry( unit, "10.0.0.2" ) );
      EXPECT_EQ( rule[ Chip::Action::EgressClassSelect ]->param0,
                 U32{ BCM_FIELD_EGRESS_CLASS_SELECT_NEW } );
      EXPECT_EQ( rule[ Chip::Action::NewClassId ]->param0, 5U );
   }
   EXPECT_EQ( leaf.egressPorts( 0, "10.0.0.2" ), "{unit0/port1/mod40}" );
   EXPECT_EQ( leaf.egressPorts( 1, "10.0.0.2" ), "{unit1/port11/mod41}" );
}

TEST_F( ClassIdAllocation, AGrantIsTracedFromTheReactorToTheUnits ) {
   leaf.share( "Port-Channel1", { "10.0.0.2" } );
   auto & sm = leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.traces.erase( std::remove_if( leaf.traces.begin(), leaf.traces.end(),
                                      []( std::string const & line ) {
                                         return line.find( "lassId" ) == std::string::npos;
                                      } ),
                      leaf.traces.end() );
   EXPECT_EQ( leaf.traces,
              ( Lines{ "5 handleRemoteESPeerVtepI2EClassId tepIp 10.0.0.2",
                       "5 handleRemoteESPeerVtepI2EClassId allocated I2E class ID 5 for tepIp "
                       "10.0.0.2",
                       "5 programI2EclassIdTcamState, tepIp: 10.0.0.2",
                       "5 addTcamEntriesWithI2EClassId, unit: 0, tepIp: 10.0.0.2",
                       "5 addTcamEntriesWithI2EClassId, unit: 1, tepIp: 10.0.0.2" } ) );
   leaf.forget();
   EXPECT_TRUE( sm.programI2EclassIdTcamState( ip( "10.0.0.2" ) ) );
   EXPECT_TRUE( leaf.calls.empty() ) << "units with rules are not touched";
}

TEST_F( ClassIdAllocation, AUnitWithoutARecordIsSkipped ) {
   leaf.share( "Port-Channel1", { "10.0.0.2" } );
   auto & sm = leaf.start();
   sm.tepIpToEntryDel( 0 );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_EQ( sm.i2eTepIpClassIdRefCount( ip( "10.0.0.2" ) ), 1U );
   EXPECT_EQ( leaf.ingressEntry( 0, "10.0.0.2" ), 0U );
   EXPECT_NE( leaf.ingressEntry( 1, "10.0.0.2" ), 0U );
}

TEST_F( ClassIdAllocation, AGrantThatDisappearsLeavesRulesClassIdAndCount ) {
   leaf.share( "Port-Channel1", { "10.0.0.2" } );
   auto & sm = leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.forget();
   leaf.classIdDel( "10.0.0.2" );
   EXPECT_EQ( leaf.traces,
              ( Lines{ "5 handleRemoteESPeerVtepI2EClassId tepIp 10.0.0.2",
                       "5 handleRemoteESPeerVtepI2EClassId freed I2E class ID for tepIp "
                       "10.0.0.2" } ) );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_EQ( sm.i2eTepIpClassId( ip( "10.0.0.2" ) ), ClassId( 5 ) );
   EXPECT_EQ( sm.i2eTepIpClassIdRefCount( ip( "10.0.0.2" ) ), 2U );
   EXPECT_EQ( leaf.requests(), ( Lines{ "10.0.0.2" } ) );
}

TEST_F( ClassIdAllocation, AGrantThatChangesIsUsedByUnitsWithoutRulesOnly ) {
   leaf.share( "Port-Channel1", { "10.0.0.2" } );
   auto & sm = leaf.start();
   leaf.roomIs( kIngress, 1, 0 );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_EQ( sm.i2eTepIpClassIdRefCount( ip( "10.0.0.2" ) ), 1U );
   leaf.foreignIs( kIngress, 1, 0 );
   U32 const entryOfUnit0 = leaf.ingressEntry( 0, "10.0.0.2" );
   leaf.classIdIs( "10.0.0.2", 6 );
   EXPECT_EQ( sm.i2eTepIpClassId( ip( "10.0.0.2" ) ), ClassId( 6 ) );
   EXPECT_EQ( sm.i2eTepIpClassIdRefCount( ip( "10.0.0.2" ) ), 2U );
   EXPECT_EQ( leaf.ingressEntry( 0, "10.0.0.2" ), entryOfUnit0 );
   EXPECT_EQ( leaf.written( 0, entryOfUnit0 )[ Chip::Action::NewClassId ]->param0, 5U );
   EXPECT_EQ(
      leaf.written( 1, leaf.ingressEntry( 1, "10.0.0.2" ) )[ Chip::Action::NewClassId ]->param0,
      6U );
}

TEST_F( ClassIdAllocation, AGrantWithoutAValidIdProgramsNothingAndTheNextChangeTriesAgain ) {
   leaf.share( "Port-Channel1", { "10.0.0.2" } );
   auto & sm = leaf.start();
   leaf.classIdIs( "10.0.0.2", ClassId::kNone );
   EXPECT_TRUE( leaf.hasTraced( "2 programI2EclassIdTcamState failed to allocate I2E class ID" ) );
   EXPECT_FALSE( sm.programI2EclassIdTcamState( ip( "10.0.0.2" ) ) );
   EXPECT_TRUE( leaf.calls.empty() );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_EQ( sm.i2eTepIpClassIdRefCount( ip( "10.0.0.2" ) ), 2U );
}

TEST_F( ClassIdAllocation, AGrantForAVtepThatSharesNothingIsIgnored ) {
   auto & sm = leaf.start();
   leaf.classIdIs( "10.0.0.9", 5 );
   EXPECT_EQ( leaf.traces,
              ( Lines{ "2 handleRemoteESPeerVtepI2EClassId initialized: 1 tepIp part of "
                       "oxaEvpnTepSegmentDir: 0" } ) );
   EXPECT_FALSE( sm.i2eTepIpClassIdHas( ip( "10.0.0.9" ) ) );
}

TEST_F( ClassIdAllocation,
        AGrantBeforeInitialisationIsIgnoredAndAllRequestsAreWrittenAnewAfterIt ) {
   leaf.share( "Port-Channel1", { "10.0.0.2" } );
   auto & sm = leaf.start();
   sm.initializedIs( false );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_EQ( leaf.traces,
              ( Lines{ "2 handleRemoteESPeerVtepI2EClassId initialized: 0 tepIp part of "
                       "oxaEvpnTepSegmentDir: 1" } ) );
   EXPECT_FALSE( sm.i2eTepIpClassIdHas( ip( "10.0.0.2" ) ) );
   leaf.classIdConfig->remoteESPeerVtepIs( ip( "10.0.0.8" ), true );
   watch.hasNotificationActiveIs( true );
   leaf.forget();
   sm.handleInitialized();
   EXPECT_EQ( changes,
              ( Lines{ "withdrawn 10.0.0.2", "withdrawn 10.0.0.8", "asked for 10.0.0.2" } ) );
   EXPECT_EQ( leaf.traces[ 0 ], "5 handleInitialized" );
   EXPECT_EQ( leaf.traces[ 1 ], "5 handleInitialized" );
}

TEST_F( ClassIdAllocation, AllGrantsCanBeReadAgainOnceInitialised ) {
   leaf.share( "Port-Channel1", { "10.0.0.2", "10.0.0.3" } );
   auto & sm = leaf.start();
   sm.initializedIs( false );
   leaf.classIdIs( "10.0.0.3", 6 );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.forget();
   sm.handleRemoteESPeerVtepI2EClassId();
   EXPECT_EQ( leaf.traces, ( Lines{ "2 handleRemoteESPeerVtepI2EClassId called pre-init" } ) );
   sm.initializedIs( true );
   leaf.forget();
   sm.handleRemoteESPeerVtepI2EClassId();
   EXPECT_EQ( leaf.tracesOf( "5 handleRemoteESPeerVtepI2EClassId tepIp" ),
              ( Lines{ "5 handleRemoteESPeerVtepI2EClassId tepIp 10.0.0.2",
                       "5 handleRemoteESPeerVtepI2EClassId tepIp 10.0.0.3" } ) );
   EXPECT_EQ( sm.i2eTepIpClassIdRefCount( ip( "10.0.0.2" ) ), 2U );
   EXPECT_EQ( sm.i2eTepIpClassIdRefCount( ip( "10.0.0.3" ) ), 2U );
}

TEST_F( ClassIdAllocation, BothFormsOfTheReactionCanBeCalledByName ) {
   leaf.share( "Port-Channel1", { "10.0.0.2" } );
   auto & sm = leaf.start();
   sm.initializedIs( false );
   leaf.classIdIs( "10.0.0.2", 5 );
   sm.initializedIs( true );
   auto const & type = sm.typeData();
   type.findOperation( "handleRemoteESPeerVtepI2EClassId", 1 )->call( sm, { "10.0.0.2" } );
   EXPECT_EQ( sm.i2eTepIpClassIdRefCount( ip( "10.0.0.2" ) ), 2U );
   leaf.forget();
   type.findOperation( "handleRemoteESPeerVtepI2EClassId", 0 )->call( sm, {} );
   EXPECT_EQ( leaf.traces.front(), "5 handleRemoteESPeerVtepI2EClassId tepIp 10.0.0.2" );
}

TEST_F( ClassIdAllocation, OutOfServiceNoGrantIsActedOn ) {
   leaf.share( "Port-Channel1", { "10.0.0.2" } );
   auto & sm = leaf.start();
   sm.kivDoZombieReactors( true );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_TRUE( leaf.traces.empty() );
   EXPECT_FALSE( sm.i2eTepIpClassIdHas( ip( "10.0.0.2" ) ) );
}

TEST_F( ClassIdAllocation, TheFirstOfTwoUnitsLeavesTheClassIdAndTheSecondGivesItBack ) {
   leaf.share( "Port-Channel1", { "10.0.0.2" } );
   auto & sm = leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_TRUE( sm.deleteTcamEntries( 0, ip( "10.0.0.2" ) ) );
   EXPECT_EQ( sm.i2eTepIpClassIdRefCount( ip( "10.0.0.2" ) ), 1U );
   EXPECT_EQ( leaf.requests(), ( Lines{ "10.0.0.2" } ) );
   EXPECT_EQ( leaf.egressPorts( 0, "10.0.0.2" ), "none" );
   leaf.forget();
   EXPECT_TRUE( sm.deleteTcamEntries( 1, ip( "10.0.0.2" ) ) );
   EXPECT_FALSE( sm.i2eTepIpClassIdHas( ip( "10.0.0.2" ) ) );
   EXPECT_FALSE( sm.i2eTepIpClassIdRefCountHas( ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.requests(), Lines{} );
   EXPECT_EQ( leaf.traces.front(), "5 deleteTcamEntries, unit: 1, tepIp: 10.0.0.2" );
   EXPECT_EQ( *( leaf.traces.end() - 2 ), "5 deleteTcamEntries, TCAM entries deleted " );
   EXPECT_EQ( leaf.traces.back(), "5 deleteTcamEntries freed I2E class ID 5" );
}

TEST_F( ClassIdAllocation, TheRequestIsWithdrawnWhileTheClassIdIsStillKnown ) {
   leaf.share( "Port-Channel1", { "10.0.0.2" } );
   auto & sm = leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   sm.deleteTcamEntries( 0, ip( "10.0.0.2" ) );
   bool wasKnown = false;
   Kiv::Watch< VornalCentral::I2EClassIdIndexConfig > listener( leaf.classIdConfig,
                                                                [ & ]( Kiv::Change const & ) {
                                                                   wasKnown = sm.i2eTepIpClassIdHas(
                                                                      ip( "10.0.0.2" ) );
                                                                } );
   listener.hasNotificationActiveIs( true );
   sm.deleteTcamEntries( 1, ip( "10.0.0.2" ) );
   EXPECT_TRUE( wasKnown );
}

TEST_F( ClassIdAllocation, AUnitThatNeverHadRulesWithdrawsAPendingRequest ) {
   leaf.share( "Port-Channel1", { "10.0.0.2" } );
   auto & sm = leaf.start();
   EXPECT_EQ( leaf.requests(), ( Lines{ "10.0.0.2" } ) );
   EXPECT_TRUE( sm.deleteTcamEntries( 1, ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.requests(), Lines{} );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_FALSE( leaf.hasTraced( "5 deleteTcamEntries, TCAM entries deleted " ) );
}

TEST_F( ClassIdAllocation, AGrantThatWasNeverUsedIsGivenBack ) {
   leaf.share( "Port-Channel1", { "10.0.0.2" } );
   auto & sm = leaf.start();
   leaf.roomIs( kIngress, 0, 0 );
   leaf.roomIs( kIngress, 1, 0 );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_TRUE( sm.i2eTepIpClassIdHas( ip( "10.0.0.2" ) ) );
   EXPECT_FALSE( sm.i2eTepIpClassIdRefCountHas( ip( "10.0.0.2" ) ) );
   leaf.segmentDel( "Port-Channel1" );
   EXPECT_FALSE( sm.i2eTepIpClassIdHas( ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.requests(), Lines{} );
}

TEST_F( ClassIdAllocation, AWithdrawnRequestIsNotSpokenOfAsAnIdThatWasFreed ) {
   leaf.share( "Port-Channel1", { "10.0.0.2" } );
   auto & sm = leaf.start();
   sm.deleteTcamEntries( 1, ip( "10.0.0.2" ) );
   EXPECT_EQ( leaf.requests(), Lines{} );
   EXPECT_TRUE( leaf.tracesOf( "5 deleteTcamEntries freed" ).empty() );
}

TEST_F( ClassIdAllocation, OnTwoUnitsAChangedVirtualPortKeepsTheClassId ) {
   leaf.share( "Port-Channel1", { "10.0.0.2" } );
   auto & sm = leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   watch.hasNotificationActiveIs( true );
   leaf.vtepIs( "10.0.0.2", 7 );
   EXPECT_EQ( changes, Lines{} );
   EXPECT_EQ( sm.i2eTepIpClassIdRefCount( ip( "10.0.0.2" ) ), 2U );
}

TEST_F( ClassIdAllocation, OnTheLastUsingUnitAChangedVirtualPortGivesTheRequestBackAndAsksAnew ) {
   leaf.share( "Port-Channel1", { "10.0.0.2" } );
   leaf.roomIs( kIngress, 1, 0 );
   auto & sm = leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_EQ( sm.i2eTepIpClassIdRefCount( ip( "10.0.0.2" ) ), 1U );
   watch.hasNotificationActiveIs( true );
   leaf.vtepIs( "10.0.0.2", 7 );
   // Unit 0, which gives up the rule, and then unit 1, which never had one.
   EXPECT_EQ( changes, ( Lines{ "withdrawn 10.0.0.2", "asked for 10.0.0.2", "withdrawn 10.0.0.2",
                                "asked for 10.0.0.2" } ) );
   EXPECT_FALSE( sm.i2eTepIpClassIdHas( ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.used( kEgress ), 0U );
}

TEST_F( ClassIdAllocation, TheRequestsStayWhenTheMachineGoes ) {
   leaf.share( "Port-Channel1", { "10.0.0.2" } );
   leaf.start();
   leaf.stop();
   EXPECT_EQ( leaf.requests(), ( Lines{ "10.0.0.2" } ) );
   EXPECT_FALSE( leaf.classIdConfig->publisher().hasSubscribers() );
   EXPECT_FALSE( leaf.classIdStatus->publisher().hasSubscribers() );
}

TEST_F( ClassIdAllocation, TheCollectionsAnswerAsCollectionsDo ) {
   auto & sm = leaf.start();
   auto const tepIp = ip( "10.0.0.2" );
   EXPECT_EQ( sm.i2eTepIpClassIdDel( tepIp ), ClassId() );
   EXPECT_EQ( sm.i2eTepIpClassIdRefCount( tepIp ), 0U );
   EXPECT_EQ( sm.i2eTepIpClassIdRefCountDel( tepIp ), 0U );
   sm.i2eTepIpClassIdIs( tepIp, ClassId( 5 ) );
   sm.i2eTepIpClassIdIs( tepIp, ClassId( 6 ) );
   sm.i2eTepIpClassIdRefCountIs( tepIp, 3 );
   EXPECT_EQ( sm.i2eTepIpClassIdDel( tepIp ), ClassId( 6 ) );
   EXPECT_EQ( sm.i2eTepIpClassIdRefCountDel( tepIp ), 3U );
   sm.i2eTepIpClassIdIs( tepIp, ClassId( 5 ) );
   sm.i2eTepIpClassIdRefCountIs( tepIp, 1 );
   sm.i2eTepIpClassIdDelAll();
   sm.i2eTepIpClassIdRefCountDelAll();
   EXPECT_FALSE( sm.i2eTepIpClassIdHas( tepIp ) );
   EXPECT_FALSE( sm.i2eTepIpClassIdRefCountHas( tepIp ) );
}

}  // namespace
