// The obvious lookup: one entry after the other, in the order of their precedence; the first that
// matches wins.
//
// Cost: linear in the number of entries, for a lookup and for a change.
#pragma once

#include <vector>

#include <FieldProcessor/Lookup.h>

namespace Chip {

class LinearLookup final : public Lookup {
 public:
   void insert( Entry const & entry ) override;
   void remove( Entry const & entry ) override;
   Entry const * find( KeyFields const & frame ) const override;

 private:
   struct Written {
      Precedence precedence;
      Ternary ternary;
      Entry const * entry;
   };
   std::vector< Written > entries_;  // the one that wins in front
};

}  // namespace Chip
