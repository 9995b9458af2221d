// The program with each of its standard streams closed, full, slow or without a reader: for every
// command there is one outcome, and a message that says which output is not complete.
#include <map>

#include <gtest/gtest.h>

#include <Running.h>
#include <Support.h>
#include <Switches.h>

#include <fcntl.h>
#include <unistd.h>

namespace {

using Support::kClosed;
using Support::Running;
using Support::TestPipe;
using Words = std::vector< std::string >;

constexpr std::size_t kInput = 0;
constexpr std::size_t kOutput = 1;
constexpr std::size_t kError = 2;

class ProgramStreams : public testing::Test {
 protected:
   ProgramStreams() {
      leaf = directory.file( "leaf.yaml", Switches::leaf( "   - ready: subagents::l2Ready\n"
                                                          "   - expect: { plug-in: ready }\n" ) );
      wrong = directory.file( "wrong.yaml", Switches::leaf( "   - raedy: nothing\n" ) );
      EXPECT_EQ( Support::vornal( with( { "run", leaf, "--ring", ring() } ) ).exitCode, 0 );
   }
   ~ProgramStreams() override {
      close( null );
      close( full );
   }

   std::string ring() const { return directory.path() / "ring"; }

   static Words with( Words words ) {
      words.insert( words.end(), { "--plugin", Support::testPlugin( "segment-rules" ) } );
      return words;
   }

   // Commands of every kind, in each form of their output.
   std::vector< Words > commands() const {
      return { with( { "run", leaf } ),
               with( { "run", "--json", leaf } ),
               with( { "show", leaf, "entities" } ),
               with( { "show", "--json", leaf, "entities", "/evpn/status" } ),
               with( { "verify", leaf } ),
               with( { "verify", "--json", leaf } ),
               { "ring", ring() },
               { "--help" } };
   }

   struct Ended {
      int exitCode = 0;
      std::string out;
      std::string err;
   };

   // Standard output and error go to files unless one of them is given.
   Ended run( Words const & words, std::map< std::size_t, int > const & given ) const {
      std::string const outFile = directory.path() / "out";
      std::string const errFile = directory.path() / "err";
      int const flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC;
      int const out = open( outFile.c_str(), flags, 0600 );
      int const err = open( errFile.c_str(), flags, 0600 );
      Running::Streams streams{ null, out, err };
      for ( auto const & [ stream, fd ] : given ) {
         streams.at( stream ) = fd;
      }
      int const exitCode = Running( words, streams ).wait();
      close( out );
      close( err );
      return { exitCode, Support::contentOf( outFile ), Support::contentOf( errFile ) };
   }

   // A command's exit code when nothing is wrong with its streams. The audit does not know the
   // rules of this plug-in.
   static int usualCode( Words const & words ) { return words[ 0 ] == "verify" ? 1 : 0; }

   // What a command does then.
   Ended asUsual( Words const & words ) const {
      Ended const ended = run( words, {} );
      EXPECT_EQ( ended.exitCode, usualCode( words ) )
         << testing::PrintToString( words ) << ended.err;
      EXPECT_NE( ended.out, "" ) << testing::PrintToString( words );
      EXPECT_EQ( ended.err, "" ) << testing::PrintToString( words );
      return ended;
   }

   // Every command ends with 2 and that message when standard output is that descriptor.
   void expectRefusal( int output, std::string const & message ) const {
      for ( Words const & words : commands() ) {
         Ended const ended = run( words, { { kOutput, output } } );

         EXPECT_EQ( ended.exitCode, 2 ) << testing::PrintToString( words );
         EXPECT_EQ( ended.err, message ) << testing::PrintToString( words );
      }
   }

