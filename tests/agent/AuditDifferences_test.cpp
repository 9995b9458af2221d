// Every kind of difference, made by hardware that drifts or by a record that is wrong, and found.
//
// Entries of the leaf: 1 and 2 the unicast exemptions, 3 VTEP 10.0.0.2, 4 VTEP 10.0.0.4, 5 the VNI;
// with class ids 3 the VNI, 4 VTEP 10.0.0.2 with 5 and 6 on egress, 7 VTEP 10.0.0.4 with 8 to 10.
#include <AuditRun.h>

namespace {

std::string const kMachine =
   "entity: /plugins/Vornal::VornalEvpnMounter/evpnMultihomingLocalBiasSm";
std::string const kUnitRecord =
   "entity: \"/plugins/Vornal::VornalEvpnMounter/evpnMultihomingLocalBiasSm/tepIpToEntry[0]\"";

std::string drift( std::string const & words, std::string const & group = "ingress" ) {
   return "   - drift: { group: " + group + ", unit: 0, " + words + " }\n";
}
std::string set( std::string const & entity, std::string const & words ) {
   return "   - set: { " + entity + ", " + words + " }\n";
}
std::string remove( std::string const & entity, std::string const & words ) {
   return "   - delete: { " + entity + ", " + words + " }\n";
}

class AuditDifferences : public AuditRun {
 protected:
   // The one difference that is found.
   Story::Difference only( Leaf const & leaf, std::string const & steps ) {
      auto const audited = auditAfter( leaf, steps );
      EXPECT_EQ( audited.differences.size(), 1U ) << words( audited );
      return audited.differences.empty() ? Story::Difference() : audited.differences.front();
   }

