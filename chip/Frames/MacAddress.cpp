#include <Frames/MacAddress.h>

#include <charconv>

#include <Quelm/Error.h>

namespace Chip {

namespace {

[[noreturn]] void refuse( std::string_view text ) {
   throw Quelm::TextError( "'" + std::string( text ) +
                           "' is not a MAC address: it is six pairs of hexadecimal digits, as in "
                           "00:00:5e:00:53:01" );
}

}  // namespace

MacAddress MacAddress::fromString( std::string_view text ) {
   constexpr std::size_t pairAndColon = 3;
   if ( text.size() != kBytes * pairAndColon - 1 ) {
      refuse( text );
   }
   U64 value = 0;
   for ( std::size_t at = 0; at < text.size(); at += pairAndColon ) {
      char const * const pair = text.data() + at;
      U8 byte = 0;
      auto const [ end, error ] = std::from_chars( pair, pair + 2, byte, 16 );
      bool const isFollowedRightly = at + 2 == text.size() || text[ at + 2 ] == ':';
      if ( error != std::errc() || end != pair + 2 || !isFollowedRightly ) {
         refuse( text );
      }
      value = value << 8 | byte;
   }
   return MacAddress( value );
}

void MacAddress::textTo( std::string & out ) const {
   constexpr std::string_view digits = "0123456789abcdef";
   for ( int shift = 40; shift >= 0; shift -= 8 ) {
      out += digits[ value_ >> ( shift + 4 ) & 0xf ];
      out += digits[ value_ >> shift & 0xf ];
      if ( shift > 0 ) {
         out += ':';
      }
   }
}

MacAddress MacAddress::textFrom( Quelm::TextReader & in ) {
   return fromString( in.takeWhile( Quelm::isNameCharacter ) );
}

}  // namespace Chip
