// The Ethernet segments of this switch (RFC 7432, section 5), as the EVPN agent publishes them.
#pragma once

#include <Kiv/Entity.h>
#include <Pelk/IntfId.h>
#include <Pelk/IpGenAddr.h>

namespace Evpn {

// One Ethernet segment: the interface it is on, and the remote VTEPs attached to it as well.
class EthernetSegmentStatus : public Kiv::Entity {
   KIV_ENTITY( EthernetSegmentStatus, Kiv::Entity )
   KIV_KEY( intfId, Pelk::IntfId )
   KIV_SET( remoteTep, Pelk::IpGenAddr )

   explicit EthernetSegmentStatus( Pelk::IntfId const & intfId ) : intfId_( intfId ) {}
};

class EvpnStatus : public Kiv::NamedEntity {
   KIV_ENTITY( EvpnStatus, Kiv::NamedEntity )
   KIV_MEMBERS( segmentStatus, Pelk::IntfId, EthernetSegmentStatus, segmentStatuses )

   using NamedEntity::NamedEntity;
};

}  // namespace Evpn
