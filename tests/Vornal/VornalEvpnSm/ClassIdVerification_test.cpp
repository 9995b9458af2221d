// Reading back what stamps and what drops, and stopping at what does not agree.

#include <gtest/gtest.h>

#include <functional>
#include <ostream>

#include "../support/ClassIdLeaf.h"

namespace {

using Support::ClassIdLeaf;
using Support::failedAt;
using Support::ip;
using Support::kEgress;
using Support::kIngress;
using Support::Lines;
using Support::stoppedAt;
using VornalTypes::VornalPort;
using VornalTypes::VornalPortList;

// One unit. A VTEP shares Ethernet1, on port 1, and Port-Channel1, with ports 2 and 3.
class ClassIdVerification : public testing::Test {
 public:
   ClassIdVerification() {
      leaf.interfaceIs( "Ethernet1", 0, 1 );
      leaf.interfaceIs( "Ethernet2", 0, 2 );
      leaf.interfaceIs( "Ethernet3", 0, 3 );
      leaf.memberIs( "Port-Channel1", "Ethernet2" );
      leaf.memberIs( "Port-Channel1", "Ethernet3" );
      leaf.share( "Ethernet1", { "10.0.0.2" } );
      leaf.share( "Port-Channel1", { "10.0.0.2" } );
      leaf.start();
   }
   void grant() {
      leaf.classIdIs( "10.0.0.2", 5 );
      leaf.forget();
   }

   Vornal::ESPortAndEFPEntryIdList & list() { return *leaf.egressList( 0, "10.0.0.2" ); }
   U32 ingressEntry() { return leaf.ingressEntry( 0, "10.0.0.2" ); }
   U32 egressEntry() { return list().efpEntryId( ClassIdLeaf::port( 0, 1 ) ); }

   // Somebody else changes an entry in the hardware.
   void drift( Vornal::TcamGroupAssignment group, U32 entry, Chip::Action action, U32 value ) {
      Chip::Group & on = *leaf.board.units().group( 0, group );
      on.entry( entry )->actionUpdate( action, { .param0 = value } );
      on.reinstall( entry );
   }
   void drift( Chip::Qualifier qualifier, Chip::Match const & match ) {
      Chip::Group & on = *leaf.board.units().group( 0, kEgress );
      on.entry( egressEntry() )->qualify( qualifier, match );
      on.reinstall( egressEntry() );
   }

