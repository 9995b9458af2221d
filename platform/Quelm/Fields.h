// Value types declared one field per line.
//
//    class RequestKey : public Quelm::Value {
//       QUELM_VALUE( RequestKey, "VornalTcam::RequestKey" )
//       QUELM_FIELD( name, std::string )
//       QUELM_FIELD( number, U32 )
//    };
//
// A field line gives storage (value-initialised), a reader `name()`, a setter `nameIs( value )`,
// and its place in the text form:
//
//    VornalTcam::RequestKey( name=..., number=... )
//
// Reading is the exact inverse: same names, same order, same blanks. An error inside a field is
// raised again as AttributeTextError naming the field; a failed reading leaves no object. Equality
// and order are the class's own to declare, since some compare fields in an order of their own.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include <Quelm/Lines.h>
#include <Quelm/Text.h>

namespace Quelm {

template< typename Owner, typename T > struct Field {
   std::string_view name;
   T Owner::*storage;
};

template< typename Owner, typename T > Field( std::string_view, T Owner::* ) -> Field< Owner, T >;

namespace FieldText {

template< typename Owner, typename T >
void write( std::string & out, Owner const & value, Field< Owner, T > const & field ) {
   out += out.back() == '(' ? " " : ", ";
   out += field.name;
   out += '=';
   TextForm< T >::write( out, value.*field.storage );
}

template< typename Owner, typename T >
void read( TextReader & in, Owner & value, Field< Owner, T > const & field, bool isFirst ) {
   try {
      in.expect( isFirst ? " " : ", " );
      in.expect( field.name );
      in.expect( "=" );
      value.*field.storage = TextForm< T >::read( in );
   } catch ( TextError const & error ) {
      throw AttributeTextError( std::string( field.name ), error.what() );
   }
}

}  // namespace FieldText

// What QUELM_VALUE's members do.
template< typename Owner, int first > struct FieldsOf {
   static void write( std::string & out, Owner const & value, std::string_view name ) {
      out += name;
      out += '(';
      forEachLine< first >( [ & ]< int n >( Line< n > ) { writeLine< n >( out, value ); } );
      out += " )";
   }
   static Owner read( TextReader & in, std::string_view name ) {
      Owner value;
      in.expect( name );
      in.expect( "(" );
      bool isFirst = true;
      forEachLine< first >( [ & ]< int n >( Line< n > ) { readLine< n >( in, value, isFirst ); } );
      in.expect( " )" );
      return value;
   }

 private:
   template< int n > static void writeLine( std::string & out, Owner const & value ) {
      if constexpr ( HasLine< Owner, n > ) {
         FieldText::write( out, value, Owner::quelmLine( Line< n >{} ) );
      }
   }
   template< int n > static void readLine( TextReader & in, Owner & value, bool & isFirst ) {
      if constexpr ( HasLine< Owner, n > ) {
         FieldText::read( in, value, Owner::quelmLine( Line< n >{} ),
                          std::exchange( isFirst, false ) );
      }
   }
};

}  // namespace Quelm

// NOLINTBEGIN(cppcoreguidelines-macro-usage, bugprone-macro-parentheses)
// Version 14 of clang-format would open every body within a macro.
// clang-format off
#define QUELM_VALUE( Class, typeNameText )                                                         \
 private:                                                                                          \
   using QuelmOwner = Class;                                                                       \
   static constexpr int quelmFirstLine = __LINE__;                                                 \
                                                                                                   \
 public:                                                                                           \
   static void quelmLine( ::Quelm::NoLine );                                                       \
   static std::string_view textTypeName() { return typeNameText; }                                 \
   void textTo( std::string & out ) const {                                                        \
      ::Quelm::FieldsOf< Class, quelmFirstLine >::write( out, *this, typeNameText );               \
   }                                                                                               \
   static Class textFrom( ::Quelm::TextReader & in ) {                                             \
      return ::Quelm::FieldsOf< Class, quelmFirstLine >::read( in, typeNameText );                 \
   }

#define QUELM_FIELD( field, ... )                                                                  \
 private:                                                                                          \
   __VA_ARGS__ field##_{};                                                                         \
                                                                                                   \
 public:                                                                                           \
   static auto quelmLine( ::Quelm::Line< __LINE__ > ) {                                            \
      static_assert( __LINE__ - quelmFirstLine < ::Quelm::kMostLines, "field table too long" );    \
      return ::Quelm::Field{ #field, &QuelmOwner::field##_ };                                      \
   }                                                                                               \
   __VA_ARGS__ const & field() const { return field##_; }                                          \
   void field##Is( __VA_ARGS__ value ) { field##_ = std::move( value ); }
// clang-format on
// NOLINTEND(cppcoreguidelines-macro-usage, bugprone-macro-parentheses)
