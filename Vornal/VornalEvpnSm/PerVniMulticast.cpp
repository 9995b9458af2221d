// The rules that keep known L3 multicast of routed VNIs out of the filter.
//
// Per VNI that a VRF is mapped to on the tunnel interface, and per unit, one action-less entry
// matches that VNI's known L3 multicast, at a priority above the VTEPs' entries. Entries follow the
// map while this switch has Ethernet segments and the toggle "SbdEvpnTcamOverrideRule" is on. A
// platform that exempts known L3 multicast itself needs none.
//
// A VRF without an entry for want of room is queued. When the entry manager reports room on any
// unit, handleTcamExhaustion() arms the clock, and handleTime() tries the queued VRFs again.
//
// The record of installed entries is keyed by VNI alone, so it serves one unit. On a second unit,
// releasing finds nothing left to release, and installing fails its assertion.
//
// The line numbers are those by which support tools know the calls.

#include <utility>

#include <FeatureToggle/FeatureToggle.h>
#include <Kiv/Activity.h>
#include <Kiv/OrEmpty.h>
#include <Shim/FieldCall.h>
#include <VornalCentral/Capabilities.h>
#include <VornalEvpnSm/EvpnMultihomingLocalBiasSm.h>
#include <VornalEvpnSm/Module.h>

