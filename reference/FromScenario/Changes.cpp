#include <FromScenario/Changes.h>

#include <algorithm>

#include <Quelm/Text.h>

namespace Reference {

Interface interfaceOf( Pelk::IntfId const & intf ) {
   return Interface( intf.stringValue() );
}

Vtep vtepOf( Pelk::IpGenAddr const & vtep ) {
   return Vtep( vtep.stringValue() );
}

namespace {

// How something comes, and how it goes.
struct Events {
   std::vector< Event > published;
   std::vector< Event > withdrawn;
};

Events eventsOf( Scenario::InterfacePort const & what ) {
   Interface const intf = interfaceOf( what.intf );
   Port const port{ what.port.unit(), what.port.logicalPort(), what.port.modId() };
   return { { PortIs{ intf, port } }, { PortGoes{ intf } } };
}

Events eventsOf( Scenario::PortChannelMember const & what ) {
   Interface const member = interfaceOf( what.member );
   return { { MemberJoins{ interfaceOf( what.portChannel ), member } },
            { MemberLeaves{ member } } };
}

Events eventsOf( Scenario::Segment const & what ) {
   Interface const intf = interfaceOf( what.intf );
   return { { SegmentIs{ intf } }, { SegmentGoes{ intf } } };
}

Events eventsOf( Scenario::SegmentVtep const & what ) {
   Interface const intf = interfaceOf( what.intf );
   Vtep const vtep = vtepOf( what.vtep );
   return { { VtepJoins{ intf, vtep } }, { VtepLeaves{ intf, vtep } } };
}

Events eventsOf( Scenario::VtepVirtualPort const & what ) {
   Vtep const vtep = vtepOf( what.vtep );
   return { { VirtualPortIs{ vtep, what.virtualPort } }, { VirtualPortGoes{ vtep } } };
}

Events eventsOf( Scenario::TunnelInterface const & what ) {
   Interface const intf = interfaceOf( what.intf );
   return { { TunnelIs{ intf } }, { TunnelGoes{ intf } } };
}

Events eventsOf( Scenario::VrfVni const & what ) {
   Interface const intf = interfaceOf( what.intf );
   std::string const vrf = what.vrf.stringValue();
   return { { VniIs{ intf, vrf, what.vni.value() } }, { VniGoes{ intf, vrf } } };
}

// Requests are the plug-in's own.
Events eventsOf( Scenario::ClassIdRequest const & ) {
   return {};
}

Events eventsOf( Scenario::ClassIdGrant const & what ) {
   Vtep const vtep = vtepOf( what.vtep );
   return { { GrantIs{ vtep, what.id.value() } }, { GrantGoes{ vtep } } };
}

Event inPlace( Scenario::SegmentReplaced const & what ) {
   std::set< Vtep > vteps;
   for ( Pelk::IpGenAddr const & vtep : what.vteps ) {
      vteps.insert( vtepOf( vtep ) );
   }
   return SegmentReplaced{ interfaceOf( what.intf ), vteps };
}

Event inPlace( Scenario::TunnelInterfaceReplaced const & what ) {
   std::map< std::string, Vni > vnis;
   for ( Scenario::VrfVni const & one : what.vnis ) {
      vnis[ one.vrf.stringValue() ] = one.vni.value();
   }
   return TunnelReplaced{ interfaceOf( what.intf ), vnis };
}

bool isOfKeys( Scenario::AttributeAt const & at ) {
   return at.attribute == "remoteVport" &&
          at.entity.stringValue().starts_with( "/hardware/vornal/vp/status/" );
}

// "10.0.0.1@2#west": the address, the tunnel interface if it is not 1, the group if there is one.
OtherKey keyIn( std::string const & text ) {
   std::size_t const group = std::min( text.find( '#' ), text.size() );
   std::size_t const tunnel = std::min( text.find( '@' ), group );
   OtherKey key;
   key.vtep = Vtep( text.substr( 0, tunnel ) );
   if ( tunnel < group ) {
      key.tunnel = static_cast< unsigned >( std::stoul( text.substr( tunnel + 1 ) ) );
   }
   if ( group < text.size() ) {
      key.group = text.substr( group + 1 );
   }
   return key;
}

bool isUsual( OtherKey const & key ) {
   return key.group.empty() && key.tunnel == 1;
}

}  // namespace

std::optional< Event > keyIs( Scenario::AttributeAt const & at, std::string const & value ) {
   if ( !isOfKeys( at ) ) {
      return std::nullopt;
   }
   OtherKey const key = keyIn( at.key );
   auto const number = static_cast< unsigned >( std::stoul( value ) );
   return isUsual( key ) ? Event( VirtualPortIs{ key.vtep, number } )
                         : Event( OtherKeyIs{ key, number } );
}

std::optional< Event > keyGoes( Scenario::AttributeAt const & at ) {
   if ( !isOfKeys( at ) ) {
      return std::nullopt;
   }
   OtherKey const key = keyIn( at.key );
   return isUsual( key ) ? Event( VirtualPortGoes{ key.vtep } ) : Event( OtherKeyGoes{ key } );
}

std::optional< Event > portIs( std::string const & operation,
                               std::vector< std::string > const & arguments ) {
   if ( operation != "intfPortIs" || arguments.size() != 2 ) {
      return std::nullopt;
   }
   auto const port = Quelm::fromText< VornalTypes::VornalPort >( arguments.back() );
   return PortIs{ Interface( arguments.front() ),
                  { port.unit(), port.logicalPort(), port.modId() } };
}

std::vector< Event > published( Scenario::Published const & what ) {
   return std::visit( []( auto const & one ) { return eventsOf( one ).published; }, what );
}

std::vector< Event > withdrawn( Scenario::Published const & what ) {
   return std::visit( []( auto const & one ) { return eventsOf( one ).withdrawn; }, what );
}

Event replaced( Scenario::Replaced const & what ) {
   return std::visit( []( auto const & one ) { return inPlace( one ); }, what );
}

}  // namespace Reference
