// What the bridging hardware can do. Handed on to those who derive segment state; nothing of it is
// read by this agent's plug-ins.
#pragma once

#include <Kiv/Entity.h>

namespace Bridging {

class HwCapabilities : public Kiv::NamedEntity {
   KIV_ENTITY( HwCapabilities, Kiv::NamedEntity )

   using NamedEntity::NamedEntity;
};

}  // namespace Bridging
