// An introspection table as text, one line per attribute.
#pragma once

#include <string>
#include <vector>

#include <Kiv/Type.h>

namespace Support {

// "NAME: KIND KEYTYPE -> VALUETYPE", read-only ones marked; operations as "NAME( TYPES ) -> TYPE".
inline std::string rowOf( Kiv::Attribute const & attribute ) {
   std::string const result = attribute.valueType().empty() ? "" : " -> " + attribute.valueType();
   if ( attribute.kind() == Kiv::Attribute::Kind::Operation ) {
      std::string const & types = attribute.keyType();
      return attribute.name() + ( types.empty() ? "()" : "( " + types + " )" ) + result;
   }
   std::string const key = attribute.keyType().empty() ? "" : " " + attribute.keyType();
   return attribute.name() + ": " + std::string( kindName( attribute.kind() ) ) + key + result +
          ( attribute.isWritable() ? "" : ", read-only" );
}

inline std::vector< std::string > tableOf( Kiv::Type const & type ) {
   std::vector< std::string > rows;
   for ( Kiv::Attribute const * attribute : type.attributes() ) {
      rows.push_back( rowOf( *attribute ) );
   }
   return rows;
}

}  // namespace Support
