// How the parts of a story look in JSON documents. The names are described in docs/program.md.
#pragma once

#include <nlohmann/json.hpp>

#include <Story/Event.h>
#include <Story/LimitIndex.h>

namespace Story {

nlohmann::ordered_json jsonOf( Chip::Rule const & rule );
nlohmann::ordered_json jsonOf( Chip::HardwareCall const & call );
nlohmann::ordered_json jsonOf( Assertion const & assertion );
nlohmann::ordered_json jsonOf( Traced const & line );
nlohmann::ordered_json jsonOf( EntityTree const & tree );
nlohmann::ordered_json jsonOf( FrameForwarded const & event );
nlohmann::ordered_json jsonOf( Audited const & audited );
nlohmann::ordered_json jsonOf( std::vector< KnownLimit > const & limits );

// A whole document as text, with its line end. It is UTF-8 whatever the texts in it are, and holds
// no control character but line ends.
std::string documentText( nlohmann::ordered_json const & document );

// The value, or null.
template< typename T > nlohmann::ordered_json jsonOf( std::optional< T > const & value ) {
   return value ? nlohmann::ordered_json( *value ) : nlohmann::ordered_json();
}

// Empty texts are null.
nlohmann::ordered_json textOrNull( std::string const & text );

}  // namespace Story
