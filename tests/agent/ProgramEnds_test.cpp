// The program when a run does not come to its end: a plug-in that hangs, somebody who interrupts,
// and a plug-in that prints more than anybody wants to read.
#include <memory>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <Running.h>
#include <Support.h>
#include <Switches.h>

#include <fcntl.h>

namespace {

using Json = nlohmann::json;
using Support::Running;
using Support::TestPipe;
using Words = std::vector< std::string >;

std::string call( std::string const & operation ) {
   return "   - call: { entity: /plugins/Sample::Mounter, operation: " + operation + " }\n";
}

class ProgramEnds : public testing::Test {
 protected:
   Words words( std::string const & command, std::string const & steps, Words const & more ) {
      Words words{ command, directory.file( "leaf.yaml", Switches::leaf( steps ) ) };
      words.insert( words.end(), more.begin(), more.end() );
      words.insert( words.end(), { "--plugin", Support::testPlugin( "segment-rules" ) } );
      return words;
   }

   // Starts a run that hangs in step 2, and waits until it is there.
   std::unique_ptr< Running > hanging( std::string const & command, Words more ) {
      more.insert( more.end(), { "--turn-limit", "0" } );
      auto running = std::make_unique< Running >( words( command, hangs, more ),
                                                  Running::Streams{ null, out.in(), err.in() } );
      out.closeEnd( 1 );
      err.closeEnd( 1 );
      return running;
   }

