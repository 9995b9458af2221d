// The folder of temporary files.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include <Story/InputError.h>

namespace Story {

// The folder that TMPDIR names, or else /tmp.
inline std::filesystem::path temporaryFolder() {
   char const * const named = std::getenv( "TMPDIR" );
   return named && *named ? named : "/tmp";
}

// Throws InputError: the folder does not take `what`, for the reason `error` of errno.
[[noreturn]] inline void refuseTemporaryFolder( std::string const & what, int error ) {
   throw InputError( what + " find no room in " + temporaryFolder().string() + " (" +
                     std::generic_category().message( error ) +
                     "); name another folder in TMPDIR" );
}

}  // namespace Story
