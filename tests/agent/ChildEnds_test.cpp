// Whatever the process of the agent prints and however it ends, its parent survives and tells it.
#include <Process/Child.h>

#include <array>
#include <chrono>
#include <cstring>
#include <new>
#include <stdexcept>

#include <gtest/gtest.h>

#include <Kiv/Activity.h>
#include <Process/RingMemory.h>
#include <Support.h>

#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;
using Story::Observer;

class ChildEnds : public testing::Test {
 protected:
   void run( Process::Work const & work, std::chrono::milliseconds turnLimit = 0ms ) {
      Process::runInChild( work, ring.bytes(), story, turnLimit );
   }
   Story::Stopped stopped() const { return story.all< Story::Stopped >().at( 0 ); }
   bool isAnyStopped() const { return !story.all< Story::Stopped >().empty(); }

   Process::RingMemory ring;
   Support::Recorder story;
};

constexpr int kPatience = 10'000;  // in milliseconds; only a failure takes so long

[[noreturn]] void hang() {
   while ( true ) {
      pause();
   }
}

// --- Whatever it prints

TEST_F( ChildEnds, AfterALineOfAnyLengthAndAnyBytes ) {
   std::string line( 3 * Process::kLongestLine + 7, 'x' );
   line[ 0 ] = '\0';
   line[ 1 ] = '\xff';
   run( [ & ]( Observer & observer ) {
      std::string const text = "first\n" + line + "\nlast\n";
      for ( std::size_t at = 0; at < text.size(); ) {
         at += static_cast< std::size_t >( write( STDERR_FILENO, &text[ at ], text.size() - at ) );
      }
      observer.onEvent( Story::RunEnds{} );
   } );

   EXPECT_FALSE( isAnyStopped() );
   auto const told = story.all< Story::OutputLine >();
   std::string all;
   for ( Story::OutputLine const & one : told ) {
      EXPECT_LT( one.text.size(), Process::kLongestLine + 65536 );
      all += one.text;
   }
   EXPECT_EQ( told.front().text, "first" );
   EXPECT_EQ( told.back().text, "last" );
   EXPECT_EQ( all, "first" + line + "last" );
}

TEST_F( ChildEnds, AfterPrintingIntoAPipeThatIsNotItsOwn ) {
   run( []( Observer & observer ) {
      constexpr std::array kNoise{ "noise\n", "{\"event\":\"stepEnds\",\"number\":1.5}\n" };
      for ( int fd = STDERR_FILENO + 1; fd < 100; ++fd ) {
         struct stat status {};
         for ( char const * const noise : kNoise ) {
            if ( fstat( fd, &status ) == 0 && S_ISFIFO( status.st_mode ) ) {
               std::ignore = write( fd, noise, std::strlen( noise ) );
            }
         }
      }
      observer.onEvent( Story::RunEnds{} );
   } );

   EXPECT_FALSE( isAnyStopped() );
   EXPECT_EQ( story.all< Story::OutputLine >().at( 0 ).text, "noise" );
   EXPECT_EQ( story.all< Story::RunEnds >().size(), 1U );
}

TEST_F( ChildEnds, AlthoughAProcessThatItLeftBehindKeepsItsOutputOpen ) {
   std::array< int, 2 > stays{};
   ASSERT_EQ( pipe( stays.data() ), 0 );
   run( [ & ]( Observer & observer ) {
      if ( fork() == 0 ) {
         setsid();  // or it would end with the child
         char byte = 0;
         close( stays[ 1 ] );
         std::ignore = read( stays[ 0 ], &byte, 1 );  // until the test is over
         _exit( 0 );
      }
      observer.onEvent( Story::RunEnds{} );
   } );

   EXPECT_FALSE( isAnyStopped() );
   EXPECT_EQ( story.all< Story::RunEnds >().size(), 1U );
   close( stays[ 0 ] );
   close( stays[ 1 ] );
}

TEST_F( ChildEnds, WithEveryProcessThatAPlugInHasStarted ) {
   std::array< int, 2 > stays{};
   ASSERT_EQ( pipe( stays.data() ), 0 );
   run( []( Observer & observer ) {
      if ( fork() == 0 ) {
         hang();
      }
      observer.onEvent( Story::RunEnds{} );
   } );
   close( stays[ 1 ] );

   // The pipe hangs up when no process is left that could write.
   pollfd hangUp{ stays[ 0 ], 0, 0 };
   EXPECT_EQ( poll( &hangUp, 1, kPatience ), 1 );
   close( stays[ 0 ] );
}

TEST_F( ChildEnds, HavingReadNothingFromStandardInput ) {
   run( []( Observer & observer ) {
      char byte = 0;
      observer.onEvent( Story::StepEnds{ static_cast< U32 >( read( STDIN_FILENO, &byte, 1 ) ) } );
      observer.onEvent( Story::RunEnds{} );
   } );

   EXPECT_EQ( story.all< Story::StepEnds >().at( 0 ).number, 0U );
}

