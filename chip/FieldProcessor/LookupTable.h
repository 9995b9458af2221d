// Ternary lookup in software: the written entries of one group, found by a frame's fields.
//
// A TCAM compares a frame with all entries at once. Comparing with one after the other would cost
// as many comparisons as there are entries, for every frame. But rules are written to a few
// patterns ("by source gport", "by VNI and packet resolution"), and entries of one pattern have the
// same masks. So the entries are kept by their masks: for each different set of masks a hash table,
// keyed by the data under those masks. A lookup masks the frame's fields once per table, and takes
// the best of the entries found.
//
// Invariants:
// - Each written entry is in one table, under its written copy. It must be removed before that copy
//   changes.
// - Entries with the same masks and data stand in one list, the one that wins in front.
// - A table that has become empty is dropped, so that old patterns cost nothing.
//
// Cost: a lookup is one hash lookup per table and allocates nothing. The worst case is entries that
// all have different masks; a lookup is then linear in their number. Writing an entry is constant.
#pragma once

#include <compare>
#include <optional>
#include <vector>

#include <FieldProcessor/Entry.h>
#include <HashMap/HashMap.h>

namespace Chip {

// A frame's fields, or a rule's data or masks.
struct LookupKey {
   KeyFields fields{};

   // Fields by twos, each two as one number.
   static constexpr std::size_t kPairs = kKeyFields / 2;
   constexpr U64 pair( std::size_t n ) const {
      return U64{ fields[ 2 * n + 1 ] } << 32 | fields[ 2 * n ];
   }

   // A lookup for each copy of each frame makes this the most frequent comparison of all.
   friend constexpr bool operator==( LookupKey const & a, LookupKey const & b ) {
      U64 difference = 0;
      for ( std::size_t n = 0; n < kPairs; ++n ) {
         difference |= a.pair( n ) ^ b.pair( n );
      }
      return difference == 0;
   }
};

// Where an entry stands among those that match. Less stands above.
struct Precedence {
   U64 belowDefault;  // 0 for the default priority, then 1 for the highest explicit one, and so on
   U32 id;

   friend auto operator<=>( Precedence const &, Precedence const & ) = default;
};
Precedence precedenceOf( std::optional< U32 > const & priority, U32 id );

class LookupTable {
 public:
   void insert( Entry const & entry );
   void remove( Entry const & entry );

   // The entry that wins, or nullptr.
   Entry const * find( LookupKey const & frame ) const;

 private:
   struct Candidate {
      Precedence precedence;
      Entry const * entry;
   };
   using Candidates = std::vector< Candidate >;  // never empty, the winner in front

   struct Hash {
      std::size_t operator()( LookupKey const & key ) const noexcept {
         constexpr U64 odd = 0xff51afd7ed558ccd;  // an odd number without pattern
         U64 mixed = 0;
         for ( std::size_t n = 0; n < LookupKey::kPairs; ++n ) {
            mixed = ( mixed ^ mixed >> 32 ) * odd ^ key.pair( n );
         }
         return static_cast< std::size_t >( mixed ^ mixed >> 32 );
      }
   };

   // The entries of one set of masks.
   struct Table {
      LookupKey masks;
      HashMap< LookupKey, Candidates, Hash > byData;
   };

   Table & tableFor( LookupKey const & masks );

   std::vector< Table > tables_;
};

}  // namespace Chip
