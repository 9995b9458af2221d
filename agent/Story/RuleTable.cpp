#include <Story/RuleTable.h>

#include <utility>

namespace Story {

void RuleTable::remember( RuleKey const & key ) {
   auto const found = rules_.find( key );
   before_.try_emplace( key,
                        found == rules_.end() ? std::nullopt : std::optional( found->second ) );
}

void RuleTable::onEvent( RuleIs const & event ) {
   remember( event.rule.key );
   rules_.insert_or_assign( event.rule.key, event.rule );
}

void RuleTable::onEvent( RuleGone const & event ) {
   remember( event.key );
   rules_.erase( event.key );
}

RuleChanges RuleTable::changes() {
   RuleChanges changes;
   for ( auto const & [ key, before ] : std::exchange( before_, {} ) ) {
      auto const now = rules_.find( key );
      if ( now == rules_.end() ) {
         if ( before ) {
            changes.removed.push_back( *before );
         }
      } else if ( !before ) {
         changes.added.push_back( now->second );
      } else if ( *before != now->second ) {
         changes.changed.push_back( { *before, now->second } );
      }
   }
   return changes;
}

}  // namespace Story
