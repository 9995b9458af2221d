// The ingress entry of a remote VTEP: how it is built and freed, and what happens when there is no
// room for it. On the machine without a variant where nothing else is said.

#include <gtest/gtest.h>

#include <csignal>

#include <Decorators/FailingSdk.h>
#include <FeatureToggle/FeatureToggle.h>
#include <Snapshot/Rules.h>

#include "../support/BareMachine.h"
#include "../support/Stops.h"

namespace IngressRulesTest {

using Support::BareMachine;
using Support::bareMachineNew;
using Support::ip;
using Support::Lines;
using Support::LocalBiasSwitch;
using Support::Variant;
using Support::vtepRuleName;

std::string const full =
   "%VORNAL-3-MULTIHOMING_TCAM_RESOURCE_FULL: "
   "TCAM resource for EVPN Multi-Homing exhausted";

// 10.0.0.2 has virtual port 2, unit 0 has its record and nothing is programmed.
class IngressRules : public testing::Test {
 protected:
   explicit IngressRules( U32 capacity = 64 ) : leaf( 1, capacity ) {
      leaf.vtepIs( "10.0.0.2", 0x70002 );
      leaf.vtepIs( "10.0.0.3", 0x70003 );
      record = sm->tepIpToEntryIs( U16{ 0 } );
      leaf.forget();
   }

   LocalBiasSwitch leaf;
   Quelm::Ptr< BareMachine > const sm = bareMachineNew( leaf );
   Quelm::Ptr< Vornal::TepIpToEntry > record;
};

TEST_F( IngressRules, TheEntryIsQualifiedAndPrioritisedButNotInstalled ) {
   EXPECT_TRUE( sm->ifpTcamEntries( 0, ip( "10.0.0.2" ), true ) );
   EXPECT_EQ( leaf.callLines(),
              ( Lines{
                 "unit 0 entry 1: " + Support::ingressRequest( vtepRuleName( "10.0.0.2" ) ),
                 "unit 0 entry 1: bcm_field_qualify_SrcVxlanGport( gport 0x56000002 ) = 0",
                 "unit 0 entry 1: setPriorityForEntry( group 157, priority 1 ) = 0",
              } ) );
   EXPECT_EQ( leaf.calls[ 1 ].callText, "bcm_field_qualify_SrcVxlanGport( unit, entryId, gport )" );
   EXPECT_EQ( record->entryId( ip( "10.0.0.2" ) ), 1U );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "5 ifpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1",
                              "4 ifpTcamEntries allocated IFP entry ID 1",
                           } ) );
   EXPECT_FALSE( Chip::rulesOf( leaf.board.units() ).at( 0 ).isWritten );
}

TEST_F( IngressRules, TheEntryOfAnIpv6VtepIsNamedAfterIt ) {
   leaf.vtepIs( "2001:db8::2", 0x1ffff );
   sm->ifpTcamEntries( 0, ip( "2001:db8::2" ), true );
   auto const rule = Chip::rulesOf( leaf.board.units() ).at( 0 );
   EXPECT_EQ( rule.name, vtepRuleName( "2001:db8::2" ) );
   EXPECT_EQ( rule.content[ Chip::Qualifier::SrcVxlanGport ]->data, 0x5600ffffU );
}

TEST_F( IngressRules, TheGportIsWhatTheShimMakesOfTheVpIndex ) {
   class OtherGports final : public Chip::SdkDecorator {
    public:
      using SdkDecorator::SdkDecorator;
      U32 vxlanGport( U16 vpIndex ) const override {
         return SdkDecorator::vxlanGport( vpIndex ) | 0x0f00U;
      }
   };
   OtherGports shim( *Shim::sdk_ );
   Shim::sdk_ = &shim;
   sm->ifpTcamEntries( 0, ip( "10.0.0.2" ), true );
   EXPECT_EQ( leaf.callLines()[ 1 ],
              "unit 0 entry 1: bcm_field_qualify_SrcVxlanGport( gport 0x56000f02 ) = 0" );
}

TEST_F( IngressRules, TheSharedPartObtainsAnotherEntryWhenItIsAskedAgain ) {
   sm->ifpTcamEntries( 0, ip( "10.0.0.2" ), true );
   EXPECT_TRUE( sm->ifpTcamEntries( 0, ip( "10.0.0.2" ), true ) );
   EXPECT_EQ( record->entryId( ip( "10.0.0.2" ) ), 2U );
}

TEST_F( IngressRules, RemovingReleasesTheEntryAndForgetsIt ) {
   sm->ifpTcamEntries( 0, ip( "10.0.0.2" ), true );
   leaf.forget();
   EXPECT_TRUE( sm->deleteTcamEntries( 0, ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.callLines(), ( Lines{ "unit 0 entry 1: releaseEntry( group 157 ) = 0" } ) );
   EXPECT_FALSE( record->entryIdHas( ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "5 deleteTcamEntries, unit: 0, tepIp: 10.0.0.2",
                              "5 ifpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 0",
                              "4 ifpTcamEntries freed IFP entry ID 1",
                           } ) );
}

