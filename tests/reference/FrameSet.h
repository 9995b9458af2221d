// Every kind of frame on the switch of random stories (Moves.h): from each interface and from each
// VTEP, in each VLAN or VNI, to each receiver.
//
// The frames are the same at all times, so they stand in captures, one for each interface where
// they come in. What becomes of them depends on the switch.
#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include <Frames/FrameFields.h>
#include <Frames/Reach.h>
#include <Pelk/IntfId.h>

namespace Frames {

// The places of stations: behind these.
inline constexpr std::array< char const *, 4 > kInterfaces{ "Ethernet1", "Ethernet2",
                                                            "Port-Channel1", "Port-Channel2" };
inline constexpr std::array< char const *, 4 > kVteps{ "10.0.0.2", "10.0.0.10", "2001:db8::2",
                                                       "10.0.0.3" };

struct Sent {
   Reference::Sending sending;
   Chip::FrameFields fields;
};

struct Arriving {
   Pelk::IntfId on;
   std::vector< Sent > frames;
   std::filesystem::path capture;
};

// Writes the captures into that folder. Those of interfaces come before that of the VTEPs.
std::vector< Arriving > framesIn( std::filesystem::path const & folder );

// The lines of a scenario about how the switch forwards, with a route to each station.
std::string forwarding();

// "frame: { ... }"
std::string stepOf( Arriving const & arriving, Sent const & sent );

}  // namespace Frames
