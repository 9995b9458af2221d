// Which version of the program this is.
#pragma once

#include <string_view>

namespace CommandLine {

std::string_view version();

}  // namespace CommandLine
