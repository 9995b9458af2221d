// The properties of the chip, as the agent's central part publishes them.
#pragma once

#include <Kiv/Entity.h>

namespace VornalCentral {

class VxlanCapabilities : public Kiv::NamedEntity {
   KIV_ENTITY( VxlanCapabilities, Kiv::NamedEntity )
   // The ingress field processor can tag a frame with a class id that the egress one sees.
   KIV_VALUE( i2eClassIdSupported, bool )

   using NamedEntity::NamedEntity;
};

// Properties of the platform that concern more than one plug-in.
class VornalAttributes : public Kiv::NamedEntity {
   KIV_ENTITY( VornalAttributes, Kiv::NamedEntity )
   // The platform keeps known L3 multicast out of split-horizon filtering by itself, so that no
   // per-VNI rule is needed for it.
   KIV_VALUE( l3McastExemptFromSplitHorizon, bool )

   using NamedEntity::NamedEntity;
};

// The central attributes of this process; all flags are clear at first.
Quelm::Ptr< VornalAttributes > const & vornalAttributes();

}  // namespace VornalCentral
