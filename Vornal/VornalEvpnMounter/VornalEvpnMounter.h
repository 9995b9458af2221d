// The plug-in's mounter: the single object through which the Vornal agent meets the EVPN plug-in.
//
// It asks the state database for the inputs and outputs of the local-bias logic, takes the entities
// when they are mounted, waits for the agent's layer 2 (EvpnDependencyWaiter), and then builds the
// working objects in finishInit(): the LAG member mapping and the shared-segment directory with the
// objects that derive them, the TCAM entry managers, the clock, and exactly one local-bias state
// machine, of the variant that the chip supports. It holds them until it is destroyed.
//
// The variant is chosen once, by the capabilities of the chip: the table of the variants stands in
// VornalEvpnMounter.cpp. The capabilities must be there when finishInit() runs. A plug-in that
// guessed the variant would program rules that the chip ignores, so their absence stops the
// process. Every other entity that is missing or of another type is left empty and reported
// nowhere; an empty reference reads as an empty input.
//
// A creator (xIs) keeps the object that it holds when that was built from the same arguments.
// Otherwise it builds a new one, which replaces the held one, and switches its notifications on. A
// remover (xDel) switches the object's notifications off, lets go of it and returns it. The LAG
// mapping has no notifications to switch off.
//
// Destroying the mounter takes the working objects apart in a fixed order and deletes no TCAM rule.
// Threads: the activity's.
#pragma once

#include <Bridging/HwCapabilities.h>
#include <Evpn/EvpnStatus.h>
#include <Lag/LagPhyIntfMappingSm.h>
#include <Oxa/OxaEvpnTepSegmentSm.h>
#include <Vornal/VornalCommonSmData.h>
#include <VornalCentral/Capabilities.h>
#include <VornalCentral/I2EClassIdIndex.h>
#include <VornalCentral/VpIndexStatus.h>
#include <VornalEvpnMounter/EvpnDependencyWaiter.h>
#include <VornalEvpnSm/EvpnMultihomingLocalBiasSm.h>
#include <VornalLib/MounterBase.h>
#include <Vxlan/VtiStatusDir.h>

namespace Vornal {

class VornalEvpnMounter : public VornalLib::MounterBase {
   KIV_ENTITY( VornalEvpnMounter, VornalLib::MounterBase )
   KIV_HELD( evpnDependencyWaiter, EvpnDependencyWaiter )
   KIV_REFERENCE( evpnStatus, Evpn::EvpnStatus const )
   KIV_HELD( vtiStatusDir, Vxlan::VtiStatusDir const )
   KIV_REFERENCE( oxaEvpnTepSegmentDir, Oxa::EvpnTepSegmentDir )
   KIV_HELD( evpnTepSegmentSm, Oxa::OxaEvpnTepSegmentSm )
   KIV_HELD( evpnMultihomingLocalBiasSm, EvpnMultihomingLocalBiasSm )
   KIV_HELD( svpShimStatus, VornalCentral::VpIndexStatus const )
   KIV_HELD( vxlanCapabilities, VornalCentral::VxlanCapabilities const )
   KIV_HELD( i2eClassIdIndexConfig, VornalCentral::I2EClassIdIndexConfig )
   KIV_HELD( i2eClassIdIndexStatus, VornalCentral::I2EClassIdIndexStatus const )
   KIV_REFERENCE( lagConfig, Lag::Config const )
   KIV_HELD( lagPhyIntfMapping, Lag::LagPhyIntfMapping )
   KIV_HELD( lagPhyIntfMappingSm, Lag::LagPhyIntfMappingSm )
   KIV_HELD( bridgingHwCapabilities, Bridging::HwCapabilities const )
   KIV_REFERENCE( vcsd, VornalCommonSmData )
   KIV_OPERATION( void, finishInit, () )

   explicit VornalEvpnMounter( std::string const & name );
   ~VornalEvpnMounter() override;

   // Mounts the entities that the plug-in reads and writes.
   void doInit() override;
   // Takes the mounted entities and starts to wait, whatever the status: an entity that could not
   // be mounted is missing.
   void doMountsComplete( Corrum::MountStatus status,
                          Quelm::Ptr< Corrum::EntityManager > entityManager ) override;

   Quelm::Ptr< EvpnDependencyWaiter > evpnDependencyWaiterIs(
      VornalEvpnMounter * mounter, Quelm::Ptr< VornalCommonSmData > const & commonSmData );
   Quelm::Ptr< EvpnDependencyWaiter > evpnDependencyWaiterDel();

   Quelm::Ptr< Lag::LagPhyIntfMapping > lagPhyIntfMappingIs( std::string const & name );
   Quelm::Ptr< Lag::LagPhyIntfMapping > lagPhyIntfMappingDel();

   Quelm::Ptr< Lag::LagPhyIntfMappingSm > lagPhyIntfMappingSmIs(
      Quelm::Ptr< Lag::Config const > const & lagConfig,
      Quelm::Ptr< Lag::LagPhyIntfMapping > const & lagPhyIntfMapping );
   Quelm::Ptr< Lag::LagPhyIntfMappingSm > lagPhyIntfMappingSmDel();

   Quelm::Ptr< Oxa::OxaEvpnTepSegmentSm > evpnTepSegmentSmIs(
      Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
      Quelm::Ptr< Oxa::EvpnTepSegmentDir > const & tepSegmentDir,
      Quelm::Ptr< Bridging::HwCapabilities const > const & bridgingHwCapabilities,
      Quelm::Ptr< Lag::LagPhyIntfMapping const > const & lagPhyIntfMapping );
   Quelm::Ptr< Oxa::OxaEvpnTepSegmentSm > evpnTepSegmentSmDel();

 private:
   template< typename T >
   Quelm::Ptr< T > ownedIs( Kiv::AttributeId attribute, Quelm::Ptr< T > & held,
                            Quelm::Ptr< T > const & built );
   template< typename T >
   Quelm::Ptr< T > ownedDel( Kiv::AttributeId attribute, Quelm::Ptr< T > & held );

   using TcamGroups = Quelm::Ptr< VornalTcamGroupManager >;
   using Machine = Quelm::Ptr< EvpnMultihomingLocalBiasSm >;

   // A variant of the state machine: the capability that it needs of the chip, and its creator.
   struct Variant {
      bool ( VornalCentral::VxlanCapabilities::*capability )() const;  // nullptr: none
      Machine ( VornalEvpnMounter::*create )( TcamGroups const & groups ) const;
   };
   static Variant const variants[];

   static Variant const & variantFor( VornalCentral::VxlanCapabilities const & capabilities );
   Machine localBiasWithI2EClassId( TcamGroups const & groups ) const;
   Machine localBiasWithEgressMask( TcamGroups const & groups ) const;
};

}  // namespace Vornal
