// The rows of introspection tables, one class per kind of attribute line.
//
// Included by the source files that define entity types (KIV_DEFINE), not by their headers. A row
// knows where its attribute is stored and goes through Kiv/Store.h, as the accessors do.
//
// Failures: see Kiv/Attribute.h. Cost: text conversion on top of the accessor's.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include <Kiv/Attribute.h>
#include <Kiv/Entity.h>
#include <Kiv/Registration.h>
#include <Kiv/RowText.h>
#include <Kiv/Store.h>
#include <Quelm/Text.h>

namespace Kiv {

class Rows {
   using Kind = Attribute::Kind;

   static Quelm::Ptr< Entity > generic( Quelm::Ptr< Entity const > const & target ) {
      return Quelm::Ptr< Entity >( const_cast< Entity * >( target.get() ) );
   }

   // The types and texts of keys, values and changes, for all kinds.
   template< typename Owner, typename K, typename T > class Base : public Attribute {
    public:
      Base( std::string name, Kind kind, bool isWritable )
            : Attribute( { std::move( name ), kind, RowText::Of< K >::typeName(),
                           RowText::Of< T >::typeName(), isWritable } ) {}

    protected:
      static Owner const & of( Entity const & entity ) {
         return static_cast< Owner const & >( entity );
      }
      static Owner & of( Entity & entity ) { return static_cast< Owner & >( entity ); }
      AttributeId id() const {
         auto const & all = Owner::kivType().attributes();
         return static_cast< AttributeId >(
            std::find( all.begin(), all.end(), static_cast< Attribute const * >( this ) ) -
            all.begin() + 1 );
      }
      std::string keyTextOf( TypedPointer const & key ) const override {
         if constexpr ( std::is_void_v< K > ) {
            return {};
         } else {
            return RowText::ofPointer< K >( key );
         }
      }
      std::string valueTextOf( TypedPointer const & value ) const override {
         if constexpr ( std::is_void_v< T > ) {
            return {};
         } else {
            return RowText::ofPointer< T >( value );
         }
      }
   };

 public:
   template< typename Row > static std::unique_ptr< Attribute const > make( char const * name ) {
      return std::make_unique< Row const >( name );
   }

   template< typename Owner, typename T, T const Owner::*storage >
   class Key final : public Base< Owner, void, T > {
    public:
      explicit Key( std::string name )
            : Base< Owner, void, T >( std::move( name ), Kind::Key, false ) {}
      std::string text( Entity const & entity, std::string_view ) const override {
         return RowText::Of< T >::text( this->of( entity ).*storage );
      }
   };

   template< typename Owner, typename T, T Owner::*storage >
   class Value final : public Base< Owner, void, T > {
    public:
      explicit Value( std::string name )
            : Base< Owner, void, T >( std::move( name ), Kind::Value, true ) {}
      std::string text( Entity const & entity, std::string_view ) const override {
         return RowText::Of< T >::text( this->of( entity ).*storage );
      }
      void textIs( Entity & entity, std::string_view, std::string_view value ) const override {
         Store::assign( this->of( entity ), this->id(), this->of( entity ).*storage,
                        Quelm::fromText< T >( value ) );
      }
   };

   template< typename Owner, typename T, Quelm::Ptr< T > Owner::*storage >
   class Held : public Base< Owner, void, Quelm::Ptr< T > > {
    public:
      explicit Held( std::string name, bool isWritable = false )
            : Base< Owner, void, Quelm::Ptr< T > >( std::move( name ), Kind::Reference,
                                                    isWritable ) {}
      std::string text( Entity const & entity, std::string_view ) const override {
         return RowText::Of< Quelm::Ptr< T > >::text( this->of( entity ).*storage );
      }
      Quelm::Ptr< Entity > entity( Entity const & entity, std::string_view ) const override {
         return generic( this->of( entity ).*storage );
      }
   };

   template< typename Owner, typename T, T * Owner::*storage >
   class Back final : public Base< Owner, void, Quelm::Ptr< T > > {
    public:
      explicit Back( std::string name )
            : Base< Owner, void, Quelm::Ptr< T > >( std::move( name ), Kind::Reference, false ) {}
      std::string text( Entity const & entity, std::string_view ) const override {
         return RowText::Of< Quelm::Ptr< T > >::text( target( entity ) );
      }
      Quelm::Ptr< Entity > entity( Entity const & entity, std::string_view ) const override {
         return generic( target( entity ) );
      }

    private:
      static Quelm::Ptr< T > target( Entity const & entity ) {
         return Quelm::Ptr< T >( static_cast< Owner const & >( entity ).*storage );
      }
   };

   template< typename Owner, typename T, Quelm::Ptr< T > Owner::*storage >
   class Reference final : public Held< Owner, T, storage > {
    public:
      explicit Reference( std::string name )
            : Held< Owner, T, storage >( std::move( name ), true ) {}
      void del( Entity & entity, std::string_view ) const override { put( entity, nullptr ); }
      void entityIs( Entity & entity, Quelm::Ptr< Entity > const & target ) const override {
         auto const typed = Quelm::dynamicCast< T >( target );
         if ( target && !typed ) {
            this->refuse( "holds a " + this->valueType() + ", not a " + target->typeData().name() );
         }
         put( entity, typed );
      }

