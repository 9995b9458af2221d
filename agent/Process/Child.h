// Runs the agent in a process of its own, so that somebody is left to tell the story when a plug-in
// stops it.
//
//    Process::runInChild( work, ring, observer );
//
// starts a child process, in which `work` is called with an observer. What that observer is told
// passes through a pipe and reaches `observer` here, in order. So does every line that the child
// writes to standard output or standard error, as an OutputLine, soon after it is written: their
// order relative to the other events is not exact, since the child may die with either at any time.
//
// The child is expected to tell RunEnds (or BadInput) and to end with exit code 0. Whatever else it
// does is told as the last event:
//
// - Stopped, with the assertion that it wrote, its last lines and the last lines of its trace ring;
//   also when a turn of its activity (or a frame) has taken longer than the turn limit, upon which
//   it is killed (Process/TurnTimer.h);
// - Interrupted when SIGINT, SIGTERM or SIGHUP has come here (Process/Interruption.h): the child is
//   killed;
// - BadInput when somebody has cut short the file of the ring under it.
//
// What holds: nothing that the child told is lost when it dies, except what it was in the middle of
// saying. The child does not outlive this process or this call, also when an observer throws. What
// the child has started does not outlive this call, unless it has left the child's process group.
// Whatever it prints, in what length and amount, costs bounded memory and time in proportion; a
// line longer than kLongestLine is handed on in pieces. The child reads nothing from standard
// input. In the child, what the program builds before its end is unwound by exit(), so that leak
// checkers see the end of the process as they do elsewhere.
//
// The caller has one thread, and has not loaded a plug-in: the child begins as a copy of it.
// Failures: std::system_error when no process can be started.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <span>

#include <Story/Observer.h>

namespace Process {

using Work = std::function< void( Story::Observer & ) >;

// In bytes, of what the child prints.
inline constexpr std::size_t kLongestLine = std::size_t{ 1 } << 20U;

// `ring` is the memory of the trace ring that the child writes to (Process/RingMemory.h). A turn
// limit of 0 is none.
void runInChild( Work const & work, std::span< std::byte const > ring, Story::Observer & observer,
                 std::chrono::milliseconds turnLimit = {} );

}  // namespace Process
