// Any sequence of changes made during walks, nested ones included, against a model: a std::map from
// key to value and birth number, and walks that search it anew at each step.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <ostream>
#include <vector>

#include <rapidcheck/gtest.h>

#include "support/Switch.h"

namespace KivWalkModelTest {

using Quelm::Ptr;
using Support::Switch;

struct WalkStep {
   enum Kind { Set, Delete, DeleteCurrent, DeleteAll, Walk, Advance } kind;
   U16 key;
   U32 value;
};

std::ostream & operator<<( std::ostream & out, WalkStep const & step ) {
   static char const * const name[] = { "Set",       "Delete", "DeleteCurrent",
                                        "DeleteAll", "Walk",   "Advance" };
   return out << name[ step.kind ] << ' ' << step.key << ' ' << step.value;
}

// What is visited, removed and found, in order.
using Story = std::vector< std::pair< U16, U32 > >;

class Model {
 public:
   void set( U16 key, U32 value ) {
      auto & member = map_[ key ];
      if ( !member ) {
         member = std::make_shared< Member >( Member{ key, 0, births_++ } );
      }
      member->value = value;
   }
   U32 remove( U16 key ) {
      auto const node = map_.extract( key );
      return node ? node.mapped()->value : 0;
   }
   void removeAll() { map_.clear(); }

   struct Member {
      U16 key;
      U32 value;
      int born;
   };
   // Shares the member that it stands on, which can be read after it has been removed.
   struct Walk {
      int bound;
      int key;
      std::shared_ptr< Member const > here;
   };
   Walk walk() const { return { births_, -1, nullptr }; }
   void advance( Walk & walk ) const {
      auto const next = std::find_if( map_.begin(), map_.end(), [ & ]( auto const & entry ) {
         return entry.first > walk.key && entry.second->born < walk.bound;
      } );
      walk.here = next == map_.end() ? nullptr : next->second;
      walk.key = next == map_.end() ? walk.key : next->first;
   }
   Story all() const {
      Story story;
      for ( auto const & [ key, member ] : map_ ) {
         story.emplace_back( key, member->value );
      }
      return story;
   }

 private:
   std::map< U16, std::shared_ptr< Member > > map_;
   int births_ = 0;
};

// Plays the steps from `at` on within one walk; a step Walk plays the following ones within a walk
// of its own. Both players return when their walk is over or the steps are.
class ModelPlayer {
 public:
   explicit ModelPlayer( std::vector< WalkStep > const & steps ) : steps_( steps ) {}

   void walk() {
      Model::Walk walk = model_.walk();
      model_.advance( walk );
      while ( walk.here && at_ < steps_.size() ) {
         story_.emplace_back( walk.here->key, walk.here->value );
         if ( play( steps_[ at_++ ], story_.back().first ) ) {
            model_.advance( walk );
         }
      }
   }
   // True when the walk is to move on.
   bool play( WalkStep const & step, U16 current ) {
      switch ( step.kind ) {
      case WalkStep::Set: model_.set( step.key, step.value ); break;
      case WalkStep::Delete: story_.emplace_back( step.key, model_.remove( step.key ) ); break;
      case WalkStep::DeleteCurrent:
         story_.emplace_back( current, model_.remove( current ) );
         return true;
      case WalkStep::DeleteAll: model_.removeAll(); break;
      case WalkStep::Walk: walk(); break;
      case WalkStep::Advance: return true;
      }
      return false;
   }

   Model model_;
   Story story_;
   std::size_t at_ = 0;

 private:
   std::vector< WalkStep > const & steps_;
};

class CollectionPlayer {
 public:
   explicit CollectionPlayer( std::vector< WalkStep > const & steps ) : steps_( steps ) {}

   void walk() {
      auto iter = switch_->noteIter();
      while ( iter && at_ < steps_.size() ) {
         story_.emplace_back( iter.key(), number( iter.value() ) );
         if ( play( steps_[ at_++ ], iter.key() ) ) {
            ++iter;
         }
      }
   }
   bool play( WalkStep const & step, U16 current ) {
      switch ( step.kind ) {
      case WalkStep::Set: set( step.key, step.value ); break;
      case WalkStep::Delete:
         story_.emplace_back( step.key, number( switch_->noteDel( step.key ) ) );
         break;
      case WalkStep::DeleteCurrent:
         story_.emplace_back( current, number( switch_->noteDel( current ) ) );
         return true;
      case WalkStep::DeleteAll: switch_->noteDelAll(); break;
      case WalkStep::Walk: walk(); break;
      case WalkStep::Advance: return true;
      }
      return false;
   }
   void set( U16 key, U32 value ) { switch_->noteIs( key, text( value ) ); }
   Story all() const {
      Story story;
      for ( auto iter = switch_->noteIter(); iter; ++iter ) {
         story.emplace_back( iter.key(), number( iter.value() ) );
      }
      return story;
   }

   Story story_;
   std::size_t at_ = 0;

 private:
   // Long enough to live outside the string object, so that a stale read cannot pass unseen.
   static std::string text( U32 value ) {
      return "a note of some length, number " + std::to_string( value );
   }
   static U32 number( std::string const & text ) {
      return text.empty() ? 0
                          : static_cast< U32 >( std::stoul( text.substr( text.rfind( ' ' ) ) ) );
   }

   std::vector< WalkStep > const & steps_;
   Ptr< Switch > switch_ = Quelm::make< Switch >( "leaf1" );
};

rc::Gen< std::vector< WalkStep > > anySteps() {
   auto const kind = rc::gen::weightedElement< WalkStep::Kind >( { { 6, WalkStep::Set },
                                                                   { 5, WalkStep::Delete },
                                                                   { 3, WalkStep::DeleteCurrent },
                                                                   { 1, WalkStep::DeleteAll },
                                                                   { 3, WalkStep::Walk },
                                                                   { 6, WalkStep::Advance } } );
   return rc::gen::container< std::vector< WalkStep > >(
      rc::gen::construct< WalkStep >( kind, rc::gen::inRange< U16 >( 0, 12 ),
                                      rc::gen::inRange< U32 >( 1, 1000 ) ) );
}

RC_GTEST_PROP( KivWalkModel, AnyChangesDuringAnyWalksAreSeenAsByTheModel, () ) {
   auto const initial =
      *rc::gen::container< std::vector< U16 > >( rc::gen::inRange< U16 >( 0, 12 ) );
   auto const steps = *anySteps();
   ModelPlayer model( steps );
   CollectionPlayer collection( steps );
   for ( U16 const key : initial ) {
      model.model_.set( key, key + 1U );
      collection.set( key, key + 1U );
   }
   while ( model.at_ < steps.size() ) {
      std::size_t const before = model.at_;
      model.walk();
      collection.walk();
      RC_ASSERT( collection.at_ == model.at_ );
      RC_ASSERT( collection.story_ == model.story_ );
      RC_ASSERT( collection.all() == model.model_.all() );
      if ( model.at_ == before ) {
         break;  // nothing left to stand on
      }
   }
}

}  // namespace KivWalkModelTest
