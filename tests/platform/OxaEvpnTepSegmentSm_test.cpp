// The segment directory is the segment status turned round, changed in an order that its readers
// rely on.
#include <gtest/gtest.h>

#include "support/SharedSegments.h"

namespace OxaEvpnTepSegmentSmTest {

using Oxa::OxaEvpnTepSegmentSm;
using Quelm::Ptr;
using Support::Journal;
using Support::SharedSegments;

// A switch whose directory is derived.
class SegmentDirectory : public testing::Test, protected SharedSegments {
 protected:
   Ptr< OxaEvpnTepSegmentSm > sm = activeSmNew();
};

TEST( SegmentDirectoryFactory, MakesAnEmptyOne ) {
   auto const directory = Oxa::evpnTepSegmentDirFactory( "dir" );
   EXPECT_EQ( directory->name(), "dir" );
   EXPECT_EQ( directory->tepSegments(), 0U );
   EXPECT_EQ( directory->users(), 1U );
}

TEST_F( SegmentDirectory, TheDerivationHoldsItsInputs ) {
   auto const capabilities = Quelm::make< Bridging::HwCapabilities >( "capabilities" );
   auto const mapping = Quelm::make< Lag::LagPhyIntfMapping >( "mapping" );
   auto const other =
      OxaEvpnTepSegmentSm::OxaEvpnTepSegmentSmIs( status, directory, capabilities, mapping );
   EXPECT_EQ( other->evpnStatus(), status );
   EXPECT_EQ( other->tepSegmentDir(), directory );
   EXPECT_EQ( other->bridgingHwCapabilities(), capabilities );
   EXPECT_EQ( other->lagPhyIntfMapping(), mapping );
}

TEST_F( SegmentDirectory, VtepEntersFilled ) {
   share( "Ethernet1", "10.0.0.2" );
   EXPECT_EQ( news(), Journal{ "dir tepSegment[10.0.0.2]: absent -> Oxa::EvpnTepSegment 10.0.0.2 "
                               "{Ethernet1}" } );
}

TEST_F( SegmentDirectory, VtepEntersWithEveryInterfaceSharedAtThatMoment ) {
   sm->hasNotificationActiveIs( false );
   share( "Ethernet1", "10.0.0.2" );
   share( "Ethernet2", "10.0.0.2" );
   share( "Port-Channel7", "10.0.0.2" );
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( news(), Journal{ "dir tepSegment[10.0.0.2]: absent -> Oxa::EvpnTepSegment 10.0.0.2 "
                               "{Ethernet1 Ethernet2 Port-Channel7}" } );
}

TEST_F( SegmentDirectory, SegmentThatComesWithItsVtepsIsTakenWhole ) {
   segmentIs( "Ethernet1", { "10.0.0.2", "2001:db8::3" } );
   EXPECT_EQ( state(), "10.0.0.2{Ethernet1}2001:db8::3{Ethernet1}" );
}

TEST_F( SegmentDirectory, FurtherInterfaceJoinsTheEntityThatIsThere ) {
   share( "Ethernet1", "10.0.0.2" );
   auto const entity = directory->tepSegment( ip( "10.0.0.2" ) );
   news();
   share( "Ethernet2", "10.0.0.2" );
   EXPECT_EQ( news(), Journal{ "10.0.0.2 segmentSet[Ethernet2]: absent -> present" } );
   EXPECT_EQ( directory->tepSegment( ip( "10.0.0.2" ) ), entity );
}

TEST_F( SegmentDirectory, InterfaceLeavesTheSetAndTheLastTakesTheEntityOutAfterThat ) {
   share( "Ethernet1", "10.0.0.2" );
   share( "Ethernet2", "10.0.0.2" );
   news();
   unshare( "Ethernet1", "10.0.0.2" );
   EXPECT_EQ( news(), Journal{ "10.0.0.2 segmentSet[Ethernet1]: present -> absent" } );
   unshare( "Ethernet2", "10.0.0.2" );
   EXPECT_EQ( news(), ( Journal{ "10.0.0.2 segmentSet[Ethernet2]: present -> absent",
                                 "dir tepSegment[10.0.0.2]: Oxa::EvpnTepSegment 10.0.0.2 -> "
                                 "absent" } ) );
}

TEST_F( SegmentDirectory, SegmentThatGoesLeavesEveryVtepItWasSharedWith ) {
   segmentIs( "Ethernet1", { "10.0.0.2", "2001:db8::3" } );
   share( "Ethernet2", "2001:db8::3" );
   segmentDel( "Ethernet1" );
   EXPECT_EQ( state(), "2001:db8::3{Ethernet2}" );
}

TEST_F( SegmentDirectory, SegmentThatIsGoneIsNotListenedToAnyMore ) {
   share( "Ethernet1", "10.0.0.2" );
   auto const gone = segmentDel( "Ethernet1" );
   news();
   gone->remoteTepIs( ip( "2001:db8::3" ) );
   gone->remoteTepDel( ip( "10.0.0.2" ) );
   EXPECT_EQ( news(), Journal{} );
   EXPECT_EQ( gone->publisher().subscribers(), 0U );
}

TEST_F( SegmentDirectory, SegmentReplacedByAnotherObjectKeepsTheVtepsOfBoth ) {
   segmentIs( "Ethernet1", { "10.0.0.2" } );
   auto const entity = directory->tepSegment( ip( "10.0.0.2" ) );
   news();
   segmentIs( "Ethernet1", { "10.0.0.2", "2001:db8::3" } );
   EXPECT_EQ( news(),
              Journal{ "dir tepSegment[2001:db8::3]: absent -> Oxa::EvpnTepSegment 2001:db8::3 "
                       "{Ethernet1}" } );
   EXPECT_EQ( directory->tepSegment( ip( "10.0.0.2" ) ), entity );
   segmentIs( "Ethernet1", { "2001:db8::3" } );
   EXPECT_EQ( state(), "2001:db8::3{Ethernet1}" );
}

TEST_F( SegmentDirectory, NewObjectIsFollowedAfterAReplacement ) {
   share( "Ethernet1", "10.0.0.2" );
   segmentIs( "Ethernet1", { "10.0.0.2" } );
   unshare( "Ethernet1", "10.0.0.2" );
   EXPECT_EQ( state(), "" );
}

TEST_F( SegmentDirectory, RemovingAllVtepsOfASegmentLeavesNothing ) {
   segmentIs( "Ethernet1", { "10.0.0.2", "2001:db8::3" } );
   status->segmentStatus( intf( "Ethernet1" ) )->remoteTepDelAll();
   EXPECT_EQ( state(), "" );
   status->segmentStatusDelAll();
   EXPECT_EQ( state(), "" );
}

TEST_F( SegmentDirectory, SegmentWithoutARemoteVtepIsNobodys ) {
   status->segmentStatusIs( intf( "Ethernet1" ) );
   EXPECT_EQ( news(), Journal{} );
}

TEST_F( SegmentDirectory, VtepThatIsStillSharedKeepsItsEntityThroughCatchingUp ) {
   share( "Ethernet1", "10.0.0.2" );
   auto const entity = directory->tepSegment( ip( "10.0.0.2" ) );
   sm->hasNotificationActiveIs( false );
   share( "Ethernet2", "10.0.0.2" );
   unshare( "Ethernet1", "10.0.0.2" );
   news();
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( state(), "10.0.0.2{Ethernet2}" );
   EXPECT_EQ( directory->tepSegment( ip( "10.0.0.2" ) ), entity );
}

}  // namespace OxaEvpnTepSegmentSmTest
