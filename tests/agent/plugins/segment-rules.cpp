// A plug-in small enough to see through, for tests of the agent: it has one ingress rule on every
// unit for every Ethernet segment, which keeps known unicast from leaving by logical port 3.
//
// It makes use of everything that an agent offers, and stops the process on its third segment.
#include <iostream>

#include <Evpn/EvpnStatus.h>
#include <Kiv/Rows.h>
#include <Log/Log.h>
#include <Shim/FieldCall.h>
#include <Trace/Trace.h>
#include <Vornal/VornalCommonSmData.h>
#include <VornalLib/MounterBase.h>
#include <VornalTcam/EntryManager.h>

#include <signal.h>
#include <unistd.h>

namespace Sample {

namespace {

Trace::Handle const trace( "Sample" );
Log::Handle const groupFull( { "SAMPLE_GROUP_FULL", "No room for segment %s", "The group is full.",
                               Log::StandardAction::NoneRequired, Log::Severity::Error } );

constexpr std::size_t kMostSegments = 2;
#ifdef SAMPLE_MASKS_ANOTHER_PORT
constexpr U32 kMaskedPort = 4;
#else
constexpr U32 kMaskedPort = 3;
#endif

}  // namespace

class SegmentRulesWithEgressMaskSm : public Kiv::Entity {
   KIV_ENTITY( SegmentRulesWithEgressMaskSm, Kiv::Entity )
   KIV_HELD( evpnStatus, Evpn::EvpnStatus const )
   KIV_COLLECTION( entryId, Pelk::IntfId, U32, entryIds )
   KIV_OPERATION( void, qualifyUnknownEntry, () )

   SegmentRulesWithEgressMaskSm(
      Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
      Quelm::Ptr< Vornal::VornalUnboundedTcamEntryManager > const & entries )
         : entries_( entries ), watch_( evpnStatus, [ this ]( Kiv::Change const & change ) {
              handleSegment( change.key< Pelk::IntfId >() );
           } ) {
      evpnStatus_ = evpnStatus;
      watch_.hasNotificationActiveIs( true );
      for ( auto iter = evpnStatus->segmentStatusIter(); iter; ++iter ) {
         handleSegment( iter.key() );
      }
   }

 private:
   void handleSegment( Pelk::IntfId const & intfId ) {
      TRACE_RING( trace, 5,
                  "handleSegment"
                     << " intfId: " << intfId );
      if ( evpnStatus_->segmentStatusHas( intfId ) ) {
         add( intfId );
      } else {
         entries_->releaseEntry( 0, entryIdDel( intfId ) );
      }
   }

   void add( Pelk::IntfId const & intfId ) {
      QUELM_ASSERT( entryIds() < kMostSegments && "room for another segment" );
      U32 const unit = 0;
      U32 const entryId = entries_->getEntry( unit, "Sample " + intfId.stringValue(), {} );
      if ( entryId == 0 ) {
         groupFull.log( { intfId.stringValue() } );
         return;
      }
      SDK_FIELD_CALL( bcm_field_qualify_PacketRes( unit, entryId, BCM_FIELD_PKT_RES_L2UC, 0xff ) );
      _shr_pbmp ports{};
      ports.words[ 0 ] = 1U << kMaskedPort;
      entries_->addEgressMaskAction( unit, entryId, ports );
      entries_->setPriorityForEntry( unit, entryId, 1 );
      entries_->installEntry( unit, entryId );
      entryIdIs( intfId, entryId );
   }

   Quelm::Ptr< Vornal::VornalUnboundedTcamEntryManager > entries_;
   Kiv::Watch< Evpn::EvpnStatus > watch_;
};

void SegmentRulesWithEgressMaskSm::qualifyUnknownEntry() {
   U32 const unit = 0;
   U32 const entryId = 999;
   SDK_FIELD_CALL( bcm_field_qualify_TunnelTerminated( unit, entryId, 1, 1 ) );
}

class Mounter : public VornalLib::MounterBase {
   KIV_ENTITY( Mounter, VornalLib::MounterBase )
   KIV_REFERENCE( evpnStatus, Evpn::EvpnStatus )
   KIV_REFERENCE( vcsd, Vornal::VornalCommonSmData )
   KIV_REFERENCE( evpnMultihomingLocalBiasSm, SegmentRulesWithEgressMaskSm )
   KIV_OPERATION( void, finishInit, () )
   KIV_OPERATION( void, print, ( std::string const & text ) )
   KIV_OPERATION( void, printLong, ( U32 length ) )
   KIV_OPERATION( void, hang, () )
   KIV_OPERATION( void, interrupt, () )

   explicit Mounter( std::string const & name )
         : MounterBase( name ), watch_( [ this ]( Kiv::Change const & ) { finishInit(); } ) {}

   void doInit() override;
   void doMountsComplete( Corrum::MountStatus status,
                          Quelm::Ptr< Corrum::EntityManager > entityManager ) override;

 private:
   Kiv::Watch< Vornal::SubAgentDependencyPoints > watch_;
};

void Mounter::doInit() {
   TRACE( trace, 8, "Sample::Mounter::doInit" );
   auto const group = entityManager()->getMountGroup();
   group->doMount( { "evpn/status", "Evpn::EvpnStatus", "r" } );
   group->doMount( { "evpn/nothing", "Evpn::EvpnStatus", "r" } );
   group->doClose( "" );
}

void Mounter::doMountsComplete( Corrum::MountStatus,
                                Quelm::Ptr< Corrum::EntityManager > entityManager ) {
   evpnStatusIs(
      Quelm::dynamicCast< Evpn::EvpnStatus >( entityManager->getEntity( "evpn/status" ) ) );
   vcsdIs( Quelm::dynamicCast< Vornal::VornalCommonSmData >( sharedEntity( "vornalCommon" ) ) );
   watch_.notifierIs( vcsd()->sliceDependencyPoints()->subAgentDependencyPoints() );
   watch_.hasNotificationActiveIs( true );
}

void Mounter::finishInit() {
   auto const groups =
      Quelm::dynamicCast< Vornal::VornalTcamGroupManager >( sharedEntity( "tcamManager" ) );
   evpnMultihomingLocalBiasSmIs( Quelm::make< SegmentRulesWithEgressMaskSm >(
      evpnStatus(), groups->unboundedEntryManager( Vornal::kIfpLocalBiasGroup ) ) );
   vcsd()->sliceDependencyPoints()->evpnDependencyPoint()->markReady();
}

void Mounter::print( std::string const & text ) {
   std::cout << text << std::endl;
}

// A line of that length.
void Mounter::printLong( U32 length ) {
   std::cerr << std::string( length, 'x' ) << std::endl;
}

void Mounter::hang() {
   std::cout << "hanging" << std::endl;
   while ( true ) {
      pause();
   }
}

// The program is asked to end, and this process does not by itself.
void Mounter::interrupt() {
   kill( getppid(), SIGINT );
   hang();
}

namespace {

Plugin::MounterRegistration const registration( "Sample::Mounter", []( std::string const & name ) {
   return Quelm::Ptr< Plugin::Mounter >( Quelm::make< Mounter >( name ) );
} );

}  // namespace

}  // namespace Sample

KIV_DEFINE( Sample::SegmentRulesWithEgressMaskSm )
KIV_DEFINE( Sample::Mounter )
