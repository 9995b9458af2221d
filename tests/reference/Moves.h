// Random stories: lists of moves, and the scenario that a list stands for.
//
// A move is four small numbers, so that it can be made simpler. Each becomes a step on
// whatever the switch has at that point; a move that can do nothing there is left out. So every
// list of moves is a valid scenario, and so is what is left of it when moves are taken away.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace Moves {

struct Move {
   unsigned kind = 0;
   unsigned place = 0;  // a segment, an interface, a tunnel interface, a group
   unsigned who = 0;    // a VTEP, a VRF
   unsigned number = 0;
   bool isWithNext = false;  // in one turn with the change that follows
};

std::ostream & operator<<( std::ostream & out, Move const & move );

// How many kinds there are.
extern unsigned const kKinds;

// The switch.
struct World {
   std::string variant = "egress-mask";
   unsigned units = 1;
   unsigned ingressEntries = 64;
   unsigned egressEntries = 64;
   unsigned classIds = 4;  // one for each VTEP
   bool hasVniRules = true;
   unsigned movesBeforeReady = 0;
   // No port and no VNI is used twice, interfaces stay in one place, there is one tunnel interface,
   // others take no room, each VTEP can have a class id, nobody grants them by hand, and one thing
   // happens at a time.
   bool isCalm = false;
   bool hasFaults = true;  // of the chip, among the moves; a calm switch has none
};

struct Step {
   std::string yaml;
   bool isLook = false;  // a frame that only shows what the rules do
};

struct Story {
   std::string head;
   std::vector< Step > steps;  // the last of them fully visible

   // The scenario up to that step (from 1), without the looks before it.
   std::string upTo( std::size_t step ) const;
   // All of it.
   std::string text() const;
};

Story storyOf( World const & world, std::vector< Move > const & moves );

}  // namespace Moves
