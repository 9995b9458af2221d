#include <Scenario/Characters.h>

#include <algorithm>

#include <Quelm/Integers.h>

namespace Scenario {

namespace {

// The longest message shown whole; a longer one shows its beginning and its end.
constexpr std::size_t kLongestMessage = 1500;
constexpr std::size_t kShownOfEnd = 300;

U8 byteAt( std::string_view text, std::size_t at ) {
   return static_cast< U8 >( text[ at ] );
}

bool isContinuation( std::string_view text, std::size_t at ) {
   return at < text.size() && ( byteAt( text, at ) & 0xc0U ) == 0x80U;
}

// The number of bytes of a character with this first byte; 0 when no character begins with it.
std::size_t lengthBy( U8 first ) {
   return first < 0x80   ? 1
          : first < 0xc2 ? 0
          : first < 0xe0 ? 2
          : first < 0xf0 ? 3
          : first < 0xf5 ? 4
                         : 0;
}

// The encoding is longer than needed, half of a surrogate pair, or beyond the last character (RFC
// 3629).
bool isForbidden( U8 first, U8 second ) {
   return ( first == 0xe0 && second < 0xa0 ) || ( first == 0xed && second >= 0xa0 ) ||
          ( first == 0xf0 && second < 0x90 ) || ( first == 0xf4 && second >= 0x90 );
}

}  // namespace

std::size_t characterAt( std::string_view text ) {
   std::size_t const length = text.empty() ? 0 : lengthBy( byteAt( text, 0 ) );
   for ( std::size_t at = 1; at < length; ++at ) {
      if ( !isContinuation( text, at ) ) {
         return 0;
      }
   }
   return length > 1 && isForbidden( byteAt( text, 0 ), byteAt( text, 1 ) ) ? 0 : length;
}

bool isControl( std::string_view character ) {
   U8 const first = byteAt( character, 0 );
   if ( character.size() == 1 ) {
      return ( first < 0x20 && first != '\t' && first != '\n' && first != '\r' ) || first == 0x7f;
   }
   return first == 0xc2 && byteAt( character, 1 ) < 0xa0 && byteAt( character, 1 ) != 0x85;
}

std::string shortened( std::string_view text ) {
   if ( text.size() <= kLongestMessage ) {
      return std::string( text );
   }
   std::size_t from = text.size() - kShownOfEnd;
   while ( isContinuation( text, from ) ) {
      ++from;
   }
   return std::string( beginning( text, kLongestMessage - kShownOfEnd ) ) + " ... " +
          std::string( text.substr( from ) );
}

std::string_view beginning( std::string_view text, std::size_t count ) {
   std::size_t end = std::min( count, text.size() );
   while ( end > 0 && isContinuation( text, end ) ) {
      --end;
   }
   return text.substr( 0, end );
}

}  // namespace Scenario
