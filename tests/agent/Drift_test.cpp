// The chip's door for drift, and the step of a scenario that goes through it.
#include <Drift/Drift.h>

#include <gtest/gtest.h>

#include <AuditRun.h>
#include <Board/Board.h>
#include <FieldProcessor/Gport.h>
#include <ScenarioTexts.h>

namespace {

using Chip::Qualifier;
using Chip::ResultCode;

// A board with two ingress entries for the gports of VP 2 and 3, and one egress entry.
class ChipDrift : public testing::Test {
 protected:
   ChipDrift() {
      for ( U16 const vpIndex : { U16{ 2 }, U16{ 3 } } ) {
         U32 const id = ingress->getEntry( 0, "from VTEP", {} );
         board.sdk().bcm_field_qualify_SrcVxlanGport( 0, id, Chip::vxlanGportOf( vpIndex ) );
         ingress->installEntry( 0, id );
      }
      auto const egress = board.entryManager( Vornal::kEfpLocalBiasGroup );
      drop = egress->getEntry( 0, "drop", {} );
      board.sdk().bcm_field_action_add( 0, drop, bcmFieldActionDrop, 0, 0 );
   }

   U32 winner( U16 vpIndex ) {
      auto const * const entry = group.lookup( { .srcVxlanGport = Chip::vxlanGportOf( vpIndex ) } );
      return entry ? entry->id() : 0;
   }

