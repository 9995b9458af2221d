// The attribute lines: an entity class reads as its attribute table.
//
// A class opens with KIV_ENTITY( Class, Base ) and declares one attribute per line, in table order.
// Each line gives the storage, the accessors, the identifier xAttr(), the row of the introspection
// table and the notification:
//
//    KIV_KEY( x, T )              x()                  set by the constructor (x_)
//    KIV_VALUE( x, T )            x() xIs( value )
//    KIV_REFERENCE( x, T )        x() xIs( ptr )       counted reference
//    KIV_HELD( x, T )             x()                  counted reference, written by the class
//                                                      only: xHeldIs( ptr )
//    KIV_BACK( x, T )             x()                  back reference: a plain pointer, written
//                                                      by the class only
//    KIV_SET( x, K )              xHas( k ) xIs( k ) xDel( k ) xDelAll() xIter()
//    KIV_COLLECTION( x, K, T )    x( k ) xHas( k ) xIs( k, t ) xDel( k ) xDelAll() xIter()
//    KIV_MEMBERS( x, K, T )       the same for entities: xIs( k ) is a factory (where a T can be
//                                 built from its key), xIs( ptr ) inserts an entity under its
//                                 own key
//    KIV_NESTED( x, K, T )        nested reactors (Kiv/NestedReactor.h): x( k ) xHas( k ) xDel( k )
//                                 xDelAll() xIter(); the class writes its own xIs
//    KIV_OPERATION( R, x, ( P p, ... ) )   declares R x( P p, ... ), callable by name
//    KIV_QUERY, KIV_VIRTUAL       the same for a const, a virtual one; an overriding operation
//                                 needs no line, that of the one it overrides calls it
//    KIV_ABSTRACT                 the same for one without a body
//    KIV_OVERLOAD( R, x, () )     a further operation of an existing name; no row of its own
//
// The three kinds with keys take one more word where the count is wanted: its name, as in
// KIV_COLLECTION( efpEntryId, VornalPort, U32, efpEntryIds ).
//
// An absent member reads as the type's default; xDel gives back the removed value, or the default.
// Through a const entity members are looked up as references to const; reference lines and walks
// give the declared type. xIter() starts a walk (Kiv/Collection.h).
//
// KIV_DEFINE( Namespace::Class ), once in a source file, builds the table and registers the type.
// Types that are created by name only (mounted entities) use KIV_DEFINE_NAMED.
#pragma once

#include <Kiv/Change.h>
#include <Kiv/Collection.h>
#include <Kiv/Store.h>
#include <Kiv/Type.h>
#include <Quelm/Lines.h>
#include <Quelm/Text.h>

namespace Kiv {

// The identifier of the attribute that `Class` declares on `line`.
template< typename Class, int line > consteval AttributeId attributeId() {
   return Class::KivBase::kivAttributeCount() +
          static_cast< AttributeId >( Quelm::linesUpTo< Class, Class::kivFirstLine, line > );
}

}  // namespace Kiv

// NOLINTBEGIN(cppcoreguidelines-macro-usage, bugprone-macro-parentheses)
// Version 14 of clang-format would open every body within a macro.
// clang-format off
#define KIV_ENTITY( Class, Base )                                                                  \
 public:                                                                                           \
   using KivSelf = Class;                                                                          \
   using KivBase = Base;                                                                           \
   static constexpr int kivFirstLine = __LINE__;                                                   \
   static void quelmLine( ::Quelm::NoLine );                                                       \
   static void kivOverload( ::Quelm::NoLine );                                                     \
   static consteval ::Kiv::AttributeId kivAttributeCount() {                                       \
      return ::Kiv::attributeId< Class, kivFirstLine + ::Quelm::kMostLines - 1 >();                \
   }                                                                                               \
   static char const * kivTypeName();                                                              \
   static ::Kiv::Type const & kivType();                                                           \
   ::Kiv::Type const & typeData() const override;

// The row and the identifier of attribute `x`. The row's class is named through the dependent type
// `Rows` so that it is compiled where the table is built and nowhere else.
#define KIV_ROW( x, ... )                                                                          \
   static_assert( __LINE__ < kivFirstLine + ::Quelm::kMostLines, "attribute table too long" );     \
   static void quelmLine( ::Quelm::Line< __LINE__ > );                                             \
   template< typename Rows > static auto kivRow( ::Quelm::Line< __LINE__ > ) {                     \
      return Rows::template make< typename Rows::template __VA_ARGS__ >( #x );                     \
   }
#define KIV_ID( x )                                                                                \
   template< typename Class = KivSelf > static constexpr ::Kiv::AttributeId x##Attr() {            \
      return ::Kiv::attributeId< Class, __LINE__ >();                                              \
   }

