// The rules that keep known unicast out of the filter.
//
// The ingress entries of the VTEPs match all that arrives from them. Known unicast has one
// destination and nobody else has delivered it, so two entries without any action win over them for
// frames that left a tunnel with a known unicast result, bridged or routed. They are obtained
// before the unit's first VTEP entry and keep the group's default priority; both make them win.
//
// The line numbers are those by which support tools know the calls.

#include <Shim/FieldCall.h>
#include <VornalEvpnSm/EvpnMultihomingLocalBiasSm.h>
#include <VornalEvpnSm/Module.h>

namespace Vornal {

void EvpnMultihomingLocalBiasSm::installRulesForUcastTraffic( U16 unit ) {
   TRACE( smTrace, 5, "installRulesForUcastTraffic, unit: " << unit );
   if ( !initialized() ) {
      return;
   }
   QUELM_ASSERT( !l2UcastRuleInstalledHas( unit ) );
   QUELM_ASSERT( !l3UcastRuleInstalledHas( unit ) );
   if ( installL2UcastRule( unit ) ) {
      installL3UcastRule( unit );
   }
}

bool EvpnMultihomingLocalBiasSm::installL2UcastRule( U16 unit ) {
   U32 const entryId =
      tcamManager()->getEntry( unit, "Skip shared ES pruning for L2UC packets - No-op",
                               VornalTcam::RequestKey() );
   if ( entryId == 0 ) {
      TRACE( smTrace, 2, "installRulesForUcastTraffic L2UC entry allocation failed" );
      return false;
   }
   SDK_FIELD_CALL_AT( 758,
                      bcm_field_qualify_PacketRes( unit, entryId, BCM_FIELD_PKT_RES_L2UC, 0xff ) );
   SDK_FIELD_CALL_AT( 760, bcm_field_qualify_TunnelTerminated( unit, entryId, 1, 1 ) );
   S32 const BCM_E_NONE = Shim::sdk_->successCode();
   S32 const rc = tcamManager()->installEntry( unit, entryId );
   QUELM_ASSERT_AT( 764, rc == BCM_E_NONE && "installEntry failed" );
   l2UcastRuleInstalledIs( unit, entryId );
   return true;
}

void EvpnMultihomingLocalBiasSm::installL3UcastRule( U16 unit ) {
   U32 const entryId =
      tcamManager()->getEntry( unit, "Skip shared ES pruning for L3UC packets - No-op",
                               VornalTcam::RequestKey() );
   if ( entryId == 0 ) {
      TRACE( smTrace, 2, "installRulesForUcastTraffic L3UC entry allocation failed" );
      return;
   }
   SDK_FIELD_CALL_AT( 777, bcm_field_qualify_PacketRes( unit, entryId, BCM_FIELD_PKT_RES_L3UCKNOWN,
                                                        0xff ) );
   SDK_FIELD_CALL_AT( 779, bcm_field_qualify_TunnelTerminated( unit, entryId, 1, 1 ) );
   S32 const BCM_E_NONE = Shim::sdk_->successCode();
   S32 const rc = tcamManager()->installEntry( unit, entryId );
   QUELM_ASSERT_AT( 783, rc == BCM_E_NONE && "installEntry failed" );
   l3UcastRuleInstalledIs( unit, entryId );
}

void EvpnMultihomingLocalBiasSm::removeRulesForUcastTraffic( U16 unit ) {
   TRACE( smTrace, 5, "removeRulesForUcastTraffic" );
   if ( !initialized() ) {
      return;
   }
   QUELM_ASSERT( !tepIpToEntryHas( unit ) );
   if ( !l2UcastRuleInstalledHas( unit ) ) {
      TRACE( smTrace, 2, "removeRulesForUcastTraffic could not find L2UC entry" );
      return;
   }
   tcamManager()->releaseEntry( unit, l2UcastRuleInstalled( unit ) );
   l2UcastRuleInstalledDel( unit );
   if ( !l3UcastRuleInstalledHas( unit ) ) {
      // Says L2UC here as well; searches of support archives rely on the text.
      TRACE( smTrace, 2, "removeRulesForUcastTraffic could not find L2UC entry" );
      return;
   }
   tcamManager()->releaseEntry( unit, l3UcastRuleInstalled( unit ) );
   l3UcastRuleInstalledDel( unit );
}

}  // namespace Vornal
