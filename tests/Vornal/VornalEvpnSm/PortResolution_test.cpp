// From segment interfaces to chip ports: full sets, differences, and what becomes of an interface
// that gets, changes or loses its port.

#include <gtest/gtest.h>

#include "../support/LocalBiasSwitch.h"
#include "../support/Ports.h"
#include "../support/Stops.h"

namespace {

using Support::intf;
using Support::ip;
using Support::Lines;
using Support::LocalBiasSwitch;
using Support::portsOf;
using Support::Variant;
using VornalTypes::VornalPort;

// A switch of two units on which Port-Channel2 has members on both, and both VTEPs share it.
class TwoUnits : public testing::Test {
 protected:
   TwoUnits() {
      leaf.interfaceIs( "Ethernet1", 0, 1 );
      leaf.interfaceIs( "Ethernet2", 0, 2 );
      leaf.interfaceIs( "Ethernet11", 1, 1 );
      leaf.memberIs( "Port-Channel2", "Ethernet2" );
      leaf.memberIs( "Port-Channel2", "Ethernet11" );
      leaf.segmentIs( "Port-Channel2", { "10.0.0.2", "10.0.0.3" } );
   }

   LocalBiasSwitch leaf{ 2 };
   VornalPort const onUnit0 = LocalBiasSwitch::port( 0, 2 );
   VornalPort const onUnit1 = LocalBiasSwitch::port( 1, 1 );
};

TEST_F( TwoUnits, APortChannelsListHoldsItsMembersOnAllUnits ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   EXPECT_EQ( sm->getPortListForPortChannel( intf( "Port-Channel2" ) ),
              portsOf( { onUnit0, onUnit1 } ) );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "8 getPortListForPortChannel, intfId : Port-Channel2",
                              "8 getPortListForPortChannel ,Ethernet2",
                              "8 getPortListForPortChannel ,Ethernet11",
                              "8 getPortListForPortChannel, Done intfId : Port-Channel2",
                           } ) );
}

TEST_F( TwoUnits, AMemberWithoutALivePortIsSkipped ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.interfaceDel( "Ethernet2" );
   EXPECT_EQ( sm->getPortListForPortChannel( intf( "Port-Channel2" ) ), portsOf( { onUnit1 } ) );
}

TEST_F( TwoUnits, AnUnknownPortChannelHasNoPortsAndIsNotTraced ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   EXPECT_TRUE( sm->getPortListForPortChannel( intf( "Port-Channel9" ) ).isEmpty() );
   EXPECT_TRUE( leaf.traces.empty() );
}

TEST_F( TwoUnits, EachUnitSharesItsOwnMembersOnly ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   for ( auto const & port : { onUnit0, onUnit1 } ) {
      auto const info = sm->getSharedESPortInfo( port.unit(), ip( "10.0.0.2" ) );
      EXPECT_EQ( info.sharedPortList(), portsOf( { port } ) );
      EXPECT_EQ( info.sharedPortBitmap().count(), 1U );
      EXPECT_TRUE( info.sharedPortBitmap().bit( port.logicalPort() ) );
   }
}

TEST_F( TwoUnits, AnUpdateOfAPortChannelIsFilteredByUnit ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   for ( auto const & port : { onUnit0, onUnit1 } ) {
      auto const lists =
         sm->getPortListsOnUpdate( port.unit(), ip( "10.0.0.2" ), intf( "Port-Channel2" ), true );
      EXPECT_EQ( lists.portList(), portsOf( { port } ) );
      EXPECT_TRUE( lists.prevPortList().isEmpty() );
   }
}

TEST_F( TwoUnits, AMemberWithAnInvalidLogicalPortIsNotShared ) {
   leaf.interfaceIs( "Ethernet2", 0, 1023 );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   EXPECT_EQ( sm->getSharedESPortInfo( 0, ip( "10.0.0.2" ) ), Vornal::SharedESPortInfo() );
}

TEST_F( TwoUnits, APhysicalInterfaceIsSharedOnItsOwnUnitOnly ) {
   leaf.segmentIs( "Ethernet1", { "10.0.0.4" } );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   EXPECT_EQ( sm->getSharedESPortInfo( 0, ip( "10.0.0.4" ) ).sharedPortList(),
              portsOf( { LocalBiasSwitch::port( 0, 1 ) } ) );
   EXPECT_EQ( sm->getSharedESPortInfo( 1, ip( "10.0.0.4" ) ), Vornal::SharedESPortInfo() );
}

