// Runs scenarios side by side, each in a process of its own (Process/Workers.h).
//
// Results do not depend on the number of workers or on the order in which these end. A worker that
// ends without a result (it crashed, or the system killed it) is a failure of its scenario.
//
// The caller has one thread. Failures: std::system_error when no process can be started.
#pragma once

#include <filesystem>
#include <functional>
#include <vector>

#include <Testing/Result.h>

namespace Testing {

// Runs one scenario, within a worker.
using Work = std::function< Result( std::filesystem::path const & file ) >;
// Is told now and then how far the workers have come.
using Progress = std::function< void( std::vector< Result > const & results ) >;

struct Tested {
   std::vector< Result > results;  // of each file, in the order of the files
   int signal = 0;                 // that asked this process to end; then some results are missing
};

// At most `jobs` workers at a time, one at least.
Tested testAll( std::vector< std::filesystem::path > const & files, std::size_t jobs,
                Work const & work, Progress const & progress );

}  // namespace Testing
