// The state machine's nested reactors: one for each VTEP that shares a segment, for each tunnel
// interface and for each port channel, and the one on the clock.
//
// Each watches a single entity and knows its machine by a back reference. What a change leads to is
// in the file of its subject (SegmentTracking, PerVniMulticast, PortResolution, IngressRules).
#pragma once

#include <VornalEvpnSm/EvpnMultihomingLocalBiasSm.h>

namespace Vornal {

// Watches the interfaces shared with one remote VTEP.
class EvpnMultihomingLocalBiasSm::NestedSm_OxaEvpnTepSegment final
      : public Kiv::NestedReactor< Oxa::EvpnTepSegment > {
   KIV_ENTITY( NestedSm_OxaEvpnTepSegment, Kiv::Entity )
   KIV_BACK( evpnMultihomingLocalBiasSm, EvpnMultihomingLocalBiasSm )
   // The interface joined or left the segments shared with the VTEP.
   KIV_OPERATION( void, handleSegmentSet, ( Pelk::IntfId const & intfId ) )

   NestedSm_OxaEvpnTepSegment( Notifier const & segment, EvpnMultihomingLocalBiasSm * machine );

   Pelk::IpGenAddr const & tepIp() const { return notifier()->tepIp(); }
   void ownerDel() override { evpnMultihomingLocalBiasSm_ = nullptr; }

 private:
   EvpnMultihomingLocalBiasSm & machine() const {
      QUELM_ASSERT( evpnMultihomingLocalBiasSm() );
      return *evpnMultihomingLocalBiasSm();
   }
   void onAttribute( Kiv::Change const & change ) override;
   void handleSegmentSetOnUnit( U16 unit, Pelk::IntfId const & intfId );
};

// Watches the VNIs of the VRFs that are routed over one tunnel interface.
class EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus final
      : public Kiv::NestedReactor< Vxlan::VtiStatus > {
   KIV_ENTITY( NestedSm_VtiStatus, Kiv::Entity )
   KIV_BACK( evpnMultihomingLocalBiasSm, EvpnMultihomingLocalBiasSm )
   // Moves a VRF's rules from one VNI to another; 0 on either side is none. Support tools know the
   // operation by its signature, in traces and in what a stop prints, so the VRF comes by value.
   KIV_OPERATION( void, handleVrfToVniMap, ( L3::VrfName vrf, U32 oldVni, U32 newV ) )
   // The same for every VRF of the map, as if it had just been mapped.
   KIV_OVERLOAD( void, handleVrfToVniMap, () )
   // Takes the rules of every VRF of the map away.
   void handleVrfToVniUnmap();
   // Frees all per-VNI rules if this is the tunnel interface that they follow.
   KIV_OPERATION( void, doCleanup, () )

   NestedSm_VtiStatus( Notifier const & status, EvpnMultihomingLocalBiasSm * machine );

   Pelk::IntfId const & intfId() const { return notifier()->intfId(); }
   void ownerDel() override { evpnMultihomingLocalBiasSm_ = nullptr; }

   // Whether the toggle "SbdEvpnTcamOverrideRule" is on. Read once per loaded plug-in.
   static bool toggleSbdEvpnTcamOverrideRuleEnabled();

   void retired() override { doCleanup(); }

 private:
   EvpnMultihomingLocalBiasSm & machine() const {
      QUELM_ASSERT( evpnMultihomingLocalBiasSm() );
      return *evpnMultihomingLocalBiasSm();
   }
   void onAttribute( Kiv::Change const & change ) override;
   // The VRF's VNI has changed. The change under way holds the old and the new one.
   void handleVrfToVniMapReactor( L3::VrfName vrf );
   U32 vniEntryNew( U16 unit, L3::VrfName const & vrf, U32 vni );

   Kiv::Change const * change_ = nullptr;  // under way; nullptr between deliveries
};

// Watches the members of one port channel.
class EvpnMultihomingLocalBiasSm::NestedSm_LagPhyIntfConfig final
      : public Kiv::NestedReactor< Lag::LagPhyIntfConfig > {
   KIV_ENTITY( NestedSm_LagPhyIntfConfig, Kiv::Entity )
   KIV_BACK( evpnMultihomingLocalBiasSm, EvpnMultihomingLocalBiasSm )
   // The interface joined or left the port channel.
   KIV_OPERATION( void, handleLagMember, ( Pelk::IntfId const & memberIntf ) )

   NestedSm_LagPhyIntfConfig( Notifier const & config, EvpnMultihomingLocalBiasSm * machine );

   Pelk::IntfId const & intfId() const { return notifier()->intfId(); }
   void ownerDel() override { evpnMultihomingLocalBiasSm_ = nullptr; }

 private:
   EvpnMultihomingLocalBiasSm & machine() const {
      QUELM_ASSERT( evpnMultihomingLocalBiasSm() );
      return *evpnMultihomingLocalBiasSm();
   }
   void onAttribute( Kiv::Change const & change ) override;
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
