#include <FromScenario/Changes.h>

namespace Reference {

Interface interfaceOf( Pelk::IntfId const & intf ) {
   return Interface( intf.stringValue() );
}

Vtep vtepOf( Pelk::IpGenAddr const & vtep ) {
   return Vtep( vtep.stringValue() );
}

namespace {

using Events = std::vector< Event >;

Events comes( Scenario::InterfacePort const & what ) {
   return { PortIs{ interfaceOf( what.intf ),
                    { what.port.unit(), what.port.logicalPort(), what.port.modId() } } };
}
Events goes( Scenario::InterfacePort const & what ) {
   return { PortGoes{ interfaceOf( what.intf ) } };
}

Events comes( Scenario::PortChannelMember const & what ) {
   return { MemberJoins{ interfaceOf( what.portChannel ), interfaceOf( what.member ) } };
}
Events goes( Scenario::PortChannelMember const & what ) {
   return { MemberLeaves{ interfaceOf( what.member ) } };
}

Events comes( Scenario::Segment const & what ) {
   return { SegmentIs{ interfaceOf( what.intf ) } };
}
Events goes( Scenario::Segment const & what ) {
   return { SegmentGoes{ interfaceOf( what.intf ) } };
}

Events comes( Scenario::SegmentVtep const & what ) {
   return { VtepJoins{ interfaceOf( what.intf ), vtepOf( what.vtep ) } };
}
Events goes( Scenario::SegmentVtep const & what ) {
   return { VtepLeaves{ interfaceOf( what.intf ), vtepOf( what.vtep ) } };
}

Events comes( Scenario::VtepVirtualPort const & what ) {
   return { VirtualPortIs{ vtepOf( what.vtep ), what.virtualPort } };
}
Events goes( Scenario::VtepVirtualPort const & what ) {
   return { VirtualPortGoes{ vtepOf( what.vtep ) } };
}

Events comes( Scenario::TunnelInterface const & what ) {
   return { TunnelIs{ interfaceOf( what.intf ) } };
}
Events goes( Scenario::TunnelInterface const & what ) {
   return { TunnelGoes{ interfaceOf( what.intf ) } };
}

Events comes( Scenario::VrfVni const & what ) {
   return { VniIs{ interfaceOf( what.intf ), what.vrf.stringValue(), what.vni.value() } };
}
Events goes( Scenario::VrfVni const & what ) {
   return { VniGoes{ interfaceOf( what.intf ), what.vrf.stringValue() } };
}

// Requests are the plug-in's own.
Events comes( Scenario::ClassIdRequest const & ) {
   return {};
}
Events goes( Scenario::ClassIdRequest const & ) {
   return {};
}

Events comes( Scenario::ClassIdGrant const & what ) {
   return { GrantIs{ vtepOf( what.vtep ), what.id.value() } };
}
Events goes( Scenario::ClassIdGrant const & what ) {
   return { GrantGoes{ vtepOf( what.vtep ) } };
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
   return std::visit( []( auto const & one ) { return comes( one ); }, what );
}

std::vector< Event > withdrawn( Scenario::Published const & what ) {
   return std::visit( []( auto const & one ) { return goes( one ); }, what );
}

Event replaced( Scenario::Replaced const & what ) {
   return std::visit( []( auto const & one ) { return inPlace( one ); }, what );
}

}  // namespace Reference
