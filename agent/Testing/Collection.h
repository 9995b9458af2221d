// Finds the scenarios below folders.
#pragma once

#include <filesystem>
#include <vector>

namespace Testing {

// The scenarios among files and folders, each once, in the order of their paths. A file counts as
// it is. Below a folder, a scenario is a file *.yaml with one of the words 'scenario' and
// 'based-on' at the beginning of a line, or with both 'switch' and 'steps' there. So a scenario
// with a mistake is one, too. A file with the word 'exploration' in front of them is none. Folders
// whose names begin with a dot are left out.
//
// Throws Story::InputError for a path that does not exist and for a folder that cannot be read.
std::vector< std::filesystem::path > scenariosAmong(
   std::vector< std::filesystem::path > const & paths );

}  // namespace Testing
