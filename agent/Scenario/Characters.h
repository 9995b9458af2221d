// The characters of texts: what a scenario may hold, and how much of it a message shows.
#pragma once

#include <string>
#include <string_view>

namespace Scenario {

// The number of bytes of the UTF-8 character that `text` begins with; 0 when it begins with none.
std::size_t characterAt( std::string_view text );

// Whether that character, which is one, is a control character other than tab, line feed and
// carriage return; those of one byte and those of two.
bool isControl( std::string_view character );

// `text` for a message: only its beginning and end when it is long.
std::string shortened( std::string_view text );

// At most the first `count` bytes of `text`, without half a character at the end.
std::string_view beginning( std::string_view text, std::size_t count );

}  // namespace Scenario
