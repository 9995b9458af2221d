// A hash table in one piece of memory, for what is looked up once per frame: VTEPs, VNIs, MAC
// addresses, routes. Keys are inserted, overwritten and found; they are removed all at once only.
//
// Open addressing with linear probing, at most half full. A lookup touches one or two cache lines
// and allocates nothing; an insert allocates when the table doubles. std::hash may be the identity:
// it is spread here.
#pragma once

#include <functional>
#include <utility>
#include <vector>

#include <Quelm/Integers.h>

namespace Chip {

template< typename Key, typename Value > class FlatMap {
 public:
   std::size_t size() const { return size_; }

   // The value, or nullptr; valid until the next insert.
   Value const * find( Key const & key ) const {
      if ( slots_.empty() ) {
         return nullptr;
      }
      Slot const & slot = slots_[ positionOf( key ) ];
      return slot.isUsed ? &slot.value : nullptr;
   }

   // Inserts or overwrites.
   void set( Key const & key, Value const & value ) {
      if ( 2 * ( size_ + 1 ) > slots_.size() ) {
         grow();
      }
      Slot & slot = slots_[ positionOf( key ) ];
      size_ += slot.isUsed ? 0 : 1;
      slot = { key, value, true };
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

   // Where the key is, or the free slot where it belongs.
   std::size_t positionOf( Key const & key ) const {
      constexpr U64 spread = 0x9e3779b97f4a7c15;
      std::size_t const mask = slots_.size() - 1;
      std::size_t position = std::hash< Key >()( key ) * spread >> 32 & mask;
      while ( slots_[ position ].isUsed && !( slots_[ position ].key == key ) ) {
         position = ( position + 1 ) & mask;
      }
      return position;
   }

   void grow() {
      std::vector< Slot > const old =
         std::exchange( slots_, std::vector< Slot >( slots_.empty() ? 16 : 2 * slots_.size() ) );
      for ( Slot const & slot : old ) {
         if ( slot.isUsed ) {
            slots_[ positionOf( slot.key ) ] = slot;
         }
      }
   }

   std::vector< Slot > slots_;
   std::size_t size_ = 0;
};

}  // namespace Chip
