// Text in lines of a limited width.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Text {

// The text in lines of at most `width` characters, broken at blanks where there are any, and
// else behind slashes. `width` is at least 1.
std::vector< std::string > wrapped( std::string const & text, std::size_t width );

// An indented text in lines of at most `width` characters, where that leaves room for a word. A
// line that is too long goes on in the next line, indented further than a line below it.
std::string narrowed( std::string const & text, std::size_t width );

}  // namespace Text
