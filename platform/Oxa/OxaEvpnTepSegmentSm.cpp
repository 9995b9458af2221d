#include <Oxa/OxaEvpnTepSegmentSm.h>

#include <Kiv/Rows.h>

KIV_DEFINE( Oxa::OxaEvpnTepSegmentSm )

namespace Oxa {

OxaEvpnTepSegmentSm::OxaEvpnTepSegmentSm(
   Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
   Quelm::Ptr< EvpnTepSegmentDir > const & tepSegmentDir,
   Quelm::Ptr< Bridging::HwCapabilities const > const & bridgingHwCapabilities,
   Quelm::Ptr< Lag::LagPhyIntfMapping const > const & lagPhyIntfMapping )
      : evpnStatus_( evpnStatus ),
        tepSegmentDir_( tepSegmentDir ),
        bridgingHwCapabilities_( bridgingHwCapabilities ),
        lagPhyIntfMapping_( lagPhyIntfMapping ) {}

OxaEvpnTepSegmentSm::~OxaEvpnTepSegmentSm() {
   hasNotificationActiveIs( false );
}

Quelm::Ptr< OxaEvpnTepSegmentSm > OxaEvpnTepSegmentSm::OxaEvpnTepSegmentSmIs(
   Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
   Quelm::Ptr< EvpnTepSegmentDir > const & tepSegmentDir,
   Quelm::Ptr< Bridging::HwCapabilities const > const & bridgingHwCapabilities,
   Quelm::Ptr< Lag::LagPhyIntfMapping const > const & lagPhyIntfMapping ) {
   return Quelm::make< OxaEvpnTepSegmentSm >( evpnStatus, tepSegmentDir, bridgingHwCapabilities,
                                              lagPhyIntfMapping );
}

void OxaEvpnTepSegmentSm::handleDerivingBegins() {
   statusWatch_.hasNotificationActiveIs( true );
   handleSegments();
}

void OxaEvpnTepSegmentSm::handleDerivingEnds() {
   statusWatch_.hasNotificationActiveIs( false );
   segment_.clear();
}

void OxaEvpnTepSegmentSm::handleSegments() {
   if ( !evpnStatus() || !tepSegmentDir() ) {
      return;
   }
   // New segments come before lost ones: a VTEP that shares another segment keeps its entity.
   for ( auto iter = evpnStatus()->segmentStatusIter(); iter; ++iter ) {
      segmentNew( iter.value() );
   }
   for ( auto segment = tepSegmentDir()->tepSegmentIter(); segment; ++segment ) {
      for ( auto iter = segment.value()->segmentSetIter(); iter; ++iter ) {
         handleRemoteTep( iter.key(), segment.key() );
      }
   }
}

void OxaEvpnTepSegmentSm::handleSegment( Kiv::Change const & change ) {
   using Segment = Quelm::Ptr< Evpn::EthernetSegmentStatus >;
   if ( !tepSegmentDir() ) {
      return;
   }
   if ( auto const * const gone = change.oldValue< Segment >() ) {
      segmentGone( **gone );
   }
   if ( auto const * const come = change.newValue< Segment >() ) {
      segmentNew( *come );
   }
}

void OxaEvpnTepSegmentSm::segmentNew(
   Quelm::Ptr< Evpn::EthernetSegmentStatus const > const & segment ) {
   if ( !isDeriving() ) {
      return;  // a reader of the directory has ended it
   }
   Pelk::IntfId const intfId = segment->intfId();
   auto watch = std::make_unique< Kiv::Watch< Evpn::EthernetSegmentStatus > >(
      segment, [ this, intfId ]( Kiv::Change const & change ) {
         handleRemoteTep( intfId, change.key< Pelk::IpGenAddr >() );
      } );
   watch->hasNotificationActiveIs( true );
   segment_[ intfId ] = std::move( watch );
   for ( auto iter = segment->remoteTepIter(); iter; ++iter ) {
      handleRemoteTep( intfId, iter.key() );
   }
}

void OxaEvpnTepSegmentSm::segmentGone( Evpn::EthernetSegmentStatus const & segment ) {
   segment_.erase( segment.intfId() );
   for ( auto iter = segment.remoteTepIter(); iter; ++iter ) {
      handleRemoteTep( segment.intfId(), iter.key() );
   }
}

void OxaEvpnTepSegmentSm::handleRemoteTep( Pelk::IntfId const & intfId,
                                           Pelk::IpGenAddr const & tepIp ) {
   if ( !isDeriving() ) {
      return;
   }
   if ( !isShared( intfId, tepIp ) ) {
      leave( tepIp, intfId );
   } else if ( auto const entity = tepSegmentDir()->tepSegment( tepIp ) ) {
      entity->segmentSetIs( intfId );
   } else {
      enter( tepIp );
   }
}

bool OxaEvpnTepSegmentSm::isShared( Pelk::IntfId const & intfId,
                                    Pelk::IpGenAddr const & tepIp ) const {
   auto const segment = evpnStatus()->segmentStatus( intfId );
   return segment && segment->remoteTepHas( tepIp );
}

void OxaEvpnTepSegmentSm::enter( Pelk::IpGenAddr const & tepIp ) {
   auto const entity = Quelm::make< EvpnTepSegment >( tepIp );
   for ( auto iter = evpnStatus()->segmentStatusIter(); iter; ++iter ) {
      if ( iter.value()->remoteTepHas( tepIp ) ) {
         entity->segmentSetIs( iter.key() );
      }
   }
   tepSegmentDir()->tepSegmentIs( entity );
}

void OxaEvpnTepSegmentSm::leave( Pelk::IpGenAddr const & tepIp, Pelk::IntfId const & intfId ) {
   auto const entity = tepSegmentDir()->tepSegment( tepIp );
   if ( !entity ) {
      return;
   }
   entity->segmentSetDel( intfId );
   if ( entity->segments() == 0 ) {
      tepSegmentDir()->tepSegmentDel( tepIp );
   }
}

}  // namespace Oxa
