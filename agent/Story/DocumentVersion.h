// The version of the JSON documents that the program prints (docs/compatibility.md).
#pragma once

#include <string_view>

namespace Story {

inline constexpr std::string_view kDocumentVersion = "1.0";

}  // namespace Story
