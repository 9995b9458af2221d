// Shares work out to workers: each piece is done in a process of its own, a copy of this one, that
// sends its result through a pipe.
//
//    int const signal = Process::workAll( { count, jobs, work, take } );
//
// The workers do not outlive this process or a call. A signal that asks this process to end asks
// them, too; a worker that has not ended five seconds later is killed.
//
// The caller has one thread. Failures: std::system_error when no process can be started.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace Process {

// What has become of a piece of work.
struct Worked {
   std::optional< std::string > result;  // nothing when the worker ended before it had sent it all
   std::string end;                      // of the worker: "exit code 0", "signal 9 (Killed)"
   double seconds = 0;
};

// Does a piece of work, within a worker. It throws nothing.
using PieceWork = std::function< std::string( std::size_t piece ) >;

struct Pieces {
   std::size_t count;
   std::size_t jobs;  // workers at a time; one at least
   PieceWork work;
   // Is told of each piece as soon as it is done, in this process.
   std::function< void( std::size_t piece, Worked const & worked ) > take;
   std::function< void() > progress = [] {};  // is told now and then
};

// Returns the signal that asked this process to end, and left pieces undone; 0: none.
int workAll( Pieces const & pieces );

}  // namespace Process
