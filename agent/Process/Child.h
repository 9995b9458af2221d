// Runs the agent in a process of its own, so that this process can tell the story when a plug-in
// stops the other.
//
//    Process::runInChild( work, ring, observer );
//
// starts a child process and calls `work` in it with an observer. The events that the child's
// observer is told pass through a pipe and reach `observer` here, in order. So does every line that
// the child writes to standard output or standard error, as an OutputLine, soon after it is
// written. The order of these lines relative to the other events is not exact, since the child may
// die between the two.
//
// The child should tell RunEnds (or BadInput) and end with exit code 0. Otherwise the last event
// is:
//
// - Stopped, with the assertion that the child wrote, its last lines and the last lines of its
//   trace ring. The child is also killed and Stopped told when a turn of its activity (or a frame)
//   has taken longer than the turn limit (Process/TurnTimer.h);
// - Interrupted when this process got SIGINT, SIGTERM or SIGHUP (Process/Interruption.h); the child
//   is killed;
// - BadInput when another process has cut short the file of the ring.
//
// When the child dies, the events that it has told completely survive. The child does not outlive
// this process or this call, even when an observer throws. Processes that the child has started do
// not outlive this call, unless they have left the child's process group. The child's output costs
// bounded memory and time in proportion to it; a line longer than kLongestLine is handed on in
// pieces. The child's standard input is empty. The child ends with exit(), which unwinds what the
// program has built before, so that leak checkers see the end of the process as elsewhere.
//
// The caller has one thread and has not loaded a plug-in, because the child begins as a copy of it.
// Failures: std::system_error when no process can be started.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <span>

#include <Story/Observer.h>

namespace Process {

using Work = std::function< void( Story::Observer & ) >;

// The longest line of the child's output, in bytes.
inline constexpr std::size_t kLongestLine = std::size_t{ 1 } << 20U;

// `ring` is the memory of the trace ring that the child writes to (Process/RingMemory.h). A turn
// limit of 0 means no limit.
void runInChild( Work const & work, std::span< std::byte const > ring, Story::Observer & observer,
                 std::chrono::milliseconds turnLimit = {} );

}  // namespace Process
