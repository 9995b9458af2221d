// The result codes of this chip, in the manner of the SDK: zero is success, negative is failure.
#pragma once

#include <string_view>

#include <Quelm/Integers.h>

namespace Chip {

enum class ResultCode : S32 {
   None = 0,
   UnknownUnit = -1,   // no such unit, or the group does not exist on it
   UnknownEntry = -2,  // id 0, never given out, released, or of another group
   NotFound = -3,      // nothing of that kind is there to be read back or replaced
   Exists = -4,        // the entry already has that action
   Unsupported = -5,   // the entry's group has no such qualifier or action
   BadValue = -6,      // a value that the field or action does not know
   NotInstalled = -7,  // the entry is not in the hardware
};

constexpr S32 codeOf( ResultCode code ) {
   return static_cast< S32 >( code );
}

// The message for a code. All codes that are not negative read alike, and so do negative ones that
// are not this chip's.
std::string_view resultText( S32 code );

}  // namespace Chip
