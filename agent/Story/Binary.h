// Values as bytes, and back.
//
//    std::string bytes;
//    Binary::Out out( bytes );
//    Binary::write( out, event );
//
//    Binary::In in( bytes );
//    Binary::read( in, event );
//    in.expectEnd();
//
// Form< T > knows how a type is written, how it is read, and how its layout is described. There is
// one for
//
//    numbers        7 bits in a byte, the lowest first; signed ones with the sign in the lowest bit
//    texts, lists   their length, and what they hold
//    choices        an enumeration by the number of its value, a variant by its alternative
//    options        whether there is a value, and the value
//    structures     their fields (Story/Fields.h), one after the other
//    values of the platform: their text, or numbers where they are frequent (EventForms.h)
//
// Each value has exactly one form, and reading takes nothing else. Failures: reading throws
// std::runtime_error for a form that is damaged, and never needs more memory than some times the
// size of the bytes, nor more stack than kDeepest structures within each other. Layout: a text that
// changes whenever the form of a type changes.
#pragma once

#include <array>
#include <concepts>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeindex>
#include <variant>
#include <vector>

#include <Quelm/Integers.h>
#include <Quelm/Text.h>
#include <Story/Fields.h>

namespace Story::Binary {

class Out {
 public:
   // Appends to `bytes`.
   explicit Out( std::string & bytes ) : bytes_( bytes ) {}

   void byte( U8 byte ) { bytes_ += static_cast< char >( byte ); }
   void number( U64 number ) {
      for ( ; number > kLow; number >>= kBits ) {
         byte( static_cast< U8 >( number | kMore ) );
      }
      byte( static_cast< U8 >( number ) );
   }
   void bytes( std::string_view bytes ) { bytes_ += bytes; }

   static constexpr U8 kLow = 0x7f;
   static constexpr U8 kMore = 0x80;  // another byte follows
   static constexpr int kBits = 7;

 private:
   std::string & bytes_;
};

class In {
 public:
   // Deeper than any event.
   static constexpr int kDeepest = 1000;

   explicit In( std::string_view bytes ) : bytes_( bytes ) {}

   U8 byte();
   U64 number();
   // The next bytes.
   std::string_view bytes( U64 count );
   // A number below `end`.
   U64 below( U64 end );
   // The number of things that follow, of which each takes a byte at least.
   std::size_t count() { return static_cast< std::size_t >( below( bytes_.size() + 1 ) ); }

   bool isAtEnd() const { return bytes_.empty(); }
   void expectEnd() const;
   [[noreturn]] static void fail( std::string const & reason ) {
      throw std::runtime_error( reason );
   }

   // One structure within another.
   class Level {
    public:
      explicit Level( In & in ) : in_( in ) {
         if ( ++in_.depth_ > kDeepest ) {
            fail( "structures are nested too deep" );
         }
      }
      Level( Level const & ) = delete;
      Level & operator=( Level const & ) = delete;
      ~Level() { --in_.depth_; }

    private:
      In & in_;
   };

 private:
   std::string_view bytes_;  // not yet read
   int depth_ = 0;
};

// The layout of a type, in words.
class Layout {
 public:
   std::string const & text() const { return text_; }

   Layout & operator+=( std::string_view words ) {
      text_ += words;
      return *this;
   }
   // Describes a structure; one that holds itself is described once.
   template< typename Describe > void structure( std::type_index type, Describe const & describe ) {
      for ( std::size_t n = 0; n < open_.size(); ++n ) {
         if ( open_[ n ] == type ) {
            text_ += "^" + std::to_string( n );
            return;
         }
      }
      open_.push_back( type );
      text_ += '{';
      describe();
      text_ += '}';
      open_.pop_back();
   }