TEST_F( TwoUnits, AMemberChangeVisitsEachVtepAndForItEachUnit ) {
   leaf.vtepIs( "10.0.0.2", 2 );
   leaf.vtepIs( "10.0.0.3", 3 );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.memberIs( "Port-Channel2", "Ethernet1" );
   Lines visits;
   std::copy_if( leaf.traces.begin(), leaf.traces.end(), std::back_inserter( visits ),
                 []( std::string const & line ) {
                    return line.starts_with( "8 handleLagMember" ) ||
                           line.starts_with( "5 updateTcamEntries" );
                 } );
   EXPECT_EQ( visits, ( Lines{
                         "8 handleLagMember, ethIntfId: Ethernet1, tepIp: 10.0.0.2",
                         "5 updateTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1, intfId: Ethernet1",
                         "5 updateTcamEntries, unit: 1, tepIp: 10.0.0.2, add 1, intfId: Ethernet1",
                         "8 handleLagMember, ethIntfId: Ethernet1, tepIp: 10.0.0.3",
                         "5 updateTcamEntries, unit: 0, tepIp: 10.0.0.3, add 1, intfId: Ethernet1",
                         "5 updateTcamEntries, unit: 1, tepIp: 10.0.0.3, add 1, intfId: Ethernet1",
                      } ) );
}

TEST_F( TwoUnits, AMemberChangeLeavesAUnitWithoutTheVtepsRulesAlone ) {
   leaf.board.entryManager( Vornal::kIfpLocalBiasGroup )->foreignEntriesIs( 1, 64 );
   leaf.vtepIs( "10.0.0.2", 2 );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.memberIs( "Port-Channel2", "Ethernet1" );
   EXPECT_EQ( leaf.tracesOf( "5 updateTcamEntries" ),
              ( Lines{
                 "5 updateTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1, intfId: Ethernet1" } ) );
}

TEST_F( TwoUnits, ALostPortUpdatesOnTheUnitThatTheCachedMapKnows ) {
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.interfaceIs( "Ethernet12", 1, 2 );
   leaf.segmentIs( "Ethernet12", { "10.0.0.2" } );
   leaf.vtepIs( "10.0.0.2", 0x10002 );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.interfaceDel( "Ethernet12" );
   EXPECT_EQ( leaf.tracesOf( "5 updateTcamEntries" ),
              ( Lines{
                 "5 updateTcamEntries, unit: 1, tepIp: 10.0.0.2, add 0, intfId: Ethernet12" } ) );
   EXPECT_EQ( Quelm::textOf( sm->tepIpToEntry( 1U )->esPbmp( ip( "10.0.0.2" ) ) ), "{1}" );
   EXPECT_EQ( Quelm::textOf( sm->tepIpToEntry( 0U )->esPbmp( ip( "10.0.0.2" ) ) ), "{1-2}" );
}

TEST_F( TwoUnits, AnUpdateOfAPhysicalInterfaceIsNotFilteredByUnit ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   EXPECT_EQ(
      sm->getPortListsOnUpdate( 0, ip( "10.0.0.2" ), intf( "Ethernet11" ), true ).portList(),
      portsOf( { onUnit1 } ) );
}

TEST_F( TwoUnits, AnUpdateOfAPortChannelWithoutPortsOnTheUnitIsNone ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.interfaceDel( "Ethernet11" );
   leaf.forget();
   EXPECT_EQ( sm->getPortListsOnUpdate( 1, ip( "10.0.0.2" ), intf( "Port-Channel2" ), true ),
              Vornal::PortListsOnUpdate() );
   EXPECT_EQ( leaf.traces.front(),
              "5 getPortListsOnUpdate, unit: 1, tepIp: 10.0.0.2, intfId: Port-Channel2" );
   EXPECT_EQ( leaf.traces.back(), "7 getPortListsOnUpdate, no update needed" );
}

// A switch of one unit with Ethernet1 on port 5, shared with 10.0.0.2.
class OneUnit : public testing::Test {
 protected:
   OneUnit() { leaf.shareEthernet1(); }

   LocalBiasSwitch leaf;
};

