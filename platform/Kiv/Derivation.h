// The base of objects that derive published entities from others.
//
// A derivation derives while its notifications are active and it is in service. When it begins to,
// it brings what it derives into step; when it ends, it leaves that as it is.
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
