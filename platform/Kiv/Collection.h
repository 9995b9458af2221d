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
// A look-up remembers the member that it came to. The next one looks there first, then at the
// member behind and at the gap in front: code that asks whether a key is there, reads it and writes
// it searches once, and so does code that goes through keys in their order, be they present or new.
//
// Cost: that of std::map, or two or three comparisons where the last look-up came to this key, its
// gap or the key before it; a walk adds one comparison a member, insertion and removal one test
// while no walk is under way. What comes and goes during walks is noted beside the members, until
// the last walk ends. Threads: none of its own, for look-ups as well (Activity.h).
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

   Collection() = default;
   Collection( Collection const & ) = delete;
   Collection & operator=( Collection const & ) = delete;
   ~Collection() = default;

   std::size_t size() const { return map_.size(); }
   bool has( Key const & key ) const { return isMember( positionOf( key ), key ); }

   T * find( Key const & key ) {
      auto const found = positionOf( key );
      return isMember( found, key ) ? &found->second : nullptr;
   }
   T const * find( Key const & key ) const {
      auto const found = positionOf( key );
      return isMember( found, key ) ? &found->second : nullptr;
   }
   // The value of `key`, or the type's default.
   Read< T > at( Key const & key ) const {
      T const * const found = find( key );
      return found ? *found : absent< T >();
   }

   // The value of `key`, inserted as `value` if absent; tells which.
   std::pair< T *, bool > insert( Key const & key, T value ) {
      auto const at = positionOf( key );
      if ( isMember( at, key ) ) {
         return { &at->second, false };
      }
      last_ = map_.emplace_hint( at, key, std::move( value ) );
      if ( walks_ ) {
         auto & inserted = walks_->meanwhile_.inserted;
         inserted.emplace( &*last_, inserted.size() );
      }
      return { &last_->second, true };
   }

   // Removes `key` into `removed`; false when it is absent.
   bool remove( Key const & key, T & removed ) {
      auto const found = positionOf( key );
      if ( !isMember( found, key ) ) {
         return false;
      }
      last_ = std::next( found );
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
   // The first member that does not come before `key`, or the end.
   Node positionOf( Key const & key ) const {
      if ( last_ != map_.end() && last_->first < key ) {
         ++last_;
         if ( last_ == map_.end() || !( last_->first < key ) ) {
            return last_;
         }
      } else if ( isMember( last_, key ) || last_ == map_.begin() ||
                  std::prev( last_ )->first < key ) {
         return last_;
      }
      last_ = map_.lower_bound( key );
      return last_;
   }
   // Whether the member at the position of `key` is that of the key.
   bool isMember( Node at, Key const & key ) const {
      return at != map_.end() && !( key < at->first );
   }

   // Every walk steps past the member; the member stays readable for those that stand on it.
   void removeUnderWalks( Node found ) {
      for ( Iterator * walk = walks_; walk; walk = walk->outer_ ) {
         if ( walk->next_ == found ) {
            ++walk->next_;
         }
      }
      walks_->meanwhile_.removed.push_front( map_.extract( found ) );
   }

   // What happens while walks are under way.
   struct Meanwhile {
      // The members inserted, numbered in that order; removed ones too: their nodes live as long.
      std::map< Pair const *, std::size_t > inserted;
      std::forward_list< typename Map::node_type > removed;
   };

   mutable Map map_;
   mutable Node last_ = map_.end();      // where the last look-up came to
   mutable Iterator * walks_ = nullptr;  // the innermost of those under way
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
           meanwhile_( outer_ ? outer_->meanwhile_ : own_ ),
           bound_( meanwhile_.inserted.size() ),
           next_( collection.map_.begin() ) {
      collection_.walks_ = this;
      step();
   }
   Iterator( Iterator const & ) = delete;
   Iterator & operator=( Iterator const & ) = delete;
   ~Iterator() {
      QUELM_ASSERT( collection_.walks_ == this );
      collection_.walks_ = outer_;
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
      auto const & inserted = meanwhile_.inserted;
      if ( inserted.size() == bound_ ) {
         return false;
      }
      auto const found = inserted.find( &member );
      return found != inserted.end() && found->second >= bound_;
   }

   Collection const & collection_;
   Quelm::Ptr< Quelm::Counted const > owner_;
   Iterator * outer_;
   // That of the outermost walk, which all share. It goes before the owner does: an entity that
   // dies with it may walk and change this collection again.
   Meanwhile own_;
   Meanwhile & meanwhile_;
   std::size_t bound_;  // members numbered from here on are not visited
   Node next_;
   Pair const * current_ = nullptr;
};

}  // namespace Kiv