TEST_F( OneUnit, AnInvalidLogicalPortIsNeverShared ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.interfaceIs( "Ethernet1", 0, 1023 );
   EXPECT_EQ( sm->getSharedESPortInfo( 0, ip( "10.0.0.2" ) ), Vornal::SharedESPortInfo() );
}

TEST_F( OneUnit, ASegmentInterfaceWithoutPortIsTracedAndSkipped ) {
   leaf.segmentIs( "Ethernet7", { "10.0.0.2" } );
   leaf.segmentIs( "Port-Channel7", { "10.0.0.2" } );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   EXPECT_EQ( sm->getSharedESPortInfo( 0, ip( "10.0.0.2" ) ).sharedPortList().ports(), 1U );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "5 getSharedESPortInfo, unit: 0, tepIp: 10.0.0.2",
                              "2 getSharedESPortInfo port doesn't belong to this mod",
                              "2 getSharedESPortInfo port doesn't belong to this mod",
                           } ) );
}

TEST_F( OneUnit, APortChannelWithAnEntryButWithoutMembersIsSkippedWithoutAWord ) {
   leaf.segmentIs( "Port-Channel7", { "10.0.0.2" } );
   leaf.lagMapping->lagPhyIntfConfigIs(
      Quelm::make< Lag::LagPhyIntfConfig >( intf( "Port-Channel7" ) ) );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   EXPECT_EQ( sm->getSharedESPortInfo( 0, ip( "10.0.0.2" ) ).sharedPortList(),
              portsOf( { LocalBiasSwitch::port( 0, 5 ) } ) );
   EXPECT_TRUE( leaf.tracesOf( "2 " ).empty() );
}

// It belongs to this switch, so nothing is traced; but the ports of a port channel are those of its
// members, and it has none.
TEST_F( OneUnit, APortChannelThatOnlyTheLiveMapKnowsHasNoPorts ) {
   leaf.interfaceIs( "Port-Channel7", 0, 7 );
   leaf.segmentIs( "Port-Channel7", { "10.0.0.2" } );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   EXPECT_EQ( sm->getSharedESPortInfo( 0, ip( "10.0.0.2" ) ).sharedPortList(),
              portsOf( { LocalBiasSwitch::port( 0, 5 ) } ) );
   EXPECT_TRUE( leaf.tracesOf( "2 " ).empty() );
   EXPECT_EQ( sm->getPortListsOnUpdate( 0, ip( "10.0.0.2" ), intf( "Port-Channel7" ), true ),
              Vornal::PortListsOnUpdate() );
}

TEST_F( OneUnit, AVtepThatSharesNothingHasNoPorts ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   EXPECT_EQ( sm->getSharedESPortInfo( 0, ip( "10.0.0.9" ) ), Vornal::SharedESPortInfo() );
}

TEST_F( OneUnit, AChangedPortGivesTheNewAndTheOldOne ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.vcsd->vornalIntfToPortIs( intf( "Ethernet1" ), LocalBiasSwitch::port( 0, 6 ) );
   leaf.forget();
   auto const lists = sm->getPortListsOnUpdate( 0, ip( "10.0.0.2" ), intf( "Ethernet1" ), true );
   EXPECT_EQ( lists.portList(), portsOf( { LocalBiasSwitch::port( 0, 6 ) } ) );
   EXPECT_EQ( lists.prevPortList(), portsOf( { LocalBiasSwitch::port( 0, 5 ) } ) );
   EXPECT_EQ( leaf.traces.back(), "7 getPortListsOnUpdate, lport change for intf Ethernet1" );
}

TEST_F( OneUnit, ALostPortIsStillKnownFromTheCachedMap ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.interfaceDel( "Ethernet1" );
   auto const lists = sm->getPortListsOnUpdate( 0, ip( "10.0.0.2" ), intf( "Ethernet1" ), false );
   EXPECT_TRUE( lists.portList().isEmpty() );
   EXPECT_EQ( lists.prevPortList(), portsOf( { LocalBiasSwitch::port( 0, 5 ) } ) );
}

TEST_F( OneUnit, AnInterfaceUnknownToBothMapsNeedsNoUpdate ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   EXPECT_EQ( sm->getPortListsOnUpdate( 0, ip( "10.0.0.2" ), intf( "Ethernet9" ), false ),
              Vornal::PortListsOnUpdate() );
   EXPECT_EQ( leaf.traces.back(), "7 getPortListsOnUpdate, no update needed" );
}