   Support::Directory directory;
   std::string leaf;
   std::string wrong;
   int const null = open( "/dev/null", O_RDWR | O_CLOEXEC );
   int const full = open( "/dev/full", O_RDWR | O_CLOEXEC );
};

// --- Standard input

TEST_F( ProgramStreams, StandardInputDoesNotMatter ) {
   TestPipe silent;
   for ( Words const & words : commands() ) {
      std::string const usual = asUsual( words ).out;
      for ( int const input : { kClosed, full, silent.out(), silent.in() } ) {
         Ended const ended = run( words, { { kInput, input } } );

         EXPECT_EQ( ended.exitCode, usualCode( words ) )
            << testing::PrintToString( words ) << ended.err;
         EXPECT_EQ( ended.out, usual );
         EXPECT_EQ( ended.err, "" );
      }
   }
}

// --- Standard output

TEST_F( ProgramStreams, StandardOutputThatIsClosedIsTold ) {
   expectRefusal(
      kClosed, "cannot write standard output: Bad file descriptor; its content is not complete\n" );
}

TEST_F( ProgramStreams, StandardOutputThatIsClosedDoesNotGetIntoTheTraceRing ) {
   Words const words = with( { "run", leaf, "--ring", ring() } );

   EXPECT_EQ( run( words, { { kOutput, kClosed } } ).exitCode, 2 );
   EXPECT_EQ( run( { "ring", ring() }, {} ).exitCode, 0 );
}

TEST_F( ProgramStreams, StandardOutputThatIsFullIsTold ) {
   expectRefusal( full,
                  "cannot write standard output (/dev/full): No space left on device; its content "
                  "is not complete\n" );
}

TEST_F( ProgramStreams, StandardOutputThatNobodyReadsAnyMoreIsTold ) {
   TestPipe unread;
   unread.closeEnd( 0 );
   expectRefusal( unread.in(),
                  "cannot write standard output: Broken pipe; its content is not complete\n" );
}

TEST_F( ProgramStreams, StandardOutputWhoseReaderLeavesAfterTheFirstLineIsTold ) {
   TestPipe pipe;
   // Less than the program has to say.
   fcntl( pipe.in(), F_SETPIPE_SZ, 4096 );
   TestPipe err;
   Running running( with( { "run", "--json", leaf } ), { null, pipe.in(), err.in() } );
   pipe.closeEnd( 1 );
   err.closeEnd( 1 );
   EXPECT_EQ( pipe.read( "\n" ), "{\n" );
   pipe.closeEnd( 0 );

   EXPECT_EQ( running.wait(), 2 );
   EXPECT_EQ( err.read(),
              "cannot write standard output: Broken pipe; its content is not complete\n" );
}

TEST_F( ProgramStreams, ASlowReaderOfStandardOutputGetsEverything ) {
   for ( Words const & words : commands() ) {
      TestPipe slow;
      fcntl( slow.in(), F_SETPIPE_SZ, 4096 );
      Running running( words, { null, slow.in(), null } );
      slow.closeEnd( 1 );
      std::string const read = slow.read();

      EXPECT_EQ( running.wait(), usualCode( words ) ) << testing::PrintToString( words );
      EXPECT_EQ( read, asUsual( words ).out ) << testing::PrintToString( words );
   }
}

// --- Standard error

TEST_F( ProgramStreams, StandardErrorDoesNotMatterWhenThereIsNothingToTell ) {
   TestPipe unread;
   unread.closeEnd( 0 );
   for ( Words const & words : commands() ) {
      std::string const usual = asUsual( words ).out;
      for ( int const error : { kClosed, full, unread.in() } ) {
         Ended const ended = run( words, { { kError, error } } );

         EXPECT_EQ( ended.exitCode, usualCode( words ) ) << testing::PrintToString( words );
         EXPECT_EQ( ended.out, usual ) << testing::PrintToString( words );
      }
   }
}

TEST_F( ProgramStreams, BadInputIsBadInputAlthoughNobodyCanBeTold ) {
   TestPipe unread;
   unread.closeEnd( 0 );
   for ( Words const & words :
         { with( { "run", wrong } ), with( { "show", wrong, "entities" } ),
           with( { "verify", wrong } ), Words{ "ring", wrong }, Words{ "walk" } } ) {
      EXPECT_NE( run( words, {} ).err, "" ) << testing::PrintToString( words );
      for ( int const error : { kClosed, full, unread.in() } ) {
         Ended const ended = run( words, { { kError, error } } );

         EXPECT_EQ( ended.exitCode, 2 ) << testing::PrintToString( words );
         EXPECT_EQ( ended.out, "" ) << testing::PrintToString( words );
      }
   }
}

// --- All of them

TEST_F( ProgramStreams, NothingOfARunReachesAStreamThatIsClosed ) {
   for ( Words const & words : commands() ) {
      EXPECT_EQ(
         run( words, { { kInput, kClosed }, { kOutput, kClosed }, { kError, kClosed } } ).exitCode,
         2 )
         << testing::PrintToString( words );
   }
}

}  // namespace
