// Entities as text for people: a tree by indentation. All of it is printable.
//
//    /evpn/status: Evpn::EvpnStatus status
//       segmentStatus
//          Port-Channel1: Evpn::EthernetSegmentStatus Port-Channel1
//             intfId: Port-Channel1
//             remoteTep
//                10.0.0.2
#pragma once

#include <string>

#include <Story/Event.h>

namespace Story {

std::string treeText( std::string const & path, EntityTree const & tree );

// One line: the path and the type.
std::string pathLine( EntityShown const & shown );

}  // namespace Story
