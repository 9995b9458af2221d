// Scenarios as text, for tests that run one with the plug-in tests/agent/plugins/segment-rules.cpp.
#pragma once

#include <string>

namespace Switches {

// A leaf with four interfaces and a segment on Ethernet1; `steps` are the lines of a YAML list, not
// indented.
inline std::string leaf( std::string const & steps, std::string const & tcam = "{ ingress: 8 }" ) {
   return "scenario: leaf\n"
          "switch:\n"
          "   name: leaf1\n"
          "   slice: 3\n"
          "   variant: egress-mask\n"
          "   units: { 0: { module: 1 } }\n"
          "   tcam: " +
          tcam +
          "\n"
          "   interfaces:\n"
          "      Ethernet1: { unit: 0, port: 1 }\n"
          "      Ethernet2: { unit: 0, port: 2 }\n"
          "      Ethernet3: { unit: 0, port: 3 }\n"
          "      Ethernet4: { unit: 0, port: 4 }\n"
          "   port-channels: { Port-Channel7: [ Ethernet4 ] }\n"
          "evpn:\n"
          "   segments: { Ethernet1: [ 10.0.0.2 ] }\n"
          "   vteps: { 10.0.0.2: { virtual-port: 2 } }\n"
          "   tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 50001 } } }\n"
          "trace: { Sample: 0-9 }\n"
          "steps:\n" +
          steps;  // line 20 is the first of them
}

constexpr int kFirstStepLine = 20;

}  // namespace Switches
