// Text forms: how a value is written for people and programs, and read back.
//
// Every type that can be a key or a value of an entity attribute has one text form. textOf() writes
// it, fromText() reads exactly what textOf() writes (and nothing else, trailing characters
// included), typeName() names the type. Traces, the generic interface, scenario files and dumps all
// use the same form, so a text from one place can be pasted into the other.
//
// A type gets its form in one of three ways:
//
// - It is a number, bool or std::string: the form is built in. A string is written bare when it
//   consists of name characters only (letters, digits, and any of "_-./:@#"), quoted otherwise.
// - It declares its fields one line each (Quelm/Fields.h): the form is the type's name followed by
//   every field's name and text.
// - It has three members of its own: `static std::string_view textTypeName()`,
//   `void textTo( std::string & out ) const` and `static T textFrom( TextReader & in )`.
//
// A value type that derives from Quelm::Value also gets operator<< on output streams.
//
// Failures: reading throws Quelm::TextError and leaves nothing half built; the message gives the
// position and what was expected there. Writing does not fail. Cost: linear in the text.
#pragma once

#include <charconv>
#include <compare>
#include <concepts>
#include <initializer_list>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>

#include <Quelm/Error.h>
#include <Quelm/Integers.h>

namespace Quelm {

// Base of the framework's value types; makes operator<< below findable from any namespace.
//
// Its comparisons serve the defaulted ones of derived classes. They take nothing but the bare base,
// so that a class that declares no comparison has none.
struct Value {
   template< std::same_as< Value > T > friend constexpr bool operator==( T const &, T const & ) {
      return true;
   }
   template< std::same_as< Value > T >
   friend constexpr std::strong_ordering operator<=>( T const &, T const & ) {
      return std::strong_ordering::equal;
   }
};

// A cursor over a text being read.
class TextReader {
 public:
   explicit TextReader( std::string_view text ) : text_( text ) {}

   bool atEnd() const { return position_ == text_.size(); }
   std::string_view rest() const { return text_.substr( position_ ); }

   // The next character, or '\0' at the end.
   char peek() const { return atEnd() ? '\0' : text_[ position_ ]; }

   // Consumes `literal` if it comes next.
   bool accept( std::string_view literal );
   // Consumes `literal`; TextError if something else comes next.
   void expect( std::string_view literal );
   // TextError unless everything has been consumed.
   void expectEnd() const;

   // Consumes `count` characters, of which there must be as many.
   void skip( std::size_t count ) { position_ += count; }
   // Consumes the longest run of characters for which `belongs` holds.
   template< std::predicate< char > Belongs > std::string_view takeWhile( Belongs belongs ) {
      std::size_t const start = position_;
      while ( !atEnd() && belongs( text_[ position_ ] ) ) {
         ++position_;
      }
      return text_.substr( start, position_ - start );
   }

   // Throws TextError with the position and the text around it.
   [[noreturn]] void fail( std::string const & expected ) const;

 private:
   std::string_view text_;
   std::size_t position_ = 0;
};

template< typename T >
concept HasOwnTextForm = requires( T const & value, std::string & out, TextReader & in ) {
   { T::textTypeName() } -> std::convertible_to< std::string_view >;
   value.textTo( out );
   { T::textFrom( in ) } -> std::same_as< T >;
};

template< typename T >
concept PlainInteger = std::integral< T > && !std::same_as< T, bool > && !std::same_as< T, char >;

// The text form of T; specialised for types that cannot carry one themselves.
template< typename T > struct TextForm;

template< HasOwnTextForm T > struct TextForm< T > {
   static std::string_view typeName() { return T::textTypeName(); }
   static void write( std::string & out, T const & value ) { value.textTo( out ); }
   static T read( TextReader & in ) { return T::textFrom( in ); }
};

template<> struct TextForm< bool > {
   static std::string_view typeName() { return "bool"; }
   static void write( std::string & out, bool value ) { out += value ? "true" : "false"; }
   static bool read( TextReader & in );
};

template<> struct TextForm< std::string > {
   static std::string_view typeName() { return "string"; }
   static void write( std::string & out, std::string_view value );
   static std::string read( TextReader & in );
};

// Decimal; hexadecimal with 0x is accepted too. TextError outside the range of T.
template< PlainInteger T > struct TextForm< T > {
   static std::string_view typeName() {
      constexpr bool isSigned = std::is_signed_v< T >;
      switch ( sizeof( T ) ) {
      case 1: return isSigned ? "S8" : "U8";
      case 2: return isSigned ? "S16" : "U16";
      case 4: return isSigned ? "S32" : "U32";
      default: return isSigned ? "S64" : "U64";
      }
   }
   static void write( std::string & out, T value ) { out += std::to_string( value ); }
   static T read( TextReader & in ) {
      bool const hexadecimal = in.rest().starts_with( "0x" );
      std::string_view const digits = in.rest().substr( hexadecimal ? 2 : 0 );
      T value{};
      auto const [ end, error ] = std::from_chars( digits.data(), digits.data() + digits.size(),
                                                   value, hexadecimal ? 16 : 10 );
      if ( error != std::errc() ) {
         in.fail( "a number of type " + std::string( typeName() ) );
      }
      in.skip( static_cast< std::size_t >( end - in.rest().data() ) );
      return value;
   }
};

template< typename T >
concept HasTextForm = requires( T const & value, std::string & out, TextReader & in ) {
   TextForm< T >::typeName();
   TextForm< T >::write( out, value );
   { TextForm< T >::read( in ) } -> std::same_as< T >;
};

template< HasTextForm T > std::string textOf( T const & value ) {
   std::string out;
   TextForm< T >::write( out, value );
   return out;
}

template< HasTextForm T > T fromText( std::string_view text ) {
   TextReader in( text );
   T value = TextForm< T >::read( in );
   in.expectEnd();
   return value;
}

template< HasTextForm T > std::string typeName() {
   return std::string( TextForm< T >::typeName() );
}

template< std::derived_from< Value > T >
requires HasTextForm< T > std::ostream & operator<<( std::ostream & out, T const & value ) {
   return out << textOf( value );
}

// `format` with its n-th "%s" or "%d" replaced by the n-th of `values`. The numbers of both must
// agree: a failed assertion otherwise.
std::string formatted( std::string_view format, std::initializer_list< std::string_view > values );

// The characters of a string that is written without quotes.
bool isNameCharacter( char c );

}  // namespace Quelm
