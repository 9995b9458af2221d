// Texts in quotes, as they stand in YAML.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace Scenario {

// The place of the quote that closes the one at `open`; nothing when none does.
std::optional< std::size_t > closingQuote( std::string_view text, std::size_t open );

// The place of the quote that the value at `from` begins with, after an anchor or a tag; nothing
// when it is not in quotes.
std::optional< std::size_t > quoteOf( std::string_view text, std::size_t from );

// The first line that the text in quotes from `open` to `close` goes on in and that is not indented
// deeper than the line it begins in: the place where it begins. Nothing when there is no such line.
std::optional< std::size_t > lineOutsideOf( std::string_view text, std::size_t open,
                                            std::size_t close );

}  // namespace Scenario
