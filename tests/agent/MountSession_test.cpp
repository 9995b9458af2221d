#include <StateDatabase/MountSession.h>

#include <optional>

#include <gtest/gtest.h>

#include <Quelm/Error.h>
#include <Support.h>

namespace {

using Corrum::MountStatus;

// A mounter's session with a database in which "evpn/status" and "lag/config" are published.
class MountSession : public testing::Test {
 protected:
   MountSession() {
      database.entityNew( "evpn/status", "Evpn::EvpnStatus" );
      database.entityNew( "lag/config", "Lag::Config" );
   }

   // Mounts these, and lets the activity run.
   void mount( std::vector< Corrum::Mount > const & mounts, std::string const & name = "" ) {
      auto const group = session->getMountGroup();
      for ( Corrum::Mount const & one : mounts ) {
         group->doMount( one );
      }
      group->doClose( name );
      activity.run();
   }

   Support::Recorder story;
   Kiv::ActivityManager activity;
   StateDatabase::Directory database;
   std::optional< MountStatus > told;
   Quelm::Ptr< StateDatabase::MountSession > session = Quelm::make< StateDatabase::MountSession >(
      StateDatabase::SessionContext{ "Mounter", database, activity, story,
                                     [ this ]( MountStatus status ) { told = status; } } );
};

TEST_F( MountSession, PerformsTheMountsInALaterTurnAndThenTellsTheMounter ) {
   auto const group = session->getMountGroup();
   group->doMount( { "evpn/status", "Evpn::EvpnStatus", "r" } );
   group->doClose( "" );
   EXPECT_FALSE( told );

   activity.run();

   EXPECT_EQ( told, MountStatus::Complete );
   EXPECT_EQ( story.all< Story::MountsDone >().at( 0 ).status, "complete" );
}

TEST_F( MountSession, TellsTheStoryOfEveryMountInOrder ) {
   mount( { { "lag/config", "Lag::Config", "r" }, { "evpn/status", "Evpn::EvpnStatus", "wc" } } );

   auto const asked = story.all< Story::MountAsked >();
   ASSERT_EQ( asked.size(), 2U );
   EXPECT_EQ( asked[ 0 ].path, "lag/config" );
   EXPECT_EQ( asked[ 1 ].path, "evpn/status" );
   EXPECT_EQ( asked[ 1 ].type, "Evpn::EvpnStatus" );
   EXPECT_EQ( asked[ 1 ].flags, "wc" );
}

TEST_F( MountSession, CountsAPathThatNobodyPublishesAsMountedAndEmpty ) {
   mount( { { "bridging/hwcapabilities", "Bridging::HwCapabilities", "r" } } );

   EXPECT_EQ( told, MountStatus::Complete );
   EXPECT_FALSE( session->getEntity( "bridging/hwcapabilities" ) );
}

TEST_F( MountSession, IsPartialWhenAnEntityIsOfAnotherTypeAndSaysWhich ) {
   mount( { { "evpn/status", "Lag::Config", "r" }, { "lag/config", "Lag::Config", "r" } } );

   EXPECT_EQ( told, MountStatus::Partial );
   EXPECT_EQ( story.all< Story::MountsDone >().at( 0 ).problems,
              std::vector< std::string >{
                 "evpn/status is an Evpn::EvpnStatus, not a Lag::Config" } );
}

TEST_F( MountSession, FailsWhenNoMountSucceeds ) {
   mount( { { "evpn/status", "Lag::Config", "r" } } );

   EXPECT_EQ( told, MountStatus::Failed );
}

TEST_F( MountSession, DoesNotMountWithoutReadingOrWriting ) {
   mount( { { "evpn/status", "Evpn::EvpnStatus", "c" }, { "lag/config", "Lag::Config", "" } } );

   EXPECT_EQ( told, MountStatus::Failed );
   EXPECT_EQ( story.all< Story::MountsDone >().at( 0 ).problems.size(), 2U );
}

TEST_F( MountSession, TellsNobodyAboutAGroupThatWasClosedUnderAName ) {
   mount( { { "evpn/status", "Evpn::EvpnStatus", "r" } }, "background" );

   EXPECT_FALSE( told );
   EXPECT_EQ( story.all< Story::MountsDone >().size(), 1U );
}

TEST_F( MountSession, TakesNoMountIntoAGroupThatIsClosed ) {
   auto const group = session->getMountGroup();
   group->doClose( "" );

   EXPECT_THROW( group->doMount( { "evpn/status", "Evpn::EvpnStatus", "r" } ), Quelm::AccessError );
   EXPECT_THROW( group->doClose( "" ), Quelm::AccessError );
}

TEST_F( MountSession, FindsEntitiesThatWereNotMountedAndTellsWhatWasLookedUp ) {
   EXPECT_EQ( session->getEntity( "lag/config" ), database.entity( "lag/config" ) );
   EXPECT_FALSE( session->getEntity( "nowhere" ) );

   auto const lookups = story.all< Story::EntityLookedUp >();
   ASSERT_EQ( lookups.size(), 2U );
   EXPECT_EQ( lookups[ 0 ].type, "Lag::Config" );
   EXPECT_EQ( lookups[ 1 ].path, "nowhere" );
   EXPECT_EQ( lookups[ 1 ].type, "" );
}

TEST_F( MountSession, KeepsAClosedGroupUntilItsTurnWhenTheMounterLetsItGo ) {
   session->getMountGroup()->doClose( "" );

   activity.run();

   EXPECT_EQ( told, MountStatus::Complete );
}

}  // namespace
