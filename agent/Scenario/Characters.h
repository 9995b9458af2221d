// The characters that a scenario may hold, and the length at which a message cuts texts.
#pragma once

#include <string>
#include <string_view>

namespace Scenario {

// The number of bytes of the UTF-8 character at the beginning of `text`; 0 when there is none.
std::size_t characterAt( std::string_view text );

// The character is a control character of one or two bytes, other than tab, line feed and carriage
// return.
bool isControl( std::string_view character );

// `text` for a message: a long text shows only its beginning and its end.
std::string shortened( std::string_view text );

// At most the first `count` bytes of `text`, without half a character at the end.
std::string_view beginning( std::string_view text, std::size_t count );

}  // namespace Scenario
