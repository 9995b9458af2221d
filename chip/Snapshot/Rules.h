// The rules of all units at one moment, as values that stay when the chip goes on: for dumps, and
// for the changes of a step.
//
// A rule shows its written copy once it is installed, and its staged copy before that. Changes
// staged on top of an installed rule do not show until they are written.
//
// Taken on the thread that makes field calls, or while none is under way.
#pragma once

#include <string>
#include <vector>

#include <FieldProcessor/Unit.h>

namespace Chip {

struct Rule {
   RuleKey key{};
   std::string name{};
   bool isWritten = false;  // false while only staged
   EntryContent content{};

   friend bool operator==( Rule const &, Rule const & ) = default;
};

using Rules = std::vector< Rule >;  // by key

// The rule that the entry shows; the key says where it stands.
Rule ruleAt( RuleKey const & key, Entry const & entry );
Rules rulesOf( Units const & units );

struct RuleChange {
   Rule before;
   Rule after;
};

struct RuleChanges {
   Rules added;
   std::vector< RuleChange > changed;  // being written for the first time counts
   Rules removed;

   bool isEmpty() const { return added.empty() && changed.empty() && removed.empty(); }
};

// The changes that turn `before` into `after`, two snapshots of the same units.
RuleChanges changesBetween( Rules const & before, Rules const & after );

}  // namespace Chip
