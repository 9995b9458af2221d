// What a frame meets: written copies only, the highest priority first, one winner.
#include <gtest/gtest.h>

#include <csignal>
#include <thread>

#include <Kiv/Activity.h>
#include <Shim/FieldCall.h>

#include "TwoUnitSwitch.h"

namespace LookupTest {

using namespace ChipTest;
using Chip::EgressFields;
using Chip::IngressFields;

IngressFields const kFloodedFromVtep2{ kVtep2, 1, true, 10100 };
IngressFields const kUnicastFromVtep2{ kVtep2, BCM_FIELD_PKT_RES_L2UC, true, 10100 };
EgressFields const kMarkedToPort5{ 0, 5, bcmFieldIpTypeIpv4Any, 100 };

// By each of the engines.
class Lookup : public testing::TestWithParam< Chip::LookupEngine > {
 protected:
   U32 unicastExemption( U32 unit ) {
      U32 const id = leaf1.ifp->getEntry( unit, "no-op", {} );
      leaf1.sdk.bcm_field_qualify_PacketRes( unit, id, BCM_FIELD_PKT_RES_L2UC, 0xff );
      leaf1.sdk.bcm_field_qualify_TunnelTerminated( unit, id, 1, 1 );
      leaf1.ifp->installEntry( unit, id );
      return id;
   }
   void prioritise( U32 id, U32 priority ) const {
      leaf1.ifp->setPriorityForEntry( 0, id, priority );
      leaf1.ifp->reinstallEntry( 0, id );
   }

