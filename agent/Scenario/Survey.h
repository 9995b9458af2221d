// Checks a scenario's text before it is read.
//
// It refuses two kinds of text and names the line: text that YAML's grammar allows but nobody can
// mean, and text that would exhaust the program's memory:
//
// - bytes that are not UTF-8, and control characters;
// - a text in quotes that goes on over lines which are not indented deeper than its first line, or
//   that goes on over lines within brackets: an unclosed quote ends like this, and nobody would
//   miss the lines that it has swallowed;
// - lists and mappings nested deeper than kDeepest, and more values than kMost, counting a value
//   each time that an alias repeats it; a line beyond kLongestLine bytes;
// - a second document.
//
// Cost: linear in the text.
#pragma once

#include <string>

namespace Scenario {

inline constexpr std::size_t kDeepest = 50;  // the language needs ten
inline constexpr std::size_t kMost = 1'000'000;
inline constexpr std::size_t kLongestLine = std::size_t{ 1024 } * 1024;

// Throws ReadError, which names `file`, unless `text` is one document that the reader can take. The
// text must not begin with a byte order mark.
void survey( std::string const & text, std::string const & file );

// `text` without a byte order mark at the beginning.
std::string withoutMark( std::string text );

}  // namespace Scenario
