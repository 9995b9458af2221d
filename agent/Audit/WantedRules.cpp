#include <Audit/WantedRules.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <SoftSdk/Gport.h>
#include <SoftSdk/SoftSdk.h>

namespace Audit {

namespace {

using Chip::Action;
using Chip::EntryContent;
using Chip::Match;
using Chip::Qualifier;
using Pelk::IntfId;
using Pelk::IpGenAddr;
using VornalTypes::VornalPort;

constexpr U32 kExact = BCM_FIELD_EXACT_MATCH_MASK;
constexpr U32 kUnicastMask = 0xff;
constexpr U32 kVtepPriority = 1;  // below the per-VNI rules, which stand below the default
constexpr U32 kVniPriority = 2;

// --- Who shares what

// An interface with its valid port on a unit.
struct PortOf {
   IntfId intf;
   VornalPort port;
};

// The physical interfaces of a segment interface that have a port on the unit.
std::vector< PortOf > portsOf( State const & state, U16 unit, IntfId const & intf ) {
   std::set< IntfId > physical{ intf };
   if ( isPortChannel( intf ) ) {
      auto const lag = state.lags.find( intf );
      physical = lag == state.lags.end() ? std::set< IntfId >() : lag->second;
   }
   std::vector< PortOf > ports;
   for ( IntfId const & one : physical ) {
      auto const port = state.ports.find( one );
      if ( port != state.ports.end() && port->second.unit() == unit && port->second.isValid() ) {
         ports.push_back( { one, port->second } );
      }
   }
   return ports;
}

std::vector< IntfId > segmentsOf( State const & state, IpGenAddr const & vtep ) {
   std::vector< IntfId > segments;
   for ( auto const & [ intf, vteps ] : state.segments ) {
      if ( vteps.contains( vtep ) ) {
         segments.push_back( intf );
      }
   }
   return segments;
}

// "segment Port-Channel2 through Ethernet3 and Ethernet4"
std::string segmentText( State const & state, U16 unit, IntfId const & segment ) {
   std::vector< std::string > names;
   for ( PortOf const & port : portsOf( state, unit, segment ) ) {
      names.push_back( port.intf.stringValue() );
   }
   return names.empty() ? fmt::format( "segment {}, which has no port on unit {}",
                                       segment.stringValue(), unit )
                        : fmt::format( "segment {} through {}", segment.stringValue(),
                                       fmt::join( names, " and " ) );
}

// "VTEP 10.0.0.2 shares segment Port-Channel2 through Ethernet3; virtual port 2"
std::string sharingText( State const & state, U16 unit, IpGenAddr const & vtep ) {
   std::vector< std::string > texts;
   for ( IntfId const & segment : segmentsOf( state, vtep ) ) {
      texts.push_back( segmentText( state, unit, segment ) );
   }
   return fmt::format( "VTEP {} shares {}; virtual port {}", vtep.stringValue(),
                       fmt::join( texts, ", and " ), state.virtualPorts.at( vtep ) );
}

// --- What rules are made of

EntryContent unicastExemption( U32 packetRes ) {
   EntryContent content;
   content[ Qualifier::PacketRes ] = Match{ packetRes, kUnicastMask };
   content[ Qualifier::TunnelTerminated ] = Match{ 1, 1 };
   return content;
}

EntryContent vtepRule( State const & state, U16 unit, IpGenAddr const & vtep ) {
   EntryContent content;
   content[ Qualifier::SrcVxlanGport ] =
      Match{ Chip::vxlanGportOf( vpIndexOf( state, vtep ) ), kExact };
   if ( state.isOverrideRuleOn ) {
      content.priority = kVtepPriority;
   }
   if ( state.isClassIdVariant ) {
      content[ Action::EgressClassSelect ] = { BCM_FIELD_EGRESS_CLASS_SELECT_NEW, 0, {} };
      return content;
   }
   auto & mask = content[ Action::EgressMask ].emplace();
   for ( VornalPort const & port : sharedPorts( state, unit, vtep ) ) {
      mask.ports.bitSet( port.logicalPort() );
   }
   return content;
}

EntryContent vniExemption( U32 vni ) {
   EntryContent content;
   content[ Qualifier::VxlanNetworkId ] = Match{ vni, kExact };
   content[ Qualifier::PacketRes ] = Match{ Chip::SoftSdk::kPacketResL3McKnown, kExact };
   content.priority = kVniPriority;
   return content;
}

EntryContent egressDrop( VornalPort const & port ) {
   EntryContent content;
   content[ Qualifier::DstPort ] = Match{ port.logicalPort(), kExact, port.modId(), kExact };
   content[ Qualifier::IpType ] = Match{ bcmFieldIpTypeAny, 0 };
   content[ Action::Drop ].emplace();
   return content;
}

IntfId intfOf( State const & state, VornalPort const & wanted ) {
   for ( auto const & [ intf, port ] : state.ports ) {
      if ( port == wanted ) {
         return intf;
      }
   }
   return {};
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
         addVtep( vtep );
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

   void addVtep( IpGenAddr const & vtep ) {
      std::string const because = sharingText( state_, unit_, vtep );
      put( { unit_, Purpose::vtep, vtep },
           { fmt::format( "Mark or drop packets at IFP from vtep IP {} on shared segments",
                          vtep.stringValue() ),
             vtepRule( state_, unit_, vtep ), because } );
      if ( !state_.isClassIdVariant ) {
         return;
      }
      for ( VornalPort const & port : sharedPorts( state_, unit_, vtep ) ) {
         put( { unit_, Purpose::egressDrop, vtep, port },
              { fmt::format( "Drop packets at EFP from vtep IP {} on {}", vtep.stringValue(),
                             intfOf( state_, port ).stringValue() ),
                egressDrop( port ), because } );
      }
   }

   // With the class id that the VTEP is granted, where there are class ids.
   void put( RuleFor const & what, WantedRule rule ) {
      auto const granted = state_.classIds.find( what.vtep );
      if ( state_.isClassIdVariant ) {
         rule.isWithoutClassId = granted == state_.classIds.end();
         if ( !rule.isWithoutClassId ) {
            classIdIs( what, granted->second, rule.content );
            rule.because += fmt::format( "; class id {}", granted->second.value() );
         }
      }
      rules_[ what ] = std::move( rule );
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

std::set< IpGenAddr > activeVteps( State const & state ) {
   std::set< IpGenAddr > active;
   for ( auto const & [ intf, vteps ] : state.segments ) {
      for ( IpGenAddr const & vtep : vteps ) {
         if ( state.virtualPorts.contains( vtep ) ) {
            active.insert( vtep );
         }
      }
   }
   return active;
}

std::set< VornalPort > sharedPorts( State const & state, U16 unit, IpGenAddr const & vtep ) {
   std::set< VornalPort > ports;
   for ( IntfId const & segment : segmentsOf( state, vtep ) ) {
      for ( PortOf const & port : portsOf( state, unit, segment ) ) {
         ports.insert( port.port );
      }
   }
   return ports;
}

U16 vpIndexOf( State const & state, IpGenAddr const & vtep ) {
   auto const found = state.virtualPorts.find( vtep );
   return found == state.virtualPorts.end() ? U16{ 0 } : static_cast< U16 >( found->second );
}

void classIdIs( RuleFor const & what, VornalCommon::ClassId classId, EntryContent & content ) {
   if ( what.purpose == Purpose::egressDrop ) {
      content[ Qualifier::IngressClassField ] = Match{ classId.value(), kExact };
   } else {
      content[ Action::NewClassId ] = { classId.value(), 0, {} };
   }
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