 private:
   std::string text_;
   std::vector< std::type_index > open_;
};

// write(), read() and describe() of a type.
template< typename T > struct Form;

template< typename T > void write( Out & out, T const & value ) {
   Form< T >::write( out, value );
}
template< typename T > void read( In & in, T & value ) {
   Form< T >::read( in, value );
}
template< typename T > T read( In & in ) {
   T value{};
   Form< T >::read( in, value );
   return value;
}
template< typename T > void describe( Layout & layout ) {
   Form< T >::describe( layout );
}

// A number that is another one for any other layout.
U64 fingerprintOf( Layout const & layout );
template< typename T > U64 fingerprintOf() {
   Layout layout;
   describe< T >( layout );
   return fingerprintOf( layout );
}

// --- Numbers

template<> struct Form< bool > {
   static void write( Out & out, bool value ) { out.byte( value ? 1 : 0 ); }
   static void read( In & in, bool & value ) { value = in.below( 2 ) == 1; }
   static void describe( Layout & layout ) { layout += "bool"; }
};

template< std::unsigned_integral T > struct Form< T > {
   static void write( Out & out, T value ) { out.number( value ); }
   static void read( In & in, T & value ) {
      U64 const number = in.number();
      if ( number > std::numeric_limits< T >::max() ) {
         In::fail( std::to_string( number ) + " is too large" );
      }
      value = static_cast< T >( number );
   }
   static void describe( Layout & layout ) { layout += "u" + std::to_string( sizeof( T ) ); }
};

// 0, -1, 1, -2 become 0, 1, 2, 3.
template< std::signed_integral T > struct Form< T > {
   static void write( Out & out, T value ) {
      U64 const twice = static_cast< U64 >( value ) << 1U;
      out.number( value < 0 ? ~twice : twice );
   }
   static void read( In & in, T & value ) {
      U64 const number = in.number();
      U64 const half = number >> 1U;
      auto const wide = static_cast< S64 >( ( number & 1U ) != 0 ? ~half : half );
      if ( wide < std::numeric_limits< T >::min() || wide > std::numeric_limits< T >::max() ) {
         In::fail( std::to_string( wide ) + " is out of range" );
      }
      value = static_cast< T >( wide );
   }
   static void describe( Layout & layout ) { layout += "s" + std::to_string( sizeof( T ) ); }
};

// --- Texts and platform values

template<> struct Form< std::string > {
   static void write( Out & out, std::string_view value ) {
      out.number( value.size() );
      out.bytes( value );
   }
   static void read( In & in, std::string & value ) { value = in.bytes( in.number() ); }
   static void describe( Layout & layout ) { layout += "text"; }
};

template< std::derived_from< Quelm::Value > T > struct Form< T > {
   static void write( Out & out, T const & value ) {
      Form< std::string >::write( out, Quelm::textOf( value ) );
   }
   static void read( In & in, T & value ) {
      value = Quelm::fromText< T >( in.bytes( in.number() ) );
   }
   static void describe( Layout & layout ) { layout += T::textTypeName(); }
};

// --- Enumerations

// values() is the number of an enumeration's values.
template< typename T > struct Enumeration;

template< typename T >
requires std::is_enum_v< T >
struct Form< T > {
   static void write( Out & out, T value ) { out.number( static_cast< U64 >( value ) ); }
   static void read( In & in, T & value ) {
      value = static_cast< T >( in.below( Enumeration< T >::values() ) );
   }
   static void describe( Layout & layout ) {
      layout += "one of " + std::to_string( Enumeration< T >::values() );
   }
};

// --- Several, one, or none

template< typename T > struct Form< std::vector< T > > {
   static void write( Out & out, std::vector< T > const & values ) {
      out.number( values.size() );
      for ( T const & value : values ) {
         Binary::write( out, value );
      }
   }
   static void read( In & in, std::vector< T > & values ) {
      values.clear();
      for ( std::size_t left = in.count(); left > 0; --left ) {
         Binary::read( in, values.emplace_back() );
      }
   }
   static void describe( Layout & layout ) {
      layout += "list of ";
      Binary::describe< T >( layout );
   }
};

template< typename T > struct Form< std::optional< T > > {
   static void write( Out & out, std::optional< T > const & value ) {
      Binary::write( out, value.has_value() );
      if ( value ) {
         Binary::write( out, *value );
      }
   }
   static void read( In & in, std::optional< T > & value ) {
      value.reset();
      if ( Binary::read< bool >( in ) ) {
         Binary::read( in, value.emplace() );
      }
   }
   static void describe( Layout & layout ) {
      layout += "perhaps ";
      Binary::describe< T >( layout );
   }
};

// One bit for each that is there, and those that are.
template< typename T, std::size_t size >
requires( size < 64 ) struct Form< std::array< std::optional< T >, size > > {
   using Values = std::array< std::optional< T >, size >;

   static void write( Out & out, Values const & values ) {
      U64 present = 0;
      for ( std::size_t n = 0; n < size; ++n ) {
         present |= static_cast< U64 >( values[ n ].has_value() ) << n;
      }
      out.number( present );
      for ( auto const & value : values ) {
         if ( value ) {
            Binary::write( out, *value );
         }
      }
   }
   static void read( In & in, Values & values ) {
      U64 const present = in.below( U64{ 1 } << size );
      for ( std::size_t n = 0; n < size; ++n ) {
         values[ n ].reset();
         if ( ( present >> n & 1U ) != 0 ) {
            Binary::read( in, values[ n ].emplace() );
         }
      }
   }
   static void describe( Layout & layout ) {
      layout += std::to_string( size ) + " perhaps ";
      Binary::describe< T >( layout );
   }
};

template<> struct Form< std::monostate > {
   static void write( Out &, std::monostate ) {}
   static void read( In &, std::monostate & ) {}
   static void describe( Layout & layout ) { layout += "nothing"; }
};

// An alternative with a name is described with it.
template< typename... T > struct Form< std::variant< T... > > {
   using Value = std::variant< T... >;

   static void write( Out & out, Value const & value ) {
      out.number( value.index() );
      std::visit( [ & ]( auto const & alternative ) { Binary::write( out, alternative ); }, value );
   }
   static void read( In & in, Value & value ) {
      readAlternative( in, in.below( sizeof...( T ) ), value );
   }
   static void describe( Layout & layout ) { ( describeAlternative< T >( layout ), ... ); }

 private:
   template< std::size_t n = 0 > static void readAlternative( In & in, U64 index, Value & value ) {
      if constexpr ( n < sizeof...( T ) ) {
         if ( index == n ) {
            Binary::read( in, value.template emplace< n >() );
         } else {
            readAlternative< n + 1 >( in, index, value );
         }
      }
   }
   template< typename Alternative > static void describeAlternative( Layout & layout ) {
      layout += "|";
      if constexpr ( requires { Alternative::kName; } ) {
         layout += Alternative::kName;
      }
      Binary::describe< Alternative >( layout );
   }
};

// --- Structures

template< HasFields T > struct Form< T > {
   static void write( Out & out, T const & structure ) {
      Fields< T >::list( structure, [ & ]( char const *, auto const & value, auto... ) {
         Binary::write( out, value );
      } );
   }
   static void read( In & in, T & structure ) {
      In::Level const level( in );
      Fields< T >::list( structure, [ & ]( char const *, auto & value, auto... ) {
         Binary::read( in, value );
      } );
   }
   static void describe( Layout & layout ) {
      layout.structure( typeid( T ), [ & ] {
         T structure{};
         Fields< T >::list( structure, [ & ]( char const * name, auto & value, auto... ) {
            ( layout += name ) += ":";
            Binary::describe< std::remove_cvref_t< decltype( value ) > >( layout );
            layout += ",";
         } );
      } );
   }
};

}  // namespace Story::Binary
