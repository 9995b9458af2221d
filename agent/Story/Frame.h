// A frame as a story tells it: where it came from, what it was, and what became of it at every port
// that it might have left by.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <Story/Rule.h>

namespace Story {

// The outer headers of a frame that came through a tunnel.
struct FrameTunnel {
   std::string source;  // VTEP
   std::string destination;
   std::optional< U32 > vni;
};

// The frame itself.
struct FrameInner {
   std::string source;  // MAC address
   std::string destination;
   U32 vlan = 0;
   U32 etherType = 0;
   std::optional< std::string > sourceIp;
   std::optional< std::string > destinationIp;
};

// What the ingress lookup on one unit gave.
struct FrameIngress {
   U32 unit = 0;
   std::optional< RuleKey > rule;  // the winner
   U32 classId = 0;                // that it has set; 0 for none
};

// One port, or one VTEP behind an underlay port.
struct FrameCopy {
   std::string intf;
   std::string vtep;               // empty for a frame that leaves as it is
   std::optional< U32 > unit;      // nothing where there was no port to choose
   std::optional< U32 > port;      // logical
   std::string verdict;            // "sent", "masked", "dropped", "not-designated", ...
   std::optional< RuleKey > rule;  // that decided
};

}  // namespace Story
