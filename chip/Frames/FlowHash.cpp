#include <Frames/Headers.h>

namespace Chip {

namespace {

constexpr U64 kSpread = 0x9e3779b97f4a7c15;  // 2^64 over the golden ratio: odd, without pattern

U64 mixed( U64 hash, U64 word ) {
   hash = ( hash ^ word ) * kSpread;
   return hash ^ hash >> 32;
}

}  // namespace

bool hasPorts( IpHeader const & ip, Bytes payload ) {
   bool const isTransport = ip.protocol == IpProtocol::kTcp || ip.protocol == IpProtocol::kUdp ||
                            ip.protocol == IpProtocol::kSctp;
   return isTransport && !ip.isFragment && payload.size() >= 4;
}

U32 flowHashOf( EthernetHeader const & ethernet, IpHeader const * ip, Bytes ipPayload ) {
   U64 hash = mixed( ethernet.source.value(), ethernet.destination.value() );
   hash = mixed( hash, ethernet.etherType );
   if ( ip ) {
      hash = mixed( hash, std::hash< Pelk::IpGenAddr >()( ip->source ) );
      hash = mixed( hash, std::hash< Pelk::IpGenAddr >()( ip->destination ) );
      hash = mixed( hash, ip->protocol );
      // All fragments must take the same way.
      if ( hasPorts( *ip, ipPayload ) ) {
         hash = mixed( hash, U64{ u16At( ipPayload, 0 ) } << 16 | u16At( ipPayload, 2 ) );
      }
   }
   return static_cast< U32 >( hash );
}

}  // namespace Chip
