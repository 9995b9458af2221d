#include <Story/Codec.h>

#include <stdexcept>
#include <type_traits>

#include <nlohmann/json.hpp>

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

// The type of the JSON value tells the alternative.
template<> struct adl_serializer< decltype( Story::CallValue::value ) > {
   using Value = decltype( Story::CallValue::value );

   static void to_json( json & out, Value const & value ) {
      std::visit( [ & ]( auto const & alternative ) { out = alternative; }, value );
   }
   static void from_json( json const & in, Value & value ) {
      if ( in.is_string() ) {
         value = in.get< std::string >();
      } else if ( in.is_array() ) {
         value = in.get< std::vector< U32 > >();
      } else {
         value = in.get< U64 >();
      }
   }
};

// A kind of difference goes by its name.
template<> struct adl_serializer< Story::DifferenceKind > {
   static void to_json( json & out, Story::DifferenceKind kind ) { out = Story::nameOf( kind ); }
   static void from_json( json const & in, Story::DifferenceKind & kind ) {
      kind = Story::differenceKindNamed( in.get< std::string >() );
   }
};

}  // namespace nlohmann

namespace Story {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( Difference, kind, unit, group, entry, rule, field, is, shouldBe,
                                    because )

// The fields of every event, and of what they are made of.
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( RuleKey, unit, group, id )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( RuleValue, part, data, mask )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( RuleField, name, values, ports )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( Rule, key, name, priority, isWritten, qualifiers, actions )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( CallValue, name, value )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( Assertion, file, line, function, expression )

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( FrameTunnel, source, destination, vni )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( FrameInner, source, destination, vlan, etherType, sourceIp,
                                    destinationIp )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( FrameIngress, unit, rule, classId )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( FrameCopy, intf, vtep, unit, port, verdict, rule )

void to_json( nlohmann::json & out, EntityTree const & tree );
void from_json( nlohmann::json const & in, EntityTree & tree );
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( EntityItem, key, text, entity )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( EntityAttribute, name, kind, items )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( EntityTree, type, identity, shownAt, attributes )

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( RunBegins, scenario, title, description, steps )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( StepBegins, kind, number, text, place )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( StepEnds, number )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( RunEnds, time )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( BadInput, text )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( Warning, text )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( PluginLoaded, file, mounters )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( MountAsked, path, type, flags )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( MountsDone, mounter, status, problems )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( EntityLookedUp, path, type )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( SharedEntityAsked, name, type )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( TcamGroupAsked, group, isThere )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( VariantChosen, variant, type )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( DependencyPointReady, point, isOfPlugin )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( PublishedChange, path, attribute, key, from, to )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( HardwareCall, operation, callText, unit, entry, values,
                                    returnCode )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( RuleIs, rule )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( RuleGone, key )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( TraceLine, handle, level, text )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( LogLine, name, line )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( ExpectationChecked, text, place, held, found )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( FramesBegin, arrival, frames )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( FrameForwarded, number, arrival, length, tunnel, inner, kind,
                                    dropReason, ingress, copies )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( ForeignEntriesAre, unit, group, asked, held )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( EntityDumped, path, tree )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( RulesDumped, rules )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( Audited, rules, entries, differences, unprotected )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( PluginPass, state, reason )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( EntityShown, path, tree )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( OutputLine, text )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( Stopped, reason, assertion, output, trace, isOverTime )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( Interrupted, signal, reason )

namespace {

constexpr char const * kNameField = "event";
// More than any event has; each level of what is read costs stack.
constexpr int kDeepest = 1000;

// No field of an event is a number with a fraction; the library would cut it off.
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
      throw std::runtime_error( error.what() );  // a name that is none of an enumeration's
   }
}

}  // namespace Story
