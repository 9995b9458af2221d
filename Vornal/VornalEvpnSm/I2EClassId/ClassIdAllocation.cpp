// Class ids: requests, use on ingress entries, counting and return (another agent grants them);
// whether a unit needs its TCAM for pending ones; the log messages of a full and a recovered TCAM.

#include <Kiv/OrEmpty.h>
#include <Kiv/Rows.h>
#include <Shim/FieldCall.h>
#include <VornalEvpnSm/I2EClassId/EvpnMultihomingLocalBiasWithI2EClassIdSm.h>
#include <VornalEvpnSm/Module.h>

KIV_DEFINE( Vornal::EvpnMultihomingLocalBiasWithI2EClassIdSm )

namespace Vornal {

using Kiv::orEmpty;
using VornalCommon::ClassId;

EvpnMultihomingLocalBiasWithI2EClassIdSm::EvpnMultihomingLocalBiasWithI2EClassIdSm(
   Quelm::Ptr< VornalCommonSmData const > const & vcsd,
   Quelm::Ptr< Oxa::EvpnTepSegmentDir const > const & oxaEvpnTepSegmentDir,
   Quelm::Ptr< VornalCentral::VpIndexStatus const > const & vpIndexStatus,
   Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
   Quelm::Ptr< Vxlan::VtiStatusDir const > const & vtiStatusDir,
   Quelm::Ptr< VornalUnboundedTcamEntryManager > const & tcamManager,
   Quelm::Ptr< Kiv::Clock > const & clock, Quelm::Ptr< Lag::Config const > const & lagConfigDir,
   Quelm::Ptr< Lag::LagPhyIntfMapping const > const & lagPhyIntfMapping,
   Quelm::Ptr< VornalUnboundedTcamEntryManager > const & efpTcamManager,
   Quelm::Ptr< VornalCentral::I2EClassIdIndexConfig > const & i2eClassIdIndexConfig,
   Quelm::Ptr< VornalCentral::I2EClassIdIndexStatus const > const & i2eClassIdIndexStatus )
      : EvpnMultihomingLocalBiasSm( vcsd, oxaEvpnTepSegmentDir, vpIndexStatus, evpnStatus,
                                    vtiStatusDir, tcamManager, clock, lagConfigDir,
                                    lagPhyIntfMapping ),
        efpTcamManager_( efpTcamManager ),
        i2eClassIdIndexConfig_( i2eClassIdIndexConfig ),
        i2eClassIdIndexStatus_( i2eClassIdIndexStatus ) {
   handleInitialized();
}

EvpnMultihomingLocalBiasWithI2EClassIdSm::~EvpnMultihomingLocalBiasWithI2EClassIdSm() {
   EvpnMultihomingLocalBiasWithI2EClassIdSm::hasNotificationActiveIs( false );
   kivDoZombieReactors( true );
}

void EvpnMultihomingLocalBiasWithI2EClassIdSm::hasNotificationActiveIs( bool active ) {
   EvpnMultihomingLocalBiasSm::hasNotificationActiveIs( active );
   i2eClassIdIndexStatusDispatch_.hasNotificationActiveIs( active );
}

void EvpnMultihomingLocalBiasWithI2EClassIdSm::handleInitialized() {
   TRACE( smTrace, 5, "handleInitialized" );
   if ( i2eClassIdIndexConfig() ) {
      i2eClassIdIndexConfig()->remoteESPeerVtepDelAll();
   }
   EvpnMultihomingLocalBiasSm::handleInitialized();
}

bool EvpnMultihomingLocalBiasWithI2EClassIdSm::addTcamEntries( U32 unit,
                                                               Pelk::IpGenAddr const & tepIp ) {
   TRACE( smTrace, 5, "addTcamEntries, unit: " << unit << ", tepIp: " << tepIp );
   if ( !i2eTepIpClassIdHas( tepIp ) ) {
      i2eClassIdIndexConfig()->remoteESPeerVtepIs( tepIp, true );
      return false;
   }
   return addTcamEntriesWithI2EClassId( unit, tepIp );
}

void EvpnMultihomingLocalBiasWithI2EClassIdSm::handleRemoteESPeerVtepI2EClassId(
   Pelk::IpGenAddr const & tepIp ) {
   bool const isPeer = orEmpty( oxaEvpnTepSegmentDir() ).tepSegmentHas( tepIp );
   if ( !isPeer || !initialized() ) {
      TRACE( smTrace, 2,
             "handleRemoteESPeerVtepI2EClassId initialized: "
                << initialized() << " tepIp part of oxaEvpnTepSegmentDir: " << isPeer );
      return;
   }
   TRACE( smTrace, 5, "handleRemoteESPeerVtepI2EClassId tepIp " << tepIp );
   auto const & grants = orEmpty( i2eClassIdIndexStatus() );
   if ( !grants.remoteESPeerVtepHas( tepIp ) ) {
      TRACE( smTrace, 5,
             "handleRemoteESPeerVtepI2EClassId freed I2E class ID for tepIp " << tepIp );
      return;
   }
   ClassId const classId = grants.remoteESPeerVtep( tepIp );
   i2eTepIpClassIdIs( tepIp, classId );
   TRACE( smTrace, 5,
          "handleRemoteESPeerVtepI2EClassId allocated I2E class ID " << classId << " for tepIp "
                                                                     << tepIp );
   programI2EclassIdTcamState( tepIp );
}

void EvpnMultihomingLocalBiasWithI2EClassIdSm::handleRemoteESPeerVtepI2EClassId() {
   if ( !initialized() ) {
      TRACE( smTrace, 2, "handleRemoteESPeerVtepI2EClassId called pre-init" );
      return;
   }
   for ( auto iter = orEmpty( i2eClassIdIndexStatus() ).remoteESPeerVtepIter(); iter; ++iter ) {
      handleRemoteESPeerVtepI2EClassId( iter.key() );
   }
}

bool EvpnMultihomingLocalBiasWithI2EClassIdSm::programI2EclassIdTcamState(
   Pelk::IpGenAddr const & tepIp ) {
   TRACE( smTrace, 5, "programI2EclassIdTcamState, tepIp: " << tepIp );
   if ( !i2eTepIpClassId( tepIp ).isValid() ) {
      TRACE( smTrace, 2, "programI2EclassIdTcamState failed to allocate I2E class ID" );
      return false;
   }
   for ( auto iter = orEmpty( vcsd() ).vornalModIdIter(); iter; ++iter ) {
      if ( tepIpToEntryHas( iter.key() ) && !unitUsesTcamsForTepIp( iter.key(), tepIp ) ) {
         addTcamEntriesWithI2EClassId( iter.key(), tepIp );
      }
   }
   return true;
}

bool EvpnMultihomingLocalBiasWithI2EClassIdSm::addTcamEntriesWithI2EClassId(
   U32 unit, Pelk::IpGenAddr const & tepIp ) {
   TRACE( smTrace, 5, "addTcamEntriesWithI2EClassId, unit: " << unit << ", tepIp: " << tepIp );
   auto const unitTepIpToEntry = tepIpToEntry( unit );
   QUELM_ASSERT( !unitTepIpToEntry->entryIdHas( tepIp ) );
   QUELM_ASSERT( !unitTepIpToEntry->esPbmpHas( tepIp ) );
   QUELM_ASSERT( !unitTepIpToEntry->esPortAndEFPEntryIdListHas( tepIp ) );
   if ( !EvpnMultihomingLocalBiasSm::addTcamEntries( unit, tepIp ) ) {
      return false;
   }
   bool const isComplete =
      efpTcamEntries( unit, tepIp, getSharedESPortInfo( unit, tepIp ).sharedPortList(), true );
   if ( !isComplete && !tcamExhaustion() ) {
      multihomingTcamResourceFull.log();
      tcamExhaustionIs( true );
   } else if ( isComplete && tcamExhaustion() ) {
      multihomingTcamResourceRecovered.log();
      tcamExhaustionIs( false );
   }
   return isComplete;
}

bool EvpnMultihomingLocalBiasWithI2EClassIdSm::ifpTcamEntries( U32 unit,
                                                               Pelk::IpGenAddr const & tepIp,
                                                               bool add ) {
   TRACE( smTrace, 5, "ifpTcamEntries, unit: " << unit << ", tepIp: " << tepIp << ", add " << add );
   if ( !EvpnMultihomingLocalBiasSm::ifpTcamEntries( unit, tepIp, add ) ) {
      return false;
   }
   ClassId const i2eClassId = i2eTepIpClassId( tepIp );
   U32 const entryId = tepIpToEntry( unit )->entryId( tepIp );
   TRACE( smTrace, 4, "ifpTcamEntries working with IFP entry ID " << entryId );
   if ( !add ) {
      QUELM_ASSERT( i2eTepIpClassIdHas( tepIp ) );
      U32 const count = i2eTepIpClassIdRefCount( tepIp ) - 1;
      traceRefCount( tepIp, entryId, count );
      i2eTepIpClassIdRefCountIs( tepIp, count );
      return true;
   }
   QUELM_ASSERT( entryId );
   U32 const count = i2eTepIpClassIdRefCount( tepIp ) + 1;
   i2eTepIpClassIdRefCountIs( tepIp, count );
   traceRefCount( tepIp, entryId, count );
   // clang-format off
   SDK_FIELD_CALL( bcm_field_action_add( unit, entryId, bcmFieldActionEgressClassSelect, BCM_FIELD_EGRESS_CLASS_SELECT_NEW, 0 ) );
   SDK_FIELD_CALL( bcm_field_action_add( unit, entryId, bcmFieldActionNewClassId, i2eClassId.value(), 0 ) );
   // clang-format on
   S32 const BCM_E_NONE = Shim::sdk_->successCode();
   S32 const rc = tcamManager()->installEntry( unit, entryId );
   QUELM_ASSERT( rc == BCM_E_NONE && "installEntry failed" );
   return true;
}

void EvpnMultihomingLocalBiasWithI2EClassIdSm::traceRefCount( Pelk::IpGenAddr const & tepIp,
                                                              U32 entryId, U32 count ) const {
   TRACE( smTrace, 4,
          "ifpTcamEntries for IFP entry ID : " << entryId << " using I2E class ID "
                                               << i2eTepIpClassId( tepIp ) << " whose refcount is "
                                               << count );
}

bool EvpnMultihomingLocalBiasWithI2EClassIdSm::deleteTcamEntries( U32 unit,
                                                                  Pelk::IpGenAddr const & tepIp ) {
   TRACE( smTrace, 5, "deleteTcamEntries, unit: " << unit << ", tepIp: " << tepIp );
   if ( unitUsesTcamsForTepIp( unit, tepIp ) ) {
      releaseRules( unit, tepIp );
   }
   if ( !i2eTepIpClassIdHas( tepIp ) ) {
      withdrawRequest( tepIp );
   } else if ( i2eTepIpClassIdRefCount( tepIp ) == 0 ) {
      releaseClassId( tepIp );
   }
   return true;
}

void EvpnMultihomingLocalBiasWithI2EClassIdSm::releaseRules( U32 unit,
                                                             Pelk::IpGenAddr const & tepIp ) {
   EvpnMultihomingLocalBiasSm::deleteTcamEntries( unit, tepIp );
   if ( auto const list = tepIpToEntry( unit )->esPortAndEFPEntryIdList( tepIp ) ) {
      VornalTypes::VornalPortList const ports = list->esPortList();
      efpTcamEntries( unit, tepIp, ports, false );
   }
   TRACE( smTrace, 5, "deleteTcamEntries, TCAM entries deleted " );
}

void EvpnMultihomingLocalBiasWithI2EClassIdSm::withdrawRequest( Pelk::IpGenAddr const & tepIp ) {
   if ( i2eClassIdIndexConfig() ) {
      i2eClassIdIndexConfig()->remoteESPeerVtepDel( tepIp );
   }
}

void EvpnMultihomingLocalBiasWithI2EClassIdSm::releaseClassId( Pelk::IpGenAddr const & tepIp ) {
   withdrawRequest( tepIp );
   ClassId const classId = i2eTepIpClassIdDel( tepIp );
   i2eTepIpClassIdRefCountDel( tepIp );
   TRACE( smTrace, 5, "deleteTcamEntries freed I2E class ID " << classId );
}

// While any class id is pending, every unit with a record needs its TCAM. Each removal of a VTEP
// asks. While the unit has rules, the answer needs no search unless it is traced, so removing many
// VTEPs is usually linear.
bool EvpnMultihomingLocalBiasWithI2EClassIdSm::unitUsesOrNeedsTcams( U32 unit ) {
   TRACE( smTrace, 5, "unitUsesOrNeedsTcams Mirel unit: " << unit );
   if ( !tepIpToEntry( unit ) ) {
      TRACE( smTrace, 4, "unitUsesOrNeedsTcams Mirel Line: " << __LINE__ );
      return false;
   }
   bool const ifpTcamsUsed = EvpnMultihomingLocalBiasSm::unitUsesOrNeedsTcams( unit );
   TRACE( smTrace, 4,
          "unitUsesOrNeedsTcams ifpTcamsUsed: " << ifpTcamsUsed
                                                << " ifpTcamsNeeded: " << isAnyClassIdPending() );
   return ifpTcamsUsed || isAnyClassIdPending();
}

bool EvpnMultihomingLocalBiasWithI2EClassIdSm::isAnyClassIdPending() const {
   Quelm::Ptr< Requests const > const requests( i2eClassIdIndexConfig() );
   auto const & grants = orEmpty( i2eClassIdIndexStatus() );
   for ( auto iter = orEmpty( requests ).remoteESPeerVtepIter(); iter; ++iter ) {
      if ( !grants.remoteESPeerVtepHas( iter.key() ) ) {
         return true;
      }
   }
   return false;
}

}  // namespace Vornal
