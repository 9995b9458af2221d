// Writes a file in one go: it is there as a whole or not at all.
#pragma once

#include <filesystem>
#include <string>

namespace Process {

// Replaces a file of that name. Throws Story::InputError.
void writeWhole( std::filesystem::path const & file, std::string const & text );

}  // namespace Process
