#include <Audit/Matching.h>

namespace Audit {

namespace {

// The entries that no rule has taken yet.
class Search {
 public:
   Search( Records const & records, Chip::Units const & units )
         : records_( records ), free_( entriesOf( units ) ) {}

   // Takes the best of the entries for which `matches` holds.
   template< typename Matches >
   Chip::Entry const * take( RuleFor const & what, WantedRule const & rule,
                             Matches const & matches ) {
      auto best = free_.end();
      for ( auto at = free_.begin(); at != free_.end(); ++at ) {
         if ( at->unit == what.unit && at->group == what.group() && matches( *at->entry ) &&
              ( best == free_.end() ||
                rank( what, rule, *at->entry ) > rank( what, rule, *best->entry ) ) ) {
            best = at;
         }
      }
      if ( best == free_.end() ) {
         return nullptr;
      }
      Chip::Entry const * const found = best->entry;
      free_.erase( best );
      return found;
   }

   bool isRecorded( RuleFor const & what, Chip::Entry const & entry ) const {
      auto const record = records_.entries.find( what );
      return record != records_.entries.end() && record->second.id == entry.id();
   }

   std::vector< EntryAt > left() && { return std::move( free_ ); }

 private:
   int rank( RuleFor const & what, WantedRule const & rule, Chip::Entry const & entry ) const {
      if ( isRecorded( what, entry ) ) {
         return 3;
      }
      return isWrittenAs( rule, entry ) ? 2 : entry.written() ? 1 : 0;
   }

   static bool isWrittenAs( WantedRule const & rule, Chip::Entry const & entry ) {
      return entry.written() && *entry.written() == rule.content;
   }

   Records const & records_;
   std::vector< EntryAt > free_;
};

// Finds an entry for each rule that has none yet, among those for which `matches` holds.
template< typename Matches >
void find( WantedRules const & wanted, Search & search, Matched & matched,
           Matches const & matches ) {
   for ( auto const & [ what, rule ] : wanted ) {
      if ( !matched.rules.contains( what ) ) {
         auto const * const entry =
            search.take( what, rule, [ &, &what = what, &rule = rule ]( Chip::Entry const & one ) {
               return matches( what, rule, one );
            } );
         if ( entry ) {
            matched.rules[ what ] = entry;
         }
      }
   }
}

}  // namespace

std::vector< EntryAt > entriesOf( Chip::Units const & units ) {
   std::vector< EntryAt > entries;
   units.forEachEntry( [ & ]( Chip::RuleKey const & key, Chip::Entry const & entry ) {
      entries.push_back( { key.unit, key.group, &entry } );
   } );
   return entries;
}

Chip::Group const * groupOf( Chip::Units const & units, U16 unit,
                             Vornal::TcamGroupAssignment assignment ) {
   for ( auto const & [ number, one ] : units ) {
      auto const group = one.groups().find( assignment );
      if ( number == unit && group != one.groups().end() ) {
         return &group->second;
      }
   }
   return nullptr;
}

Matched match( WantedRules const & wanted, Records const & records, Chip::Units const & units ) {
   Search search( records, units );
   Matched matched;
   find( wanted, search, matched, []( auto const &, auto const & rule, auto const & entry ) {
      return entry.name() == rule.name;
   } );
   find( wanted, search, matched, [ & ]( auto const & what, auto const &, auto const & entry ) {
      return search.isRecorded( what, entry );
   } );
   find( wanted, search, matched, []( auto const &, auto const & rule, auto const & entry ) {
      return entry.written() && *entry.written() == rule.content;
   } );
   matched.others = std::move( search ).left();
   return matched;
}

}  // namespace Audit
