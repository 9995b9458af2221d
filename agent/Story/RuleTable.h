// The rules as the events tell them, and their changes since the last mark.
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

   // The changes since the last mark, or since the beginning; sets a new mark. A rule that came and
   // went in between has not changed.
   Chip::RuleChanges changes();

 private:
   void remember( Chip::RuleKey const & key );

   std::map< Chip::RuleKey, Chip::Rule > rules_;
   // The rules at the mark, of those changed since.
   std::map< Chip::RuleKey, std::optional< Chip::Rule > > before_;
};

}  // namespace Story
