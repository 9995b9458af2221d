// The outer headers of VXLAN from this switch to one remote VTEP (RFC 7348, section 5).
//
// Addresses and whatever else is the same for all frames are laid out once; a frame adds lengths,
// VNI, source port and checksum. TTL and hop limit are 64. An IPv4 packet may not be fragmented and
// needs no identification (RFC 6864, section 4.1). The UDP checksum is zero, over IPv6 too (RFC
// 6935); the receiver recognises flows by the source port.
#pragma once

#include <Frames/Headers.h>

namespace Chip {

class OuterHeaders {
 public:
   // In bytes, over IPv6.
   static constexpr std::size_t kLargest =
      EthernetHeader::kUntagged + kIpv6Size + kUdpSize + kVxlanSize;

   // The fields that differ between frames.
   struct PerFrame {
      std::size_t innerSize = 0;
      U32 vni = 0;
      U32 flowHash = 0;        // chooses the source port, 49152 and up
      MacAddress neighbour{};  // the outer destination MAC address
   };

   // Both addresses are of one family.
   OuterHeaders( MacAddress ownMac, Pelk::IpGenAddr const & source,
                 Pelk::IpGenAddr const & destination );

   std::size_t size() const { return size_; }
   // Writes them to `room`, which has size() bytes.
   void write( PerFrame const & frame, MutableBytes room ) const;

 private:
   std::array< U8, kLargest > bytes_{};
   std::size_t size_;
   bool isIpv4_;
};

}  // namespace Chip
