// Explanations of frames as trees that share their equal parts. Frames that have much in common
// have the same lookups, copies and sentences below them, so ten thousand trees need little room.
#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include <Report/RuleHistory.h>
#include <Report/Texts.h>
#include <Story/Node.h>

namespace Report {

class Explanations {
 public:
   // A node: the numbers of its kind and its text, 1 + the number of the rule that it is about (0:
   // none), and the numbers of its children. Children have lower numbers than their parents.
   using Tree = std::vector< U32 >;

   // The number of the tree. The rules are those of the moment.
   U32 add( Story::Node const & frame, RuleHistory const & rules, Texts & texts );

   std::vector< Tree > const & trees() const { return trees_; }

 private:
   struct Hash {
      std::size_t operator()( Tree const & tree ) const;
   };

   U32 numberOf( Tree tree );

   std::unordered_map< Tree, U32, Hash > numbers_;
   std::vector< Tree > trees_;
};

// Whether the frame arrives twice somewhere, by its explanation.
bool arrivesTwice( Story::Node const & frame );

}  // namespace Report
