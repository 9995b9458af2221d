// A rule in words.
#include <gtest/gtest.h>

#include <Snapshot/RuleText.h>

#include "TwoUnitSwitch.h"

namespace RuleTextTest {

using namespace ChipTest;
using Chip::Action;
using Chip::EntryContent;
using Chip::Match;
using Chip::Qualifier;

TEST( RuleText, HeadingSaysWhereTheRuleStands ) {
   EXPECT_EQ( headingText( Chip::Rule{ .key = { 1, kIfp, 3 }, .name = "from vtep" } ),
              "unit 1, ingress group 157, entry 3, \"from vtep\"" );
   EXPECT_EQ( headingText( Chip::Rule{ .key = { 0, kEfp, 4 }, .name = "drop" } ),
              "unit 0, egress group 45, entry 4, \"drop\"" );
   EXPECT_EQ( Chip::groupText( 9 ), "group 9" );
}

TEST( RuleText, BodyOfAMaskingRuleNamesGportPortsAndPriority ) {
   TwoUnitSwitch leaf1;
   U32 const id = leaf1.ifp->getEntry( 0, "from vtep", {} );
   leaf1.sdk.bcm_field_qualify_SrcVxlanGport( 0, id, kVtep2 );
   leaf1.ifp->addEgressMaskAction( 0, id, pbmpOfPorts( { 3, 4 } ) );
   leaf1.ifp->setPriorityForEntry( 0, id, 1 );
   std::string const body =
      "matches SrcVxlanGport 0x56000002; does EgressMask ports 3, 4; priority 1";
   EXPECT_EQ( bodyText( rulesOf( leaf1.board.units() ).front() ),
              body + "; staged only, not written to the chip" );
   leaf1.ifp->installEntry( 0, id );
   EXPECT_EQ( bodyText( rulesOf( leaf1.board.units() ).front() ), body );
}

TEST( RuleText, NamesTheNumbersThatHaveNames ) {
   EntryContent content;
   content[ Qualifier::SrcVxlanGport ] = Match{ kVtep2, kExact };
   content[ Qualifier::PacketRes ] = Match{ 4, 0xff };
   std::string const end =
      " and PacketRes 4 mask 0xff (known unicast); does nothing; the group's "
      "default priority";
   EXPECT_EQ( contentText( content ), "matches SrcVxlanGport 0x56000002" + end );
   EXPECT_EQ( contentText( content,
                           []( Qualifier qualifier, U32 number ) {
                              return number == kVtep2 ? std::string( "VTEP 10.0.0.2" )
                                                      : Chip::nameInChip( qualifier, number );
                           } ),
              "matches SrcVxlanGport 0x56000002 (VTEP 10.0.0.2)" + end );
   EXPECT_EQ( Chip::partText( Qualifier::PacketRes, content ),
              "PacketRes 4 mask 0xff (known unicast)" );
}

TEST( RuleText, ContentOfAnEgressRuleNamesModuleAndPort ) {
   EntryContent content;
   content[ Qualifier::DstPort ] = Match{ 7, kExact, 5, 0xf };
   content[ Qualifier::IpType ] = Match{ bcmFieldIpTypeAny, 0 };
   content[ Qualifier::IngressClassField ] = Match{ 9, kExact };
   content[ Action::Drop ].emplace();
   EXPECT_EQ( contentText( content ),
              "matches DstPort module 5 mask 0xf port 7 and IpType 0 mask 0x0 and "
              "IngressClassField 9; does Drop; the group's default priority" );
}

TEST( RuleText, EmptyContentMatchesEveryFrameAndDoesNothing ) {
   EXPECT_EQ( contentText( EntryContent() ),
              "matches every frame; does nothing; the group's default priority" );
}

TEST( RuleText, ValueOfAPartSaysWhetherItIsThere ) {
   EXPECT_EQ( valueText( Qualifier::PacketRes, std::nullopt ), "absent" );
   EXPECT_EQ( valueText( Qualifier::PacketRes, Match{ 4, 0xff } ), "4 mask 0xff" );
   EXPECT_EQ( valueText( Qualifier::SrcVxlanGport, Match{ kVtep2, 0xf0 } ),
              "0x56000002 mask 0xf0" );
   EXPECT_EQ( valueText( Action::Drop, std::nullopt ), "absent" );
   EXPECT_EQ( valueText( Action::Drop, Chip::ActionParameters() ), "present" );
   EXPECT_EQ( valueText( Action::NewClassId, Chip::ActionParameters{ .param0 = 7 } ), "7" );
   EXPECT_EQ( valueText( Action::EgressMask, Chip::ActionParameters() ), "no port" );
}

}  // namespace RuleTextTest
