// A field-processor rule as a story tells it: what it is called, what it matches, what it does.
#pragma once

#include <compare>
#include <optional>
#include <string>
#include <vector>

#include <Quelm/Integers.h>

namespace Story {

struct RuleKey {
   U32 unit = 0;
   U32 group = 0;
   U32 id = 0;

   friend bool operator==( RuleKey const &, RuleKey const & ) = default;
   friend std::strong_ordering operator<=>( RuleKey const &, RuleKey const & ) = default;
};

// One value of a qualifier or an action. A qualifier matches where data and frame agree in the bits
// of the mask.
struct RuleValue {
   std::string part;  // which one, where there are several ("ModId", "Port"); else empty
   U64 data = 0;
   std::optional< U64 > mask;

   friend bool operator==( RuleValue const &, RuleValue const & ) = default;
};

// One qualifier or action, by its short name ("SrcVxlanGport", "EgressMask").
struct RuleField {
   std::string name;
   std::vector< RuleValue > values;
   std::optional< std::vector< U32 > > ports;  // logical ports, of a port mask

   friend bool operator==( RuleField const &, RuleField const & ) = default;
};

struct Rule {
   RuleKey key;
   std::string name;
   std::optional< U32 > priority;  // nothing: the group's default
   bool isWritten = false;         // false while it is only staged
   std::vector< RuleField > qualifiers;
   std::vector< RuleField > actions;

   friend bool operator==( Rule const &, Rule const & ) = default;
};

}  // namespace Story
