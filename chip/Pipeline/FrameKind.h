// What the forwarding decision makes of a frame, and the number by which the ingress field
// processor knows it.
#pragma once

#include <array>
#include <string_view>

#include <Shim/Sdk.h>
#include <SoftSdk/SoftSdk.h>

namespace Chip {

enum class FrameKind : U8 {
   Broadcast,
   UnknownUnicast,   // to a MAC address that has not been learned
   L2Multicast,      // every group address without a route
   RoutedMulticast,  // known L3 multicast: the group has a route
   KnownUnicast,     // bridged to a MAC address that has been learned
   RoutedUnicast,    // to the router's MAC address, and on to a host
};
inline constexpr std::array kFrameKinds{ FrameKind::Broadcast,    FrameKind::UnknownUnicast,
                                         FrameKind::L2Multicast,  FrameKind::RoutedMulticast,
                                         FrameKind::KnownUnicast, FrameKind::RoutedUnicast };

// "broadcast", "unknown-unicast", "l2-multicast", "routed-multicast", "known-unicast",
// "routed-unicast".
std::string_view nameOf( FrameKind kind );

// Whether it may go to more than one receiver.
constexpr bool isForSeveral( FrameKind kind ) {
   return kind < FrameKind::KnownUnicast;
}

// The packet resolution that the ingress field processor sees (PacketRes). The SDK and the shim
// name three of them; the others are this chip's own, and different from those and each other.
constexpr U32 packetResolutionOf( FrameKind kind ) {
   switch ( kind ) {
   case FrameKind::Broadcast: return 1;
   case FrameKind::UnknownUnicast: return 2;
   case FrameKind::L2Multicast: return 3;
   case FrameKind::RoutedMulticast: return SoftSdk::kPacketResL3McKnown;
   case FrameKind::KnownUnicast: return BCM_FIELD_PKT_RES_L2UC;
   case FrameKind::RoutedUnicast: return BCM_FIELD_PKT_RES_L3UCKNOWN;
   }
   return 0;
}

}  // namespace Chip
