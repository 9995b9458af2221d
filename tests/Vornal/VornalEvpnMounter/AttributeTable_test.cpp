// What the mounter and the dependency waiter say about themselves: their attributes by name, in
// order, with kinds and types.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <VornalEvpnMounter/VornalEvpnMounter.h>

namespace AttributeTableTest {

using Vornal::EvpnDependencyWaiter;
using Vornal::VornalEvpnMounter;

// "NAME: KIND TYPE", and " (settable)" where the generic interface can set it.
std::vector< std::string > tableOf( Kiv::Type const & type ) {
   std::vector< std::string > rows;
   for ( Kiv::Attribute const * const attribute : type.attributes() ) {
      std::string row = attribute->name() + ": " + std::string( kindName( attribute->kind() ) );
      row += attribute->valueType().empty() ? "" : " " + attribute->valueType();
      rows.push_back( row + ( attribute->isWritable() ? " (settable)" : "" ) );
   }
   return rows;
}

TEST( MounterTable, ListsSixteenAttributesInDeclarationOrder ) {
   EXPECT_EQ( tableOf( VornalEvpnMounter::kivType() ),
              ( std::vector< std::string >{
                 "evpnDependencyWaiter: reference Vornal::EvpnDependencyWaiter",
                 "evpnStatus: reference Evpn::EvpnStatus const (settable)",
                 "vtiStatusDir: reference Vxlan::VtiStatusDir const",
                 "oxaEvpnTepSegmentDir: reference Oxa::EvpnTepSegmentDir (settable)",
                 "evpnTepSegmentSm: reference Oxa::OxaEvpnTepSegmentSm",
                 "evpnMultihomingLocalBiasSm: reference Vornal::EvpnMultihomingLocalBiasSm",
                 "svpShimStatus: reference VornalCentral::VpIndexStatus const",
                 "vxlanCapabilities: reference VornalCentral::VxlanCapabilities const",
                 "i2eClassIdIndexConfig: reference VornalCentral::I2EClassIdIndexConfig",
                 "i2eClassIdIndexStatus: reference VornalCentral::I2EClassIdIndexStatus const",
                 "lagConfig: reference Lag::Config const (settable)",
                 "lagPhyIntfMapping: reference Lag::LagPhyIntfMapping",
                 "lagPhyIntfMappingSm: reference Lag::LagPhyIntfMappingSm",
                 "bridgingHwCapabilities: reference Bridging::HwCapabilities const",
                 "vcsd: reference Vornal::VornalCommonSmData (settable)",
                 "finishInit: operation",
              } ) );
}

TEST( MounterTable, IsThatOfAMounterOfTheAgent ) {
   Kiv::Type const & type = VornalEvpnMounter::kivType();
   EXPECT_EQ( type.name(), "Vornal::VornalEvpnMounter" );
   EXPECT_EQ( type.base()->name(), "VornalLib::MounterBase" );
   EXPECT_EQ( type.base()->base()->name(), "Plugin::Mounter" );
   EXPECT_EQ( Kiv::typeNamed( "Vornal::VornalEvpnMounter" ), &type );
}

TEST( MounterTable, NumbersItsAttributesFromOneInTheSameOrder ) {
   EXPECT_EQ( VornalEvpnMounter::evpnDependencyWaiterAttr(), 1U );
   EXPECT_EQ( VornalEvpnMounter::evpnMultihomingLocalBiasSmAttr(), 6U );
   EXPECT_EQ( VornalEvpnMounter::lagConfigAttr(), 11U );
   EXPECT_EQ( VornalEvpnMounter::vcsdAttr(), 15U );
   EXPECT_EQ( VornalEvpnMounter::finishInitAttr(), 16U );
}

TEST( MounterTable, IsEmptyInEveryReferenceOfANewMounter ) {
   auto const mounter = Quelm::make< VornalEvpnMounter >( "evpn of slice 3" );
   EXPECT_EQ( mounter->name(), "evpn of slice 3" );
   for ( Kiv::Attribute const * const attribute : mounter->typeData().attributes() ) {
      if ( attribute->kind() == Kiv::Attribute::Kind::Reference ) {
         EXPECT_EQ( attribute->text( *mounter, "" ), "none" ) << attribute->name();
      }
   }
}

TEST( WaiterTable, ListsItsAttributesInDeclarationOrder ) {
   EXPECT_EQ( tableOf( EvpnDependencyWaiter::kivType() ),
              ( std::vector< std::string >{
                 "evpnMounter: reference Vornal::VornalEvpnMounter",
                 "vcsd: reference Vornal::VornalCommonSmData",
                 "deps: reference Vornal::SubAgentDependencyPoints",
                 "checkAndSetDependencies: operation",
              } ) );
   EXPECT_EQ( Kiv::typeNamed( "Vornal::EvpnDependencyWaiter" ), &EvpnDependencyWaiter::kivType() );
}

}  // namespace AttributeTableTest
