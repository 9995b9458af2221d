// Asking for a hash without knowing whether the type has one.
#pragma once

#include <functional>
#include <type_traits>

#include <Quelm/Error.h>
#include <Quelm/Text.h>

namespace Quelm {

template< typename T >
concept Hashable = std::is_default_constructible_v< std::hash< T > >;

// The hash of `value`; UnhashableError for a type that cannot be a key of a hashed collection.
template< HasTextForm T > std::size_t hashOf( [[maybe_unused]] T const & value ) {
   if constexpr ( Hashable< T > ) {
      return std::hash< T >()( value );
   } else {
      throw UnhashableError( "type " + typeName< T >() + " cannot be hashed" );
   }
}

}  // namespace Quelm
