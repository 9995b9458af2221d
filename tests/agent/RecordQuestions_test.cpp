// `vornal show`, `explain`, `diff` and `verify` take the record of a run in place of its scenario.
#include <gtest/gtest.h>

#include <Record/Reader.h>
#include <Record/Writer.h>
#include <Support.h>
#include <Switches.h>

namespace {

namespace fs = std::filesystem;
using Words = std::vector< std::string >;

// Records a shipped scenario by the shipped plug-in.
class RecordQuestions : public testing::Test {
 protected:
   static std::string scenario( std::string const & name ) {
      return VORNAL_SOURCE_DIR "/scenarios/" + name + "/scenario.yaml";
   }
   void keep( std::string const & name, Words const & more = {} ) const {
      Words words{ "run", scenario( name ), "--record", record };
      words.insert( words.end(), more.begin(), more.end() );
      Support::vornal( words );
   }
   // Makes step N of the record end N seconds after its beginning.
   void giveTimes() const {
      fs::path const plain = directory.path() / "plain.record";
      fs::rename( record, plain );
      Record::Reader reader( plain );
      Record::Writer writer( record, std::get< Record::Setup >( *reader.next() ) );
      while ( auto const item = reader.next() ) {
         std::visit( Story::Overloaded{
                        [ & ]( Record::FilePart const & part ) { writer.add( part ); },
                        [ & ]( Record::InputsEnd const & ) { writer.inputsEnd(); },
                        [ & ]( Story::Event const & event ) {
                           if ( auto const * const end =
                                   std::get_if< Story::StepEnds >( &event ) ) {
                              constexpr U64 kSecond = 1'000'000'000;
                              writer.onEvent( Story::ClockMoved{ end->number * kSecond } );
                           }
                           writer.onEvent( event );
                        },
                        []( Record::Setup const & ) {} },
                     *item );
      }
   }
   // The same question to the record and to the scenario.
   void expectSameAnswer( std::string const & name, Words words ) const {
      words.insert( words.begin() + 1, record );
      auto const fromRecord = Support::vornal( words );
      words[ 1 ] = scenario( name );
      auto const fromScenario = Support::vornal( words );
      EXPECT_NE( fromScenario.out, "" ) << fromScenario.err;
      EXPECT_EQ( fromRecord.out, fromScenario.out ) << fromRecord.err;
      EXPECT_EQ( fromRecord.exitCode, fromScenario.exitCode );
   }

