// The rules that keep known unicast out of the filter.
//
// The ingress entries of the VTEPs match every frame that arrives from them. Known unicast has one
// destination, and no other switch has delivered it. So two entries without any action win over the
// VTEPs' entries for frames that left a tunnel with a known unicast result, bridged or routed. They
// are obtained before the unit's first VTEP entry and keep the group's default priority; both make
// them win.
//
// The line numbers are those by which support tools know the calls.

#include <Shim/FieldCall.h>
#include <VornalEvpnSm/EvpnMultihomingLocalBiasSm.h>
#include <VornalEvpnSm/Module.h>

namespace Vornal {

namespace {

// A new entry for the exemption of `traffic`, "L2UC" or "L3UC"; 0 when there is no room.
U32 exemptionEntryNew( VornalUnboundedTcamEntryManager & manager, U16 unit,
                       std::string const & traffic ) {
   U32 const entryId =
      manager.getEntry( unit, "Skip shared ES pruning for " + traffic + " packets - No-op",
                        VornalTcam::RequestKey() );
   if ( entryId == 0 ) {
      TRACE( smTrace, 2, "installRulesForUcastTraffic " << traffic << " entry allocation failed" );
   }
   return entryId;
}

}  // namespace

void EvpnMultihomingLocalBiasSm::installRulesForUcastTraffic( U16 unit ) {
   TRACE( smTrace, 5, "installRulesForUcastTraffic, unit: " << unit );
   if ( !initialized() ) {
      return;
   }
   QUELM_ASSERT( !l2UcastRuleInstalledHas( unit ) );
   QUELM_ASSERT( !l3UcastRuleInstalledHas( unit ) );
   S32 const BCM_E_NONE = Shim::sdk_->successCode();
   U32 entryId = exemptionEntryNew( *tcamManager(), unit, "L2UC" );
   if ( entryId == 0 ) {
      return;
   }
   SDK_FIELD_CALL_AT( 758,
                      bcm_field_qualify_PacketRes( unit, entryId, BCM_FIELD_PKT_RES_L2UC, 0xff ) );
   SDK_FIELD_CALL_AT( 760, bcm_field_qualify_TunnelTerminated( unit, entryId, 1, 1 ) );
   S32 rc = tcamManager()->installEntry( unit, entryId );
   QUELM_ASSERT_AT( 764, rc == BCM_E_NONE && "installEntry failed" );
   l2UcastRuleInstalledIs( unit, entryId );

   entryId = exemptionEntryNew( *tcamManager(), unit, "L3UC" );
   if ( entryId == 0 ) {
      return;
   }
   SDK_FIELD_CALL_AT( 777, bcm_field_qualify_PacketRes( unit, entryId, BCM_FIELD_PKT_RES_L3UCKNOWN,
                                                        0xff ) );
   SDK_FIELD_CALL_AT( 779, bcm_field_qualify_TunnelTerminated( unit, entryId, 1, 1 ) );
   rc = tcamManager()->installEntry( unit, entryId );
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
