// The egress rules: one a shared port, dropping what carries the VTEP's class id.

#include <gtest/gtest.h>

#include <ostream>

#include "../support/ClassIdLeaf.h"

namespace {

using Support::ClassIdLeaf;
using Support::ClassIdSm;
using Support::egressRule;
using Support::failedAt;
using Support::intf;
using Support::ip;
using Support::kEgress;
using Support::kIngress;
using Support::Lines;
using Support::released;
using Support::operator+;
using Support::stoppedAt;
using VornalCommon::ClassId;
using VornalTypes::VornalPortList;

// One unit with the ports of Ethernet1 to Ethernet4, and a VTEP with class id 5 but without rules.
class EgressDropRules : public testing::Test {
 protected:
   EgressDropRules() {
      for ( U16 number = 1; number <= 4; ++number ) {
         leaf.interfaceIs( "Ethernet" + std::to_string( number ), 0, number );
      }
      leaf.start();
      leaf.sm().tepIpToEntryIs( U16{ 0 } );
      leaf.sm().i2eTepIpClassIdIs( tepIp, ClassId( 5 ) );
   }

   static VornalPortList ports( std::vector< U16 > const & logicalPorts ) {
      VornalPortList list;
      for ( U16 const logicalPort : logicalPorts ) {
         list.portIs( ClassIdLeaf::port( 0, logicalPort ) );
      }
      return list;
   }
   static Lines rule( U32 entry, U16 number ) {
      return egressRule( 0, entry, "10.0.0.2", "Ethernet" + std::to_string( number ), number, 5 );
   }
   bool add( std::vector< U16 > const & logicalPorts ) {
      return leaf.sm().efpTcamEntries( 0, tepIp, ports( logicalPorts ), true );
   }
   bool remove( std::vector< U16 > const & logicalPorts ) {
      return leaf.sm().efpTcamEntries( 0, tepIp, ports( logicalPorts ), false );
   }
   U32 entryOf( U16 logicalPort ) {
      return leaf.egressList( 0, "10.0.0.2" )->efpEntryId( ClassIdLeaf::port( 0, logicalPort ) );
   }
   VornalPortList listed() { return leaf.egressList( 0, "10.0.0.2" )->esPortList(); }

