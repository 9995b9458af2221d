// The forms of a story's parts in JSON documents. docs/program.md describes the names.
#pragma once

#include <Story/ChipFields.h>
#include <Story/Document.h>
#include <Story/Event.h>
#include <Story/LimitIndex.h>

namespace Story {

// --- Special forms

Json jsonOf( Chip::Rule const & rule );
Json jsonOf( Chip::HardwareCall const & call );
Json jsonOf( EntityTree const & tree );
// The place of a step that no scenario writes is null.
Json jsonOf( StepBegins const & step );
Json jsonOf( FrameForwarded const & event );
Json jsonOf( Audited const & audited );
Json jsonOf( Cell const & cell );
// { "kind", "text", the values by name, "children" }
Json jsonOf( Node const & node );
// { "rules": [ { "unit": 0, ... } ] }
Json jsonOf( Table const & table );
Json jsonOf( std::vector< KnownLimit > const & limits );
inline Json jsonOf( DifferenceKind kind ) {
   return nameOf( kind );
}
// "start-up", "scenario", "verification", "teardown"
Json jsonOf( StepKind kind );
// "begins", "held", "absent", "skipped"
Json jsonOf( PluginPass::State state );
// An object with the name of the event first; in that of runBegins formatVersion stands in front of
// it (Story/DocumentVersion.h).
Json jsonOf( Event const & event );

// --- All other forms

template< typename T > Json jsonOf( T const & value );

// The value, or null.
template< typename T > Json jsonOf( std::optional< T > const & value ) {
   return value ? jsonOf( *value ) : Json();
}

template< typename T > Json jsonOf( std::vector< T > const & values ) {
   Json json = Json::array();
   for ( T const & value : values ) {
      json.push_back( jsonOf( value ) );
   }
   return json;
}

// A structure becomes an object of its fields; other values stay unchanged.
template< typename T > Json jsonOf( T const & value ) {
   if constexpr ( HasFields< T > ) {
      Json json = Json::object();
      Fields< T >::list( value, Overloaded{ [ & ]( char const * name, auto const & one ) {
                                              json[ name ] = jsonOf( one );
                                           },
                                            [ & ]( char const * name, auto const & one, OrNull ) {
                                               json[ name ] =
                                                  one == std::decay_t< decltype( one ) >()
                                                     ? Json()
                                                     : jsonOf( one );
                                            } } );
      return json;
   } else {
      return value;
   }
}

// An empty text becomes null.
Json textOrNull( std::string const & text );

// --- Documents

// A whole document as text, with its line end. It is UTF-8 whatever its texts contain, and has no
// control character but line ends. Its first member is formatVersion (Story/DocumentVersion.h).
std::string documentText( Json const & document );
// One element of a list in a document, so many lists and objects deep, as it stands there; without
// a line end.
std::string elementText( Json const & element, int depth );
// A document in one line.
std::string lineText( Json const & object );

}  // namespace Story
