// Holding the egress masks against the records and the shared segments.

#include <Shim/FieldCall.h>
#include <VornalEvpnSm/EgressMask/EvpnMultihomingLocalBiasWithEgressMaskSm.h>
#include <VornalEvpnSm/Module.h>
#include <VornalTcam/UnitBitmap.h>

namespace Vornal {

using Shim::BCM_PBMP_EQ;

bool EvpnMultihomingLocalBiasWithEgressMaskSm::tcamSanityCheckForTepIp(
   U32 unit, Pelk::IpGenAddr const & tepIp ) {
   TRACE( smTrace, 5, "tcamSanityCheckForTepIp unit: " << unit << " tepIp: " << tepIp );
   auto const unitTepIpToEntry = tepIpToEntry( unit );
   if ( !unitTepIpToEntry ) {
      return false;
   }
   bool const ifpTcamsUsed = unitTepIpToEntry->entryIdHas( tepIp );
   bool const esPbmpUsed = unitTepIpToEntry->esPbmpHas( tepIp );
   TRACE( smTrace, 4,
          "tcamSanityCheckForTepIp ifpTcamsUsed:" << ifpTcamsUsed << " esPbmpUsed:" << esPbmpUsed );
   QUELM_ASSERT( ifpTcamsUsed == esPbmpUsed );
   return true;
}

void EvpnMultihomingLocalBiasWithEgressMaskSm::verifyIfpEntries( U32 unit,
                                                                 Pelk::IpGenAddr const & tepIp ) {
   TRACE( smTrace, 9, "verifyIfpEntries" );
   _shr_pbmp ports;
   _shr_pbmp ports_exp;
   Shim::sdk_->pbmpClear( ports );
   Shim::sdk_->pbmpClear( ports_exp );
   U32 const entryId = tepIpToEntry( unit )->entryId( tepIp );
   EvpnMultihomingLocalBiasSm::verifyIfpEntries( unit, tepIp );

   U32 const expPortCount = expectedPortCount( unit, tepIp );
   Brum::PerUnitBitmap const ubmp = getSharedESPortInfo( unit, tepIp ).sharedPortBitmap();
   QUELM_ASSERT( tepIpToEntry( unit )->esPbmp( tepIp ) == ubmp );
   unitBitmapToPbm( tepIpToEntry( unit )->esPbmp( tepIp ), ports_exp );
   auto const pbmpRes = std::make_unique< EgressMaskResult >(
      tcamManager()->getEgressMaskActionPbmp( unit, entryId ) );
   QUELM_ASSERT( !pbmpRes->rc() && "getEgressMaskActionPbmp fails" );
   ports = pbmpRes->pbmp();
   QUELM_ASSERT( BCM_PBMP_EQ( ports, ports_exp ) );
   U32 const portCount = Shim::sdk_->pbmpCount( ports );
   QUELM_ASSERT( portCount == expPortCount );
}

}  // namespace Vornal
