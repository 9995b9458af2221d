// The state that other agents publish: the entities of the state database and of the agent's shared
// state, and the changes that a scenario makes to them.
//
// Each change follows the way of the agent that owns the state: ports go through the operations
// that keep the live and the cached map in sync; a segment or a tunnel interface enters before its
// parts.
//
// | path                                              | entity                                |
// |---------------------------------------------------|---------------------------------------|
// | evpn/status                                       | Evpn::EvpnStatus                      |
// | hardware/vornal/vp/status/vornalL3                | VornalCentral::VpIndexStatus          |
// | hardware/vornal/centralStatus/vxlanCapabilities   | VornalCentral::VxlanCapabilities      |
// | hardware/vornal/i2eclassid/config/slice/SLICE     | VornalCentral::I2EClassIdIndexConfig  |
// | hardware/vornal/i2eclassid/status/slice/SLICE     | VornalCentral::I2EClassIdIndexStatus  |
// | interface/status/eth/vxlan                        | Vxlan::VtiStatusDir                   |
// | lag/config                                        | Lag::Config                           |
// | bridging/hwcapabilities                           | Bridging::HwCapabilities              |
// | shared/vornalCommon                               | Vornal::VornalCommonSmData            |
// | shared/vornalAttributes                           | VornalCentral::VornalAttributes       |
//
// Threads: the activity's; every change must be made in a turn of its own.
#pragma once

#include <optional>

#include <Evpn/EvpnStatus.h>
#include <Lag/Config.h>
#include <Peers/ClassIdAllocator.h>
#include <Scenario/Scenario.h>
#include <StateDatabase/Directory.h>
#include <Vornal/VornalCommonSmData.h>
#include <VornalCentral/VpIndexStatus.h>
#include <Vxlan/VtiStatusDir.h>

namespace Peers {

class PublishedState {
 public:
   // Puts the entities of the switch into the two directories. The activity must outlive this
   // object and its turns.
   PublishedState( Scenario::Switch const & device, Kiv::ActivityManager & activity,
                   StateDatabase::Directory & database, StateDatabase::Directory & shared );

   void publish( Scenario::Published const & what );
   void withdraw( Scenario::Published const & what );
   // Replaces the whole entity in one change.
   void replace( Scenario::Replaced const & what );

   // The agent that grants class ids; start it when everything before the plug-in is published.
   ClassIdAllocator & allocator() { return *allocator_; }

   Quelm::Ptr< Vornal::VornalCommonSmData > const & common() const { return common_; }
   Quelm::Ptr< Evpn::EvpnStatus > const & evpnStatus() const { return evpnStatus_; }
   Quelm::Ptr< Lag::Config > const & lagConfig() const { return lagConfig_; }
   Quelm::Ptr< VornalCentral::VpIndexStatus > const & vpIndexStatus() const {
      return vpIndexStatus_;
   }

 private:
   void publishOne( Scenario::InterfacePort const & what );
   void publishOne( Scenario::PortChannelMember const & what );
   void publishOne( Scenario::Segment const & what );
   void publishOne( Scenario::SegmentVtep const & what );
   void publishOne( Scenario::VtepVirtualPort const & what );
   void publishOne( Scenario::TunnelInterface const & what );
   void publishOne( Scenario::VrfVni const & what );
   void publishOne( Scenario::ClassIdRequest const & what );
   void publishOne( Scenario::ClassIdGrant const & what );

   void withdrawOne( Scenario::InterfacePort const & what );
   void withdrawOne( Scenario::PortChannelMember const & what );
   void withdrawOne( Scenario::Segment const & what );
   void withdrawOne( Scenario::SegmentVtep const & what );
   void withdrawOne( Scenario::VtepVirtualPort const & what );
   void withdrawOne( Scenario::TunnelInterface const & what );
   void withdrawOne( Scenario::VrfVni const & what );
   void withdrawOne( Scenario::ClassIdRequest const & what );
   void withdrawOne( Scenario::ClassIdGrant const & what );

   void replaceOne( Scenario::SegmentReplaced const & what );
   void replaceOne( Scenario::TunnelInterfaceReplaced const & what );

   Quelm::Ptr< Evpn::EvpnStatus > evpnStatus_;
   Quelm::Ptr< VornalCentral::VpIndexStatus > vpIndexStatus_;
   Quelm::Ptr< Vxlan::VtiStatusDir > vtiStatusDir_;
   Quelm::Ptr< Lag::Config > lagConfig_;
   Quelm::Ptr< VornalCentral::I2EClassIdIndexConfig > classIdConfig_;
   Quelm::Ptr< Vornal::VornalCommonSmData > common_;
   std::optional< ClassIdAllocator > allocator_;
};

}  // namespace Peers
