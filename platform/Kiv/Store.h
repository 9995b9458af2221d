// The accessors of an entity: change the storage, then tell the subscribers.
//
// One function per kind of change, used by the attribute lines of Kiv/Attributes.h and by the
// generic interface alike, so that both notify in the same way:
//
// - Writing an equal value changes nothing and notifies nobody.
// - The storage holds the new state when a subscriber is called.
// - The entity outlives the delivery, whatever the subscribers drop.
//
// Cost: one lookup, and one test when nobody has subscribed.
#pragma once

#include <utility>

#include <Kiv/Change.h>
#include <Kiv/Collection.h>
#include <Kiv/Reactor.h>
#include <Quelm/Ptr.h>

namespace Kiv::Store {

template< typename Owner > void publish( Owner const & entity, Change const & change ) {
   Quelm::Ptr< Owner const > const alive( &entity );
   entity.publisher().publish( change );
}

// Sets a plain value or a reference.
template< typename Owner, typename T >
void assign( Owner & entity, AttributeId attribute, T & storage, T value ) {
   if ( storage == value ) {
      return;
   }
   std::swap( storage, value );
   entity.publisher().changed();
   if ( entity.publisher().hasSubscribers() ) {
      T const now = storage;
      publish(
         entity,
         Change( entity, attribute ).from( TypedPointer( &value ) ).to( TypedPointer( &now ) ) );
   }
}

// Inserts, or overwrites in place. Returns the stored value, or the default if a subscriber has
// removed the member again.
template< typename Owner, typename Key, typename T >
T const & put( Owner & entity, AttributeId attribute, Collection< Key, T > & storage,
               Key const & key, T value ) {
   auto const [ slot, isNew ] = storage.insert( key, value );
   if ( !isNew ) {
      if ( *slot == value ) {
         return *slot;
      }
      std::swap( *slot, value );
   }
   entity.publisher().changed();
   if ( !entity.publisher().hasSubscribers() ) {
      return *slot;
   }
   Quelm::Ptr< Owner > const alive( &entity );
   Key const keptKey = key;
   T const now = *slot;
   Change change( entity, attribute );
   change.keyed( TypedPointer( &keptKey ) ).to( TypedPointer( &now ) );
   if ( !isNew ) {
      change.from( TypedPointer( &value ) );
   }
   entity.publisher().publish( change );
   T const * const left = storage.find( keptKey );
   return left ? *left : absent< T >();
}

// Removes; returns the removed value, or the default when there was none.
template< typename Owner, typename Key, typename T >
T remove( Owner & entity, AttributeId attribute, Collection< Key, T > & storage, Key const & key ) {
   T removed{};
   Key const keptKey = key;  // the key may be the member's own
   if ( !storage.remove( key, removed ) ) {
      return removed;
   }
   entity.publisher().changed();
   if ( entity.publisher().hasSubscribers() ) {
      publish( entity, Change( entity, attribute )
                          .keyed( TypedPointer( &keptKey ) )
                          .from( TypedPointer( &removed ) ) );
   }
   return removed;
}

// Removes every member present, one by one in key order.
template< typename Owner, typename Key, typename T >
void removeAll( Owner & entity, AttributeId attribute, Collection< Key, T > & storage ) {
   Quelm::Ptr< Quelm::Counted const > const owner( &entity );
   for ( typename Collection< Key, T >::Iterator iter( storage, owner ); iter; ++iter ) {
      remove( entity, attribute, storage, iter.key() );
   }
}

// The member of `key`, created from the key when absent.
template< typename Owner, typename Key, typename T >
Quelm::Ptr< T > member( Owner & entity, AttributeId attribute,
                        Collection< Key, Quelm::Ptr< T > > & storage, Key const & key ) {
   if ( auto const * const found = storage.find( key ) ) {
      return *found;
   }
   Quelm::Ptr< T > created = Quelm::make< T >( key );
   put( entity, attribute, storage, key, created );
   return created;
}

}  // namespace Kiv::Store
