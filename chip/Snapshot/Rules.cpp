#include <Snapshot/Rules.h>

namespace Chip {

Rule ruleAt( RuleKey const & key, Entry const & entry ) {
   EntryContent const * const written = entry.written();
   return { key, entry.name(), written != nullptr, written ? *written : entry.staged() };
}

Rules rulesOf( Units const & units ) {
   Rules rules;
   units.forEachEntry( [ & ]( RuleKey const & key, Entry const & entry ) {
      rules.push_back( ruleAt( key, entry ) );
   } );
   return rules;
}

RuleChanges changesBetween( Rules const & before, Rules const & after ) {
   RuleChanges changes;
   auto old = before.begin();
   for ( Rule const & rule : after ) {
      while ( old != before.end() && old->key < rule.key ) {
         changes.removed.push_back( *old++ );
      }
      if ( old == before.end() || rule.key < old->key ) {
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
