// The trace ring is small, and what is in it is what a support engineer gets to see of the last
// minutes: of a whole day's lines it holds those about what was published, and none of the rest.

#include <gtest/gtest.h>

#include <array>

#include "../support/ClassIdLeaf.h"
#include "../support/RoutedSwitch.h"
#include "../support/TraceRing.h"

namespace {

using Support::ClassIdLeaf;
using Support::intf;
using Support::ip;
using Support::kEgress;
using Support::kIngress;
using Support::Lines;
using Support::LocalBiasSwitch;
using Support::RoutedSwitch;
using Support::TraceRing;
using Support::Variant;

// How the lines begin that go to the ring.
constexpr std::array marked{
   "5 handleTepSegment tepIp: ",
   "2 handleTepSegment, SM not initialized yet",
   "5 handleRemoteVport, rvk.vtepIp: ",
   "5 handleSegmentSet, intfId : ",
   "2 handleSegmentSet, no VP assigned to remote VTEP ",
   "2 handleSegmentStatusTcam rules ",
   "5 getPortListsOnUpdate, unit: ",
   "7 getPortListsOnUpdate, no update needed",
   "7 getPortListsOnUpdate, lport change for intf ",
   "2 handleVornalIntfToPort, SM not initialized yet",
   "2 handleLagMember, SM not initialized yet",
};

Lines markedOf( Lines const & traces ) {
   Lines found;
   std::copy_if( traces.begin(), traces.end(), std::back_inserter( found ),
                 []( std::string const & line ) {
                    return std::any_of( marked.begin(), marked.end(),
                                        [ & ]( char const * beginning ) {
                                           return line.starts_with( beginning );
                                        } );
                 } );
   return found;
}

class RingMarks : public testing::Test {
 protected:
   // What the day has traced is in the ring where it is marked, and the day had these lines.
   void expectMarkedOf( LocalBiasSwitch const & leaf, Lines const & unmarked ) const {
      EXPECT_EQ( ring.lines(), markedOf( leaf.traces ) );
      for ( std::string const & line : unmarked ) {
         EXPECT_FALSE( leaf.tracesOf( line ).empty() ) << line;
      }
   }

