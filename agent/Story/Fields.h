// The fields of a structure, listed once: for the pipe between the processes, and for documents.
//
//    struct StepEnds {
//       U32 number = 0;
//
//       static void fields( auto & event, auto && field ) { field( "number", event.number ); }
//    };
//
// The list of a structure from another ring is a specialisation of Fields (Story/ChipFields.h).
#pragma once

namespace Story {

// As a third argument to `field`: in documents an empty text, or the number 0, becomes null.
struct OrNull {};
inline constexpr OrNull kOrNull;

// Calls `field( name, value )` for each field of `structure`, in the order of documents.
template< typename T > struct Fields {
   static void list( auto & structure, auto && field ) requires requires {
      T::fields( structure, field );
   }
   { T::fields( structure, field ); }
};

// Takes any field.
struct AnyField {
   void operator()( char const *, auto const &... ) const {}
};

template< typename T >
concept HasFields = requires( T & structure ) {
   Fields< T >::list( structure, AnyField() );
};

}  // namespace Story
