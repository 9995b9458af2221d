#include "Machine.h"

#include <Kiv/Rows.h>
#include <Shim/FieldCall.h>
#include <VornalTcam/UnitBitmap.h>

KIV_DEFINE( Quarantine::Config )
KIV_DEFINE( Quarantine::Machine )

namespace Quarantine {

Trace::Handle const trace( "Quarantine" );

namespace {

Log::Handle const noRoom( {
   .name = "QUARANTINE_NO_ROOM",
   .format = "No room in the TCAM to put %s into quarantine",
   .explanation = "Frames from this VTEP still leave the switch.",
   .action = "Free entries of the group; the rule follows by itself.",
   .severity = Log::Severity::Error,
} );

constexpr U32 kUnit = 0;

}  // namespace

Machine::Machine( Quelm::Ptr< Config const > const & config,
                  Quelm::Ptr< VornalCentral::VpIndexStatus const > const & vports,
                  Quelm::Ptr< Vornal::VornalCommonSmData const > const & common,
                  Quelm::Ptr< Vornal::VornalUnboundedTcamEntryManager > const & entries )
      : config_( config ), vports_( vports ), common_( common ), entries_( entries ) {
   configWatch_.hasNotificationActiveIs( true );
   vportWatch_.hasNotificationActiveIs( true );
   portWatch_.hasNotificationActiveIs( true );
   roomWatch_.hasNotificationActiveIs( true );
   handleAll();
}

void Machine::handleVtep( Pelk::IpGenAddr const & vtep ) {
   TRACE_RING( trace, 5, "handleVtep vtep: " << vtep );
   bool const isTunnel = vports()->remoteVportHas( VornalCentral::getRemoteVtepKeyForIp( vtep ) );
   if ( isTunnel && config()->vtepHas( vtep ) ) {
      ruleIs( vtep );
   } else {
      ruleDel( vtep );
   }
}

void Machine::handleAll() {
   for ( auto iter = config()->vtepIter(); iter; ++iter ) {
      handleVtep( iter.key() );
   }
}

// The group has filled up, or has room again.
void Machine::handleRoom( U16 const & unit ) {
   if ( unit != kUnit || entries()->exhausted( unit ) ) {
      return;
   }
   for ( auto iter = config()->vtepIter(); iter; ++iter ) {
      if ( !entryIdHas( iter.key() ) ) {
         handleVtep( iter.key() );
      }
   }
}

U32 Machine::gportOf( Pelk::IpGenAddr const & vtep ) const {
   U32 const vport = vports()->remoteVport( VornalCentral::getRemoteVtepKeyForIp( vtep ) );
   return Shim::sdk_->vxlanGport( static_cast< U16 >( vport & 0xffff ) );
}

_shr_pbmp Machine::everyPort() const {
   Brum::PerUnitBitmap ports;
   for ( auto iter = common()->vornalIntfToPortIter(); iter; ++iter ) {
      if ( iter.value().unit() == kUnit && iter.value().isValid() ) {
         ports.bitSet( iter.value().logicalPort() );
      }
   }
   _shr_pbmp pbmp{};
   Vornal::unitBitmapToPbm( ports, pbmp );
   return pbmp;
}

// The rule is made, or brought up to date in place.
void Machine::ruleIs( Pelk::IpGenAddr const & vtep ) {
   bool const isNew = !entryIdHas( vtep );
   U32 const id = isNew ? entries()->getEntry( kUnit, "Quarantine of " + vtep.stringValue(), {} )
                        : entryId( vtep );
   if ( id == 0 ) {
      noRoom.log( { vtep.stringValue() } );
      return;
   }
   SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( kUnit, id, gportOf( vtep ) ) );
   if ( isNew ) {
      entries()->addEgressMaskAction( kUnit, id, everyPort() );
   } else {
      entries()->updateEgressMaskAction( kUnit, id, everyPort() );
   }
   S32 const rc =
      isNew ? entries()->installEntry( kUnit, id ) : entries()->reinstallEntry( kUnit, id );
   QUELM_ASSERT( rc == Shim::sdk_->successCode() );
   entryIdIs( vtep, id );
   TRACE( trace, 4, "ruleIs vtep: " << vtep << ", entry: " << id );
}

void Machine::ruleDel( Pelk::IpGenAddr const & vtep ) {
   if ( entryIdHas( vtep ) ) {
      U32 const id = entryIdDel( vtep );
      entries()->releaseEntry( kUnit, id );
   }
}

// Holds the chip against the records; the process stops at the first difference.
void Machine::handleVerify() {
   for ( auto iter = entryIdIter(); iter; ++iter ) {
      U32 gport = 0;
      SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport_get( kUnit, iter.value(), &gport ) );
      QUELM_ASSERT( gport == gportOf( iter.key() ) );
   }
}

}  // namespace Quarantine
