// Types of entities in sentences.
#pragma once

#include <string>

namespace StateDatabase {

// "an Evpn::EvpnStatus", "a Lag::Config".
inline std::string withArticle( std::string const & typeName ) {
   bool const isVowel =
      !typeName.empty() && std::string( "AEIOU" ).find( typeName.front() ) != std::string::npos;
   return ( isVowel || typeName.starts_with( "L3" ) ? "an " : "a " ) + typeName;
}

}  // namespace StateDatabase