   Chip::Board board{
      { { { .number = 0, .modId = 0, .capacities = { { 157, 3 }, { 45, 2 } } } } }
   };
   Quelm::Ptr< Chip::SoftTcamEntryManager > ingress =
      board.entryManager( Vornal::kIfpLocalBiasGroup );
   Chip::Group & group = *board.units().group( 0, 157 );
   Chip::Drift drift{ group };
   U32 drop = 0;
};

TEST_F( ChipDrift, IsMetByFramesAndOverwrittenByAReinstall ) {
   EXPECT_EQ( drift.dataFlips( 1, Qualifier::SrcVxlanGport, 8 ), ResultCode::None );
   EXPECT_EQ( winner( 2 ), 0U );
   EXPECT_EQ( winner( 10 ), 1U );

   ingress->reinstallEntry( 0, 1 );
   EXPECT_EQ( winner( 2 ), 1U );
   EXPECT_EQ( winner( 10 ), 0U );
}

TEST_F( ChipDrift, AMaskOfZeroMatchesEverything ) {
   EXPECT_EQ( drift.maskIs( 2, Qualifier::SrcVxlanGport, 0 ), ResultCode::None );
   EXPECT_EQ( winner( 77 ), 2U );
}

TEST_F( ChipDrift, GportsThatAreSwappedLeadToTheOtherEntry ) {
   EXPECT_EQ( drift.gportsSwap( 1, 2 ), ResultCode::None );
   EXPECT_EQ( winner( 2 ), 2U );
   EXPECT_EQ( winner( 3 ), 1U );
}

TEST_F( ChipDrift, AnErasedEntryKeepsItsRoomAndADestroyedOneGivesItBack ) {
   EXPECT_EQ( drift.erase( 1 ), ResultCode::None );
   EXPECT_EQ( winner( 2 ), 0U );
   EXPECT_EQ( group.used(), 2U );
   EXPECT_EQ( drift.destroy( 2 ), ResultCode::None );
   EXPECT_EQ( group.used(), 1U );
}

TEST_F( ChipDrift, ACopyStandsBelowItsOriginalUntilThatGoes ) {
   U32 const copy = drift.copy( 1 );
   EXPECT_EQ( group.entry( copy )->name(), "from VTEP" );
   EXPECT_EQ( winner( 2 ), 1U );
   drift.destroy( 1 );
   EXPECT_EQ( winner( 2 ), copy );
}

TEST_F( ChipDrift, ACopyAndItsOriginalDriftApartAndAReinstallKnowsNothingOfIt ) {
   U32 const copy = drift.copy( 1 );
   drift.dataFlips( copy, Qualifier::SrcVxlanGport, 8 );
   EXPECT_EQ( winner( 2 ), 1U );
   EXPECT_EQ( winner( 10 ), copy );
   drift.dataFlips( 1, Qualifier::SrcVxlanGport, 16 );
   EXPECT_EQ( winner( 18 ), 1U );
   EXPECT_EQ( winner( 10 ), copy );

   ingress->reinstallEntry( 0, 1 );
   ingress->reinstallEntry( 0, copy );
   EXPECT_EQ( winner( 10 ), 0U );
   EXPECT_EQ( winner( 18 ), 0U );
   drift.destroy( 1 );
   EXPECT_EQ( winner( 2 ), copy ) << "the staged content of the copy did not drift";
}

TEST_F( ChipDrift, IsRefusedWhereThereIsNothingToChange ) {
   EXPECT_EQ( drift.dataFlips( 9, Qualifier::SrcVxlanGport ), ResultCode::UnknownEntry );
   EXPECT_EQ( drift.dataFlips( 1, Qualifier::PacketRes ), ResultCode::NotFound );
   EXPECT_EQ( drift.dataFlips( 1, Qualifier::DstPort ), ResultCode::Unsupported );
   EXPECT_EQ( drift.gportsSwap( 1, 9 ), ResultCode::UnknownEntry );
   EXPECT_EQ( drift.remove( 1, Chip::Action::EgressMask ), ResultCode::NotFound );
   EXPECT_EQ( drift.copy( 9 ), 0U );
   Chip::Drift onEgress( *board.units().group( 0, 45 ) );
   EXPECT_EQ( onEgress.remove( drop, Chip::Action::Drop ), ResultCode::NotInstalled );
   EXPECT_EQ( onEgress.erase( drop ), ResultCode::NotInstalled );
}

// --- The step

class DriftInAScenario : public AuditRun {
 protected:
   // What is said of a step that cannot be carried out.
   std::string refusal( std::string const & words ) {
      scenario = Steps::readScenarioText( Leaf().text( "   - ready: subagents::l2Ready\n"
                                                       "   - drift: { unit: 0, " +
                                                       words + " }\n" ),
                                          "leaf.yaml" );
      Host::AgentConfig config;
      config.plugin = Support::plugin();
      Host::Agent( scenario, config, ring.bytes(), story ).run();
      return badInput();
   }
};

TEST_F( DriftInAScenario, ShowsInTheStoryAsAChangedRule ) {
   play( Leaf(),
         "   - ready: subagents::l2Ready\n"
         "   - drift: { group: ingress, unit: 0, rule: 10.0.0.2, priority: 7 }\n"
         "   - drift: { group: ingress, unit: 0, entry: 5, entry-is: destroyed }\n" );

   EXPECT_EQ( inStep< Story::RuleIs >( 2 ).at( 0 ).rule.content.priority, 7U );
   EXPECT_EQ( inStep< Story::RuleGone >( 3 ).at( 0 ).key.id, 5U );
   EXPECT_TRUE( inStep< Story::CallMade >( 2 ).empty() );
}

TEST_F( DriftInAScenario, NamesOneRule ) {
   std::string const text = refusal( "group: ingress, rule: from vtep IP, flip: SrcVxlanGport" );
   EXPECT_TRUE( text.starts_with( "leaf.yaml:" ) ) << text;
   EXPECT_TRUE(
      text.ends_with( "the names of entries 3 and 4 both contain \"from vtep IP\"; give "
                      "more of the name, or the entry's id" ) )
      << text;
   story.clear();
   EXPECT_TRUE( refusal( "group: egress, rule: vtep, remove: Drop" )
                   .ends_with( "no entry of group 45 has \"vtep\" in its name; the group is empty, "
                               "and 'dump: rules' shows their names" ) );
}

TEST_F( DriftInAScenario, SaysWhyARuleCannotChangeSo ) {
   std::string const entry = "entry 1 of group 157 on unit 0 cannot drift like this: ";
   struct Case {
      char const * words;
      std::string refusal;
   };
   for ( Case const & one :
         { Case{ "group: ingress, entry: 1, flip: VxlanNetworkId",
                 entry + "the rule lacks the part to change; 'dump: rules' shows its parts" },
           Case{ "group: ingress, entry: 1, remove: Drop",
                 entry + "no rule of this group has that part; 'dump: rules' shows their parts" },
           Case{ "group: ingress, entry: 77, priority: 1",
                 "group 157 has no entry 77; its entries are 1, 2, 3, 4" },
           Case{ "group: egress, entry: 1, remove: Drop",
                 "group 45 has no entry 1; the group is empty" },
           Case{ "group: ingress, entry: 3, swap-gport-with: 9",
                 "group 157 has no entry 9; its" } } ) {
      story.clear();
      std::string const text = refusal( one.words );
      EXPECT_NE( text.find( one.refusal ), std::string::npos ) << text;
   }
}

// --- Its words

std::string problemWith( std::string const & words ) {
   return ScenarioTexts::leafProblems( "steps:\n   - drift: { group: ingress, unit: 0, " + words +
                                       " }\n" );
}

TEST( DriftWords, NameOneRuleAndOneChange ) {
   EXPECT_EQ( problemWith( "entry: 1, flip: PacketRes" ), "" );
   EXPECT_EQ( problemWith( "flip: PacketRes" ),
              "leaf.yaml:10: drift needs one of the words 'entry' and 'rule'" );
   EXPECT_NE( problemWith( "entry: 1" )
                 .find( "drift changes one thing, but this one changes 0; give one of" ),
              std::string::npos );
   EXPECT_NE(
      problemWith( "entry: 1, remove: PacketRes, priority: 1" ).find( "this one changes 2" ),
      std::string::npos );
}

TEST( DriftWords, KnowQualifiersAndActions ) {
   EXPECT_NE( problemWith( "entry: 1, flip: PacketRez" )
                 .find( "'PacketRez' is not expected here; "
                        "known are SrcVxlanGport, " ),
              std::string::npos );
   EXPECT_NE( problemWith( "entry: 1, flip: Drop" ), "" );
   EXPECT_EQ( problemWith( "entry: 1, remove: Drop" ), "" );
   EXPECT_NE( problemWith( "entry: 1, mask: { Drop: 1 }" ), "" );
   EXPECT_NE( problemWith( "entry: 1, egress-mask: [ 352 ]" ), "" );
   EXPECT_NE( problemWith( "entry: 1, entry-is: gone" ), "" );
}

}  // namespace
