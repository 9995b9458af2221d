// The scenario as a whole: what a good one becomes, and files.
#include <Steps/Reader.h>

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include <ScenarioTexts.h>
#include <Steps/Note.h>
#include <Support.h>

namespace {

using namespace ScenarioTexts;
using Scenario::Variant;

std::string const kData = VORNAL_SOURCE_DIR "/tests/agent/data/";

std::string fileProblems( std::string const & file ) {
   try {
      Steps::readScenario( file );
   } catch ( Scenario::ReadError const & error ) {
      return error.what();
   }
   return {};
}

// --- what a good scenario becomes

TEST( ScenarioReader, TakesNameDescriptionAndFile ) {
   Scenario::Model const model = readLeaf( "description: One leaf of two.\n" );
   EXPECT_EQ( model.name, "two leaves" );
   EXPECT_EQ( model.description, "One leaf of two." );
   EXPECT_EQ( model.file, "leaf.yaml" );
}

TEST( ScenarioReader, NeedsNoMoreThanANameAndASwitch ) {
   Scenario::Model const model = read(
      "scenario: bare\n"
      "switch: { name: leaf1, variant: class-id,"
      " units: { 0: { module: 0 } } }\n" );
   EXPECT_TRUE( model.published.empty() );
   EXPECT_TRUE( model.steps.empty() );
   EXPECT_TRUE( model.trace.empty() );
}

TEST( ScenarioReader, ReadsThePartsInOneOrderHoweverTheyAreWritten ) {
   Scenario::Model const model = read(
      "steps: [ { expect: { rules: { group: ingress, unit: 7,\n"
      "                              count: 0 } } } ]\n"
      "switch: { interfaces: { Ethernet1: { unit: 7, port: 1 } },\n"
      "          variant: class-id, name: leaf1,\n"
      "          units: { 7: { module: 9 } } }\n"
      "scenario: upside down\n" );
   EXPECT_EQ( std::get< Scenario::InterfacePort >( model.published.at( 0 ).what ).port,
              VornalTypes::VornalPort( 7, 1, 9 ) );
   EXPECT_EQ( model.steps.size(), 1U );
}

TEST( ScenarioReader, TakesAnchorsAndAliases ) {
   Scenario::Model const model = readLeaf(
      "evpn:\n"
      "   segments:\n"
      "      Port-Channel2: &peers [ 10.0.0.2 ]\n"
      "      Ethernet1: *peers\n" );
   auto const & last = std::get< Scenario::SegmentVtep >( model.published.back().what );
   EXPECT_EQ( last.intf.stringValue(), "Ethernet1" );
   EXPECT_EQ( last.vtep.stringValue(), "10.0.0.2" );
   EXPECT_EQ( model.published.back().line, 11 ) << "the list stands where its anchor is";
}

TEST( ScenarioReader, TakesTraceLevelsInOrder ) {
   Scenario::Model const model =
      readLeaf( "trace: { VornalEvpn*: 0-8, ApiVornal: '4', Other: 2 }\n" );
   ASSERT_EQ( model.trace.size(), 3U );
   EXPECT_EQ( model.trace[ 0 ].handles, "VornalEvpn*" );
   EXPECT_EQ( model.trace[ 0 ].levels, "0-8" );
   EXPECT_EQ( model.trace[ 1 ].levels, "4" );
   EXPECT_EQ( model.trace[ 2 ].levels, "2" );
}

TEST( ScenarioReader, LooksForFeatureFilesBesideTheScenario ) {
   auto const model = Steps::readScenarioText( kLeaf, "some/where/leaf.yaml" );
   EXPECT_EQ( model.featureFiles, "some/where" );
}

TEST( ScenarioReader, TakesADirectoryOfFeatureFiles ) {
   auto const model =
      Steps::readScenarioText( kLeaf + "features: feature-files\n", kData + "leaf.yaml" );
   EXPECT_EQ( model.featureFiles, kData + "feature-files" );
}

// --- a scenario that is based on another

TEST( ScenarioReader, TakesAnotherScenarioUnderItsOwnNameAndVariant ) {
   Scenario::Model const base = Steps::readScenario( kData + "whole.yaml" );
   Scenario::Model const twin = Steps::readScenario( kData + "twin.yaml" );
   EXPECT_EQ( base.device.variant, Variant::egressMask );
   EXPECT_EQ( twin.device.variant, Variant::classId );
   EXPECT_EQ( twin.name, "twin" );
   EXPECT_EQ( twin.description, base.description );
   EXPECT_EQ( twin.device.name, base.device.name );
   EXPECT_EQ( twin.published.size(), base.published.size() );
   EXPECT_EQ( twin.file, base.file ) << "lines count in the other scenario's file";
}

TEST( ScenarioReader, TakesTheStepsOfTheTwinsVariant ) {
   auto const notes = []( Scenario::Model const & model ) {
      std::string text;
      for ( Scenario::Step const & step : model.steps ) {
         text += step.as< Steps::Note >()->text + '\n';
      }
      return text;
   };
   EXPECT_EQ( notes( Steps::readScenario( kData + "whole.yaml" ) ),
              "for both\nfor egress masks\n" );
   EXPECT_EQ( notes( Steps::readScenario( kData + "twin.yaml" ) ), "for both\nfor class ids\n" );
}

TEST( ScenarioReader, RefusesABaseThatIsNoFile ) {
   EXPECT_EQ(
      problems( "scenario: twin\n"
                "based-on: nowhere.yaml\n" ),
      "leaf.yaml:2: based-on is 'nowhere.yaml', which is no file; the file of a scenario is "
      "expected, relative to this one" );
}

TEST( ScenarioReader, RefusesABaseWhoseNameIsNoFilesName ) {
   std::string const name( 300, 'x' );
   EXPECT_EQ( problems( "scenario: twin\nbased-on: " + name + "\n" ),
              "leaf.yaml:2: based-on is '" + name +
                 "', which is no file; the file of a scenario is expected, relative to this one" );
}

TEST( ScenarioReader, RefusesABaseThatIsATwinItself ) {
   std::string const file = kData + "twin-of-twin.yaml";
   EXPECT_EQ( fileProblems( file ),
              file +
                 ":2: based-on is 'twin.yaml', which is based on another itself; name the scenario "
                 "that it is based on" );
}

TEST( ScenarioReader, TellsWhatIsWrongWithTheBaseInTheBasesOwnLines ) {
   EXPECT_EQ( fileProblems( kData + "twin-of-wrong-word.yaml" ),
              kData +
                 "wrong-word.yaml:4: unknown word 'varient' in switch; did you mean 'variant'?" );
}

// --- Steps from elsewhere than the scenario's file

class AddedSteps : public testing::Test {
 protected:
   AddedSteps() { directory.file( "whole.yaml", ScenarioTexts::kLeaf + "steps:\n   - note: a\n" ); }

