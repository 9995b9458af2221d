// The state machine's nested reactors: one for each VTEP that shares a segment, one for each tunnel
// interface, one for each port channel, and one for the clock.
//
// Each watches a single entity and has a back reference to its machine. The handlers stand in the
// files of their subjects (SegmentTracking, PerVniMulticast, PortResolution).
#pragma once

#include <VornalEvpnSm/EvpnMultihomingLocalBiasSm.h>

namespace Vornal {

// The way from a nested reactor back to its machine.
class EvpnMultihomingLocalBiasSm::NestedSm : public Kiv::Entity {
   KIV_ENTITY( NestedSm, Kiv::Entity )
   KIV_BACK( evpnMultihomingLocalBiasSm, EvpnMultihomingLocalBiasSm )

   // The reactor has been retired, or the machine is going.
   void ownerDel() { evpnMultihomingLocalBiasSm_ = nullptr; }

 protected:
   explicit NestedSm( EvpnMultihomingLocalBiasSm * machine )
         : evpnMultihomingLocalBiasSm_( machine ) {}

   // A reactor that has lost its machine fails an assertion.
   EvpnMultihomingLocalBiasSm & machine() const {
      QUELM_ASSERT( evpnMultihomingLocalBiasSm() );
      return *evpnMultihomingLocalBiasSm();
   }
};

// Watches the interfaces shared with one remote VTEP.
class EvpnMultihomingLocalBiasSm::NestedSm_OxaEvpnTepSegment final
      : public Kiv::NestedReactor< Oxa::EvpnTepSegment, EvpnMultihomingLocalBiasSm::NestedSm > {
   KIV_ENTITY( NestedSm_OxaEvpnTepSegment, NestedSm )
   // The interface joined or left the segments shared with the VTEP.
   KIV_OPERATION( void, handleSegmentSet, ( Pelk::IntfId const & intfId ) )

   NestedSm_OxaEvpnTepSegment( Notifier const & segment, EvpnMultihomingLocalBiasSm * machine );

   Pelk::IpGenAddr const & tepIp() const { return notifier()->tepIp(); }

 private:
   void handleSegmentSetOnUnit( U16 unit, Pelk::IntfId const & intfId );
};

// Watches the VNIs of the VRFs that are routed over one tunnel interface.
class EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus final
      : public Kiv::NestedReactor< Vxlan::VtiStatus, EvpnMultihomingLocalBiasSm::NestedSm > {
   KIV_ENTITY( NestedSm_VtiStatus, NestedSm )
   // Moves a VRF's rules from one VNI to another; 0 on either side is none. The VRF comes by value:
   // support tools know the operation by its signature, in traces and in the lines of a stop.
   KIV_OPERATION( void, handleVrfToVniMap, ( L3::VrfName vrf, U32 oldVni, U32 newV ) )
   // The same for every VRF of the map, as if it had just been mapped.
   KIV_OVERLOAD( void, handleVrfToVniMap, () )
   // Takes the rules of every VRF of the map away.
   void handleVrfToVniUnmap();
   // Frees all per-VNI rules if this is the tunnel interface that they follow.
   KIV_OPERATION( void, doCleanup, () )

   NestedSm_VtiStatus( Notifier const & status, EvpnMultihomingLocalBiasSm * machine );

   Pelk::IntfId const & intfId() const { return notifier()->intfId(); }

   // Whether the toggle "SbdEvpnTcamOverrideRule" is on. Read once per loaded plug-in.
   static bool toggleSbdEvpnTcamOverrideRuleEnabled();

   void retired() override { doCleanup(); }

 private:
   // The map of VRFs to VNIs has changed.
   void onAttribute( Kiv::Change const & change );
   // The VRF's VNI has changed. The change under way holds the old and the new one.
   void handleVrfToVniMapReactor( L3::VrfName vrf );
   // An entry for the VNI, or 0 with the VRF queued.
   U32 vniEntryNew( U16 unit, L3::VrfName const & vrf, U32 vni );

   Kiv::Change const * change_ = nullptr;  // under way; nullptr between deliveries
};

// Watches the members of one port channel.
class EvpnMultihomingLocalBiasSm::NestedSm_LagPhyIntfConfig final
      : public Kiv::NestedReactor< Lag::LagPhyIntfConfig, EvpnMultihomingLocalBiasSm::NestedSm > {
   KIV_ENTITY( NestedSm_LagPhyIntfConfig, NestedSm )
   // The interface joined or left the port channel.
   KIV_OPERATION( void, handleLagMember, ( Pelk::IntfId const & memberIntf ) )

   NestedSm_LagPhyIntfConfig( Notifier const & config, EvpnMultihomingLocalBiasSm * machine );

   Pelk::IntfId const & intfId() const { return notifier()->intfId(); }
};

// Calls handleTime() when the clock has reached the time it is armed for, unless it is out of
// service, switched off or has lost its machine by then.
class EvpnMultihomingLocalBiasSm::KivClock final {
 public:
   KivClock( Quelm::Ptr< Kiv::Clock > const & clock, EvpnMultihomingLocalBiasSm * machine );

   void timeMinIs( Kiv::Time time ) { reactor_.timeMinIs( time ); }
   void hasNotificationActiveIs( bool active ) { reactor_.hasNotificationActiveIs( active ); }
   void isZombieIs( bool zombie ) { reactor_.isZombieIs( zombie ); }
   bool isZombie() const { return reactor_.isZombie(); }
   bool isArmed() const { return reactor_.isArmed(); }

   EvpnMultihomingLocalBiasSm * evpnMultihomingLocalBiasSm() const {
      return evpnMultihomingLocalBiasSm_;
   }
   void ownerDel() { evpnMultihomingLocalBiasSm_ = nullptr; }

 private:
   void handleTime();

   EvpnMultihomingLocalBiasSm * evpnMultihomingLocalBiasSm_;
   Kiv::ClockReactor reactor_;
};

}  // namespace Vornal
