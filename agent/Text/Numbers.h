// Numbers in texts that a person has typed.
#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace Text {

// The whole text as a number; nothing for any other text, and for a number that is out of range.
template< typename Number > std::optional< Number > numberIn( std::string_view text ) {
   Number number{};
   auto const [ end, error ] = std::from_chars( text.data(), text.data() + text.size(), number );
   bool const isWhole = error == std::errc() && end == text.data() + text.size();
   return isWhole ? std::optional( number ) : std::nullopt;
}

}  // namespace Text
