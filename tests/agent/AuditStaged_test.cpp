// What is staged for an entry and not written: what the next reinstall would make of a right rule.
//
// Entries of the leaf: 1 and 2 the unicast exemptions, 3 VTEP 10.0.0.2, 4 VTEP 10.0.0.4, 5 the VNI.
#include <LiveSwitch.h>
#include <Shim/Shim.h>
#include <Steps/DriftStep.h>

namespace {

using Story::Difference;
using Kind = Story::DifferenceKind;

class AuditStaged : public testing::Test {
 protected:
   Difference only() {
      auto const audited = leaf1.audited();
      EXPECT_EQ( audited.differences.size(), 1U );
      return audited.differences.empty() ? Difference() : audited.differences.front();
   }

   LiveSwitch leaf1{ Leaf() };
};

TEST_F( AuditStaged, NothingIsFoundWhileAllIsWrittenAsItIsStaged ) {
   Shim::sdk_->bcm_field_qualify_SrcVxlanGport( 0, 3, 0x56000002 );

   EXPECT_TRUE( leaf1.audited().differences.empty() ) << "it has been staged before";
}

TEST_F( AuditStaged, AQualifierThatIsStagedWithAnotherValueIsFound ) {
   Shim::sdk_->bcm_field_qualify_SrcVxlanGport( 0, 3, 0x56000007 );

   Difference const found = only();
   EXPECT_EQ( nameOf( found.kind ), "staged-differs" );
   EXPECT_FALSE( isKnown( found.kind ) );
   EXPECT_EQ( found.entry, 3U );
   EXPECT_EQ( found.field, "SrcVxlanGport" );
   EXPECT_EQ( found.actual, "0x56000007, staged for the next reinstall" );
   EXPECT_EQ( found.expected, "0x56000002 (VTEP 10.0.0.2)" );
   EXPECT_NE( found.because, "" );
}

TEST_F( AuditStaged, AnActionThatIsStagedBesideThoseInTheHardwareIsFound ) {
   Shim::sdk_->bcm_field_action_add( 0, 1, bcmFieldActionNewClassId, 9, 0 );

   Difference const found = only();
   EXPECT_EQ( nameOf( found.kind ), "staged-differs" );
   EXPECT_EQ( found.field, "NewClassId" );
   EXPECT_EQ( found.actual, "9, staged for the next reinstall" );
   EXPECT_EQ( found.expected, "absent" );
}

TEST_F( AuditStaged, APartThatIsWrongInTheHardwareIsFoundOnce ) {
   auto const drift = std::make_shared< Steps::DriftStep >();
   drift->group = Scenario::TcamGroup::ingress;
   drift->rule = U32{ 5 };
   drift->change = Steps::PriorityChanges{ 9 };
   leaf1.take( drift );

   EXPECT_EQ( nameOf( only().kind ), "wrong-priority" ) << "what is staged is right";
}

}  // namespace
