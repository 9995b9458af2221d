// Writes the steps of a session down as a scenario that runs by itself.
//
// Where the steps begin with all those of a whole scenario, the text is based on that scenario's
// file and holds the rest. Otherwise it is a whole scenario. A path in it leads to the same file
// from the new file's folder.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace Shell {

struct Done;

// The scenario of the session.
struct Original {
   std::filesystem::path const & file;
   std::string const & text;
};

// The text for `file`. Scenario::ReadError when a scenario that the original is based on cannot be
// read.
std::string savedText( Original const & original, std::vector< Done > const & done,
                       std::filesystem::path const & file );

}  // namespace Shell
