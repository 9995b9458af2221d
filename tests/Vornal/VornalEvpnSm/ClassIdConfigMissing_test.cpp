// A class-id machine whose configuration is missing: it reads as empty, and only a request has
// nowhere to go.

#include <gtest/gtest.h>

#include "../support/ClassIdLeaf.h"

namespace {

using Support::ClassIdLeaf;
using Support::exactly;
using Support::ip;
using Support::kEgress;
using Support::kIngress;

class ClassIdConfigMissing : public testing::Test {
 protected:
   ClassIdConfigMissing() {
      leaf.interfaceIs( "Ethernet1", 0, 1 );
      leaf.classIdConfig = nullptr;
   }

   ClassIdLeaf leaf;
};

using ClassIdConfigMissingDeathTest = ClassIdConfigMissing;

TEST_F( ClassIdConfigMissing, ThereIsNothingToClearAtTheStartAndNothingIsPending ) {
   auto & sm = leaf.start();
   EXPECT_TRUE( sm.initialized() );
   sm.tepIpToEntryIs( U16{ 0 } );
   EXPECT_FALSE( sm.unitUsesOrNeedsTcams( 0 ) );
}

TEST_F( ClassIdConfigMissing, ThereIsNoRequestToWithdraw ) {
   auto & sm = leaf.start();
   EXPECT_TRUE( sm.deleteTcamEntries( 0, ip( "10.0.0.2" ) ) );
}

TEST_F( ClassIdConfigMissing, AClassIdThatWasGrantedUnaskedIsUsedAndForgotten ) {
   auto & sm = leaf.start();
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.vtepIs( "10.0.0.2", 2 );
   EXPECT_EQ( leaf.used( kIngress ), 3U ) << "two of them are unicast exemptions";
   EXPECT_EQ( leaf.used( kEgress ), 1U );
   leaf.segmentDel( "Ethernet1" );
   EXPECT_FALSE( sm.i2eTepIpClassIdHas( ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.used( kIngress ), 0U );
   EXPECT_EQ( leaf.used( kEgress ), 0U );
}

TEST_F( ClassIdConfigMissingDeathTest, ARequestThatHasNowhereToGoStopsTheProcess ) {
   leaf.start();
   leaf.vtepIs( "10.0.0.2", 2 );
   EXPECT_DEATH( leaf.segmentIs( "Ethernet1", { "10.0.0.2" } ),
                 exactly( "Assertion '\"reference is not empty\" && target_' failed.\n" ) );
}

}  // namespace
