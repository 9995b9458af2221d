// Ternary lookup in software: the written entries of one group, found by a frame's fields.
//
// An entry matches a frame when the frame's fields equal the entry's data wherever the entry's
// masks have a bit. Of those that match one wins: the one with the highest priority, and between
// equals the one obtained first. A TCAM compares a frame with all entries at once; software has to
// be clever instead, or slow.
//
// Two engines are behind this interface, and for the same entries and the same frame they find the
// same winner:
//
// - LinearLookup compares with one entry after the other. It is what a reader believes at once, and
//   what tests hold the other one against.
// - TupleSpaceLookup is what serves.
//
// Invariant, the caller's: an entry is inserted under its written copy, once, and removed before
// that copy changes. Failures: none. Threads: one writes; readers in between see whole values.
#pragma once

#include <compare>
#include <memory>

#include <FieldProcessor/Entry.h>

namespace Chip {

class Lookup {
 public:
   Lookup() = default;
   Lookup( Lookup const & ) = delete;
   Lookup & operator=( Lookup const & ) = delete;
   virtual ~Lookup() = default;

   virtual void insert( Entry const & entry ) = 0;
   virtual void remove( Entry const & entry ) = 0;

   // The entry that wins, or nullptr.
   virtual Entry const * find( KeyFields const & frame ) const = 0;
};

enum class LookupEngine : U8 { Linear, TupleSpace };

std::unique_ptr< Lookup > lookupNew( LookupEngine engine );

// --- For the engines

// Where an entry stands among those that match. Less stands above.
struct Precedence {
   U64 belowDefault;  // 0 for the default priority, then 1 for the highest explicit one, and so on
   U32 id;

   friend auto operator<=>( Precedence const &, Precedence const & ) = default;
};
Precedence precedenceOf( Entry const & entry );

// A written entry as data and masks in the order of the key; data outside the masks is zero.
struct Ternary {
   KeyFields data{};
   KeyFields masks{};
};
Ternary ternaryOf( Entry const & entry );

}  // namespace Chip
