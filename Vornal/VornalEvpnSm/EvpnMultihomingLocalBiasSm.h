// The local-bias state machine: keeps the chips' rules in sync with the state database.
//
// A remote VTEP that is attached to one of this switch's Ethernet segments delivers broadcast,
// unknown unicast and multicast frames to that segment itself (local bias, RFC 8365,
// section 8.3.1). Copies of such frames that reach this switch through the tunnel must not leave by
// the shared segment's ports once more. This machine programs an ingress entry for each such VTEP
// on each unit. The entry recognises frames from the VTEP, and the variant adds the action:
//
// - EvpnMultihomingLocalBiasWithEgressMaskSm (EgressMask/): the entry masks the shared ports;
// - EvpnMultihomingLocalBiasWithI2EClassIdSm (I2EClassId/): the entry tags the frame, and an egress
//   entry on each shared port drops tagged frames.
//
// Each subject has its file: Lifecycle, SegmentTracking, UnitRecords, PortResolution, IngressRules,
// UnicastExemption, PerVniMulticast, Verification. NestedSms.h holds the reactors on single members
// of the inputs, TepIpToEntry.h the records of the programmed rules. The table of the inputs, and
// of the handlers that their changes call, ends the class.
//
// Invariants. A missing input reads as empty. Nothing is programmed before handleInitialized(). A
// rule and its record change in the same step. Loops over units walk the module-id table in its own
// order. The destructor takes the reactors out of service and leaves every rule in the hardware, so
// that traffic stays filtered while the agent restarts.
//
// Failures. A broken invariant, a failed SDK call and a failed install stop the process: after them
// nobody knows the state of the chip. (The result of installing a per-VNI rule alone is ignored.) A
// full TCAM is no failure: it is traced. The first VTEP's entry without room is logged; with class
// ids, once per episode. Only the rules for VNIs are retried when room is reported. A state that
// cannot be acted on yet is traced at level 2 and waited out.
//
// Threads: the activity's. The activity lock is given up during each field call; handlers may
// otherwise rely on a state database that stands still.
#pragma once

#include <concepts>
#include <memory>

#include <Evpn/EvpnStatus.h>
#include <Kiv/Clock.h>
#include <Kiv/NestedReactor.h>
#include <Lag/Config.h>
#include <Oxa/EvpnTepSegmentDir.h>
#include <Vornal/VornalCommonSmData.h>
#include <VornalCentral/I2EClassIdIndex.h>
#include <VornalCentral/VpIndexStatus.h>
#include <VornalEvpnSm/PortLists.h>
#include <VornalEvpnSm/TepIpToEntry.h>
#include <VornalTcam/EntryManager.h>
#include <Vxlan/VtiStatusDir.h>

namespace Vornal {

class EvpnMultihomingLocalBiasSm : public Kiv::Entity {
 public:
   class NestedSm;
   class NestedSm_OxaEvpnTepSegment;
   class NestedSm_VtiStatus;
   class NestedSm_LagPhyIntfConfig;
   class KivClock;

