#include <Explanation/DecodedFrame.h>

namespace Chip {

namespace {

std::optional< ArpFields > readArp( Bytes packet ) {
   constexpr std::size_t size = 28;
   constexpr U32 lengthsOfMacAndIpv4 = 0x0604;
   bool const isIpv4OverEthernet = packet.size() >= size && u16At( packet, 0 ) == 1 &&
                                   u16At( packet, 2 ) == EtherType::kIpv4 &&
                                   u16At( packet, 4 ) == lengthsOfMacAndIpv4;
   if ( !isIpv4OverEthernet ) {
      return std::nullopt;
   }
   return ArpFields{ .operation = u16At( packet, 6 ),
                     .senderMac = macAt( packet, 8 ),
                     .senderIp = ipv4At( packet, 14 ),
                     .targetMac = macAt( packet, 18 ),
                     .targetIp = ipv4At( packet, 24 ) };
}

// One Ethernet header, and the headers behind it. The payload is what stands behind IP.
class Layer {
 public:
   explicit Layer( Bytes frame ) {
      std::optional< EthernetHeader > const ethernet = readEthernet( frame );
      if ( !ethernet ) {
         return;
      }
      fields = HeaderFields{ .source = ethernet->source,
                             .destination = ethernet->destination,
                             .tag = ethernet->tag,
                             .etherType = ethernet->etherType };
      Bytes const packet = frame.subspan( ethernet->size() );
      if ( ethernet->isIp() ) {
         readPacket( packet );
      } else if ( ethernet->etherType == EtherType::kArp ) {
         fields->arp = readArp( packet );
      }
   }

   std::optional< HeaderFields > fields{};
   Bytes payload{};

 private:
   void readPacket( Bytes packet ) {
      bool const isIpv4 = fields->etherType == EtherType::kIpv4;
      if ( packet.size() < ( isIpv4 ? kIpv4Size : kIpv6Size ) ) {
         return;
      }
      IpHeader ip;
      IpFault const fault = readIp( fields->etherType, packet, ip );
      bool const isHeaderThere = fault != IpFault::BadHeader && ip.size <= packet.size();
      fields->ip = IpFields{ .source = ip.source,
                             .destination = ip.destination,
                             .protocol = ip.protocol,
                             .timeToLive = ip.timeToLive,
                             .isFragment = ip.isFragment,
                             .fault = fault,
                             .isChecksumRight = isHeaderThere && isChecksumRight( ip, packet ) };
      if ( !isHeaderThere ) {
         return;
      }
      payload = packet.subspan( ip.size );
      payload = payload.first( std::min( payload.size(), ip.payloadSize ) );
      if ( hasPorts( ip, payload ) ) {
         fields->ports = PortFields{ u16At( payload, 0 ), u16At( payload, 2 ) };
      }
   }
};

// The payload of UDP to the VXLAN port, up to the end that UDP says, where that can be.
Bytes vxlanIn( Layer const & outer ) {
   bool const isVxlan = outer.fields && outer.fields->ports &&
                        outer.fields->ip->protocol == IpProtocol::kUdp &&
                        outer.fields->ports->destination == kVxlanPort &&
                        outer.payload.size() >= kUdpSize + kVxlanSize;
   if ( !isVxlan ) {
      return {};
   }
   std::size_t const length = u16At( outer.payload, 4 );
   bool const canBe = length >= kUdpSize + kVxlanSize && length <= outer.payload.size();
   return outer.payload.first( canBe ? length : outer.payload.size() ).subspan( kUdpSize );
}

}  // namespace

DecodedFrame decode( Bytes frame, bool isUnderlay ) {
   Layer const first( frame );
   if ( !isUnderlay ) {
      return { .inner = first.fields };
   }
   DecodedFrame result{ .outer = first.fields };
   Bytes const vxlan = vxlanIn( first );
   if ( !vxlan.empty() ) {
      result.vxlan = VxlanFields{ u8At( vxlan, 0 ), u24At( vxlan, 4 ) };
      result.inner = Layer( vxlan.subspan( kVxlanSize ) ).fields;
   }
   return result;
}

}  // namespace Chip