   Pelk::IpGenAddr const tepIp = ip( "10.0.0.2" );
   ClassIdLeaf leaf;
};

TEST_F( EgressDropRules, TwoPortsGetARuleEach ) {
   EXPECT_TRUE( add( { 1, 2 } ) );
   EXPECT_EQ( leaf.hardware(), rule( 1, 1 ) + rule( 2, 2 ) );
   EXPECT_EQ( listed(), ports( { 1, 2 } ) );
   EXPECT_EQ( leaf.egressList( 0, "10.0.0.2" )->efpEntryIds(), 2U );
   EXPECT_EQ( entryOf( 1 ), 1U );
   EXPECT_EQ( entryOf( 2 ), 2U );
   EXPECT_EQ( leaf.written( 0, 1 ).priority, std::nullopt );
   EXPECT_TRUE( leaf.written( 0, 1 )[ Chip::Action::Drop ] );
}

TEST_F( EgressDropRules, InstallationIsTraced ) {
   add( { 1 } );
   EXPECT_EQ( leaf.traces, ( Lines{ "5 efpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1",
                                    "4 efpTcamEntries Using I2E class ID 5",
                                    "4 efpTcamEntries allocated EFP entry ID 1 for Ethernet1" } ) );
}

TEST_F( EgressDropRules, ThePortsInterfaceNamesTheRuleAndAnUnknownPortHasNone ) {
   add( { 9 } );
   EXPECT_EQ( leaf.nameOf( 0, 1 ), Support::dropRuleName( "10.0.0.2", "" ) );
   EXPECT_TRUE( leaf.hasTraced( "4 efpTcamEntries allocated EFP entry ID 1 for " ) );
}

TEST_F( EgressDropRules, AVersion6AddressNamesItsRules ) {
   leaf.sm().i2eTepIpClassIdIs( ip( "2001:db8::2" ), ClassId( 6 ) );
   leaf.sm().efpTcamEntries( 0, ip( "2001:db8::2" ), ports( { 1 } ), true );
   EXPECT_EQ( leaf.hardware(), egressRule( 0, 1, "2001:db8::2", "Ethernet1", 1, 6 ) );
}

TEST_F( EgressDropRules, InstallingAgainCreatesTheNewPortsRuleOnly ) {
   add( { 1, 2 } );
   leaf.hardware();
   EXPECT_TRUE( add( { 1, 3 } ) );
   EXPECT_EQ( leaf.hardware(), rule( 3, 3 ) );
   EXPECT_EQ( listed(), ports( { 1, 2, 3 } ) );
}

TEST_F( EgressDropRules, RemovingOnePortLeavesTheOthersAndRemovingTheRestDropsTheList ) {
   add( { 1, 2, 3 } );
   leaf.forget();
   EXPECT_TRUE( remove( { 1 } ) );
   EXPECT_EQ( leaf.hardware(), released( 0, kEgress, { 1 } ) );
   EXPECT_EQ( leaf.traces, ( Lines{ "5 efpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 0",
                                    "4 efpTcamEntries freed EFP entry ID 1" } ) );
   EXPECT_EQ( listed(), ports( { 2, 3 } ) );
   leaf.forget();
   EXPECT_TRUE( remove( { 2, 3 } ) );
   EXPECT_EQ( leaf.hardware(), released( 0, kEgress, { 2, 3 } ) );
   EXPECT_EQ( leaf.traces,
              ( Lines{ "5 efpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 0",
                       "4 efpTcamEntries freed EFP entry ID 2",
                       "4 efpTcamEntries freed EFP entry ID 3",
                       "4 efpTcamEntries freed all EFP entries for tepIp in unit" } ) );
   EXPECT_FALSE( leaf.egressList( 0, "10.0.0.2" ) );
}

TEST_F( EgressDropRules, AnEmptyPortListReturnsBeforeAnythingElse ) {
   add( { 1 } );
   for ( bool const isAdd : { false, true } ) {
      leaf.forget();
      EXPECT_TRUE( leaf.sm().efpTcamEntries( 0, tepIp, {}, isAdd ) );
      EXPECT_EQ( leaf.traces,
                 ( Lines{ std::string( "5 efpTcamEntries, unit: 0, tepIp: 10.0.0.2, add " ) +
                             ( isAdd ? "1" : "0" ),
                          "5 efpTcamEntries, no ports to install or free EFP entries against" } ) );
      EXPECT_TRUE( leaf.calls.empty() );
      EXPECT_EQ( listed(), ports( { 1 } ) );
   }
   EXPECT_TRUE( leaf.sm().efpTcamEntries( 7, tepIp, {}, true ) ) << "not even a record is needed";
   EXPECT_TRUE( leaf.sm().efpTcamEntries( 0, ip( "10.0.0.9" ), {}, true ) ) << "nor a class id";
   EXPECT_FALSE( leaf.egressList( 0, "10.0.0.9" ) );
}

TEST_F( EgressDropRules, RemovingAPortWithoutARuleReleasesIdZeroAndChangesNothing ) {
   add( { 1, 2 } );
   leaf.forget();
   EXPECT_TRUE( remove( { 4 } ) );
   EXPECT_EQ( leaf.hardware(), released( 0, kEgress, { 0 } ) );
   EXPECT_TRUE( leaf.hasTraced( "4 efpTcamEntries freed EFP entry ID 0" ) );
   EXPECT_EQ( listed(), ports( { 1, 2 } ) );
   EXPECT_EQ( leaf.egressList( 0, "10.0.0.2" )->efpEntryIds(), 2U );
   EXPECT_EQ( leaf.used( kEgress ), 2U );
}

TEST_F( EgressDropRules, RemovingWithoutAListDoesNothing ) {
   EXPECT_TRUE( remove( { 1 } ) );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_FALSE( leaf.egressList( 0, "10.0.0.2" ) );
}

TEST_F( EgressDropRules, WhenTheGroupIsFullAtTheSecondOfThreeTheThirdIsNotTried ) {
   leaf.roomIs( kEgress, 0, 1 );
   EXPECT_FALSE( add( { 1, 2, 3 } ) );
   EXPECT_EQ( leaf.hardware(),
              rule( 1, 1 ) + Lines{ "unit 0 entry 0: getEntry( group 45, name \"Drop packets at "
                                    "EFP from vtep IP 10.0.0.2 on Ethernet2\" )" } );
   EXPECT_EQ( leaf.traces.back(),
              "2 efpTcamEntries failed to allocate EFP entry ID for Ethernet2" );
   EXPECT_EQ( listed(), ports( { 1 } ) );
   EXPECT_EQ( entryOf( 1 ), 1U );
   EXPECT_TRUE( leaf.logs.empty() ) << "who called decides what is logged";
}

TEST_F( EgressDropRules, WhenTheGroupIsFullAtTheFirstPortAnEmptyListIsLeft ) {
   leaf.roomIs( kEgress, 0, 0 );
   EXPECT_FALSE( add( { 1 } ) );
   ASSERT_TRUE( leaf.egressList( 0, "10.0.0.2" ) );
   EXPECT_EQ( listed(), ports( {} ) );
}

TEST_F( EgressDropRules, AnUpdateRemovesFirstAndAddsThen ) {
   add( { 1 } );
   leaf.forget();
   EXPECT_TRUE( leaf.sm().updateEfpTcamEntries( 0, tepIp, ports( { 1 } ), ports( { 2 } ), true ) );
   EXPECT_EQ( leaf.hardware(), released( 0, kEgress, { 1 } ) + rule( 2, 2 ) );
   EXPECT_EQ( leaf.traces.front(), "5 updateEfpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1" );
   EXPECT_EQ( leaf.tracesOf( "5 efpTcamEntries" ),
              ( Lines{ "5 efpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 0",
                       "5 efpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1" } ) );
   leaf.roomIs( kEgress, 0, 0 );
   EXPECT_FALSE( leaf.sm().updateEfpTcamEntries( 0, tepIp, {}, ports( { 3 } ), true ) );
   leaf.hardware();
   EXPECT_TRUE( leaf.sm().updateEfpTcamEntries( 0, tepIp, {}, ports( { 2 } ), false ) );
   EXPECT_EQ( leaf.hardware(), released( 0, kEgress, { 2 } ) );
}

TEST_F( EgressDropRules, AnUpdateRemovesAlsoWhatItAddsAgain ) {
   add( { 1 } );
   leaf.hardware();
   EXPECT_TRUE( leaf.sm().updateEfpTcamEntries( 0, tepIp, ports( { 1 } ), ports( { 1 } ), true ) );
   EXPECT_EQ( leaf.hardware(), released( 0, kEgress, { 1 } ) + rule( 2, 1 ) );
}

// --- Ports that come and go

// The VTEP shares Port-Channel1, whose only member is Ethernet1, and has its rules.
class EgressDropRulesFollow : public EgressDropRules {
 protected:
   EgressDropRulesFollow() {
      leaf.memberIs( "Port-Channel1", "Ethernet1" );
      leaf.share( "Port-Channel1", { "10.0.0.2" } );
      leaf.forget();
      usedAtIngress = leaf.used( kIngress );
      firstRule = entryOf( 1 );
   }

