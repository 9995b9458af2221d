// Finds the plug-in's shared object.
#pragma once

#include <filesystem>
#include <optional>

namespace CommandLine {

// The requested file, or the plug-in that comes with the program: beside it, or at its place in an
// installed tree. InputError when there is no such file.
std::filesystem::path pluginFile( std::optional< std::filesystem::path > const & asked );

}  // namespace CommandLine
