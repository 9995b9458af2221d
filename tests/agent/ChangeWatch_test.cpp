#include <StateDatabase/ChangeWatch.h>

#include <gtest/gtest.h>

#include <Evpn/EvpnStatus.h>
#include <Support.h>
#include <Vornal/VornalCommonSmData.h>

namespace {

using Pelk::IntfId;
using Pelk::IpGenAddr;

std::string lineOf( Story::PublishedChange const & change ) {
   return change.path + " " + change.attribute + "[" + change.key + "] " +
          change.from.value_or( "nothing" ) + " -> " + change.to.value_or( "nothing" );
}

std::vector< std::string > linesOf( Support::Recorder const & story ) {
   std::vector< std::string > lines;
   for ( Story::PublishedChange const & change : story.all< Story::PublishedChange >() ) {
      lines.push_back( lineOf( change ) );
   }
   return lines;
}

using Lines = std::vector< std::string >;

TEST( ChangeWatch, TellsOfWhatComesChangesAndGoesWithOldAndNewValue ) {
   Support::Recorder story;
   auto const common = Quelm::make< Vornal::VornalCommonSmData >( "vornalCommon" );
   StateDatabase::ChangeWatch const watch( "/shared/vornalCommon", common, story );

   common->vornalModIdIs( 1, 5 );
   common->vornalModIdIs( 1, 6 );
   common->vornalModIdDel( 1 );

   EXPECT_EQ( linesOf( story ), ( Lines{ "/shared/vornalCommon vornalModId[1] nothing -> 5",
                                         "/shared/vornalCommon vornalModId[1] 5 -> 6",
                                         "/shared/vornalCommon vornalModId[1] 6 -> nothing" } ) );
}

TEST( ChangeWatch, FollowsTheMembersOfACollectionFromWhenTheyEnterUntilTheyLeave ) {
   Support::Recorder story;
   auto const status = Quelm::make< Evpn::EvpnStatus >( "status" );
   StateDatabase::ChangeWatch const watch( "/evpn/status", status, story );
   IntfId const et1 = IntfId::fromString( "Ethernet1" );

   auto const segment = status->segmentStatusIs( et1 );
   segment->remoteTepIs( IpGenAddr::fromString( "10.0.0.2" ) );
   status->segmentStatusDel( et1 );
   segment->remoteTepIs( IpGenAddr::fromString( "10.0.0.3" ) );

   auto const lines = linesOf( story );
   ASSERT_EQ( lines.size(), 3U );
   EXPECT_EQ( lines[ 1 ], "/evpn/status/segmentStatus[Ethernet1] remoteTep[10.0.0.2] nothing -> " );
   EXPECT_EQ( segment->publisher().subscribers(), 0U );
}

TEST( ChangeWatch, FollowsTheMembersThatAreThereWhenItBegins ) {
   Support::Recorder story;
   auto const status = Quelm::make< Evpn::EvpnStatus >( "status" );
   auto const segment = status->segmentStatusIs( IntfId::fromString( "Ethernet1" ) );
   StateDatabase::ChangeWatch const watch( "/evpn/status", status, story );

   segment->remoteTepIs( IpGenAddr::fromString( "10.0.0.2" ) );

   EXPECT_EQ( linesOf( story ).size(), 1U );
}

TEST( ChangeWatch, TellsOfAChangeBeforeThoseWhoSubscribeLaterActOnIt ) {
   Support::Recorder story;
   auto const common = Quelm::make< Vornal::VornalCommonSmData >( "vornalCommon" );
   StateDatabase::ChangeWatch const watch( "/c", common, story );
   std::size_t toldBefore = 0;
   Kiv::Watch< Vornal::VornalCommonSmData > plugin( common, [ & ]( Kiv::Change const & ) {
      toldBefore = story.events().size();
   } );
   plugin.hasNotificationActiveIs( true );

   common->vornalModIdIs( 0, 1 );

   EXPECT_EQ( toldBefore, 1U );
}

}  // namespace
