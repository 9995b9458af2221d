// Tuple space search: the lookup that serves.
//
// Comparing with one entry after the other would cost as many comparisons as there are entries, for
// every frame. But rules are written to a few patterns ("by source gport", "by VNI and packet
// resolution"), and entries of one pattern have the same masks. So the entries are kept by their
// masks: for each different set of masks a hash table, keyed by the data under those masks. A
// lookup masks the frame's fields once per table, and takes the best of the entries found
// (Srinivasan, Suri and Varghese, "Packet Classification using Tuple Space Search", 1999).
//
// Invariants:
// - Entries with the same masks and data stand in one place, the one that wins in front.
// - A table that has become empty is dropped, so that old patterns cost nothing.
//
// Cost: a lookup is one hash lookup per table and allocates nothing. The worst case is entries that
// all have different masks; a lookup is then linear in their number. Writing an entry is constant,
// and allocates only where entries have the same masks and data.
#pragma once

#include <vector>

#include <FieldProcessor/Lookup.h>
#include <HashMap/HashMap.h>

namespace Chip {

class TupleSpaceLookup final : public Lookup {
 public:
   void insert( Entry const & entry ) override;
   void remove( Entry const & entry ) override;
   Entry const * find( KeyFields const & frame ) const override;

 private:
   // A frame's fields, or a rule's data or masks, by twos, each two as one number.
   struct Key {
      static constexpr std::size_t kPairs = kKeyFields / 2;
      std::array< U64, kPairs > pairs{};

      Key() = default;
      explicit Key( KeyFields const & fields ) {
         for ( std::size_t n = 0; n < kPairs; ++n ) {
            pairs[ n ] = U64{ fields[ 2 * n + 1 ] } << 32 | fields[ 2 * n ];
         }
      }
      Key under( Key const & masks ) const {
         Key result;
         for ( std::size_t n = 0; n < kPairs; ++n ) {
            result.pairs[ n ] = pairs[ n ] & masks.pairs[ n ];
         }
         return result;
      }

      // A lookup for each copy of each frame makes this the most frequent comparison of all.
      friend bool operator==( Key const & a, Key const & b ) {
         U64 difference = 0;
         for ( std::size_t n = 0; n < kPairs; ++n ) {
            difference |= a.pairs[ n ] ^ b.pairs[ n ];
         }
         return difference == 0;
      }
   };

   struct Hash {
      std::size_t operator()( Key const & key ) const noexcept;
   };

   struct Candidate {
      Precedence precedence;
      Entry const * entry;
   };
   // Entries with the same masks and data.
   struct Candidates {
      Candidate winner;
      std::vector< Candidate > others{};
   };

   // The entries of one set of masks.
   struct Table {
      Key masks;
      HashMap< Key, Candidates, Hash > byData{};
   };

   Table & tableFor( Key const & masks );

   std::vector< Table > tables_;
};

inline std::size_t TupleSpaceLookup::Hash::operator()( Key const & key ) const noexcept {
   constexpr U64 odd = 0xff51afd7ed558ccd;  // an odd number without pattern
   U64 mixed = 0;
   for ( U64 const pair : key.pairs ) {
      mixed = ( mixed ^ mixed >> 32 ) * odd ^ pair;
   }
   return static_cast< std::size_t >( mixed ^ mixed >> 32 );
}

}  // namespace Chip
