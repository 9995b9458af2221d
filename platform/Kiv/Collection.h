// The storage of a keyed collection attribute.
//
// An ordered map: members are found and walked in the order of their keys, whatever the order they
// came in, so that every walk, trace and dump is the same from run to run. Unlike that of a
// standard map, a walk survives the changes made during it:
//
// - The current member may be removed, and any other member too. A removed current member can
//   still be read until the walk moves on.
// - A member inserted during a walk is not visited by it, wherever its key falls. A member removed
//   and inserted again counts as inserted. Overwriting a value is neither.
// - Walks nest.
//
// The storage knows nothing of entities and notifies nobody; Kiv/Store.h does that.
//
// Cost: that of std::map; a walk adds one comparison a member, insertion and removal one test while
// no walk is under way. The insertions made during a walk are noted beside the members, until the
// last walk ends. Threads: none of its own (Activity.h).
#pragma once

#include <forward_list>
#include <map>
#include <type_traits>
#include <utility>

#include <Quelm/Integers.h>
#include <Quelm/Ptr.h>

namespace Kiv {

// How a value is read: small plain values and references by value, the rest in place.
template< typename T > struct ReadTraits {
   static constexpr bool byValue = std::is_trivially_copyable_v< T > && sizeof( T ) <= 16;
   using Type = std::conditional_t< byValue, T, T const & >;
};
template< typename T > struct ReadTraits< Quelm::Ptr< T > > { using Type = Quelm::Ptr< T >; };
template< typename T > using Read = typename ReadTraits< T >::Type;

// The value that an absent member reads as.
template< typename T > T const & absent() {
   static T const value{};
   return value;
}

template< typename Key, typename T > class Collection {
   using Map = std::map< Key, T >;
   using Node = typename Map::iterator;
   using Pair = typename Map::value_type;

 public:
   class Iterator;
   class Finder;

   Collection() = default;
   Collection( Collection const & ) = delete;
   Collection & operator=( Collection const & ) = delete;
   ~Collection() = default;

   std::size_t size() const { return map_.size(); }
   bool has( Key const & key ) const { return map_.find( key ) != map_.end(); }

   T * find( Key const & key ) {
      auto const found = map_.find( key );
      return found == map_.end() ? nullptr : &found->second;
   }
   T const * find( Key const & key ) const {
      auto const found = map_.find( key );
      return found == map_.end() ? nullptr : &found->second;
   }
   // The value of `key`, or the type's default.
   Read< T > at( Key const & key ) const {
      T const * const found = find( key );
      return found ? *found : absent< T >();
   }

   // The value of `key`, inserted as `value` if absent; tells which.
   std::pair< T *, bool > insert( Key const & key, T value ) {
      auto const at = map_.lower_bound( key );
      if ( at != map_.end() && !( key < at->first ) ) {
         return { &at->second, false };
      }
      auto const born = map_.emplace_hint( at, key, std::move( value ) );
      if ( walks_ ) {
         inserted_.emplace( &*born, inserted_.size() );
      }
      return { &born->second, true };
   }

   // Removes `key` into `removed`; false when it is absent.
   bool remove( Key const & key, T & removed ) {
      auto const found = map_.find( key );
      if ( found == map_.end() ) {
         return false;
      }
      if ( walks_ ) {
         removed = found->second;
         removeUnderWalks( found );
      } else {
         removed = std::move( found->second );
         map_.erase( found );
      }
      return true;
   }

   // The first key in order, or nullptr.
   Key const * firstKey() const { return map_.empty() ? nullptr : &map_.begin()->first; }

 private:
   // Every walk steps past the member; the member stays readable for those that stand on it.
   void removeUnderWalks( Node found ) {
      for ( Iterator * walk = walks_; walk; walk = walk->outer_ ) {
         if ( walk->next_ == found ) {
            ++walk->next_;
         }
      }
      removed_.push_front( map_.extract( found ) );
   }

   mutable Map map_;
   mutable Iterator * walks_ = nullptr;  // the innermost of those under way
   // Until the last walk ends: the members inserted since the first one began, numbered in that
   // order (removed ones too: their nodes live as long), and the nodes of the removed ones.
   mutable std::map< Pair const *, std::size_t > inserted_;
   mutable std::forward_list< typename Map::node_type > removed_;
};

// Looks keys up one after the other. A key that follows the one found before costs one comparison,
// any other a look-up: for walking along two collections with the same kind of key. The collection
// stands still meanwhile.
template< typename Key, typename T > class Collection< Key, T >::Finder {
 public:
   explicit Finder( Collection const & collection )
         : map_( collection.map_ ), next_( map_.begin() ) {}

   // The value of `key`, or nullptr.
   T const * find( Key const & key ) {
      if ( next_ == map_.end() || !( next_->first == key ) ) {
         next_ = map_.find( key );
      }
      return next_ == map_.end() ? nullptr : &( next_++ )->second;
   }

 private:
   Map const & map_;
   typename Map::const_iterator next_;
};

// One walk: `for ( auto iter = x->entryIdIter(); iter; ++iter ) { ... iter.key() ... }`.
//
// Keeps the owner of the collection alive. Lives on the stack; walks end in the reverse order of
// their beginning.
template< typename Key, typename T > class Collection< Key, T >::Iterator {
 public:
   Iterator( Collection const & collection, Quelm::Ptr< Quelm::Counted const > owner )
         : collection_( collection ),
           owner_( std::move( owner ) ),
           outer_( collection.walks_ ),
           bound_( collection.inserted_.size() ),
           next_( collection.map_.begin() ) {
      collection_.walks_ = this;
      step();
   }
   Iterator( Iterator const & ) = delete;
   Iterator & operator=( Iterator const & ) = delete;
   ~Iterator() {
      QUELM_ASSERT( collection_.walks_ == this );
      collection_.walks_ = outer_;
      if ( !outer_ ) {
         lastEnds();
      }
   }

   explicit operator bool() const { return current_ != nullptr; }
   Key const & key() const { return current_->first; }
   T const & value() const { return current_->second; }
   Iterator & operator++() {
      step();
      return *this;
   }

 private:
   friend class Collection;

   void step() {
      auto const end = collection_.map_.end();
      while ( next_ != end && isInsertedSince( *next_ ) ) {
         ++next_;
      }
      current_ = next_ == end ? nullptr : &*next_++;
   }
   // Whether the member came in after this walk had begun.
   bool isInsertedSince( Pair const & member ) const {
      auto const & inserted = collection_.inserted_;
      if ( inserted.size() == bound_ ) {
         return false;
      }
      auto const found = inserted.find( &member );
      return found != inserted.end() && found->second >= bound_;
   }
   void lastEnds() const {
      collection_.inserted_.clear();
      if ( !collection_.removed_.empty() ) {
         // Taken out first: an entity that dies here may walk and change this collection again.
         auto const gone = std::move( collection_.removed_ );
      }
   }

   Collection const & collection_;
   Quelm::Ptr< Quelm::Counted const > owner_;
   Iterator * outer_;
   std::size_t bound_;  // members numbered from here on are not visited
   Node next_;
   Pair const * current_ = nullptr;
};

}  // namespace Kiv
