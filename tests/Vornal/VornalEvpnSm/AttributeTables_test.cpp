// The introspection tables of the state machines: names, order, kinds and types, variant by
// variant.

#include <gtest/gtest.h>

#include "../support/LocalBiasSwitch.h"

namespace {

using Rows = std::vector< std::string >;

std::string rowOf( Kiv::Attribute const & attribute ) {
   switch ( attribute.kind() ) {
   case Kiv::Attribute::Kind::Operation:
      return attribute.name() + "( " + attribute.keyType() + " )" +
             ( attribute.valueType().empty() ? "" : " -> " + attribute.valueType() );
   case Kiv::Attribute::Kind::Collection:
   case Kiv::Attribute::Kind::Members:
      return attribute.name() + "[ " + attribute.keyType() + " ] " + attribute.valueType();
   default: return attribute.name() + " " + attribute.valueType();
   }
}

Rows rowsOf( Kiv::Type const & type ) {
   Rows rows;
   for ( auto const * attribute : type.attributes() ) {
      rows.push_back( rowOf( *attribute ) );
   }
   return rows;
}

Rows const baseRows{
   "vcsd Vornal::VornalCommonSmData const",
   "oxaEvpnTepSegmentDir Oxa::EvpnTepSegmentDir const",
   "vpIndexStatus VornalCentral::VpIndexStatus const",
   "evpnStatus Evpn::EvpnStatus const",
   "vtiStatusDir Vxlan::VtiStatusDir const",
   "tcamManager Vornal::VornalUnboundedTcamEntryManager",
   "clock Kiv::Clock",
   "lagConfigDir Lag::Config const",
   "lagPhyIntfMapping Lag::LagPhyIntfMapping const",
   "tepIpToEntry[ U16 ] Vornal::TepIpToEntry",
   "vniToTcamEntryId[ U32 ] U32",
   "tcamExhaustion bool",
   "isEvpn bool",
   "installRulesForUcastTraffic( U16 )",
   "removeRulesForUcastTraffic( U16 )",
   "l2UcastRuleInstalled[ U16 ] U32",
   "l3UcastRuleInstalled[ U16 ] U32",
   "handleTepSegment( Pelk::IpGenAddr )",
   "handleSegmentStatus(  )",
   "oxaEvpnTepSegment[ Pelk::IpGenAddr ] "
   "Vornal::EvpnMultihomingLocalBiasSm::NestedSm_OxaEvpnTepSegment",
   "unprogrammedTcamRulesList[ L3::VrfName ] U32",
   "handleTcamExhaustion(  )",
   "handleTime(  )",
   "vtiStatus[ Pelk::IntfId ] Vornal::EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus",
   "handleRemoteVport( VornalCentral::RemoteVtepKey )",
   "lagPhyIntfConfig[ Pelk::IntfId ] "
   "Vornal::EvpnMultihomingLocalBiasSm::NestedSm_LagPhyIntfConfig",
   "handleVornalIntfToPort( Pelk::IntfId )",
   "getPortListForPortChannel( Pelk::IntfId ) -> VornalTypes::VornalPortList",
   "getSharedESPortInfo( U32, Pelk::IpGenAddr ) -> Vornal::SharedESPortInfo",
   "getPortListsOnUpdate( U32, Pelk::IpGenAddr, Pelk::IntfId, bool ) -> Vornal::PortListsOnUpdate",
   "ifpTcamEntries( U32, Pelk::IpGenAddr, bool ) -> bool",
   "efpTcamEntries( U32, Pelk::IpGenAddr, VornalTypes::VornalPortList, bool ) -> bool",
   "addTcamEntries( U32, Pelk::IpGenAddr ) -> bool",
   "deleteTcamEntries( U32, Pelk::IpGenAddr ) -> bool",
   "updateIfpTcamEntries( U32, Pelk::IpGenAddr, VornalTypes::VornalPortList, "
   "VornalTypes::VornalPortList, bool ) -> bool",
   "updateEfpTcamEntries( U32, Pelk::IpGenAddr, VornalTypes::VornalPortList, "
   "VornalTypes::VornalPortList, bool ) -> bool",
   "unitUsesOrNeedsTcams( U32 ) -> bool",
   "unitUsesTcamsForTepIp( U32, Pelk::IpGenAddr ) -> bool",
   "tcamSanityCheckForTepIp( U32, Pelk::IpGenAddr ) -> bool",
   "verifyIfpEntries( U32, Pelk::IpGenAddr )",
   "verifyEfpEntries( U32, Pelk::IpGenAddr )",
   "handleVerify(  )",
   "initialized bool",
   "handleInitialized(  )",
   "updateTcamEntries( U32, Pelk::IpGenAddr, Pelk::IntfId, bool )",
};

TEST( LocalBiasTable, OfTheBaseHasItsAttributesInOrder ) {
   EXPECT_EQ( rowsOf( Vornal::EvpnMultihomingLocalBiasSm::kivType() ), baseRows );
}

TEST( LocalBiasTable, OfTheEgressMaskVariantAddsNothing ) {
   EXPECT_EQ( rowsOf( Vornal::EvpnMultihomingLocalBiasWithEgressMaskSm::kivType() ), baseRows );
}

TEST( LocalBiasTable, OfTheClassIdVariantAddsItsOwnAfterTheBase ) {
   Rows rows = baseRows;
   Rows const added{
      "efpTcamManager Vornal::VornalUnboundedTcamEntryManager",
      "i2eClassIdIndexConfig VornalCentral::I2EClassIdIndexConfig",
      "i2eClassIdIndexStatus VornalCentral::I2EClassIdIndexStatus const",
      "i2eTepIpClassId[ Pelk::IpGenAddr ] VornalCommon::ClassId",
      "i2eTepIpClassIdRefCount[ Pelk::IpGenAddr ] U32",
      "handleRemoteESPeerVtepI2EClassId( Pelk::IpGenAddr )",
      "programI2EclassIdTcamState( Pelk::IpGenAddr ) -> bool",
      "addTcamEntriesWithI2EClassId( U32, Pelk::IpGenAddr ) -> bool",
   };
   rows.insert( rows.end(), added.begin(), added.end() );
   EXPECT_EQ( rowsOf( Vornal::EvpnMultihomingLocalBiasWithI2EClassIdSm::kivType() ), rows );
}

TEST( LocalBiasTable, IdentifiersArePositions ) {
   using Sm = Vornal::EvpnMultihomingLocalBiasSm;
   using I2E = Vornal::EvpnMultihomingLocalBiasWithI2EClassIdSm;
   EXPECT_EQ( Sm::vcsdAttr(), 1U );
   EXPECT_EQ( Sm::tepIpToEntryAttr(), 10U );
   EXPECT_EQ( Sm::unitUsesOrNeedsTcamsAttr(), 37U );
   EXPECT_EQ( Sm::unitUsesTcamsForTepIpAttr(), 38U );
   EXPECT_EQ( Sm::tcamSanityCheckForTepIpAttr(), 39U );
   EXPECT_EQ( Sm::verifyIfpEntriesAttr(), 40U );
   EXPECT_EQ( Sm::verifyEfpEntriesAttr(), 41U );
   EXPECT_EQ( Sm::handleVerifyAttr(), 42U );
   EXPECT_EQ( Sm::initializedAttr(), 43U );
   EXPECT_EQ( Sm::handleInitializedAttr(), 44U );
   EXPECT_EQ( Sm::updateTcamEntriesAttr(), 45U );
   EXPECT_EQ( I2E::efpTcamManagerAttr(), 46U );
}

TEST( LocalBiasTable, OperationsAreCalledByNameAndNumberOfArguments ) {
   Support::LocalBiasSwitch leaf;
   leaf.shareEthernet1();
   auto const machine = leaf.machineNew( Support::Variant::EgressMask );
   auto const & type = machine->typeData();
   EXPECT_EQ( type.findOperation( "getSharedESPortInfo", 2 )->call( *machine, { "0", "10.0.0.2" } ),
              "Vornal::SharedESPortInfo( sharedPortBitmap={5}, "
              "sharedPortList={unit0/port5/mod40} )" );
   EXPECT_EQ(
      type.findOperation( "unitUsesTcamsForTepIp", 2 )->call( *machine, { "0", "10.0.0.2" } ),
      "false" );

   leaf.forget();
   type.findOperation( "handleTepSegment", 0 )->call( *machine, {} );
   EXPECT_EQ( leaf.traces.front(), "5 handleTepSegment" );
   leaf.forget();
   type.findOperation( "handleTepSegment", 1 )->call( *machine, { "10.0.0.9" } );
   EXPECT_EQ( leaf.traces.front(), "5 handleTepSegment tepIp: 10.0.0.9" );
}

TEST( LocalBiasTable, NestedReactorsAreReachableAndNotToBeDeletedByHand ) {
   Support::LocalBiasSwitch leaf;
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   auto const machine = leaf.machineNew( Support::Variant::EgressMask );
   auto const * const row = machine->typeData().find( "oxaEvpnTepSegment" );
   EXPECT_EQ( row->keys( *machine ), ( Rows{ "10.0.0.2" } ) );
   EXPECT_EQ( row->entity( *machine, "10.0.0.2" )->identity(), "10.0.0.2" );
   EXPECT_THROW( row->del( *machine, "10.0.0.2" ), Quelm::AccessError );
   EXPECT_TRUE( machine->oxaEvpnTepSegmentHas( Support::ip( "10.0.0.2" ) ) );
}

}  // namespace
