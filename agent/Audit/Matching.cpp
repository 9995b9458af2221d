#include <Audit/Matching.h>

#include <optional>
#include <string_view>
#include <tuple>

namespace Audit {

namespace {

// The entries that no rule has taken yet. Each is found by its name and by its id, so that a switch
// with many rules takes no time for each pair of a rule and an entry.
class Search {
 public:
   Search( Records const & records, Chip::Units const & units )
         : records_( records ), entries_( entriesOf( units ) ), isTaken_( entries_.size() ) {
      for ( std::size_t n = 0; n < entries_.size(); ++n ) {
         EntryAt const & at = entries_[ n ];
         byName_[ { at.unit, at.group, at.entry->name() } ].push_back( n );
         byId_[ { at.unit, at.group, at.entry->id() } ].push_back( n );
      }
   }

   // Each takes the best of the free entries that are meant.
   Chip::Entry const * takeByName( RuleFor const & what, WantedRule const & rule ) {
      auto const named = byName_.find( { what.unit, what.group(), rule.name } );
      return named == byName_.end() ? nullptr : take( what, rule, named->second );
   }
   Chip::Entry const * takeByRecord( RuleFor const & what, WantedRule const & rule ) {
      auto const record = records_.entries.find( what );
      if ( record == records_.entries.end() ) {
         return nullptr;
      }
      auto const recorded = byId_.find( { what.unit, what.group(), record->second.id } );
      return recorded == byId_.end() ? nullptr : take( what, rule, recorded->second );
   }
   Chip::Entry const * takeByContent( RuleFor const & what, WantedRule const & rule ) {
      Numbers written;
      for ( std::size_t n = 0; n < entries_.size(); ++n ) {
         EntryAt const & at = entries_[ n ];
         if ( !isTaken_[ n ] && at.unit == what.unit && at.group == what.group() &&
              isWrittenAs( rule, *at.entry ) ) {
            written.push_back( n );
         }
      }
      return take( what, rule, written );
   }

   std::vector< EntryAt > left() const {
      std::vector< EntryAt > left;
      for ( std::size_t n = 0; n < entries_.size(); ++n ) {
         if ( !isTaken_[ n ] ) {
            left.push_back( entries_[ n ] );
         }
      }
      return left;
   }

 private:
   using Numbers = std::vector< std::size_t >;  // of entries
   template< typename Key >
   using Index = std::map< std::tuple< U16, Vornal::TcamGroupAssignment, Key >, Numbers >;

   Chip::Entry const * take( RuleFor const & what, WantedRule const & rule,
                             Numbers const & numbers ) {
      std::optional< std::size_t > best;
      for ( std::size_t const n : numbers ) {
         if ( !isTaken_[ n ] && ( !best || rank( what, rule, *entries_[ n ].entry ) >
                                              rank( what, rule, *entries_[ *best ].entry ) ) ) {
            best = n;
         }
      }
      if ( !best ) {
         return nullptr;
      }
      isTaken_[ *best ] = true;
      return entries_[ *best ].entry;
   }

   int rank( RuleFor const & what, WantedRule const & rule, Chip::Entry const & entry ) const {
      auto const record = records_.entries.find( what );
      if ( record != records_.entries.end() && record->second.id == entry.id() ) {
         return 3;
      }
      return isWrittenAs( rule, entry ) ? 2 : entry.written() ? 1 : 0;
   }

   static bool isWrittenAs( WantedRule const & rule, Chip::Entry const & entry ) {
      return entry.written() && *entry.written() == rule.content;
   }

   Records const & records_;
   std::vector< EntryAt > entries_;
   std::vector< bool > isTaken_;
   Index< std::string_view > byName_;
   Index< U32 > byId_;
};

// Finds an entry for each rule that has none yet.
template< typename Take >
void find( WantedRules const & wanted, Matched & matched, Take const & take ) {
   for ( auto const & [ what, rule ] : wanted ) {
      if ( !matched.rules.contains( what ) ) {
         if ( auto const * const entry = take( what, rule ) ) {
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
   find( wanted, matched, [ & ]( auto const & what, auto const & rule ) {
      return search.takeByName( what, rule );
   } );
   find( wanted, matched, [ & ]( auto const & what, auto const & rule ) {
      return search.takeByRecord( what, rule );
   } );
   find( wanted, matched, [ & ]( auto const & what, auto const & rule ) {
      return search.takeByContent( what, rule );
   } );
   matched.others = search.left();
   return matched;
}

}  // namespace Audit
