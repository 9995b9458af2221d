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

// --- The keywords that are about the value itself, or about it as a whole

struct Schema::Keywords {
   using Holds = bool ( * )( Schema const &, Json const & schema, Json const & value );

   static bool ref( Schema const & all, Json const & schema, Json const & value ) {
      std::string const pointer = schema.get< std::string >().substr( 1 );
      return all.isValid( all.root_.at( Json::json_pointer( pointer ) ), value );
   }
   static bool type( Schema const &, Json const & schema, Json const & value ) {
      auto const isOne = [ & ]( auto const & one ) { return isOfType( value, one ); };
      return schema.is_string() ? isOne( schema )
                                : std::any_of( schema.begin(), schema.end(), isOne );
   }
   static bool isEnumerated( Schema const &, Json const & schema, Json const & value ) {
      return std::find( schema.begin(), schema.end(), value ) != schema.end();
   }
   static bool constant( Schema const &, Json const & schema, Json const & value ) {
      return schema == value;
   }

   // How many of the schemas the value satisfies.
   static std::ptrdiff_t count( Schema const & all, Json const & schemas, Json const & value ) {
      return std::count_if( schemas.begin(), schemas.end(),
                            [ & ]( Json const & one ) { return all.isValid( one, value ); } );
   }
   static bool anyOf( Schema const & all, Json const & schemas, Json const & value ) {
      return count( all, schemas, value ) > 0;
   }
   static bool allOf( Schema const & all, Json const & schemas, Json const & value ) {
      return count( all, schemas, value ) == std::ssize( schemas );
   }
   static bool oneOf( Schema const & all, Json const & schemas, Json const & value ) {
      return count( all, schemas, value ) == 1;
   }
   static bool isNot( Schema const & all, Json const & schema, Json const & value ) {
      return !all.isValid( schema, value );
   }

   static bool minimum( Schema const &, Json const & schema, Json const & value ) {
      return !value.is_number() || value.get< double >() >= schema.get< double >();
   }
   static bool maximum( Schema const &, Json const & schema, Json const & value ) {
      return !value.is_number() || value.get< double >() <= schema.get< double >();
   }
   static bool pattern( Schema const & all, Json const & schema, Json const & value ) {
      return !value.is_string() || all.matches( schema, value );
   }
   static bool minLength( Schema const &, Json const & schema, Json const & value ) {
      return !value.is_string() || lengthOf( value ) >= schema.get< std::size_t >();
   }
   static bool uniqueItems( Schema const &, Json const &, Json const & value ) {
      return !value.is_array() || areUnique( value );
   }
   static bool minItems( Schema const &, Json const & schema, Json const & value ) {
      return !value.is_array() || value.size() >= schema.get< std::size_t >();
   }
   static bool maxItems( Schema const &, Json const & schema, Json const & value ) {
      return !value.is_array() || value.size() <= schema.get< std::size_t >();
   }
   static bool minProperties( Schema const &, Json const & schema, Json const & value ) {
      return !value.is_object() || value.size() >= schema.get< std::size_t >();
   }
   static bool maxProperties( Schema const &, Json const & schema, Json const & value ) {
      return !value.is_object() || value.size() <= schema.get< std::size_t >();
   }
   static bool required( Schema const &, Json const & names, Json const & value ) {
      return !value.is_object() ||
             std::all_of( names.begin(), names.end(), [ & ]( auto const & name ) {
                return value.contains( name.template get< std::string >() );
             } );
   }
   static bool dependencies( Schema const & all, Json const & schema, Json const & value ) {
      auto const items = schema.items();
      return !value.is_object() ||
             std::all_of( items.begin(), items.end(), [ & ]( auto const & one ) {
                return !value.contains( one.key() ) ||
                       ( one.value().is_array() ? required( all, one.value(), value )
                                                : all.isValid( one.value(), value ) );
             } );
   }

   static std::map< std::string, Holds > const & table() {
      static std::map< std::string, Holds > const all{ { "$ref", ref },
                                                       { "type", type },
                                                       { "enum", isEnumerated },
                                                       { "const", constant },
                                                       { "anyOf", anyOf },
                                                       { "allOf", allOf },
                                                       { "oneOf", oneOf },
                                                       { "not", isNot },
                                                       { "minimum", minimum },
                                                       { "maximum", maximum },
                                                       { "pattern", pattern },
                                                       { "minLength", minLength },
                                                       { "uniqueItems", uniqueItems },
                                                       { "minItems", minItems },
                                                       { "maxItems", maxItems },
                                                       { "minProperties", minProperties },
                                                       { "maxProperties", maxProperties },
                                                       { "required", required },
                                                       { "dependencies", dependencies } };
      return all;
   }
};

bool Schema::holds( std::string const & keyword, Json const & schema, Json const & value ) const {
   auto const known = Keywords::table().find( keyword );
   if ( known == Keywords::table().end() ) {
      throw std::logic_error( "unknown keyword " + keyword );
   }
   return known->second( *this, schema, value );
}

// --- The keywords that are about members and elements

std::string Schema::checkElements( Json const & schema, Json const & list,
                                   std::string const & place ) const {
   for ( std::size_t n = 0; n < list.size(); ++n ) {
      std::string problem = check( schema, list[ n ], place + '/' + std::to_string( n ) );
      if ( !problem.empty() ) {
         return problem;
      }
   }
   return {};
}

std::string Schema::checkMember( Json const & schema, std::string const & name, Json const & member,
                                 std::string const & at ) const {
   static Json const anything = true;
   auto const schemaOf = [ & ]( char const * keyword ) -> Json const & {
      return schema.contains( keyword ) ? schema[ keyword ] : anything;
   };
   std::string problem = check( schemaOf( "propertyNames" ), name, at + " (name)" );
   if ( !problem.empty() ) {
      return problem;
   }
   bool const isProperty =
      schema.contains( "properties" ) && schema[ "properties" ].contains( name );
   return check( isProperty ? schema[ "properties" ][ name ] : schemaOf( "additionalProperties" ),
                 member, at );
}

std::string Schema::checkMembers( Json const & schema, Json const & value,
                                  std::string const & place ) const {
   if ( value.is_array() && schema.contains( "items" ) ) {
      return checkElements( schema[ "items" ], value, place );
   }
   if ( value.is_object() ) {
      for ( auto const & [ name, member ] : value.items() ) {
         std::string problem = checkMember( schema, name, member, place + '/' + name );
         if ( !problem.empty() ) {
            return problem;
         }
      }
   }
   return {};
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