   U32 usedAtIngress = 0;
   U32 firstRule = 0;
};

TEST_F( EgressDropRulesFollow, AMemberThatJoinsGetsARuleAndOneThatLeavesLosesIt ) {
   leaf.memberIs( "Port-Channel1", "Ethernet2" );
   EXPECT_EQ( leaf.hardware(), rule( firstRule + 1, 2 ) );
   EXPECT_TRUE(
      leaf.hasTraced( "5 updateTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1, intfId: "
                      "Ethernet2" ) );
   leaf.memberDel( "Ethernet1" );
   EXPECT_EQ( leaf.hardware(), released( 0, kEgress, { firstRule } ) );
   EXPECT_TRUE(
      leaf.hasTraced( "5 updateTcamEntries, unit: 0, tepIp: 10.0.0.2, add 0, intfId: "
                      "Ethernet1" ) );
   EXPECT_EQ( listed(), ports( { 2 } ) );
   EXPECT_EQ( leaf.sm().i2eTepIpClassIdRefCount( tepIp ), 1U );
   EXPECT_EQ( leaf.used( kIngress ), usedAtIngress );
}

TEST_F( EgressDropRulesFollow, ASegmentInterfaceThatJoinsGetsARuleAndOneThatLeavesLosesIt ) {
   leaf.segmentIs( "Ethernet3", { "10.0.0.2" } );
   EXPECT_EQ( leaf.hardware(), rule( firstRule + 1, 3 ) );
   leaf.segmentDel( "Ethernet3" );
   EXPECT_EQ( leaf.hardware(), released( 0, kEgress, { firstRule + 1 } ) );
   EXPECT_EQ( listed(), ports( { 1 } ) );
}

TEST_F( EgressDropRulesFollow, AnInterfaceThatChangesItsPortTakesItsRuleAlong ) {
   leaf.interfaceIs( "Ethernet1", 0, 8 );
   EXPECT_EQ( leaf.hardware(), released( 0, kEgress, { firstRule } ) +
                                  egressRule( 0, firstRule + 1, "10.0.0.2", "Ethernet1", 8, 5 ) );
   EXPECT_EQ( listed(), ports( { 8 } ) );
}

TEST_F( EgressDropRulesFollow, AnInterfaceThatLosesItsPortLosesItsRuleUntilItHasOneAgain ) {
   leaf.interfaceDel( "Ethernet1" );
   EXPECT_EQ( leaf.hardware(), released( 0, kEgress, { firstRule } ) );
   EXPECT_FALSE( leaf.egressList( 0, "10.0.0.2" ) );
   leaf.interfaceIs( "Ethernet1", 0, 1 );
   EXPECT_EQ( leaf.hardware(), rule( firstRule + 1, 1 ) );
}

TEST_F( EgressDropRulesFollow, AnInterfaceWithoutAnyPortIssuesNoHardwareCall ) {
   leaf.sm().updateTcamEntries( 0, tepIp, intf( "Ethernet9" ), true );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_EQ( leaf.traces,
              ( Lines{ "5 updateTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1, intfId: Ethernet9",
                       "5 getPortListsOnUpdate, unit: 0, tepIp: 10.0.0.2, intfId: Ethernet9",
                       "7 getPortListsOnUpdate, no update needed",
                       "7 updateTcamEntries, no update needed" } ) );
}

TEST_F( EgressDropRulesFollow, AnUpdateThatFindsNoRoomLeavesTheRuleOutAndLogsNothing ) {
   leaf.roomIs( kEgress, 0, 0 );
   leaf.memberIs( "Port-Channel1", "Ethernet2" );
   EXPECT_EQ( listed(), ports( { 1 } ) );
   EXPECT_TRUE( leaf.logs.empty() );
   EXPECT_FALSE( leaf.sm().tcamExhaustion() );
}

// --- What stops the process

using EgressDropRulesDeath = EgressDropRules;

TEST_F( EgressDropRulesDeath, AnInvalidClassIdStops ) {
   leaf.sm().i2eTepIpClassIdDel( tepIp );
   EXPECT_DEATH( add( { 1 } ),
                 stoppedAt( "EgressDropRules", "efpTcamEntries", "i2eClassId.isValid()" ) );
}

TEST_F( EgressDropRulesDeath, AnEntryOfAPortThatTheListDoesNotNameStops ) {
   add( { 1 } );
   leaf.write( *leaf.egressList( 0, "10.0.0.2" ), "efpEntryId", "unit0/port2/mod40", "77" );
   EXPECT_DEATH( remove( { 1 } ), stoppedAt( "EgressDropRules", "efpTcamEntries",
                                             "!esPortAndEFPEntryIdList->efpEntryIds()" ) );
}

struct FailingCall {
   std::string operation;
   std::string text;

