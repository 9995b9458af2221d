// The words of a typed command.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Shell {

// The number of brackets that are open at the end of the text, without those in quotes and
// comments.
std::size_t openBrackets( std::string_view text );

// The words, separated by blanks. A word in quotes, or in braces, holds blanks; the quotes are not
// part of it, the braces are. A comment ends the words. Story::InputError for a quote or a brace
// that stays open.
std::vector< std::string > wordsOf( std::string_view text );

// The first word as it stands, and the text behind it, without the blanks around either.
std::string_view firstWord( std::string_view text );
std::string_view behindFirstWord( std::string_view text );

}  // namespace Shell
