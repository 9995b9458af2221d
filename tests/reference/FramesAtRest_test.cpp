// Every kind of frame goes where the reference says, whenever the switch of a random story is at
// rest. The stories run in this program, without documents in between, so many frames are judged:
//
//    VORNAL_FRAMES=10000000 VORNAL_SEED=7 build/release/test-reference
//    --gtest_filter='FramesAtRest.*'
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <random>

#include <gtest/gtest.h>

#include <Folder.h>
#include <Judgement.h>
#include <Rest.h>
#include <Shorter.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using Moves::Plot;

std::uint64_t numberOf( char const * variable, std::uint64_t other ) {
   char const * const given = std::getenv( variable );
   return given ? std::strtoull( given, nullptr, 10 ) : other;
}

fs::path plugIn() {
   char const * const given = std::getenv( "VORNAL_TEST_PLUGIN" );
   return given ? given : VORNAL_BINARY_DIR "/VornalEvpn.so";
}

// Says at the end of the program how many frames were judged.
struct Total {
   Total() = default;
   Total( Total const & ) = delete;
   Total & operator=( Total const & ) = delete;
   ~Total() {
      if ( frames > 0 ) {
         std::cout << frames << " frames judged\n";
      }
   }

   std::uint64_t frames = 0;
};
Total total;

// --- Stories

class Plots {
 public:
   explicit Plots( std::uint64_t seed ) : random_( seed ) {}

   // Half of the switches have room for everything.
   Plot next() {
      Plot plot;
      plot.world.isCalm = below( 2 ) == 0;
      plot.world.variant = below( 2 ) == 0 ? "egress-mask" : "class-id";
      if ( !plot.world.isCalm ) {
         plot.world.units = 1 + below( 2 );
         plot.world.ingressEntries = below( 2 ) == 0 ? 64 : 2 + below( 8 );
         plot.world.egressEntries = below( 2 ) == 0 ? 64 : below( 8 );
         plot.world.hasVniRules = below( plot.world.units == 1 ? 6 : 2 ) == 0;
      }
      plot.world.movesBeforeReady = below( 12 );
      std::vector< unsigned > const kinds = someKinds();
      auto const all = static_cast< unsigned >( kinds.size() );
      for ( unsigned moves = 10 + below( 40 ); moves > 0; --moves ) {
         plot.moves.push_back(
            { kinds[ below( all ) ], below( 12 ), below( 12 ), below( 12 ), below( 8 ) == 7 } );
      }
      return plot;
   }

 private:
   // About half of them, which are more often in a story then.
   std::vector< unsigned > someKinds() {
      std::vector< unsigned > kinds{ 0 };
      for ( unsigned kind = 1; kind < Moves::kKinds; ++kind ) {
         if ( below( 2 ) == 0 ) {
            kinds.push_back( kind );
         }
      }
      return kinds;
   }

   unsigned below( unsigned end ) { return static_cast< unsigned >( random_() % end ); }

   std::mt19937_64 random_;
};

// --- One story in a process of its own

// The process writes it, and ends before it is read.
class SharedOutcome {
 public:
   SharedOutcome()
         : memory_( mmap( nullptr, sizeof( Rest::Outcome ), PROT_READ | PROT_WRITE,
                          MAP_SHARED | MAP_ANONYMOUS, -1, 0 ) ) {}
   SharedOutcome( SharedOutcome const & ) = delete;
   SharedOutcome & operator=( SharedOutcome const & ) = delete;
   ~SharedOutcome() { munmap( memory_, sizeof( Rest::Outcome ) ); }

   Rest::Outcome & operator*() const { return *static_cast< Rest::Outcome * >( memory_ ); }
   Rest::Outcome * operator->() const { return &**this; }

 private:
   void * memory_;
};

class FramesAtRest : public testing::Test {
 protected:
   FramesAtRest() : frames_( Frames::framesIn( folder_.path() ) ) {}

   // The difference, if there is any.
   std::string judge( Plot const & plot ) {
      return judge( Rest::storyWithoutFrames( storyOf( plot.world, plot.moves ) ) );
   }
   std::string judge( Moves::Story const & story ) {
      *outcome_ = {};
      pid_t const child = fork();
      if ( child == 0 ) {
         beTheSwitch( story );
      }
      int status = 0;
      waitpid( child, &status, 0 );
      judged_ += outcome_->frames;
      return WIFEXITED( status ) ? outcome_->difference.data() : judgeStop( story );
   }

