// What is not as the state alone says, and all right: listed under a kind of its own.
#include <AuditRun.h>

namespace {

using AuditKnown = AuditRun;

Leaf leafWithRoom( std::string const & ingress, std::string const & egress = "64" ) {
   Leaf leaf = classIdLeaf();
   leaf.tcam = "{ ingress: " + ingress + ", egress: " + egress + " }";
   return leaf;
}

TEST_F( AuditKnown, AClassIdThatIsNotGrantedYetIsWaitedFor ) {
   auto const audited = auditAfter( classIdLeaf(),
                                    "   - class-id-allocator: paused\n"
                                    "   - publish: { segments: { Ethernet2: [ 10.0.0.3 ] } }\n" );

   EXPECT_EQ( kinds( audited ), "waiting-for-class-id waiting-for-class-id" ) << words( audited );
   EXPECT_EQ( audited.differences[ 1 ].because,
              "VTEP 10.0.0.3 shares segment Ethernet2 through Ethernet2; virtual port 3; its class "
              "id is asked for and not granted" );
}

TEST_F( AuditKnown, AGrantThatIsOlderThanItsRequestIsNotTheOneThatIsWaitedFor ) {
   auto const audited =
      auditAfter( classIdLeaf(),
                  "   - class-id-allocator: paused\n"
                  "   - publish: { vteps: { 10.0.0.2: { virtual-port: 7 } } }\n"
                  "   - expect: { state: { entity: /hardware/vornal/i2eclassid/status/slice/1,\n"
                  "                        attribute: remoteESPeerVtep, has: 10.0.0.2 } }\n" );

   EXPECT_EQ( failedExpectations(), 0U );
   EXPECT_EQ( kinds( audited ), "waiting-for-class-id waiting-for-class-id waiting-for-class-id" )
      << words( audited );
}

TEST_F( AuditKnown, AClassIdThatNobodyAsksForIsNotWaitedFor ) {
   auto const audited =
      auditAfter( classIdLeaf(),
                  "   - class-id-allocator: paused\n"
                  "   - publish: { segments: { Ethernet2: [ 10.0.0.3 ] } }\n"
                  "   - delete: { entity: /hardware/vornal/i2eclassid/config/slice/1,\n"
                  "               attribute: remoteESPeerVtep, key: 10.0.0.3 }\n" );

   EXPECT_EQ( kinds( audited ), "missing-rule missing-rule" ) << words( audited );
}

TEST_F( AuditKnown, ARequestIsNobodysOnASwitchWithoutClassIds ) {
   auto const audited =
      auditAfter( Leaf(),
                  "   - set: { entity: /hardware/vornal/i2eclassid/config/slice/1,\n"
                  "            attribute: remoteESPeerVtep, key: 10.0.0.3,\n"
                  "            value: true }\n" );

   EXPECT_EQ( kinds( audited ), "" ) << words( audited );
}

TEST_F( AuditKnown, RulesKeepAClassIdThatIsWithdrawn ) {
   auto const audited =
      auditAfter( classIdLeaf(), "   - withdraw: { class-id-grants: [ 10.0.0.2 ] }\n" );

   EXPECT_EQ( kinds( audited ), "class-id-withdrawn" ) << words( audited );
   EXPECT_EQ( audited.differences[ 0 ].actual, "1" );
   EXPECT_EQ( audited.differences[ 0 ].expected, "a class id that is granted" );
}

TEST_F( AuditKnown, AClassIdThatChangesUnderTheRulesIsADifference ) {
   auto const audited =
      auditAfter( classIdLeaf(), "   - publish: { class-id-grants: { 10.0.0.2: 77 } }\n" );

   EXPECT_EQ( kinds( audited ), "wrong-qualifier wrong-qualifier wrong-action" )
      << words( audited );
   EXPECT_EQ( audited.differences[ 2 ].field, "NewClassId" );
   EXPECT_EQ( audited.differences[ 2 ].actual, "1" );
   EXPECT_EQ( audited.differences[ 2 ].expected, "77" );
}

TEST_F( AuditKnown, AFullIngressGroupHasNoRoomForAVtepAndWhatFollowsIt ) {
   auto const audited = auditAfter( leafWithRoom( "3" ), "" );

   // The unicast exemptions and the per-VNI rule have taken it all.
   EXPECT_EQ( kinds( audited ), "no-room no-room no-room no-room no-room no-room no-room" )
      << words( audited );
   EXPECT_TRUE( audited.differences[ 0 ].because.ends_with(
      "the VTEP has no ingress rule either: group 157 has no room on unit 0" ) )
      << words( audited );
}

TEST_F( AuditKnown, AFullEgressGroupHasNoRoomForTheRest ) {
   auto const audited = auditAfter( leafWithRoom( "64", "1" ), "" );

   EXPECT_EQ( kinds( audited ), "no-room no-room no-room no-room" ) << words( audited );
}

TEST_F( AuditKnown, ASwitchWithoutRoomAtAllLacksEverything ) {
   auto const audited = auditAfter( leafWithRoom( "0", "0" ), "" );

   EXPECT_EQ( audited.differences.size(), audited.rules );
   EXPECT_EQ( kinds( audited ).find( "missing" ), std::string::npos ) << words( audited );
}

std::string const kRoomForOne = "   - withdraw: { tunnel-interfaces: { Vxlan1: [ red ] } }\n";

TEST_F( AuditKnown, ARuleThatNobodyAsksForAgainIsADifferenceOnceThereIsRoom ) {
   auto const audited = auditAfter( leafWithRoom( "4" ), kRoomForOne );

   EXPECT_EQ( kinds( audited ), "not-retried not-retried not-retried not-retried" )
      << words( audited );
}

TEST_F( AuditKnown, AVtepThatFindsRoomHidesThatAnotherDidNot ) {
   auto const audited =
      auditAfter( leafWithRoom( "4" ),
                  kRoomForOne +
                     "   - publish: { vteps: { 10.0.0.9: { virtual-port: 9 } } }\n"
                     "   - publish: { segments: { Ethernet2: [ 10.0.0.9 ] } }\n"
                     "   - expect: { log: MULTIHOMING_TCAM_RESOURCE_RECOVERED }\n"
                     "   - withdraw: { vteps: [ 10.0.0.2 ] }\n" );

   EXPECT_EQ( failedExpectations(), 0U );
   EXPECT_EQ( kinds( audited ), "missing-rule missing-rule missing-rule missing-rule" )
      << words( audited );
}

TEST_F( AuditKnown, AVniIsQueuedUntilThereIsRoom ) {
   Leaf leaf;
   leaf.tcam = "{ ingress: 4, egress: 4 }";
   auto const audited = auditAfter( leaf, "" );
   EXPECT_EQ( kinds( audited ), "no-room" ) << words( audited );

   story.clear();
   leaf.tcam = "{ ingress: 5, egress: 4 }";
   auto const queued =
      auditAfter( leaf,
                  "   - set: { entity: "
                  "/plugins/Vornal::VornalEvpnMounter/evpnMultihomingLocalBiasSm,\n"
                  "            attribute: unprogrammedTcamRulesList, key: green, value: 9 }\n"
                  "   - drift: { group: ingress, unit: 0, rule: 50001, entry-is: destroyed }\n"
                  "   - delete: { entity: "
                  "/plugins/Vornal::VornalEvpnMounter/evpnMultihomingLocalBiasSm,\n"
                  "               attribute: vniToTcamEntryId, key: 50001 }\n"
                  "   - set: { entity: "
                  "/plugins/Vornal::VornalEvpnMounter/evpnMultihomingLocalBiasSm,\n"
                  "            attribute: unprogrammedTcamRulesList, key: red, value: 50001 }\n" );
   EXPECT_EQ( kinds( queued ), "left-behind queued" ) << words( queued );
}

TEST_F( AuditKnown, AnotherTunnelInterfaceLeavesItsVniRulesBehind ) {
   Leaf leaf;
   leaf.tunnels = "{ Vxlan1: { vrf-vni: { red: 50001 } }, Vxlan2: { vrf-vni: { blue: 50002 } } }";
   auto const audited = auditAfter( leaf, "   - withdraw: { tunnel-interfaces: [ Vxlan2 ] }\n" );

   EXPECT_EQ( kinds( audited ), "left-behind" ) << words( audited );
   EXPECT_EQ( audited.differences[ 0 ].rule,
              "Skip shared ES pruning for packets with vni 50002 - No-op" );
}

TEST_F( AuditKnown, ATunnelInterfaceThatIsReplacedInPlaceLeavesARuleThatIsNotKnown ) {
   auto const audited = auditAfter(
      Leaf(), "   - replace: { tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 50003 } } } }\n" );

   EXPECT_EQ( kinds( audited ), "missing-rule unexpected-rule" ) << words( audited );
}

TEST_F( AuditKnown, Vxlan1TakesTheVniRulesOfAllWithIt ) {
   Leaf leaf;
   leaf.tunnels = "{ Vxlan1: { vrf-vni: { red: 50001 } }, Vxlan2: { vrf-vni: { blue: 50002 } } }";
   auto const audited = auditAfter( leaf, "   - withdraw: { tunnel-interfaces: [ Vxlan1 ] }\n" );

   EXPECT_EQ( kinds( audited ), "left-behind" ) << words( audited );
   EXPECT_EQ( audited.differences[ 0 ].actual, "no such rule" );
}

}  // namespace
