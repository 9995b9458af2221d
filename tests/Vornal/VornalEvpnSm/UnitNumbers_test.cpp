// Units as operations carry them, in 32 bits, where the records are kept by 16: a number that is
// too large is no unit, and not the one that its lower bits name.

#include <utility>

#include <gtest/gtest.h>

#include "../support/LocalBiasSwitch.h"
#include "../support/Variants.h"

namespace {

using namespace Support;

constexpr U32 kUnit = 0;
constexpr U32 kUnitPlus16Bits = 0x10000;

class UnitNumbers : public testing::TestWithParam< Variant > {
 protected:
   UnitNumbers() {
      leaf.shareEthernet1();
      leaf.classIdIs( "10.0.0.2", 77 );
      leaf.vtepIs( "10.0.0.2", 0x56000002 );
      sm = leaf.machineNew( GetParam() );
   }

   LocalBiasSwitch leaf;
   Machine sm;
};

INSTANTIATE_TEST_SUITE_P( TooLarge, UnitNumbers, bothVariants, nameOfVariant );

TEST_P( UnitNumbers, HaveNoRecordWhenTheyAreTooLarge ) {
   ASSERT_TRUE( sm->tepIpToEntry( kUnit ) );
   EXPECT_FALSE( sm->tepIpToEntry( kUnitPlus16Bits ) );
   ASSERT_TRUE( std::as_const( *sm ).tepIpToEntry( kUnit ) );
   EXPECT_FALSE( std::as_const( *sm ).tepIpToEntry( kUnitPlus16Bits ) );
}

TEST_P( UnitNumbers, HaveNoExemptionWhenTheyAreTooLarge ) {
   ASSERT_TRUE( sm->l2UcastRuleInstalledHas( kUnit ) );
   EXPECT_FALSE( sm->l2UcastRuleInstalledHas( kUnitPlus16Bits ) );
   ASSERT_TRUE( sm->l3UcastRuleInstalledHas( kUnit ) );
   EXPECT_FALSE( sm->l3UcastRuleInstalledHas( kUnitPlus16Bits ) );
}

TEST_P( UnitNumbers, HaveTheirRecordsUpToTheLargest ) {
   constexpr U32 kLargest = 0xffff;
   sm->tepIpToEntryIs( U16{ kLargest } );
   sm->l2UcastRuleInstalledIs( U16{ kLargest }, 7 );
   sm->l3UcastRuleInstalledIs( U16{ kLargest }, 8 );

   EXPECT_TRUE( sm->tepIpToEntry( kLargest ) );
   EXPECT_TRUE( std::as_const( *sm ).tepIpToEntry( kLargest ) );
   sm->tepIpToEntry( kLargest )->entryIdIs( ip( "10.0.0.2" ), 9 );
   EXPECT_TRUE( sm->unitUsesTcamsForTepIp( kLargest, ip( "10.0.0.2" ) ) );
   EXPECT_TRUE( sm->unitUsesOrNeedsTcams( kLargest ) );
   EXPECT_TRUE( sm->l2UcastRuleInstalledHas( kLargest ) );
   EXPECT_TRUE( sm->l3UcastRuleInstalledHas( kLargest ) );
}

}  // namespace
