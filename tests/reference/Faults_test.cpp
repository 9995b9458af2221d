// Faults of the chip go as the reference says. In one story on both variants each call fails, each
// request finds no room, and rules drift in many ways. Frames follow the rules as they are then,
// and a verification pass finds what it looks at.
#include <algorithm>
#include <fstream>

#include <gtest/gtest.h>

#include <Judgement.h>
#include <Run.h>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;

// Of the fault in the story.
enum class Place { start, behindStart, behindSegments };

std::string storyWith( std::string const & variant, std::string const & fault, Place place ) {
   auto const at = [ & ]( Place one ) { return one == place ? fault + '\n' : std::string(); };
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
  router-mac: 02:00:00:00:00:01
  hosts: { 192.0.2.1: { vlan: 10, mac: '00:00:5e:00:53:01' } }
evpn:
  segments: { Ethernet1: [ 10.0.0.2 ] }
  vteps: { 10.0.0.2: { virtual-port: 2 }, 10.0.0.3: { virtual-port: 3 } }
  tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 50001 } } }
steps:
)" + at( Place::start ) +
          "  - ready: subagents::l2Ready\n" + at( Place::behindStart ) +
          R"(  - publish: { segments: { Ethernet2: [ 10.0.0.2 ] } }
  - publish: { segments: { Ethernet1: [ 10.0.0.3 ] } }
)" + at( Place::behindSegments ) +
          R"(  - frame: { on: Ethernet1, source: 00:00:5e:00:53:01 }
  - frame: { from: 10.0.0.2, vni: 10100, source: 00:00:5e:00:53:02 }
  - frame: { from: 10.0.0.3, vni: 10100, source: 00:00:5e:00:53:03 }
  - frame: { from: 10.0.0.2, vni: 10100, source: 00:00:5e:00:53:02, destination: 00:00:5e:00:53:01 }
  - frame:
      from: 10.0.0.2
      vni: 10100
      source: 00:00:5e:00:53:02
      destination: 02:00:00:00:00:01
      content: udp
      source-ip: 198.51.100.2
      destination-ip: 192.0.2.1
  - verify: plug-in
  - publish: { interfaces: { Ethernet1: { unit: 0, port: 7 } } }
  - withdraw: { segments: { Ethernet1: [ 10.0.0.2 ] } }
  - withdraw: { segments: { Ethernet2: [ 10.0.0.2 ] } }
)";
}

// The calls whose text has this part.
unsigned callsWith( Run::Document const & run, std::string const & part ) {
   unsigned found = 0;
   for ( Run::Step const & step : run.steps ) {
      found += static_cast< unsigned >(
         std::count_if( step.calls.begin(), step.calls.end(), [ & ]( std::string const & call ) {
            return call.find( part ) != std::string::npos;
         } ) );
   }
   return found;
}

class Faults : public testing::TestWithParam< char const * > {
 protected:
   Faults() {
      std::string name = fs::temp_directory_path() / "test-reference-XXXXXX";
      folder_ = mkdtemp( name.data() );
   }
   ~Faults() override { fs::remove_all( folder_ ); }

   fs::path write( std::string const & fault, Place place ) const {
      fs::path const file = folder_ / "scenario.yaml";
      std::ofstream( file ) << storyWith( GetParam(), fault, place );
      return file;
   }

   // The story must go as the reference says.
   void judge( std::string const & fault, Place place ) {
      Judgement const judgement = judgementOf( write( fault, place ) );
      EXPECT_FALSE( judgement.isOff() ) << fault << '\n' << judgement.text();
      EXPECT_EQ( judgement.counts.stepsWithoutOpinion, 0U ) << fault;
      counts_.add( judgement.counts );
   }

   // The same from the start on; the number of calls with this part in their text.
   unsigned judged( std::string const & fault, std::string const & part ) {
      judge( fault, Place::start );
      return callsWith( Run::of( folder_ / "scenario.yaml" ), part );
   }

   bool usesClassIds() const { return GetParam() == std::string( "class-id" ); }

   Counts counts_;

 private:
   fs::path folder_;
};

char const * const kFailed = " gives -1";
char const * const kRefused = "getEntry unit 0 ''";  // no rule is obtained

TEST_P( Faults, OfEachCallEndTheProcessThereOrGoUnnoticed ) {
   unsigned calls = 0;
   while ( judged( "  - fail-call: { number: " + std::to_string( calls + 1 ) + ", code: -1 }",
                   kFailed ) == 1 ) {
      ++calls;
   }
   EXPECT_EQ( calls, usesClassIds() ? 76U : 41U );
   EXPECT_EQ( counts_.stops, usesClassIds() ? 67U : 32U );
}

