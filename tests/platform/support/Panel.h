// A panel with one lamp for each port of a switch: an entity with nested reactors.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <Kiv/NestedReactor.h>

#include "Switch.h"

namespace Support {

class Panel;

// Watches one port; notes in the panel's story what it sees.
class Lamp : public Kiv::NestedReactor< Port > {
   KIV_ENTITY( Lamp, Kiv::Entity )
   KIV_BACK( panel, Panel )

   Lamp( Notifier const & port, Panel * panel );

   void retired() override;
   void ownerDel() { panel_ = nullptr; }

 private:
   void handleSpeed();
   void note( Panel & panel, std::string const & text ) const;
};

class Panel : public Kiv::NamedEntity {
   KIV_ENTITY( Panel, Kiv::NamedEntity )
   KIV_NESTED( lamp, U16, Lamp, lamps )

   using NamedEntity::NamedEntity;
   ~Panel() override;

   void lampIs( Quelm::Ptr< Port const > const & port );
   void hasNotificationActiveIs( bool active ) override;
   void kivDoZombieReactors( bool zombie ) override;

   std::vector< std::string > story;
   bool isRetiringOnChange = false;  // a lamp is taken off by the first change that it sees
   // What a lamp does with its last word.
   std::function< void( Lamp & ) > onRetired = []( Lamp & ) {};
};

}  // namespace Support
