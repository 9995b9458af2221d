// Finds texts in quotes in YAML.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace Scenario {

// The place of the quote that closes the one at `open`; nothing when none does.
std::optional< std::size_t > closingQuote( std::string_view text, std::size_t open );

// The place of the quote that begins the value at `from`, after an anchor or a tag; nothing for a
// value without quotes.
std::optional< std::size_t > quoteOf( std::string_view text, std::size_t from );

// A text in quotes from `open` to `close` may go on over lines that are indented deeper than its
// first line. Returns the beginning of the first line that is not; nothing when all are.
std::optional< std::size_t > lineOutsideOf( std::string_view text, std::size_t open,
                                            std::size_t close );

}  // namespace Scenario