   Pelk::IpGenAddr const tepIp = ip( "10.0.0.2" );
   ClassIdLeaf leaf;
};

TEST_F( ClassIdVerification, WhatAgreesPasses ) {
   grant();
   leaf.sm().handleVerify();
   EXPECT_EQ( leaf.tracesOf( "9" ), ( Lines{ "9 handleVerify", "9 verifyIfpEntries 3",
                                             "9 verifyIfpEntries", "9 verifyEfpEntries" } ) );
}

TEST_F( ClassIdVerification, TheReadBacksComeInThisOrder ) {
   grant();
   leaf.sm().verifyIfpEntries( 0, tepIp );
   Lines ingress = leaf.hardware();
   ASSERT_GE( ingress.size(), 2U );
   EXPECT_EQ( ( Lines{ ingress.end() - 2, ingress.end() } ),
              ( Lines{ "unit 0 entry 3: bcm_field_action_get( action EgressClassSelect, param0 1, "
                       "param1 0 )",
                       "unit 0 entry 3: bcm_field_action_get( action NewClassId, param0 5, param1 "
                       "0 )" } ) );
   leaf.sm().verifyEfpEntries( 0, tepIp );
   Lines const egress = leaf.hardware();
   ASSERT_EQ( egress.size(), 12U ) << "four for each of three ports";
   EXPECT_EQ( ( Lines{ egress.begin(), egress.begin() + 4 } ),
              ( Lines{
                 "unit 0 entry 4: bcm_field_qualify_DstPort_get( modId 40, modIdMask "
                 "0xffffffff, port 1, portMask 0xffffffff )",
                 "unit 0 entry 4: bcm_field_qualify_IngressClassField_get( data 5, mask "
                 "0xffffffff )",
                 "unit 0 entry 4: bcm_field_qualify_IpType_get( ipType 0 )",
                 "unit 0 entry 4: bcm_field_action_get( action Drop, param0 0, param1 0 )" } ) );
}

TEST_F( ClassIdVerification, TheSanityCheckSaysWhetherTheUnitHasARecord ) {
   grant();
   EXPECT_TRUE( leaf.sm().tcamSanityCheckForTepIp( 0, tepIp ) );
   EXPECT_EQ( leaf.traces, ( Lines{ "5 tcamSanityCheckForTepIp unit: 0 tepIp: 10.0.0.2",
                                    "4 tcamSanityCheckForTepIp ifpTcamsUsed: 1 classIdsUsed: 1 "
                                    "numEfpTcamsUsed: 3 numESPortsUsed: 3" } ) );
   leaf.forget();
   EXPECT_FALSE( leaf.sm().tcamSanityCheckForTepIp( 7, tepIp ) );
   EXPECT_EQ( leaf.traces, ( Lines{ "5 tcamSanityCheckForTepIp unit: 7 tepIp: 10.0.0.2" } ) );
}

TEST_F( ClassIdVerification, AClassIdThatNoRuleUsesYetPassesTheSanityCheck ) {
   leaf.roomIs( kIngress, 0, 0 );
   grant();
   EXPECT_TRUE( leaf.sm().tcamSanityCheckForTepIp( 0, tepIp ) );
   EXPECT_TRUE(
      leaf.hasTraced( "4 tcamSanityCheckForTepIp ifpTcamsUsed: 0 classIdsUsed: 1 "
                      "numEfpTcamsUsed: 0 numESPortsUsed: 0" ) );
}

TEST_F( ClassIdVerification, WithoutAListTheCheckPassesOnlyWhereNoPortIsExpected ) {
   EXPECT_DEATH( leaf.sm().verifyEfpEntries( 0, tepIp ),
                 stoppedAt( "ClassIdVerification", "verifyEfpEntries",
                            "portCount == expPortCount" ) );
   for ( std::string const name : { "Ethernet1", "Ethernet2", "Ethernet3" } ) {
      leaf.interfaceDel( name );
   }
   leaf.sm().verifyEfpEntries( 0, tepIp );
   leaf.sm().verifyEfpEntries( 7, tepIp );
   leaf.sm().verifyEfpEntries( 0, ip( "10.0.0.9" ) );
}

TEST_F( ClassIdVerification, APhysicalInterfaceCountsOnEveryUnitAndAMemberOnItsOwn ) {
   ClassIdLeaf spine( 2 );
   spine.interfaceIs( "Ethernet1", 0, 1 );
   spine.share( "Ethernet1", { "10.0.0.2" } );
   auto & sm = spine.start();
   spine.classIdIs( "10.0.0.2", 5 );
   sm.verifyEfpEntries( 0, tepIp );
   EXPECT_DEATH( sm.verifyEfpEntries( 1, tepIp ),
                 stoppedAt( "ClassIdVerification", "verifyEfpEntries",
                            "portCount == expPortCount" ) );
}

TEST_F( ClassIdVerification, APortChannelWithALivePortCountsOneHoweverManyMembersItHas ) {
   leaf.interfaceIs( "Port-Channel1", 0, 9 );
   grant();
   EXPECT_DEATH( leaf.sm().verifyEfpEntries( 0, tepIp ),
                 stoppedAt( "ClassIdVerification", "verifyEfpEntries",
                            "portCount == expPortCount" ) );
   leaf.memberDel( "Ethernet3" );
   leaf.sm().verifyEfpEntries( 0, tepIp );
}

TEST_F( ClassIdVerification, OnEachUnitTheCheckTheIngressAndTheEgressEntriesComeInThisOrder ) {
   ClassIdLeaf spine( 2 );
   spine.share( "Port-Channel1", { "10.0.0.2" } );
   auto & sm = spine.start();
   spine.classIdIs( "10.0.0.2", 5 );
   spine.forget();
   sm.handleVerify();
   Lines steps;
   std::copy_if( spine.traces.begin(), spine.traces.end(), std::back_inserter( steps ),
                 []( std::string const & line ) {
                    return line.starts_with( "5 tcamSanity" ) || line.starts_with( "9 verify" );
                 } );
   EXPECT_EQ( steps,
              ( Lines{ "5 tcamSanityCheckForTepIp unit: 0 tepIp: 10.0.0.2", "9 verifyIfpEntries 3",
                       "9 verifyIfpEntries", "9 verifyEfpEntries",
                       "5 tcamSanityCheckForTepIp unit: 1 tepIp: 10.0.0.2", "9 verifyIfpEntries 3",
                       "9 verifyIfpEntries", "9 verifyEfpEntries" } ) );
}

// --- What stops the process: one row an assertion

struct Drift {
   std::string name;
   std::string operation;
   std::string expression;
   std::function< void( ClassIdVerification & ) > happens;

