// The switch itself: what does not change while it runs.
#pragma once

#include <map>
#include <optional>

namespace Reference {

// How the chip keeps a frame back.
enum class Variant {
   egressMask,  // the rule of the sender masks ports
   classId,     // the rule of the sender marks the frame, and rules of ports drop marked frames
};

// A group of field-processor rules. The rules of senders, the exemptions and the rules of VNIs are
// in the ingress group, the rules of ports in the egress group.
enum class Group { ingress, egress };

struct Device {
   Variant variant = Variant::egressMask;
   std::map< unsigned, unsigned > moduleOfUnit;
   unsigned ingressEntries = 256;  // on each unit
   unsigned egressEntries = 256;
   // The platform forwards known L3 multicast rightly without rules per VNI.
   bool isMulticastExempt = false;
   // The feature toggle of the rules per VNI.
   bool hasVniRules = true;
};

}  // namespace Reference
