// Finds the fewest elements of a list that will do: delta debugging.
//
//    Kept const kept = minimised( 200, firstThatDoes );
//
// Whole chunks go first, then halves of them, and in the end single elements. The last chunk of a
// list is tried first, since what comes late often rests on what came before. The question is asked
// for many candidates at once, so that they can be tried side by side. The answer is always the
// first candidate that will do, so the result does not depend on how many are tried at a time.
//
// Cost: in the order of n log n candidates for a list of n when few elements are kept, n * n when
// nearly all are.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace Shrinking {

// The numbers of the elements that are kept, ascending.
using Kept = std::vector< std::size_t >;

// The place of the first of the candidates that will do; nothing: none of them.
using FirstThatDoes =
   std::function< std::optional< std::size_t >( std::vector< Kept > const & candidates ) >;

// Of the elements 0 to `count` - 1: what is left, so that no single one can be left out any more.
Kept minimised( std::size_t count, FirstThatDoes const & firstThatDoes );

// The same, so that no two elements can be left out together. Cost: as many candidates as there are
// pairs.
Kept withoutPairs( std::size_t count, FirstThatDoes const & firstThatDoes );

// Of more elements, there are too many pairs to be tried.
inline constexpr std::size_t kMostForPairs = 32;

}  // namespace Shrinking
