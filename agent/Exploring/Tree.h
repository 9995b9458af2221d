// The tree of the sequences that begin alike.
//
// Each sequence is a process: a copy of the process of the sequence that is one event shorter, in
// which that event has happened. So an event that several sequences begin with happens once. The
// plug-in can stop any of these processes. The process above it, which waits for it, then finds the
// assertion in what it has written. One process of a tree runs at a time.
//
//    ""  ── A ──►  A  ── A ──►  AA
//     │            └─── B ──►  AB
//     └── B ──►  B ...
//
// A sequence whose last event has changed nothing is left out with all that begin with it: they end
// like the sequences without that event. So is one that a scenario cannot have.
#pragma once

#include <chrono>

#include <Exploring/SharedFindings.h>
#include <Host/Agent.h>

namespace Exploring {

// Sequences that are tried together.
struct Branch {
   Sequence begin;
   // All that begin so, up to the longest; false: this one alone.
   bool isWhole = false;

   friend bool operator==( Branch const &, Branch const & ) = default;
};

struct Limits {
   std::size_t length;                // of the longest sequence
   std::chrono::milliseconds step{};  // of time, for an event; 0: none
};

// Tries the sequences of a branch, in processes of their own. Its beginning without the last event
// must be one that ends without a stop; what happens in it is not found again. The caller has one
// thread and has loaded no plug-in. std::system_error when no process can be started;
// std::runtime_error when the switch itself does not come up.
Findings explored( Exploration const & exploration, Host::AgentConfig const & config,
                   Branch const & branch, Limits const & limits );

}  // namespace Exploring