   // clang-format off
   KIV_ENTITY( EvpnMultihomingLocalBiasSm, Kiv::Entity )
   KIV_HELD( vcsd, VornalCommonSmData const )
   KIV_HELD( oxaEvpnTepSegmentDir, Oxa::EvpnTepSegmentDir const )
   KIV_HELD( vpIndexStatus, VornalCentral::VpIndexStatus const )
   KIV_HELD( evpnStatus, Evpn::EvpnStatus const )
   KIV_HELD( vtiStatusDir, Vxlan::VtiStatusDir const )
   KIV_HELD( tcamManager, VornalUnboundedTcamEntryManager )
   KIV_HELD( clock, Kiv::Clock )
   KIV_HELD( lagConfigDir, Lag::Config const )
   KIV_HELD( lagPhyIntfMapping, Lag::LagPhyIntfMapping const )
   KIV_MEMBERS( tepIpToEntry, U16, TepIpToEntry )
   KIV_COLLECTION( vniToTcamEntryId, U32, U32 )
   KIV_VALUE( tcamExhaustion, bool )
   KIV_VALUE( isEvpn, bool )
   KIV_OPERATION( void, installRulesForUcastTraffic, ( U16 unit ) )
   KIV_OPERATION( void, removeRulesForUcastTraffic, ( U16 unit ) )
   KIV_COLLECTION( l2UcastRuleInstalled, U16, U32 )
   KIV_COLLECTION( l3UcastRuleInstalled, U16, U32 )
   KIV_OPERATION( void, handleTepSegment, ( Pelk::IpGenAddr const & tepIp ) )
   KIV_OVERLOAD( void, handleTepSegment, () )
   KIV_OPERATION( void, handleSegmentStatus, () )
   KIV_NESTED( oxaEvpnTepSegment, Pelk::IpGenAddr, NestedSm_OxaEvpnTepSegment )
   KIV_COLLECTION( unprogrammedTcamRulesList, L3::VrfName, U32 )
   KIV_OPERATION( void, handleTcamExhaustion, () )
   KIV_OPERATION( void, handleTime, () )
   KIV_NESTED( vtiStatus, Pelk::IntfId, NestedSm_VtiStatus )
   KIV_OPERATION( void, handleRemoteVport, ( VornalCentral::RemoteVtepKey const & rvk ) )
   KIV_NESTED( lagPhyIntfConfig, Pelk::IntfId, NestedSm_LagPhyIntfConfig )
   KIV_OPERATION( void, handleVornalIntfToPort, ( Pelk::IntfId const & intfId ) )
   KIV_QUERY( VornalTypes::VornalPortList, getPortListForPortChannel, ( Pelk::IntfId const & intfId ) )
   KIV_QUERY( SharedESPortInfo, getSharedESPortInfo, ( U32 unit, Pelk::IpGenAddr const & tepIp ) )
   KIV_QUERY( PortListsOnUpdate, getPortListsOnUpdate, ( U32 unit, Pelk::IpGenAddr const & tepIp, Pelk::IntfId const & intfId, bool added ) )
   KIV_ABSTRACT( bool, ifpTcamEntries, ( U32 unit, Pelk::IpGenAddr const & tepIp, bool add ) )
   KIV_VIRTUAL( bool, efpTcamEntries, ( U32 unit, Pelk::IpGenAddr const & tepIp, VornalTypes::VornalPortList const & ports, bool add ) )
   KIV_VIRTUAL( bool, addTcamEntries, ( U32 unit, Pelk::IpGenAddr const & tepIp ) )
   KIV_VIRTUAL( bool, deleteTcamEntries, ( U32 unit, Pelk::IpGenAddr const & tepIp ) )
   KIV_VIRTUAL( bool, updateIfpTcamEntries, ( U32 unit, Pelk::IpGenAddr const & tepIp, VornalTypes::VornalPortList const & oldPorts, VornalTypes::VornalPortList const & ports, bool add ) )
   KIV_VIRTUAL( bool, updateEfpTcamEntries, ( U32 unit, Pelk::IpGenAddr const & tepIp, VornalTypes::VornalPortList const & portsToRemove, VornalTypes::VornalPortList const & ports, bool add ) )
   virtual void updateTcamEntries( U32 unit, Pelk::IpGenAddr const & tepIp, Pelk::IntfId const & intfId, bool add );  // its row is the last one, below
   KIV_VIRTUAL( bool, unitUsesOrNeedsTcams, ( U32 unit ) )
   KIV_QUERY( bool, unitUsesTcamsForTepIp, ( U32 unit, Pelk::IpGenAddr const & tepIp ) )
   KIV_VIRTUAL( bool, tcamSanityCheckForTepIp, ( U32 unit, Pelk::IpGenAddr const & tepIp ) )
   KIV_VIRTUAL( void, verifyIfpEntries, ( U32 unit, Pelk::IpGenAddr const & tepIp ) )
   KIV_VIRTUAL( void, verifyEfpEntries, ( U32 unit, Pelk::IpGenAddr const & tepIp ) )
   KIV_OPERATION( void, handleVerify, () )
   KIV_VALUE( initialized, bool )
   KIV_VIRTUAL( void, handleInitialized, () )
   KIV_CALLABLE( void, updateTcamEntries, ( U32 unit, Pelk::IpGenAddr const & tepIp, Pelk::IntfId const & intfId, bool add ), )
   // clang-format on

