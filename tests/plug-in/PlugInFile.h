// The plug-in that these tests open: the one of this build, or the build of it that
// VORNAL_TEST_PLUGIN names.
#pragma once

#include <cstdlib>

inline char const * plugInFile() {
   char const * const other = std::getenv( "VORNAL_TEST_PLUGIN" );
   return other ? other : VORNAL_BINARY_DIR "/VornalEvpn.so";
}
