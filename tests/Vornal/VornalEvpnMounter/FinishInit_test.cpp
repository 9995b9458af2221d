// finishInit(): what is built once layer 2 is ready, in which order, for which kind of chip.
#include <gtest/gtest.h>

#include <csignal>
#include <iostream>
#include <memory>
#include <string>

#include "../support/Leaf.h"

namespace FinishInitTest {

using namespace Support;

// leaf1 with its mounts complete and the mounter told to go on, as layer 2 would do.
class FinishInit : public testing::Test {
 protected:
   FinishInit() {
      leaf.mountsComplete();
      leaf.journal.clear();
   }

   Vornal::EvpnMultihomingLocalBiasSm & machine() const {
      return *leaf.mounter->evpnMultihomingLocalBiasSm();
   }
   // What the state machine was given under that name.
   Quelm::Ptr< Kiv::Entity > given( std::string const & attribute ) const {
      auto const * const row = machine().typeData().find( attribute );
      return row ? row->entity( machine(), "" ) : nullptr;
   }
   void expectGivenTheNineInputs() const {
      EXPECT_EQ( given( "vcsd" ), leaf.common() );
      EXPECT_EQ( given( "oxaEvpnTepSegmentDir" ), leaf.mounter->oxaEvpnTepSegmentDir() );
      EXPECT_EQ( given( "vpIndexStatus" ), leaf.mounter->svpShimStatus() );
      EXPECT_EQ( given( "evpnStatus" ), leaf.mounter->evpnStatus() );
      EXPECT_EQ( given( "vtiStatusDir" ), leaf.mounter->vtiStatusDir() );
      EXPECT_EQ( given( "tcamManager" ), leaf.groups()->entryManager( 157 ) );
      EXPECT_EQ( given( "clock" ), leaf.activity.clock() );
      EXPECT_EQ( given( "lagConfigDir" ), leaf.mounter->lagConfig() );
      EXPECT_EQ( given( "lagPhyIntfMapping" ), leaf.mounter->lagPhyIntfMapping() );
   }

