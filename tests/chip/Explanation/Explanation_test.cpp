// What a frame's fate rests on: addresses, routes, bridge domains, rules, masks, designation. And
// that asking changes nothing.
#include "Explained.h"

namespace ExplanationTest {

using namespace PipelineTest;
using Chip::DomainFields;
using Chip::LearnedMac;
using Chip::Learning;
using Chip::RuleKey;
using Chip::WonBy;

// --- Asking changes nothing

TEST( Explanation, ChangesNothing ) {
   Leaf leaf1;
   leaf1.learnBehindLeaf2( kHost2 );
   FrameStory const & last = leaf1.pipeline.forward( kPort3, bytesOf( fromHost1() ), leaf1.wire );
   FrameStory const before = last;
   std::vector< LearnedMac > const macs = leaf1.pipeline.macs();
   std::size_t const sent = leaf1.wire.sent.size();

   Explanation const why = explained( leaf1, fromHost1() );
   EXPECT_EQ( why.source->learning, Learning::Moved );
   EXPECT_EQ( explained( leaf1, fromHost1() ), why );
   EXPECT_EQ( last, before );
   EXPECT_EQ( leaf1.pipeline.macs(), macs );
   EXPECT_EQ( leaf1.wire.sent.size(), sent );
   EXPECT_EQ( leaf1.pipeline.counters().frames, 2U );
   EXPECT_EQ( leaf1.pipeline.counters()[ FrameKind::Broadcast ], 2U );
   EXPECT_EQ( leaf1.pipeline.counters()[ Verdict::Sent ], 9U );
   EXPECT_EQ( why.number, 3U );
   EXPECT_EQ( leaf1.forward( fromHost1() ), why.story );
}

TEST( Explanation, OfEveryTruncationIsWhatForwardDoes ) {
   Leaf leaf1;
   std::vector< U8 > const whole = bytesOf( fromLeaf2() );
   for ( std::size_t size = 0; size < whole.size(); ++size ) {
      std::vector< U8 > const bytes( whole.begin(),
                                     whole.begin() + static_cast< std::ptrdiff_t >( size ) );
      for ( VornalPort const & port : { kUnderlay, kPort1, VornalPort( 7, 9 ) } ) {
         Explanation const why = explain( leaf1.pipeline, port, bytes );
         EXPECT_EQ( why.story, leaf1.forward( port, bytes ) ) << size;
      }
   }
}

// --- The source address

class ExplainedSource : public testing::Test {
 protected:
   void learns( Learning expected, FrameFields const & frame,
                std::optional< LearnedMac > const & known = std::nullopt ) {
      Explanation const why = explained( leaf1, frame );
      ASSERT_TRUE( why.source );
      EXPECT_EQ( why.source->learning, expected );
      EXPECT_EQ( why.source->known, known );
      EXPECT_EQ( why.source->vlan, 10 );
      EXPECT_EQ( why.source->address, frame.source );
      EXPECT_EQ( why.source->seen, frame.outer
                                      ? Chip::MacPlace{ .remoteVtep = frame.outer->sourceVtep }
                                      : Chip::MacPlace{ .intfId = intf( "Ethernet1" ) } );
   }
   static Chip::ForwardingConfig sharedWithLeaf2() {
      Chip::ForwardingConfig config = leaf1Config();
      config.sharedWith[ intf( "Ethernet1" ) ] = { kLeaf2 };
      return config;
   }
   static FrameFields from( FrameFields frame, MacAddress source ) {
      frame.source = source;
      return frame;
   }

