// The member mapping of port channels follows the membership of the physical interfaces, in an
// order that its readers rely on.
#include <gtest/gtest.h>

#include "support/PortChannels.h"

namespace LagPhyIntfMappingSmTest {

using Lag::LagPhyIntfMappingSm;
using Quelm::Ptr;
using Support::Journal;
using Support::PortChannels;

// A switch whose mapping is derived.
class LagMapping : public testing::Test, protected PortChannels {
 protected:
   Ptr< LagPhyIntfMappingSm > sm = activeSmNew();
};

TEST_F( LagMapping, TheDerivationHoldsItsInputs ) {
   EXPECT_EQ( sm->lagConfig(), config );
   EXPECT_EQ( sm->lagPhyIntfMapping(), directory );
}

TEST_F( LagMapping, PortChannelEntersEmptyAndItsFirstMemberJoinsAfterThat ) {
   lagIs( "Ethernet1", "Port-Channel1" );
   EXPECT_EQ( news(), ( Journal{ "mapping lagPhyIntfConfig[Port-Channel1]: absent -> "
                                 "Lag::LagPhyIntfConfig Port-Channel1 {}",
                                 "Port-Channel1 phyIntf[Ethernet1]: absent -> present" } ) );
}

TEST_F( LagMapping, FurtherMembersJoinThePortChannelThatIsThere ) {
   lagIs( "Ethernet1", "Port-Channel1" );
   auto const entity = directory->lagPhyIntfConfig( intf( "Port-Channel1" ) );
   news();
   lagIs( "Ethernet2", "Port-Channel1" );
   EXPECT_EQ( news(), Journal{ "Port-Channel1 phyIntf[Ethernet2]: absent -> present" } );
   EXPECT_EQ( directory->lagPhyIntfConfig( intf( "Port-Channel1" ) ), entity );
}

TEST_F( LagMapping, LastMemberLeavesAndThePortChannelGoesAfterThat ) {
   lagIs( "Ethernet1", "Port-Channel1" );
   lagIs( "Ethernet2", "Port-Channel1" );
   news();
   lagIs( "Ethernet1", "" );
   EXPECT_EQ( news(), Journal{ "Port-Channel1 phyIntf[Ethernet1]: present -> absent" } );
   lagIs( "Ethernet2", "" );
   EXPECT_EQ( news(), ( Journal{ "Port-Channel1 phyIntf[Ethernet2]: present -> absent",
                                 "mapping lagPhyIntfConfig[Port-Channel1]: Lag::LagPhyIntfConfig "
                                 "Port-Channel1 -> absent" } ) );
}

TEST_F( LagMapping, MemberThatMovesLeavesBeforeItJoins ) {
   lagIs( "Ethernet1", "Port-Channel1" );
   news();
   lagIs( "Ethernet1", "Port-Channel2" );
   EXPECT_EQ( news(), ( Journal{ "Port-Channel1 phyIntf[Ethernet1]: present -> absent",
                                 "mapping lagPhyIntfConfig[Port-Channel1]: Lag::LagPhyIntfConfig "
                                 "Port-Channel1 -> absent",
                                 "mapping lagPhyIntfConfig[Port-Channel2]: absent -> "
                                 "Lag::LagPhyIntfConfig Port-Channel2 {}",
                                 "Port-Channel2 phyIntf[Ethernet1]: absent -> present" } ) );
}

TEST_F( LagMapping, InterfaceThatIsTakenOutOfTheConfigurationLeaves ) {
   lagIs( "Ethernet1", "Port-Channel1" );
   lagIs( "Ethernet2", "Port-Channel1" );
   interfaceDel( "Ethernet1" );
   EXPECT_EQ( state(), "Port-Channel1{Ethernet2}" );
   interfaceDel( "Ethernet2" );
   EXPECT_EQ( state(), "" );
}

TEST_F( LagMapping, InterfaceThatEntersWithAMembershipJoins ) {
   interfaceReplaced( "Ethernet1", "Port-Channel1" );
   EXPECT_EQ( state(), "Port-Channel1{Ethernet1}" );
}

TEST_F( LagMapping, InterfaceReplacedByAnotherObjectMovesAndTheOldObjectIsForgotten ) {
   auto const old = interfaceReplaced( "Ethernet1", "Port-Channel1" );
   interfaceReplaced( "Ethernet1", "Port-Channel2" );
   EXPECT_EQ( state(), "Port-Channel2{Ethernet1}" );
   news();
   old->lagIs( intf( "" ) );
   old->lagIs( intf( "Port-Channel1" ) );
   EXPECT_EQ( news(), Journal{} );
   EXPECT_EQ( old->publisher().subscribers(), 0U );
}

TEST_F( LagMapping, ReplacedByAnEqualObjectNothingChangesAndTheNewOneIsFollowed ) {
   lagIs( "Ethernet1", "Port-Channel1" );
   news();
   auto const entity = interfaceReplaced( "Ethernet1", "Port-Channel1" );
   EXPECT_EQ( news(), Journal{} );
   entity->lagIs( intf( "Port-Channel2" ) );
   EXPECT_EQ( state(), "Port-Channel2{Ethernet1}" );
}

TEST_F( LagMapping, InterfaceInNoPortChannelIsInNoEntry ) {
   config->phyIntfIs( intf( "Ethernet1" ) );
   lagIs( "Ethernet2", "" );
   EXPECT_EQ( news(), Journal{} );
}

}  // namespace LagPhyIntfMappingSmTest
