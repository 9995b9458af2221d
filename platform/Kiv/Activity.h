// The activity: one thread, one lock, a queue of turns and a clock.
//
// All work of an agent and its plug-ins is done in turns: a change that another agent wrote, a
// wake-up of the clock, a step of the agent itself. Turns run one after the other, on the thread
// that calls run(), with the activity lock held; within a turn nothing else of the agent runs.
//
// Invariants:
// - Turns that were queued run in the order of queueing, never merged.
// - A wake-up that is due runs before the next queued turn. When neither is left, the clock moves
//   on to the next armed wake-up.
// - The lock is given up only by an ActivityUnlockAnchor: for its scope, the holder's thread works
//   without it and any other thread may take it. The anchor takes it back at the end of the scope,
//   also when an exception passes. Others may change any state within that scope.
// - ActivityLockAnchor is how any other thread comes in.
//
// Failures: unlocking on a thread that does not hold the lock is a failed assertion, and so is
// locking on one that does, by run() within a turn for example. An exception that leaves a turn
// passes through run(); turns behind it stay queued.
//
// The manager is an object that the agent owns. activityManager() finds the one in charge, which is
// the one most recently built and still alive.
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include <Kiv/Clock.h>

namespace Kiv {

class ActivityManager {
 public:
   ActivityManager();
   ActivityManager( ActivityManager const & ) = delete;
   ActivityManager & operator=( ActivityManager const & ) = delete;
   ~ActivityManager();

   Quelm::Ptr< Clock > const & clock() const { return clock_; }

   // Queues a turn. To be called with the lock held, or before run().
   void turnNew( std::function< void() > turn ) { turns_.push_back( std::move( turn ) ); }
   // Runs one turn; false when nothing is queued or due.
   bool runOne();
   // Runs until nothing is queued and no reactor is armed.
   void run();

   // Whether the calling thread holds the activity lock.
   bool isLockHeld() const { return holder_.load() == std::this_thread::get_id(); }

 private:
   friend class ActivityLockAnchor;
   friend class ActivityUnlockAnchor;

   // With the lock held. Runs the next turn; false when none is queued or due.
   bool turnRun();
   // With the lock held. Moves the clock on to the next wake-up; false when there is none.
   bool clockMoved();

   void lock();
   void unlock();

   std::mutex mutex_;
   std::atomic< std::thread::id > holder_;
   std::deque< std::function< void() > > turns_;
   Quelm::Ptr< Clock > clock_;
   ActivityManager * previous_;
};

// The manager in charge; a failed assertion when there is none.
ActivityManager * activityManager();
bool hasActivityManager();

// Holds the activity lock for a scope. Not recursive.
class ActivityLockAnchor {
 public:
   explicit ActivityLockAnchor( ActivityManager & manager ) : manager_( manager ) {
      manager_.lock();
   }
   ActivityLockAnchor( ActivityLockAnchor const & ) = delete;
   ActivityLockAnchor & operator=( ActivityLockAnchor const & ) = delete;
   ~ActivityLockAnchor() { manager_.unlock(); }

 private:
   ActivityManager & manager_;
};

// Gives the activity lock up for a scope.
class ActivityUnlockAnchor {
 public:
   ActivityUnlockAnchor() : manager_( *activityManager() ) { manager_.unlock(); }
   ActivityUnlockAnchor( ActivityUnlockAnchor const & ) = delete;
   ActivityUnlockAnchor & operator=( ActivityUnlockAnchor const & ) = delete;
   ~ActivityUnlockAnchor() { manager_.lock(); }

 private:
   ActivityManager & manager_;
};

namespace System {

// The time of the clock of the manager in charge.
Time currentTime();

}  // namespace System

}  // namespace Kiv
