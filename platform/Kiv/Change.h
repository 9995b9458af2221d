// One change of one attribute, as its subscribers see it.
#pragma once

#include <typeinfo>

#include <Quelm/Assert.h>
#include <Quelm/Integers.h>

namespace Kiv {

class Entity;

// Position of an attribute in its entity's table, from 1.
using AttributeId = U32;

// A pointer that remembers the type of its target; empty for "no such value".
class TypedPointer {
 public:
   TypedPointer() = default;
   template< typename T >
   explicit TypedPointer( T const * target ) : target_( target ), type_( &typeid( T ) ) {}

   // The target, or nullptr when there is none. Asking for another type is a failed assertion.
   template< typename T > T const * as() const {
      QUELM_ASSERT( !target_ || *type_ == typeid( T ) );
      return static_cast< T const * >( target_ );
   }
   void const * get() const { return target_; }

 private:
   void const * target_ = nullptr;
   std::type_info const * type_ = nullptr;
};

// Valid for the duration of the notification only.
//
// A plain attribute has no key. A member that was added has no old value, one that was removed no
// new value. The entity already holds the new state when the change is delivered.
class Change {
 public:
   Change( Entity const & entity, AttributeId attribute ) : entity_( &entity ), id_( attribute ) {}

   Change & keyed( TypedPointer key ) {
      key_ = key;
      return *this;
   }
   Change & from( TypedPointer oldValue ) {
      old_ = oldValue;
      return *this;
   }
   Change & to( TypedPointer newValue ) {
      new_ = newValue;
      return *this;
   }

   Entity const & entity() const { return *entity_; }
   AttributeId attribute() const { return id_; }

   template< typename Key > Key const & key() const {
      Key const * key = key_.as< Key >();
      QUELM_ASSERT( key );
      return *key;
   }
   template< typename T > T const * oldValue() const { return old_.as< T >(); }
   template< typename T > T const * newValue() const { return new_.as< T >(); }

   // Untyped, for Attribute::keyTextOf and valueTextOf.
   TypedPointer const & rawKey() const { return key_; }
   TypedPointer const & rawOldValue() const { return old_; }
   TypedPointer const & rawNewValue() const { return new_; }

 private:
   Entity const * entity_;
   AttributeId id_;
   TypedPointer key_;
   TypedPointer old_;
   TypedPointer new_;
};

}  // namespace Kiv