namespace Vornal {

using Kiv::orEmpty;

namespace {

constexpr char const * kVniEntryName = "Skip shared ES pruning for packets with vni %d - No-op";
constexpr U32 kVniEntryPriority = 2;

constexpr char const * kMapSignature =
   "void Vornal::EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::handleVrfToVniMap(L3::VrfName, "
   "U32, U32)";
constexpr char const * kCleanupSignature =
   "void Vornal::EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::doCleanup()";

Pelk::IntfId tunnelIntf() {
   return Pelk::IntfId::fromString( "Vxlan1" );
}

}  // namespace

EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::NestedSm_VtiStatus(
   Notifier const & status, EvpnMultihomingLocalBiasSm * machine )
      : NestedReactor( status,
                       Kiv::onChange( Vxlan::VtiStatus::vrfToVniMapAttr(), this,
                                      &NestedSm_VtiStatus::onAttribute ),
                       machine ) {}

void EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::onAttribute( Kiv::Change const & change ) {
   if ( hasNotificationActive() ) {
      Kiv::Change const * const outer = std::exchange( change_, &change );
      handleVrfToVniMapReactor( change.key< L3::VrfName >() );
      change_ = outer;
   }
}

void EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::handleVrfToVniMapReactor( L3::VrfName vrf ) {
   auto const * const oldVni = change_->oldValue< Vxlan::VniExtOrNone >();
   auto const * const newVni = change_->newValue< Vxlan::VniExtOrNone >();
   handleVrfToVniMap( std::move( vrf ), oldVni ? oldVni->value() : 0,
                      newVni ? newVni->value() : 0 );
}

void EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::handleVrfToVniMap() {
   for ( auto iter = notifier()->vrfToVniMapIter(); iter; ++iter ) {
      handleVrfToVniMap( iter.key(), 0, iter.value().value() );
   }
}

void EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::handleVrfToVniUnmap() {
   for ( auto iter = notifier()->vrfToVniMapIter(); iter; ++iter ) {
      handleVrfToVniMap( iter.key(), iter.value().value(), 0 );
   }
}

// The VRF by value is part of the signature (NestedSms.h), and one function holds every stop, since
// each of them names it.
// NOLINTNEXTLINE(performance-unnecessary-value-param, readability-function-cognitive-complexity)
void EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::handleVrfToVniMap( L3::VrfName vrf, U32 oldVni,
                                                                        U32 newV ) {
   TRACE( smTrace, 8, kMapSignature << " vrf " << vrf.stringValue() );
   if ( !toggleSbdEvpnTcamOverrideRuleEnabled() || !machine().initialized() ) {
      TRACE( smTrace, 2, "handleVrfToVniMap, SM not initialized yet" );
      return;
   }
   if ( VornalCentral::vornalAttributes()->l3McastExemptFromSplitHorizon() ) {
      return;
   }
   for ( auto iter = orEmpty( machine().vcsd() ).vornalModIdIter(); iter; ++iter ) {
      if ( oldVni != 0 && !machine().vniToTcamEntryIdHas( oldVni ) ) {
         machine().unprogrammedTcamRulesListDel( vrf );
      } else if ( oldVni != 0 ) {
         TRACE( smTrace, 8, kMapSignature << " old vni " << oldVni );
         if ( oldVni != Vxlan::VniExtOrNone::kNone ) {
            U32 const entryId = machine().vniToTcamEntryId( oldVni );
            QUELM_ASSERT( entryId );
            machine().tcamManager()->releaseEntry( iter.key(), entryId );
            TRACE( smTrace, 4, "handleVrfToVniMap freed vni entry ID " << entryId );
            machine().vniToTcamEntryIdDel( oldVni );
         }
      }
      if ( newV == 0 || !machine().isEvpn() ) {
         continue;
      }
      QUELM_ASSERT( !evpnMultihomingLocalBiasSm()->vniToTcamEntryIdHas( newV ) );
      TRACE( smTrace, 8, kMapSignature << " new vni " << newV );
      if ( newV == Vxlan::VniExtOrNone::kNone ) {
         continue;
      }
      U32 const ifpEntryId = vniEntryNew( iter.key(), vrf, newV );
      if ( ifpEntryId == 0 ) {
         return;
      }
      U32 const BCM_FIELD_PKT_RES_L3MCKNOWN = Shim::sdk_->packetResL3McKnown();
      // clang-format off
      SDK_FIELD_CALL_AT( 279, bcm_field_qualify_VxlanNetworkId( iter.key(), ifpEntryId, newV, 0xffffffff ) );
      SDK_FIELD_CALL_AT( 282, bcm_field_qualify_PacketRes( iter.key(), ifpEntryId, BCM_FIELD_PKT_RES_L3MCKNOWN, BCM_FIELD_EXACT_MATCH_MASK ) );
      // clang-format on
      machine().tcamManager()->setPriorityForEntry( iter.key(), ifpEntryId, kVniEntryPriority );
      machine().tcamManager()->installEntry( iter.key(), ifpEntryId );
      machine().vniToTcamEntryIdIs( newV, ifpEntryId );
   }
}

U32 EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::vniEntryNew( U16 unit, L3::VrfName const & vrf,
                                                                 U32 vni ) {
   std::string const name = Quelm::formatted( kVniEntryName, { std::to_string( vni ) } );
   U32 const entryId = machine().tcamManager()->getEntry( unit, name, VornalTcam::RequestKey() );
   if ( entryId != 0 ) {
      TRACE( smTrace, 4, "handleVrfToVniMap allocated IFP entry ID " << entryId );
      return entryId;
   }
   TRACE( smTrace, 2, "handleVrfToVniMap failed to allocate IFP entry ID" );
   if ( !machine().unprogrammedTcamRulesListHas( vrf ) ) {
      machine().unprogrammedTcamRulesListIs( vrf, vni );
   }
   return 0;
}

void EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::doCleanup() {
   TRACE( smTrace, 8, kCleanupSignature << ": Cleanup" );
   if ( intfId() != tunnelIntf() ) {
      TRACE( smTrace, 8, kCleanupSignature << ": Ignoring VTI interface" << intfId().shortName() );
      return;
   }
   if ( !toggleSbdEvpnTcamOverrideRuleEnabled() ) {
      return;
   }
   for ( auto unit = orEmpty( machine().vcsd() ).vornalModIdIter(); unit; ++unit ) {
      for ( auto vni = machine().vniToTcamEntryIdIter(); vni; ++vni ) {
         machine().tcamManager()->releaseEntry( unit.key(), vni.value() );
         TRACE( smTrace, 4, "doCleanup freed vni entry ID " << vni.value() );
         machine().vniToTcamEntryIdDel( vni.key() );
      }
   }
}

bool EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::toggleSbdEvpnTcamOverrideRuleEnabled() {
   static bool const isEnabled =
      FeatureToggle::isEnabled( "SbdEvpnTcamOverrideRule", "VornalL3.json", true );
   return isEnabled;
}

void EvpnMultihomingLocalBiasSm::handleTcamExhaustion() {
   if ( !initialized() ) {
      TRACE( smTrace, 2, "handleTcamExhaustion, SM not initialized yet" );
      return;
   }
   TRACE( smTrace, 5, "handleTcamExhaustion" );
   for ( auto iter = orEmpty( vcsd() ).vornalModIdIter(); iter; ++iter ) {
      if ( !tcamManager() || !tcamManager()->exhausted( iter.key() ) ) {
         kivClock().timeMinIs( Kiv::System::currentTime() );
         return;
      }
   }
}

void EvpnMultihomingLocalBiasSm::handleTime() {
   TRACE( smTrace, 8, "void Vornal::EvpnMultihomingLocalBiasSm::handleTime()" );
   if ( !initialized() ) {
      TRACE( smTrace, 2, "handleTime, SM not initialized yet" );
      return;
   }
   for ( auto rule = unprogrammedTcamRulesListIter(); rule; ++rule ) {
      // A copy: the rule leaves the list below.
      // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
      L3::VrfName const vrfName = rule.key();
      U32 const newVni = rule.value();
      for ( auto sm = vtiStatusIter(); sm; ++sm ) {
         TRACE( smTrace, 5,
                "handleTime vrfName: " << vrfName.stringValue() << " newVni: " << newVni );
         unprogrammedTcamRulesListDel( vrfName );
         sm.value()->handleVrfToVniMap( vrfName, 0, newVni );
      }
   }
}

}  // namespace Vornal
