#include <Probing/ProbedSwitch.h>

#include <fmt/format.h>

#include <Audit/SharedSegments.h>
#include <Brum/PerUnitBitmap.h>
#include <Frames/FrameFields.h>

namespace Probing {

namespace {

using Chip::FrameContent;
using Chip::FrameFields;
using Chip::FrameKind;
using Chip::MacAddress;
using Pelk::IntfId;
using Pelk::IpGenAddr;
using VornalTypes::VornalPort;

constexpr MacAddress kUnknownHost( 0x020000030000 );
constexpr MacAddress kBridgedGroup( 0x01005e7f0001 );
constexpr MacAddress kRoutedGroup( 0x01005e010101 );
constexpr U64 kHosts = 0x020000010000;
constexpr U64 kRemoteHosts = 0x020000020000;

IpGenAddr address( std::string_view text ) {
   return IpGenAddr::fromString( text );
}

// Of documentation and benchmarks (RFC 5737, RFC 3849, RFC 2544).
IpGenAddr ownVtep( IpGenAddr::Family family ) {
   return address( family == IpGenAddr::Family::ipv4 ? "203.0.113.1" : "2001:db8:ffff::1" );
}
IpGenAddr hostAddress( std::size_t number ) {
   return address( fmt::format( "198.18.{}.{}", number / 256, number % 256 ) );
}

class Builder {
 public:
   Builder( Audit::State const & state, std::set< Chip::Vni > const & vnis )
         : state_( state ), vnis_( vnis ) {}

   ProbedSwitch built() {
      addDomains();
      addInterfaces();
      addTunnels();
      addHosts();
      addProbes();
      return std::move( switch_ );
   }

 private:
   using Config = Chip::InterfaceConfig;
   using Ports = std::map< std::pair< U16, U16 >, IntfId >;  // by unit and port

   void addDomains() {
      std::set< Chip::Vni > vnis = vnis_;
      Chip::Vni plain = 1;  // that no VRF had
      while ( vnis.contains( plain ) ) {
         ++plain;
      }
      vnis.insert( plain );
      for ( Chip::Vni const vni : vnis ) {
         auto const vlan = static_cast< Chip::Vlan >( forwarding().vlanToVni.size() + 1 );
         forwarding().vlanToVni[ vlan ] = vni;
         vlans_.insert( vlan );
      }
   }

   void addInterfaces() {
      Ports byPort;
      for ( auto const & [ intf, port ] : state_.ports ) {
         if ( intf.kind() == IntfId::Kind::ethernet && state_.modules.contains( port.unit() ) &&
              port.logicalPort() < Brum::PerUnitBitmap::kBits ) {
            byPort.try_emplace( { port.unit(), port.logicalPort() }, intf );
         }
      }
      for ( auto const & [ port, intf ] : byPort ) {
         forwarding().interfaces.push_back( Config{ .intfId = intf,
                                                    .unit = port.first,
                                                    .logicalPort = port.second,
                                                    .vlans = { .tagged = vlans_ } } );
      }
      access_ = byPort.size();
      addUnderlay( byPort );
   }

   void addUnderlay( Ports const & taken ) {
      U16 const unit = state_.modules.empty() ? U16{ 0 } : state_.modules.begin()->first;
      auto port = static_cast< U16 >( Brum::PerUnitBitmap::kBits - 1 );
      while ( taken.contains( { unit, port } ) ) {
         --port;
      }
      U32 number = IntfId::kHighestNumber;
      IntfId intf = IntfId::fromString( fmt::format( "Ethernet{}", number ) );
      while ( state_.ports.contains( intf ) ) {
         intf = IntfId::fromString( fmt::format( "Ethernet{}", --number ) );
      }
      forwarding().interfaces.push_back(
         Config{ .intfId = intf, .unit = unit, .logicalPort = port, .isUnderlay = true } );
   }

