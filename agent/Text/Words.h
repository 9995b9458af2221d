// Words in messages: lists of them, guesses at the word that a person meant, and where words end.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Text {

// The word of `known` that `text` most probably stands for, or an empty text.
std::string_view nearest( std::string_view text, std::vector< std::string_view > const & known );

// "a, b or c", with `last` before the last word.
std::string listed( std::vector< std::string_view > const & words,
                    std::string const & last = "or" );

// "known are a, b and c".
std::string knownOnes( std::vector< std::string_view > const & words );

// Whether it is one of these.
inline bool isIn( char one, std::string_view characters ) {
   return characters.find( one ) != std::string_view::npos;
}

}  // namespace Text
