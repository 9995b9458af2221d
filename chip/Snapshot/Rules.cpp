#include <Snapshot/Rules.h>

#include <tuple>

namespace Chip {

namespace {

auto placeOf( Rule const & rule ) {
   return std::tuple( rule.unit, rule.group, rule.id );
}

Rule ruleOf( Unit const & unit, Group const & group, Entry const & entry ) {
   EntryContent const * const written = entry.written();
   return { unit.number(), group.assignment(), entry.id(),
            entry.name(),  written != nullptr, written ? *written : entry.staged() };
}

}  // namespace

Rules rulesOf( Units const & units ) {
   Rules rules;
   for ( auto const & [ number, unit ] : units ) {
      for ( auto const & [ assignment, group ] : unit.groups() ) {
         for ( auto const & [ id, entry ] : group.entries() ) {
            rules.push_back( ruleOf( unit, group, entry ) );
         }
      }
   }
   return rules;
}

RuleChanges changesBetween( Rules const & before, Rules const & after ) {
   RuleChanges changes;
   auto old = before.begin();
   for ( Rule const & rule : after ) {
      while ( old != before.end() && placeOf( *old ) < placeOf( rule ) ) {
         changes.removed.push_back( *old++ );
      }
      if ( old == before.end() || placeOf( rule ) < placeOf( *old ) ) {
         changes.added.push_back( rule );
         continue;
      }
      if ( *old != rule ) {
         changes.changed.push_back( { *old, rule } );
      }
      ++old;
   }
   changes.removed.insert( changes.removed.end(), old, before.end() );
   return changes;
}

}  // namespace Chip
