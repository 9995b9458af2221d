// Steps that concern others than the plug-in: users of the TCAM, the allocator of class ids;
// and dumps.
#include <gtest/gtest.h>

#include <AgentRun.h>

namespace {

using AgentSteps = AgentRun;

TEST_F( AgentSteps, LetOthersTakeTheRoomOfAGroupAndGiveItBack ) {
   run(
      "   - foreign-entries: { group: ingress, unit: 0, count: 9 }\n"
      "   - ready: subagents::l2Ready\n"
      "   - expect: { rules: { group: ingress, count: 0 }, log: SAMPLE_GROUP_FULL }\n"
      "   - foreign-entries: { group: ingress, count: 7 }\n"
      "   - publish: { segments: { Ethernet2: [] } }\n"
      "   - expect: { rules: { group: ingress, count: 1 } }\n" );

   EXPECT_EQ( failedExpectations(), 0U );
   auto const held = inStep< Story::ForeignEntriesAre >( 1 );
   ASSERT_EQ( held.size(), 1U );
   EXPECT_EQ( held[ 0 ].asked, 9U );
   EXPECT_EQ( held[ 0 ].held, 8U );
}

TEST_F( AgentSteps, ExpectRulesByWhatTheyAreCalledMatchAndDo ) {
   run(
      "   - ready: subagents::l2Ready\n"
      "   - expect:\n"
      "        - rules: { group: ingress, name: Sample Ethernet1, state: written, priority: 1,\n"
      "                   qualifiers: { PacketRes: 4 }, actions: { EgressMask: [ 3 ] } }\n"
      "        - rules: { group: ingress, qualifiers: { PacketRes: }, actions: { EgressMask: } }\n"
      "        - rules: { group: ingress, qualifiers: { PacketRes: 5 }, count: 0 }\n"
      "        - rules: { group: ingress, qualifiers: { SrcVxlanGport: }, count: 0 }\n"
      "        - rules: { group: ingress, actions: { EgressMask: [ 3, 4 ] }, count: 0 }\n"
      "        - rules: { group: ingress, actions: none, count: 0 }\n"
      "        - rules: { group: ingress, priority: default, count: 0 }\n"
      "        - rules: { group: ingress, priority: 2, count: 0 }\n"
      "        - rules: { group: ingress, state: staged-only, count: 0 }\n"
      "        - rules: { group: ingress, name: Ethernet2, count: 0 }\n"
      "   - expect: { rules: { group: ingress, name: Ethernet1, count: 2 } }\n" );

   EXPECT_EQ( failedExpectations(), 1U );
   EXPECT_EQ( inStep< Story::ExpectationChecked >( 3 ).at( 0 ).found,
              "there is one; the group has no other rules" );
}

TEST_F( AgentSteps, DumpRulesAndEntities ) {
   run(
      "   - ready: subagents::l2Ready\n"
      "   - dump: rules\n"
      "   - dump: /evpn/status\n" );

   EXPECT_EQ( inStep< Story::RulesDumped >( 2 ).at( 0 ).rules.at( 0 ).name, "Sample Ethernet1" );
   auto const dumped = inStep< Story::EntityDumped >( 3 ).at( 0 );
   EXPECT_EQ( dumped.path, "/evpn/status" );
   EXPECT_EQ( dumped.tree.type, "Evpn::EvpnStatus" );
}

TEST_F( AgentSteps, EndTheRunAtADumpOfWhatIsNotThere ) {
   run( "   - dump: /evpn/nothing\n" );

   EXPECT_NE( story.all< Story::BadInput >().at( 0 ).text.find( "leaf.yaml:20: " ),
              std::string::npos );
}

// The class id that VTEP 10.0.0.2 is granted, with every change of it, in one step.
std::vector< std::string > grantsIn( std::vector< Story::PublishedChange > const & changes ) {
   std::vector< std::string > grants;
   for ( Story::PublishedChange const & change : changes ) {
      if ( change.path.find( "i2eclassid/status" ) != std::string::npos ) {
         grants.push_back( change.to.value_or( "none" ) );
      }
   }
   return grants;
}

std::string const kAsk =
   "   - set: { entity: /hardware/vornal/i2eclassid/config/slice/3, attribute: remoteESPeerVtep,\n"
   "            key: 10.0.0.2, value: true }\n";

using Grants = std::vector< std::string >;

TEST_F( AgentSteps, AreOverWhenTheAllocatorHasServedWhatTheyAskFor ) {
   run( kAsk );

   EXPECT_EQ( grantsIn( inStep< Story::PublishedChange >( 1 ) ), Grants{ "1" } );
}

TEST_F( AgentSteps, PauseTheAllocatorAndLetItServe ) {
   run( "   - class-id-allocator: paused\n" + kAsk + "   - class-id-allocator: serving\n" );

   EXPECT_EQ( grantsIn( inStep< Story::PublishedChange >( 2 ) ), Grants() );
   EXPECT_EQ( grantsIn( inStep< Story::PublishedChange >( 3 ) ), Grants{ "1" } );
}

TEST_F( AgentSteps, GrantChangeAndWithdrawClassIdsByHand ) {
   run( kAsk +
        "   - publish: { class-id-grants: { 10.0.0.2: 7 } }\n"
        "   - withdraw: { class-id-grants: [ 10.0.0.2 ] }\n" );

   EXPECT_EQ( grantsIn( inStep< Story::PublishedChange >( 2 ) ), Grants{ "7" } );
   EXPECT_EQ( grantsIn( inStep< Story::PublishedChange >( 3 ) ), Grants{ "none" } );
}

// The reader cannot know what is published behind a step of the generic interface.
TEST_F( AgentSteps, EndTheScenarioWhereThereIsNothingToWithdraw ) {
   std::vector< std::pair< std::string, std::string > > const all{
      { "segments: { Ethernet1: [ 10.9.9.9 ] }",
        "10.9.9.9 is not attached to a segment on Ethernet1" },
      { "vteps: [ 10.9.9.9 ]", "10.9.9.9 has no virtual port" },
      { "tunnel-interfaces: [ Vxlan9 ]", "there is no Vxlan9" },
      { "tunnel-interfaces: { Vxlan9: [ red ] }", "VRF red has no VNI on Vxlan9" },
      { "class-id-grants: [ 10.9.9.9 ]", "10.9.9.9 has no class id" }
   };
   for ( auto const & [ words, absent ] : all ) {
      run(
         "   - set: { entity: /evpn/status, attribute: segmentStatus, key: Ethernet1 }\n"
         "   - withdraw: { " +
         words + " }\n" );

      std::string const told = story.all< Story::BadInput >().back().text;
      EXPECT_TRUE( told.ends_with( absent + " at this point, so nothing can be withdrawn" ) )
         << words << ": " << told;
   }
   EXPECT_EQ( story.all< Story::BadInput >().size(), all.size() );
}

TEST_F( AgentSteps, EndTheScenarioWhereThereIsNothingToDelete ) {
   run( "   - delete: { entity: /evpn/status, attribute: segmentStatus, key: Ethernet77 }\n" );

   EXPECT_TRUE( badInput().ends_with(
      "attribute 'segmentStatus' has no key 'Ethernet77', so nothing can be deleted" ) )
      << badInput();
}

}  // namespace
