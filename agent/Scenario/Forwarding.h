// How the switch of a scenario forwards: its own configuration. Ports, port channels and tunnels
// are published instead.
#pragma once

#include <map>
#include <set>

#include <Pelk/IntfId.h>
#include <Pipeline/Forwarding.h>

namespace Scenario {

struct Forwarding {
   // Everything but interfaces, port channels, tunnels and flood lists, which follow from the
   // published state.
   Chip::ForwardingConfig config;
   std::set< Pelk::IntfId > underlay;
   std::map< Pelk::IntfId, Chip::AccessVlans > vlans;  // of interfaces and port channels
};

}  // namespace Scenario