   void addTunnels() {
      forwarding().vtepIpv4 = ownVtep( IpGenAddr::Family::ipv4 );
      forwarding().vtepIpv6 = ownVtep( IpGenAddr::Family::ipv6 );
      std::map< U16, std::vector< IpGenAddr > > byVirtualPort;
      for ( auto const & [ vtep, virtualPort ] : state_.virtualPorts ) {
         byVirtualPort[ Audit::vpIndexOf( state_, vtep ) ].push_back( vtep );
      }
      for ( auto const & [ virtualPort, vteps ] : byVirtualPort ) {
         if ( vteps.size() == 1 && vteps.front() != ownVtep( vteps.front().family() ) ) {
            forwarding().tunnels[ vteps.front() ] = { virtualPort, {} };
         }
      }
   }

   void addHosts() {
      forwarding().multicastRoutes[ address( "239.1.1.1" ) ] = {};
      for ( std::size_t host = 0; host < access_; ++host ) {
         forwarding().hostRoutes[ hostAddress( host ) ] = { *vlans_.begin(),
                                                            MacAddress( kHosts + host ) };
         for ( Chip::Vlan const vlan : vlans_ ) {
            switch_.probes.push_back(
               { .arrival = portOf( forwarding().interfaces[ host ] ),
                 .bytes = bytesOf( FrameFields{ .source = MacAddress( kHosts + host ),
                                                .destination = kUnknownHost,
                                                .vlan = vlan } ),
                 .vni = forwarding().vlanToVni.at( vlan ),
                 .kind = FrameKind::UnknownUnicast } );
         }
      }
   }

   void addProbes() {
      std::size_t host = 0;
      for ( auto const & [ vtep, tunnel ] : forwarding().tunnels ) {
         for ( auto const & [ vlan, vni ] : forwarding().vlanToVni ) {
            addFrames( { .arrival = portOf( forwarding().interfaces.back() ),
                         .vtep = vtep,
                         .vni = vni },
                       MacAddress( kRemoteHosts + host ) );
         }
         ++host;
      }
   }

   void addFrames( ProbeFrame const & from, MacAddress source ) {
      addFrame( from, FrameKind::Broadcast, { .source = source } );
      addFrame( from, FrameKind::UnknownUnicast,
                { .source = source, .destination = kUnknownHost } );
      addFrame( from, FrameKind::L2Multicast, { .source = source, .destination = kBridgedGroup } );
      if ( !state_.isL3MulticastExempt ) {
         addFrame( from, FrameKind::RoutedMulticast,
                   packetTo( source, kRoutedGroup, address( "239.1.1.1" ) ) );
      }
      for ( std::size_t host = 0; host < access_; ++host ) {
         addFrame( from, FrameKind::KnownUnicast,
                   { .source = source, .destination = MacAddress( kHosts + host ) } );
         addFrame( from, FrameKind::RoutedUnicast,
                   packetTo( source, forwarding().routerMac, hostAddress( host ) ) );
      }
   }

   static FrameFields packetTo( MacAddress source, MacAddress destination,
                                IpGenAddr const & host ) {
      return { .source = source,
               .destination = destination,
               .content = FrameContent::Udp,
               .sourceIp = address( "198.19.0.1" ),
               .destinationIp = host };
   }

   void addFrame( ProbeFrame frame, FrameKind kind, FrameFields fields ) {
      fields.outer = Chip::OuterFields{ .sourceVtep = *frame.vtep,
                                        .destinationVtep = ownVtep( frame.vtep->family() ),
                                        .vni = frame.vni };
      frame.kind = kind;
      frame.bytes = bytesOf( fields );
      switch_.probes.push_back( std::move( frame ) );
   }

   Chip::ForwardingConfig & forwarding() { return switch_.forwarding; }
   static VornalPort portOf( Config const & interface ) {
      return { interface.unit, interface.logicalPort };
   }

   Audit::State const & state_;
   std::set< Chip::Vni > const & vnis_;
   ProbedSwitch switch_;
   std::set< Chip::Vlan > vlans_;
   std::size_t access_ = 0;  // interfaces; that of the underlay comes behind them
};

}  // namespace

ProbedSwitch probedSwitchOf( Audit::State const & state, std::set< Chip::Vni > const & vnis ) {
   return Builder( state, vnis ).built();
}

}  // namespace Probing
