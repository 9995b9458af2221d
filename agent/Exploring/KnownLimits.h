// Scenarios that show known limits of the plug-in, and which findings they show.
//
// A scenario is carried out step by step, and the rules are judged after each step, as those of a
// sequence are; its expectations are not. It shows a finding when it ends in the same way, or when
// its rules differ, or frames go wrong for good, in the same way after one of its steps.
//
// Cost: one process for each scenario, side by side.
#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <Exploring/Findings.h>
#include <Host/Agent.h>

namespace Exploring {

class KnownLimits {
 public:
   // None.
   KnownLimits() = default;
   // Finds the scenarios. Story::InputError when there is none.
   KnownLimits( std::filesystem::path const & folder, Host::AgentConfig config,
                std::chrono::milliseconds longestStep );

   // Carries them out; returns the signal that asked this process to end, 0 for none.
   // Story::InputError for a scenario that cannot be run. Process::workAll() describes `jobs`.
   int carryOut( std::size_t jobs );

   bool isThere() const { return !files_.empty(); }
   // The scenarios that show the finding.
   std::vector< std::string > showing( Key const & key ) const;

 private:
   std::vector< std::filesystem::path > files_;
   Host::AgentConfig config_;
   std::chrono::milliseconds longestStep_{};
   std::map< Key, std::vector< std::string > > shown_;
};

}  // namespace Exploring
