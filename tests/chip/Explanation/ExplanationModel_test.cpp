// Random frames on random rules: an explanation tells what forward() then does, its comparisons
// agree with the lookup, and the qualifiers of a near miss are exactly those that keep it from
// matching.
//
// A near miss is proved on a copy of the rule, alone in a group: it matches with the frame's values
// in the named qualifiers, and with any of them left as it is it misses.
//
// Each case is a switch with rules of its own and two hundred frames, one after the other, so that
// addresses are learned and move. rapidcheck makes a hundred cases and prints its seed.
#include <gtest/gtest.h>

#include <rapidcheck/gtest.h>

#include "Explained.h"

namespace ExplanationModelTest {

using namespace PipelineTest;
using Chip::EntryContent;
using Chip::GroupComparison;
using Chip::Learning;
using Chip::Match;
using Chip::Qualifier;
using Chip::RuleComparison;
using Chip::WonBy;

constexpr std::size_t kFrames = 200;
constexpr std::size_t kRules = 10;

// --- Random rules, in a world small enough for many to match

// Below the end, each number as often as the others: rapidcheck's first cases have small ones only.
template< typename Number > Number anyIn( Number begin, Number end ) {
   return *rc::gen::resize( rc::kNominalSize, rc::gen::inRange< Number >( begin, end ) );
}
template< typename Value > Value anyOf( std::vector< Value > const & values ) {
   return values[ anyIn< std::size_t >( 0, values.size() ) ];
}
bool isOneOf( int several ) {
   return anyIn( 0, several ) == 0;
}

void finish( Quelm::Ptr< Chip::SoftTcamEntryManager > const & manager, U32 unit, U32 id ) {
   if ( !isOneOf( 3 ) ) {
      manager->setPriorityForEntry( unit, id, anyIn( 0U, 3U ) );
   }
   if ( !isOneOf( 6 ) ) {
      manager->installEntry( unit, id );
   }
}

void addIngressRule( ChipTest::TwoUnitSwitch & chips, U32 unit ) {
   U32 const id = chips.ifp->getEntry( unit, "rule", {} );
   if ( isOneOf( 2 ) ) {
      chips.sdk.bcm_field_qualify_SrcVxlanGport( unit, id,
                                                 Chip::vxlanGportOf( anyOf< U16 >( { 2, 3 } ) ) );
   }
   if ( isOneOf( 2 ) ) {
      chips.sdk.bcm_field_qualify_PacketRes( unit, id, anyIn( 0U, 8U ),
                                             anyOf< U32 >( { 0, 1, 3, 0xff } ) );
   }
   if ( isOneOf( 3 ) ) {
      chips.sdk.bcm_field_qualify_TunnelTerminated( unit, id, anyOf< U8 >( { 0, 1 } ),
                                                    anyOf< U8 >( { 0, 1 } ) );
   }
   if ( isOneOf( 3 ) ) {
      chips.sdk.bcm_field_qualify_VxlanNetworkId( unit, id, anyOf< U32 >( { 10100, 10200 } ),
                                                  anyOf< U32 >( { 0, 0xf, kExact } ) );
   }
   if ( isOneOf( 2 ) ) {
      chips.ifp->addEgressMaskAction( unit, id, ChipTest::pbmpOfPorts( { anyIn( 1U, 6U ), 49 } ) );
   } else {
      chips.sdk.bcm_field_action_add( unit, id, bcmFieldActionEgressClassSelect,
                                      BCM_FIELD_EGRESS_CLASS_SELECT_NEW, 0 );
      chips.sdk.bcm_field_action_add( unit, id, bcmFieldActionNewClassId, anyOf< U32 >( { 1, 2 } ),
                                      0 );
   }
   finish( chips.ifp, unit, id );
}

void addEgressRule( ChipTest::TwoUnitSwitch & chips, U32 unit ) {
   U32 const id = chips.efp->getEntry( unit, "rule", {} );
   if ( !isOneOf( 3 ) ) {
      chips.sdk.bcm_field_qualify_DstPort( unit, id, anyOf< U32 >( { 0, 4 } ),
                                           anyOf< U32 >( { 0, kExact } ), anyIn( 1U, 6U ),
                                           anyOf< U32 >( { 0, 1, kExact } ) );
   }
   if ( isOneOf( 2 ) ) {
      chips.sdk.bcm_field_qualify_IpType( unit, id,
                                          anyOf< bcm_field_IpType_t >(
                                             { bcmFieldIpTypeAny, bcmFieldIpTypeNonIp,
                                               bcmFieldIpTypeIpv4Any, bcmFieldIpTypeIpv6 } ) );
   }
   if ( isOneOf( 2 ) ) {
      chips.sdk.bcm_field_qualify_IngressClassField( unit, id, anyIn( 0U, 3U ), kExact );
   }
   if ( isOneOf( 2 ) ) {
      chips.sdk.bcm_field_action_add( unit, id, bcmFieldActionDrop, 0, 0 );
   }
   finish( chips.efp, unit, id );
}

// --- Random frames

Chip::ForwardingConfig config() {
   Chip::ForwardingConfig config = leaf1Config();
   config.hostRoutes = { { ip( "192.0.2.1" ), { 10, kHost1 } },
                         { ip( "192.0.2.2" ), { 20, kHost2 } } };
   config.multicastRoutes = { { ip( "239.1.1.1" ), { 10 } } };
   config.designatedForwarder[ intf( "Ethernet2" ) ].allVlans = false;
   config.sharedWith[ intf( "Port-Channel1" ) ] = { kLeaf2 };
   config.interfaces.push_back(
      { .intfId = intf( "Ethernet50" ), .unit = 1, .logicalPort = 50, .isUnderlay = true } );
   config.portChannels.push_back( { .intfId = intf( "Port-Channel2" ), .vlans = { { 10 }, {} } } );
   return config;
}

struct Arriving {
   VornalPort port;
   std::vector< U8 > bytes;
};

FrameFields anyFields( bool isFromTunnel ) {
   FrameFields frame = fromHost1();
   frame.source = anyOf< MacAddress >( { kHost1, kHost2, kHost3, kGroupMac4, MacAddress() } );
   frame.destination =
      anyOf< MacAddress >( { MacAddress::broadcast(), kHost1, kHost2, kHost3, kNobody, kRouter,
                             kRouter, kGroupMac4, MacAddress( 0x0180c2000000 ) } );
   frame.content = anyOf< FrameContent >(
      { FrameContent::Bare, FrameContent::Arp, FrameContent::Udp, FrameContent::Udp } );
   frame.destinationIp = anyOf< IpGenAddr >(
      { ip( "192.0.2.1" ), ip( "192.0.2.2" ), ip( "192.0.2.9" ), ip( "239.1.1.1" ) } );
   frame.sourcePort = anyIn< U16 >( 0, 0xffff );
   frame.timeToLive = anyOf< U8 >( { 1, 64 } );
   if ( !isFromTunnel ) {
      frame.vlan = anyOf< std::optional< U16 > >( { std::nullopt, 10, 10, 20, 11 } );
      return frame;
   }
   frame.outer = Chip::OuterFields{ .sourceVtep = anyOf< IpGenAddr >(
                                       { kLeaf2, kLeaf2, kLeaf3, ip( "10.0.0.9" ) } ),
                                    .destinationVtep = kLeaf1,
                                    .vni = anyOf< U32 >( { 10100, 10100, 10200, 10300 } ) };
   return frame;
}

Arriving anyFrame() {
   bool const isFromTunnel = isOneOf( 2 );
   Arriving arriving{ isFromTunnel ? kUnderlay
                                   : anyOf< VornalPort >( { kPort1, kPort2, kPort3, kPort4, kPort5,
                                                            VornalPort( 0, 9 ) } ),
                      bytesOf( anyFields( isFromTunnel ) ) };
   if ( isOneOf( 10 ) ) {
      arriving.bytes.resize( anyIn< std::size_t >( 0, arriving.bytes.size() ) );
   }
   if ( isOneOf( 10 ) && !arriving.bytes.empty() ) {
      auto const at = anyIn< std::size_t >( 0, arriving.bytes.size() );
      arriving.bytes[ at ] = anyIn< U8 >( 0, 0xff );
   }
   return arriving;
}

// --- What must hold of a comparison

EntryContent const & contentOf( Chip::Group const & group, RuleComparison const & rule ) {
   return *group.entry( rule.rule.id )->written();
}

// Whether a rule of that content, alone in a group of that kind, is found for such a frame.
template< typename Fields >
bool isFound( EntryContent const & content, Chip::Group const & like, Fields const & frame ) {
   Chip::EntryIds ids;
   Chip::Group alone( like.assignment(), like.kind(), 1, ids );
   U32 const id = alone.entryNew( "copy" );
   for ( Qualifier const qualifier : Chip::kQualifiers ) {
      if ( auto const & match = content[ qualifier ] ) {
         RC_ASSERT( alone.entry( id )->qualify( qualifier, *match ) == Chip::ResultCode::None );
      }
   }
   RC_ASSERT( alone.install( id ) == Chip::ResultCode::None );
   return alone.lookup( frame ) != nullptr;
}

// Gives the rule the value that the frame is said to have.
void giveWhatFrameHas( EntryContent & rule, Chip::FailedQualifier const & failed ) {
   Match & match = *rule[ failed.qualifier ];
   RC_ASSERT( failed.expected == match );
   match.data = failed.got;
   match.modId = failed.gotModId;
}

// A copy of the rule matches once the failed qualifiers have the frame's values, and not before: it
// takes all of them, and no others.
template< typename Fields >
void checkFailures( EntryContent const & content, RuleComparison const & rule,
                    Chip::Group const & group, Fields const & frame ) {
   EntryContent mended = content;
   for ( Chip::FailedQualifier const & failed : rule.failed ) {
      giveWhatFrameHas( mended, failed );
   }
   RC_ASSERT( isFound( mended, group, frame ) );
   for ( Chip::FailedQualifier const & left : rule.failed ) {
      EntryContent allButOne = mended;
      allButOne[ left.qualifier ] = content[ left.qualifier ];
      RC_ASSERT( !isFound( allButOne, group, frame ) );
   }
}

// The rank of a rule as one number: smaller is better.
std::tuple< std::size_t, U64, U32 > rankOf( RuleComparison const & rule,
                                            EntryContent const & content ) {
   U64 const belowDefault = content.priority ? 0x100000000 - *content.priority : 0;
   return { rule.failed.size(), belowDefault, rule.rule.id };
}

WonBy reasonOf( EntryContent const & winner, EntryContent const & second ) {
   if ( !winner.priority ) {
      return second.priority ? WonBy::NoPriority : WonBy::Older;
   }
   return second.priority == winner.priority ? WonBy::Older : WonBy::HigherPriority;
}

template< typename Fields >
void checkComparison( GroupComparison const & comparison, Chip::Group const & group,
                      Fields const & frame ) {
   Chip::Entry const * const winner = group.lookup( frame );
   auto const & rules = comparison.rules;
   std::size_t written = 0;
   for ( Chip::Entry const * const entry : group.entries() ) {
      written += entry->written() ? 1U : 0U;
   }
   RC_ASSERT( rules.size() == written );
   RC_ASSERT( comparison.winner() == ( winner ? &rules.front() : nullptr ) );
   for ( std::size_t n = 0; n < rules.size(); ++n ) {
      checkFailures( contentOf( group, rules[ n ] ), rules[ n ], group, frame );
      if ( n > 0 ) {
         RC_ASSERT( rankOf( rules[ n - 1 ], contentOf( group, rules[ n - 1 ] ) ) <
                    rankOf( rules[ n ], contentOf( group, rules[ n ] ) ) );
      }
   }
   if ( winner ) {
      RC_ASSERT( rules.front().rule.id == winner->id() );
      bool const hasSecond = rules.size() > 1 && rules[ 1 ].isMatch();
      RC_ASSERT( comparison.wonBy ==
                 ( hasSecond ? reasonOf( *winner->written(), contentOf( group, rules[ 1 ] ) )
                             : WonBy::OnlyMatch ) );
   }
}

// --- One switch with its frames

class SwitchRun {
 public:
   SwitchRun() {
      for ( U32 unit = 0; unit < 2; ++unit ) {
         for ( std::size_t n = 0; n < kRules; ++n ) {
            addIngressRule( leaf1_.chips, unit );
            addEgressRule( leaf1_.chips, unit );
         }
      }
   }

