// Holding class-id actions and egress entries against the records.

#include <Kiv/OrEmpty.h>
#include <Shim/FieldCall.h>
#include <VornalEvpnSm/I2EClassId/EvpnMultihomingLocalBiasWithI2EClassIdSm.h>
#include <VornalEvpnSm/Module.h>

namespace Vornal {

using Kiv::orEmpty;
using VornalCommon::ClassId;
using VornalTypes::VornalPort;

void EvpnMultihomingLocalBiasWithI2EClassIdSm::verifyIfpEntries( U32 unit,
                                                                 Pelk::IpGenAddr const & tepIp ) {
   auto const record = tepIpToEntry( unit );
   U32 const entryId = record ? record->entryId( tepIp ) : 0;
   TRACE( smTrace, 9, "verifyIfpEntries " << entryId );
   EvpnMultihomingLocalBiasSm::verifyIfpEntries( unit, tepIp );
   ClassId const i2eClassId = i2eTepIpClassId( tepIp );
   U32 data = 0;
   U32 mask = 0;
   // clang-format off
   SDK_FIELD_CALL( bcm_field_action_get( unit, entryId, bcmFieldActionEgressClassSelect, &data, &mask ) );
   QUELM_ASSERT( data == BCM_FIELD_EGRESS_CLASS_SELECT_NEW );
   SDK_FIELD_CALL( bcm_field_action_get( unit, entryId, bcmFieldActionNewClassId, &data, &mask ) );
   // clang-format on
   QUELM_ASSERT( data == i2eClassId.value() );
}

void EvpnMultihomingLocalBiasWithI2EClassIdSm::verifyEfpEntries( U32 unit,
                                                                 Pelk::IpGenAddr const & tepIp ) {
   TRACE( smTrace, 9, "verifyEfpEntries" );
   U32 const expPortCount = expectedPortCount( unit, tepIp );
   U32 portCount = 0;
   U32 modId = 0;
   U32 modIdMask = 0;
   U32 portId = 0;
   U32 portIdMask = 0;
   U32 data = 0;
   U32 mask = 0;
   bcm_field_IpType_t ipType = bcmFieldIpTypeNonIp;
   auto const record = tepIpToEntry( unit );
   if ( auto const list = record ? record->esPortAndEFPEntryIdList( tepIp ) : nullptr ) {
      for ( auto iter = list->efpEntryIdIter(); iter; ++iter ) {
         VornalPort const sp = iter.key();
         U32 const entryId = iter.value();
         ++portCount;
         // clang-format off
         SDK_FIELD_CALL( bcm_field_qualify_DstPort_get( unit, entryId, &modId, &modIdMask, &portId, &portIdMask ) );
         QUELM_ASSERT( modId == sp.modId() );
         QUELM_ASSERT( unit == sp.unit() );
         QUELM_ASSERT( portId == sp.logicalPort() );
         SDK_FIELD_CALL( bcm_field_qualify_IngressClassField_get( unit, entryId, &data, &mask ) );
         QUELM_ASSERT( data == i2eTepIpClassId( tepIp ).value() );
         SDK_FIELD_CALL( bcm_field_qualify_IpType_get( unit, entryId, &ipType ) );
         QUELM_ASSERT( ipType == bcmFieldIpTypeAny );
         SDK_FIELD_CALL( bcm_field_action_get( unit, entryId, bcmFieldActionDrop, &data, &mask ) );
         QUELM_ASSERT( data == 0 );
         // clang-format on
      }
   }
   QUELM_ASSERT( portCount == expPortCount );
}

bool EvpnMultihomingLocalBiasWithI2EClassIdSm::tcamSanityCheckForTepIp(
   U32 unit, Pelk::IpGenAddr const & tepIp ) {
   TRACE( smTrace, 5, "tcamSanityCheckForTepIp unit: " << unit << " tepIp: " << tepIp );
   auto const record = tepIpToEntry( unit );
   if ( !record ) {
      return false;
   }
   auto const list = record->esPortAndEFPEntryIdList( tepIp );
   bool const ifpTcamsUsed = record->entryIdHas( tepIp );
   bool const classIdsUsed = i2eTepIpClassIdHas( tepIp );
   std::size_t const numEfpTcamsUsed = list ? list->efpEntryIds() : 0;
   std::size_t const numESPortsUsed = list ? list->esPortList().ports() : 0;
   TRACE( smTrace, 4,
          "tcamSanityCheckForTepIp ifpTcamsUsed: "
             << ifpTcamsUsed << " classIdsUsed: " << classIdsUsed
             << " numEfpTcamsUsed: " << numEfpTcamsUsed << " numESPortsUsed: " << numESPortsUsed );
   if ( ifpTcamsUsed ) {
      QUELM_ASSERT( classIdsUsed );
   }
   QUELM_ASSERT( numEfpTcamsUsed == numESPortsUsed );
   return true;
}

}  // namespace Vornal
