// Change notification: publishers and the reactors subscribed to them.
//
// Every entity has a Publisher. A Reactor watches one entity at a time (its notifier) and is
// subscribed to it while its notifications are active. When the entity changes, every subscribed
// reactor is called at once, on the thread that made the change, in the order of subscription.
//
// Invariants:
// - A reactor is called at most once per change, and never after it has unsubscribed or died.
// - Subscribing, unsubscribing, re-pointing and destroying any reactor from inside a handler is
//   safe, also of the one that is running. A reactor that subscribes during a delivery is not
//   called for the change being delivered.
// - A reactor keeps its notifier alive while it watches it.
// - Being out of service ("zombie") is a mark on the reactor. It does not unsubscribe; each
//   handler takes account of it by itself.
//
// Failures: an exception that leaves a handler stops the process, with its text on standard error:
// the change has been acted on in part. Publishing itself cannot fail.
//
// Cost: one call per subscriber; nothing is allocated. Unsubscribing costs one pass over the
// subscribers of that entity, of which there are few.
//
// An object that watches its inputs reads as a table. Each Watch is a row: the input, the attribute
// that counts, the handler.
//
//    Kiv::Watch< Lag::Config > watch_{
//       lagConfig(), Kiv::onKey( Lag::Config::phyIntfAttr(), this, &KivSelf::handlePhyIntf ) };
//
// Threads: changes are made by holders of the activity lock only (Activity.h).
#pragma once

#include <functional>
#include <utility>

#include <Kiv/Change.h>
#include <Quelm/Ptr.h>

namespace Kiv {

class Reactor;

// The subscribers of one entity, in the order of subscription.
class Publisher {
 public:
   Publisher() = default;
   Publisher( Publisher const & ) = delete;
   Publisher & operator=( Publisher const & ) = delete;
   ~Publisher();

   // Whether a change is delivered to any subscriber.
   bool hasSubscribers() const { return first_ != nullptr && !isSilent_; }
   std::size_t subscribers() const;

   void publish( Change const & change ) noexcept;

   // How often the entity has changed, modulo 2^32, subscribed to or not. What has been worked out
   // of an entity holds while this number stands.
   U32 changes() const { return changes_; }
   void changed() { ++changes_; }

   // Delivers nothing from now on: the entity is being taken apart.
   void silence() { isSilent_ = true; }

 private:
   friend class Reactor;
   class Delivery;

   void subscribe( Reactor & reactor );
   void unsubscribe( Reactor & reactor );

   Reactor * first_ = nullptr;
   Reactor * last_ = nullptr;
   Delivery * delivering_ = nullptr;  // innermost delivery under way
   U32 changes_ = 0;
   bool isSilent_ = false;
};

// One subscriber. Derived classes act in onAttribute().
class Reactor {
 public:
   Reactor() = default;
   Reactor( Reactor const & ) = delete;
   Reactor & operator=( Reactor const & ) = delete;
   virtual ~Reactor();

   // Subscribes to, or unsubscribes from, the notifier; without effect when nothing changes.
   virtual void hasNotificationActiveIs( bool active );
   bool hasNotificationActive() const { return isActive_; }

   // Marks the reactor as out of service.
   void isZombieIs( bool zombie ) { isZombie_ = zombie; }
   bool isZombie() const { return isZombie_; }

 protected:
   // Watches `notifier` (or nothing) from now on; stays active or inactive as it was.
   void watchedIs( Quelm::Ptr< Entity const > notifier );
   Quelm::Ptr< Entity const > const & watched() const { return watched_; }

   virtual void onAttribute( Change const & change ) = 0;

 private:
   friend class Publisher;

   void subscribe();
   void unsubscribe();

   Quelm::Ptr< Entity const > watched_;
   Reactor * next_ = nullptr;
   bool isActive_ = false;
   bool isZombie_ = false;
};

using ChangeHandler = std::function< void( Change const & ) >;

// Calls the handler when this attribute has changed.
template< typename Object, typename Class >
ChangeHandler onAttribute( AttributeId attribute, Object * object, void ( Class::*handler )() ) {
   return [ = ]( Change const & change ) {
      if ( change.attribute() == attribute ) {
         ( object->*handler )();
      }
   };
}

// The same for an attribute with keys: the handler is given the key.
template< typename Object, typename Class, typename Key >
ChangeHandler onKey( AttributeId attribute, Object * object,
                     void ( Class::*handler )( Key const & ) ) {
   return [ = ]( Change const & change ) {
      if ( change.attribute() == attribute ) {
         ( object->*handler )( change.key< Key >() );
      }
   };
}

// The same for a handler that looks at the old or the new value: it is given the change.
template< typename Object, typename Class >
ChangeHandler onChange( AttributeId attribute, Object * object,
                        void ( Class::*handler )( Change const & ) ) {
   return [ = ]( Change const & change ) {
      if ( change.attribute() == attribute ) {
         ( object->*handler )( change );
      }
   };
}

// The same row, which calls nobody while its object is out of service.
template< typename Object >
ChangeHandler inService( Object const * object, ChangeHandler handler ) {
   return [ object, handler = std::move( handler ) ]( Change const & change ) {
      if ( !object->isZombie() ) {
         handler( change );
      }
   };
}

// A reactor on a T that hands every change to a function of its owner.
template< typename T > class Watch final : public Reactor {
 public:
   explicit Watch( ChangeHandler handler )
         : action_( Quelm::make< Action >( std::move( handler ) ) ) {}
   Watch( Quelm::Ptr< T const > const & notifier, ChangeHandler handler )
         : Watch( std::move( handler ) ) {
      notifierIs( notifier );
   }

   void notifierIs( Quelm::Ptr< T const > const & notifier ) { watchedIs( notifier ); }

 private:
   struct Action : Quelm::Counted {
      explicit Action( ChangeHandler handler ) : run( std::move( handler ) ) {}
      ChangeHandler const run;
   };

   // Keeps the handler while it runs: it may destroy the watch.
   void onAttribute( Change const & change ) override {
      Quelm::Ptr< Action const > const action = action_;
      action->run( change );
   }

   Quelm::Ptr< Action const > const action_;
};

}  // namespace Kiv