   void frame( Arriving const & arriving ) {
      auto const macs = leaf1_.pipeline.macs();
      Explanation const why = explain( leaf1_.pipeline, arriving.port, arriving.bytes );
      RC_ASSERT( explain( leaf1_.pipeline, arriving.port, arriving.bytes ) == why );
      RC_ASSERT( leaf1_.pipeline.macs() == macs );
      FrameStory const story = leaf1_.forward( arriving.port, arriving.bytes );
      RC_ASSERT( why.story == story );
      RC_ASSERT( why.number == leaf1_.pipeline.counters().frames );
      checkLearning( why, macs );
      checkIngress( why, story );
      checkCopies( why, story );
      checkInterfaces( why );
   }

 private:
   Chip::Group const & group( U16 unit, Vornal::TcamGroupAssignment assignment ) {
      return *leaf1_.chips.board.units().group( unit, assignment );
   }

   void checkLearning( Explanation const & why, std::vector< Chip::LearnedMac > macs ) const {
      if ( why.source && why.source->known ) {
         RC_ASSERT( std::erase( macs, *why.source->known ) == 1U );
      }
      bool const isNews = why.source && ( why.source->learning == Learning::New ||
                                          why.source->learning == Learning::Moved );
      if ( isNews ) {
         macs.push_back( { why.source->vlan, why.source->address, why.source->seen, why.number } );
      } else if ( why.source && why.source->known ) {
         macs.push_back( *why.source->known );
      }
      RC_ASSERT( macs.size() == leaf1_.pipeline.learned() );
      for ( Chip::LearnedMac const & one : leaf1_.pipeline.macs() ) {
         RC_ASSERT( std::find( macs.begin(), macs.end(), one ) != macs.end() );
      }
   }

