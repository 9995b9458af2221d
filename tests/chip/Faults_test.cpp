// Calls of the chip that fail: which, with what result, and that they change nothing.
#include <csignal>

#include <gtest/gtest.h>

#include <Calls/Faults.h>
#include <Decorators/FailingSdk.h>
#include <Decorators/RecordingSdk.h>
#include <Snapshot/Rules.h>

#include "TwoUnitSwitch.h"

namespace FaultsTest {

using namespace ChipTest;

constexpr S32 kCode = -77;

// leaf1, whose calls fail as `faults` say. Everything that reaches the chip is recorded.
class FaultyChip : public testing::Test {
 protected:
   // One call of each operation that can fail, on that entry.
   void callEach( U32 id ) {
      U32 number = 0;
      U8 byte = 0;
      bcm_field_IpType_t ipType = bcmFieldIpTypeAny;
      sdk.bcm_field_qualify_SrcVxlanGport( 0, id, kVtep2 );
      sdk.bcm_field_qualify_PacketRes( 0, id, 4, 0xff );
      sdk.bcm_field_qualify_TunnelTerminated( 0, id, 1, 1 );
      sdk.bcm_field_qualify_VxlanNetworkId( 0, id, 10100, kExact );
      sdk.bcm_field_qualify_DstPort( 0, id, 0, kExact, 1, kExact );
      sdk.bcm_field_qualify_IpType( 0, id, ipType );
      sdk.bcm_field_qualify_IngressClassField( 0, id, 5, kExact );
      sdk.bcm_field_action_add( 0, id, bcmFieldActionNewClassId, 5, 0 );
      sdk.bcm_field_qualify_SrcVxlanGport_get( 0, id, &number );
      sdk.bcm_field_qualify_PacketRes_get( 0, id, &number, &number );
      sdk.bcm_field_qualify_TunnelTerminated_get( 0, id, &byte, &byte );
      sdk.bcm_field_qualify_VxlanNetworkId_get( 0, id, &number, &number );
      sdk.bcm_field_qualify_DstPort_get( 0, id, &number, &number, &number, &number );
      sdk.bcm_field_qualify_IpType_get( 0, id, &ipType );
      sdk.bcm_field_qualify_IngressClassField_get( 0, id, &number, &number );
      sdk.bcm_field_action_get( 0, id, bcmFieldActionNewClassId, &number, &number );
      ifp->setPriorityForEntry( 0, id, 1 );
      ifp->addEgressMaskAction( 0, id, pbmpOfPorts( { 3 } ) );
      ifp->installEntry( 0, id );
      ifp->updateEgressMaskAction( 0, id, pbmpOfPorts( { 4 } ) );
      ifp->reinstallEntry( 0, id );
      ifp->getEgressMaskActionPbmp( 0, id );
      ifp->releaseEntry( 0, id );
   }
   // The operations of the recorded calls that have that result.
   std::vector< std::string > operationsWith( S32 code ) const {
      std::vector< std::string > operations;
      for ( Chip::HardwareCall const & call : record.calls ) {
         if ( call.returnCode == code ) {
            operations.push_back( call.operation );
         }
      }
      return operations;
   }
   Chip::EntryContent staged() const { return Chip::rulesOf( board.units() ).at( 0 ).content; }