   Support::Directory directory;
   std::string const record = directory.path() / "run.record";
};

TEST_F( RecordQuestions, HaveTheAnswersOfTheScenario ) {
   keep( "two-leaves" );
   expectSameAnswer( "two-leaves", { "show", "state", "--json" } );
   expectSameAnswer( "two-leaves", { "show", "rules", "--after", "9" } );
   expectSameAnswer( "two-leaves", { "explain", "7" } );
   expectSameAnswer( "two-leaves",
                     { "explain", "{ from: 10.0.0.2, vni: 10100, source: 00:00:5e:00:53:02 }" } );
   expectSameAnswer( "two-leaves", { "diff", "--after", "8", "--against", "9" } );
   expectSameAnswer( "two-leaves", { "verify", "--after", "9" } );
}

TEST_F( RecordQuestions, CompareARecordWithItsScenario ) {
   keep( "two-leaves" );
   auto const ran = Support::vornal( { "diff", scenario( "two-leaves" ), record } );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_EQ( ran.out, "no differences\n" );
}

TEST_F( RecordQuestions, TakeATimeOfTheAgentsClock ) {
   keep( "two-leaves" );
   giveTimes();
   auto const after = [ & ]( std::string const & moment ) {
      auto const ran = Support::vornal( { "show", record, "rules", "--after", moment } );
      EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
      return ran.out;
   };
   EXPECT_EQ( after( "0s" ), after( "0" ) );
   EXPECT_EQ( after( "8.999999999s" ), after( "8" ) );
   EXPECT_EQ( after( "9s" ), after( "9" ) );
   EXPECT_NE( after( "9s" ), after( "8" ) );
   EXPECT_EQ( after( "9999s" ), after( "22" ) );
}

TEST_F( RecordQuestions, RefuseATimeOfAScenario ) {
   auto const ran =
      Support::vornal( { "show", scenario( "two-leaves" ), "rules", "--after", "2s" } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err, "--after 2s: " + scenario( "two-leaves" ) +
                          " is no record, and only a record knows times; give a step\n" );
}

TEST_F( RecordQuestions, KnowAddedStepsAndWhereTheRunEnded ) {
   keep( "two-leaves", { "--until", "9", "--then", "withdraw: { vteps: [ 10.0.0.2 ] }" } );
   auto const after = Support::vornal( { "show", record, "rules" } );
   EXPECT_FALSE( Support::contains( after.out, "10.0.0.2" ) ) << after.out;
   auto const before = Support::vornal( { "show", record, "rules", "--after", "9" } );
   EXPECT_TRUE( Support::contains( before.out, "10.0.0.2" ) ) << before.out;
   auto const behind = Support::vornal( { "show", record, "rules", "--after", "11" } );
   EXPECT_EQ( behind.exitCode, 2 );
   EXPECT_EQ( behind.err, "--after 11: " + record + " ends with step 10\n" );
}

TEST_F( RecordQuestions, AreAboutTheWholeStepsOfARecordThatWasCut ) {
   keep( "two-leaves" );
   fs::resize_file( record, fs::file_size( record ) * 2 / 3 );
   auto const rules = Support::vornal( { "show", record, "rules" } );
   EXPECT_EQ( rules.exitCode, 0 ) << rules.err;
   std::string const place = record + ": the record is cut after step ";
   ASSERT_TRUE( rules.err.starts_with( place ) ) << rules.err;
   EXPECT_TRUE( Support::contains( rules.err, " of the file: the file ends in a block\n" ) )
      << rules.err;
   std::string const step = std::to_string( std::stoi( rules.err.substr( place.size() ) ) );
   EXPECT_EQ(
      rules.out,
      Support::vornal( { "show", scenario( "two-leaves" ), "rules", "--after", step } ).out );
   auto const verified = Support::vornal( { "verify", record } );
   EXPECT_TRUE( verified.err.starts_with( place + step ) ) << verified.err;
   auto const behind = Support::vornal( { "show", record, "rules", "--after", "22" } );
   EXPECT_EQ( behind.err,
              "--after 22: " + record + " ends with step " + step + ", where it is cut\n" );

   fs::resize_file( record, 100 );
   auto const none = Support::vornal( { "show", record, "state" } );
   EXPECT_EQ( none.exitCode, 2 );
   EXPECT_EQ( none.err, record +
                           ": the record ends before the run begins; byte 28 of the file: "
                           "the file ends in a block; record the run again\n" );
}

TEST_F( RecordQuestions, RefuseATimeWhereTheClockStandsStill ) {
   keep( "two-leaves" );
   auto const ran = Support::vornal( { "show", record, "rules", "--after", "2.5s" } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.err, "the clock of " + record +
                          " stands at 0 s in all of its steps; give a step in place of a time\n" );
}

// A record can come from anybody.
TEST_F( RecordQuestions, WriteNoFileOutsideOfTheirFolder ) {
   fs::path const outside = directory.path() / "outside";
   Record::Setup const below{ "", "/", "leaf.yaml", {}, {}, {}, {} };
   std::vector< Record::Item > const beginnings[] = {
      { Record::FilePart{ outside, "x" } },
      { below, Record::FilePart{ outside.string().substr( 1 ), "x" } },
      { below, Record::FilePart{ "/../../.." + outside.string(), "x" } },
      { Record::InputsEnd(), Record::FilePart{ outside, "x" } }
   };
   for ( auto const & items : beginnings ) {
      {
         Record::FileWriter writer( record );
         std::string block;
         for ( Record::Item const & item : items ) {
            Record::write( block, item );
         }
         writer.add( block );
      }
      auto const ran = Support::vornal( { "replay", record } );
      EXPECT_EQ( ran.exitCode, 2 );
      EXPECT_EQ( ran.err,
                 record + ": the record ends before the run begins; record the run again\n" );
      EXPECT_FALSE( fs::exists( outside ) );
   }
}

TEST_F( RecordQuestions, HaveNoAnswerWhenThePlugInDoesSomethingElse ) {
   std::string const leaf =
      directory.file( "leaf.yaml", Switches::leaf( "   - ready: subagents::l2Ready\n" ) );
   auto const with = []( Words words, std::string const & plugin ) {
      words.insert( words.end(), { "--plugin", Support::testPlugin( plugin ) } );
      return Support::vornal( words );
   };
   with( { "run", leaf, "--record", record }, "segment-rules" );
   EXPECT_EQ( with( { "show", record, "rules" }, "segment-rules" ).exitCode, 0 );
   EXPECT_EQ( with( { "show", record, "rules", "--after", "0" }, "segment-rules-wrong" ).exitCode,
              0 );

   for ( Words const & question :
         { Words{ "show", record, "rules" }, Words{ "verify", record } } ) {
      auto const ran = with( question, "segment-rules-wrong" );
      EXPECT_EQ( ran.exitCode, 2 );
      EXPECT_EQ( ran.out, "" );
      EXPECT_EQ( ran.err,
                 record + ": this run is not the recorded one from step 1 on, as 'vornal replay " +
                    record +
                    "' shows; ask after an earlier step, or give the plug-in of the record, " +
                    Support::testPlugin( "segment-rules" ).string() + ", by --plugin\n" );
   }
}

TEST_F( RecordQuestions, AreNoRuns ) {
   keep( "two-leaves" );
   auto const run = Support::vornal( { "run", record } );
   EXPECT_EQ( run.exitCode, 2 );
   EXPECT_EQ( run.err, record + ": this is the record of a run; 'vornal replay' plays it again\n" );
}

}  // namespace
