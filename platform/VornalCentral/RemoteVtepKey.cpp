#include <VornalCentral/RemoteVtepKey.h>

namespace VornalCentral {

void RemoteVtepKey::textTo( std::string & out ) const {
   vtepIp_.textTo( out );
   if ( vtiNumber_ != kUsualVtiNumber ) {
      out += '@' + std::to_string( vtiNumber_ );
   }
   if ( !tunnelGroup_.isEmpty() ) {
      out += '#';
      tunnelGroup_.textTo( out );
   }
}

RemoteVtepKey RemoteVtepKey::textFrom( Quelm::TextReader & in ) {
   RemoteVtepKey key = getRemoteVtepKeyForIp( Pelk::IpGenAddr::textFrom( in ) );
   if ( in.accept( "@" ) ) {
      key.vtiNumber_ = Quelm::TextForm< U32 >::read( in );
   }
   if ( in.accept( "#" ) ) {
      key.tunnelGroup_ = Vxlan::SwTunnelGroupId::textFrom( in );
   }
   return key;
}

RemoteVtepKey getRemoteVtepKeyForIp( Pelk::IpGenAddr const & ip ) {
   return { Vxlan::SwTunnelGroupId(), RemoteVtepKey::kUsualVtiNumber, ip };
}

}  // namespace VornalCentral
