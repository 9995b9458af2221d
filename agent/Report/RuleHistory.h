// The rules of a run, each from the step that obtained its entry to the one that gave it back, with
// its forms and the state behind it. An entry that is obtained again is another rule.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include <Report/Texts.h>
#include <Story/RuleTable.h>
#include <Story/Table.h>
#include <Story/VtepNames.h>

namespace Report {

// The matches and the actions of a rule, from the end of a step.
struct RuleForm {
   U32 step = 0;
   TextId name = 0;
   TextId matches = 0;
   TextId does = 0;
   std::optional< U32 > priority;
   bool isWritten = false;
};

// The state that calls for a rule from the end of a step.
struct Ground {
   U32 step = 0;
   TextId because = 0;

   friend bool operator==( Ground const &, Ground const & ) = default;
};

struct RuleLife {
   Chip::RuleKey key;
   U32 since = 0;                 // the step
   std::optional< U32 > until{};  // nothing: it is there at the end
   std::vector< RuleForm > forms{};
   std::vector< Ground > grounds{};
};

struct RuleChange {
   enum class What { Added, Changed, Removed };
   What what;
   U32 rule = 0;  // by number
};

class RuleHistory {
 public:
   // A run can obtain entries without end. This many are kept; the others have no number.
   explicit RuleHistory( std::size_t mostRules ) : mostRules_( mostRules ) {}

   void onEvent( Story::PublishedChange const & event ) { names_.onEvent( event ); }
   void onEvent( Story::RuleIs const & event, U32 step );
   void onEvent( Story::RuleGone const & event, U32 step, Texts & texts );
   // The answer to the question "rules", at the end of the step.
   void onEvent( Story::Table const & rules, U32 step, Texts & texts );

   // The changes of the step, which is over.
   std::vector< RuleChange > changes( U32 step, Texts & texts );

   // In the order in which they were obtained; a rule's number is its place.
   std::vector< RuleLife > const & rules() const { return rules_; }
   std::size_t leftOut() const { return leftOut_; }
   // The number of the rule that has the entry now.
   std::optional< U32 > at( Chip::RuleKey const & key ) const;

 private:
   void addForm( Chip::Rule const & rule, U32 step, Texts & texts );

   std::size_t mostRules_;
   Story::VtepNames names_;
   Story::RuleTable table_;
   std::vector< RuleLife > rules_;
   std::map< Chip::RuleKey, U32 > last_;  // the number of the last rule that had the entry
   std::size_t leftOut_ = 0;
};

}  // namespace Report
