// A frame beside every written rule of one group: which rules match, which one wins and by what,
// and by which qualifiers the others miss the frame.
//
// The lookup (FieldProcessor/TupleSpaceLookup.h) finds the winner by hashing and never looks at the
// rules that lose. Here each rule's qualifiers are compared one by one, as the tables of
// FieldProcessor/Fields.h describe them. The two have nothing in common but those tables, so each
// can be held against the other.
//
// Cost: linear in the number of rules.
#pragma once

#include <FieldProcessor/Group.h>
#include <FieldProcessor/RuleKey.h>

namespace Chip {

// A qualifier by which a rule misses a frame, with the field that the frame has.
struct FailedQualifier {
   Qualifier qualifier{};
   Match expected{};
   U32 got = 0;
   U32 gotModId = 0;  // of a qualifier with a module id

   friend bool operator==( FailedQualifier const &, FailedQualifier const & ) = default;
};

struct RuleComparison {
   RuleKey rule{};
   std::optional< U32 > priority{};
   std::vector< FailedQualifier > failed{};  // in the order of the qualifiers' table

   bool isMatch() const { return failed.empty(); }

   friend bool operator==( RuleComparison const &, RuleComparison const & ) = default;
};

// Why the winner stands above the second rule that matches.
enum class WonBy : U8 {
   OnlyMatch,       // there is no second one
   NoPriority,      // which stands above all priorities; the second has one
   HigherPriority,  // than the second
   Older,           // the same priority, or none on both sides; obtained earlier
};

struct GroupComparison {
   // Those that match, as the lookup ranks them; then those that miss, by the number of their
   // failed qualifiers and, where that is equal, as the lookup would rank them.
   std::vector< RuleComparison > rules{};
   std::size_t leftOut = 0;         // rules that miss, beyond the limit
   std::optional< WonBy > wonBy{};  // none when no rule matches

   // The winner, or nullptr.
   RuleComparison const * winner() const { return wonBy ? &rules.front() : nullptr; }

   friend bool operator==( GroupComparison const &, GroupComparison const & ) = default;
};

// The written rules of that unit's group beside a frame's fields; none for nullptr. At most
// `nearMisses` of those that miss are told.
GroupComparison compare( Group const * group, U16 unit, KeyFields const & frame,
                         std::size_t nearMisses );

}  // namespace Chip