   Support::Directory directory;
   std::string const hangs = "   - ready: subagents::l2Ready\n" + call( "hang" );
   int const null = open( "/dev/null", O_RDWR | O_CLOEXEC );
   TestPipe out;
   TestPipe err;
};

// --- A plug-in that hangs

TEST_F( ProgramEnds, With3AndTheStepWhenATurnExceedsItsLimit ) {
   auto const ran = Support::vornal( words( "run", hangs, { "--turn-limit", "2" } ) );

   EXPECT_EQ( ran.exitCode, 3 );
   EXPECT_TRUE(
      Support::contains( ran.out,
                         "\nSTOPPED in step 2: a turn did not come to its end, and the process of "
                         "the plug-in was ended by the turn limit of 2 s; --turn-limit allows "
                         "more.\n" ) )
      << ran.out;
   EXPECT_TRUE( Support::contains( ran.out, "The last lines that it printed:\n   hanging\n" ) )
      << ran.out;
}

TEST_F( ProgramEnds, With3InEveryCommandWhenATurnExceedsItsLimit ) {
   auto const run = Support::vornal( words( "run", hangs, { "--json", "--turn-limit", "2" } ) );
   EXPECT_EQ( run.exitCode, 3 );
   EXPECT_EQ( Json::parse( run.out )[ "end" ], "stopped" );
   EXPECT_EQ( Json::parse( run.out )[ "step" ], 2 );
   EXPECT_EQ( Json::parse( run.out )[ "stop" ][ "reason" ], "turn limit of 2 s" );

   auto const show = Support::vornal( words( "show", hangs, { "entities", "--turn-limit", "2" } ) );
   EXPECT_EQ( show.exitCode, 3 );
   EXPECT_TRUE( Support::contains( show.err, "STOPPED in step 2: a turn" ) ) << show.err;

   auto const verify = Support::vornal( words( "verify", hangs, { "--turn-limit", "2" } ) );
   EXPECT_EQ( verify.exitCode, 3 );
   EXPECT_TRUE( Support::contains( verify.err, "STOPPED in step 2: a turn" ) ) << verify.err;
}

TEST_F( ProgramEnds, With2WhenATurnLimitIsNoTime ) {
   for ( char const * const limit : { "-1", "soon", "nan", "1e9" } ) {
      auto const ran =
         Support::vornal( words( "run", hangs, { std::string( "--turn-limit=" ) + limit } ) );
      EXPECT_EQ( ran.exitCode, 2 ) << limit;
      EXPECT_TRUE( Support::contains( ran.err, "--turn-limit" ) ) << ran.err;
   }
}

// --- Somebody who interrupts

TEST_F( ProgramEnds, With130AndTheTotalsSoFarOnCtrlC ) {
   auto const running = hanging( "run", {} );
   std::string story = out.read( "step 2: call" );
   running->signal( SIGINT );
   story += out.read();

   EXPECT_EQ( running->wait(), 130 );
   EXPECT_TRUE( Support::contains(
      story,
      "\nINTERRUPTED in step 2 by signal 2 (Interrupt); so far 0 expectations, 0 "
      "of which did not hold, and 1 rule in the chip.\n" ) )
      << story;
}

TEST_F( ProgramEnds, With143AndADocumentWhenItIsTerminated ) {
   auto const running = hanging( "run", { "--json" } );
   EXPECT_EQ( err.read( "\n" ), "hanging\n" );
   running->signal( SIGTERM );
   Json const document = Json::parse( out.read() );

   EXPECT_EQ( running->wait(), 143 );
   EXPECT_EQ( document[ "end" ], "interrupted" );
   EXPECT_EQ( document[ "step" ], 2 );
   EXPECT_EQ( document[ "rules" ].size(), 1U );
   EXPECT_EQ( err.read(), "interrupted in step 2 by signal 15 (Terminated)\n" );
}

TEST_F( ProgramEnds, With129AndADocumentWhenItsTerminalIsGone ) {
   auto const running = hanging( "run", { "--json" } );
   EXPECT_EQ( err.read( "\n" ), "hanging\n" );
   running->signal( SIGHUP );
   Json const document = Json::parse( out.read() );

   EXPECT_EQ( running->wait(), 129 );
   EXPECT_EQ( document[ "end" ], "interrupted" );
   EXPECT_EQ( err.read(), "interrupted in step 2 by signal 1 (Hangup)\n" );
}

TEST_F( ProgramEnds, With130AndADocumentWhenAVerificationIsInterrupted ) {
   Running running( words( "verify", call( "interrupt" ), { "--json" } ),
                    { null, out.in(), err.in() } );
   out.closeEnd( 1 );
   err.closeEnd( 1 );
   Json const document = Json::parse( out.read() );

   EXPECT_EQ( running.wait(), 130 );
   EXPECT_EQ( document[ "end" ], "interrupted" );
   EXPECT_EQ( document[ "step" ], 1 );
   EXPECT_EQ( document[ "pluginPass" ], "not-run" );
   EXPECT_EQ( err.read(), "interrupted in step 1 by signal 2 (Interrupt)\n" );
}

TEST_F( ProgramEnds, With130AlthoughNobodyReadsItsOutput ) {
   std::string const length = "5000000";  // more than any pipe takes
   std::string const print =
      "   - call: { entity: /plugins/Sample::Mounter, operation: printLong, arguments: [ '" +
      length + "' ] }\n";
   for ( int const error : { err.in(), out.in() } ) {
      TestPipe unread;
      TestPipe watched;
      Running running( words( "run", print, {} ),
                       { null, unread.in(), error == out.in() ? unread.in() : watched.in() } );
      unread.closeEnd( 1 );
      EXPECT_TRUE( Support::contains( unread.read( "printed: x" ), "printed: x" ) );
      running.signal( SIGINT );
      constexpr int kPatience = 60'000;  // in milliseconds; only a failure takes so long
      ASSERT_TRUE( running.ends( kPatience ) );

      EXPECT_EQ( running.wait(), 130 );
   }
}

// --- Two runs

TEST_F( ProgramEnds, AsItWouldAlthoughAnotherRunWantsItsTraceRing ) {
   std::string const ring = directory.path() / "ring";
   auto const first = hanging( "run", { "--json", "--ring", ring } );
   EXPECT_EQ( err.read( "\n" ), "hanging\n" );

   auto const second = Support::vornal( words( "run", hangs, { "--ring", ring } ) );
   EXPECT_EQ( second.exitCode, 2 );
   EXPECT_EQ( second.out, "" );
   EXPECT_TRUE( Support::contains( second.err,
                                   ring + " is the ring of a run that goes on; name a new file" ) )
      << second.err;

   first->signal( SIGINT );
   out.read();
   EXPECT_EQ( first->wait(), 130 );
   EXPECT_TRUE( Support::contains( Support::vornal( { "ring", ring } ).out,
                                   "Sample 5: handleSegment intfId: Ethernet1" ) );
}

// --- A plug-in that prints a lot

TEST_F( ProgramEnds, WellWhateverTheLengthOfALineThatThePlugInPrints ) {
   for ( std::string const length : { "26100", "300000", "5000000" } ) {
      std::string const step =
         "   - call: { entity: /plugins/Sample::Mounter, operation: "
         "printLong, arguments: [ '" +
         length + "' ] }\n";
      auto const ran = Support::vornal( words( "run", step, {} ) );

      EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
      EXPECT_TRUE( Support::contains( ran.out, "   printed: xxxxx" ) ) << length;
      EXPECT_TRUE( Support::contains( ran.out, "\nCOMPLETED; " ) ) << length;
   }
}

}  // namespace
