// Colours and emphasis on a terminal; plain text everywhere else. Make a text printable
// (Text/Printable.h) before it gets its colours, not after.
#pragma once

#include <string>
#include <string_view>

#include <fmt/color.h>

#include <Text/Printable.h>

namespace Story {

class Style {
 public:
   explicit Style( bool isColoured ) : isColoured_( isColoured ) {}

   std::string bold( std::string_view text ) const { return in( fmt::emphasis::bold, text ); }
   std::string good( std::string_view text ) const {
      return in( fmt::fg( fmt::terminal_color::green ), text );
   }
   std::string bad( std::string_view text ) const {
      return in( fmt::emphasis::bold | fmt::fg( fmt::terminal_color::red ), text );
   }

 private:
   std::string in( fmt::text_style const & style, std::string_view text ) const {
      std::string const printable = Text::printable( text );
      return isColoured_ ? fmt::format( style, "{}", printable ) : printable;
   }

   bool isColoured_;
};

}  // namespace Story
