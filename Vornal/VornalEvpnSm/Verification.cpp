// Holding the programmed rules against the expected ones.
//
// A verification reads the hardware back and compares it with the records and with the state they
// come from. A difference stops the process at its assertion; nothing is repaired, since nobody
// could say which side is right. While the TCAM is exhausted rules may be missing legitimately, and
// nothing is verified.
//
// The exemption rules and the qualifier of a VTEP's ingress entry are verified here, the actions by
// each variant. The per-VNI rules are not verified.

#include <Kiv/OrEmpty.h>
#include <Shim/FieldCall.h>
#include <VornalEvpnSm/EvpnMultihomingLocalBiasSm.h>
#include <VornalEvpnSm/Module.h>

namespace Vornal {

using Kiv::orEmpty;

void EvpnMultihomingLocalBiasSm::handleVerify() {
   TRACE( smTrace, 9, "handleVerify" );
   if ( !initialized() ) {
      return;
   }
   if ( tcamExhaustion() ) {
      TRACE( smTrace, 2, "handleVerify tcam is exhausted, skipping verification" );
      return;
   }
   auto const & segments = orEmpty( oxaEvpnTepSegmentDir() );
   if ( segments.tepSegments() != 0 && orEmpty( vpIndexStatus() ).remoteVports() != 0 ) {
      for ( auto iter = segments.tepSegmentIter(); iter; ++iter ) {
         verifyTepIp( iter.key() );
      }
   } else {
      for ( auto iter = orEmpty( vcsd() ).vornalModIdIter(); iter; ++iter ) {
         U16 const unit = iter.key();
         QUELM_ASSERT( !tepIpToEntry( unit ) );
         QUELM_ASSERT( !l2UcastRuleInstalledHas( unit ) );
         QUELM_ASSERT( !l3UcastRuleInstalledHas( unit ) );
      }
   }
}

void EvpnMultihomingLocalBiasSm::verifyTepIp( Pelk::IpGenAddr const & tepIp ) {
   for ( auto iter = orEmpty( vcsd() ).vornalModIdIter(); iter; ++iter ) {
      tcamSanityCheckForTepIp( iter.key(), tepIp );
      verifyIfpEntries( iter.key(), tepIp );
      verifyEfpEntries( iter.key(), tepIp );
   }
}

bool EvpnMultihomingLocalBiasSm::tcamSanityCheckForTepIp( U32, Pelk::IpGenAddr const & ) {
   return true;
}

void EvpnMultihomingLocalBiasSm::verifyIfpEntries( U32 unit, Pelk::IpGenAddr const & tepIp ) {
   TRACE( smTrace, 9, "verifyIfpEntries" );
   auto const rvk = VornalCentral::getRemoteVtepKeyForIp( tepIp );
   if ( !orEmpty( vpIndexStatus() ).remoteVportHas( rvk ) ) {
      QUELM_ASSERT( !unitUsesTcamsForTepIp( unit, tepIp ) );
      return;
   }

   U32 data = 0;
   U32 mask = 0;
   U8 tdata = 0;
   U8 tmask = 0;

   QUELM_ASSERT( l2UcastRuleInstalledHas( unit ) );
   U32 const l2EntryId = l2UcastRuleInstalled( static_cast< U16 >( unit ) );
   SDK_FIELD_CALL( bcm_field_qualify_PacketRes_get( unit, l2EntryId, &data, &mask ) );
   QUELM_ASSERT( data == BCM_FIELD_PKT_RES_L2UC );
   SDK_FIELD_CALL( bcm_field_qualify_TunnelTerminated_get( unit, l2EntryId, &tdata, &tmask ) );
   QUELM_ASSERT( tdata == 1 );
   QUELM_ASSERT( tmask == 1 );

   QUELM_ASSERT( l3UcastRuleInstalledHas( unit ) );
   U32 const l3EntryId = l3UcastRuleInstalled( static_cast< U16 >( unit ) );
   SDK_FIELD_CALL( bcm_field_qualify_PacketRes_get( unit, l3EntryId, &data, &mask ) );
   QUELM_ASSERT( data == BCM_FIELD_PKT_RES_L3UCKNOWN );
   SDK_FIELD_CALL( bcm_field_qualify_TunnelTerminated_get( unit, l3EntryId, &tdata, &tmask ) );
   QUELM_ASSERT( tdata == 1 );
   QUELM_ASSERT( tmask == 1 );

   QUELM_ASSERT( unitUsesTcamsForTepIp( unit, tepIp ) );
   U32 const entryId = tepIpToEntry( unit )->entryId( tepIp );
   U32 const gport_exp = gportOf( tepIp );
   U32 gport = 0;
   SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport_get( unit, entryId, &gport ) );
   QUELM_ASSERT( gport == gport_exp );
}

void EvpnMultihomingLocalBiasSm::verifyEfpEntries( U32, Pelk::IpGenAddr const & ) {}

U32 EvpnMultihomingLocalBiasSm::expectedPortCount( U32 unit, Pelk::IpGenAddr const & tepIp ) const {
   U32 count = 0;
   auto const segment = orEmpty( oxaEvpnTepSegmentDir() ).tepSegment( tepIp );
   if ( !segment ) {
      return count;
   }
   for ( auto iter = segment->segmentSetIter(); iter; ++iter ) {
      if ( orEmpty( vcsd() ).vornalIntfToPortHas( iter.key() ) ) {
         ++count;
      } else if ( isPortChannel( iter.key() ) ) {
         for ( auto const & member : getPortListForPortChannel( iter.key() ) ) {
            count += member.unit() == unit ? 1U : 0U;
         }
      }
   }
   return count;
}

}  // namespace Vornal
