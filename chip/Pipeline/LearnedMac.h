// MAC addresses as values, in the names of the configuration: how one is learned, and where it is.
// The table itself is MacTable.h.
#pragma once

#include <optional>

#include <Frames/MacAddress.h>
#include <Pelk/IntfId.h>
#include <Pelk/IpGenAddr.h>

namespace Chip {

// The outcome for a source address.
enum class Learning : U8 {
   New,
   Moved,
   Unchanged,      // it is known at that place
   SharedSegment,  // it stays on the segment of this switch, which the source VTEP is on as well
   NotLearnable,   // a group address, or all zeros
   TableFull,
};

// An interface, or a VTEP behind a tunnel.
struct MacPlace {
   Pelk::IntfId intfId{};  // empty behind a tunnel; a port channel's, where the port is a member
   std::optional< Pelk::IpGenAddr > remoteVtep{};

   friend bool operator==( MacPlace const &, MacPlace const & ) = default;
};

// An entry of the MAC table.
struct LearnedMac {
   U16 vlan = 0;
   MacAddress address{};
   MacPlace place{};
   // The frame by which the address was learned or last moved. The pipeline counts frames from 1.
   U64 frame = 0;

   friend bool operator==( LearnedMac const &, LearnedMac const & ) = default;
};

}  // namespace Chip
