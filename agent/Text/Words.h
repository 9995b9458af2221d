// Words in messages: lists of them, and the one that a person has probably meant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Text {

// The one of `known` that `text` was most probably meant to be, or an empty text.
std::string_view nearest( std::string_view text, std::vector< std::string_view > const & known );

// "a, b or c", with `last` as the word before the last.
std::string listed( std::vector< std::string_view > const & words,
                    std::string const & last = "or" );

// "known are a, b and c".
std::string knownOnes( std::vector< std::string_view > const & words );

}  // namespace Text