TEST_F( IngressRules, RemovingWhatHasNoEntrySucceedsAndChangesNothing ) {
   sm->ifpTcamEntries( 0, ip( "10.0.0.3" ), true );
   leaf.forget();
   EXPECT_TRUE( sm->ifpTcamEntries( 0, ip( "10.0.0.2" ), false ) );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_EQ( record->entryIds(), 1U );
   EXPECT_EQ( leaf.traces, ( Lines{ "5 ifpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 0" } ) );
}

TEST_F( IngressRules, AddingIsTracedAndReportsTheEntrysResult ) {
   EXPECT_TRUE( sm->addTcamEntries( 0, ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.traces.front(), "5 addTcamEntries, unit: 0, tepIp: 10.0.0.2" );
   EXPECT_EQ( leaf.traces[ 1 ], "5 ifpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1" );
   EXPECT_TRUE( leaf.logs.empty() );
   EXPECT_FALSE( sm->tcamExhaustion() );
}

TEST_F( IngressRules, WhatAVariantDoesNotNeedSucceeds ) {
   VornalTypes::VornalPortList const ports;
   EXPECT_TRUE( sm->efpTcamEntries( 0, ip( "10.0.0.2" ), ports, true ) );
   EXPECT_TRUE( sm->updateIfpTcamEntries( 0, ip( "10.0.0.2" ), ports, ports, true ) );
   EXPECT_TRUE( sm->updateEfpTcamEntries( 0, ip( "10.0.0.2" ), ports, ports, true ) );
   EXPECT_TRUE( sm->tcamSanityCheckForTepIp( 0, ip( "10.0.0.2" ) ) );
   sm->updateTcamEntries( 0, ip( "10.0.0.2" ), Support::intf( "Ethernet1" ), true );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_TRUE( leaf.traces.empty() );
}

// --- The toggle

class Toggled : public FeatureToggle::Facility {
 public:
   explicit Toggled( bool isOn ) : isOn_( isOn ) { FeatureToggle::facilityIs( this ); }
   Toggled( Toggled const & ) = delete;
   Toggled & operator=( Toggled const & ) = delete;
   ~Toggled() override { FeatureToggle::facilityIs( nullptr ); }
   bool isEnabled( std::string const & name, std::string const & file, bool ) override {
      return name == "SbdEvpnTcamOverrideRule" && file == "VornalL3.json" && isOn_;
   }

 private:
   bool isOn_;
};

TEST_F( IngressRules, WithTheToggleOnItsPriorityIsBelowThatOfThePerVniRules ) {
   Toggled const on( true );
   sm->ifpTcamEntries( 0, ip( "10.0.0.2" ), true );
   EXPECT_EQ( leaf.callLines().back(),
              "unit 0 entry 1: setPriorityForEntry( group 157, priority 1 ) = 0" );
}

TEST_F( IngressRules, WithTheToggleOffItKeepsTheGroupsDefaultPriority ) {
   Toggled const off( false );
   sm->ifpTcamEntries( 0, ip( "10.0.0.2" ), true );
   EXPECT_EQ( leaf.callLines().back(),
              "unit 0 entry 1: bcm_field_qualify_SrcVxlanGport( gport 0x56000002 ) = 0" );
}

// --- No room

struct IngressRulesInNoRoom : IngressRules {
   IngressRulesInNoRoom() : IngressRules( 0 ) {}
};

TEST_F( IngressRulesInNoRoom, AFailedAllocationRecordsNothing ) {
   EXPECT_FALSE( sm->ifpTcamEntries( 0, ip( "10.0.0.2" ), true ) );
   EXPECT_FALSE( record->entryIdHas( ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.calls.size(), 1U );
   EXPECT_EQ( leaf.calls[ 0 ].operation, "getEntry" );
   EXPECT_EQ( leaf.traces, ( Lines{
                              "5 ifpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1",
                              "5 handleTcamExhaustion",
                              "2 ifpTcamEntries failed to allocate IFP entry ID",
                           } ) );
}

TEST_F( IngressRulesInNoRoom, AfterAFailedAllocationALaterRemoveIsANoOp ) {
   EXPECT_FALSE( sm->addTcamEntries( 0, ip( "10.0.0.2" ) ) );
   leaf.forget();
   EXPECT_TRUE( sm->deleteTcamEntries( 0, ip( "10.0.0.2" ) ) );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_FALSE( record->entryIdHas( ip( "10.0.0.2" ) ) );
}

TEST_F( IngressRulesInNoRoom, IsLoggedOnTheFirstFailureOnly ) {
   EXPECT_FALSE( sm->addTcamEntries( 0, ip( "10.0.0.2" ) ) );
   EXPECT_TRUE( sm->tcamExhaustion() );
   EXPECT_EQ( leaf.logs, ( Lines{ full } ) );
   EXPECT_FALSE( sm->addTcamEntries( 0, ip( "10.0.0.3" ) ) );
   EXPECT_FALSE( sm->addTcamEntries( 0, ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.logs, ( Lines{ full } ) );
}

struct IngressRulesInRoomForOne : IngressRules {
   IngressRulesInRoomForOne() : IngressRules( 1 ) {}
};

TEST_F( IngressRulesInRoomForOne, RecoveryIsNeitherLoggedNorRemembered ) {
   sm->addTcamEntries( 0, ip( "10.0.0.2" ) );
   sm->addTcamEntries( 0, ip( "10.0.0.3" ) );
   sm->deleteTcamEntries( 0, ip( "10.0.0.2" ) );
   EXPECT_TRUE( sm->addTcamEntries( 0, ip( "10.0.0.3" ) ) );
   EXPECT_TRUE( sm->tcamExhaustion() );
   EXPECT_FALSE( sm->addTcamEntries( 0, ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.logs, ( Lines{ full } ) );
}

// The same on a chip that tags at ingress: what was not programmed can be taken away.
TEST( IngressRulesOfClassId, AfterAFailedAllocationALaterRemoveIsANoOp ) {
   LocalBiasSwitch leaf( 1, 0 );
   leaf.shareEthernet1();
   leaf.vtepIs( "10.0.0.2", 0x10002 );
   auto const sm = leaf.machineNew( Variant::I2EClassId );
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_EQ( leaf.logs, ( Lines{ full } ) );
   EXPECT_FALSE( sm->tepIpToEntry( 0U )->entryIdHas( ip( "10.0.0.2" ) ) );
   leaf.forget();
   leaf.vtepDel( "10.0.0.2" );
   EXPECT_TRUE( leaf.hasTraced( "5 deleteTcamEntries, unit: 0, tepIp: 10.0.0.2" ) );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_FALSE( sm->tepIpToEntryHas( 0 ) );
}

TEST( IngressRulesOfClassId, RemovingWhatHasNoEntrySucceedsAndChangesNothing ) {
   LocalBiasSwitch leaf;
   auto const sm = leaf.machineNew( Variant::I2EClassId );
   auto const record = sm->tepIpToEntryIs( U16{ 0 } );
   EXPECT_TRUE( sm->deleteTcamEntries( 0, ip( "10.0.0.2" ) ) );
   EXPECT_TRUE( leaf.calls.empty() );
   EXPECT_EQ( record->entryIds(), 0U );
}

// --- What stops the process

using IngressRulesDeathTest = IngressRules;

std::string addStops( std::string const & expression ) {
   return "^" + Support::assertionLine( "IngressRules.cpp:", "addTcamEntries", expression ) + "$";
}

TEST_F( IngressRulesDeathTest, AVtepWithAnEntryIsNotAddedAgain ) {
   record->entryIdIs( ip( "10.0.0.2" ), 7 );
   record->esPbmpIs( ip( "10.0.0.2" ), {} );
   record->esPortAndEFPEntryIdListIs( ip( "10.0.0.2" ) );
   EXPECT_EXIT( sm->addTcamEntries( 0, ip( "10.0.0.2" ) ), testing::KilledBySignal( SIGABRT ),
                addStops( "!unitTepIpToEntry->entryIdHas( tepIp )" ) );
}

TEST_F( IngressRulesDeathTest, AVtepWithAMaskIsNotAddedAgain ) {
   record->esPbmpIs( ip( "10.0.0.2" ), {} );
   record->esPortAndEFPEntryIdListIs( ip( "10.0.0.2" ) );
   EXPECT_EXIT( sm->addTcamEntries( 0, ip( "10.0.0.2" ) ), testing::KilledBySignal( SIGABRT ),
                addStops( "!unitTepIpToEntry->esPbmpHas( tepIp )" ) );
}

TEST_F( IngressRulesDeathTest, AVtepWithEgressEntriesIsNotAddedAgain ) {
   record->esPortAndEFPEntryIdListIs( ip( "10.0.0.2" ) );
   EXPECT_EXIT( sm->addTcamEntries( 0, ip( "10.0.0.2" ) ), testing::KilledBySignal( SIGABRT ),
                addStops( "!unitTepIpToEntry->esPortAndEFPEntryIdListHas( tepIp )" ) );
}

TEST_F( IngressRulesDeathTest, AFailedQualifierStopsTheProcessAtItsLine ) {
   Chip::FailingSdk failing( *Shim::sdk_, { .nth = 1, .code = -6 } );
   Shim::sdk_ = &failing;
   EXPECT_EXIT( sm->addTcamEntries( 0, ip( "10.0.0.2" ) ), testing::KilledBySignal( SIGABRT ),
                Support::failedCall( "IngressRules.cpp:", "ifpTcamEntries",
                                     "bcm_field_qualify_SrcVxlanGport( unit, entryId, gport )",
                                     "Value out of range (-6)" ) );
}

TEST_F( IngressRules, APositiveCodeOfTheQualifierIsNoFailure ) {
   Chip::FailingSdk odd( *Shim::sdk_, { .nth = 1, .code = 3 } );
   Shim::sdk_ = &odd;
   EXPECT_TRUE( sm->addTcamEntries( 0, ip( "10.0.0.2" ) ) );
   EXPECT_TRUE( record->entryIdHas( ip( "10.0.0.2" ) ) );
}

}  // namespace IngressRulesTest
