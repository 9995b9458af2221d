// The rules as the events tell them, and what has become of them since a moment that was marked.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include <Story/Event.h>
#include <Story/Rule.h>

namespace Story {

struct RuleChange {
   Rule before;
   Rule after;
};

// By unit, group and id. A rule that came and went in between is in none of them.
struct RuleChanges {
   std::vector< Rule > added;
   std::vector< RuleChange > changed;
   std::vector< Rule > removed;
};

class RuleTable {
 public:
   void onEvent( RuleIs const & event );
   void onEvent( RuleGone const & event );

   std::map< RuleKey, Rule > const & rules() const { return rules_; }

   // What has changed since the last mark, or from the beginning; marks this moment.
   RuleChanges changes();

 private:
   void remember( RuleKey const & key );

   std::map< RuleKey, Rule > rules_;
   std::map< RuleKey, std::optional< Rule > > before_;  // at the mark, of those touched since
};

}  // namespace Story
