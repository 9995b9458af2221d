// Which entry of the chip is the rule that the state calls for.
//
// A chip that has drifted cannot be asked by what its entries match. An entry keeps the name under
// which it was obtained, and the names of rules that are for different things differ, so the name
// tells; of several entries of that name the one that the plug-in has recorded, else one that is
// written as wanted, else one that is written, else the oldest. A rule that is not found by name is
// the entry that is recorded for it, else one that is written as wanted. No entry is two rules.
//
// Cost: the rules wanted times the entries of their group.
#pragma once

#include <map>
#include <vector>

#include <Audit/Records.h>
#include <Audit/WantedRules.h>
#include <FieldProcessor/Unit.h>

namespace Audit {

// An entry of a group on a unit.
struct EntryAt {
   U16 unit = 0;
   Vornal::TcamGroupAssignment group = 0;
   Chip::Entry const * entry = nullptr;
};

// All entries of both groups, by unit, group and id.
std::vector< EntryAt > entriesOf( Chip::Units const & units );

// The group on the unit, or nullptr.
Chip::Group const * groupOf( Chip::Units const & units, U16 unit,
                             Vornal::TcamGroupAssignment assignment );

struct Matched {
   std::map< RuleFor, Chip::Entry const * > rules;  // those found
   std::vector< EntryAt > others;                   // entries that are none of the rules wanted
};

Matched match( WantedRules const & wanted, Records const & records, Chip::Units const & units );

}  // namespace Audit
