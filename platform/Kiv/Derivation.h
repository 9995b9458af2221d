// The base of objects that derive published entities from others.
//
// A derivation derives while its notifications are active and it is in service. When it begins, it
// brings the derived entities in sync. When it ends, it leaves them as they are.
//
// A derivation's destructor switches its notifications off. Threads: the activity's.
#pragma once

#include <Kiv/Entity.h>

namespace Kiv {

class Derivation : public Entity {
 public:
   void hasNotificationActiveIs( bool active ) override;
   void kivDoZombieReactors( bool zombie ) override;

 protected:
   bool isDeriving() const { return isDeriving_; }

   // isDeriving() tells the new state already.
   virtual void handleDerivingBegins() = 0;
   virtual void handleDerivingEnds() = 0;

 private:
   void isDerivingIs( bool deriving );

   bool isDeriving_ = false;
};

}  // namespace Kiv