   void makeShorter( Plot const & plot ) {
      auto const end = Clock::now() + std::chrono::seconds( 20 );
      shorter( plot, [ & ]( Plot const & other ) {
         std::string const difference = Clock::now() < end ? judge( other ) : "";
         if ( !difference.empty() ) {
            difference_ = difference;
         }
         return !difference.empty();
      } );
   }

   std::uint64_t judged_ = 0;
   std::string difference_;

 private:
   [[noreturn]] void beTheSwitch( Moves::Story const & story ) {
      dup2( open( "/dev/null", O_WRONLY | O_CLOEXEC ), STDERR_FILENO );
      try {
         Rest::play( story, frames_, plugIn(), *outcome_ );
      } catch ( std::exception const & refused ) {
         outcome_->differs( refused.what() + ( "\n" + story.text() ) );
      }
      _exit( EXIT_SUCCESS );
   }

   // The plug-in has stopped. Whether it must is a question for the program and the whole history.
   std::string judgeStop( Moves::Story const & story ) {
      fs::path const file = folder_.path() / "scenario.yaml";
      std::ofstream( file ) << story.text();
      Judgement const judgement = judgementOf( file );
      return judgement.isOff() ? judgement.text() + "\n" + story.text() : "";
   }

   Folder folder_;
   std::vector< Frames::Arriving > frames_;
   SharedOutcome outcome_;
};

TEST_F( FramesAtRest, GoWhereTheReferenceSays ) {
   std::uint64_t const seed = numberOf( "VORNAL_SEED", 20261123 );
   std::uint64_t const goal = numberOf( "VORNAL_FRAMES", 50000 );
   std::cout << "VORNAL_SEED=" << seed << " VORNAL_FRAMES=" << goal << std::endl;
   Plots plots( seed );
   while ( judged_ < goal && difference_.empty() ) {
      Plot const plot = plots.next();
      difference_ = judge( plot );
      if ( !difference_.empty() ) {
         makeShorter( plot );
      }
   }
   EXPECT_TRUE( difference_.empty() ) << difference_;
   total.frames = judged_;
}

// --- Stories that were found

// On a calm switch.
Moves::Story storyWith( std::initializer_list< char const * > steps ) {
   Plot plot;
   plot.world.isCalm = true;
   Moves::Story story = Rest::storyWithoutFrames( storyOf( plot.world, {} ) );
   for ( char const * const yaml : steps ) {
      story.steps.push_back( { yaml } );
   }
   return story;
}

// Two interfaces have one port meanwhile, so that no frame comes and nothing is forgotten.
TEST_F( FramesAtRest, FindAVtepThatReturnsBeforeAFrameWhereItWas ) {
   EXPECT_EQ( judge(
                 storyWith( { "ready: subagents::l2Ready",
                              "publish: { vteps: { 10.0.0.2: { virtual-port: 2 } } }",
                              "publish: { interfaces: { Ethernet2: { unit: 0, port: 1 } } }",
                              "withdraw: { vteps: [ 10.0.0.2 ] }",
                              "publish: { vteps: { 10.0.0.2: { virtual-port: 2 } } }",
                              "publish: { interfaces: { Ethernet2: { unit: 0, port: 2 } } }" } ) ),
              "" );
   EXPECT_GT( judged_, 0U );
}

// The plug-in's pass counts it once.
TEST_F( FramesAtRest, FindAPortThatTwoMembersOfAPortChannelHave ) {
   EXPECT_EQ( judge( storyWith( { "ready: subagents::l2Ready",
                                  "publish: { vteps: { 10.0.0.2: { virtual-port: 2 } } }",
                                  "publish: { segments: { Port-Channel1: [ 10.0.0.2 ] } }",
                                  "publish: { interfaces: { Ethernet4: { unit: 0, port: 3 } } }",
                                  "verify: plug-in" } ) ),
              "" );
   EXPECT_GT( judged_, 0U );
}

}  // namespace
