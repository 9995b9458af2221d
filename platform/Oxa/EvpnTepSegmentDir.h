// The Ethernet segments that this switch shares with each remote VTEP: the segment status turned
// round, from VTEPs per segment to segments per VTEP.
#pragma once

#include <string>

#include <Kiv/Entity.h>
#include <Pelk/IntfId.h>
#include <Pelk/IpGenAddr.h>

namespace Oxa {

// The local interfaces of the segments shared with one remote VTEP. Never empty while it is in the
// directory.
class EvpnTepSegment : public Kiv::Entity {
   KIV_ENTITY( EvpnTepSegment, Kiv::Entity )
   KIV_KEY( tepIp, Pelk::IpGenAddr )
   KIV_SET( segmentSet, Pelk::IntfId, segments )

   explicit EvpnTepSegment( Pelk::IpGenAddr const & tepIp ) : tepIp_( tepIp ) {}
};

class EvpnTepSegmentDir : public Kiv::NamedEntity {
   KIV_ENTITY( EvpnTepSegmentDir, Kiv::NamedEntity )
   KIV_MEMBERS( tepSegment, Pelk::IpGenAddr, EvpnTepSegment, tepSegments )

   using NamedEntity::NamedEntity;
};

// An empty directory.
Quelm::Ptr< EvpnTepSegmentDir > evpnTepSegmentDirFactory( std::string const & name );

}  // namespace Oxa
