// The virtual ports that the chip uses for remote VTEPs.
#pragma once

#include <Kiv/Entity.h>
#include <VornalCentral/RemoteVtepKey.h>

namespace VornalCentral {

class VpIndexStatus : public Kiv::NamedEntity {
   KIV_ENTITY( VpIndexStatus, Kiv::NamedEntity )
   // The virtual port; its low 16 bits are the VP index.
   KIV_COLLECTION( remoteVport, RemoteVtepKey, U32, remoteVports )

   using NamedEntity::NamedEntity;
};

}  // namespace VornalCentral
