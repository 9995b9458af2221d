// `vornal run --record` keeps a run, and `vornal replay` plays it again up to the first difference.
#include <cstdlib>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <Restored.h>
#include <Shipped.h>
#include <Support.h>
#include <Switches.h>

#include <sys/wait.h>

namespace {

namespace fs = std::filesystem;
using Words = std::vector< std::string >;

class Replay : public testing::Test {
 protected:
   std::string record() const { return directory.path() / "run.record"; }

   static Words with( std::string const & plugin, Words words ) {
      words.insert( words.end(), { "--plugin", Support::testPlugin( plugin ) } );
      return words;
   }

   // Records a run of these steps; its exit code.
   int keep( std::string const & steps, Words const & more = {} ) {
      Words words{ "run", directory.file( "leaf.yaml", Switches::leaf( steps ) ), "--record",
                   record() };
      words.insert( words.end(), more.begin(), more.end() );
      return Support::vornal( with( "segment-rules", words ) ).exitCode;
   }
   Support::Ran replay( std::string const & plugin = "segment-rules", Words more = {} ) const {
      more.insert( more.begin(), { "replay", record() } );
      return Support::vornal( with( plugin, more ) );
   }

   Support::Directory directory;
};

std::string const kReady = "   - ready: subagents::l2Ready\n";
std::string const kThreeSegments =
   "   - publish: { segments: { Ethernet2: [ 10.0.0.2 ], Ethernet3: [ 10.0.0.2 ] } }\n";

TEST_F( Replay, OfTheSamePlugInIsTheSame ) {
   ASSERT_EQ( keep( kReady ), 0 );
   auto const ran = replay();

   EXPECT_EQ( ran.exitCode, 0 ) << ran.out << ran.err;
   EXPECT_TRUE( Support::contains( ran.out, "THE SAME: " ) ) << ran.out;
   EXPECT_EQ( ran.err, "" );
}

TEST_F( Replay, NeedsNeitherTheScenarioNorItsDirectory ) {
   ASSERT_EQ( keep( kReady ), 0 );
   fs::remove( directory.path() / "leaf.yaml" );

   EXPECT_EQ( replay().exitCode, 0 );
}

TEST_F( Replay, OfAPlugInWithAWrongRuleNamesTheCallTheStepAndTheCause ) {
   ASSERT_EQ( keep( kReady ), 0 );
   auto const ran = replay( "segment-rules-wrong" );

   EXPECT_EQ( ran.exitCode, 1 );
   EXPECT_TRUE( Support::contains( ran.out, "DIFFERENT in step 1: " ) ) << ran.out;
   EXPECT_TRUE(
      Support::contains( ran.out, "leaf.yaml:" + std::to_string( Switches::kFirstStepLine ) ) )
      << ran.out;
   EXPECT_TRUE(
      Support::contains( ran.out,
                         "   came       addEgressMaskAction: unit 0, entry 1, group 157" ) )
      << ran.out;
   EXPECT_TRUE( Support::contains( ran.out, "ports [4]" ) ) << ran.out;
   EXPECT_TRUE( Support::contains( ran.out, "ports [3]" ) ) << ran.out;
   EXPECT_TRUE( Support::contains( ran.out, "   published  writes /" ) ) << ran.out;
}

TEST_F( Replay, TellsProgramsADifferenceAsJson ) {
   ASSERT_EQ( keep( kReady ), 0 );
   auto const ran = replay( "segment-rules-wrong", { "--json" } );

   EXPECT_EQ( ran.exitCode, 1 );
   auto const json = nlohmann::json::parse( ran.out );
   EXPECT_EQ( json[ "end" ], "different" );
   EXPECT_EQ( json[ "step" ][ "number" ], 1 );
   EXPECT_EQ( json[ "came" ][ "event" ], "callMade" );
   EXPECT_EQ( json[ "came" ][ "call" ][ "values" ][ "ports" ], nlohmann::json( { 4 } ) );
   EXPECT_EQ( json[ "expected" ][ "call" ][ "values" ][ "ports" ], nlohmann::json( { 3 } ) );
   EXPECT_TRUE( json[ "cut" ].is_null() );
}

TEST_F( Replay, HasNoPlaceForAStepThatNoScenarioWritesAsEveryDocument ) {
   ASSERT_EQ( keep( "   - note: a\n" ), 0 );
   auto const replayed = nlohmann::json::parse( replay( "segment-rules", { "--json" } ).out );
   EXPECT_EQ( replayed[ "step" ][ "kind" ], "teardown" );
   EXPECT_EQ( replayed[ "step" ][ "place" ], nullptr );

   std::string const leaf = directory.path() / "leaf.yaml";
   auto const told = nlohmann::json::parse(
      Support::vornal( with( "segment-rules", { "run", "--json", leaf } ) ).out );
   EXPECT_EQ( told[ "steps" ].front()[ "place" ], nullptr );
   EXPECT_EQ( told[ "steps" ].back()[ "place" ], nullptr );
   std::string const lines =
      Support::vornal( with( "segment-rules", { "run", "--events", leaf } ) ).out;
   EXPECT_EQ( Support::timesIn( lines, R"("place":null)" ), 2U );
   EXPECT_EQ( Support::timesIn( lines, R"("place":"")" ), 0U );
}

TEST_F( Replay, OfAStopIsTheSameWhenThePlugInStopsThereAgain ) {
   ASSERT_EQ( keep( kReady + kThreeSegments ), 3 );
   auto const ran = replay();

   EXPECT_EQ( ran.exitCode, 0 ) << ran.out << ran.err;
   EXPECT_TRUE( Support::contains( ran.out, "THE SAME: " ) ) << ran.out;
}

TEST_F( Replay, TakesTheWordsOfTheCommandIntoAccount ) {
   ASSERT_EQ( keep( kReady + "   - note: a\n   - note: b\n",
                    { "--until", "1", "--then", "note: c", "--trace", "Sample/0-9" } ),
              0 );
   auto const ran = replay( "segment-rules", { "--json" } );

   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   // Start-up, two steps and teardown.
   EXPECT_EQ( nlohmann::json::parse( ran.out )[ "step" ][ "number" ], 3 );
}

TEST_F( Replay, OfACutRecordGoesUpToItsEnd ) {
   ASSERT_EQ( keep( kReady + "   - note: a\n" ), 0 );
   std::string const bytes = Support::contentOf( record() );
   directory.file( "run.record", bytes.substr( 0, bytes.size() - 1 ) );
   auto const ran = replay();

   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( Support::contains( ran.out, "THE SAME up to the end of the record: " ) ) << ran.out;
   EXPECT_TRUE( Support::contains( ran.out, "   cut        after " ) ) << ran.out;
   EXPECT_TRUE( Support::contains( ran.out, "the file ends in a block" ) ) << ran.out;
}

TEST_F( Replay, RefusesWhatIsNoRecordOrEndsBeforeItsEvents ) {
   ASSERT_EQ( keep( kReady ), 0 );
   std::string const bytes = Support::contentOf( record() );
   directory.file( "run.record", bytes.substr( 0, 40 ) );
   auto const cut = replay();
   EXPECT_EQ( cut.exitCode, 2 );
   EXPECT_TRUE( Support::contains( cut.err, "the record ends before the run begins" ) ) << cut.err;

   directory.file( "run.record", "scenario: leaf\n" );
   auto const other = replay();
   EXPECT_EQ( other.exitCode, 2 );
   EXPECT_TRUE( Support::contains( other.err, "this is no record of a run" ) ) << other.err;
}

TEST_F( Replay, RefusesAPlugInThatCannotBeLoaded ) {
   ASSERT_EQ( keep( kReady ), 0 );
   auto const ran = Support::vornal( { "replay", record(), "--plugin", record() } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.out, "" );
   EXPECT_TRUE( Support::contains( ran.err, record() ) ) << ran.err;
}

TEST_F( Replay, NamesThePlugInsWhenTheyHaveOtherFiles ) {
   ASSERT_EQ( keep( kReady ), 0 );
   auto const ran = replay( "segment-rules-wrong" );
   EXPECT_TRUE(
      Support::contains( ran.out, "   plug-in    " +
                                     Support::testPlugin( "segment-rules-wrong" ).string() +
                                     "; the record was made with " +
                                     Support::testPlugin( "segment-rules" ).string() + "\n" ) )
      << ran.out;
}

// Another output is refused, or the plug-in, after the record's file is taken.
TEST_F( Replay, FindsTheEarlierRunAfterARefusedOne ) {
   ASSERT_EQ( keep( kReady ), 0 );
   std::string const before = Support::contentOf( record() );
   std::string const text = directory.file( "text", "no ring\n" );
   EXPECT_EQ( keep( kReady, { "--ring", text } ), 2 );
   EXPECT_EQ( Support::contentOf( record() ), before );
   auto const ran = Support::vornal(
      { "run", directory.path() / "leaf.yaml", "--record", record(), "--plugin", text } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( Support::contentOf( record() ), before );
   auto const same = Support::vornal( { "run", directory.path() / "leaf.yaml", "--record", record(),
                                        "--report", directory.path() / "." / "run.record" } );
   EXPECT_EQ( same.exitCode, 2 );
   EXPECT_TRUE( Support::contains( same.err, "--record and --report both name " ) ) << same.err;
   EXPECT_EQ( Support::contentOf( record() ), before );
}

TEST_F( Replay, SaysWhenThereIsNoTemporaryFolder ) {
   ASSERT_EQ( keep( kReady ), 0 );
   auto const ran =
      Support::vornal( with( "segment-rules", { "replay", record() } ), { "TMPDIR=/nowhere" } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err,
              "the files of the record find no room in /nowhere (No such file or directory); name "
              "another folder in TMPDIR\n" );
}

TEST_F( Replay, LeavesNoFolderBehind ) {
   ASSERT_EQ( keep( kReady ), 0 );
   Support::Directory const temporary;
   Restored::Variable const place( "TMPDIR", temporary.path() );
   EXPECT_EQ( replay( "segment-rules-wrong" ).exitCode, 1 );
   EXPECT_TRUE( fs::is_empty( temporary.path() ) );
}

// A limit on the size of files stands for a full disk.
TEST_F( Replay, OfARecordThatFoundNoRoomGoesUpToItsEnd ) {
   ASSERT_EQ( keep( kReady ), 0 );
   auto const size = fs::file_size( record() );
   std::string const command =
      "ulimit -f " + std::to_string( ( size - 1 ) / 512 ) + "; '" +
      VORNAL_BINARY_DIR "/vornal' run '" + ( directory.path() / "leaf.yaml" ).string() +
      "' --record '" + record() + "' --plugin '" + Support::testPlugin( "segment-rules" ).string() +
      "' >/dev/null 2>&1";
   ASSERT_EQ( WEXITSTATUS( std::system( ( "dash -c \"" + command + "\"" ).c_str() ) ), 2 );

   auto const ran = replay();
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_TRUE( Support::contains( ran.out, "THE SAME up to the end of the record: " ) ) << ran.out;
}

// --- What ships

class ShippedReplay : public testing::TestWithParam< std::string > {};

TEST_P( ShippedReplay, IsTheSame ) {
   Support::Directory const directory;
   std::string const record = directory.path() / "record";
   std::string const scenario = Shipped::fileOf( GetParam() );
   ASSERT_EQ( Support::vornal( { "run", scenario, "--record", record } ).exitCode, 0 );
   auto const ran = Support::vornal( { "replay", record } );

   EXPECT_EQ( ran.exitCode, 0 ) << ran.out << ran.err;
   EXPECT_TRUE( Support::contains( ran.out, "THE SAME: " ) ) << ran.out;
}

INSTANTIATE_TEST_SUITE_P( All, ShippedReplay, testing::ValuesIn( Shipped::scenarios() ),
                          Shipped::nameOf );

// --- Builds of it with one rule programmed wrongly

class WrongBuildReplay : public testing::Test {
 protected:
   // Records a shipped scenario with the steps of two-leaves by the right build, and replays it
   // with a wrong one.
   static void expectDifference( std::string const & scenario, std::string const & build,
                                 std::string const & difference ) {
      auto const ran = replayed( scenario, build );
      EXPECT_EQ( ran.exitCode, 1 ) << ran.err;
      EXPECT_EQ( withoutPlugIns( ran.out ),
                 scenario + "\nDIFFERENT in step 9: ready subagents::l2Ready (" +
                    Shipped::fileOf( "two-leaves" ).string() + ":58)\n" + difference );
   }

 private:
   static Support::Ran replayed( std::string const & scenario, std::string const & build ) {
      Support::Directory const directory;
      std::string const record = directory.path() / "record";
      EXPECT_EQ(
         Support::vornal( { "run", Shipped::fileOf( scenario ), "--record", record } ).exitCode,
         0 );
      return Support::vornal( { "replay", record, "--plugin", Support::testPlugin( build ) } );
   }
   // Less the last line, which names the two builds.
   static std::string withoutPlugIns( std::string const & text ) {
      std::size_t const line = text.find( "   plug-in    " );
      EXPECT_NE( line, std::string::npos ) << text;
      return text.substr( 0, line );
   }
};

TEST_F( WrongBuildReplay, NamesAnEgressMaskItsStepAndTheLastPublishedChange ) {
   expectDifference( "two-leaves", "VornalEvpn-wrong-mask",
                     "   came       addEgressMaskAction: unit 0, entry 3, group 157, ports "
                     "[]; returns 0\n"
                     "   expected   addEgressMaskAction: unit 0, entry 3, group 157, ports "
                     "[3, 4]; returns 0\n"
                     "   published  writes "
                     "/hardware/vornal/vp/status/vornalL3/remoteVport[2001:db8::4]: 104\n" );
}

TEST_F( WrongBuildReplay, NamesAClassIdItsStepAndTheLastPublishedChange ) {
   expectDifference( "two-leaves-class-id", "VornalEvpn-wrong-class-id",
                     "   came       bcm_field_qualify_IngressClassField: unit 0, entry 4, "
                     "data 2, mask 4294967295; returns 0\n"
                     "   expected   bcm_field_qualify_IngressClassField: unit 0, entry 4, "
                     "data 1, mask 4294967295; returns 0\n"
                     "   published  writes /hardware/vornal/i2eclassid/status/slice/1/"
                     "remoteESPeerVtep[10.0.0.2]: 1\n" );
}

}  // namespace
