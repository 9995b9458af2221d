// A hash table in one piece of memory, for what is looked up for every frame: rules, VTEPs, VNIs,
// MAC addresses, routes.
//
// Open addressing with linear probing, at most half full: a lookup touches one or two cache lines.
// It allocates when it doubles, and never otherwise. Removing closes the gap, so that there are no
// marks of what was once there. The hash may be as weak as the identity: it is spread here.
//
// Keys and values are default-constructible and move without throwing. What find() and operator[]
// give is valid until the next key is inserted or removed.
#pragma once

#include <functional>
#include <utility>
#include <vector>

#include <Quelm/Integers.h>

namespace Chip {

template< typename Key, typename Value, typename Hash = std::hash< Key > > class FlatMap {
 public:
   std::size_t size() const { return size_; }
   bool isEmpty() const { return size_ == 0; }

   // The value, or nullptr.
   Value const * find( Key const & key ) const {
      if ( isEmpty() ) {
         return nullptr;
      }
      Slot const & slot = slots_[ positionOf( key ) ];
      return slot.isUsed ? &slot.value : nullptr;
   }
   Value * find( Key const & key ) {
      return const_cast< Value * >( std::as_const( *this ).find( key ) );
   }

   // The value; a new one, if there was none.
   Value & operator[]( Key const & key ) {
      if ( 2 * ( size_ + 1 ) > slots_.size() ) {
         grow();
      }
      Slot & slot = slots_[ positionOf( key ) ];
      if ( !slot.isUsed ) {
         slot.key = key;
         slot.isUsed = true;
         ++size_;
      }
      return slot.value;
   }

   void erase( Key const & key ) {
      if ( !find( key ) ) {
         return;
      }
      std::size_t gap = positionOf( key );
      slots_[ gap ] = {};
      --size_;
      // What comes behind moves into the gap, unless its own place is between the two.
      for ( std::size_t next = after( gap ); slots_[ next ].isUsed; next = after( next ) ) {
         std::size_t const home = homeOf( slots_[ next ].key );
         std::size_t const mask = slots_.size() - 1;
         if ( ( ( next - home ) & mask ) >= ( ( next - gap ) & mask ) ) {
            slots_[ gap ] = std::exchange( slots_[ next ], {} );
            gap = next;
         }
      }
   }

   void clear() {
      slots_.clear();
      size_ = 0;
   }

   // Calls `visit( key, value )` for all, in no order.
   template< typename Visit > void forEach( Visit visit ) const {
      for ( Slot const & slot : slots_ ) {
         if ( slot.isUsed ) {
            visit( slot.key, slot.value );
         }
      }
   }

 private:
   struct Slot {
      Key key{};
      Value value{};
      bool isUsed = false;
   };

   std::size_t after( std::size_t position ) const {
      return ( position + 1 ) & ( slots_.size() - 1 );
   }
   std::size_t homeOf( Key const & key ) const {
      constexpr U64 spread = 0x9e3779b97f4a7c15;  // 2^64 over the golden ratio
      return Hash()( key ) * spread >> 32 & ( slots_.size() - 1 );
   }
   // Where the key is, or the free slot where it belongs.
   std::size_t positionOf( Key const & key ) const {
      std::size_t position = homeOf( key );
      while ( slots_[ position ].isUsed && !( slots_[ position ].key == key ) ) {
         position = after( position );
      }
      return position;
   }

   void grow() {
      constexpr std::size_t smallest = 16;
      std::vector< Slot > old =
         std::exchange( slots_,
                        std::vector< Slot >( slots_.empty() ? smallest : 2 * slots_.size() ) );
      for ( Slot & slot : old ) {
         if ( slot.isUsed ) {
            slots_[ positionOf( slot.key ) ] = std::move( slot );
         }
      }
   }

   std::vector< Slot > slots_;
   std::size_t size_ = 0;
};

}  // namespace Chip
