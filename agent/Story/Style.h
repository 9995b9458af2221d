// Colours and emphasis on a terminal; plain text everywhere else. The text itself is made printable
// (Text/Printable.h), and must not be so a second time with its colours.
#pragma once

#include <string>
#include <string_view>

#include <Text/Printable.h>

namespace Story {

class Style {
 public:
   explicit Style( bool isColoured ) : isColoured_( isColoured ) {}

   std::string bold( std::string_view text ) const { return in( "1", text ); }
   std::string good( std::string_view text ) const { return in( "32", text ); }
   std::string bad( std::string_view text ) const { return in( "1;31", text ); }

 private:
   // SGR parameters (ECMA-48, section 8.3.117) around the text.
   std::string in( std::string_view parameters, std::string_view text ) const {
      if ( !isColoured_ ) {
         return Text::printable( text );
      }
      return "\x1b[" + std::string( parameters ) + "m" + Text::printable( text ) + "\x1b[0m";
   }

   bool isColoured_;
};

}  // namespace Story