   friend void PrintTo( FailingCall const & row, std::ostream * out ) { *out << row.operation; }
};

class EgressCallDeath : public EgressDropRules,
                        public testing::WithParamInterface< FailingCall > {};

TEST_P( EgressCallDeath, AFailedCallStops ) {
   leaf.fail( { .nth = 1, .code = -4, .operation = GetParam().operation } );
   EXPECT_DEATH( add( { 1 } ),
                 failedAt( "EgressDropRules", "efpTcamEntries", GetParam().text, -4 ) );
}

INSTANTIATE_TEST_SUITE_P(
   EgressDropRules, EgressCallDeath,
   testing::Values(
      FailingCall{ "bcm_field_qualify_DstPort",
                   "bcm_field_qualify_DstPort( unit, efpEntryId, sp.modId() , "
                   "BCM_FIELD_EXACT_MATCH_MASK, sp.logicalPort(), BCM_FIELD_EXACT_MATCH_MASK )" },
      FailingCall{ "bcm_field_qualify_IpType",
                   "bcm_field_qualify_IpType( unit, efpEntryId, bcmFieldIpTypeAny )" },
      FailingCall{ "bcm_field_qualify_IngressClassField",
                   "bcm_field_qualify_IngressClassField( unit, efpEntryId, i2eClassId.value(), "
                   "BCM_FIELD_EXACT_MATCH_MASK )" },
      FailingCall{ "bcm_field_action_add",
                   "bcm_field_action_add( unit, efpEntryId, bcmFieldActionDrop, 0, 0 )" } ),
   []( auto const & call ) { return call.param.operation; } );

// A manager whose installEntry answers this code.
class Uninstalling final : public Chip::SoftTcamEntryManager {
 public:
   Uninstalling( ClassIdLeaf & leaf, S32 code )
         : SoftTcamEntryManager( kEgress, leaf.board.units(), nullptr ), code_( code ) {}
   S32 installEntry( U32, U32 ) override { return code_; }

 private:
   S32 code_;
};

TEST_F( EgressDropRulesDeath, AnInstallThatReturnsAnythingButTheSuccessCodeStops ) {
   for ( S32 const code : { 1, -1 } ) {
      auto const sm = Vornal::evpnMultihomingLocalBiasWithI2EClassIdSmFactory(
         leaf.vcsd, nullptr, nullptr, nullptr, nullptr, nullptr, leaf.activity.clock(), nullptr,
         nullptr, Quelm::make< Uninstalling >( leaf, code ), nullptr, nullptr );
      sm->tepIpToEntryIs( U16{ 0 } );
      leaf.write( *sm, "i2eTepIpClassId", "10.0.0.2", "5" );
      EXPECT_DEATH( sm->efpTcamEntries( 0, tepIp, ports( { 1 } ), true ),
                    stoppedAt( "EgressDropRules", "efpTcamEntries",
                               "rc == BCM_E_NONE && \"installEntry failed\"" ) );
   }
}

}  // namespace
