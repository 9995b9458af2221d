#include <Process/Child.h>
#include <Process/LastWords.h>
#include <Process/RingMemory.h>

#include <cstdlib>
#include <iostream>
#include <system_error>

#include <gtest/gtest.h>

#include <Quelm/Assert.h>
#include <Support.h>

#include <signal.h>

namespace {

using Story::Observer;

// --- The last words

TEST( LastWords, ReadAnAssertionAsFileLineFunctionAndExpression ) {
   auto const assertion = Process::assertionIn(
      "TcamEntries.cpp:117: virtual void Vornal::Sm::add(U32, const T&) [with T = int]: Assertion "
      "'rc == BCM_E_NONE && \"installEntry failed\"' failed." );

   ASSERT_TRUE( assertion );
   EXPECT_EQ( assertion->file, "TcamEntries.cpp" );
   EXPECT_EQ( assertion->line, 117 );
   EXPECT_EQ( assertion->function, "virtual void Vornal::Sm::add(U32, const T&) [with T = int]" );
   EXPECT_EQ( assertion->expression, "rc == BCM_E_NONE && \"installEntry failed\"" );
}

TEST( LastWords, SeeNoAssertionInOtherLines ) {
   for ( char const * const line :
         { "", "nothing failed.", "f.cpp:x: g: Assertion 'a' failed.",
           "f.cpp:1: bcm_field_qualify( unit ) API ERROR:Unknown entry (-2)",
           "f.cpp:1: g: Assertion 'a' failed. Or not" } ) {
      EXPECT_FALSE( Process::assertionIn( line ) ) << line;
   }
}

TEST( LastWords, KeepTheLastLinesAndTheLastAssertion ) {
   Process::LastWords words;
   words.lineNew( "f.cpp:1: f: Assertion 'first' failed." );
   words.lineNew( "f.cpp:2: f: Assertion 'second' failed." );
   for ( std::size_t n = 0; n < Process::LastWords::kMostLines; ++n ) {
      words.lineNew( "line " + std::to_string( n ) );
   }

   EXPECT_EQ( words.lines().size(), Process::LastWords::kMostLines );
   EXPECT_EQ( words.lines().front(), "line 0" );
   EXPECT_EQ( words.assertion()->expression, "second" );
}

// --- A child process

class Child : public testing::Test {
 protected:
   void run( Process::Work const & work ) { Process::runInChild( work, ring.bytes(), story ); }

   // What is told when the process stops.
   Story::Stopped stopped() const { return story.all< Story::Stopped >().at( 0 ); }

