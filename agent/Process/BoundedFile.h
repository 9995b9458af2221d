// Reads a file that a stranger can have written: never more of it than a limit, and no pipe or
// device that has no end.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace Process {

// The first bytes of a regular file, `most` at most; nothing when it cannot be read, and for
// anything else than a regular file.
std::optional< std::string > beginningOf( std::filesystem::path const & file, std::size_t most );

// All of a regular file; nothing when it cannot be read, is larger than `most` bytes, or is
// anything else than a regular file.
std::optional< std::string > contentOf( std::filesystem::path const & file, std::size_t most );

}  // namespace Process
