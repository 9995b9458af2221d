// A frame beside every rule of a group: the winner and its reason, and by what the others miss.
#include <gtest/gtest.h>

#include <Explanation/Comparison.h>

#include "../TwoUnitSwitch.h"

namespace ComparisonTest {

using namespace ChipTest;
using Chip::compare;
using Chip::GroupComparison;
using Chip::Match;
using Chip::Qualifier;
using Chip::RuleComparison;
using Chip::WonBy;

constexpr std::size_t kAll = 100;

// From leaf2, VNI 10100, packet resolution 1.
constexpr Chip::IngressFields kFromLeaf2{ kVtep2, 1, true, 10100 };

class Comparison : public testing::Test {
 protected:
   U32 installed( U32 id, std::optional< U32 > priority = std::nullopt ) {
      if ( priority ) {
         chips.ifp->setPriorityForEntry( 0, id, *priority );
      }
      chips.ifp->installEntry( 0, id );
      return id;
   }
   U32 rule() { return chips.ifp->getEntry( 0, "rule", {} ); }
   U32 fromVtep( U32 gport, std::optional< U32 > priority = std::nullopt ) {
      return installed( ofVtep( rule(), gport ), priority );
   }
   U32 ofVtep( U32 id, U32 gport ) {
      chips.sdk.bcm_field_qualify_SrcVxlanGport( 0, id, gport );
      return id;
   }
   U32 ofVni( U32 id, U32 vni ) {
      chips.sdk.bcm_field_qualify_VxlanNetworkId( 0, id, vni, kExact );
      return id;
   }
   GroupComparison compared( std::size_t nearMisses = kAll ) {
      return compare( chips.board.units().group( 0, kIfp ), 0, keyFieldsOf( kFromLeaf2 ),
                      nearMisses );
   }
   static std::vector< U32 > idsOf( GroupComparison const & comparison ) {
      std::vector< U32 > ids;
      for ( RuleComparison const & one : comparison.rules ) {
         ids.push_back( one.rule.id );
      }
      return ids;
   }