   Leaf leaf1{ sharedWithLeaf2() };
};

TEST_F( ExplainedSource, IsNew ) {
   learns( Learning::New, fromHost1() );
   learns( Learning::New, fromLeaf2() );
}

TEST_F( ExplainedSource, IsUnchanged ) {
   leaf1.learn( kHost1, kPort1 );
   leaf1.learn( kHost1, kPort1 );
   learns( Learning::Unchanged, fromHost1(),
           LearnedMac{ 10, kHost1, { .intfId = intf( "Ethernet1" ) }, 1 } );
}

TEST_F( ExplainedSource, HasMoved ) {
   leaf1.learn( kHost1, kPort3 );
   learns( Learning::Moved, fromHost1(),
           LearnedMac{ 10, kHost1, { .intfId = intf( "Ethernet3" ) }, 1 } );
   leaf1.learnBehindLeaf2( kHost1 );
   learns( Learning::Moved, fromHost1(), LearnedMac{ 10, kHost1, { .remoteVtep = kLeaf2 }, 2 } );
}

TEST_F( ExplainedSource, StaysOnItsSharedSegment ) {
   leaf1.learn( kHost1, kPort1 );
   learns( Learning::SharedSegment, from( fromLeaf2(), kHost1 ),
           LearnedMac{ 10, kHost1, { .intfId = intf( "Ethernet1" ) }, 1 } );
}

TEST_F( ExplainedSource, IsNothingToLearn ) {
   learns( Learning::NotLearnable, from( fromHost1(), kGroupMac4 ) );
   learns( Learning::NotLearnable, from( fromHost1(), MacAddress() ) );
}

TEST_F( ExplainedSource, FindsTheTableFull ) {
   std::vector< U8 > bytes = bytesOf( fromHost1() );
   for ( U64 n = 0; n < 32768; ++n ) {
      Chip::putMac( bytes, MacAddress::kBytes, MacAddress( 0x020000100000 + n ) );
      leaf1.wire.sent.clear();
      leaf1.pipeline.forward( kPort1, bytes, leaf1.wire );
   }
   learns( Learning::TableFull, fromHost1() );
}

TEST_F( ExplainedSource, IsNotLookedAtBeforeTheFrameBelongsSomewhere ) {
   FrameFields frame = fromHost1();
   frame.vlan = 11;
   EXPECT_EQ( explained( leaf1, frame ).source, std::nullopt );
   frame = fromLeaf2();
   frame.outer->vni = 10300;
   EXPECT_EQ( explained( leaf1, frame ).source, std::nullopt );
}

// --- The destination

TEST( ExplainedDestination, OfKnownUnicastIsAnEntryOfTheTable ) {
   Leaf leaf1;
   leaf1.learn( kHost3, kPort3 );
   leaf1.learn( kHost3, kPort5 );
   Explanation const why = explained( leaf1, unicast( fromHost1(), kHost3, ip( "192.0.2.3" ) ) );
   EXPECT_EQ( why.destination,
              ( Chip::DestinationLookup{
                 10, kHost3,
                 LearnedMac{ 10, kHost3, { .intfId = intf( "Port-Channel1" ) }, 2 } } ) );
   EXPECT_EQ( why.arrivalDomain, ( DomainFields{ 10, 10100 } ) );
   EXPECT_EQ( why.domain, ( DomainFields{ 10, 10100 } ) );
}

TEST( ExplainedDestination, MayBeUnknown ) {
   Leaf leaf1;
   Explanation const why = explained( leaf1, unicast( fromHost1(), kNobody, ip( "192.0.2.77" ) ) );
   EXPECT_EQ( why.destination, ( Chip::DestinationLookup{ 10, kNobody, {} } ) );
}

TEST( ExplainedDestination, OfAFrameForSeveralIsNotLookedFor ) {
   Leaf leaf1;
   EXPECT_EQ( explained( leaf1, fromHost1() ).destination, std::nullopt );
   EXPECT_EQ( explained( leaf1,
                         unicast( fromHost1(), MacAddress( 0x0180c2000000 ), ip( "192.0.2.77" ) ) )
                 .domain,
              std::nullopt )
      << "dropped before it was decided where it belongs";
}

Chip::ForwardingConfig routing() {
   Chip::ForwardingConfig config = leaf1Config();
   config.hostRoutes = { { ip( "192.0.2.3" ), { 20, kHost3 } } };
   config.multicastRoutes = { { ip( "239.1.1.1" ), { 10, 20 } } };
   return config;
}

TEST( ExplainedDestination, OfARoutedFrameIsTheRoutes ) {
   Leaf leaf1( routing() );
   Explanation const why = explained( leaf1, unicast( fromHost1(), kRouter, ip( "192.0.2.3" ) ) );
   EXPECT_EQ( why.story.dropReason, DropReason::UnknownHost );
   EXPECT_EQ( why.hostRoute, ( Chip::HostRouteExplanation{ ip( "192.0.2.3" ), { 20, kHost3 } } ) );
   EXPECT_EQ( why.destination, ( Chip::DestinationLookup{ 20, kHost3, {} } ) );
   EXPECT_EQ( why.arrivalDomain, ( DomainFields{ 10, 10100 } ) );
   EXPECT_EQ( why.domain, ( DomainFields{ 20, 10200 } ) );
}

TEST( ExplainedDestination, WithoutRouteIsNotLookedFor ) {
   Leaf leaf1( routing() );
   Explanation const why = explained( leaf1, unicast( fromHost1(), kRouter, ip( "192.0.2.9" ) ) );
   EXPECT_EQ( why.story.dropReason, DropReason::NoRoute );
   EXPECT_EQ( why.hostRoute, std::nullopt );
   EXPECT_EQ( why.destination, std::nullopt );
}

TEST( ExplainedDestination, OfRoutedMulticastHasTheGroupsRoute ) {
   Leaf leaf1( routing() );
   EXPECT_EQ(
      explained( leaf1, unicast( fromHost1(), kGroupMac4, ip( "239.1.1.1" ) ) ).multicastRoute,
      ( Chip::MulticastRouteExplanation{ ip( "239.1.1.1" ), { 10, 20 } } ) );
   EXPECT_EQ(
      explained( leaf1, unicast( fromHost1(), kGroupMac4, ip( "239.1.1.2" ) ) ).multicastRoute,
      std::nullopt );
}

// --- Rules

class ExplainedRules : public testing::Test {
 protected:
   U32 fromLeaf2Rule() {
      U32 const id = chips.ifp->getEntry( 0, "from leaf2", {} );
      chips.sdk.bcm_field_qualify_SrcVxlanGport( 0, id, Chip::vxlanGportOf( 2 ) );
      return id;
   }
   U32 mask( std::vector< U32 > const & ports ) {
      U32 const id = fromLeaf2Rule();
      chips.ifp->addEgressMaskAction( 0, id, ChipTest::pbmpOfPorts( ports ) );
      chips.ifp->installEntry( 0, id );
      return id;
   }
   U32 mark( U16 classId ) {
      U32 const id = fromLeaf2Rule();
      chips.sdk.bcm_field_action_add( 0, id, bcmFieldActionEgressClassSelect,
                                      BCM_FIELD_EGRESS_CLASS_SELECT_NEW, 0 );
      chips.sdk.bcm_field_action_add( 0, id, bcmFieldActionNewClassId, classId, 0 );
      chips.ifp->installEntry( 0, id );
      return id;
   }
   U32 drop( U32 port, U16 classId ) {
      U32 const id = chips.efp->getEntry( 0, "drop", {} );
      chips.sdk.bcm_field_qualify_DstPort( 0, id, 0, kExact, port, kExact );
      chips.sdk.bcm_field_qualify_IngressClassField( 0, id, classId, kExact );
      chips.sdk.bcm_field_action_add( 0, id, bcmFieldActionDrop, 0, 0 );
      chips.efp->installEntry( 0, id );
      return id;
   }

