#include <Story/Codec.h>

#include <concepts>
#include <stdexcept>
#include <type_traits>

#include <nlohmann/json.hpp>

#include <SoftSdk/PortBitmap.h>
#include <Story/ChipFields.h>

namespace nlohmann {

// An absent value is null.
template< typename T > struct adl_serializer< std::optional< T > > {
   static void to_json( json & out, std::optional< T > const & value ) {
      out = value ? json( *value ) : json();
   }
   static void from_json( json const & in, std::optional< T > & value ) {
      value = in.is_null() ? std::nullopt : std::optional< T >( in.get< T >() );
   }
};

// A structure is an object of its fields.
template< Story::HasFields T > struct adl_serializer< T > {
   static void to_json( json & out, T const & structure ) {
      Story::Fields< T >::list( structure, [ & ]( char const * name, auto const & value, auto... ) {
         out[ name ] = value;
      } );
   }
   static void from_json( json const & in, T & structure ) {
      Story::Fields< T >::list( structure, [ & ]( char const * name, auto & value, auto... ) {
         in.at( name ).get_to( value );
      } );
   }
};

// A value of the platform is stored as its text.
template< std::derived_from< Quelm::Value > T > struct adl_serializer< T > {
   static void to_json( json & out, T const & value ) { out = Quelm::textOf( value ); }
   static void from_json( json const & in, T & value ) {
      value = Quelm::fromText< T >( in.get< std::string >() );
   }
};

// Ports are stored as the words of their bitmap.
template<> struct adl_serializer< Brum::PerUnitBitmap > {
   static void to_json( json & out, Brum::PerUnitBitmap const & ports ) {
      out = Chip::portsOf( ports );
   }
   static void from_json( json const & in, Brum::PerUnitBitmap & ports ) {
      ports = {};
      for ( json const & port : in ) {
         ports.bitSet( port.get< U32 >() );
      }
   }
};

// How many values an enumeration of the chip has; 0 for any other type.
template< typename T > inline constexpr std::size_t kValuesOf = 0;
template<> inline constexpr std::size_t kValuesOf< Chip::FrameKind > = Chip::kFrameKinds.size();
template<> inline constexpr std::size_t kValuesOf< Chip::DropReason > = Chip::kDropReasons;
template<> inline constexpr std::size_t kValuesOf< Chip::Verdict > = Chip::kVerdicts;

template< typename T >
requires( kValuesOf< T > != 0 ) struct adl_serializer< T > {
   static void to_json( json & out, T value ) { out = static_cast< std::size_t >( value ); }
   static void from_json( json const & in, T & value ) {
      auto const number = in.get< std::size_t >();
      if ( number >= kValuesOf< T > ) {
         throw std::out_of_range( in.dump() + " is none of an enumeration's values" );
      }
      value = static_cast< T >( number );
   }
};

// The type of the JSON value tells the alternative.
template<> struct adl_serializer< decltype( Chip::NamedValue::value ) > {
   using Value = decltype( Chip::NamedValue::value );

   static void to_json( json & out, Value const & value ) {
      std::visit( [ & ]( auto const & alternative ) { out = alternative; }, value );
   }
   static void from_json( json const & in, Value & value ) {
      if ( in.is_string() ) {
         value = in.get< std::string >();
      } else if ( in.is_array() ) {
         value = in.get< Brum::PerUnitBitmap >();
      } else {
         value = in.get< U32 >();
      }
   }
};

// The type of the JSON value tells the alternative of a table's cell.
template<> struct adl_serializer< Story::Cell > {
   static void to_json( json & out, Story::Cell const & cell ) {
      std::visit( Story::Overloaded{ [ & ]( std::monostate ) { out = nullptr; },
                                     [ & ]( auto const & alternative ) { out = alternative; } },
                  cell.value );
   }
   static void from_json( json const & in, Story::Cell & cell ) {
      if ( in.is_number() ) {
         cell = in.get< U64 >();
      } else if ( in.is_string() ) {
         cell = in.get< std::string >();
      } else if ( in.is_array() ) {
         cell = in.get< std::vector< std::string > >();
      } else {
         cell = {};
      }
   }
};

// A kind of difference is stored as its name.
template<> struct adl_serializer< Story::DifferenceKind > {
   static void to_json( json & out, Story::DifferenceKind kind ) { out = Story::nameOf( kind ); }
   static void from_json( json const & in, Story::DifferenceKind & kind ) {
      kind = Story::differenceKindNamed( in.get< std::string >() );
   }
};

}  // namespace nlohmann

namespace Story {

namespace {

constexpr char const * kNameField = "event";
// Deeper than any event. Each level costs stack when it is read.
constexpr int kDeepest = 1000;

// No field of an event has a fraction; the library would cut it off.
void checkNumbers( nlohmann::json const & in, int depth = 0 ) {
   if ( in.is_number_float() ) {
      throw std::runtime_error( in.dump() + " stands where a whole number belongs" );
   }
   if ( depth > kDeepest ) {
      throw std::runtime_error( "this is nested too deep for an event" );
   }
   if ( in.is_structured() ) {
      for ( nlohmann::json const & member : in ) {
         checkNumbers( member, depth + 1 );
      }
   }
}

template< std::size_t n = 0 >
Event readEvent( std::string const & name, nlohmann::json const & fields ) {
   if constexpr ( n == std::variant_size_v< Event > ) {
      throw std::runtime_error( "no event is named '" + name + "'" );
   } else {
      using This = std::variant_alternative_t< n, Event >;
      return name == This::kName ? fields.get< This >() : readEvent< n + 1 >( name, fields );
   }
}

}  // namespace

std::string encoded( Event const & event ) {
   nlohmann::json line =
      std::visit( []( auto const & fields ) { return nlohmann::json( fields ); }, event );
   line[ kNameField ] = std::visit(
      []( auto const & fields ) { return std::remove_cvref_t< decltype( fields ) >::kName; },
      event );
   return line.dump( -1, ' ', false, nlohmann::json::error_handler_t::replace );
}

Event decoded( std::string const & line ) {
   try {
      nlohmann::json const fields = nlohmann::json::parse( line );
      checkNumbers( fields );
      return readEvent( fields.at( kNameField ).get< std::string >(), fields );
   } catch ( nlohmann::json::exception const & error ) {
      throw std::runtime_error( error.what() );
   } catch ( std::logic_error const & error ) {
      throw std::runtime_error( error.what() );  // an unknown name of an enumeration's value
   }
}

}  // namespace Story
