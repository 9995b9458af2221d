// A switch as it is probed: the ports and tunnels of the published state, and a frame for each way
// that a promise is about.
//
// The frames come from each remote VTEP, in the VNIs that VRFs have or had, and in one that none
// had: one frame of each kind for several receivers, and to a host behind each port a bridged one
// and a routed one. Each of these hosts sends a frame, too, from which the switch learns it. Every
// interface with a port carries every VLAN, so that each frame for several can leave by each port.
// An underlay interface is added at a free port of the first unit; the units of the ports that a
// frame leaves by decide about it, and not the unit that it arrives at.
//
// Not probed, since nothing is promised about it: a VTEP whose virtual port another one has, too; a
// VTEP under another key alone; known L3 multicast that the platform keeps out of the filter; a
// remote VTEP with the address that the probes take for their own. Each port is designated. A
// member of a port channel is an interface of its own here: of a port channel, a frame takes one
// member, and each of them is to be seen. A port of several interfaces is that of the first.
#pragma once

#include <optional>
#include <set>
#include <vector>

#include <Audit/State.h>
#include <Pipeline/Forwarding.h>
#include <Pipeline/FrameKind.h>

namespace Probing {

struct ProbeFrame {
   VornalTypes::VornalPort arrival{};
   std::vector< U8 > bytes{};
   std::optional< Pelk::IpGenAddr > vtep{};  // none: from a host of this switch
   Chip::Vni vni = 0;
   Chip::FrameKind kind{};
};

struct ProbedSwitch {
   Chip::ForwardingConfig forwarding{};
   std::vector< ProbeFrame > probes{};  // those from hosts of this switch come first
};

// `vnis`: those that VRFs have or had.
ProbedSwitch probedSwitchOf( Audit::State const & state, std::set< Chip::Vni > const & vnis );

}  // namespace Probing
