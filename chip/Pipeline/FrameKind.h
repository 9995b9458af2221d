// The kind of a frame, which the forwarding decision finds, and the number by which the ingress
// field processor knows it.
#pragma once

#include <algorithm>
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

struct FrameKindRow {
   FrameKind kind;
   std::string_view name;
   // The value that the ingress field processor sees (PacketRes). The SDK and the shim name three
   // of them; the others are this chip's own, and different from those and each other.
   U32 packetResolution;
   bool isForSeveral;  // it may go to more than one receiver
};

// By FrameKind.
inline constexpr std::array kFrameKindTable{
   FrameKindRow{ FrameKind::Broadcast, "broadcast", 1, true },
   FrameKindRow{ FrameKind::UnknownUnicast, "unknown-unicast", 2, true },
   FrameKindRow{ FrameKind::L2Multicast, "l2-multicast", 3, true },
   FrameKindRow{ FrameKind::RoutedMulticast, "routed-multicast", SoftSdk::kPacketResL3McKnown,
                 true },
   FrameKindRow{ FrameKind::KnownUnicast, "known-unicast", BCM_FIELD_PKT_RES_L2UC, false },
   FrameKindRow{ FrameKind::RoutedUnicast, "routed-unicast", BCM_FIELD_PKT_RES_L3UCKNOWN, false },
};

constexpr FrameKindRow const & rowOf( FrameKind kind ) {
   return kFrameKindTable[ static_cast< std::size_t >( kind ) ];
}
static_assert( std::all_of( kFrameKindTable.begin(), kFrameKindTable.end(),
                            []( FrameKindRow const & row ) { return &row == &rowOf( row.kind ); } ),
               "the rows stand in the order of FrameKind" );

inline constexpr auto kFrameKinds = [] {
   std::array< FrameKind, kFrameKindTable.size() > all{};
   std::transform( kFrameKindTable.begin(), kFrameKindTable.end(), all.begin(),
                   []( FrameKindRow const & row ) { return row.kind; } );
   return all;
}();

constexpr std::string_view nameOf( FrameKind kind ) {
   return rowOf( kind ).name;
}
constexpr U32 packetResolutionOf( FrameKind kind ) {
   return rowOf( kind ).packetResolution;
}
constexpr bool isForSeveral( FrameKind kind ) {
   return rowOf( kind ).isForSeveral;
}

}  // namespace Chip
