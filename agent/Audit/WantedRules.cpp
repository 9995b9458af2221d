#include <Audit/WantedRules.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Audit/SharedSegments.h>
#include <Audit/Variant.h>
#include <FieldProcessor/Gport.h>
#include <SoftSdk/SoftSdk.h>

namespace Audit {

namespace {

using Chip::EntryContent;
using Chip::Match;
using Chip::Qualifier;
using Pelk::IpGenAddr;

constexpr U32 kExact = BCM_FIELD_EXACT_MATCH_MASK;
constexpr U32 kUnicastMask = 0xff;
constexpr U32 kVtepPriority = 1;  // below the per-VNI rules, which stand below the default
constexpr U32 kVniPriority = 2;

// --- The parts of rules

EntryContent unicastExemption( U32 packetRes ) {
   EntryContent content;
   content[ Qualifier::PacketRes ] = Match{ packetRes, kUnicastMask };
   content[ Qualifier::TunnelTerminated ] = Match{ 1, 1 };
   return content;
}

EntryContent vniExemption( U32 vni ) {
   EntryContent content;
   content[ Qualifier::VxlanNetworkId ] = Match{ vni, kExact };
   content[ Qualifier::PacketRes ] = Match{ Chip::SoftSdk::kPacketResL3McKnown, kExact };
   content.priority = kVniPriority;
   return content;
}

// --- All rules of a unit

class UnitRules {
 public:
   UnitRules( State const & state, U16 unit, WantedRules & rules )
         : state_( state ), unit_( unit ), rules_( rules ) {}

   void add() {
      auto const vteps = activeVteps( state_ );
      if ( !vteps.empty() ) {
         addUnicast( vteps );
      }
      for ( IpGenAddr const & vtep : vteps ) {
         rowOf( state_.variant ).addVtepRules( state_, unit_, vtep, rules_ );
      }
      if ( state_.isOverrideRuleOn && !state_.isL3MulticastExempt && !state_.segments.empty() ) {
         addVnis();
      }
   }

 private:
   void addUnicast( std::set< IpGenAddr > const & vteps ) {
      std::vector< std::string > names;
      for ( IpGenAddr const & vtep : vteps ) {
         names.push_back( vtep.stringValue() );
      }
      std::string const because =
         fmt::format( "segments are shared with VTEP {}", fmt::join( names, ", " ) );
      rules_[ { unit_, Purpose::l2Unicast } ] = { "Skip shared ES pruning for L2UC packets - No-op",
                                                  unicastExemption( BCM_FIELD_PKT_RES_L2UC ),
                                                  because };
      rules_[ { unit_, Purpose::l3Unicast } ] = { "Skip shared ES pruning for L3UC packets - No-op",
                                                  unicastExemption( BCM_FIELD_PKT_RES_L3UCKNOWN ),
                                                  because };
   }

   void addVnis() {
      for ( auto const & [ tunnel, vnis ] : state_.vnis ) {
         for ( auto const & [ vrf, vni ] : vnis ) {
            rules_[ { unit_, Purpose::vni, {}, {}, vni } ] = {
               fmt::format( "Skip shared ES pruning for packets with vni {} - No-op", vni ),
               vniExemption( vni ),
               fmt::format( "VRF {} has VNI {} on {}, and there are Ethernet segments",
                            vrf.stringValue(), vni, tunnel.stringValue() )
            };
         }
      }
   }

   State const & state_;
   U16 unit_;
   WantedRules & rules_;
};

}  // namespace

WantedRule ingressRuleOf( State const & state, U16 unit, IpGenAddr const & vtep ) {
   EntryContent content;
   content[ Qualifier::SrcVxlanGport ] =
      Match{ Chip::vxlanGportOf( vpIndexOf( state, vtep ) ), kExact };
   if ( state.isOverrideRuleOn ) {
      content.priority = kVtepPriority;
   }
   return { fmt::format( "Mark or drop packets at IFP from vtep IP {} on shared segments",
                         vtep.stringValue() ),
            content, sharingText( state, unit, vtep ) };
}

WantedRules wantedRules( State const & state ) {
   WantedRules rules;
   if ( state.isPluginReady ) {
      for ( auto const & [ unit, module ] : state.modules ) {
         UnitRules( state, unit, rules ).add();
      }
   }
   return rules;
}

}  // namespace Audit
