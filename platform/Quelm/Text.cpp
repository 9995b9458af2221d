#include <Quelm/Text.h>

#include <algorithm>

#include <Quelm/Assert.h>

namespace Quelm {

bool TextReader::accept( std::string_view literal ) {
   if ( !rest().starts_with( literal ) ) {
      return false;
   }
   position_ += literal.size();
   return true;
}

void TextReader::expect( std::string_view literal ) {
   if ( !accept( literal ) ) {
      fail( "'" + std::string( literal ) + "'" );
   }
}

void TextReader::expectEnd() const {
   if ( !atEnd() ) {
      fail( "the end of the text" );
   }
}

void TextReader::fail( std::string const & expected ) const {
   constexpr std::size_t kShown = 24;
   std::string const found =
      atEnd() ? "the end of the text" : "'" + std::string( rest().substr( 0, kShown ) ) + "'";
   throw TextError( "expected " + expected + " at character " + std::to_string( position_ + 1 ) +
                    ", found " + found );
}

bool TextForm< bool >::read( TextReader & in ) {
   if ( in.accept( "true" ) ) {
      return true;
   }
   if ( in.accept( "false" ) ) {
      return false;
   }
   in.fail( "'true' or 'false'" );
}

bool isNameCharacter( char c ) {
   return ( c >= 'a' && c <= 'z' ) || ( c >= 'A' && c <= 'Z' ) || ( c >= '0' && c <= '9' ) ||
          std::string_view( "_-./:@#" ).find( c ) != std::string_view::npos;
}

void TextForm< std::string >::write( std::string & out, std::string_view value ) {
   if ( !value.empty() && std::all_of( value.begin(), value.end(), isNameCharacter ) ) {
      out += value;
      return;
   }
   out += '"';
   for ( char const c : value ) {
      if ( c == '"' || c == '\\' ) {
         out += '\\';
      }
      out += c;
   }
   out += '"';
}

std::string TextForm< std::string >::read( TextReader & in ) {
   if ( !in.accept( "\"" ) ) {
      std::string_view const bare = in.takeWhile( isNameCharacter );
      if ( bare.empty() ) {
         in.fail( "a name or a quoted string" );
      }
      return std::string( bare );
   }
   std::string value;
   while ( !in.accept( "\"" ) ) {
      in.accept( "\\" );
      if ( in.atEnd() ) {
         in.fail( "a closing '\"'" );
      }
      value += in.peek();
      in.expect( std::string_view( &value.back(), 1 ) );
   }
   return value;
}

namespace {

// Where the first "%s" or "%d" begins, or npos.
std::size_t placeholderIn( std::string_view format ) {
   std::size_t at = format.find( '%' );
   while ( at != std::string_view::npos && !format.substr( at ).starts_with( "%s" ) &&
           !format.substr( at ).starts_with( "%d" ) ) {
      at = format.find( '%', at + 1 );
   }
   return at;
}

}  // namespace

std::string formatted( std::string_view format, std::initializer_list< std::string_view > values ) {
   std::string out;
   auto const * value = values.begin();
   for ( std::size_t at = placeholderIn( format ); at != std::string_view::npos;
         at = placeholderIn( format ) ) {
      QUELM_ASSERT( "a value for every %s and %d of the format" && value != values.end() );
      out.append( format.substr( 0, at ) ).append( *value++ );
      format.remove_prefix( at + 2 );
   }
   QUELM_ASSERT( "a %s or %d for every value" && value == values.end() );
   return out.append( format );
}

}  // namespace Quelm