   Process::RingMemory ring;
   Support::Recorder story;
};

TEST_F( Child, HandsOnEveryEventInOrderAndSaysNothingMoreWhenAllWentWell ) {
   run( []( Observer & observer ) {
      for ( U32 n = 0; n < 5000; ++n ) {
         observer.onEvent( Story::StepEnds{ n } );
      }
      observer.onEvent( Story::RunEnds{ 0 } );
   } );

   auto const told = story.all< Story::StepEnds >();
   ASSERT_EQ( told.size(), 5000U );
   for ( U32 n = 0; n < told.size(); ++n ) {
      ASSERT_EQ( told[ n ].number, n );
   }
   EXPECT_TRUE( std::holds_alternative< Story::RunEnds >( story.events().back() ) );
}

TEST_F( Child, TellsOfAFailedAssertionAndLosesNothingThatWasToldBefore ) {
   run( []( Observer & observer ) {
      observer.onEvent( Story::StepBegins{ Story::StepKind::Scenario, 7, "the step", "" } );
      QUELM_ASSERT( 1 > 2 && "one is more than two" );
   } );

   EXPECT_EQ( story.all< Story::StepBegins >().at( 0 ).number, 7U );
   EXPECT_EQ( stopped().reason, "signal 6 (Aborted)" );
   ASSERT_TRUE( stopped().assertion );
   EXPECT_EQ( stopped().assertion->file, "Process_test.cpp" );
   EXPECT_EQ( stopped().assertion->expression, "1 > 2 && \"one is more than two\"" );
   EXPECT_EQ( stopped().output.size(), 1U );
   EXPECT_TRUE( std::holds_alternative< Story::Stopped >( story.events().back() ) );
}

TEST_F( Child, NamesTheSignalThatEndedIt ) {
   run( []( Observer & ) { raise( SIGKILL ); } );

   EXPECT_EQ( stopped().reason, "signal 9 (Killed)" );
   EXPECT_FALSE( stopped().assertion );
}

TEST_F( Child, CountsAnEarlyExitAsAStop ) {
   run( []( Observer & ) { std::_Exit( 0 ); } );

   EXPECT_EQ( stopped().reason, "exit code 0" );
}

TEST_F( Child, CountsABadExitAfterTheEndAsAStop ) {
   run( []( Observer & observer ) {
      observer.onEvent( Story::RunEnds{ 0 } );
      std::_Exit( 23 );
   } );

   EXPECT_EQ( stopped().reason, "exit code 23" );
}

TEST_F( Child, HandsOnWhatItPrintsLineByLineAndPrintsNothingItself ) {
   testing::internal::CaptureStdout();
   run( []( Observer & observer ) {
      std::cout << "to standard output" << std::endl;
      std::cerr << "to standard error, and no line end";
      observer.onEvent( Story::RunEnds{ 0 } );
   } );

   EXPECT_EQ( testing::internal::GetCapturedStdout(), "" );
   auto const lines = story.all< Story::OutputLine >();
   ASSERT_EQ( lines.size(), 2U );
   EXPECT_EQ( lines[ 0 ].text, "to standard output" );
   EXPECT_EQ( lines[ 1 ].text, "to standard error, and no line end" );
}

TEST_F( Child, LeavesTheLastLinesOfItsTraceRingBehind ) {
   run( [ this ]( Observer & ) {
      Trace::Ring lines( ring.bytes() );
      for ( int n = 0; n < 30; ++n ) {
         lines.lineNew( { "Handle", 5, "line " + std::to_string( n ) } );
      }
      std::abort();
   } );

   ASSERT_EQ( stopped().trace.size(), 20U );
   EXPECT_EQ( stopped().trace.front().text, "line 10" );
   EXPECT_EQ( stopped().trace.back().text, "line 29" );
   EXPECT_EQ( stopped().trace.back().handle, "Handle" );
   EXPECT_EQ( stopped().trace.back().level, 5 );
}

// --- The memory of the ring

TEST( RingMemory, IsAFileThatCanBeReadWhenTheProcessHasGone ) {
   Support::Directory const directory;
   auto const file = directory.path() / "ring";
   Support::Recorder story;
   {
      Process::RingMemory const memory( file );
      Process::runInChild(
         [ & ]( Observer & ) {
            Trace::Ring( memory.bytes() ).lineNew( { "Handle", 2, "the last line" } );
            std::abort();
         },
         memory.bytes(), story );
   }

   std::string const content = Support::contentOf( file );
   auto const lines = Trace::Ring::decode( std::as_bytes( std::span( content ) ) );
   ASSERT_EQ( lines.size(), 1U );
   EXPECT_EQ( lines[ 0 ].text, "the last line" );
}

TEST( RingMemory, SaysWhichFileCannotBeWritten ) {
   try {
      Process::RingMemory const memory( "/nowhere/ring" );
      FAIL() << "a ring in a directory that does not exist";
   } catch ( std::system_error const & error ) {
      EXPECT_NE( std::string( error.what() ).find( "/nowhere/ring" ), std::string::npos );
   }
}

TEST( RingMemory, HasNoLastLinesWhenNoRingWasMadeInIt ) {
   Process::RingMemory const memory;

   EXPECT_TRUE( Process::lastLines( memory.bytes(), 20 ).empty() );
}

}  // namespace
