// The versions of the program, and of the formats that others rely on (docs/compatibility.md).
#pragma once

#include <string>
#include <string_view>

namespace CommandLine {

std::string_view version();

// "commit 0123456789ab", with "-changed" behind it where the tree was changed since; "unknown
// commit" where the sources came without one.
std::string_view commit();

// What `vornal --version` prints: a line each.
std::string versions();

}  // namespace CommandLine