#define KIV_KEY( x, ... )                                                                          \
   KIV_ROW( x, Key< KivSelf, __VA_ARGS__, &KivSelf::x##_ > )                                       \
   KIV_ID( x )                                                                                     \
   __VA_ARGS__ const & x() const { return x##_; }                                                  \
   __VA_ARGS__ const & kivKey() const { return x##_; }                                             \
   std::string identity() const override { return ::Quelm::textOf( x##_ ); }                       \
                                                                                                   \
 private:                                                                                          \
   __VA_ARGS__ const x##_;                                                                         \
                                                                                                   \
 public:

#define KIV_VALUE( x, ... )                                                                        \
   KIV_ROW( x, Value< KivSelf, __VA_ARGS__, &KivSelf::x##_ > )                                     \
   KIV_ID( x )                                                                                     \
   ::Kiv::Read< __VA_ARGS__ > x() const { return x##_; }                                           \
   void x##Is( __VA_ARGS__ const & value ) {                                                       \
      ::Kiv::Store::assign( *this, x##Attr(), x##_, value );                                       \
   }                                                                                               \
                                                                                                   \
 private:                                                                                          \
   __VA_ARGS__ x##_{};                                                                             \
                                                                                                   \
 public:

#define KIV_HELD( x, ... )                                                                         \
   KIV_ROW( x, Held< KivSelf, __VA_ARGS__, &KivSelf::x##_ > )                                      \
   KIV_ID( x )                                                                                     \
   ::Quelm::Ptr< __VA_ARGS__ > const & x() const { return x##_; }                                  \
                                                                                                   \
 protected:                                                                                        \
   void x##HeldIs( ::Quelm::Ptr< __VA_ARGS__ > const & target ) {                                  \
      ::Kiv::Store::assign( *this, x##Attr(), x##_, target );                                      \
   }                                                                                               \
   ::Quelm::Ptr< __VA_ARGS__ > x##_;                                                               \
                                                                                                   \
 public:

#define KIV_REFERENCE( x, ... )                                                                    \
   KIV_ROW( x, Reference< KivSelf, __VA_ARGS__, &KivSelf::x##_ > )                                 \
   KIV_ID( x )                                                                                     \
   ::Quelm::Ptr< __VA_ARGS__ > const & x() const { return x##_; }                                  \
   void x##Is( ::Quelm::Ptr< __VA_ARGS__ > const & target ) {                                      \
      ::Kiv::Store::assign( *this, x##Attr(), x##_, target );                                      \
   }                                                                                               \
                                                                                                   \
 protected:                                                                                        \
   ::Quelm::Ptr< __VA_ARGS__ > x##_;                                                               \
                                                                                                   \
 public:

#define KIV_BACK( x, ... )                                                                         \
   KIV_ROW( x, Back< KivSelf, __VA_ARGS__, &KivSelf::x##_ > )                                      \
   KIV_ID( x )                                                                                     \
   __VA_ARGS__ * x() const { return x##_; }                                                        \
                                                                                                   \
 protected:                                                                                        \
   __VA_ARGS__ * x##_ = nullptr;                                                                   \
                                                                                                   \
 public:

// An operation that is compiled where it is used and nowhere else: a file that includes many
// entities uses few of their operations.
#define KIV_USED template< typename Self = KivSelf >

#define KIV_KEYED( x, K, T, ... )                                                                  \
   using x##Iterator = ::Kiv::Collection< K, T >::Iterator;                                        \
   KIV_USED bool x##Has( K const & key ) const { return x##_.has( key ); }                         \
   KIV_USED x##Iterator x##Iter() const {                                                          \
      return x##Iterator( x##_, ::Quelm::Ptr< ::Quelm::Counted const >( this ) );                  \
   }                                                                                               \
   __VA_OPT__( std::size_t __VA_ARGS__() const { return x##_.size(); } )                           \
                                                                                                   \
 private:                                                                                          \
   ::Kiv::Collection< K, T > x##_;                                                                 \
                                                                                                   \
 public:

#define KIV_SET( x, K, ... )                                                                       \
   KIV_ROW( x, Set< KivSelf, K, &KivSelf::x##_ > )                                                 \
   KIV_ID( x )                                                                                     \
   KIV_USED void x##Is( K const & key ) {                                                          \
      ::Kiv::Store::put< Self >( *this, x##Attr(), x##_, key, true );                              \
   }                                                                                               \
   KIV_USED bool x##Del( K const & key ) {                                                         \
      return ::Kiv::Store::remove< Self >( *this, x##Attr(), x##_, key );                          \
   }                                                                                               \
   KIV_USED void x##DelAll() { ::Kiv::Store::removeAll< Self >( *this, x##Attr(), x##_ ); }        \
   KIV_KEYED( x, K, bool, __VA_ARGS__ )

#define KIV_COLLECTION( x, K, T, ... )                                                             \
   KIV_ROW( x, Collection< KivSelf, K, T, &KivSelf::x##_ > )                                       \
   KIV_ID( x )                                                                                     \
   KIV_USED ::Kiv::Read< T > x( K const & key ) const { return x##_.at( key ); }                   \
   KIV_USED T const & x##Is( K const & key, T const & value ) {                                    \
      return ::Kiv::Store::put< Self >( *this, x##Attr(), x##_, key, value );                      \
   }                                                                                               \
   KIV_USED T x##Del( K const & key ) {                                                            \
      return ::Kiv::Store::remove< Self >( *this, x##Attr(), x##_, key );                          \
   }                                                                                               \
   KIV_USED void x##DelAll() { ::Kiv::Store::removeAll< Self >( *this, x##Attr(), x##_ ); }        \
   KIV_KEYED( x, K, T, __VA_ARGS__ )

#define KIV_MEMBERS( x, K, T, ... )                                                                \
   KIV_ROW( x, Members< KivSelf, K, T, &KivSelf::x##_ > )                                          \
   KIV_ID( x )                                                                                     \
   KIV_USED ::Quelm::Ptr< T const > x( K const & key ) const { return x##_.at( key ); }            \
   KIV_USED ::Quelm::Ptr< T > x( K const & key ) { return x##_.at( key ); }                        \
   template< typename Member = T > ::Quelm::Ptr< Member > x##Is( K const & key ) {                 \
      return ::Kiv::Store::member< KivSelf, K, Member >( *this, x##Attr(), x##_, key );            \
   }                                                                                               \
   KIV_USED void x##Is( ::Quelm::Ptr< T > const & member ) {                                       \
      ::Kiv::Store::put< Self >( *this, x##Attr(), x##_, member->kivKey(), member );               \
   }                                                                                               \
   KIV_USED ::Quelm::Ptr< T > x##Del( K const & key ) {                                            \
      return ::Kiv::Store::remove< Self >( *this, x##Attr(), x##_, key );                          \
   }                                                                                               \
   KIV_USED void x##DelAll() { ::Kiv::Store::removeAll< Self >( *this, x##Attr(), x##_ ); }        \
   KIV_KEYED( x, K, ::Quelm::Ptr< T >, __VA_ARGS__ )

#define KIV_NESTED( x, K, T, ... )                                                                 \
   KIV_ROW( x, Nested< KivSelf, K, T, &KivSelf::x##_ > )                                           \
   KIV_ID( x )                                                                                     \
   KIV_USED ::Quelm::Ptr< T > x( K const & key ) const { return x##_.at( key ); }                  \
   KIV_USED ::Quelm::Ptr< T > x##Del( K const & key ) {                                            \
      return ::Kiv::nestedDel< Self >( *this, x##Attr(), x##_, key );                              \
   }                                                                                               \
   KIV_USED void x##DelAll() { ::Kiv::nestedDelAll< Self >( *this, x##Attr(), x##_ ); }            \
   KIV_KEYED( x, K, ::Quelm::Ptr< T >, __VA_ARGS__ )

#define KIV_CALLABLE( R, x, parameters, qualifiers )                                               \
   KIV_ROW( x, Operation< static_cast< R ( KivSelf::* ) parameters qualifiers >( &KivSelf::x ) > ) \
   KIV_ID( x )

#define KIV_OPERATION( R, x, parameters )                                                          \
   R x parameters;                                                                                 \
   KIV_CALLABLE( R, x, parameters, )
#define KIV_QUERY( R, x, parameters )                                                              \
   R x parameters const;                                                                           \
   KIV_CALLABLE( R, x, parameters, const )
#define KIV_VIRTUAL( R, x, parameters )                                                            \
   virtual R x parameters;                                                                         \
   KIV_CALLABLE( R, x, parameters, )
#define KIV_ABSTRACT( R, x, parameters )                                                           \
   virtual R x parameters = 0;                                                                     \
   KIV_CALLABLE( R, x, parameters, )
#define KIV_OVERLOAD( R, x, parameters )                                                           \
   R x parameters;                                                                                 \
   static void kivOverload( ::Quelm::Line< __LINE__ > );                                           \
   template< typename Rows > static auto kivOverloadRow( ::Quelm::Line< __LINE__ > ) {             \
      return Rows::template make< typename Rows::template Operation<                               \
         static_cast< R ( KivSelf::* ) parameters >( &KivSelf::x ) > >( #x );                      \
   }

// clang-format on
// NOLINTEND(cppcoreguidelines-macro-usage, bugprone-macro-parentheses)
