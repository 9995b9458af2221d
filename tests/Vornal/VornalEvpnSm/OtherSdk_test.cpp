// An SDK release whose success code is not 0 and whose known L3 multicast is not 12, and what the
// machine asks the entry managers for: the same rules, every one with an empty request key.

#include <gtest/gtest.h>

#include <set>

#include <Snapshot/Rules.h>

#include "../support/LocalBiasSwitch.h"
#include "../support/Stops.h"
#include "../support/Variants.h"

namespace {

using Support::assertionLine;
using Support::intf;
using Support::ip;
using Support::Lines;
using Support::LocalBiasSwitch;
using Support::Machine;
using Support::Variant;

constexpr S32 kSuccess = 3;
constexpr U32 kL3McKnown = 27;

class OtherSdk final : public Chip::SdkDecorator {
 public:
   using SdkDecorator::SdkDecorator;

   S32 successCode() const override { return kSuccess; }
   U32 packetResL3McKnown() const override { return kL3McKnown; }
};

// The manager of that release. Its n-th write of an entry, from 1, is answered with the success
// code of another release, if so wanted.
class OtherManager final : public Chip::SoftTcamEntryManager {
 public:
   OtherManager( LocalBiasSwitch & leaf, Vornal::TcamGroupAssignment group )
         : SoftTcamEntryManager( group, leaf.board.units(), &leaf.callObserver() ) {}

   S32 installEntry( U32 unit, U32 entryId ) override {
      return answer( SoftTcamEntryManager::installEntry( unit, entryId ) );
   }
   S32 reinstallEntry( U32 unit, U32 entryId ) override {
      return answer( SoftTcamEntryManager::reinstallEntry( unit, entryId ) );
   }

   U32 nthWithZero = 0;

 private:
   S32 answer( S32 rc ) {
      EXPECT_EQ( rc, 0 );
      return ++writes_ == nthWithZero ? 0 : kSuccess;
   }

   U32 writes_ = 0;
};

// leaf1 on a platform of that release. Ethernet1 and Ethernet2 are its ports 5 and 6.
class OtherLeaf : public LocalBiasSwitch {
 public:
   OtherLeaf() {
      Shim::sdk_ = &sdk_;
      ingress = ingressManager = Quelm::make< OtherManager >( *this, Vornal::kIfpLocalBiasGroup );
      egress = egressManager = Quelm::make< OtherManager >( *this, Vornal::kEfpLocalBiasGroup );
      interfaceIs( "Ethernet1", 0, 5 );
      interfaceIs( "Ethernet2", 0, 6 );
   }

   // One rule of every kind: Ethernet1 is shared with 10.0.0.2 and Ethernet2 later on, and a VRF
   // has VNI 50001.
   void programEveryRule( Variant variant ) {
      segmentIs( "Ethernet1", { "10.0.0.2" } );
      vtepIs( "10.0.0.2", 0x10002 );
      vtiStatusDir->vtiStatusIs( intf( "Vxlan1" ) )
         ->vrfToVniMapIs( L3::VrfName( "red" ), Vxlan::VniExtOrNone( 50001 ) );
      machine_ = machineNew( variant );
      classIdIs( "10.0.0.2", 7 );
      segmentIs( "Ethernet2", { "10.0.0.2" } );
   }

   std::set< std::string > ruleNames() {
      std::set< std::string > names;
      for ( Chip::Rule const & rule : Chip::rulesOf( board.units() ) ) {
         EXPECT_TRUE( rule.isWritten ) << rule.name;
         names.insert( rule.name );
      }
      return names;
   }

   Quelm::Ptr< OtherManager > ingressManager;
   Quelm::Ptr< OtherManager > egressManager;

