// Value types in the generic interface.
//
// A value type that declares its fields one per line (Quelm/Fields.h) has its table from these
// lines. KIV_DEFINE_VALUE( Namespace::Class ), once in a source file, builds the table and adds it
// to the register, where it is found under the type's name: the fields by name, in order, with
// their types. A value itself is its text form. Kiv::Attribute::textIn() reads a field out of it,
// valueWith() gives a value in which the field is another.
//
// Failures: a text that is not the type's form, or not the field's, throws Quelm::TextError; asking
// a field for something of an entity throws Quelm::AccessError.
#pragma once

#include <memory>
#include <string>

#include <Kiv/Attribute.h>
#include <Kiv/Registration.h>
#include <Kiv/Type.h>
#include <Quelm/Fields.h>

namespace Kiv {

template< typename Owner, typename T > class FieldRow final : public Attribute {
 public:
   explicit FieldRow( Quelm::Field< Owner, T > const & field )
         : Attribute(
              { std::string( field.name ), Kind::Value, {}, Quelm::typeName< T >(), true } ),
           storage_( field.storage ) {}

   std::string textIn( std::string_view value ) const override {
      return Quelm::textOf( Quelm::fromText< Owner >( value ).*storage_ );
   }
   std::string valueWith( std::string_view value, std::string_view text ) const override {
      auto changed = Quelm::fromText< Owner >( value );
      changed.*storage_ = Quelm::fromText< T >( text );
      return Quelm::textOf( changed );
   }

 private:
   T Owner::*storage_;
};

// Builds the table of `Class` from its field lines.
template< typename Class > Type makeValueType() {
   Type type( Quelm::typeName< Class >(), nullptr );
   Class::quelmForEachField( [ & ]< typename T >( Quelm::Field< Class, T > const & field ) {
      type.attributeNew( std::make_unique< FieldRow< Class, T > const >( field ) );
   } );
   return type;
}

}  // namespace Kiv

// NOLINTBEGIN(cppcoreguidelines-macro-usage)
#define KIV_DEFINE_VALUE( Class )                                                                  \
   static ::Kiv::Type const KIV_UNIQUE( kivValueType, __LINE__ )                                   \
      KIV_FIRST( ::Kiv::makeValueType< Class >() );                                                \
   KIV_REGISTER( KIV_UNIQUE( kivValueType, __LINE__ ) )
// NOLINTEND(cppcoreguidelines-macro-usage)
