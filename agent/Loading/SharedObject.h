// Checks whether a file can be a plug-in, without running any of it.
#pragma once

#include <filesystem>

namespace Loading {

// Throws InputError, which names the file and the remedy, when the file is not regular, cannot be
// read, is no ELF shared object of this machine, is cut short, does not need the platform's library
// and so can register no mounter, or has a path that dlopen() would take for another one. dlopen()
// can still refuse a file that passes.
void checkIsPlugin( std::filesystem::path const & file );

}  // namespace Loading
