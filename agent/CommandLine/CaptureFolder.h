// The folder into which a run writes its captures.
#pragma once

#include <filesystem>
#include <optional>

#include <Scenario/Scenario.h>

namespace CommandLine {

// Returns the folder. Creates it if necessary, and removes the captures of earlier runs, so that
// all captures in it belong to one run. Other files stay. Throws Quelm::Error, and removes nothing,
// when the folder cannot be created, when it takes no files, or when the scenario plays one of the
// captures in it.
std::optional< std::filesystem::path > captureFolder(
   std::optional< std::filesystem::path > const & asked, Scenario::Model const & scenario );

}  // namespace CommandLine
