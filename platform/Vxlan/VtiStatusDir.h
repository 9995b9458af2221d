// The VXLAN tunnel interfaces of this switch and the VNI of each VRF that is routed over them.
#pragma once

#include <Kiv/Entity.h>
#include <L3/VrfName.h>
#include <Pelk/IntfId.h>
#include <Vxlan/VniExtOrNone.h>

namespace Vxlan {

class VtiStatus : public Kiv::Entity {
   KIV_ENTITY( VtiStatus, Kiv::Entity )
   KIV_KEY( intfId, Pelk::IntfId )
   KIV_COLLECTION( vrfToVniMap, L3::VrfName, VniExtOrNone )

   explicit VtiStatus( Pelk::IntfId const & intfId ) : intfId_( intfId ) {}
};

class VtiStatusDir : public Kiv::NamedEntity {
   KIV_ENTITY( VtiStatusDir, Kiv::NamedEntity )
   KIV_MEMBERS( vtiStatus, Pelk::IntfId, VtiStatus )

   using NamedEntity::NamedEntity;
};

}  // namespace Vxlan
