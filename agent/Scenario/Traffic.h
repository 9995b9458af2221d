// What a scenario says about frames: how the switch forwards, the frames that are injected, and
// what is expected of them.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include <Frames/FrameFields.h>
#include <Pelk/IntfId.h>
#include <Pelk/IpGenAddr.h>
#include <Pipeline/Forwarding.h>
#include <Pipeline/FrameKind.h>
#include <Pipeline/Reasons.h>

namespace Scenario {

// --- the switch's own configuration; ports, port channels and tunnels are published

struct Forwarding {
   // Everything but interfaces, port channels, tunnels and flood lists, which follow from what is
   // published.
   Chip::ForwardingConfig config;
   std::set< Pelk::IntfId > underlay;
   std::map< Pelk::IntfId, Chip::AccessVlans > vlans;  // of interfaces and port channels
};

// --- frames that are injected

// A frame of hosts, written as fields; through a tunnel if it says so.
struct Frame {
   std::optional< Pelk::IntfId > on;  // left out for a tunnel: the first underlay interface
   Chip::FrameFields fields;
};

// The frames of a capture, one after the other.
struct Capture {
   std::filesystem::path file;
   Pelk::IntfId on;
};

// The interface forwards, or does not forward, what came through a tunnel for several receivers.
struct DesignatedForwarder {
   std::map< Pelk::IntfId, bool > isDesignated;
};

// --- what is expected of the frames that the last step of frames has injected

// A place that a frame can leave for: an interface, or a remote VTEP.
using FrameTarget = std::variant< Pelk::IntfId, Pelk::IpGenAddr >;

struct FramesLike {
   // Which frames are meant: all of them that are as this says.
   std::optional< Pelk::IpGenAddr > from;  // the source VTEP
   std::set< Chip::FrameKind > kinds;      // empty: any
   // What holds for each of them, of which there is one at least.
   std::vector< FrameTarget > reach;
   std::vector< FrameTarget > neverReach;
   std::map< Pelk::IntfId, Chip::Verdict > verdicts;
   std::optional< Chip::DropReason > dropped;  // as a whole
   std::optional< U32 > count;                 // of the frames meant
};

}  // namespace Scenario
