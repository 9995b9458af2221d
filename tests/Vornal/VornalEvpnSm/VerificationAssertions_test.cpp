// Every assertion of the verification pass, and the drift between records, state and hardware that
// it is there to find; and every read-back that can fail.

#include <gtest/gtest.h>

#include <functional>
#include <ostream>

#include "../support/RoutedSwitch.h"
#include "../support/Stops.h"

namespace {

using Support::assertionLine;
using Support::FieldCallFault;
using Support::intf;
using Support::ip;
using Support::LocalBiasSwitch;
using Support::Machine;
using Support::stopsAt;
using Support::stopsAtEmptyReferenceTo;
using Support::Variant;

// An egress-mask switch with Ethernet1 (port 5 of unit 0) shared with 10.0.0.2, and a hand that
// changes what it should not.
class DriftingSwitch : public LocalBiasSwitch {
 public:
   using LocalBiasSwitch::LocalBiasSwitch;

   void start() {
      interfaceIs( "Ethernet1", 0, 5 );
      segmentIs( "Ethernet1", { vtep } );
      vtepIs( vtep, 2 );
      sm = machineNew( Variant::EgressMask );
      sm->handleVerify();  // agrees so far
   }
   void startWithNothingToProtect() {
      sm = machineNew( Variant::EgressMask );
      sm->handleVerify();
   }

   // What is changed from here on is not noticed by the machine.
   void unnoticed() { sm->hasNotificationActiveIs( false ); }

   void install( U32 entry ) { ASSERT_EQ( sm->tcamManager()->installEntry( 0, entry ), 0 ); }
   void packetResIs( U32 entry, U32 resolution ) {
      ASSERT_EQ( Shim::sdk_->bcm_field_qualify_PacketRes( 0, entry, resolution, 0xff ), 0 );
      install( entry );
   }
   void tunnelTerminatedIs( U32 entry, U8 data, U8 mask ) {
      ASSERT_EQ( Shim::sdk_->bcm_field_qualify_TunnelTerminated( 0, entry, data, mask ), 0 );
      install( entry );
   }
   void gportIs( U32 entry, U16 vpIndex ) {
      ASSERT_EQ( Shim::sdk_->bcm_field_qualify_SrcVxlanGport( 0, entry,
                                                              Shim::sdk_->vxlanGport( vpIndex ) ),
                 0 );
      install( entry );
   }
   U32 l2() const { return sm->l2UcastRuleInstalled( 0 ); }
   U32 l3() const { return sm->l3UcastRuleInstalled( 0 ); }
   Quelm::Ptr< Vornal::TepIpToEntry > record() const { return sm->tepIpToEntry( 0U ); }
   U32 entry() const { return record()->entryId( ip( vtep ) ); }

