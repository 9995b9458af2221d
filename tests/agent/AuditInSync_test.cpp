// Switches on which everything is as it should be, whatever has happened to them before.
#include <AuditRun.h>

namespace {

class AuditInSync : public AuditRun {
 protected:
   void expectInSync( Leaf const & leaf, std::string const & steps, U32 rules ) {
      auto const audited = auditAfter( leaf, steps );
      EXPECT_EQ( kinds( audited ), "" ) << words( audited );
      EXPECT_EQ( audited.rules, rules );
      EXPECT_EQ( audited.entries, rules );
   }
};

TEST_F( AuditInSync, TwoVtepsAPortChannelASinglePortAndAVni ) {
   expectInSync( Leaf(), "", 5 );
}

TEST_F( AuditInSync, TheSameWithClassIds ) {
   expectInSync( classIdLeaf(), "", 10 );
}

TEST_F( AuditInSync, TwoUnits ) {
   expectInSync( twoUnitLeaf( "egress-mask" ), "", 8 );
}

TEST_F( AuditInSync, TwoUnitsWithClassIds ) {
   expectInSync( twoUnitLeaf( "class-id" ), "", 13 );
}

TEST_F( AuditInSync, AddressesOfBothFamilies ) {
   Leaf leaf = classIdLeaf();
   leaf.segments = "{ Ethernet2: [ 2001:db8::2, 10.0.0.2 ] }";
   leaf.vteps = "{ 10.0.0.2: { virtual-port: 2 }, 2001:db8::2: { virtual-port: 7 } }";
   expectInSync( leaf, "", 7 );
}

TEST_F( AuditInSync, NothingBeforeThePlugInIsReady ) {
   play( Leaf(), "   - verify: audit\n" );

   auto const audited = story.all< Story::Audited >().at( 0 );
   EXPECT_EQ( kinds( audited ), "" );
   EXPECT_EQ( audited.rules, 0U );
}

TEST_F( AuditInSync, ASegmentWithoutVtepsNeedsTheVniRuleAlone ) {
   Leaf leaf;
   leaf.segments = "{ Ethernet1: [] }";
   expectInSync( leaf, "", 1 );
}

TEST_F( AuditInSync, NothingIsLeftWhenAllSegmentsGo ) {
   for ( Leaf const & leaf : { Leaf(), classIdLeaf() } ) {
      story.clear();
      expectInSync( leaf, "   - withdraw: { segments: [ Port-Channel2, Ethernet1 ] }\n", 0 );
   }
}

TEST_F( AuditInSync, AVtepWithoutAVirtualPortNeedsNoRules ) {
   for ( Leaf const & leaf : { Leaf(), classIdLeaf() } ) {
      story.clear();
      expectInSync( leaf, "   - withdraw: { vteps: [ 10.0.0.2, 10.0.0.4 ] }\n", 1 );
   }
}

TEST_F( AuditInSync, FollowsANewVirtualPort ) {
   expectInSync( classIdLeaf(), "   - publish: { vteps: { 10.0.0.2: { virtual-port: 9 } } }\n",
                 10 );
}

TEST_F( AuditInSync, FollowsMembersOfPortChannels ) {
   for ( Leaf const & leaf : { Leaf(), classIdLeaf() } ) {
      story.clear();
      expectInSync( leaf,
                    "   - publish: { port-channels: { Port-Channel2: [ Ethernet2 ] } }\n"
                    "   - withdraw: { port-channels: { Port-Channel2: [ Ethernet3 ] } }\n",
                    leaf.variant == "class-id" ? 10 : 5 );
   }
}

TEST_F( AuditInSync, FollowsPortsThatChangeAndGo ) {
   for ( Leaf const & leaf : { Leaf(), classIdLeaf() } ) {
      story.clear();
      expectInSync( leaf,
                    "   - publish: { interfaces: { Ethernet1: { unit: 0, port: 11 } } }\n"
                    "   - withdraw: { interfaces: [ Ethernet4 ] }\n",
                    leaf.variant == "class-id" ? 8 : 5 );
   }
}

TEST_F( AuditInSync, FollowsTheVniOfAVrf ) {
   expectInSync( Leaf(),
                 "   - publish: { tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 50002, green: 7 } "
                 "} } }\n",
                 6 );
}

TEST_F( AuditInSync, WithoutTheOverrideRuleAllPrioritiesAreTheDefault ) {
   Support::Directory const directory;
   directory.file( "VornalL3.json", "{ \"SbdEvpnTcamOverrideRule\": false }" );
   std::string const text = "features: " + directory.path().string() + "\n" +
                            Leaf().text( "   - ready: subagents::l2Ready\n   - verify: audit\n" );
   scenario = Steps::readScenarioText( text, "leaf.yaml" );
   Host::AgentConfig config;
   config.plugin = Support::plugin();
   Host::Agent( scenario, config, ring.bytes(), story ).run();

   auto const audited = story.all< Story::Audited >().at( 0 );
   EXPECT_EQ( kinds( audited ), "" ) << words( audited );
   EXPECT_EQ( audited.rules, 4U );
}

TEST_F( AuditInSync, APlatformThatExemptsMulticastItselfNeedsNoVniRules ) {
   std::string const flag =
      "   - set: { entity: /shared/vornalAttributes, attribute: l3McastExemptFromSplitHorizon, "
      "value: true }\n";
   play( Leaf(), flag + "   - ready: subagents::l2Ready\n   - verify: audit\n" );

   auto const audited = story.all< Story::Audited >().at( 0 );
   EXPECT_EQ( kinds( audited ), "" ) << words( audited );
   EXPECT_EQ( audited.rules, 4U );
}

TEST_F( AuditInSync, OfAPortChannelOfTwoUnitsEachUnitsMembersCount ) {
   auto const audited = auditAfter( twoUnitLeaf( "egress-mask" ),
                                    "   - expect:\n"
                                    "        - rules: { group: ingress, unit: 0, name: 10.0.0.2,\n"
                                    "                   actions: { EgressMask: [ 3 ] } }\n"
                                    "        - rules: { group: ingress, unit: 1, name: 10.0.0.2,\n"
                                    "                   actions: { EgressMask: [ 4 ] } }\n" );
   EXPECT_EQ( failedExpectations(), 0U );
   EXPECT_EQ( kinds( audited ), "" ) << words( audited );
}

}  // namespace
