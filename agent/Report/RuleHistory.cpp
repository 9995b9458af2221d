#include <Report/RuleHistory.h>

#include <algorithm>
#include <functional>
#include <tuple>

#include <Snapshot/RuleText.h>

namespace Report {

namespace {

std::size_t columnOf( Story::Table const & table, std::string const & name ) {
   auto const found = std::find( table.columns.begin(), table.columns.end(), name );
   return static_cast< std::size_t >( found - table.columns.begin() );
}

}  // namespace

std::optional< U32 > RuleHistory::at( Chip::RuleKey const & key ) const {
   auto const last = last_.find( key );
   bool const isThere = last != last_.end() && !rules_[ last->second ].until;
   return isThere ? std::optional( last->second ) : std::nullopt;
}

void RuleHistory::onEvent( Story::RuleIs const & event, U32 step ) {
   Chip::RuleKey const & key = event.rule.key;
   table_.onEvent( event );
   if ( at( key ) ) {
      return;
   }
   last_.erase( key );
   if ( rules_.size() == mostRules_ ) {
      ++leftOut_;
      return;
   }
   last_[ key ] = static_cast< U32 >( rules_.size() );
   rules_.push_back( { .key = key, .since = step } );
}

// A rule that comes and goes within a step has the form that it had last.
void RuleHistory::onEvent( Story::RuleGone const & event, U32 step, Texts & texts ) {
   if ( auto const number = at( event.key ) ) {
      if ( rules_[ *number ].forms.empty() ) {
         addForm( table_.rules().at( event.key ), step, texts );
      }
      rules_[ *number ].until = step;
   }
   table_.onEvent( event );
}

void RuleHistory::onEvent( Story::Table const & rules, U32 step, Texts & texts ) {
   std::size_t const unit = columnOf( rules, "unit" );
   std::size_t const group = columnOf( rules, "group" );
   std::size_t const entry = columnOf( rules, "entry" );
   std::size_t const because = columnOf( rules, "because" );
   std::map< std::tuple< std::string, std::string, std::string >, std::string > grounds;
   for ( auto const & row : rules.rows ) {
      grounds[ { row[ unit ].words(), row[ group ].words(), row[ entry ].words() } ] =
         row[ because ].words();
   }
   for ( auto const & [ key, number ] : last_ ) {
      RuleLife & rule = rules_[ number ];
      auto const ground = grounds.find(
         { std::to_string( key.unit ), Chip::groupText( key.group ), std::to_string( key.id ) } );
      if ( rule.until || ground == grounds.end() ) {
         continue;
      }
      TextId const text = texts.idOf( ground->second );
      if ( rule.grounds.empty() || rule.grounds.back().because != text ) {
         rule.grounds.push_back( { step, text } );
      }
   }
}

void RuleHistory::addForm( Chip::Rule const & rule, U32 step, Texts & texts ) {
   auto const number = at( rule.key );
   if ( number ) {
      rules_[ *number ].forms.push_back(
         { .step = step,
           .name = texts.idOf( rule.name ),
           .matches = texts.idOf( Chip::qualifiersText( rule.content, std::cref( names_ ) ) ),
           .does = texts.idOf( Chip::actionsText( rule.content ) ),
           .priority = rule.content.priority,
           .isWritten = rule.isWritten } );
   }
}

std::vector< RuleChange > RuleHistory::changes( U32 step, Texts & texts ) {
   Chip::RuleChanges const changes = table_.changes();
   std::vector< RuleChange > result;
   auto const add = [ & ]( RuleChange::What what, Chip::RuleKey const & key ) {
      auto const last = last_.find( key );
      if ( last != last_.end() ) {
         result.push_back( { what, last->second } );
      }
   };
   for ( Chip::Rule const & rule : changes.added ) {
      addForm( rule, step, texts );
      add( RuleChange::What::Added, rule.key );
   }
   for ( Chip::RuleChange const & change : changes.changed ) {
      addForm( change.after, step, texts );
      add( RuleChange::What::Changed, change.after.key );
   }
   for ( Chip::Rule const & rule : changes.removed ) {
      add( RuleChange::What::Removed, rule.key );
   }
   return result;
}

}  // namespace Report
