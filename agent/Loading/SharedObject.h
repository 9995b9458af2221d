// Whether a file can be a plug-in at all, told without running anything of it.
#pragma once

#include <filesystem>

namespace Loading {

// InputError, which names the file and what to do, when it is no regular file, cannot be read, is
// no ELF shared object of this machine, is cut short, or does not need the platform's library, so
// that it can register no mounter. What is all right here can still be refused by dlopen().
void checkIsPlugin( std::filesystem::path const & file );

}  // namespace Loading