TEST_F( OneUnit, AnUpdateThatTakesAwayMustChangeTheNumberOfPorts ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.vcsd->vornalIntfToPortIs( intf( "Ethernet1" ), LocalBiasSwitch::port( 0, 6 ) );
   EXPECT_DEATH( sm->getPortListsOnUpdate( 0, ip( "10.0.0.2" ), intf( "Ethernet1" ), false ),
                 Support::stopsAt( "EvpnMultihomingLocalBiasSm::getPortListsOnUpdate",
                                   "portList.ports() ^ prevPortList.ports()" ) );
}

TEST_F( OneUnit, WithoutAnyInputEverythingIsEmpty ) {
   auto const sm =
      Vornal::evpnMultihomingLocalBiasWithEgressMaskSmFactory( nullptr, nullptr, nullptr, nullptr,
                                                               nullptr, nullptr, nullptr, nullptr,
                                                               nullptr );
   EXPECT_TRUE( sm->initialized() );
   EXPECT_TRUE( sm->getPortListForPortChannel( intf( "Port-Channel2" ) ).isEmpty() );
   EXPECT_EQ( sm->getSharedESPortInfo( 0, ip( "10.0.0.2" ) ), Vornal::SharedESPortInfo() );
   EXPECT_EQ( sm->getPortListsOnUpdate( 0, ip( "10.0.0.2" ), intf( "Ethernet1" ), true ),
              Vornal::PortListsOnUpdate() );
   EXPECT_FALSE( sm->unitUsesTcamsForTepIp( 0, ip( "10.0.0.2" ) ) );
   EXPECT_FALSE( sm->unitUsesOrNeedsTcams( 0 ) );
   sm->handleVornalIntfToPort( intf( "Ethernet1" ) );
   sm->handleTcamExhaustion();
   sm->handleSegmentStatus();
}

TEST_F( OneUnit, AUnitUsesItsTcamForAVtepWhileAnEntryIsRecorded ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   auto const record = sm->tepIpToEntryIs( 0 );
   leaf.forget();
   EXPECT_FALSE( sm->unitUsesTcamsForTepIp( 0, ip( "10.0.0.2" ) ) );
   EXPECT_FALSE( sm->unitUsesOrNeedsTcams( 0 ) );
   record->entryIdIs( ip( "10.0.0.2" ), 7 );
   EXPECT_TRUE( sm->unitUsesTcamsForTepIp( 0, ip( "10.0.0.2" ) ) );
   EXPECT_FALSE( sm->unitUsesTcamsForTepIp( 0, ip( "10.0.0.3" ) ) );
   EXPECT_TRUE( sm->unitUsesOrNeedsTcams( 0 ) );
   EXPECT_FALSE( sm->unitUsesTcamsForTepIp( 1, ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "5 unitUsesTcamsForTepIp unit: 0 tepIp: 10.0.0.2",
                              "4 unitUsesTcamsForTepIp ifpTcamsUsed: 0",
                              "5 unitUsesOrNeedsTcams unit: 0",
                              "4 unitUsesOrNeedsTcams ifpTcamsUsed: 0",
                              "5 unitUsesTcamsForTepIp unit: 0 tepIp: 10.0.0.2",
                              "4 unitUsesTcamsForTepIp ifpTcamsUsed: 1",
                              "5 unitUsesTcamsForTepIp unit: 0 tepIp: 10.0.0.3",
                              "4 unitUsesTcamsForTepIp ifpTcamsUsed: 0",
                              "5 unitUsesOrNeedsTcams unit: 0",
                              "4 unitUsesOrNeedsTcams ifpTcamsUsed: 1",
                              "5 unitUsesTcamsForTepIp unit: 1 tepIp: 10.0.0.2",
                           } ) );
}

// --- A physical interface gets, changes or loses its port

TEST_F( OneUnit, APortChangeOnAnInterfaceWithoutSegmentDoesNothing ) {
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.interfaceIs( "Ethernet9", 0, 9 );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "5 handleVornalIntfToPort, intfId: Ethernet9",
                              "2 handleVornalIntfToPort, interface: Ethernet9, not in evpnStatus",
                           } ) );
}

