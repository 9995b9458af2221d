// Which remote VTEPs need rules: the VTEPs that share a segment with this switch and have a virtual
// port.
//
// An entry matches by the VP index, so a changed index always means: delete the old entry, then add
// a new one.

#include <Kiv/OrEmpty.h>
#include <VornalEvpnSm/EvpnMultihomingLocalBiasSm.h>
#include <VornalEvpnSm/Module.h>

namespace Vornal {

using Kiv::orEmpty;
using VornalCentral::getRemoteVtepKeyForIp;
using VornalCentral::RemoteVtepKey;

void EvpnMultihomingLocalBiasSm::handleTepSegment() {
   TRACE( smTrace, 5, "handleTepSegment" );
   for ( auto iter = orEmpty( oxaEvpnTepSegmentDir() ).tepSegmentIter(); iter; ++iter ) {
      handleTepSegment( iter.key() );
   }
}

void EvpnMultihomingLocalBiasSm::handleTepSegment( Pelk::IpGenAddr const & tepIp ) {
   TRACE_RING( smTrace, 5, "handleTepSegment tepIp: " << tepIp );
   if ( !initialized() ) {
      TRACE_RING( smTrace, 2, "handleTepSegment, SM not initialized yet" );
      return;
   }
   RemoteVtepKey const rvk = getRemoteVtepKeyForIp( tepIp );
   if ( !orEmpty( vpIndexStatus() ).remoteVportHas( rvk ) ) {
      TRACE( smTrace, 2, "handleTepSegment, no VP assigned to remote VTEP " );
      return;
   }
   for ( auto iter = orEmpty( vcsd() ).vornalModIdIter(); iter; ++iter ) {
      U16 const unit = iter.key();
      if ( orEmpty( oxaEvpnTepSegmentDir() ).tepSegmentHas( tepIp ) ) {
         TRACE( smTrace, 6, "handleTepSegment, adding TCAM entry for tepIp " );
         ensureUnitRecord( unit );
         addTcamEntries( unit, tepIp );
         tepIpToEntry( unit )->vpIndexIs( tepIp, vpIndexOf( rvk ) );
      } else {
         TRACE( smTrace, 6, "handleTepSegment, deleting TCAM entry for tepIp " );
         deleteTcamEntries( unit, tepIp );
         forgetVpIndex( unit, tepIp );
      }
   }
}

void EvpnMultihomingLocalBiasSm::handleRemoteVport( RemoteVtepKey const & rvk ) {
   TRACE_RING( smTrace, 5, "handleRemoteVport, rvk.vtepIp: " << rvk.vtepIp() );
   bool const isPeer = orEmpty( oxaEvpnTepSegmentDir() ).tepSegmentHas( rvk.vtepIp() );
   if ( !isPeer || !initialized() ) {
      TRACE( smTrace, 2,
             " initialized: " << initialized()
                              << " tepIp part of oxaEvpnTepSegmentDir: " << isPeer );
      return;
   }
   for ( auto iter = orEmpty( vcsd() ).vornalModIdIter(); iter; ++iter ) {
      U16 const unit = iter.key();
      if ( orEmpty( vpIndexStatus() ).remoteVportHas( rvk ) ) {
         rekeyTcamEntries( unit, rvk );
      } else {
         TRACE( smTrace, 6, "handleRemoteVport, delete TCAM entry for tepIp" );
         deleteTcamEntries( unit, rvk.vtepIp() );
         QUELM_ASSERT( !unitUsesTcamsForTepIp( iter.key(), rvk.vtepIp() ) );
         forgetVpIndex( unit, rvk.vtepIp() );
      }
   }
}

void EvpnMultihomingLocalBiasSm::rekeyTcamEntries( U16 unit, RemoteVtepKey const & rvk ) {
   Pelk::IpGenAddr const & tepIp = rvk.vtepIp();
   ensureUnitRecord( unit );
   TRACE( smTrace, 6, "handleRemoteVport, newVpIndex: " << vpIndexOf( rvk ) );
   if ( tepIpToEntry( unit )->vpIndexHas( tepIp ) ) {
      TRACE( smTrace, 6, "handleRemoteVport, delete TCAM entry with old VPindex qual" );
      deleteTcamEntries( unit, tepIp );
   }
   TRACE( smTrace, 6, "handleRemoteVport, add TCAM entry with new VPindex qual" );
   addTcamEntries( unit, tepIp );
   tepIpToEntry( unit )->vpIndexIs( tepIp, vpIndexOf( rvk ) );
}

U16 EvpnMultihomingLocalBiasSm::vpIndexOf( RemoteVtepKey const & rvk ) const {
   return static_cast< U16 >( orEmpty( vpIndexStatus() ).remoteVport( rvk ) & 0xffff );
}

void EvpnMultihomingLocalBiasSm::handleSegmentStatus() {
   TRACE( smTrace, 8, "void Vornal::EvpnMultihomingLocalBiasSm::handleSegmentStatus()" );
   bool const hasSegments = orEmpty( evpnStatus() ).segmentStatuses() != 0;
   if ( hasSegments == isEvpn() ) {
      return;
   }
   TRACE_RING( smTrace, 2,
               "handleSegmentStatus"
                  << ( hasSegments ? "Tcam rules addition case" : "Tcam rules deletion case" ) );
   isEvpnIs( hasSegments );
   for ( auto sm = vtiStatusIter(); sm; ++sm ) {
      if ( hasSegments ) {
         sm.value()->handleVrfToVniMap();
      } else {
         sm.value()->handleVrfToVniUnmap();
      }
   }
}

EvpnMultihomingLocalBiasSm::NestedSm_OxaEvpnTepSegment::NestedSm_OxaEvpnTepSegment(
   Notifier const & segment, EvpnMultihomingLocalBiasSm * machine )
      : NestedReactor( segment,
                       Kiv::onKey( Oxa::EvpnTepSegment::segmentSetAttr(), this,
                                   &NestedSm_OxaEvpnTepSegment::handleSegmentSet ),
                       machine ) {}

void EvpnMultihomingLocalBiasSm::NestedSm_OxaEvpnTepSegment::handleSegmentSet(
   Pelk::IntfId const & intfId ) {
   TRACE_RING( smTrace, 5, "handleSegmentSet, intfId : " << intfId );
   if ( !orEmpty( machine().vpIndexStatus() ).remoteVportHas( getRemoteVtepKeyForIp( tepIp() ) ) ) {
      TRACE_RING( smTrace, 2, "handleSegmentSet, no VP assigned to remote VTEP " );
      return;
   }
   for ( auto iter = orEmpty( machine().vcsd() ).vornalModIdIter(); iter; ++iter ) {
      handleSegmentSetOnUnit( iter.key(), intfId );
   }
}

void EvpnMultihomingLocalBiasSm::NestedSm_OxaEvpnTepSegment::handleSegmentSetOnUnit(
   U16 unit, Pelk::IntfId const & intfId ) {
   if ( !machine().unitUsesTcamsForTepIp( unit, tepIp() ) ) {
      TRACE( smTrace, 2,
             "handleSegmentSet, not processing updates with respect to "
                << intfId << " since no TCAMs are installed on unit " << unit << " for tepIp "
                << tepIp() );
   } else if ( !machine().isKnownIntf( intfId ) ) {
      TRACE( smTrace, 2, "handleSegmentSet, " << intfId << " not part of unit " << unit );
   } else if ( notifier()->segmentSetHas( intfId ) ) {
      TRACE( smTrace, 7, " Adding " << intfId << " to egress mask" );
      machine().updateTcamEntries( unit, tepIp(), intfId, true );
   } else {
      TRACE( smTrace, 7, " Removing " << intfId << " from egress mask" );
      machine().updateTcamEntries( unit, tepIp(), intfId, false );
   }
}

}  // namespace Vornal