TEST_P( Faults, OfOneOperationLast ) {
   std::vector< std::string > operations{ "releaseEntry", "setPriorityForEntry", "installEntry" };
   if ( !usesClassIds() ) {
      operations.insert( operations.end(),
                         { "addEgressMaskAction", "updateEgressMaskAction", "reinstallEntry" } );
   }
   for ( std::string const & operation : operations ) {
      std::string const fault = "operation: " + operation + ", lasting: true, code: -1";
      EXPECT_GT( judged( "  - fail-call: { " + fault + " }", kFailed ), 0U ) << operation;
   }
}

TEST_P( Faults, OfEachRequestLeaveNoRoom ) {
   unsigned requests = 0;
   while ( judged( "  - refuse-entry: { number: " + std::to_string( requests + 1 ) + " }",
                   kRefused ) > 0 ) {
      ++requests;
   }
   EXPECT_EQ( requests, usesClassIds() ? 10U : 5U );
}

using Drifts = std::vector< std::string >;

// Of the rule, each of the changes.
void add( Drifts & drifts, std::string const & rule, Drifts const & changes ) {
   for ( std::string const & change : changes ) {
      drifts.push_back( "  - drift: { group: " + rule + ", " + change + " }" );
   }
}

Drifts const kOfExemptions{ "flip: PacketRes",
                            "flip: TunnelTerminated",
                            "mask: { PacketRes: 0xf }",
                            "mask: { PacketRes: 0 }",
                            "mask: { TunnelTerminated: 0 }",
                            "remove: PacketRes",
                            "remove: TunnelTerminated",
                            "priority: 1",
                            "entry-is: erased",
                            "entry-is: destroyed",
                            "entry-is: copied" };
Drifts const kOfVnis{ "flip: VxlanNetworkId", "mask: { VxlanNetworkId: 0 }",
                      "remove: VxlanNetworkId", "entry-is: destroyed" };
Drifts const kOfSenders{ "flip: SrcVxlanGport",   "mask: { SrcVxlanGport: 0 }",
                         "remove: SrcVxlanGport", "priority: default",
                         "entry-is: erased",      "entry-is: destroyed",
                         "entry-is: copied" };
Drifts const kOfMasks{ "egress-mask: [ 2 ]", "egress-mask: []", "remove: EgressMask" };
Drifts const kOfMarks{ "flip: NewClassId", "flip: EgressClassSelect", "remove: NewClassId",
                       "remove: EgressClassSelect" };
Drifts const kOfDrops{ "flip: DstPort",
                       "mask: { DstPort: 0 }",
                       "remove: DstPort",
                       "flip: IngressClassField",
                       "mask: { IngressClassField: 0 }",
                       "remove: IngressClassField",
                       "flip: IpType",
                       "remove: IpType",
                       "priority: 1",
                       "entry-is: erased",
                       "entry-is: destroyed",
                       "entry-is: copied" };

TEST_P( Faults, OfARuleShowInFramesAndVerification ) {
   Drifts drifts;
   add( drifts, "ingress, unit: 0, rule: L2UC", kOfExemptions );
   add( drifts, "ingress, unit: 0, rule: L3UC", kOfExemptions );
   add( drifts, "ingress, unit: 0, rule: with vni 50001", kOfVnis );
   add( drifts, "ingress, unit: 0, rule: IFP from vtep IP 10.0.0.2", kOfSenders );
   add( drifts, "ingress, unit: 0, rule: IFP from vtep IP 10.0.0.2",
        usesClassIds() ? kOfMarks : kOfMasks );
   add( drifts, "ingress, unit: 0, entry: 3", { "entry-is: erased" } );
   if ( usesClassIds() ) {
      add( drifts, "egress, unit: 0, rule: EFP from vtep IP 10.0.0.2", kOfDrops );
   }
   for ( std::string const & drift : drifts ) {
      judge( drift, Place::behindStart );
   }
   EXPECT_GT( counts_.stops, drifts.size() / 3 );
   EXPECT_GT( counts_.frames, drifts.size() * 4 );
}

TEST_P( Faults, ExchangeWhatTheRulesOfTwoSendersMatch ) {
   judge(
      "  - drift: { group: ingress, unit: 0, rule: IFP from vtep IP 10.0.0.2, "
      "swap-gport-with: IFP from vtep IP 10.0.0.3 }",
      Place::behindSegments );
   EXPECT_GT( counts_.frames, 3U );
}

// A priority that was set never reaches the group's own, however high it is.
TEST_P( Faults, LeaveTheOwnPriorityOfAGroupAboveAll ) {
   judge( R"(  - drift: { group: ingress, unit: 0, rule: IFP from, priority: default }
  - drift: { group: ingress, unit: 0, rule: L2UC, priority: 4294967295 })",
          Place::behindStart );
   EXPECT_GT( counts_.frames, 3U );
}

INSTANTIATE_TEST_SUITE_P( OfBothVariants, Faults, testing::Values( "egress-mask", "class-id" ),
                          []( auto const & one ) {
                             return std::string( one.param ) == "class-id" ? "ClassId"
                                                                           : "EgressMask";
                          } );

}  // namespace