    private:
      void put( Entity & entity, Quelm::Ptr< T > const & target ) const {
         Store::assign( this->of( entity ), this->id(), this->of( entity ).*storage, target );
      }
   };

 private:
   // The base of the three kinds with keys.
   template< typename Owner, typename K, typename Stored, typename T,
             ::Kiv::Collection< K, Stored > Owner::*storage >
   class Keyed : public Base< Owner, K, T > {
    public:
      using Base< Owner, K, T >::Base;

      std::vector< std::string > keys( Entity const & entity ) const override {
         std::vector< std::string > result;
         for ( typename ::Kiv::Collection< K, Stored >::Iterator iter(
                  this->of( entity ).*storage, Quelm::Ptr< Quelm::Counted const >( &entity ) );
               iter; ++iter ) {
            result.push_back( Quelm::textOf( iter.key() ) );
         }
         return result;
      }
      bool has( Entity const & entity, std::string_view key ) const override {
         return ( this->of( entity ).*storage ).has( Quelm::fromText< K >( key ) );
      }
      void del( Entity & entity, std::string_view key ) const override {
         Store::remove( this->of( entity ), this->id(), this->of( entity ).*storage,
                        Quelm::fromText< K >( key ) );
      }

    protected:
      Read< Stored > stored( Entity const & entity, std::string_view key ) const {
         return ( this->of( entity ).*storage ).at( Quelm::fromText< K >( key ) );
      }
      void put( Entity & entity, K const & key, Stored value ) const {
         Store::put( this->of( entity ), this->id(), this->of( entity ).*storage, key,
                     std::move( value ) );
      }
   };

 public:
   template< typename Owner, typename K, ::Kiv::Collection< K, bool > Owner::*storage >
   class Set final : public Keyed< Owner, K, bool, void, storage > {
    public:
      explicit Set( std::string name )
            : Keyed< Owner, K, bool, void, storage >( std::move( name ), Kind::Set, true ) {}
      void textIs( Entity & entity, std::string_view key, std::string_view value ) const override {
         if ( !value.empty() ) {
            this->refuse( "its members have no value" );
         }
         this->put( entity, Quelm::fromText< K >( key ), true );
      }
   };

   template< typename Owner, typename K, typename T, ::Kiv::Collection< K, T > Owner::*storage >
   class Collection final : public Keyed< Owner, K, T, T, storage > {
    public:
      explicit Collection( std::string name )
            : Keyed< Owner, K, T, T, storage >( std::move( name ), Kind::Collection, true ) {}
      std::string text( Entity const & entity, std::string_view key ) const override {
         return RowText::Of< T >::text( this->stored( entity, key ) );
      }
      void textIs( Entity & entity, std::string_view key, std::string_view value ) const override {
         this->put( entity, Quelm::fromText< K >( key ), Quelm::fromText< T >( value ) );
      }
   };

 private:
   // The base of the two kinds of collections of entities.
   template< typename Owner, typename K, typename T,
             ::Kiv::Collection< K, Quelm::Ptr< T > > Owner::*storage >
   class Entities : public Keyed< Owner, K, Quelm::Ptr< T >, Quelm::Ptr< T >, storage > {
    public:
      using Keyed< Owner, K, Quelm::Ptr< T >, Quelm::Ptr< T >, storage >::Keyed;

      std::string text( Entity const & entity, std::string_view key ) const override {
         return RowText::Of< Quelm::Ptr< T > >::text( this->stored( entity, key ) );
      }
      Quelm::Ptr< Entity > entity( Entity const & entity, std::string_view key ) const override {
         return generic( this->stored( entity, key ) );
      }
   };

 public:
   template< typename Owner, typename K, typename T,
             ::Kiv::Collection< K, Quelm::Ptr< T > > Owner::*storage >
   class Members final : public Entities< Owner, K, T, storage > {
    public:
      explicit Members( std::string name )
            : Entities< Owner, K, T, storage >( std::move( name ), Kind::Members,
                                                std::is_constructible_v< T, K > ) {}
      void textIs( Entity & entity, std::string_view key, std::string_view value ) const override {
         if ( !value.empty() || !this->isWritable() ) {
            this->refuse( "its members are entities, which are created by key alone" );
         }
         if constexpr ( std::is_constructible_v< T, K > ) {
            Store::member( this->of( entity ), this->id(), this->of( entity ).*storage,
                           Quelm::fromText< K >( key ) );
         }
      }
      void entityIs( Entity & entity, Quelm::Ptr< Entity > const & target ) const override {
         auto const typed = Quelm::dynamicCast< T >( target );
         if ( !typed ) {
            this->refuse( "holds entities of type " + this->valueType() );
         }
         this->put( entity, typed->kivKey(), typed );
      }
   };

