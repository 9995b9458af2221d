#include <Scenario/Shape.h>

#include <nlohmann/json.hpp>

namespace Scenario::Shape {

namespace {

using Json = nlohmann::ordered_json;

std::string described( Json shape, std::string_view description ) {
   if ( !description.empty() ) {
      shape[ "description" ] = description;
   }
   return shape.dump();
}

}  // namespace

std::string of( std::string_view place, std::string_view description ) {
   return described( { { "$ref", "#/definitions/" + std::string( place ) } }, description );
}

std::string number( U32 lowest, U32 highest, std::string_view description ) {
   return described( { { "type", "integer" }, { "minimum", lowest }, { "maximum", highest } },
                     description );
}

std::string constant( std::string_view text, std::string_view description ) {
   return described( { { "const", text } }, description );
}

std::string constant( U32 number ) {
   return described( { { "const", number } }, {} );
}

std::string anyOf( std::vector< std::string > const & shapes, std::string_view description ) {
   Json all = Json::array();
   for ( std::string const & shape : shapes ) {
      all.push_back( Json::parse( shape ) );
   }
   return described( { { "anyOf", all } }, description );
}

std::string listOf( std::string const & element, std::string_view description,
                    std::string_view more ) {
   Json shape = Json::parse( more );
   shape[ "type" ] = "array";
   shape[ "items" ] = Json::parse( element );
   return described( shape, description );
}

std::string setOf( std::string const & element, std::string_view description ) {
   return listOf( element, description, R"({ "uniqueItems": true })" );
}

std::string mappingOf( std::string const & keys, std::string const & values,
                       std::string_view description, std::string_view more ) {
   Json shape = Json::parse( more );
   shape[ "type" ] = "object";
   shape[ "propertyNames" ] = Json::parse( keys );
   shape[ "additionalProperties" ] = Json::parse( values );
   return described( shape, description );
}

std::string json( std::string_view schema, std::string_view description ) {
   return described( Json::parse( schema ), description );
}

}  // namespace Scenario::Shape
