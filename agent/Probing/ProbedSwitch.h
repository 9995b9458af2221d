// A switch as it is probed: the ports and tunnels of the published state, and a frame for each way
// that a promise is about.
//
// The frames come from each remote VTEP, at each unit, in a VNI that no VRF has and in each that
// one has: one frame of each kind for several receivers, and to a host behind each port a bridged
// one and a routed one. Every interface with a port carries every VLAN, so that each frame for
// several can leave by each port. An underlay interface is added on each unit, at a free port.
//
// Not probed, since nothing is promised about it: a port that two interfaces have; a VTEP whose
// virtual port another one has, too; known L3 multicast that the platform keeps out of the filter.
// A member of a port channel is an interface of its own here: of a port channel, a frame takes one
// member, and each of them is to be seen.
#pragma once

#include <vector>

#include <Audit/State.h>
#include <Pipeline/Forwarding.h>
#include <Pipeline/FrameKind.h>

namespace Probing {

struct ProbeFrame {
   VornalTypes::VornalPort arrival{};
   std::vector< U8 > bytes{};
   // Of frames through a tunnel
   Pelk::IpGenAddr vtep{};
   U16 virtualPort = 0;  // its index
   Chip::Vni vni = 0;
   Chip::FrameKind kind{};
};

struct ProbedSwitch {
   Chip::ForwardingConfig forwarding{};
   std::vector< ProbeFrame > fromHosts{};  // the switch learns the hosts by them
   std::vector< ProbeFrame > probes{};
};

ProbedSwitch probedSwitchOf( Audit::State const & state );

}  // namespace Probing
