// The objects that steps work on, and the functions that turn steps into turns.
//
// A step becomes turns of the activity: one for every change that another agent writes, in the
// order written, never merged, and one for every expectation. The step is carried out when the
// activity is idle again.
//
// Failures: a turn throws InputError with its place in the scenario when it names something that
// does not exist, or something that the generic interface refuses. The turns behind it stay queued.
#pragma once

#include <functional>
#include <string>

#include <Board/Board.h>
#include <Expectations/Evidence.h>
#include <Kiv/Activity.h>
#include <Peers/PublishedState.h>
#include <Reporters/ChipReporter.h>
#include <Story/Observer.h>
#include <Traffic/Injector.h>

namespace Steps {

// All members must outlive their use, turns included.
struct Context {
   Scenario::Sources const & sources;  // of the scenario
   Kiv::ActivityManager & activity;
   Peers::PublishedState & published;
   Traffic::Injector & traffic;
   Chip::Board & board;
   Chip::Faults & faults;
   Reporters::ChipReporter & reporter;
   Expectations::Evidence const & evidence;
   Story::Observer & observer;

   std::string placeOf( int line ) const;
   // Does work whose errors become InputErrors at that line; and queues a turn of such work.
   void at( int line, std::function< void() > const & work ) const;
   void turnNew( int line, std::function< void() > turn ) const;
};

}  // namespace Steps