   TraceRing const ring{ 1024 };
};

TEST_F( RingMarks, ADayOfTheEgressMaskVariant ) {
   LocalBiasSwitch leaf( 2, 4 );
   leaf.interfaceIs( "Ethernet1", 0, 1 );
   leaf.interfaceIs( "Ethernet2", 0, 2 );
   leaf.memberIs( "Port-Channel2", "Ethernet2" );
   leaf.segmentIs( "Port-Channel2", { "10.0.0.2" } );
   leaf.segmentIs( "Ethernet7", { "10.0.0.2" } );
   leaf.board.entryManager( kIngress )->foreignEntriesIs( 1, 4 );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.vtepIs( "10.0.0.2", 2 );
   sm->handleVerify();
   EXPECT_TRUE( sm->tcamSanityCheckForTepIp( 0, ip( "10.0.0.2" ) ) );
   sm->verifyIfpEntries( 0, ip( "10.0.0.2" ) );
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.segmentDel( "Ethernet1" );
   leaf.interfaceIs( "Ethernet1", 0, 5 );
   leaf.interfaceIs( "Ethernet2", 0, 6 );
   leaf.memberIs( "Port-Channel2", "Ethernet9" );
   leaf.board.entryManager( kIngress )->foreignEntriesIs( 1, 0 );
   leaf.vtepIs( "10.0.0.3", 3 );
   leaf.segmentIs( "Port-Channel2", { "10.0.0.3" } );
   leaf.vtepIs( "10.0.0.3", 4 );
   leaf.evpnStatus->segmentStatus( intf( "Port-Channel2" ) )->remoteTepDel( ip( "10.0.0.3" ) );
   expectMarkedOf( leaf, {
                            "8 getPortListForPortChannel, intfId : Port-Channel2",
                            "8 getPortListForPortChannel ,Ethernet2",
                            "8 getPortListForPortChannel, Done intfId : Port-Channel2",
                            "2 getSharedESPortInfo port doesn't belong to this mod",
                            "2 handleVornalIntfToPort, interface: Ethernet1, not in evpnStatus",
                            "2 installRulesForUcastTraffic L2UC entry allocation failed",
                            "2 ifpTcamEntries failed to allocate IFP entry ID",
                            "2 handleVerify tcam is exhausted, skipping verification",
                            "4 tcamSanityCheckForTepIp ifpTcamsUsed:1 esPbmpUsed:1",
                            "9 verifyIfpEntries",
                            "2 handleSegmentSet, not processing updates with respect to Ethernet1",
                            "7  Adding Ethernet1 to egress mask",
                            "7  Removing Ethernet1 from egress mask",
                            "7 updateTcamEntries, no update needed",
                            "6 handleTepSegment, adding TCAM entry for tepIp ",
                            "6 handleTepSegment, deleting TCAM entry for tepIp ",
                            "6 handleRemoteVport, newVpIndex: 4",
                            "6 handleRemoteVport, delete TCAM entry with old VPindex qual",
                            "6 handleRemoteVport, add TCAM entry with new VPindex qual",
                         } );
}

TEST_F( RingMarks, ADayOfTheClassIdVariant ) {
   ClassIdLeaf leaf;
   leaf.interfaceIs( "Ethernet1", 0, 1 );
   leaf.share( "Ethernet1", { "10.0.0.2" } );
   auto & sm = leaf.start();
   EXPECT_FALSE( sm.unitUsesOrNeedsTcams( 7 ) );
   leaf.classIdIs( "10.0.0.2", VornalCommon::ClassId::kNone );
   leaf.roomIs( kEgress, 0, 0 );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.classIdDel( "10.0.0.2" );
   leaf.foreignIs( kEgress, 0, 0 );
   leaf.interfaceIs( "Ethernet1", 0, 9 );
   sm.updateTcamEntries( 0, ip( "10.0.0.2" ), intf( "Ethernet9" ), true );
   sm.handleVerify();
   sm.tcamExhaustionIs( false );
   sm.handleVerify();
   leaf.segmentDel( "Ethernet1" );
   sm.initializedIs( false );
   sm.handleRemoteESPeerVtepI2EClassId();
   Lines const & traces = leaf.traces;
   Lines const ringLines = ring.lines();
   // The start's own lines went to the ring before the leaf forgot them.
   Lines const expected = markedOf( traces );
   ASSERT_GE( ringLines.size(), expected.size() );
   EXPECT_EQ( ( Lines{ ringLines.end() - static_cast< std::ptrdiff_t >( expected.size() ),
                       ringLines.end() } ),
              expected );
   EXPECT_EQ( markedOf( ringLines ), ringLines );
   for ( char const * const line :
         { "4 unitUsesOrNeedsTcams Mirel Line: ",
           "2 programI2EclassIdTcamState failed to allocate I2E class ID",
           "2 efpTcamEntries failed to allocate EFP entry ID for Ethernet1",
           "5 handleRemoteESPeerVtepI2EClassId freed I2E class ID for tepIp 10.0.0.2",
           "7 updateTcamEntries, no update needed", "9 verifyEfpEntries",
           "2 handleRemoteESPeerVtepI2EClassId called pre-init" } ) {
      EXPECT_FALSE( leaf.tracesOf( line ).empty() ) << line;
   }
}

TEST_F( RingMarks, ADayOfTheRoutedVnisAndTheExemptions ) {
   RoutedSwitch leaf;
   leaf.tunnelIs( "Vxlan1" );
   leaf.tunnelIs( "Vxlan2" );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   leaf.vniIs( "red", 50001 );
   leaf.tunnelDel( "Vxlan2" );
   sm->removeRulesForUcastTraffic( 0 );
   leaf.roomIs( 1 );
   sm->installRulesForUcastTraffic( 0 );
   sm->removeRulesForUcastTraffic( 0 );
   sm->initializedIs( false );
   leaf.vniIs( "red", 50002 );
   EXPECT_EQ( leaf.tracesOf( "2 removeRulesForUcastTraffic could not find L2UC entry" ).size(),
              2U );
   expectMarkedOf( leaf, {
                            "2 installRulesForUcastTraffic L3UC entry allocation failed",
                            "2 handleVrfToVniMap, SM not initialized yet",
                            "8 void Vornal::EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::"
                            "doCleanup(): Ignoring VTI interfaceVx2",
                         } );
}

}  // namespace