   friend void PrintTo( Drift const & row, std::ostream * out ) { *out << row.name; }
};

class ClassIdDriftDeath : public ClassIdVerification,
                          public testing::WithParamInterface< Drift > {};

TEST_P( ClassIdDriftDeath, Stops ) {
   grant();
   GetParam().happens( *this );
   EXPECT_DEATH( leaf.sm().handleVerify(),
                 stoppedAt( "ClassIdVerification", GetParam().operation, GetParam().expression ) );
}

// The port's entry is on record for another one.
void recordAs( ClassIdVerification & test, VornalPort const & other ) {
   auto & list = test.list();
   VornalPort const port = ClassIdLeaf::port( 0, 1 );
   U32 const entry = list.efpEntryIdDel( port );
   list.efpEntryIdIs( other, entry );
}

INSTANTIATE_TEST_SUITE_P(
   ClassIdVerification, ClassIdDriftDeath,
   testing::Values(
      Drift{
         "AnIngressRuleWithoutAClassId", "tcamSanityCheckForTepIp", "classIdsUsed",
         []( ClassIdVerification & test ) { test.leaf.sm().i2eTepIpClassIdDel( test.tepIp ); } },
      Drift{ "AnIngressRuleWithoutAClassIdBeforeAnythingOfTheEgressRules",
             "tcamSanityCheckForTepIp", "classIdsUsed",
             []( ClassIdVerification & test ) {
                test.leaf.sm().i2eTepIpClassIdDel( test.tepIp );
                test.list().efpEntryIdDel( ClassIdLeaf::port( 0, 1 ) );
             } },
      // As a group leaves it that fills up during installation, had it recorded the port first.
      Drift{ "TwoListedPortsAndOneEntry", "tcamSanityCheckForTepIp",
             "numEfpTcamsUsed == numESPortsUsed",
             []( ClassIdVerification & test ) {
                test.list().efpEntryIdDel( ClassIdLeaf::port( 0, 2 ) );
                test.list().efpEntryIdDel( ClassIdLeaf::port( 0, 3 ) );
                test.leaf.write( test.list(), "esPortList", "",
                                 "{unit0/port1/mod40,unit0/port2/mod40}" );
             } },
      Drift{ "TwoListedPortsAndThreeEntries", "tcamSanityCheckForTepIp",
             "numEfpTcamsUsed == numESPortsUsed",
             []( ClassIdVerification & test ) {
                test.leaf.write( test.list(), "esPortList", "",
                                 "{unit0/port1/mod40,unit0/port2/mod40}" );
             } },
      Drift{ "AnotherClassSelection", "verifyIfpEntries",
             "data == BCM_FIELD_EGRESS_CLASS_SELECT_NEW",
             []( ClassIdVerification & test ) {
                test.drift( kIngress, test.ingressEntry(), Chip::Action::EgressClassSelect, 2 );
             } },
      Drift{ "AnotherMark", "verifyIfpEntries", "data == i2eClassId.value()",
             []( ClassIdVerification & test ) {
                test.drift( kIngress, test.ingressEntry(), Chip::Action::NewClassId, 6 );
             } },
      Drift{ "AnotherModule", "verifyEfpEntries", "modId == sp.modId()",
             []( ClassIdVerification & test ) { recordAs( test, VornalPort( 1, 9, 41 ) ); } },
      Drift{ "AnotherUnit", "verifyEfpEntries", "unit == sp.unit()",
             []( ClassIdVerification & test ) { recordAs( test, VornalPort( 1, 9, 40 ) ); } },
      Drift{ "AnotherPort", "verifyEfpEntries", "portId == sp.logicalPort()",
             []( ClassIdVerification & test ) { recordAs( test, VornalPort( 0, 9, 40 ) ); } },
      Drift{ "AnotherClass", "verifyEfpEntries", "data == i2eTepIpClassId( tepIp ).value()",
             []( ClassIdVerification & test ) {
                test.drift( Chip::Qualifier::IngressClassField, { .data = 6, .mask = 0xffffffff } );
             } },
      Drift{ "AnotherIpType", "verifyEfpEntries", "ipType == bcmFieldIpTypeAny",
             []( ClassIdVerification & test ) {
                test.drift( Chip::Qualifier::IpType, { .data = bcmFieldIpTypeIpv6 } );
             } },
      Drift{ "AnotherDrop", "verifyEfpEntries", "data == 0",
             []( ClassIdVerification & test ) {
                test.drift( kEgress, test.egressEntry(), Chip::Action::Drop, 1 );
             } },
      Drift{ "AMissingRule", "verifyEfpEntries", "portCount == expPortCount",
             []( ClassIdVerification & test ) {
                VornalPortList ports;
                ports.portIs( ClassIdLeaf::port( 0, 1 ) );
                test.leaf.sm().efpTcamEntries( 0, test.tepIp, ports, false );
             } } ),
   []( auto const & drift ) { return drift.param.name; } );

TEST_F( ClassIdVerification, AVtepWithoutAnIngressRuleIsHeldAgainstItsEgressRulesAllTheSame ) {
   leaf.sm().tepIpToEntry( 0U )->esPortAndEFPEntryIdListIs( tepIp )->efpEntryIdIs(
      ClassIdLeaf::port( 0, 1 ), 7 );
   EXPECT_DEATH( leaf.sm().tcamSanityCheckForTepIp( 0, tepIp ),
                 stoppedAt( "ClassIdVerification", "tcamSanityCheckForTepIp",
                            "numEfpTcamsUsed == numESPortsUsed" ) );
}

TEST_F( ClassIdVerification, TheClassSelectionIsJudgedBeforeTheMarkIsRead ) {
   grant();
   drift( kIngress, ingressEntry(), Chip::Action::EgressClassSelect, 2 );
   leaf.fail( { .nth = 2, .code = -3, .operation = "bcm_field_action_get" } );
   EXPECT_DEATH( leaf.sm().handleVerify(),
                 stoppedAt( "ClassIdVerification", "verifyIfpEntries",
                            "data == BCM_FIELD_EGRESS_CLASS_SELECT_NEW" ) );
}

// --- One row a read-back that the hardware refuses

struct RefusedRead {
   std::string name;
   Chip::Fault fault;
   std::string operation;
   std::string text;

