// `vornal dump` and `vornal shrink` take the record of a run: a small text comes out that needs
// nothing of the machine where the run was.
#include <gtest/gtest.h>

#include <CommandLine/FilesBeside.h>
#include <Shipped.h>
#include <Story/InputError.h>
#include <Support.h>
#include <Switches.h>

namespace {

namespace fs = std::filesystem;
using Words = std::vector< std::string >;

// Records a run on one machine; the files of the scenario are gone on the other one.
class RecordShortened : public testing::Test {
 protected:
   // The run of the scenario in the folder "there".
   void keep( std::string const & name, Words const & more = {} ) const {
      Words words{ "run", there / name, "--record", record };
      words.insert( words.end(), more.begin(), more.end() );
      auto const ran = Support::vornal( words );
      ASSERT_TRUE( fs::exists( record ) ) << ran.err;
   }
   void bringTo( fs::path const & file, fs::path const & folder ) const {
      fs::create_directories( folder );
      fs::copy( file, folder, fs::copy_options::recursive );
   }
   void writeThere( std::string const & name, std::string const & text ) const {
      fs::create_directories( there );
      std::ofstream( there / name ) << text;
   }
   void leaveThere() const { fs::remove_all( there ); }

   Support::Directory directory;
   fs::path const there = directory.path() / "there";
   std::string const record = directory.path() / "run.record";
   std::string const out = directory.path() / "small.yaml";
   fs::path const files = directory.path() / "small-files";
};

// Every line but the first, which names the file.
std::string behindFirstLine( std::string const & text ) {
   return text.substr( text.find( '\n' ) );
}

TEST_F( RecordShortened, IsTheDumpOfItsScenario ) {
   std::string const scenario = Shipped::fileOf( "limits/port-swap" );
   Support::vornal( { "run", scenario, "--record", record } );
   auto const fromScenario = Support::vornal( { "dump", scenario, "--after", "9" } );
   auto const fromRecord = Support::vornal( { "dump", record, "--after", "9" } );
   EXPECT_TRUE( fromRecord.out.starts_with( "# The switch of " + record + " after step 9" ) )
      << fromRecord.out << fromRecord.err;
   EXPECT_EQ( behindFirstLine( fromRecord.out ), behindFirstLine( fromScenario.out ) );
}

TEST_F( RecordShortened, IsTheDumpOfTheRunAndNotOfTheScenarioAlone ) {
   writeThere( "leaf.yaml", Switches::leaf( "- ready: subagents::l2Ready\n"
                                            "- withdraw: { segments: [ Ethernet1 ] }\n" ) );
   keep( "leaf.yaml",
         { "--until", "1", "--then", "publish: { segments: { Ethernet2: [ 10.0.0.2 ] } }",
           "--plugin", Support::testPlugin( "segment-rules" ) } );
   leaveThere();
   Words const plugin{ "--plugin", Support::testPlugin( "segment-rules" ) };
   auto const dump = Support::vornal( { "dump", record, "-o", out, plugin[ 0 ], plugin[ 1 ] } );
   EXPECT_EQ( dump.exitCode, 0 ) << dump.err;
   std::string const text = Support::contentOf( out );
   EXPECT_TRUE( Support::contains( text, "Ethernet1: [10.0.0.2]" ) ) << text;
   EXPECT_TRUE( Support::contains( text, "Ethernet2: [10.0.0.2]" ) ) << text;
   auto const diff = Support::vornal( { "diff", record, out, plugin[ 0 ], plugin[ 1 ] } );
   EXPECT_EQ( diff.exitCode, 0 ) << diff.out << diff.err;
}

TEST_F( RecordShortened, LeavesOutWhatTheRunLeftOut ) {
   writeThere( "leaf.yaml", Switches::leaf( "- note: a\n- expect: { plug-in: ready }\n" ) );
   keep( "leaf.yaml", { "--until", "1", "--then", "expect: { log: { text: x, times: 1 } }",
                        "--plugin", Support::testPlugin( "segment-rules" ) } );
   auto const ran =
      Support::vornal( { "shrink", record, "--plugin", Support::testPlugin( "segment-rules" ) } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( ran.out.ends_with( "steps:\n  - expect: {log: {text: x, times: 1}}\n" ) )
      << ran.out;
}

TEST_F( RecordShortened, BringsTheFeatureFilesOfADump ) {
   bringTo( fs::path( Shipped::fileOf( "toggle-off" ) ).parent_path(), there );
   keep( "scenario.yaml" );
   leaveThere();
   auto const bare = Support::vornal( { "dump", record } );
   EXPECT_TRUE( Support::contains( bare.out,
                                   "\n# The record holds the files that it names; -o FILE writes "
                                   "them beside FILE.\n" ) )
      << bare.out << bare.err;
   auto const dump = Support::vornal( { "dump", record, "-o", out } );
   EXPECT_EQ( dump.exitCode, 0 ) << dump.err;
   EXPECT_TRUE(
      Support::contains( Support::contentOf( out ), "\nfeatures: small-files/features\n" ) )
      << Support::contentOf( out );
   auto const diff = Support::vornal( { "diff", record, out, "--only", "rules" } );
   EXPECT_EQ( diff.exitCode, 0 ) << diff.out << diff.err;
}

// A switch that never forwards what the expectation wants, whatever arrives.
constexpr char kLeaf[] = R"(scenario: leaf
switch:
   name: leaf1
   variant: egress-mask
   units: { 0: { module: 1 } }
   interfaces:
      Ethernet1: { unit: 0, port: 1 }
      Ethernet49: { unit: 0, port: 49 }
forwarding:
   vtep-addresses: [ 10.0.0.1 ]
   underlay: [ Ethernet49 ]
   vlans: { 10: 10100 }
   access: { Ethernet1: 10 }
evpn:
   segments: { Ethernet1: [ 10.0.0.2 ] }
   vteps: { 10.0.0.2: { virtual-port: 2 } }
steps:
   - note: before
   - frames: { capture: captures/fabric-v4.pcap, on: Ethernet49 }
   - expect: { frames: { kind: broadcast, reach: [ Ethernet49 ] } }
)";

class RecordWithACapture : public RecordShortened {
 protected:
   void SetUp() override {
      bringTo( VORNAL_SOURCE_DIR "/scenarios/captures", there / "captures" );
      writeThere( "leaf.yaml", kLeaf );
      keep( "leaf.yaml" );
      leaveThere();
   }
};

TEST_F( RecordWithACapture, FailsInTheSameWayWhenItIsShort ) {
   auto const ran = Support::vornal( { "shrink", record, "-o", out } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   std::string const text = Support::contentOf( out );
   EXPECT_TRUE(
      text.ends_with( "steps:\n"
                      "  - frames: {capture: small-files/fabric-v4.pcap, on: Ethernet49}\n"
                      "  - expect: {frames: {kind: broadcast, reach: [Ethernet49]}}\n" ) )
      << text;
   // Both can be moved together.
   fs::path const elsewhere = directory.path() / "elsewhere";
   fs::create_directory( elsewhere );
   fs::rename( out, elsewhere / "small.yaml" );
   fs::rename( files, elsewhere / "small-files" );
   auto const again = Support::vornal( { "run", elsewhere / "small.yaml" } );
   EXPECT_EQ( again.exitCode, 1 ) << again.err;
   EXPECT_TRUE( Support::contains( again.out, "is not considered at Ethernet49" ) ) << again.out;
}

TEST_F( RecordWithACapture, SaysWhereTheCaptureIsWhenNoFileIsNamed ) {
   auto const ran = Support::vornal( { "shrink", record } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( Support::contains( ran.out,
                                   "\n# The record holds the files that it names; -o FILE writes "
                                   "them beside FILE.\n" ) )
      << ran.out;
   EXPECT_TRUE( Support::contains( ran.out, "there/captures/fabric-v4.pcap" ) ) << ran.out;
}

TEST_F( RecordWithACapture, ReplacesFilesOnlyWhenItIsTold ) {
   bringTo( directory.file( "mine", "mine" ), files );
   auto const refused = Support::vornal( { "shrink", record, "-o", out } );
   EXPECT_EQ( refused.exitCode, 2 );
   EXPECT_EQ( refused.err, files.string() +
                              ", for the files of the record, is there already; name "
                              "another file, or add --force\n" );
   EXPECT_FALSE( fs::exists( out ) );
   EXPECT_EQ( Support::vornal( { "shrink", record, "-o", out, "--force" } ).exitCode, 0 );
   EXPECT_TRUE( fs::exists( files / "fabric-v4.pcap" ) );
   EXPECT_EQ( Support::contentOf( files / "mine" ), "mine" );
}

TEST_F( RecordShortened, RefusesAnotherStoryThanTheRecordedOne ) {
   writeThere( "leaf.yaml", Switches::leaf( "- ready: subagents::l2Ready\n"
                                            "- expect: { plug-in: waiting }\n" ) );
   keep( "leaf.yaml", { "--plugin", Support::testPlugin( "segment-rules" ) } );
   for ( std::string const command : { "dump", "shrink" } ) {
      auto const ran = Support::vornal(
         { command, record, "-o", out, "--plugin", Support::testPlugin( "segment-rules-wrong" ) } );
      EXPECT_EQ( ran.exitCode, 2 );
      EXPECT_TRUE( Support::contains( ran.err, "this run is not the recorded one from step 1 on" ) )
         << ran.err;
      EXPECT_FALSE( fs::exists( out ) );
   }
}

// Files of one name from two folders keep apart.
TEST( FilesBeside, HaveNamesOfTheirOwn ) {
   Support::Directory const directory;
   for ( std::string const folder : { "a", "b" } ) {
      fs::create_directory( directory.path() / folder );
      directory.file( folder + "/x.pcap", folder );
   }
   auto const document =
      CommandLine::withFilesBeside( Scenario::yamlIn( "steps:\n"
                                                      "- frames: { capture: a/x.pcap }\n"
                                                      "- frames: { capture: b/x.pcap }\n"
                                                      "- frames: { capture: a/x.pcap }\n" ),
                                    directory.path() / "out.yaml", {} );
   EXPECT_EQ( textOf( document ),
              "steps:\n"
              "  - frames: {capture: out-files/x.pcap}\n"
              "  - frames: {capture: out-files/2-x.pcap}\n"
              "  - frames: {capture: out-files/x.pcap}\n" );
   EXPECT_EQ( Support::contentOf( directory.path() / "out-files/2-x.pcap" ), "b" );
}

TEST( FilesBeside, LeaveNothingWhenOneCannotBeCopied ) {
   Support::Directory const directory;
   directory.file( "x.pcap", "x" );
   auto const document = Scenario::yamlIn(
      "steps:\n"
      "- frames: { capture: x.pcap }\n"
      "- frames: { capture: gone.pcap }\n" );
   EXPECT_THROW( CommandLine::withFilesBeside( document, directory.path() / "out.yaml", {} ),
                 Story::InputError );
   EXPECT_FALSE( fs::exists( directory.path() / "out-files" ) );
}

}  // namespace
