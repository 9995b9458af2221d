// The hash table for everything that each frame is looked up in: rules, VTEPs, VNIs, MAC addresses,
// routes.
#pragma once

#include <functional>

#include <Quelm/Integers.h>
#include <tsl/robin_map.h>

namespace Chip {

// The table takes the lower bits of a hash; here they depend on all bits of it, so that the hash of
// a number may be the number itself.
template< typename Hash > struct SpreadHash {
   template< typename Key > std::size_t operator()( Key const & key ) const noexcept {
      constexpr U64 spread = 0x9e3779b97f4a7c15;  // 2^64 over the golden ratio
      U64 const hash = Hash()( key );
      return ( hash ^ hash >> 32 ) * spread >> 32;
   }
};

template< typename Key, typename Value, typename Hash = std::hash< Key > >
using HashMap = tsl::robin_map< Key, Value, SpreadHash< Hash > >;

// The value of the key, or nullptr; valid until the map changes.
template< typename Key, typename Value, typename Hash >
Value const * valueIn( HashMap< Key, Value, Hash > const & map, Key const & key ) {
   auto const found = map.find( key );
   return found == map.end() ? nullptr : &found->second;
}

}  // namespace Chip
