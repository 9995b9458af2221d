#include <Pelk/IpGenAddr.h>

#include <algorithm>
#include <charconv>

#include <Quelm/Error.h>

namespace Pelk {

namespace {

constexpr std::size_t kGroups = 8;
using Groups = std::array< U16, kGroups >;

Groups groupsOf( std::array< U8, 16 > const & bytes ) {
   Groups groups{};
   for ( std::size_t n = 0; n < kGroups; ++n ) {
      groups[ n ] = static_cast< U16 >( bytes[ 2 * n ] << 8 | bytes[ 2 * n + 1 ] );
   }
   return groups;
}

// Reads the text of one address; every refusal quotes the whole of it.
class Parser {
 public:
   explicit Parser( std::string_view text ) : text_( text ) {}

   IpGenAddr address() const {
      if ( text_.find( ':' ) == std::string_view::npos ) {
         return IpGenAddr::ipv4( dottedQuad( text_ ) );
      }
      Groups const groups = allGroups();
      std::array< U8, 16 > bytes{};
      for ( std::size_t n = 0; n < bytes.size(); ++n ) {
         bytes[ n ] = static_cast< U8 >( groups[ n / 2 ] >> ( n % 2 == 0 ? 8 : 0 ) );
      }
      return IpGenAddr::ipv6( bytes );
   }

 private:
   struct SomeGroups {
      Groups value{};
      std::size_t count = 0;
   };

   [[noreturn]] void refuse( std::string const & reason ) const {
      throw Quelm::TextError( "'" + std::string( text_ ) + "' is not an IP address: " + reason );
   }

   std::array< U8, 4 > dottedQuad( std::string_view text ) const {
      if ( std::count( text.begin(), text.end(), '.' ) != 3 ) {
         refuse( "an IPv4 address is four numbers, as in 192.0.2.1" );
      }
      std::array< U8, 4 > bytes{};
      for ( U8 & byte : bytes ) {
         std::size_t const end = std::min( text.find( '.' ), text.size() );
         byte = decimal( text.substr( 0, end ) );
         text.remove_prefix( std::min( end + 1, text.size() ) );
      }
      return bytes;
   }

   U8 decimal( std::string_view digits ) const {
      U8 value = 0;
      auto const [ end, error ] =
         std::from_chars( digits.data(), digits.data() + digits.size(), value );
      if ( error != std::errc() || end != digits.data() + digits.size() ) {
         refuse( "'" + std::string( digits ) + "' is not a number from 0 to 255" );
      }
      if ( digits.size() > 1 && digits.front() == '0' ) {
         refuse( "'" + std::string( digits ) + "' has a leading zero" );
      }
      return value;
   }

   U16 hexadecimal( std::string_view digits ) const {
      U16 value = 0;
      auto const [ end, error ] =
         std::from_chars( digits.data(), digits.data() + digits.size(), value, 16 );
      if ( error != std::errc() || end != digits.data() + digits.size() || digits.size() > 4 ) {
         refuse( "'" + std::string( digits ) +
                 "' is not a group of one to four hexadecimal digits" );
      }
      return value;
   }

   void append( SomeGroups & groups, U16 group ) const {
      if ( groups.count == kGroups ) {
         refuse( "it has more than eight groups" );
      }
      groups.value[ groups.count++ ] = group;
   }

   // The groups of a text without "::"; only its last may be a dotted IPv4 address, which makes
   // two.
   SomeGroups groupsIn( std::string_view text, bool mayEndDotted ) const {
      SomeGroups groups;
      for ( bool isLast = text.empty(); !isLast; ) {
         std::size_t const end = std::min( text.find( ':' ), text.size() );
         isLast = end == text.size();
         std::string_view const part = text.substr( 0, end );
         if ( isLast && mayEndDotted && part.find( '.' ) != std::string_view::npos ) {
            std::array< U8, 4 > const bytes = dottedQuad( part );
            append( groups, static_cast< U16 >( bytes[ 0 ] << 8 | bytes[ 1 ] ) );
            append( groups, static_cast< U16 >( bytes[ 2 ] << 8 | bytes[ 3 ] ) );
         } else if ( part.empty() ) {
            refuse( "it has an empty group; only one '::' may stand for groups of zeros" );
         } else {
            append( groups, hexadecimal( part ) );
         }
         text.remove_prefix( std::min( end + 1, text.size() ) );
      }
      return groups;
   }

   Groups allGroups() const {
      std::size_t const gap = text_.find( "::" );
      if ( gap == std::string_view::npos ) {
         SomeGroups const all = groupsIn( text_, true );
         if ( all.count != kGroups ) {
            refuse( "without '::' an IPv6 address has eight groups" );
         }
         return all.value;
      }
      SomeGroups const head = groupsIn( text_.substr( 0, gap ), false );
      SomeGroups const tail = groupsIn( text_.substr( gap + 2 ), true );
      if ( head.count + tail.count >= kGroups ) {
         refuse( "'::' leaves no group of zeros for it to stand for" );
      }
      Groups result = head.value;
      std::copy_n( tail.value.begin(), tail.count, result.end() - std::ptrdiff_t( tail.count ) );
      return result;
   }

   std::string_view text_;
};

void writeDotted( std::string & out, U8 const * bytes ) {
   for ( std::size_t n = 0; n < 4; ++n ) {
      out += n == 0 ? "" : ".";
      out += std::to_string( bytes[ n ] );
   }
}

void writeGroup( std::string & out, U16 group ) {
   std::array< char, 4 > digits{};
   char * const end = std::to_chars( digits.begin(), digits.end(), group, 16 ).ptr;
   out.append( digits.begin(), end );
}

struct Run {
   std::size_t begin;
   std::size_t length;
};

// The first of the longest runs of zero groups; beyond the last group when none has two of them.
Run longestZeroRun( Groups const & groups ) {
   Run longest{ kGroups, 1 };
   Run current{ 0, 0 };
   for ( std::size_t n = 0; n < kGroups; ++n ) {
      if ( groups[ n ] != 0 ) {
         current = { n + 1, 0 };
      } else if ( ++current.length > longest.length ) {
         longest = current;
      }
   }
   return longest;
}

void writeIpv6( std::string & out, std::array< U8, 16 > const & bytes ) {
   Groups const groups = groupsOf( bytes );
   Run const gap = longestZeroRun( groups );
   bool const isMapped = gap.begin == 0 && gap.length == 5 && groups[ 5 ] == 0xffff;
   for ( std::size_t n = 0; n < kGroups; ) {
      if ( n == gap.begin ) {
         out += "::";
         n += gap.length;
         continue;
      }
      out += n == 0 || n == gap.begin + gap.length ? "" : ":";
      if ( isMapped && n == 6 ) {
         writeDotted( out, &bytes[ 12 ] );
         return;
      }
      writeGroup( out, groups[ n++ ] );
   }
}

}  // namespace

IpGenAddr IpGenAddr::fromString( std::string_view text ) {
   return Parser( text ).address();
}

void IpGenAddr::textTo( std::string & out ) const {
   std::array< U8, 16 > const octets = bytes();
   if ( family_ == Family::ipv4 ) {
      writeDotted( out, octets.data() );
   } else {
      writeIpv6( out, octets );
   }
}

IpGenAddr IpGenAddr::textFrom( Quelm::TextReader & in ) {
   // The whole word, so that a refusal quotes all of it; '@' and '#' follow an address in keys.
   return fromString( in.takeWhile( []( char c ) {
      return ( Quelm::isNameCharacter( c ) && c != '@' && c != '#' ) || c == '%';
   } ) );
}

}  // namespace Pelk
