#include <Frames/Headers.h>

namespace Chip {

std::optional< EthernetHeader > readEthernet( Bytes frame ) {
   if ( frame.size() < EthernetHeader::kUntagged ) {
      return std::nullopt;
   }
   EthernetHeader header{ .destination = macAt( frame, 0 ),
                          .source = macAt( frame, MacAddress::kBytes ),
                          .etherType = u16At( frame, EthernetHeader::kAddresses ) };
   if ( header.etherType == EtherType::kVlanTag ) {
      if ( frame.size() < EthernetHeader::kUntagged + EthernetHeader::kTag ) {
         return std::nullopt;
      }
      header.tag = u16At( frame, EthernetHeader::kUntagged );
      header.etherType = u16At( frame, EthernetHeader::kAddresses + EthernetHeader::kTag );
   }
   return header;
}

bcm_field_IpType_t ipTypeOf( U16 etherType ) {
   switch ( etherType ) {
   case EtherType::kIpv4: return bcmFieldIpTypeIpv4Any;
   case EtherType::kIpv6: return bcmFieldIpTypeIpv6;
   default: return bcmFieldIpTypeNonIp;
   }
}

}  // namespace Chip
