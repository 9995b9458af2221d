// Recorded calls are made again: another chip then holds the same.
#include <gtest/gtest.h>

#include <Decorators/RecordingSdk.h>
#include <Quelm/Error.h>
#include <Replay/CallReplay.h>
#include <Snapshot/Rules.h>

#include "TwoUnitSwitch.h"

namespace CallReplayTest {

using namespace ChipTest;

// A chip whose calls are recorded, and a fresh one.
class CallReplay : public testing::Test {
 protected:
   void replay() {
      Chip::CallReplay again( fresh.units() );
      for ( Chip::HardwareCall const & call : record.calls ) {
         again.make( call );
      }
   }
   void expectSame() const {
      EXPECT_EQ( rulesOf( fresh.units() ), rulesOf( board.units() ) );
      EXPECT_FALSE( rulesOf( fresh.units() ).empty() );
   }

   Record record;
   Chip::Board board{ twoUnits( 4 ), &record };
   Chip::RecordingSdk sdk{ board.sdk(), record };
   Quelm::Ptr< Chip::SoftTcamEntryManager > ifp = board.entryManager( kIfp );
   Quelm::Ptr< Chip::SoftTcamEntryManager > efp = board.entryManager( kEfp );
   Chip::Board fresh{ twoUnits( 4 ) };
};

TEST_F( CallReplay, MakesEachKindOfCall ) {
   U32 const mask = ifp->getEntry( 0, "mask", {} );
   sdk.bcm_field_qualify_SrcVxlanGport( 0, mask, kVtep2 );
   sdk.bcm_field_qualify_PacketRes( 0, mask, 4, 0xff );
   sdk.bcm_field_qualify_TunnelTerminated( 0, mask, 1, 1 );
   sdk.bcm_field_qualify_VxlanNetworkId( 0, mask, 10100, kExact );
   ifp->setPriorityForEntry( 0, mask, 3 );
   ifp->addEgressMaskAction( 0, mask, pbmpOfPorts( { 3 } ) );
   ifp->installEntry( 0, mask );
   ifp->updateEgressMaskAction( 0, mask, pbmpOfPorts( { 4, 70 } ) );
   ifp->reinstallEntry( 0, mask );
   U32 const marks = ifp->getEntry( 1, "marks", {} );
   sdk.bcm_field_action_add( 1, marks, bcmFieldActionNewClassId, 5, 0 );
   sdk.bcm_field_action_add( 1, marks, bcmFieldActionEgressClassSelect,
                             BCM_FIELD_EGRESS_CLASS_SELECT_NEW, 0 );
   ifp->installEntry( 1, marks );
   U32 const drops = efp->getEntry( 1, "drops", {} );
   sdk.bcm_field_qualify_DstPort( 1, drops, 4, kExact, 7, kExact );
   sdk.bcm_field_qualify_IpType( 1, drops, bcmFieldIpTypeIpv6 );
   sdk.bcm_field_qualify_IngressClassField( 1, drops, 5, kExact );
   sdk.bcm_field_action_add( 1, drops, bcmFieldActionDrop, 0, 0 );
   efp->installEntry( 1, drops );
   replay();
   expectSame();
   Chip::Entry const * const entry = fresh.units().group( 0, kIfp )->entry( mask );
   ASSERT_NE( entry->written(), nullptr );
   EXPECT_EQ( *entry->written(), *board.units().group( 0, kIfp )->entry( mask )->written() );
}

TEST_F( CallReplay, KeepsStagedEntriesAndUsedNumbers ) {
   U32 const gone = ifp->getEntry( 0, "gone", {} );
   U32 const staged = ifp->getEntry( 0, "staged", {} );
   sdk.bcm_field_qualify_PacketRes( 0, staged, 10, 0xff );
   ifp->releaseEntry( 0, gone );
   replay();
   expectSame();
   EXPECT_EQ( fresh.entryManager( kIfp )->getEntry( 0, "next", {} ),
              ifp->getEntry( 0, "next", {} ) );
}

// They have changed nothing at first either.
TEST_F( CallReplay, LeavesOutCallsThatReadAndCallsThatFailed ) {
   U32 const id = ifp->getEntry( 0, "rule", {} );
   ifp->reinstallEntry( 0, id );                       // it is not installed
   sdk.bcm_field_qualify_PacketRes( 0, 99, 4, 0xff );  // there is none
   ifp->addEgressMaskAction( 0, id, pbmpOfPorts( { 3 } ) );
   ifp->installEntry( 0, id );
   ifp->getEgressMaskActionPbmp( 0, id );
   U32 number = 0;
   sdk.bcm_field_qualify_PacketRes_get( 0, id, &number, &number );
   for ( int n = 0; n < 5; ++n ) {
      ifp->getEntry( 1, "more than there is room for", {} );
   }
   replay();
   expectSame();
}

TEST_F( CallReplay, RefusesACallThatHasAnotherResult ) {
   ifp->getEntry( 0, "first", {} );
   ifp->getEntry( 0, "second", {} );
   record.calls.erase( record.calls.begin() );
   EXPECT_THROW( replay(), Quelm::Error );  // it would get number 1
}

}  // namespace CallReplayTest
