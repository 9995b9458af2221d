// The egress entries: one per shared port. Each drops the frames with the VTEP's class id.
//
// Every assertion, field call and install stands in efpTcamEntries itself, so that the line of a
// stop names this operation.

#include <Kiv/OrEmpty.h>
#include <Shim/FieldCall.h>
#include <VornalEvpnSm/I2EClassId/EvpnMultihomingLocalBiasWithI2EClassIdSm.h>
#include <VornalEvpnSm/Module.h>

namespace Vornal {

using Kiv::orEmpty;
using VornalCommon::ClassId;
using VornalTypes::VornalPort;
using VornalTypes::VornalPortList;

namespace {

constexpr char const * kEfpEntryName = "Drop packets at EFP from vtep IP %s on %s";

}  // namespace

bool EvpnMultihomingLocalBiasWithI2EClassIdSm::efpTcamEntries( U32 unit,
                                                               Pelk::IpGenAddr const & tepIp,
                                                               VornalPortList const & ports,
                                                               bool add ) {
   TRACE( smTrace, 5, "efpTcamEntries, unit: " << unit << ", tepIp: " << tepIp << ", add " << add );
   if ( ports.isEmpty() ) {
      TRACE( smTrace, 5, "efpTcamEntries, no ports to install or free EFP entries against" );
      return true;
   }
   auto const record = tepIpToEntry( unit );
   auto esPortAndEFPEntryIdList = record->esPortAndEFPEntryIdList( tepIp );
   if ( !add ) {
      if ( esPortAndEFPEntryIdList && !freeEfpEntries( unit, *esPortAndEFPEntryIdList, ports ) ) {
         TRACE( smTrace, 4, "efpTcamEntries freed all EFP entries for tepIp in unit" );
         QUELM_ASSERT( !esPortAndEFPEntryIdList->efpEntryIds() );
         record->esPortAndEFPEntryIdListDel( tepIp );
      }
      return true;
   }
   esPortAndEFPEntryIdList = record->esPortAndEFPEntryIdListIs( tepIp );
   VornalPortList esPortList = esPortAndEFPEntryIdList->esPortList();
   ClassId const i2eClassId = i2eTepIpClassId( tepIp );
   TRACE( smTrace, 4, "efpTcamEntries Using I2E class ID " << i2eClassId );
   QUELM_ASSERT( i2eClassId.isValid() );
   for ( VornalPort const & sp : ports ) {
      if ( esPortAndEFPEntryIdList->efpEntryIdHas( sp ) ) {
         continue;
      }
      U32 const efpEntryId = obtainEfpEntry( unit, tepIp, sp );
      if ( efpEntryId == 0 ) {
         return false;
      }
      // clang-format off
      SDK_FIELD_CALL( bcm_field_qualify_DstPort( unit, efpEntryId, sp.modId() , BCM_FIELD_EXACT_MATCH_MASK, sp.logicalPort(), BCM_FIELD_EXACT_MATCH_MASK ) );
      SDK_FIELD_CALL( bcm_field_qualify_IpType( unit, efpEntryId, bcmFieldIpTypeAny ) );
      SDK_FIELD_CALL( bcm_field_qualify_IngressClassField( unit, efpEntryId, i2eClassId.value(), BCM_FIELD_EXACT_MATCH_MASK ) );
      SDK_FIELD_CALL( bcm_field_action_add( unit, efpEntryId, bcmFieldActionDrop, 0, 0 ) );
      // clang-format on
      S32 const BCM_E_NONE = Shim::sdk_->successCode();
      S32 const rc = efpTcamManager()->installEntry( unit, efpEntryId );
      QUELM_ASSERT( rc == BCM_E_NONE && "installEntry failed" );
      esPortList.portIs( sp );
      esPortAndEFPEntryIdList->esPortListIs( esPortList );
      esPortAndEFPEntryIdList->efpEntryIdIs( sp, efpEntryId );
   }
   return true;
}

bool EvpnMultihomingLocalBiasWithI2EClassIdSm::freeEfpEntries( U32 unit,
                                                               ESPortAndEFPEntryIdList & list,
                                                               VornalPortList const & ports ) {
   VornalPortList left = list.esPortList();
   for ( VornalPort const & sp : ports ) {
      U32 const efpEntryId = list.efpEntryId( sp );
      efpTcamManager()->releaseEntry( unit, efpEntryId );
      TRACE( smTrace, 4, "efpTcamEntries freed EFP entry ID " << efpEntryId );
      left.portDel( sp );
      list.efpEntryIdDel( sp );
   }
   if ( left.isEmpty() ) {
      return false;
   }
   list.esPortListIs( left );
   return true;
}

U32 EvpnMultihomingLocalBiasWithI2EClassIdSm::obtainEfpEntry( U32 unit,
                                                              Pelk::IpGenAddr const & tepIp,
                                                              VornalPort const & sp ) {
   Pelk::IntfId const intfId = orEmpty( vcsd() ).intfOfPort( sp );
   U32 const efpEntryId =
      efpTcamManager()->getEntry( unit,
                                  Quelm::formatted( kEfpEntryName,
                                                    { tepIp.stringValue(), intfId.stringValue() } ),
                                  VornalTcam::RequestKey() );
   if ( efpEntryId == 0 ) {
      TRACE( smTrace, 2, "efpTcamEntries failed to allocate EFP entry ID for " << intfId );
   } else {
      TRACE( smTrace, 4,
             "efpTcamEntries allocated EFP entry ID " << efpEntryId << " for " << intfId );
   }
   return efpEntryId;
}

bool EvpnMultihomingLocalBiasWithI2EClassIdSm::updateEfpTcamEntries(
   U32 unit, Pelk::IpGenAddr const & tepIp, VornalPortList const & portsToRemove,
   VornalPortList const & ports, bool add ) {
   TRACE( smTrace, 5,
          "updateEfpTcamEntries, unit: " << unit << ", tepIp: " << tepIp << ", add " << add );
   efpTcamEntries( unit, tepIp, portsToRemove, false );
   return efpTcamEntries( unit, tepIp, ports, add );
}

void EvpnMultihomingLocalBiasWithI2EClassIdSm::updateTcamEntries( U32 unit,
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
   updateEfpTcamEntries( unit, tepIp, lists.prevPortList(), lists.portList(), add );
}

}  // namespace Vornal
