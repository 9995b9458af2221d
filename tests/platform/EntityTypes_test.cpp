// The tables of the entity types that agents publish: names, order, kinds and types are what state
// files, `show` and other agents hold on to.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include <Kiv/Entity.h>

#include "support/Table.h"

namespace EntityTypesTest {

using Table = std::vector< std::string >;

std::map< std::string, Table > const published{
   { "Bridging::HwCapabilities", {} },
   { "Evpn::EthernetSegmentStatus",
     { "intfId: key -> Pelk::IntfId, read-only", "remoteTep: set Pelk::IpGenAddr" } },
   { "Evpn::EvpnStatus",
     { "segmentStatus: collection of entities Pelk::IntfId -> Evpn::EthernetSegmentStatus" } },
   { "Kiv::Clock", {} },
   { "Lag::Config",
     { "phyIntf: collection of entities Pelk::IntfId -> Lag::EthPhyIntfLagConfig" } },
   { "Lag::EthPhyIntfLagConfig",
     { "intfId: key -> Pelk::IntfId, read-only", "lag: value -> Pelk::IntfId" } },
   { "Lag::LagPhyIntfConfig",
     { "intfId: key -> Pelk::IntfId, read-only", "phyIntf: set Pelk::IntfId" } },
   { "Lag::LagPhyIntfMapping",
     { "lagPhyIntfConfig: collection of entities Pelk::IntfId -> Lag::LagPhyIntfConfig" } },
   { "Lag::LagPhyIntfMappingSm",
     { "lagConfig: reference -> Lag::Config const, read-only",
       "lagPhyIntfMapping: reference -> Lag::LagPhyIntfMapping, read-only" } },
   { "Oxa::EvpnTepSegment",
     { "tepIp: key -> Pelk::IpGenAddr, read-only", "segmentSet: set Pelk::IntfId" } },
   { "Oxa::EvpnTepSegmentDir",
     { "tepSegment: collection of entities Pelk::IpGenAddr -> Oxa::EvpnTepSegment" } },
   { "Oxa::OxaEvpnTepSegmentSm",
     { "evpnStatus: reference -> Evpn::EvpnStatus const, read-only",
       "tepSegmentDir: reference -> Oxa::EvpnTepSegmentDir, read-only",
       "bridgingHwCapabilities: reference -> Bridging::HwCapabilities const, read-only",
       "lagPhyIntfMapping: reference -> Lag::LagPhyIntfMapping const, read-only" } },
   { "Plugin::Mounter", {} },
   { "Vornal::DependencyPoint", { "isReady: value -> bool" } },
   { "Vornal::DependencySet", {} },
   { "Vornal::SubAgentDependencyPoints", { "ready: set string" } },
   { "Vornal::VornalCommonSmData",
     { "vornalIntfToPort: collection Pelk::IntfId -> VornalTypes::VornalPort",
       "vornalIntfToPortCache: collection Pelk::IntfId -> VornalTypes::VornalPort",
       "vornalModId: collection U16 -> U16",
       "sliceDependencyPoints: reference -> Vornal::VornalSliceDependencyPoints",
       "intfPortIs( Pelk::IntfId, VornalTypes::VornalPort )", "intfPortDel( Pelk::IntfId )",
       "intfOfPort( VornalTypes::VornalPort ) -> Pelk::IntfId" } },
   { "Vornal::VornalSliceDependencyPoints",
     { "subAgentDependencyPoints: reference -> Vornal::SubAgentDependencyPoints",
       "evpnDependencyPoint: reference -> Vornal::DependencyPoint, read-only" } },
   { "VornalCentral::I2EClassIdIndexConfig",
     { "remoteESPeerVtep: collection Pelk::IpGenAddr -> bool" } },
   { "VornalCentral::I2EClassIdIndexStatus",
     { "remoteESPeerVtep: collection Pelk::IpGenAddr -> VornalCommon::ClassId" } },
   { "VornalCentral::VornalAttributes", { "l3McastExemptFromSplitHorizon: value -> bool" } },
   { "VornalCentral::VpIndexStatus",
     { "remoteVport: collection VornalCentral::RemoteVtepKey -> U32" } },
   { "VornalCentral::VxlanCapabilities", { "i2eClassIdSupported: value -> bool" } },
   { "VornalLib::MounterBase", {} },
   { "Vxlan::VtiStatus",
     { "intfId: key -> Pelk::IntfId, read-only",
       "vrfToVniMap: collection L3::VrfName -> Vxlan::VniExtOrNone" } },
   { "Vxlan::VtiStatusDir",
     { "vtiStatus: collection of entities Pelk::IntfId -> Vxlan::VtiStatus" } },
};

TEST( EntityTypes, ThePlatformRegistersTheseAndNoOthers ) {
   std::vector< std::string > expected;
   for ( auto const & [ name, table ] : published ) {
      expected.push_back( name );
   }
   std::vector< std::string > registered;
   for ( Kiv::Type const * type : Kiv::types() ) {
      if ( !type->name().starts_with( "Support::" ) ) {
         registered.push_back( type->name() );
      }
   }
   EXPECT_EQ( registered, expected );
}

TEST( EntityTypes, EachHasExactlyTheAttributesThatItsReadersKnow ) {
   for ( auto const & [ name, table ] : published ) {
      Kiv::Type const * const type = Kiv::typeNamed( name );
      ASSERT_NE( type, nullptr ) << name;
      EXPECT_EQ( Support::tableOf( *type ), table ) << name;
   }
}

TEST( EntityTypes, MountedOnesAreCreatedByName ) {
   for ( char const * const name :
         { "Bridging::HwCapabilities", "Evpn::EvpnStatus", "Lag::Config", "Lag::LagPhyIntfMapping",
           "Oxa::EvpnTepSegmentDir", "VornalCentral::I2EClassIdIndexConfig",
           "VornalCentral::I2EClassIdIndexStatus", "VornalCentral::VpIndexStatus",
           "VornalCentral::VxlanCapabilities", "Vxlan::VtiStatusDir" } ) {
      ASSERT_TRUE( Kiv::typeNamed( name )->create() ) << name;
      Quelm::Ptr< Kiv::Entity > const made = Kiv::typeNamed( name )->create()( "mounted" );
      EXPECT_EQ( made->identity(), "mounted" );
      EXPECT_EQ( made->typeData().name(), name );
   }
}

}  // namespace EntityTypesTest
