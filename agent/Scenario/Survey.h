// A look at a scenario's text before anything is made of it.
//
// What YAML's grammar lets through and nobody can have meant, and what would take a program's
// memory, is refused here, with its line:
//
// - bytes that are not UTF-8, and control characters;
// - a text in quotes that goes on over lines which are not indented deeper than the line it begins
//   in, or that goes on over lines within brackets: so ends a quote that was not closed, and what
//   it has swallowed would be missed by nobody;
// - lists and mappings in each other beyond kDeepest, and more values than kMost, counting a value
//   each time that an alias repeats it; a line beyond kLongestLine bytes;
// - a second document.
//
// Cost: linear in the text.
#pragma once

#include <string>

namespace Scenario {

inline constexpr std::size_t kDeepest = 50;  // the language needs ten
inline constexpr std::size_t kMost = 500'000;
inline constexpr std::size_t kLongestLine = std::size_t{ 1024 } * 1024;

// ReadError, which names `file`, unless `text` is one document that can be taken. The text must not
// begin with a byte order mark.
void survey( std::string const & text, std::string const & file );

// `text` without the byte order mark that it may begin with.
std::string withoutMark( std::string text );

}  // namespace Scenario
