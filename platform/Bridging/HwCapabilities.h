// The capabilities of the bridging hardware. They are handed on to the derivation of the shared
// segments; this agent's plug-ins read nothing of them.
#pragma once

#include <Kiv/Entity.h>

namespace Bridging {

class HwCapabilities : public Kiv::NamedEntity {
   KIV_ENTITY( HwCapabilities, Kiv::NamedEntity )

   using NamedEntity::NamedEntity;
};

}  // namespace Bridging
