// Random stories go as the reference says: on any switch as its history says, and on a calm one as
// the state alone says. A story that does not is made shorter, and printed as a scenario.
//
//    RC_PARAMS="max_success=1000 seed=7" build/release/test-reference
//    --gtest_filter='RandomStories.*'
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <Folder.h>
#include <Judgement.h>
#include <Moves.h>
#include <Shorter.h>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using Moves::Move;
using Moves::Plot;
using Moves::World;

// Each run of the tests is the same, and Shorter.h makes stories shorter. What RC_PARAMS says
// stands above this.
bool const isSeeded = [] {
   char const * const given = std::getenv( "RC_PARAMS" );
   std::string params = given ? given : "";
   for ( std::string const name : { "seed=20261122", "max_success=100", "noshrink=1" } ) {
      if ( params.find( name.substr( 0, name.find( '=' ) + 1 ) ) == std::string::npos ) {
         params += " " + name;
      }
   }
   return setenv( "RC_PARAMS", params.c_str(), 1 ) == 0;
}();

// A scenario that the reader refuses is off, too.
Judgement judgementOn( std::string const & scenario, Claim claim, fs::path const & folder ) {
   fs::path const file = folder / "scenario.yaml";
   std::ofstream( file ) << scenario;
   try {
      return judgementOf( file, claim );
   } catch ( std::exception const & refused ) {
      Judgement judgement;
      judgement.differences = { refused.what() };
      return judgement;
   }
}

// --- What is tried

// Any number below `end`, whatever the size of the case.
rc::Gen< unsigned > below( unsigned end ) {
   return rc::gen::resize( rc::kNominalSize, rc::gen::inRange( 0U, end ) );
}

rc::Gen< Move > anyMoveOf( std::vector< unsigned > const & kinds ) {
   auto const few = below( 12 );
   return rc::gen::build< Move >(
      rc::gen::set( &Move::kind, rc::gen::elementOf( kinds ) ), rc::gen::set( &Move::place, few ),
      rc::gen::set( &Move::who, few ), rc::gen::set( &Move::number, few ),
      rc::gen::set( &Move::isWithNext,
                    rc::gen::map( below( 8 ), []( unsigned n ) { return n == 7; } ) ) );
}

// A story lacks about half of the kinds, and has the others more often.
std::vector< Move > anyMoves() {
   auto const coins = *rc::gen::container< std::vector< unsigned > >( Moves::kKinds, below( 2 ) );
   std::vector< unsigned > kinds{ 0 };
   for ( unsigned n = 1; n < Moves::kKinds; ++n ) {
      if ( coins[ n ] == 1 ) {
         kinds.push_back( n );
      }
   }
   return *rc::gen::container< std::vector< Move > >( anyMoveOf( kinds ) );
}

// Half of the switches have room for everything.
unsigned anyRoom( unsigned least ) {
   constexpr unsigned kAmple = 64;
   constexpr unsigned kSizes = 8;
   unsigned const n = *below( 2 * kSizes );
   return n < kSizes ? kAmple : least + n - kSizes;
}

// A calm switch has one unit, and room for everything.
World anyWorld( bool isCalm ) {
   World world;
   world.isCalm = isCalm;
   world.variant = *below( 2 ) == 0 ? "egress-mask" : "class-id";
   if ( !isCalm ) {
      world.units = 1 + *below( 2 );
      world.ingressEntries = anyRoom( 2 );
      world.egressEntries = anyRoom( 0 );
      world.classIds = 1 + *below( 4 );
      world.hasVniRules = *below( world.units == 1 ? 6 : 2 ) == 0;
   }
   world.movesBeforeReady = *below( 12 );
   return world;
}

// --- What must hold

class RandomStories : public testing::Test {
 protected:
   void check( Claim claim ) {
      EXPECT_TRUE( isSeeded );
      claim_ = claim;
      bool const allGoWell = rc::check( [ this ] {
         World const world = anyWorld( claim_ == Claim::state );
         Plot const plot{ world, anyMoves() };
         if ( fails( plot ) ) {
            makeShorter( plot );
            RC_FAIL( off_.text() );
         }
      } );
      EXPECT_TRUE( allGoWell ) << off_.text() << '\n' << shortest_;
      std::cout << stories_ << " stories: " << counts_.text() << '\n';
   }

   Counts counts_;
   unsigned stories_ = 0;

 private:
   // Plots can have the same story, above all while one is made shorter.
   bool fails( Plot const & plot ) {
      std::string const story = storyOf( plot.world, plot.moves ).text();
      if ( wentWell_.contains( story ) ) {
         return false;
      }
      Judgement const judgement = judgementOn( story, claim_, folder_.path() );
      counts_.add( judgement.counts );
      ++stories_;
      if ( !judgement.isOff() ) {
         wentWell_.insert( story );
         return false;
      }
      off_ = judgement;
      shortest_ = story;
      return true;
   }

   // The test must still print the scenario within its time.
   void makeShorter( Plot const & plot ) {
      auto const end = Clock::now() + std::chrono::seconds( 20 );
      Plot const least = shorter( plot, [ & ]( Plot const & other ) {
         return Clock::now() < end && fails( other );
      } );
      leaveLooksOut( storyOf( least.world, least.moves ) );
   }

   // What comes behind the step that differs does not matter, nor do the looks before it; unless it
   // is a look that makes the difference.
   void leaveLooksOut( Moves::Story const & story ) {
      std::string const brief = story.upTo( off_.step );
      Judgement const judgement = judgementOn( brief, claim_, folder_.path() );
      if ( off_.step > 0 && judgement.isOff() ) {
         off_ = judgement;
         shortest_ = brief;
      }
   }

   Claim claim_ = Claim::history;
   Folder folder_;
   std::set< std::string > wentWell_;
   // The last that failed.
   Judgement off_;
   std::string shortest_;
};

TEST_F( RandomStories, GoAsTheHistorySays ) {
   check( Claim::history );
   EXPECT_GT( counts_.rules, stories_ ) << "the stories make hardly any rules";
   EXPECT_EQ( counts_.stepsWithoutOpinion, 0U ) << "the stories hold nothing out of its reach";
}

TEST_F( RandomStories, OfACalmSwitchGoAsItsStateAloneSays ) {
   check( Claim::state );
   EXPECT_EQ( counts_.stops, 0U );
   EXPECT_EQ( counts_.stepsOffTheState, 0U );
}

}  // namespace