   void checkIngress( Explanation const & why, FrameStory const & story ) {
      RC_ASSERT( why.ingress.size() == story.ingress.size() );
      for ( std::size_t n = 0; n < why.ingress.size(); ++n ) {
         Chip::IngressExplanation const & one = why.ingress[ n ];
         RC_ASSERT( one.story == story.ingress[ n ] );
         Chip::Group const & ingress = group( one.story.unit, kIfp );
         checkComparison( one.comparison, ingress, one.fields );
         RuleComparison const * const winner = one.comparison.winner();
         RC_ASSERT( one.story.rule == ( winner ? std::optional( winner->rule ) : std::nullopt ) );
      }
   }

   void checkCopies( Explanation const & why, FrameStory const & story ) {
      RC_ASSERT( why.copies.size() == story.copies.size() );
      for ( std::size_t n = 0; n < why.copies.size(); ++n ) {
         CopyExplanation const & copy = why.copies[ n ];
         RC_ASSERT( copy.story == story.copies[ n ] );
         Verdict const verdict = copy.story.verdict;
         bool const isMasked = copy.mask && copy.mask->hasPort;
         RC_ASSERT( isMasked == ( verdict == Verdict::Masked ) );
         bool isDrop = false;
         if ( copy.egress ) {
            Chip::Group const & egress = group( copy.story.port.unit(), kEfp );
            Chip::Entry const * const winner = egress.lookup( copy.egress->fields );
            checkComparison( copy.egress->comparison, egress, copy.egress->fields );
            isDrop = winner && ( *winner->written() )[ Chip::Action::Drop ];
         }
         RC_ASSERT( isDrop == ( verdict == Verdict::Dropped ) );
         RC_ASSERT( ( copy.isDesignated == false ) == ( verdict == Verdict::NotDesignated ) );
      }
   }

