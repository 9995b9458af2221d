// A YAML document as a plain value: to take apart, to put together, and to write for people.
//
// Unlike the nodes of the library, a copy shares nothing with its original. Aliases are written
// out.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Scenario {

struct Yaml {
   enum class Kind { nothing, text, list, mapping };

   Kind kind = Kind::nothing;
   std::string text;       // of a text
   bool isQuoted = false;  // the text stands in quotes, so that it is no number
   bool isInLine = false;  // its parts stand in one line, within brackets
   std::string key;        // of a part of a mapping
   bool isKeyQuoted = false;
   std::vector< Yaml > parts{};  // of a list or a mapping

   bool isThere() const { return kind != Kind::nothing; }
   // The part of a mapping with that key, or nullptr.
   Yaml const * find( std::string_view name ) const;
   // The same; one that is missing is added at the end, without a value.
   Yaml & part( std::string_view name );
   // Gives a mapping the part with that key, in place of the one that it has.
   void set( std::string_view name, Yaml value );
   void remove( std::string_view name );
   // Adds an element to a list.
   void add( Yaml element );

   friend bool operator==( Yaml const &, Yaml const & ) = default;
};

Yaml yamlText( std::string_view text );
Yaml yamlList( std::vector< Yaml > elements = {} );
Yaml yamlMapping( std::vector< std::pair< std::string, Yaml > > const & parts = {} );
// With all its parts in one line.
Yaml inLine( Yaml value );

// The document of a text that the reader of scenarios has taken.
Yaml yamlIn( std::string const & text );

// With a line end at its end. yamlIn() reads it as the same value, but that a text has quotes where
// it needs them: around a byte order mark, for one.
std::string textOf( Yaml const & document );
// The same with an empty line in front of each part of several lines.
std::string pageOf( Yaml const & document );

}  // namespace Scenario