   static void expectFound( Story::Difference const & found, Story::DifferenceKind kind, U32 entry,
                            std::string const & field ) {
      EXPECT_EQ( nameOf( found.kind ), nameOf( kind ) );
      EXPECT_EQ( found.unit, 0U );
      EXPECT_EQ( found.entry, entry );
      EXPECT_EQ( found.field, field );
      EXPECT_NE( found.because, "" );
   }
};

using Kind = Story::DifferenceKind;

// --- The chip

TEST_F( AuditDifferences, AGportThatTipsOver ) {
   auto const found = only( Leaf(), drift( "entry: 3, flip: SrcVxlanGport" ) );

   expectFound( found, Kind::wrongQualifier, 3, "SrcVxlanGport" );
   EXPECT_EQ( found.group, 157U );
   EXPECT_EQ( found.rule, "Mark or drop packets at IFP from vtep IP 10.0.0.2 on shared segments" );
   EXPECT_EQ( found.actual, "0x56000003 (VTEP 10.0.0.3)" );
   EXPECT_EQ( found.expected, "0x56000002 (VTEP 10.0.0.2)" );
   EXPECT_EQ( found.because,
              "VTEP 10.0.0.2 shares segment Port-Channel2 through Ethernet3 and Ethernet4; virtual "
              "port 2" );
}

TEST_F( AuditDifferences, AVirtualPortCountsByItsLow16Bits ) {
   auto const found = only( Leaf(), drift( "entry: 4, flip: SrcVxlanGport" ) );

   EXPECT_EQ( found.expected, "0x56000004 (VTEP 10.0.0.4)" );
   EXPECT_EQ( found.because,
              "VTEP 10.0.0.4 shares segment Ethernet1 through Ethernet1, and segment "
              "Port-Channel2 through Ethernet3 and Ethernet4; virtual port 65540" );
}

TEST_F( AuditDifferences, AnEgressMaskThatCoversOtherPorts ) {
   auto const found = only( Leaf(), drift( "entry: 3, egress-mask: [ 3 ]" ) );

   expectFound( found, Kind::wrongMask, 3, "EgressMask" );
   EXPECT_EQ( found.actual, "ports 3" );
   EXPECT_EQ( found.expected, "ports 3, 4" );
}

TEST_F( AuditDifferences, AMaskOfAQualifier ) {
   auto const found = only( Leaf(), drift( "entry: 1, mask: { PacketRes: 0xf }" ) );

   expectFound( found, Kind::wrongMask, 1, "PacketRes" );
   EXPECT_EQ( found.actual, "4 mask 0xf (known unicast)" );
   EXPECT_EQ( found.expected, "4 mask 0xff (known unicast)" );
   EXPECT_EQ( found.because, "segments are shared with VTEP 10.0.0.2, 10.0.0.4" );
}

TEST_F( AuditDifferences, AQualifierThatIsGone ) {
   auto const found = only( Leaf(), drift( "entry: 2, remove: TunnelTerminated" ) );

   expectFound( found, Kind::wrongQualifier, 2, "TunnelTerminated" );
   EXPECT_EQ( found.actual, "absent" );
}

TEST_F( AuditDifferences, ActionsThatAreGoneOrChanged ) {
   expectFound( only( Leaf(), drift( "entry: 3, remove: EgressMask" ) ), Kind::wrongAction, 3,
                "EgressMask" );
   story.clear();
   expectFound( only( classIdLeaf(), drift( "entry: 4, flip: NewClassId" ) ), Kind::wrongAction, 4,
                "NewClassId" );
   story.clear();
   expectFound( only( classIdLeaf(), drift( "entry: 4, flip: EgressClassSelect" ) ),
                Kind::wrongAction, 4, "EgressClassSelect" );
   story.clear();
   expectFound( only( classIdLeaf(), drift( "entry: 5, remove: Drop", "egress" ) ),
                Kind::wrongAction, 5, "Drop" );
}

TEST_F( AuditDifferences, FieldsOfAnEgressRule ) {
   auto const found = only( classIdLeaf(), drift( "entry: 6, flip: DstPort", "egress" ) );
   expectFound( found, Kind::wrongQualifier, 6, "DstPort" );
   EXPECT_EQ( found.actual, "module 1 port 5" );
   EXPECT_EQ( found.expected, "module 1 port 4" );
   EXPECT_TRUE( found.because.ends_with( "; virtual port 2; class id 1" ) ) << found.because;

   story.clear();
   expectFound( only( classIdLeaf(), drift( "entry: 6, flip: IngressClassField", "egress" ) ),
                Kind::wrongQualifier, 6, "IngressClassField" );
   story.clear();
   expectFound( only( classIdLeaf(), drift( "entry: 6, mask: { IpType: 1 }", "egress" ) ),
                Kind::wrongMask, 6, "IpType" );
}

TEST_F( AuditDifferences, APriority ) {
   auto const found = only( Leaf(), drift( "entry: 5, priority: default" ) );

   expectFound( found, Kind::wrongPriority, 5, "priority" );
   EXPECT_EQ( found.actual, "the group's default priority" );
   EXPECT_EQ( found.expected, "priority 2" );
   EXPECT_EQ( found.because, "VRF red has VNI 50001 on Vxlan1, and there are Ethernet segments" );
}

TEST_F( AuditDifferences, TwoGportsThatAreSwapped ) {
   auto const audited =
      auditAfter( Leaf(), drift( "rule: vtep IP 10.0.0.2, swap-gport-with: vtep IP 10.0.0.4" ) );

   EXPECT_EQ( kinds( audited ), "wrong-qualifier wrong-qualifier" ) << words( audited );
   EXPECT_EQ( audited.differences[ 0 ].actual, "0x56000004 (VTEP 10.0.0.4)" );
   EXPECT_EQ( audited.differences[ 1 ].actual, "0x56000002 (VTEP 10.0.0.2)" );
}

TEST_F( AuditDifferences, AnEntryThatIsNotInTheHardwareAnyMore ) {
   auto const found = only( Leaf(), drift( "entry: 3, entry-is: erased" ) );

   expectFound( found, Kind::stagedOnly, 3, "" );
   EXPECT_EQ( found.expected,
              "matches SrcVxlanGport 0x56000002 (VTEP 10.0.0.2); does EgressMask ports 3, 4; "
              "priority 1" );
}

TEST_F( AuditDifferences, AnEntryThatIsDestroyed ) {
   auto const audited = auditAfter( Leaf(), drift( "entry: 3, entry-is: destroyed" ) );

   EXPECT_EQ( kinds( audited ), "record-differs missing-rule record-without-rule" )
      << words( audited );
   EXPECT_EQ( audited.differences[ 0 ].field, "tepIpToEntry[0]/esPbmp[10.0.0.2]" );
   EXPECT_EQ( audited.differences[ 1 ].actual, "no such rule" );
   EXPECT_EQ( audited.differences[ 2 ].field, "tepIpToEntry[0]/entryId[10.0.0.2]" );
}

TEST_F( AuditDifferences, AnEntryThatIsThereTwice ) {
   auto const found = only( Leaf(), drift( "entry: 3, entry-is: copied" ) );

   expectFound( found, Kind::unexpectedRule, 6, "" );
   EXPECT_EQ( found.expected, "no such rule" );
   EXPECT_EQ( found.because, "no published state needs it" );
}

TEST_F( AuditDifferences, ARuleThatThePlugInDoesNotKnow ) {
   auto const audited =
      auditAfter( Leaf(), remove( kUnitRecord, "attribute: entryId, key: 10.0.0.2" ) +
                             remove( kUnitRecord, "attribute: esPbmp, key: 10.0.0.2" ) );

   EXPECT_EQ( kinds( audited ), "record-differs rule-without-record" ) << words( audited );
   EXPECT_EQ( audited.differences[ 1 ].entry, 3U );
}

// --- The records

TEST_F( AuditDifferences, ARecordOfAnotherEntry ) {
   auto const found =
      only( Leaf(), set( kUnitRecord, "attribute: entryId, key: 10.0.0.2, value: 4" ) );

   expectFound( found, Kind::recordDiffers, 3, "tepIpToEntry[0]/entryId[10.0.0.2]" );
   EXPECT_EQ( found.actual, "entry 4" );
   EXPECT_EQ( found.expected, "entry 3" );
}

TEST_F( AuditDifferences, ARecordOfARuleForAVtepThatNeedsNone ) {
   auto const found =
      only( Leaf(), set( kUnitRecord, "attribute: entryId, key: 10.0.0.3, value: 9" ) );

   expectFound( found, Kind::recordWithoutRule, 0, "tepIpToEntry[0]/entryId[10.0.0.3]" );
   EXPECT_EQ( found.because, "VTEP 10.0.0.3 shares no segment" );
}

TEST_F( AuditDifferences, RecordsOfWhatARuleMatchesAndMasks ) {
   auto const mask =
      only( Leaf(), set( kUnitRecord, "attribute: esPbmp, key: 10.0.0.2, value: \"{3}\"" ) );
   EXPECT_EQ( mask.field, "tepIpToEntry[0]/esPbmp[10.0.0.2]" );
   EXPECT_EQ( mask.actual, "ports 3" );
   EXPECT_EQ( mask.expected, "ports 3, 4" );

   story.clear();
   auto const vpIndex =
      only( Leaf(), set( kUnitRecord, "attribute: vpIndex, key: 10.0.0.4, value: 3" ) );
   EXPECT_EQ( vpIndex.field, "tepIpToEntry[0]/vpIndex[10.0.0.4]" );
   EXPECT_EQ( vpIndex.expected, "4" );
}

TEST_F( AuditDifferences, RecordsOfTheExemptions ) {
   expectFound( only( Leaf(), remove( kMachine, "attribute: l2UcastRuleInstalled, key: 0" ) ),
                Kind::ruleWithoutRecord, 1, "" );
   story.clear();
   expectFound( only( Leaf(),
                      set( kMachine, "attribute: l3UcastRuleInstalled, key: 0, value: 1" ) ),
                Kind::recordDiffers, 2, "l3UcastRuleInstalled[0]" );
   story.clear();
   expectFound( only( Leaf(), remove( kMachine, "attribute: vniToTcamEntryId, key: 50001" ) ),
                Kind::ruleWithoutRecord, 5, "" );
}

TEST_F( AuditDifferences, RecordsOfEgressRules ) {
   std::string const list =
      "entity: \"/plugins/Vornal::VornalEvpnMounter/evpnMultihomingLocalBiasSm/tepIpToEntry[0]/"
      "esPortAndEFPEntryIdList[10.0.0.2]\"";
   auto const id =
      only( classIdLeaf(), set( list, "attribute: efpEntryId, key: unit0/port3/mod1, value: 6" ) );
   expectFound( id, Kind::recordDiffers, 5,
                "tepIpToEntry[0]/esPortAndEFPEntryIdList[10.0.0.2]/efpEntryId[unit0/port3/mod1]" );

   story.clear();
   auto const ports =
      only( classIdLeaf(), set( list, "attribute: esPortList, value: \"{unit0/port3/mod1}\"" ) );
   EXPECT_EQ( ports.field, "tepIpToEntry[0]/esPortAndEFPEntryIdList[10.0.0.2]" );
   EXPECT_EQ( ports.expected, "{unit0/port3/mod1,unit0/port4/mod1}" );
}

TEST_F( AuditDifferences, RecordsOfClassIds ) {
   auto const classId =
      only( classIdLeaf(), set( kMachine, "attribute: i2eTepIpClassId, key: 10.0.0.2, value: 8" ) );
   EXPECT_EQ( classId.field, "i2eTepIpClassId[10.0.0.2]" );
   EXPECT_EQ( classId.unit, std::nullopt );
   EXPECT_EQ( classId.expected, "1" );

   story.clear();
   auto const users =
      only( classIdLeaf(),
            set( kMachine, "attribute: i2eTepIpClassIdRefCount, key: 10.0.0.2, value: 2" ) );
   EXPECT_EQ( users.field, "i2eTepIpClassIdRefCount[10.0.0.2]" );
   EXPECT_EQ( users.expected, "1" );

   story.clear();
   auto const stray =
      only( classIdLeaf(), set( kMachine, "attribute: i2eTepIpClassId, key: 10.0.0.9, value: 8" ) );
   EXPECT_EQ( stray.expected, "absent" );
}

std::string const kRequests = "entity: /hardware/vornal/i2eclassid/config/slice/1";

TEST_F( AuditDifferences, ARequestThatIsLeftOver ) {
   auto const found = only( classIdLeaf(), "   - class-id-allocator: paused\n" +
                                              set( kRequests,
                                                   "attribute: remoteESPeerVtep, key: 10.0.0.3, "
                                                   "value: true" ) );

   EXPECT_EQ( nameOf( found.kind ), "unneeded-request" );
   EXPECT_FALSE( isKnown( found.kind ) );
   EXPECT_EQ( found.unit, std::nullopt );
   EXPECT_EQ( found.field, "i2eClassIdIndexConfig/remoteESPeerVtep[10.0.0.3]" );
   EXPECT_EQ( found.actual, "present" );
   EXPECT_EQ( found.expected, "absent" );
   EXPECT_EQ( found.because, "VTEP 10.0.0.3 shares no segment" );
}

TEST_F( AuditDifferences, ARequestForAVtepWithoutAVirtualPort ) {
   auto const found = only( classIdLeaf(),
                            "   - class-id-allocator: paused\n"
                            "   - publish: { segments: { Ethernet2: [ 10.0.0.9 ] } }\n" +
                               set( kRequests,
                                    "attribute: remoteESPeerVtep, key: 10.0.0.9, "
                                    "value: true" ) );

   EXPECT_EQ( nameOf( found.kind ), "unneeded-request" );
   EXPECT_EQ( found.because, "VTEP 10.0.0.9 has no virtual port" );
}

TEST_F( AuditDifferences, AQueueForWhatIsThere ) {
   auto const found =
      only( Leaf(),
            set( kMachine, "attribute: unprogrammedTcamRulesList, key: red, value: 50001" ) );

   EXPECT_EQ( nameOf( found.kind ), "record-differs" );
   EXPECT_EQ( found.field, "unprogrammedTcamRulesList[red]" );
}

TEST_F( AuditDifferences, AMachineThatClaimsNotToBeInitialized ) {
   auto const found = only( Leaf(), set( kMachine, "attribute: initialized, value: false" ) );

   EXPECT_EQ( found.field, "initialized" );
}

TEST_F( AuditDifferences, AUnitRecordThatNothingNeeds ) {
   Leaf leaf;
   leaf.segments = "{}";
   auto const found = only( leaf, set( kMachine, "attribute: tepIpToEntry, key: 0" ) );

   EXPECT_EQ( found.field, "tepIpToEntry[0]" );
   EXPECT_EQ( found.because, "no VTEP with a virtual port shares a segment" );
}

}  // namespace
