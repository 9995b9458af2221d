// The first bytes of a record's file.
#pragma once

#include <string>
#include <string_view>

#include <Quelm/Integers.h>

namespace Record {

// The version of records, MAJOR.MINOR (docs/compatibility.md). A change of the form of the file
// raises MAJOR. A change of a field of an item or an event raises MINOR: layoutFingerprint() is
// another one then.
inline constexpr U16 kMajor = 1;
inline constexpr U16 kMinor = 0;

// The window that a reader of blocks needs, as a power of two.
inline constexpr int kWindowLog = 20;

// The header that this program writes.
std::string headerNow();

// Whether the bytes begin with the header of any version.
bool isHeader( std::string_view bytes );

}  // namespace Record
