// Snapshots of the rules, and what changed between two of them.
#include <gtest/gtest.h>

#include <Snapshot/Rules.h>

#include "TwoUnitSwitch.h"

namespace RulesTest {

using namespace ChipTest;
using Chip::Action;
using Chip::changesBetween;
using Chip::Match;
using Chip::Qualifier;
using Chip::Rule;
using Chip::RuleChanges;
using Chip::Rules;
using Chip::rulesOf;

class RulesOfLeaf1 : public testing::Test {
 protected:
   Rules now() const { return rulesOf( leaf1.board.units() ); }

   TwoUnitSwitch leaf1;
};

TEST_F( RulesOfLeaf1, AreNoneAtFirst ) {
   EXPECT_EQ( now(), Rules() );
}

TEST_F( RulesOfLeaf1, ShowEverythingOfAnIngressRule ) {
   U32 const id = leaf1.ifp->getEntry( 0, "from vtep", {} );
   leaf1.sdk.bcm_field_qualify_SrcVxlanGport( 0, id, kVtep2 );
   leaf1.ifp->addEgressMaskAction( 0, id, pbmpOfPorts( { 5 } ) );
   leaf1.ifp->setPriorityForEntry( 0, id, 1 );
   leaf1.ifp->installEntry( 0, id );

   Rules const rules = now();
   ASSERT_EQ( rules.size(), 1U );
   Rule const & rule = rules.front();
   EXPECT_EQ( rule.key.unit, 0 );
   EXPECT_EQ( rule.key.group, kIfp );
   EXPECT_EQ( rule.key.id, id );
   EXPECT_EQ( rule.name, "from vtep" );
   EXPECT_TRUE( rule.isWritten );
   EXPECT_EQ( rule.content.priority, 1U );
   EXPECT_EQ( rule.content[ Qualifier::SrcVxlanGport ], ( Match{ kVtep2, kExact } ) );
   EXPECT_EQ( rule.content[ Qualifier::PacketRes ], std::nullopt );
   EXPECT_EQ( Quelm::textOf( rule.content[ Action::EgressMask ]->ports ), "{5}" );
   EXPECT_EQ( rule.content[ Action::NewClassId ], std::nullopt );
}

TEST_F( RulesOfLeaf1, ShowEverythingOfAnEgressRule ) {
   U32 const id = leaf1.efp->getEntry( 1, "drop", {} );
   leaf1.sdk.bcm_field_qualify_DstPort( 1, id, 4, kExact, 5, kExact );
   leaf1.sdk.bcm_field_action_add( 1, id, bcmFieldActionDrop, 0, 0 );

   Rules const rules = now();
   ASSERT_EQ( rules.size(), 1U );
   Rule const & rule = rules.front();
   EXPECT_EQ( rule.key.unit, 1 );
   EXPECT_EQ( rule.key.group, kEfp );
   EXPECT_FALSE( rule.isWritten );
   EXPECT_EQ( rule.content.priority, std::nullopt );
   EXPECT_EQ( rule.content[ Qualifier::DstPort ], ( Match{ 5, kExact, 4, kExact } ) );
   EXPECT_TRUE( rule.content[ Action::Drop ] );
}

TEST_F( RulesOfLeaf1, AreFoundByTheirKey ) {
   U32 const id = leaf1.efp->getEntry( 1, "drop", {} );
   std::map< Chip::RuleKey, std::string > names;
   leaf1.board.units().forEachEntry( [ & ]( Chip::RuleKey const & key, Chip::Entry const & entry ) {
      names[ key ] = entry.name();
   } );
   std::map< Chip::RuleKey, std::string > const expected{ { { 1, kEfp, id }, "drop" } };
   EXPECT_EQ( names, expected );
   EXPECT_LT( ( Chip::RuleKey{ .unit = 0, .group = kIfp, .id = 9 } ),
              ( Chip::RuleKey{ .unit = 1, .group = kEfp, .id = 1 } ) );
   EXPECT_LT( ( Chip::RuleKey{ .unit = 1, .group = kEfp, .id = 9 } ),
              ( Chip::RuleKey{ .unit = 1, .group = kIfp, .id = 1 } ) );
   EXPECT_LT( ( Chip::RuleKey{ .unit = 1, .group = kEfp, .id = 1 } ),
              ( Chip::RuleKey{ .unit = 1, .group = kEfp, .id = 2 } ) );
}

TEST_F( RulesOfLeaf1, AreOrderedByUnitGroupAndId ) {
   leaf1.ifp->getEntry( 1, "fourth", {} );
   leaf1.ifp->getEntry( 0, "second", {} );
   leaf1.efp->getEntry( 0, "first", {} );
   leaf1.ifp->getEntry( 0, "third", {} );
   std::vector< std::string > names;
   for ( Rule const & rule : now() ) {
      names.push_back( rule.name );
   }
   EXPECT_EQ( names, ( std::vector< std::string >{ "first", "second", "third", "fourth" } ) );
}

TEST_F( RulesOfLeaf1, ShowTheWrittenCopyOfAnInstalledRule ) {
   U32 const id = leaf1.fromVtep( 0, kVtep2 );
   leaf1.sdk.bcm_field_qualify_SrcVxlanGport( 0, id, kVtep3 );
   EXPECT_EQ( now().front().content[ Qualifier::SrcVxlanGport ]->data, kVtep2 );
}

TEST_F( RulesOfLeaf1, TellWhatAStepAdded ) {
   leaf1.fromVtep( 0, kVtep2 );
   Rules const before = now();
   leaf1.fromVtep( 0, kVtep3 );
   leaf1.fromVtep( 1, kVtep3 );
   RuleChanges const changes = changesBetween( before, now() );
   ASSERT_EQ( changes.added.size(), 2U );
   EXPECT_EQ( changes.added[ 0 ].key.id, 2U );
   EXPECT_EQ( changes.added[ 1 ].key.unit, 1 );
   EXPECT_TRUE( changes.changed.empty() );
   EXPECT_TRUE( changes.removed.empty() );
}

TEST_F( RulesOfLeaf1, TellWhatAStepRemoved ) {
   leaf1.fromVtep( 0, kVtep2 );
   leaf1.fromVtep( 0, kVtep3 );
   leaf1.fromVtep( 1, kVtep2 );
   Rules const before = now();
   leaf1.ifp->releaseEntry( 0, 1 );
   leaf1.ifp->releaseEntry( 1, 1 );
   RuleChanges const changes = changesBetween( before, now() );
   EXPECT_EQ( changes.removed, ( Rules{ before[ 0 ], before[ 2 ] } ) );
   EXPECT_TRUE( changes.added.empty() );
   EXPECT_TRUE( changes.changed.empty() );
}

TEST_F( RulesOfLeaf1, TellWhatAStepChanged ) {
   U32 const id = leaf1.ifp->getEntry( 0, "from vtep", {} );
   leaf1.fromVtep( 0, kVtep3 );
   Rules const before = now();
   leaf1.ifp->installEntry( 0, id );
   RuleChanges const changes = changesBetween( before, now() );
   ASSERT_EQ( changes.changed.size(), 1U );
   EXPECT_FALSE( changes.changed[ 0 ].before.isWritten );
   EXPECT_TRUE( changes.changed[ 0 ].after.isWritten );
   EXPECT_TRUE( changes.added.empty() );
   EXPECT_TRUE( changes.removed.empty() );
}

TEST_F( RulesOfLeaf1, TellWhenNothingHappened ) {
   leaf1.fromVtep( 0, kVtep2 );
   EXPECT_TRUE( changesBetween( now(), now() ).isEmpty() );
}

TEST_F( RulesOfLeaf1, AreNamedForPeopleAndPrograms ) {
   std::string names;
   for ( Qualifier const qualifier : Chip::kQualifiers ) {
      names.append( nameOf( qualifier ) ).append( " " );
   }
   for ( Action const action : Chip::kActions ) {
      names.append( nameOf( action ) ).append( " " );
   }
   EXPECT_EQ( names,
              "SrcVxlanGport PacketRes TunnelTerminated VxlanNetworkId DstPort IpType "
              "IngressClassField EgressMask EgressClassSelect NewClassId Drop " );
}

}  // namespace RulesTest
