// The texts of a row of an introspection table: the names of its types, the text of a value.
//
// Values have the text forms of Quelm/Text.h. A reference has none there: it names an entity.
#pragma once

#include <string>
#include <type_traits>

#include <Kiv/Change.h>
#include <Kiv/Type.h>
#include <Quelm/Ptr.h>
#include <Quelm/Text.h>

namespace Kiv::RowText {

template< typename T > struct Of {
   static std::string typeName() { return Quelm::typeName< T >(); }
   static std::string text( T const & value ) { return Quelm::textOf( value ); }
};

// A reference prints as the type and identity of its target.
template< typename T > struct Of< Quelm::Ptr< T > > {
   static std::string typeName() {
      return std::string( T::kivTypeName() ) + ( std::is_const_v< T > ? " const" : "" );
   }
   static std::string text( Quelm::Ptr< T > const & value ) {
      if ( !value ) {
         return "none";
      }
      std::string const identity = value->identity();
      return value->typeData().name() + ( identity.empty() ? "" : " " + identity );
   }
};

template<> struct Of< void > {
   static std::string typeName() { return {}; }
};

template< typename T > std::string ofPointer( TypedPointer const & value ) {
   T const * const target = value.as< T >();
   return target ? Of< T >::text( *target ) : std::string();
}

}  // namespace Kiv::RowText
