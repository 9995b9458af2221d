// Makes a failing list of moves shorter.
//
// Half of the moves are taken away at a time, then a quarter, and single ones at last, as long as
// the rest still fails. In the end no move can be missed. Then the switch and the numbers of the
// moves are made as simple as they can be. rapidcheck's own way begins again with every part of the
// list after each success, and needs far more tries.
#pragma once

#include <functional>
#include <vector>

#include <Moves.h>

namespace Moves {

struct Plot {
   World world;
   std::vector< Move > moves;
};

using Fails = std::function< bool( Plot const & ) >;

// A plot that fails, out of one that fails.
Plot shorter( Plot plot, Fails const & fails );

}  // namespace Moves
