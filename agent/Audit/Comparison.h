// Compares state, records and chip with each other.
#pragma once

#include <Audit/Audit.h>
#include <Audit/Matching.h>
#include <Snapshot/RuleText.h>

namespace Audit {

Report compare( State const & state, Records const & records, Chip::Units const & units );

// The input of all comparisons.
struct Sides {
   State const & state;
   Records const & records;
   Chip::Units const & units;
   WantedRules const & wanted;
   Matched const & matched;
   Chip::NameOf names;  // of the numbers in rules
};

using Story::Difference;
using Story::DifferenceKind;
using Differences = std::vector< Difference >;

// --- The chip against the state
void compareRules( Sides const & sides, Differences & found );
// --- The records against state and chip
void compareRecords( Sides const & sides, Differences & found );

// Why the chip lacks an expected rule that no record names.
struct Absence {
   DifferenceKind kind = DifferenceKind::missingRule;
   std::string reason;  // empty: none is known
};
Absence whyAbsent( Sides const & sides, RuleFor const & what );
// The group is full, or was full.
bool isForLackOfRoom( DifferenceKind kind );

// Why the state does not expect a rule for this purpose.
std::string whyUnexpected( State const & state, RuleFor const & what );

// Begins a difference about a rule; the caller fills in the rest.
Difference differenceFor( RuleFor const & what, DifferenceKind kind, std::string rule );

// The value of the key, or nullptr.
template< typename Table >
auto const * findIn( Table const & table, typename Table::key_type const & key ) {
   auto const found = table.find( key );
   return found == table.end() ? nullptr : &found->second;
}

}  // namespace Audit