   EvpnMultihomingLocalBiasSm(
      Quelm::Ptr< VornalCommonSmData const > const & vcsd,
      Quelm::Ptr< Oxa::EvpnTepSegmentDir const > const & oxaEvpnTepSegmentDir,
      Quelm::Ptr< VornalCentral::VpIndexStatus const > const & vpIndexStatus,
      Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
      Quelm::Ptr< Vxlan::VtiStatusDir const > const & vtiStatusDir,
      Quelm::Ptr< VornalUnboundedTcamEntryManager > const & tcamManager,
      Quelm::Ptr< Kiv::Clock > const & clock, Quelm::Ptr< Lag::Config const > const & lagConfigDir,
      Quelm::Ptr< Lag::LagPhyIntfMapping const > const & lagPhyIntfMapping );
   ~EvpnMultihomingLocalBiasSm() override;

   // The unit's record, for a unit as operations carry it.
   Quelm::Ptr< TepIpToEntry > tepIpToEntry( U32 unit ) {
      return unit > 0xffff ? nullptr : tepIpToEntry( static_cast< U16 >( unit ) );
   }
   Quelm::Ptr< TepIpToEntry const > tepIpToEntry( U32 unit ) const {
      return unit > 0xffff ? nullptr : tepIpToEntry( static_cast< U16 >( unit ) );
   }

   // Whether a unit as operations carry it has its exemption rule. (Constrained, so that a plain
   // number stays a unit of 16 bits.)
   bool l2UcastRuleInstalledHas( std::same_as< U32 > auto unit ) const {
      return unit <= 0xffff && l2UcastRuleInstalledHas( static_cast< U16 >( unit ) );
   }
   bool l3UcastRuleInstalledHas( std::same_as< U32 > auto unit ) const {
      return unit <= 0xffff && l3UcastRuleInstalledHas( static_cast< U16 >( unit ) );
   }

   void hasNotificationActiveIs( bool active ) override;
   void kivDoZombieReactors( bool zombie ) override;

   // Watch one member of an input, or the object that has taken its place. Quelm::NullArgumentError
   // for an empty reference.
   void oxaEvpnTepSegmentIs( Quelm::Ptr< Oxa::EvpnTepSegment const > const & segment );
   void vtiStatusIs( Quelm::Ptr< Vxlan::VtiStatus const > const & status );
   void lagPhyIntfConfigIs( Quelm::Ptr< Lag::LagPhyIntfConfig const > const & config );

   // Fires handleTime().
   KivClock & kivClock() const { return *kivClock_; }

 protected:
   // The number of ports that verification expects of a VTEP on a unit, counted from its segment
   // interfaces. A physical interface counts on every unit, a member of a port channel on its own
   // unit only.
   U32 expectedPortCount( U32 unit, Pelk::IpGenAddr const & tepIp ) const;

 private:
   void handleTepSegmentChange( Pelk::IpGenAddr const & tepIp );
   void handleVtiStatusChange( Pelk::IntfId const & intfId );
   void handleLagPhyIntfConfigChange( Pelk::IntfId const & intfId );

