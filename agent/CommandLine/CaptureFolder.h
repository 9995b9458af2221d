// The folder that a run writes its captures into.
#pragma once

#include <filesystem>
#include <optional>

#include <Scenario/Scenario.h>

namespace CommandLine {

// The folder, made if it is not there, and without the captures of an earlier run: all that it
// holds under such names is of one run. Other files in it stay. Quelm::Error, and nothing is
// removed, when it cannot be made, when it takes no files, or when the scenario plays one of the
// captures in it.
std::optional< std::filesystem::path > captureFolder(
   std::optional< std::filesystem::path > const & asked, Scenario::Model const & scenario );

}  // namespace CommandLine