   Machine sm;
   U16 unit = 0;  // where something is left over
   std::string const vtep = "10.0.0.2";
};

struct Drift {
   std::string name;
   std::function< void( DriftingSwitch & ) > happens;
   std::string operation;
   std::string assertion;
};

std::ostream & operator<<( std::ostream & out, Drift const & drift ) {
   return out << drift.assertion;
}

std::string const pass = "EvpnMultihomingLocalBiasSm::handleVerify";
std::string const shared = "EvpnMultihomingLocalBiasSm::verifyIfpEntries";
std::string const sanity = "EvpnMultihomingLocalBiasWithEgressMaskSm::tcamSanityCheckForTepIp";
std::string const mask = "EvpnMultihomingLocalBiasWithEgressMaskSm::verifyIfpEntries";

std::vector< Drift > const withNothingToProtect{
   { "ARecordIsLeft", []( auto & leaf ) { leaf.sm->tepIpToEntryIs( leaf.unit ); }, pass,
     "!tepIpToEntry( unit )" },
   { "AnL2ExemptionIsLeft", []( auto & leaf ) { leaf.sm->l2UcastRuleInstalledIs( leaf.unit, 7 ); },
     pass, "!l2UcastRuleInstalledHas( unit )" },
   { "AnL3ExemptionIsLeft", []( auto & leaf ) { leaf.sm->l3UcastRuleInstalledIs( leaf.unit, 7 ); },
     pass, "!l3UcastRuleInstalledHas( unit )" },
};

std::vector< Drift > const withSharedSegments{
   { "RulesAreLeftOfAVtepWithoutVirtualPort",
     []( auto & leaf ) {
        leaf.unnoticed();
        leaf.vtepIs( "10.0.0.9", 9 );
        leaf.vtepDel( leaf.vtep );
     },
     shared, "!unitUsesTcamsForTepIp( unit, tepIp )" },
   { "TheL2ExemptionIsNotRecorded", []( auto & leaf ) { leaf.sm->l2UcastRuleInstalledDel( 0 ); },
     shared, "l2UcastRuleInstalledHas( unit )" },
   { "TheL2ExemptionMatchesAnotherResolution",
     []( auto & leaf ) { leaf.packetResIs( leaf.l2(), 5 ); }, shared,
     "data == BCM_FIELD_PKT_RES_L2UC" },
   { "TheL2ExemptionMatchesWhatLeftNoTunnel",
     []( auto & leaf ) { leaf.tunnelTerminatedIs( leaf.l2(), 0, 1 ); }, shared, "tdata == 1" },
   { "TheL2ExemptionDoesNotAskForATunnel",
     []( auto & leaf ) { leaf.tunnelTerminatedIs( leaf.l2(), 1, 0 ); }, shared, "tmask == 1" },
   { "TheL3ExemptionIsNotRecorded", []( auto & leaf ) { leaf.sm->l3UcastRuleInstalledDel( 0 ); },
     shared, "l3UcastRuleInstalledHas( unit )" },
   { "TheL3ExemptionMatchesAnotherResolution",
     []( auto & leaf ) { leaf.packetResIs( leaf.l3(), 5 ); }, shared,
     "data == BCM_FIELD_PKT_RES_L3UCKNOWN" },
   { "TheL3ExemptionMatchesWhatLeftNoTunnel",
     []( auto & leaf ) { leaf.tunnelTerminatedIs( leaf.l3(), 0, 1 ); }, shared, "tdata == 1" },
   { "TheL3ExemptionDoesNotAskForATunnel",
     []( auto & leaf ) { leaf.tunnelTerminatedIs( leaf.l3(), 1, 0 ); }, shared, "tmask == 1" },
   { "TheUnitsRecordHasGone", []( auto & leaf ) { leaf.sm->tepIpToEntryDel( 0 ); }, "operator->",
     "\"reference is not empty\" && target_" },
   { "TheVtepsEntryIsNotRecorded",
     []( auto & leaf ) {
        leaf.record()->entryIdDel( ip( leaf.vtep ) );
        leaf.record()->esPbmpDel( ip( leaf.vtep ) );
     },
     shared, "unitUsesTcamsForTepIp( unit, tepIp )" },
   { "TheVtepsEntryMatchesAnotherVtep", []( auto & leaf ) { leaf.gportIs( leaf.entry(), 3 ); },
     shared, "gport == gport_exp" },
   { "TheVtepHasAnotherVirtualPortByNow",
     []( auto & leaf ) {
        leaf.unnoticed();
        leaf.vtepIs( leaf.vtep, 3 );
     },
     shared, "gport == gport_exp" },
   { "TheMaskIsNotRecorded", []( auto & leaf ) { leaf.record()->esPbmpDel( ip( leaf.vtep ) ); },
     sanity, "ifpTcamsUsed == esPbmpUsed" },
   { "TheEntryIsNotRecordedButItsMaskIs",
     []( auto & leaf ) { leaf.record()->entryIdDel( ip( leaf.vtep ) ); }, sanity,
     "ifpTcamsUsed == esPbmpUsed" },
   { "AnInterfaceIsSharedThatTheMaskHasNot",
     []( auto & leaf ) {
        leaf.unnoticed();
        leaf.interfaceIs( "Ethernet2", 0, 6 );
        leaf.sm->oxaEvpnTepSegment( ip( leaf.vtep ) )->hasNotificationActiveIs( false );
        leaf.segmentIs( "Ethernet2", { leaf.vtep } );
     },
     mask, "tepIpToEntry( unit )->esPbmp( tepIp ) == ubmp" },
   { "TheRecordedEntryHasNoMask",
     []( auto & leaf ) {
        U32 const bare = leaf.sm->tcamManager()->getEntry( 0, "without a mask", {} );
        leaf.gportIs( bare, 2 );
        leaf.record()->entryIdIs( ip( leaf.vtep ), bare );
     },
     mask, "!pbmpRes->rc() && \"getEgressMaskActionPbmp fails\"" },
   { "TheHardwareMasksOtherPorts",
     []( auto & leaf ) {
        leaf.sm->tcamManager()->updateEgressMaskAction( 0, leaf.entry(), _shr_pbmp{} );
        leaf.install( leaf.entry() );
     },
     mask, "BCM_PBMP_EQ( ports, ports_exp )" },
   { "AnInterfaceHasNoValidPort",
     []( auto & leaf ) {
        leaf.unnoticed();
        leaf.interfaceIs( "Ethernet2", 0, 1023 );
        leaf.segmentIs( "Ethernet2", {} );
        leaf.dir->tepSegment( ip( leaf.vtep ) )->segmentSetIs( intf( "Ethernet2" ) );
     },
     mask, "portCount == expPortCount" },
};

auto const nameOfDrift = []( auto const & drift ) { return drift.param.name; };

class NothingToProtectDeathTest : public testing::TestWithParam< Drift > {};
INSTANTIATE_TEST_SUITE_P( Verification, NothingToProtectDeathTest,
                          testing::ValuesIn( withNothingToProtect ), nameOfDrift );

void expectStopOn( DriftingSwitch & leaf, U16 unit, Drift const & drift ) {
   leaf.startWithNothingToProtect();
   leaf.unit = unit;
   drift.happens( leaf );
   EXPECT_DEATH( leaf.sm->handleVerify(), stopsAt( drift.operation, drift.assertion ) );
}

TEST_P( NothingToProtectDeathTest, StopsTheProcessOnWhateverUnit ) {
   for ( U16 const unit : { U16{ 0 }, U16{ 1 } } ) {
      DriftingSwitch leaf( 2 );
      expectStopOn( leaf, unit, GetParam() );
   }
}

TEST_P( NothingToProtectDeathTest, StopsTheProcessWhileNoVtepOfASegmentHasAVirtualPort ) {
   DriftingSwitch leaf;
   leaf.segmentIs( "Ethernet1", { leaf.vtep } );
   expectStopOn( leaf, 0, GetParam() );
}

TEST_P( NothingToProtectDeathTest, StopsTheProcessWhileNoVtepSharesASegment ) {
   DriftingSwitch leaf;
   leaf.vtepIs( leaf.vtep, 2 );
   expectStopOn( leaf, 0, GetParam() );
}

class SharedSegmentsDeathTest : public testing::TestWithParam< Drift > {};
INSTANTIATE_TEST_SUITE_P( Verification, SharedSegmentsDeathTest,
                          testing::ValuesIn( withSharedSegments ), nameOfDrift );

TEST_P( SharedSegmentsDeathTest, StopsTheProcess ) {
   DriftingSwitch leaf;
   leaf.start();
   GetParam().happens( leaf );
   EXPECT_DEATH( leaf.sm->handleVerify(), stopsAt( GetParam().operation, GetParam().assertion ) );
}

// --- Which exemption it was

// The two exemption rules are read by calls of the same name; the assertions of each come directly
// after its call, and the other's later.
TEST( ExemptionOrderDeathTest, TheL2ExemptionIsJudgedBeforeTheL3OneIsLookedFor ) {
   DriftingSwitch leaf;
   leaf.start();
   leaf.tunnelTerminatedIs( leaf.l2(), 0, 0 );
   leaf.sm->l3UcastRuleInstalledDel( 0 );
   EXPECT_DEATH( leaf.sm->handleVerify(), stopsAt( shared, "tdata == 1" ) );
}

TEST( ExemptionOrderDeathTest, AResolutionIsJudgedBeforeItsTunnelIsRead ) {
   DriftingSwitch leaf;
   leaf.start();
   leaf.packetResIs( leaf.l2(), 5 );
   FieldCallFault const fault( { .nth = 2, .code = -3 } );
   EXPECT_DEATH( leaf.sm->handleVerify(), stopsAt( shared, "data == BCM_FIELD_PKT_RES_L2UC" ) );
}

TEST( ExemptionOrderDeathTest, TheL3ExemptionIsJudgedBeforeTheVtepsEntry ) {
   DriftingSwitch leaf;
   leaf.start();
   leaf.sm->l3UcastRuleInstalledDel( 0 );
   leaf.record()->entryIdDel( ip( leaf.vtep ) );
   leaf.record()->esPbmpDel( ip( leaf.vtep ) );
   EXPECT_DEATH( leaf.sm->handleVerify(), stopsAt( shared, "l3UcastRuleInstalledHas( unit )" ) );
}

TEST( ExemptionOrderDeathTest, TheVtepsEntryIsJudgedBeforeItsMask ) {
   DriftingSwitch leaf;
   leaf.start();
   leaf.gportIs( leaf.entry(), 3 );
   leaf.record()->esPbmpIs( ip( leaf.vtep ), {} );
   EXPECT_DEATH( leaf.sm->handleVerify(), stopsAt( shared, "gport == gport_exp" ) );
}

TEST( ExemptionOrderDeathTest, ARecordIsJudgedBeforeTheExemptionsWhenThereIsNothingToProtect ) {
   DriftingSwitch leaf;
   leaf.startWithNothingToProtect();
   leaf.sm->l3UcastRuleInstalledIs( 0, 8 );
   leaf.sm->l2UcastRuleInstalledIs( 0, 7 );
   EXPECT_DEATH( leaf.sm->handleVerify(), stopsAt( pass, "!l2UcastRuleInstalledHas( unit )" ) );
   leaf.sm->tepIpToEntryIs( U16{ 0 } );
   EXPECT_DEATH( leaf.sm->handleVerify(), stopsAt( pass, "!tepIpToEntry( unit )" ) );
}

// --- A unit that no collection can have

TEST( WideUnitDeathTest, IsNotTakenForTheUnitOfItsLowSixteenBits ) {
   DriftingSwitch leaf;
   leaf.start();
   EXPECT_DEATH( leaf.sm->EvpnMultihomingLocalBiasSm::verifyIfpEntries( 0x10000, ip( leaf.vtep ) ),
                 assertionLine( "Verification.cpp:", "verifyIfpEntries",
                                "l2UcastRuleInstalledHas( unit )" ) );
   EXPECT_DEATH( leaf.sm->EvpnMultihomingLocalBiasSm::addTcamEntries( 0x10000, ip( leaf.vtep ) ),
                 stopsAtEmptyReferenceTo( "TepIpToEntry" ) );
}

// --- Read-backs that fail

struct ReadBack {
   std::string name;
   U64 nth;
   std::string callText;
};

std::ostream & operator<<( std::ostream & out, ReadBack const & readBack ) {
   return out << readBack.callText;
}

class ReadBackDeathTest : public testing::TestWithParam< ReadBack > {};
INSTANTIATE_TEST_SUITE_P(
   Verification, ReadBackDeathTest,
   testing::Values(
      ReadBack{ "L2Resolution", 1,
                "bcm_field_qualify_PacketRes_get( unit, l2EntryId, &data, &mask )" },
      ReadBack{ "L2Tunnel", 2,
                "bcm_field_qualify_TunnelTerminated_get( unit, l2EntryId, &tdata, &tmask )" },
      ReadBack{ "L3Resolution", 3,
                "bcm_field_qualify_PacketRes_get( unit, l3EntryId, &data, &mask )" },
      ReadBack{ "L3Tunnel", 4,
                "bcm_field_qualify_TunnelTerminated_get( unit, l3EntryId, &tdata, &tmask )" },
      ReadBack{ "Gport", 5, "bcm_field_qualify_SrcVxlanGport_get( unit, entryId, &gport )" } ),
   nameOfDrift );

TEST_P( ReadBackDeathTest, SaysWhatFailedAndStopsTheProcess ) {
   DriftingSwitch leaf;
   leaf.start();
   FieldCallFault const fault( { .nth = GetParam().nth, .code = -3 } );
   EXPECT_DEATH( leaf.sm->handleVerify(),
                 Support::failedCall( "Verification.cpp:", shared, GetParam().callText,
                                      "Not found (-3)" ) );
}

}  // namespace
