#include <StateDatabase/Tree.h>

#include <gtest/gtest.h>

#include <Evpn/EvpnStatus.h>
#include <Story/EntityText.h>
#include <Vornal/VornalCommonSmData.h>

namespace {

using Pelk::IntfId;
using Pelk::IpGenAddr;
using VornalTypes::VornalPort;

std::string textOf( std::string const & path, Kiv::Entity const & entity,
                    StateDatabase::Directory const & published = {} ) {
   return Story::treeText( path, StateDatabase::treeOf( path, entity, published.entities() ) );
}

TEST( Tree, ShowsMembersAndTheirSetsBelowEachOther ) {
   auto const status = Quelm::make< Evpn::EvpnStatus >( "status" );
   auto const segment = status->segmentStatusIs( IntfId::fromString( "Port-Channel1" ) );
   segment->remoteTepIs( IpGenAddr::fromString( "10.0.0.2" ) );
   segment->remoteTepIs( IpGenAddr::fromString( "2001:db8::2" ) );

   EXPECT_EQ( textOf( "/evpn/status", *status ),
              "/evpn/status: Evpn::EvpnStatus status\n"
              "   segmentStatus\n"
              "      Port-Channel1: Evpn::EthernetSegmentStatus Port-Channel1\n"
              "         intfId: Port-Channel1\n"
              "         remoteTep\n"
              "            10.0.0.2\n"
              "            2001:db8::2\n" );
}

TEST( Tree, ShowsValuesByKeyAndWhatIsNotThereAsNone ) {
   auto const common = Quelm::make< Vornal::VornalCommonSmData >( "vornalCommon" );
   common->vornalModIdIs( 0, 7 );

   EXPECT_EQ( textOf( "/shared/vornalCommon", *common ),
              "/shared/vornalCommon: Vornal::VornalCommonSmData vornalCommon\n"
              "   vornalIntfToPort: none\n"
              "   vornalIntfToPortCache: none\n"
              "   vornalModId\n"
              "      0: 7\n"
              "   sliceDependencyPoints: none\n" );
}

TEST( Tree, LeavesOperationsOut ) {
   auto const common = Quelm::make< Vornal::VornalCommonSmData >( "vornalCommon" );

   EXPECT_EQ( textOf( "/c", *common ).find( "intfPortIs" ), std::string::npos );
}

TEST( Tree, SaysWhereAPublishedEntityIsInsteadOfShowingIt ) {
   auto const points = Quelm::make< Vornal::VornalSliceDependencyPoints >();
   auto const common = Quelm::make< Vornal::VornalCommonSmData >( "vornalCommon" );
   common->sliceDependencyPointsIs( points );
   StateDatabase::Directory published;
   published.entityIs( "elsewhere/points", points );

   EXPECT_NE( textOf( "/c", *common, published )
                 .find( "sliceDependencyPoints: Vornal::VornalSliceDependencyPoints (see "
                        "/elsewhere/points)\n" ),
              std::string::npos );
}

// Two entities that refer to each other.
class Friend : public Kiv::NamedEntity {
   KIV_ENTITY( Friend, Kiv::NamedEntity )
   KIV_REFERENCE( friendOf, Friend )

   using NamedEntity::NamedEntity;
};

}  // namespace

#include <Kiv/Rows.h>
KIV_DEFINE( Friend )

namespace {

TEST( Tree, EndsWhereEntitiesReferToEachOtherAndSaysWhereEachWasShown ) {
   auto const ann = Quelm::make< Friend >( "ann" );
   auto const bob = Quelm::make< Friend >( "bob" );
   ann->friendOfIs( bob );
   bob->friendOfIs( ann );

   EXPECT_EQ( textOf( "/ann", *ann ),
              "/ann: Friend ann\n"
              "   friendOf: Friend bob\n"
              "      friendOf: Friend ann (see /ann)\n" );

   ann->friendOfIs( nullptr );
}

}  // namespace