TEST_F( OneUnit, APortChangeOnALagMemberLooksAtThePortChannelsSegment ) {
   leaf.interfaceIs( "Ethernet2", 0, 7 );
   leaf.memberIs( "Port-Channel2", "Ethernet2" );
   leaf.segmentIs( "Port-Channel2", { "10.0.0.3" } );
   leaf.vtepIs( "10.0.0.3", 3 );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.interfaceIs( "Ethernet2", 0, 8 );
   EXPECT_EQ( leaf.tracesOf( "7 handleVornalIntfToPort" ),
              ( Lines{ "7 handleVornalIntfToPort, intf: Ethernet2, tepIp: 10.0.0.3" } ) );
   EXPECT_EQ( leaf.tracesOf( "5 updateTcamEntries" ),
              ( Lines{
                 "5 updateTcamEntries, unit: 0, tepIp: 10.0.0.3, add 1, intfId: Ethernet2" } ) );
   EXPECT_EQ( Quelm::textOf( sm->tepIpToEntry( 0U )->esPbmp( ip( "10.0.0.3" ) ) ), "{8}" );
}

TEST_F( OneUnit, APortChangeOnAMemberOfAPortChannelWithoutSegmentDoesNothing ) {
   leaf.interfaceIs( "Ethernet2", 0, 7 );
   leaf.memberIs( "Port-Channel2", "Ethernet2" );
   leaf.segmentIs( "Ethernet2", { "10.0.0.2" } );  // its own segment is not looked at
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.interfaceIs( "Ethernet2", 0, 8 );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "5 handleVornalIntfToPort, intfId: Ethernet2",
                              "2 handleVornalIntfToPort, interface: Ethernet2, not in evpnStatus",
                           } ) );
}

TEST_F( OneUnit, AnInterfaceWhoseLagConfigNamesNoPortChannelIsASegmentOfItsOwn ) {
   leaf.memberIs( "", "Ethernet1" );
   leaf.vtepIs( "10.0.0.2", 2 );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.interfaceIs( "Ethernet1", 0, 6 );
   EXPECT_EQ( Quelm::textOf( sm->tepIpToEntry( 0U )->esPbmp( ip( "10.0.0.2" ) ) ), "{6}" );
}

TEST_F( OneUnit, APortChangeUpdatesTheVtepsThatUseTheTcam ) {
   leaf.segmentIs( "Ethernet1", { "10.0.0.3" } );
   leaf.vtepIs( "10.0.0.2", 0x10002 );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.interfaceIs( "Ethernet1", 0, 6 );
   EXPECT_EQ( leaf.tracesOf( "7 handleVornalIntfToPort" ),
              ( Lines{
                 "7 handleVornalIntfToPort, intf: Ethernet1, tepIp: 10.0.0.2",
                 "7 handleVornalIntfToPort, intf: Ethernet1, tepIp: 10.0.0.3",
              } ) );
   EXPECT_EQ( leaf.tracesOf( "5 updateTcamEntries" ),
              ( Lines{
                 "5 updateTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1, intfId: Ethernet1" } ) );
   EXPECT_EQ( Quelm::textOf( sm->tepIpToEntry( 0U )->esPbmp( ip( "10.0.0.2" ) ) ), "{6}" );
}

TEST_F( OneUnit, ALostPortLeavesTheMask ) {
   leaf.vtepIs( "10.0.0.2", 0x10002 );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.forget();
   leaf.interfaceDel( "Ethernet1" );
   EXPECT_EQ( leaf.tracesOf( "5 updateTcamEntries" ),
              ( Lines{
                 "5 updateTcamEntries, unit: 0, tepIp: 10.0.0.2, add 0, intfId: Ethernet1" } ) );
   EXPECT_EQ( Quelm::textOf( sm->tepIpToEntry( 0U )->esPbmp( ip( "10.0.0.2" ) ) ), "{}" );
}

TEST_F( OneUnit, AnUpdateToAnInvalidLogicalPortStopsTheProcess ) {
   leaf.vtepIs( "10.0.0.2", 0x10002 );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   EXPECT_DEATH( leaf.interfaceIs( "Ethernet1", 0, 1023 ), "PerUnitBitmapWordIndex" );
}

}  // namespace
