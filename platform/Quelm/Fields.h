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
// raised again as AttributeTextError naming the field. The type's name belongs to the first field
// and the closing text to the last, so that a text that is cut off anywhere names a field too. A
// failed reading leaves no object. Equality and order are the class's own to declare, since some
// compare fields in an order of their own.
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

// The texts around a field.
struct Surroundings {
   std::string_view typeName;  // of the value, in front of its first field; empty before the others
   bool isLast;
};

template< typename Owner, typename T >
void read( TextReader & in, Owner & value, Field< Owner, T > const & field,
           Surroundings const & around ) {
   try {
      if ( around.typeName.empty() ) {
         in.expect( ", " );
      } else {
         in.expect( around.typeName );
         in.expect( "( " );
      }
      in.expect( field.name );
      in.expect( "=" );
      value.*field.storage = TextForm< T >::read( in );
      if ( around.isLast ) {
         in.expect( " )" );
      }
   } catch ( TextError const & error ) {
      throw AttributeTextError( std::string( field.name ), error.what() );
   }
}

}  // namespace FieldText

// The bodies of QUELM_VALUE's members.
template< typename Owner, int first > struct FieldsOf {
   static void write( std::string & out, Owner const & value, std::string_view name ) {
      out += name;
      out += '(';
      forEachLine< first >( [ & ]< int n >( Line< n > ) { writeLine< n >( out, value ); } );
      out += " )";
   }
   static Owner read( TextReader & in, std::string_view name ) {
      Owner value;
      if constexpr ( kFields == 0 ) {
         in.expect( name );
         in.expect( "( )" );
      }
      forEachLine< first >( [ & ]< int n >( Line< n > ) { readLine< n >( in, value, name ); } );
      return value;
   }
   // Calls `visit` with the Field of every field, in order.
   template< typename Visit > static void forEachField( Visit && visit ) {
      forEachLine< first >( [ & ]< int n >( Line< n > ) { visitLine< n >( visit ); } );
   }

 private:
   static constexpr int kFields = linesUpTo< Owner, first, first + kMostLines - 1 >;

   template< int n > static void writeLine( std::string & out, Owner const & value ) {
      if constexpr ( HasLine< Owner, n > ) {
         FieldText::write( out, value, Owner::quelmLine( Line< n >{} ) );
      }
   }
   template< int n >
   static void readLine( TextReader & in, Owner & value, std::string_view typeName ) {
      if constexpr ( HasLine< Owner, n > ) {
         constexpr int position = linesUpTo< Owner, first, n >;
         FieldText::read( in, value, Owner::quelmLine( Line< n >{} ),
                          { position == 1 ? typeName : std::string_view(), position == kFields } );
      }
   }
   template< int n, typename Visit > static void visitLine( Visit && visit ) {
      if constexpr ( HasLine< Owner, n > ) {
         visit( Owner::quelmLine( Line< n >{} ) );
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
   }                                                                                               \
   template< typename Visit > static void quelmForEachField( Visit && visit ) {                    \
      ::Quelm::FieldsOf< Class, quelmFirstLine >::forEachField( visit );                           \
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
