#include <Story/RuleTable.h>

#include <utility>

namespace Story {

void RuleTable::remember( Chip::RuleKey const & key ) {
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

Chip::RuleChanges RuleTable::changes() {
   Chip::Rules before;
   Chip::Rules after;
   for ( auto const & [ key, rule ] : std::exchange( before_, {} ) ) {
      if ( rule ) {
         before.push_back( *rule );
      }
      if ( auto const now = rules_.find( key ); now != rules_.end() ) {
         after.push_back( now->second );
      }
   }
   return Chip::changesBetween( before, after );
}

}  // namespace Story
