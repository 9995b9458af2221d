// The rules as the events tell them, and what has become of them since a moment that was marked.
#pragma once

#include <map>
#include <optional>

#include <Story/Event.h>

namespace Story {

class RuleTable {
 public:
   void onEvent( RuleIs const & event );
   void onEvent( RuleGone const & event );

   std::map< Chip::RuleKey, Chip::Rule > const & rules() const { return rules_; }

   // What has changed since the last mark, or from the beginning; marks this moment. A rule that
   // came and went in between has not changed.
   Chip::RuleChanges changes();

 private:
   void remember( Chip::RuleKey const & key );

   std::map< Chip::RuleKey, Chip::Rule > rules_;
   // At the mark, of those touched since.
   std::map< Chip::RuleKey, std::optional< Chip::Rule > > before_;
};

}  // namespace Story
