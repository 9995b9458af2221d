// Every fault in the runs of scenarios, shared out among workers.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <CommandLine/FindingsText.h>
#include <Host/Agent.h>

namespace CommandLine {

struct FaultsAsked {
   std::vector< std::string > names;  // of scenarios, or of folders with scenarios
   std::function< Host::AgentConfig( std::filesystem::path const & ) > configOf;
   std::chrono::milliseconds longestStep;  // 0: none
   std::size_t jobs;
};

// `signal` becomes the one that has ended the work early. Story::InputError.
Explored exploredFaults( FaultsAsked const & asked, int & signal );

}  // namespace CommandLine