   template< typename Owner, typename K, typename T,
             ::Kiv::Collection< K, Quelm::Ptr< T > > Owner::*storage >
   class Nested final : public Entities< Owner, K, T, storage > {
    public:
      explicit Nested( std::string name )
            : Entities< Owner, K, T, storage >( std::move( name ), Kind::Members, false ) {}
      void del( Entity &, std::string_view ) const override {
         this->refuse( "its reactors come and go with what they watch" );
      }
   };

 private:
   template< typename Member > struct Signature;
   template< typename Owner, typename R, typename... P >
   struct Signature< R ( Owner::* )( P... ) > {
      using Self = Owner;
      using Result = R;
      using Arguments = std::tuple< std::decay_t< P >... >;
   };
   template< typename Owner, typename R, typename... P >
   struct Signature< R ( Owner::* )( P... ) const > : Signature< R ( Owner::* )( P... ) > {};

   template< typename Arguments > struct ArgumentText;
   template< typename... P > struct ArgumentText< std::tuple< P... > > {
      static std::string typeNames() {
         std::string names;
         ( ( names += ( names.empty() ? "" : ", " ) + Quelm::typeName< P >() ), ... );
         return names;
      }
      static std::tuple< P... > read( std::vector< std::string > const & texts ) {
         return readEach( texts, std::index_sequence_for< P... >{} );
      }

    private:
      template< std::size_t... n >
      static std::tuple< P... > readEach( std::vector< std::string > const & texts,
                                          std::index_sequence< n... > ) {
         return std::tuple< P... >( Quelm::fromText< P >( texts[ n ] )... );
      }
   };

 public:
   template< auto member > class Operation final : public Attribute {
      using Call = Signature< decltype( member ) >;
      using Result = std::decay_t< typename Call::Result >;
      using Arguments = typename Call::Arguments;

    public:
      explicit Operation( std::string name )
            : Attribute( { std::move( name ), Kind::Operation,
                           ArgumentText< Arguments >::typeNames(),
                           RowText::Of< Result >::typeName(), false } ) {}
      std::size_t arity() const override { return std::tuple_size_v< Arguments >; }
      std::string call( Entity & entity,
                        std::vector< std::string > const & arguments ) const override {
         if ( arguments.size() != arity() ) {
            refuse( "takes " + std::to_string( arity() ) + " arguments" );
         }
         auto & self = static_cast< typename Call::Self & >( entity );
         auto const invoke = [ & ]( auto const &... values ) -> decltype( auto ) {
            return ( self.*member )( values... );
         };
         Arguments const values = ArgumentText< Arguments >::read( arguments );
         if constexpr ( std::is_void_v< Result > ) {
            std::apply( invoke, values );
            return {};
         } else {
            return RowText::Of< Result >::text( std::apply( invoke, values ) );
         }
      }
   };
};

// Adds the attribute that `Class` declares on line `n` to its table, if there is one.
template< typename Class, int n > void addLine( Type & type ) {
   Quelm::Line< n > const line;
   if constexpr ( Quelm::HasLine< Class, n > ) {
      type.attributeNew( Class::template kivRow< Rows >( line ) );
   } else if constexpr ( requires { Class::kivOverload( line ); } ) {
      type.overloadNew( Class::template kivOverloadRow< Rows >( line ) );
   }
}

// Builds the table of `Class` from its attribute lines.
template< typename Class > Type makeType() {
   Type type( Class::kivTypeName(), &Class::KivBase::kivType() );
   Quelm::forEachLine< Class::kivFirstLine >(
      [ & ]< int n >( Quelm::Line< n > ) { addLine< Class, n >( type ); } );
   return type;
}

// The same for a type whose entities are created from a name.
template< typename Class > Type makeNamedType() {
   Type type = makeType< Class >();
   type.createIs( []( std::string const & name ) -> Quelm::Ptr< Entity > {
      return Quelm::make< Class >( name );
   } );
   return type;
}

}  // namespace Kiv

// NOLINTBEGIN(*-macro-usage, *-macro-parentheses): a name is not put into parentheses.
// Version 14 of clang-format would open every body within a macro.
// clang-format off
#define KIV_DEFINE_AS( Class, makeTable )                                                          \
   char const * Class::kivTypeName() { return #Class; }                                            \
   ::Kiv::Type const & Class::kivType() {                                                          \
      static ::Kiv::Type const type = makeTable< Class >();                                        \
      return type;                                                                                 \
   }                                                                                               \
   ::Kiv::Type const & Class::typeData() const { return kivType(); }                               \
   KIV_REGISTER( Class::kivType() )

#define KIV_DEFINE( Class ) KIV_DEFINE_AS( Class, ::Kiv::makeType )
#define KIV_DEFINE_NAMED( Class ) KIV_DEFINE_AS( Class, ::Kiv::makeNamedType )

// clang-format on
// NOLINTEND(*-macro-usage, *-macro-parentheses)
