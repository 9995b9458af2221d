// Finds a short scenario that leads to the state of a switch.
//
// The first try is a fresh start from the published state. A run of it shows whether it leads to
// the same published state, rules and records. Where it does not, the way to the state matters.
// Then the dump is the fresh start of an earlier moment and the steps since then, as few of them as
// will do; what none of them touches has its last value from the start. The moments are tried from
// the last one backwards, each twice as far back as the one before. The start of the scenario
// itself with all its steps always leads there.
//
// The numbers of entries in the chip do not count: they only tell in which order rules were made.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <Dumping/FreshStart.h>
#include <Story/Node.h>

namespace Dumping {

// The runs that a dump needs.
struct Switches {
   // The state after that step of the scenario, and after the last step of another one; nothing
   // when it does not get so far.
   std::function< std::optional< Story::Table >( std::size_t step ) > after;
   std::function< std::optional< Story::Table >( Scenario::Yaml const & scenario ) > of;
   // The differences between two states, as a tree: kinds, and below them differences.
   std::function< Story::Node( Story::Table const & before, Story::Table const & after ) > between;
};

struct Original {
   Scenario::Yaml scenario;              // whole, without steps
   std::vector< Scenario::Yaml > steps;  // those up to the moment of the dump
};

struct Dump {
   Scenario::Yaml scenario;
   std::size_t keptSteps = 0;                 // of the original
   bool isSame = true;                        // it leads to the state
   std::vector< std::string > differences{};  // of a fresh start, where steps had to be kept
   bool hasOtherEntryNumbers = false;
};

// `state` is the state after all the steps.
Dump dumped( Original const & original, Story::Table const & state, Switches const & switches );

}  // namespace Dumping
