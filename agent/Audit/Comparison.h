// Holds state, records and chip against each other.
#pragma once

#include <Audit/Audit.h>
#include <Audit/Matching.h>

namespace Audit {

Report compare( State const & state, Records const & records, Chip::Units const & units );

// What the comparisons share.
struct Sides {
   State const & state;
   Records const & records;
   Chip::Units const & units;
   WantedRules const & wanted;
   Matched const & matched;
};

using Story::Difference;
using Story::DifferenceKind;
using Differences = std::vector< Difference >;

// --- The chip against the state
void compareRules( Sides const & sides, Differences & found );
// --- The records against state and chip
void compareRecords( Sides const & sides, Differences & found );

// Why the chip does not have a rule that the state calls for, and that is in no record.
struct Absence {
   DifferenceKind kind = DifferenceKind::missingRule;
   std::string reason;  // empty: there is none
};
Absence whyAbsent( Sides const & sides, RuleFor const & what );

// Why the state does not call for a rule that is for this.
std::string whyNot( State const & state, RuleFor const & what );

// A difference about a rule, with the rest to be filled in.
Difference about( RuleFor const & what, DifferenceKind kind, std::string rule );

// What is asked for in the table, or nullptr.
template< typename Table >
auto const * findIn( Table const & table, typename Table::key_type const & key ) {
   auto const found = table.find( key );
   return found == table.end() ? nullptr : &found->second;
}

}  // namespace Audit
