#include <Kiv/Derivation.h>

namespace Kiv {

void Derivation::hasNotificationActiveIs( bool active ) {
   Entity::hasNotificationActiveIs( active );
   isDerivingIs( active && !isZombie() );
}

void Derivation::kivDoZombieReactors( bool zombie ) {
   Entity::kivDoZombieReactors( zombie );
   isDerivingIs( hasNotificationActive() && !zombie );
}

void Derivation::isDerivingIs( bool deriving ) {
   if ( deriving == isDeriving_ ) {
      return;
   }
   isDeriving_ = deriving;
   if ( deriving ) {
      handleDerivingBegins();
   } else {
      handleDerivingEnds();
   }
}

}  // namespace Kiv
