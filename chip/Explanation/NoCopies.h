// The interfaces of a switch to which a frame has no copy, and why.
//
// A copy stands in the frame's story even where a rule held it back; an interface is here when the
// pipeline did not consider it at all, or chose another one. Each interface and port channel of the
// forwarding configuration has a copy or a reason, and never both.
#pragma once

#include <Pipeline/Rehearsal.h>

namespace Chip {

enum class NoCopyReason : U8 {
   FrameDropped,   // the whole frame, before it was replicated
   OnePlace,       // the frame was for one place only, and this is another
   NotInVlan,      // the interface does not carry the frame's VLAN
   OtherMember,    // the flow took another member of the port channel
   ArrivalMember,  // the frame came in by another member of the port channel
   // --- Underlay interfaces, and a frame for several
   FromTunnel,      // what came through a tunnel enters no other one
   NoVni,           // the VLAN is mapped to none, so the frame enters no tunnel
   EmptyFloodList,  // the VNI floods to no VTEP
   NoMember,        // a port channel without members
   OtherUnderlay,   // the flow took another of the interfaces that lead to the VTEPs
   NotOnTheWay,     // no tunnel to a VTEP of the flood list leads over it
};

struct NoCopy {
   Pelk::IntfId intfId{};
   NoCopyReason reason{};
   // Of a member. Where the reason is none of the two about members, it is the port channel's.
   Pelk::IntfId portChannel{};

   // --- What the reason is about
   std::optional< DropReason > dropReason{};  // FrameDropped
   Vlan vlan = 0;                             // NotInVlan, NoVni, EmptyFloodList
   Vni vni = 0;                               // EmptyFloodList
   // OnePlace: that place, where a tunnel has the underlay interface taken as well. OtherMember,
   // ArrivalMember: the member. OtherUnderlay: the first VTEP that this interface leads to as well,
   // and the interface taken.
   MacPlace instead{};

   friend bool operator==( NoCopy const &, NoCopy const & ) = default;
};

// Interfaces first, then port channels, both in the order of the configuration.
std::vector< NoCopy > noCopiesOf( Rehearsal const & rehearsal );

}  // namespace Chip