   Leaf leaf1;
   ChipTest::TwoUnitSwitch & chips = leaf1.chips;
};

TEST_F( ExplainedRules, OfEachUnitMetAreCompared ) {
   U32 const rule = mask( { 1 } );
   Explanation const why = explained( leaf1, fromLeaf2() );
   ASSERT_EQ( why.ingress.size(), 2U );
   Chip::IngressFields const fields{ Chip::vxlanGportOf( 2 ), 1, true, 10100 };
   EXPECT_EQ( why.ingress[ 0 ].story, ( Chip::IngressStory{ 0, RuleKey{ 0, kIfp, rule }, 0 } ) );
   EXPECT_EQ( why.ingress[ 0 ].fields, fields );
   EXPECT_EQ( why.ingress[ 0 ].comparison.wonBy, WonBy::OnlyMatch );
   EXPECT_EQ( why.ingress[ 0 ].comparison.winner()->rule, ( RuleKey{ 0, kIfp, rule } ) );
   EXPECT_EQ( why.ingress[ 1 ].fields, fields );
   EXPECT_EQ( why.ingress[ 1 ].comparison, Chip::GroupComparison{} );
}

TEST_F( ExplainedRules, MayHoldACopyBackByTheirMask ) {
   RuleKey const rule{ 0, kIfp, mask( { 1 } ) };
   drop( 1, 0 );
   Explanation const why = explained( leaf1, fromLeaf2() );
   CopyExplanation const held = copyOn( why, "Ethernet1" );
   EXPECT_EQ( held.story.verdict, Verdict::Masked );
   EXPECT_EQ( held.mask, ( Chip::MaskExplanation{ rule, true } ) );
   EXPECT_EQ( held.egress, std::nullopt ) << "the egress rules never saw it";
   EXPECT_EQ( held.isDesignated, std::nullopt );
   EXPECT_EQ( copyOn( why, "Ethernet2" ).mask, ( Chip::MaskExplanation{ rule, false } ) );
   EXPECT_EQ( copyOn( why, "Ethernet3" ).mask, std::nullopt ) << "of the other unit";
}

TEST_F( ExplainedRules, MayDropACopyByItsClass ) {
   mark( 100 );
   U32 const other = drop( 2, 101 );
   U32 const rule = drop( 2, 100 );
   CopyExplanation const copy = copyOn( explained( leaf1, fromLeaf2() ), "Ethernet2" );
   EXPECT_EQ( copy.story.verdict, Verdict::Dropped );
   EXPECT_EQ( copy.mask, std::nullopt );
   EXPECT_EQ( copy.egress->fields, ( Chip::EgressFields{ 0, 2, bcmFieldIpTypeIpv4Any, 100 } ) );
   ASSERT_EQ( copy.egress->comparison.rules.size(), 2U );
   EXPECT_EQ( copy.egress->comparison.rules[ 0 ].rule, ( RuleKey{ 0, kEfp, rule } ) );
   EXPECT_EQ( copy.egress->comparison.rules[ 1 ].rule, ( RuleKey{ 0, kEfp, other } ) );
   EXPECT_EQ( copy.isDesignated, std::nullopt );
}

TEST_F( ExplainedRules, AreNotAskedForTheArrival ) {
   CopyExplanation const copy = copyOn( explained( leaf1, fromHost1() ), "Ethernet1" );
   EXPECT_EQ( copy.story.verdict, Verdict::Arrival );
   EXPECT_EQ( copy, ( CopyExplanation{ .story = copy.story } ) );
}

TEST_F( ExplainedRules, ThatMissAreToldUpToALimit ) {
   drop( 1, 100 );
   drop( 2, 100 );
   Explanation const why =
      explain( leaf1.pipeline, kUnderlay, bytesOf( fromLeaf2() ), { .nearMisses = 1 } );
   EXPECT_EQ( copyOn( why, "Ethernet1" ).egress->comparison.rules.size(), 1U );
   EXPECT_EQ( copyOn( why, "Ethernet1" ).egress->comparison.leftOut, 1U );
}

// --- Designation

TEST( ExplainedDesignation, IsAskedForFramesFromATunnelForSeveral ) {
   Chip::ForwardingConfig config = leaf1Config();
   config.designatedForwarder[ intf( "Ethernet1" ) ].allVlans = false;
   Leaf leaf1( config );
   Explanation const why = explained( leaf1, fromLeaf2() );
   EXPECT_EQ( copyOn( why, "Ethernet1" ).isDesignated, false );
   EXPECT_TRUE( copyOn( why, "Ethernet1" ).egress );
   EXPECT_EQ( copyOn( why, "Ethernet2" ).isDesignated, true );
   EXPECT_EQ( copyOn( explained( leaf1, kPort3, fromHost1() ), "Ethernet1" ).isDesignated,
              std::nullopt );
   leaf1.learn( kHost1, kPort1 );
   EXPECT_EQ( copyOn( explained( leaf1, unicast( fromLeaf2(), kHost1, ip( "192.0.2.1" ) ) ),
                      "Ethernet1" )
                 .isDesignated,
              std::nullopt );
}

}  // namespace ExplanationTest
