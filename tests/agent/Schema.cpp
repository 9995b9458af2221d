#include <Schema.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <regex>
#include <set>
#include <stdexcept>

namespace Schema {

namespace {

std::regex const & regexOf( std::string const & pattern ) {
   static std::map< std::string, std::regex > known;
   return known.try_emplace( pattern, pattern ).first->second;
}

Json scalarOf( YAML::Node const & node ) {
   static std::regex const integer( "[-+]?[0-9]+" );
   static std::regex const prefixed( "0x[0-9a-fA-F]+|0o[0-7]+" );
   static std::regex const floating( "[-+]?(\\.[0-9]+|[0-9]+(\\.[0-9]*)?)([eE][-+]?[0-9]+)?" );
   std::string const & text = node.Scalar();
   constexpr std::size_t kLongestNumber = 400;
   if ( node.Tag() == "!" || text.size() > kLongestNumber ) {
      return text;
   }
   if ( text == "true" || text == "True" || text == "TRUE" ) {
      return true;
   }
   if ( text == "false" || text == "False" || text == "FALSE" ) {
      return false;
   }
   if ( std::regex_match( text, prefixed ) ) {
      bool const isOctal = text[ 1 ] == 'o';
      return std::strtoull( text.c_str() + 2, nullptr, isOctal ? 8 : 16 );
   }
   constexpr std::size_t kLongestWhole = 18;
   if ( std::regex_match( text, integer ) && text.size() <= kLongestWhole ) {
      return std::strtoll( text.c_str(), nullptr, 10 );
   }
   if ( std::regex_match( text, integer ) || std::regex_match( text, floating ) ) {
      return std::strtod( text.c_str(), nullptr );
   }
   return text;
}

bool isOfType( Json const & value, std::string const & type ) {
   if ( type == "integer" ) {
      return value.is_number() && std::trunc( value.get< double >() ) == value.get< double >();
   }
   return ( type == "object" && value.is_object() ) || ( type == "array" && value.is_array() ) ||
          ( type == "string" && value.is_string() ) || ( type == "number" && value.is_number() ) ||
          ( type == "boolean" && value.is_boolean() ) || ( type == "null" && value.is_null() );
}

bool areUnique( Json const & list ) {
   std::set< std::string > seen;
   return std::all_of( list.begin(), list.end(), [ & ]( Json const & one ) {
      return seen.insert( one.is_number() ? std::to_string( one.get< double >() ) : one.dump() )
         .second;
   } );
}

// The number of characters.
std::size_t lengthOf( std::string const & text ) {
   return static_cast< std::size_t >( std::count_if( text.begin(), text.end(), []( char c ) {
      return ( static_cast< unsigned char >( c ) & 0xc0U ) != 0x80U;
   } ) );
}

bool isAnnotation( std::string const & keyword ) {
   static std::set< std::string > const all{ "$schema", "title", "description", "definitions" };
   return all.contains( keyword );
}

}  // namespace

Json jsonOf( YAML::Node const & node ) {
   switch ( node.Type() ) {
   case YAML::NodeType::Map: {
      Json object = Json::object();
      for ( auto const & member : node ) {
         object[ member.first.IsScalar() ? member.first.Scalar() : "" ] = jsonOf( member.second );
      }
      return object;
   }
   case YAML::NodeType::Sequence: {
      Json list = Json::array();
      for ( YAML::Node const & element : node ) {
         list.push_back( jsonOf( element ) );
      }
      return list;
   }
   case YAML::NodeType::Scalar: return scalarOf( node );
   default: return nullptr;
   }
}

Schema const & Schema::ofScenarios() {
   static Schema const schema(
      Json::parse( std::ifstream( VORNAL_SOURCE_DIR "/docs/scenario.schema.json" ) ) );
   return schema;
}

bool Schema::matches( std::string const & pattern, std::string const & text ) const {
   auto const [ known, isNew ] = matched_.try_emplace( { pattern, text }, false );
   if ( isNew ) {
      known->second = std::regex_search( text, regexOf( pattern ) );
   }
   return known->second;
}

// The keywords that are about the value itself, or about it as a whole.
bool Schema::holds( std::string const & keyword, Json const & schema, Json const & value ) const {
   auto const valid = [ & ]( Json const & one ) { return isValid( one, value ); };
   if ( keyword == "$ref" ) {
      return valid( root_.at( Json::json_pointer( schema.get< std::string >().substr( 1 ) ) ) );
   }
   if ( keyword == "type" ) {
      return schema.is_string()
                ? isOfType( value, schema )
                : std::any_of( schema.begin(), schema.end(),
                               [ & ]( auto const & type ) { return isOfType( value, type ); } );
   }
   if ( keyword == "enum" ) {
      return std::find( schema.begin(), schema.end(), value ) != schema.end();
   }
   if ( keyword == "const" ) {
      return schema == value;
   }
   if ( keyword == "anyOf" ) {
      return std::any_of( schema.begin(), schema.end(), valid );
   }
   if ( keyword == "allOf" ) {
      return std::all_of( schema.begin(), schema.end(), valid );
   }
   if ( keyword == "oneOf" ) {
      return std::count_if( schema.begin(), schema.end(), valid ) == 1;
   }
   if ( keyword == "not" ) {
      return !valid( schema );
   }
   if ( keyword == "minimum" || keyword == "maximum" ) {
      double const limit = schema.get< double >();
      return !value.is_number() || ( keyword == "minimum" ? value.get< double >() >= limit
                                                          : value.get< double >() <= limit );
   }
   if ( keyword == "pattern" ) {
      return !value.is_string() || matches( schema, value );
   }
   if ( keyword == "minLength" ) {
      return !value.is_string() || lengthOf( value ) >= schema.get< std::size_t >();
   }
   if ( keyword == "uniqueItems" ) {
      return !value.is_array() || areUnique( value );
   }
   if ( keyword == "minItems" || keyword == "maxItems" ) {
      auto const limit = schema.get< std::size_t >();
      return !value.is_array() ||
             ( keyword == "minItems" ? value.size() >= limit : value.size() <= limit );
   }
   if ( keyword == "minProperties" || keyword == "maxProperties" ) {
      auto const limit = schema.get< std::size_t >();
      return !value.is_object() ||
             ( keyword == "minProperties" ? value.size() >= limit : value.size() <= limit );
   }
   if ( keyword == "required" ) {
      return !value.is_object() ||
             std::all_of( schema.begin(), schema.end(), [ & ]( auto const & name ) {
                return value.contains( name.template get< std::string >() );
             } );
   }
   if ( keyword == "dependencies" ) {
      auto const items = schema.items();
      return !value.is_object() ||
             std::all_of( items.begin(), items.end(), [ & ]( auto const & one ) {
                return !value.contains( one.key() ) ||
                       ( one.value().is_array() ? holds( "required", one.value(), value )
                                                : valid( one.value() ) );
             } );
   }
   throw std::logic_error( "unknown keyword " + keyword );
}

// The keywords that are about members and elements.
std::string Schema::checkMembers( Json const & schema, Json const & value,
                                  std::string const & place ) const {
   std::string problem;
   if ( value.is_array() && schema.contains( "items" ) ) {
      for ( std::size_t n = 0; n < value.size() && problem.empty(); ++n ) {
         problem = check( schema[ "items" ], value[ n ], place + '/' + std::to_string( n ) );
      }
   }
   if ( !value.is_object() ) {
      return problem;
   }
   Json const none = Json::object();
   Json const & properties = schema.contains( "properties" ) ? schema[ "properties" ] : none;
   for ( auto const & [ name, member ] : value.items() ) {
      std::string const at = place + '/' + name;
      if ( schema.contains( "propertyNames" ) && problem.empty() ) {
         problem = check( schema[ "propertyNames" ], name, at + " (name)" );
      }
      if ( properties.contains( name ) && problem.empty() ) {
         problem = check( properties[ name ], member, at );
      } else if ( schema.contains( "additionalProperties" ) && !properties.contains( name ) &&
                  problem.empty() ) {
         problem = check( schema[ "additionalProperties" ], member, at );
      }
   }
   return problem;
}

std::string Schema::check( Json const & schema, Json const & value,
                           std::string const & place ) const {
   if ( schema.is_boolean() ) {
      return schema.get< bool >() ? "" : place + ": unknown word";
   }
   static std::set< std::string > const members{
      "items", "properties", "propertyNames", "additionalProperties", "then", "else", "if"
   };
   if ( schema.contains( "if" ) ) {
      return check( schema[ isValid( schema[ "if" ], value ) ? "then" : "else" ], value, place );
   }
   for ( auto const & [ keyword, about ] : schema.items() ) {
      if ( !members.contains( keyword ) && !isAnnotation( keyword ) &&
           !holds( keyword, about, value ) ) {
         return place + ": " + keyword;
      }
   }
   return checkMembers( schema, value, place );
}

}  // namespace Schema
