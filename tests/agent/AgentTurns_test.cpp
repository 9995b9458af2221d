// Steps that make several changes in one turn, replace entities in place, or make the chip fail.
#include <gtest/gtest.h>

#include <AuditRun.h>

namespace {

class Turns : public AuditRun {
 protected:
   // What other agents publish in that step, as it is told.
   std::vector< std::string > changesIn( U32 step ) const {
      std::vector< std::string > texts;
      for ( auto const & change : inStep< Story::PublishedChange >( step ) ) {
         if ( change.path.starts_with( "/shared/tcamManager" ) ) {
            continue;
         }
         texts.push_back( change.path + ' ' + change.attribute +
                          ( change.key.empty() ? "" : '[' + change.key + ']' ) + ": " +
                          change.from.value_or( "-" ) + " to " + change.to.value_or( "-" ) );
      }
      return texts;
   }
};

using Texts = std::vector< std::string >;

// --- Several changes in one turn

// Room for the exemptions, two VTEPs and one VNI.
std::string const kSwap =
   "   - ready: subagents::l2Ready\n"
   "   - foreign-entries: { group: ingress, count: 59 }\n"
   "   - publish: { tunnel-interfaces: { Vxlan1: { vrf-vni: { blue: 50002 } } } }\n";
std::string const kQueue =
   "   - expect: { state: { entity: "
   "/plugins/Vornal::VornalEvpnMounter/evpnMultihomingLocalBiasSm,\n"
   "                        attribute: unprogrammedTcamRulesList, key: blue, equals: 50002 } }\n";

TEST_F( Turns, HoldSeveralChangesAndNothingComesInBetween ) {
   play( Leaf(),
         kSwap +
            "   - turn:\n"
            "        - publish: { tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 50002 } } } }\n"
            "        - publish: { tunnel-interfaces: { Vxlan1: { vrf-vni: { blue: 50001 } } } }\n" +
            kQueue );

   EXPECT_EQ( failedExpectations(), 0U );
   EXPECT_EQ( changesIn( 4 ),
              ( Texts{ "/interface/status/eth/vxlan/vtiStatus[Vxlan1] vrfToVniMap[red]: 50001 to "
                       "50002",
                       "/interface/status/eth/vxlan/vtiStatus[Vxlan1] vrfToVniMap[blue]: 50002 to "
                       "50001" } ) );
}

using TurnsDeathTest = Turns;

// In turns of their own, the retry that the first one causes meets the second VRF.
TEST_F( TurnsDeathTest, AreMoreThanOneWhereAStepPublishesSeveralChanges ) {
   EXPECT_DEATH( play( Leaf(), kSwap +
                                  "   - publish: { tunnel-interfaces: { Vxlan1: { vrf-vni: { red: "
                                  "50002, blue: 50001 } } } }\n" ),
                 "vniToTcamEntryIdHas\\( newV \\)" );
}

TEST_F( Turns, TakeEveryWordThatChangesWhatIsPublished ) {
   play(
      Leaf(),
      "   - turn:\n"
      "        - ready: subagents::l2Ready\n"
      "        - publish: { vteps: { 10.0.0.9: { virtual-port: 9 } },\n"
      "                     segments: { Ethernet2: [ 10.0.0.9 ] } }\n"
      "        - withdraw: { vteps: [ 10.0.0.4 ] }\n"
      "        - replace: { segments: { Ethernet1: [ 10.0.0.9 ] } }\n"
      "        - set: { entity: '/evpn/status/segmentStatus[Ethernet2]', attribute: remoteTep,\n"
      "                 key: 10.0.0.2 }\n"
      "        - delete: { entity: /evpn/status, attribute: segmentStatus, key: Port-Channel2 }\n"
      "        - call: { entity: /shared/vornalCommon, operation: intfPortDel,\n"
      "                  arguments: [ Ethernet3 ] }\n"
      "   - expect:\n"
      "        - rules: { group: ingress, name: 10.0.0.2, actions: { EgressMask: [ 2 ] } }\n"
      "        - rules: { group: ingress, name: 10.0.0.9, actions: { EgressMask: [ 1, 2 ] } }\n"
      "        - rules: { group: ingress, name: 10.0.0.4, count: 0 }\n"
      "        - state: { entity: /shared/vornalCommon, attribute: vornalIntfToPort,\n"
      "                   lacks: Ethernet3 }\n"
      "        - audit: in-sync\n" );

   EXPECT_EQ( failedExpectations(), 0U );
}

TEST_F( Turns, NameTheLineOfTheChangeThatIsRefused ) {
   run(
      "   - turn:\n"
      "        - publish: { segments: { Ethernet2: [] } }\n"
      "        - delete: { entity: /evpn/nothing, attribute: a }\n" );

   EXPECT_TRUE( badInput().starts_with( "leaf.yaml:22: " ) ) << badInput();
}

// --- Entities that are replaced in place

TEST_F( Turns, ReplaceASegmentWithAllThatItHoldsInOneChange ) {
   play( Leaf(),
         "   - ready: subagents::l2Ready\n"
         "   - replace: { segments: { Port-Channel2: [ 10.0.0.3, 10.0.0.4 ] } }\n"
         "   - expect:\n"
         "        - rules: { group: ingress, name: 10.0.0.2, count: 0 }\n"
         "        - rules: { group: ingress, name: 10.0.0.3, actions: { EgressMask: [ 3, 4 ] } }\n"
         "        - audit: in-sync\n"
         "   - publish: { segments: { Port-Channel2: [ 10.0.0.2 ] } }\n"
         "   - expect: { audit: in-sync }\n" );

   EXPECT_EQ( failedExpectations(), 0U );
   EXPECT_EQ( changesIn( 2 ), ( Texts{ "/evpn/status segmentStatus[Port-Channel2]: "
                                       "Evpn::EthernetSegmentStatus Port-Channel2 to "
                                       "Evpn::EthernetSegmentStatus Port-Channel2" } ) );
}

TEST_F( Turns, LetAnEntityThatIsNotThereEnterFilled ) {
   Leaf leaf;
   leaf.tunnels = "{}";
   play( leaf,
         "   - replace: { tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 50001 } } } }\n"
         "   - expect: { state: { entity: '/interface/status/eth/vxlan/vtiStatus[Vxlan1]',\n"
         "                        attribute: vrfToVniMap, key: red, equals: 50001 } }\n" );

   EXPECT_EQ( failedExpectations(), 0U );
   EXPECT_EQ( changesIn( 1 ),
              ( Texts{ "/interface/status/eth/vxlan vtiStatus[Vxlan1]: - to Vxlan::VtiStatus "
                       "Vxlan1" } ) );
}

// --- Calls of the chip that fail

TEST_F( Turns, MakeACallOfTheChipFailWithACode ) {
   play( Leaf(),
         "   - ready: subagents::l2Ready\n"
         "   - fail-call: { operation: installEntry, number: 2, code: -1 }\n"
         "   - publish: { tunnel-interfaces: { Vxlan1: { vrf-vni: { green: 50002, blue: 50003 } } "
         "} }\n"
         "   - expect:\n"
         "        - rules: { group: ingress, name: vni 50002, state: written }\n"
         "        - rules: { group: ingress, name: vni 50003, state: staged-only }\n" );

   EXPECT_EQ( failedExpectations(), 0U );
   std::vector< S32 > codes;
   for ( auto const & made : inStep< Story::CallMade >( 3 ) ) {
      if ( made.call.operation == "installEntry" ) {
         codes.push_back( made.call.returnCode.value_or( 1 ) );
      }
   }
   EXPECT_EQ( codes, ( std::vector< S32 >{ 0, -1 } ) );
}

TEST_F( Turns, MakeAFieldCallDoNothing ) {
   play( Leaf(),
         "   - fail-call: { operation: bcm_field_qualify_PacketRes, code: 4 }\n"
         "   - ready: subagents::l2Ready\n"
         "   - expect:\n"
         "        - rules: { group: ingress, qualifiers: { PacketRes: 4 }, count: 0 }\n"
         "        - rules: { group: ingress, qualifiers: { PacketRes: 10 }, count: 1 }\n"
         "        - audit: { kind: wrong-qualifier, count: 1 }\n" );

   EXPECT_EQ( failedExpectations(), 0U );
}

TEST_F( TurnsDeathTest, StopThePlugInByAFieldCallThatFails ) {
   EXPECT_DEATH( play( Leaf(),
                       "   - fail-call: { operation: bcm_field_qualify_SrcVxlanGport, code: -6 }\n"
                       "   - ready: subagents::l2Ready\n" ),
                 "bcm_field_qualify_SrcVxlanGport\\( unit, entryId, gport \\) API ERROR:Value out "
                 "of range \\(-6\\)" );
}

// --- Class ids that come free by hand

TEST_F( Turns, ServeTheLongestWaitingWhenAClassIdIsWithdrawnByHand ) {
   Leaf leaf = classIdLeaf();
   leaf.units += "\n   class-ids: { first: 1, last: 1 }";
   std::string const waiting =
      "   - ready: subagents::l2Ready\n"
      "   - expect:\n"
      "        - rules: { group: ingress, actions: { NewClassId: 1 }, name: 10.0.0.2 }\n"
      "        - rules: { group: ingress, name: 10.0.0.4, count: 0 }\n";
   std::string const served =
      "   - expect: { rules: { group: ingress, actions: { NewClassId: 1 }, name: 10.0.0.4 } }\n";
   for ( std::string const change :
         { "   - withdraw: { class-id-grants: [ 10.0.0.2 ] }\n",
           "   - publish: { class-id-grants: { 10.0.0.2: 7 } }\n",
           "   - delete: { entity: /hardware/vornal/i2eclassid/status/slice/1,\n"
           "               attribute: remoteESPeerVtep, key: 10.0.0.2 }\n" } ) {
      story.clear();
      play( leaf, waiting + change + served );
      EXPECT_EQ( failedExpectations(), 0U ) << change;
   }
}

}  // namespace
