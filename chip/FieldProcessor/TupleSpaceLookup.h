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
// - Of the entries with the same masks and data only the one that wins is met by frames.
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
   struct Hash {
      std::size_t operator()( KeyFields const & fields ) const noexcept { return fields.hash(); }
   };

   struct Candidate {
      Precedence precedence;
      Entry const * entry;
   };
   // The entries of one set of masks, by their data.
   struct Table {
      KeyFields masks;
      HashMap< KeyFields, Candidate, Hash > winners{};
      // Those that stand behind a winner with the same data. They are few, and no frame meets them.
      HashMap< KeyFields, std::vector< Candidate >, Hash > others{};
   };

   Table & tableFor( KeyFields const & masks );

   std::vector< Table > tables_;
};

}  // namespace Chip
