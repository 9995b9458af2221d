// What steps work on, and how they become turns.
//
// A step becomes turns of the activity: one for every change that another agent writes, in the
// order written, never merged, and one for every expectation. Whoever runs the activity until it is
// idle has carried the step out.
//
// Failures: a turn that names something that is not there, or that the generic interface refuses,
// throws InputError with the place in the scenario; the turns behind it stay queued.
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

// Everything in it must outlive its use, turns included.
struct Context {
   std::string const & file;  // of the scenario
   Kiv::ActivityManager & activity;
   Peers::PublishedState & published;
   Traffic::Injector & traffic;
   Chip::Board & board;
   Chip::Faults & faults;
   Reporters::ChipReporter & reporter;
   Expectations::Evidence const & evidence;
   Story::Observer & observer;

   std::string placeOf( int line ) const;
   // Does work whose refusals become InputErrors at that line; and queues a turn of such work.
   void at( int line, std::function< void() > const & work ) const;
   void turnNew( int line, std::function< void() > turn ) const;
};

}  // namespace Steps
