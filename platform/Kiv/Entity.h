// Kiv::Entity: the base of every object of the state database and of every object of a plug-in.
//
// An entity has typed attributes in a fixed order (its type's table, Kiv/Type.h), counted
// references (Quelm/Ptr.h) and subscribers (Kiv/Reactor.h). A class reads as its attribute table:
//
//    class TepIpToEntry : public Kiv::Entity {
//       KIV_ENTITY( TepIpToEntry, Kiv::Entity )
//       KIV_KEY( unit, U16 )
//       KIV_COLLECTION( entryId, Pelk::IpGenAddr, U32 )
//       ...
//
// and one line in a source file, KIV_DEFINE( Vornal::TepIpToEntry ), registers it. The lines are
// explained in Kiv/Attributes.h.
//
// A node's flags, all false at birth:
// - notification active: the entity's own reactors are subscribed to their inputs;
// - zombie: out of service; reactors that still fire do only what keeps them consistent;
// - being destroyed: set by owners that tear down in a fixed order; nothing that changes from then
//   on is delivered to subscribers.
//
// The order of the virtual operations is the order in which derived classes extend them.
#pragma once

#include <string>
#include <utility>

#include <Kiv/Attributes.h>
#include <Kiv/Reactor.h>
#include <Kiv/Type.h>
#include <Quelm/Ptr.h>

namespace Kiv {

class Entity : public Quelm::Counted {
 public:
   static constexpr U32 kivAttributeCount() { return 0; }
   static Type const & kivType();

   ~Entity() override = default;
   virtual Publisher & publisher() const { return publisher_; }
   virtual Type const & typeData() const = 0;
   // Puts the entity's reactors out of service, or back into it.
   virtual void kivDoZombieReactors( bool zombie ) { isZombie_ = zombie; }
   // Subscribes the entity's reactors to their inputs, or unsubscribes them.
   virtual void hasNotificationActiveIs( bool active ) { isNotificationActive_ = active; }

   bool hasNotificationActive() const { return isNotificationActive_; }
   bool isZombie() const { return isZombie_; }
   bool isBeingDestroyed() const { return isBeingDestroyed_; }

   // Tells this entity from others of its type: its key's text, or its name; else empty.
   virtual std::string identity() const { return {}; }

 protected:
   void isBeingDestroyedIs() {
      isBeingDestroyed_ = true;
      publisher_.silence();
   }

 private:
   mutable Publisher publisher_;
   bool isNotificationActive_ = false;
   bool isZombie_ = false;
   bool isBeingDestroyed_ = false;
};

// An entity that is known by a name rather than by a key: mounted entities, agent objects.
class NamedEntity : public Entity {
 public:
   explicit NamedEntity( std::string name ) : name_( std::move( name ) ) {}

   std::string const & name() const { return name_; }
   std::string identity() const override { return name_; }

 private:
   std::string name_;
};

}  // namespace Kiv
