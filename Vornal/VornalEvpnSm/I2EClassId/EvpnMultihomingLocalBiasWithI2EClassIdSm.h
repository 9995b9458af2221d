// Local bias by an ingress-to-egress class id.
//
// For chips that tag at ingress and drop at egress: the ingress entry of a remote VTEP stamps its
// frames with the VTEP's class id, and one egress entry on each shared port drops frames with that
// id.
//
// Class ids come from the central allocator. A request is an entry in its configuration, a grant an
// entry in its status; a grant that disappears again takes nothing away here. Per VTEP:
//
//    none       addTcamEntries on any unit asks for an id                     -> requested
//    requested  the grant arrives; every unit that has a record and lacks
//               rules is programmed                                           -> granted, in use
//    in use     counted: one per unit whose ingress entry carries the id
//    any        deleteTcamEntries gives the id back once the count is 0, or withdraws the request
//
// Invariants. A count exists only for a VTEP with a class id, and both go together. The count is
// unsigned and not checked: taking from 0 gives all ones. The list of a VTEP's egress entries on a
// unit exists from the first programming with ports until a removal leaves it without any.
//
// Failures: a pending grant is not exhaustion, and nothing is logged for it. A missing
// configuration reads as empty: nothing is pending in it, and there is nothing to clear or to
// withdraw. A request has nowhere to go then, and stops the process. A full egress group leaves the
// ingress entry, and the ports done so far, in place. The full and the recovered message are logged
// once per episode each.
//
// Files: ClassIdAllocation.cpp, EgressDropRules.cpp, ClassIdVerification.cpp. Threads: the
// activity's.
#pragma once

#include <VornalEvpnSm/EvpnMultihomingLocalBiasSm.h>

namespace Vornal {

class EvpnMultihomingLocalBiasWithI2EClassIdSm final : public EvpnMultihomingLocalBiasSm {
   // clang-format off
   KIV_ENTITY( EvpnMultihomingLocalBiasWithI2EClassIdSm, EvpnMultihomingLocalBiasSm )
   KIV_HELD( efpTcamManager, VornalUnboundedTcamEntryManager )
   KIV_HELD( i2eClassIdIndexConfig, VornalCentral::I2EClassIdIndexConfig )
   KIV_HELD( i2eClassIdIndexStatus, VornalCentral::I2EClassIdIndexStatus const )
   KIV_COLLECTION( i2eTepIpClassId, Pelk::IpGenAddr, VornalCommon::ClassId )
   KIV_COLLECTION( i2eTepIpClassIdRefCount, Pelk::IpGenAddr, U32 )
   KIV_OPERATION( void, handleRemoteESPeerVtepI2EClassId, ( Pelk::IpGenAddr const & tepIp ) )
   KIV_OVERLOAD( void, handleRemoteESPeerVtepI2EClassId, () )
   KIV_OPERATION( bool, programI2EclassIdTcamState, ( Pelk::IpGenAddr const & tepIp ) )
   KIV_OPERATION( bool, addTcamEntriesWithI2EClassId, ( U32 unit, Pelk::IpGenAddr const & tepIp ) )
   // clang-format on

   // Takes the base's arguments and three more. The initial walk has been done when it returns.
   EvpnMultihomingLocalBiasWithI2EClassIdSm(
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
      Quelm::Ptr< VornalCentral::I2EClassIdIndexStatus const > const & i2eClassIdIndexStatus );
   ~EvpnMultihomingLocalBiasWithI2EClassIdSm() override;

   void hasNotificationActiveIs( bool active ) override;

   bool ifpTcamEntries( U32 unit, Pelk::IpGenAddr const & tepIp, bool add ) override;
   bool efpTcamEntries( U32 unit, Pelk::IpGenAddr const & tepIp,
                        VornalTypes::VornalPortList const & ports, bool add ) override;
   bool addTcamEntries( U32 unit, Pelk::IpGenAddr const & tepIp ) override;
   bool deleteTcamEntries( U32 unit, Pelk::IpGenAddr const & tepIp ) override;
   bool updateEfpTcamEntries( U32 unit, Pelk::IpGenAddr const & tepIp,
                              VornalTypes::VornalPortList const & portsToRemove,
                              VornalTypes::VornalPortList const & ports, bool add ) override;
   void updateTcamEntries( U32 unit, Pelk::IpGenAddr const & tepIp, Pelk::IntfId const & intfId,
                           bool add ) override;
   bool unitUsesOrNeedsTcams( U32 unit ) override;
   bool tcamSanityCheckForTepIp( U32 unit, Pelk::IpGenAddr const & tepIp ) override;
   void verifyIfpEntries( U32 unit, Pelk::IpGenAddr const & tepIp ) override;
   void verifyEfpEntries( U32 unit, Pelk::IpGenAddr const & tepIp ) override;
   void handleInitialized() override;

 private:
   using Requests = VornalCentral::I2EClassIdIndexConfig;
   using Grants = VornalCentral::I2EClassIdIndexStatus;

   void traceRefCount( Pelk::IpGenAddr const & tepIp, U32 entryId, U32 count ) const;
   void releaseRules( U32 unit, Pelk::IpGenAddr const & tepIp );
   void withdrawRequest( Pelk::IpGenAddr const & tepIp );
   void releaseClassId( Pelk::IpGenAddr const & tepIp );

   // Releases the entries of these ports. Whether the list has ports left after that.
   bool freeEfpEntries( U32 unit, ESPortAndEFPEntryIdList & list,
                        VornalTypes::VornalPortList const & ports );
   // A new entry for the port, or 0 when the group is full.
   U32 obtainEfpEntry( U32 unit, Pelk::IpGenAddr const & tepIp,
                       VornalTypes::VornalPort const & sp );

   // Whether some request has no grant yet: a search that ends at the first of them.
   bool isAnyClassIdPending() const;

   Kiv::Watch< Grants > i2eClassIdIndexStatusDispatch_{
      i2eClassIdIndexStatus(),
      Kiv::inService( this, Kiv::onKey( Grants::remoteESPeerVtepAttr(), this,
                                        &KivSelf::handleRemoteESPeerVtepI2EClassId ) )
   };
};

// Builds one from the arguments of its constructor and switches its notifications on.
template< typename... Inputs >
Quelm::Ptr< EvpnMultihomingLocalBiasSm > EvpnMultihomingLocalBiasWithI2EClassIdSmIs(
   Inputs const &... inputs ) {
   return activeMachineNew< EvpnMultihomingLocalBiasWithI2EClassIdSm >( inputs... );
}

// The same, for the mounter.
template< typename... Inputs >
Quelm::Ptr< EvpnMultihomingLocalBiasSm > evpnMultihomingLocalBiasWithI2EClassIdSmFactory(
   Inputs const &... inputs ) {
   return EvpnMultihomingLocalBiasWithI2EClassIdSmIs( inputs... );
}

}  // namespace Vornal
