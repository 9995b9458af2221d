// The steps of a shell, without a shell: what is kept, what is refused, and what is saved.
#include <Shell/Session.h>

#include <gtest/gtest.h>

#include <Process/WholeFile.h>
#include <Shell/SavedScenario.h>
#include <Story/InputError.h>
#include <Support.h>
#include <Switches.h>

namespace {

namespace fs = std::filesystem;
using Shell::Ending;
using Shell::Session;
using Texts = std::vector< std::string >;

Texts textsOf( Scenario::Model const & scenario ) {
   Texts texts;
   for ( Scenario::Step const & step : scenario.steps ) {
      texts.push_back( step.action->description() );
   }
   return texts;
}

std::string mistakeOf( std::function< void() > const & work ) {
   try {
      work();
   } catch ( std::exception const & error ) {
      return error.what();
   }
   return "";
}

class ShellSession : public testing::Test {
 protected:
   void typed( std::string const & text, int line = 1 ) {
      session.take( session.typed( text, line ), {} );
   }
   void ownUpTo( std::size_t number ) { session.take( session.ownUpTo( number ), {} ); }

   Support::Directory directory;
   fs::path file = directory.file( "leaf.yaml", Switches::leaf( "   - note: one\n"
                                                                "   - note: two\n"
                                                                "   - note: three\n" ) );
   Session session{ file };
};

// --- The list

TEST_F( ShellSession, PutsTypedStepsBetweenTheScenariosOwn ) {
   EXPECT_EQ( session.position(), "leaf 0/3" );
   ownUpTo( 1 );
   typed( "note: mine" );
   ownUpTo( 3 );

   EXPECT_EQ( textsOf( session.scenario() ), ( Texts{ "one", "mine", "two", "three" } ) );
   EXPECT_EQ( session.position(), "leaf 3/3 +1" );
   EXPECT_EQ( textsOf( session.scenarioAfter( 2 ) ), ( Texts{ "one", "mine" } ) );
}

TEST_F( ShellSession, KnowsTheLineOfATypedStep ) {
   typed( "note: mine", 7 );
   auto const scenario = session.scenario();
   EXPECT_EQ( scenario.sources.placeOf( scenario.steps.at( 0 ).line ), "shell:7" );
   EXPECT_EQ( mistakeOf( [ & ] { typed( "pubish: {}", 9 ); } ),
              "shell:9: unknown word 'pubish' in step; did you mean 'publish'?" );
   EXPECT_EQ( session.done(), 1U );
}

TEST_F( ShellSession, ChecksAStepByWhatIsPublishedAtThatPoint ) {
   typed( "withdraw: { vteps: [ 10.0.0.2 ] }" );
   EXPECT_EQ( mistakeOf( [ & ] { typed( "withdraw: { vteps: [ 10.0.0.2 ] }", 2 ); } ),
              "shell:2: 10.0.0.2 has no virtual port at this point, so nothing can be withdrawn; "
              "publish it before, or leave this out" );
   session.undo();
   typed( "withdraw: { vteps: [ 10.0.0.2 ] }" );
   EXPECT_EQ( session.done(), 1U );
}

TEST_F( ShellSession, ChecksAnOwnStepByWhatWasTypedBefore ) {
   fs::path const other =
      directory.file( "other.yaml", Switches::leaf( "   - withdraw: { vteps: [ 10.0.0.2 ] }\n" ) );
   Session changed( other );
   changed.take( changed.typed( "withdraw: { vteps: [ 10.0.0.2 ] }", 1 ), {} );
   EXPECT_EQ( mistakeOf( [ & ] { changed.ownUpTo( 1 ); } ),
              other.string() +
                 ":20: 10.0.0.2 has no virtual port at this point, so nothing can be "
                 "withdrawn; publish it before, or leave this out" );
}

TEST_F( ShellSession, RefusesAStepOfTheOtherVariant ) {
   EXPECT_EQ( mistakeOf( [ & ] { typed( "{ only-on: class-id, note: x }" ); } ),
              "the step is for the other variant only; leave 'only-on' out" );
}

TEST_F( ShellSession, ReadsTheScenarioOnce ) {
   directory.file( "leaf.yaml", "nothing\n" );
   ownUpTo( 3 );
   EXPECT_EQ( session.done(), 3U );
}

// --- How a run ends

TEST_F( ShellSession, KeepsAStepThatStoppedTheProcessUntilItIsUndone ) {
   session.take( session.ownUpTo( 3 ), { Ending::Kind::stopped, 2 } );
   EXPECT_EQ( session.position(), "leaf 2/3 stopped" );
   EXPECT_EQ( session.verdict(), Story::ExitCode::Stopped );

   session.undo();
   EXPECT_EQ( session.position(), "leaf 1/3" );
   EXPECT_EQ( session.verdict(), Story::ExitCode::Held );
}

TEST_F( ShellSession, KeepsNoStepThatWasInterrupted ) {
   session.take( session.ownUpTo( 3 ), { Ending::Kind::cutShort, 2 } );
   EXPECT_EQ( session.position(), "leaf 1/3" );
   session.take( session.ownUpTo( 3 ), { Ending::Kind::cutShort, 0 } );
   EXPECT_EQ( session.position(), "leaf 1/3" );
}

TEST_F( ShellSession, ForgetsWithAStepThatItsExpectationDidNotHold ) {
   session.take( session.ownUpTo( 2 ), { Ending::Kind::over, 3, { 2 } } );
   EXPECT_EQ( session.verdict(), Story::ExitCode::ExpectationFailed );
   session.undo();
   EXPECT_EQ( session.verdict(), Story::ExitCode::Held );
}

TEST_F( ShellSession, HasNothingToUndoAtTheBeginning ) {
   EXPECT_EQ( mistakeOf( [ & ] { session.undo(); } ), "no step is left to undo" );
   session.take( session.unchanged(), { Ending::Kind::stopped, 0 } );
   EXPECT_EQ( mistakeOf( [ & ] { session.undo(); } ),
              "the plug-in stops in start-up, which no undo changes" );
}

// --- Saving

TEST_F( ShellSession, SavesWhatFollowsAWholeScenarioAsBasedOnIt ) {
   ownUpTo( 3 );
   typed( "withdraw: { vteps: [ 10.0.0.2 ] }" );
   fs::create_directory( directory.path() / "mine" );
   fs::path const saved = directory.path() / "mine/scenario.yaml";

   EXPECT_EQ( session.saved( saved ),
              "scenario: mine\n"
              "based-on: ../leaf.yaml\n"
              "variant: egress-mask\n"
              "steps:\n"
              "  - withdraw: {vteps: [10.0.0.2]}\n" );
   EXPECT_EQ( textsOf( Steps::readScenarioText( session.saved( saved ), saved ) ),
              textsOf( session.scenario() ) );
}

TEST_F( ShellSession, SavesAWholeScenarioWhereStepsWereTypedBetween ) {
   ownUpTo( 1 );
   typed( "note: \"0x10\"" );
   ownUpTo( 2 );
   fs::path const saved = directory.path() / "mine.yaml";

   auto const scenario = Steps::readScenarioText( session.saved( saved ), saved );
   EXPECT_EQ( scenario.name, "mine" );
   EXPECT_EQ( textsOf( scenario ), ( Texts{ "one", "0x10", "two" } ) );
   EXPECT_EQ( scenario.published.size(), session.scenario().published.size() );
}

TEST_F( ShellSession, SavesTheVariantAndTheStepsOfADerivedScenario ) {
   fs::path const twin = directory.file( "twin.yaml",
                                         "scenario: twin\n"
                                         "based-on: leaf.yaml\n"
                                         "variant: class-id\n"
                                         "steps: [ note: four ]\n" );
   Session derived( twin );
   derived.take( derived.ownUpTo( 4 ), {} );
   derived.take( derived.typed( "note: five", 1 ), {} );
   fs::path const saved = directory.path() / "mine.yaml";

   auto const whole = Steps::readScenarioText( derived.saved( saved ), saved );
   EXPECT_EQ( textsOf( whole ), ( Texts{ "one", "two", "three", "four", "five" } ) );
   EXPECT_EQ( whole.device.variant, Scenario::Variant::classId );

   derived.undo();
   derived.undo();
   derived.undo();
   auto const early = Steps::readScenarioText( derived.saved( saved ), saved );
   EXPECT_EQ( textsOf( early ), ( Texts{ "one", "two" } ) );
   EXPECT_EQ( early.device.variant, Scenario::Variant::classId );
}

TEST_F( ShellSession, LeadsFromTheSavedFileToTheSameCaptures ) {
   Session leaves( VORNAL_SOURCE_DIR "/scenarios/two-leaves/scenario.yaml" );
   leaves.take( leaves.ownUpTo( 7 ), {} );
   fs::path const saved = directory.path() / "mine.yaml";
   auto const scenario = Steps::readScenarioText( leaves.saved( saved ), saved );
   EXPECT_EQ( textsOf( scenario ), textsOf( leaves.scenario() ) );
   EXPECT_TRUE( fs::equivalent( scenario.featureFiles, leaves.scenario().featureFiles ) );
}

TEST_F( ShellSession, WritesAFileAsAWholeOrNotAtAll ) {
   fs::path const saved = directory.file( "mine.yaml", "before\n" );
   Process::writeWhole( saved, "after\n" );
   EXPECT_EQ( Support::contentOf( saved ), "after\n" );
   EXPECT_THROW( Process::writeWhole( directory.path() / "none/x.yaml", "x" ), Story::InputError );
   EXPECT_THROW( Process::writeWhole( directory.path(), "x" ), Story::InputError );
   EXPECT_EQ( std::distance( fs::directory_iterator( directory.path() ), {} ), 2 );
}

}  // namespace