   Record record;
   Chip::Faults faults;
   Chip::Board board{ twoUnits( 2 ), &record, &faults };
   Chip::FailingSdk failing{ board.sdk(), faults };
   Chip::RecordingSdk sdk{ failing, record };
   Quelm::Ptr< Chip::SoftTcamEntryManager > ifp = board.entryManager( kIfp );
};

using Operations = std::vector< std::string >;

TEST_F( FaultyChip, FailsEachOfItsOperationsAndNoOther ) {
   for ( std::string_view const name : Chip::kFallibleOperations ) {
      record.calls.clear();
      faults.faultNew( { .nth = 1, .code = kCode, .operation = std::string( name ) } );
      callEach( ifp->getEntry( 0, "rule", {} ) );
      EXPECT_EQ( operationsWith( kCode ), Operations{ std::string( name ) } );
      for ( U32 id = 1; id < 100; ++id ) {
         ifp->releaseEntry( 0, id );  // that of the failed release too
      }
   }
}

TEST_F( FaultyChip, FailsTheNthCallFromNowOnAndThoseBehindItNot ) {
   U32 const id = ifp->getEntry( 0, "rule", {} );
   ifp->installEntry( 0, id );
   faults.faultNew( { .nth = 2, .code = kCode, .operation = "installEntry" } );
   EXPECT_EQ( ifp->installEntry( 0, id ), 0 );
   EXPECT_EQ( ifp->installEntry( 0, id ), kCode );
   EXPECT_EQ( ifp->installEntry( 0, id ), 0 );
}

TEST_F( FaultyChip, CountsForEachFaultByItself ) {
   U32 const id = ifp->getEntry( 0, "rule", {} );
   faults.faultNew( { .nth = 2, .code = -8, .operation = "installEntry" } );
   faults.faultNew( { .nth = 1, .code = -9 } );  // of any operation
   faults.faultNew( { .nth = 3, .code = 6, .operation = "installEntry" } );
   EXPECT_EQ( sdk.bcm_field_qualify_PacketRes( 0, id, 4, 0xff ), -9 );
   EXPECT_EQ( ifp->installEntry( 0, id ), 0 );
   EXPECT_EQ( ifp->installEntry( 0, id ), -8 );
   EXPECT_EQ( ifp->installEntry( 0, id ), 6 );
   EXPECT_EQ( ifp->installEntry( 0, id ), 0 );
}

TEST_F( FaultyChip, FailsTheCallsBehindTheNthOfALastingFault ) {
   U32 const id = ifp->getEntry( 0, "rule", {} );
   faults.faultNew( { .nth = 2, .code = -8, .operation = "installEntry", .isLasting = true } );
   EXPECT_EQ( ifp->installEntry( 0, id ), 0 );
   EXPECT_EQ( ifp->installEntry( 0, id ), -8 );
   EXPECT_EQ( ifp->reinstallEntry( 0, id ), 0 );
   EXPECT_EQ( ifp->installEntry( 0, id ), -8 );
   EXPECT_EQ( ifp->installEntry( 0, id ), -8 );
}

TEST_F( FaultyChip, EndsTheProcessInPlaceOfTheNthCall ) {
   U32 const id = ifp->getEntry( 0, "rule", {} );
   faults.endNew( 2, "installEntry" );
   EXPECT_EQ( ifp->installEntry( 0, id ), 0 );
   EXPECT_EQ( ifp->reinstallEntry( 0, id ), 0 );
   EXPECT_EXIT( ifp->installEntry( 0, id ), testing::KilledBySignal( SIGKILL ), "" );
}

TEST_F( FaultyChip, CountsRequestsForTheEndOfTheProcessToo ) {
   faults.endNew( 3, "" );
   U32 const id = ifp->getEntry( 0, "first", {} );
   EXPECT_EQ( ifp->installEntry( 0, id ), 0 );
   EXPECT_EXIT( ifp->getEntry( 0, "second", {} ), testing::KilledBySignal( SIGKILL ), "" );
   EXPECT_EXIT( ifp->installEntry( 0, id ), testing::KilledBySignal( SIGKILL ), "" );
}

TEST_F( FaultyChip, RefusesTheNthRequestForAnEntryAsAFullGroupDoes ) {
   faults.refusalNew( 2 );
   EXPECT_NE( ifp->getEntry( 0, "first", {} ), 0U );
   EXPECT_FALSE( ifp->exhausted( 0 ) );
   EXPECT_EQ( ifp->getEntry( 0, "second", {} ), 0U );
   EXPECT_TRUE( ifp->exhausted( 0 ) );
   EXPECT_EQ( ifp->used( 0 ), 1U );
   EXPECT_EQ( record.calls.back().operation, "getEntry" );
   ifp->foreignEntriesIs( 0, 0 );
   EXPECT_FALSE( ifp->exhausted( 0 ) );
}

TEST_F( FaultyChip, GivesTheFirstCodeOfTwoFaultsThatAreDueAtOnce ) {
   U32 const id = ifp->getEntry( 0, "rule", {} );
   faults.faultNew( { .nth = 1, .code = -8 } );
   faults.faultNew( { .nth = 1, .code = -9 } );
   EXPECT_EQ( ifp->installEntry( 0, id ), -8 );
   EXPECT_EQ( ifp->installEntry( 0, id ), 0 ) << "both have been met";
}

TEST_F( FaultyChip, IsNotChangedByACallThatFails ) {
   U32 const id = ifp->getEntry( 0, "rule", {} );
   for ( std::string const operation :
         { "setPriorityForEntry", "addEgressMaskAction", "installEntry", "releaseEntry" } ) {
      faults.faultNew( { .nth = 1, .code = kCode, .operation = operation } );
   }
   ifp->setPriorityForEntry( 0, id, 7 );
   ifp->addEgressMaskAction( 0, id, pbmpOfPorts( { 3 } ) );
   ifp->installEntry( 0, id );
   ifp->releaseEntry( 0, id );
   EXPECT_EQ( staged(), Chip::EntryContent() );
   EXPECT_FALSE( Chip::rulesOf( board.units() ).at( 0 ).isWritten );
   EXPECT_EQ( ifp->used( 0 ), 1U );
}

TEST_F( FaultyChip, KeepsTheFlagOfAFullGroupWhenAReleaseFails ) {
   ifp->foreignEntriesIs( 0, 1 );
   U32 const id = ifp->getEntry( 0, "rule", {} );
   EXPECT_EQ( ifp->getEntry( 0, "one more", {} ), 0U );
   faults.faultNew( { .nth = 1, .code = kCode, .operation = "releaseEntry" } );
   ifp->releaseEntry( 0, id );
   EXPECT_TRUE( ifp->exhausted( 0 ) );
   ifp->releaseEntry( 0, id );
   EXPECT_FALSE( ifp->exhausted( 0 ) );
}

}  // namespace FaultsTest