   TwoUnitSwitch chips;
};

using Ids = std::vector< U32 >;

TEST_F( Comparison, OfAGroupWithoutRulesHasNoWinner ) {
   EXPECT_EQ( compared(), GroupComparison{} );
   EXPECT_EQ( compared().winner(), nullptr );
   EXPECT_EQ( compare( nullptr, 0, {}, kAll ), GroupComparison{} );
}

TEST_F( Comparison, TheOnlyMatchWinsForThatReason ) {
   fromVtep( kVtep3, 9 );
   U32 const rule = fromVtep( kVtep2, 1 );
   ASSERT_NE( compared().winner(), nullptr );
   EXPECT_EQ( *compared().winner(), ( RuleComparison{ { 0, kIfp, rule }, 1, {} } ) );
   EXPECT_EQ( compared().wonBy, WonBy::OnlyMatch );
}

TEST_F( Comparison, AHigherPriorityWins ) {
   U32 const low = fromVtep( kVtep2, 1 );
   U32 const high = fromVtep( kVtep2, 2 );
   EXPECT_EQ( idsOf( compared() ), ( Ids{ high, low } ) );
   EXPECT_EQ( compared().wonBy, WonBy::HigherPriority );
}

TEST_F( Comparison, ARuleWithoutPriorityWins ) {
   U32 const high = fromVtep( kVtep2, 0xffffffff );
   U32 const none = fromVtep( kVtep2 );
   EXPECT_EQ( idsOf( compared() ), ( Ids{ none, high } ) );
   EXPECT_EQ( compared().wonBy, WonBy::NoPriority );
}

TEST_F( Comparison, BetweenEqualsTheOlderWins ) {
   U32 const older = fromVtep( kVtep2, 1 );
   U32 const newer = fromVtep( kVtep2, 1 );
   EXPECT_EQ( idsOf( compared() ), ( Ids{ older, newer } ) );
   EXPECT_EQ( compared().wonBy, WonBy::Older );
   U32 const olderNone = fromVtep( kVtep2 );
   U32 const newerNone = fromVtep( kVtep2 );
   EXPECT_EQ( idsOf( compared() ), ( Ids{ olderNone, newerNone, older, newer } ) );
   EXPECT_EQ( compared().wonBy, WonBy::Older );
}

TEST_F( Comparison, AMissNamesEachQualifierThatFails ) {
   U32 const rule = installed( ofVni( ofVtep( Comparison::rule(), kVtep3 ), 10200 ) );
   GroupComparison const comparison = compared();
   EXPECT_EQ( comparison.winner(), nullptr );
   EXPECT_EQ( comparison.rules,
              ( std::vector< RuleComparison >{
                 { { 0, kIfp, rule },
                   std::nullopt,
                   { { Qualifier::SrcVxlanGport, Match{ kVtep3, kExact }, kVtep2, 0 },
                     { Qualifier::VxlanNetworkId, Match{ 10200, kExact }, 10100, 0 } } } } ) );
}

TEST_F( Comparison, BitsOutsideOfAMaskDoNotFail ) {
   U32 const id = rule();
   chips.sdk.bcm_field_qualify_PacketRes( 0, id, 0xf1, 0x0f );
   installed( id );
   EXPECT_EQ( compared().wonBy, WonBy::OnlyMatch );
   chips.sdk.bcm_field_qualify_PacketRes( 0, id, 0xf3, 0x0f );
   installed( id );
   EXPECT_EQ( compared().wonBy, std::nullopt );
}

TEST_F( Comparison, NearMissesComeByTheNumberOfTheirFailures ) {
   U32 const two = installed( ofVni( ofVtep( rule(), kVtep3 ), 10200 ) );
   U32 const oneLow = fromVtep( kVtep3, 1 );
   U32 const oneHigh = fromVtep( kVtep3, 2 );
   U32 const match = fromVtep( kVtep2, 0 );
   EXPECT_EQ( idsOf( compared() ), ( Ids{ match, oneHigh, oneLow, two } ) );
}

TEST_F( Comparison, NearMissesCanBeLimitedAndMatchesNot ) {
   U32 const first = fromVtep( kVtep2 );
   U32 const second = fromVtep( kVtep2 );
   U32 const near = fromVtep( kVtep3 );
   installed( ofVni( ofVtep( rule(), kVtep3 ), 10200 ) );
   EXPECT_EQ( compared( kAll ).leftOut, 0U );
   EXPECT_EQ( idsOf( compared( 1 ) ), ( Ids{ first, second, near } ) );
   EXPECT_EQ( compared( 1 ).leftOut, 1U );
   EXPECT_EQ( idsOf( compared( 0 ) ), ( Ids{ first, second } ) );
   EXPECT_EQ( compared( 0 ).leftOut, 2U );
}

TEST_F( Comparison, ShowsWrittenRulesAndWrittenContent ) {
   ofVtep( rule(), kVtep2 );
   U32 const id = fromVtep( kVtep2 );
   ofVtep( id, kVtep3 );
   EXPECT_EQ( idsOf( compared() ), Ids{ id } );
   EXPECT_EQ( compared().wonBy, WonBy::OnlyMatch );
}

TEST_F( Comparison, APortMissesByItsModuleAsWell ) {
   U32 const id = chips.efp->getEntry( 1, "drop", {} );
   chips.sdk.bcm_field_qualify_DstPort( 1, id, 4, kExact, 3, kExact );
   chips.sdk.bcm_field_qualify_IpType( 1, id, bcmFieldIpTypeAny );
   chips.efp->installEntry( 1, id );
   auto const comparedAt = [ & ]( U32 modId, U32 port ) {
      Chip::EgressFields const frame{ modId, port, bcmFieldIpTypeIpv6, 0 };
      return compare( chips.board.units().group( 1, kEfp ), 1, keyFieldsOf( frame ), kAll );
   };
   Match const expected{ 3, kExact, 4, kExact };
   using Failed = std::vector< Chip::FailedQualifier >;
   EXPECT_EQ( comparedAt( 4, 3 ).rules.at( 0 ).failed, Failed{} );
   EXPECT_EQ( comparedAt( 0, 3 ).rules.at( 0 ).failed,
              ( Failed{ { Qualifier::DstPort, expected, 3, 0 } } ) );
   EXPECT_EQ( comparedAt( 4, 5 ).rules.at( 0 ).failed,
              ( Failed{ { Qualifier::DstPort, expected, 5, 4 } } ) );
}

}  // namespace ComparisonTest
