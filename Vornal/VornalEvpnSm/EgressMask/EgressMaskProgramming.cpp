// The egress mask of the ingress entries, and how it follows the shared ports.

#include <Kiv/Rows.h>
#include <Shim/FieldCall.h>
#include <VornalEvpnSm/EgressMask/EvpnMultihomingLocalBiasWithEgressMaskSm.h>
#include <VornalEvpnSm/Module.h>
#include <VornalTcam/UnitBitmap.h>

KIV_DEFINE( Vornal::EvpnMultihomingLocalBiasWithEgressMaskSm )

namespace Vornal {

using VornalTypes::VornalPort;
using VornalTypes::VornalPortList;

namespace {

_shr_pbmp pbmpOf( Brum::PerUnitBitmap const & bitmap ) {
   _shr_pbmp pbmp;
   Shim::sdk_->pbmpClear( pbmp );
   unitBitmapToPbm( bitmap, pbmp );
   return pbmp;
}

void clearPorts( Brum::PerUnitBitmap & ubmp, VornalPortList const & ports, char const * deed ) {
   for ( VornalPort const & port : ports ) {
      TRACE( smTrace, 7,
             "updateIfpTcamEntries, " << deed << port.logicalPort() << " from egress mask bmp" );
      ubmp.bitClear( port.logicalPort() );
   }
}

void setPorts( Brum::PerUnitBitmap & ubmp, VornalPortList const & ports ) {
   for ( VornalPort const & port : ports ) {
      TRACE( smTrace, 7,
             "updateIfpTcamEntries, adding lport " << port.logicalPort() << " to egress mask bmp" );
      ubmp.bitSet( port.logicalPort() );
   }
}

}  // namespace

void EvpnMultihomingLocalBiasWithEgressMaskSm::handleInitialized() {
   TRACE( smTrace, 5, "handleInitialized" );
   EvpnMultihomingLocalBiasSm::handleInitialized();
}

bool EvpnMultihomingLocalBiasWithEgressMaskSm::ifpTcamEntries( U32 unit,
                                                               Pelk::IpGenAddr const & tepIp,
                                                               bool add ) {
   TRACE( smTrace, 5, "ifpTcamEntries, unit: " << unit << ", tepIp: " << tepIp << ", add " << add );
   if ( !EvpnMultihomingLocalBiasSm::ifpTcamEntries( unit, tepIp, add ) ) {
      return false;
   }
   auto const unitTepIpToEntry = tepIpToEntry( unit );
   U32 const entryId = unitTepIpToEntry->entryId( tepIp );
   TRACE( smTrace, 4, "ifpTcamEntries working with IFP entry ID " << entryId );
   if ( add ) {
      QUELM_ASSERT( entryId );
      addMask( unit, tepIp, entryId );
      S32 const BCM_E_NONE = Shim::sdk_->successCode();
      S32 const rc = tcamManager()->installEntry( unit, entryId );
      QUELM_ASSERT( rc == BCM_E_NONE && "installEntry failed" );
   } else {
      QUELM_ASSERT( unitTepIpToEntry->esPbmpHas( tepIp ) );
      unitTepIpToEntry->esPbmpDel( tepIp );
   }
   return true;
}

void EvpnMultihomingLocalBiasWithEgressMaskSm::addMask( U32 unit, Pelk::IpGenAddr const & tepIp,
                                                        U32 entryId ) {
   Brum::PerUnitBitmap const ubmp = getSharedESPortInfo( unit, tepIp ).sharedPortBitmap();
   if ( ubmp.isEmpty() ) {
      TRACE( smTrace, 3, "ifpTcamEntries no ports to be masked on unit: " << unit );
   }
   _shr_pbmp const pbmp = pbmpOf( ubmp );
   TRACE( smTrace, 3, "ifpTcamEntries, unit: " << unit << ", ubmp: " << ubmp.bitmapToString() );
   tcamManager()->addEgressMaskAction( unit, entryId, pbmp );
   tepIpToEntry( unit )->esPbmpIs( tepIp, ubmp );
}

void EvpnMultihomingLocalBiasWithEgressMaskSm::updateTcamEntries( U32 unit,
                                                                  Pelk::IpGenAddr const & tepIp,
                                                                  Pelk::IntfId const & intfId,
                                                                  bool add ) {
   TRACE( smTrace, 5,
          "updateTcamEntries, unit: " << unit << ", tepIp: " << tepIp << ", add " << add
                                      << ", intfId: " << intfId );
   PortListsOnUpdate const lists = getPortListsOnUpdate( unit, tepIp, intfId, add );
   if ( lists.portList().isEmpty() && lists.prevPortList().isEmpty() ) {
      TRACE( smTrace, 7, "updateTcamEntries, no update needed" );
      return;
   }
   updateIfpTcamEntries( unit, tepIp, lists.prevPortList(), lists.portList(), add );
}

bool EvpnMultihomingLocalBiasWithEgressMaskSm::updateIfpTcamEntries(
   U32 unit, Pelk::IpGenAddr const & tepIp, VornalPortList const & oldPorts,
   VornalPortList const & ports, bool add ) {
   TRACE( smTrace, 5,
          "updateIfpTcamEntries, unit: " << unit << ", tepIp: " << tepIp << ", add " << add );
   auto const unitTepIpToEntry = tepIpToEntry( unit );
   Brum::PerUnitBitmap ubmp = unitTepIpToEntry->esPbmp( tepIp );
   clearPorts( ubmp, oldPorts, "removing old lport " );
   if ( add ) {
      setPorts( ubmp, ports );
   } else {
      clearPorts( ubmp, ports, "removing lport " );
   }
   U32 const entryId = unitTepIpToEntry->entryId( tepIp );
   tcamManager()->updateEgressMaskAction( unit, entryId, pbmpOf( ubmp ) );
   S32 const BCM_E_NONE = Shim::sdk_->successCode();
   S32 const rc = tcamManager()->reinstallEntry( unit, entryId );
   QUELM_ASSERT( rc == BCM_E_NONE && "reinstallEntry failed" );
   TRACE( smTrace, 3,
          "updateIfpTcamEntries, reinstalled entryId: " << entryId << " with new bmp: "
                                                        << ubmp.bitmapToString() );
   unitTepIpToEntry->esPbmpIs( tepIp, ubmp );
   return true;
}

}  // namespace Vornal
