// Scenarios that show known limits of the plug-in, and which findings they show.
//
// A scenario is carried out step by step, and the rules are judged after each, as those of a
// sequence are. It shows a finding when it ends, or has been, in the same way.
//
// Cost: one process for each scenario, side by side.
#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>

#include <Exploring/Findings.h>
#include <Host/Agent.h>

namespace Exploring {

// By finding, the scenarios that show it.
using KnownLimits = std::map< Key, std::set< std::string > >;

// The limits that the scenarios among the files and folders show. Story::InputError for one that
// cannot be read or run; Process::workAll() describes `jobs`.
KnownLimits knownLimitsIn( std::filesystem::path const & folder, Host::AgentConfig const & config,
                           std::size_t jobs );

}  // namespace Exploring