   // Each interface has a copy or a reason, and never both.
   static void checkInterfaces( Explanation const & why ) {
      Chip::ForwardingConfig const switched = config();
      std::size_t reasons = 0;
      auto const check = [ & ]( IntfId const & intfId, bool hasCopy ) {
         auto const count =
            std::count_if( why.noCopies.begin(), why.noCopies.end(),
                           [ & ]( NoCopy const & one ) { return one.intfId == intfId; } );
         RC_ASSERT( count == ( hasCopy ? 0 : 1 ) );
         reasons += hasCopy ? 0U : 1U;
      };
      auto const & copies = why.story.copies;
      for ( Chip::InterfaceConfig const & one : switched.interfaces ) {
         check( one.intfId, std::any_of( copies.begin(), copies.end(), [ & ]( Copy const & copy ) {
                   return copy.port.unit() == one.unit &&
                          copy.port.logicalPort() == one.logicalPort;
                } ) );
      }
      for ( Chip::PortChannelConfig const & one : switched.portChannels ) {
         check( one.intfId, std::any_of( copies.begin(), copies.end(), [ & ]( Copy const & copy ) {
                   return copy.intfId == one.intfId;
                } ) );
      }
      RC_ASSERT( why.noCopies.size() == reasons );
   }

   Leaf leaf1_{ config() };
};

// The number of frames does not depend on the size of rapidcheck's cases.
TEST( ExplanationModel, OfTenThousandFramesIsWhatForwardDoesAndEveryNearMissIsOneByItsQualifiers ) {
   std::size_t frames = 0;
   bool const holds = rc::check( [ & ] {
      SwitchRun run;
      for ( std::size_t n = 0; n < kFrames; ++n, ++frames ) {
         run.frame( anyFrame() );
      }
   } );
   EXPECT_TRUE( holds ) << "RC_PARAMS='reproduce=...' above repeats the case";
   EXPECT_GE( frames, 10000U );
}

}  // namespace ExplanationModelTest
