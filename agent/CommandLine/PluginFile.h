// Where the plug-in's shared object is.
#pragma once

#include <filesystem>
#include <optional>

namespace CommandLine {

// The file that was asked for, or the plug-in that comes with the program: beside it, or where an
// installed tree has it. InputError when there is no such file.
std::filesystem::path pluginFile( std::optional< std::filesystem::path > const & asked );

}  // namespace CommandLine