   TwoUnitSwitch leaf1{ twoUnits( 8, GetParam() ) };
};
INSTANTIATE_TEST_SUITE_P( Engine, Lookup,
                          testing::Values( Chip::LookupEngine::Linear,
                                           Chip::LookupEngine::TupleSpace ),
                          []( auto const & engine ) {
                             return engine.param == Chip::LookupEngine::Linear ? "Linear"
                                                                               : "TupleSpace";
                          } );

TEST_P( Lookup, AFrameMatchesNothingOnAnEmptyChip ) {
   EXPECT_EQ( leaf1.winner( 0, kFloodedFromVtep2 ), 0U );
   EXPECT_EQ( leaf1.winner( 0, kMarkedToPort5 ), 0U );
}

TEST_P( Lookup, AFrameMeetsTheRuleOfItsVtepAndNoOther ) {
   U32 const rule = leaf1.fromVtep( 0, kVtep2 );
   EXPECT_EQ( leaf1.winner( 0, kFloodedFromVtep2 ), rule );
   EXPECT_EQ( leaf1.winner( 0, IngressFields{ kVtep3, 1, true, 10100 } ), 0U );
   EXPECT_EQ( leaf1.winner( 0, IngressFields{ 0, 1, false, 0 } ), 0U );
}

TEST_P( Lookup, ARuleOfOneUnitIsNoRuleOfTheOther ) {
   leaf1.fromVtep( 1, kVtep2 );
   EXPECT_EQ( leaf1.winner( 0, kFloodedFromVtep2 ), 0U );
   EXPECT_EQ( leaf1.winner( 1, kFloodedFromVtep2 ), 1U );
}

TEST_P( Lookup, WhatIsStagedIsNotSeenUntilItIsInstalled ) {
   U32 const rule = leaf1.ifp->getEntry( 0, "from vtep", {} );
   leaf1.sdk.bcm_field_qualify_SrcVxlanGport( 0, rule, kVtep2 );
   EXPECT_EQ( leaf1.winner( 0, kFloodedFromVtep2 ), 0U );
   leaf1.ifp->installEntry( 0, rule );
   EXPECT_EQ( leaf1.winner( 0, kFloodedFromVtep2 ), rule );
}

TEST_P( Lookup, AChangedRuleMatchesAsBeforeUntilItIsReinstalled ) {
   U32 const rule = leaf1.fromVtep( 0, kVtep2 );
   leaf1.sdk.bcm_field_qualify_SrcVxlanGport( 0, rule, kVtep3 );
   EXPECT_EQ( leaf1.winner( 0, kFloodedFromVtep2 ), rule );
   leaf1.ifp->reinstallEntry( 0, rule );
   EXPECT_EQ( leaf1.winner( 0, kFloodedFromVtep2 ), 0U );
}

TEST_P( Lookup, AReleasedRuleIsGone ) {
   U32 const rule = leaf1.fromVtep( 0, kVtep2 );
   leaf1.ifp->releaseEntry( 0, rule );
   EXPECT_EQ( leaf1.winner( 0, kFloodedFromVtep2 ), 0U );
}

TEST_P( Lookup, ARuleWithoutQualifiersMatchesEveryFrame ) {
   U32 const rule = leaf1.ifp->getEntry( 0, "everything", {} );
   leaf1.ifp->installEntry( 0, rule );
   EXPECT_EQ( leaf1.winner( 0, kFloodedFromVtep2 ), rule );
   EXPECT_EQ( leaf1.winner( 0, IngressFields{} ), rule );
}

TEST_P( Lookup, AllQualifiersOfARuleMustMatch ) {
   U32 const rule = unicastExemption( 0 );
   EXPECT_EQ( leaf1.winner( 0, kUnicastFromVtep2 ), rule );
   EXPECT_EQ( leaf1.winner( 0, IngressFields{ 0, BCM_FIELD_PKT_RES_L2UC, false, 0 } ), 0U );
   EXPECT_EQ( leaf1.winner( 0, kFloodedFromVtep2 ), 0U );
}

TEST_P( Lookup, BitsOutsideTheMaskDoNotCount ) {
   U32 const rule = leaf1.ifp->getEntry( 0, "a range of VNIs", {} );
   leaf1.sdk.bcm_field_qualify_VxlanNetworkId( 0, rule, 0x27ff, 0xffffff00 );
   leaf1.ifp->installEntry( 0, rule );
   EXPECT_EQ( leaf1.winner( 0, IngressFields{ kVtep2, 1, true, 0x2700 } ), rule );
   EXPECT_EQ( leaf1.winner( 0, IngressFields{ kVtep2, 1, true, 0x2800 } ), 0U );
}

TEST_P( Lookup, TheHigherPriorityWins ) {
   U32 const low = leaf1.fromVtep( 0, kVtep2 );
   U32 const high = unicastExemption( 0 );
   prioritise( low, 1 );
   prioritise( high, 2 );
   EXPECT_EQ( leaf1.winner( 0, kUnicastFromVtep2 ), high );
   prioritise( low, 0xffffffff );
   EXPECT_EQ( leaf1.winner( 0, kUnicastFromVtep2 ), low );
}

TEST_P( Lookup, BetweenEqualsTheOneObtainedFirstWins ) {
   U32 const first = leaf1.ifp->getEntry( 0, "obtained first", {} );
   U32 const second = leaf1.fromVtep( 0, kVtep2 );
   leaf1.sdk.bcm_field_qualify_SrcVxlanGport( 0, first, kVtep2 );
   leaf1.ifp->installEntry( 0, first );
   EXPECT_EQ( leaf1.winner( 0, kFloodedFromVtep2 ), first );
   leaf1.ifp->releaseEntry( 0, first );
   EXPECT_EQ( leaf1.winner( 0, kFloodedFromVtep2 ), second );
}

TEST_P( Lookup, TheDefaultPriorityStandsAboveEveryOther ) {
   U32 const perVtep = leaf1.fromVtep( 0, kVtep2 );
   U32 const exemption = unicastExemption( 0 );
   EXPECT_EQ( leaf1.winner( 0, kUnicastFromVtep2 ), perVtep );
   prioritise( perVtep, 0xffffffff );
   EXPECT_EQ( leaf1.winner( 0, kUnicastFromVtep2 ), exemption );
}

TEST_P( Lookup, APriorityIsInForceFromTheNextReinstallOn ) {
   U32 const perVtep = leaf1.fromVtep( 0, kVtep2 );
   U32 const exemption = unicastExemption( 0 );
   leaf1.ifp->setPriorityForEntry( 0, perVtep, 1 );
   EXPECT_EQ( leaf1.winner( 0, kUnicastFromVtep2 ), perVtep );
   leaf1.ifp->reinstallEntry( 0, perVtep );
   EXPECT_EQ( leaf1.winner( 0, kUnicastFromVtep2 ), exemption );
}

TEST_P( Lookup, TheWinnerTellsItsActions ) {
   U32 const rule = leaf1.ifp->getEntry( 0, "from vtep", {} );
   leaf1.sdk.bcm_field_qualify_SrcVxlanGport( 0, rule, kVtep2 );
   leaf1.sdk.bcm_field_action_add( 0, rule, bcmFieldActionNewClassId, 100, 0 );
   leaf1.ifp->addEgressMaskAction( 0, rule, pbmpOfPorts( { 5, 17 } ) );
   leaf1.ifp->installEntry( 0, rule );
   Chip::Entry const * const winner =
      leaf1.board.units().group( 0, kIfp )->lookup( kFloodedFromVtep2 );
   ASSERT_TRUE( winner );
   Chip::EntryContent const & written = *winner->written();
   EXPECT_EQ( written[ Chip::Action::NewClassId ]->param0, 100U );
   EXPECT_EQ( Quelm::textOf( written[ Chip::Action::EgressMask ]->ports ), "{5,17}" );
   EXPECT_FALSE( written[ Chip::Action::EgressClassSelect ] );
}

TEST_P( Lookup, AnEgressRuleIsForOnePortAndClassOfAnyIpType ) {
   U32 const rule = leaf1.efp->getEntry( 0, "drop", {} );
   leaf1.sdk.bcm_field_qualify_DstPort( 0, rule, 0, kExact, 5, kExact );
   leaf1.sdk.bcm_field_qualify_IpType( 0, rule, bcmFieldIpTypeAny );
   leaf1.sdk.bcm_field_qualify_IngressClassField( 0, rule, 100, kExact );
   leaf1.efp->installEntry( 0, rule );
   EXPECT_EQ( leaf1.winner( 0, kMarkedToPort5 ), rule );
   EXPECT_EQ( leaf1.winner( 0, EgressFields{ 0, 5, bcmFieldIpTypeNonIp, 100 } ), rule );
   EXPECT_EQ( leaf1.winner( 0, EgressFields{ 0, 6, bcmFieldIpTypeIpv6, 100 } ), 0U );
   EXPECT_EQ( leaf1.winner( 0, EgressFields{ 4, 5, bcmFieldIpTypeIpv6, 100 } ), 0U );
   EXPECT_EQ( leaf1.winner( 0, EgressFields{ 0, 5, bcmFieldIpTypeIpv6, 0 } ), 0U );
}

TEST_P( Lookup, AnEgressRuleCanBeForOneIpType ) {
   U32 const rule = leaf1.efp->getEntry( 0, "IPv6 only", {} );
   leaf1.sdk.bcm_field_qualify_IpType( 0, rule, bcmFieldIpTypeIpv6 );
   leaf1.efp->installEntry( 0, rule );
   EXPECT_EQ( leaf1.winner( 0, EgressFields{ 0, 5, bcmFieldIpTypeIpv6, 0 } ), rule );
   EXPECT_EQ( leaf1.winner( 0, EgressFields{ 0, 5, bcmFieldIpTypeIpv4Any, 0 } ), 0U );
}

TEST_P( Lookup, StaysRightWhileRulesAreBeingStaged ) {
   Kiv::ActivityManager activity;
   Kiv::ActivityLockAnchor const lock( activity );
   Shim::sdk_ = &leaf1.sdk;
   U32 const unit = 0;
   U32 const entryId = leaf1.fromVtep( unit, kVtep2 );
   U32 wrong = 0;
   std::thread packets( [ & ] {
      for ( int frame = 0; frame < 1000; ++frame ) {
         Kiv::ActivityLockAnchor const packetsTurn( activity );
         wrong += leaf1.winner( unit, kFloodedFromVtep2 ) == entryId ? 0U : 1U;
      }
   } );
   for ( U16 index = 0; index < 1000; ++index ) {
      U32 const gport = Chip::vxlanGportOf( index );
      SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) );
   }
   {
      Kiv::ActivityUnlockAnchor const unlocked;
      packets.join();
   }
   EXPECT_EQ( wrong, 0U );
   Shim::sdk_ = nullptr;
}

TEST( LookupDeathTest, AGroupOfTheOtherKindIsNotAsked ) {
   TwoUnitSwitch leaf1;
   EXPECT_EXIT( leaf1.board.units().group( 0, kEfp )->lookup( kFloodedFromVtep2 ),
                testing::KilledBySignal( SIGABRT ),
                "Group.cpp:[0-9]+: .*lookup.*Assertion 'kind_ == GroupKind::Ingress' failed" );
   EXPECT_EXIT( leaf1.board.units().group( 0, kIfp )->lookup( kMarkedToPort5 ),
                testing::KilledBySignal( SIGABRT ),
                "Group.cpp:[0-9]+: .*lookup.*Assertion 'kind_ == GroupKind::Egress' failed" );
}

}  // namespace LookupTest
