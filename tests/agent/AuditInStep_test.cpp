// Switches on which everything is as it should be, whatever has happened to them before.
#include <AuditRun.h>

namespace {

class AuditInStep : public AuditRun {
 protected:
   void expectInStep( Leaf const & leaf, std::string const & steps, U32 rules ) {
      auto const audited = auditAfter( leaf, steps );
      EXPECT_EQ( kinds( audited ), "" ) << words( audited );
      EXPECT_EQ( audited.rules, rules );
      EXPECT_EQ( audited.entries, rules );
   }
};

TEST_F( AuditInStep, two_vteps_a_port_channel_a_single_port_and_a_vni ) {
   expectInStep( Leaf(), "", 5 );
}

TEST_F( AuditInStep, the_same_with_class_ids ) {
   expectInStep( classIdLeaf(), "", 10 );
}

TEST_F( AuditInStep, two_units ) {
   expectInStep( twoUnitLeaf( "egress-mask" ), "", 8 );
}

TEST_F( AuditInStep, two_units_with_class_ids ) {
   expectInStep( twoUnitLeaf( "class-id" ), "", 13 );
}

TEST_F( AuditInStep, addresses_of_both_families ) {
   Leaf leaf = classIdLeaf();
   leaf.segments = "{ Ethernet2: [ 2001:db8::2, 10.0.0.2 ] }";
   leaf.vteps = "{ 10.0.0.2: { virtual-port: 2 }, 2001:db8::2: { virtual-port: 7 } }";
   expectInStep( leaf, "", 7 );
}

TEST_F( AuditInStep, nothing_before_the_plug_in_is_ready ) {
   play( Leaf(), "   - verify: audit\n" );

   auto const audited = story.all< Story::Audited >().at( 0 );
   EXPECT_EQ( kinds( audited ), "" );
   EXPECT_EQ( audited.rules, 0U );
}

TEST_F( AuditInStep, a_segment_without_vteps_needs_the_vni_rule_alone ) {
   Leaf leaf;
   leaf.segments = "{ Ethernet1: [] }";
   expectInStep( leaf, "", 1 );
}

TEST_F( AuditInStep, nothing_is_left_when_all_segments_go ) {
   for ( Leaf const & leaf : { Leaf(), classIdLeaf() } ) {
      story.clear();
      expectInStep( leaf, "   - withdraw: { segments: [ Port-Channel2, Ethernet1 ] }\n", 0 );
   }
}

TEST_F( AuditInStep, a_vtep_without_a_virtual_port_needs_no_rules ) {
   for ( Leaf const & leaf : { Leaf(), classIdLeaf() } ) {
      story.clear();
      expectInStep( leaf, "   - withdraw: { vteps: [ 10.0.0.2, 10.0.0.4 ] }\n", 1 );
   }
}

TEST_F( AuditInStep, follows_a_new_virtual_port ) {
   expectInStep( classIdLeaf(), "   - publish: { vteps: { 10.0.0.2: { virtual-port: 9 } } }\n",
                 10 );
}

TEST_F( AuditInStep, follows_members_of_port_channels ) {
   for ( Leaf const & leaf : { Leaf(), classIdLeaf() } ) {
      story.clear();
      expectInStep( leaf,
                    "   - publish: { port-channels: { Port-Channel2: [ Ethernet2 ] } }\n"
                    "   - withdraw: { port-channels: { Port-Channel2: [ Ethernet3 ] } }\n",
                    leaf.variant == "class-id" ? 10 : 5 );
   }
}

TEST_F( AuditInStep, follows_ports_that_change_and_go ) {
   for ( Leaf const & leaf : { Leaf(), classIdLeaf() } ) {
      story.clear();
      expectInStep( leaf,
                    "   - publish: { interfaces: { Ethernet1: { unit: 0, port: 11 } } }\n"
                    "   - withdraw: { interfaces: [ Ethernet4 ] }\n",
                    leaf.variant == "class-id" ? 8 : 5 );
   }
}

TEST_F( AuditInStep, follows_the_vni_of_a_vrf ) {
   expectInStep( Leaf(),
                 "   - publish: { tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 50002, green: 7 } "
                 "} } }\n",
                 6 );
}

TEST_F( AuditInStep, without_the_override_rule_all_priorities_are_the_default ) {
   Support::Directory const directory;
   directory.file( "VornalL3.json", "{ \"SbdEvpnTcamOverrideRule\": false }" );
   std::string const text = "features: " + directory.path().string() + "\n" +
                            Leaf().text( "   - ready: subagents::l2Ready\n   - verify: audit\n" );
   scenario = Scenario::readText( text, "leaf.yaml" );
   Host::AgentConfig config;
   config.plugin = Support::plugin();
   Host::Agent( scenario, config, ring.bytes(), story ).run();

   auto const audited = story.all< Story::Audited >().at( 0 );
   EXPECT_EQ( kinds( audited ), "" ) << words( audited );
   EXPECT_EQ( audited.rules, 4U );
}

TEST_F( AuditInStep, a_platform_that_exempts_multicast_itself_needs_no_vni_rules ) {
   std::string const flag =
      "   - set: { entity: /shared/vornalAttributes, attribute: l3McastExemptFromSplitHorizon, "
      "value: true }\n";
   play( Leaf(), flag + "   - ready: subagents::l2Ready\n   - verify: audit\n" );

   auto const audited = story.all< Story::Audited >().at( 0 );
   EXPECT_EQ( kinds( audited ), "" ) << words( audited );
   EXPECT_EQ( audited.rules, 4U );
}

TEST_F( AuditInStep, of_a_port_channel_of_two_units_each_units_members_count ) {
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
