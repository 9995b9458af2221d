// The published state: what other agents say about the switch, and nothing that anybody has done
// about it. Every question here has an answer that depends on the present alone.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

#include <Facts/Names.h>

namespace Reference {

using Vni = unsigned;
inline constexpr Vni kNoVni = 0x1000000;  // a VRF that is mapped to none
using ClassId = unsigned;
inline constexpr ClassId kNoClassId = 0xffff;

struct Facts {
   std::map< Interface, Port > port;      // the chip port of each Ethernet interface
   std::map< Interface, Port > lastPort;  // the last one that it had; it may have none now
   std::map< Interface, Interface > portChannelOf;
   std::map< Interface, std::set< Vtep > > segment;             // the VTEPs that share the segment
   std::map< Vtep, unsigned > virtualPort;                      // under its usual key
   std::map< OtherKey, unsigned > otherKey;                     // and its virtual port
   std::map< Interface, std::map< std::string, Vni > > tunnel;  // VRF to VNI
   std::map< Vtep, ClassId > grant;

   // The interfaces of the segments that this VTEP shares.
   std::set< Interface > sharedWith( Vtep const & vtep ) const;
   // Every VTEP that shares a segment.
   std::set< Vtep > sharing() const;
   // A port channel has members; an Ethernet interface has a port.
   bool isKnown( Interface const & intf ) const;
   std::set< Interface > membersOf( Interface const & portChannel ) const;
   // The ports that a frame can leave by: one, or those of the members.
   std::set< Port > portsOf( Interface const & intf ) const;
   // The valid ports of one unit that lie on segments shared with this VTEP.
   std::set< Port > sharedPorts( unsigned unit, Vtep const & vtep ) const;
   // The first interface with this port; empty if there is none.
   Interface interfaceOf( Port const & wanted ) const;
   // The source port in the chip for the VTEP's usual key; that of virtual port 0 if it has none.
   unsigned gportOf( Vtep const & vtep ) const;
   // The source port in the chip of the VTEP's frames: that of its last key.
   unsigned gportOfFramesFrom( Vtep const & vtep ) const;
};

}  // namespace Reference
