// What the reader makes of scenarios that somebody has broken in one place: each is taken, or
// refused with a place and a remedy; and the JSON Schema says the same, wherever a schema can.
#include <algorithm>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include <Mutations.h>
#include <Steps/Reader.h>
#include <Support.h>

namespace {

namespace fs = std::filesystem;
using Schema::Json;

// What the reader says; nothing when it takes the scenario.
std::vector< Scenario::Problem > problemsOf( std::string const & text, fs::path const & file ) {
   try {
      Steps::readScenarioText( text, file );
   } catch ( Scenario::ReadError const & error ) {
      return error.problems();
   }
   return {};
}

bool hasOneOf( std::string const & text, std::vector< std::string > const & parts ) {
   return std::any_of( parts.begin(), parts.end(), [ & ]( std::string const & part ) {
      return text.find( part ) != std::string::npos;
   } );
}

// Whether a message says what would be right.
bool hasRemedy( std::string const & message ) {
   static std::vector< std::string > const remedies{ " expected",
                                                     "did you mean",
                                                     "; give ",
                                                     "; keep ",
                                                     "; define it",
                                                     "; use ",
                                                     ", as in ",
                                                     "; known are ",
                                                     "; known is ",
                                                     "; check ",
                                                     "; save ",
                                                     "; close it",
                                                     "; remove it",
                                                     "; write ",
                                                     "; leave ",
                                                     "; make it",
                                                     "; break it",
                                                     "; switch it on",
                                                     "; take ",
                                                     "; publish ",
                                                     "; add ",
                                                     "; name ",
                                                     " is not an IP address: ",
                                                     " is not an interface: ",
                                                     " is the highest id",
                                                     " stand together: ",
                                                     "needs one of the words",
                                                     " needs 'on'",
                                                     "one VTEP address of each family",
                                                     " in one port channel at most",
                                                     " a file holds one scenario",
                                                     "it is six pairs",
                                                     "; a segment is on an ",
                                                     ": expected " };
   return hasOneOf( message, remedies );
}

// The kinds of mistakes that no schema can say, by what the reader says of them.
struct Unsayable {
   std::string why;
   std::vector< std::string > messages;
};

std::vector< Unsayable > const & unsayable() {
   static std::vector< Unsayable > const all{
      { "what one part refers to is defined in another",
        { " is not defined; define it under ", " is not among the switch's units",
          " is not among 'vlans'", " is not traced here" } },
      { "two members of a mapping differ in what they hold",
        { "'s already; give each ", " is that of VLAN ", " already; an interface is in one",
          " is under 'access' already" } },
      { "one value is written in two ways, or a key comes twice", { " is given twice, first in" } },
      { "parts agree with each other",
        { " is this switch itself", " VTEP address to reach ", " is an underlay interface",
          " is in a port channel (line ", " carries no VLANs", "this step needs 'forwarding'" } },
      { "one number is at least another", { "class-ids end at " } },
      { "steps follow each other",
        { " at this point, so nothing can be withdrawn", " has the VP index of ",
          "stop is about the next step", "so this step is never carried out",
          "a process stops once" } },
      { "files are there",
        { ", which is no file; ", ", which is no directory; ", " is based on another itself" } },
      { "a point is nearly another", { "did you mean 'subagents::l2Ready'?" } }
   };
   return all;
}

bool isUnsayable( Scenario::Problem const & problem ) {
   return std::any_of( unsayable().begin(), unsayable().end(), [ & ]( Unsayable const & kind ) {
      return hasOneOf( problem.message, kind.messages );
   } );
}

std::string told( std::vector< Scenario::Problem > const & problems ) {
   std::string text;
   for ( Scenario::Problem const & problem : problems ) {
      text += "\n   " + problem.text();
   }
   return text;
}

// Ends the test's patience with a mistake that shows in every file.
bool areEnough() {
   return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count() > 15;
}

// --- Each is taken, or refused with a place and a remedy

void expectPlacesAndRemedies( std::string const & text, fs::path const & file,
                              std::string const & what ) {
   auto const lines = std::count( text.begin(), text.end(), '\n' ) + 1;
   for ( Scenario::Problem const & problem : problemsOf( text, file ) ) {
      bool const isOfFile = problem.file == file;
      EXPECT_TRUE( problem.line >= 1 && ( !isOfFile || problem.line <= lines ) )
         << file << ", " << what << ": " << problem.text();
      EXPECT_TRUE( hasRemedy( problem.message ) ) << file << ", " << what << ": " << problem.text();
      EXPECT_EQ( problem.text().find( '\n' ), std::string::npos );
   }
}

TEST( ScenarioMutations, OfTheTextAreTakenOrRefusedWithPlaceAndRemedy ) {
   std::mt19937 random( Mutations::kSeed );
   RecordProperty( "seed", static_cast< int >( Mutations::kSeed ) );
   int count = 0;
   for ( fs::path const & file : Mutations::shippedFiles() ) {
      std::string const text = Support::contentOf( file );
      for ( int n = 0; n < 12 && !areEnough(); ++n, ++count ) {
         auto const changed = Mutations::textual( text, random );
         expectPlacesAndRemedies( changed.text, file, changed.what );
      }
   }
   EXPECT_GE( count, 1200 ) << "seed " << Mutations::kSeed;
}

// Reader and schema refuse the changed scenario both, or neither; true when the reader does.
bool expectAgreement( Mutations::Changed const & changed, fs::path const & file ) {
   std::string const text = changed.value.dump( 1 );
   auto const problems = problemsOf( text, file );
   std::string const problem = Schema::Schema::ofScenarios().problem( changed.value );
   bool const isSayable = !std::all_of( problems.begin(), problems.end(), isUnsayable );
   EXPECT_FALSE( problems.empty() && !problem.empty() )
      << file << ", " << changed.what << ": only the schema refuses it, at " << problem;
   EXPECT_FALSE( isSayable && problem.empty() )
      << file << ", " << changed.what << ": only the reader refuses it" << told( problems );
   return !problems.empty();
}

TEST( ScenarioMutations, AtEveryPlaceAreSeenAlikeBySchemaAndReader ) {
   std::set< std::string > seen;
   int count = 0;
   for ( fs::path const & file : Mutations::shippedFiles() ) {
      Json const scenario = Schema::jsonOf( YAML::LoadFile( file ) );
      Mutations::atEveryPlace( scenario, seen, [ & ]( auto const & changed ) {
         if ( !areEnough() ) {
            expectAgreement( changed, file );
            ++count;
         }
      } );
   }
   EXPECT_GE( count, 2000 );
}

TEST( ScenarioMutations, OfTheValuesAreTakenOrRefusedWithPlaceAndRemedyAndTheSchemaAgrees ) {
   std::mt19937 random( Mutations::kSeed );
   int count = 0;
   int refused = 0;
   for ( fs::path const & file : Mutations::shippedFiles() ) {
      Json const scenario = Schema::jsonOf( YAML::LoadFile( file ) );
      for ( int n = 0; n < 8 && !areEnough(); ++n, ++count ) {
         auto const changed = Mutations::structural( scenario, random );
         refused += expectAgreement( changed, file ) ? 1 : 0;
         expectPlacesAndRemedies( changed.value.dump( 1 ), file, changed.what );
      }
   }
   EXPECT_GE( count, 900 ) << "seed " << Mutations::kSeed;
   EXPECT_GE( refused, count / 3 );
}

TEST( ScenarioMutations, BeginWithScenariosThatTheSchemaTakes ) {
   for ( fs::path const & file : Mutations::shippedFiles() ) {
      EXPECT_EQ( Schema::Schema::ofScenarios().problem( Schema::jsonOf( YAML::LoadFile( file ) ) ),
                 "" )
         << file;
   }
}

// --- What the schema and the reader have been at odds about

struct Disagreement {
   std::string text;  // of steps, unless it has words of its own
   bool isRight;
};

TEST( ScenarioMutations, AreSeenAlikeWhereSchemaAndReaderWereAtOdds ) {
   std::string const head = "scenario: s\nswitch:\n  name: l\n  variant: class-id\n";
   std::string const units = "  units: { 0: { module: 1 } }\n";
   std::string const rest = "  interfaces: { Ethernet1: { unit: 0, port: 1 } }\n";
   std::string const leaf = head + units + rest;
   auto const forwarding = [ & ]( std::string const & addresses, std::string const & vlans ) {
      return leaf + "forwarding: { vtep-addresses: " + addresses +
             ", underlay: [ Ethernet1 ], vlans: " + vlans + " }\n";
   };
   auto const frame = [ & ]( std::string const & words ) {
      return forwarding( "[ 10.0.0.1, '2001:db8::1' ]", "{}" ) +
             "steps: [ { frame: { source: 00:00:5e:00:53:01, " + words + " } } ]\n";
   };
   auto const rules = [ & ]( std::string const & words ) {
      return leaf + "steps: [ { expect: { rules: { group: ingress, " + words + " } } } ]\n";
   };
   std::vector< Disagreement > const all{
      { leaf + "  l3-multicast-exempt: true\n", true },
      { leaf + "  l3-multicast-exempt: True\n", true },
      { leaf + "  l3-multicast-exempt: 'true'\n", false },
      { leaf + "  l3-multicast-exempt: yes\n", false },
      { forwarding( "[ 10.0.0.1 ]", "{ 10: 10100 }" ), true },
      { forwarding( "[]", "{ 10: 10100 }" ), false },
      { leaf + "forwarding: { vtep-addresses: [ 10.0.0.1 ], underlay: [], vlans: {} }\n", false },
      { forwarding( "[ 10.0.0.1 ]", "{}, router-mac: '01:00:5e:00:00:01'" ), false },
      { forwarding( "[ 10.0.0.1 ]", "{}, router-mac: '02:00:5e:00:00:01'" ), true },
      { forwarding( "[ 10.0.0.1, 10.0.0.3 ]", "{}" ), false },
      { forwarding( "[ 10.0.0.1, '2001:db8::1' ]", "{}" ), true },
      { forwarding( "[ 10.0.0.1 ]", "{ 4094: 1 }" ), true },
      { forwarding( "[ 10.0.0.1 ]", "{ 0xffe: 1 }" ), true },
      { forwarding( "[ 10.0.0.1 ]", "{ 0xfff: 1 }" ), false },
      { forwarding( "[ 10.0.0.1 ]", "{ 0: 1 }" ), false },
      { forwarding( "[ 10.0.0.1 ]", "{ 5000: 1 }" ), false },
      { head + "  units: { 70000: { module: 1 } }\n" + rest, false },
      { head + "  units: { 0: { module: 1 }, 65535: { module: 2 } }\n" + rest, true },
      { head + "  units: { 0: { module: 1 }, 65536: { module: 2 } }\n" + rest, false },
      { leaf + "evpn: { vteps: { 10.0.0.256: { virtual-port: 2 } } }\n", false },
      { leaf + "evpn: { vteps: { 10.0.0.255: { virtual-port: 2 } } }\n", true },
      { leaf + "evpn: { vteps: { 0.0.0.0: { virtual-port: 2 } } }\n", false },
      { leaf + "evpn: { vteps: { 239.1.1.1: { virtual-port: 2 } } }\n", false },
      { leaf + "evpn: { vteps: { 'ff0e::1': { virtual-port: 2 } } }\n", false },
      { leaf + "evpn: { vteps: { '0::0.0.0.1': { virtual-port: 2 } } }\n", false },
      { leaf + "evpn: { vteps: { '::ffff:10.0.0.2': { virtual-port: 2 } } }\n", false },
      { leaf + "evpn: { vteps: { '0:0::FFFF:a00:2': { virtual-port: 2 } } }\n", false },
      { leaf + "evpn: { vteps: { '0:0:0:0:0:ffff:a00::': { virtual-port: 2 } } }\n", false },
      { leaf + "evpn: { vteps: { '::0:ffff:a00:2': { virtual-port: 2 } } }\n", false },
      { leaf + "evpn: { vteps: { '::ffff:2': { virtual-port: 2 } } }\n", true },
      { leaf + "evpn: { vteps: { '::ffff:1:a00:2': { virtual-port: 2 } } }\n", true },
      { leaf + "  class-ids: { first: 4096 }\n", false },
      { leaf + "  class-ids: { first: 4096, last: 5000 }\n", true },
      { leaf + "  class-ids: { last: 0 }\n", false },
      { leaf + "trace: { VornalEvpnSm: 5-3 }\n", false },
      { leaf + "trace: { VornalEvpnSm: '3-5,9' }\n", true },
      { frame( "vlan: 10" ), false },
      { frame( "on: Ethernet1" ), true },
      { frame( "from: 10.0.0.2" ), false },
      { frame( "on: Ethernet1, vni: 10" ), false },
      { frame( "from: 10.0.0.2, vni: 0" ), true },
      { frame( "on: Ethernet1, ttl: 3" ), false },
      { frame( "on: Ethernet1, content: bare, source-port: 3" ), false },
      { frame( "on: Ethernet1, content: udp, source-ip: 10.0.0.1, destination-ip: 10.0.0.2, "
               "ttl: 3" ),
        true },
      { frame( "on: Ethernet1, content: arp" ), false },
      { frame( "on: Ethernet1, content: arp, source-ip: 10.0.0.1, destination-ip: 10.0.0.2" ),
        true },
      { frame( "on: Ethernet1, content: arp, source-ip: '::1', destination-ip: '::2'" ), false },
      { frame( "on: Ethernet1, content: udp, source-ip: 10.0.0.1, destination-ip: '::2'" ), false },
      { rules( "qualifiers: { PacketRes: 1 }" ), true },
      { rules( "qualifiers: { PacketRez: 1 }" ), false },
      { rules( "qualifiers: { PacketRes: [ 1 ] }" ), true },
      { rules( "qualifiers: { PacketRes: [ 1, 2 ] }" ), false },
      { rules( "qualifiers: { DstPort: 3 }" ), false },
      { rules( "qualifiers: { DstPort: [ 1, 3 ] }" ), true },
      { rules( "qualifiers: { DstPort: }" ), true },
      { rules( "actions: { EgressMask: [ 351, 3 ] }" ), true },
      { rules( "actions: { EgressMask: [ 352 ] }" ), false },
      { rules( "actions: { EgressMask: 999 }" ), false },
      { rules( "actions: { Drop: 1 }" ), false },
      { rules( "actions: { Drop: }" ), true },
      { rules( "actions: { PacketRes: }" ), false },
      { rules( "actions: none" ), true },
      { leaf + "evpn: { segments: { Ethernet01: [] } }\n", false },
      { leaf + "evpn: { segments: { Ethernet1: [ '::12345' ] } }\n", false },
      { leaf + "evpn: { segments: { Ethernet1: [ '1:2:3:4:5:6:10.0.0.1', '1::8' ] } }\n", true },
      { leaf + "steps: [ { dump: '/a[\"]\"]/b[c]' } ]\n", true },
      { leaf + "steps: [ { dump: '/a[]' } ]\n", false },
      { leaf + "steps: [ { drift: { group: ingress, unit: 0, entry: 1, flip: Drop } } ]\n", false },
      { leaf + "steps: [ { drift: { group: ingress, unit: 0, entry: 1, remove: Drop } } ]\n", true }
   };
   for ( Disagreement const & one : all ) {
      std::string const problem =
         Schema::Schema::ofScenarios().problem( Schema::jsonOf( YAML::Load( one.text ) ) );
      auto const problems = problemsOf( one.text, "leaf.yaml" );
      EXPECT_EQ( problems.empty(), one.isRight ) << one.text << told( problems );
      EXPECT_EQ( problem.empty(), one.isRight ) << one.text << problem;
   }
}

}  // namespace
