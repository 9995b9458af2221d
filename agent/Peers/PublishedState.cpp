#include <Peers/PublishedState.h>

#include <Audit/Variant.h>
#include <StateDatabase/SharedEntities.h>
#include <VornalCentral/Capabilities.h>
#include <VornalCentral/I2EClassIdIndex.h>

namespace Peers {

namespace {

// Publishes an entity of type T.
template< typename T >
Quelm::Ptr< T > publishNew( StateDatabase::Directory & directory, std::string const & path ) {
   return Quelm::dynamicCast< T >( directory.entityNew( path, T::kivTypeName() ) );
}

// Other agents withdraw only what they have published; anything else is a mistake in the scenario.
void checkThere( bool isThere, std::string const & absent ) {
   if ( !isThere ) {
      throw Quelm::Error( absent + " at this point, so nothing can be withdrawn" );
   }
}

}  // namespace

PublishedState::PublishedState( Scenario::Switch const & device, Kiv::ActivityManager & activity,
                                StateDatabase::Directory & database,
                                StateDatabase::Directory & shared ) {
   evpnStatus_ = publishNew< Evpn::EvpnStatus >( database, "evpn/status" );
   vpIndexStatus_ =
      publishNew< VornalCentral::VpIndexStatus >( database, "hardware/vornal/vp/status/vornalL3" );
   vtiStatusDir_ = publishNew< Vxlan::VtiStatusDir >( database, "interface/status/eth/vxlan" );
   lagConfig_ = publishNew< Lag::Config >( database, "lag/config" );
   database.entityNew( "bridging/hwcapabilities", "Bridging::HwCapabilities" );

   Audit::publishCapabilities( device.variant,
                               *publishNew< VornalCentral::VxlanCapabilities >(
                                  database, "hardware/vornal/centralStatus/vxlanCapabilities" ) );
   std::string const classIds = "hardware/vornal/i2eclassid/";
   classIdConfig_ =
      publishNew< VornalCentral::I2EClassIdIndexConfig >( database, classIds + "config/slice/" +
                                                                       device.slice );
   allocator_.emplace( device.classIds, activity, classIdConfig_,
                       publishNew< VornalCentral::I2EClassIdIndexStatus >(
                          database, classIds + "status/slice/" + device.slice ) );

   common_ = Quelm::make< Vornal::VornalCommonSmData >( "vornalCommon" );
   for ( Scenario::SwitchUnit const & unit : device.units ) {
      common_->vornalModIdIs( unit.number, unit.module );
   }
   auto const points = Quelm::make< Vornal::VornalSliceDependencyPoints >();
   points->subAgentDependencyPointsIs(
      Quelm::make< Vornal::SubAgentDependencyPoints >( "subagents" ) );
   common_->sliceDependencyPointsIs( points );
   std::string const folder = StateDatabase::SharedEntities::kFolder;
   shared.entityIs( folder + "vornalCommon", common_ );
   VornalCentral::vornalAttributes()->l3McastExemptFromSplitHorizonIs( device.isL3MulticastExempt );
   shared.entityIs( folder + "vornalAttributes", VornalCentral::vornalAttributes() );
}

void PublishedState::publish( Scenario::Published const & what ) {
   std::visit( [ this ]( auto const & one ) { publishOne( one ); }, what );
}

void PublishedState::withdraw( Scenario::Published const & what ) {
   std::visit( [ this ]( auto const & one ) { withdrawOne( one ); }, what );
}

void PublishedState::replace( Scenario::Replaced const & what ) {
   std::visit( [ this ]( auto const & one ) { replaceOne( one ); }, what );
}

// --- Interfaces and port channels

void PublishedState::publishOne( Scenario::InterfacePort const & what ) {
   common_->intfPortIs( what.intf, what.port );
}

void PublishedState::withdrawOne( Scenario::InterfacePort const & what ) {
   checkThere( common_->vornalIntfToPortHas( what.intf ),
               what.intf.stringValue() + " has no port" );
   common_->intfPortDel( what.intf );
}

void PublishedState::publishOne( Scenario::PortChannelMember const & what ) {
   lagConfig_->phyIntfIs( what.member )->lagIs( what.portChannel );
}

void PublishedState::withdrawOne( Scenario::PortChannelMember const & what ) {
   auto const member = lagConfig_->phyIntf( what.member );
   checkThere( member && member->lag() == what.portChannel,
               what.member.stringValue() + " is not in " + what.portChannel.stringValue() );
   member->lagIs( {} );
}

// --- Ethernet segments

void PublishedState::publishOne( Scenario::Segment const & what ) {
   evpnStatus_->segmentStatusIs( what.intf );
}

void PublishedState::withdrawOne( Scenario::Segment const & what ) {
   checkThere( evpnStatus_->segmentStatus( what.intf ) != nullptr,
               "there is no segment on " + what.intf.stringValue() );
   evpnStatus_->segmentStatusDel( what.intf );
}

void PublishedState::publishOne( Scenario::SegmentVtep const & what ) {
   evpnStatus_->segmentStatusIs( what.intf )->remoteTepIs( what.vtep );
}

void PublishedState::withdrawOne( Scenario::SegmentVtep const & what ) {
   auto const segment = evpnStatus_->segmentStatus( what.intf );
   checkThere( segment && segment->remoteTepHas( what.vtep ),
               what.vtep.stringValue() + " is not attached to a segment on " +
                  what.intf.stringValue() );
   segment->remoteTepDel( what.vtep );
}

void PublishedState::replaceOne( Scenario::SegmentReplaced const & what ) {
   auto const segment = Quelm::make< Evpn::EthernetSegmentStatus >( what.intf );
   for ( Pelk::IpGenAddr const & vtep : what.vteps ) {
      segment->remoteTepIs( vtep );
   }
   evpnStatus_->segmentStatusIs( segment );
}

// --- VTEPs and tunnel interfaces

void PublishedState::publishOne( Scenario::VtepVirtualPort const & what ) {
   vpIndexStatus_->remoteVportIs( VornalCentral::getRemoteVtepKeyForIp( what.vtep ),
                                  what.virtualPort );
}

void PublishedState::withdrawOne( Scenario::VtepVirtualPort const & what ) {
   auto const key = VornalCentral::getRemoteVtepKeyForIp( what.vtep );
   checkThere( vpIndexStatus_->remoteVportHas( key ),
               what.vtep.stringValue() + " has no virtual port" );
   vpIndexStatus_->remoteVportDel( key );
}

void PublishedState::publishOne( Scenario::TunnelInterface const & what ) {
   vtiStatusDir_->vtiStatusIs( what.intf );
}

void PublishedState::withdrawOne( Scenario::TunnelInterface const & what ) {
   checkThere( vtiStatusDir_->vtiStatus( what.intf ) != nullptr,
               "there is no " + what.intf.stringValue() );
   vtiStatusDir_->vtiStatusDel( what.intf );
}

void PublishedState::publishOne( Scenario::VrfVni const & what ) {
   vtiStatusDir_->vtiStatusIs( what.intf )->vrfToVniMapIs( what.vrf, what.vni );
}

void PublishedState::withdrawOne( Scenario::VrfVni const & what ) {
   auto const vti = vtiStatusDir_->vtiStatus( what.intf );
   checkThere( vti && vti->vrfToVniMapHas( what.vrf ),
               "VRF " + what.vrf.stringValue() + " has no VNI on " + what.intf.stringValue() );
   vti->vrfToVniMapDel( what.vrf );
}

void PublishedState::replaceOne( Scenario::TunnelInterfaceReplaced const & what ) {
   auto const vti = Quelm::make< Vxlan::VtiStatus >( what.intf );
   for ( Scenario::VrfVni const & vrf : what.vnis ) {
      vti->vrfToVniMapIs( vrf.vrf, vrf.vni );
   }
   vtiStatusDir_->vtiStatusIs( vti );
}

// --- Class ids

void PublishedState::publishOne( Scenario::ClassIdRequest const & what ) {
   classIdConfig_->remoteESPeerVtepIs( what.vtep, true );
}

void PublishedState::withdrawOne( Scenario::ClassIdRequest const & what ) {
   classIdConfig_->remoteESPeerVtepDel( what.vtep );
}

void PublishedState::publishOne( Scenario::ClassIdGrant const & what ) {
   allocator_->grantIs( what.vtep, what.id );
}

void PublishedState::withdrawOne( Scenario::ClassIdGrant const & what ) {
   checkThere( allocator_->isGranted( what.vtep ), what.vtep.stringValue() + " has no class id" );
   allocator_->grantDel( what.vtep );
}

}  // namespace Peers
