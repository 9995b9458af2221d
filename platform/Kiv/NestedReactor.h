// Nested reactors: one small reactor for each member of a published collection.
//
// A reactor that watches a collection often has to watch every member as well. It then keeps a
// collection of nested reactors of its own, keyed like the watched one: a nested reactor enters
// when a member is first seen, is re-pointed when the member is replaced by another object under
// the same key, and is retired when the member has gone. Retiring puts it out of service, switches
// its notifications off and, after that, gives it a last word in retired().
//
// The owner dropping its collection (in its destructor) is not retiring: there is no last word. The
// reactors are put out of service, switched off and forget the owner. A reactor to which somebody
// else still refers is therefore silent, also when the owner's own notifications were off.
//
// A class of nested reactors says ownerDel(): it forgets the back reference to its owner.
//
// Failures: to nest an empty reference throws Quelm::NullArgumentError and changes nothing. Cost:
// one look-up and one subscription a member. Threads: the activity's.
#pragma once

#include <string>
#include <utility>

#include <Kiv/Entity.h>
#include <Quelm/Error.h>
#include <Quelm/Text.h>

namespace Kiv {

// A nested reactor on a T, which has a key of its own. `Base` is an entity: what the reactors of
// one owner share.
template< typename T, typename Base = Entity > class NestedReactor : public Base {
 public:
   using Notifier = Quelm::Ptr< T const >;

   Notifier const & notifier() const { return notifier_; }
   void notifierIs( Notifier const & notifier ) {
      notifier_ = notifier;
      watch_.notifierIs( notifier );
   }

   auto const & kivKey() const { return notifier_->kivKey(); }
   std::string identity() const override { return Quelm::textOf( kivKey() ); }

   void hasNotificationActiveIs( bool active ) override {
      Base::hasNotificationActiveIs( active );
      watch_.hasNotificationActiveIs( active );
   }

   // The reactor has been taken out of its collection because the watched entity has gone.
   virtual void retired() {}

 protected:
   // The handler is called for every change of the watched entity.
   template< typename... BaseInputs >
   NestedReactor( Notifier const & notifier, ChangeHandler handler, BaseInputs const &... inputs )
         : Base( inputs... ),
           notifier_( notifier ),
           watch_( notifier, [ this, handler = std::move( handler ) ]( Change const & change ) {
              Quelm::Ptr< NestedReactor > const alive( this );  // the handler may retire it
              handler( change );
           } ) {}

 private:
   Notifier notifier_;
   Watch< T > watch_;
};

// Nests a reactor on `notifier` in `storage`; one that is built anew has its notifications set to
// `active`.
template< typename Owner, typename Key, typename Reactor >
void nestedIs( Owner & owner, AttributeId attribute,
               Collection< Key, Quelm::Ptr< Reactor > > & storage,
               typename Reactor::Notifier const & notifier, bool active ) {
   if ( !notifier ) {
      throw Quelm::NullArgumentError( "a nested reactor needs an entity to watch" );
   }
   if ( auto const * const reactor = storage.find( notifier->kivKey() ) ) {
      ( *reactor )->notifierIs( notifier );
      return;
   }
   auto const reactor = Quelm::make< Reactor >( notifier, &owner );
   reactor->hasNotificationActiveIs( active );
   Store::put( owner, attribute, storage, notifier->kivKey(), reactor );
}

// Takes the reactor of `key` out, retires it and returns it; an empty reference when there is none.
template< typename Owner, typename Key, typename Reactor >
Quelm::Ptr< Reactor > nestedDel( Owner & owner, AttributeId attribute,
                                 Collection< Key, Quelm::Ptr< Reactor > > & storage,
                                 Key const & key ) {
   auto const reactor = Store::remove( owner, attribute, storage, key );
   if ( reactor ) {
      reactor->kivDoZombieReactors( true );
      reactor->hasNotificationActiveIs( false );
      reactor->retired();
      reactor->ownerDel();
   }
   return reactor;
}

// Takes out and retires every reactor that is there when it begins. A reactor's last word may
// retire others, and may nest new ones, which stay.
template< typename Owner, typename Key, typename Reactor >
void nestedDelAll( Owner & owner, AttributeId attribute,
                   Collection< Key, Quelm::Ptr< Reactor > > & storage ) {
   Quelm::Ptr< Quelm::Counted const > const alive( &owner );
   for ( typename Collection< Key, Quelm::Ptr< Reactor > >::Iterator iter( storage, alive ); iter;
         ++iter ) {
      nestedDel( owner, attribute, storage, iter.key() );
   }
}

// Switches the notifications of every nested reactor.
template< typename Key, typename Reactor >
void nestedNotificationActiveIs( Collection< Key, Quelm::Ptr< Reactor > > const & storage,
                                 bool active ) {
   for ( typename Collection< Key, Quelm::Ptr< Reactor > >::Iterator iter( storage, nullptr ); iter;
         ++iter ) {
      iter.value()->hasNotificationActiveIs( active );
   }
}

// Puts every nested reactor out of service, or back into it.
template< typename Key, typename Reactor >
void nestedZombieIs( Collection< Key, Quelm::Ptr< Reactor > > const & storage, bool zombie ) {
   for ( typename Collection< Key, Quelm::Ptr< Reactor > >::Iterator iter( storage, nullptr ); iter;
         ++iter ) {
      iter.value()->kivDoZombieReactors( zombie );
   }
}

// The owner is going: every nested reactor is put out of service, switched off and forgets it, and
// the collection is empty after that.
template< typename Key, typename Reactor >
void nestedOwnerDel( Collection< Key, Quelm::Ptr< Reactor > > & storage ) {
   while ( Key const * const key = storage.firstKey() ) {
      Quelm::Ptr< Reactor > reactor;
      storage.remove( Key( *key ), reactor );
      reactor->kivDoZombieReactors( true );
      reactor->hasNotificationActiveIs( false );
      reactor->ownerDel();
   }
}

}  // namespace Kiv