   // The VP index of the VTEP: the low 16 bits of its virtual port.
   U16 vpIndexOf( VornalCentral::RemoteVtepKey const & rvk ) const;
   // Makes sure of a unit's record; the unit's unicast exemption rules come first.
   void ensureUnitRecord( U16 unit );
   // After a VTEP's rules have gone from a unit: the record and the exemption rules go with the
   // last.
   void forgetVpIndex( U16 unit, Pelk::IpGenAddr const & tepIp );
   void rekeyTcamEntries( U16 unit, VornalCentral::RemoteVtepKey const & rvk );

   // The VXLAN source gport of the VTEP's virtual port.
   U32 gportOf( Pelk::IpGenAddr const & tepIp ) const;
   void releaseIfpEntry( U32 unit, Pelk::IpGenAddr const & tepIp, TepIpToEntry & unitTepIpToEntry );

   void verifyTepIp( Pelk::IpGenAddr const & tepIp );

   // Whether the interface has a live port, or is a port channel with an entry in the LAG mapping.
   bool isKnownIntf( Pelk::IntfId const & intfId ) const;
   template< typename Visit >
   void forEachPortOfPortChannel( Pelk::IntfId const & intfId, Visit visit ) const;
   void portListsOfPhyIntf( Pelk::IntfId const & intfId, VornalTypes::VornalPortList & portList,
                            VornalTypes::VornalPortList & prevPortList ) const;

   std::unique_ptr< KivClock > kivClock_;

   // --- Inputs, the attribute of each that counts, and its handler
   Kiv::Watch< VornalCommonSmData > vcsdDispatch_{
      vcsd(), Kiv::onKey( VornalCommonSmData::vornalIntfToPortAttr(), this,
                          &KivSelf::handleVornalIntfToPort )
   };
   Kiv::Watch< Oxa::EvpnTepSegmentDir > oxaEvpnTepSegmentDirDispatch_{
      oxaEvpnTepSegmentDir(),
      Kiv::onKey( Oxa::EvpnTepSegmentDir::tepSegmentAttr(), this, &KivSelf::handleTepSegmentChange )
   };
   Kiv::Watch< VornalCentral::VpIndexStatus > vpIndexStatusDispatch_{
      vpIndexStatus(), Kiv::onKey( VornalCentral::VpIndexStatus::remoteVportAttr(), this,
                                   &KivSelf::handleRemoteVport )
   };
   Kiv::Watch< Evpn::EvpnStatus > evpnStatusDispatch_{
      evpnStatus(),
      Kiv::onAttribute( Evpn::EvpnStatus::segmentStatusAttr(), this, &KivSelf::handleSegmentStatus )
   };
   Kiv::Watch< Vxlan::VtiStatusDir > vtiStatusDirDispatch_{
      vtiStatusDir(),
      Kiv::onKey( Vxlan::VtiStatusDir::vtiStatusAttr(), this, &KivSelf::handleVtiStatusChange )
   };
   Kiv::Watch< VornalUnboundedTcamEntryManager > tcamManagerDispatch_{
      tcamManager(),
      Kiv::inService( this, Kiv::onAttribute( VornalTcamEntryManager::exhaustedAttr(), this,
                                              &KivSelf::handleTcamExhaustion ) )
   };
   Kiv::Watch< Lag::LagPhyIntfMapping > lagPhyIntfMappingDispatch_{
      lagPhyIntfMapping(), Kiv::onKey( Lag::LagPhyIntfMapping::lagPhyIntfConfigAttr(), this,
                                       &KivSelf::handleLagPhyIntfConfigChange )
   };
};

// Builds a machine of a variant from its constructor's arguments and switches its notifications on.
template< typename Machine, typename... Inputs >
Quelm::Ptr< EvpnMultihomingLocalBiasSm > activeMachineNew( Inputs const &... inputs ) {
   auto const machine = Quelm::make< Machine >( inputs... );
   machine->hasNotificationActiveIs( true );
   return machine;
}

}  // namespace Vornal

#include <VornalEvpnSm/NestedSms.h>