   friend void PrintTo( RefusedRead const & row, std::ostream * out ) { *out << row.name; }
};

class ClassIdReadBackDeath : public ClassIdVerification,
                             public testing::WithParamInterface< RefusedRead > {};

TEST_P( ClassIdReadBackDeath, Stops ) {
   grant();
   leaf.fail( GetParam().fault );
   EXPECT_DEATH( leaf.sm().handleVerify(),
                 failedAt( "ClassIdVerification", GetParam().operation, GetParam().text, -3 ) );
}

INSTANTIATE_TEST_SUITE_P(
   ClassIdVerification, ClassIdReadBackDeath,
   testing::Values(
      RefusedRead{ "ClassSelection",
                   { .nth = 1, .code = -3, .operation = "bcm_field_action_get" },
                   "verifyIfpEntries",
                   "bcm_field_action_get( unit, entryId, bcmFieldActionEgressClassSelect, &data, "
                   "&mask )" },
      RefusedRead{
         "Mark",
         { .nth = 2, .code = -3, .operation = "bcm_field_action_get" },
         "verifyIfpEntries",
         "bcm_field_action_get( unit, entryId, bcmFieldActionNewClassId, &data, &mask )" },
      RefusedRead{ "Port",
                   { .nth = 1, .code = -3, .operation = "bcm_field_qualify_DstPort_get" },
                   "verifyEfpEntries",
                   "bcm_field_qualify_DstPort_get( unit, entryId, &modId, &modIdMask, &portId, "
                   "&portIdMask )" },
      RefusedRead{ "Class",
                   { .nth = 1, .code = -3, .operation = "bcm_field_qualify_IngressClassField_get" },
                   "verifyEfpEntries",
                   "bcm_field_qualify_IngressClassField_get( unit, entryId, &data, &mask )" },
      RefusedRead{ "IpType",
                   { .nth = 1, .code = -3, .operation = "bcm_field_qualify_IpType_get" },
                   "verifyEfpEntries",
                   "bcm_field_qualify_IpType_get( unit, entryId, &ipType )" },
      RefusedRead{ "Drop",
                   { .nth = 3, .code = -3, .operation = "bcm_field_action_get" },
                   "verifyEfpEntries",
                   "bcm_field_action_get( unit, entryId, bcmFieldActionDrop, &data, &mask )" } ),
   []( auto const & read ) { return read.param.name; } );

}  // namespace
