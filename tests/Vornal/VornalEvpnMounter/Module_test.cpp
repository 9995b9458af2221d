// What the plug-in brings along when it is loaded: trace handles, log messages, its mounter.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <variant>

#include <Log/Log.h>
#include <Plugin/Mounter.h>
#include <Shim/FieldCall.h>
#include <VornalEvpnMounter/ModuleTrace.h>
#include <VornalEvpnSm/Module.h>

#include "../support/Leaf.h"

namespace ModuleTest {

using namespace Support;

Log::Descriptor const & described( std::string const & name ) {
   auto const all = Log::descriptors();
   auto const found = std::find_if( all.begin(), all.end(), [ & ]( Log::Descriptor const * one ) {
      return one->name == name;
   } );
   static Log::Descriptor const none{};
   return found == all.end() ? none : **found;
}

TEST( ModuleLog, RegistersFourMessagesInOrder ) {
   Journal names;
   for ( Log::Descriptor const * const descriptor : Log::descriptors() ) {
      names.push_back( descriptor->name );
   }
   EXPECT_EQ( names,
              ( Journal{ "MULTIHOMING_TCAM_RESOURCE_RECOVERED", "MULTIHOMING_TCAM_RESOURCE_FULL",
                         "VORNAL_UNEXPECTED_RESTART", "VORNAL_CONFIG_CHANGE" } ) );
}

TEST( ModuleLog, TcamHasRecovered ) {
   Log::Descriptor const & message = described( "MULTIHOMING_TCAM_RESOURCE_RECOVERED" );
   EXPECT_EQ( message.format, "TCAM resource for EVPN Multi-Homing recovered" );
   EXPECT_EQ( message.explanation, "TCAM is no longer full and new entries can be allocated" );
   EXPECT_EQ( std::get< Log::StandardAction >( message.action ), Log::StandardAction{ 1 } );
   EXPECT_EQ( message.severity, Log::Severity{ 5 } );
}

TEST( ModuleLog, TcamIsFull ) {
   Log::Descriptor const & message = described( "MULTIHOMING_TCAM_RESOURCE_FULL" );
   EXPECT_EQ( message.format, "TCAM resource for EVPN Multi-Homing exhausted" );
   EXPECT_EQ( message.explanation, "TCAM is full and allocation of new entry has failed." );
   EXPECT_EQ( std::get< std::string >( message.action ),
              "Remove unused ACLs to free up TCAM usage and/or reconfigure EVPN usage to reduce "
              "number of interfaces and VLANs used" );
   EXPECT_EQ( message.severity, Log::Severity{ 3 } );
}

TEST( ModuleLog, AgentHasRestarted ) {
   Log::Descriptor const & message = described( "VORNAL_UNEXPECTED_RESTART" );
   EXPECT_EQ( message.format, "Unexpected restart of Vornal agent %s occurred" );
   EXPECT_EQ( message.explanation, "Unexpected restart of the Vornal agent occurred." );
   EXPECT_EQ( std::get< Log::StandardAction >( message.action ), Log::StandardAction{ 2 } );
   EXPECT_EQ( message.severity, Log::Severity{ 3 } );
}

TEST( ModuleLog, AgentMustRestart ) {
   Log::Descriptor const & message = described( "VORNAL_CONFIG_CHANGE" );
   EXPECT_EQ( message.format, "Configuration change requires the Vornal agent %s to restart" );
   EXPECT_EQ( message.explanation,
              "Configuration change requires the switch ASIC to be reconfigured, requiring the "
              "Vornal agent to restart." );
   EXPECT_EQ( std::get< Log::StandardAction >( message.action ), Log::StandardAction{ 1 } );
   EXPECT_EQ( message.severity, Log::Severity{ 6 } );
}

TEST( ModuleLog, SaysTheTcamMessagesAsOperatorsKnowThem ) {
   Leaf leaf;
   Vornal::multihomingTcamResourceFull.log();
   Vornal::multihomingTcamResourceRecovered.log();
   EXPECT_EQ( leaf.logs,
              ( Journal{ "%VORNAL-3-MULTIHOMING_TCAM_RESOURCE_FULL: TCAM resource for EVPN "
                         "Multi-Homing exhausted",
                         "%VORNAL-5-MULTIHOMING_TCAM_RESOURCE_RECOVERED: TCAM resource for EVPN "
                         "Multi-Homing recovered" } ) );
}

TEST( ModuleTrace, HasAHandleForTheMounterOneForTheMachinesAndOneForTheChip ) {
   EXPECT_EQ( Vornal::mounterTrace.name(), "VornalEvpnMounter" );
   EXPECT_EQ( Vornal::smTrace.name(), "VornalEvpnSm" );
   EXPECT_EQ( Shim::apiTrace().name(), "ApiVornal" );
}

TEST( ModuleTrace, TheRingTakesEveryLevelOfTheMachinesAndTheFirstSixOfTheMounter ) {
   for ( int level = 0; level < 10; ++level ) {
      EXPECT_TRUE( Vornal::smTrace.isRingEnabled( level ) ) << level;
      EXPECT_EQ( Vornal::mounterTrace.isRingEnabled( level ), level < 6 ) << level;
   }
}

// Compilers differ in the blanks before a '&'.
std::string withoutBlanksBeforeAmpersands( std::string text ) {
   for ( std::size_t at = 0; ( at = text.find( " &" ) ) != std::string::npos; ) {
      text.erase( at, 1 );
   }
   return text;
}

TEST( ModuleTrace, TellsEveryStepOfTheStartByItsSignatureAtLevelEight ) {
   Leaf leaf;
   Trace::levelsIs( "VornalEvpnMounter", "8" );
   leaf.mounter = leaf.mounterNew();
   leaf.mounter->doInit();
   leaf.mountsComplete();
   leaf.mounter->finishInit();
   Journal steps;
   for ( std::string const & line : leaf.traces ) {
      steps.push_back( withoutBlanksBeforeAmpersands( line ) );
   }
   EXPECT_EQ( steps,
              ( Journal{ "VornalEvpnMounter 8 "
                         "Vornal::VornalEvpnMounter::VornalEvpnMounter(const std::string&)",
                         "VornalEvpnMounter 8 virtual void Vornal::VornalEvpnMounter::doInit()",
                         "VornalEvpnMounter 8 virtual void "
                         "Vornal::VornalEvpnMounter::doMountsComplete(Corrum::MountStatus, "
                         "Quelm::Ptr<Corrum::EntityManager>)",
                         "VornalEvpnMounter 8 void Vornal::VornalEvpnMounter::finishInit()" } ) );
}

TEST( ModuleMounter, IsOfferedToTheAgentUnderTheNameOfItsType ) {
   auto const offered = Plugin::registeredMounters();
   ASSERT_EQ( offered.size(), 1U );
   EXPECT_EQ( offered[ 0 ]->name(), "Vornal::VornalEvpnMounter" );
   auto const mounter = offered[ 0 ]->mounterNew();
   EXPECT_EQ( mounter->name(), "Vornal::VornalEvpnMounter" );
   EXPECT_EQ( mounter->typeData().name(), "Vornal::VornalEvpnMounter" );
}

}  // namespace ModuleTest
