// A rule changes in the chip, and nobody is told. Only its written copy changes; a rule that is
// destroyed or copied goes or comes as a whole. A drift that the program refuses is none here.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <variant>

#include <Facts/Device.h>

namespace Reference {

// The lowest bit of a qualifier's data, or of an action's number.
struct PartFlips {
   std::string part;
};
struct MaskIs {
   std::string qualifier;
   unsigned mask = 0;
};
struct PortsAre {
   std::set< unsigned > ports;
};
struct PriorityIs {
   std::optional< unsigned > priority;
};
struct PartGoes {
   std::string part;
};
enum class Fate {
   erased,     // it is staged, and not written
   destroyed,  // it is gone
   copied      // it is there twice
};

// A rule by its entry, or by a part of its name that no other rule of its group and unit has.
struct RuleNamed {
   unsigned entry = 0;
   std::string name;
};
// The two match each other's source port.
struct GportsSwap {
   RuleNamed with;
};

struct RuleDrifts {
   Group group = Group::ingress;
   unsigned unit = 0;
   RuleNamed rule;
   std::variant< PartFlips, MaskIs, PortsAre, PriorityIs, PartGoes, Fate, GportsSwap > change;
};

}  // namespace Reference
