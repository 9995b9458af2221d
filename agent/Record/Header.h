// The first bytes of a record's file.
#pragma once

#include <string>
#include <string_view>

#include <Quelm/Integers.h>

namespace Record {

// The version of the form of blocks and items (docs/compatibility.md).
inline constexpr U32 kVersion = 1;

// The window that a reader of blocks needs, as a power of two.
inline constexpr int kWindowLog = 20;

// The header that this program writes.
std::string headerNow();

// Whether the bytes begin with the header of any version.
bool isHeader( std::string_view bytes );

}  // namespace Record
