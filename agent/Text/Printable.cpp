#include <Text/Printable.h>

#include <algorithm>

#include <fmt/format.h>

#include <Quelm/Integers.h>

namespace Text {

namespace {

constexpr U8 byteOf( char c ) {
   return static_cast< U8 >( c );
}

constexpr bool isContinuation( char c ) {
   return ( byteOf( c ) & 0xc0U ) == 0x80;
}

// The character at the beginning of a text: its length in bytes, and its code point.
struct Character {
   std::size_t size = 0;  // 0: the first byte begins no character
   U32 code = 0;
};

// The length of a character and the lowest code point of that length, by its first byte (RFC 3629,
// section 3).
Character longCharacter( std::string_view text ) {
   struct Form {
      U8 mask;
      U8 mark;
      std::size_t size;
      U32 lowest;
   };
   constexpr Form kForms[] = { { 0xe0, 0xc0, 2, 0x80 },
                               { 0xf0, 0xe0, 3, 0x800 },
                               { 0xf8, 0xf0, 4, 0x10000 } };
   constexpr U32 kLast = 0x10ffff;
   for ( Form const & form : kForms ) {
      bool const isOfForm = ( byteOf( text[ 0 ] ) & form.mask ) == form.mark;
      if ( !isOfForm || text.size() < form.size ) {
         continue;
      }
      U32 code = byteOf( text[ 0 ] ) & ~form.mask & 0xffU;
      for ( char const c : text.substr( 1, form.size - 1 ) ) {
         if ( !isContinuation( c ) ) {
            return {};
         }
         code = code << 6U | ( byteOf( c ) & 0x3fU );
      }
      bool const isSurrogate = code >= 0xd800 && code <= 0xdfff;
      return code < form.lowest || code > kLast || isSurrogate ? Character{}
                                                               : Character{ form.size, code };
   }
   return {};
}

Character characterAt( std::string_view text ) {
   constexpr U8 kAscii = 0x80;
   return byteOf( text[ 0 ] ) < kAscii ? Character{ 1, byteOf( text[ 0 ] ) }
                                       : longCharacter( text );
}

bool isControl( U32 code ) {
   return code < 0x20 || ( code >= 0x7f && code <= 0x9f );
}

// The character changes the order of its neighbours, or ends a line (Unicode, UAX 9 and UAX 14).
bool isReordering( U32 code ) {
   constexpr U32 kArabicMark = 0x61c;
   return code == kArabicMark || code == 0x200e || code == 0x200f ||
          ( code >= 0x2028 && code <= 0x202e ) || ( code >= 0x2066 && code <= 0x2069 );
}

// Unicode keeps the last two code points of each plane free; XML cannot hold them.
bool isNoCharacter( U32 code ) {
   constexpr U32 kLastTwo = 0xfffe;
   return ( code & kLastTwo ) == kLastTwo;
}

std::string escaped( U32 control ) {
   switch ( control ) {
   case '\n': return "\\n";
   case '\r': return "\\r";
   case '\t': return "\\t";
   default:
      return control < 0x80 ? fmt::format( "\\x{:02x}", control )
                            : fmt::format( "\\u{:04x}", control );
   }
}

bool isPlain( std::string_view text ) {
   return std::all_of( text.begin(), text.end(),
                       []( char c ) { return byteOf( c ) >= 0x20 && byteOf( c ) < 0x7f; } );
}

}  // namespace

std::string printable( std::string_view text ) {
   if ( isPlain( text ) ) {
      return std::string( text );
   }
   std::string result;
   while ( !text.empty() ) {
      Character const character = characterAt( text );
      std::size_t const size = std::max< std::size_t >( character.size, 1 );
      if ( character.size == 0 ) {
         result += fmt::format( "\\x{:02x}", byteOf( text[ 0 ] ) );
      } else if ( isControl( character.code ) || isReordering( character.code ) ||
                  isNoCharacter( character.code ) ) {
         result += escaped( character.code );
      } else {
         result += text.substr( 0, size );
      }
      text.remove_prefix( size );
   }
   return result;
}

std::string printableLines( std::string_view text ) {
   std::string result;
   for ( std::size_t end = text.find( '\n' ); end != std::string_view::npos;
         end = text.find( '\n' ) ) {
      result += printable( text.substr( 0, end ) ) + '\n';
      text.remove_prefix( end + 1 );
   }
   return result + printable( text );
}

}  // namespace Text
