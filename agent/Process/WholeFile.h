// Writes a file in one go: it is there as a whole or not at all.
#pragma once

#include <filesystem>
#include <string>

namespace Process {

// Replaces a file of that name. Throws Story::InputError.
void writeWhole( std::filesystem::path const & file, std::string const & text );

// "FILE cannot be written (No space left on device); ...", with what to do.
std::string whyNotWritten( std::filesystem::path const & file, int error );

}  // namespace Process