// --- Exceptions

TEST_F( ChildEnds, WithASentenceWhenMemoryRunsOut ) {
   run( []( Observer & ) { throw std::bad_alloc(); } );

   EXPECT_EQ( stopped().reason, "signal 6 (Aborted)" );
   EXPECT_EQ( stopped().output.at( 0 ),
              "there is not enough memory for the process of the plug-in; allow more "
              "(ulimit -v), or play a smaller scenario" );
}

TEST_F( ChildEnds, WhereAnExceptionIsThrownThatNobodyCatches ) {
   run( []( Observer & ) { throw std::runtime_error( "the exception's words" ); } );

   EXPECT_EQ( stopped().reason, "signal 6 (Aborted)" );
   EXPECT_NE( stopped().output.back().find( "the exception's words" ), std::string::npos );
}

// --- A turn that does not end

TEST_F( ChildEnds, ByForceWhenATurnTakesLongerThanItsLimit ) {
   run(
      []( Observer & observer ) {
         observer.onEvent( Story::StepBegins{ Story::StepKind::Scenario, 7, "the step", "" } );
         hang();
      },
      1500ms );

   EXPECT_EQ( story.all< Story::StepBegins >().at( 0 ).number, 7U );
   EXPECT_TRUE( stopped().isOverTime );
   EXPECT_EQ( stopped().reason, "turn limit of 1.5 s" );
}

TEST_F( ChildEnds, ByForceWhenATurnGoesOnTellingWithoutEnd ) {
   run(
      []( Observer & observer ) {
         while ( true ) {
            observer.onEvent( Story::StepEnds{ 1 } );
         }
      },
      50ms );

   EXPECT_TRUE( stopped().isOverTime );
}

TEST_F( ChildEnds, InTimeWhenManyTurnsTogetherTakeLongerThanTheLimitOfOne ) {
   static constexpr auto kLimit = 1000ms;
   run(
      []( Observer & observer ) {
         Kiv::ActivityManager activity;
         auto const end = std::chrono::steady_clock::now() + kLimit + kLimit / 2;
         std::function< void() > const turn = [ & ] {
            if ( std::chrono::steady_clock::now() < end ) {
               activity.turnNew( turn );
            }
         };
         activity.turnNew( turn );
         activity.run();
         observer.onEvent( Story::RunEnds{} );
      },
      kLimit );

   EXPECT_FALSE( isAnyStopped() );
   EXPECT_EQ( story.all< Story::RunEnds >().size(), 1U );
}

TEST_F( ChildEnds, ByForceWhenItHangsAfterItsRunAndWithItsPipesClosed ) {
   run(
      []( Observer & observer ) {
         observer.onEvent( Story::RunEnds{} );
         for ( int fd = 0; fd < 100; ++fd ) {
            close( fd );
         }
         hang();
      },
      50ms );

   EXPECT_TRUE( stopped().isOverTime );
}

// --- Its parent

TEST_F( ChildEnds, WithTheCallWhenAnObserverThrows ) {
   class Full final : public Observer {
    public:
      void onEvent( Story::Event const & event ) override {
         pid = static_cast< pid_t >( std::get< Story::RunEnds >( event ).time );
         throw std::runtime_error( "the disk is full" );
      }
      pid_t pid = 0;
   };
   Full full;
   EXPECT_THROW( Process::runInChild(
                    []( Observer & observer ) {
                       observer.onEvent( Story::RunEnds{ static_cast< U64 >( getpid() ) } );
                       hang();
                    },
                    ring.bytes(), full ),
                 std::runtime_error );
   EXPECT_EQ( kill( full.pid, 0 ), -1 );
   EXPECT_EQ( errno, ESRCH );
}

TEST_F( ChildEnds, WhenItsParentIsInterruptedAndWhatItToldUntilThenIsKept ) {
   for ( int const signal : { SIGINT, SIGTERM, SIGHUP } ) {
      ::signal( signal, SIG_DFL );
      story.clear();
      run( [ & ]( Observer & observer ) {
         observer.onEvent( Story::StepEnds{ static_cast< U32 >( getpid() ) } );
         kill( getppid(), signal );
         hang();
      } );

      EXPECT_FALSE( isAnyStopped() );
      EXPECT_EQ( std::get< Story::Interrupted >( story.events().back() ).signal, signal );
      auto const child = static_cast< pid_t >( story.all< Story::StepEnds >().at( 0 ).number );
      EXPECT_EQ( kill( child, 0 ), -1 );
   }
}

TEST_F( ChildEnds, ByItsParentAndNotBySignalsThatReachBoth ) {
   run( []( Observer & observer ) {
      raise( SIGINT );
      raise( SIGHUP );
      observer.onEvent( Story::RunEnds{} );
   } );

   EXPECT_FALSE( isAnyStopped() );
   EXPECT_EQ( story.all< Story::RunEnds >().size(), 1U );
}

}  // namespace
