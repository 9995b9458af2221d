#include <FromScenario/Changes.h>

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

}  // namespace

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
