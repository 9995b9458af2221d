// Faults of the chip go as the reference says: each call of a story fails, each request finds no
// room, and each rule drifts in each way. Frames follow the rules as they are then, and a
// verification pass finds what it looks at.
#include <fstream>

#include <gtest/gtest.h>

#include <Judgement.h>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;

// A story on both variants, with a fault at its place.
std::string storyWith( std::string const & variant, std::string const & fault ) {
   return "scenario: fault\nswitch:\n  name: leaf1\n  variant: " + variant + R"(
  units: { 0: { module: 1 } }
  interfaces:
    Ethernet1: { unit: 0, port: 1 }
    Ethernet2: { unit: 0, port: 2 }
    Ethernet49: { unit: 0, port: 49 }
forwarding:
  vtep-addresses: [ 10.0.0.1 ]
  underlay: [ Ethernet49 ]
  vlans: { 10: 10100 }
  access: { Ethernet1: 10, Ethernet2: 10 }
evpn:
  segments: { Ethernet1: [ 10.0.0.2 ] }
  vteps: { 10.0.0.2: { virtual-port: 2 }, 10.0.0.3: { virtual-port: 3 } }
  tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 50001 } } }
steps:
  - ready: subagents::l2Ready
)" + fault +
          R"(
  - publish: { segments: { Ethernet2: [ 10.0.0.2 ] } }
  - publish: { segments: { Ethernet1: [ 10.0.0.3 ] } }
  - frame: { on: Ethernet1, source: 00:00:5e:00:53:01 }
  - frame: { from: 10.0.0.2, vni: 10100, source: 00:00:5e:00:53:02 }
  - frame: { from: 10.0.0.3, vni: 10100, source: 00:00:5e:00:53:03 }
  - frame: { from: 10.0.0.2, vni: 10100, source: 00:00:5e:00:53:02, destination: 00:00:5e:00:53:01 }
  - verify: plug-in
  - publish: { interfaces: { Ethernet1: { unit: 0, port: 7 } } }
  - withdraw: { segments: { Ethernet1: [ 10.0.0.2 ] } }
  - withdraw: { segments: { Ethernet2: [ 10.0.0.2 ] } }
)";
}

class Faults : public testing::TestWithParam< char const * > {
 protected:
   Faults() {
      std::string name = fs::temp_directory_path() / "test-reference-XXXXXX";
      folder_ = mkdtemp( name.data() );
   }
   ~Faults() override { fs::remove_all( folder_ ); }

   // The story must go as the reference says.
   void judge( std::string const & fault ) {
      fs::path const file = folder_ / "scenario.yaml";
      std::string const story = storyWith( GetParam(), fault );
      std::ofstream( file ) << story;
      Judgement const judgement = judgementOf( file );
      EXPECT_FALSE( judgement.isOff() ) << fault << '\n' << judgement.text();
      EXPECT_EQ( judgement.counts.stepsWithoutOpinion, 0U ) << fault;
      counts_.add( judgement.counts );
   }

   bool usesClassIds() const { return GetParam() == std::string( "class-id" ); }

   Counts counts_;

 private:
   fs::path folder_;
};

TEST_P( Faults, OfACallEndTheProcessThereOrGoUnnoticed ) {
   for ( unsigned number = 1; number <= 55; ++number ) {
      judge( "  - fail-call: { number: " + std::to_string( number ) + ", code: -1 }" );
   }
   EXPECT_GT( counts_.stops, 20U );
}

TEST_P( Faults, OfOneOperationLast ) {
   for ( std::string const operation :
         { "releaseEntry", "setPriorityForEntry", "addEgressMaskAction", "updateEgressMaskAction",
           "reinstallEntry", "installEntry" } ) {
      judge( "  - fail-call: { operation: " + operation + ", lasting: true, code: -1 }" );
   }
}

TEST_P( Faults, OfARequestLeaveNoRoom ) {
   for ( unsigned number = 1; number <= 6; ++number ) {
      judge( "  - refuse-entry: { number: " + std::to_string( number ) + " }" );
   }
}

TEST_P( Faults, OfARuleShowInFramesAndVerification ) {
   std::vector< std::string > drifts;
   for ( std::string const exemption : { "L2UC", "L3UC" } ) {
      for ( std::string const change :
            { "flip: PacketRes", "flip: TunnelTerminated", "mask: { PacketRes: 0xf }",
              "mask: { PacketRes: 0 }", "mask: { TunnelTerminated: 0 }", "remove: PacketRes",
              "remove: TunnelTerminated", "priority: 1", "entry-is: erased", "entry-is: destroyed",
              "entry-is: copied" } ) {
         drifts.push_back( "ingress, unit: 0, rule: " + exemption + ", " + change );
      }
   }
   std::vector< std::string > const ofVariant =
      usesClassIds()
         ? std::vector< std::string >{ "flip: NewClassId", "flip: EgressClassSelect",
                                       "remove: NewClassId", "remove: EgressClassSelect" }
         : std::vector< std::string >{ "egress-mask: [ 2 ]", "egress-mask: []",
                                       "remove: EgressMask" };
   std::vector< std::string > ofSender{ "flip: SrcVxlanGport",   "mask: { SrcVxlanGport: 0 }",
                                        "remove: SrcVxlanGport", "priority: default",
                                        "entry-is: erased",      "entry-is: destroyed",
                                        "entry-is: copied" };
   ofSender.insert( ofSender.end(), ofVariant.begin(), ofVariant.end() );
   for ( std::string const & change : ofSender ) {
      drifts.push_back( "ingress, unit: 0, rule: IFP from vtep IP 10.0.0.2, " + change );
   }
   if ( usesClassIds() ) {
      for ( std::string const change :
            { "flip: DstPort", "mask: { DstPort: 0 }", "remove: DstPort", "flip: IngressClassField",
              "mask: { IngressClassField: 0 }", "remove: IngressClassField", "flip: IpType",
              "priority: 1", "entry-is: erased", "entry-is: destroyed", "entry-is: copied" } ) {
         drifts.push_back( "egress, unit: 0, rule: EFP from vtep IP 10.0.0.2, " + change );
      }
   }
   for ( std::string const & drift : drifts ) {
      judge( "  - drift: { group: " + drift + " }" );
   }
   EXPECT_GT( counts_.stops, drifts.size() / 3 );
   EXPECT_GT( counts_.frames, drifts.size() * 3 );
}

INSTANTIATE_TEST_SUITE_P( OfBothVariants, Faults, testing::Values( "egress-mask", "class-id" ),
                          []( auto const & one ) {
                             return std::string( one.param ) == "class-id" ? "ClassId"
                                                                           : "EgressMask";
                          } );

}  // namespace