   Leaf leaf;
};

TEST_F( FinishInit, BuildsEverythingInOrderForAChipWithEgressMasks ) {
   AttributeDiary const diary( leaf.journal, leaf.mounter );
   leaf.mounter->finishInit();
   EXPECT_EQ( leaf.journal,
              ( Journal{ "shared tcamManager", "set lagPhyIntfMapping", "set lagPhyIntfMappingSm",
                         "set oxaEvpnTepSegmentDir", "set evpnTepSegmentSm", "group 157",
                         "set evpnMultihomingLocalBiasSm" } ) );
}

TEST_F( FinishInit, BuildsEverythingInOrderForAChipWithClassIds ) {
   leaf.i2eClassIdSupportedIs( true );
   AttributeDiary const diary( leaf.journal, leaf.mounter );
   leaf.mounter->finishInit();
   EXPECT_EQ( leaf.journal,
              ( Journal{ "shared tcamManager", "set lagPhyIntfMapping", "set lagPhyIntfMappingSm",
                         "set oxaEvpnTepSegmentDir", "set evpnTepSegmentSm", "group 45",
                         "group 157", "set evpnMultihomingLocalBiasSm" } ) );
}

TEST_F( FinishInit, GivesTheEgressMaskVariantItsInputs ) {
   leaf.mounter->finishInit();
   EXPECT_EQ( machine().typeData().name(), "Vornal::EvpnMultihomingLocalBiasWithEgressMaskSm" );
   expectGivenTheNineInputs();
}

TEST_F( FinishInit, GivesTheClassIdVariantItsInputs ) {
   leaf.i2eClassIdSupportedIs( true );
   leaf.mounter->finishInit();
   EXPECT_EQ( machine().typeData().name(), "Vornal::EvpnMultihomingLocalBiasWithI2EClassIdSm" );
   expectGivenTheNineInputs();
   EXPECT_EQ( given( "efpTcamManager" ), leaf.groups()->entryManager( 45 ) );
   EXPECT_EQ( given( "i2eClassIdIndexConfig" ), leaf.mounter->i2eClassIdIndexConfig() );
   EXPECT_EQ( given( "i2eClassIdIndexStatus" ), leaf.mounter->i2eClassIdIndexStatus() );
}

TEST_F( FinishInit, StartsTheMachineOfEitherVariant ) {
   for ( std::string const variant : { "EgressMask", "I2EClassId" } ) {
      leaf.i2eClassIdSupportedIs( variant == "I2EClassId" );
      leaf.mounter->finishInit();
      EXPECT_EQ( machine().typeData().name(),
                 "Vornal::EvpnMultihomingLocalBiasWith" + variant + "Sm" );
      EXPECT_TRUE( machine().initialized() );
      EXPECT_TRUE( machine().hasNotificationActive() );
   }
}

TEST_F( FinishInit, DerivesLagMembersAndSharedSegmentsFromItsInputs ) {
   leaf.mounter->finishInit();
   auto const mapping = leaf.mounter->lagPhyIntfMapping();
   EXPECT_EQ( mapping->name(), "lagToMemberInterfacesMap" );
   EXPECT_EQ( leaf.mounter->lagPhyIntfMappingSm()->lagConfig(), leaf.mounter->lagConfig() );
   EXPECT_EQ( leaf.mounter->lagPhyIntfMappingSm()->lagPhyIntfMapping(), mapping );

   auto const dir = leaf.mounter->oxaEvpnTepSegmentDir();
   EXPECT_EQ( dir->name(), "oxaEvpnTepSegmentDir" );
   auto const sm = leaf.mounter->evpnTepSegmentSm();
   EXPECT_EQ( sm->evpnStatus(), leaf.mounter->evpnStatus() );
   EXPECT_EQ( sm->tepSegmentDir(), dir );
   EXPECT_EQ( sm->bridgingHwCapabilities(), leaf.mounter->bridgingHwCapabilities() );
   EXPECT_EQ( sm->lagPhyIntfMapping(), mapping );
}

TEST_F( FinishInit, FillsTheDirectoryBeforeTheStateMachineSeesIt ) {
   leaf.shareSegmentWithVtep();
   U32 segments = 0;
   leaf.groups()->onLookUp = [ & ]( auto ) {
      segments = static_cast< U32 >( leaf.mounter->oxaEvpnTepSegmentDir()->tepSegments() );
   };
   leaf.mounter->finishInit();
   EXPECT_EQ( segments, 1U );
}

// Another activity is in charge from the moment that a group is looked up, and its clock is the one
// that is taken from then on.
TEST_F( FinishInit, TakesTheClockBeforeTheIngressGroup ) {
   std::unique_ptr< Kiv::ActivityManager > next;
   leaf.groups()->onLookUp = [ & ]( auto ) { next = std::make_unique< Kiv::ActivityManager >(); };
   leaf.mounter->finishInit();
   EXPECT_EQ( given( "clock" ), leaf.activity.clock() );
}

TEST_F( FinishInit, TakesTheClockAfterTheEgressGroupForAChipWithClassIds ) {
   leaf.i2eClassIdSupportedIs( true );
   std::unique_ptr< Kiv::ActivityManager > afterEgress;
   std::unique_ptr< Kiv::ActivityManager > afterIngress;
   leaf.groups()->onLookUp = [ & ]( Vornal::TcamGroupAssignment assignment ) {
      ( assignment == 45 ? afterEgress : afterIngress ) =
         std::make_unique< Kiv::ActivityManager >();
   };
   leaf.mounter->finishInit();
   EXPECT_EQ( given( "clock" ), afterEgress->clock() );
}

TEST_F( FinishInit, AsksForTheCapabilityOnceAndBeforeItBuildsAnything ) {
   Kiv::Watch< Vornal::VornalEvpnMounter > capabilityComesTooLate(
      leaf.mounter, [ & ]( Kiv::Change const & ) { leaf.i2eClassIdSupportedIs( true ); } );
   capabilityComesTooLate.hasNotificationActiveIs( true );
   leaf.mounter->finishInit();
   EXPECT_EQ( machine().typeData().name(), "Vornal::EvpnMultihomingLocalBiasWithEgressMaskSm" );
}

TEST_F( FinishInit, KeepsItsVariantWhenTheCapabilityChangesLater ) {
   leaf.mounter->finishInit();
   auto const before = leaf.mounter->evpnMultihomingLocalBiasSm();
   leaf.i2eClassIdSupportedIs( true );
   EXPECT_EQ( leaf.mounter->evpnMultihomingLocalBiasSm(), before );
   EXPECT_EQ( leaf.initialisations(), 1 );
}

TEST_F( FinishInit, CanBeCalledByName ) {
   Kiv::Type const & type = leaf.mounter->typeData();
   EXPECT_EQ( type.findOperation( "finishInit", 0 )->call( *leaf.mounter, {} ), "" );
   EXPECT_TRUE( leaf.mounter->evpnMultihomingLocalBiasSm() );
}

// Without the agent's groups, start-up goes on with empty entry managers.
class FinishInitWithoutTcam : public FinishInit {
 protected:
   // finishInit() of the class-id variant, which needs both groups, with every trace on.
   void finishInitSilently() {
      leaf.i2eClassIdSupportedIs( true );
      Trace::levelsIs( "VornalEvpnMounter", "0-9" );
      leaf.mounter->finishInit();
      EXPECT_EQ( leaf.traces,
                 Journal{ "VornalEvpnMounter 8 void Vornal::VornalEvpnMounter::finishInit()" } );
      EXPECT_EQ( leaf.logs, Journal{} );
      ASSERT_TRUE( leaf.mounter->evpnMultihomingLocalBiasSm() );
      EXPECT_FALSE( given( "tcamManager" ) );
      EXPECT_FALSE( given( "efpTcamManager" ) );
   }
};

TEST_F( FinishInitWithoutTcam, SharedByTheAgent ) {
   leaf.share( "tcamManager", nullptr );
   finishInitSilently();
}

TEST_F( FinishInitWithoutTcam, ButSomethingElseOfThatName ) {
   leaf.share( "tcamManager", leaf.common() );
   finishInitSilently();
}

TEST_F( FinishInitWithoutTcam, GroupsThatAreConfigured ) {
   leaf.groups()->entryManagerDel( 157 );
   leaf.groups()->entryManagerDel( 45 );
   finishInitSilently();
   EXPECT_EQ( leaf.journal, ( Journal{ "shared tcamManager", "group 45", "group 157" } ) );
   EXPECT_FALSE( leaf.groups()->entryManagerHas( 157 ) ) << "the plug-in creates no group";
}

TEST_F( FinishInitWithoutTcam, ForEgressStillGetsTheIngressGroup ) {
   leaf.i2eClassIdSupportedIs( true );
   leaf.groups()->entryManagerDel( 45 );
   leaf.mounter->finishInit();
   EXPECT_FALSE( given( "efpTcamManager" ) );
   EXPECT_EQ( given( "tcamManager" ), leaf.groups()->entryManager( 157 ) );
}

// The start of an agent whose central part has not published what the chip can do. Tells on
// standard error what the plug-in asks for and builds from the moment that layer 2 is ready.
void startWithoutCapabilities() {
   Leaf leaf;
   leaf.publish( vxlanCapabilitiesPath, nullptr );
   leaf.mountsComplete();
   Kiv::Watch< Vornal::VornalEvpnMounter > built( leaf.mounter, []( Kiv::Change const & change ) {
      std::cerr << "built " << change.attribute() << '\n';
   } );
   built.hasNotificationActiveIs( true );
   leaf.journal.clear();
   std::cerr << "layer 2 is ready\n";
   leaf.layerTwoIsReady();
}

TEST( FinishInitDeathTest, StopsRatherThanGuessTheVariantWhenCapabilitiesAreAbsent ) {
   EXPECT_EXIT( startWithoutCapabilities(), testing::KilledBySignal( SIGABRT ),
                "^layer 2 is ready\n"
                "Ptr.h:[0-9]+: [^\n]*VornalCentral::VxlanCapabilities[^\n]*: "
                "Assertion '\"reference is not empty\" && target_' failed.\n$" );
}

}  // namespace FinishInitTest
