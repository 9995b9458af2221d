// The program reads records that were cut or changed: it answers about the part in front of the
// damage, or refuses the record, and names the place.
#include <cstdio>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <Running.h>
#include <Support.h>
#include <Switches.h>

#include <fcntl.h>

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using Support::Ran;
using Words = std::vector< std::string >;

// Places all over the file are tried.
constexpr std::size_t kPlaces = 40;

// Of the scenario that is recorded.
constexpr std::size_t kSteps = 4;

class RecordDamaged : public testing::Test {
 protected:
   static Words with( Words words ) {
      words.insert( words.end(), { "--plugin", Support::testPlugin( "segment-rules" ) } );
      return words;
   }
   std::string leaf( std::string const & steps ) const {
      return directory.file( "leaf.yaml",
                             Switches::leaf( "   - ready: subagents::l2Ready\n" + steps ) );
   }
   // The bytes of the record of a run with those steps.
   std::string recorded() const {
      std::string const steps =
         "   - publish: { segments: { Ethernet2: [ 10.0.0.2 ] } }\n"
         "   - withdraw: { segments: [ Ethernet1 ] }\n"
         "   - publish: { segments: { Ethernet1: [ 10.0.0.2 ] } }\n";
      EXPECT_EQ( Support::vornal( with( { "run", leaf( steps ), "--record", record } ) ).exitCode,
                 0 );
      return Support::contentOf( record );
   }

   // The program answers on standard output; or it refuses the record on standard error, with 2.
   Ran answer( std::string const & command, Words const & more, std::string const & bytes ) const {
      directory.file( "run.record", bytes );
      Words words{ command, record };
      words.insert( words.end(), more.begin(), more.end() );
      Ran ran = Support::vornal( with( words ) );
      EXPECT_TRUE( ran.exitCode == 0 || ran.exitCode == 2 ) << ran.exitCode << ran.out << ran.err;
      EXPECT_TRUE( ran.exitCode == 0 || !ran.err.empty() );
      EXPECT_EQ( ran.out.empty(), ran.exitCode == 2 ) << ran.out;
      return ran;
   }
   static bool namesAPlace( std::string const & text ) {
      return Support::contains( text, "after start-up" ) ||
             Support::contains( text, "after step " ) ||
             Support::contains( text, " of the file: " ) ||
             Support::contains( text, "run.record:" );
   }
   void expectPlace( std::string const & bytes ) const {
      Ran const ran = answer( "replay", {}, bytes );
      EXPECT_TRUE( namesAPlace( ran.exitCode == 0 ? ran.out : ran.err ) ) << ran.out << ran.err;
   }
   // The rules are those of the last whole step, as `replay` names it. No rule is there after
   // teardown, and a question is about the last step before it.
   void expectRules( Words const & ofSteps, std::string const & bytes ) const {
      Ran const ran = answer( "show", { "rules" }, bytes );
      if ( ran.exitCode == 2 ) {
         EXPECT_TRUE( namesAPlace( ran.err ) ) << ran.err;
         return;
      }
      auto const cut = Json::parse( answer( "replay", { "--json" }, bytes ).out )[ "cut" ];
      std::string const text = cut.is_null() ? "" : cut.get< std::string >();
      std::size_t step = text.starts_with( "after start-up" ) ? 0 : kSteps;
      std::sscanf( text.c_str(), "after step %zu", &step );
      EXPECT_EQ( ran.out, ofSteps.at( step ) ) << text;
      EXPECT_EQ( ran.err, text.empty() ? "" : record + ": the record is cut " + text + '\n' );
   }
   // What the whole record has to say about start-up and each step.
   Words rulesOfSteps( std::string const & bytes ) const {
      Words rules;
      for ( std::size_t step = 0; step <= kSteps; ++step ) {
         rules.push_back(
            answer( "show", { "rules", "--after", std::to_string( step ) }, bytes ).out );
      }
      return rules;
   }

   // Calls `what` with the bytes cut at places from the first to the last.
   static void cutEverywhere( std::string const & bytes, auto const & what ) {
      for ( std::size_t n = 0; n < kPlaces; ++n ) {
         std::size_t const size = n * ( bytes.size() - 1 ) / ( kPlaces - 1 );
         SCOPED_TRACE( "cut at byte " + std::to_string( size ) );
         what( bytes.substr( 0, size ) );
      }
   }
   // The same with one byte changed, each time in another way.
   static void changeEverywhere( std::string const & bytes, auto const & what ) {
      for ( std::size_t n = 0; n < kPlaces; ++n ) {
         std::size_t const place = n * ( bytes.size() - 1 ) / ( kPlaces - 1 );
         SCOPED_TRACE( "byte " + std::to_string( place ) + " is changed" );
         std::string damaged = bytes;
         damaged[ place ] = static_cast< char >( damaged[ place ] ^ static_cast< char >( n + 1 ) );
         what( damaged );
      }
   }

   Support::Directory directory;
   std::string const record = directory.path() / "run.record";
};

TEST_F( RecordDamaged, IsReplayedUpToThePlaceAtWhichItIsCut ) {
   cutEverywhere( recorded(), [ & ]( std::string const & bytes ) { expectPlace( bytes ); } );
}

TEST_F( RecordDamaged, IsReplayedUpToThePlaceAtWhichAByteIsWrong ) {
   changeEverywhere( recorded(), [ & ]( std::string const & bytes ) { expectPlace( bytes ); } );
}

TEST_F( RecordDamaged, HasTheRulesOfAWholeStepWhereverItIsCut ) {
   std::string const whole = recorded();
   auto const rules = rulesOfSteps( whole );
   cutEverywhere( whole, [ & ]( std::string const & bytes ) { expectRules( rules, bytes ); } );
}

TEST_F( RecordDamaged, HasTheRulesOfAWholeStepWhicheverByteIsWrong ) {
   std::string const whole = recorded();
   auto const rules = rulesOfSteps( whole );
   changeEverywhere( whole, [ & ]( std::string const & bytes ) { expectRules( rules, bytes ); } );
}

// The run cannot come to its end: its lines fill the pipe, and nobody reads on.
TEST_F( RecordDamaged, HoldsTheStepsThatHaveEndedWhenTheProgramIsKilled ) {
   std::string notes;
   for ( int n = 0; n < 3000; ++n ) {
      notes += "   - note: a text that takes its place in the pipe\n";
   }
   Support::TestPipe out;
   Support::TestPipe err;
   int const null = open( "/dev/null", O_RDWR | O_CLOEXEC );
   Support::Running running( with( { "run", leaf( notes ), "--record", record, "--events" } ),
                             { null, out.in(), err.in() } );
   close( null );
   out.closeEnd( 1 );
   std::string const end = R"("event":"stepEnds","number":7})";
   EXPECT_TRUE( Support::contains( out.read( end ), end ) );
   running.signal( SIGKILL );
   EXPECT_EQ( running.wait(), -1 );

   auto const ran = Support::vornal( with( { "replay", record, "--json" } ) );
   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   auto const json = Json::parse( ran.out );
   EXPECT_EQ( json[ "end" ], "cut" );
   EXPECT_GE( json[ "step" ][ "number" ], 7 );
   EXPECT_EQ( json[ "cut" ],
              "after step " + std::to_string( json[ "step" ][ "number" ].get< int >() ) );
}

}  // namespace
