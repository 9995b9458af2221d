// Finds the chip's entry for each expected rule.
//
// In a chip that has drifted, the match of an entry proves nothing. But an entry keeps the name
// under which the plug-in obtained it, and rules for different purposes have different names. So a
// rule takes an entry of its name: the one that the plug-in has recorded, else one written as
// expected, else one that is written, else the oldest. A rule that finds no entry by name takes the
// entry that is recorded for it, else one written as expected. No entry serves two rules.
//
// Cost: the rules and entries times a logarithm, and each rule that is not found by name and record
// times the entries.
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
   std::vector< EntryAt > others;                   // entries of no expected rule
};

Matched match( WantedRules const & wanted, Records const & records, Chip::Units const & units );

}  // namespace Audit
