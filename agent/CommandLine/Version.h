// The version of the program.
#pragma once

#include <string_view>

namespace CommandLine {

std::string_view version();

}  // namespace CommandLine
