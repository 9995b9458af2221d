// The toggle "SbdEvpnTcamOverrideRule". It is read once in the life of a process, so each story
// here is told in a process of its own.

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

#include <FeatureToggle/FeatureToggle.h>
#include <VornalCentral/Capabilities.h>

#include "../support/RoutedSwitch.h"

namespace {

using Support::intf;
using Support::ip;
using Support::Lines;
using Support::RoutedSwitch;
using Support::Variant;
using Support::vrf;
using VtiSm = Vornal::EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus;

// A feature file that says `isOn` whatever it is asked, and keeps the questions.
class FeatureFile final : public FeatureToggle::Facility {
 public:
   explicit FeatureFile( bool value ) : isOn( value ) { FeatureToggle::facilityIs( this ); }
   FeatureFile( FeatureFile const & ) = delete;
   FeatureFile & operator=( FeatureFile const & ) = delete;
   ~FeatureFile() override { FeatureToggle::facilityIs( nullptr ); }

   bool isEnabled( std::string const & name, std::string const & file,
                   bool defaultValue ) override {
      questions.push_back( name + " in " + file + ", default " + ( defaultValue ? "on" : "off" ) );
      return isOn;
   }

   bool isOn;
   Lines questions;
};

class PerVniToggleDeathTest : public testing::Test {
 protected:
   PerVniToggleDeathTest() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }

   static void toldAlone( std::function< void() > const & story ) {
      EXPECT_EXIT(
         {
            story();
            std::exit( HasFailure() ? 1 : 0 );
         },
         testing::ExitedWithCode( 0 ), "" );
   }
};

TEST_F( PerVniToggleDeathTest, IsOnWhenNobodySaysOtherwise ) {
   toldAlone( [] { EXPECT_TRUE( VtiSm::toggleSbdEvpnTcamOverrideRuleEnabled() ); } );
}

TEST_F( PerVniToggleDeathTest, IsReadOnceFromItsFile ) {
   toldAlone( [] {
      FeatureFile file( false );
      EXPECT_FALSE( VtiSm::toggleSbdEvpnTcamOverrideRuleEnabled() );
      file.isOn = true;
      EXPECT_FALSE( VtiSm::toggleSbdEvpnTcamOverrideRuleEnabled() );
      EXPECT_EQ( file.questions,
                 ( Lines{ "SbdEvpnTcamOverrideRule in VornalL3.json, default on" } ) );
   } );
}

TEST_F( PerVniToggleDeathTest, OffNothingIsEverInstalledAndTheTraceSpeaksOfInitialisation ) {
   toldAlone( [] {
      FeatureFile const file( false );
      RoutedSwitch leaf;
      leaf.tunnelIs();
      auto const sm = leaf.machineNew( Variant::EgressMask );
      leaf.forget();
      leaf.vniIs( "red", 50001 );
      EXPECT_EQ( leaf.tracesOf( "2 " ),
                 ( Lines{ "2 handleVrfToVniMap, SM not initialized yet" } ) );
      leaf.vniIs( "red", 50002 );
      leaf.segmentDel( "Ethernet1" );
      leaf.segmentIs( "Ethernet1", {} );
      leaf.vniDel( "red" );
      EXPECT_EQ( leaf.tracesOf( "2 handleVrfToVniMap, SM not initialized yet" ).size(), 5U );
      EXPECT_TRUE( leaf.calls.empty() );
   } );
}

TEST_F( PerVniToggleDeathTest, OffTheCleanUpFreesNothing ) {
   toldAlone( [] {
      FeatureFile const file( false );
      RoutedSwitch leaf;
      leaf.tunnelIs();
      auto const sm = leaf.machineNew( Variant::EgressMask );
      sm->vniToTcamEntryIdIs( 50001, 1 );
      leaf.forget();
      leaf.tunnelDel();
      EXPECT_EQ( leaf.traces, ( Lines{ "8 void Vornal::EvpnMultihomingLocalBiasSm::"
                                       "NestedSm_VtiStatus::doCleanup(): Cleanup" } ) );
      EXPECT_TRUE( leaf.calls.empty() );
      EXPECT_TRUE( sm->vniToTcamEntryIdHas( 50001 ) );
   } );
}

TEST_F( PerVniToggleDeathTest, OffAnotherTunnelInterfaceIsIgnoredInAsManyWords ) {
   toldAlone( [] {
      FeatureFile const file( false );
      RoutedSwitch leaf;
      leaf.tunnelIs( "Vxlan2" );
      auto const sm = leaf.machineNew( Variant::EgressMask );
      leaf.forget();
      leaf.tunnelDel( "Vxlan2" );
      std::string const signature =
         "8 void Vornal::EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::doCleanup()";
      EXPECT_EQ( leaf.traces,
                 ( Lines{ signature + ": Cleanup", signature + ": Ignoring VTI interfaceVx2" } ) );
   } );
}

TEST_F( PerVniToggleDeathTest, OffNobodyAsksWhatThePlatformNeeds ) {
   toldAlone( [] {
      FeatureFile const file( false );
      RoutedSwitch leaf;
      leaf.tunnelIs();
      auto const sm = leaf.machineNew( Variant::EgressMask );
      VornalCentral::vornalAttributes()->l3McastExemptFromSplitHorizonIs( true );
      leaf.forget();
      leaf.vniIs( "red", 50001 );
      EXPECT_EQ( leaf.tracesOf( "2 " ),
                 ( Lines{ "2 handleVrfToVniMap, SM not initialized yet" } ) );
   } );
}

TEST_F( PerVniToggleDeathTest, OffTheVtepsKeepTheDefaultPriority ) {
   toldAlone( [] {
      FeatureFile const file( false );
      RoutedSwitch leaf;
      leaf.shareEthernet1();
      leaf.vtepIs( "10.0.0.2", 0x10002 );
      auto const sm = leaf.machineNew( Variant::EgressMask );
      for ( auto const & rule : Chip::rulesOf( leaf.board.units() ) ) {
         EXPECT_FALSE( rule.content.priority ) << rule.name;
      }
   } );
}

}  // namespace