 private:
   OtherSdk sdk_{ *Shim::sdk_ };
   Machine machine_;
};

std::set< std::string > expectedNames( Variant variant ) {
   std::set< std::string > names{ Support::vtepRuleName( "10.0.0.2" ), Support::l2RuleName(),
                                  Support::l3RuleName(), Support::vniRuleName( 50001 ) };
   if ( variant == Variant::I2EClassId ) {
      names.insert( Support::dropRuleName( "10.0.0.2", "Ethernet1" ) );
      names.insert( Support::dropRuleName( "10.0.0.2", "Ethernet2" ) );
   }
   return names;
}

class AnotherSdk : public testing::TestWithParam< Variant > {
 protected:
   OtherLeaf leaf;
};

INSTANTIATE_TEST_SUITE_P( Shim, AnotherSdk, Support::bothVariants, Support::nameOfVariant );

TEST_P( AnotherSdk, TakesItsOwnSuccessCodeForSuccessOfEveryInstallAndReinstall ) {
   leaf.programEveryRule( GetParam() );
   EXPECT_EQ( leaf.ruleNames(), expectedNames( GetParam() ) );
}

TEST_P( AnotherSdk, IsAskedForTheResolutionOfKnownMulticast ) {
   leaf.programEveryRule( GetParam() );
   U32 found = 0;
   for ( Chip::Rule const & rule : Chip::rulesOf( leaf.board.units() ) ) {
      if ( rule.name == Support::vniRuleName( 50001 ) ) {
         auto const & match = rule.content[ Chip::Qualifier::PacketRes ];
         ASSERT_TRUE( match );
         EXPECT_EQ( match->data, kL3McKnown );
         EXPECT_EQ( match->mask, 0xffffffffU );
         ++found;
      }
   }
   EXPECT_EQ( found, 1U );
}

// A key that is not empty would stand beside the name.
TEST_P( AnotherSdk, GetsEveryRequestWithAnEmptyKey ) {
   leaf.programEveryRule( GetParam() );
   std::set< std::string > names;
   for ( Chip::HardwareCall const & call : leaf.calls ) {
      if ( call.operation == "getEntry" ) {
         EXPECT_EQ( call.values.size(), 2U ) << ChipTest::textOf( call );
         EXPECT_EQ( call.values[ 0 ].name, "group" );
         EXPECT_EQ( call.values[ 1 ].name, "name" );
         names.insert( std::get< std::string >( call.values[ 1 ].value ) );
      }
   }
   EXPECT_EQ( names, expectedNames( GetParam() ) );
}

// --- 0 is no success on that release

void stopAtIngress( Variant variant, U32 nth ) {
   OtherLeaf leaf;
   leaf.ingressManager->nthWithZero = nth;
   leaf.programEveryRule( variant );
}

void stopAtEgress( U32 nth ) {
   OtherLeaf leaf;
   leaf.egressManager->nthWithZero = nth;
   leaf.programEveryRule( Variant::I2EClassId );
}

std::string const installFailed = "rc == BCM_E_NONE && \"installEntry failed\"";

TEST( AnotherSdkDeathTest, StopsAtAnInstallThatReturnsZero ) {
   std::string const exempting = "installRulesForUcastTraffic";
   EXPECT_DEATH( stopAtIngress( Variant::EgressMask, 1 ),
                 assertionLine( "UnicastExemption.cpp:764", exempting, installFailed ) );
   EXPECT_DEATH( stopAtIngress( Variant::EgressMask, 2 ),
                 assertionLine( "UnicastExemption.cpp:783", exempting, installFailed ) );
   EXPECT_DEATH( stopAtIngress( Variant::EgressMask, 3 ),
                 assertionLine( "EgressMaskProgramming.cpp:", "ifpTcamEntries", installFailed ) );
   EXPECT_DEATH( stopAtIngress( Variant::I2EClassId, 4 ),
                 assertionLine( "ClassIdAllocation.cpp:", "ifpTcamEntries", installFailed ) );
   EXPECT_DEATH( stopAtEgress( 1 ),
                 assertionLine( "EgressDropRules.cpp:", "efpTcamEntries", installFailed ) );
}

TEST( AnotherSdkDeathTest, StopsAtAReinstallThatReturnsZero ) {
   EXPECT_DEATH( stopAtIngress( Variant::EgressMask, 5 ),
                 assertionLine( "EgressMaskProgramming.cpp:", "updateIfpTcamEntries",
                                "rc == BCM_E_NONE && \"reinstallEntry failed\"" ) );
}

}  // namespace
