#include <Scenario/Quotes.h>

#include <algorithm>

namespace Scenario {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

bool isOneOf( std::string_view characters, std::string_view text, std::size_t at ) {
   return at < text.size() && characters.find( text[ at ] ) != std::string_view::npos;
}

bool isBlankAt( std::string_view text, std::size_t at ) {
   return at >= text.size() || isOneOf( kBlanks, text, at );
}

std::size_t lineEnd( std::string_view text, std::size_t at ) {
   return std::min( text.find( '\n', at ), text.size() );
}

// The column of the first word of a line, after the dashes of lists.
std::size_t depthOf( std::string_view line ) {
   std::size_t at = 0;
   while ( at < line.size() &&
           ( line[ at ] == ' ' || ( isOneOf( "-?", line, at ) && isBlankAt( line, at + 1 ) ) ) ) {
      ++at;
   }
   return at;
}

bool isBlank( std::string_view line ) {
   return line.find_first_not_of( kBlanks ) == std::string_view::npos;
}

}  // namespace

std::optional< std::size_t > closingQuote( std::string_view text, std::size_t open ) {
   char const quote = text[ open ];
   for ( std::size_t at = open + 1; at < text.size(); ++at ) {
      bool const isPair = quote == '"' ? text[ at ] == '\\' : text.substr( at ).starts_with( "''" );
      if ( isPair ) {
         ++at;
      } else if ( text[ at ] == quote ) {
         return at;
      }
   }
   return std::nullopt;
}

std::optional< std::size_t > quoteOf( std::string_view text, std::size_t from ) {
   std::size_t at = from;
   while ( isOneOf( "&!", text, at ) ) {
      at = std::min( text.find_first_of( kBlanks, at ), text.size() );
      at = std::min( text.find_first_not_of( kBlanks, at ), text.size() );
   }
   return isOneOf( "\"'", text, at ) ? std::optional( at ) : std::nullopt;
}

std::optional< std::size_t > lineOutsideOf( std::string_view text, std::size_t open,
                                            std::size_t close ) {
   std::size_t const begin = text.rfind( '\n', open ) + 1;
   std::size_t const depth = depthOf( text.substr( begin, lineEnd( text, begin ) - begin ) );
   // A text that begins its line may go on right below its quote.
   std::size_t const least = depth == open - begin ? depth : depth + 1;
   for ( std::size_t at = lineEnd( text, open ) + 1; at <= close; at = lineEnd( text, at ) + 1 ) {
      std::string_view const line = text.substr( at, std::min( lineEnd( text, at ), close ) - at );
      bool const isLast = lineEnd( text, at ) >= close;
      if ( ( !isBlank( line ) || isLast ) && line.find_first_not_of( ' ' ) < least ) {
         return at;
      }
   }
   return std::nullopt;
}

}  // namespace Scenario
