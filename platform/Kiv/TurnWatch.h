// The turn watch: called as a turn of the activity begins, so that one without end is noticed.
//
// There is one watch in a process. It is called on the activity's thread with the lock held, before
// every turn and every wake-up of the clock, and whenever the activity finds nothing due. It must
// be quick and must not throw.
#pragma once

#include <functional>

namespace Kiv {

using TurnWatch = std::function< void() >;

// In force from the next turn on; an empty one ends it.
void turnWatchIs( TurnWatch watch );

}  // namespace Kiv
