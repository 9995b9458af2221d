// VornalCentral::RemoteVtepKey: tells one remote VTEP of the switch from another.
//
// Most remote VTEPs belong to no tunnel group and are reached through the tunnel interface Vxlan1.
// The text of such a key is just the VTEP's address. Any other tunnel interface follows after '@',
// a tunnel group after '#':
//
//    10.0.0.1   2001:db8::1   10.0.0.1@2   10.0.0.1#west   10.0.0.1@2#west
//
// Keys are ordered by tunnel group, then tunnel interface, then address.
#pragma once

#include <compare>
#include <functional>
#include <string>
#include <utility>

#include <Pelk/IpGenAddr.h>
#include <Quelm/Integers.h>
#include <Quelm/Text.h>
#include <Vxlan/SwTunnelGroupId.h>

namespace VornalCentral {

class RemoteVtepKey : public Quelm::Value {
 public:
   static constexpr U32 kUsualVtiNumber = 1;

   RemoteVtepKey() = default;
   RemoteVtepKey( Vxlan::SwTunnelGroupId tunnelGroup, U32 vtiNumber,
                  Pelk::IpGenAddr const & vtepIp )
         : tunnelGroup_( std::move( tunnelGroup ) ), vtiNumber_( vtiNumber ), vtepIp_( vtepIp ) {}

   Vxlan::SwTunnelGroupId const & tunnelGroup() const { return tunnelGroup_; }
   // The number of the tunnel interface, 1 for Vxlan1; 0 in a default-built key.
   U32 vtiNumber() const { return vtiNumber_; }
   Pelk::IpGenAddr const & vtepIp() const { return vtepIp_; }

   friend bool operator==( RemoteVtepKey const &, RemoteVtepKey const & ) = default;
   friend std::strong_ordering operator<=>( RemoteVtepKey const &,
                                            RemoteVtepKey const & ) = default;

   static std::string_view textTypeName() { return "VornalCentral::RemoteVtepKey"; }
   void textTo( std::string & out ) const;
   static RemoteVtepKey textFrom( Quelm::TextReader & in );

 private:
   Vxlan::SwTunnelGroupId tunnelGroup_;
   U32 vtiNumber_ = 0;
   Pelk::IpGenAddr vtepIp_;
};

// The key of the remote VTEP at `ip` that belongs to no tunnel group and is reached through Vxlan1.
RemoteVtepKey getRemoteVtepKeyForIp( Pelk::IpGenAddr const & ip );

}  // namespace VornalCentral

template<> struct std::hash< VornalCentral::RemoteVtepKey > {
   std::size_t operator()( VornalCentral::RemoteVtepKey const & key ) const noexcept {
      std::size_t const others =
         std::hash< Vxlan::SwTunnelGroupId >()( key.tunnelGroup() ) + key.vtiNumber();
      return others * 31 + std::hash< Pelk::IpGenAddr >()( key.vtepIp() );
   }
};
