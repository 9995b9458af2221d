// What a value may look like: a piece of the JSON Schema of the language.
//
// Every word of a table carries the shape of its value, beside the function that reads it;
// Scenario/Definition.h puts them together. A shape is JSON text. Each function takes what the
// schema says of the value to people, which may be empty.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <Quelm/Integers.h>

namespace Scenario::Shape {

// A value that is defined elsewhere: the words of a mapping, the texts of a choice, or a form that
// the schema describes by a pattern.
std::string of( std::string_view place, std::string_view description = {} );

// A whole number from `lowest` to `highest`.
std::string number( U32 lowest, U32 highest, std::string_view description = {} );

// This text or number and no other.
std::string constant( std::string_view text, std::string_view description = {} );
std::string constant( U32 number );

std::string anyOf( std::vector< std::string > const & shapes, std::string_view description = {} );

// `more` holds further keywords of JSON Schema, as an object.
std::string listOf( std::string const & element, std::string_view description = {},
                    std::string_view more = "{}" );
// A list in which nothing stands twice.
std::string setOf( std::string const & element, std::string_view description = {} );
std::string mappingOf( std::string const & keys, std::string const & values,
                       std::string_view description = {}, std::string_view more = "{}" );

// Anything else that JSON Schema can say.
std::string json( std::string_view schema, std::string_view description = {} );

}  // namespace Scenario::Shape
