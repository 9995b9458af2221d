// Ingress-to-egress class ids: requests to, and grants of, the central allocator. One pair per
// slice.
#pragma once

#include <Kiv/Entity.h>
#include <Pelk/IpGenAddr.h>
#include <VornalCommon/ClassId.h>

namespace VornalCentral {

// Written by a plug-in: an entry asks for a class id for this remote VTEP.
class I2EClassIdIndexConfig : public Kiv::NamedEntity {
   KIV_ENTITY( I2EClassIdIndexConfig, Kiv::NamedEntity )
   KIV_COLLECTION( remoteESPeerVtep, Pelk::IpGenAddr, bool )

   using NamedEntity::NamedEntity;
};

// Written by the allocator: an entry is a grant.
class I2EClassIdIndexStatus : public Kiv::NamedEntity {
   KIV_ENTITY( I2EClassIdIndexStatus, Kiv::NamedEntity )
   KIV_COLLECTION( remoteESPeerVtep, Pelk::IpGenAddr, VornalCommon::ClassId )

   using NamedEntity::NamedEntity;
};

}  // namespace VornalCentral