   std::string twin( std::string const & steps ) const {
      return directory.file( "twin.yaml",
                             "scenario: twin\nbased-on: whole.yaml\nsteps:\n" + steps );
   }

   Support::Directory directory;
};

TEST_F( AddedSteps, OfATwinFollowThoseOfTheOtherScenario ) {
   std::string const file = twin( "   - note: b\n   - note: c\n" );
   auto const model = Steps::readScenario( file );

   ASSERT_EQ( model.steps.size(), 3U );
   EXPECT_EQ( model.steps[ 0 ].action->description(), "a" );
   EXPECT_EQ( model.steps[ 2 ].action->description(), "c" );
   EXPECT_EQ( model.sources.placeOf( model.steps[ 2 ].line ), file + ":5" );
}

TEST_F( AddedSteps, OfATwinHaveTheirMistakesInTheTwinsLines ) {
   std::string const file = twin( "   - note: b\n   - pubish: {}\n" );
   EXPECT_EQ( fileProblems( file ),
              file + ":5: unknown word 'pubish' in step; did you mean 'publish'?" );
}

TEST_F( AddedSteps, OfATwinNameFilesBesideTheTwin ) {
   std::string const file = twin( "   - frames: { capture: x.pcap, on: Ethernet1 }\n" );
   directory.file( "x.pcap", "" );
   EXPECT_EQ( fileProblems( file ).find( "which is no file" ), std::string::npos );
}

TEST_F( AddedSteps, OfTheCommandLineComeLastUnderTheirOwnName ) {
   std::string const file = twin( "   - note: b\n" );
   auto const model =
      Steps::readScenario( file, { { "--then", "note: c" }, { "--then", "note: d" } } );

   ASSERT_EQ( model.steps.size(), 4U );
   EXPECT_EQ( model.steps[ 3 ].action->description(), "d" );
   EXPECT_EQ( model.sources.placeOf( model.steps[ 3 ].line ), "--then:1" );
   EXPECT_EQ( model.sources.placeOf( model.steps[ 1 ].line ), file + ":4" );
}

TEST_F( AddedSteps, AreCheckedByWhatTheScenarioPublishes ) {
   std::string const file = directory.path() / "whole.yaml";
   EXPECT_THROW( Steps::readScenario( file, { { "--then", "withdraw: { vteps: [ 10.9.9.9 ] }" } } ),
                 Scenario::ReadError );
}

// --- files

TEST( ScenarioReader, RefusesWhatIsNotYaml ) {
   EXPECT_EQ( fileProblems( kData + "not-yaml.yaml" ),
              kData +
                 "not-yaml.yaml:6: this is not YAML (end of map flow not found); check blanks, "
                 "quotes and brackets here and above" );
}

TEST( ScenarioReader, RefusesASecondDocument ) {
   EXPECT_EQ( problems( kLeaf + "---\nscenario: another\n" ),
              "leaf.yaml:9: a second document begins here; a file holds one scenario" );
   EXPECT_EQ( problems( "{ scenario: a }\n\n, b\n" ),
              "leaf.yaml:3: a second document begins here; a file holds one scenario" );
}

TEST( ScenarioReader, RefusesAnEmptyText ) {
   EXPECT_EQ( problems( "" ),
              "leaf.yaml:1: the scenario is empty; a mapping is expected, of scenario, "
              "description, switch, forwarding, evpn, features, trace and steps" );
}

TEST( ScenarioReader, RefusesAList ) {
   EXPECT_EQ(
      problems( "- scenario: a\n" ),
      "leaf.yaml:1: the scenario is a list; a mapping is expected, of scenario, description, "
      "switch, forwarding, evpn, features, trace and steps" );
}

// --- words of the scenario

TEST( ScenarioReader, RefusesAnUnknownWordAndNamesTheNearest ) {
   EXPECT_EQ( leafProblems( "step: []\n" ),
              "leaf.yaml:9: unknown word 'step' in scenario; did you mean 'steps'?" );
}

TEST( ScenarioReader, RefusesAnUnknownWordAndNamesAllWhereNoneIsNear ) {
   EXPECT_EQ( leafProblems( "packets: []\n" ),
              "leaf.yaml:9: unknown word 'packets' in scenario; known are scenario, description, "
              "switch, forwarding, evpn, features, trace and steps" );
}

TEST( ScenarioReader, CutsALongWordShort ) {
   EXPECT_EQ( leafProblems( std::string( 50, 'x' ) + ": 1\n" ),
              "leaf.yaml:9: unknown word '" + std::string( 40, 'x' ) +
                 "...' in scenario; known are scenario, description, switch, forwarding, evpn, "
                 "features, trace "
                 "and steps" );
}

TEST( ScenarioReader, RefusesAWordGivenTwice ) {
   EXPECT_EQ( leafProblems( "scenario: again\n" ),
              "leaf.yaml:9: scenario is given twice, first in line 1; keep one of them" );
}

TEST( ScenarioReader, RefusesAKeyThatIsNoText ) {
   EXPECT_EQ( leafProblems( "? [ a, b ]\n: 1\n" ),
              "leaf.yaml:9: a key in the scenario is a list; a word or a name is expected" );
}

TEST( ScenarioReader, MissesTheNameAndTheSwitch ) {
   EXPECT_EQ(
      problems( "description: nothing else\n" ),
      "leaf.yaml:1: 'scenario' is missing in the scenario; give it, as in 'scenario: start-up'\n"
      "leaf.yaml:1: 'switch' is missing in the scenario; give it, as in 'switch: { name: "
      "leaf1, ... }'" );
}

TEST( ScenarioReader, RefusesANameThatIsNoText ) {
   EXPECT_EQ( leafProblems( "description: [ a ]\n" ),
              "leaf.yaml:9: description is a list; text is expected" );
   EXPECT_EQ( leafProblems( "description:\n" ),
              "leaf.yaml:9: description is empty; text is expected" );
   EXPECT_EQ( leafProblems( "description: ''\n" ),
              "leaf.yaml:9: description is empty; text is expected" );
}

TEST( ScenarioReader, RefusesFeaturesThatAreNoDirectory ) {
   EXPECT_EQ(
      leafProblems( "features: nowhere\n" ),
      "leaf.yaml:9: features is 'nowhere', which is no directory; give the directory of the "
      "feature files, as a path from the scenario's directory" );
}

TEST( ScenarioReader, RefusesTraceThatIsNoMapping ) {
   EXPECT_EQ( leafProblems( "trace: 0-8\n" ), "leaf.yaml:9: trace is text; a mapping is expected" );
}

TEST( ScenarioReader, RefusesWhatAreNoTraceLevels ) {
   for ( std::string const levels :
         { "all", "5-", "5-0", "1,", ",1", "10", "-5", "1.5", "0-9-" } ) {
      EXPECT_EQ( leafProblems( "trace: { VornalEvpnSm: '" + levels + "' }\n" ),
                 "leaf.yaml:9: VornalEvpnSm is '" + levels +
                    "'; trace levels are expected, as in 0-5,9" );
   }
}

// --- all problems at once

TEST( ScenarioReader, TellsAllProblemsInTheOrderOfTheFile ) {
   EXPECT_EQ(
      fileProblems( kData + "many-mistakes.yaml" ),
      kData + "many-mistakes.yaml:4: variant is 'egress'; egress-mask or class-id is expected\n" +
         kData +
         "many-mistakes.yaml:8: port is '400'; a whole number from 0 to 351 is expected, "
         "or 1023 for a port that is not valid\n" +
         kData + "many-mistakes.yaml:10: Ethernet9 is not defined; define it under 'interfaces'\n" +
         kData +
         "many-mistakes.yaml:13: '10.0.0.256' is not an IP address: '256' is not a number "
         "from 0 to 255\n" +
         kData + "many-mistakes.yaml:15: unknown word 'redy' in step; did you mean 'ready'?" );
}

TEST( ScenarioReader, ShowsTwentyProblemsAndCountsTheRest ) {
   std::string text;
   for ( int n = 0; n < 23; ++n ) {
      text += "oops" + std::to_string( n ) + ": 1\n";
   }
   try {
      readLeaf( text );
      FAIL() << "23 unknown words were taken";
   } catch ( Scenario::ReadError const & error ) {
      EXPECT_EQ( error.problems().size(), 23U );
      EXPECT_EQ( error.problems().back().line, 31 );
      std::string const shown = error.what();
      EXPECT_EQ( std::count( shown.begin(), shown.end(), '\n' ), 20 );
      EXPECT_TRUE( shown.ends_with( "\nand 3 more" ) ) << shown;
   }
}

TEST( ScenarioReader, GivesFileLineAndMessageOfAProblemApart ) {
   try {
      readLeaf( "steps: 5\n" );
      FAIL() << "a number was taken for steps";
   } catch ( Scenario::ReadError const & error ) {
      ASSERT_EQ( error.problems().size(), 1U );
      EXPECT_EQ( error.problems()[ 0 ].file, "leaf.yaml" );
      EXPECT_EQ( error.problems()[ 0 ].line, 9 );
      EXPECT_EQ( error.problems()[ 0 ].message, "steps is text; a list is expected" );
   }
}

}  // namespace
